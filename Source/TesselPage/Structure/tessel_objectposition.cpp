#include "TesselPage/Structure/tessel_objectposition.h"

#include <algorithm>

#include "TesselPage/Structure/tessel_sourfile.h"

namespace TESSEL {

CObjectPosition::CObjectPosition(CSourFile& source) : info(source.mainSource().fileInfo) {}

const SObjState* CObjectPosition::find(const SObj& object) const {
  const auto entry = info.entries->find(object);
  return entry == info.entries->end() ? nullptr : &entry->second;
}

long long CObjectPosition::getBeginPosition(const SObj& object) const {
  const SObjState* entry = find(object);
  return entry ? entry->entryOffset : nowhere;
}

long long CObjectPosition::getEndPosition(const SObj& object) const {
  if (info.objectBoundaries.empty()) buildBoundaries();
  const long long start = getBeginPosition(object);
  const auto& boundaries = info.objectBoundaries;
  const auto at = std::lower_bound(boundaries.begin(), boundaries.end(), start);
  const bool isBoundary = at != boundaries.end() && *at == start;
  return isBoundary && at + 1 != boundaries.end() ? at[1] : nowhere;
}

long long CObjectPosition::getLength(const SObj& object) const {
  const auto begin = static_cast<unsigned long long>(getBeginPosition(object));
  return static_cast<long long>(static_cast<unsigned long long>(getEndPosition(object)) - begin);
}

int CObjectPosition::getObjType(const SObj& object) const {
  const SObjState* entry = find(object);
  return entry ? entry->entryType : 0;
}

void CObjectPosition::buildBoundaries() const {
  auto& boundaries = info.objectBoundaries;
  boundaries = info.filePositions;
  for (const auto& [object, entry] : *info.entries) {
    // An entry with a flag is one of a classic table, whose offsets are among the positions.
    if (entry.atOffset() && entry.entryFlag == 0) boundaries.push_back(entry.entryOffset);
  }
  // The tables of most files are in the order of their offsets already.
  if (!std::is_sorted(boundaries.begin(), boundaries.end())) std::sort(boundaries.begin(), boundaries.end());
  boundaries.erase(std::unique(boundaries.begin(), boundaries.end()), boundaries.end());
}

}  // namespace TESSEL
