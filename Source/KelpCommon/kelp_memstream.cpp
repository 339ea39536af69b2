#include "KelpCommon/kelp_memstream.h"

namespace KelpCommonNS {

std::size_t KelpMemStream::read(void* data, std::size_t length) {
  const std::size_t taken = bytes.copy(static_cast<char*>(data), length, place);
  place += taken;
  return taken;
}

}  // namespace KelpCommonNS
