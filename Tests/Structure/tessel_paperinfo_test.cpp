#include "TesselPage/Structure/tessel_paperinfo.h"

#include <gtest/gtest.h>

#include "TesselPage/Writer/tessel_destfile.h"
#include "Tests/Structure/raw_source.h"

namespace {

using TESSEL::CPaperInfo;
using tessel_test::RawSource;

TEST(PaperInfo, WritesARectangleAsAnArray) {
  TESSEL::CDestFile dest;
  CPaperInfo::WriteRect(dest, {0, -10.5F, 612, 1234567});
  EXPECT_EQ(std::string(dest), " [0 -10.5 612 1.23457e+06 ] ");
}

TEST(PaperInfo, ReadsARotation) {
  RawSource source(" -90 ");
  CPaperInfo paper;
  EXPECT_TRUE(paper.ReadRotate(*source));
  EXPECT_EQ(paper.rotation, -90);
}

TEST(PaperInfo, ARotationThatFailsTheStreamIsToldSo) {
  CPaperInfo paper;
  RawSource name("/Name ");
  EXPECT_FALSE(paper.ReadRotate(*name));
  RawSource end("90");
  EXPECT_FALSE(paper.ReadRotate(*end));
  EXPECT_EQ(paper.rotation, 90);
}

}  // namespace
