#include "TesselHost/host_range.h"

#include <gmock/gmock.h>

namespace TesselHost {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<int> pagesOf(std::string_view text, int count) {
  const auto range = PageRange::parse(text);
  return range ? range->pagesOf(count) : std::vector<int>{-1};
}

TEST(PageRange, IsEveryPageWhenNothingIsSaid) { EXPECT_THAT(PageRange().pagesOf(3), ElementsAre(1, 2, 3)); }

TEST(PageRange, TakesPagesAndRunsInTheirOrder) {
  EXPECT_THAT(pagesOf("1-4,7,12-", 14), ElementsAre(1, 2, 3, 4, 7, 12, 13, 14));
  EXPECT_THAT(pagesOf("3,1", 3), ElementsAre(3, 1));
}

TEST(PageRange, MayBeginAtTheFirstPageByItself) { EXPECT_THAT(pagesOf("-2", 5), ElementsAre(1, 2)); }

TEST(PageRange, GoesBackwardsWhenWrittenSo) { EXPECT_THAT(pagesOf("4-2", 5), ElementsAre(4, 3, 2)); }

TEST(PageRange, KeepsRepeats) { EXPECT_THAT(pagesOf("1,1-2", 5), ElementsAre(1, 1, 2)); }

TEST(PageRange, LeavesOutPagesThatTheDocumentDoesNotHave) {
  EXPECT_THAT(pagesOf("2-9,12", 3), ElementsAre(2, 3));
  EXPECT_THAT(pagesOf("9-2", 3), ElementsAre(3, 2));
  EXPECT_THAT(pagesOf("4-", 3), IsEmpty());
  EXPECT_THAT(pagesOf("999999999", 3), IsEmpty());
  EXPECT_THAT(pagesOf("1-999999999", 2), ElementsAre(1, 2));
  EXPECT_THAT(pagesOf("1-", 0), IsEmpty());
}

TEST(PageRange, RefusesWhatIsNoSelection) {
  for (const char* text : {"", ",", "1,", "0", "0-3", "-", "a", "1-2-3", "1 ,2", "--3", "1.5"})
    EXPECT_FALSE(PageRange::parse(text)) << text;
}

}  // namespace
}  // namespace TesselHost
