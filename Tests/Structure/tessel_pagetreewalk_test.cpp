#include "TesselPage/Structure/tessel_pagetreewalk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TesselPage/Model/tessel_catalog.h"
#include "Tests/Support/pdf_builder.h"

namespace {

using TESSEL::PageTreeWalk;
using TESSEL::SObj;
using tessel_test::numbers;
using tessel_test::pdf;
using testing::ElementsAre;

constexpr const char* page = "<</Type/Page>>";

std::string pages(const std::string& kids) { return "<</Type/Pages/Kids[" + kids + "]>>"; }

TEST(PageTreeWalk, NestedNodesKeepDocumentOrder) {
  const auto source = pdf()
                          .pageTree({9, 3, 8})
                          .object(9, pages("7 0 R 5 0 R"))
                          .object(5, pages("6 0 R"))
                          .object(3, page)
                          .object(6, page)
                          .object(7, page)
                          .object(8, page)
                          .open();
  EXPECT_EQ(source.result, 0);
  EXPECT_THAT(numbers(source->pageList), ElementsAre(7, 6, 3, 8));
}

TEST(PageTreeWalk, TheRootMayBeAPage) {
  const auto source = pdf().object(1, "<</Type/Catalog/Pages 2 0 R>>").object(2, page).open();
  EXPECT_EQ(source.result, 0);
  EXPECT_THAT(numbers(source->pageList), ElementsAre(2));
}

TEST(PageTreeWalk, ATreeWithoutPagesOpens) {
  const auto source = pdf().pageTree({}).open();
  EXPECT_EQ(source.result, 0);
  EXPECT_TRUE(source->pageList.empty());
}

TEST(PageTreeWalk, ACountPlaysNoPart) {
  const auto source = pdf().pageTree({3, 4}, "/Count 99").object(3, page).object(4, page).open();
  EXPECT_EQ(source->pageList.size(), 2U);
}

TEST(PageTreeWalk, APageThatOccursTwiceIsListedTwice) {
  const auto source = pdf().pageTree({3, 4, 3}).object(3, page).object(4, pages("3 0 R")).open();
  EXPECT_EQ(source.result, 0);
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3, 3, 3));
  EXPECT_TRUE(source->isPage(SObj(3, 0)));
  EXPECT_FALSE(source->isPage(SObj(4, 0)));
}

TEST(PageTreeWalk, ACycleIsNotEnteredAgain) {
  const auto source = pdf()
                          .pageTree({3, 4, 5})
                          .object(3, page)
                          .object(4, pages("3 0 R 2 0 R 4 0 R 5 0 R"))
                          .object(5, page)
                          .open();
  EXPECT_EQ(source.result, 0);
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3, 3, 5, 5));
}

class UnknownNode : public testing::TestWithParam<const char*> {};

TEST_P(UnknownNode, FailsTheWalkWith1000) {
  const auto source = pdf().pageTree({3, 4}).object(3, page).object(4, GetParam()).open();
  EXPECT_EQ(source.result, 1000);
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3));
}
INSTANTIATE_TEST_SUITE_P(Bodies, UnknownNode,
                         testing::Values("<</Kids[]>>", "<</Type/Template>>", "(a string)", "null"));

TEST(PageTreeWalk, AMissingNodeFailsWith1000) {
  const auto source = pdf().pageTree({3, 44}).object(3, page).open();
  EXPECT_EQ(source.result, 1000);
  source->clear();
  EXPECT_EQ(source->InitOther(), 1000);
}

TEST(PageTreeWalk, UnknownNodesAreSkippedWhenAPasswordIsNeeded) {
  const auto source = pdf().pageTree({3, 4, 5}).object(3, page).object(4, "null").object(5, page).open();
  source->fileInfo.encrypt.accessState = 3;
  EXPECT_EQ(source->CheckAndInit(), 0);
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3, 5));
  EXPECT_EQ(source->InitOther(), 1000);
}

TEST(PageTreeWalk, ANodeThatFailsTheStreamTakesTheNextOnesWithIt) {
  const auto source = pdf().pageTree({3, 44, 5}).object(3, page).object(5, page).open();
  source->clear();
  source->fileInfo.encrypt.accessState = 3;
  EXPECT_EQ(source->CheckAndInit(), 0);
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3));
}

TEST(PageTreeWalk, NodesMayLieInObjectStreams) {
  const auto source = pdf()
                          .object(1, "<</Type/Catalog/Pages 2 0 R>>")
                          .compressed(9, 2, pages("3 0 R 4 0 R"))
                          .compressed(9, 3, page)
                          .object(4, page)
                          .open();
  EXPECT_EQ(source.result, 0);
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3, 4));
}

/// The page list that a walk within the limits gives.
std::size_t pagesWithin(const tessel_test::Source& source, const PageTreeWalk::Limits& limits) {
  source->pageList.clear();
  EXPECT_TRUE(PageTreeWalk(*source, PageTreeWalk::UnknownNode::fail, limits).run(SObj(2, 0)));
  return source->pageList.size();
}

TEST(PageTreeWalk, SharedKidsAreWalkedUpToALimitOfNodes) {
  const auto source = pdf()
                          .pageTree({3, 3, 3, 3})
                          .object(3, pages("4 0 R 4 0 R 4 0 R 4 0 R"))
                          .object(4, pages("5 0 R 5 0 R 5 0 R 5 0 R"))
                          .object(5, page)
                          .open();
  EXPECT_EQ(source->pageList.size(), 64U);
  PageTreeWalk::Limits limits;
  limits.nodes = 20;  // four kids of the root, then 3 with four times 4, of which three have all their kids
  EXPECT_EQ(pagesWithin(source, limits), 12U);
}

TEST(PageTreeWalk, OneLongNodeIsReadAgainUpToALimitOfBytes) {
  const auto source = pdf()
                          .pageTree({3, 3, 3, 3, 3, 3, 3, 3})
                          .object(3, "<</Type/Page/A(" + std::string(1000, 'x') + ")>>")
                          .open();
  EXPECT_EQ(source->pageList.size(), 8U);
  EXPECT_EQ(pagesWithin(source, {100, 3000, 0}), 3U);
}

TEST(PageTreeWalk, ALongNodeInMemoryCountsToo) {
  const auto source = pdf()
                          .pageTree({3, 3, 3, 3, 3, 3, 3, 3})
                          .compressed(9, 3, "<</Type/Page/A(" + std::string(1000, 'x') + ")>>")
                          .open();
  EXPECT_EQ(source->pageList.size(), 8U);
  EXPECT_EQ(pagesWithin(source, {100, 3000, 0}), 3U);
}

TEST(PageTreeWalk, AFlatTreeOfManyPagesCostsOneVisitAPage) {
  auto builder = pdf();
  std::vector<int> kids;
  for (int number = 3; number < 20003; ++number) kids.push_back(number);
  builder.pageTree(kids);
  for (const int number : kids) builder.object(number, page);
  const auto source = builder.open();
  EXPECT_EQ(numbers(source->pageList), kids);
}

}  // namespace
