#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

#include "KelpGraphicService/kelp_codecs.h"

// libtiff decodes fax rows out of TIFF files only, so the data get the shortest head that describes them: one
// strip, with as many rows as its bits could hold. Where they end shows in what libtiff complains of: past
// the last row it misses the rest of a line, for every scheme and with or without a mark that closes the
// data.

namespace KelpGraphicService_NS {
namespace {

constexpr std::uint32_t defaultColumns = 1728;
constexpr std::uint32_t maxColumns = 1U << 17;          ///< the widest plotters stay below 2^16
constexpr std::size_t maxInput = std::size_t{1} << 28;  ///< rows and offsets stay in 31 bits
constexpr std::size_t endOfLineZeros = 11;              ///< an end-of-line code is these and a 1
constexpr std::size_t longestCodeWord = 2;              ///< bytes that 13 bits take, rounded up
constexpr std::string_view complaintAtEnd = "Premature";

/// How the rows are coded, in libtiff's terms.
struct Scheme {
  std::uint16_t compression;
  std::uint32_t options;  ///< of Group 3
  int mode;               ///< a FAXMODE
};

/// Whether the data begin with an end-of-line code, behind any number of fill bits.
bool beginsWithEndOfLine(Bytes in) {
  const auto first = std::find_if(in.begin(), in.end(), [](unsigned char c) { return c != 0; });
  if (first == in.end()) return false;
  const auto zeros = static_cast<std::size_t>(first - in.begin()) * 8;
  return zeros + static_cast<std::size_t>(__builtin_clz(*first)) - 24 >= endOfLineZeros;
}

Scheme schemeOf(Bytes in, const FilterPropTD& prop) {
  if (prop.k < 0) return {COMPRESSION_CCITTFAX4, 0, FAXMODE_CLASSIC};
  if (prop.k > 0) return {COMPRESSION_CCITTFAX3, GROUP3OPT_2DENCODING, FAXMODE_CLASSIC};
  if (prop.endOfLine > 0 || beginsWithEndOfLine(in)) return {COMPRESSION_CCITTFAX3, 0, FAXMODE_CLASSIC};
  const int align = prop.encodedByteAlign > 0 ? FAXMODE_BYTEALIGN : 0;
  return {COMPRESSION_CCITTRLE, 0, FAXMODE_NORTC | FAXMODE_NOEOL | align};
}

/// A little-endian TIFF file (TIFF 6.0, section 2) up to its strip.
class Head {
 public:
  Head(Scheme scheme, std::uint32_t columns, std::uint32_t rows, std::uint32_t stripBytes) {
    put("II\x2A\0\x08\0\0\0");
    put16(entries);
    entry(TIFFTAG_IMAGEWIDTH, columns);
    entry(TIFFTAG_IMAGELENGTH, rows);
    entry(TIFFTAG_BITSPERSAMPLE, 1);
    entry(TIFFTAG_COMPRESSION, scheme.compression);
    entry(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
    entry(TIFFTAG_STRIPOFFSETS, size);
    entry(TIFFTAG_SAMPLESPERPIXEL, 1);
    entry(TIFFTAG_ROWSPERSTRIP, rows);
    entry(TIFFTAG_STRIPBYTECOUNTS, stripBytes);
    // Only Group 3 looks at it; elsewhere it draws a warning while the file is opened, which is not counted.
    entry(TIFFTAG_GROUP3OPTIONS, scheme.options);
    put32(0);
  }

  Bytes bytes() const { return bytes_; }

 private:
  static constexpr std::uint16_t entries = 10;
  static constexpr std::uint32_t size = 8 + 2 + entries * 12 + 4;

  void put(const char (&text)[9]) {
    for (std::size_t i = 0; i < 8; ++i) bytes_[at_++] = static_cast<unsigned char>(text[i]);
  }
  void put16(std::uint32_t value) {
    bytes_[at_++] = static_cast<unsigned char>(value);
    bytes_[at_++] = static_cast<unsigned char>(value >> 8U);
  }
  void put32(std::uint32_t value) {
    put16(value);
    put16(value >> 16U);
  }
  void entry(std::uint32_t tag, std::uint32_t value) {
    put16(tag);
    put16(TIFF_LONG);
    put32(1);
    put32(value);
  }

  std::array<unsigned char, size> bytes_{};
  std::size_t at_ = 0;
};

/// The head and the data behind it, as one file in memory.
struct File {
  Bytes head;
  Bytes data;
  std::size_t at = 0;

  std::size_t size() const { return head.size() + data.size(); }

