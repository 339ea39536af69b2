#pragma once

#include <vector>

#include "TesselPage/Syntax/tessel_obj.h"

namespace TESSEL {

/// Optional content (ISO 32000-2, 8.11.4): which groups the default configuration switches off and on, and
/// their order.
class COCProperties : public CObj {
 public:
  COCProperties() { typeFlags = foundByTable; }

  /// Whether the stream is in a good state at the end.
  bool Read(CSourFile& source) override;
  /// The "/D" dictionary.
  bool ReadD(CSourFile& source);
  /// One array of references, direct or behind a reference; a repeated one counts once.
  bool ReadArray(CSourFile& source, std::vector<SObj>& list);
  /// Writes a reduced dictionary of /OFF and /ON; a group that did not travel is " null ".
  bool Write(CDestFile& dest, CSourFile& source) override;

  std::vector<SObj> off;
  std::vector<SObj> on;
  std::vector<SObj> order;  ///< /Order, made flat
  bool indirect = false;    ///< the dictionary is an object of its own

 private:
  friend class OCScan;

  /// @param[out] left  on failure, dictionaries of "/D" that the stream still stands in
  bool readConfiguration(CSourFile& source, int& left);
};

}  // namespace TESSEL
