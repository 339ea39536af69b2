#include "TesselHost/host_lengths.h"

#include <algorithm>
#include <array>

#include "TesselHost/host_number.h"

namespace TesselHost {

namespace {

struct Unit {
  std::string_view name;
  double points;
};

constexpr std::array units = {
    Unit{"", 1},
    Unit{"pt", 1},
    Unit{"mm", pointsPerMillimetre},
    Unit{"cm", 10 * pointsPerMillimetre},
    Unit{"in", pointsPerInch},
};

}  // namespace

std::optional<double> pointsIn(std::string_view unit) {
  const auto* found =
      std::find_if(units.begin(), units.end(), [unit](auto& row) { return row.name == unit; });
  if (found == units.end()) return std::nullopt;
  return found->points;
}

std::optional<double> parseLength(std::string_view text) {
  const auto unitStart = std::min(text.find_first_not_of("0123456789."), text.size());
  const auto number = parseDecimal(text.substr(0, unitStart));
  const auto points = pointsIn(text.substr(unitStart));
  if (!number || !points) return std::nullopt;
  return *number * *points;
}

}  // namespace TesselHost
