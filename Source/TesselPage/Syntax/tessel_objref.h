#pragma once

#include "TesselPage/Syntax/tessel_obj.h"

namespace TESSEL {

/// A reference "n g R" (ISO 32000-2, 7.3.10).
class CObjRef : public CObj {
 public:
  bool found = false;
  SObj objRef;

  /// True when a reference stands here; the stream is then behind it. Otherwise the stream's state is cleared
  /// and its position restored.
  bool Read(CSourFile& source) override;
  /// Appends number, blank, generation, blank, "R ".
  bool Write(CDestFile& dest, CSourFile& source) override;
};

/// Tries a reference at the present place of `source`: the very step that every scan begins its turn with.
inline bool tryReference(CSourFile& source, SObj& ref) {
  CObjRef attempt;
  if (!attempt.Read(source)) return false;
  ref = attempt.objRef;
  return true;
}

}  // namespace TESSEL
