#include "TesselPage/Syntax/tessel_token.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "Tests/Syntax/byte_streams.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::ElementsAre;

namespace {

/// The tokens of a text, read until the stream is no longer good.
std::vector<std::string> tokens(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> found;
  for (std::string token; in.good();) {
    readPDFString(in, token);
    if (!token.empty()) found.push_back(token);
  }
  return found;
}

/// The first token of a text and what stays in the stream behind it.
std::pair<std::string, std::string> firstToken(const std::string& text) {
  std::istringstream in(text);
  std::string token;
  readPDFString(in, token);
  return {token, rest(in)};
}

using TokenAndRest = std::pair<std::string, std::string>;

}  // namespace

TEST(TokenClasses, WhiteSpaceIsWiderThanTheStandards) {
  std::string white;
  for (int c = 0; c < 256; ++c)
    if (getCharTokenType(static_cast<char>(c)) == 1) white.push_back(static_cast<char>(c));
  EXPECT_EQ(white, std::string("\0\a\b\t\n\v\f\r ", 9));
}

TEST(TokenClasses, DelimitersAreBracketsAndSolidus) {
  std::string delimiters;
  for (int c = 0; c < 256; ++c)
    if (getCharTokenType(static_cast<char>(c)) == 2) delimiters.push_back(static_cast<char>(c));
  EXPECT_EQ(delimiters, "()/<>[]{}");
}

TEST(TokenClasses, AllOtherBytesAreRegular) {
  EXPECT_EQ(getCharTokenType('%'), 0);
  EXPECT_EQ(getCharTokenType('\x01'), 0);
  EXPECT_EQ(getCharTokenType('\x80'), 0);
  EXPECT_EQ(getCharTokenType('\xff'), 0);
}

TEST(Tokeniser, AngleBracketsPairOnlyWhenEqual) {
  EXPECT_EQ(firstToken("<< "), TokenAndRest("<<", " "));
  EXPECT_EQ(firstToken(">> "), TokenAndRest(">>", " "));
  EXPECT_EQ(firstToken("<> "), TokenAndRest("<", "> "));
  EXPECT_EQ(firstToken("<A "), TokenAndRest("<", "A "));
  EXPECT_EQ(firstToken("<<<"), TokenAndRest("<<", "<"));
}

TEST(Tokeniser, NameTakesItsSolidusAndEndsAtTheNext) {
  EXPECT_THAT(tokens("/Name/Next "), ElementsAre("/Name", "/Next"));
  EXPECT_THAT(tokens("/Name(x) "), ElementsAre("/Name", "(", "x", ")"));
  EXPECT_THAT(tokens("/ /A "), ElementsAre("/", "/A"));
}

TEST(Tokeniser, BackslashProtectsTheNextByteAndStays) {
  EXPECT_EQ(firstToken("a\\ b c"), TokenAndRest("a\\ b", " c"));
  EXPECT_EQ(firstToken("\\(a b"), TokenAndRest("\\(a", " b"));
}

TEST(Tokeniser, DoubledBackslashProtectsNothing) {
  EXPECT_EQ(firstToken("a\\\\ b"), TokenAndRest("a\\\\", " b"));
  EXPECT_EQ(firstToken("\\\\ b"), TokenAndRest("\\\\", " b"));
}

TEST(Tokeniser, PercentIsRegular) {
  EXPECT_EQ(firstToken("1%x 2"), TokenAndRest("1%x", " 2"));
  EXPECT_EQ(firstToken("% a"), TokenAndRest("%", " a"));
}

TEST(Tokeniser, HighBytesAreRegularInsideTokens) {
  EXPECT_EQ(firstToken("\x80/\xff"), TokenAndRest("\x80", "/\xff"));
  EXPECT_EQ(firstToken("a\xe4z "), TokenAndRest("a\xe4z", " "));
}

TEST(Tokeniser, OtherDelimitersAreTokensOfOneByte) {
  EXPECT_THAT(tokens("[]{}() "), ElementsAre("[", "]", "{", "}", "(", ")"));
}

