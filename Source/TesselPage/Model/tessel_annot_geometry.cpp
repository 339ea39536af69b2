// All in float, in the order of operations as it stands: hosts compare the texts that come out.

#include <cmath>
#include <utility>

#include "TesselPage/Model/tessel_annot.h"

namespace TESSEL {

namespace {

/// What is nearer to 0 counts as 0.
constexpr float leastCoordinate = 0.0001F;

constexpr int quarterTurn = 90;
constexpr int turnsInCircle = 4;

float withoutNoise(float value) { return std::fabs(value) < leastCoordinate ? 0.0F : value; }

}  // namespace

PointTD CAnnot::TransPoint(const PointTD& point, const PgCmTD& cm) {
  return {cm.e + (cm.a * point.x + cm.c * point.y), cm.f + (cm.b * point.x + cm.d * point.y)};
}

VerticesTD CAnnot::TransVertices(const VerticesTD& points, const PgCmTD& cm) {
  VerticesTD placed;
  placed.reserve(points.size());
  for (const PointTD& point : points) placed.push_back(TransPoint(point, cm));
  return placed;
}

RectTD CAnnot::TransRect(const RectTD& rect, const PgCmTD& cm, bool sort) {
  float x1 = withoutNoise(cm.e + (cm.a * rect.left + cm.c * rect.bottom));
  float y1 = withoutNoise((cm.b * rect.left + cm.d * rect.bottom) + cm.f);
  float x2 = withoutNoise(cm.e + (cm.a * rect.right + cm.c * rect.top));
  float y2 = withoutNoise(cm.f + (cm.b * rect.right + cm.d * rect.top));
  if (sort && x1 > x2) std::swap(x1, x2);
  if (sort && y1 > y2) std::swap(y1, y2);
  return {x1, y1, x2, y2};
}

// A negative rotation has a negative remainder and turns nothing.
void CAnnot::RestoreRect(const RectTD& rect, int rotation, RectTD& out) {
  const RectTD in = rect;
  const float w = in.right - in.left;
  const float h = in.top - in.bottom;
  switch (rotation / quarterTurn % turnsInCircle) {
    case 1:
      out = {in.right - w, in.bottom + h, h + in.left, in.top + w};
      break;
    case 2:
      out = {in.right - (w + w), in.top, in.left, (h + h) + in.bottom};
      break;
    case 3:
      out = {in.left - h, in.top - w, in.right - w, h + in.bottom};
      break;
    default:
      out = in;
  }
}

void CAnnot::outputCm(std::string& out, const PgCmTD& cm) {
  for (const float coefficient : {cm.a, cm.b, cm.c, cm.d}) wrtNumberFtoStr(out, coefficient);
  out += "0 0  cm ";
}

}  // namespace TESSEL
