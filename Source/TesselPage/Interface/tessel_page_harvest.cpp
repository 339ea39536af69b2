// The harvest: every object that the selected page needs gets a number in the host's numbering and is written
// out as text with its references rewritten. Numbers are given first, to all objects, since any text may
// refer to any other; the texts follow in the same order.

#include "PDFEncryption/encryptinfo.h"
#include "TesselPage/Interface/tessel_outputkey.h"
#include "TesselPage/Interface/tessel_page_state.h"
#include "TesselPage/Model/tessel_annot.h"
#include "TesselPage/Model/tessel_catalog.h"
#include "TesselPage/Model/tessel_pageobj.h"
#include "TesselPage/Structure/tessel_objflags.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "TesselPage/tessel_page.h"

namespace TESSEL {

const char EMPTY_FORM_TEXT[] =
    "<</Type/XObject /Subtype/Form /Length 0 /BBox[0.0 0.0 1.0 1.0] >>\r\nstream\r\nendstream\r\n";
static_assert(sizeof EMPTY_FORM_TEXT == 86 + 1);

namespace {

using Identity = CTesselPage::Identity;

/// The mark of an object that a reference out of the page has led to: an annotation or a page dictionary.
constexpr std::string_view annotMark = "/Annot";

/// Cuts at the last "endobj" and takes one leading line feed off: the form that the map holds.
void finishText(std::string& text) {
  const std::size_t end = text.rfind(kwendobj);
  if (end != std::string::npos) text.resize(end);
  if (!text.empty() && text.front() == '\n') text.erase(0, 1);
}

/// One harvest of one page.
class Harvest : public NumberSource {
 public:
  Harvest(PageState& page, CTesselPage& texts) : state(page), source(*page.sourFile), objects(texts) {}

  void run() {
    shareStreams();
    next = state.numbering.number(state.startObjNo);
    reserveDestinations();
    writeTexts();
  }

  /// As the numbering has it, but a stream whose digest the host knows has the host's identity.
  const SObj* find(const SObj& object) const override {
    const SObj* numbered = state.numbering.find(object);
    if (!numbered || !state.streamObjMap || !state.numbering.isOld(object.identity())) return numbered;
    const Identity* shared = sharedIdentity(object);
    if (!shared) return numbered;
    answer = SObj(shared->first, shared->second);
    return &answer;
  }

 private:
  const Identity* sharedIdentity(const SObj& object) const;
  void shareStreams();
  void reserveDestinations();
  void writeTexts();
  void writeObject(const SObj& object);
  bool writePlain(const SObj& object);
  bool writeAnnot(const SObj& object);
  bool leftThePage(const SObj& object);
  void keepText(const SObj& object, bool kept);

