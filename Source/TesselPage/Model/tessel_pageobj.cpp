#include "TesselPage/Model/tessel_pageobj.h"

#include <list>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_positionguard.h"

namespace TESSEL {

/// Reads a page dictionary. What a reference means is told by the mask that the last key has left, and only
/// outside of nested dictionaries.
class PageScan {
 public:
  PageScan(CPage& reader, CSourFile& in) : page(reader), source(in), main(in.mainSource()) {}

  Turn onReference(SObj ref);
  Turn onToken(const std::string& next);
  void inheritResources();

  std::list<SObj> work;

 private:
  void decideMask(const std::string& previous);
  void readDest();
  void readGroup();
  Turn actOnToken();
  Turn end() { return Turn::success; }
  Turn skipStream();
  Turn readRotate();
  void readDirectAnnots();

  void refusePage(const SObj& ref) const;
  void harvest(const SObj& ref);
  void follow(const SObj& ref);
  void keepParent(const SObj& ref);
  void addContents(const SObj& ref);
  void addAnnots(const SObj& ref);

  CPage& page;
  CSourFile& source;
  CSourFile& main;
  std::string token;
  int mask = ObjFlag::none;
  bool insideDestArray = false;
  int opened = 0;  ///< "<<" tokens, but for one right behind "obj"
  int closed = 0;  ///< ">>" tokens
  SObj parent;
  bool ownResources = false;
};

namespace {

constexpr int quarterTurn = 90;

bool holds(const std::string& token, std::string_view text) { return token.find(text) != std::string::npos; }

/// The mask that a key leaves for the references behind it; the first row whose text the token holds counts.
struct KeyMask {
  std::string_view text;
  int mask;
};
constexpr KeyMask keyMasks[] = {
    {nmResources, ObjFlag::underResources}, {nmContents, ObjFlag::underContents},
    {nmParent, ObjFlag::underParent},       {nmAnnots, ObjFlag::underAnnots},
    {nmThumb, ObjFlag::underThumb},         {nmIllustrator, ObjFlag::underIllustrator},
};

const KeyMask* findMask(const std::string& token) {
  for (const KeyMask& row : keyMasks)
    if (holds(token, row.text)) return &row;
  return nullptr;
}

}  // namespace

// Not a plain key scan: tokens are looked at for what they hold, and the one before counts too.
Turn PageScan::onToken(const std::string& next) {
  const std::string previous = token;
  token = next;
  decideMask(previous);
  return actOnToken();
}

void PageScan::decideMask(const std::string& previous) {
  if (token == nmDest) return readDest();
  if (token == "]") {
    insideDestArray = false;
  } else if (const KeyMask* key = findMask(token)) {
    mask = key->mask;
  } else if (holds(token, "[")) {
    if (previous == nmAnnots) mask = ObjFlag::annotSubtree;
  } else if (holds(token, nmGroup)) {
    readGroup();
  } else {
    if (token == "<<" && previous != kwobj) ++opened;
    if (token == ">>") ++closed;
    mask = ObjFlag::none;
  }
}

void PageScan::readDest() {
  source >> token;
  if (token == "[") insideDestArray = true;
}

// Without a count of nested dictionaries: the copy ends at the first ">>".
void PageScan::readGroup() {
  const std::string key = token;
  const std::streampos start = source.tellg();
  source >> token;
  if (token != "<<") {
    token = key;
    return;
  }
  while (token != ">>" && source.good()) source >> token;
  if (!source.good()) return;
  const std::streamoff size = source.tellg() - start;
  source.seekg(start);
  page.pageGroup.resize(static_cast<std::size_t>(size));
  source.read(page.pageGroup.data(), size);
}

Turn PageScan::actOnToken() {
  static constexpr KeyRow<PageScan> rows[] = {
      {kwendobj, &PageScan::end}, {kwstream, &PageScan::skipStream}, {nmRotate, &PageScan::readRotate}};
  Turn turn = Turn::goOn;
  if (dispatch(*this, rows, token, turn)) return turn;
  if (mask == ObjFlag::annotSubtree) readDirectAnnots();
  return Turn::goOn;
}

Turn PageScan::skipStream() {
  CFileBlock::FindStr(source, kwendstream);
  return Turn::goOn;
}

// The page's record keeps what the walk over the page tree stored; this is what the annotations see.
Turn PageScan::readRotate() {
  int& rotation = main.switches.currentRotation;
  page.ReadIntObj(source, rotation);
  if (rotation % quarterTurn != 0) rotation = 0;
  return Turn::goOn;
}

// The annotation reader runs on to "endobj"; the page's scan then goes on behind the "[".
void PageScan::readDirectAnnots() {
  PositionGuard back(source, PositionGuard::State::clear);
  page.annots.id = page.id;
  page.annots.arrayFlag = true;
  page.annots.Read(source);
}

Turn PageScan::onReference(SObj ref) {
  constexpr int notFollowed = ObjFlag::underThumb | ObjFlag::underIllustrator;
  if (insideDestArray || (mask & notFollowed) != 0) return Turn::goOn;
  ref.objFlags = opened == closed ? mask : ObjFlag::none;
  if (ref.hasAny(ObjFlag::underParent | ObjFlag::annotSubtree)) {
    keepParent(ref);
    return Turn::goOn;
  }
  refusePage(ref);
  harvest(ref);
  if (ref.hasAny(ObjFlag::underContents)) addContents(ref);
  if (ref.hasAny(ObjFlag::underResources)) {
    main.pageResourceObjs.insert(ref);
    ownResources = true;
  }
  if (ref.hasAny(ObjFlag::underAnnots)) addAnnots(ref);
  return Turn::goOn;
}

void PageScan::refusePage(const SObj& ref) const {
  if (main.isPage(ref)) throw CPage::damagedPage;
}

void PageScan::harvest(const SObj& ref) {
  if (main.isPageObject(ref)) return;
  main.insertFileObject(ref);
  if (!ref.hasAny(ObjFlag::underContents | ObjFlag::underAnnots)) follow(ref);
}

void PageScan::follow(const SObj& ref) {
  if (ref.objNum == 0) return;
  if (page.isTakenOut(main, source, ref))
    main.pieceFilteredObjs.insert(ref);
  else
    work.push_back(ref);
}

// The references of a direct /Annots array count as the parent only while none is known.
void PageScan::keepParent(const SObj& ref) {
  const bool byKey = ref.hasAny(ObjFlag::underParent);
  if (byKey || parent.objNum == 0) parent = ref;
  main.parentMap.emplace(page.id, ref);
}

void PageScan::addContents(const SObj& ref) {
  if (!main.pageContentSet.insert(ref).second) return;
  main.pageContentObjs.push_back(ref);
  page.ReadTree(main, ref, main.pageContentSet, &main.pageContentObjs);
}

void PageScan::addAnnots(const SObj& ref) {
  main.pageAnnotObjs.insert(ref);
  PositionGuard back(main, PositionGuard::State::clear);
  page.annots.id = ref;
  main.clear();
  page.annots.fromStream(main);
}

void PageScan::inheritResources() {
  if (ownResources) return;
  SObj resources;
  std::vector<SObj> references;
  page.getParentResource(main, parent, resources, references);
  resources.objFlags = ObjFlag::underResources;
  refusePage(resources);
  // Entered even when nothing was found: number 0 with this flag gets no number and no text.
  if (!main.isPageObject(resources)) {
    main.insertFileObject(resources);
    if (mask != ObjFlag::underContents) follow(resources);
  }
  if (resources.objNum != 0) main.pageResourceObjs.insert(resources);
  for (const SObj& ref : references) {
    if (main.isPageObject(ref)) continue;
    main.insertFileObject(ref);
    work.push_back(ref);
  }
}

bool CPage::Read(CSourFile& source) {
  CSourFile& main = source.mainSource();
  main.pageContentObjs.clear();
  main.pageContentSet.clear();
  main.pageResourceObjs.clear();
  main.pageAnnotObjs.clear();
  main.destObjMap.clear();

  PageScan scan(*this, source);
  scanKeys(source, scan);
  scan.inheritResources();
  return ReadOthers(main, scan.work);
}

}  // namespace TESSEL
