#pragma once

#include <algorithm>
#include <sstream>
#include <string>

#include "TesselPage/Finder/pdf_rules.h"
#include "TesselPage/Finder/tessel_findingvalue.h"
#include "TesselPage/Finder/tessel_valueutility.h"

/// The value search answers many keys of one text together. This is what its steps give when they are taken
/// one by one on copies.
namespace finder_compare {

using namespace TESSEL;

inline constexpr int typeCount = 10;

/// One key for each type that can be wanted: "/K0" to "/K9".
inline FindingHint question() {
  FindingHint hint;
  for (int type = 0; type < typeCount; ++type)
    hint.insertHintInfo(("/K" + std::to_string(type)).c_str(), static_cast<EPDFType>(type));
  return hint;
}

inline std::string told(const FindingHint& hint) {
  std::ostringstream out;
  hint.outPutValue(out);
  return out.str();
}

/// The value behind a key, in the form of its own type.
inline std::string valueBehind(const char* key, const char* end, const char* start, EPDFType wanted) {
  const EPDFType type = utility::getType(key, end, start);
  const std::string value = utility::getValue(key, end, type, start);
  if (wanted != ePDFString || type != ePDFName) return value;
  const char* const behind = std::search(key, end, value.begin(), value.end()) + value.size();
  const char* const next = std::find_if_not(behind, end, [](char c) { return PDF_RULES::isWhiteSpace(c); });
  yard::OneTokenizer<PDF_RULES::MatchStringObject> string;
  string.Tokenize(next, end, start);
  const bool adjacent = !string.empty() && string.front().first == next;
  return adjacent ? std::string(string.front().first, string.front().second) : value;
}

/// The values that stand in the text itself.
inline void scanLiterally(const std::string& text, FindingHint& hint) {
  const char* const start = text.data();
  const auto [begin, end] = utility::getRangeOfDictionary(start, start + text.size());
  yard::Tokenizer<PDF_RULES::MatchNameObject> names;
  names.Tokenize(begin, end, start);
  for (const yard::Token& name : names.tokens()) {
    const std::string key(name.first, name.second);
    if (!hint.keyExist(key.c_str())) continue;
    const EPDFType wanted = hint.getPropertyType(key.c_str());
    const std::string value = valueBehind(name.second, end, start, wanted);
    if (utility::getType(value) != wanted) continue;
    hint.insertPropertyValue(key.c_str(), wanted == ePDFString ? trimParenthes(value) : value);
  }
}

/// What both ways answer to `question()`.
struct Answers {
  FindingHint fast = question();
  FindingHint literal = question();
};

/// Asks of a text that holds no reference to anything.
inline void ask(const std::string& text, CSourFile* source, Answers& answers) {
  scanLiterally(text, answers.literal);
  FindingValue(answers.fast, source, text).find(true);
}

}  // namespace finder_compare
