#pragma once

#include <span>
#include <string>

namespace pcrypt {

/// A hash of revision 6 to be made (ISO 32000-2, 7.6.4.3.4, Algorithm 2.B).
struct HardenedHash {
  std::string password;  ///< counts with all its bytes
  std::string hash;      ///< SHA-256 of password and salt, of which 32 bytes count; leaves as the result
  std::string u;         ///< /U, for a hash of the owner's; else empty
};

/// Makes hashes that don't wait for each other. They are slow by design, and much of it is waiting: of a
/// block of AES for the block before, of a round of SHA-512 for the round before. Side by side they wait
/// together.
void harden(std::span<HardenedHash> hashes);

}  // namespace pcrypt
