#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What the fuzz targets share.
namespace fuzz {

/// Ends the run when what the target promises doesn't hold.
inline void require(bool holds) {
  if (!holds) __builtin_trap();
}

/// The input, taken from its front.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

  /// The next byte; 0 when there is none.
  unsigned char byte() {
    if (rest_.empty()) return 0;
    const char first = rest_.front();
    rest_.remove_prefix(1);
    return static_cast<unsigned char>(first);
  }
  /// Up to and without the next byte `end`.
  std::string line(char end = '\n') {
    const std::size_t length = rest_.find(end);
    const std::string text(rest_.substr(0, length));
    rest_.remove_prefix(length == std::string_view::npos ? rest_.size() : length + 1);
    return text;
  }
  std::string rest() const { return std::string(rest_); }

 private:
  std::string_view rest_;
};

/// A file with these objects, from 1, and a table that leads to them.
inline std::string pdfOf(const std::vector<std::string>& objects, const std::string& trailer) {
  std::string file = "%PDF-1.7\n";
  std::string table = "xref\n0 " + std::to_string(objects.size() + 1) + "\n0000000000 65535 f\r\n";
  for (std::size_t i = 0; i < objects.size(); ++i) {
    const std::string offset = std::to_string(file.size());
    table += std::string(10 - offset.size(), '0') + offset + " 00000 n\r\n";
    file += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
  }
  const std::string start = std::to_string(file.size());
  return file + table + "trailer\n<</Root 1 0 R/Size " + std::to_string(objects.size() + 1) + trailer +
         ">>\nstartxref\n" + start + "\n%%EOF\n";
}

}  // namespace fuzz
