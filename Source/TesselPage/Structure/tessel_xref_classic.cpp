#include <cstdlib>
#include <iterator>

#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Structure/tessel_fileinfo.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Structure/tessel_xrefparts.h"
#include "TesselPage/Syntax/tessel_comments.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_positionguard.h"
#include "TesselPage/Syntax/tessel_string.h"
#include "TesselPage/Syntax/tessel_token.h"

namespace TESSEL {

namespace {

constexpr const char* dictOpen = "<<";
constexpr const char* dictClose = ">>";
constexpr const char* arrayOpen = "[";
constexpr const char* commentSign = "%";

/// Behind a lone "%": places the source in front of the next "trailer".
bool findTrailerBehindComment(CSourFile& source) {
  const std::streampos place = source.tellg();
  // The bound lies behind the end, so a file is read to its end; a memory text refuses the seek and fails
  // here.
  source.seekg(std::streamoff(place), std::ios_base::end);
  const std::streampos bound = source.tellg();
  source.seekg(place);
  std::string token;
  do {
    const std::streampos before = source.tellg();
    source >> token;
    if (token == kwtrailer) {
      source.seekg(before);
      return true;
    }
  } while (source.good() && source.tellg() != bound);
  return false;
}

/// Whether the table that ended at `place` is followed by its trailer; the source then stands in front of it.
bool standsAtTrailer(CSourFile& source, std::streampos place) {
  source.clear();
  source.seekg(place);
  std::string token;
  source >> token;
  if (token == kwtrailer) {
    source.seekg(place);
    return true;
  }
  return token == commentSign && findTrailerBehindComment(source);
}

/// Looks through a trailer dictionary for /XRefStm; `offset` stays 0 without one. False when the stream
/// fails.
bool findXRefStm(CSourFile& source, long long& offset) {
  std::string token;
  int depth = 0;
  for (;;) {
    source >> token;
    if (!source.good()) return false;
    if (token == kwstartxref || token == kw_EOF) return true;
    if (token == dictOpen) ++depth;
    if (token == dictClose && depth-- <= 1) return true;
    if (token == nmXRefStm && !readInteger(source, offset)) return false;
  }
}

/// Reads on when the token is a comment's "%".
void skipComments(CSourFile& source, std::string& token) {
  if (token != commentSign) return;
  source.unget();
  source.putback(readPastComments(source));
  source >> token;
}

/// The keys of a trailer dictionary, at any depth.
class TrailerScan {
 public:
  TrailerScan(CFileInfo& target, CSourFile& file) : info(target), source(file) {}

  Turn onToken(const std::string& token) {
    static constexpr KeyRow<TrailerScan> rows[] = {
        {dictClose, &TrailerScan::close}, {dictOpen, &TrailerScan::open},
        {nmSize, &TrailerScan::readSize}, {nmPrev, &TrailerScan::readPrev},
        {nmRoot, &TrailerScan::readRoot}, {nmEncrypt, &TrailerScan::readEncrypt},
        {nmInfo, &TrailerScan::readInfo}, {nmID, &TrailerScan::readId},
    };
    return source.fail() ? Turn::success : dispatch(*this, rows, token);
  }

  long long prev = CFileInfo::endOfChain;

 private:
  Turn open() {
    ++depth;
    return Turn::goOn;
  }
  Turn close() { return --depth == 0 ? Turn::success : Turn::goOn; }
  Turn readSize() {
    int size = 0;
    if (readInteger(source, size) && info.size == 0) info.size = size;
    return Turn::goOn;
  }
  Turn readPrev() {
    readInteger(source, prev);
    return Turn::goOn;
  }
  Turn readRoot() {
    const SObj root = readReferenceBytes(source);
    if (info.root.objNum == 0) info.root = root;
    return Turn::goOn;
  }
  Turn readEncrypt();
  Turn readInfo();
  Turn readId();

