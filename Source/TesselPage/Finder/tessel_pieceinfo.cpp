#include <initializer_list>
#include <sstream>

#include "TesselPage/Finder/tessel_finderexception.h"
#include "TesselPage/Finder/tessel_findingvalue.h"
#include "TesselPage/Finder/tessel_valueutility.h"
#include "TesselPage/Model/tessel_pageobj.h"

namespace TESSEL {

namespace {

/// The object's own /PieceInfo entries as one text; empty when one of them can't be read.
std::string pieceInfoText(CSourFile* source, int objNum, int genNum) {
  FindingHint hint;
  hint.insertHintInfo("/PieceInfo", ePDFDictionary);
  try {
    FindingValue(hint, source, objNum, genNum).find(false);
  } catch (const BaseException&) {
    return {};
  }
  std::ostringstream text;
  hint.outPutValue(text);
  return text.str();
}

}  // namespace

bool PieceInfoSelector::match() {
  if (selectorA.empty() || selectorB.empty() || selectorC.empty()) return false;
  const std::string text = pieceInfoText(source, objNum, genNum);
  for (const std::string* selector : {&selectorA, &selectorB, &selectorC})
    if (!aIncludeB(text, *selector)) return false;
  return true;
}

}  // namespace TESSEL
