// Texts that an enemy wrote: every operation of the finder takes time in proportion to their size. A
// quadratic one would take minutes on any of these.

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>

#include "TesselPage/Finder/tessel_finderexception.h"
#include "TesselPage/Finder/tessel_findingvalue.h"
#include "TesselPage/Finder/tessel_linkage.h"
#include "TesselPage/Finder/tessel_valueutility.h"
#include "Tests/Support/pdf_builder.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

constexpr std::size_t hostileSize = 1U << 20;

std::string filled(const std::string& piece, std::size_t size = hostileSize) {
  std::string text = piece;
  while (text.size() < size) text += text.substr(0, size - text.size());
  return text;
}

/// `open` over and over, then `close` over and over.
std::string deep(const std::string& open, const std::string& close) {
  return filled(open, hostileSize / 2) + filled(close, hostileSize / 2 * close.size() / open.size());
}

/// A text that is made when it is asked for: all of them at once are large.
struct Pattern {
  std::string name;
  std::function<std::string()> text;

  friend std::ostream& operator<<(std::ostream& out, const Pattern& pattern) { return out << pattern.name; }
};

std::vector<Pattern> patterns() {
  std::vector<Pattern> all;
  const std::pair<const char*, const char*> brackets[] = {{"(", ")"}, {"[", "]"}, {"<<", ">>"}};
  for (const auto& pair : brackets) {
    const std::string open = pair.first, close = pair.second;
    for (const std::string& opening : {std::string(open), std::string("/K") + open}) {
      all.push_back({"deep " + opening, [=] { return deep(opening, close); }});
      all.push_back({"unclosed " + opening, [=] { return filled(opening); }});
      all.push_back(
          {"unclosed with one closed " + opening, [=] { return filled(opening) + open + "/K x" + close; }});
      all.push_back({"unclosed over deep " + opening,
                     [=] { return filled(opening, hostileSize / 2) + deep(opening, close); }});
      all.push_back({"side by side " + opening, [=] { return filled(opening + close); }});
      all.push_back({"inside a string " + opening, [=] { return "(" + deep(opening, close) + ")"; }});
      all.push_back({"inside an unclosed string " + opening, [=] { return "(" + filled(opening); }});
      all.push_back({"more closed than opened " + opening,
                     [=] { return filled(close) + deep(opening, close) + filled(close); }});
    }
  }
  all.push_back({"angle brackets", [=] { return filled("/K<4"); }});
  all.push_back({"interleaved", [=] { return filled("<</K[("); }});
  all.push_back({"interleaved and closed",
                 [=] { return filled("<</K[(", hostileSize / 2) + filled("]>>)", hostileSize / 2); }});
  all.push_back({"closed the other way round",
                 [=] { return filled("[<<(/K", hostileSize / 2) + filled(")]>>", hostileSize / 2); }});
  all.push_back({"ends before streams", [=] { return "<</K[" + filled(">>stream"); }});
  all.push_back({"streams in arrays", [=] { return filled("/K[") + "<<>>stream" + filled("]"); }});
  all.push_back({"names", [=] { return filled("/K"); }});
  all.push_back({"digits", [=] { return filled("1"); }});
  all.push_back({"digits and blanks", [=] { return filled("/K 1 "); }});
  all.push_back({"escapes", [=] { return filled("/K(\\(\\"); }});
  all.push_back({"blanks", [=] { return "/K" + filled(" ") + "1" + filled(" ") + "0"; }});
  return all;
}

/// Well above what linear work takes in a slow build, far below what quadratic work would.
void expectQuick(const Pattern& pattern, const std::function<void()>& operation) {
  const auto begin = std::chrono::steady_clock::now();
  operation();
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
  EXPECT_LT(seconds.count(), 10.0) << pattern;
}

class HostileText : public testing::TestWithParam<Pattern> {};

TEST_P(HostileText, UtilitiesTakeLinearTime) {
  const std::string text = GetParam().text();
  const char* const begin = text.data();
  const char* const end = begin + text.size();
  expectQuick(GetParam(), [&] {
    utility::getRangeOfDictionary(begin, end);
    utility::getType(begin, end);
    utility::getType(text);
    for (int type = ePDFBoolean; type <= ePDFIndirect; ++type)
      utility::getValue(begin, end, static_cast<EPDFType>(type));
    help_function_MatchStreamObject(text);
    trimParenthes(text);
    Linkage(ePDFString, nullptr).linkImpl(text);
  });
}

void search(const std::string& text, EPDFType wanted) {
  const Source source = pdf().onePage("/MediaBox[0 0 9 9]").open();
  FindingHint hint;
  hint.insertHintInfo("/K", wanted);
  FindingValue(hint, source.file.get(), text).find(true);
}

TEST_P(HostileText, SearchTakesLinearTime) {
  expectQuick(GetParam(), [&] { search("<<" + GetParam().text() + ">>", ePDFString); });
}

TEST_P(HostileText, SearchesForEveryTypeTakeLinearTime) {
  const std::string text = GetParam().text();
  const std::string part = text.substr(text.size() / 2 - hostileSize / 8, hostileSize / 4);
  expectQuick(GetParam(), [&] {
    for (int type = ePDFUnknown; type <= ePDFIndirect; ++type)
      search("<</K[" + part + "]>>", static_cast<EPDFType>(type));
  });
}

INSTANTIATE_TEST_SUITE_P(Patterns, HostileText, testing::ValuesIn(patterns()));

/// Each key's value is the rest of the text, to be decoded.
TEST(HostileFile, StreamsThatBeginBehindEachKeyEnd) {
  expectQuick({"streams", {}},
              [] { EXPECT_THROW(search("<<" + filled("<</K>>stream") + ">>", ePDFString), BaseException); });
}

TEST(HostileFile, ReferencesThatDoubleWithEachLevelEnd) {
  PdfBuilder builder = pdf().onePage("/MediaBox[0 0 9 9]");
  constexpr int levels = 60;
  for (int i = 0; i < levels; ++i) {
    const std::string next = std::to_string(11 + i) + " 0 R ";
    builder.object(10 + i, "<</Kids[" + next + next + "]>>");
  }
  builder.object(10 + levels, "<</T(x)>>");
  const Source source = builder.open();
  FindingHint hint;
  hint.insertHintInfo("/Kids", ePDFUnknown);
  hint.insertHintInfo("/T", ePDFString);
  expectQuick({"doubling", {}},
              [&] { EXPECT_THROW(FindingValue(hint, source.file.get(), 10, 0).find(true), BaseException); });
  EXPECT_EQ(hint.getPropertyValue("/T"), "x");
}

TEST(HostileFile, OneProfileOfManyIntentsEnds) {
  const std::string reference = "5 0 R ";
  const PdfBuilder builder = pdf()
                                 .onePage("/MediaBox[0 0 9 9]", "/OutputIntents[" + filled(reference) + "]")
                                 .object(5, "<</S/GTS_PDFX/DestOutputProfile 6 0 R>>")
                                 .stream(6, "", std::string(hostileSize, 'p'));
  expectQuick({"intents", {}}, [&] {
    const OpenPage page = builder.openPage();
    EXPECT_EQ(page.result, 0);
    EXPECT_EQ(page->getOPIS(0), "/GTS_PDFX");
    EXPECT_EQ(page->getOPIDestOutputProfile(0).size(), hostileSize);
    EXPECT_EQ(page->getOPIS(65535), "");
  });
}

}  // namespace
