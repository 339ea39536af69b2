#include "TesselPage/Structure/tessel_fileinfo.h"

#include <algorithm>
#include <optional>
#include <unordered_set>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Structure/tessel_xrefparts.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_token.h"

namespace TESSEL {

namespace {

/// Where the end of a file is looked through first.
constexpr std::streamoff tailBytes = 300;
/// No table lies in front of this place: a smaller value counts as none.
constexpr long long leastStart = 10;

/// Places the source behind the last "startxref" of the tail that has an "%%EOF" behind it.
bool findInTail(CSourFile& source) {
  source.seekg(-tailBytes, std::ios_base::end);
  bool found = false;
  for (;;) {
    const std::streampos place = source.tellg();
    if (source.FindStr(kwstartxref)) {
      const std::streampos behind = source.tellg();
      if (source.FindStr(kw_EOF)) {
        source.seekg(behind);
        found = true;
        continue;
      }
    }
    source.clear();
    source.seekg(place);
    return found;
  }
}

/// Places the source behind the last "startxref" of the file; 0 and the file's start when there is none.
long long findInFile(CSourFile& source) {
  long long last = 0;
  source.clear();
  source.seekg(0);
  while (source.FindStr(kwstartxref)) last = source.tellg();
  source.clear();
  source.seekg(last);
  return last;
}

/// The look for another "startxref" when the one at hand leads nowhere.
/// @throws CFileError when there is none
std::optional<long long> retryStart(CSourFile& source, long long fileEnd, long long former) {
  std::string token;
  for (;;) {
    // Relative on purpose: the search starts again at twice the position.
    source.seekg(source.tellg(), std::ios_base::cur);
    CFileBlock::FindStr(source, kwstartxref);
    source >> token;
    if (CFileBlock::IsNum(token)) break;
    if (source.tellg() >= fileEnd) return former;
  }
  // Here, unlike in the first look, the least value itself doesn't count.
  const long long value = leadingNumber(token);
  return value > leastStart ? std::optional(value) : std::nullopt;
}

/// The offset of the newest revision, relative to the header.
std::optional<long long> readStart(CSourFile& source, long long fileEnd, bool foundInFile) {
  std::string token;
  source >> token;
  const long long value = CFileBlock::IsNum(token) ? leadingNumber(token) : 0;
  if (value >= leastStart) return value;
  return foundInFile ? std::nullopt : retryStart(source, fileEnd, value);
}

}  // namespace

XRefBudget::XRefBudget(long long fileBytes)
    : entries(std::max(leastEntries, fileBytes)),
      bytes(leastBytes + bytesPerFileByte * std::max(fileBytes, 0LL)) {}

bool CFileInfo::Read(CSourFile& source) {
  source.seekg(0, std::ios_base::end);
  const long long fileEnd = source.tellg();
  budget = XRefBudget(fileEnd);
  const bool foundInFile = !findInTail(source) && findInFile(source) > 0;
  const long long behindWord = source.tellg();
  if (const auto start = readStart(source, fileEnd, foundInFile)) walkChain(source, *start);
  filePositions.push_back(behindWord);
  return !readInfo(source) || readSecurity(source);
}

void CFileInfo::walkChain(CSourFile& source, long long start) {
  std::unordered_set<long long> visited;
  long long next = start;
  long long place = 0;
  do {
    if (!visited.insert(next).second) return;
    place = shifted(source.headerOffset, next);
    if (source.seekg(place).fail()) return;
  } while (readRevision(source, next) && next != endOfChain && charge(source, place));
}

bool CFileInfo::charge(CSourFile& source, long long start) {
  if (source.good()) budget.bytes -= std::max<long long>(source.tellg() - std::streamoff(start), 0);
  return budget.bytes >= 0;
}

bool CFileInfo::readRevision(CSourFile& source, long long& next) {
  std::string token;
  source >> token;
  if (token == kwxref) {
    if (!ReadCrt(source) || !ReadTrailerXRefStm(source)) return false;
    next = GetPrev(source, true);
    return true;
  }
  if (!IsNum(token)) return false;
  next = leadingNumber(token);
  return ReadXRefObj(source, next, false);
}

/// False when the table has no entry of the /Info object, which ends the read.
bool CFileInfo::readInfo(CSourFile& source) {
  if (info.id.objNum < 1) return true;
  const SObjState* entry = find(info.id);
  if (!entry) return false;
  if (entry->inObjectStream())
    info.typeFlags |= foundByTable;
  else
    source.seekg(entry->entryOffset);
  info.fromStream(source);
  return true;
}

/// The /Encrypt dictionary, unless it was direct in a trailer, and the file key.
bool CFileInfo::readSecurity(CSourFile& source) {
  if (encrypt.id.objNum >= 1) {
    encrypt.accessState = CEncrypt::openedByEmptyPassword;
    source.seekg(GetObjState(encrypt.id).entryOffset);
    encrypt.fromStream(source);
  }
  if (encrypt.R < 1) return true;
  return encrypt.filterName == nmStandard && encrypt.findFileKey(fileId.first);
}

const SObjState* CFileInfo::find(const SObj& object) const {
  if (const auto entry = entries->find(object); entry != entries->end()) return &entry->second;
  const auto hybrid = hybridEntries.find(object);
  return hybrid == hybridEntries.end() ? nullptr : &hybrid->second;
}

SObjState CFileInfo::GetObjState(const SObj& object) const {
  const SObjState* entry = find(object);
  return entry ? *entry : SObjState();
}

SObjState CFileInfo::GetObjState(const int& num, const int& gen) const { return GetObjState(SObj(num, gen)); }

void CFileInfo::Init() {
  size = 0;
  root = SObj();
  objEntries.clear();
}

}  // namespace TESSEL
