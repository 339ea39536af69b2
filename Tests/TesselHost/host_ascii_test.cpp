#include "TesselHost/host_ascii.h"

#include <gmock/gmock.h>

namespace TesselHost {
namespace {

struct TextCase {
  std::string_view text;
  std::string_view ascii;
};
class AsciiText : public testing::TestWithParam<TextCase> {};

TEST_P(AsciiText, EscapesWhatLiesBeyond) { EXPECT_EQ(asciiText(GetParam().text), GetParam().ascii); }

INSTANTIATE_TEST_SUITE_P(Places, AsciiText,
                         testing::Values(TextCase{"<</A(x)/B 1>>", "<</A(x)/B 1>>"},
                                         TextCase{"(a\xE4z)", "(a\\344z)"},
                                         TextCase{"(a(\xE4)\xF6)", "(a(\\344)\\366)"},
                                         TextCase{"(\\\xE4\\(\xF6)/N", "(\\344\\(\\366)/N"},
                                         TextCase{"/N\xE4me 1", "/N#E4me 1"},
                                         TextCase{"(a)/N\xE4(b\xF6)", "(a)/N#E4(b\\366)"},
                                         TextCase{"1 % (\xE4\n(\xF6)", "1 % (?\n(\\366)"},
                                         TextCase{"(%\xE4)", "(%\\344)"}, TextCase{"[\xE4]", "[?]"}));

struct DataCase {
  std::string_view data;
  std::string_view encoded;
};
class Ascii85 : public testing::TestWithParam<DataCase> {};

TEST_P(Ascii85, EncodesGroupsAndTheirRest) { EXPECT_EQ(ascii85(GetParam().data), GetParam().encoded); }

INSTANTIATE_TEST_SUITE_P(Groups, Ascii85,
                         testing::Values(DataCase{"", "~>"}, DataCase{"Man ", "9jqo^~>"},
                                         DataCase{"Man", "9jqo~>"}, DataCase{"Ma", "9jn~>"},
                                         DataCase{"M", "9`~>"}, DataCase{{"\0\0\0\0", 4}, "z~>"},
                                         DataCase{{"\0\0\0", 3}, "!!!!~>"},
                                         DataCase{{"Man \0\0\0\0", 8}, "9jqo^z~>"},
                                         DataCase{"\xFF\xFF\xFF\xFF", "s8W-!~>"}));

TEST_P(Ascii85, IsUndone) { EXPECT_EQ(bytesOfAscii85(GetParam().encoded), GetParam().data); }

TEST(Ascii85, OfAnyLengthIsUndone) {
  std::string data;
  for (int i = 0; i < 300; ++i) {
    EXPECT_EQ(bytesOfAscii85(ascii85(data)), data);
    data += static_cast<char>(i * 37);
  }
}

TEST(Ascii85, BreaksLines) {
  const std::string encoded = ascii85(std::string(200, 'x'));
  EXPECT_EQ(encoded.find('\n'), 80U);
  EXPECT_TRUE(isAscii(encoded));
}

TEST(StreamParts, KeepALineEndThatIsData) {
  EXPECT_EQ(partsOfStream("<</Length 3>>stream\nab\nendstream")->data, "ab\n");
  EXPECT_EQ(partsOfStream("<</Length 2>>stream\nab\nendstream")->data, "ab");
  EXPECT_EQ(partsOfStream("<</Length 99>>stream\nab\nendstream")->data, "ab");
  EXPECT_EQ(partsOfStream("<</Length 9 0 R>>stream\nab\nendstream")->data, "ab");
}

TEST(StreamParts, AreEntriesAndDataOfTheLengthTold) {
  const auto parts = partsOfStream("<</Type/X/Length 3/Filter/A>>\r\nstream\r\nabcdef\r\nendstream\r\n");
  ASSERT_TRUE(parts);
  EXPECT_EQ(parts->entries, "/Type /X/Filter /A");
  EXPECT_EQ(parts->data, "abc");
}

TEST(StreamParts, EndAtTheEndWordWhenTheLengthIsNoNumberThatFits) {
  for (const char* length : {"9 0 R", "99", "-1"}) {
    const std::string body = std::string("<</Length ") + length + ">>stream\nabcdef\nendstream";
    const auto parts = partsOfStream(body);
    ASSERT_TRUE(parts);
    EXPECT_EQ(parts->data, "abcdef") << length;
  }
}

TEST(StreamParts, ComeBackWholeWhereWhiteSpaceBeginsTheData) {
  // The bytes behind "\0 " are encoded, and as many more as the white space has.
  const std::string body = std::string("<</Length 9/Filter  [/ASCII85Decode/A ]/N 1>>stream\r\n") +
                           std::string("\0 ", 2) + ascii85("abcd\r\n") + "dstream";
  const auto parts = partsOfStream(body);
  ASSERT_TRUE(parts);
  EXPECT_EQ(parts->data, std::string("\0 abcd", 6));
  EXPECT_EQ(parts->entries, "/N 1/Filter[/A]");
}

TEST(StreamParts, AreNoneOfOtherObjects) {
  for (const char* body : {"", "[1 2]", "<</Length 3>>", "(endstream)", "<</Length 3>>stream\nabc"})
    EXPECT_FALSE(partsOfStream(body)) << body;
}

struct EntriesCase {
  std::string_view before;
  std::string_view after;
};
class FilterInFront : public testing::TestWithParam<EntriesCase> {};

TEST_P(FilterInFront, KeepsParametersInStep) { EXPECT_EQ(withAscii85(GetParam().before), GetParam().after); }

TEST(OneMoreFilter, MayHaveParametersOfItsOwn) {
  EXPECT_EQ(withFilter("/N 1", "/F", "<</P 1>>"), "/N 1/Filter[/F]/DecodeParms[<</P 1>>]");
  EXPECT_EQ(withFilter("/Filter/A", "/F", "<</P 1>>"), "/Filter[/F /A]/DecodeParms[<</P 1>> null]");
}

INSTANTIATE_TEST_SUITE_P(
    Entries, FilterInFront,
    testing::Values(EntriesCase{"", "/Filter[/ASCII85Decode]"},
                    EntriesCase{"/N 1/Filter/FlateDecode", "/N 1/Filter[/ASCII85Decode /FlateDecode]"},
                    EntriesCase{"/Filter[/A/B]/DecodeParms[null<</P 1>>]",
                                "/Filter[/ASCII85Decode /A /B]/DecodeParms[null null <</P 1>>]"},
                    EntriesCase{"/Filter/A/DecodeParms<</P 1>>/N 1",
                                "/N 1/Filter[/ASCII85Decode /A]/DecodeParms[null <</P 1>>]"}));

class ParametersInStep : public testing::TestWithParam<EntriesCase> {};

TEST_P(ParametersInStep, AreAddedInFront) {
  EXPECT_EQ(withParametersInStep(GetParam().before), GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(
    Entries, ParametersInStep,
    testing::Values(EntriesCase{"/Filter  [/ASCII85Decode/A ]/DecodeParms<</P 1>>",
                                "/Filter[/ASCII85Decode /A]/DecodeParms[null <</P 1>>]"},
                    EntriesCase{"/Filter  [/ASCII85Decode/A /B ]/DecodeParms[null <</P 1>>]",
                                "/Filter[/ASCII85Decode /A /B]/DecodeParms[null null <</P 1>>]"},
                    EntriesCase{"/Filter[/ASCII85Decode/A]/DecodeParms[null <</P 1>>]",
                                "/Filter[/ASCII85Decode/A]/DecodeParms[null <</P 1>>]"},
                    EntriesCase{"/Filter[/A/B]/DecodeParms[<</P 1>>]", "/Filter[/A/B]/DecodeParms[<</P 1>>]"},
                    EntriesCase{"/Filter/A/DecodeParms<</P 1>>", "/Filter/A/DecodeParms<</P 1>>"},
                    EntriesCase{"/N 1", "/N 1"}));

}  // namespace
}  // namespace TesselHost
