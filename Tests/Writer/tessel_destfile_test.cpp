#include "TesselPage/Writer/tessel_destfile.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

#include "TesselPage/Structure/tessel_sourfile.h"

using namespace TESSEL;

namespace {

std::string text(double number) {
  Facade_stringstream out;
  out << number;
  return out;
}

/// Gives every object the number ten times its own.
class TenTimes : public NumberSource {
 public:
  const SObj* find(const SObj& object) const override {
    last = SObj(object.objNum * 10, 0);
    return &last;
  }

 private:
  mutable SObj last;
};

}  // namespace

TEST(NumberText, IntegersAreDecimal) {
  Facade_stringstream out;
  out << 0 << -5 << std::numeric_limits<int>::min();
  EXPECT_EQ(out, "0-5-2147483648");
}

TEST(NumberText, RealsHaveSixSignificantDigits) {
  EXPECT_EQ(text(612.0), "612");
  EXPECT_EQ(text(0.5), "0.5");
  EXPECT_EQ(text(0.1), "0.1");
  EXPECT_EQ(text(1234567.0), "1.23457e+06");
  EXPECT_EQ(text(1000000.0), "1e+06");
  EXPECT_EQ(text(0.00001), "1e-05");
  EXPECT_EQ(text(-0.0), "-0");
}

TEST(NumberText, RealsAreAsAStringStreamGivesThem) {
  for (const double number : {0.0, 99999.95, 999999.5, 123456.0, 0.0001, 0.00012345678, 1.0 / 3, -2.5e-7,
                              1e300, std::numeric_limits<double>::infinity()}) {
    std::ostringstream expected;
    expected << number;
    EXPECT_EQ(text(number), expected.str());
  }
}

TEST(Destination, StartsEmptyWhateverItsName) {
  const CDestFile dest("out.pdf");
  EXPECT_EQ(dest, "");
  EXPECT_FALSE(dest.rawFlag);
  EXPECT_EQ(dest.currentFile, 0);
  EXPECT_EQ(dest.endMark, 0U);
  EXPECT_EQ(dest.currentObject, SObj());
}

TEST(RenumberingTable, FirstEntryOfAKeyStays) {
  CDestFile dest;
  dest.insertNewObjTab({0, 0, SObj(3, 0)}, SObj(7, 0));
  dest.insertNewObjTab({0, 0, SObj(3, 0)}, SObj(8, 0));
  ASSERT_NE(dest.findNewObj(SObj(3, 0)), nullptr);
  EXPECT_EQ(*dest.findNewObj(SObj(3, 0)), SObj(7, 0));
}

TEST(RenumberingTable, EveryFieldOfTheKeyCounts) {
  CDestFile dest;
  dest.insertNewObjTab({1, 2, SObj(3, 4)}, SObj(7, 0));
  dest.currentFile = 2;
  EXPECT_NE(dest.findNewObj(SObj(3, 4), 1), nullptr);
  EXPECT_EQ(dest.findNewObj(SObj(3, 4), 0), nullptr);
  EXPECT_EQ(dest.findNewObj(SObj(3, 5), 1), nullptr);
  EXPECT_EQ(dest.findNewObj(SObj(2, 4), 1), nullptr);
  dest.currentFile = 0;
  EXPECT_EQ(dest.findNewObj(SObj(3, 4), 1), nullptr);
}

TEST(RenumberingTable, IsOrderedByIndexThenFileThenObject) {
  EXPECT_LT((NewObjTable{0, 9, SObj(9, 9)}), (NewObjTable{1, 0, SObj(0, 0)}));
  EXPECT_LT((NewObjTable{0, 0, SObj(9, 9)}), (NewObjTable{0, 1, SObj(0, 0)}));
  EXPECT_LT((NewObjTable{0, 0, SObj(1, 9)}), (NewObjTable{0, 0, SObj(2, 0)}));
  EXPECT_LT((NewObjTable{0, 0, SObj(1, 0)}), (NewObjTable{0, 0, SObj(1, 1)}));
}

TEST(RenumberingTable, FallsBackOnTheNumberSourceForIndexZeroOnly) {
  const TenTimes source;
  CDestFile dest;
  dest.setNumberSource(&source);
  dest.insertNewObjTab({0, 0, SObj(3, 0)}, SObj(7, 0));
  EXPECT_EQ(*dest.findNewObj(SObj(3, 0)), SObj(7, 0));
  EXPECT_EQ(*dest.findNewObj(SObj(4, 0)), SObj(40, 0));
  EXPECT_EQ(dest.findNewObj(SObj(4, 0), 1), nullptr);
}

TEST(Destination, KnowsItsSourcesByNumber) {
  CSourFile first{std::string()}, second{std::string()};
  CDestFile dest;
  dest.files = {{0, &first}, {1, &second}};
  EXPECT_EQ(dest.GetSourFile(), &first);
  EXPECT_EQ(dest.GetSourFile(1), &second);
  EXPECT_EQ(dest.GetSourFile(2), nullptr);
  dest.currentFile = 1;
  EXPECT_EQ(dest.GetSourFile(), &second);
}
