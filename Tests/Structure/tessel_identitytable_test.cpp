#include "TesselPage/Structure/tessel_identitytable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace {

using TESSEL::IdentityMap;
using TESSEL::IdentitySet;
using testing::ElementsAre;
using testing::Pair;
using Identity = std::pair<int, int>;

constexpr int largest = std::numeric_limits<int>::max();
constexpr int least = std::numeric_limits<int>::min();

template <class Value>
std::vector<std::pair<Identity, Value>> all(const IdentityMap<Value>& map) {
  std::vector<std::pair<Identity, Value>> pairs;
  map.appendTo(pairs);
  return pairs;
}

/// Identities that share their blocks, and some that lie far apart.
std::vector<Identity> randomIdentities() {
  std::mt19937 random(1);
  std::uniform_int_distribution<int> near(-100, 300);
  std::uniform_int_distribution<int> anywhere(least, largest);
  std::vector<Identity> identities;
  for (int i = 0; i < 2000; ++i) identities.emplace_back(i % 8 == 0 ? anywhere(random) : near(random), i % 3);
  return identities;
}

TEST(IdentitySet, TellsWhatIsNew) {
  IdentitySet set;
  EXPECT_TRUE(set.insert({7, 0}));
  EXPECT_FALSE(set.insert({7, 0}));
  EXPECT_TRUE(set.insert({7, 1}));
  EXPECT_EQ(set.size(), 2U);
}

TEST(IdentitySet, HoldsWhatASetHolds) {
  IdentitySet compact;
  std::set<Identity> plain;
  for (const Identity& identity : randomIdentities()) {
    EXPECT_EQ(compact.contains(identity), plain.count(identity) != 0);
    EXPECT_EQ(compact.insert(identity), plain.insert(identity).second);
    EXPECT_TRUE(compact.contains(identity));
  }
  EXPECT_EQ(compact.size(), plain.size());
}

TEST(IdentitySet, TakesTheWholeRangeOfNumbers) {
  IdentitySet set;
  for (const int number : {least, -64, -1, 0, 63, 64, largest})
    EXPECT_TRUE(set.insert({number, 0})) << number;
  EXPECT_FALSE(set.contains({largest - 1, 0}));
  EXPECT_FALSE(set.contains({least + 1, 0}));
}

TEST(IdentityMap, KeepsTheFirstValue) {
  IdentityMap<int> map;
  EXPECT_TRUE(map.insert({5, 0}, 50));
  EXPECT_FALSE(map.insert({5, 0}, 51));
  EXPECT_EQ(*map.find({5, 0}), 50);
}

TEST(IdentityMap, HasNoValueForANeighbour) {
  IdentityMap<int> map;
  map.insert({8, 0}, 1);
  EXPECT_EQ(map.find({9, 0}), nullptr);
  EXPECT_EQ(map.find({7, 0}), nullptr);
  EXPECT_FALSE(map.contains({8, 1}));
}

TEST(IdentityMap, LeavesAValueWhereItIs) {
  IdentityMap<int> map;
  map.insert({8, 0}, 1);
  const int* const value = map.find({8, 0});
  for (int number = 0; number < 1000; ++number) map.insert({number, 0}, number);
  EXPECT_EQ(map.find({8, 0}), value);
}

TEST(IdentityMap, ForgetsWhatIsErased) {
  IdentityMap<int> map;
  map.insert({8, 0}, 1);
  map.insert({9, 0}, 2);
  map.erase({8, 0});
  map.erase({10, 0});
  map.erase({800, 0});
  EXPECT_THAT(all(map), ElementsAre(Pair(Identity(9, 0), 2)));
  EXPECT_TRUE(map.insert({8, 0}, 3));
  EXPECT_EQ(*map.find({8, 0}), 3);
}

TEST(IdentityMap, ListsAllInOrderBehindWhatIsThere) {
  IdentityMap<int> map;
  map.insert({4, 0}, 40);
  map.insert({3, 1}, 31);
  map.insert({3, 0}, 30);
  std::vector<std::pair<Identity, int>> pairs{{{9, 0}, 90}};
  map.appendTo(pairs);
  EXPECT_THAT(pairs, ElementsAre(Pair(Identity(9, 0), 90), Pair(Identity(3, 0), 30), Pair(Identity(3, 1), 31),
                                 Pair(Identity(4, 0), 40)));
}

TEST(IdentityMap, HoldsWhatAMapHolds) {
  IdentityMap<int> compact;
  std::map<Identity, int> plain;
  int value = 0;
  for (const Identity& identity : randomIdentities()) {
    EXPECT_EQ(compact.insert(identity, value), plain.emplace(identity, value).second);
    if (++value % 5 == 0) {
      compact.erase({identity.first, 0});
      plain.erase({identity.first, 0});
    }
  }
  EXPECT_EQ(all(compact), (std::vector<std::pair<Identity, int>>(plain.begin(), plain.end())));
}

}  // namespace
