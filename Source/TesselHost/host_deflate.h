#pragma once

#include <memory>
#include <string>
#include <string_view>

struct libdeflate_compressor;

namespace TesselHost {

/// Packs data for the filter FlateDecode (ISO 32000-2, 7.4.4; RFC 1950). One thread at a time.
class Deflater {
 public:
  Deflater();

  /// The packed data, valid until the next call.
  std::string_view pack(std::string_view data);

 private:
  struct Release {
    void operator()(libdeflate_compressor* allocated) const;
  };
  std::unique_ptr<libdeflate_compressor, Release> compressor;
  std::string packed;
};

/// Takes in bytes piece by piece and gives a number that tells contents apart; it protects against nobody.
class Fingerprint {
 public:
  void add(std::string_view bytes);
  /// 16 bytes.
  std::string bytes() const;

 private:
  unsigned long long length = 0;
  unsigned crc = 0;
  unsigned adler = 1;
};

}  // namespace TesselHost
