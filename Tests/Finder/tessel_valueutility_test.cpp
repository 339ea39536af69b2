#include "TesselPage/Finder/tessel_valueutility.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "TesselPage/Finder/pdf_rules.h"
#include "TesselPage/Finder/tessel_finderexception.h"
#include "TesselPage/Finder/tessel_linkage.h"
#include "Tests/Support/pdf_builder.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::MatchesRegex;
using testing::ThrowsMessage;

namespace {

EPDFType typeOfRange(const std::string& text) {
  return utility::getType(text.data(), text.data() + text.size());
}

std::string valueIn(const std::string& text, EPDFType type) {
  return utility::getValue(text.data(), text.data() + text.size(), type);
}

// Types
// ----------------------------------------------------------------------------------------------------------

struct TypeCase {
  const char* text;
  EPDFType type;
};

class ValueType : public testing::TestWithParam<TypeCase> {};

TEST_P(ValueType, IsThatOfWhatBeginsFirst) {
  EXPECT_EQ(typeOfRange(GetParam().text), GetParam().type) << GetParam().text;
  EXPECT_EQ(utility::getType(std::string(GetParam().text)), GetParam().type) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(Nothing, ValueType,
                         testing::Values(TypeCase{"", ePDFUnknown}, TypeCase{"  ", ePDFUnknown},
                                         TypeCase{"obj", ePDFUnknown}, TypeCase{"R", ePDFUnknown},
                                         TypeCase{"(abc", ePDFUnknown}, TypeCase{">>", ePDFUnknown},
                                         TypeCase{"/", ePDFUnknown}, TypeCase{"<abc", ePDFUnknown}));

INSTANTIATE_TEST_SUITE_P(Words, ValueType,
                         testing::Values(TypeCase{"true", ePDFBoolean}, TypeCase{"false", ePDFBoolean},
                                         TypeCase{"xtrue", ePDFBoolean}, TypeCase{"untruest", ePDFBoolean},
                                         TypeCase{"null", ePDFNull}, TypeCase{" null", ePDFNull},
                                         TypeCase{"nullable", ePDFNull}, TypeCase{"null 5", ePDFNull},
                                         TypeCase{"null true", ePDFNull},
                                         TypeCase{"true null", ePDFBoolean}));

INSTANTIATE_TEST_SUITE_P(Numbers, ValueType,
                         testing::Values(TypeCase{"12", ePDFNumber}, TypeCase{"12 0", ePDFNumber},
                                         TypeCase{"-5", ePDFNumber}, TypeCase{"+.5", ePDFNumber},
                                         TypeCase{"12.5", ePDFNumber}, TypeCase{"12 0 obj", ePDFNumber},
                                         TypeCase{"12 0R", ePDFNumber}, TypeCase{"5 null", ePDFNumber},
                                         TypeCase{"5 true", ePDFNumber}, TypeCase{"<41", ePDFNumber},
                                         TypeCase{"<4G>", ePDFNumber}, TypeCase{"[1", ePDFNumber}));

INSTANTIATE_TEST_SUITE_P(Strings, ValueType,
                         testing::Values(TypeCase{"(true)", ePDFString}, TypeCase{"(12 0 R)", ePDFString},
                                         TypeCase{"()", ePDFString}, TypeCase{"<41>", ePDFString},
                                         TypeCase{"<>", ePDFString}, TypeCase{"[(a)", ePDFString},
                                         TypeCase{"% (x)", ePDFString}));

INSTANTIATE_TEST_SUITE_P(Names, ValueType,
                         testing::Values(TypeCase{"/true", ePDFName}, TypeCase{"/Untrue", ePDFName},
                                         TypeCase{"//Foo", ePDFName}, TypeCase{"/A 1", ePDFName},
                                         TypeCase{"/A<<>>", ePDFName}, TypeCase{"<</A 1", ePDFName}));

INSTANTIATE_TEST_SUITE_P(Brackets, ValueType,
                         testing::Values(TypeCase{"[1 0 R]", ePDFArray}, TypeCase{"[]", ePDFArray},
                                         TypeCase{" [<</A 1>>]", ePDFArray},
                                         TypeCase{"<</A 1>>", ePDFDictionary},
                                         TypeCase{"<<>>", ePDFDictionary}, TypeCase{"<<41>>", ePDFDictionary},
                                         TypeCase{"<</A[1]/B(x)>>", ePDFDictionary},
                                         TypeCase{"<</Length 3>> stream abc", ePDFDictionary}));

INSTANTIATE_TEST_SUITE_P(References, ValueType,
                         testing::Values(TypeCase{"12 0 R", ePDFIndirect},
                                         TypeCase{"12 0 R(x)", ePDFIndirect},
                                         TypeCase{"-1 0 R", ePDFIndirect}, TypeCase{"12\n0\tR", ePDFIndirect},
                                         TypeCase{" 12 0 Rest", ePDFIndirect}));

TEST(ValueTypeOfRange, IsAStreamWhenNoDictionaryStandsBeforeItsKeyword) {
  EXPECT_EQ(typeOfRange(">> stream"), ePDFStream);
  EXPECT_EQ(typeOfRange(">>stream (x)"), ePDFStream);
  EXPECT_EQ(typeOfRange(">>\r\nstream<<>>"), ePDFStream);
  EXPECT_EQ(typeOfRange("1>>stream"), ePDFNumber);
}

TEST(ValueTypeOfText, LooksAtNothingBehindTheDictionaryOfAStream) {
  EXPECT_EQ(utility::getType(std::string(">> stream")), ePDFUnknown);
  EXPECT_EQ(utility::getType(std::string(">>stream (x)")), ePDFUnknown);
  EXPECT_EQ(utility::getType(std::string("foo>>\nstream\n12 0 R")), ePDFUnknown);
  EXPECT_EQ(utility::getType(std::string("12 0>>stream R")), ePDFNumber);
  EXPECT_EQ(utility::getType(std::string("<</A 1>>stream\n(x)")), ePDFDictionary);
}

TEST(ValueTypeOfRange, ByteBeforeTheRangeCountsWhenTheBufferIsKnown) {
  const std::string text = "\\(a)";
  const char* const end = text.data() + text.size();
  EXPECT_EQ(utility::getType(text.data() + 1, end, text.data()), ePDFUnknown);
  EXPECT_EQ(utility::getType(text.data() + 1, end), ePDFString);
}

// Texts of values
// ----------------------------------------------------------------------------------------------------------

struct ValueCase {
  const char* text;
  EPDFType type;
  const char* value;
};

class ValueText : public testing::TestWithParam<ValueCase> {};

TEST_P(ValueText, IsTheFirstOfItsType) {
  EXPECT_EQ(valueIn(GetParam().text, GetParam().type), GetParam().value) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(Booleans, ValueText,
                         testing::Values(ValueCase{"x untrue", ePDFBoolean, "true"},
                                         ValueCase{"falsetrue", ePDFBoolean, "false"},
                                         ValueCase{"(true)", ePDFBoolean, "true"},
                                         ValueCase{"12", ePDFBoolean, ""}));

INSTANTIATE_TEST_SUITE_P(Numbers, ValueText,
                         testing::Values(ValueCase{"[12 0 R]", ePDFNumber, "12"},
                                         ValueCase{"12.x", ePDFNumber, "12."},
                                         ValueCase{"12.", ePDFNumber, "12"}, ValueCase{".5", ePDFNumber, "5"},
                                         ValueCase{"a-3.25 1", ePDFNumber, "-3.25"},
                                         ValueCase{"/N", ePDFNumber, ""}));

INSTANTIATE_TEST_SUITE_P(Strings, ValueText,
                         testing::Values(ValueCase{"x(a(b)c)d", ePDFString, "(a(b)c)"},
                                         ValueCase{"(a(b)c", ePDFString, "(a(b)"},
                                         ValueCase{"(a\\)b)c", ePDFString, "(a\\)b)"},
                                         ValueCase{"(a\\\\) (b)", ePDFString, "(a\\\\) (b)"},
                                         ValueCase{"<</A<41>>>", ePDFString, "<41>"},
                                         ValueCase{"(abc", ePDFString, ""}));

INSTANTIATE_TEST_SUITE_P(
    NamesAndNulls, ValueText,
    testing::Values(ValueCase{"<</Type /Page>>", ePDFName, "/Type"}, ValueCase{"//Foo", ePDFName, "/Foo"},
                    ValueCase{"/A#42[", ePDFName, "/A#42"}, ValueCase{"12", ePDFName, ""},
                    ValueCase{"nullable", ePDFNull, "null"}, ValueCase{"nul", ePDFNull, ""}));

INSTANTIATE_TEST_SUITE_P(Brackets, ValueText,
                         testing::Values(ValueCase{"x[1[2]3]4]", ePDFArray, "[1[2]3]"},
                                         ValueCase{"12 0 R", ePDFArray, ""},
                                         ValueCase{"a<</A<</B 1>>>>b", ePDFDictionary, "<</A<</B 1>>>>"},
                                         ValueCase{"<</A<</B 1>> /C", ePDFDictionary, "<</A<</B 1>>"},
                                         ValueCase{"<</A<41>>>", ePDFDictionary, "<</A<41>>"},
                                         ValueCase{"<</A 1", ePDFDictionary, ""}));

INSTANTIATE_TEST_SUITE_P(References, ValueText,
                         testing::Values(ValueCase{"[12 0 R 13 0 R]", ePDFIndirect, "12 0 R"},
                                         ValueCase{"12  0\nR", ePDFIndirect, "12  0\nR"},
                                         ValueCase{"12 0", ePDFIndirect, ""}));

INSTANTIATE_TEST_SUITE_P(OtherTypes, ValueText,
                         testing::Values(ValueCase{"<<>>stream\nabc\nendstream", ePDFStream, "abc"},
                                         ValueCase{"(x)", ePDFStream, ""},
                                         ValueCase{"(x) 1 true", ePDFUnknown, ""},
                                         ValueCase{"(x) 1 true", static_cast<EPDFType>(10), ""},
                                         ValueCase{"(x) 1 true", static_cast<EPDFType>(-1), ""}));

TEST(ValueTextOfRange, ByteBeforeTheRangeCountsWhenTheBufferIsKnown) {
  const std::string text = "\\(a)(b)";
  const char* const begin = text.data() + 1;
  const char* const end = text.data() + text.size();
  EXPECT_EQ(utility::getValue(begin, end, ePDFString, text.data()), "(b)");
  EXPECT_EQ(utility::getValue(begin, end, ePDFString), "(a)");
}

TEST(ParseValue, TakesTheFirstToken) {
  const std::string text = "1 /A /B";
  const yard::OneTokenizer<PDF_RULES::MatchNameObject> fresh;
  EXPECT_EQ(parseValue(fresh, text.data(), text.data() + text.size()), "/A");
  EXPECT_EQ(parseValue(fresh, text.data(), text.data() + 2), "");
  EXPECT_TRUE(fresh.empty());
}

TEST(ParseValue, TokenThatTheTokenizerBringsIsTheAnswer) {
  const std::string older = "/Old";
  const std::string text = "/New";
  yard::OneTokenizer<PDF_RULES::MatchNameObject> used;
  used.Tokenize(older.data(), older.data() + older.size());
  EXPECT_EQ(parseValue(used, text.data(), text.data() + text.size()), "/Old");
  EXPECT_EQ(used.size(), 1U);
}

std::string dictionaryIn(const std::string& text) {
  const auto [begin, end] = utility::getRangeOfDictionary(text.data(), text.data() + text.size());
  return {begin, end};
}

TEST(RangeOfDictionary, IsTheFirstBalancedOne) {
  EXPECT_EQ(dictionaryIn("x <</A<</B 1>>/C 2>> <</D 3>>"), "<</A<</B 1>>/C 2>>");
  EXPECT_EQ(dictionaryIn("<</A<</B 1>> /C"), "<</A<</B 1>>");
  EXPECT_EQ(dictionaryIn("<</A(>>)/B 1>>"), "<</A(>>");
}

TEST(RangeOfDictionary, WithoutOneIsEmptyAtTheBegin) {
  for (const std::string text : {"[1 0 R]", "<</A 1", ">><<", ""}) {
    const auto range = utility::getRangeOfDictionary(text.data(), text.data() + text.size());
    EXPECT_EQ(range.first, text.data()) << text;
    EXPECT_EQ(range.second, text.data()) << text;
  }
}

// Small helpers
// ----------------------------------------------------------------------------------------------------------

TEST(TrimParentheses, TakesAllLeadingOpeningAndAllTrailingClosingOnes) {
  const std::pair<const char*, const char*> cases[] = {
      {"(x)", "x"},    {"((a))", "a"}, {"(a(b))", "a(b"}, {"()", ""},       {"", ""},
      {"a", "a"},      {"(", ""},      {"))", ""},        {"(()", ""},      {")(", ")("},
      {"(a)b", "a)b"}, {"a)", "a"},    {"( a )", " a "},  {"<41>", "<41>"}, {"(\\(a\\))", "\\(a\\"}};
  for (const auto& [text, trimmed] : cases) EXPECT_EQ(trimParenthes(text), trimmed) << text;
}

TEST(AIncludeB, TellsWhetherTheFirstHoldsTheSecond) {
  EXPECT_TRUE(aIncludeB("abc", "bc"));
  EXPECT_TRUE(aIncludeB("abc", "abc"));
  EXPECT_FALSE(aIncludeB("abc", "cb"));
  EXPECT_FALSE(aIncludeB("bc", "abc"));
  EXPECT_FALSE(aIncludeB("", "a"));
  EXPECT_TRUE(aIncludeB(std::string("a\0b", 3), std::string("\0b", 2)));
}

TEST(AIncludeB, EmptySecondTellsWhetherTheFirstIsNotEmpty) {
  EXPECT_FALSE(aIncludeB("", ""));
  EXPECT_TRUE(aIncludeB("a", ""));
}

TEST(MatchStreamObject, WantsDictionaryKeywordAndEnd) {
  const std::pair<const char*, bool> cases[] = {
      {"<</A 1>>stream\nx\nendstream", true}, {"x <<>>\r\n stream endstream y", true},
      {"<<>>streamendstream", true},          {"<</A<</B 1>>>>stream\nendstream", true},
      {"<<>> <<>>stream\nendstream", true},   {"<</A 1>>stream\nx", false},
      {"stream\nx\nendstream", false},        {"<</A 1>>\nx stream\nendstream", false},
      {"endstream <<>>stream", false},        {"", false}};
  for (const auto& [text, whole] : cases) {
    std::string object = text;
    EXPECT_EQ(help_function_MatchStreamObject(object), whole) << text;
    EXPECT_EQ(object, text);
  }
}

// Stream data
// ----------------------------------------------------------------------------------------------------------

using utility::getDecompressStream;

TEST(DecompressStream, WithoutAFilterGivesWhatStandsBetweenTheKeywords) {
  EXPECT_EQ(getDecompressStream("<</Length 5>>\nstream\nhello\nendstream\nendobj\n"), "hello");
}

TEST(DecompressStream, TakesAllLineEndsOffBothEndsAndNothingElse) {
  EXPECT_EQ(getDecompressStream("<<>>stream\r\n\n\rhel\r\nlo\r\r\n\nendstream"), "hel\r\nlo");
  EXPECT_EQ(getDecompressStream("<<>>stream\n hello\t\nendstream"), " hello\t");
}

TEST(DecompressStream, TakesDataByteForByte) {
  const std::string data("\0\xff(endobj)\\\0", 12);
  EXPECT_EQ(getDecompressStream("<<>>stream\n" + data + "\nendstream"), data);
}

TEST(DecompressStream, BeginsAtTheFirstStreamWhereverItStands) {
  EXPECT_EQ(getDecompressStream("<</Type/Xstream/A 1>>stream\nx\nendstream"), "/A 1>>stream\nx");
}

TEST(DecompressStream, EndsAtTheLastEndstream) {
  EXPECT_EQ(getDecompressStream("<<>>stream\na\nendstream b\nendstream\nendobj\n"), "a\nendstream b");
}

TEST(DecompressStream, WithoutAnEndReachesToTheEndOfTheTextBehindALineEnd) {
  EXPECT_EQ(getDecompressStream("<<>>stream\r\n\nhello\n"), "hello\n");
  EXPECT_EQ(getDecompressStream("<<>>stream\n"), "");
}

TEST(DecompressStream, WithoutAnEndAndALineEndIsEmpty) {
  EXPECT_EQ(getDecompressStream("<<>>stream hello"), "");
}

TEST(DecompressStream, WithoutAKeywordIsEmpty) {
  for (const char* text : {"", "(x)\n", "<</A 1>>\nendobj\n"})
    EXPECT_EQ(getDecompressStream(text), "") << text;
}

TEST(DecompressStream, EndThatLiesBeforeTheBeginReachesToTheEndOfTheText) {
  EXPECT_EQ(getDecompressStream("abc endstream xyz"), " xyz");
  EXPECT_EQ(getDecompressStream("<<>>stream\nendstream\nendobj\n"), "endstream\nendobj\n");
}

TEST(DecompressStream, DecodesThroughTheFilter) {
  EXPECT_EQ(getDecompressStream("<</Filter/AHx/Length 7>>stream\r\n414243>\r\nendstream"), "ABC");
  EXPECT_EQ(getDecompressStream("<</Filter /FlateDecode>>stream\n" + deflated("hello") + "\nendstream"),
            "hello");
}

TEST(DecompressStream, DecodesThroughAChain) {
  const std::string twice = "343134323E>";  // the digits of "4142>"
  EXPECT_EQ(getDecompressStream("<</Filter[/AHx/AHx]>>stream\n" + twice + "\nendstream"), "AB");
  EXPECT_EQ(getDecompressStream("<</Filter[/AHx]>>stream\n" + twice + "\nendstream"), "4142>");
}

const std::string predictedRows("\0ab\0cd", 6);

TEST(DecompressStream, ParametersBehindTheFilterCount) {
  EXPECT_EQ(getDecompressStream("<</Filter/Fl/DecodeParms<</Predictor 12/Columns 2>>>>stream\n" +
                                deflated(predictedRows) + "\nendstream"),
            "abcd");
}

TEST(DecompressStream, ParametersBeforeTheFilterAreNotSeen) {
  EXPECT_EQ(getDecompressStream("<</DecodeParms<</Predictor 12/Columns 2>>/Filter/Fl>>stream\n" +
                                deflated(predictedRows) + "\nendstream"),
            predictedRows);
}

TEST(DecompressStream, UnknownFilterLeavesTheDataAsTheyAre) {
  EXPECT_EQ(getDecompressStream("<</Filter/ASCIIHexDecode>>stream\n\n414243>\n\nendstream"), "414243>");
  EXPECT_EQ(getDecompressStream("<</Filter/JPXDecode>>stream\nimage\nendstream"), "image");
}

TEST(DecompressStream, WithAFilterAndNoDataIsEmpty) {
  for (const char* text : {"<</Filter/AHx>>stream\nendstream", "<</Filter/AHx>>stream\r\n\r\nendstream",
                           "<</Filter/AHx>>", "<</Filter/AHx>>stream\n414243>"})
    EXPECT_EQ(getDecompressStream(text), "") << text;
}

constexpr const char* decompressError =
    "Decomress error\nException in file: tessel_[a-z_]+\\.cpp at line: [0-9]+";

TEST(DecompressStream, DamagedDataThrow) {
  EXPECT_THAT([] { getDecompressStream("<</Filter/AHx>>stream\n4G>\nendstream"); },
              ThrowsMessage<BaseException>(MatchesRegex(decompressError)));
}

TEST(DecompressStream, DamagedDataThrowOutOfTheValueToo) {
  EXPECT_THAT([] { valueIn("<</Filter/AHx>>stream\n4G>\nendstream", ePDFStream); },
              ThrowsMessage<BaseException>(MatchesRegex(decompressError)));
}

// Following references
// ----------------------------------------------------------------------------------------------------------

PdfBuilder document() { return pdf().onePage("/MediaBox[0 0 9 9]"); }

std::string linked(const PdfBuilder& builder, const std::string& text, EPDFType type) {
  const Source source = builder.open();
  return Linkage(type, source.file.get()).link(text);
}

std::string linkedOnce(const PdfBuilder& builder, const std::string& text, EPDFType type) {
  const Source source = builder.open();
  return Linkage(type, source.file.get()).linkImpl(text);
}

class LinkedValue : public testing::TestWithParam<ValueCase> {};

TEST_P(LinkedValue, IsTheFirstOfTheWantedTypeInTheObject) {
  EXPECT_EQ(linked(document().object(12, GetParam().text), "12 0 R", GetParam().type), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Types, LinkedValue,
    testing::Values(ValueCase{"true", ePDFBoolean, "true"}, ValueCase{"12.5", ePDFNumber, "12.5"},
                    ValueCase{"(x)", ePDFString, "(x)"}, ValueCase{"((x))", ePDFString, "(\\(x\\))"},
                    ValueCase{"<4A>", ePDFString, "<4a>"}, ValueCase{"/N", ePDFName, "/N"},
                    ValueCase{"[1 0 R(a)]", ePDFArray, "[1 0 R(a)]"},
                    ValueCase{"<</A 13 0 R>>", ePDFDictionary, "<</A 13 0 R>>"},
                    ValueCase{"null", ePDFNull, "null"}, ValueCase{"<</A(x)>>", ePDFString, "(x)"},
                    ValueCase{"[99 0 R]", ePDFIndirect, "99 0 R"}, ValueCase{"(x)", ePDFNumber, ""},
                    ValueCase{"(x)", ePDFUnknown, ""}));

TEST(Linkage, TextThatIsNoReferenceAnswersItself) {
  EXPECT_EQ(linked(document(), "(x)", ePDFString), "(x)");
  EXPECT_EQ(linked(document(), "[99 0 R(x)]", ePDFString), "(x)");
  EXPECT_EQ(linked(document(), "[99 0 R]", ePDFArray), "[99 0 R]");
  EXPECT_EQ(linked(document(), "/N", ePDFString), "");
  EXPECT_EQ(linked(document(), "", ePDFString), "");
}

TEST(Linkage, FollowsAChainToItsEnd) {
  EXPECT_EQ(linked(document().object(12, "13 0 R").object(13, "(x)"), "12 0 R", ePDFString), "(x)");
  EXPECT_EQ(
      linked(document().object(12, " 13 0 R ").object(13, "14 0 R").object(14, "/N"), " 12 0 R ", ePDFName),
      "/N");
}

TEST(Linkage, TakesARange) {
  const Source source = document().object(12, "(x)").open();
  const std::string text = "[12 0 R]";
  EXPECT_EQ(Linkage(ePDFString, source.file.get()).link(text.data() + 1, text.data() + 7), "(x)");
}

TEST(Linkage, LooksTheGenerationUp) {
  const auto builder = document().object(PdfBuilder::Identity{13, 2}, "(new)");
  EXPECT_EQ(linked(builder, "13 2 R", ePDFString), "(new)");
  EXPECT_THROW(linked(builder, "13 0 R", ePDFString), BaseException);
}

TEST(Linkage, ReachesIntoObjectStreams) {
  const auto builder = document().compressed(20, 12, "13 0 R").compressed(20, 13, "<</A(x)>>");
  EXPECT_EQ(linked(builder, "12 0 R", ePDFDictionary), "<</A(x)>>");
}

TEST(Linkage, CycleEndsWhereItCloses) {
  EXPECT_EQ(linked(document().object(12, "12 0 R"), "12 0 R", ePDFString), "");
  EXPECT_EQ(
      linked(document().object(12, "13 0 R").object(13, "14 0 R").object(14, "13 0 R"), "12 0 R", ePDFString),
      "");
}

const std::string streamObject = "<</Length 6/A 1>>\nstream\n(data)\nendstream";

TEST(Linkage, DataOfAStreamAreNoPartOfOtherTypes) {
  const auto builder = document().object(12, streamObject);
  EXPECT_EQ(linked(builder, "12 0 R", ePDFDictionary), "<</Length 6 /A 1>>");
  EXPECT_EQ(linked(builder, "12 0 R", ePDFString), "");
}

TEST(Linkage, StreamIsDecoded) {
  EXPECT_EQ(linked(document().object(12, streamObject), "12 0 R", ePDFStream), "(data)");
  EXPECT_EQ(linked(document().stream(12, "/Filter/FlateDecode", deflated("hello")), "12 0 R", ePDFStream),
            "hello");
  EXPECT_EQ(linked(document().object(12, "13 0 R").stream(13, "", "hello"), "12 0 R", ePDFStream), "hello");
}

TEST(Linkage, DamagedStreamThrows) {
  EXPECT_THAT([] { linked(document().stream(12, "/Filter/AHx", "4G>"), "12 0 R", ePDFStream); },
              ThrowsMessage<BaseException>(MatchesRegex(decompressError)));
}

TEST(LinkageStep, TextWithoutAReferenceIsUnchanged) {
  EXPECT_EQ(linkedOnce(document(), "(x) 12 0", ePDFString), "(x) 12 0");
}

TEST(LinkageStep, GivesTheTextOfTheObject) {
  EXPECT_EQ(linkedOnce(document().object(12, "<</A 13 0 R>>"), "12 0 R", ePDFString),
            "<</A 13 0 R>>\nendobj\n");
}

TEST(LinkageStep, GoesOneStepOnly) {
  EXPECT_EQ(linkedOnce(document().object(12, "13 0 R").object(13, "(x)"), "12 0 R", ePDFString),
            "13 0 R\nendobj\n");
}

TEST(LinkageStep, TakesTheFirstReference) {
  EXPECT_EQ(linkedOnce(document().object(12, "(a)").object(13, "(b)"), "[12 0 R 13 0 R]", ePDFString),
            "(a)\nendobj\n");
}

TEST(LinkageStep, StreamIsWholeOnlyWhenAStreamIsWanted) {
  const auto builder = document().object(12, streamObject);
  EXPECT_EQ(linkedOnce(builder, "12 0 R", ePDFStream),
            "<</Length 6 /A 1>>\nstream\r\n(data)\nendstream\nendobj\n");
  EXPECT_EQ(linkedOnce(builder, "12 0 R", ePDFDictionary), "<</Length 6 /A 1>>");
}

TEST(LinkageStep, ObjectThatIsNotThereThrowsWithTheText) {
  EXPECT_THAT(
      [] { linkedOnce(document(), "[99 0 R (x)]", ePDFString); },
      ThrowsMessage<BaseException>(MatchesRegex("TESSEL_LocalObjErr error value: \\[99 0 R \\(x\\)\\]\n"
                                                "Exception in file: tessel_[a-z_]+\\.cpp at line: [0-9]+")));
}

TEST(Linkage, ObjectMissingInAChainThrowsWithTheTextThatNamedIt) {
  EXPECT_THAT(
      [] { linked(document().object(12, "99 0 R"), "12 0 R", ePDFString); },
      ThrowsMessage<BaseException>(MatchesRegex("TESSEL_LocalObjErr error value: 99 0 R\nendobj\n\n"
                                                "Exception in file: tessel_[a-z_]+\\.cpp at line: [0-9]+")));
}

TEST(Linkage, NumberBeyondAllBoundsIsNotThere) {
  EXPECT_THROW(linked(document(), "99999999999999999999 0 R", ePDFString), BaseException);
  EXPECT_THROW(linked(document(), "12 99999999999999999999 R", ePDFString), BaseException);
}

}  // namespace
