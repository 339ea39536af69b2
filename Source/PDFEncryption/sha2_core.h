#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

/// What SHA-256, SHA-384 and SHA-512 share (FIPS 180-4): one compression function over words of 32 or 64
/// bits.
namespace pcrypt::sha2 {

/// Cube roots of the first 80 primes, the first 64 bits of their fractions (4.2.3). SHA-256 uses the upper
/// halves of the first 64 (4.2.2).
inline constexpr std::uint64_t roundConstants[80] = {
    0x428a2f98d728ae22, 0x7137449123ef65cd, 0xb5c0fbcfec4d3b2f, 0xe9b5dba58189dbbc, 0x3956c25bf348b538,
    0x59f111f1b605d019, 0x923f82a4af194f9b, 0xab1c5ed5da6d8118, 0xd807aa98a3030242, 0x12835b0145706fbe,
    0x243185be4ee4b28c, 0x550c7dc3d5ffb4e2, 0x72be5d74f27b896f, 0x80deb1fe3b1696b1, 0x9bdc06a725c71235,
    0xc19bf174cf692694, 0xe49b69c19ef14ad2, 0xefbe4786384f25e3, 0x0fc19dc68b8cd5b5, 0x240ca1cc77ac9c65,
    0x2de92c6f592b0275, 0x4a7484aa6ea6e483, 0x5cb0a9dcbd41fbd4, 0x76f988da831153b5, 0x983e5152ee66dfab,
    0xa831c66d2db43210, 0xb00327c898fb213f, 0xbf597fc7beef0ee4, 0xc6e00bf33da88fc2, 0xd5a79147930aa725,
    0x06ca6351e003826f, 0x142929670a0e6e70, 0x27b70a8546d22ffc, 0x2e1b21385c26c926, 0x4d2c6dfc5ac42aed,
    0x53380d139d95b3df, 0x650a73548baf63de, 0x766a0abb3c77b2a8, 0x81c2c92e47edaee6, 0x92722c851482353b,
    0xa2bfe8a14cf10364, 0xa81a664bbc423001, 0xc24b8b70d0f89791, 0xc76c51a30654be30, 0xd192e819d6ef5218,
    0xd69906245565a910, 0xf40e35855771202a, 0x106aa07032bbd1b8, 0x19a4c116b8d2d0c8, 0x1e376c085141ab53,
    0x2748774cdf8eeb99, 0x34b0bcb5e19b48a8, 0x391c0cb3c5c95a63, 0x4ed8aa4ae3418acb, 0x5b9cca4f7763e373,
    0x682e6ff3d6b2b8a3, 0x748f82ee5defb2fc, 0x78a5636f43172f60, 0x84c87814a1f0ab72, 0x8cc702081a6439ec,
    0x90befffa23631e28, 0xa4506cebde82bde9, 0xbef9a3f7b2c67915, 0xc67178f2e372532b, 0xca273eceea26619c,
    0xd186b8c721c0c207, 0xeada7dd6cde0eb1e, 0xf57d4f7fee6ed178, 0x06f067aa72176fba, 0x0a637dc5a2c898a6,
    0x113f9804bef90dae, 0x1b710b35131c471b, 0x28db77f523047d84, 0x32caab7b40c72493, 0x3c9ebe0a15c9bebc,
    0x431d67c49c100d4c, 0x4cc5d4becb3e42b6, 0x597f299cfc657e2a, 0x5fcb6fab3ad6faec, 0x6c44198c4a475817,
};

/// Square roots of the first 16 primes, the first 64 bits of their fractions: the first eight begin SHA-512,
/// their upper halves SHA-256, the other eight SHA-384 (5.3.3 to 5.3.5).
inline constexpr std::uint64_t initialHashes[16] = {
    0x6a09e667f3bcc908, 0xbb67ae8584caa73b, 0x3c6ef372fe94f82b, 0xa54ff53a5f1d36f1,
    0x510e527fade682d1, 0x9b05688c2b3e6c1f, 0x1f83d9abfb41bd6b, 0x5be0cd19137e2179,
    0xcbbb9d5dc1059ed8, 0x629a292a367cd507, 0x9159015a3070dd17, 0x152fecd8f70e5939,
    0x67332667ffc00b31, 0x8eb44a8768581511, 0xdb0c2e0d64f98fa7, 0x47b5481dbefa4fa4,
};

/// Rotations and shifts of the functions of 4.1.2 and 4.1.3; the last of each small sigma is the shift.
template <class Word>
struct Functions;

template <>
struct Functions<std::uint32_t> {
  static constexpr std::size_t rounds = 64;
  static constexpr int bigSigma0[3] = {2, 13, 22}, bigSigma1[3] = {6, 11, 25};
  static constexpr int smallSigma0[3] = {7, 18, 3}, smallSigma1[3] = {17, 19, 10};
};

template <>
struct Functions<std::uint64_t> {
  static constexpr std::size_t rounds = 80;
  static constexpr int bigSigma0[3] = {28, 34, 39}, bigSigma1[3] = {14, 18, 41};
  static constexpr int smallSigma0[3] = {1, 8, 7}, smallSigma1[3] = {19, 61, 6};
};

/// The upper bits of a constant, as many as the word has.
template <class Word>
constexpr Word upperBits(std::uint64_t constant) {
  return static_cast<Word>(constant >> (64 - 8 * sizeof(Word)));
}

template <class Word>
constexpr auto constantsOf() {
  std::array<Word, Functions<Word>::rounds> result{};
  for (std::size_t i = 0; i < result.size(); ++i) result[i] = upperBits<Word>(roundConstants[i]);
  return result;
}

template <class Word>
inline constexpr auto constants = constantsOf<Word>();

template <class Word>
inline Word bigSigma(Word x, const int (&r)[3]) {
  return std::rotr(x, r[0]) ^ std::rotr(x, r[1]) ^ std::rotr(x, r[2]);
}

template <class Word>
inline Word smallSigma(Word x, const int (&r)[3]) {
  return std::rotr(x, r[0]) ^ std::rotr(x, r[1]) ^ (x >> r[2]);
}

/// Fills the schedule behind its first 16 words, which are the block.
template <class Word>
inline void expand(Word* schedule) {
  using F = Functions<Word>;
  for (std::size_t t = 16; t < F::rounds; ++t) {
    schedule[t] = smallSigma(schedule[t - 2], F::smallSigma1) + schedule[t - 7] +
                  smallSigma(schedule[t - 15], F::smallSigma0) + schedule[t - 16];
  }
}

/// One round of 6.2.2 and 6.4.2. Only `d` and `h` get new values: the letters move on by the order in which
/// the caller names them.
template <class Word>
[[gnu::always_inline]] inline void round(Word a, Word b, Word c, Word& d, Word e, Word f, Word g, Word& h,
                                         Word input) {
  using F = Functions<Word>;
  const Word t1 = h + input + bigSigma(e, F::bigSigma1) + (g ^ (e & (f ^ g)));
  d += t1;
  h = t1 + bigSigma(a, F::bigSigma0) + ((a & b) | (c & (a | b)));
}

/// Rounds after which the letters are back in their places.
inline constexpr std::size_t roundsInGroup = 8;

/// A to H of a block's rounds: they begin as the words of the hash, and are added to them at the end.
template <class Word>
class Letters {
 public:
  [[gnu::always_inline]] explicit Letters(const Word* hash) { std::copy_n(hash, count, values); }
  [[gnu::always_inline]] void addTo(Word* hash) const {
    for (std::size_t i = 0; i < count; ++i) hash[i] += values[i];
  }

