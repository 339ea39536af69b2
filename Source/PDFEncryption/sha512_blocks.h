#pragma once

#include <cstddef>
#include <cstdint>

#include "PDFEncryption/sha2_core.h"

/// The ways to work whole blocks into the running state of SHA-384 and SHA-512. All give the same result.
namespace pcrypt::sha512 {

inline constexpr std::size_t blockSize = 128;
inline constexpr std::size_t wordSize = sizeof(std::uint64_t);
inline constexpr std::size_t wordsInBlock = blockSize / wordSize;
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

}  // namespace pcrypt::sha512
