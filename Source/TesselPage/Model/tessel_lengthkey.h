#pragma once

#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_spancopier.h"

namespace TESSEL {

/// How the writers of a page's objects deal with /Length: the first one's value is replaced by the stream's
/// true length, a second one goes with its value.
class LengthKey {
 public:
  explicit LengthKey(SpanCopier& spans) : copier(spans) {}

  /// The reference behind the key.
  void onReference() {
    done = true;
    copier.leaveHole();
  }

  /// The key itself. False when its value can't be read.
  bool onKey() {
    if (!copier.readLength()) return false;
    if (done) {
      copier.copyToWord();
      copier.moveHere();
      copier.cut();
    } else {
      copier.rewind();
    }
    return true;
  }

  /// The word behind the key.
  void onValue() {
    if (!done && !copier.wordBeginsReference()) copier.markHole();
    done = true;
  }

 private:
  SpanCopier& copier;
  bool done = false;
};

}  // namespace TESSEL
