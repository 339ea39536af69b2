#pragma once

#include <optional>
#include <string_view>

namespace TesselHost {

/// Width and height in points.
struct Size {
  double width = 0;
  double height = 0;

  Size turned() const { return {height, width}; }
  friend bool operator==(const Size&, const Size&) = default;
};

/// A rectangle in points, from its lower left corner.
struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  friend bool operator==(const Rect&, const Rect&) = default;
};

/// Six numbers of a "cm" operator (ISO 32000-2, 8.3.3): x' = a x + c y + e, y' = b x + d y + f.
struct Affine {
  double a = 1;
  double b = 0;
  double c = 0;
  double d = 1;
  double e = 0;
  double f = 0;

  friend bool operator==(const Affine&, const Affine&) = default;
};

/// A place in points.
struct Point {
  double x = 0;
  double y = 0;
};

Point moved(const Point& point, const Affine& matrix);

/// The upright rectangle around a moved one.
Rect moved(const Rect& rect, const Affine& matrix);

/// What `first` and then `second` do.
Affine combined(const Affine& first, const Affine& second);

/// Cells of a sheet: columns from left to right, rows from top to bottom.
struct Grid {
  int columns = 1;
  int rows = 1;

  int cells() const { return columns * rows; }
  /// Nothing when `text` isn't like "2x3", or a number isn't from 1 to 100.
  static std::optional<Grid> parse(std::string_view text);
  friend bool operator==(const Grid&, const Grid&) = default;
};

/// How the cells lie on a sheet: a margin around them all, a gutter between two, in points.
struct Spacing {
  double margin = 0;
  double gutter = 0;
};

/// The cell of a sheet, counted from 0 row by row from the top left. Its size is 0 or below when the margins
/// and gutters leave no room.
Rect cellOf(const Size& sheet, const Grid& grid, const Spacing& spacing, int cell);

/// The sheet whose cells have exactly the size `cell`.
Size sheetAround(const Size& cell, const Grid& grid, const Spacing& spacing);

/// How much a page must be scaled to fill as much of the cell as it can, keeping its shape.
double scaleToFit(const Size& page, const Rect& cell);

/// Placement of a page whose lower left corner is at the origin: scaled to fit the cell, and centred in it.
Affine fitInto(const Size& page, const Rect& cell);

/// Turns a page upright: a box that is rotated clockwise by `quarterTurns` times 90 degrees comes to lie with
/// its lower left corner, as seen then, at the origin (ISO 32000-2, 7.7.3.3, /Rotate).
Affine upright(const Rect& box, int quarterTurns);

/// Clockwise quarter turns, 0 to 3, in an angle of degrees; an angle that isn't a multiple of 90 is cut to
/// one.
int quarterTurnsOf(int degrees);

}  // namespace TesselHost