  CFileInfo& info;
  CSourFile& source;
  int depth = 1;
};

Turn TrailerScan::readEncrypt() {
  if (info.encrypt.id.objNum != 0) {
    readReferenceBytes(source);
    return Turn::goOn;
  }
  SObj reference;
  if (readInteger(source, reference.objNum)) {
    char letter = 0;
    readInteger(source, reference.genNum);
    readByte(source, letter);
    info.encrypt.id = reference;
    return Turn::goOn;
  }
  source.clear();
  const std::streampos place = source.tellg();
  std::string token;
  source >> token;
  if (token != dictOpen) return Turn::goOn;
  source.seekg(place);
  info.encrypt.accessState = CEncrypt::openedByEmptyPassword;
  info.encrypt.Read(source);
  return Turn::goOn;
}

Turn TrailerScan::readInfo() {
  // With a cross-reference stream read, its own /Info stands. Among classic tables the oldest one does.
  if (info.id.objNum != 0) {
    readReferenceBytes(source);
    return Turn::goOn;
  }
  std::string token;
  source >> token;
  if (token == dictOpen) {
    CFileBlock::FindStr(source, dictClose);
    return Turn::goOn;
  }
  char letter = 0;
  info.info.id.objNum = static_cast<int>(leadingNumber(token));
  readInteger(source, info.info.id.genNum);
  readByte(source, letter);
  return Turn::goOn;
}

Turn TrailerScan::readId() {
  if (!info.fileId.first.empty()) return Turn::goOn;
  std::string token;
  source >> token;
  if (token == arrayOpen) source >> token;
  skipComments(source, token);
  if (!opensString(token)) {
    prev = 0;  // leads to the header, which ends the walk
    return Turn::success;
  }
  readFirstId(info, source, token);
  const std::streampos place = source.tellg();
  source >> token;
  if (opensString(token))
    readSecondId(info, source, token);
  else
    source.seekg(place);
  return Turn::goOn;
}

}  // namespace

bool CFileInfo::ReadCrt(CSourFile& source) {
  for (;;) {
    const std::streampos place = source.tellg();
    int first = 0;
    int count = 0;
    if (!readInteger(source, first)) return standsAtTrailer(source, place);
    if (!readInteger(source, count) || !readSubsection(source, first, count)) return false;
  }
}

bool CFileInfo::readSubsection(CSourFile& source, int first, int count) {
  auto hint = objEntries.lower_bound(SObj(first, 0));
  for (int i = 0; i < count; ++i) {
    long long offset = 0;
    int generation = 0;
    char flag = 0;
    const bool isRead =
        readInteger(source, offset) && readInteger(source, generation) && readByte(source, flag);
    if (!isRead) return false;
    if (offset < 1) continue;
    SObjState entry;
    entry.entryOffset = shifted(offset, source.headerOffset);
    entry.entryType = static_cast<unsigned char>(flag == *kwf ? EntryType::free : EntryType::atOffset);
    entry.entryFlag = static_cast<unsigned char>(flag);
    if (entry.atOffset()) filePositions.push_back(entry.entryOffset);
    hint = std::next(objEntries.try_emplace(hint, SObj(numberedFrom(first, i), generation), entry));
  }
  return true;
}

bool CFileInfo::ReadTrailerXRefStm(CSourFile& source) {
  const PositionGuard place(source);
  std::string token;
  source >> token;
  if (source.fail()) return false;
  if (token != kwtrailer) return true;
  long long offset = 0;
  if (!findXRefStm(source, offset)) return false;
  if (offset <= 0) return true;
  // The one offset that isn't relative to the header.
  source.seekg(offset);
  long long number = 0;
  return readInteger(source, number) && ReadXRefObj(source, number, true);
}

long long CFileInfo::GetPrev(CSourFile& source, bool expectTrailerWord) {
  if (expectTrailerWord) {
    std::string token;
    source >> token;
    if (token != kwtrailer) return endOfChain;
  }
  if (!isDictStart(source) || !source.good()) return endOfChain;
  TrailerScan scan(*this, source);
  scanKeys(source, scan);
  return scan.prev;
}

SObj readReferenceBytes(CSourFile& source) {
  SObj reference;
  char letter = 0;
  readInteger(source, reference.objNum);
  readInteger(source, reference.genNum);
  readByte(source, letter);
  return reference;
}

bool opensString(const std::string& token) { return token == "(" || token == "<"; }

namespace {

std::string readIdString(CSourFile& source, const std::string& opener) {
  CStringType text{SObj()};
  text.hexadecimal = opener == "<";
  text.noDecrypt = true;  // the trailer is never encrypted, nor read again with a key in use
  text.Read(source);
  return text.value.substr(0, CFileID::maxLength);
}

}  // namespace

void readFirstId(CFileInfo& info, CSourFile& source, const std::string& opener) {
  info.fileId.first = readIdString(source, opener);
  info.fileId.length = static_cast<long long>(info.fileId.first.size());
}

void readSecondId(CFileInfo& info, CSourFile& source, const std::string& opener) {
  info.fileId.second = readIdString(source, opener);
}

long long leadingNumber(const std::string& token) { return std::strtoll(token.c_str(), nullptr, 10); }

}  // namespace TESSEL
