#include "TesselHost/host_equalstreams.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace TesselHost {

namespace {

__extension__ using Wide = unsigned __int128;

constexpr unsigned modulusBits = 61;
constexpr std::uint64_t modulus = (std::uint64_t{1} << modulusBits) - 1;
// As many whole bytes as stay below the modulus.
constexpr std::size_t wordBytes = 7;

/// A product and a summand, reduced to at most a little over the modulus, which the next step takes as well.
std::uint64_t reduced(Wide sum) {
  return (static_cast<std::uint64_t>(sum) & modulus) + static_cast<std::uint64_t>(sum >> modulusBits);
}

std::uint64_t wordAt(const char* bytes, std::size_t size) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, size);
  return word;
}

}  // namespace

EqualStreams::EqualStreams() {
  std::random_device random;
  std::uniform_int_distribution<std::uint64_t> anyPoint(1, modulus - 1);
  for (std::uint64_t& point : points) point = anyPoint(random);
}

void EqualStreams::add(Values& values, std::uint64_t word) const {
  for (std::size_t i = 0; i < pointCount; ++i) values[i] = reduced(Wide{values[i]} * points[i] + word);
}

void EqualStreams::add(Values& values, std::string_view bytes) const {
  // The length first, so that no two texts in a row look like two others.
  add(values, bytes.size());
  std::size_t at = 0;
  for (; at + wordBytes <= bytes.size(); at += wordBytes) add(values, wordAt(bytes.data() + at, wordBytes));
  if (at < bytes.size()) add(values, wordAt(bytes.data() + at, bytes.size() - at));
}

int EqualStreams::numberFor(std::string_view entries, std::string_view data, int number) {
  Values values{};
  add(values, entries);
  add(values, data);
  // One text for each value: what may lie a little over the modulus is brought below it.
  for (std::uint64_t& value : values) value %= modulus;
  return known.try_emplace(values, number).first->second;
}

}  // namespace TesselHost
