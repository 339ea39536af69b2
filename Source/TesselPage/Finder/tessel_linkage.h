#pragma once

#include <string>

#include "TesselPage/Finder/tessel_findinghint.h"

namespace TESSEL {

class CSourFile;

/// Follows references to a value of one type.
class Linkage {
 public:
  /// @param file  that the references point into; not owned
  Linkage(EPDFType wantedType, CSourFile* file) : type(wantedType), source(file) {}

  /// Follows the reference at the head of the text from object to object, as long as each is a reference
  /// itself; a cycle of such objects ends where it closes.
  /// @return the first value of the wanted type in the last object's text, or in `text` itself when that is
  /// no reference; empty when there is none
  /// @throws BaseException  when an object can't be loaded, or its data can't be decoded
  std::string link(const std::string& text);
  std::string link(const char* begin, const char* end);

  /// One step: the text of the object behind the first reference in `text`, for other types than
  /// `ePDFStream` without stream data. A text without a reference comes back as it is.
  /// @throws BaseException  when the object can't be loaded
  std::string linkImpl(const std::string& text);

 private:
  EPDFType type;
  CSourFile* source;
};

}  // namespace TESSEL
