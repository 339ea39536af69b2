#include <algorithm>
#include <cstring>

#include "KelpGraphicService/kelp_codecs.h"

namespace KelpGraphicService_NS {
namespace {

constexpr unsigned char endOfData = 128;
constexpr std::size_t longestRun = 128;

}  // namespace

/// ISO 32000-1, 7.4.5: a length below 128 has length + 1 bytes of its own, one above has a byte that is
/// repeated 257 - length times.
FtResult decodeRunLength(Bytes in, Buffer& out) {
  std::size_t at = 0;
  while (at + 1 < in.size() && in[at] != endOfData) {
    if (const FtResult result = out.reserve(longestRun); result != ftSuccess) return result;
    const std::size_t length = in[at++];
    if (length < endOfData) {
      const std::size_t n = std::min(length + 1, in.size() - at);
      std::memcpy(out.end(), in.data() + at, n);
      out.commit(n);
      at += n;
    } else {
      std::memset(out.end(), in[at++], 257 - length);
      out.commit(257 - length);
    }
  }
  return ftSuccess;
}

}  // namespace KelpGraphicService_NS