TEST(Tokeniser, LastByteCountsTwiceAtTheVeryEnd) {
  EXPECT_EQ(firstToken("%%EOF"), TokenAndRest("%%EOFF", ""));
  EXPECT_EQ(firstToken("<"), TokenAndRest("<<", ""));
  EXPECT_EQ(firstToken("a\\"), TokenAndRest("a\\\\", ""));
}

TEST(Tokeniser, SolidusAtTheVeryEndIsNotDoubled) { EXPECT_EQ(firstToken("/"), TokenAndRest("/", "")); }

TEST(Tokeniser, GivesNothingOnAStreamThatIsNotGood) {
  std::istringstream in("a b");
  in.setstate(std::ios_base::eofbit);
  std::string token = "old";
  readPDFString(in, token);
  EXPECT_EQ(token, "");
  EXPECT_EQ(in.rdstate(), std::ios_base::eofbit);
}

TEST(Tokeniser, AppendsToAVector) {
  std::istringstream in("b ");
  std::vector<char> token = {'a'};
  readPDFString(in, token);
  EXPECT_THAT(token, ElementsAre('a', 'b'));
}

TEST(Tokeniser, KeepsTokensLongerThanTheStreamsBuffer) {
  const std::string word(100000, 'x');
  ByteBuffer buffer(word + " y");
  std::istream in(&buffer);
  std::string token;
  readPDFString(in, token);
  EXPECT_EQ(token, word);
  EXPECT_EQ(in.get(), ' ');
}

TEST(Tokeniser, ReadsFromASourceIntoStringAndBuffer) {
  CSourFile source(std::string("/Type /Page "));
  std::string key;
  CharBuffer value;
  source >> key >> value;
  EXPECT_EQ(key, "/Type");
  EXPECT_TRUE(value == "/Page");
}

namespace {

/// The tokeniser in the stream's own reads: get, putback and the state they leave.
void literalToken(std::istream& in, std::string& token) {
  char c = ' ';
  while (getCharTokenType(c) == 1) {
    if (!in.good()) return;
    in.get(c);
  }
  token.push_back(c);
  if (getCharTokenType(c) != 0 && c != '/') {
    if ((c != '<' && c != '>') || !in.good()) return;
    char next = c;
    in.get(next);
    if (next == c) {
      token.push_back(next);
    } else {
      in.putback(next);
    }
    return;
  }
  if (!in.good()) return;
  bool escaped = c == '\\';
  for (;;) {
    in.get(c);
    if (!escaped && getCharTokenType(c) != 0) break;
    token.push_back(c);
    escaped = c == '\\' && !escaped;
    if (!in.good()) return;
  }
  in.putback(c);
}

struct Reading {
  std::string value;
  std::ios_base::iostate state;
  std::string left;

