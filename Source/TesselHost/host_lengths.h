#pragma once

#include <optional>
#include <string_view>

namespace TesselHost {

/// Points of 1/72 inch in one unit of length.
inline constexpr double pointsPerInch = 72.0;
inline constexpr double pointsPerMillimetre = pointsPerInch / 25.4;

/// A length in points: a number with "mm", "cm", "in", "pt" or no unit, which means points.
/// Nothing when the text is no such length; lengths aren't negative.
std::optional<double> parseLength(std::string_view text);

/// Points in one of the units that parseLength knows; "" is points. Nothing for any other text.
std::optional<double> pointsIn(std::string_view unit);

}  // namespace TesselHost
