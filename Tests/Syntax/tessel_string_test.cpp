#include "TesselPage/Syntax/tessel_string.h"

#include <gtest/gtest.h>

#include <string>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "Tests/Syntax/byte_streams.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

struct StringCase {
  std::string body;  ///< from behind the opening byte
  std::string value;
  std::string left;
};

void expectRead(const StringCase& row, bool hexadecimal) {
  CSourFile source(row.body);
  CStringType string(SObj(1, 0));
  string.hexadecimal = hexadecimal;
  EXPECT_TRUE(string.Read(source)) << row.body;
  EXPECT_EQ(string.value, row.value) << row.body;
  EXPECT_EQ(string.length, static_cast<int>(row.value.size())) << row.body;
  EXPECT_EQ(rest(source), row.left) << row.body;
}

CStringType stringOf(const std::string& value) {
  CStringType string(SObj(1, 0));
  string.value = value;
  string.length = static_cast<int>(value.size());
  return string;
}

std::string scaled(const std::string& appearance, const PgCmTD& cm) {
  CStringType string = stringOf(appearance);
  string.Translate4Annot(cm);
  EXPECT_EQ(string.length, static_cast<int>(string.value.size()));
  return string.value;
}

const PgCmTD twice{2, 0, 0, 2, 0, 0};

}  // namespace

TEST(LiteralString, IsUnescaped) {
  const StringCase cases[] = {
      {"a) b", "a", " b"},
      {")", "", ""},
      {"a(b(c)d)e)f", "a(b(c)d)e", "f"},
      {"\\101) ", "A", " "},
      {"\\1x) )", "@ ", ""},  // both bytes behind the digit are the escape's, the bracket too
      {"\\12z) ", "P", " "},
      {"\\777) ", "\xff", " "},
      {"\\n\\r\\t\\b\\f\\\\\\(\\)) ", "\n\r\t\b\f\\()", " "},
      {"\\q\\8) ", "q8", " "},
      {"a\\\nb) ", "ab", " "},
      {"a\\\n\rb) ", "ab", " "},
      {"a\\\rb) ", "ab", " "},
      {"a\\\r\nb) ", "a\nb", " "},  // the line feed behind a continued carriage return is data
      {"  a \n) ", "  a \n", " "},
      {std::string("\0\x80)", 3), std::string("\0\x80", 2), ""},
  };
  for (const StringCase& row : cases) expectRead(row, false);
}

TEST(LiteralString, OctalEscapeWithOneDigitTakesTheTwoBytesBehindIt) {
  expectRead({"\\1xy) ", "@", " "}, false);
}

TEST(LiteralString, WithoutItsEndGivesWhatThereIsAndFails) {
  CSourFile source(std::string("abc"));
  CStringType string(SObj(1, 0));
  EXPECT_FALSE(string.Read(source));
  EXPECT_EQ(string.value, "abc");
}

TEST(LiteralString, LeavesWhiteSpaceSkippingOn) {
  CSourFile source(std::string("a) b"));
  source.unsetf(std::ios_base::skipws);
  CStringType string(SObj(1, 0));
  string.Read(source);
  EXPECT_TRUE((source.flags() & std::ios_base::skipws) != 0);
}

TEST(LiteralString, ReadsAfreshIntoAUsedObject) {
  CSourFile source(std::string("a)b)"));
  CStringType string(SObj(1, 0));
  string.Read(source);
  string.Read(source);
  EXPECT_EQ(string.value, "b");
}

TEST(HexString, PairsDigitsAndPassesOverTheRest) {
  const StringCase cases[] = {
      {"4142> x", "AB", " x"},   {">x", "", "x"},    {"4 1\r\n4g2>", "AB", ""},
      {"aAfF>", "\xaa\xff", ""}, {"414>", "A@", ""}, {"zz>", "", ""},
  };
  for (const StringCase& row : cases) expectRead(row, true);
}

TEST(HexString, WithoutItsEndGivesWhatThereIsAndFails) {
  CSourFile source(std::string("414"));
  CStringType string(SObj(1, 0));
  string.hexadecimal = true;
  EXPECT_FALSE(string.Read(source));
  EXPECT_EQ(string.value, "A@");
}

