#pragma once

#include <string>
#include <vector>

#include "TesselHost/host_objects.h"
#include "TesselHost/host_sourceobjects.h"
#include "TesselPage/tessel_page.h"

namespace TesselHost {

/// The layers (optional content groups; ISO 32000-2, 8.11) of all sources, as one set of properties: those
/// that are off stay off, and each source's order, groups and locks stay.
class Layers {
 public:
  /// Takes in what a source tells of the layers that have reached the output. Once, after its last page.
  void add(TESSEL::CTesselPage& reader);
  /// Writes the properties, if there is any layer.
  /// @return the catalog's entry for them; empty when there is none
  std::string write(ObjectWriter& writer) const;

 private:
  std::string groups;  ///< references in a row, as all of these
  std::string off;
  std::string order;
  std::string radioButtons;
  std::string usage;
  std::string locked;
  std::string naming;  ///< /Name and the like: of the first source that has layers
};

}  // namespace TesselHost
