#pragma once

#include <string>

#include "TesselPage/Finder/tessel_findinghint.h"
#include "TesselPage/Structure/tessel_sobj.h"

namespace TESSEL {

class CSourFile;
class SearchBudget;

/// Follows references to a value of one type.
class Linkage {
 public:
  /// @param file    that the references point into
  /// @param budget  what the loads are taken from; null: there is no bound. Neither is owned.
  Linkage(EPDFType wantedType, CSourFile* file, SearchBudget* budget = nullptr)
      : type(wantedType), source(file), searchBudget(budget) {}

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
  std::string textOf(const SObj& object, const std::string& text);

  EPDFType type;
  CSourFile* source;
  SearchBudget* searchBudget;
};

}  // namespace TESSEL
