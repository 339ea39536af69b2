#include "TesselPage/Model/tessel_annot.h"
#include "TesselPage/Structure/tessel_objflags.h"
#include "TesselPage/Structure/tessel_sourfile.h"

namespace TESSEL {

bool CAnnot::WriteObj(CDestFile&, CSourFile& source, bool* dropped) {
  if (dropped) *dropped = false;
  const SourceSwitches& switches = source.mainSource().switches;
  const bool off = switches.annotsEnable == 0 && switches.formsEnable == 0;
  return off || ObjFlag::dropped(id.objFlags);
}

}  // namespace TESSEL
