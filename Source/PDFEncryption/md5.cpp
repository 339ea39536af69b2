#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <utility>

#include "PDFEncryption/bytes.h"
#include "PDFEncryption/hashes.h"

// The 64 steps of a block are unrolled by index, so that the four words stay in registers and the tables
// turn into immediates.

namespace pcrypt {
namespace {

using Word = std::uint32_t;
constexpr std::size_t blockSize = 64;
constexpr std::size_t countSize = 8;
constexpr std::size_t digestSize = 16;

/// RFC 1321, 3.4: the integer part of 4294967296 times abs(sin(i)).
constexpr Word sines[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

constexpr int rotations[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
constexpr Word initialState[4] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};

constexpr unsigned char padding[blockSize] = {0x80};

/// Place in the block of the word that step i reads.
constexpr std::size_t wordOf(std::size_t i) {
  constexpr std::size_t factor[4] = {1, 5, 3, 7};
  constexpr std::size_t start[4] = {0, 1, 5, 0};
  return (factor[i / 16] * i + start[i / 16]) % 16;
}

template <std::size_t round>
[[gnu::always_inline]] inline Word mix(Word b, Word c, Word d) {
  if constexpr (round == 0) return d ^ (b & (c ^ d));
  // A sum of two disjoint terms: the one that doesn't need b is ready a step earlier.
  else if constexpr (round == 1)
    return (d & b) + (~d & c);
  else if constexpr (round == 2)
    return b ^ (c ^ d);
  else
    return c ^ (b | ~d);
}

template <std::size_t i>
[[gnu::always_inline]] inline void step(Word* s, const Word* x) {
  Word& a = s[(64 - i) % 4];
  const Word b = s[(65 - i) % 4], c = s[(66 - i) % 4], d = s[(67 - i) % 4];
  a = b + std::rotl(a + x[wordOf(i)] + sines[i] + mix<i / 16>(b, c, d), rotations[i / 16][i % 4]);
}

template <std::size_t... i>
[[gnu::always_inline]] inline void steps(Word* s, const Word* x, std::index_sequence<i...>) {
  (step<i>(s, x), ...);
}

void decode(Word* output, const unsigned char* input, std::size_t words) {
  for (std::size_t i = 0; i < words; ++i) output[i] = bytes::loadLittle32(input + 4 * i);
}

void transform(Word* state, const unsigned char* data, std::size_t blocks) {
  Word words[blockSize / sizeof(Word)];
  for (; blocks != 0; --blocks, data += blockSize) {
    decode(words, data, std::size(words));
    Word work[4] = {state[0], state[1], state[2], state[3]};
    steps(work, words, std::make_index_sequence<64>());
    for (std::size_t i = 0; i < 4; ++i) state[i] += work[i];
  }
}

std::size_t fillOf(const PDFEncryptionMD5::MD5_CTX& context) { return context.count[0] / 8 % blockSize; }

void addToCount(PDFEncryptionMD5::MD5_CTX& context, unsigned int length) {
  const Word bits = Word{length} << 3;
  context.count[0] += bits;
  context.count[1] += (context.count[0] < bits ? 1U : 0U) + (Word{length} >> 29);
}

void update(PDFEncryptionMD5::MD5_CTX& context, const unsigned char* input, unsigned int length) {
  std::size_t fill = fillOf(context);
  std::size_t left = length;
  addToCount(context, length);
  if (fill != 0 && fill + left >= blockSize) {
    const std::size_t part = blockSize - fill;
    std::memcpy(context.buffer + fill, input, part);
    transform(context.state, context.buffer, 1);
    input += part;
    left -= part;
    fill = 0;
  }
  if (fill == 0 && left >= blockSize) {
    transform(context.state, input, left / blockSize);
    input += left / blockSize * blockSize;
    left %= blockSize;
  }
  if (left != 0) std::memcpy(context.buffer + fill, input, left);
}

void finish(PDFEncryptionMD5::MD5_CTX& context, unsigned char* digest) {
  unsigned char bits[countSize];
  for (std::size_t i = 0; i < 2; ++i) bytes::storeLittle32(bits + 4 * i, context.count[i]);
  const std::size_t fill = fillOf(context);
  const std::size_t end = fill < blockSize - countSize ? blockSize : 2 * blockSize;
  update(context, padding, static_cast<unsigned int>(end - countSize - fill));
  update(context, bits, countSize);
  for (std::size_t i = 0; i < 4; ++i) bytes::storeLittle32(digest + 4 * i, context.state[i]);
}

void digestOf(const unsigned char* data, unsigned int length, unsigned char* digest) {
  PDFEncryptionMD5::MD5_CTX context;
  PDFEncryptionMD5().MD5Init(&context);
  update(context, data, length);
  finish(context, digest);
}

std::size_t bytesWanted(int digestLength) {
  return static_cast<std::size_t>(std::clamp(digestLength, 0, static_cast<int>(digestSize)));
}

}  // namespace

void PDFEncryptionMD5::MD5(unsigned char* data, unsigned short length, unsigned char* digest,
                           int digestLength) {
  unsigned char whole[digestSize];
  digestOf(data, length, whole);
  std::copy_n(whole, bytesWanted(digestLength), digest);
}

void PDFEncryptionMD5::MD5(const std::string& data, std::string& digest, int digestLength) {
  unsigned char whole[digestSize];
  digestOf(bytes::of(data.data()), static_cast<unsigned int>(data.size()), whole);
  digest.assign(whole, whole + bytesWanted(digestLength));
}

void PDFEncryptionMD5::MD5Init(MD5_CTX* context) {
  *context = {};
  std::copy_n(initialState, std::size(initialState), context->state);
}

void PDFEncryptionMD5::MD5Update(MD5_CTX* context, unsigned char* input, unsigned int length) {
  update(*context, input, length);
}

void PDFEncryptionMD5::MD5Final(unsigned char* digest, MD5_CTX* context) {
  finish(*context, digest);
  *context = {};
}

void PDFEncryptionMD5::MD5Transform(std::uint32_t* state, unsigned char* block) {
  transform(state, block, 1);
}

void PDFEncryptionMD5::Encode(unsigned char* output, std::uint32_t* input, unsigned int length) {
  for (unsigned int i = 0; i < length / 4; ++i) bytes::storeLittle32(output + 4 * i, input[i]);
}

void PDFEncryptionMD5::Decode(std::uint32_t* output, unsigned char* input, unsigned int length) {
  decode(output, input, length / 4);
}

void PDFEncryptionMD5::MD5_memcpy(unsigned char* output, unsigned char* input, unsigned int length) {
  std::copy_n(input, length, output);
}

void PDFEncryptionMD5::MD5_memset(unsigned char* output, int value, unsigned int length) {
  std::fill_n(output, length, static_cast<unsigned char>(value));
}

}  // namespace pcrypt
