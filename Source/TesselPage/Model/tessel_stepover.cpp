#include "TesselPage/Model/tessel_stepover.h"

#include <string>

#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Syntax/tessel_positionguard.h"

namespace TESSEL {

void stepOverValue(CSourFile& source, const SObj& owner) {
  SObj ref;
  std::string token;
  int depth = 0;  // of arrays and dictionaries alike
  do {
    if (tryReference(source, ref)) continue;
    const std::streampos before = source.tellg();
    source >> token;
    const bool closes = token == "]" || token == ">>";
    if (endsObject(token) || (closes && depth == 0)) {
      source.seekg(before);
      return;
    }
    if (skipIfString(source, owner, token, StringsSkipped::both)) continue;
    if (token == "[" || token == "<<") ++depth;
    if (closes) --depth;
  } while (depth > 0 && source.good());
}

bool isDictionaryAhead(CSourFile& source) {
  PositionGuard back(source, PositionGuard::State::clear);
  std::string token;
  source >> token;
  return token == "<<";
}

}  // namespace TESSEL
