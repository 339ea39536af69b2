#pragma once

#include <istream>
#include <streambuf>
#include <string>
#include <string_view>

namespace TESSEL {

/// A stream buffer whose get area is a whole text in memory, so that tokenising is pointer work and a stream's body can be
/// looked at in place.
class SpanBuffer : public std::streambuf {
 public:
  /// What a seek behind the end does: a file stands there and then reads nothing, a memory text refuses.
  enum class BeyondEnd { refuse, allow };

  /// The text isn't owned and must outlive the buffer.
  explicit SpanBuffer(std::string_view text, BeyondEnd rule = BeyondEnd::refuse);

  std::string_view text() const { return {eback(), static_cast<std::size_t>(egptr() - eback())}; }

 protected:
  SpanBuffer() = default;
  void assign(std::string_view text, BeyondEnd rule);
  pos_type seekoff(off_type offset, std::ios_base::seekdir from, std::ios_base::openmode which) override;
  pos_type seekpos(pos_type position, std::ios_base::openmode which) override;
  std::streamsize xsgetn(char* to, std::streamsize n) override;
  std::streamsize showmanyc() override { return -1; }

 private:
  BeyondEnd beyond = BeyondEnd::refuse;
  off_type overshoot = 0;  ///< how far behind the end a file stands
};

/// The buffer of a source given by path: the file's bytes, mapped or read once.
class SourceBuffer : public SpanBuffer {
 public:
  SourceBuffer() = default;
  ~SourceBuffer() override;
  SourceBuffer(const SourceBuffer&) = delete;
  SourceBuffer& operator=(const SourceBuffer&) = delete;

  /// False when the file can't be opened or read; the buffer is then empty.
  bool open(const char* path);

 private:
  void* mapping = nullptr;
  std::size_t mappedBytes = 0;
  std::string readBytes;  ///< for what can't be mapped, such as a pipe
};

/// A stream that owns its SourceBuffer. A failed open sets the fail bit and nothing else.
class SourceStream : public std::istream {
 public:
  explicit SourceStream(const char* path);

 private:
  SourceBuffer buffer;
};

/// The text that may be looked at in place, when `buffer` is of that kind; else empty, with `found` false.
std::string_view spanOf(std::streambuf* buffer, bool& found);

}  // namespace TESSEL
