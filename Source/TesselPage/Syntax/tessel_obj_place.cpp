#include <algorithm>
#include <istream>

#include "TesselPage/Structure/tessel_objectposition.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_obj.h"
#include "TesselPage/Syntax/tessel_token.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

namespace {

constexpr std::size_t readBlock = 1U << 16;

/// The source with the file behind it, ready for a seek though a reader of a memory source left it failed.
CSourFile& fileOf(CSourFile& source) {
  CSourFile& file = source.mainSource();
  if (&file != &source && !file.good()) file.clear();
  return file;
}

/// Puts the file behind the head at `offset`. Otherwise the state is clear, and the file stands behind the
/// token there.
bool placeBehindHead(CSourFile& file, long long offset) {
  file.seekg(offset);
  if (CObj::IsObjStart(file)) return true;
  file.clear();
  file.seekg(offset);
  std::string token;
  file >> token;
  return false;
}

/// A source over an object's text out of an object stream, standing at the head; null, and the file's state
/// clear, when it can't be had.
std::unique_ptr<CSourFile> memorySource(CSourFile& file, const CObj& object, const SObjState& entry) {
  std::string text;
  if (object.ReadObjStream(file, text, entry)) return std::make_unique<CSourFile>(std::move(text), file);
  file.clear();
  return nullptr;
}

/// Reads at most `n` bytes; memory is taken only for what is there.
std::string readSpan(CSourFile& file, long long n) {
  std::string bytes;
  while (n > 0 && file.good()) {
    const std::size_t had = bytes.size();
    bytes.resize(had + static_cast<std::size_t>(std::min<long long>(n, readBlock)));
    file.read(bytes.data() + had, static_cast<std::streamsize>(bytes.size() - had));
    bytes.resize(had + static_cast<std::size_t>(file.gcount()));
    n -= file.gcount();
  }
  if (!file.good()) file.clear();
  return bytes;
}

/// Where the object at `index` of an object stream ends, counted as the starts are; -1 when the stream
/// doesn't tell.
int endInStream(const ObjectStream& stream, std::size_t index) {
  if (static_cast<long long>(index) == stream.count - 1LL) return stream.length - stream.first;
  return index + 1 < stream.pairs.size() ? stream.pairs[index + 1].second : -1;
}

/// The bytes from /First plus `begin` to /First plus `end`, as far as they are there.
std::string_view bodyInStream(const ObjectStream& stream, long long begin, long long end) {
  const auto size = static_cast<long long>(stream.text.size());
  const long long from = std::clamp(stream.first + begin, 0LL, size);
  const long long to = std::clamp(stream.first + end, from, size);
  return std::string_view(stream.text)
      .substr(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from));
}

}  // namespace

bool CObj::fromStream(CSourFile& source) {
  if ((typeFlags & foundByTable) == 0) return Read(source);
  const SObjState entry = GetObjState(source, id);
  CSourFile& file = fileOf(source);
  if (!entry.inObjectStream()) {
    file.seekg(entry.entryOffset);
    return IsObjStart(file) && isDictStart(file) && Read(file);
  }
  typeFlags |= inObjectStream;
  const auto memory = memorySource(file, *this, entry);
  if (!memory) return false;
  // The read begins at the head, which no reader takes for a key.
  if (Read(*memory)) return true;
  file.clear();
  return false;
}

bool CObj::LocalObj(CDestFile& dest, CSourFile& source, bool* dropped) {
  const SObjState entry = GetObjState(source, id);
  if (source.fail()) source.clear();
  CSourFile& file = fileOf(source);
  if (!entry.inObjectStream())
    return placeBehindHead(file, entry.entryOffset) && WriteObj(dest, file, dropped);
  const auto memory = memorySource(file, *this, entry);
  return memory && IsObjStart(*memory) && WriteObj(dest, *memory, dropped);
}

bool CObj::ReadObj(std::string& out, CSourFile& source) {
  const SObjState entry = GetObjState(source, id);
  if (source.fail()) source.clear();
  CSourFile& file = fileOf(source);
  if (entry.inObjectStream()) {
    if (ReadObjStream(file, out, entry)) return true;
    file.clear();
    return false;
  }
  if (!placeBehindHead(file, entry.entryOffset)) return false;
  const long long size = CObjectPosition(file).getEndPosition(id) - static_cast<long long>(file.tellg());
  if (size >= 1) out = readSpan(file, size);
  return true;
}

bool CObj::ReadObjStream(CSourFile& source, std::string& out, const SObjState& entry) const {
  CSourFile& file = source.mainSource();
  const auto stream = file.objectStreams.get(file, static_cast<int>(entry.entryOffset));
  const auto index = static_cast<std::size_t>(entry.entryIndex);
  if (!stream || entry.entryIndex < 0 || index >= stream->pairs.size()) return false;
  const auto [number, begin] = stream->pairs[index];
  const int end = endInStream(*stream, index);
  if (number != id.objNum || end < 0) return false;
  CDestFile text;
  text << id.objNum;
  text.append(kw_);
  text << id.genNum;
  text.append(" obj\n").append(bodyInStream(*stream, begin, end)).append("\nendobj\r\n");
  out = std::move(static_cast<std::string&>(text));
  return true;
}

CSourFile* CObj::ParseObj(CSourFile& source, std::unique_ptr<CSourFile>& memory, const SObj& ref) {
  const SObjState entry = GetObjState(source, ref);
  CSourFile& file = fileOf(source);
  if (entry.inObjectStream()) {
    // Only now may the former memory source go: `source` may be that one.
    memory = memorySource(file, CObj(ref), entry);
    if (!memory || IsObjStart(*memory)) return memory.get();
    memory.reset();
    return nullptr;
  }
  if (entry.entryOffset < 1) return nullptr;
  file.seekg(entry.entryOffset);
  if (IsObjStart(file)) return &file;
  file.clear();
  return nullptr;
}

}  // namespace TESSEL
