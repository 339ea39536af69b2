#include "TesselPage/Structure/tessel_objectposition.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_obj.h"
#include "TesselPage/Syntax/tessel_spancopier.h"

namespace TESSEL {

namespace {

/// The plain copier: an entry whose reference has no new number goes with its key.
class PlainCopier {
 public:
  PlainCopier(CDestFile& target, CSourFile& source, const SObj& id, bool* droppedAny)
      : dest(target), copier(target, source, id), dropped(droppedAny) {
    if (dropped) *dropped = false;
    const bool inFile = CFileBlock::GetObjState(source, id).atOffset();
    if (inFile) endOfObject = CObjectPosition(source).getEndPosition(id);
  }

  bool run() {
    while (copier.good() && !ended) {
      if (copier.takeReference()) {
        onReference();
      } else if (!onWord()) {
        return false;
      }
      // A copy that has lost its "endobj" stops at the next object.
      if (copier.here() > endOfObject) break;
    }
    return true;
  }

 private:
  void onReference() {
    if (copier.word() == nmLength) {
      copier.leaveHole();
    } else {
      copier.copyToLast();
      renumber();
      copier.cut();
    }
    copier.forgetWord();
  }

  void renumber() {
    const std::string& key = copier.word();
    if (const SObj* newId = dest.findNewObj(copier.reference())) {
      copier.writeReference(*newId);
    } else if (key.starts_with('/')) {
      dest.resize(dest.size() - key.size());
      if (dropped) *dropped = true;
    }
  }

  /// False when a /Length can't be read.
  bool onWord() {
    copier.readWord();
    if (copier.word() == nmLength) {
      if (!copier.readLength()) return false;
      copier.rewind();
    }
    if (copier.previous() == nmLength && !copier.wordBeginsReference()) copier.markHole();
    if (copier.word() == nmRC || copier.word() == nmDS) {
      copyUnencrypted();
    } else {
      copyBody();
    }
    return true;
  }

  /// The value of /RC and /DS isn't encrypted. No reference is tried behind these keys, so one stays as it
  /// stands.
  void copyUnencrypted() {
    copier.readWord();
    const SObj current = dest.currentObject;
    if (copier.word() != kwendobj) dest.currentObject = SObj();
    copyBody();
    dest.currentObject = current;
  }

  void copyBody() { ended = copier.copyBody() == SpanCopier::Body::end; }

  CDestFile& dest;
  SpanCopier copier;
  bool* dropped;
  bool ended = false;
  long long endOfObject = CObjectPosition::nowhere;
};

}  // namespace

bool CObj::WriteObj(CDestFile& dest, CSourFile& source, bool* dropped) {
  return PlainCopier(dest, source, id, dropped).run();
}

}  // namespace TESSEL
