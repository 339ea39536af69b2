#include "TesselHost/host_deflate.h"

#include <libdeflate.h>

#include <new>

namespace TesselHost {

namespace {

constexpr int packLevel = 6;
constexpr int bitsPerByte = 8;

void appendBigEndian(std::string& out, unsigned long long value, int bytes) {
  for (int i = bytes - 1; i >= 0; --i)
    out += static_cast<char>(value >> static_cast<unsigned>(i * bitsPerByte));
}

}  // namespace

void Deflater::Release::operator()(libdeflate_compressor* allocated) const {
  libdeflate_free_compressor(allocated);
}

Deflater::Deflater() : compressor(libdeflate_alloc_compressor(packLevel)) {
  if (!compressor) throw std::bad_alloc();
}

std::string_view Deflater::pack(std::string_view data) {
  const std::size_t bound = libdeflate_zlib_compress_bound(compressor.get(), data.size());
  if (packed.size() < bound) packed.resize(bound);
  const std::size_t size =
      libdeflate_zlib_compress(compressor.get(), data.data(), data.size(), packed.data(), packed.size());
  return {packed.data(), size};
}

void Fingerprint::add(std::string_view bytes) {
  length += bytes.size();
  crc = libdeflate_crc32(crc, bytes.data(), bytes.size());
  adler = libdeflate_adler32(adler, bytes.data(), bytes.size());
}

std::string Fingerprint::bytes() const {
  std::string result;
  appendBigEndian(result, crc, 4);
  appendBigEndian(result, adler, 4);
  appendBigEndian(result, length, 8);
  return result;
}

}  // namespace TesselHost
