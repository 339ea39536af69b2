#include "TesselHost/host_dictionary.h"

#include <gtest/gtest.h>

#include <string>

namespace TesselHost {
namespace {

struct ValueCase {
  std::string_view text;
  std::string_view value;
};
class ValueAt : public testing::TestWithParam<ValueCase> {};

TEST_P(ValueAt, TakesOneWholeValue) { EXPECT_EQ(valueAt(GetParam().text), GetParam().value); }

INSTANTIATE_TEST_SUITE_P(
    Values, ValueAt,
    testing::Values(ValueCase{"12 0 R/Next", "12 0 R"}, ValueCase{"12 0", "12"}, ValueCase{"12 13 14", "12"},
                    ValueCase{" \r\n<</A<</B 1>>>> rest", "<</A<</B 1>>>>"}, ValueCase{"[1[2]3]4", "[1[2]3]"},
                    ValueCase{"(a(b)\\)c)d", "(a(b)\\)c)"}, ValueCase{"<48 65>/X", "<48 65>"},
                    ValueCase{"/Name/Other", "/Name"}, ValueCase{"true>>", "true"},
                    ValueCase{"-1.5]", "-1.5"}, ValueCase{"% remark\n7", "7"},
                    ValueCase{"<</A(>>)/B[(])]>>x", "<</A(>>)/B[(])]>>"},
                    ValueCase{"<</A 1 % >>\n>>x", "<</A 1 % >>\n>>"}));

INSTANTIATE_TEST_SUITE_P(NoValues, ValueAt,
                         testing::Values(ValueCase{"", ""}, ValueCase{"  ", ""}, ValueCase{">>", ""},
                                         ValueCase{"]", ""}, ValueCase{"<</A 1", ""}, ValueCase{"[1 2", ""},
                                         ValueCase{"(abc", ""}, ValueCase{"<48", ""},
                                         ValueCase{"<</A(", ""}));

TEST(ValueOfKey, LooksOnlyAtTheOuterDictionary) {
  const std::string text = "\n<</Type/Page/Resources<</Group 1 0 R>>/Group<</S/Transparency>>>>\nendobj";
  EXPECT_EQ(valueOfKey(text, "/Group"), "<</S/Transparency>>");
  EXPECT_EQ(valueOfKey(text, "/S"), "");
}

TEST(ValueOfKey, IsNotMisledByStringsAndLikeNames) {
  EXPECT_EQ(valueOfKey("<</T(/Group 1)/GroupX 2/Group 3 0 R>>", "/Group"), "3 0 R");
  EXPECT_EQ(valueOfKey("<</K/Group/Group 5>>", "/Group"), "5");
}

TEST(ValueOfKey, IsEmptyWhenTheDictionaryBreaksOff) {
  for (const char* text : {"", "12", "<<", "<</Group", "<</Group>>", "<</A(", "<</A[1 2/Group 3>>"})
    EXPECT_EQ(valueOfKey(text, "/Group"), "") << text;
}

TEST(ValueOfKey, TakesDeepNestingWithoutRecursion) {
  const std::string deep(1'000'000, '[');
  EXPECT_EQ(valueOfKey("<</A " + deep + "/Group 1>>", "/Group"), "");
}

TEST(InsideOf, TakesTheBracketsOff) {
  EXPECT_EQ(insideOf("<</A 1>>"), "/A 1");
  EXPECT_EQ(insideOf("<<>>"), "");
  EXPECT_EQ(insideOf("[1]"), "");
}

}  // namespace
}  // namespace TesselHost
