#include "PDFEncryption/processor.h"
#include "PDFEncryption/rijndael_blocks.h"
#include "PDFEncryption/sidebyside.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include <algorithm>
#include <array>
#include <utility>

namespace pcrypt::aes {
namespace {

/// Blocks worked side by side: an instruction takes several cycles, but a new one can begin in each.
constexpr std::size_t lanes = 8;

#define AES_CODE [[gnu::target("aes")]]
#define AES_INLINE [[gnu::target("aes"), gnu::always_inline]] inline

AES_INLINE __m128i load(const unsigned char* p) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

AES_INLINE void store(__m128i block, unsigned char* p) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p), block);
}

/// @param roundKey  of a lane and a round; the address of the round key
template <std::size_t count, class RoundKey>
AES_INLINE void encryptLanes(int rounds, RoundKey roundKey, __m128i* s) {
#pragma GCC unroll 8
  for (std::size_t i = 0; i < count; ++i) s[i] = _mm_xor_si128(s[i], load(roundKey(i, 0)));
  for (int round = 1; round < rounds; ++round) {
#pragma GCC unroll 8
    for (std::size_t i = 0; i < count; ++i) s[i] = _mm_aesenc_si128(s[i], load(roundKey(i, round)));
  }
#pragma GCC unroll 8
  for (std::size_t i = 0; i < count; ++i) s[i] = _mm_aesenclast_si128(s[i], load(roundKey(i, rounds)));
}

template <std::size_t count>
AES_INLINE void decryptLanes(const ExpandedKey& key, __m128i* s) {
  const __m128i first = load(key.roundKeys[key.rounds]);
#pragma GCC unroll 8
  for (std::size_t i = 0; i < count; ++i) s[i] = _mm_xor_si128(s[i], first);
  for (int round = key.rounds - 1; round > 0; --round) {
    const __m128i roundKey = load(key.roundKeys[round]);
#pragma GCC unroll 8
    for (std::size_t i = 0; i < count; ++i) s[i] = _mm_aesdec_si128(s[i], roundKey);
  }
  const __m128i last = load(key.roundKeys[0]);
#pragma GCC unroll 8
  for (std::size_t i = 0; i < count; ++i) s[i] = _mm_aesdeclast_si128(s[i], last);
}

template <std::size_t count>
AES_INLINE void encryptPart(const ExpandedKey& key, const unsigned char* input, unsigned char* output) {
  __m128i s[count];
#pragma GCC unroll 8
  for (std::size_t i = 0; i < count; ++i) s[i] = load(input + i * blockSize);
  encryptLanes<count>(
      key.rounds, [key](std::size_t, int round) { return key.roundKeys[round]; }, s);
#pragma GCC unroll 8
  for (std::size_t i = 0; i < count; ++i) store(s[i], output + i * blockSize);
}

template <std::size_t count>
AES_INLINE void decryptPart(const ExpandedKey& key, const unsigned char* input, unsigned char* output) {
  __m128i s[count];
#pragma GCC unroll 8
  for (std::size_t i = 0; i < count; ++i) s[i] = load(input + i * blockSize);
  decryptLanes<count>(key, s);
#pragma GCC unroll 8
  for (std::size_t i = 0; i < count; ++i) store(s[i], output + i * blockSize);
}

/// Takes all input before it writes output, which may overlap it.
template <std::size_t count>
AES_INLINE __m128i chainDecryptPart(const ExpandedKey& key, __m128i before, const unsigned char* input,
                                    unsigned char* output) {
  __m128i s[count], fronts[count];
#pragma GCC unroll 8
  for (std::size_t i = 0; i < count; ++i) {
    fronts[i] = before;
    before = s[i] = load(input + i * blockSize);
  }
  decryptLanes<count>(key, s);
#pragma GCC unroll 8
  for (std::size_t i = 0; i < count; ++i) store(_mm_xor_si128(s[i], fronts[i]), output + i * blockSize);
  return before;
}

/// Encrypts `blocks` blocks of each of `count` chains, and moves the chains behind them.
template <std::size_t count>
AES_CODE void chainEncryptPart(Chain* chains, std::size_t blocks) {
  const auto roundKey = [chains](std::size_t i, int round) { return chains[i].key.roundKeys[round]; };
  __m128i s[count];
#pragma GCC unroll 8
  for (std::size_t i = 0; i < count; ++i) s[i] = load(chains[i].vector);
  for (std::size_t at = 0; at < blocks * blockSize; at += blockSize) {
#pragma GCC unroll 8
    for (std::size_t i = 0; i < count; ++i) s[i] = _mm_xor_si128(s[i], load(chains[i].input + at));
    encryptLanes<count>(chains[0].key.rounds, roundKey, s);
#pragma GCC unroll 8
    for (std::size_t i = 0; i < count; ++i) store(s[i], chains[i].output + at);
  }
  for (std::size_t i = 0; i < count; ++i) {
    store(s[i], chains[i].vector);
    chains[i].input += blocks * blockSize;
    chains[i].output += blocks * blockSize;
    chains[i].blocks -= blocks;
  }
}

using ChainPart = void (*)(Chain*, std::size_t);

/// `chainEncryptPart` for 1 to `lanes` chains.
template <std::size_t... before>
constexpr std::array<ChainPart, lanes> chainParts(std::index_sequence<before...>) {
  return {chainEncryptPart<before + 1>...};
}

class InstructionPath final : public BlockPath {
 public:
  AES_CODE void encrypt(const ExpandedKey& key, const unsigned char* input, unsigned char* output,
                        std::size_t blocks) const override {
    std::size_t i = 0;
    for (; i + lanes <= blocks; i += lanes) {
      encryptPart<lanes>(key, input + i * blockSize, output + i * blockSize);
    }
    for (; i < blocks; ++i) encryptPart<1>(key, input + i * blockSize, output + i * blockSize);
  }

  AES_CODE void decrypt(const ExpandedKey& key, const unsigned char* input, unsigned char* output,
                        std::size_t blocks) const override {
    std::size_t i = 0;
    for (; i + lanes <= blocks; i += lanes) {
      decryptPart<lanes>(key, input + i * blockSize, output + i * blockSize);
    }
    for (; i < blocks; ++i) decryptPart<1>(key, input + i * blockSize, output + i * blockSize);
  }

  void chainEncrypt(std::span<Chain> chains) const override {
    constexpr std::array parts = chainParts(std::make_index_sequence<lanes>());
    while (const std::size_t blocks = blocksInAll(chains, lanes)) {
      parts[std::min(chains.size(), lanes) - 1](chains.data(), blocks);
    }
  }

  AES_CODE void chainDecrypt(const ExpandedKey& key, unsigned char* vector, const unsigned char* input,
                             unsigned char* output, std::size_t blocks) const override {
    __m128i before = load(vector);
    std::size_t i = 0;
    for (; i + lanes <= blocks; i += lanes) {
      before = chainDecryptPart<lanes>(key, before, input + i * blockSize, output + i * blockSize);
    }
    for (; i < blocks; ++i) {
      before = chainDecryptPart<1>(key, before, input + i * blockSize, output + i * blockSize);
    }
    store(before, vector);
  }
};

#undef AES_CODE
#undef AES_INLINE

}  // namespace

const BlockPath* instructionPath() {
  static const InstructionPath path;
  static const bool present = processor::hasAes();
  return present ? &path : nullptr;
}

}  // namespace pcrypt::aes

#else

namespace pcrypt::aes {

const BlockPath* instructionPath() { return nullptr; }

}  // namespace pcrypt::aes

#endif
