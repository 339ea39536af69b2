#include "TesselPage/Model/tessel_annot.h"

#include <algorithm>
#include <climits>
#include <list>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "TesselPage/Model/tessel_dest.h"
#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Model/tessel_pageobj.h"
#include "TesselPage/Model/tessel_stepover.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_positionguard.h"

namespace TESSEL {

/// Reads an array of annotations: references, and dictionaries that stand in it directly. Not a plain key
/// scan: a token is looked at for what it holds.
class AnnotArrayScan {
 public:
  AnnotArrayScan(CAnnot& reader, CSourFile& in) : annot(reader), source(in), main(in.mainSource()) {}

  /// Looks ahead before each turn; never the end.
  bool atEnd() {
    checkSubtype();
    return false;
  }
  Turn onReference(SObj ref);
  Turn onToken(const std::string& token);

  std::list<SObj> work;

 private:
  void checkSubtype();
  std::string subtypeAhead();
  bool balanced() const { return opened == closed; }
  void decideMask(const std::string& token);
  void readDest();
  Turn end() { return Turn::success; }
  Turn skipStream();
  Turn readRotate();
  void push(const SObj& ref);

  CAnnot& annot;
  CSourFile& source;
  CSourFile& main;
  int mask = ObjFlag::none;
  int opened = 0;              ///< "<<" tokens
  int closed = 0;              ///< ">>" tokens
  int index = 0;               ///< direct dictionaries that are finished
  long long checkedUpTo = -1;  ///< the subtype ahead counts up to here
  std::set<SObj> pushed;
};

// The host's wish for links is what turns the check of direct dictionaries on. The verdict marks the reader
// itself, and so counts for all that follows in the array.
void AnnotArrayScan::checkSubtype() {
  const unsigned enable = main.switches.annotsEnable;
  if ((enable & AnnotsEnableLink) == 0 || source.tellg() < checkedUpTo) return;
  annot.checkEnableAnnots(subtypeAhead(), static_cast<TESSEL_AnnotsEnableE>(enable), annot.id.objFlags,
                          main.switches.customSubtypes);
}

std::string AnnotArrayScan::subtypeAhead() {
  PositionGuard back(source, PositionGuard::State::clear);
  std::string subtype;
  bool valueNext = false;
  scanDictionary(source, opened - closed, [&](const std::string& token, int depth) {
    if (valueNext) subtype = token;
    valueNext = token == nmSubtype && depth == 1;
    skipIfString(source, annot.id, token, StringsSkipped::both);
  });
  source.clear();
  checkedUpTo = source.tellg();
  return subtype;
}

Turn AnnotArrayScan::onToken(const std::string& token) {
  static constexpr KeyRow<AnnotArrayScan> rows[] = {{kwendobj, &AnnotArrayScan::end},
                                                    {kwstream, &AnnotArrayScan::skipStream},
                                                    {nmRotate, &AnnotArrayScan::readRotate}};
  if (token == nmDest) {
    readDest();
    return Turn::goOn;
  }
  decideMask(token);
  if (skipIfString(source, annot.id, token, StringsSkipped::both)) return Turn::goOn;
  return dispatch(*this, rows, token);
}

void AnnotArrayScan::decideMask(const std::string& token) {
  const auto holds = [&](const char* text) { return token.find(text) != std::string::npos; };
  if (holds(nmParent)) {
    mask = ObjFlag::underParent;
  } else if (token != "[" && !(annot.arrayFlag && holds("]"))) {
    mask = ObjFlag::none;
  }
  if (token == "<<") ++opened;
  if (token != ">>") return;
  ++closed;
  if (balanced()) ++index;
}

// Only in part as an annotation object's: the value is stepped over, so that its page is no reference of the
// array.
void AnnotArrayScan::readDest() {
  mask = ObjFlag::none;
  CDest dest;
  dest.readValue(source, annot.id);
  stepOverValue(source, annot.id);
  main.destObjMap.emplace(SDestObjKey{annot.id, index}, dest.info());
}

Turn AnnotArrayScan::skipStream() {
  CFileBlock::FindStr(source, kwendstream);
  return Turn::goOn;
}

// An annotation's key, and yet it changes the rotation that the writer uses.
Turn AnnotArrayScan::readRotate() {
  constexpr int quarterTurn = 90;
  int& rotation = main.switches.currentRotation;
  annot.ReadIntObj(source, rotation);
  if (rotation % quarterTurn != 0) rotation = 0;
  return Turn::goOn;
}

Turn AnnotArrayScan::onReference(SObj ref) {
  ref.objFlags = balanced() ? mask : ObjFlag::none;
  if (annot.id.hasAny(ObjFlag::annotLike) || annot.arrayFlag) ref.objFlags |= ObjFlag::annotSubtree;
  ref.objFlags |= annot.id.objFlags & ObjFlag::keptByAnyFilter;
  if (ref.hasAny(ObjFlag::underParent)) {
    main.parentMap.emplace(annot.id, ref);
    return Turn::goOn;
  }
  if (main.isPage(ref)) throw CPage::damagedPage;
  push(ref);
  return Turn::goOn;
}

// One that is known already is filtered again: this page's array may want it.
void AnnotArrayScan::push(const SObj& ref) {
  main.enterPageObject(ref);
  if (ref.objNum != 0 && pushed.insert(ref).second) work.push_back(ref);
}

bool CAnnot::Read(CSourFile& source) {
  AnnotArrayScan scan(*this, source);
  scanKeys(source, scan);
  return ReadOthers(source.mainSource(), scan.work);
}

int CAnnot::flagsOf(const std::string& digits) {
  constexpr int base = 10;
  long long value = 0;
  for (const char digit : digits) value = std::min<long long>(value * base + (digit - '0'), INT_MAX);
  return static_cast<int>(value);
}

bool CAnnot::getFieldInfo(CSourFile*, CSourFile& source, std::string& fieldType, int& fieldFlags) {
  PositionGuard back(source);
  std::string token;
  std::string previous;
  while (source.good()) {
    source >> token;
    if (endsObject(token)) break;
    if (previous == nmFT) fieldType = token;
    if (previous == nmFf && IsNum(token)) fieldFlags = flagsOf(token);
    previous = token;
    skipIfString(source, id, token, StringsSkipped::literalOnly);
  }
  return source.good();
}

bool CAnnot::ReadParent(CSourFile& source, const SObj& parent, std::string& fieldType, int& fieldFlags) {
  IdentityGuard own(*this);
  id = parent;
  CSourFile& main = source.mainSource();
  PositionGuard back(main, PositionGuard::State::clear);
  std::unique_ptr<CSourFile> memory;
  CSourFile* const body = ParseObj(main, memory, parent);
  return body && getFieldInfo(&main, *body, fieldType, fieldFlags);
}

const FieldInfo& CAnnot::fieldInfoOf(CSourFile& source, const SObj& field) {
  const auto [entry, isNew] = source.mainSource().parentFields.try_emplace(field);
  FieldInfo& info = entry->second;
  if (isNew) ReadParent(source, field, info.type, info.flags);
  return info;
}

}  // namespace TESSEL
