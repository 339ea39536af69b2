#include "TesselHost/host_destinations.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>

#include "TesselHost/host_number.h"

namespace TesselHost {

namespace {

using TESSEL::DestTD;

/// DestTD's style.
enum Style { xyz = 1, fit = 2, fitH = 3, fitV = 4, fitR = 5, fitB = 6, fitBH = 7, fitBV = 8 };

bool isNull(float value) { return value == std::numeric_limits<float>::max(); }

std::string rectangleView(const Rect& rect) {
  return fmt::format("/FitR {} {} {} {}", decimal(rect.x), decimal(rect.y), decimal(rect.x + rect.width),
                     decimal(rect.y + rect.height));
}

std::string numberOrNull(bool known, double value) { return known ? decimal(value) : "null"; }

/// The upper left corner of the view. What the link leaves open stays open where the page is all of the
/// sheet; elsewhere it is the page's corner, since another page may lie at the sheet's.
std::string cornerView(const PagePlace& place, const DestTD& wanted) {
  const Rect& visible = place.visible;
  const Point corner =
      moved(Point{isNull(wanted.left) ? visible.x : static_cast<double>(wanted.left),
                  isNull(wanted.top) ? visible.y + visible.height : static_cast<double>(wanted.top)},
            place.matrix);
  const bool turned = place.matrix.a == 0 && place.matrix.d == 0;
  const bool knowsX = !place.wholeSheet || !isNull(turned ? wanted.top : wanted.left);
  const bool knowsY = !place.wholeSheet || !isNull(turned ? wanted.left : wanted.top);
  return fmt::format("/XYZ {} {} {}", numberOrNull(knowsX, corner.x), numberOrNull(knowsY, corner.y),
                     numberOrNull(!isNull(wanted.right), static_cast<double>(wanted.right)));
}

std::string pageView(const PagePlace& place) {
  return place.wholeSheet ? "/Fit" : rectangleView(moved(place.visible, place.matrix));
}

/// A line across the page's width or along its height, which a quarter turn changes into each other.
std::string lineView(const PagePlace& place, bool across, double at, std::string_view bounds) {
  const Point point = moved(across ? Point{place.visible.x, at} : Point{at, place.visible.y}, place.matrix);
  const bool turned = place.matrix.a == 0 && place.matrix.d == 0;
  return across != turned ? fmt::format("/Fit{}H {}", bounds, decimal(point.y))
                          : fmt::format("/Fit{}V {}", bounds, decimal(point.x));
}

Rect rectangleOf(const DestTD& wanted) {
  // The library hands the four numbers over in the order in which they stand: left, bottom, right, top.
  return {wanted.left, wanted.top, static_cast<double>(wanted.right) - static_cast<double>(wanted.left),
          static_cast<double>(wanted.bottom) - static_cast<double>(wanted.top)};
}

std::string viewOn(const PagePlace& place, const DestTD& wanted) {
  switch (wanted.style) {
    case xyz:
      return cornerView(place, wanted);
    case fitH:
    case fitBH:
      return lineView(place, true, wanted.left, wanted.style == fitBH && place.wholeSheet ? "B" : "");
    case fitV:
    case fitBV:
      return lineView(place, false, wanted.left, wanted.style == fitBV && place.wholeSheet ? "B" : "");
    case fitR:
      return rectangleView(moved(rectangleOf(wanted), place.matrix));
    case fitB:
      return place.wholeSheet ? "/FitB" : pageView(place);
    default:
      return pageView(place);
  }
}

}  // namespace

std::string destinationOn(const PagePlace& place, const DestTD& wanted) {
  return fmt::format("[{}{}]", referenceTo(place.sheet), viewOn(place, wanted));
}

int Destinations::write(ObjectWriter& writer) const {
  int lost = 0;
  for (const DestTD& destination : wanted) {
    const auto place = places.find(destination.page);
    const bool placed = place != places.end();
    // A link that led nowhere in the source loses nothing.
    if (!placed && destination.page != 0) ++lost;
    writer.writeBody({destination.objNum, destination.genNum},
                     placed ? destinationOn(place->second, destination) : "null");
  }
  return lost;
}

}  // namespace TesselHost
