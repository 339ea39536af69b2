#include "TesselPage/Model/tessel_pageobj.h"

namespace TESSEL {

bool PieceInfoSelector::match() {
  if (selectorA.empty() || selectorB.empty() || selectorC.empty()) return false;
  // The search of /PieceInfo values is not there yet, so a selector that a host sets takes nothing out.
  return false;
}

}  // namespace TESSEL
