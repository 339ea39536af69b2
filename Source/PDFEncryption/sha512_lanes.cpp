#include "PDFEncryption/processor.h"
#include "PDFEncryption/sha2_core.h"
#include "PDFEncryption/sha512_blocks.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include <cstring>

#include "PDFEncryption/sidebyside.h"

// Each lane of the vectors holds a message of its own.

namespace pcrypt::sha512 {
namespace {

using Word = std::uint64_t;
using Functions = sha2::Functions<Word>;

constexpr std::size_t lanes = 4;
constexpr std::size_t fewestMessages = 2;  // one alone is faster by itself

// Truth tables of the functions of three operands.
constexpr int parity = 0x96;
constexpr int choice = 0xca;
constexpr int majority = 0xe8;

#define LANES_CODE [[gnu::target("avx512f,avx512vl")]]
#define LANES_INLINE [[gnu::target("avx512f,avx512vl"), gnu::always_inline]] inline

LANES_INLINE __m256i sum(__m256i a, __m256i b) { return _mm256_add_epi64(a, b); }

template <const int (&r)[3]>
LANES_INLINE __m256i bigSigma(__m256i x) {
  return _mm256_ternarylogic_epi64(_mm256_ror_epi64(x, r[0]), _mm256_ror_epi64(x, r[1]),
                                   _mm256_ror_epi64(x, r[2]), parity);
}

template <const int (&r)[3]>
LANES_INLINE __m256i smallSigma(__m256i x) {
  return _mm256_ternarylogic_epi64(_mm256_ror_epi64(x, r[0]), _mm256_ror_epi64(x, r[1]),
                                   _mm256_srli_epi64(x, r[2]), parity);
}

LANES_INLINE void round(__m256i a, __m256i b, __m256i c, __m256i& d, __m256i e, __m256i f, __m256i g,
                        __m256i& h, __m256i input) {
  // Summed so that the next round's `a` and `e` wait for as little as can be.
  const __m256i given = sum(h, input);
  const __m256i chosen = sum(_mm256_ternarylogic_epi64(e, f, g, choice), bigSigma<Functions::bigSigma1>(e));
  const __m256i most = sum(given, _mm256_ternarylogic_epi64(a, b, c, majority));
  d = sum(sum(d, given), chosen);
  h = sum(sum(most, bigSigma<Functions::bigSigma0>(a)), chosen);
}

/// A word of each message; lanes beyond them repeat the first.
template <class WordOf>
LANES_INLINE __m256i gathered(std::span<const Message> messages, WordOf wordOf) {
  const auto word = [&](std::size_t lane) {
    return static_cast<long long>(wordOf(messages[lane < messages.size() ? lane : 0]));
  };
  return _mm256_set_epi64x(word(3), word(2), word(1), word(0));
}

/// Words of the other byte order.
LANES_INLINE __m256i swapped(__m256i words) {
  const __m128i order = _mm_set_epi64x(0x08090a0b0c0d0e0f, 0x0001020304050607);
  return _mm256_shuffle_epi8(words, _mm256_broadcastsi128_si256(order));
}

/// Works a block into the lanes of the hash. The schedule's last 16 words go round in `w`.
LANES_INLINE void workBlock(__m256i (&hash)[hashWords], __m256i (&w)[wordsInBlock]) {
  __m256i v[hashWords];
  for (std::size_t i = 0; i < hashWords; ++i) v[i] = hash[i];
  for (std::size_t t = 0; t < rounds; t += wordsInBlock) {
#pragma GCC unroll 16
    for (std::size_t i = 0; i < wordsInBlock; ++i) {
      // The letters move on by one place with each round.
      const auto letter = [&v, i](std::size_t n) -> __m256i& {
        return v[(n + wordsInBlock - i) % hashWords];
      };
      const __m256i constant = _mm256_set1_epi64x(static_cast<long long>(sha2::roundConstants[t + i]));
      round(letter(0), letter(1), letter(2), letter(3), letter(4), letter(5), letter(6), letter(7),
            sum(w[i], constant));
      const auto later = [&w, i](std::size_t n) -> __m256i& { return w[(i + n) % wordsInBlock]; };
      w[i] = sum(sum(w[i], smallSigma<Functions::smallSigma0>(later(1))),
                 sum(later(9), smallSigma<Functions::smallSigma1>(later(14))));
    }
  }
  for (std::size_t i = 0; i < hashWords; ++i) hash[i] = sum(hash[i], v[i]);
}

/// Works `blocks` blocks of each message, and moves the messages behind them.
LANES_CODE void workLanes(std::span<Message> messages, std::size_t blocks) {
  __m256i hash[hashWords], w[wordsInBlock];
  for (std::size_t i = 0; i < hashWords; ++i) {
    hash[i] = gathered(messages, [i](const Message& m) { return m.hash[i]; });
  }
  for (std::size_t at = 0; at < blocks * blockSize; at += blockSize) {
    for (std::size_t i = 0; i < wordsInBlock; ++i) {
      const std::size_t place = at + i * wordSize;
      w[i] = swapped(gathered(messages, [place](const Message& m) {
        Word word;
        std::memcpy(&word, m.data + place, sizeof word);
        return word;
      }));
    }
    workBlock(hash, w);
  }
  alignas(__m256i) Word words[hashWords][lanes];
  for (std::size_t i = 0; i < hashWords; ++i) {
    _mm256_store_si256(reinterpret_cast<__m256i*>(words[i]), hash[i]);
  }
  for (std::size_t lane = 0; lane < messages.size(); ++lane) {
    Message& message = messages[lane];
    for (std::size_t i = 0; i < hashWords; ++i) message.hash[i] = words[i][lane];
    message.data += blocks * blockSize;
    message.blocks -= blocks;
  }
}

#undef LANES_CODE
#undef LANES_INLINE

void inLanes(std::span<Message> messages) {
  for (;;) {
    const std::size_t blocks = blocksInAll(messages, lanes);
    if (messages.size() < fewestMessages) break;
    workLanes(messages.first(std::min(lanes, messages.size())), blocks);
  }
  oneByOne(messages);
}

}  // namespace

MessagesPath lanesPath() { return processor::hasVectorRotation() ? inLanes : nullptr; }

}  // namespace pcrypt::sha512

#else

namespace pcrypt::sha512 {

MessagesPath lanesPath() { return nullptr; }

}  // namespace pcrypt::sha512

#endif
