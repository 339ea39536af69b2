#include "TesselPage/Structure/tessel_sourfile.h"

#include <algorithm>
#include <utility>

#include "TesselPage/Model/tessel_catalog.h"
#include "TesselPage/Structure/tessel_pagetreewalk.h"
#include "TesselPage/Syntax/tessel_fileblock.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_positionguard.h"
#include "TesselPage/Syntax/tessel_token.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

namespace {

constexpr int success = 0;
constexpr int notReadable = 1000;
constexpr int xrefNotReadable = 1001;

constexpr std::size_t headerBufferSize = 1024;
constexpr std::size_t shortestHeader = 8;

/// Access state of a source that is open under a password as needed: parts of it may be out of reach.
constexpr int openedByPassword = 3;

constexpr const char* versions[] = {"%PDF-1.0", "%PDF-1.1", "%PDF-1.2", "%PDF-1.3", "%PDF-1.4",
                                    "%PDF-1.5", "%PDF-1.6", "%PDF-1.7", "%PDF-2.0"};

bool failedToOpen(std::streambuf* buffer) {
  const auto* file = dynamic_cast<const SourceBuffer*>(buffer);
  return file && !file->isOpen();
}

}  // namespace

CSourFile::CSourFile(std::istream& stream)
    : std::istream(stream.rdbuf()), catalogObj(std::make_unique<CCatalog>()) {
  if (failedToOpen(rdbuf())) setstate(failbit);
}

CSourFile::CSourFile(std::string text, CSourFile& real) : CSourFile(std::move(text)) {
  isSubSource = true;
  realSource = &real.mainSource();
  switches = real.switches;
  fileInfo.entries = real.fileInfo.entries;
}

CSourFile::CSourFile(std::string text) : std::istream(nullptr), ownText(std::move(text)) {
  rdbuf(&ownBuffer.emplace(ownText));
}

CSourFile::~CSourFile() = default;

int CSourFile::CheckAndInit() {
  if (!readHeader()) return notReadable;
  setf(skipws);
  clear();
  fileInfo.Read(*this);
  if (!good()) return xrefNotReadable;
  // What was decoded before the tables and the file key were complete may be wrong.
  objectStreams.clear();
  catalogObj->setIdentity(fileInfo.root);
  catalogObj->fromStream(*this);
  if (!good()) return notReadable;
  return walkPages(fileInfo.encrypt.accessState == openedByPassword);
}

int CSourFile::InitOther() {
  catalogObj->setIdentity(fileInfo.root);
  catalogObj->fromStream(*this);
  if (!good()) return xrefNotReadable;
  return walkPages(false);
}

int CSourFile::walkPages(bool skipUnknownNodes) {
  using UnknownNode = PageTreeWalk::UnknownNode;
  pageList.clear();
  pageSet.clear();
  PageTreeWalk walk(*this, skipUnknownNodes ? UnknownNode::skip : UnknownNode::fail);
  if (!walk.run(catalogObj->pages)) return notReadable;
  curPage = 0;
  return success;
}

bool CSourFile::readHeader() {
  std::string line;
  if (!findHeader(line) || line.size() < shortestHeader) return false;
  for (const char* literal : versions) {
    if (line.find(literal) == std::string::npos) continue;
    version = literal;
    return true;
  }
  return false;
}

bool CSourFile::findHeader(std::string& line) {
  seekg(0);
  unsetf(skipws);
  char buffer[headerBufferSize];
  do {
    headerOffset = tellg();
    getline(buffer, sizeof buffer);
    line.assign(buffer, static_cast<std::size_t>(gcount()));
    const std::size_t place = line.find(kw_PDF_);
    if (place == std::string::npos) continue;
    headerOffset += static_cast<long long>(place);
    return true;
  } while (good());  // a line longer than the buffer fails the stream and ends the search too
  return false;
}

bool CSourFile::FindStr(const std::string& word) {
  std::string token;
  while (good()) {
    *this >> token;
    if (token == word) return true;
  }
  return false;
}

void CSourFile::insertFileObject(const SObj& object) { enterPageObject(object); }

bool CSourFile::enterPageObject(const SObj& object) {
  const bool isNew = pageObjects.insert(object).second;
  if (isNew) newPageObjects.push_back(object);
  return isNew;
}

void CSourFile::erasePageObject(const SObj& object) {
  if (pageObjects.erase(object) != 0) erasedPageObjects.push_back(object);
}

bool plainText(CSourFile& source, const SObj& object, std::string& text, bool& dropped) {
  const PositionGuard place(source, PositionGuard::State::clear);
  CDestFile dest;
  CObj copied(object);
  dropped = false;
  const bool written = copied.LocalObj(dest, source, &dropped);
  text = std::move(static_cast<std::string&>(dest));
  text.resize(std::min(text.size(), text.rfind(kwendobj)));
  if (!text.empty() && text.front() == '\n') text.erase(0, 1);
  return written;
}

}  // namespace TESSEL
