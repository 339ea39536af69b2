// What a host may want of the source's catalog, in the numbering of the harvest.

#include "TesselPage/Interface/tessel_page_state.h"
#include "TesselPage/Interface/tessel_page_writer.h"
#include "TesselPage/tessel_page.h"

namespace TESSEL {

std::string CTesselPage::getRootString(int objNo) const {
  CSourFile& source = *state->sourFile;
  const SObj& root = source.fileInfo.root;
  PageWriter writer(*state);
  writer.numberUnlessKnown(root, SObj(objNo, 0));
  if (objNo != 0) writer.currentObject = SObj(objNo, 0);
  CObj(root).LocalObj(writer, source, nullptr);
  return std::move(static_cast<std::string&>(writer));
}

const std::string& CTesselPage::getHeaderVersion() const { return state->versionString; }

}  // namespace TESSEL
