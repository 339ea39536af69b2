#include "TesselHost/host_layout.h"

#include <algorithm>
#include <cmath>

#include "TesselHost/host_number.h"

namespace TesselHost {

namespace {

constexpr int maxCellsAcross = 100;
constexpr int quarterTurn = 90;
constexpr int quarterTurns = 4;

/// The extent of one of `count` cells that share `whole`.
double shareOf(double whole, int count, const Spacing& spacing) {
  return (whole - 2 * spacing.margin - (count - 1) * spacing.gutter) / count;
}

double around(double extent, int count, const Spacing& spacing) {
  return extent * count + 2 * spacing.margin + (count - 1) * spacing.gutter;
}

std::optional<int> parseCells(std::string_view text) {
  const auto count = parseCount(text);
  return count && *count >= 1 && *count <= maxCellsAcross ? count : std::nullopt;
}

}  // namespace

Point moved(const Point& point, const Affine& m) {
  return {m.a * point.x + m.c * point.y + m.e, m.b * point.x + m.d * point.y + m.f};
}

Rect moved(const Rect& rect, const Affine& matrix) {
  const Point p = moved(Point{rect.x, rect.y}, matrix);
  const Point q = moved(Point{rect.x + rect.width, rect.y + rect.height}, matrix);
  return {std::min(p.x, q.x), std::min(p.y, q.y), std::abs(q.x - p.x), std::abs(q.y - p.y)};
}

Affine combined(const Affine& first, const Affine& second) {
  const Point origin = moved(Point{first.e, first.f}, second);
  return {second.a * first.a + second.c * first.b,
          second.b * first.a + second.d * first.b,
          second.a * first.c + second.c * first.d,
          second.b * first.c + second.d * first.d,
          origin.x,
          origin.y};
}

std::optional<Grid> Grid::parse(std::string_view text) {
  const auto times = text.find('x');
  if (times == std::string_view::npos) return std::nullopt;
  const auto columns = parseCells(text.substr(0, times));
  const auto rows = parseCells(text.substr(times + 1));
  if (!columns || !rows) return std::nullopt;
  return Grid{*columns, *rows};
}

Rect cellOf(const Size& sheet, const Grid& grid, const Spacing& spacing, int cell) {
  const double width = shareOf(sheet.width, grid.columns, spacing);
  const double height = shareOf(sheet.height, grid.rows, spacing);
  const int column = cell % grid.columns;
  const int row = cell / grid.columns;
  return {spacing.margin + column * (width + spacing.gutter),
          sheet.height - spacing.margin - height - row * (height + spacing.gutter), width, height};
}

Size sheetAround(const Size& cell, const Grid& grid, const Spacing& spacing) {
  return {around(cell.width, grid.columns, spacing), around(cell.height, grid.rows, spacing)};
}

double scaleToFit(const Size& page, const Rect& cell) {
  return std::min(cell.width / page.width, cell.height / page.height);
}

Affine fitInto(const Size& page, const Rect& cell) {
  const double scale = scaleToFit(page, cell);
  return {scale,
          0,
          0,
          scale,
          cell.x + (cell.width - scale * page.width) / 2,
          cell.y + (cell.height - scale * page.height) / 2};
}

Affine upright(const Rect& box, int turns) {
  const double right = box.x + box.width;
  const double top = box.y + box.height;
  switch (turns) {
    case 1:
      return {0, -1, 1, 0, -box.y, right};
    case 2:
      return {-1, 0, 0, -1, right, top};
    case 3:
      return {0, 1, -1, 0, top, -box.x};
    default:
      return {1, 0, 0, 1, -box.x, -box.y};
  }
}

int quarterTurnsOf(int degrees) {
  const int turns = degrees / quarterTurn % quarterTurns;
  return turns < 0 ? turns + quarterTurns : turns;
}

}  // namespace TesselHost
