#include "TesselHost/host_strings.h"

#include <gtest/gtest.h>

namespace TesselHost {
namespace {

struct TokenCase {
  std::string_view token;
  std::string_view bytes;
};
class StringToken : public testing::TestWithParam<TokenCase> {};

TEST_P(StringToken, StandsForItsBytes) { EXPECT_EQ(bytesOfString(GetParam().token), GetParam().bytes); }

INSTANTIATE_TEST_SUITE_P(Literal, StringToken,
                         testing::Values(TokenCase{"(abc)", "abc"}, TokenCase{"()", ""},
                                         TokenCase{"(a(b)c)", "a(b)c"}, TokenCase{R"((\(\)\\))", R"(()\)"},
                                         TokenCase{R"((\n\r\t\b\f))", "\n\r\t\b\f"},
                                         TokenCase{R"((\101\7x\12345))", "A\7xS45"},
                                         TokenCase{R"((\q))", "q"}, TokenCase{"(a\\\nb\\\r\nc\\\rd)", "abcd"},
                                         TokenCase{"(a\r\nb\rc\nd)", "a\nb\nc\nd"}));

INSTANTIATE_TEST_SUITE_P(Hexadecimal, StringToken,
                         testing::Values(TokenCase{"<48656C>", "Hel"}, TokenCase{"<4 8\n65 6c 7>", "Help"},
                                         TokenCase{"<>", ""}));

std::string doubled(std::string_view bytes) { return std::string(bytes) + std::string(bytes); }

TEST(WithStrings, ChangesStringsAndNothingElse) {
  EXPECT_EQ(withStrings("<</A(x)/B[<41>(%)]/C/Name(%y)>>tail", doubled),
            "<</A<7878>/B[<4141><2525>]/C/Name<25792579>>>tail");
}

TEST(WithStrings, LeavesEmptyStringsAndRemarks) {
  EXPECT_EQ(withStrings("<</A()/B<>% (no string)\n/C 1>>", doubled), "<</A()/B<>% (no string)\n/C 1>>");
}

TEST(WithStrings, LeavesAStringThatIsNotClosed) {
  EXPECT_EQ(withStrings("/A(x)/B(open", doubled), "/A<7878>/B(open");
}

TEST(HexString, HasBracketsAndCapitals) { EXPECT_EQ(hexString(std::string_view("\0\xAB", 2)), "<00AB>"); }

}  // namespace
}  // namespace TesselHost
