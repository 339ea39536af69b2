#include "TesselPage/Syntax/tessel_fileblock.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "Tests/Syntax/byte_streams.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

class Probe : public CFileBlock {
 public:
  bool Read(CSourFile& source) override {
    readFrom = &source;
    return true;
  }
  bool Write(CDestFile&, CSourFile& source) override {
    wroteFrom = &source;
    return true;
  }
  CSourFile* readFrom = nullptr;
  CSourFile* wroteFrom = nullptr;
};

std::string number(float value) {
  std::string text;
  CFileBlock::wrtNumberFtoStr(text, value);
  return text;
}

struct WordCase {
  const char* text;
  const char* word;
  const char* left;
};

}  // namespace

TEST(FileBlock, ReadsFromTheStreamItself) {
  CSourFile source{std::string()};
  Probe probe;
  EXPECT_TRUE(probe.fromStream(source));
  EXPECT_EQ(probe.readFrom, &source);
}

TEST(FileBlock, WritesWithTheDestinationsCurrentSource) {
  CSourFile source{std::string()};
  CDestFile dest;
  dest.files[0] = &source;
  Probe probe;
  EXPECT_TRUE(probe.toStream(dest));
  EXPECT_EQ(probe.wroteFrom, &source);
}

TEST(FileBlock, WritesNothingWithoutASource) {
  CDestFile dest;
  Probe probe;
  EXPECT_FALSE(probe.toStream(dest));
  EXPECT_EQ(probe.wroteFrom, nullptr);
}

TEST(IsNum, TakesDigitsOnly) {
  EXPECT_TRUE(CFileBlock::IsNum("0123456789"));
  EXPECT_TRUE(CFileBlock::IsNum(""));
  EXPECT_FALSE(CFileBlock::IsNum("-1"));
  EXPECT_FALSE(CFileBlock::IsNum("+1"));
  EXPECT_FALSE(CFileBlock::IsNum("1.0"));
}

TEST(FindStr, StandsBehindTheWholeWord) {
  std::istringstream in("startxrefs startxref 12");
  EXPECT_TRUE(CFileBlock::FindStr(in, "startxref"));
  EXPECT_EQ(rest(in), " 12");
}

TEST(FindStr, ThrowsAtTheEnd) {
  std::istringstream in("a b c ");
  EXPECT_THROW(CFileBlock::FindStr(in, "d"), CFileError);
}

TEST(FindStr, ThrowsOnAStreamThatIsNotGood) {
  std::istringstream in("d ");
  in.setstate(std::ios_base::eofbit);
  EXPECT_THROW(CFileBlock::FindStr(in, "d"), CFileError);
}

TEST(FindStr, FindsAWordThatIsDoubledIntoItByTheEnd) {
  std::istringstream in("x xre");
  EXPECT_TRUE(CFileBlock::FindStr(in, "xree"));
}

TEST(FindStrInObj, StopsAtEndobj) {
  std::istringstream in("a endobj b ");
  EXPECT_FALSE(CFileBlock::FindStrInObj(in, "b"));
  EXPECT_EQ(rest(in), " b ");
}

TEST(FindStrInObj, FindsAndFailsWithoutThrowing) {
  std::istringstream in("a b c ");
  EXPECT_TRUE(CFileBlock::FindStrInObj(in, "b"));
  EXPECT_FALSE(CFileBlock::FindStrInObj(in, "b"));
  EXPECT_FALSE(CFileBlock::FindStrInObj(in, "c"));
}

TEST(GetWords, CutsBeforeTheFirstMarkThatCounts) {
  const WordCase cases[] = {
      {"word next", "word", " next"},
      {"a/b<<c d", "a/b", "<<c d"},
      {"a/b>>c d", "a/b", ">>c d"},
      {"a[b/c d", "a[b", "/c d"},
      {"/Name/Next x", "/Name/Next", " x"},
      {"/N[1 2]", "/N", "[1 2]"},
      {"12]>> x", "12]", ">> x"},
      {"12] x", "12", "] x"},
      {"[1 2", "", "[1 2"},
      {"<</A 1", "", "<</A 1"},
      {"a>>b<<c", "a>>b", "<<c"},
  };
  for (const WordCase& row : cases) {
    std::istringstream in(row.text);
    std::string word = "old";
    CFileBlock::GetWords(in, word);
    EXPECT_EQ(word, row.word) << row.text;
    EXPECT_EQ(rest(in), row.left) << row.text;
  }
}

