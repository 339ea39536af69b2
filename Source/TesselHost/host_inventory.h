#pragma once

#include <map>
#include <string>
#include <vector>

#include "TesselHost/host_source.h"

namespace TesselHost {

/// What a document has besides pages and their content.
struct Inventory {
  struct Layer {
    std::string name;
    bool shown = true;  ///< by the default configuration
  };
  std::map<std::string, int> annotations;  ///< number of each subtype, such as "Link"
  std::map<std::string, int> fields;  ///< number of each type, as --forms names them; "other" for the rest
  std::vector<Layer> layers;          ///< in the document's order
  std::vector<std::string> destinations;  ///< names, in the document's order
};

/// Looks at every page, field and name of a source. Takes time linear in what the source has of them.
Inventory inventoryOf(const Source& source);

}  // namespace TesselHost
