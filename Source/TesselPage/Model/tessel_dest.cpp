#include "TesselPage/Model/tessel_dest.h"

#include <iterator>
#include <memory>

#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Model/tessel_objectend.h"
#include "TesselPage/Model/tessel_structtree.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_positionguard.h"

namespace TESSEL {

namespace {

constexpr const char* nullWord = "null";

struct StyleRow {
  const char* name;
  int numbers;  ///< of the view
};

/// By style, from 1.
constexpr StyleRow styles[] = {{nmXYZ, 3},  {nmFit, 0},  {nmFitH, 1},  {nmFitV, 1},
                               {nmFitR, 4}, {nmFitB, 0}, {nmFitBH, 1}, {nmFitBV, 1}};

}  // namespace

/// Reads one destination value.
class DestScan {
 public:
  DestScan(CDest& reader, CSourFile& in) : dest(reader), source(in), end(in, reader.id) {}

  bool atEnd() { return end.passed(); }
  Turn onReference(const SObj& ref);
  Turn onToken(const std::string& token);

 private:
  void enterArrayUnless(bool opens);
  Turn inArray(const std::string& token);
  Turn outsideArray(const std::string& token);
  Turn readName(bool hexadecimal);

  CDest& dest;
  CSourFile& source;
  ObjectEnd end;
  int depth = 0;  ///< of arrays
  bool first = true;
};

// What isn't the start of a value stands within an array whose "[" was taken before.
void DestScan::enterArrayUnless(bool opens) {
  if (first && !opens) depth = 1;
  first = false;
}

Turn DestScan::onReference(const SObj& ref) {
  enterArrayUnless(false);
  if (depth == 1) dest.page = targetPage(source.mainSource(), ref);
  return Turn::goOn;
}

Turn DestScan::onToken(const std::string& token) {
  const bool isName = first && token.starts_with('/');
  const bool isNameAlone = isName && (dest.typeFlags & CObj::foundByTable) == 0;
  enterArrayUnless(isName || token == "[" || token == "<<" || token == "(" || token == "<");
  if (token == kwendobj || isNameAlone) return Turn::success;
  if (token == "[") {
    ++depth;
    return Turn::goOn;
  }
  if (token == "]") return --depth <= 0 ? Turn::success : Turn::goOn;
  return depth == 1 ? inArray(token) : outsideArray(token);
}

Turn DestScan::inArray(const std::string& token) {
  if (!dest.GetDestStyle(token)) return Turn::goOn;
  dest.GetFit(source);
  return Turn::success;
}

Turn DestScan::outsideArray(const std::string& token) {
  if (token == "(" || token == "<") return readName(token == "<");
  return token == ">>" ? Turn::success : Turn::goOn;
}

Turn DestScan::readName(bool hexadecimal) {
  CStringType string(dest.id);
  string.hexadecimal = hexadecimal;
  string.noDecrypt = dest.id == source.mainSource().fileInfo.encrypt.id;
  string.Read(source);
  dest.name = string.value;
  return Turn::success;
}

bool CDest::Read(CSourFile& source) {
  DestScan scan(*this, source);
  return scanKeys(source, scan);
}

bool CDest::GetDestStyle(const std::string& token) {
  for (const StyleRow& row : styles) {
    if (token != row.name) continue;
    style = static_cast<int>(&row - styles) + 1;
    return true;
  }
  return false;
}

// Only /XYZ knows "null"; in any other view the first number that can't be read ends the reading.
bool CDest::GetFit(CSourFile& source) {
  float* const fields[] = {&left, &top, &right, &bottom};
  std::string token;
  for (int i = 0; i < styles[style - 1].numbers; ++i) {
    float number = 0;
    if (readReal(source, number)) {
      *fields[i] = number;
      continue;
    }
    source.clear();
    if (style != xyz) break;
    source >> token;
    if (token == nullWord) *fields[i] = unchanged;
  }
  source.clear();
  return true;
}

void CDest::readValue(CSourFile& source, const SObj& owner) {
  PositionGuard back(source, PositionGuard::State::clear);
  SObj ref;
  if (tryReference(source, ref)) return readReference(source, ref);
  id = owner;
  Read(source);
}

void CDest::readReference(CSourFile& source, const SObj& ref) {
  id = ref;
  std::unique_ptr<CSourFile> memory;
  if (CSourFile* const value = openValue(source, memory, ref)) Read(*value);
}

SDestInfo CDest::info() const { return {name, style, left, top, right, bottom, page, {}}; }

int pageNumber(CSourFile& main, const SObj& page) {
  auto& numbers = main.destLookup.pageNumbers;
  if (numbers.size() != main.pageSet.size()) {
    numbers.clear();
    int place = 0;
    for (const SObj& each : main.pageList) numbers.emplace(each, ++place);
  }
  const auto found = numbers.find(page);
  return found == numbers.end() ? 0 : found->second;
}

int targetPage(CSourFile& main, const SObj& target) {
  if (const int number = pageNumber(main, target)) return number;
  const SObj* const page = structurePage(main, target);
  return page ? pageNumber(main, *page) : 0;
}

}  // namespace TESSEL
