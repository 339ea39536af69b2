#pragma once

#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

// What the writers of new dictionaries have in common.

/// Appends number, blank, generation, blank.
inline void writeNumbers(CDestFile& dest, const SObj& object) {
  dest << object.objNum;
  dest.append(kw_);
  dest << object.genNum;
  dest.append(kw_);
}

/// Enters the object in the destination's table, makes it the current one, and opens its dictionary.
inline void openNewObject(CDestFile& dest, const SObj& object) {
  dest.RecordObjInfo(object);
  writeNumbers(dest, object);
  dest.append(kwobj).append(kw_n).append("<<");
  dest.currentObject = object;
}

/// Appends ">>" and "endobj" and moves the destination's end mark behind them.
inline void closeNewObject(CDestFile& dest) {
  dest.append(">>").append(kwendobj).append(kw_n);
  dest.endMark = dest.size();
}

}  // namespace TESSEL
