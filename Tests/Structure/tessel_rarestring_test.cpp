#include "TesselPage/Structure/tessel_rarestring.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

using TESSEL::RareString;

TEST(RareString, IsEmptyAtFirst) {
  const RareString text;
  EXPECT_TRUE(text.empty());
  EXPECT_EQ(std::string(text), "");
}

TEST(RareString, HoldsAnyBytes) {
  const std::string bytes("a\0b", 3);
  const RareString text(bytes);
  EXPECT_FALSE(text.empty());
  EXPECT_EQ(std::string(text), bytes);
}

TEST(RareString, IsEmptyWithAnEmptyText) {
  RareString text(std::string("a"));
  text = std::string();
  EXPECT_TRUE(text.empty());
}

TEST(RareString, CopiesItsText) {
  RareString first(std::string("a"));
  const RareString second(first);
  first = std::string("b");
  EXPECT_EQ(std::string(second), "a");
  first = second;
  EXPECT_EQ(std::string(first), "a");
}

TEST(RareString, MovesItsText) {
  RareString first(std::string("a"));
  const RareString second(std::move(first));
  EXPECT_EQ(std::string(second), "a");
}

TEST(RareString, ComparesAsItsText) {
  EXPECT_TRUE(RareString() == "");
  EXPECT_TRUE(RareString(std::string("a")) == std::string("a"));
  EXPECT_FALSE(RareString(std::string("a")) == "b");
  EXPECT_FALSE(RareString() == "a");
}

TEST(RareString, TakesAPointersRoom) { EXPECT_EQ(sizeof(RareString), sizeof(void*)); }

}  // namespace
