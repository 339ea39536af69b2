#include <algorithm>
#include <cstring>

#include "PDFEncryption/bytes.h"
#include "PDFEncryption/hashes.h"
#include "PDFEncryption/sha2_core.h"
#include "PDFEncryption/sha512_blocks.h"

namespace pcrypt {
namespace sha512 {

void portableBlocks(std::uint64_t* hash, const unsigned char* data, std::size_t blocks) {
  std::uint64_t schedule[rounds];
  for (; blocks != 0; --blocks, data += blockSize) {
    for (std::size_t i = 0; i < wordsInBlock; ++i) schedule[i] = bytes::loadBig64(data + wordSize * i);
    sha2::expand(schedule);
    sha2::compress(hash, schedule);
  }
}

BlockPath bestPath() {
  static const BlockPath best = vectorPath() != nullptr ? vectorPath() : portableBlocks;
  return best;
}

}  // namespace sha512

namespace {

using sha512::blockSize, sha512::wordSize;
constexpr std::size_t countSize = 16;
constexpr std::size_t wordsOf384 = 6;
constexpr std::size_t wordsOf512 = 8;

void begin(SHA512_CTX& c, const std::uint64_t* initialHash) {
  c = {};
  std::copy_n(initialHash, std::size(c.state), c.state);
}

void add(SHA512_CTX& c, const unsigned char* data, std::size_t length) {
  if (c.fill != 0) {
    const auto fill = static_cast<std::size_t>(c.fill);
    const std::size_t taken = std::min(length, blockSize - fill);
    std::memcpy(c.buffer + fill, data, taken);
    data += taken;
    length -= taken;
    c.fill = static_cast<int>((fill + taken) % blockSize);
    if (fill + taken == blockSize) sha512::bestPath()(c.state, c.buffer, 1);
  }
  sha512::bestPath()(c.state, data, length / blockSize);
  const std::size_t left = length % blockSize;
  if (left == 0) return;
  std::memcpy(c.buffer, data + length - left, left);
  c.fill = static_cast<int>(left);
}

void update(SHA512_CTX& c, const unsigned char* data, int length) {
  if (length <= 0) return;
  const auto added = static_cast<std::uint64_t>(length);
  c.count[0] += added;
  c.count[1] += c.count[0] < added ? 1 : 0;
  add(c, data, static_cast<std::size_t>(length));
}

void finish(SHA512_CTX& c, unsigned char* digest, std::size_t words) {
  const auto fill = static_cast<std::size_t>(c.fill);
  const std::size_t end = fill < blockSize - countSize ? blockSize : 2 * blockSize;
  unsigned char tail[2 * blockSize] = {0x80};
  bytes::storeBig64(tail + end - fill - countSize, c.count[1] << 3 | c.count[0] >> 61);
  bytes::storeBig64(tail + end - fill - countSize / 2, c.count[0] << 3);
  add(c, tail, end - fill);
  for (std::size_t i = 0; i < words; ++i) bytes::storeBig64(digest + wordSize * i, c.state[i]);
}

}  // namespace

void SHA384Init(SHA384_CTX* context) { begin(*context, sha2::initialHashes + 8); }

void SHA384Update(SHA384_CTX* context, const unsigned char* data, int length) {
  update(*context, data, length);
}

void SHA384Final(SHA384_CTX* context, unsigned char* digest) { finish(*context, digest, wordsOf384); }

void SHA512Init(SHA512_CTX* context) { begin(*context, sha2::initialHashes); }

void SHA512Update(SHA512_CTX* context, const unsigned char* data, int length) {
  update(*context, data, length);
}

void SHA512Final(SHA512_CTX* context, unsigned char* digest) { finish(*context, digest, wordsOf512); }

}  // namespace pcrypt
