#include "TesselHost/host_lengths.h"

#include <gtest/gtest.h>

namespace TesselHost {
namespace {

TEST(Length, WithoutAUnitIsPoints) { EXPECT_EQ(parseLength("36"), 36.0); }

TEST(Length, KnowsEachUnit) {
  EXPECT_DOUBLE_EQ(*parseLength("10.5pt"), 10.5);
  EXPECT_DOUBLE_EQ(*parseLength("25.4mm"), 72.0);
  EXPECT_DOUBLE_EQ(*parseLength("2.54cm"), 72.0);
  EXPECT_DOUBLE_EQ(*parseLength("0.5in"), 36.0);
}

TEST(Length, RefusesWhatIsNoLength) {
  for (const char* text : {"", "mm", "-3mm", "3 mm", "3mmm", "3px", "1.2.3pt"})
    EXPECT_FALSE(parseLength(text)) << text;
}

}  // namespace
}  // namespace TesselHost
