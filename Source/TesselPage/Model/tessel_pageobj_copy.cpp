#include <algorithm>

#include "TesselPage/Model/tessel_pageobj.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_spancopier.h"

namespace TESSEL {

namespace {

constexpr const char* nullValue = " null ";

/// Copies an object for a sheet: what ties it to the source's page goes, with its value when that is an
/// array.
class PageObjectCopier {
 public:
  PageObjectCopier(CDestFile& target, CSourFile& source, const SObj& id)
      : dest(target), copier(target, source, id) {}

  bool run() {
    while (copier.good() && !ended) {
      if (copier.takeReference()) {
        onReference();
      } else if (!onWord()) {
        return false;
      }
    }
    return true;
  }

 private:
  static bool isCutKey(const std::string& word) {
    return word == nmAnnots || word == nmContents || word == nmMediaBox || word == nmCropBox;
  }

  void onReference() {
    if (copier.word() == nmLength) {
      lengthDone = true;
      return copier.leaveHole();
    }
    copier.copyToLast();
    const bool cutWithKey = copier.word() == nmAnnots || copier.word() == nmContents;
    // A reference behind /MediaBox or /CropBox stays behind without its key.
    if (!cutWithKey) renumber();
    copier.cut();
  }

  void renumber() {
    if (const SObj* newId = dest.findNewObj(copier.reference())) {
      copier.writeReference(*newId);
    } else {
      dest.append(nullValue);
    }
  }

  /// False when a /Length can't be read.
  bool onWord() {
    copier.readWord();
    if (copier.word() == nmLength) return onLength();
    if (copier.previous() == nmLength) onLengthValue();
    if (isCutKey(copier.word())) {
      copier.cutWord();
    } else if (isCutKey(copier.previous()) && copier.word() == "[") {
      copier.cutThrough("]");
    } else if (copier.previous() == nmContents && copier.word() == "(") {
      copier.cutThrough(")");
    } else {
      ended = copier.copyBody() == SpanCopier::Body::end;
    }
    return true;
  }

  /// A second /Length goes with its value.
  bool onLength() {
    if (!copier.readLength()) return false;
    if (lengthDone) {
      copier.copyToWord();
      copier.moveHere();
      copier.cut();
    } else {
      copier.rewind();
    }
    return true;
  }

  void onLengthValue() {
    if (!lengthDone && !copier.wordBeginsReference()) copier.markHole();
    lengthDone = true;
  }

  CDestFile& dest;
  SpanCopier copier;
  bool lengthDone = false;
  bool ended = false;
};

}  // namespace

bool CPage::WriteObj(CDestFile& dest, CSourFile& source, bool* dropped) {
  if (dropped) *dropped = false;
  return PageObjectCopier(dest, source, id).run();
}

}  // namespace TESSEL
