#pragma once

#include <atomic>
#include <cstddef>
#include <string>

/// Where the chance of the security code comes from. Like `rand` itself, which is the default, the choice
/// holds for the whole process; any thread may make it at any time.
namespace pcrypt {

inline constexpr std::size_t initialVectorSize = 16;

/// The choice itself. Inline, so that a program which links this library beside a shared one that holds it
/// too makes one choice for both.
inline std::atomic<bool>& systemSwitch() {
  static std::atomic<bool> on = false;
  return on;
}

/// Takes chance from the operating system's random source from here on, or from the C library's `rand` again.
void useSystemRandom(bool on);

/// Whether the operating system's random source is in use.
bool systemRandomInUse();

/// `count` bytes of the operating system's random source, whatever is in use; empty when it gives none.
std::string systemRandom(std::size_t count);

/// Writes the 16 bytes of an initial vector for AES, each from 1 to 254. `rand` is never seeded here.
void makeInitialVector(unsigned char* vector);

}  // namespace pcrypt
