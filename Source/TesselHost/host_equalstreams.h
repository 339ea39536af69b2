#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string_view>
#include <utility>

namespace TesselHost {

/// Finds streams that are equal to one that the output has, without keeping them.
///
/// Remembers of each stream two polynomials modulo 2^61 - 1, whose coefficients are linear forms of a block
/// of its bytes each, at points and with factors that are drawn at random for each object: two different
/// streams of n bytes meet in both with a chance below (n / 2^61)^2, whoever made them. What is drawn changes
/// nothing of what is found. One thread at a time.
class EqualStreams {
 public:
  EqualStreams();

  /// The number of the object that holds the same dictionary entries and data; when there is none yet,
  /// `number`, which then stands for them.
  int numberFor(std::string_view entries, std::string_view data, int number);

 private:
  static constexpr std::size_t pointCount = 2;
  static constexpr std::size_t blockWords = 16;
  using Values = std::array<std::uint64_t, pointCount>;
  void add(Values& values, std::string_view bytes) const;
  void addCoefficients(Values& values, const Values& coefficients) const;
  Values formsOf(const char* block) const;

  Values points{};
  std::array<std::array<std::uint64_t, blockWords>, pointCount> factors{};
  std::map<Values, int> known;
};

}  // namespace TesselHost
