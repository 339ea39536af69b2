#include "PDFEncryption/processor.h"
#include "PDFEncryption/rijndael_blocks.h"

#if defined(__x86_64__)

#include <immintrin.h>

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

template <std::size_t count>
AES_INLINE void encryptLanes(const ExpandedKey& key, __m128i* s) {
  const __m128i first = load(key.roundKeys[0]);
#pragma GCC unroll 8
  for (std::size_t i = 0; i < count; ++i) s[i] = _mm_xor_si128(s[i], first);
  for (int round = 1; round < key.rounds; ++round) {
    const __m128i roundKey = load(key.roundKeys[round]);
#pragma GCC unroll 8
    for (std::size_t i = 0; i < count; ++i) s[i] = _mm_aesenc_si128(s[i], roundKey);
  }
  const __m128i last = load(key.roundKeys[key.rounds]);
#pragma GCC unroll 8
  for (std::size_t i = 0; i < count; ++i) s[i] = _mm_aesenclast_si128(s[i], last);
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
  encryptLanes<count>(key, s);
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

  AES_CODE void chainEncrypt(const ExpandedKey& key, unsigned char* vector, const unsigned char* input,
                             unsigned char* output, std::size_t blocks) const override {
    __m128i before = load(vector);
    for (std::size_t i = 0; i < blocks; ++i) {
      before = _mm_xor_si128(before, load(input + i * blockSize));
      encryptLanes<1>(key, &before);
      store(before, output + i * blockSize);
    }
    store(before, vector);
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
