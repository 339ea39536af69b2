#include "TesselPage/Finder/tessel_objecttext.h"

#include <sstream>
#include <utility>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_obj.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

bool loadObjectText(CSourFile& source, const SObj& object, std::string& text) {
  CDestFile dest;
  dest.rawFlag = true;
  dest.currentObject = object;
  if (!CObj(object).LocalObj(dest, source, nullptr)) return false;
  text = std::move(static_cast<std::string&>(dest));
  return true;
}

SObj referenceFromText(const char* begin, const char* end) {
  SObj object;
  std::istringstream in(std::string(begin, end));
  in >> object.objNum >> object.genNum;
  return object;
}

}  // namespace TESSEL
