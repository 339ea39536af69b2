#include "TesselPage/Syntax/tessel_spancopier.h"

#include <algorithm>

#include "TesselPage/Syntax/tessel_bytecursor.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_objref.h"
#include "TesselPage/Syntax/tessel_string.h"
#include "TesselPage/Syntax/tessel_token.h"

namespace TESSEL {

SpanCopier::SpanCopier(CDestFile& target, CSourFile& from, const SObj& owner)
    : dest(target), source(from), id(owner), stream(owner) {
  text = source.span(inMemory);
  mark = lastEndPlace = herePlace = place();
}

bool SpanCopier::takeReference() {
  if (dest.rawFlag || !tryReference(source, ref)) return false;
  lastEndPlace = herePlace;
  herePlace = place();
  return true;
}

void SpanCopier::readWord() {
  std::swap(former, present);
  source >> present;
  lastEndPlace = herePlace;
  herePlace = place();
}

bool SpanCopier::wordBeginsReference() {
  if (!dest.rawFlag) return false;
  source.seekg(lastEndPlace);
  SObj found;
  const bool begins = tryReference(source, found);
  rewind();
  return begins;
}

void SpanCopier::cutWord() {
  copyToWord();
  cut();
}

void SpanCopier::cutThrough(std::string_view closing) {
  do readWord();
  while (good() && present != closing);
  cut();
}

void SpanCopier::writeReference(const SObj& object) {
  dest.append(kw_);
  dest << object.objNum;
  dest.append(kw_);
  dest << object.genNum;
  dest.append(" R");
}

void SpanCopier::leaveHole() {
  copyToLast();
  lengthPosition = static_cast<long long>(dest.size());
  lengthWidth = herePlace - lastEndPlace;
  dest.append(static_cast<std::size_t>(lengthWidth), ' ');
  cut();
}

void SpanCopier::markHole() {
  copyToLast();
  lengthPosition = static_cast<long long>(dest.size());
  lengthWidth = herePlace - lastEndPlace;
}

SpanCopier::Body SpanCopier::copyBody(const PgCmTD* placement) {
  const std::string_view word = present;
  if (word == kwendobj) {
    copyThrough();
    dest.append(kw_n);
    dest.endMark = dest.size();
    return Body::end;
  }
  if (word == kwstream) {
    copyStream();
  } else if (word == "(" || word == "<") {
    copyString(word == "<", placement);
  } else {
    return Body::none;
  }
  moveHere();
  cut();
  return Body::copied;
}

void SpanCopier::copyStream() {
  copyThrough();
  stream.Read(source);
  stream.Write(dest, source, lengthPosition, lengthWidth);
}

void SpanCopier::copyString(bool hexadecimal, const PgCmTD* placement) {
  copyThrough();
  CStringType string(id);
  string.hexadecimal = hexadecimal;
  string.noDecrypt = id == source.mainSource().fileInfo.encrypt.id;
  string.noEncrypt = id == dest.fileInfo.encrypt.id;
  string.Read(source);
  if (placement) string.Translate4Annot(*placement);
  string.Write(dest, source);
}

long long SpanCopier::place() const {
  return inMemory ? GetArea::consumed(*source.rdbuf()) : static_cast<long long>(source.tellg());
}

void SpanCopier::copyTo(long long end) {
  // A failed stream gives no more bytes, wherever they lie.
  if (end <= mark || !source.good()) return;
  appendSpan(mark, end);
  mark = end;
}

void SpanCopier::appendSpan(long long begin, long long end) {
  const auto size = static_cast<std::size_t>(end - begin);
  if (inMemory) {
    dest.append(text.substr(static_cast<std::size_t>(begin), size));
    return;
  }
  const auto back = source.tellg();
  const std::size_t had = dest.size();
  dest.resize(had + size);
  source.seekg(begin);
  source.read(dest.data() + had, static_cast<std::streamsize>(size));
  dest.resize(had + static_cast<std::size_t>(source.gcount()));
  source.seekg(back);
}

}  // namespace TESSEL
