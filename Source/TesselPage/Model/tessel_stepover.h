#pragma once

#include "TesselPage/Structure/tessel_sourfile.h"

namespace TESSEL {

/// Steps over the value that stands here: a reference, a string, an array or a dictionary with all that is in
/// it, or one token. Ends at "endobj" and "stream" too.
/// @param owner  the object that the value stands in
void stepOverValue(CSourFile& source, const SObj& owner);

/// Whether a dictionary starts here. The position is kept.
bool isDictionaryAhead(CSourFile& source);

}  // namespace TESSEL
