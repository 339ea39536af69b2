#pragma once

#include <string>

#include "TesselPage/Structure/tessel_sobj.h"

namespace TESSEL {

class CFileInfo;
class CSourFile;

// What trailers and cross-reference streams have in common.

/// Number, generation and a byte that isn't looked at. The stream fails when they aren't there.
SObj readReferenceBytes(CSourFile& source);

/// Whether the token opens a string: "(" or "<".
bool opensString(const std::string& token);

/// The first or second string of /ID, behind its opening token; cut to the length that is kept.
void readFirstId(CFileInfo& info, CSourFile& source, const std::string& opener);
void readSecondId(CFileInfo& info, CSourFile& source, const std::string& opener);

/// The number that leads a token, as decimal digits give it; the nearest that fits when they are too many.
long long leadingNumber(const std::string& token);

/// a + b, wrapping: such an offset is refused by the seek that uses it.
inline long long shifted(long long a, long long b) {
  return static_cast<long long>(static_cast<unsigned long long>(a) + static_cast<unsigned long long>(b));
}

/// The object number of the i-th entry of a range, wrapping.
inline int numberedFrom(int first, int i) {
  return static_cast<int>(static_cast<unsigned>(first) + static_cast<unsigned>(i));
}

}  // namespace TESSEL
