// The closing part of a written file: /Info, /Encrypt, one classic table and the trailer.

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "TesselPage/Structure/tessel_fileinfo.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_string.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

namespace {

constexpr int freeGeneration = 65535;
constexpr std::size_t offsetWidth = 10;
constexpr std::size_t generationWidth = 5;

/// A table with its free entries chained from the highest number down.
class GapFreeTable {
 public:
  explicit GapFreeTable(CFileInfo::Entries& table) : entries(table) {}

  /// Keeps the highest generation of each number.
  void dropOldGenerations() {
    entries.erase(SObj(0, 0));
    for (auto place = entries.begin(); place != entries.end();) {
      const auto next = std::next(place);
      const bool superseded = next != entries.end() && next->first.objNum == place->first.objNum;
      if (superseded) entries.erase(place);
      place = next;
    }
  }

  /// From one below the highest number down to 0: what is missing becomes free, what is free joins the chain.
  void chainFree() {
    if (entries.empty()) return;
    auto above = std::prev(entries.end());
    for (int number = above->first.objNum - 1; number >= 0; --number) {
      above = entryBelow(above, number);
      if (above->second.entryFlag == *kwf) join(above);
    }
  }

 private:
  using Place = CFileInfo::Entries::iterator;

  Place entryBelow(Place above, int number) {
    if (above != entries.begin() && std::prev(above)->first.objNum == number) return std::prev(above);
    SObjState entry;
    entry.entryFlag = static_cast<unsigned char>(*kwf);
    return entries.emplace_hint(above, SObj(number, freeGeneration), entry);
  }

  void join(Place entry) {
    entry->second.entryOffset = nextFree;
    nextFree = entry->first.objNum;
  }

  CFileInfo::Entries& entries;
  int nextFree = 0;
};

/// The number with zeros in front of it.
void writePadded(CDestFile& dest, long long number, std::size_t width) {
  const std::string text = std::to_string(number);
  if (text.size() < width) dest.append(width - text.size(), '0');
  dest.append(text);
}

void writeReference(CDestFile& dest, std::string_view key, const SObj& object) {
  dest.append(key).append(kw_);
  dest << object.objNum;
  dest.append(kw_);
  dest << object.genNum;
  dest.append(kw_).append("R ");
}

void writeHexString(CDestFile& dest, std::string bytes, std::size_t length) {
  CStringType text{SObj()};
  text.hexadecimal = true;
  bytes.resize(length, '\0');
  text.value = std::move(bytes);
  dest.append("<");
  text.writeTo(dest);
}

}  // namespace

bool CFileInfo::Write(CDestFile& dest, CSourFile& source) {
  info.Write(dest, source);
  if (encrypt.id.objNum >= 1) encrypt.Write(dest, source);
  if (dest.rawFlag) Tidy();
  return WriteXRef(dest);
}

void CFileInfo::Tidy() {
  GapFreeTable table(*entries);
  table.dropOldGenerations();
  table.chainFree();
}

bool CFileInfo::WriteXRef(CDestFile& dest) {
  const auto tablePosition = static_cast<long long>(dest.size()) - static_cast<long long>(dest.start);
  writeTable(dest);
  writeTrailer(dest);
  dest.append(">>").append(kw_n).append(kwstartxref).append(kw_n);
  dest.append(std::to_string(tablePosition)).append(kw_n).append(kw_EOF);
  return true;
}

void CFileInfo::writeTable(CDestFile& dest) const {
  dest.append(kwxref).append(kw_r_n).append("0 ").append(std::to_string(entries->size())).append(kw_r_n);
  for (const auto& [object, entry] : *entries) {
    writePadded(dest, entry.entryOffset, offsetWidth);
    dest.append(kw_);
    writePadded(dest, object.genNum, generationWidth);
    dest.append(kw_).push_back(static_cast<char>(entry.entryFlag));
    dest.append(kw_r_n);
  }
}

void CFileInfo::writeTrailer(CDestFile& dest) {
  dest.append(kwtrailer).append(kw_r_n).append("<<").append(nmSize).append(kw_);
  dest.append(std::to_string(entries->size())).append(kw_);
  writeReference(dest, nmRoot, root);
  const bool encrypted = encrypt.id.objNum >= 1;
  if (info.id.objNum >= 1) writeReference(dest, nmInfo, info.id);
  if (encrypted) writeReference(dest, nmEncrypt, encrypt.id);
  if (fileId.first.empty() && !encrypted) return;
  if (fileId.second.empty()) fileId.second = fileId.first;
  fileId.WriteID(dest);
}

bool CFileID::Write(CDestFile& dest, CSourFile&) { return WriteID(dest); }

bool CFileID::WriteID(CDestFile& dest) const {
  const auto bytes = static_cast<std::size_t>(std::clamp<long long>(length, 0, maxLength));
  dest.append(nmID).append("[");
  writeHexString(dest, first, bytes);
  writeHexString(dest, second, bytes);
  dest.append("]");
  return true;
}

}  // namespace TESSEL
