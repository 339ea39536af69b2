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

void oneByOne(std::span<Message> messages) {
  for (const Message& message : messages) bestPath()(message.hash, message.data, message.blocks);
}

MessagesPath bestMessagesPath() {
  static const MessagesPath best = lanesPath() != nullptr ? lanesPath() : oneByOne;
  return best;
}

std::size_t pad(unsigned char* end, const std::uint64_t (&size)[2]) {
  constexpr std::size_t countSize = 2 * wordSize;
  const std::size_t fill = size[0] % blockSize;
  const std::size_t zeros = (fill < blockSize - countSize ? 1 : 2) * blockSize - fill - countSize;
  *end = 0x80;
  std::fill_n(end + 1, zeros - 1, static_cast<unsigned char>(0));
  bytes::storeBig64(end + zeros, size[1] << 3 | size[0] >> 61);
  bytes::storeBig64(end + zeros + wordSize, size[0] << 3);
  return zeros + countSize;
}

void putDigest(const std::uint64_t* hash, unsigned char* digest, std::size_t size) {
  for (std::size_t i = 0; i < size / wordSize; ++i) bytes::storeBig64(digest + wordSize * i, hash[i]);
}

}  // namespace sha512

namespace {

using sha512::blockSize;

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

void finish(SHA512_CTX& c, unsigned char* digest, std::size_t size) {
  unsigned char padding[sha512::mostPadding];
  add(c, padding, sha512::pad(padding, c.count));
  sha512::putDigest(c.state, digest, size);
}

}  // namespace

void SHA384Init(SHA384_CTX* context) { begin(*context, sha512::initial384); }

void SHA384Update(SHA384_CTX* context, const unsigned char* data, int length) {
  update(*context, data, length);
}

void SHA384Final(SHA384_CTX* context, unsigned char* digest) {
  finish(*context, digest, sha512::digestSize384);
}

void SHA512Init(SHA512_CTX* context) { begin(*context, sha512::initial512); }

void SHA512Update(SHA512_CTX* context, const unsigned char* data, int length) {
  update(*context, data, length);
}

void SHA512Final(SHA512_CTX* context, unsigned char* digest) {
  finish(*context, digest, sha512::digestSize512);
}

}  // namespace pcrypt
