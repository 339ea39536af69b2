#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string_view>
#include <utility>

namespace TesselHost {

/// Finds streams that are equal to one that the output has, without keeping them.
///
/// Remembers of each stream two polynomials over its bytes, modulo 2^61 - 1, at points that are drawn at
/// random for each object: two different streams of n bytes meet in both with a chance below (n / 2^61)^2,
/// whoever made them. The points change nothing of what is found. One thread at a time.
class EqualStreams {
 public:
  EqualStreams();

  /// The number of the object that holds the same dictionary entries and data; when there is none yet,
  /// `number`, which then stands for them.
  int numberFor(std::string_view entries, std::string_view data, int number);

 private:
  static constexpr std::size_t pointCount = 2;
  using Values = std::array<std::uint64_t, pointCount>;
  void add(Values& values, std::string_view bytes) const;
  void add(Values& values, std::uint64_t word) const;

  Values points{};
  std::map<Values, int> known;
};

}  // namespace TesselHost
