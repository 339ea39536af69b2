#include <cstring>
#include <iterator>
#include <string_view>
#include <utility>
#include <vector>

#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Structure/tessel_fileinfo.h"
#include "TesselPage/Structure/tessel_objflags.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Structure/tessel_xrefparts.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_positionguard.h"
#include "TesselPage/Syntax/tessel_stream.h"
#include "TesselPage/Syntax/tessel_token.h"

namespace TESSEL {

namespace {

constexpr int fieldCount = 3;
constexpr int typeField = 0;
constexpr int offsetField = 1;
constexpr int indexField = 2;

/// Takes entry after entry off the decoded data.
class EntryCursor {
 public:
  EntryCursor(std::string_view data, const int (&fieldWidths)[fieldCount])
      : rest(data), widths(fieldWidths) {}

  /// False when the data ends before the entry does.
  bool read(SObjState& entry, long long headerOffset) {
    // Without a type field the type is 0, free, not the 1 of ISO 32000-2, table 17.
    const auto type = static_cast<int>(field(typeField));
    entry = SObjState();
    entry.entryType = static_cast<unsigned char>(type);
    const bool known = type >= 0 && type <= static_cast<int>(EntryType::inObjectStream);
    // An entry of another type is its type alone; what follows is read from the wrong place then.
    if (!known) return !exhausted;
    const long long offset = field(offsetField);
    entry.entryOffset = entry.inObjectStream() ? offset : shifted(offset, headerOffset);
    entry.entryIndex = static_cast<int>(field(indexField));
    return !exhausted;
  }

 private:
  long long field(int which) {
    if (widths[which] < 1) return 0;
    const auto width = static_cast<std::size_t>(widths[which]);
    exhausted = exhausted || width > rest.size();
    if (exhausted) return 0;
    unsigned long long value = 0;
    for (const char byte : rest.substr(0, width)) value = value << 8 | static_cast<unsigned char>(byte);
    rest.remove_prefix(width);
    return static_cast<long long>(value);
  }

  std::string_view rest;
  const int (&widths)[fieldCount];
  bool exhausted = false;
};

}  // namespace

/// The keys of a cross-reference stream's dictionary (ISO 32000-2, table 17), and its data.
class XRefStreamScan {
 public:
  XRefStreamScan(CFileInfo& target, CSourFile& file, CFileInfo::Entries& entries)
      : info(target), source(file), table(entries), stream(target.identity()) {}

  Turn onToken(const std::string& token) {
    static constexpr KeyRow<XRefStreamScan> rows[] = {
        {kwendobj, &XRefStreamScan::end},
        {nmType, &XRefStreamScan::readType},
        {nmSize, &XRefStreamScan::readSize},
        {nmLength, &XRefStreamScan::readLength},
        {nmDecodeParms, &XRefStreamScan::passDecodeParms},
        {nmFilter, &XRefStreamScan::readFilter},
        {nmW, &XRefStreamScan::readWidths},
        {nmIndex, &XRefStreamScan::readIndex},
        {nmPrev, &XRefStreamScan::readPrev},
        {nmRoot, &XRefStreamScan::readRoot},
        {nmInfo, &XRefStreamScan::readInfo},
        {nmID, &XRefStreamScan::readId},
        {nmEncrypt, &XRefStreamScan::readEncrypt},
        {kwstream, &XRefStreamScan::readData},
    };
    return source.fail() ? Turn::failure : dispatch(*this, rows, token);
  }

  bool ended = false;  ///< "endobj" was met
  long long prev = CFileInfo::endOfChain;

 private:
  static Turn goOnIf(bool ok) { return ok ? Turn::goOn : Turn::failure; }
  bool nextIs(const char* expected) {
    source >> word;
    return word == expected;
  }
  long long startOf(const char* key) {
    return std::streamoff(source.tellg()) - static_cast<long long>(std::strlen(key));
  }