TEST(GetWords, SeeksFromBeforeTheWhiteSpace) {
  std::istringstream in("  abc/d");
  std::string word;
  CFileBlock::GetWords(in, word);
  EXPECT_EQ(word, "abc");
  EXPECT_EQ(rest(in), "bc/d");
}

TEST(GetWords, TakesAtMost1023Bytes) {
  std::istringstream in(std::string(2000, 'x'));
  std::string word;
  CFileBlock::GetWords(in, word);
  EXPECT_EQ(word, std::string(1023, 'x'));
}

TEST(HexDigits, ArePairedUpToTheFirstOtherByte) {
  std::istringstream in("4a\r\n4B4cx41");
  std::stringstream out;
  int count = 77;
  EXPECT_TRUE(CFileBlock::RedHexString(out, in, count));
  EXPECT_EQ(out.str(), "JKL");
  EXPECT_EQ(count, 3);
  EXPECT_EQ(rest(in), "41");
}

TEST(HexDigits, OddOneIsCompletedWithZero) {
  std::istringstream in("414>");
  std::stringstream out;
  int count = 0;
  EXPECT_TRUE(CFileBlock::RedHexString(out, in, count));
  EXPECT_EQ(out.str(), "A@");
  EXPECT_EQ(count, 2);
}

TEST(HexDigits, EndOfTheStreamIsAFailure) {
  std::istringstream in("4142");
  std::stringstream out;
  int count = 0;
  EXPECT_FALSE(CFileBlock::RedHexString(out, in, count));
  EXPECT_EQ(out.str(), "AB");
}

TEST(IsDictStart, ConsumesTheStartOfADictionaryOrArray) {
  const WordCase cases[] = {
      {" <</A 1>>", "yes", "/A 1>>"}, {"[1 2]", "yes", "1 2]"}, {"%x\n%y\r\n <<", "yes", ""},
      {"<abc", "yes", "bc"},          {"(a)", "no", "(a)"},     {" /N", "no", "/N"},
      {"%only a comment", "no", ""},  {"% c\n 12", "no", "12"}, {"", "no", ""},
  };
  for (const WordCase& row : cases) {
    std::istringstream in(row.text);
    EXPECT_EQ(CFileBlock::isDictStart(in) ? "yes" : "no", std::string(row.word)) << row.text;
    EXPECT_EQ(rest(in), row.left) << row.text;
  }
}

TEST(WriteNumber, HasAtMostFiveDecimalsAndABlank) {
  EXPECT_EQ(number(1.5F), "1.5 ");
  EXPECT_EQ(number(2.0F), "2 ");
  EXPECT_EQ(number(0.000001F), "0 ");
  EXPECT_EQ(number(-0.25F), "-0.25 ");
  EXPECT_EQ(number(0), "0 ");
  EXPECT_EQ(number(100), "100 ");
  EXPECT_EQ(number(0.00002F), "0.00002 ");
  EXPECT_EQ(number(-12.345678F), "-12.34568 ");
}

TEST(WriteNumber, KeepsTheLargestFloat) {
  EXPECT_EQ(number(std::numeric_limits<float>::max()), "340282346638528859811704183484516925440 ");
}

TEST(FloatsAreEqual, WithinOneHundredThousandth) {
  EXPECT_TRUE(CFileBlock::isfeq(1, 1));
  EXPECT_TRUE(CFileBlock::isfeq(0, 0.00001F));
  EXPECT_TRUE(CFileBlock::isfeq(0.00001F, 0));
  EXPECT_FALSE(CFileBlock::isfeq(0, 0.000011F));
  EXPECT_FALSE(CFileBlock::isfeq(0.000011F, 0));
}