  bool operator==(const Reading&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Reading& reading) {
  return out << '"' << reading.value << "\" state " << reading.state << " left \"" << reading.left << '"';
}

using Reader = std::function<std::string(std::istream&)>;

Reading readFrom(std::istream& in, const Reader& reader) {
  Reading reading;
  reading.value = reader(in);
  reading.state = in.rdstate();
  reading.left = rest(in);
  return reading;
}

/// Both readers give the same value, state and place, from a buffer that shows all and from one that shows a
/// byte.
void expectSameReading(const std::string& text, const Reader& own, const Reader& literal) {
  std::istringstream expectedIn(text);
  const Reading expected = readFrom(expectedIn, literal);
  std::istringstream wide(text);
  EXPECT_EQ(readFrom(wide, own), expected) << '"' << text << '"';
  ByteBuffer buffer(text);
  std::istream narrow(&buffer);
  EXPECT_EQ(readFrom(narrow, own), expected) << '"' << text << "\" byte by byte";
}

std::string twoTokens(std::istream& in) {
  std::string first, second;
  readPDFString(in, first);
  const auto state = in.rdstate();
  readPDFString(in, second);
  return first + '|' + std::to_string(state) + '|' + second;
}

std::string twoLiteralTokens(std::istream& in) {
  std::string first, second;
  literalToken(in, first);
  const auto state = in.rdstate();
  literalToken(in, second);
  return first + '|' + std::to_string(state) + '|' + second;
}

template <class Value>
std::string shown(Value value) {
  std::ostringstream out;
  out.precision(std::numeric_limits<Value>::max_digits10);
  out << value;
  return out.str();
}

template <class Value, bool (*read)(std::istream&, Value&)>
std::string ownRead(std::istream& in) {
  Value value = 77;
  const bool ok = read(in, value);
  return shown(value) + (ok ? " ok" : " failed");
}

template <class Value>
std::string streamRead(std::istream& in) {
  Value value = 77;
  const bool ok = static_cast<bool>(in >> value);
  return shown(value) + (ok ? " ok" : " failed");
}

template <class Value, bool (*read)(std::istream&, Value&)>
void expectReadsAsTheStream(const std::string& text) {
  expectSameReading(text, ownRead<Value, read>, streamRead<Value>);
}

const std::string boundaryIntegers[] = {
    "2147483647",
    "2147483648",
    "-2147483648",
    "-2147483649",
    "9223372036854775807",
    "9223372036854775808",
    "-9223372036854775808",
    "-9223372036854775809",
    "99999999999999999999",
    "-99999999999999999999",
    "00000000000000000000000000000007",
    "18446744073709551617",
};

}  // namespace

TEST(Tokeniser, AgreesWithGetAndPutbackOnAllSmallTexts) {
  forEachText(" /<>(\\a", 5,
              [](const std::string& text) { expectSameReading(text, twoTokens, twoLiteralTokens); });
}

TEST(Tokeniser, BrokenBufferMakesTheStreamBadAndEndsTheToken) {
  ByteBuffer buffer("abc", 2);
  std::istream in(&buffer);
  std::string token;
  readPDFString(in, token);
  EXPECT_EQ(token, "abb");
  EXPECT_EQ(in.rdstate(), std::ios_base::badbit | std::ios_base::failbit);
}

TEST(ReadInteger, AgreesWithTheStreamOnAllSmallTexts) {
  forEachText(" +-0719.x", 4, [](const std::string& text) {
    expectReadsAsTheStream<int, readInteger>(text);
    expectReadsAsTheStream<long long, readInteger>(text);
  });
}

TEST(ReadInteger, AgreesWithTheStreamAtTheLimits) {
  for (const std::string& number : boundaryIntegers)
    for (const char* const behind : {"", " ", "x"}) {
      expectReadsAsTheStream<int, readInteger>(number + behind);
      expectReadsAsTheStream<long long, readInteger>(number + behind);
    }
}

TEST(ReadInteger, OverflowFailsWithTheNearestLimit) {
  std::istringstream in("99999999999 5");
  int value = 0;
  EXPECT_FALSE(readInteger(in, value));
  EXPECT_EQ(value, std::numeric_limits<int>::max());
  EXPECT_EQ(in.rdstate(), std::ios_base::failbit);
}

TEST(ReadInteger, LeavesTheValueAloneOnAFailedStream) {
  std::istringstream in("5");
  in.setstate(std::ios_base::eofbit);
  int value = 77;
  EXPECT_FALSE(readInteger(in, value));
  EXPECT_EQ(value, 77);
  EXPECT_EQ(in.rdstate(), std::ios_base::eofbit | std::ios_base::failbit);
}

TEST(ReadInteger, SkipsWhiteSpaceOnlyWhenTheStreamDoes) {
  std::istringstream in(" 5");
  in.unsetf(std::ios_base::skipws);
  int value = 77;
  EXPECT_FALSE(readInteger(in, value));
  EXPECT_EQ(value, 0);
  EXPECT_EQ(in.rdstate(), std::ios_base::failbit);
}

TEST(ReadReal, AgreesWithTheStreamOnAllSmallTexts) {
  forEachText(" +-.10eE", 5, [](const std::string& text) { expectReadsAsTheStream<float, readReal>(text); });
}

TEST(ReadReal, AgreesWithTheStreamOnOddNumbers) {
  for (const char* const text : {"1e38 ",
                                 "1e39 ",
                                 "-1e39",
                                 "3.4028235e38",
                                 "3.4028236e38",
                                 "1e-38",
                                 "1e-45",
                                 "1e-46 ",
                                 "-1e-60",
                                 "1e-400",
                                 "1e400",
                                 "-1e400 ",
                                 "0.1",
                                 "16777217",
                                 "123456789.123456789",
                                 "1.17549435e-38",
                                 "7.0064923e-46",
                                 "nan",
                                 "inf",
                                 "0x10",
                                 "1,5",
                                 "00000000000000000000000000.5",
                                 ".5.5",
                                 "1e+5e",
                                 "612.000 792"})
    expectReadsAsTheStream<float, readReal>(text);
}

TEST(ReadByte, AgreesWithTheStreamOnAllSmallTexts) {
  forEachText(" \na\v", 4, [](const std::string& text) { expectReadsAsTheStream<char, readByte>(text); });
  expectReadsAsTheStream<char, readByte>(std::string("\0a", 2));
}

TEST(ReadByte, TakesWhiteSpaceWhenTheStreamDoesNotSkipIt) {
  std::istringstream in(" a");
  in.unsetf(std::ios_base::skipws);
  char byte = 0;
  EXPECT_TRUE(readByte(in, byte));
  EXPECT_EQ(byte, ' ');
}

TEST(ExtStr2Int, ReadsTheMostSignificantByteFirst) {
  int pos = 1;
  int value = 77;
  ExtStr2Int("\x01\x02\x03\xff", pos, 3, value);
  EXPECT_EQ(value, 0x0203ff);
  EXPECT_EQ(pos, 4);
}

TEST(ExtStr2Int, WidthOfZeroGivesZeroAndStays) {
  int pos = 2;
  int value = 77;
  ExtStr2Int("abc", pos, 0, value);
  EXPECT_EQ(value, 0);
  ExtStr2Int("abc", pos, -1, value);
  EXPECT_EQ(value, 0);
  EXPECT_EQ(pos, 2);
}

TEST(ExtStr2Int, KeepsTheLastFourBytesOfAWiderField) {
  int pos = 0;
  int value = 0;
  ExtStr2Int("\x01\x00\x00\x00\x05", pos, 5, value);
  EXPECT_EQ(value, 5);
  EXPECT_EQ(pos, 5);
}

TEST(TokenBuffer, StartsEmptyWithRoomForFifteenBytes) {
  const CharBuffer buffer;
  EXPECT_EQ(buffer.size(), 0U);
  EXPECT_EQ(buffer.room(), 15U);
  EXPECT_STREQ(buffer.c_str(), "");
}

TEST(TokenBuffer, KeepsItsArrayWhileTheTokenFits) {
  CharBuffer buffer;
  const char* const array = buffer.c_str();
  buffer.assign("123456789012345", 15);
  EXPECT_EQ(buffer.c_str(), array);
  buffer.assign("ab", 2);
  EXPECT_STREQ(buffer.c_str(), "ab");
}

TEST(TokenBuffer, GrowsToTheTokenAndDoesNotShrink) {
  CharBuffer buffer;
  buffer.assign("1234567890123456", 16);
  EXPECT_EQ(buffer.room(), 16U);
  buffer.assign("a", 1);
  EXPECT_EQ(buffer.room(), 16U);
  EXPECT_EQ(buffer.view(), "a");
}

TEST(TokenBuffer, HoldsZeroBytes) {
  CharBuffer buffer;
  buffer.assign("a\0b", 3);
  EXPECT_EQ(buffer.view(), std::string_view("a\0b", 3));
}
