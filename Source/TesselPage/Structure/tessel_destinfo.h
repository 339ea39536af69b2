#pragma once

#include <string>

#include "TesselPage/Structure/tessel_sobj.h"

namespace TESSEL {

/// Where a destination was met: the object, and for a direct annotation dictionary its place in the array.
/// Ordered by index, then object.
struct SDestObjKey {
  SObj object;
  int index = 0;

  friend bool operator<(const SDestObjKey& a, const SDestObjKey& b) {
    return a.index != b.index ? a.index < b.index : a.object < b.object;
  }
};

/// A destination met in a page's annotations, and the number reserved for it.
struct SDestInfo {
  std::string name;  ///< not empty: still to be looked up
  int style = 2;     ///< as in DestTD
  float left = 0;
  float top = 0;
  float right = 0;
  float bottom = 0;
  int page = 0;    ///< counted from 1; 0 when not known
  SObj newObject;  ///< in the host's numbering, set by the harvest
};

}  // namespace TESSEL
