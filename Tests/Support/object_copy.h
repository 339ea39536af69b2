#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

#include "TesselPage/Structure/tessel_sourcebuffer.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "Tests/Support/pdf_builder.h"

/// Object texts as the copiers write them.
namespace tessel_test {

/// A source over bytes that lie in memory, as those of a file given by path do.
struct MappedSource {
  explicit MappedSource(std::string text)
      : bytes(std::move(text)),
        buffer(bytes, TESSEL::SpanBuffer::BeyondEnd::allow),
        stream(&buffer),
        file(stream) {
    file.CheckAndInit();
  }
  std::string bytes;
  TESSEL::SpanBuffer buffer;
  std::istream stream;
  TESSEL::CSourFile file;
};

/// What a copy gave.
struct Copy {
  bool result = false;
  bool dropped = false;
  std::string text;

  bool operator==(const Copy&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Copy& copy) {
  return out << (copy.result ? "copied" : "failed") << (copy.dropped ? ", dropped: " : ": ") << copy.text;
}

/// Old object numbers and their new ones.
using Renumbering = std::initializer_list<std::pair<int, int>>;

template <class Object>
Copy copyFrom(TESSEL::CSourFile& source, int number, Renumbering table, bool raw) {
  TESSEL::CDestFile dest;
  dest.rawFlag = raw;
  for (const auto& [from, to] : table)
    dest.insertNewObjTab({0, 0, TESSEL::SObj(from, 0)}, TESSEL::SObj(to, 0));
  Object object;
  object.setIdentity(TESSEL::SObj(number, 0));
  Copy copy;
  copy.dropped = true;
  copy.result = object.LocalObj(dest, source, &copy.dropped);
  copy.text = std::move(static_cast<std::string&>(dest));
  return copy;
}

/// Copies an object as `Object` does, the same from a stream and from bytes in memory.
template <class Object>
Copy copyAs(const std::string& file, int number, Renumbering table = {}, bool raw = false) {
  MappedSource mapped(file);
  Copy copy = copyFrom<Object>(mapped.file, number, table, raw);
  const Source streamed = PdfBuilder::openBytes(file);
  EXPECT_EQ(copyFrom<Object>(*streamed, number, table, raw), copy);
  return copy;
}

}  // namespace tessel_test
