#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "KelpGraphicService/kelp_codecs.h"

// Prediction is taken back in place: a PNG row moves up by the tag bytes before it, then gets its sums.

namespace KelpGraphicService_NS {
namespace {

constexpr int tiffPredictor = 2;
constexpr int firstPNGPredictor = 10;
constexpr int lastPNGPredictor = 15;

/// What a row is made of.
struct Layout {
  std::size_t colors;
  std::size_t bits;     ///< of a component
  std::size_t samples;  ///< components in a row, of all colours
  std::size_t rowBytes;
  std::size_t sampleBytes;  ///< from a byte to the same one of the pixel to its left, at least 1
};

std::size_t orDefault(std::int32_t value, std::size_t fallback) {
  return value < 1 ? fallback : static_cast<std::size_t>(value);
}

bool isBitDepth(std::size_t bits) { return bits == 1 || bits == 2 || bits == 4 || bits == 8 || bits == 16; }

/// @return false when the parameters make no row that could be counted in bytes
bool layOut(const FilterPropTD& prop, Layout& layout) {
  layout.colors = orDefault(prop.colors, 1);
  layout.bits = orDefault(prop.bitsPerComponent, 8);
  std::size_t rowBits = 0;
  if (!isBitDepth(layout.bits)) return false;
  if (__builtin_mul_overflow(layout.colors, orDefault(prop.columns, 1), &layout.samples)) return false;
  if (__builtin_mul_overflow(layout.samples, layout.bits, &rowBits) || rowBits > SIZE_MAX - 7) return false;
  layout.rowBytes = (rowBits + 7) / 8;
  layout.sampleBytes = (layout.colors * layout.bits + 7) / 8;
  return true;
}

unsigned char sum(unsigned a, unsigned b) { return static_cast<unsigned char>(a + b); }

// The PNG filters (ISO/IEC 15948, 9.2) on one row of n bytes, with the row above and the distance to the
// pixel on the left.

void undoSub(unsigned char* row, std::size_t n, std::size_t left) {
  for (std::size_t i = left; i < n; ++i) row[i] = sum(row[i], row[i - left]);
}

void undoUp(unsigned char* __restrict row, const unsigned char* __restrict above, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) row[i] = sum(row[i], above[i]);
}

void undoAverage(unsigned char* row, const unsigned char* above, std::size_t n, std::size_t left) {
  const std::size_t edge = std::min(left, n);
  for (std::size_t i = 0; i < edge; ++i) row[i] = sum(row[i], above[i] / 2U);
  for (std::size_t i = edge; i < n; ++i) row[i] = sum(row[i], (unsigned{row[i - left]} + above[i]) / 2U);
}

unsigned paeth(int a, int b, int c) {
  const int toA = std::abs(b - c);
  const int toB = std::abs(a - c);
  const int toC = std::abs(a + b - 2 * c);
  const int nearer = toB <= toC ? b : c;
  return static_cast<unsigned>(toA <= toB && toA <= toC ? a : nearer);
}

void undoPaeth(unsigned char* row, const unsigned char* above, std::size_t n, std::size_t left) {
  const std::size_t edge = std::min(left, n);
  undoUp(row, above, edge);
  for (std::size_t i = edge; i < n; ++i)
    row[i] = sum(row[i], paeth(row[i - left], above[i], above[i - left]));
}

bool undoPNGRow(unsigned tag, unsigned char* row, const unsigned char* above, std::size_t n,
                std::size_t left) {
  switch (tag) {
    case 0:
      return true;
    case 1:
      undoSub(row, n, left);
      return true;
    case 2:
      undoUp(row, above, n);
      return true;
    case 3:
      undoAverage(row, above, n, left);
      return true;
    case 4:
      undoPaeth(row, above, n, left);
      return true;
    default:
      return false;
  }
}

/// Each row says by a tag byte which filter it has, whatever of 10 to 15 the predictor is.
FtResult undoPNG(Buffer& data, const Layout& layout) {
  const std::size_t widest = std::min(layout.rowBytes, data.size());
  const std::unique_ptr<unsigned char[]> blank(new (std::nothrow) unsigned char[widest]());
  if (!blank) return ftNoMemory;
  const unsigned char* from = data.data();
  const unsigned char* const end = data.end();
  const unsigned char* above = blank.get();
  unsigned char* row = data.data();
  while (end - from > 1) {
    const unsigned tag = *from++;
    const std::size_t n = std::min(layout.rowBytes, static_cast<std::size_t>(end - from));
    std::memmove(row, from, n);
    if (!undoPNGRow(tag, row, above, n, layout.sampleBytes)) return ftDamaged;
    above = row;
    row += n;
    from += n;
  }
  data.truncate(static_cast<std::size_t>(row - data.data()));
  return ftSuccess;
}

// TIFF's predictor 2 (TIFF 6.0, section 14) on one row: each component is the difference to the one on its
// left.

void undoDifference16(unsigned char* row, std::size_t n, std::size_t left) {
  for (std::size_t i = left; i + 1 < n; i += 2) {
    const unsigned value = row[i] * 256U + row[i + 1] + row[i - left] * 256U + row[i - left + 1];
    row[i] = static_cast<unsigned char>(value >> 8U);
    row[i + 1] = static_cast<unsigned char>(value);
  }
}

/// Components of less than a byte, which never cross one.
class PackedRow {
 public:
  PackedRow(unsigned char* row, std::size_t bits) : row_(row), bits_(bits), mask_((1U << bits) - 1U) {}
  unsigned get(std::size_t i) const { return (row_[i * bits_ / 8] >> shift(i)) & mask_; }
  void add(std::size_t i, unsigned value) {
    unsigned char& byte = row_[i * bits_ / 8];
    const unsigned sum = ((byte >> shift(i)) + value) & mask_;
    byte = static_cast<unsigned char>((byte & ~(mask_ << shift(i))) | (sum << shift(i)));
  }

 private:
  unsigned shift(std::size_t i) const { return static_cast<unsigned>(8 - bits_ - i * bits_ % 8); }

  unsigned char* row_;
  std::size_t bits_;
  unsigned mask_;
};

void undoDifferencePacked(unsigned char* row, std::size_t n, const Layout& layout) {
  PackedRow packed(row, layout.bits);
  const std::size_t samples = std::min(layout.samples, n * 8 / layout.bits);
  for (std::size_t i = layout.colors; i < samples; ++i) packed.add(i, packed.get(i - layout.colors));
}

void undoTIFFRow(unsigned char* row, std::size_t n, const Layout& layout) {
  if (layout.bits == 8) return undoSub(row, n, layout.sampleBytes);
  if (layout.bits == 16) return undoDifference16(row, n, layout.sampleBytes);
  undoDifferencePacked(row, n, layout);
}

FtResult undoTIFF(Buffer& data, const Layout& layout) {
  unsigned char* row = data.data();
  std::size_t left = data.size();
  while (left != 0) {
    const std::size_t n = std::min(layout.rowBytes, left);
    undoTIFFRow(row, n, layout);
    row += n;
    left -= n;
  }
  return ftSuccess;
}

}  // namespace

FtResult undoPrediction(Buffer& data, const FilterPropTD& prop) {
  if (prop.predictor < tiffPredictor) return ftSuccess;
  const bool isPNG = prop.predictor >= firstPNGPredictor && prop.predictor <= lastPNGPredictor;
  Layout layout{};
  if ((!isPNG && prop.predictor != tiffPredictor) || !layOut(prop, layout)) return ftDamaged;
  return isPNG ? undoPNG(data, layout) : undoTIFF(data, layout);
}

}  // namespace KelpGraphicService_NS
