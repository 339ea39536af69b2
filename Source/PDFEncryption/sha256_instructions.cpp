#include "PDFEncryption/processor.h"
#include "PDFEncryption/sha256_blocks.h"
#include "PDFEncryption/sha2_core.h"

#if defined(__x86_64__)

#include <immintrin.h>

// The instructions hold the eight words of the state as two registers, A B E F and C D G H from the upper
// end, and do two rounds each.

namespace pcrypt::sha256 {
namespace {

constexpr int wordsInRegister = 4;
constexpr int groups = 64 / wordsInRegister;

[[gnu::target("sha,sse4.1"), gnu::always_inline]] inline __m128i constantsOf(int group) {
  return _mm_loadu_si128(
      reinterpret_cast<const __m128i*>(sha2::constants<std::uint32_t>.data() + wordsInRegister * group));
}

[[gnu::target("sha,sse4.1"), gnu::always_inline]] inline __m128i wordsAt(const unsigned char* data) {
  const __m128i swapBytes = _mm_set_epi64x(0x0c0d0e0f08090a0b, 0x0405060700010203);
  return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(data)), swapBytes);
}

[[gnu::target("sha,sse4.1"), gnu::always_inline]] inline void workBlock(__m128i& abef, __m128i& cdgh,
                                                                        const unsigned char* data) {
  const __m128i oldAbef = abef, oldCdgh = cdgh;
  __m128i w[4];
  for (int i = 0; i < 4; ++i) w[i] = wordsAt(data + 16 * i);
#pragma GCC unroll 16
  for (int group = 0; group < groups; ++group) {
    __m128i& now = w[group & 3];
    const __m128i &next = w[(group + 1) & 3], &before = w[(group + 3) & 3], &second = w[(group + 2) & 3];
    if (group >= 4) {
      const __m128i sum = _mm_add_epi32(_mm_sha256msg1_epu32(now, next), _mm_alignr_epi8(before, second, 4));
      now = _mm_sha256msg2_epu32(sum, before);
    }
    const __m128i lower = _mm_add_epi32(now, constantsOf(group));
    cdgh = _mm_sha256rnds2_epu32(cdgh, abef, lower);
    abef = _mm_sha256rnds2_epu32(abef, cdgh, _mm_shuffle_epi32(lower, 0x0e));
  }
  abef = _mm_add_epi32(abef, oldAbef);
  cdgh = _mm_add_epi32(cdgh, oldCdgh);
}

[[gnu::target("sha,sse4.1")]] void instructionBlocks(long* hash, const unsigned char* data,
                                                     std::size_t blocks) {
  const auto word = [hash](int i) { return static_cast<int>(hash[i]); };
  __m128i abef = _mm_set_epi32(word(0), word(1), word(4), word(5));
  __m128i cdgh = _mm_set_epi32(word(2), word(3), word(6), word(7));
  for (; blocks != 0; --blocks, data += blockSize) workBlock(abef, cdgh, data);
  alignas(16) std::uint32_t upper[4], lower[4];
  _mm_store_si128(reinterpret_cast<__m128i*>(upper), abef);
  _mm_store_si128(reinterpret_cast<__m128i*>(lower), cdgh);
  const std::uint32_t words[8] = {upper[3], upper[2], lower[3], lower[2],
                                  upper[1], upper[0], lower[1], lower[0]};
  for (int i = 0; i < 8; ++i) hash[i] = static_cast<long>(words[i]);
}

}  // namespace

BlockPath instructionPath() {
  static const bool present = processor::hasSha();
  return present ? instructionBlocks : nullptr;
}

}  // namespace pcrypt::sha256

#else

namespace pcrypt::sha256 {

BlockPath instructionPath() { return nullptr; }

}  // namespace pcrypt::sha256

#endif
