#include "TesselPage/Model/tessel_structtree.h"

#include <algorithm>
#include <string>

#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Model/tessel_objectend.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_positionguard.h"

namespace TESSEL {

namespace {

/// Reads one structure element.
class TagScan {
 public:
  TagScan(CTag& reader, CSourFile& in) : tag(reader), source(in), end(in, reader.id) {
    const bool entered = (reader.typeFlags & CObj::foundByTable) != 0 && !in.isSubSource;
    depth = DictDepth(entered ? 1 : 0);
  }

  bool atEnd() { return end.passed(); }
  Turn onReference(const SObj& ref) {
    if (inKids) tag.kids.push_back(ref);
    return Turn::goOn;
  }
  Turn onToken(const std::string& token);

 private:
  void onKey(const std::string& token);
  void startKids();
  void readPage();

  CTag& tag;
  CSourFile& source;
  ObjectEnd end;
  DictDepth depth;
  bool inKids = false;    ///< within the array of /K
  bool kidsNext = false;  ///< right behind /K
};

Turn TagScan::onToken(const std::string& token) {
  if (token.empty()) return Turn::failure;
  if (token == kwendobj || depth.closes(token)) return Turn::success;
  if (kidsNext && token == "[") inKids = true;
  kidsNext = false;
  if (token == "]") inKids = false;
  if (!inKids) onKey(token);
  skipIfString(source, tag.id, token, StringsSkipped::both);
  return Turn::goOn;
}

// In the array of /K only references count: a marked content reference there tells the element no page.
void TagScan::onKey(const std::string& token) {
  if (token == nmK) startKids();
  if (token == nmPg) readPage();
}

void TagScan::startKids() {
  SObj kid;
  if (tryReference(source, kid))
    tag.kids.push_back(kid);
  else
    kidsNext = true;
}

// A marked content reference tells its page too; that of the element itself goes before.
void TagScan::readPage() {
  SObj page;
  if (!tryReference(source, page)) return;
  if (depth.depth() <= 1 || tag.page.objNum == 0) tag.page = page;
}

/// Collects the references of the root's /K.
class StructRootScan {
 public:
  StructRootScan(CStructTreeRoot& reader, CSourFile& in) : root(reader), source(in), end(in, reader.id) {}

  bool atEnd() { return end.passed(); }
  Turn onReference(const SObj&) { return Turn::goOn; }
  Turn onToken(const std::string& token) {
    if (token.empty()) return Turn::failure;
    if (token == nmK) return readKids();
    skipIfString(source, root.id, token, StringsSkipped::both);
    return token == kwendobj || depth.closes(token) ? Turn::success : Turn::goOn;
  }

  std::vector<SObj> kids;

 private:
  Turn readKids() {
    SObj kid;
    if (tryReference(source, kid)) {
      kids.push_back(kid);
      return Turn::success;
    }
    std::string opening;
    source >> opening;
    while (tryReference(source, kid)) kids.push_back(kid);
    return Turn::success;
  }

  CStructTreeRoot& root;
  CSourFile& source;
  ObjectEnd end;
  DictDepth depth;
};

}  // namespace

bool CTag::scan(CSourFile& source) {
  TagScan tag(*this, source);
  return scanKeys(source, tag) && source.good();
}

bool CTag::settle() {
  if (!isKnown(page)) {
    const auto found = std::find_if(children.begin(), children.end(), isKnown);
    if (found != children.end()) page = *found;
  }
  return isKnown(page);
}

bool CTag::Read(CSourFile& source) {
  CSourFile& main = source.mainSource();
  return scan(source) && PageTreeReader<CTag>(main, main.destLookup.elementPages).readBelow(*this);
}

bool CStructTreeRoot::Read(CSourFile& source) {
  CSourFile& main = source.mainSource();
  StructRootScan root(*this, source);
  if (!scanKeys(source, root)) return false;
  PageTreeReader<CTag> tree(main, main.destLookup.elementPages);
  return std::all_of(root.kids.begin(), root.kids.end(), [&](const SObj& kid) { return tree.read(kid); });
}

void noteStructTree(CSourFile& source) {
  DestLookup& lookup = source.mainSource().destLookup;
  if (lookup.structTree || !lookup.elementPages.empty()) return;
  PositionGuard back(source, PositionGuard::State::clear);
  SObj ref;
  if (tryReference(source, ref)) {
    lookup.structTree = ref;
    return;
  }
  CStructTreeRoot direct;
  direct.typeFlags = 0;
  direct.fromStream(source);
}

const SObj* structurePage(CSourFile& main, const SObj& element) {
  DestLookup& lookup = main.destLookup;
  if (lookup.structTree) {
    PositionGuard back(main, PositionGuard::State::clear);
    CStructTreeRoot root;
    root.id = *lookup.structTree;
    lookup.structTree.reset();
    root.fromStream(main);
  }
  const auto found = lookup.elementPages.find(element);
  return found == lookup.elementPages.end() ? nullptr : &found->second;
}

}  // namespace TESSEL
