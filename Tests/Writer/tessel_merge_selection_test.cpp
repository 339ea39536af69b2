#include <gtest/gtest.h>

#include <string>

#include "Tests/Writer/merge_verbs.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

constexpr int badSelection = 1006;

struct SelectionCase {
  const char* text;
  Selection expected;
};

class AcceptedSelection : public testing::TestWithParam<SelectionCase> {};

TEST_P(AcceptedSelection, GivesItsPagesInOrder) {
  Merge merge;
  EXPECT_EQ(merge.select(GetParam().text), 0);
  EXPECT_EQ(merge.dest.pageSelection, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, AcceptedSelection,
    testing::Values(
        // single pages
        SelectionCase{"1:2", {{1, 2}}}, SelectionCase{"2:3", {{2, 3}}},
        SelectionCase{"1:1,3", {{1, 1}, {1, 3}}}, SelectionCase{"1:3,1,3", {{1, 3}, {1, 1}, {1, 3}}},
        SelectionCase{" 1:2 ", {{1, 2}}}, SelectionCase{"01:02", {{1, 2}}},
        // ranges
        SelectionCase{"1:1~3", {{1, 1}, {1, 2}, {1, 3}}}, SelectionCase{"1:1-3", {{1, 1}, {1, 2}, {1, 3}}},
        SelectionCase{"1:2~3", {{1, 2}, {1, 3}}}, SelectionCase{"1:1~2~3", {{1, 1}, {1, 2}, {1, 3}}},
        SelectionCase{"1:3,1~2", {{1, 3}, {1, 1}, {1, 2}}},
        SelectionCase{"1:1~2,1~2", {{1, 1}, {1, 2}, {1, 1}, {1, 2}}},
        // several files
        SelectionCase{"1:2 2:1", {{1, 2}, {2, 1}}}, SelectionCase{"2:1 1:2 2:3", {{2, 1}, {1, 2}, {2, 3}}},
        SelectionCase{"1:2~3 2:1-2", {{1, 2}, {1, 3}, {2, 1}, {2, 2}}},
        SelectionCase{"1:1,3 2:3,1~2", {{1, 1}, {1, 3}, {2, 3}, {2, 1}, {2, 2}}},
        // all pages
        SelectionCase{"0:0", {{0, 0}}}, SelectionCase{"1:0", {{1, 0}}},
        SelectionCase{"1:0 2:1", {{1, 0}, {2, 1}}}, SelectionCase{"1:2,0", {{1, 2}, {1, 0}}},
        SelectionCase{"1:0~2", {{1, 0}, {1, 1}, {1, 2}}},
        // unknown files and pages are left out
        SelectionCase{"1:4 2:1", {{2, 1}}}, SelectionCase{"3:1 2:1", {{2, 1}}},
        SelectionCase{"1:4,2", {{1, 2}}}, SelectionCase{"1:1,4,2", {{1, 1}, {1, 2}}},
        SelectionCase{"3:1,2 1:1", {{1, 1}}}, SelectionCase{",2 1:1", {{1, 1}}}));

class RefusedSelection : public testing::TestWithParam<const char*> {};

TEST_P(RefusedSelection, Is1006) {
  Merge merge;
  EXPECT_EQ(merge.select(GetParam()), badSelection);
}

INSTANTIATE_TEST_SUITE_P(Texts, RefusedSelection,
                         testing::Values(
                             // nothing selected
                             "", " ", "1", "2 1", "abc", ",", ",2", "1:4", "3:1", "3:0",
                             // all pages of all files is the only page of file 0
                             "0:1", "0:3", "0:-1",
                             // no number where one is needed
                             "1:", "1:x", "1: ", "ab:0", "xy:1",
                             // negative numbers
                             "1:-1", "1:-5", "1:1,-1", "1:1,-2", "-1:1", " -1:1",
                             // ranges
                             "1:2~1", "1:2-1", "1:2~2", "1:2-2", "1:2~", "1:2~x", "1:2~-1", "1:1~3~2",
                             "1:3,2~1", "1:3~0",
                             // ranges without a file, or of an unknown one
                             "~2", "-2", " ~2", "2~3", "3:1~2", "1:1 3:1~2",
                             // numbers that would wrap round to good ones
                             "4294967297:1", "1:4294967298", "18446744073709551617:1",
                             "1:18446744073709551618", "99999999999999999999999999:1",
                             "1:99999999999999999999999999"));

TEST(Selection, GoodPartsInFrontDoNotSaveABadOne) {
  for (const char* text : {"1:1 2:-1", "1:1 0:1", "1:1~2 2:2~1", "1:1 2:x"}) {
    Merge merge;
    EXPECT_EQ(merge.select(text), badSelection) << text;
  }
}

TEST(Selection, FileNumberStandsBehindTheLastBlank) {
  Merge merge;
  EXPECT_EQ(merge.select("1:3,2:1"), 0);
  EXPECT_EQ(merge.dest.pageSelection, (Selection{{1, 3}, {1, 2}, {1, 1}}));
}

TEST(Selection, OneByteThatIsNoDigitStandsForFileZero) {
  Merge merge;
  EXPECT_EQ(merge.select("x:0"), 0);
  EXPECT_EQ(merge.dest.pageSelection, (Selection{{0, 0}}));
  EXPECT_EQ(merge.select("x:1"), badSelection);
}

TEST(Selection, FurtherPageWithoutANumberIsAllPages) {
  Merge merge;
  EXPECT_EQ(merge.select("1:2,x"), 0);
  EXPECT_EQ(merge.dest.pageSelection, (Selection{{1, 2}, {1, 0}}));
}

TEST(Selection, FurtherPagesOfFileZeroAreTaken) {
  Merge merge;
  EXPECT_EQ(merge.select("0:0,5"), 0);
  EXPECT_EQ(merge.dest.pageSelection, (Selection{{0, 0}, {0, 5}}));
}

TEST(Selection, AllOfNoSourcesIsASelection) {
  CDestFile dest;
  EXPECT_EQ(dest.SetReadFileAndPage("0:0"), 0);
  EXPECT_EQ(dest.SetReadFileAndPage("1:1"), badSelection);
}

class EndlessRange : public testing::TestWithParam<const char*> {};

TEST_P(EndlessRange, ReadsThePagesThatThereAre) {
  Merge merge;
  EXPECT_EQ(merge.select(GetParam()), 0);
  EXPECT_LT(merge.dest.pageSelection.size(), 1000U);
  EXPECT_EQ(merge.dest.Read(), 0);
  EXPECT_FALSE(merge.first->isPageObject(SObj(13, 0)));
  EXPECT_TRUE(merge.first->isPageObject(SObj(14, 0)));
  EXPECT_TRUE(merge.first->isPageObject(SObj(15, 0)));
}

INSTANTIATE_TEST_SUITE_P(Ends, EndlessRange,
                         testing::Values("1:2~4", "1:2~999", "1:2~2147483647", "1:2~2147483648",
                                         "1:2~4294967299", "1:2~18446744073709551619",
                                         "1:2-99999999999999999999999999"));

TEST(Selection, OfAMegabyteIsParsedInOnePass) {
  Merge merge;
  std::string text = "1:1";
  while (text.size() < (1U << 20)) text += ",2";
  EXPECT_EQ(merge.select(text), 0);
  EXPECT_EQ(merge.dest.pageSelection.size(), (text.size() - 1) / 2);
  EXPECT_EQ(merge.select(std::string(1U << 20, '7') + ":1"), badSelection);
  EXPECT_EQ(merge.select("1:" + std::string(1U << 20, '7')), badSelection);
}

}  // namespace