  Turn end() {
    ended = true;
    return Turn::success;
  }
  Turn readType() { return goOnIf(nextIs(nmXRef)); }
  Turn readSize() {
    const bool isRead = readInteger(source, size);
    if (isRead && info.size < 1) info.size = size;
    return goOnIf(isRead);
  }
  Turn readLength() {
    const PositionGuard place(source);
    return goOnIf(stream.ReadLen(source));
  }
  Turn passDecodeParms() {
    if (parametersStart == 0) parametersStart = startOf(nmDecodeParms);
    return Turn::goOn;
  }
  Turn readFilter() {
    const long long start = parametersStart > 0 ? parametersStart : startOf(nmFilter);
    return goOnIf(stream.ReadFilter(source, start));
  }
  Turn readWidths() {
    if (!nextIs("[")) return Turn::failure;
    for (int& width : widths)
      if (!readInteger(source, width)) return Turn::failure;
    return goOnIf(nextIs("]"));
  }
  Turn readIndex();
  Turn readPrev() { return goOnIf(readInteger(source, prev)); }
  Turn readRoot() {
    const SObj root = readReferenceBytes(source);
    if (info.root.objNum < 1) info.root = root;
    return Turn::goOn;
  }
  Turn readInfo() {
    info.info.id.objNum = readReferenceBytes(source).objNum;
    return Turn::goOn;
  }
  Turn readId();
  Turn readEncrypt() {
    const SObj reference = readReferenceBytes(source);
    if (info.encrypt.id.objNum < 1) info.encrypt.id = reference;
    return Turn::goOn;
  }
  Turn readData();
  void enterEntries(std::string_view data);
  bool enterRange(EntryCursor& cursor, int first, int count);

  CFileInfo& info;
  CSourFile& source;
  CFileInfo::Entries& table;
  CStreamType stream;
  std::string word;
  int size = 0;
  long long parametersStart = 0;
  int widths[fieldCount] = {};
  std::vector<std::pair<int, int>> ranges;  ///< first number and count
};

Turn XRefStreamScan::readIndex() {
  if (!nextIs("[")) return Turn::failure;
  while (!nextIs("]")) {
    int count = 0;
    if (!CFileBlock::IsNum(word) || !readInteger(source, count)) return Turn::failure;
    ranges.emplace_back(static_cast<int>(leadingNumber(word)), count);
  }
  return Turn::goOn;
}

Turn XRefStreamScan::readId() {
  if (!info.fileId.first.empty()) return Turn::goOn;
  if (!nextIs("[")) return Turn::failure;
  source >> word;
  if (!opensString(word)) return Turn::failure;
  readFirstId(info, source, word);
  source >> word;
  if (!opensString(word)) return Turn::failure;
  readSecondId(info, source, word);
  return Turn::goOn;
}

Turn XRefStreamScan::readData() {
  stream.ofEncryptDictionary = true;  // a cross-reference stream is never encrypted
  stream.Read(source);
  std::string data = stream.takeData();
  if (stream.filterStreamType(data, stream.length) != 0) return Turn::failure;
  info.budget.bytes -= static_cast<long long>(data.size());
  if (info.budget.bytes < 0) return Turn::failure;
  enterEntries(data);
  return Turn::goOn;
}

void XRefStreamScan::enterEntries(std::string_view data) {
  if (ranges.empty()) ranges.emplace_back(0, size);
  EntryCursor cursor(data, widths);
  for (const auto& [first, count] : ranges)
    if (!enterRange(cursor, first, count)) return;
}

bool XRefStreamScan::enterRange(EntryCursor& cursor, int first, int count) {
  auto hint = table.lower_bound(SObj(first, 0));
  SObjState entry;
  for (int i = 0; i < count; ++i) {
    if (info.budget.entries < 1 || !cursor.read(entry, source.headerOffset)) return false;
    --info.budget.entries;
    hint = std::next(table.try_emplace(hint, SObj(numberedFrom(first, i), 0), entry));
  }
  return true;
}

bool CFileInfo::ReadXRefObj(CSourFile& source, long long& number, bool hybrid) {
  const std::streamoff start = source.tellg();
  id.objNum = static_cast<int>(number);
  id.objFlags |= ObjFlag::xrefStream;
  if (!readInteger(source, id.genNum)) return false;
  std::string token;
  source >> token;
  if (token != kwobj) return false;
  source.xrefStreamObjs.insert(id);
  if (!isDictStart(source)) return false;
  XRefStreamScan scan(*this, source, hybrid ? hybridEntries : objEntries);
  if (!scanKeys(source, scan) || !scan.ended) return false;
  number = scan.prev;
  return charge(source, start);
}

}  // namespace TESSEL