  /// Eight rounds. `input(i)` is the schedule's word and the constant of the i-th of them, added.
  template <class Input>
  [[gnu::always_inline]] void runGroup(Input input) {
    auto& [a, b, c, d, e, f, g, h] = values;
    round(a, b, c, d, e, f, g, h, input(0));
    round(h, a, b, c, d, e, f, g, input(1));
    round(g, h, a, b, c, d, e, f, input(2));
    round(f, g, h, a, b, c, d, e, input(3));
    round(e, f, g, h, a, b, c, d, input(4));
    round(d, e, f, g, h, a, b, c, input(5));
    round(c, d, e, f, g, h, a, b, input(6));
    round(b, c, d, e, f, g, h, a, input(7));
  }

 private:
  static constexpr std::size_t count = 8;
  Word values[count];
};

/// Works a block, given as the schedule that `expand` has filled, into the eight words of the hash.
template <class Word>
inline void compress(Word* hash, const Word* schedule) {
  Letters<Word> letters(hash);
  for (std::size_t t = 0; t < Functions<Word>::rounds; t += roundsInGroup) {
    letters.runGroup([schedule, t](std::size_t i) { return schedule[t + i] + constants<Word>[t + i]; });
  }
  letters.addTo(hash);
}

}  // namespace pcrypt::sha2
