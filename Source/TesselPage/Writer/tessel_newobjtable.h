#pragma once

#include "TesselPage/Structure/tessel_sobj.h"

namespace TESSEL {

/// Key of the renumbering table: compared field by field in this order.
struct NewObjTable {
  int index = 0;   ///< 0, or the place of a direct annotation dictionary when the entry is its destination
  int fileNo = 0;  ///< number of the source
  SObj obj;

  friend bool operator<(const NewObjTable& a, const NewObjTable& b) {
    if (a.index != b.index) return a.index < b.index;
    if (a.fileNo != b.fileNo) return a.fileNo < b.fileNo;
    return a.obj < b.obj;
  }
};

}  // namespace TESSEL
