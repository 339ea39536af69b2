// The harvest of one object of an annotation's subtree: a first pass that decides whether it is kept, and a
// second one that hands its flags on to what it refers to. The subtree of a dropped annotation is never
// walked.

#include <iterator>
#include <list>
#include <memory>
#include <string>

#include "TesselPage/Model/tessel_action.h"
#include "TesselPage/Model/tessel_annot.h"
#include "TesselPage/Model/tessel_catalog.h"
#include "TesselPage/Model/tessel_dest.h"
#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Model/tessel_stepover.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_positionguard.h"

namespace TESSEL {

class AnnotObjectScan {
 public:
  AnnotObjectScan(CAnnot& reader, CSourFile& mainSource, CSourFile& in, std::list<SObj>& list)
      : annot(reader), main(mainSource), source(in), work(list) {}

  bool run();

  // The second pass.
  Turn onReference(SObj ref);
  Turn onToken(const std::string& token);

 private:
  bool isOff() const { return main.switches.annotsEnable == 0 && main.switches.formsEnable == 0; }
  bool dropAll();
  void look();
  void filter();
  void filterWidget();
  bool keepOrDrop();

  Turn readAction();
  Turn readDest();
  Turn skipResources();
  Turn enterMK();
  Turn end() { return Turn::success; }
  void moveDepth();

  bool isSibling() const {
    return annot.id.hasAny(ObjFlag::annotParent) && previous == nmKids && last == "[";
  }
  bool leadsToAction(const SObj& ref) const;
  int flagsFor(const SObj& ref) const;
  void enter(const SObj& ref);

  CAnnot& annot;
  CSourFile& main;
  CSourFile& source;
  std::list<SObj>& work;

  std::string subtype;
  std::string fieldType;
  int fieldFlags = 0;
  SObj parent;

