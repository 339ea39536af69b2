#include "TesselHost/host_layout.h"

#include <gtest/gtest.h>

namespace TesselHost {
namespace {

TEST(Grid, IsColumnsTimesRows) {
  EXPECT_EQ(Grid::parse("2x3"), (Grid{2, 3}));
  EXPECT_EQ(Grid::parse("100x1"), (Grid{100, 1}));
}

TEST(Grid, RefusesWhatIsNoGrid) {
  for (const char* text : {"", "2", "x", "2x", "x2", "0x1", "1x101", "2X2", "2x2x2", "-1x2", "1.5x2"})
    EXPECT_FALSE(Grid::parse(text)) << text;
}

TEST(Cells, GoFromLeftToRightAndFromTopToBottom) {
  const Size sheet{200, 300};
  const Grid grid{2, 3};
  EXPECT_EQ(cellOf(sheet, grid, {}, 0), (Rect{0, 200, 100, 100}));
  EXPECT_EQ(cellOf(sheet, grid, {}, 1), (Rect{100, 200, 100, 100}));
  EXPECT_EQ(cellOf(sheet, grid, {}, 2), (Rect{0, 100, 100, 100}));
  EXPECT_EQ(cellOf(sheet, grid, {}, 5), (Rect{100, 0, 100, 100}));
}

TEST(Cells, LeaveMarginAroundAndGutterBetween) {
  const Spacing spacing{10, 20};
  EXPECT_EQ(cellOf({240, 140}, {2, 2}, spacing, 0), (Rect{10, 80, 100, 50}));
  EXPECT_EQ(cellOf({240, 140}, {2, 2}, spacing, 3), (Rect{130, 10, 100, 50}));
}

TEST(Cells, OfASheetAroundThemHaveTheirSizeBack) {
  const Spacing spacing{7, 3};
  const Grid grid{3, 2};
  const Size sheet = sheetAround({100, 50}, grid, spacing);
  EXPECT_EQ(sheet, (Size{320, 117}));
  EXPECT_EQ(cellOf(sheet, grid, spacing, 0), (Rect{7, 60, 100, 50}));
}

TEST(Fit, ScalesDownAndCentres) {
  EXPECT_EQ(fitInto({200, 100}, {10, 20, 100, 100}), (Affine{0.5, 0, 0, 0.5, 10, 45}));
}

TEST(Fit, ScalesUpToo) { EXPECT_EQ(fitInto({10, 20}, {0, 0, 100, 100}), (Affine{5, 0, 0, 5, 25, 0})); }

TEST(Fit, OfThePageItselfChangesNothing) { EXPECT_EQ(fitInto({612, 792}, {0, 0, 612, 792}), Affine{}); }

struct Point {
  double x;
  double y;
  friend bool operator==(const Point&, const Point&) = default;
};
Point moved(const Affine& m, Point p) { return {m.a * p.x + m.c * p.y + m.e, m.b * p.x + m.d * p.y + m.f}; }

// A box from (10, 20) to (110, 220). Where its own lower left and upper right corner come to lie.
struct UprightCase {
  int quarterTurns;
  Point lowerLeft;
  Point upperRight;
};
class Upright : public testing::TestWithParam<UprightCase> {};

TEST_P(Upright, BringsTheTurnedBoxToTheOrigin) {
  const Affine m = upright({10, 20, 100, 200}, GetParam().quarterTurns);
  EXPECT_EQ(moved(m, {10, 20}), GetParam().lowerLeft);
  EXPECT_EQ(moved(m, {110, 220}), GetParam().upperRight);
}

// Turned clockwise once, the lower left corner is the upper left one of a box 200 wide and 100 high.
INSTANTIATE_TEST_SUITE_P(Turns, Upright,
                         testing::Values(UprightCase{0, {0, 0}, {100, 200}},
                                         UprightCase{1, {0, 100}, {200, 0}},
                                         UprightCase{2, {100, 200}, {0, 0}},
                                         UprightCase{3, {200, 0}, {0, 100}}));

TEST(QuarterTurns, AreCountedClockwiseFrom0To3) {
  EXPECT_EQ(quarterTurnsOf(0), 0);
  EXPECT_EQ(quarterTurnsOf(90), 1);
  EXPECT_EQ(quarterTurnsOf(-90), 3);
  EXPECT_EQ(quarterTurnsOf(450), 1);
  EXPECT_EQ(quarterTurnsOf(-720), 0);
  EXPECT_EQ(quarterTurnsOf(45), 0);
}

}  // namespace
}  // namespace TesselHost