TEST(WriteLiteral, EscapesByTheTable) {
  CDestFile dest;
  stringOf(std::string("a\n\r\t\b\f\\()\0\x80", 11)).WrtString(dest);
  EXPECT_EQ(dest, std::string("a\\n\\r\\t\\b\\f\\\\\\(\\)\0\x80)", 20));
}

TEST(WriteLiteral, ContinuesTheLineBeforeEveryHundredthByte) {
  const std::string hundred(100, 'x');
  CDestFile exact;
  stringOf(hundred).WrtString(exact);
  EXPECT_EQ(exact, hundred + ")");
  CDestFile longer;
  stringOf(hundred + hundred + std::string(50, 'y')).WrtString(longer);
  EXPECT_EQ(longer, hundred + "\\\n" + hundred + "\\\n" + std::string(50, 'y') + ")");
}

TEST(WriteHex, IsLowerCaseWithALineFeedBeforeEveryEightiethByte) {
  CDestFile few;
  stringOf("\x01\xAB").WrtHexString(few);
  EXPECT_EQ(few, "01ab>");
  CDestFile dest;
  stringOf(std::string(80, '\xff') + "A").WrtHexString(dest);
  EXPECT_EQ(dest, std::string(160, 'f') + "\n41>");
}

TEST(WriteString, TakesTheFormItWasReadIn) {
  CSourFile source{std::string()};
  CDestFile dest;
  CStringType string = stringOf("A");
  EXPECT_TRUE(string.Write(dest, source));
  string.hexadecimal = true;
  EXPECT_TRUE(string.Write(dest, source));
  EXPECT_EQ(dest, "A)41>");
}

TEST(WriteString, IsReadBackUnchanged) {
  std::string value;
  for (int i = 0; i < 600; ++i) value.push_back(static_cast<char>(i));
  for (const bool hexadecimal : {false, true}) {
    CDestFile dest;
    CStringType string = stringOf(value);
    string.hexadecimal = hexadecimal;
    string.WrtBody(dest);
    expectRead({dest, value, ""}, hexadecimal);
  }
}

TEST(ScaleAppearance, MultipliesTheFontSize) {
  EXPECT_EQ(scaled("/F1 12 Tf", twice), "/F1 24 Tf");
  EXPECT_EQ(scaled("0 g /F1 12.5 Tf 1 0 0 rg", twice), "0 g /F1 25 Tf 1 0 0 rg");
  EXPECT_EQ(scaled("/A 1 Tf /B 2\nTf x", twice), "/A 2 Tf /B 4 Tf x");
  EXPECT_EQ(scaled("/F1 -3 Tf", twice), "/F1 -6 Tf");
  EXPECT_EQ(scaled("/F1 +.25 Tf", twice), "/F1 0.5 Tf");
  EXPECT_EQ(scaled("/F1 0 Tf", twice), "/F1 0 Tf");
}

TEST(ScaleAppearance, TakesTheFirstFieldThatIsNotZero) {
  EXPECT_EQ(scaled("/F 10 Tf", {0, 0, 0, 3, 0, 0}), "/F 30 Tf");
  EXPECT_EQ(scaled("/F 10 Tf", {0, -2, 5, 0, 0, 0}), "/F 20 Tf");
  EXPECT_EQ(scaled("/F 10 Tf", {0, 0, 0.5F, 0, 0, 0}), "/F 5 Tf");
  EXPECT_EQ(scaled("/F 10 Tf", {-2, 0, 0, 7, 0, 0}), "/F 20 Tf");
}

TEST(ScaleAppearance, LeavesOtherStringsAlone) {
  EXPECT_EQ(scaled("/F1  12  Tf", {1, 0, 0, 1, 0, 0}), "/F1  12  Tf");
  EXPECT_EQ(scaled("/F1  12  Tf", {}), "/F1  12  Tf");
  EXPECT_EQ(scaled("/F1 12 tf", twice), "/F1 12 tf");
  EXPECT_EQ(scaled("T", twice), "T");
  EXPECT_EQ(scaled("Tf", twice), "Tf");
  EXPECT_EQ(scaled("/Tfont 12 x", twice), "/Tfont 12 x");
}

TEST(SkipString, StandsBehindTheClosingByte) {
  CSourFile source(std::string("a\\)(b))c> d"));
  skipString(source, SObj(1, 0), '(');
  skipString(source, SObj(1, 0), '<');
  EXPECT_TRUE(source.good());
  EXPECT_EQ(rest(source), " d");
}
