#pragma once

#include <cstdint>

/// Words of a fixed byte order in memory. Compilers make single loads and stores of these.
namespace pcrypt::bytes {

inline std::uint32_t loadLittle32(const unsigned char* p) {
  return std::uint32_t{p[0]} | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]} << 16 |
         std::uint32_t{p[3]} << 24;
}

inline void storeLittle32(unsigned char* p, std::uint32_t word) {
  for (int i = 0; i < 4; ++i) p[i] = static_cast<unsigned char>(word >> (8 * i));
}

inline std::uint32_t loadBig32(const unsigned char* p) {
  return std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 8 |
         std::uint32_t{p[3]};
}

inline void storeBig32(unsigned char* p, std::uint32_t word) {
  for (int i = 0; i < 4; ++i) p[i] = static_cast<unsigned char>(word >> (24 - 8 * i));
}

inline std::uint64_t loadBig64(const unsigned char* p) {
  return std::uint64_t{loadBig32(p)} << 32 | loadBig32(p + 4);
}

inline void storeBig64(unsigned char* p, std::uint64_t word) {
  storeBig32(p, static_cast<std::uint32_t>(word >> 32));
  storeBig32(p + 4, static_cast<std::uint32_t>(word));
}

/// The bytes of a string, for the interfaces that take unsigned ones.
inline const unsigned char* of(const char* text) { return reinterpret_cast<const unsigned char*>(text); }
inline unsigned char* of(char* text) { return reinterpret_cast<unsigned char*>(text); }

}  // namespace pcrypt::bytes