  PageState& state;
  CSourFile& source;
  CTesselPage& objects;
  CDestFile writer;
  int next = 0;
  mutable SObj answer;
};

const Identity* Harvest::sharedIdentity(const SObj& object) const {
  const StreamDigest& plain = state.digests.plain(source, object);
  if (plain.shareable() && plain.dropped) return nullptr;
  const auto found = state.streamObjMap->find(state.digests.any(source, object));
  return found == state.streamObjMap->end() ? nullptr : &found->second;
}

/// Streams that the host holds already need no number and no text.
void Harvest::shareStreams() {
  if (!state.streamObjMap || state.streamObjMap->empty()) return;
  Numbering& numbering = state.numbering;
  std::vector<CTesselPage::IdentityPair> hits;
  for (const auto* group : {&numbering.pendingObjects(), &numbering.foreignObjects()})
    for (const Identity& old : *group) {
      const SObj object(old.first, old.second);
      if (!source.isPageObject(object)) continue;
      if (const Identity* shared = sharedIdentity(object)) hits.emplace_back(old, *shared);
    }
  for (const auto& [old, newId] : hits) numbering.share(old, newId);
}

/// Destination objects lie behind all others; the host writes them once it knows where their pages went.
void Harvest::reserveDestinations() {
  for (auto& [key, info] : source.destObjMap) {
    info.newObject = SObj(next++, 0);
    writer.insertDestination({key.index, 0, key.object}, info.newObject);
  }
}

void Harvest::writeTexts() {
  writer.setNumberSource(this);
  giveOutputKey(state, writer.fileInfo.encrypt);
  next = state.startObjNo;
  // A copy: writing may read the source, and reading may enter objects.
  const std::vector<Identity> waiting(state.numbering.pendingObjects().begin(),
                                      state.numbering.pendingObjects().end());
  for (const Identity& old : waiting) {
    if (state.numbering.isHarvested(old)) continue;
    const auto entry = source.pageObjects.find(SObj(old.first, old.second));
    if (entry != source.pageObjects.end()) writeObject(*entry);
  }
}

void Harvest::writeObject(const SObj& object) {
  writer.clear();
  writer.currentObject = SObj(next, 0);
  bool kept = true;
  if (source.pieceFilteredObjs.count(object) != 0)
    writer.append(EMPTY_FORM_TEXT);
  else
    kept = object.hasAny(ObjFlag::annotLike) ? writeAnnot(object) : writePlain(object);
  keepText(object, kept);
  ++next;
}

bool Harvest::writePlain(const SObj& object) {
  CPage copier;
  copier.setIdentity(object);
  return copier.LocalObj(writer, source, nullptr) && !leftThePage(object);
}

/// Whether an object of no special kind turns out to be an annotation or a page. A stream that may not be
/// shared counts as one of a kind.
bool Harvest::leftThePage(const SObj& object) {
  if (object.objFlags != ObjFlag::none || writer.find(annotMark) == std::string::npos) return false;
  const StreamDigest& plain = state.digests.plain(source, object);
  return !(plain.shareable() && plain.dropped);
}

bool Harvest::writeAnnot(const SObj& object) {
  CAnnot copier;
  copier.setCurPageObj(state.curPageObj.first, state.curPageObj.second);
  copier.setIdentity(object);
  return copier.LocalObj(writer, source, nullptr);
}

void Harvest::keepText(const SObj& object, bool kept) {
  const SObj* newId = writer.findNewObj(object);
  const Identity identity = newId ? newId->identity() : Identity{next, 0};
  objects.emplace(identity, kept ? std::move(static_cast<std::string&>(writer)) : std::string());
  if (!kept) return;
  if (state.numbering.harvested(object.identity(), identity))
    state.newPairs.emplace_back(object.identity(), identity);
  state.harvestedAs[identity] = object.identity();
}

}  // namespace

int CTesselPage::setStartObjNo(int startNo) {
  CSourFile& source = *state->sourFile;
  CCatalog& catalog = *source.catalogObj;
  const SObj& root = source.fileInfo.root;
  if (!state->catalogRead || catalog.identity().objNum != root.objNum) {
    catalog.setIdentity(root);
    source.clear();  // whatever reading the page has run into
    catalog.fromStream(source);
    state->catalogRead = true;
  }
  state->newPairs.clear();
  state->harvestedAs.clear();
  state->numbering.follow(source);
  state->numbering.merge(state->old2NewVector);
  for (const Identity& object : state->harvestedAnew) state->numbering.forget(object);
  state->harvestedAnew.clear();
  state->startObjNo = startNo;
  Harvest(*state, *this).run();
  for (iterator it = begin(); it != end(); ++it) {
    if (state->encryptKeyKind != pcrypt::Method::none) exemptStrings(*this, it);
    finishText(it->second);
  }
  if (state->encryptKeyKind == pcrypt::Method::aesV2) roundStreamLengths(*this);
  return Result::success;
}

std::vector<CTesselPage::IdentityPair> CTesselPage::getOld2NewObjectVector() const {
  return state->numbering.allPairs();
}

void CTesselPage::setOld2NewObjectVector(const std::vector<IdentityPair>& pairs) {
  if (&pairs != &state->old2NewVector) state->old2NewVector = pairs;
}

void CTesselPage::harvestAgain(const std::vector<Identity>& objects) { state->harvestedAnew = objects; }

void CTesselPage::setStreamObjMap(StreamObjMap* digests) { state->streamObjMap = digests; }

const std::vector<CTesselPage::IdentityPair>& CTesselPage::getNewObjectPairs() const {
  return state->newPairs;
}

std::string CTesselPage::getStreamDigest(const Identity& object) const {
  const auto old = state->harvestedAs.find(object);
  if (old == state->harvestedAs.end()) return {};
  const StreamDigest& plain =
      state->digests.plain(*state->sourFile, SObj(old->second.first, old->second.second));
  // Without its references a stream may look like another one that never had any.
  return plain.dropped ? std::string() : plain.digest;
}

}  // namespace TESSEL
