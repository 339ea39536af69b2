#pragma once

#include <cstddef>

#include "TesselPage/Finder/tessel_finderexception.h"

namespace TESSEL {

/// What one search, or several that share this, may cost. An object that many references lead to is read for
/// each of them, so a small file could keep a search busy for ever; what files of the world ask for is far
/// below.
class SearchBudget {
 public:
  /// Takes the cost of reading one object's text. @throws BaseException  when nothing is left
  void chargeLoad(std::size_t bytes) { charge(bytes + costOfLoad); }
  /// Takes the cost of going through a text. @throws BaseException  when nothing is left
  void charge(std::size_t bytes) {
    if (bytes > left) throw BaseException("Search without end", TESSEL_THROW_PLACE);
    left -= bytes;
  }

 private:
  static constexpr std::size_t costOfLoad = 2048;  ///< about the bytes that are scanned in the same time
  std::size_t left = std::size_t{256} << 20;
};

}  // namespace TESSEL
