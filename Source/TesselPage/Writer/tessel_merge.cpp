// The writer of whole files. The library's own road doesn't pass here; a host that links the class set may.
// This is the one place of this floor that looks up: pages and nodes of the page tree read and write
// themselves.

#include <algorithm>

#include "TesselPage/Model/tessel_catalog.h"
#include "TesselPage/Model/tessel_pageobj.h"
#include "TesselPage/Model/tessel_pages.h"
#include "TesselPage/Structure/tessel_objflags.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "TesselPage/Writer/tessel_pageselection.h"

namespace TESSEL {

namespace {

constexpr int success = 0;
constexpr int selectionRefused = 1006;
constexpr int freeGeneration = 65535;
constexpr std::pair<int, int> everything{0, 0};

/// Marks the page itself as one of the objects that are needed.
void enterPage(CSourFile& source, const SObj& page) {
  SObj marked = page;
  marked.objFlags = ObjFlag::page;
  const auto known = source.pageObjects.find(page);
  if (known != source.pageObjects.end()) {
    marked = *known;
    marked.objFlags |= ObjFlag::page;
    source.erasePageObject(page);
  }
  source.enterPageObject(marked);
}

/// Reads one page, counted from 1. What was read of a page that can't be read to its end counts.
void readPage(CSourFile& source, int number) {
  const SObj page = source.pageList[static_cast<std::size_t>(number) - 1];
  enterPage(source, page);
  source.curPage = number;
  source.clear();
  CPage reader;
  reader.setIdentity(page);
  try {
    reader.fromStream(source);
  } catch (int) {
  } catch (const CFileError&) {
  }
  source.clear();
  // Of contents in an array of its own, the harvest has the array alone.
  for (const SObj& contents : source.pageContentObjs) source.enterPageObject(contents);
}

int pageCount(const CSourFile& source) { return static_cast<int>(source.pageList.size()); }

/// Calls `each(page)` for the page with this number, or for all when it is 0.
template <class Each>
void forEachPage(const CSourFile& source, int number, Each each) {
  const int first = std::max(number, 1);
  const int last = std::min(number == 0 ? pageCount(source) : number, pageCount(source));
  for (int page = first; page <= last; ++page) each(page);
}

/// Takes out again what an object has written that broke off before its "endobj".
class WholeObjects {
 public:
  explicit WholeObjects(CDestFile& target) : dest(target) {}

  template <class WriteObject>
  void write(const SObj& old, WriteObject writeObject) {
    const std::size_t had = dest.size();
    const std::size_t endMark = dest.endMark;
    writeObject();
    if (dest.size() == had || dest.endMark == dest.size()) return;
    dest.resize(had);
    dest.endMark = endMark;
    if (const SObj* newId = dest.findNewObj(old)) dest.fileInfo.entries->erase(*newId);
  }

 private:
  CDestFile& dest;
};

}  // namespace

CDestFile::CDestFile(const std::string&) {}

CDestFile::~CDestFile() = default;

CPages& CDestFile::rootPages() {
  if (!root) root = std::make_unique<CPages>(nmPages);
  return *root;
}

CCatalog& CDestFile::catalog() {
  if (!ownCatalog) ownCatalog = std::make_unique<CCatalog>();
  return *ownCatalog;
}

bool CDestFile::Init(const std::string&) {
  header.clear();
  pageSelection.clear();
  newNumbers.clear();
  fileInfo.Init();
  root.reset();
  ownCatalog.reset();
  pages.clear();
  nextNumber = firstNumber + 1;
  rawFlag = false;
  currentFile = 0;
  start = 0;
  endMark = 0;
  currentObject = SObj();
  return true;
}

int CDestFile::SetReadFileAndPage(const std::string& text) {
  pageSelection.clear();
  return PageSelection(files).parse(text, pageSelection) ? success : selectionRefused;
}

int CDestFile::ReadHeader() {
  for (const auto& [number, source] : files) header = std::max(header, source->version);
  return success;
}

int CDestFile::ReadPageObj() {
  const bool all = std::find(pageSelection.begin(), pageSelection.end(), everything) != pageSelection.end();
  if (all) pageSelection.clear();
  for (const auto& [file, source] : files)
    for (int page = 1; all && page <= pageCount(*source); ++page) pageSelection.emplace_back(file, page);
  for (const auto& [file, page] : pageSelection)
    if (CSourFile* source = GetSourFile(file))
      forEachPage(*source, page, [&](int n) { readPage(*source, n); });
  return success;
}

int CDestFile::Read() {
  ReadHeader();
  return ReadPageObj();
}

void CDestFile::TidyObj() {
  for (const auto& [file, source] : files)
    for (const SObj& object : source->pageObjects) insertNewObjTab({0, file, object}, SObj(nextNumber++, 0));
}

int CDestFile::WritePageObj() {
  for (const auto& [file, source] : files) {
    currentFile = file;
    writeObjects(*source);
  }
  currentFile = 0;
  return success;
}

void CDestFile::writeObjects(CSourFile& source) {
  WholeObjects whole(*this);
  for (const SObj& object : source.pageObjects)
    if (!object.hasAny(ObjFlag::notMerged)) whole.write(object, [&] { CObj(object).Write(*this, source); });
}

int CDestFile::WritePages() {
  CPages& tree = rootPages();
  tree.setIdentity(SObj(nextNumber++, 0));
  for (const auto& [file, page] : pageSelection) {
    CSourFile* source = GetSourFile(file);
    if (!source) continue;
    if (file != currentFile) {
      source->newRoot = SObj(nextNumber++, 0);
      tree.kids.push_back(source->newRoot);
    }
    currentFile = file;
    writeSelected(*source, page);
  }
  currentFile = 0;
  for (const auto& [id, node] : pages) node->writeTo(*this);
  tree.writeTo(*this);
  return success;
}

void CDestFile::writeSelected(CSourFile& source, int page) {
  WholeObjects whole(*this);
  forEachPage(source, page, [&](int number) {
    const SObj object = source.pageList[static_cast<std::size_t>(number) - 1];
    whole.write(object, [&] { WritePage(source, object); });
  });
}

bool CDestFile::WritePage(CSourFile& source, const SObj& page) {
  CPage writer;
  writer.setIdentity(page);
  return writer.Write(*this, source);
}

int CDestFile::Write() {
  SObjState& entry = (*fileInfo.entries)[SObj(0, freeGeneration)];
  entry.entryFlag = static_cast<unsigned char>(*kwf);
  WritePageObj();
  return WritePages();
}

void CDestFile::DeleteSour() {
  for (const auto& [file, source] : files) const std::unique_ptr<CSourFile> owned(source);
  files.clear();
}

}  // namespace TESSEL
