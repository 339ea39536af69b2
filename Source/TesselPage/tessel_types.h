#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

namespace TESSEL {

/// A rectangle in points (1/72 inch): left, bottom, right, top (ISO 32000-2, 7.9.5).
struct RectTD {
  float left = 0;
  float bottom = 0;
  float right = 0;
  float top = 0;

  friend bool operator==(const RectTD&, const RectTD&) = default;
};

/// A point in points (1/72 inch).
struct PointTD {
  float x = 0;
  float y = 0;

  friend bool operator==(const PointTD&, const PointTD&) = default;
};

/// A run of points. Made from numbers, it pairs them up: x0 y0 x1 y1 ...; a lone last number is an x with y
/// 0.
class VerticesTD : public std::vector<PointTD> {
 public:
  VerticesTD() = default;
  explicit VerticesTD(const std::vector<float>& numbers) {
    for (std::size_t i = 0; i < numbers.size(); i += 2)
      push_back({numbers[i], i + 1 < numbers.size() ? numbers[i + 1] : 0.0F});
  }
};

/// Placement of a page in the host's file, as the operands of a "cm" operator (ISO 32000-2, 8.3.4):
/// x' = a x + c y + e, y' = b x + d y + f.
struct PgCmTD {
  float a = 0;
  float b = 0;
  float c = 0;
  float d = 0;
  float e = 0;
  float f = 0;
};

}  // namespace TESSEL
