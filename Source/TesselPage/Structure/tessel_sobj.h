#pragma once

#include <cstddef>
#include <utility>

#include "TesselPage/Structure/tessel_rarestring.h"

namespace TESSEL {

/// Identity of an indirect object (ISO 32000-2, 7.3.10) and how it was reached. Key of all object tables:
/// ordered and compared by number, then generation; flags and name take no part.
struct SObj {
  int objNum = 0;
  int genNum = 0;
  int objFlags = 0;    ///< ObjFlag bits: how the reference was found
  RareString objName;  ///< a name carried along, for shareable streams the digest

  SObj() = default;
  SObj(int num, int gen, int flags = 0) : objNum(num), genNum(gen), objFlags(flags) {}

  std::pair<int, int> identity() const { return {objNum, genNum}; }
  bool hasAny(int mask) const { return (objFlags & mask) != 0; }

  friend bool operator<(const SObj& a, const SObj& b) {
    return a.objNum != b.objNum ? a.objNum < b.objNum : a.genNum < b.genNum;
  }
  friend bool operator==(const SObj& a, const SObj& b) {
    return a.objNum == b.objNum && a.genNum == b.genNum;
  }
};

/// Hash of an identity, for sets that are only asked.
struct SObjHash {
  std::size_t operator()(const SObj& object) const {
    return static_cast<std::size_t>(object.objNum) * 0x9E3779B97F4A7C15ULL ^
           static_cast<std::size_t>(object.genNum);
  }
};

/// Where an object lies. The numbers are those of a cross-reference stream (ISO 32000-2, table 18).
enum class EntryType : unsigned char { free = 0, atOffset = 1, inObjectStream = 2 };

/// One cross-reference entry. All zeros: there is no such entry.
struct SObjState {
  long long entryOffset =
      0;  ///< free, atOffset: file position in bytes, header offset added; inObjectStream: its number
  int entryIndex = 0;           ///< inObjectStream: index within it; atOffset from a stream: generation field
  unsigned char entryMark = 0;  ///< always 0 when read
  unsigned char entryType = 0;  ///< an EntryType; a stream may hold other values
  unsigned char entryFlag = 0;  ///< 'n' or 'f' of a classic table, 0 from a stream

  bool inObjectStream() const { return entryType == static_cast<unsigned char>(EntryType::inObjectStream); }
  bool atOffset() const { return entryType == static_cast<unsigned char>(EntryType::atOffset); }
};

}  // namespace TESSEL
