#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "TesselPage/Model/tessel_annot.h"
#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Model/tessel_lengthkey.h"
#include "TesselPage/Model/tessel_stepover.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_positionguard.h"
#include "TesselPage/Syntax/tessel_spancopier.h"

namespace TESSEL {

namespace {

constexpr const char* nullValue = " null";
constexpr const char* annotType = "/Annot";
constexpr int quarterTurn = 90;
constexpr int fullTurn = 360;
/// Bit of /F: the annotation doesn't turn with its page (ISO 32000-2, table 167).
constexpr int noRotate = 16;

/// Of all annotations of one source: far more than any document has, and what memory holds.
constexpr long long maxIndirectNumbers = 1LL << 22;

constexpr std::size_t rectNumbers = 4;
constexpr std::size_t matrixNumbers = 6;

/// What the writer must know of the object before it begins.
struct ObjectFacts {
  int flags = 0;  ///< /F
  std::string type = annotType;
  bool goToR = false;
  bool goToDp = false;

  /// A /Type that is no name.
  bool badType() const { return !type.starts_with('/'); }
};

/// Looks at the first dictionary, or at the whole of an array without one. The position is kept.
ObjectFacts lookAhead(CSourFile& source, const SObj& id) {
  PositionGuard back(source, PositionGuard::State::clear);
  ObjectFacts facts;
  std::string former;
  scanDictionary(source, 0, [&](const std::string& token, int depth) {
    const std::string_view previous = former;
    if (previous == nmF && CFileBlock::IsNum(token)) facts.flags = std::atoi(token.c_str());
    if (previous == nmType && depth == 1) facts.type = token;
    facts.goToR |= std::string_view(token) == nmGoToR;
    facts.goToDp |= std::string_view(token) == nmGoToDp;
    former = token;
    skipIfString(source, id, token, StringsSkipped::both);
  });
  return facts;
}

}  // namespace

/// Copies one object of an annotation's subtree, its geometry placed where the host has put the page, and
/// each destination replaced by the object reserved for it.
class AnnotCopier {
 public:
  AnnotCopier(CAnnot& reader, CDestFile& target, CSourFile& from, const SObj& hostPage)
      : annot(reader),
        dest(target),
        source(from),
        switches(from.mainSource().switches),
        placement(switches.pageMatrix),
        page(hostPage),
        facts(lookAhead(from, reader.id)),
        copier(target, from, reader.id),
        length(copier),
        mkNext(reader.id.hasAny(ObjFlag::insideMK) && turnsMK()) {}

  bool run();

 private:
  void onReference();
  void renumber();
  Turn onWord();
  Turn onKey();

  Turn openDictionary();
  Turn closeDictionary();
  void startAnnotation();
  bool isUnwanted();
  Turn onLength() { return length.onKey() ? Turn::goOn : Turn::failure; }
  Turn cutAnnots();
  Turn cutStructureDest();
  Turn startMK();
  Turn start3DA();
  Turn rewriteR();
  Turn placeRect() { return placeBox(true); }
  Turn placeLine() { return in3DA ? Turn::goOn : placeBox(false); }
  Turn placeBox(bool sort);
  Turn placeMargins();
  Turn placeMatrix();
  Turn placePoints();
  Turn placeInk();
  Turn scaleFont();

  bool inAction() const { return actionDepth != 0 || annot.id.hasAny(ObjFlag::action); }
  bool isDestKey(std::string_view word) const { return word == nmDest || (word == nmD && inAction()); }
  bool replacesDest(std::string_view key) const { return isDestKey(key) && !facts.goToR; }
  void writeDest();
  void replaceDest();
  void rewriteAction();

  bool turnsMK() const { return (switches.currentRotation / quarterTurn & 3) != 0; }
  void writeR(int own);

  bool readArray(CSourFile& from, std::vector<float>& numbers);
  bool readNumbers(std::vector<float>& numbers, std::size_t least);
  void writeNumbers(std::initializer_list<float> numbers);
  bool writePoints(CSourFile& from);
  void replaced();

  CAnnot& annot;
  CDestFile& dest;
  CSourFile& source;
  const SourceSwitches& switches;
  const PgCmTD& placement;
  SObj page;
  ObjectFacts facts;
  SpanCopier copier;
  LengthKey length;

