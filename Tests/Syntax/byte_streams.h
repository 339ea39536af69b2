#pragma once

#include <functional>
#include <istream>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>

/// Streams and texts that readers are tried on.
namespace tessel_test {

/// Gives one byte at a time, so that no reader can look further; a byte `breakAt` counts from 0 and throws
/// when it is due.
class ByteBuffer : public std::streambuf {
 public:
  explicit ByteBuffer(std::string bytes, std::size_t breakingByte = std::string::npos)
      : text(std::move(bytes)), breakAt(breakingByte) {}

 protected:
  int_type underflow() override {
    if (place == breakAt) throw std::runtime_error("broken buffer");
    if (place == text.size()) return traits_type::eof();
    setg(text.data(), text.data() + place, text.data() + place + 1);
    ++place;
    return traits_type::to_int_type(*gptr());
  }
  pos_type seekoff(off_type offset, std::ios_base::seekdir from, std::ios_base::openmode) override {
    const auto here = static_cast<off_type>(place) - (egptr() - gptr());
    const off_type base = from == std::ios_base::cur ? here : 0;
    if (base + offset < 0 || base + offset > static_cast<off_type>(text.size()))
      return pos_type(off_type(-1));
    place = static_cast<std::size_t>(base + offset);
    setg(text.data(), text.data() + place, text.data() + place);
    return pos_type(base + offset);
  }
  pos_type seekpos(pos_type position, std::ios_base::openmode which) override {
    return seekoff(off_type(position), std::ios_base::beg, which);
  }

 private:
  std::string text;
  std::size_t breakAt;
  std::size_t place = 0;
};

/// Calls `each` with every text of at most `length` of these bytes.
inline void forEachText(const std::string& alphabet, std::size_t length,
                        const std::function<void(const std::string&)>& each, const std::string& begun = {}) {
  each(begun);
  if (begun.size() == length) return;
  for (const char c : alphabet) forEachText(alphabet, length, each, begun + c);
}

/// What is left of a stream whose state may be bad.
inline std::string rest(std::istream& in) {
  in.clear();
  std::ostringstream left;
  if (in.peek() != std::istream::traits_type::eof()) left << in.rdbuf();
  return left.str();
}

}  // namespace tessel_test
