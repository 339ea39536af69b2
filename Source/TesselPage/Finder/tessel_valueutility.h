#pragma once

#include <string>
#include <utility>

#include "TesselPage/Finder/tessel_findinghint.h"
#include "TesselPage/tessel_text.h"

namespace TESSEL {

/// The bytes of the first token that a copy of `tokenizer` has once it has gone through the range; empty when
/// it has none. A tokenizer that brings a token with it thus answers with that older one.
/// @param bufferStart  where the text that holds the range begins; null: the range is a text of its own
template <class T>
std::string parseValue(const T& tokenizer, const char* begin, const char* end,
                       const char* bufferStart = nullptr) {
  T copy = tokenizer;
  copy.Tokenize(begin, end, bufferStart ? bufferStart : begin);
  return copy.empty() ? std::string() : std::string(copy.front().first, copy.front().second);
}

/// The text without all its leading "(" and all its trailing ")".
std::string trimParenthes(const std::string& text);

/// Whether a whole stream object (dictionary, "stream", "endstream") stands anywhere in the text. 1 or 0.
long help_function_MatchStreamObject(const std::string& text);

/// Questions about the text of values. They find constructs in any bytes, see PDF_RULES: no answer takes
/// account of what surrounds a match.
namespace utility {

/// The first "<<" with the ">>" that balances it; (begin, begin) when there is none.
std::pair<const char*, const char*> getRangeOfDictionary(const char* begin, const char* end);

/// The type of the value that begins first in the range; among values that begin at one place the later
/// type wins, so that "12 0 R" is a reference and not a number. `ePDFUnknown` when there is none.
///
/// A stream object's text is a dictionary; `ePDFStream` comes out only where ">>" and "stream" stand with no
/// dictionary before them.
/// @param bufferStart  where the text that holds the range begins; null: the range is a text of its own
EPDFType getType(const char* begin, const char* end, const char* bufferStart = nullptr);

/// The same for a text, of which what lies behind a dictionary's end before "stream" isn't looked at.
EPDFType getType(const std::string& text);

/// The text of the first value of the given type in the range: for `ePDFStream` the decoded data of the
/// range, for `ePDFUnknown` and where there is no such value an empty text.
/// @throws BaseException  as getDecompressStream
std::string getValue(const char* begin, const char* end, EPDFType type, const char* bufferStart = nullptr);

/// The decoded data of a stream object. The data lie between the first "stream" and the last "endstream",
/// less all CR and LF at either end: data that begin or end with such bytes lose them. Without "endstream"
/// and "/Filter" the data reach to the end of the text when a line end follows the keyword, else they are
/// empty.
/// @throws BaseException  "Decomress error" when the filters report an error
std::string getDecompressStream(const std::string& objectText);

}  // namespace utility

}  // namespace TESSEL
