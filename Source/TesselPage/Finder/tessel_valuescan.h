#pragma once

#include <string_view>
#include <tuple>

#include "TesselPage/Finder/pdf_rules.h"
#include "TesselPage/Finder/tessel_findinghint.h"

namespace TESSEL {

/// Answers, for place after place of a range, where the leftmost match of a rule at that place or behind it
/// is. Places that don't go back cost time linear in the range, all together.
template <class R>
class LeftmostMatch {
 public:
  explicit LeftmostMatch(const yard::Stream& range) : search(range), end(range.end()) {}

  /// @return whether there is a match
  bool from(const char* place) {
    if (!asked || token.first < place) {
      asked = true;
      search.standAt(place);
      if (!search.next(token)) token = {end, end};
    }
    return token.first != end;
  }
  /// The match that `from` has found.
  const yard::Token& found() const { return token; }

 private:
  yard::Search<R> search;
  const char* end;
  yard::Token token;  ///< (end, end): there is none
  bool asked = false;
};

/// A value in a text: the first one behind a place.
struct FirstValue {
  EPDFType type = ePDFUnknown;
  const char* begin = nullptr;
  const char* end = nullptr;

  std::string_view text() const { return {begin, static_cast<std::size_t>(end - begin)}; }
};

/// Tells what values stand behind places of a range: the one that begins first, and of those that begin at
/// one place the later one in the list below, so that a reference is none of its numbers. Names that are
/// asked for in their order take time linear in the range, all together.
class ValueScan {
 public:
  /// @param bufferStart  where the text that holds the range begins
  ValueScan(const char* begin, const char* end, const char* bufferStart)
      : ValueScan(yard::Stream(begin, end, bufferStart)) {}

  /// The first value at `place` or behind it. The text of one that is a stream is that of its beginning.
  FirstValue at(const char* place);

 private:
  template <EPDFType valueType, class R>
  struct Rule : LeftmostMatch<R> {
    static constexpr EPDFType type = valueType;
    using LeftmostMatch<R>::LeftmostMatch;
  };
  using Rules = std::tuple<
      Rule<ePDFBoolean, PDF_RULES::MatchBooleanObject>, Rule<ePDFNumber, PDF_RULES::MatchNumberObject>,
      Rule<ePDFString, PDF_RULES::MatchStringObject>, Rule<ePDFName, PDF_RULES::MatchNameObject>,
      Rule<ePDFArray, PDF_RULES::MatchArrayObject>, Rule<ePDFDictionary, PDF_RULES::MatchDictionaryObject>,
      Rule<ePDFStream, PDF_RULES::MatchStreamBegin>,
      Rule<ePDFNull, yard::MatchString<PDF_RULES::null_string>>,
      Rule<ePDFIndirect, PDF_RULES::MatchIndirectObject>>;

  explicit ValueScan(const yard::Stream& range)
      : rules(range, range, range, range, range, range, range, range, range) {}

  Rules rules;
};

}  // namespace TESSEL
