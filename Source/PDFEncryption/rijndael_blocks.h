#pragma once

#include <cstddef>
#include <span>

/// The ways to work AES blocks under an expanded key. All give the same result.
namespace pcrypt::aes {

inline constexpr std::size_t blockSize = 16;

/// An expanded key (FIPS 197, 5.2): `rounds` + 1 round keys of 16 bytes, aligned to 16. For decryption it is
/// that of the equivalent inverse cipher (5.3.5), in the order of encryption.
struct ExpandedKey {
  const unsigned char (*roundKeys)[blockSize];
  int rounds;
};

/// A chain of blocks to be encrypted in CBC mode.
struct Chain {
  ExpandedKey key;
  unsigned char* vector;       ///< 16 bytes, the block in front; leaves as the last block of output
  const unsigned char* input;  ///< may be `output`, or lie behind its begin
  unsigned char* output;
  std::size_t blocks;
};

/// One way to work whole blocks. Has no state, so all threads may share it. Output may be the input's own
/// memory, or begin in front of it.
class BlockPath {
 public:
  virtual ~BlockPath() = default;

  /// Encrypts each block by itself.
  virtual void encrypt(const ExpandedKey& key, const unsigned char* input, unsigned char* output,
                       std::size_t blocks) const = 0;

  /// Decrypts each block by itself.
  virtual void decrypt(const ExpandedKey& key, const unsigned char* input, unsigned char* output,
                       std::size_t blocks) const = 0;

  /// Encrypts chains of blocks under keys of one length, and uses the records up. Within a chain each block
  /// waits for the one before, so several together take little more than the longest of them.
  virtual void chainEncrypt(std::span<Chain> chains) const = 0;

  /// Decrypts a chain of blocks. `vector` is the block in front, and leaves as the last block of input.
  virtual void chainDecrypt(const ExpandedKey& key, unsigned char* vector, const unsigned char* input,
                            unsigned char* output, std::size_t blocks) const = 0;
};

/// Look-up by tables, which every processor can do.
const BlockPath& tablePath();

/// The processor's AES instructions; null where it has none.
const BlockPath* instructionPath();

/// The fastest path that this processor can go.
const BlockPath& bestPath();

}  // namespace pcrypt::aes
