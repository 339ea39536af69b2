#include "TesselPage/Structure/tessel_sourcebuffer.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace TESSEL {

namespace {

constexpr std::size_t readBlock = 1U << 16;

/// The get area's pointers aren't const, though nothing here writes through them: pbackfail is never given.
char* writable(const char* text) { return const_cast<char*>(text); }

}  // namespace

SpanBuffer::SpanBuffer(std::string_view text, BeyondEnd rule) { assign(text, rule); }

void SpanBuffer::assign(std::string_view text, BeyondEnd rule) {
  whole = text;
  beyond = rule;
  stand(0);
}

SpanBuffer::off_type SpanBuffer::place() const { return (gptr() - whole.data()) + overshoot; }

void SpanBuffer::stand(off_type at) {
  char* const begin = writable(whole.data());
  const auto size = static_cast<off_type>(whole.size());
  overshoot = std::max<off_type>(at - size, 0);
  // Behind the end nothing may be put back, as with a file, so the get area is empty there.
  setg(overshoot > 0 ? begin + size : begin, begin + std::min(at, size), begin + size);
}

SpanBuffer::pos_type SpanBuffer::seekoff(off_type offset, std::ios_base::seekdir from,
                                         std::ios_base::openmode which) {
  const pos_type refused(off_type(-1));
  const auto size = static_cast<off_type>(whole.size());
  const off_type base = from == std::ios_base::beg ? 0 : from == std::ios_base::cur ? place() : size;
  off_type target = 0;
  if ((which & std::ios_base::in) == 0 || __builtin_add_overflow(base, offset, &target)) return refused;
  if (target < 0 || (target > size && beyond == BeyondEnd::refuse)) return refused;
  stand(target);
  return pos_type(target);
}

SpanBuffer::pos_type SpanBuffer::seekpos(pos_type position, std::ios_base::openmode which) {
  return seekoff(off_type(position), std::ios_base::beg, which);
}

std::streamsize SpanBuffer::xsgetn(char* to, std::streamsize n) {
  const std::streamsize taken = std::min<std::streamsize>(n, egptr() - gptr());
  if (taken <= 0) return 0;
  std::memcpy(to, gptr(), static_cast<std::size_t>(taken));
  setg(eback(), gptr() + taken, egptr());
  return taken;
}

SourceBuffer::~SourceBuffer() {
  if (mapping) munmap(mapping, mappedBytes);
}

bool SourceBuffer::open(const char* path) {
  const int file = ::open(path, O_RDONLY | O_CLOEXEC);
  if (file < 0) return false;
  opened = load(file);
  ::close(file);
  return opened;
}

void SourceBuffer::release() {
  if (mapping) madvise(mapping, mappedBytes, MADV_DONTNEED);
}

bool SourceBuffer::load(int file) {
  struct stat status {};
  if (fstat(file, &status) != 0) return false;
  const bool mappable = S_ISREG(status.st_mode) && status.st_size > 0;
  return (mappable && map(file, static_cast<std::size_t>(status.st_size))) || readAll(file);
}

bool SourceBuffer::map(int file, std::size_t bytes) {
  void* const start = mmap(nullptr, bytes, PROT_READ, MAP_PRIVATE, file, 0);
  if (start == MAP_FAILED) return false;
  mapping = start;
  mappedBytes = bytes;
  assign({static_cast<const char*>(start), bytes}, BeyondEnd::allow);
  return true;
}

bool SourceBuffer::readAll(int file) {
  char block[readBlock];
  ssize_t n = 0;
  while ((n = ::read(file, block, sizeof block)) != 0) {
    if (n > 0) readBytes.append(block, static_cast<std::size_t>(n));
    if (n < 0 && errno != EINTR) break;
  }
  if (n < 0) readBytes.clear();
  assign(readBytes, BeyondEnd::allow);
  return n == 0;
}

SourceStream::SourceStream(const char* path) : std::istream(nullptr) {
  const bool opened = buffer.open(path);
  rdbuf(&buffer);
  if (!opened) setstate(std::ios_base::failbit);
}

std::string_view spanOf(std::streambuf* buffer, bool& found) {
  const auto* span = dynamic_cast<const SpanBuffer*>(buffer);
  found = span != nullptr;
  return found ? span->text() : std::string_view();
}

void releaseMapped(std::streambuf* buffer) {
  if (auto* const mapped = dynamic_cast<SourceBuffer*>(buffer)) mapped->release();
}

}  // namespace TESSEL
