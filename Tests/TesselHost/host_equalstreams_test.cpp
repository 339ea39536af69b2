#include "TesselHost/host_equalstreams.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace TesselHost {
namespace {

TEST(EqualStreams, GiveTheNumberOfTheFirstOne) {
  EqualStreams streams;
  EXPECT_EQ(streams.numberFor("/A 1", "data", 5), 5);
  EXPECT_EQ(streams.numberFor("/A 1", "data", 9), 5);
}

TEST(EqualStreams, TellApartWhatDiffersInOneByte) {
  EqualStreams streams;
  const std::string data(1000, 'x');
  EXPECT_EQ(streams.numberFor("/A 1", data, 1), 1);
  int number = 2;
  for (std::size_t i = 0; i < data.size(); i += 37, ++number) {
    std::string other = data;
    other[i] = 'y';
    EXPECT_EQ(streams.numberFor("/A 1", other, number), number) << "byte " << i;
  }
  EXPECT_EQ(streams.numberFor("/A 2", data, number), number);
}

TEST(EqualStreams, TellApartWhatDiffersInItsLastByte) {
  EqualStreams streams;
  for (int length = 1; length < 300; ++length) {
    const std::string head(static_cast<std::size_t>(length - 1), 'x');
    EXPECT_EQ(streams.numberFor({}, head + 'a', 2 * length), 2 * length);
    EXPECT_EQ(streams.numberFor({}, head + 'b', 2 * length + 1), 2 * length + 1);
    EXPECT_EQ(streams.numberFor({}, head + 'a', 0), 2 * length);
  }
}

TEST(EqualStreams, TellApartWhereTwoPartsHaveChangedPlaces) {
  EqualStreams streams;
  std::string data(1000, 'x');
  data[0] = 'y';
  for (std::size_t i = 1; i < data.size(); ++i) {
    std::swap(data[i - 1], data[i]);
    const int number = static_cast<int>(i);
    EXPECT_EQ(streams.numberFor({}, data, number), number);
  }
}

TEST(EqualStreams, TellApartWhereEntriesEndAndDataBegins) {
  EqualStreams streams;
  EXPECT_EQ(streams.numberFor("ab", "c", 1), 1);
  EXPECT_EQ(streams.numberFor("a", "bc", 2), 2);
  EXPECT_EQ(streams.numberFor("", "abc", 3), 3);
}

TEST(EqualStreams, TellApartDataWithZerosAtTheEnd) {
  EqualStreams streams;
  for (int length = 0; length < 300; ++length)
    EXPECT_EQ(streams.numberFor({}, std::string(static_cast<std::size_t>(length), '\0'), length), length);
}

}  // namespace
}  // namespace TesselHost
