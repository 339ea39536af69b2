#include <algorithm>

#include "TesselPage/Model/tessel_lengthkey.h"
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
      : dest(target), copier(target, source, id), length(copier) {}

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
    if (copier.word() == nmLength) return length.onReference();
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
    if (copier.word() == nmLength) return length.onKey();
    if (copier.previous() == nmLength) length.onValue();
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

  CDestFile& dest;
  SpanCopier copier;
  LengthKey length;
  bool ended = false;
};

}  // namespace

bool CPage::WriteObj(CDestFile& dest, CSourFile& source, bool* dropped) {
  if (dropped) *dropped = false;
  return PageObjectCopier(dest, source, id).run();
}

}  // namespace TESSEL
