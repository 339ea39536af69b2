#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

/// The tables of AES, computed from the definitions of FIPS 197. A word is a column, its first byte
/// uppermost.
namespace pcrypt::aes {

using Bytes256 = std::array<unsigned char, 256>;
using Words256 = std::array<std::uint32_t, 256>;

/// The product of two polynomials modulo x^8 + x^4 + x^3 + x + 1 (4.2).
constexpr unsigned char product(unsigned int a, unsigned int b) {
  constexpr unsigned int modulus = 0x11b;
  unsigned int result = 0;
  for (; b != 0; b >>= 1) {
    if ((b & 1) != 0) result ^= a;
    a <<= 1;
    if ((a & 0x100) != 0) a ^= modulus;
  }
  return static_cast<unsigned char>(result);
}

/// SubBytes (5.1.1): the inverse in the field, then the affine map. 3 generates the field, and 0xf6 undoes
/// it.
constexpr Bytes256 makeSubstitution() {
  Bytes256 table{};
  unsigned char power = 1, inverse = 1;
  do {
    power = product(power, 0x03);
    inverse = product(inverse, 0xf6);
    const int mapped = inverse ^ std::rotl(inverse, 1) ^ std::rotl(inverse, 2) ^ std::rotl(inverse, 3) ^
                       std::rotl(inverse, 4);
    table[power] = static_cast<unsigned char>(mapped ^ 0x63);
  } while (power != 1);
  table[0] = 0x63;
  return table;
}

constexpr Bytes256 makeInverse(const Bytes256& substitution) {
  Bytes256 table{};
  for (std::size_t i = 0; i < table.size(); ++i) table[substitution[i]] = static_cast<unsigned char>(i);
  return table;
}

/// Column of MixColumns (5.1.3) or its inverse for each byte of `source`, by the four factors of the first
/// row.
constexpr Words256 makeColumns(const Bytes256& source, const std::array<unsigned char, 4>& factors) {
  Words256 table{};
  for (std::size_t i = 0; i < table.size(); ++i) {
    for (const unsigned char factor : factors) table[i] = table[i] << 8 | product(source[i], factor);
  }
  return table;
}

constexpr Words256 rotated(const Words256& before) {
  Words256 table{};
  for (std::size_t i = 0; i < table.size(); ++i) table[i] = std::rotr(before[i], 8);
  return table;
}

constexpr Bytes256 makeIdentity() {
  Bytes256 table{};
  for (std::size_t i = 0; i < table.size(); ++i) table[i] = static_cast<unsigned char>(i);
  return table;
}

inline constexpr std::array<unsigned char, 4> mixFactors = {2, 1, 1, 3};
inline constexpr std::array<unsigned char, 4> unmixFactors = {14, 9, 13, 11};

/// S-box and its inverse.
inline constexpr Bytes256 S = makeSubstitution();
inline constexpr Bytes256 S5 = makeInverse(S);

/// SubBytes and MixColumns in one, for the four bytes of a column.
inline constexpr Words256 T1 = makeColumns(S, mixFactors);
inline constexpr Words256 T2 = rotated(T1);
inline constexpr Words256 T3 = rotated(T2);
inline constexpr Words256 T4 = rotated(T3);

/// The inverse of both, for decryption.
inline constexpr Words256 T5 = makeColumns(S5, unmixFactors);
inline constexpr Words256 T6 = rotated(T5);
inline constexpr Words256 T7 = rotated(T6);
inline constexpr Words256 T8 = rotated(T7);

/// The inverse of MixColumns alone, for the key schedule of decryption.
inline constexpr Words256 U1 = makeColumns(makeIdentity(), unmixFactors);
inline constexpr Words256 U2 = rotated(U1);
inline constexpr Words256 U3 = rotated(U2);
inline constexpr Words256 U4 = rotated(U3);

/// Round constants (5.2).
inline constexpr std::array<unsigned char, 10> rcon = {0x01, 0x02, 0x04, 0x08, 0x10,
                                                       0x20, 0x40, 0x80, 0x1b, 0x36};

}  // namespace pcrypt::aes
