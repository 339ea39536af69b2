#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace KelpCommonNS {

/// A stream of bytes in memory: written at its end, read from a place of its own.
class KelpMemStream {
 public:
  KelpMemStream() = default;
  /// A stream that holds a copy of these bytes, to be read from the first one.
  explicit KelpMemStream(std::string_view content) : bytes(content) {}

  /// Appends a copy of `length` bytes.
  void write(const void* data, std::size_t length) { bytes.append(static_cast<const char*>(data), length); }

  /// Takes up to `length` bytes. @return how many there were; 0 at the end
  std::size_t read(void* data, std::size_t length);

  /// Goes back to the first byte.
  void rewind() { place = 0; }

  std::size_t size() const { return bytes.size(); }

  /// The bytes not read yet; valid until the next write.
  std::string_view rest() const { return std::string_view(bytes).substr(place); }

 private:
  std::string bytes;
  std::size_t place = 0;
};

}  // namespace KelpCommonNS
