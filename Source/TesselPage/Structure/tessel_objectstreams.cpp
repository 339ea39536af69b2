#include "TesselPage/Structure/tessel_objectstreams.h"

#include <algorithm>
#include <istream>

#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Structure/tessel_sourcebuffer.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_positionguard.h"
#include "TesselPage/Syntax/tessel_stream.h"
#include "TesselPage/Syntax/tessel_token.h"

namespace TESSEL {

namespace {

/// Reads an object stream's dictionary and body, the source standing behind its "<<".
class ObjectStreamScan {
 public:
  ObjectStreamScan(CSourFile& file, int number, ObjectStream& target)
      : source(file), stream(SObj(number, 0)), result(target) {}

  bool ended = false;    ///< the body was decoded, or "endobj" was met
  long long failed = 0;  ///< bytes that could not be decoded

  Turn onToken(const std::string& token) {
    static constexpr KeyRow<ObjectStreamScan> rows[] = {
        {kwendobj, &ObjectStreamScan::end},        {nmType, &ObjectStreamScan::readType},
        {nmLength, &ObjectStreamScan::readLength}, {nmFilter, &ObjectStreamScan::readFilter},
        {nmFirst, &ObjectStreamScan::readFirst},   {nmN, &ObjectStreamScan::readCount},
        {kwstream, &ObjectStreamScan::readBody},
    };
    return source.fail() ? Turn::failure : dispatch(*this, rows, token);
  }

 private:
  static Turn goOnIf(bool ok) { return ok ? Turn::goOn : Turn::failure; }

  Turn end() {
    ended = true;
    return Turn::success;
  }
  Turn readType() {
    std::string type;
    source >> type;
    return goOnIf(type == nmObjStm);
  }
  Turn readLength() {
    const PositionGuard place(source);
    return goOnIf(stream.ReadLen(source));
  }
  Turn readFilter() { return goOnIf(stream.ReadFilter(source, 0)); }
  Turn readFirst() { return goOnIf(readInteger(source, result.first)); }
  Turn readCount() { return goOnIf(readInteger(source, result.count)); }
  Turn readBody() {
    stream.ofEncryptDictionary = stream.identity() == source.fileInfo.encrypt.id;
    stream.Read(source);
    result.text = stream.takeData();
    const auto size = static_cast<long long>(result.text.size());
    ended = stream.filterStreamType(result.text, stream.length) == 0;
    if (!ended) failed = size;
    return ended ? Turn::success : Turn::failure;
  }

  CSourFile& source;
  CStreamType stream;
  ObjectStream& result;
};

void readPairs(ObjectStream& stream) {
  SpanBuffer buffer(stream.text);
  std::istream in(&buffer);
  std::pair<int, int> pair;
  while (readInteger(in, pair.first) && readInteger(in, pair.second)) stream.pairs.push_back(pair);
}

std::size_t sizeOf(const ObjectStream& stream) {
  return stream.text.size() + stream.pairs.size() * sizeof(stream.pairs.front());
}

std::shared_ptr<const ObjectStream> readHere(CSourFile& source, int number, DecodingBudget& budget) {
  if (!CObj::IsObjStart(source) || !CFileBlock::isDictStart(source)) return nullptr;
  auto stream = std::make_shared<ObjectStream>();
  ObjectStreamScan scan(source, number, *stream);
  const bool isRead = scanKeys(source, scan) && scan.ended;
  budget.bytes -= DecodingBudget::ratioOfFailed * scan.failed;
  if (!isRead) return nullptr;
  stream->length = static_cast<int>(stream->text.size());
  readPairs(*stream);
  stream->text.shrink_to_fit();
  budget.bytes -= static_cast<long long>(sizeOf(*stream));
  return stream;
}

class Nested {
 public:
  explicit Nested(int& levels) : count(levels) { ++count; }
  ~Nested() { --count; }
  Nested(const Nested&) = delete;
  Nested& operator=(const Nested&) = delete;

 private:
  int& count;
};

}  // namespace

std::shared_ptr<const ObjectStream> ObjectStreams::get(CSourFile& source, int number) {
  CSourFile& file = source.mainSource();
  if (file.seekg(file.fileInfo.GetObjState(number, 0).entryOffset).fail()) return nullptr;
  if (const auto known = kept.find(number); known != kept.end()) {
    if (known->second.stream) uses.splice(uses.begin(), uses, known->second.use);
    return known->second.stream;
  }
  return nesting < maxNesting && maySpend(file) ? decode(file, number) : nullptr;
}

bool ObjectStreams::maySpend(CSourFile& file) {
  if (!budget) {
    PositionGuard back(file);
    file.seekg(0, std::ios_base::end);
    budget.emplace(std::max<long long>(file.tellg(), 0));
  }
  return budget->bytes > 0;
}

std::shared_ptr<const ObjectStream> ObjectStreams::decode(CSourFile& file, int number) {
  kept[number] = {};
  const Nested level(nesting);
  auto stream = readHere(file, number, *budget);
  if (stream) keep(number, stream);
  return stream;
}

void ObjectStreams::keep(int number, std::shared_ptr<const ObjectStream> stream) {
  const std::size_t size = sizeOf(*stream);
  if (dropped.contains(number)) limit = std::max(limit, std::min(limit + size / growth, mostKept));
  bytes += size;
  uses.push_front(number);
  kept[number] = {std::move(stream), uses.begin()};
  while (bytes > limit && uses.size() > 1) dropOldest();
}

void ObjectStreams::dropOldest() {
  const auto oldest = kept.find(uses.back());
  bytes -= sizeOf(*oldest->second.stream);
  dropped.insert(oldest->first);
  kept.erase(oldest);
  uses.pop_back();
}

long long ObjectStreams::lengthOf(const SObjState& entry) const {
  const auto place = kept.find(static_cast<int>(entry.entryOffset));
  if (place == kept.end() || !place->second.stream) return 0;
  const ObjectStream& stream = *place->second.stream;
  const auto index = static_cast<std::size_t>(entry.entryIndex);
  if (index >= stream.pairs.size()) return 0;
  const long long end = index + 1 < stream.pairs.size()
                            ? stream.pairs[index + 1].second
                            : static_cast<long long>(stream.length) - stream.first;
  return std::max<long long>(end - stream.pairs[index].second, 0);
}

void ObjectStreams::clear() {
  kept.clear();
  uses.clear();
  dropped.clear();
  bytes = 0;
}

}  // namespace TESSEL
