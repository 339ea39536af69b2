#include "TesselPage/Interface/tessel_pageinfo.h"

#include "TesselPage/Finder/tessel_valueutility.h"

#include <gtest/gtest.h>

#include <string>

using namespace TESSEL;
using namespace std::string_literals;

namespace {

struct Row {
  const char* text;
  const char* value;
};

class DictionaryText : public testing::TestWithParam<Row> {};
TEST_P(DictionaryText, GivesItsFirstValue) { EXPECT_EQ(getDicStr(GetParam().text), GetParam().value); }

INSTANTIATE_TEST_SUITE_P(Dictionaries, DictionaryText,
                         testing::Values(Row{"<</A 1>>", "<</A 1>>"}, Row{" <</A 1>>/B 2", " <</A 1>>"},
                                         Row{"<</A<</B 1>>/C 2>>/D<<>>", "<</A<</B 1>>/C 2>>"},
                                         Row{"<<>><</A 1>>", "<<>>"},
                                         Row{"<</A 5 0 R/B 6 0 R>>/C", "<</A 5 0 R/B 6 0 R>>"},
                                         Row{"<</A 1", "<</A 1"}));
INSTANTIATE_TEST_SUITE_P(Strings, DictionaryText,
                         testing::Values(Row{"<</A(>>)>>/B", "<</A(>>)>>"}, Row{"<</A(<<)>>/B", "<</A(<<)>>"},
                                         Row{"<</A(x\\)>>)/C 1>>/B", "<</A(x\\)>>)/C 1>>"},
                                         Row{"<</A<3E3E>/C 1>>/B", "<</A<3E3E>/C 1>>"}));
INSTANTIATE_TEST_SUITE_P(References, DictionaryText,
                         testing::Values(Row{" 5 0 R/B", " 5 0 R"}, Row{"5 0 R", "5 0 R"},
                                         Row{"12 3 R>>", "12 3 R"}));
INSTANTIATE_TEST_SUITE_P(Others, DictionaryText,
                         testing::Values(Row{"", ""}, Row{"endobj ", ""}, Row{"/X", "/X"},
                                         Row{"/X endobj <<>>", ""}));

class ArrayText : public testing::TestWithParam<Row> {};
TEST_P(ArrayText, GivesItsFirstArray) { EXPECT_EQ(getArrayStr(GetParam().text), GetParam().value); }

INSTANTIATE_TEST_SUITE_P(Arrays, ArrayText,
                         testing::Values(Row{"[1 2]/B", "[1 2]"}, Row{"[]", "[]"},
                                         Row{"[[1][2]]/B[3]", "[[1][2]]"},
                                         Row{"[5 0 R 6 0 R]>>", "[5 0 R 6 0 R]"},
                                         Row{"[<</A[1]/B 2>>]/C", "[<</A[1]/B 2>>]"}, Row{"[(])]/B", "[(])]"},
                                         Row{"[<</A(>>)>>]/B", "[<</A(>>)>>]"}));
INSTANTIATE_TEST_SUITE_P(Others, ArrayText,
                         testing::Values(Row{"", ""}, Row{"5 0 R/B", ""}, Row{"endobj[1]", ""},
                                         Row{"[1/Dest x", "[1/Dest"}, Row{"[1/Dest 2]/B", "[1/Dest 2]"}));

std::string valueOf(const std::string& text, const std::string& key) {
  return CPageInfo(text).getValueString(key);
}

TEST(PageInfo, AMissingKeyGivesNothing) {
  for (const char* key : {"/P", "Resources", "AcroForm", "Group", "Annots", "Names"})
    EXPECT_EQ(valueOf("<</Other 1>>", key), "") << key;
}

TEST(PageInfo, UnknownKeysGiveNothing) { EXPECT_EQ(valueOf("<</Names<</A 1>>>>", "Names"), ""); }

TEST(PageInfo, DictionariesComeWithTheBlankBeforeThem) {
  for (const char* key : {"Resources", "AcroForm", "Group"}) {
    EXPECT_EQ(valueOf("<</"s + key + "<</A 1>>/B 2>>", key), "<</A 1>>") << key;
    EXPECT_EQ(valueOf("<</"s + key + " <</A 1>>/B 2>>", key), " <</A 1>>") << key;
    EXPECT_EQ(valueOf("<</"s + key + " 5 0 R/B 2>>", key), " 5 0 R") << key;
  }
}

TEST(PageInfo, TheFirstPlaceOfAKeyCounts) {
  EXPECT_EQ(valueOf("<</Group<</A 1>>/X<</Group<</B 2>>>>>>", "Group"), "<</A 1>>");
}

TEST(PageInfo, AnArrayOfAnnotationsIsGiven) {
  EXPECT_EQ(valueOf("<</Annots[5 0 R<</A[1]>>]/B 2>>", "Annots"), "[5 0 R<</A[1]>>]");
  EXPECT_EQ(valueOf("<</Annots 5 0 R/B 2>>", "Annots"), "");
}

TEST(PageInfo, AParentEndsAtTheNextKeyOrBehindTheBracket) {
  EXPECT_EQ(valueOf("<</P 3 0 R/Q[1]>>", "/P"), " 3 0 R");
  EXPECT_EQ(valueOf("<</P[1 2]/Q 1>>", "/P"), "[1 2]");
  EXPECT_EQ(valueOf("<</P[1 2]", "/P"), "[1 2]");
}

TEST(PageInfo, AParentWithNoBracketBehindItGoesOnToTheEnd) {
  EXPECT_EQ(valueOf("<</P 3 0 R/Q 1>>", "/P"), " 3 0 R/Q 1>>");
}

struct StreamRow {
  const char* text;
  long found;
};

class StreamText : public testing::TestWithParam<StreamRow> {};
TEST_P(StreamText, IsRecognised) {
  std::string text = GetParam().text;
  EXPECT_EQ(help_function_MatchStreamObject(text), GetParam().found);
}

INSTANTIATE_TEST_SUITE_P(Texts, StreamText,
                         testing::Values(StreamRow{"", 0},
                                         StreamRow{"<</Length 3>>stream\nabc\nendstream", 1},
                                         StreamRow{"<<>>streamendstream", 1},
                                         StreamRow{"<</A<<>>>> \r\n stream\nendstream more", 1},
                                         StreamRow{"5 0 obj <<>>stream endstream", 1},
                                         StreamRow{"stream endstream", 0}, StreamRow{"<<>>stream abc", 0},
                                         StreamRow{"<<>> x stream endstream", 0}, StreamRow{"<<>>stream", 0},
                                         StreamRow{"<</A 1 stream endstream", 0},
                                         StreamRow{"<<>>x<<>>stream endstream", 1}));

}  // namespace
