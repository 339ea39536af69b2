#include "Tests/Support/pdf_builder.h"

#include <zlib.h>

#include <algorithm>
#include <cstdio>

namespace tessel_test {

namespace {

std::string number(long long value) { return std::to_string(value); }

/// `value` in `width` bytes, most significant first.
void appendBigEndian(std::string& out, long long value, int width) {
  for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) out += static_cast<char>((value >> shift) & 0xFF);
}

}  // namespace

std::string streamBody(const std::string& entries, const std::string& data) {
  return "<</Length " + number(static_cast<long long>(data.size())) + entries + ">>\nstream\n" + data +
         "\nendstream";
}

std::string deflated(const std::string& data) {
  uLongf size = compressBound(static_cast<uLong>(data.size()));
  std::string packed(size, '\0');
  compress(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(data.data()),
           static_cast<uLong>(data.size()));
  packed.resize(size);
  return packed;
}

PdfBuilder& PdfBuilder::header(std::string line) {
  headerLine = std::move(line);
  return *this;
}

PdfBuilder& PdfBuilder::before(std::string bytes) {
  prefix = std::move(bytes);
  return *this;
}

PdfBuilder& PdfBuilder::object(Identity id, std::string body) {
  objects.emplace_back(id, std::move(body));
  return *this;
}

PdfBuilder& PdfBuilder::stream(int objectNumber, const std::string& entries, const std::string& data) {
  return object(objectNumber, streamBody(entries, data));
}

PdfBuilder& PdfBuilder::compressed(int container, int objectNumber, std::string body) {
  containers[container].emplace_back(objectNumber, std::move(body));
  return *this;
}

PdfBuilder& PdfBuilder::root(int objectNumber) {
  rootNumber = objectNumber;
  return *this;
}

PdfBuilder& PdfBuilder::trailer(std::string entries) {
  trailerText = std::move(entries);
  return *this;
}

PdfBuilder& PdfBuilder::onePage(const std::string& pageEntries, const std::string& catalogEntries) {
  object(1, "<</Type/Catalog/Pages 2 0 R" + catalogEntries + ">>");
  object(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>");
  return object(3, "<</Type/Page/Parent 2 0 R " + pageEntries + ">>");
}

PdfBuilder& PdfBuilder::pageTree(const std::vector<int>& kids, const std::string& pagesEntries) {
  object(1, "<</Type/Catalog/Pages 2 0 R>>");
  std::string references;
  for (int kid : kids) references += number(kid) + " 0 R ";
  return object(2, "<</Type/Pages/Kids[" + references + "]/Count " +
                       number(static_cast<long long>(kids.size())) + pagesEntries + ">>");
}

void PdfBuilder::appendObject(Layout& layout, Identity id, const std::string& body) const {
  layout.offsets[id] = static_cast<long long>(layout.bytes.size() - prefix.size());
  layout.bytes += number(id.first) + " " + number(id.second) + " obj\n" + body + "\nendobj\n";
}

void PdfBuilder::appendContainers(Layout& layout) const {
  for (const auto& [container, members] : containers) {
    std::string index;
    std::string bodies;
    int place = 0;
    for (const auto& [objectNumber, body] : members) {
      index += number(objectNumber) + " " + number(static_cast<long long>(bodies.size())) + " ";
      bodies += body + " ";
      layout.compressedEntries[objectNumber] = {container, place++};
    }
    appendObject(layout, {container, 0},
                 streamBody("/Type/ObjStm/N " + number(place) + "/First " +
                                number(static_cast<long long>(index.size())),
                            index + bodies));
  }
}

std::string PdfBuilder::trailerEntries(int size) const {
  return "/Size " + number(size) + "/Root " + number(rootNumber) + " 0 R" + trailerText;
}

void PdfBuilder::appendTable(Layout& layout) const {
  const long long start = static_cast<long long>(layout.bytes.size() - prefix.size());
  layout.bytes += "xref\n0 1\n0000000000 65535 f \n";
  int size = 1;
  for (const auto& [id, offset] : layout.offsets) {
    char line[32];
    std::snprintf(line, sizeof line, "%010lld %05d n \n", offset, id.second);
    layout.bytes += number(id.first) + " 1\n" + line;
    size = std::max(size, id.first + 1);
  }
  layout.bytes += "trailer\n<<" + trailerEntries(size) + ">>\nstartxref\n" + number(start) + "\n%%EOF\n";
}

void PdfBuilder::appendXRefStream(Layout& layout) const {
  const long long start = static_cast<long long>(layout.bytes.size() - prefix.size());
  int own = 1;
  for (const auto& [id, offset] : layout.offsets) own = std::max(own, id.first + 1);
  for (const auto& [objectNumber, place] : layout.compressedEntries) own = std::max(own, objectNumber + 1);
  std::string index;
  std::string data;
  const auto entry = [&](int objectNumber, int type, long long second, int third) {
    index += number(objectNumber) + " 1 ";
    appendBigEndian(data, type, 1);
    appendBigEndian(data, second, 4);
    appendBigEndian(data, third, 2);
  };
  for (const auto& [id, offset] : layout.offsets) entry(id.first, 1, offset, id.second);
  for (const auto& [objectNumber, place] : layout.compressedEntries)
    entry(objectNumber, 2, place.first, place.second);
  entry(own, 1, start, 0);
  layout.bytes += number(own) + " 0 obj\n" +
                  streamBody("/Type/XRef/W[1 4 2]/Index[" + index + "]" + trailerEntries(own + 1), data) +
                  "\nendobj\nstartxref\n" + number(start) + "\n%%EOF\n";
}

PdfBuilder::Layout PdfBuilder::layOut() const {
  Layout layout;
  layout.bytes = prefix + headerLine + "\n";
  for (const auto& [id, body] : objects) appendObject(layout, id, body);
  appendContainers(layout);
  containers.empty() ? appendTable(layout) : appendXRefStream(layout);
  return layout;
}

std::string PdfBuilder::build() const { return layOut().bytes; }

long long PdfBuilder::offsetOf(int objectNumber) const { return layOut().offsets.at({objectNumber, 0}); }

Source PdfBuilder::openBytes(std::string bytes) {
  Source source;
  source.stream = std::make_unique<std::istringstream>(std::move(bytes));
  source.file = std::make_unique<TESSEL::CSourFile>(*source.stream);
  source.result = source.file->CheckAndInit();
  return source;
}

OpenPage PdfBuilder::openPageBytes(std::string bytes, const std::string& password) {
  OpenPage open;
  open.stream = std::make_unique<std::istringstream>(std::move(bytes));
  open.page = std::make_unique<TESSEL::CTesselPage>(*open.stream, password);
  open.result = open.page->init();
  return open;
}

}  // namespace tessel_test