  int depth = 0;                   ///< of dictionaries
  int index = 0;                   ///< direct annotation dictionaries that are finished
  const SObj* reserved = nullptr;  ///< number of the present dictionary's destination
  int actionDepth = 0;             ///< depth of the action's dictionary; 0 outside
  bool in3DA = false;
  bool mkNext = false;  ///< the next dictionary is that of /MK
  int mkDepth = 0;      ///< depth of /MK's dictionary, until its /R is written
};

bool AnnotCopier::run() {
  Turn turn = Turn::goOn;
  while (turn == Turn::goOn && copier.good()) {
    if (copier.takeReference())
      onReference();
    else
      turn = onWord();
  }
  return turn != Turn::failure;
}

void AnnotCopier::onReference() {
  const std::string key = copier.word();
  if (key == nmLength) return length.onReference();
  if (key == nmMK) mkNext = false;
  copier.copyToLast();
  if (key == nmP && facts.type == annotType && depth == 1) {
    copier.writeReference(page);
  } else if (replacesDest(key)) {
    writeDest();
  } else if (key != nmAnnots) {
    renumber();
  }
  copier.cut();
  copier.forgetWord();
}

// What was dropped leaves no trace in an array of annotations and in a parent's /Kids.
void AnnotCopier::renumber() {
  const SObj& own = annot.id;
  if (const SObj* newId = dest.findNewObj(copier.reference())) {
    copier.writeReference(*newId);
  } else if (!own.hasAny(ObjFlag::annotLike) ||
             (own.hasAny(ObjFlag::keptByAnyFilter) && !own.hasAny(ObjFlag::annotParent))) {
    dest.append(nullValue);
  }
}

Turn AnnotCopier::onWord() {
  copier.readWord();
  if (std::string_view(copier.previous()) == nmLength) length.onValue();
  if (replacesDest(copier.previous())) {
    replaceDest();
    return Turn::goOn;
  }
  return onKey();
}

Turn AnnotCopier::onKey() {
  static constexpr KeyRow<AnnotCopier> rows[] = {
      {"<<", &AnnotCopier::openDictionary},      {">>", &AnnotCopier::closeDictionary},
      {nmLength, &AnnotCopier::onLength},        {nmAnnots, &AnnotCopier::cutAnnots},
      {nmSD, &AnnotCopier::cutStructureDest},    {nmMK, &AnnotCopier::startMK},
      {nm3DA, &AnnotCopier::start3DA},           {nmR, &AnnotCopier::rewriteR},
      {nmRect, &AnnotCopier::placeRect},         {nmL, &AnnotCopier::placeLine},
      {nmRD, &AnnotCopier::placeMargins},        {nmMatrix, &AnnotCopier::placeMatrix},
      {nmQuadPoints, &AnnotCopier::placePoints}, {nmVertices, &AnnotCopier::placePoints},
      {nmCL, &AnnotCopier::placePoints},         {nmInkList, &AnnotCopier::placeInk},
      {"Tf", &AnnotCopier::scaleFont},
  };
  Turn turn = Turn::goOn;
  if (dispatch(*this, rows, copier.word(), turn)) return turn;
  const bool isAppearance = copier.previous() == nmDA;
  const auto body = copier.copyBody(isAppearance ? &placement : nullptr);
  return body == SpanCopier::Body::end ? Turn::success : Turn::goOn;
}

Turn AnnotCopier::openDictionary() {
  const bool ofAction = copier.previous() == nmA;
  if (facts.goToDp && (ofAction || (depth == 0 && annot.id.hasAny(ObjFlag::action)))) {
    if (depth == 0) reserved = dest.findDestination(annot.id, index);
    rewriteAction();
    return Turn::goOn;
  }
  ++depth;
  if (depth == 1) startAnnotation();
  if (ofAction && actionDepth == 0) actionDepth = depth;
  if (mkNext) mkDepth = depth;
  mkNext = false;
  return Turn::goOn;
}

void AnnotCopier::startAnnotation() {
  if (facts.badType() && isUnwanted()) {
    copier.copyToWord();
    copier.moveHere();
    copier.cut();
    copier.forgetWord();
    --depth;
    ++index;
    return;
  }
  copier.rewind();
  reserved = dest.findDestination(annot.id, index);
}

/// Whether the dictionary has a subtype that the host doesn't want; the source then stands behind it.
bool AnnotCopier::isUnwanted() {
  std::string subtype;
  std::string previous;
  const bool closed = scanDictionary(source, 1, [&](const std::string& token, int level) {
    if (previous == nmSubtype && level == 1) subtype = token;
    previous = token;
    skipIfString(source, annot.id, token, StringsSkipped::both);
  });
  source.clear();
  if (!closed || subtype.empty()) return false;
  int verdict = ObjFlag::none;
  annot.checkEnableAnnots(subtype, static_cast<TESSEL_AnnotsEnableE>(switches.annotsEnable), verdict,
                          switches.customSubtypes);
  return verdict != ObjFlag::keptByAnnotFilter;
}

Turn AnnotCopier::closeDictionary() {
  if (mkDepth != 0 && depth == mkDepth) {
    copier.copyToWord();
    writeR(0);
  }
  if (depth == actionDepth) actionDepth = 0;
  --depth;
  if (depth == 1) in3DA = false;
  if (depth == 0) ++index;
  return Turn::goOn;
}

Turn AnnotCopier::cutAnnots() {
  copier.cutWord();
  const std::streampos value = source.tellg();
  char byte = 0;
  readByte(source, byte);
  source.clear();
  source.seekg(value);
  if (byte == '[') copier.cutThrough("]");
  return Turn::goOn;
}

// The host's object says where the link leads.
Turn AnnotCopier::cutStructureDest() {
  if (!inAction() || facts.goToR) return Turn::goOn;
  copier.cutWord();
  stepOverValue(source, annot.id);
  copier.moveHere();
  copier.cut();
  copier.forgetWord();
  return Turn::goOn;
}

void AnnotCopier::writeDest() {
  if (reserved)
    copier.writeReference(*reserved);
  else
    dest.append(nullValue);
}

void AnnotCopier::replaceDest() {
  copier.copyToLast();
  writeDest();
  copier.rewindToWord();
  stepOverValue(source, annot.id);
  replaced();
}

/// An action that goes to a document part becomes one that goes to the reserved destination; nothing else of
/// it stays.
void AnnotCopier::rewriteAction() {
  copier.copyThrough();
  DictDepth open(1);
  SObj part;
  do {
    copier.readWord();
    if (copier.word() == nmS && open.depth() == 1) {
      copier.readWord();
      dest.append("/S/GoTo");
    } else if (copier.word() == nmDp && open.depth() == 1) {
      tryReference(source, part);
      copier.moveHere();
      dest.append(nmD);
      writeDest();
    } else if (skipIfString(source, annot.id, copier.word(), StringsSkipped::both)) {
      copier.moveHere();
    }
  } while (copier.good() && !open.closes(copier.word()) && !endsObject(copier.word()));
  copier.cut();
  dest.append(">>");
  copier.forgetWord();
}

Turn AnnotCopier::startMK() {
  mkNext = turnsMK();
  return Turn::goOn;
}

Turn AnnotCopier::start3DA() {
  in3DA = true;
  return Turn::goOn;
}

Turn AnnotCopier::rewriteR() {
  if (mkDepth == 0 || depth != mkDepth) return Turn::goOn;
  copier.copyToWord();
  int own = 0;
  annot.ReadIntObj(source, own);
  writeR(own);
  replaced();
  return Turn::goOn;
}

/// The captions of a button turn against the page.
void AnnotCopier::writeR(int own) {
  dest.append(nmR).append(kw_);
  dest << (own - switches.currentRotation + fullTurn) % fullTurn;
  mkDepth = 0;
}

/// An array behind a reference can be asked for by any number of keys, and each asks for all of it.
bool AnnotCopier::readArray(CSourFile& from, std::vector<float>& numbers) {
  const std::streampos value = from.tellg();
  SObj ref;
  const bool shared = tryReference(from, ref) || &from != &source;
  from.seekg(value);
  if (!annot.ReadNumArrayObj(from, numbers)) return false;
  if (!shared) return true;
  long long& taken = source.mainSource().indirectNumbers;
  taken += static_cast<long long>(numbers.size());
  return taken <= maxIndirectNumbers;
}

bool AnnotCopier::readNumbers(std::vector<float>& numbers, std::size_t least) {
  copier.copyThrough();
  return readArray(source, numbers) && numbers.size() >= least;
}

void AnnotCopier::writeNumbers(std::initializer_list<float> numbers) {
  const char* separator = "[";
  for (const float number : numbers) {
    dest.append(separator);
    dest << static_cast<double>(number);
    separator = kw_;
  }
  dest.append("]");
}

/// The value at which the source stood has been replaced.
void AnnotCopier::replaced() {
  copier.moveHere();
  copier.cut();
  copier.forgetWord();
}

Turn AnnotCopier::placeBox(bool sort) {
  std::vector<float> n;
  if (!readNumbers(n, rectNumbers)) return Turn::failure;
  RectTD box{n[0], n[1], n[2], n[3]};
  if (sort) box = {std::min(n[0], n[2]), std::min(n[1], n[3]), std::max(n[0], n[2]), std::max(n[1], n[3])};
  if ((facts.flags & noRotate) != 0) CAnnot::RestoreRect(box, switches.currentRotation, box);
  box = CAnnot::TransRect(box, placement, sort);
  writeNumbers({box.left, box.bottom, box.right, box.top});
  replaced();
  return Turn::goOn;
}

// Margins scale by the diagonal of the placement alone.
Turn AnnotCopier::placeMargins() {
  std::vector<float> n;
  if (!readNumbers(n, rectNumbers)) return Turn::failure;
  const auto& [a, b, c, d, e, f] = placement;
  writeNumbers({n[0] * a + c * 0 + 0, n[1] * d + b * 0 + 0, n[2] * a + c * 0 + 0, n[3] * d + b * 0 + 0});
  replaced();
  return Turn::goOn;
}

// Only the linear part is applied: an appearance is put into its rectangle anyway.
Turn AnnotCopier::placeMatrix() {
  std::vector<float> m;
  if (!readNumbers(m, matrixNumbers)) return Turn::failure;
  const auto& [a, b, c, d, e, f] = placement;
  writeNumbers(
      {m[0] * a + m[2] * b, m[1] * a + m[3] * b, m[0] * c + m[2] * d, m[1] * c + m[3] * d, m[4], m[5]});
  replaced();
  return Turn::goOn;
}

bool AnnotCopier::writePoints(CSourFile& from) {
  std::vector<float> numbers;
  if (!readArray(from, numbers) || numbers.size() % 2 != 0) return false;
  dest.append("[");
  for (const PointTD& point : CAnnot::TransVertices(VerticesTD(numbers), placement)) {
    dest << static_cast<double>(point.x);
    dest.append(kw_);
    dest << static_cast<double>(point.y);
    dest.append(kw_);
  }
  dest.append("]");
  return true;
}

Turn AnnotCopier::placePoints() {
  copier.copyThrough();
  if (!writePoints(source)) return Turn::failure;
  replaced();
  return Turn::goOn;
}

Turn AnnotCopier::placeInk() {
  copier.copyThrough();
  std::unique_ptr<CSourFile> memory;
  PositionGuard back(source, PositionGuard::State::clear);
  CSourFile* list = &source;
  SObj ref;
  const bool indirect = tryReference(source, ref);
  const std::streampos behind = source.tellg();
  if (indirect) list = openValue(source, memory, ref);
  char byte = 0;
  if (!list || !readByte(*list, byte) || byte != '[') return Turn::failure;
  dest.append("[");
  while (readByte(*list, byte) && byte != ']') {
    list->putback(byte);
    if (!writePoints(*list)) return Turn::failure;
  }
  if (!list->good()) return Turn::failure;
  dest.append("]");
  back.dismiss();
  if (indirect) source.seekg(behind);
  replaced();
  return Turn::goOn;
}

// A font size outside of a string.
Turn AnnotCopier::scaleFont() {
  const std::string& size = copier.previous();
  char* end = nullptr;
  const float value = std::strtof(size.c_str(), &end);
  if (size.empty() || *end != '\0') return Turn::goOn;
  copier.copyToPrevious();
  dest << static_cast<double>(placement.a * value);
  dest.append(" Tf");
  copier.cut();
  return Turn::goOn;
}

bool CAnnot::WriteObj(CDestFile& dest, CSourFile& source, bool* dropped) {
  if (dropped) *dropped = false;
  const SourceSwitches& switches = source.mainSource().switches;
  const bool off = switches.annotsEnable == 0 && switches.formsEnable == 0;
  if (off || ObjFlag::dropped(id.objFlags)) return true;
  return AnnotCopier(*this, dest, source, SObj(pageNum, pageGen)).run();
}

}  // namespace TESSEL
