#include "TesselHost/host_paper.h"

#include <gtest/gtest.h>

#include <cmath>

namespace TesselHost {
namespace {

struct PaperCase {
  const char* text;
  Paper::Kind kind;
  double width;  ///< rounded to a tenth of a point
  double height;
};
class PaperText : public testing::TestWithParam<PaperCase> {};

double tenths(double value) { return std::round(value * 10) / 10; }

TEST_P(PaperText, NamesKindAndSize) {
  const auto paper = Paper::parse(GetParam().text);
  ASSERT_TRUE(paper);
  EXPECT_EQ(paper->kind, GetParam().kind);
  EXPECT_EQ(tenths(paper->size.width), GetParam().width);
  EXPECT_EQ(tenths(paper->size.height), GetParam().height);
}

INSTANTIATE_TEST_SUITE_P(Papers, PaperText,
                         testing::Values(PaperCase{"auto", Paper::Kind::fitted, 0, 0},
                                         PaperCase{"A4", Paper::Kind::turnable, 595.3, 841.9},
                                         PaperCase{"a4", Paper::Kind::turnable, 595.3, 841.9},
                                         PaperCase{"A3", Paper::Kind::turnable, 841.9, 1190.6},
                                         PaperCase{"A5", Paper::Kind::turnable, 419.5, 595.3},
                                         PaperCase{"Letter", Paper::Kind::turnable, 612, 792},
                                         PaperCase{"legal", Paper::Kind::turnable, 612, 1008},
                                         PaperCase{"A4-portrait", Paper::Kind::fixed, 595.3, 841.9},
                                         PaperCase{"A4-landscape", Paper::Kind::fixed, 841.9, 595.3},
                                         PaperCase{"210x297mm", Paper::Kind::fixed, 595.3, 841.9},
                                         PaperCase{"300x200pt", Paper::Kind::fixed, 300, 200},
                                         PaperCase{"300.5x200", Paper::Kind::fixed, 300.5, 200},
                                         PaperCase{"8.5x11in", Paper::Kind::fixed, 612, 792}));

TEST(PaperText, RefusesWhatIsNoPaper) {
  for (const char* text : {"", "A9", "A4-across", "x", "210x", "x297mm", "210mmx297mm", "-1x5mm", "0x100pt",
                           "2x2pt", "99999x99999mm", "210x297px"})
    EXPECT_FALSE(Paper::parse(text)) << text;
}

TEST(PaperName, IsFoundWithinAPoint) {
  EXPECT_EQ(paperNameOf({595, 842}), "A4");
  EXPECT_EQ(paperNameOf({841.9, 595.3}), "A4 landscape");
  EXPECT_EQ(paperNameOf({612, 792}), "Letter");
  EXPECT_EQ(paperNameOf({500, 500}), "");
}

}  // namespace
}  // namespace TesselHost
