#include "TesselHost/host_destinations.h"

#include <gtest/gtest.h>

#include <limits>

namespace TesselHost {
namespace {

using TESSEL::DestTD;

constexpr float none = std::numeric_limits<float>::max();
constexpr Rect visible{0, 0, 200, 100};

/// Style and numbers of a destination on page 1, for object 5.
DestTD wants(int style, float left = 0, float top = 0, float right = 0, float bottom = 0) {
  return {1, 5, 0, style, left, top, right, bottom};
}

struct Case {
  Affine matrix;
  DestTD wanted;
  const char* value;
};
class DestinationOn : public testing::TestWithParam<Case> {};

TEST_P(DestinationOn, GoesThroughThePlacement) {
  EXPECT_EQ(destinationOn({7, GetParam().matrix, visible, false}, GetParam().wanted), GetParam().value);
}

constexpr Affine half{0.5, 0, 0, 0.5, 10, 20};
constexpr Affine quarter{0, -1, 1, 0, 0, 200};
constexpr Affine mirrored{-1, 0, 0, 1, 200, 0};

INSTANTIATE_TEST_SUITE_P(
    Placements, DestinationOn,
    testing::Values(Case{half, wants(1, 100, 50, 2), "[7 0 R/XYZ 60 45 2]"},
                    Case{half, wants(1, none, 50, none), "[7 0 R/XYZ 10 45 null]"},
                    Case{half, wants(1, 100, none, 0), "[7 0 R/XYZ 60 70 0]"},
                    Case{half, wants(2), "[7 0 R/FitR 10 20 110 70]"},
                    Case{half, wants(3, 50), "[7 0 R/FitH 45]"}, Case{half, wants(4, 50), "[7 0 R/FitV 35]"},
                    Case{half, wants(5, 10, 20, 30, 40), "[7 0 R/FitR 15 30 25 40]"},
                    Case{half, wants(6), "[7 0 R/FitR 10 20 110 70]"},
                    Case{half, wants(7, 50), "[7 0 R/FitH 45]"}, Case{half, wants(8, 50), "[7 0 R/FitV 35]"},
                    Case{quarter, wants(1, 30, 40, none), "[7 0 R/XYZ 40 170 null]"},
                    Case{quarter, wants(3, 40), "[7 0 R/FitV 40]"},
                    Case{quarter, wants(4, 30), "[7 0 R/FitH 170]"},
                    Case{quarter, wants(5, 10, 20, 30, 40), "[7 0 R/FitR 20 170 40 190]"},
                    Case{mirrored, wants(1, 30, 40, 1.5F), "[7 0 R/XYZ 170 40 1.5]"},
                    Case{mirrored, wants(5, 10, 20, 30, 40), "[7 0 R/FitR 170 20 190 40]"}));

TEST(Destinations, OnASheetOfItsOwnAPageKeepsWhatALinkLeavesOpen) {
  const PagePlace place{7, {}, visible, true};
  EXPECT_EQ(destinationOn(place, wants(1, none, 40, none)), "[7 0 R/XYZ null 40 null]");
  EXPECT_EQ(destinationOn(place, wants(2)), "[7 0 R/Fit]");
  EXPECT_EQ(destinationOn(place, wants(6)), "[7 0 R/FitB]");
  EXPECT_EQ(destinationOn(place, wants(7, 9)), "[7 0 R/FitBH 9]");
  EXPECT_EQ(destinationOn({7, quarter, visible, true}, wants(1, none, 40, none)), "[7 0 R/XYZ 40 null null]");
}

TEST(Destinations, ThatAreNotPlacedAreNullAndCounted) {
  MemorySink sink;
  ObjectWriter writer(sink, {});
  writer.reserveThrough(6);
  Destinations destinations;
  destinations.notePlace(2, {7, {}, visible, true});
  destinations.notePlace(2, {8, {}, visible, true});  // the first place counts
  destinations.noteWanted({{1, 4, 0, 2}, {2, 5, 0, 2}, {0, 6, 0, 2}});
  EXPECT_EQ(destinations.write(writer), 1);
  EXPECT_NE(sink.text.find("4 0 obj\nnull\nendobj"), std::string::npos);
  EXPECT_NE(sink.text.find("5 0 obj\n[7 0 R/Fit]\nendobj"), std::string::npos);
  EXPECT_NE(sink.text.find("6 0 obj\nnull\nendobj"), std::string::npos);
}

}  // namespace
}  // namespace TesselHost
