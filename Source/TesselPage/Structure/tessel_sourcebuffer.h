#pragma once

#include <cstddef>
#include <istream>
#include <streambuf>
#include <string>
#include <string_view>

namespace TESSEL {

/// A stream buffer whose get area is a whole text in memory, so that tokenising is pointer work and a
/// stream's body can be looked at in place.
class SpanBuffer : public std::streambuf {
 public:
  /// What a seek behind the end does: a file stands there and then reads nothing, a memory text refuses.
  enum class BeyondEnd { refuse, allow };

  /// The text isn't owned and must outlive the buffer.
  explicit SpanBuffer(std::string_view text, BeyondEnd rule = BeyondEnd::refuse);

  std::string_view text() const { return whole; }

 protected:
  SpanBuffer() = default;
  void assign(std::string_view text, BeyondEnd rule);
  /// A place in front of the text is refused in both rules; so is seeking for output.
  pos_type seekoff(off_type offset, std::ios_base::seekdir from, std::ios_base::openmode which) override;
  pos_type seekpos(pos_type position, std::ios_base::openmode which) override;
  std::streamsize xsgetn(char* to, std::streamsize n) override;
  std::streamsize showmanyc() override { return -1; }

 private:
  off_type place() const;
  void stand(off_type at);

  std::string_view whole;
  BeyondEnd beyond = BeyondEnd::refuse;
  off_type overshoot = 0;  ///< how far behind the end a file stands; the get area is then empty
};

/// The buffer of a source given by path: the file's bytes, mapped or read once. The file must not shrink
/// meanwhile.
class SourceBuffer : public SpanBuffer {
 public:
  SourceBuffer() = default;
  ~SourceBuffer() override;
  SourceBuffer(const SourceBuffer&) = delete;
  SourceBuffer& operator=(const SourceBuffer&) = delete;

  /// Requires: not open yet. False when the file can't be opened or read; the buffer is then empty.
  bool open(const char* path);
  bool isOpen() const { return opened; }
  /// Lets go of the memory behind a mapping. The bytes stay where they are, and come back when they are
  /// looked at.
  void release();

 private:
  bool load(int file);
  bool map(int file, std::size_t bytes);
  bool readAll(int file);

  bool opened = false;
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

/// SourceBuffer::release, when `buffer` is of that kind.
void releaseMapped(std::streambuf* buffer);

}  // namespace TESSEL
