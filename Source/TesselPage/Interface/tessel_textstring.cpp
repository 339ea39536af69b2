// Text strings of PDF as Unicode.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "TesselPage/tessel_text.h"

namespace TESSEL {

namespace {

constexpr char firstOfBigEndian = '\xFE';
constexpr char firstOfLittleEndian = '\xFF';
constexpr std::size_t markBytes = 2;
constexpr std::size_t unitBytes = 2;
constexpr std::size_t unitDigits = 4;
constexpr std::size_t pairDigits = 2;
constexpr char16_t bigEndianMark = 0xFEFF;
constexpr char16_t littleEndianMark = 0xFFFE;

constexpr char16_t swapped(char16_t unit) { return static_cast<char16_t>(unit << 8 | unit >> 8); }

constexpr char16_t unitOf(char low, char high) {
  return static_cast<char16_t>(static_cast<unsigned char>(low) | static_cast<unsigned char>(high) << 8);
}

/// Bytes behind a byte order mark. They are taken up to the first zero byte; the units behind it are zero.
icu::UnicodeString fromMarkedBytes(const std::string& bytes) {
  icu::UnicodeString text;
  if (bytes.size() < markBytes) return text;
  const bool bigEndian = bytes[0] == firstOfBigEndian && bytes[1] == firstOfLittleEndian;
  const std::size_t units = (bytes.size() - markBytes) / unitBytes;
  const std::string_view taken = std::string_view(bytes).substr(markBytes, units * unitBytes);
  const std::size_t zero = std::min(taken.find('\0'), taken.size());
  const auto byteAt = [&](std::size_t i) { return i < zero ? taken[i] : '\0'; };
  for (std::size_t i = 0; i < units; ++i) {
    const char16_t unit = unitOf(byteAt(i * unitBytes), byteAt(i * unitBytes + 1));
    text.append(bigEndian ? swapped(unit) : unit);
  }
  return text;
}

/// A hexadecimal digit by a looser test than the digits' own: from "*" to "?" any character counts by its low
/// bits. -1 for others.
constexpr int digitOf(char c) {
  constexpr int lowBits = 15;
  constexpr int letterOffset = 9;
  if (c >= '*' && c <= '?') return c & lowBits;
  if ((c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F')) return (c & lowBits) + letterOffset;
  return -1;
}

/// Reads up to `count` digits of a number, which ends before the first character that isn't a digit.
template <class Unit, std::size_t count>
struct GetDataFromHexString {
  static Unit axtoi(std::string_view digits) {
    constexpr unsigned base = 16;
    unsigned value = 0;
    for (const char c : digits.substr(0, count)) {
      const int digit = digitOf(c);
      if (digit < 0) break;
      value = value * base + static_cast<unsigned>(digit);
    }
    return static_cast<Unit>(value);
  }
};

using Unit = GetDataFromHexString<char16_t, unitDigits>;
using Pair = GetDataFromHexString<char16_t, pairDigits>;

icu::UnicodeString fromMarkedDigits(std::string_view digits, bool bigEndian) {
  icu::UnicodeString text;
  for (; digits.size() >= unitDigits; digits.remove_prefix(unitDigits)) {
    const char16_t unit = Unit::axtoi(digits);
    text.append(bigEndian ? unit : swapped(unit));
  }
  return text;
}

/// What stands behind "<", the ">" included.
icu::UnicodeString fromHexadecimal(std::string_view digits) {
  const char16_t first = Unit::axtoi(digits);
  const std::size_t closing = digits.empty() ? 0 : 1;
  digits.remove_suffix(closing);
  if (first == bigEndianMark || first == littleEndianMark)
    return fromMarkedDigits(digits.substr(std::min(unitDigits, digits.size())), first == bigEndianMark);
  icu::UnicodeString text;
  for (; digits.size() >= pairDigits; digits.remove_prefix(pairDigits)) text.append(Pair::axtoi(digits));
  return text;
}

}  // namespace

icu::UnicodeString getXFString(const std::string& bytes) {
  if (bytes.empty()) return {};
  if (bytes[0] == firstOfBigEndian || bytes[0] == firstOfLittleEndian) return fromMarkedBytes(bytes);
  if (bytes[0] == '<') return fromHexadecimal(std::string_view(bytes).substr(1));
  return icu::UnicodeString(bytes.data(), static_cast<std::int32_t>(bytes.size()));
}

}  // namespace TESSEL
