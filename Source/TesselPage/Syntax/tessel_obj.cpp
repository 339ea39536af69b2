#include "TesselPage/Syntax/tessel_obj.h"

#include <istream>
#include <set>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_comments.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_objref.h"
#include "TesselPage/Syntax/tessel_positionguard.h"
#include "TesselPage/Syntax/tessel_token.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

namespace {

void writeHead(CDestFile& dest, const SObj& id) {
  dest << id.objNum;
  dest.append(kw_);
  dest << id.genNum;
  dest.append(" obj ");
}

/// Follows `ref`, and what stands behind it as long as that is a reference again, to the first value that
/// isn't one.
/// @return the source that stands at the value; null when an object is missing or the chain comes back to
/// itself
CSourFile* followReferences(CSourFile& source, SObj ref, std::unique_ptr<CSourFile>& memory) {
  std::set<SObj> seen;
  CSourFile* place = &source;
  do {
    if (!seen.insert(ref).second) return nullptr;
    place = CObj::ParseObj(*place, memory, ref);
  } while (place && tryReference(*place, ref));
  return place;
}

bool readReferredNumber(CSourFile& source, const SObj& ref, float& value) {
  const PositionGuard behind(source, PositionGuard::State::clear);
  std::unique_ptr<CSourFile> memory;
  CSourFile* place = CObj::ParseObj(source, memory, ref);
  if (!place) return false;
  const bool isRead = readReal(*place, value);
  place->clear();
  return isRead;
}

/// The elements of an array from behind its "[" on.
bool readElements(CSourFile& source, std::vector<float>& values) {
  SObj ref;
  while (source.good()) {
    float value = 0;
    if (tryReference(source, ref)) {
      if (!readReferredNumber(source, ref, value)) return false;
    } else {
      char byte = 0;
      if (readByte(source, byte) && byte == ']') return true;
      source.putback(byte);
      readReal(source, value);
    }
    values.push_back(value);
  }
  return false;
}

bool readArray(CSourFile& source, std::vector<float>& values) {
  char open = 0;
  if (!readByte(source, open) || open != '[') return false;
  const auto start = source.tellg();
  if (readElements(source, values)) return true;
  if (source.good()) return false;
  source.clear();
  source.seekg(start);
  return false;
}

}  // namespace

bool CObj::Read(CSourFile&) { return true; }

bool CObj::Write(CDestFile& dest, CSourFile& source) {
  if (!dest.rawFlag) {
    const SObj* const newId = dest.findNewObj(id);
    if (!newId) return false;
    dest.RecordObjInfo(*newId);
    dest.currentObject = *newId;
  }
  writeHead(dest, dest.rawFlag ? id : dest.currentObject);
  LocalObj(dest, source, nullptr);
  return true;
}

bool CObj::IsObjStart(std::istream& in) {
  int number = 0;
  if (!readInteger(in, number) || !readInteger(in, number)) return false;
  std::string word;
  readPDFString(in, word);
  if (word != kwobj) return false;
  in.putback(readPastComments(in));
  return true;
}

bool CObj::ReadIntObj(CSourFile& source, int& value) {
  SObj ref;
  if (!tryReference(source, ref)) {
    // What is no number shows in the stream's state alone.
    readInteger(source, value);
    return true;
  }
  const auto behind = source.tellg();
  std::unique_ptr<CSourFile> memory;
  CSourFile* const place = followReferences(source, ref, memory);
  if (!place) return false;
  readInteger(*place, value);
  if (place != &source) place->clear();
  source.seekg(behind);
  return true;
}

bool CObj::ReadNumArrayObj(CSourFile& source, std::vector<float>& values) {
  SObj ref;
  if (!tryReference(source, ref)) return readArray(source, values);
  const PositionGuard behind(source, PositionGuard::State::clear);
  std::unique_ptr<CSourFile> memory;
  CSourFile* const place = followReferences(source, ref, memory);
  if (!place) return false;
  const bool isRead = readArray(*place, values);
  place->clear();
  return isRead;
}

}  // namespace TESSEL
