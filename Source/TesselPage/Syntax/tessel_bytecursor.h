#pragma once

#include <cstddef>
#include <istream>
#include <streambuf>
#include <string>
#include <string_view>

#include "TesselPage/Syntax/tessel_token.h"

namespace TESSEL {

/// The get area of any stream buffer: what may be looked at without a call of the buffer.
class GetArea : public std::streambuf {
 public:
  static std::string_view of(const std::streambuf& buffer) {
    const char* const first = (buffer.*&GetArea::gptr)();
    return {first, static_cast<std::size_t>((buffer.*&GetArea::egptr)() - first)};
  }
  /// Bytes of the get area that lie before the next one.
  static std::ptrdiff_t consumed(const std::streambuf& buffer) {
    return (buffer.*&GetArea::gptr)() - (buffer.*&GetArea::eback)();
  }
  /// Steps over `n` bytes of the get area. Requires: they are there, and n fits an int.
  static void step(std::streambuf& buffer, std::size_t n) { (buffer.*&GetArea::gbump)(static_cast<int>(n)); }
};

/// White space of the formatted reads ("C" locale); narrower than the tokeniser's.
constexpr bool isFormatSpace(int byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

constexpr bool isDigit(int byte) { return byte >= '0' && byte <= '9'; }

/// Value of a hexadecimal digit, or -1.
constexpr int hexValue(int byte) {
  if (isDigit(byte)) return byte - '0';
  const int lower = byte | 0x20;
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

inline bool isRegular(char c) { return getCharTokenType(c) == static_cast<char>(TokenClass::regular); }
inline bool isWhiteSpace(char c) { return getCharTokenType(c) == static_cast<char>(TokenClass::whiteSpace); }

/// Reads the bytes of a stream straight from its buffer, where a get of the stream would build a sentry for
/// each. Requires: the stream is good. Its state is touched by `fail` alone.
class ByteCursor {
 public:
  static constexpr int end = -1;  ///< what the reads give where a get would fail

  explicit ByteCursor(std::istream& in) : stream(in), bytes(*in.rdbuf()) {}

  /// The next byte as an unsigned value; it stays.
  int peek() {
    return guarded([this] { return bytes.sgetc(); });
  }
  /// The next byte, consumed.
  int take() {
    return guarded([this] { return bytes.sbumpc(); });
  }
  /// Consumes one byte and gives the one behind it.
  int next() {
    return guarded([this] { return bytes.snextc(); });
  }
  /// Consumes white space of the formatted reads and gives the byte behind it.
  int skipFormatSpace() {
    int byte = peek();
    while (isFormatSpace(byte)) byte = next();
    return byte;
  }

  std::string_view area() const { return GetArea::of(bytes); }
  void step(std::size_t n) { GetArea::step(bytes, n); }

  /// Sets the state that a get which met the end leaves.
  void fail() { stream.setstate(reason | std::ios_base::failbit); }
  /// The state bit of the end that was met: that of a broken buffer is another.
  std::ios_base::iostate endState() const { return reason; }

 private:
  /// A buffer that throws breaks the stream, as with the stream's own reads.
  template <class Read>
  int guarded(Read read) {
    try {
      return read();
    } catch (...) {
      reason = std::ios_base::badbit;
      if ((stream.exceptions() & std::ios_base::badbit) != 0) throw;
      return end;
    }
  }

  std::istream& stream;
  std::streambuf& bytes;
  std::ios_base::iostate reason = std::ios_base::eofbit;
};

}  // namespace TESSEL
