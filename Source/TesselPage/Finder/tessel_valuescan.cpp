#include "TesselPage/Finder/tessel_valuescan.h"

namespace TESSEL {

FirstValue ValueScan::at(const char* place) {
  FirstValue best;
  const auto consider = [&](auto& rule) {
    if (!rule.from(place)) return;
    const auto& [begin, end] = rule.found();
    if (!best.begin || begin <= best.begin) best = {rule.type, begin, end};
  };
  std::apply([&](auto&... rule) { (consider(rule), ...); }, rules);
  return best;
}

}  // namespace TESSEL
