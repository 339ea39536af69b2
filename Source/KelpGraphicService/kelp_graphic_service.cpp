#include "KelpGraphicService/kelp_graphic_service.h"

#include <cstdlib>

#include "KelpGraphicService/kelp_codecs.h"

namespace KelpGraphicService_NS {
namespace {

Bytes bytesOf(const MemTD& mem) {
  if (!mem.data) return {};
  return {reinterpret_cast<const unsigned char*>(mem.data), static_cast<std::size_t>(mem.size64)};
}

FtResult decode(Bytes in, Buffer& out, const FilterPropTD& prop) {
  switch (prop.filterKind) {
    case ftFlate:
      return decodeFlate(in, out);
    case ftLZW:
      return decodeLZW(in, out, prop.earlyChange != 0);
    case ftASCIIHex:
      return decodeASCIIHex(in, out);
    case ftASCII85:
      return decodeASCII85(in, out);
    case ftRunLength:
      return decodeRunLength(in, out);
    case ftCCITTFax:
      return decodeCCITTFax(in, out, prop);
    case ftDCT:
      return decodeDCT(in, out);
    default:
      return ftUnknownFilter;
  }
}

FtResult encode(Bytes in, Buffer& out, const FilterPropTD& prop) {
  switch (prop.filterKind) {
    case ftFlate:
      return encodeFlate(in, out);
    case ftASCII85:
      return encodeASCII85(in, out);
    default:
      return ftUnknownFilter;
  }
}

bool hasPrediction(const FilterPropTD& prop) {
  return prop.filterKind == ftFlate || prop.filterKind == ftLZW;
}

FtResult handOver(FtResult result, Buffer& bytes, MemTD& output) {
  if (result == ftSuccess) bytes.release(output);
  return result;
}

}  // namespace

void Ft_MemInit(MemTD& mem) noexcept { mem = MemTD{}; }

void Ft_MemClear(MemTD& mem) noexcept {
  std::free(mem.data);
  Ft_MemInit(mem);
}

int Ft_InflateStream(const MemTD& input, MemTD& output, const FilterPropTD& prop) noexcept {
  Buffer bytes;
  FtResult result = decode(bytesOf(input), bytes, prop);
  if (result == ftSuccess && hasPrediction(prop)) result = undoPrediction(bytes, prop);
  return handOver(result, bytes, output);
}

int Ft_DeflateStream(const MemTD& input, MemTD& output, const FilterPropTD& prop, int mode) noexcept {
  if (mode != ftEncodeWhole) return ftUnknownMode;
  Buffer bytes;
  const FtResult result = encode(bytesOf(input), bytes, prop);
  return handOver(result, bytes, output);
}

}  // namespace KelpGraphicService_NS
