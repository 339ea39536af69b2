#include <gtest/gtest.h>

#include <string>

#include "TesselPage/tessel_page.h"

using namespace TESSEL;
using namespace std::string_literals;

namespace {

struct StringRow {
  std::string in;
  std::string out;
  bool balanced;
};

class EscapedString : public testing::TestWithParam<StringRow> {};

TEST_P(EscapedString, IsUndone) {
  std::string out;
  EXPECT_EQ(CTesselPage::unescapeStringObj(GetParam().in, out), GetParam().balanced);
  EXPECT_EQ(out, GetParam().out);
}

INSTANTIATE_TEST_SUITE_P(Plain, EscapedString,
                         testing::Values(StringRow{"", "", true}, StringRow{"abc", "abc", true},
                                         StringRow{"a\0b"s, "a\0b"s, true}, StringRow{"\n", "\n", true}));
INSTANTIATE_TEST_SUITE_P(Parentheses, EscapedString,
                         testing::Values(StringRow{"(a)", "(a)", true},
                                         StringRow{"a(b(c))d", "a(b(c))d", true}, StringRow{"(", "(", false},
                                         StringRow{")", ")", false}, StringRow{")(", ")(", true},
                                         StringRow{"\\(", "(", true}, StringRow{"\\)", ")", true},
                                         StringRow{"(\\)", "()", false}));
INSTANTIATE_TEST_SUITE_P(LineEnds, EscapedString,
                         testing::Values(StringRow{"a\rb", "a\nb", true}, StringRow{"a\r\nb", "a\nb", true},
                                         StringRow{"a\r\rb", "a\n\nb", true},
                                         StringRow{"a\n\rb", "a\n\nb", true}, StringRow{"a\r", "a\n", true},
                                         StringRow{"a\\\nb", "a\nb", true},
                                         StringRow{"a\\\r\nb", "a\nb", true},
                                         StringRow{"a\\\rb", "a\nb", true}));
INSTANTIATE_TEST_SUITE_P(Letters, EscapedString,
                         testing::Values(StringRow{"\\b", "\b", true}, StringRow{"\\f", "\f", true},
                                         StringRow{"\\n", "\n", true}, StringRow{"\\r", "\r", true},
                                         StringRow{"\\t", "\t", true}, StringRow{"\\\\", "\\", true},
                                         StringRow{"\\\\n", "\\n", true}, StringRow{"\\x", "x", true},
                                         StringRow{"ab\\", "ab", true}, StringRow{"\\", "", true}));
INSTANTIATE_TEST_SUITE_P(Octals, EscapedString,
                         testing::Values(StringRow{"a\\053b(", "a+b(", false},
                                         StringRow{"\\0533", "+3", true}, StringRow{"\\53x", "+x", true},
                                         StringRow{"\\5", "\5", true}, StringRow{"\\18", "\0018", true},
                                         StringRow{"\\8", "8", true}, StringRow{"\\777", "\377", true},
                                         StringRow{"\\400", "\0"s, true}, StringRow{"\\050", "(", true}));

TEST(Unescape, StringsAreAppended) {
  std::string out = "before ";
  EXPECT_TRUE(CTesselPage::unescapeStringObj("\\101", out));
  EXPECT_TRUE(CTesselPage::unescapeStringObj("", out));
  EXPECT_EQ(out, "before A");
}

struct NameRow {
  const char* in;
  const char* out;
};

class EscapedName : public testing::TestWithParam<NameRow> {};

TEST_P(EscapedName, IsUndone) {
  std::string out;
  EXPECT_TRUE(CTesselPage::unescapeNameObj(GetParam().in, out));
  EXPECT_EQ(out, GetParam().out);
}

INSTANTIATE_TEST_SUITE_P(Names, EscapedName,
                         testing::Values(NameRow{"", ""}, NameRow{"/Name", "/Name"},
                                         NameRow{"A#20B#2", "A B"}, NameRow{"#41", "A"},
                                         NameRow{"#4a#4A#4f", "JJO"}, NameRow{"x#", "x"}, NameRow{"x#4", "x"},
                                         NameRow{"#4g", "P"}, NameRow{"#411", "A1"},
                                         NameRow{"a\\b", "a\\b"}));

TEST(Unescape, NamesAreAppended) {
  std::string out = "/";
  EXPECT_TRUE(CTesselPage::unescapeNameObj("A#42", out));
  EXPECT_EQ(out, "/AB");
}

class EscapedFile : public testing::TestWithParam<NameRow> {};

TEST_P(EscapedFile, IsUndone) {
  std::string out;
  EXPECT_TRUE(CTesselPage::unescapeFilseSpecification(GetParam().in, out));
  EXPECT_EQ(out, GetParam().out);
}

INSTANTIATE_TEST_SUITE_P(Files, EscapedFile,
                         testing::Values(NameRow{"", ""}, NameRow{"a/b", "a/b"}, NameRow{"a\\/b", "a/b"},
                                         NameRow{"a\\/b\\/c", "a/b/c"}, NameRow{"\\/a", "/a"},
                                         NameRow{"a\\/", "a/"}, NameRow{"\\/\\/", "//"},
                                         NameRow{"a\\b", "a\\b"}, NameRow{"a\\\\/b", "a\\/b"},
                                         NameRow{"a\\", "a\\"}));

TEST(Unescape, FileNamesAreAppended) {
  std::string out = "c:";
  EXPECT_TRUE(CTesselPage::unescapeFilseSpecification("\\/d", out));
  EXPECT_EQ(out, "c:/d");
}

}  // namespace
