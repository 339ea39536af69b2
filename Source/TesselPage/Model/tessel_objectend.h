#pragma once

#include "TesselPage/Structure/tessel_objectposition.h"
#include "TesselPage/Structure/tessel_sourfile.h"

namespace TESSEL {

/// Where a scan that has lost its "endobj" ends: at the next object of the file. In a memory source there is
/// no such place.
class ObjectEnd {
 public:
  ObjectEnd(CSourFile& source, const SObj& object) : stream(source) {
    if (source.isSubSource) return;
    end = CObjectPosition(source).getEndPosition(object);
    // At the end of a chain of references the scan stands in another object.
    if (passed()) end = CObjectPosition::nowhere;
  }

  bool passed() const { return end != CObjectPosition::nowhere && stream.tellg() > end; }

 private:
  CSourFile& stream;
  long long end = CObjectPosition::nowhere;
};

}  // namespace TESSEL
