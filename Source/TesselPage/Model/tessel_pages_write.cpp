// Nodes of a new page tree.

#include <set>
#include <vector>

#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Model/tessel_newobject.h"
#include "TesselPage/Model/tessel_pageobj.h"
#include "TesselPage/Model/tessel_pages.h"
#include "TesselPage/Syntax/tessel_keywords.h"

namespace TESSEL {

namespace {

constexpr std::size_t rectNumbers = 4;

/// Scans one ancestor for what its pages inherit.
class AncestorScan {
 public:
  AncestorScan(CPages& written, CDestFile& target, CSourFile& in)
      : node(written), dest(target), source(in), main(in.mainSource()) {}

  Turn onReference(const SObj& ref);
  Turn onToken(const std::string& token);

 private:
  Turn end() { return Turn::success; }
  Turn writeMediaBox() { return writeBox(nmMediaBox, CPages::mediaBoxWritten); }
  Turn writeCropBox() { return writeBox(nmCropBox, CPages::cropBoxWritten); }
  Turn writeRotate();
  Turn writeBox(const char* key, unsigned bit);
  bool isWritten(unsigned bit) const { return (node.writtenMask & bit) != 0; }

  CPages& node;
  CDestFile& dest;
  CSourFile& source;
  CSourFile& main;
  std::string last;
};

Turn AncestorScan::onReference(const SObj& ref) {
  if (last == nmParent) {
    node.ancestors.push_back(ref);
    main.parentMap.emplace(node.id, ref);
  }
  last.clear();
  return Turn::goOn;
}

Turn AncestorScan::onToken(const std::string& token) {
  static constexpr KeyRow<AncestorScan> rows[] = {
      {kwendobj, &AncestorScan::end},
      {nmMediaBox, &AncestorScan::writeMediaBox},
      {nmCropBox, &AncestorScan::writeCropBox},
      {nmRotate, &AncestorScan::writeRotate},
  };
  last = token;
  return dispatch(*this, rows, token);
}

Turn AncestorScan::writeBox(const char* key, unsigned bit) {
  std::vector<float> numbers;
  if (isWritten(bit) || !node.ReadNumArrayObj(source, numbers) || numbers.size() < rectNumbers)
    return Turn::goOn;
  dest.append(key).append(" [");
  for (std::size_t i = 0; i < rectNumbers; ++i) {
    if (i != 0) dest.append(kw_);
    dest << static_cast<double>(numbers[i]);
  }
  dest.append("] ");
  node.writtenMask |= bit;
  return Turn::goOn;
}

Turn AncestorScan::writeRotate() {
  int degrees = 0;
  if (isWritten(CPages::rotateWritten) || !node.ReadIntObj(source, degrees)) return Turn::goOn;
  dest.append(nmRotate).append(kw_);
  dest << degrees;
  dest.append(kw_);
  node.writtenMask |= CPages::rotateWritten;
  return Turn::goOn;
}

}  // namespace

bool CPages::Write(CDestFile& dest, CSourFile&) {
  writeTo(dest);
  return true;
}

void CPages::writeTo(CDestFile& dest) {
  openNewObject(dest, id);
  dest.append(nmType).append(nmPages).append(nmCount).append(kw_);
  dest << count;
  dest.append(nmKids).append("[");
  for (const SObj& kid : kids) {
    writeNumbers(dest, kid);
    dest.append("R ");
  }
  dest.append("]").append(kw_n);
  if (sourceIndex >= 1 && !ancestors.empty()) {
    WriteOther(dest);
    dest.append(nmParent).append(kw_);
    writeNumbers(dest, dest.rootPages().id);
    dest.append("R ");
  }
  closeNewObject(dest);
}

bool CPages::WriteOther(CDestFile& dest) {
  CSourFile* source = dest.GetSourFile(sourceIndex);
  std::set<SObj> visited;
  while (source && !ancestors.empty() && writtenMask == 0 && visited.insert(ancestors.front()).second) {
    const SObj own = id;
    id = ancestors.front();
    std::unique_ptr<CSourFile> memory;
    CSourFile* const body = ParseObj(*source, memory, id);
    if (body) WriteOtherInfo(dest, *body);
    // Here the walk ends, and the node keeps the ancestor's identity.
    if (GetObjState(*source, id).inObjectStream()) return false;
    id = own;
    if (!body) return false;
    ancestors.pop_front();
  }
  return true;
}

bool CPages::WriteOtherInfo(CDestFile& dest, CSourFile& source) {
  AncestorScan scan(*this, dest, source);
  scanKeys(source, scan);
  return true;
}

bool CPage::Write(CDestFile& dest, CSourFile& source) {
  if (dest.rawFlag) return CObj::Write(dest, source);
  const SObj* found = dest.findNewObj(id);
  if (!found) return false;
  const SObj newId = *found;
  std::unique_ptr<CPages>& node = dest.pages[source.newRoot];
  if (!node) {
    node = std::make_unique<CPages>(nmPages);
    node->sourceIndex = dest.currentFile;
    node->setIdentity(source.newRoot);
  }
  node->kids.push_back(newId);
  ++node->count;
  ++dest.rootPages().count;
  return CObj::Write(dest, source);
}

}  // namespace TESSEL
