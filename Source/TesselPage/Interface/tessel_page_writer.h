#pragma once

#include "TesselPage/Interface/tessel_page_state.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

/// A local writer whose look-ups repeat the numbering of the harvest.
class PageWriter : public CDestFile {
 public:
  explicit PageWriter(PageState& state) {
    state.numbering.follow(*state.sourFile);
    state.numbering.number(state.startObjNo);
    setNumberSource(&state.numbering);
  }

  /// Gives `object` a number of its own unless the numbering has one.
  void numberUnlessKnown(const SObj& object, const SObj& newId) {
    if (!findNewObj(object)) insertNewObjTab({0, currentFile, object}, newId);
  }

  /// The text so far, cut at the last "endobj".
  std::string bodyText() const { return substr(0, rfind("endobj")); }
};

}  // namespace TESSEL
