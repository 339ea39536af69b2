// The value search answers many keys of one text together. Here it is compared, on random texts, with what
// its steps give when they are taken one by one on copies.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <string>

#include "TesselPage/Finder/pdf_rules.h"
#include "TesselPage/Finder/tessel_findingvalue.h"
#include "TesselPage/Finder/tessel_valueutility.h"
#include "Tests/Support/pdf_builder.h"

using namespace TESSEL;

namespace {

constexpr int typeCount = 10;

/// One key for each type that can be wanted: "/K0" to "/K9".
FindingHint question() {
  FindingHint hint;
  for (int type = 0; type < typeCount; ++type)
    hint.insertHintInfo(("/K" + std::to_string(type)).c_str(), static_cast<EPDFType>(type));
  return hint;
}

std::string told(const FindingHint& hint) {
  std::ostringstream out;
  hint.outPutValue(out);
  return out.str();
}

/// The value behind a key, in the form of its own type.
std::string valueBehind(const char* key, const char* end, const char* start, EPDFType wanted) {
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
void scanLiterally(const std::string& text, FindingHint& hint) {
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

/// Numbers are followed by no "0 R", so that nothing is loaded.
const char* const pieces[] = {
    "/K0",  "/K1",  "/K2", "/K3", "/K4", "/K5", "/K6",   "/K7",      "/K8",       "/K9",    "<<", ">>",
    "(",    ")",    "[",   "]",   "<",   ">",   "\\",    "stream",   " ",         "\n",     "12", "1.5 ",
    "true", "null", "x",   "/N",  "41",  "(a)", "<</K3", ">>stream", "endstream", "<</K5[", "]>>"};

std::string randomText(std::mt19937& random) {
  std::uniform_int_distribution<std::size_t> piece(0, std::size(pieces) - 1);
  std::string text = "<<";
  for (int count = 2 + static_cast<int>(random() % 40); count > 0; --count) text += pieces[piece(random)];
  return random() % 2 ? text + ">>" : text;
}

TEST(FindingValueAgainstItsSteps, AgreesOnRandomTexts) {
  const tessel_test::Source source = tessel_test::pdf().onePage("/MediaBox[0 0 9 9]").open();
  std::mt19937 random(20240607);
  long answered = 0;
  for (int round = 0; round < 30000; ++round) {
    const std::string text = randomText(random);
    FindingHint literal = question();
    FindingHint fast = question();
    scanLiterally(text, literal);
    FindingValue(fast, source.file.get(), text).find(true);
    ASSERT_EQ(told(fast), told(literal)) << text;
    for (int type = 0; type < typeCount; ++type)
      answered += fast.getPropertyValueCount(("/K" + std::to_string(type)).c_str());
  }
  EXPECT_GT(answered, 8000);
}

}  // namespace