  std::size_t read(unsigned char* to, std::size_t n) {
    std::size_t done = 0;
    while (done < n && at < size()) {
      const Bytes part = at < head.size() ? head.subspan(at) : data.subspan(at - head.size());
      const std::size_t now = std::min(n - done, part.size());
      std::memcpy(to + done, part.data(), now);
      done += now;
      at += now;
    }
    return done;
  }
};

tmsize_t readFile(thandle_t file, void* to, tmsize_t n) {
  auto* bytes = static_cast<unsigned char*>(to);
  return static_cast<tmsize_t>(static_cast<File*>(file)->read(bytes, static_cast<std::size_t>(n)));
}
tmsize_t writeFile(thandle_t /*file*/, void* /*from*/, tmsize_t /*n*/) { return 0; }
toff_t seekFile(thandle_t handle, toff_t offset, int from) {
  File& file = *static_cast<File*>(handle);
  const std::size_t base = from == SEEK_CUR ? file.at : from == SEEK_END ? file.size() : 0;
  return file.at = base + offset;
}
int closeFile(thandle_t /*file*/) { return 0; }
toff_t sizeOfFile(thandle_t file) { return static_cast<File*>(file)->size(); }

/// What libtiff complained of first, with the row and the column; empty when it was content.
class Complaint {
 public:
  void set(const char* format, va_list values) {
    if (!any()) std::vsnprintf(text_.data(), text_.size(), format, values);
  }
  void forget() { text_ = {}; }
  bool any() const { return text_[0] != '\0'; }
  bool isAboutTheEnd() const { return std::string_view(text_.data()).starts_with(complaintAtEnd); }
  bool operator==(const Complaint&) const = default;

 private:
  std::array<char, 128> text_{};
};

int onComplaint(TIFF* /*tiff*/, void* complaint, const char* /*module*/, const char* format, va_list values) {
  static_cast<Complaint*>(complaint)->set(format, values);
  return 1;  // handled: nothing goes to the global handler, which prints
}

struct CloseTIFF {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
struct FreeOptions {
  void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};
using Image = std::unique_ptr<TIFF, CloseTIFF>;

Image openImage(File& file, Complaint& complaint) {
  const std::unique_ptr<TIFFOpenOptions, FreeOptions> options(TIFFOpenOptionsAlloc());
  if (!options) return nullptr;
  TIFFOpenOptionsSetErrorHandlerExtR(options.get(), onComplaint, &complaint);
  TIFFOpenOptionsSetWarningHandlerExtR(options.get(), onComplaint, &complaint);
  return Image(TIFFClientOpenExt("fax", "rm", &file, readFile, writeFile, seekFile, closeFile, sizeOfFile,
                                 nullptr, nullptr, options.get()));
}

FtResult readRows(TIFF* tiff, std::uint32_t rows, const Complaint& complaint, Buffer& out) {
  const auto rowBytes = static_cast<std::size_t>(TIFFScanlineSize(tiff));
  for (std::uint32_t row = 0; row < rows; ++row) {
    if (const FtResult result = out.reserve(rowBytes); result != ftSuccess) return result;
    std::memset(out.end(), 0, rowBytes);
    const bool read = TIFFReadScanline(tiff, out.end(), row) == 1;
    if (complaint.any()) return ftSuccess;
    if (!read) return ftDamaged;
    out.commit(rowBytes);
  }
  return ftSuccess;
}

/// What all rows of an image have in common.
struct Format {
  Scheme scheme;
  std::uint32_t columns;
  std::uint32_t rows;
};

/// Appends the rows up to the first complaint.
FtResult decodeRows(Bytes in, const Format& format, Buffer& out, Complaint& complaint) {
  const Head head(format.scheme, format.columns, format.rows, static_cast<std::uint32_t>(in.size()));
  File file{head.bytes(), in};
  const Image image = openImage(file, complaint);
  if (!image) return ftNoMemory;
  if (format.scheme.mode != FAXMODE_CLASSIC) TIFFSetField(image.get(), TIFFTAG_FAXMODE, format.scheme.mode);
  complaint.forget();
  return readRows(image.get(), format.rows, complaint, out);
}

/// Whether a complaint is about damage. A code word that the end of the data cuts off reads as another one,
/// so a complaint counts only when it stays the same without the last bytes.
bool isDamage(Bytes in, const Format& format, const Complaint& complaint) {
  if (!complaint.any() || complaint.isAboutTheEnd() || in.size() <= longestCodeWord) return false;
  Buffer rows;
  Complaint again;
  decodeRows(in.first(in.size() - longestCodeWord), format, rows, again);
  return again == complaint;
}

/// libtiff's black is 1, that of PDF 0.
void turnBlackTo0(unsigned char* bytes, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) bytes[i] = static_cast<unsigned char>(~bytes[i]);
}

}  // namespace

FtResult decodeCCITTFax(Bytes in, Buffer& out, const FilterPropTD& prop) {
  if (in.empty()) return ftSuccess;
  if (in.size() > maxInput) return ftTooLarge;
  const std::uint32_t columns = prop.columns < 1 ? defaultColumns : static_cast<std::uint32_t>(prop.columns);
  if (columns > maxColumns) return ftDamaged;
  const auto bits = static_cast<std::uint32_t>(in.size() * 8);
  const std::uint32_t rows = prop.rows < 1 ? bits : std::min(bits, static_cast<std::uint32_t>(prop.rows));

  const Format format{schemeOf(in, prop), columns, rows};
  const std::size_t start = out.size();
  Complaint complaint;
  if (const FtResult result = decodeRows(in, format, out, complaint); result != ftSuccess) return result;
  if (isDamage(in, format, complaint)) return ftDamaged;
  if (prop.blackIs1 < 1) turnBlackTo0(out.data() + start, out.size() - start);
  return ftSuccess;
}

}  // namespace KelpGraphicService_NS