  std::string last;      ///< token read last
  std::string previous;  ///< the one before
  bool insideMK = false;
  bool plain = false;  ///< what is referred to is no part of the annotation
  int depth = 0;
  long long valuesRead = -1;  ///< place behind the last direct value that was read ahead
};

bool AnnotObjectScan::run() {
  const std::streampos start = source.tellg();
  if (isOff()) {
    if (dropAll()) return true;
  } else {
    look();
    filter();
    if (keepOrDrop()) return true;
  }
  source.clear();
  source.seekg(start);
  return scanKeys(source, *this);
}

/// With nothing enabled: whether the object was there to be dropped, whoever entered it.
bool AnnotObjectScan::dropAll() {
  if (!main.isPageObject(annot.id)) return false;
  main.erasePageObject(annot.id);
  return true;
}

/// The first pass: what the filters ask for.
void AnnotObjectScan::look() {
  SObj ref;
  std::string former;
  std::string token;
  DictDepth open;
  while (source.good()) {
    if (tryReference(source, ref)) {
      if (token == nmParent) parent = ref;
      continue;
    }
    former.swap(token);
    source >> token;
    if (endsObject(token) || open.closes(token)) return;
    const std::string_view before = former;
    if (before == nmSubtype && open.depth() == 1) subtype = token;
    if (before == nmFT) fieldType = token;
    if (before == nmFf && CFileBlock::IsNum(token)) fieldFlags = CAnnot::flagsOf(token);
    skipIfString(source, annot.id, token, StringsSkipped::literalOnly);
  }
}

void AnnotObjectScan::filter() {
  if (subtype == nmWidget) return filterWidget();
  annot.checkEnableAnnots(subtype, static_cast<TESSEL_AnnotsEnableE>(main.switches.annotsEnable),
                          annot.id.objFlags, main.switches.customSubtypes);
}

/// A widget that lacks its type or flags has them from its parent; flags of 0 count as lacking.
void AnnotObjectScan::filterWidget() {
  SObj field = annot.id;
  if ((fieldType.empty() || fieldFlags == 0) && parent.objNum > 0) {
    const FieldInfo& inherited = annot.fieldInfoOf(source, parent);
    if (fieldType.empty() && !inherited.type.empty()) {
      fieldType = inherited.type;
      field = parent;
    }
    if (fieldFlags == 0 && inherited.flags != 0) {
      fieldFlags = inherited.flags;
      field = parent;
    }
  }
  int& flags = annot.id.objFlags;
  annot.checkEnableAcroForms(fieldFlags, fieldType,
                             static_cast<TESSEL_AcroFormsEnableE>(main.switches.formsEnable), flags);
  if ((flags & ObjFlag::keptByFormFilter) == 0) return;
  auto& fields = main.catalogObj->form.fields;
  fields.erase(field);
  field.objFlags |= ObjFlag::keptByFormFilter;
  fields.insert(field);
}

/// Merges the flags into the entry of the page objects. True when the object is dropped, and its entry with
/// it, whoever entered it: what the page refers to behind the array, it enters again.
bool AnnotObjectScan::keepOrDrop() {
  const auto entry = main.pageObjects.find(annot.id);
  if (entry == main.pageObjects.end()) return false;
  annot.id.objFlags |= entry->objFlags;
  if (ObjFlag::dropped(annot.id.objFlags)) {
    main.erasePageObject(annot.id);
    return true;
  }
  if (entry->objFlags == annot.id.objFlags) return false;
  main.erasePageObject(annot.id);
  main.enterPageObject(annot.id);
  return false;
}

Turn AnnotObjectScan::onToken(const std::string& token) {
  static constexpr KeyRow<AnnotObjectScan> rows[] = {
      {kwendobj, &AnnotObjectScan::end},
      {kwstream, &AnnotObjectScan::end},
      {nmA, &AnnotObjectScan::readAction},
      {nmDest, &AnnotObjectScan::readDest},
      {nmResources, &AnnotObjectScan::skipResources},
      {nmI, &AnnotObjectScan::skipResources},
      {nmAA, &AnnotObjectScan::skipResources},
      {nmRI, &AnnotObjectScan::skipResources},
      {nmIX, &AnnotObjectScan::skipResources},
      {nmFS, &AnnotObjectScan::skipResources},
      {nmMK, &AnnotObjectScan::enterMK},
  };
  previous = last;
  last = token;
  if (skipIfString(source, annot.id, token, StringsSkipped::literalOnly)) return Turn::goOn;
  Turn turn = Turn::goOn;
  if (!dispatch(*this, rows, token, turn)) moveDepth();
  return turn;
}

void AnnotObjectScan::moveDepth() {
  if (!plain && !insideMK) return;
  if (last != "<<" && last != ">>") return;
  depth += last == "<<" ? 1 : -1;
  if (depth == 0) plain = insideMK = false;
}

// The references in the value are seen by this pass as well; an action within an action is none of the
// annotation.
Turn AnnotObjectScan::readAction() {
  const std::streampos value = source.tellg();
  SObj ref;
  bool good = true;
  if (tryReference(source, ref)) {
    good = annot.readAction(main, ref);
  } else if (value >= valuesRead && isDictionaryAhead(source)) {
    CAction action;
    action.id = action.key = annot.id;
    good = action.Read(source);
    valuesRead = source.tellg();
  }
  if (!good) return Turn::failure;
  source.seekg(value);
  return skipResources();
}

Turn AnnotObjectScan::readDest() {
  PositionGuard back(source, PositionGuard::State::clear);
  if (subtype != nmLink || back.where() < valuesRead) return Turn::goOn;
  const SDestObjKey key{annot.id, 0};
  SObj ref;
  if (tryReference(source, ref)) {
    main.destObjMap.emplace(key, annot.destOf(source, ref));
    return Turn::goOn;
  }
  CDest dest;
  dest.readValue(source, annot.id);
  main.destObjMap.emplace(key, dest.info());
  stepOverValue(source, annot.id);
  valuesRead = source.tellg();
  return Turn::goOn;
}

Turn AnnotObjectScan::skipResources() {
  plain = true;
  depth = 0;
  return Turn::goOn;
}

Turn AnnotObjectScan::enterMK() {
  insideMK = true;
  return Turn::goOn;
}

bool AnnotObjectScan::leadsToAction(const SObj& ref) const {
  const bool ofLink = subtype == nmLink && (last == nmA || last == nmAA);
  return ofLink || main.actionObjs.contains(ref.identity());
}

/// An action's object carries the annotation's flags even behind /A: only so its destination is replaced when
/// it is written.
int AnnotObjectScan::flagsFor(const SObj& ref) const {
  const bool isAction = leadsToAction(ref);
  if (plain && !isAction) return ObjFlag::none;
  int flags = annot.id.objFlags & ObjFlag::keptByAnyFilter;
  if (last == nmMK && flags != 0) flags |= ObjFlag::insideMK;
  if (annot.id.hasAny(ObjFlag::annotLike)) flags |= ObjFlag::annotSubtree;
  return isAction ? flags | ObjFlag::action : flags;
}

Turn AnnotObjectScan::onReference(SObj ref) {
  if (main.isPage(ref)) return Turn::goOn;
  ref.objFlags = flagsFor(ref);
  if (last == nmParent) {
    if (subtype == nmPopup && !main.isPageObject(ref)) return Turn::goOn;
    ref.objFlags |= ObjFlag::annotParent;
  }
  if (isSibling()) {
    if (fieldType.empty()) return Turn::goOn;
    ref.objFlags |= ObjFlag::kidOfAnnotParent;
  }
  enter(ref);
  if (last == nmResources) plain = false;
  return Turn::goOn;
}

void AnnotObjectScan::enter(const SObj& ref) {
  const auto entry = main.pageObjects.find(ref);
  if (entry == main.pageObjects.end()) {
    work.push_back(ref);
    annot.known.waiting[ref] = std::prev(work.end());
    main.insertFileObject(ref);
    return;
  }
  if (const auto waiting = annot.known.waiting.find(ref); waiting != annot.known.waiting.end()) {
    waiting->second->objFlags |= ref.objFlags;
    work.splice(work.end(), work, waiting->second);
  }
  if ((entry->objFlags | ref.objFlags) == entry->objFlags) return;
  SObj merged = *entry;
  merged.objFlags |= ref.objFlags;
  main.erasePageObject(merged);
  main.enterPageObject(merged);
}

const SDestInfo& CAnnot::destOf(CSourFile& source, const SObj& ref) {
  const auto [entry, isNew] = known.dests.try_emplace(ref);
  if (isNew) {
    CDest dest;
    dest.readReference(source, ref);
    entry->second = dest.info();
  }
  return entry->second;
}

// An action that isn't there is none: the rest of the page doesn't hang on it.
bool CAnnot::readAction(CSourFile& main, const SObj& ref) {
  if (!known.actions.insert(ref).second) return true;
  PositionGuard back(main, PositionGuard::State::clear);
  CAction action;
  action.id = action.key = ref;
  std::unique_ptr<CSourFile> memory;
  CSourFile* const body = ParseObj(main, memory, ref);
  return !body || action.Read(*body);
}

void CAnnot::indexWork(std::list<SObj>& work) {
  known.waiting.clear();
  for (auto entry = work.begin(); entry != work.end(); ++entry) known.waiting.emplace(*entry, entry);
}

bool CAnnot::visit(CSourFile& main, CSourFile& body, std::list<SObj>& work) {
  known.waiting.erase(id);
  return AnnotObjectScan(*this, main, body, work).run();
}

bool CAnnot::ReadObjs(CSourFile* main, CSourFile& source, std::list<SObj>& work) {
  indexWork(work);
  return visit(*main, source, work);
}

bool CAnnot::ReadOthers(CSourFile& source, std::list<SObj>& work) {
  CSourFile& main = source.mainSource();
  known = {};
  indexWork(work);
  return harvest(
      *this, main, work, MissingObjects::dropAnnotations,
      [&](CSourFile& body) { return visit(main, body, work); },
      [&](const SObj& missing) { known.waiting.erase(missing); });
}

}  // namespace TESSEL
