#include <algorithm>
#include <cstring>

#include "PDFEncryption/bytes.h"
#include "PDFEncryption/hashes.h"
#include "PDFEncryption/sha256_blocks.h"
#include "PDFEncryption/sha2_core.h"

namespace pcrypt {
namespace sha256 {
namespace {

using Word = std::uint32_t;
constexpr std::size_t wordSize = sizeof(Word);
constexpr std::size_t wordsInBlock = blockSize / wordSize;
constexpr std::size_t countSize = 8;
constexpr std::uint64_t byteLimit = std::uint64_t{1} << 61;

Word wordOf(long slot) { return static_cast<Word>(slot); }

std::uint64_t countOf(const _Sha256Calc& c) { return std::uint64_t{c.countHigh} << 32 | c.countLow; }

void setCount(_Sha256Calc& c, std::uint64_t bytes) {
  c.countLow = static_cast<std::uint32_t>(bytes);
  c.countHigh = static_cast<std::uint32_t>(bytes >> 32);
}

/// Adds bytes to the block that is not full, at most to its end. @return bytes taken
std::size_t fillBlock(_Sha256Calc& c, const unsigned char* data, std::size_t length) {
  const auto start = static_cast<std::size_t>(c.position);
  const std::size_t taken = std::min(length, blockSize - start);
  for (std::size_t i = 0; i < taken; ++i) {
    const std::size_t at = start + i;
    c.block[at / wordSize] |= static_cast<long>(Word{data[i]} << (24 - 8 * (at % wordSize)));
  }
  c.position += static_cast<int>(taken);
  return taken;
}

/// Works the block in when it is full.
void flushBlock(_Sha256Calc& c) {
  if (static_cast<std::size_t>(c.position) < blockSize) return;
  unsigned char text[blockSize];
  for (std::size_t i = 0; i < wordsInBlock; ++i) bytes::storeBig32(text + wordSize * i, wordOf(c.block[i]));
  bestPath()(c.hash, text, 1);
  std::fill(std::begin(c.block), std::end(c.block), 0L);
  c.position = 0;
}

void add(_Sha256Calc& c, const unsigned char* data, std::size_t length) {
  if (c.position != 0) {
    const std::size_t taken = fillBlock(c, data, length);
    data += taken;
    length -= taken;
    flushBlock(c);
  }
  if (length >= blockSize) bestPath()(c.hash, data, length / blockSize);
  const std::size_t done = length / blockSize * blockSize;
  if (done < length) fillBlock(c, data + done, length - done);
}

/// Pads and ends the message. The context is a copy that the caller throws away.
void finish(_Sha256Calc c, signed char* digest) {
  const auto fill = static_cast<std::size_t>(c.position);
  const std::size_t end = fill < blockSize - countSize ? blockSize : 2 * blockSize;
  unsigned char tail[2 * blockSize] = {0x80};
  bytes::storeBig64(tail + end - fill - countSize, countOf(c) << 3);
  add(c, tail, end - fill);
  unsigned char text[sizeof c.digest];
  for (std::size_t i = 0; i < std::size(c.hash); ++i)
    bytes::storeBig32(text + wordSize * i, wordOf(c.hash[i]));
  std::memcpy(digest, text, sizeof text);
}

}  // namespace

void portableBlocks(long* hash, const unsigned char* data, std::size_t blocks) {
  long schedule[sha2::Functions<Word>::rounds];
  for (; blocks != 0; --blocks, data += blockSize) {
    for (std::size_t i = 0; i < wordsInBlock; ++i) {
      schedule[i] = static_cast<long>(bytes::loadBig32(data + wordSize * i));
    }
    Sha256Calc_calcBlock(hash, schedule);
  }
}

BlockPath bestPath() {
  static const BlockPath best = instructionPath() != nullptr ? instructionPath() : portableBlocks;
  return best;
}

}  // namespace sha256

int Sha256Calc_init(_Sha256Calc* context) {
  *context = {};
  for (std::size_t i = 0; i < std::size(context->hash); ++i) {
    context->hash[i] = static_cast<long>(sha2::upperBits<sha256::Word>(sha2::initialHashes[i]));
  }
  return 0;
}

int Sha256Calc_reset(_Sha256Calc* context) { return Sha256Calc_init(context); }

int Sha256Calc_uninit(_Sha256Calc*) { return 0; }

int Sha256Calc_calculate(_Sha256Calc* context, signed char* data, int length) {
  const auto added = static_cast<std::size_t>(std::max(length, 0));
  const std::uint64_t count = sha256::countOf(*context) + added;
  if (count >= sha256::byteLimit) return 1;
  sha256::add(*context, reinterpret_cast<const unsigned char*>(data), added);
  sha256::setCount(*context, count);
  sha256::finish(*context, context->digest);
  return 0;
}

int Sha256Calc_calcBlock(long* hash, long* schedule) {
  using sha256::Word;
  Word words[sha2::Functions<Word>::rounds];
  Word state[8];
  for (std::size_t i = 0; i < sha256::wordsInBlock; ++i) words[i] = sha256::wordOf(schedule[i]);
  for (std::size_t i = 0; i < std::size(state); ++i) state[i] = sha256::wordOf(hash[i]);
  sha2::expand(words);
  sha2::compress(state, words);
  for (std::size_t i = 0; i < std::size(words); ++i) schedule[i] = static_cast<long>(words[i]);
  for (std::size_t i = 0; i < std::size(state); ++i) hash[i] = static_cast<long>(state[i]);
  return 0;
}

}  // namespace pcrypt
