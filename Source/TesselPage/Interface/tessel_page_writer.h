#pragma once

#include "TesselPage/Interface/tessel_outputkey.h"
#include "TesselPage/Interface/tessel_page_state.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

/// A local writer whose look-ups repeat the numbering of the harvest.
class PageWriter : public CDestFile {
 public:
  explicit PageWriter(PageState& page) : state(page) {
    state.numbering.follow(*state.sourFile);
    behindObjects = state.numbering.number(state.startObjNo);
    setNumberSource(&state.numbering);
  }

  /// Gives `object` a number of its own unless the numbering has one.
  void numberUnlessKnown(const SObj& object, const SObj& newId) {
    if (!findNewObj(object)) insertNewObjTab({0, currentFile, object}, newId);
  }

  /// Gives the page's destinations their numbers, which lie behind those of the objects.
  void numberDestinations(CSourFile& source) {
    int next = behindObjects;
    for (auto& [key, info] : source.destObjMap) {
      info.newObject = SObj(next++, 0);
      insertDestination({key.index, currentFile, key.object}, info.newObject);
    }
  }

  /// Makes the text that of the object `number` of the output, so that its strings are encrypted for it. 0:
  /// there is no such object, and they stay in the clear.
  void writeAs(int number) {
    if (number == 0) return;
    currentObject = SObj(number, 0);
    giveOutputKey(state, fileInfo.encrypt);
  }

  /// The text so far, cut at the last "endobj".
  std::string bodyText() const { return substr(0, rfind("endobj")); }

 private:
  PageState& state;
  int behindObjects = 0;
};

/// What stands between the first "<<" and the last ">>" of a text; the whole of one that lacks either.
inline std::string withoutBrackets(const std::string& text) {
  constexpr std::size_t bracket = 2;
  const std::size_t open = text.find("<<");
  const std::size_t close = text.rfind(">>");
  if (open == std::string::npos || close == std::string::npos || close < open + bracket) return text;
  return text.substr(open + bracket, close - open - bracket);
}

}  // namespace TESSEL
