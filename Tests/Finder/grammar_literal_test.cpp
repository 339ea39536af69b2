// The fast grammar against its literal transcription: all short texts over small alphabets, and random longer
// ones.

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "Tests/Finder/grammar_compare.h"

namespace {

// Builds that check every access take a share of the texts.
#ifdef NDEBUG
constexpr bool allTexts = true;
#else
constexpr bool allTexts = false;
#endif
constexpr int texts(int count) { return allTexts ? count : count / 5; }

using Words = std::vector<std::string>;

/// Calls `check` with every text of `length` words. Stops at the first that fails.
template <class Check>
bool forAllTexts(const Words& words, int length, const std::string& head, const Check& check) {
  if (length == 0) return check(head);
  for (const std::string& word : words)
    if (!forAllTexts(words, length - 1, head + word, check)) return false;
  return true;
}

template <class Check>
void forAllTextsUpTo(const Words& words, int longest, const Check& check) {
  for (int length = 0; length <= (allTexts ? longest : longest - 1); ++length)
    ASSERT_TRUE(forAllTexts(words, length, "", check));
}

std::string randomText(std::mt19937& random, const Words& words, std::size_t most) {
  std::string text;
  for (std::size_t n = random() % (most + 1); n > 0; --n) text += words[random() % words.size()];
  return text;
}

TEST(GrammarAgainstLiteral, AllShortTextsOfSquareBrackets) {
  forAllTextsUpTo({"[", "]", "x"}, 9,
                  compare::sameRuleThoroughly<PDF_RULES::MatchArrayObject, literal::Array>);
}

TEST(GrammarAgainstLiteral, AllShortTextsOfAngleBrackets) {
  forAllTextsUpTo({"<", ">", "x"}, 10,
                  compare::sameRuleThoroughly<PDF_RULES::MatchDictionaryObject, literal::Dictionary>);
}

TEST(GrammarAgainstLiteral, AllShortTextsOfParenthesesAndBackslashes) {
  forAllTextsUpTo({"(", ")", "\\", "<", ">"}, 6,
                  compare::sameRuleThoroughly<PDF_RULES::MatchStringObject, literal::StringObject>);
}

TEST(GrammarAgainstLiteral, AllShortTextsOfStreamWords) {
  forAllTextsUpTo({"<", "<<", ">>", " ", "stream", "endstream"}, 6,
                  compare::sameRuleThoroughly<PDF_RULES::MatchStreamObject, literal::StreamObject>);
}

TEST(GrammarAgainstLiteral, AllShortTextsOfFilterEntries) {
  forAllTextsUpTo({"/Filter", "[", "]", "/", "1 "}, 6,
                  compare::sameRuleThoroughly<PDF_RULES::MatchFilterEntry, literal::FilterEntry>);
}

TEST(GrammarAgainstLiteral, AllShortTextsOfReferences) {
  forAllTextsUpTo({"1", "+", " ", "R", "x"}, 7,
                  compare::sameRuleThoroughly<PDF_RULES::MatchIndirectObject, literal::Indirect>);
}

TEST(GrammarAgainstLiteral, RandomBrackets) {
  std::mt19937 random(1);
  const Words words = {"(", "(", ")", "[", "]", "<", "<", ">", ">", "\\", "x"};
  for (int i = 0; i < texts(30000); ++i) {
    const std::string text = randomText(random, words, 40);
    ASSERT_TRUE((compare::sameRule<PDF_RULES::MatchDictionaryObject, literal::Dictionary>(text)));
    ASSERT_TRUE((compare::sameRule<PDF_RULES::MatchArrayObject, literal::Array>(text)));
    ASSERT_TRUE((compare::sameRule<PDF_RULES::MatchStringObject, literal::StringObject>(text)));
  }
}

TEST(GrammarAgainstLiteral, RandomTextsOverTheWholeAlphabet) {
  std::mt19937 random(2);
  const Words words = {
      "(",         ")",    "<",    ">",   "[",       "]",         "\\",      "/",
      " ",         "0",    "R",    ".",   "stream",  "endstream", "<<",      ">>",
      "/A",        "null", "true", "12 ", "/Length", "/Length ",  "/Filter", "+",
      "false",     "-",    "a",    "F",   "\n",      "%",         "\x80",    "/ASCII85Decode",
      "/MediaBox", "[ "};
  for (int i = 0; i < texts(20000); ++i) ASSERT_TRUE(compare::sameGrammar(randomText(random, words, 14)));
}

const char* randomBracket(std::mt19937& random, unsigned percentOpening) {
  if (random() % 100 < percentOpening) return random() % 2 == 0 ? "<<" : "<<<";
  return random() % 3 == 0 ? ">>stream " : ">> ";
}

TEST(GrammarAgainstLiteral, RandomDeepTexts) {
  // Beyond 64 levels the openings lie on the heap.
  std::mt19937 random(3);
  for (int i = 0; i < texts(1500); ++i) {
    std::string text;
    const unsigned opening = 35 + static_cast<unsigned>(i) % 30;
    for (int k = 0; k < 250; ++k) text += randomBracket(random, opening);
    text += i % 2 == 0 ? "endstream" : "";
    literal::WrittenDictionary::forget();
    ASSERT_TRUE(
        (compare::sameTokens<PDF_RULES::MatchDictionaryObject, literal::WrittenDictionary>({text, 0})));
    ASSERT_TRUE((compare::sameTokens<PDF_RULES::MatchStreamObject, literal::WrittenStreamObject>({text, 0})));
  }
}

}  // namespace
