#include <array>
#include <cstdint>

#include "KelpGraphicService/kelp_codecs.h"

namespace KelpGraphicService_NS {
namespace {

constexpr unsigned clearTable = 256;
constexpr unsigned endOfData = 257;
constexpr unsigned firstFree = 258;
constexpr unsigned minWidth = 9;
constexpr unsigned maxWidth = 12;
constexpr unsigned tableSize = 1U << maxWidth;

/// Codes from the bytes, most significant bit first.
class CodeReader {
 public:
  explicit CodeReader(Bytes in) : at_(in.data()), end_(in.data() + in.size()) {}

  /// The next code; endOfData when fewer bits than `width` are left.
  unsigned next(unsigned width) {
    while (bitCount_ < width) {
      if (at_ == end_) return endOfData;
      bits_ = (bits_ << 8U) | *at_++;
      bitCount_ += 8;
    }
    bitCount_ -= width;
    return (bits_ >> bitCount_) & ((1U << width) - 1U);
  }

 private:
  const unsigned char* at_;
  const unsigned char* end_;
  std::uint32_t bits_ = 0;
  unsigned bitCount_ = 0;
};

/// The string of a code, as a place in the output. A new string is the last one and the byte behind it, and
/// that is how both stand there already: nothing but places has to be kept.
struct Span {
  std::size_t start;
  std::size_t length;
};

class Decoder {
 public:
  Decoder(Buffer& out, bool earlyChange) : out_(out), early_(earlyChange ? 1 : 0) {}

  FtResult run(CodeReader codes) {
    for (;;) {
      const unsigned code = codes.next(width_);
      if (code == endOfData) return ftSuccess;
      if (code == clearTable) {
        clear();
      } else if (const FtResult result = accept(code); result != ftSuccess) {
        return result;
      }
    }
  }

 private:
  void clear() {
    next_ = firstFree;
    width_ = minWidth;
    last_.length = 0;
  }

  FtResult accept(unsigned code) {
    // The string behind the last one gets its number now: the code may be that very number.
    const bool grows = last_.length != 0 && next_ < tableSize;
    if (grows) table_[next_++] = {last_.start, last_.length + 1};
    if (code >= next_) return ftDamaged;
    const Span now{out_.size(), code < clearTable ? 1 : table_[code].length};
    if (const FtResult result = out_.reserve(now.length); result != ftSuccess) return result;
    if (code < clearTable) {
      out_.push(static_cast<unsigned char>(code));
    } else {
      repeat(table_[code]);
    }
    last_ = now;
    if (next_ + early_ >= (1U << width_) && width_ < maxWidth) ++width_;
    return ftSuccess;
  }

  /// Byte by byte, as a string may reach into what is being written.
  void repeat(Span span) {
    unsigned char* to = out_.end();
    const unsigned char* from = out_.data() + span.start;
    for (std::size_t i = 0; i < span.length; ++i) to[i] = from[i];
    out_.commit(span.length);
  }

  Buffer& out_;
  unsigned early_;
  unsigned next_ = firstFree;
  unsigned width_ = minWidth;
  Span last_{0, 0};
  std::array<Span, tableSize> table_;
};

}  // namespace

FtResult decodeLZW(Bytes in, Buffer& out, bool earlyChange) {
  return Decoder(out, earlyChange).run(CodeReader(in));
}

}  // namespace KelpGraphicService_NS
