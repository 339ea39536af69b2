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
constexpr std::uint64_t wordMask = (std::uint64_t{1} << (8 * wordBytes)) - 1;

/// A sum below 2^125, reduced to at most a little over the modulus.
std::uint64_t reduced(Wide sum) {
  const auto folded = (sum & modulus) + (sum >> modulusBits);
  return static_cast<std::uint64_t>((folded & modulus) + (folded >> modulusBits));
}

/// One byte behind the word is read too.
std::uint64_t wordAt(const char* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return word & wordMask;
}

}  // namespace

EqualStreams::EqualStreams() {
  std::random_device random;
  std::uniform_int_distribution<std::uint64_t> anyPoint(1, modulus - 1);
  for (std::uint64_t& point : points) point = anyPoint(random);
  for (auto& form : factors)
    for (std::uint64_t& factor : form) factor = anyPoint(random);
}

void EqualStreams::addCoefficients(Values& values, const Values& coefficients) const {
  for (std::size_t i = 0; i < pointCount; ++i)
    values[i] = reduced(Wide{values[i]} * points[i] + coefficients[i]);
}

/// The products don't wait for each other, as the steps of a polynomial do.
EqualStreams::Values EqualStreams::formsOf(const char* block) const {
  std::array<Wide, pointCount> sums{};
  for (std::size_t at = 0; at < blockWords; ++at) {
    const Wide word = wordAt(block + at * wordBytes);
    for (std::size_t i = 0; i < pointCount; ++i) sums[i] += word * factors[i][at];
  }
  Values forms{};
  std::transform(sums.begin(), sums.end(), forms.begin(), reduced);
  return forms;
}

void EqualStreams::add(Values& values, std::string_view bytes) const {
  constexpr std::size_t blockBytes = blockWords * wordBytes;
  // The length first, so that no two texts in a row look like two others, and none like one with zeros behind
  // it.
  addCoefficients(values, {bytes.size(), bytes.size()});
  for (; bytes.size() > blockBytes; bytes.remove_prefix(blockBytes))
    addCoefficients(values, formsOf(bytes.data()));
  std::array<char, blockBytes + 1> last{};
  bytes.copy(last.data(), bytes.size());
  addCoefficients(values, formsOf(last.data()));
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
