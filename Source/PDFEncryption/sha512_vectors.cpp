#include "PDFEncryption/bytes.h"
#include "PDFEncryption/processor.h"
#include "PDFEncryption/sha2_core.h"
#include "PDFEncryption/sha512_blocks.h"

#if defined(__x86_64__)

#include <immintrin.h>

// A block's schedule depends on nothing but the block, so those of four blocks fill the four lanes of a
// vector; only the rounds wait for each other.

namespace pcrypt::sha512 {
namespace {

using Word = std::uint64_t;
using Functions = sha2::Functions<Word>;

constexpr std::size_t lanes = 4;
constexpr int wordBits = 64;

/// Words of four schedules, the round's constant added: `[round][block]`.
using Inputs = Word[rounds][lanes];

#define VECTOR_CODE [[gnu::target("avx2,bmi2")]]
#define VECTOR_INLINE [[gnu::target("avx2,bmi2"), gnu::always_inline]] inline

VECTOR_INLINE __m256i rotated(__m256i x, int bits) {
  return _mm256_or_si256(_mm256_srli_epi64(x, bits), _mm256_slli_epi64(x, wordBits - bits));
}

VECTOR_INLINE __m256i smallSigma(__m256i x, const int (&r)[3]) {
  return _mm256_xor_si256(_mm256_xor_si256(rotated(x, r[0]), rotated(x, r[1])), _mm256_srli_epi64(x, r[2]));
}

VECTOR_INLINE __m256i sum(__m256i a, __m256i b) { return _mm256_add_epi64(a, b); }

VECTOR_INLINE __m256i wordsAt(const unsigned char* data) {
  const auto word = [data](std::size_t lane) {
    return static_cast<long long>(bytes::loadBig64(data + lane * blockSize));
  };
  return _mm256_set_epi64x(word(3), word(2), word(1), word(0));
}

VECTOR_INLINE void put(Word* row, __m256i words, std::size_t t) {
  const __m256i constant = _mm256_set1_epi64x(static_cast<long long>(sha2::roundConstants[t]));
  _mm256_store_si256(reinterpret_cast<__m256i*>(row), sum(words, constant));
}

/// The schedule's last 16 words go round in `w`.
VECTOR_CODE void expandFour(Inputs& inputs, const unsigned char* data) {
  __m256i w[wordsInBlock];
  for (std::size_t i = 0; i < wordsInBlock; ++i) {
    w[i] = wordsAt(data + wordSize * i);
    put(inputs[i], w[i], i);
  }
  for (std::size_t t = wordsInBlock; t < rounds; t += wordsInBlock) {
#pragma GCC unroll 16
    for (std::size_t i = 0; i < wordsInBlock; ++i) {
      const __m256i &second = w[(i + 1) % wordsInBlock], &tenth = w[(i + 9) % wordsInBlock],
                    &fifteenth = w[(i + 14) % wordsInBlock];
      w[i] = sum(sum(w[i], smallSigma(second, Functions::smallSigma0)),
                 sum(tenth, smallSigma(fifteenth, Functions::smallSigma1)));
      put(inputs[t + i], w[i], t + i);
    }
  }
}

VECTOR_CODE void vectorBlocks(Word* hash, const unsigned char* data, std::size_t blocks) {
  alignas(__m256i) Inputs inputs;
  for (; blocks >= lanes; blocks -= lanes, data += lanes * blockSize) {
    expandFour(inputs, data);
    for (std::size_t lane = 0; lane < lanes; ++lane) {
      sha2::runRounds(hash, [&inputs, lane](std::size_t t) { return inputs[t][lane]; });
    }
  }
  portableBlocks(hash, data, blocks);
}

#undef VECTOR_CODE
#undef VECTOR_INLINE

}  // namespace

BlockPath vectorPath() { return processor::hasWideVectors() ? vectorBlocks : nullptr; }

}  // namespace pcrypt::sha512

#else

namespace pcrypt::sha512 {

BlockPath vectorPath() { return nullptr; }

}  // namespace pcrypt::sha512

#endif
