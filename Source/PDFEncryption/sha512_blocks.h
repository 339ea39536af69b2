#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "PDFEncryption/sha2_core.h"

/// The ways to work whole blocks into the running state of SHA-384 and SHA-512. All give the same result.
namespace pcrypt::sha512 {

inline constexpr std::size_t blockSize = 128;
inline constexpr std::size_t wordSize = sizeof(std::uint64_t);
inline constexpr std::size_t wordsInBlock = blockSize / wordSize;
inline constexpr std::size_t hashWords = 8;
inline constexpr std::size_t digestSize384 = 48;
inline constexpr std::size_t digestSize512 = 64;
inline constexpr const std::uint64_t* initial384 = sha2::initialHashes + hashWords;
inline constexpr const std::uint64_t* initial512 = sha2::initialHashes;
inline constexpr std::size_t rounds = sha2::Functions<std::uint64_t>::rounds;

/// Works `blocks` blocks of 128 bytes at `data` into the eight words of `hash`.
using BlockPath = void (*)(std::uint64_t* hash, const unsigned char* data, std::size_t blocks);

/// The path that every processor can go.
void portableBlocks(std::uint64_t* hash, const unsigned char* data, std::size_t blocks);

/// The path with the schedules of four blocks made side by side in vectors; null where the processor lacks
/// them.
BlockPath vectorPath();

/// The fastest path that this processor can go.
BlockPath bestPath();

/// Blocks to be worked into a hash.
struct Message {
  std::uint64_t* hash;
  const unsigned char* data;
  std::size_t blocks;
};

/// Works messages that don't wait for each other, and uses the records up.
using MessagesPath = void (*)(std::span<Message> messages);

/// Each by `bestPath`.
void oneByOne(std::span<Message> messages);

/// Several messages side by side in vectors; null where the processor lacks those that pay.
MessagesPath lanesPath();

/// The fastest path for several messages that this processor can go.
MessagesPath bestMessagesPath();

/// Writes the padding of a message behind its end (FIPS 180-4, 5.1.2). @param size  bytes of the message
/// @return bytes written, at most `mostPadding`
std::size_t pad(unsigned char* end, const std::uint64_t (&size)[2]);

inline constexpr std::size_t mostPadding = blockSize + 2 * wordSize;

/// Writes the first `size` bytes of what the words of the hash make.
void putDigest(const std::uint64_t* hash, unsigned char* digest, std::size_t size);

}  // namespace pcrypt::sha512
