#include "PDFEncryption/bytes.h"
#include "PDFEncryption/processor.h"
#include "PDFEncryption/sha2_core.h"
#include "PDFEncryption/sha512_blocks.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include <algorithm>
#include <utility>

// A block's schedule depends on nothing but the block, so those of four blocks fill the four lanes of a
// vector. The rounds wait for each other, and leave the vector units idle: between those of four blocks the
// schedules of the next four are made.

namespace pcrypt::sha512 {
namespace {

using Word = std::uint64_t;
using Functions = sha2::Functions<Word>;

constexpr std::size_t lanes = 4;
constexpr int wordBits = 64;

#define VECTOR_CODE [[gnu::target("avx2,bmi2")]]
#define VECTOR_INLINE [[gnu::target("avx2,bmi2"), gnu::always_inline]] inline

VECTOR_INLINE __m256i rotated(__m256i x, int bits) {
  return _mm256_or_si256(_mm256_srli_epi64(x, bits), _mm256_slli_epi64(x, wordBits - bits));
}

VECTOR_INLINE __m256i smallSigma(__m256i x, const int (&r)[3]) {
  return _mm256_xor_si256(_mm256_xor_si256(rotated(x, r[0]), rotated(x, r[1])), _mm256_srli_epi64(x, r[2]));
}

VECTOR_INLINE __m256i sum(__m256i a, __m256i b) { return _mm256_add_epi64(a, b); }

/// The schedules of four blocks, made row by row: the words of one round.
class Schedules {
 public:
  /// Takes `blocks` blocks at `data`, of which the first four count. Lanes without a block have zeros.
  void begin(const unsigned char* data, std::size_t blocks) {
    if (blocks < lanes) {
      std::fill(std::begin(copy_), std::end(copy_), static_cast<unsigned char>(0));
      data = std::copy_n(data, blocks * blockSize, copy_) - blocks * blockSize;
    }
    data_ = data;
    row_ = 0;
  }

  VECTOR_INLINE void addRows(std::size_t count) {
    for (const std::size_t end = row_ + count; row_ < end; ++row_) {
      words_[row_] = row_ < wordsInBlock ? given(row_) : expanded(row_);
      const __m256i constant = _mm256_set1_epi64x(static_cast<long long>(sha2::roundConstants[row_]));
      _mm256_store_si256(reinterpret_cast<__m256i*>(inputs_[row_]), sum(words_[row_], constant));
    }
  }

  /// A word with the round's constant added.
  Word input(std::size_t round, std::size_t lane) const { return inputs_[round][lane]; }

 private:
  VECTOR_INLINE __m256i given(std::size_t t) const {
    const auto word = [this, t](std::size_t lane) {
      return static_cast<long long>(bytes::loadBig64(data_ + lane * blockSize + t * wordSize));
    };
    return _mm256_set_epi64x(word(3), word(2), word(1), word(0));
  }

  VECTOR_INLINE __m256i expanded(std::size_t t) const {
    return sum(sum(words_[t - 16], smallSigma(words_[t - 15], Functions::smallSigma0)),
               sum(words_[t - 7], smallSigma(words_[t - 2], Functions::smallSigma1)));
  }

  __m256i words_[rounds];
  alignas(__m256i) Word inputs_[rounds][lanes];
  unsigned char copy_[lanes * blockSize];
  const unsigned char* data_ = nullptr;
  std::size_t row_ = 0;
};

VECTOR_CODE void vectorBlocks(Word* hash, const unsigned char* data, std::size_t blocks) {
  constexpr std::size_t fewest = 2;  // one block is faster by itself
  if (blocks < fewest) return portableBlocks(hash, data, blocks);
  constexpr std::size_t groups = lanes * rounds / sha2::roundsInGroup;
  constexpr std::size_t rowsInGroup = rounds / groups;
  Schedules schedules[2];
  Schedules *now = &schedules[0], *next = &schedules[1];
  now->begin(data, blocks);
  now->addRows(rounds);
  while (blocks != 0) {
    const std::size_t here = std::min(blocks, lanes);
    data += here * blockSize;
    blocks -= here;
    if (blocks != 0) next->begin(data, blocks);
    for (std::size_t lane = 0; lane < here; ++lane) {
      sha2::Letters<Word> letters(hash);
      for (std::size_t t = 0; t < rounds; t += sha2::roundsInGroup) {
        if (blocks != 0) next->addRows(rowsInGroup);
        letters.runGroup([now, lane, t](std::size_t i) { return now->input(t + i, lane); });
      }
      letters.addTo(hash);
    }
    std::swap(now, next);
  }
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
