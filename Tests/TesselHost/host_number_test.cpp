#include "TesselHost/host_number.h"

#include <gtest/gtest.h>

#include <limits>

namespace TesselHost {
namespace {

struct DecimalCase {
  double value;
  const char* text;
};
class Decimal : public testing::TestWithParam<DecimalCase> {};

TEST_P(Decimal, HasNoExponentAndNoZerosAtTheEnd) { EXPECT_EQ(decimal(GetParam().value), GetParam().text); }

INSTANTIATE_TEST_SUITE_P(Values, Decimal,
                         testing::Values(DecimalCase{0, "0"}, DecimalCase{-0.0, "0"},
                                         DecimalCase{-0.000001, "0"}, DecimalCase{1, "1"},
                                         DecimalCase{100, "100"}, DecimalCase{-12.5, "-12.5"},
                                         DecimalCase{595.276, "595.276"}, DecimalCase{0.123456789, "0.12346"},
                                         DecimalCase{1e7, "10000000"},
                                         DecimalCase{std::numeric_limits<double>::infinity(), "0"},
                                         DecimalCase{std::numeric_limits<double>::quiet_NaN(), "0"}));

TEST(Decimal, KeepsTheDecimalsAskedFor) { EXPECT_EQ(decimal(595.2756, 3), "595.276"); }

TEST(Unblurred, GivesBackTheDecimalsThatAFloatStandsFor) {
  EXPECT_EQ(unblurred(595.276F, 595.276F), 595.276);
  EXPECT_EQ(unblurred(612.0F, 612.0F), 612.0);
}

TEST(Unblurred, TakesOffTheErrorOfADifference) {
  const float right = 612.12F;
  const float left = 0.12F;
  EXPECT_EQ(unblurred(right - left, right), 612.0);
}

TEST(Unblurred, LeavesWhatIsNoShortDecimal) {
  const float third = 1.0F / 3.0F;
  EXPECT_NEAR(unblurred(third, third), third, 1e-6);
}

TEST(ParseDecimal, TakesDigitsAndOnePointOnly) {
  EXPECT_EQ(parseDecimal("12.5"), 12.5);
  EXPECT_EQ(parseDecimal(".5"), 0.5);
  for (const char* text : {"", ".", "1.2.3", "-1", "+1", " 1", "1 ", "1e3", "0x1"})
    EXPECT_FALSE(parseDecimal(text)) << text;
}

TEST(ParseCount, TakesUpToNineDigits) {
  EXPECT_EQ(parseCount("0"), 0);
  EXPECT_EQ(parseCount("999999999"), 999999999);
  for (const char* text : {"", "1000000000", "-1", "1.0", " 1"}) EXPECT_FALSE(parseCount(text)) << text;
}

}  // namespace
}  // namespace TesselHost
