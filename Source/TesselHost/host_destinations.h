#pragma once

#include <map>
#include <string>
#include <vector>

#include "TesselHost/host_layout.h"
#include "TesselHost/host_objects.h"
#include "TesselHost/host_source.h"
#include "TesselPage/tessel_desttd.h"

namespace TesselHost {

/// Where a page of a source lies in the output.
struct PagePlace {
  int sheet = 0;            ///< number of the sheet's object
  Affine matrix;            ///< from the page's own coordinates to the sheet's
  Rect visible;             ///< what is seen of the page, in its own coordinates
  bool wholeSheet = false;  ///< nothing else lies on the sheet
};

/// The value of a destination (ISO 32000-2, 12.3.2.2) that leads to the place which `wanted` means on its
/// page. A view of the whole page, on a sheet with others, becomes one of the page's rectangle.
std::string destinationOn(const PagePlace& place, const TESSEL::DestTD& wanted);

/// The places in one source that links of its pages lead to: written once it is known where the pages went.
class Destinations {
 public:
  /// Where a page, counted from 1, has been put; of several places the first one counts.
  void notePlace(int page, const PagePlace& place) { places.emplace(page, place); }
  /// What the annotations of a page want.
  void noteWanted(const std::vector<TESSEL::DestTD>& destinations) {
    wanted.insert(wanted.end(), destinations.begin(), destinations.end());
  }
  /// Writes an object for each that is wanted; null where the page isn't in the output.
  /// @return the number of those
  int write(ObjectWriter& writer) const;

 private:
  std::map<int, PagePlace> places;
  std::vector<TESSEL::DestTD> wanted;
};

}  // namespace TesselHost
