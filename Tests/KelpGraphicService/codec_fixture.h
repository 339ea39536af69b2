#pragma once

#include <zlib.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include "KelpGraphicService/kelp_graphic_service.h"

namespace KelpGraphicService_NS {

/// What a call of the service gave.
struct Outcome {
  int code;
  std::string bytes;
  bool operator==(const Outcome&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
  return out << "code " << outcome.code << ", " << outcome.bytes.size() << " bytes";
}

inline Outcome success(std::string bytes) { return {ftSuccess, std::move(bytes)}; }
inline Outcome failure(int code) { return {code, ""}; }

/// An input record on the bytes of `data`.
inline MemTD inputOf(std::string& data) {
  return {static_cast<std::uint32_t>(data.size()), data.size(), data.data()};
}

/// Moves an output record's bytes into an outcome and clears it.
inline Outcome take(int code, MemTD& output) {
  Outcome outcome{code, output.data ? std::string(output.data, output.size) : std::string()};
  Ft_MemClear(output);
  return outcome;
}

inline Outcome inflateWith(const FilterPropTD& prop, std::string data) {
  MemTD output;
  Ft_MemInit(output);
  const int code = Ft_InflateStream(inputOf(data), output, prop);
  return take(code, output);
}

inline Outcome deflateWith(FILTER_TYPE kind, std::string data, int mode = ftEncodeWhole) {
  FilterPropTD prop;
  prop.filterKind = kind;
  MemTD output;
  Ft_MemInit(output);
  const int code = Ft_DeflateStream(inputOf(data), output, prop, mode);
  return take(code, output);
}

inline Outcome inflateAs(FILTER_TYPE kind, std::string data) {
  FilterPropTD prop;
  prop.filterKind = kind;
  prop.earlyChange = 1;
  return inflateWith(prop, std::move(data));
}

/// A zlib stream by zlib itself.
inline std::string zlibStream(std::string_view plain, int level = Z_BEST_COMPRESSION) {
  uLongf size = compressBound(static_cast<uLong>(plain.size()));
  std::string packed(size, '\0');
  compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(plain.data()),
            static_cast<uLong>(plain.size()), level);
  packed.resize(size);
  return packed;
}

/// The bytes that the hexadecimal digits of `text` name; blanks are passed over.
inline std::string hex(std::string_view text) {
  const auto digit = [](char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; };
  std::string bytes;
  int high = -1;
  for (const char c : text) {
    if (c == ' ') continue;
    if (high >= 0) bytes += static_cast<char>(high * 16 + digit(c));
    high = high >= 0 ? -1 : digit(c);
  }
  return bytes;
}

/// `size` bytes that don't pack, always the same.
inline std::string noise(std::size_t size, unsigned seed = 1) {
  std::string bytes(size, '\0');
  for (char& c : bytes) {
    seed = seed * 1664525U + 1013904223U;
    c = static_cast<char>(seed >> 24U);
  }
  return bytes;
}

}  // namespace KelpGraphicService_NS
