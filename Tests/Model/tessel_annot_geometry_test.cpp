#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "TesselPage/Model/tessel_annot.h"

using namespace TESSEL;
using testing::ElementsAre;

namespace TESSEL {
void PrintTo(const RectTD& r, std::ostream* out) {
  *out << '[' << r.left << ' ' << r.bottom << ' ' << r.right << ' ' << r.top << ']';
}
void PrintTo(const PointTD& p, std::ostream* out) { *out << '(' << p.x << ' ' << p.y << ')'; }
}  // namespace TESSEL

namespace {

// Placements of a page of 200 by 300 points: each puts it back into the first quadrant.
constexpr PgCmTD upright{1, 0, 0, 1, 0, 0};
constexpr PgCmTD left90{0, 1, -1, 0, 300, 0};
constexpr PgCmTD turned180{-1, 0, 0, -1, 200, 300};
constexpr PgCmTD left270{0, -1, 1, 0, 0, 200};
constexpr PgCmTD mirrored{-1, 0, 0, 1, 200, 0};
constexpr PgCmTD halved{0.5F, 0, 0, 0.5F, 10, 20};

struct PlacementCase {
  const char* name;
  PgCmTD cm;
  RectTD placed;    ///< [10 20 110 70], sorted
  RectTD unsorted;  ///< the same as a line
};

void PrintTo(const PlacementCase& c, std::ostream* out) { *out << c.name; }

class Placement : public testing::TestWithParam<PlacementCase> {};

TEST_P(Placement, MovesARectangle) {
  EXPECT_EQ(CAnnot::TransRect({10, 20, 110, 70}, GetParam().cm, true), GetParam().placed);
}

TEST_P(Placement, MovesALineWithItsDirection) {
  EXPECT_EQ(CAnnot::TransRect({10, 20, 110, 70}, GetParam().cm, false), GetParam().unsorted);
}

TEST_P(Placement, MovesPointsAsItMovesCorners) {
  const RectTD& line = GetParam().unsorted;
  EXPECT_THAT(CAnnot::TransVertices(VerticesTD({10, 20, 110, 70}), GetParam().cm),
              ElementsAre(PointTD{line.left, line.bottom}, PointTD{line.right, line.top}));
}

INSTANTIATE_TEST_SUITE_P(
    Placements, Placement,
    testing::Values(PlacementCase{"upright", upright, {10, 20, 110, 70}, {10, 20, 110, 70}},
                    PlacementCase{"left90", left90, {230, 10, 280, 110}, {280, 10, 230, 110}},
                    PlacementCase{"turned180", turned180, {90, 230, 190, 280}, {190, 280, 90, 230}},
                    PlacementCase{"left270", left270, {20, 90, 70, 190}, {20, 190, 70, 90}},
                    PlacementCase{"mirrored", mirrored, {90, 20, 190, 70}, {190, 20, 90, 70}},
                    PlacementCase{"halved", halved, {15, 30, 65, 55}, {15, 30, 65, 55}}));

TEST(TransRect, TakesWhatIsNearZeroForZero) {
  const PgCmTD nearly{1, 0, 0, 1, 0.00003F, -0.00003F};
  EXPECT_EQ(CAnnot::TransRect({0, 0, 0, 0}, nearly, true), (RectTD{0, 0, 0, 0}));
  EXPECT_EQ(CAnnot::TransRect({0, 0, 0, 0}, {1, 0, 0, 1, 0.0001F, -0.0002F}, false),
            (RectTD{0.0001F, -0.0002F, 0.0001F, -0.0002F}));
}

TEST(TransPoint, RoundsNothing) {
  const PgCmTD nearly{1, 0, 0, 1, 0.00003F, -0.00003F};
  EXPECT_EQ(CAnnot::TransPoint({0, 0}, nearly), (PointTD{0.00003F, -0.00003F}));
}

TEST(TransVertices, KeepsTheOrder) {
  EXPECT_THAT(CAnnot::TransVertices(VerticesTD({1, 2, 3, 4, 5, 6}), {2, 0, 0, 3, 100, 200}),
              ElementsAre(PointTD{102, 206}, PointTD{106, 212}, PointTD{110, 218}));
}

// Rectangle [10 20 40 100], 30 wide and 80 high.
struct RestoreCase {
  int rotation;
  RectTD restored;
};

class Restore : public testing::TestWithParam<RestoreCase> {};

TEST_P(Restore, TurnsTheRectangleAroundItsCorner) {
  RectTD out;
  CAnnot::RestoreRect({10, 20, 40, 100}, GetParam().rotation, out);
  EXPECT_EQ(out, GetParam().restored);
}

INSTANTIATE_TEST_SUITE_P(
    Rotations, Restore,
    testing::Values(RestoreCase{0, {10, 20, 40, 100}}, RestoreCase{89, {10, 20, 40, 100}},
                    RestoreCase{90, {10, 100, 90, 130}}, RestoreCase{180, {-20, 100, 10, 180}},
                    RestoreCase{270, {-70, 70, 10, 100}}, RestoreCase{360, {10, 20, 40, 100}},
                    RestoreCase{450, {10, 100, 90, 130}}, RestoreCase{-90, {10, 20, 40, 100}},
                    RestoreCase{-270, {10, 20, 40, 100}}));

TEST(Restore, MayWriteIntoWhatItReads) {
  RectTD rect{10, 20, 40, 100};
  CAnnot::RestoreRect(rect, 90, rect);
  EXPECT_EQ(rect, (RectTD{10, 100, 90, 130}));
}

struct CmCase {
  PgCmTD cm;
  const char* text;
};

class OutputCm : public testing::TestWithParam<CmCase> {};

TEST_P(OutputCm, LeavesTheTranslationOut) {
  std::string text = "q ";
  CAnnot::outputCm(text, GetParam().cm);
  EXPECT_EQ(text, std::string("q ") + GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, OutputCm,
    testing::Values(CmCase{{1, 0, 0, 1, 50, 60}, "1 0 0 1 0 0  cm "},
                    CmCase{{0.5F, 0.25F, -0.125F, 10, 0, 0}, "0.5 0.25 -0.125 10 0 0  cm "},
                    CmCase{{0.00001F, 0.00002F, 0.123456F, 100, 0, 0}, "0 0.00002 0.12346 100 0 0  cm "}));

TEST(Vertices, PairUpNumbersAndKeepALoneOne) {
  EXPECT_THAT(VerticesTD({1, 2, 3}), ElementsAre(PointTD{1, 2}, PointTD{3, 0}));
}

}  // namespace
