#pragma once

#include <cstddef>

/// The ways to work whole blocks into the running state of SHA-256. All give the same result.
namespace pcrypt::sha256 {

inline constexpr std::size_t blockSize = 64;

/// Works `blocks` blocks of 64 bytes at `data` into the eight words of `hash`, one word to a slot.
using BlockPath = void (*)(long* hash, const unsigned char* data, std::size_t blocks);

/// The path that every processor can go.
void portableBlocks(long* hash, const unsigned char* data, std::size_t blocks);

/// The path of the processor's SHA instructions; null where it has none.
BlockPath instructionPath();

/// The fastest path that this processor can go.
BlockPath bestPath();

}  // namespace pcrypt::sha256
