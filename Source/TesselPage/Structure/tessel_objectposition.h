#pragma once

#include <limits>

#include "TesselPage/Structure/tessel_sobj.h"

namespace TESSEL {

class CSourFile;
class CFileInfo;

/// Tells where objects begin and end, by the main table alone: an object known from a hybrid stream counts as
/// type 0 and has no end. On a memory source it answers for the file behind it.
class CObjectPosition {
 public:
  static constexpr long long nowhere = std::numeric_limits<long long>::max();

  explicit CObjectPosition(CSourFile& source);

  /// The object's offset, or `nowhere`.
  long long getBeginPosition(const SObj& object) const;
  /// The first boundary behind the object's offset, or `nowhere`. Builds the set of boundaries on first use.
  long long getEndPosition(const SObj& object) const;
  /// End minus begin.
  long long getLength(const SObj& object) const;
  /// The entry's type; 0 when there is none.
  int getObjType(const SObj& object) const;

 private:
  const SObjState* find(const SObj& object) const;
  void buildBoundaries() const;

  CFileInfo& info;
};

}  // namespace TESSEL
