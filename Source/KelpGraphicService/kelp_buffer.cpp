#include "KelpGraphicService/kelp_buffer.h"

#include <algorithm>
#include <cstdlib>

namespace KelpGraphicService_NS {

Buffer::~Buffer() { std::free(bytes_); }

FtResult Buffer::grow(std::size_t extra) {
  if (extra > limit_ - size_) return ftTooLarge;
  const std::size_t doubled = std::min(limit_, capacity_ * 2);
  const std::size_t wanted = std::max(size_ + extra, doubled);
  void* grown = std::realloc(bytes_, wanted);
  if (!grown) return ftNoMemory;
  bytes_ = static_cast<unsigned char*>(grown);
  capacity_ = wanted;
  return ftSuccess;
}

void Buffer::release(MemTD& mem) {
  mem.data = reinterpret_cast<char*>(bytes_);
  mem.size = static_cast<std::uint32_t>(size_);
  mem.size64 = size_;
  bytes_ = nullptr;
  size_ = capacity_ = 0;
}

}  // namespace KelpGraphicService_NS
