#pragma once

#include <istream>
#include <string>

#include "TesselPage/Structure/tessel_sourcebuffer.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_token.h"

namespace tessel_test {

/// A source over a text in sight, which nothing has been read of.
class RawSource {
 public:
  using BeyondEnd = TESSEL::SpanBuffer::BeyondEnd;

  /// @param rule  allow: behaves as a file; refuse: as a text in memory
  explicit RawSource(std::string text, BeyondEnd rule = BeyondEnd::allow)
      : bytes(std::move(text)), buffer(bytes, rule), stream(&buffer), file(stream) {}

  TESSEL::CSourFile& operator*() { return file; }
  TESSEL::CSourFile* operator->() { return &file; }
  TESSEL::CFileInfo& info() { return file.fileInfo; }

  /// The token that stands where the last read stopped.
  std::string nextToken() {
    std::string token;
    file >> token;
    return token;
  }

 private:
  std::string bytes;
  TESSEL::SpanBuffer buffer;
  std::istream stream;
  TESSEL::CSourFile file;
};

/// A file that is put together in the order of its bytes.
struct RawFile {
  std::string bytes;

  /// Appends, and gives the place where the text begins.
  long long put(const std::string& text) {
    const auto place = static_cast<long long>(bytes.size());
    bytes += text;
    return place;
  }
  long long end(long long startXRef) { return put("startxref\n" + std::to_string(startXRef) + "\n%%EOF\n"); }
};

/// A line of a classic table.
inline std::string xrefLine(long long offset, int generation = 0, char flag = 'n') {
  const std::string digits = std::to_string(offset);
  const std::string gen = std::to_string(generation);
  return std::string(10 - digits.size(), '0') + digits + ' ' + std::string(5 - gen.size(), '0') + gen + ' ' +
         flag + " \n";
}

}  // namespace tessel_test
