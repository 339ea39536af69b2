#include "TesselPage/Writer/tessel_destfile.h"

#include <charconv>

namespace TESSEL {

namespace {

constexpr int significantDigits = 6;
constexpr std::size_t numberTextSize = 32;

}  // namespace

Facade_stringstream& Facade_stringstream::operator<<(int number) {
  char text[numberTextSize];
  append(text, std::to_chars(text, text + sizeof text, number).ptr);
  return *this;
}

Facade_stringstream& Facade_stringstream::operator<<(double number) {
  char text[numberTextSize];
  const auto format = std::chars_format::general;
  append(text, std::to_chars(text, text + sizeof text, number, format, significantDigits).ptr);
  return *this;
}

void CDestFile::insertNewObjTab(const NewObjTable& key, const SObj& newId) { newNumbers.emplace(key, newId); }

const SObj* CDestFile::findNewObj(const SObj& object, int index) const {
  const auto own = newNumbers.find({index, currentFile, object});
  if (own != newNumbers.end()) return &own->second;
  return index == 0 && fallback ? fallback->find(object) : nullptr;
}

const SObj* CDestFile::findNewObjOf(int file, const SObj& object) const {
  const auto found = newNumbers.find({0, file, object});
  return found == newNumbers.end() ? nullptr : &found->second;
}

void CDestFile::RecordObjInfo(const SObj& id) {
  SObjState& entry = (*fileInfo.entries)[id];
  entry.entryOffset = static_cast<long long>(endMark) - static_cast<long long>(start);
  entry.entryType = static_cast<unsigned char>(EntryType::atOffset);
  entry.entryFlag = 'n';
}

CSourFile* CDestFile::GetSourFile(int file) const {
  const auto place = files.find(file);
  return place == files.end() ? nullptr : place->second;
}

}  // namespace TESSEL
