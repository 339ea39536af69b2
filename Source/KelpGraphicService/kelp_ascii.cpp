#include <algorithm>
#include <array>
#include <cstdint>

#include "KelpGraphicService/kelp_codecs.h"

namespace KelpGraphicService_NS {
namespace {

constexpr bool isWhiteSpace(unsigned char c) {
  return c == '\0' || c == '\t' || c == '\n' || c == '\f' || c == '\r' || c == ' ';
}

constexpr int notADigit = -1;

constexpr int hexDigit(unsigned char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return notADigit;
}

constexpr unsigned char firstDigit85 = '!';
constexpr unsigned char lastDigit85 = 'u';
constexpr unsigned char fourZeros = 'z';
constexpr unsigned char endOfASCII85 = '~';
constexpr unsigned digitsOfGroup = 5;
constexpr unsigned bytesOfGroup = 4;

/// Writes the first `count` bytes of a group, most significant first. Requires: room for a group.
void putGroup(Buffer& out, std::uint32_t group, unsigned count) {
  for (unsigned i = 0; i < count; ++i) out.push(static_cast<unsigned char>(group >> (24U - 8U * i)));
}

/// Five digits of base 85 on their way to four bytes.
class Group85 {
 public:
  bool empty() const { return count_ == 0; }
  /// A lone digit stands for no byte at all.
  bool holdsBytes() const { return count_ > 1; }
  bool whole() const { return count_ == digitsOfGroup; }
  void add(unsigned char digit) {
    value_ = value_ * 85 + (digit - firstDigit85);
    ++count_;
  }
  /// Writes the group and empties it; false when its digits make more than 32 bits.
  bool flush(Buffer& out) {
    const unsigned given = count_;
    while (!whole()) add(lastDigit85);
    if (value_ > UINT32_MAX) return false;
    putGroup(out, static_cast<std::uint32_t>(value_), given - 1);
    value_ = count_ = 0;
    return true;
  }

 private:
  std::uint64_t value_ = 0;
  unsigned count_ = 0;
};

/// Text in lines of 72 columns, with no line end behind the last.
class LineWriter {
 public:
  explicit LineWriter(Buffer& out) : out_(out) {}
  void put(unsigned char c) {
    if (column_ == columns) breakLine();
    out_.push(c);
    ++column_;
  }
  /// A mark that must not be torn apart.
  void putTogether(unsigned char first, unsigned char second) {
    if (column_ == columns - 1) breakLine();
    put(first);
    put(second);
  }

  static constexpr std::size_t columns = 72;

 private:
  void breakLine() {
    out_.push('\n');
    column_ = 0;
  }

  Buffer& out_;
  std::size_t column_ = 0;
};

std::uint32_t loadGroup(Bytes in) {
  std::uint32_t group = 0;
  for (unsigned i = 0; i < bytesOfGroup; ++i) group = (group << 8U) | (i < in.size() ? in[i] : 0U);
  return group;
}

/// Four bytes as five digits; fewer bytes as one digit more than there are.
void encodeGroup(Bytes in, LineWriter& text) {
  std::uint32_t group = loadGroup(in);
  if (group == 0 && in.size() == bytesOfGroup) return text.put(fourZeros);
  std::array<unsigned char, digitsOfGroup> digits;
  for (unsigned i = digitsOfGroup; i-- > 0; group /= 85)
    digits[i] = static_cast<unsigned char>(firstDigit85 + group % 85);
  for (std::size_t i = 0; i <= in.size(); ++i) text.put(digits[i]);
}

}  // namespace

FtResult decodeASCIIHex(Bytes in, Buffer& out) {
  if (const FtResult result = out.reserve(in.size() / 2 + 1); result != ftSuccess) return result;
  int high = notADigit;
  for (const unsigned char c : in) {
    if (c == '>') break;
    if (isWhiteSpace(c)) continue;
    const int digit = hexDigit(c);
    if (digit == notADigit) return ftDamaged;
    if (high != notADigit) out.push(static_cast<unsigned char>(high * 16 + digit));
    high = high == notADigit ? digit : notADigit;
  }
  if (high != notADigit) out.push(static_cast<unsigned char>(high * 16));
  return ftSuccess;
}

FtResult decodeASCII85(Bytes in, Buffer& out) {
  Group85 group;
  for (const unsigned char c : in) {
    if (c == endOfASCII85) break;
    if (isWhiteSpace(c)) continue;
    if (const FtResult result = out.reserve(bytesOfGroup); result != ftSuccess) return result;
    if (c == fourZeros && group.empty()) {
      putGroup(out, 0, bytesOfGroup);
      continue;
    }
    if (c < firstDigit85 || c > lastDigit85) return ftDamaged;
    group.add(c);
    if (group.whole() && !group.flush(out)) return ftDamaged;
  }
  if (!group.holdsBytes()) return ftSuccess;
  return group.flush(out) ? ftSuccess : ftDamaged;
}

FtResult encodeASCII85(Bytes in, Buffer& out) {
  const std::size_t digits = (in.size() / bytesOfGroup + 1) * digitsOfGroup + 2;
  const std::size_t lineEnds = digits / LineWriter::columns + 1;
  if (const FtResult result = out.reserve(digits + lineEnds); result != ftSuccess) return result;
  LineWriter text(out);
  for (; !in.empty(); in = in.subspan(std::min<std::size_t>(in.size(), bytesOfGroup)))
    encodeGroup(in.first(std::min<std::size_t>(in.size(), bytesOfGroup)), text);
  text.putTogether(endOfASCII85, '>');
  return ftSuccess;
}

}  // namespace KelpGraphicService_NS
