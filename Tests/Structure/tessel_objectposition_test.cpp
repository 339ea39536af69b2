#include "TesselPage/Structure/tessel_objectposition.h"

#include <gtest/gtest.h>

#include "Tests/Structure/raw_source.h"

namespace {

using TESSEL::CObjectPosition;
using TESSEL::SObj;
using TESSEL::SObjState;
using tessel_test::RawSource;

constexpr long long nowhere = 9223372036854775807;

/// Objects 1 and 2 at 100 and 300, a former place of an object at 200, 3 in an object stream, 4 hybrid, 5
/// free.
struct Positions {
  Positions() : source("") {
    auto& info = source.info();
    info.objEntries[SObj(1, 0)] = {100, 0, 0, 1, 'n'};
    info.objEntries[SObj(2, 0)] = {300, 0, 0, 1, 0};
    info.objEntries[SObj(3, 0)] = {7, 0, 0, 2, 0};
    info.objEntries[SObj(5, 0)] = {250, 0, 0, 0, 'f'};
    info.hybridEntries[SObj(4, 0)] = {150, 0, 0, 1, 0};
    info.filePositions = {200, 100};
  }
  RawSource source;
};

TEST(ObjectPosition, BeginsAtItsOffset) {
  Positions file;
  const CObjectPosition positions(*file.source);
  EXPECT_EQ(positions.getBeginPosition(SObj(1, 0)), 100);
  EXPECT_EQ(positions.getBeginPosition(SObj(1, 1)), nowhere);
  EXPECT_EQ(positions.getBeginPosition(SObj(4, 0)), nowhere);
}

TEST(ObjectPosition, EndsAtTheNextBoundary) {
  Positions file;
  const CObjectPosition positions(*file.source);
  EXPECT_EQ(positions.getEndPosition(SObj(1, 0)), 200);
  EXPECT_EQ(positions.getLength(SObj(1, 0)), 100);
}

TEST(ObjectPosition, TheLastObjectHasNoEnd) {
  Positions file;
  EXPECT_EQ(CObjectPosition(*file.source).getEndPosition(SObj(2, 0)), nowhere);
}

TEST(ObjectPosition, WhatStandsAtNoBoundaryHasNoEnd) {
  Positions file;
  const CObjectPosition positions(*file.source);
  EXPECT_EQ(positions.getEndPosition(SObj(3, 0)), nowhere);
  EXPECT_EQ(positions.getEndPosition(SObj(5, 0)), nowhere);
  EXPECT_EQ(positions.getEndPosition(SObj(4, 0)), nowhere);
  EXPECT_EQ(positions.getLength(SObj(9, 0)), 0);
}

TEST(ObjectPosition, TypesAreThoseOfTheMainTable) {
  Positions file;
  const CObjectPosition positions(*file.source);
  EXPECT_EQ(positions.getObjType(SObj(1, 0)), 1);
  EXPECT_EQ(positions.getObjType(SObj(3, 0)), 2);
  EXPECT_EQ(positions.getObjType(SObj(4, 0)), 0);
  EXPECT_EQ(positions.getObjType(SObj(9, 0)), 0);
}

TEST(ObjectPosition, OfAMemorySourceAnswersForTheFile) {
  Positions file;
  TESSEL::CSourFile memory("text", *file.source);
  const CObjectPosition positions(memory);
  EXPECT_EQ(positions.getEndPosition(SObj(1, 0)), 200);
  EXPECT_TRUE(memory.fileInfo.objectBoundaries.empty());
}

}  // namespace
