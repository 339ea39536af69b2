#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>

#include "KelpGraphicService/kelp_codecs.h"

// A sound stream is decoded in one go by libdeflate, which needs the room beforehand and gives nothing for a
// stream that it can't finish. Only what it refuses goes through zlib, which tells an early end from damage.
// So does what has no right checksum: libdeflate takes codes for lengths and distances that the format
// doesn't have.

namespace KelpGraphicService_NS {
namespace {

constexpr std::size_t zlibHeaderSize = 2;
constexpr std::size_t usualRatio = 4;  ///< most page content and object streams stay below it
constexpr std::size_t minRoom = 256;
constexpr std::size_t zlibStep = 16384;
constexpr int rawDeflate = -MAX_WBITS;
constexpr int encodeLevel = 6;

/// RFC 1950, 2.2: deflate, a window of at most 32 KiB, no preset dictionary, the check bits right.
bool startsZlibStream(Bytes in) {
  const unsigned method = in[0];
  if ((method & 0x0FU) != Z_DEFLATED || (method >> 4U) > 7U) return false;
  if (in.size() == 1) return true;
  const unsigned flags = in[1];
  return (method * 256U + flags) % 31U == 0 && (flags & 0x20U) == 0;
}

struct FreeDecompressor {
  void operator()(libdeflate_decompressor* d) const { libdeflate_free_decompressor(d); }
};
struct FreeCompressor {
  void operator()(libdeflate_compressor* c) const { libdeflate_free_compressor(c); }
};

/// Whether the checksum that stands here is that of the decoded bytes (RFC 1950, 2.2).
bool checksumFits(Bytes stored, Bytes decoded) {
  constexpr std::size_t checksumSize = 4;
  constexpr unsigned bitsPerByte = 8;
  if (stored.size() < checksumSize) return false;
  std::uint32_t sum = 0;
  for (const unsigned char byte : stored.first(checksumSize)) sum = sum << bitsPerByte | byte;
  return libdeflate_adler32(1, decoded.data(), decoded.size()) == sum;
}

/// The quick path. Doubling the room keeps the repeated work below what the last round costs.
/// @return ftDamaged, with nothing appended, when the stream is not sound to the end of its checksum
FtResult decodeSound(Bytes body, Buffer& out) {
  const std::unique_ptr<libdeflate_decompressor, FreeDecompressor> decoder(libdeflate_alloc_decompressor());
  if (!decoder) return ftNoMemory;
  const std::size_t limit = out.limit() - out.size();
  std::size_t room = std::min(limit, std::max(minRoom, body.size() * usualRatio));
  for (;;) {
    if (const FtResult result = out.reserve(room); result != ftSuccess) return result;
    std::size_t used = 0;
    std::size_t written = 0;
    const libdeflate_result result = libdeflate_deflate_decompress_ex(decoder.get(), body.data(), body.size(),
                                                                      out.end(), out.room(), &used, &written);
    if (result == LIBDEFLATE_SUCCESS) {
      if (!checksumFits(body.subspan(used), {out.end(), written})) return ftDamaged;
      return out.commit(written), ftSuccess;
    }
    if (result != LIBDEFLATE_INSUFFICIENT_SPACE) return ftDamaged;
    if (out.room() >= limit) return ftTooLarge;
    room = std::min(limit, out.room() * 2);
  }
}

/// One z_stream over a whole input, which may be longer than its counters hold.
class Inflater {
 public:
  explicit Inflater(Bytes body) : rest_(body) { ready_ = inflateInit2(&stream_, rawDeflate) == Z_OK; }
  ~Inflater() {
    if (ready_) inflateEnd(&stream_);
  }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  bool ready() const { return ready_; }

  /// Fills the room of `out`, as far as the data reach.
  int step(Buffer& out) {
    if (stream_.avail_in == 0) feed();
    const auto room = static_cast<uInt>(std::min<std::size_t>(out.room(), most));
    stream_.next_out = out.end();
    stream_.avail_out = room;
    const int code = inflate(&stream_, Z_NO_FLUSH);
    out.commit(room - stream_.avail_out);
    return code;
  }

  bool starved() const { return stream_.avail_in == 0 && rest_.empty() && stream_.avail_out != 0; }

 private:
  static constexpr std::size_t most = std::numeric_limits<uInt>::max();

  void feed() {
    const Bytes part = rest_.first(std::min(rest_.size(), most));
    stream_.next_in = const_cast<Bytef*>(part.data());  // zlib only reads it
    stream_.avail_in = static_cast<uInt>(part.size());
    rest_ = rest_.subspan(part.size());
  }

  z_stream stream_{};
  Bytes rest_;
  bool ready_;
};

FtResult decodeAsFarAsItGoes(Bytes body, Buffer& out) {
  Inflater inflater(body);
  if (!inflater.ready()) return ftNoMemory;
  for (;;) {
    if (out.room() == 0) {
      const std::size_t left = out.limit() - out.size();
      const FtResult result = out.reserve(std::max<std::size_t>(1, std::min(left, zlibStep)));
      if (result != ftSuccess) return result;
    }
    const int code = inflater.step(out);
    if (code == Z_STREAM_END) return ftSuccess;
    if (code == Z_MEM_ERROR) return ftNoMemory;
    if (code != Z_OK && code != Z_BUF_ERROR) return ftDamaged;
    if (inflater.starved()) return ftSuccess;
  }
}

}  // namespace

FtResult decodeFlate(Bytes in, Buffer& out) {
  if (in.empty()) return ftSuccess;
  if (!startsZlibStream(in)) return ftDamaged;
  if (in.size() <= zlibHeaderSize) return ftSuccess;
  const Bytes body = in.subspan(zlibHeaderSize);
  const FtResult result = decodeSound(body, out);
  return result == ftDamaged ? decodeAsFarAsItGoes(body, out) : result;
}

FtResult encodeFlate(Bytes in, Buffer& out) {
  const std::unique_ptr<libdeflate_compressor, FreeCompressor> encoder(
      libdeflate_alloc_compressor(encodeLevel));
  if (!encoder) return ftNoMemory;
  const std::size_t bound = libdeflate_zlib_compress_bound(encoder.get(), in.size());
  if (const FtResult result = out.reserve(bound); result != ftSuccess) return result;
  out.commit(libdeflate_zlib_compress(encoder.get(), in.data(), in.size(), out.end(), out.room()));
  return ftSuccess;
}

}  // namespace KelpGraphicService_NS
