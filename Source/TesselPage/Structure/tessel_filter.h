#pragma once

#include <iosfwd>
#include <map>
#include <string>

#include "KelpGraphicService/kelp_graphic_service.h"

namespace TESSEL {

/// A stream's filter chain (ISO 32000-2, 7.4): reads /Filter and /DecodeParms and decodes through the graphic
/// service.
class CFilter {
 public:
  using FilterPropTD = KelpGraphicService_NS::FilterPropTD;
  using FILTER_TYPE = KelpGraphicService_NS::FILTER_TYPE;

  /// Reads the value of /Filter; the stream stands behind the key.
  /// @param startPos  above 0: where the look for /DecodeParms of a single filter begins
  /// @return false for an unknown filter or broken parameters
  bool ReadFilter(std::istream& in, long long startPos);
  /// A parameter dictionary, from its "<<" to its ">>".
  static bool ReadParameter(std::istream& in, FilterPropTD& properties);
  /// The type of a filter name with its "/"; 10 when it isn't known.
  static FILTER_TYPE GetFilterType(const std::string& name);
  /// Whether the service decodes the type: 1 to 7.
  static bool IsNeedCompType(FILTER_TYPE type);

  /// Cuts `data` to `length` bytes and runs the chain on it; on success `length` is the new size.
  /// @return as filterStream
  int filterStreamType(std::string& data, int& length);
  /// Runs the chain. With an empty chain `data` and `out` stay as they are; otherwise both end up with the
  /// decoded bytes.
  /// @return 0; 5000 when the service found the data damaged; else the service's own code
  int filterStream(std::string& data, std::string& out);

  bool hasFilters() const { return !chain.empty(); }

 protected:
  std::map<int, FilterPropTD> chain;  ///< by place in the chain, from 0

 private:
  bool readArray(std::istream& in, FilterPropTD& properties);
  bool readSingle(std::istream& in, const std::string& name, FilterPropTD& properties, long long startPos);
  int runChain(std::string& data, std::string* out);
};

}  // namespace TESSEL
