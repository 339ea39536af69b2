#pragma once

#include <cstddef>
#include <span>

#include "KelpGraphicService/kelp_graphic_service.h"

namespace KelpGraphicService_NS {

using Bytes = std::span<const unsigned char>;

/// The bytes of a result while they grow: at the end of the heap block, never past a limit, nothing thrown.
class Buffer {
 public:
  /// @param limit  bytes that it may hold at most
  explicit Buffer(std::size_t limit = ftMaxOutput) : limit_(limit) {}
  ~Buffer();
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  /// Makes room for `extra` bytes behind the content; pointers into the buffer end.
  /// @return ftSuccess, or ftTooLarge or ftNoMemory with the content unchanged
  FtResult reserve(std::size_t extra) { return extra <= room() ? ftSuccess : grow(extra); }

  unsigned char* data() { return bytes_; }
  unsigned char* end() { return bytes_ + size_; }
  std::size_t size() const { return size_; }
  std::size_t room() const { return capacity_ - size_; }
  std::size_t limit() const { return limit_; }
  Bytes view() const { return {bytes_, size_}; }

  /// Takes `n` bytes that were written at end() into the content. Requires: n <= room().
  void commit(std::size_t n) { size_ += n; }
  /// Appends a byte. Requires: room() is not 0.
  void push(unsigned char byte) { bytes_[size_++] = byte; }
  /// Drops what stands behind the first `n` bytes.
  void truncate(std::size_t n) { size_ = n < size_ ? n : size_; }

  /// Hands the bytes to `mem`, for Ft_MemClear to free; the buffer is empty then.
  void release(MemTD& mem);

 private:
  FtResult grow(std::size_t extra);

  unsigned char* bytes_ = nullptr;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
  std::size_t limit_;
};

}  // namespace KelpGraphicService_NS
