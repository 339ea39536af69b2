#pragma once

#include <string>

#include "TesselPage/Structure/tessel_sobj.h"

namespace TESSEL {

class CSourFile;

/// Loads an object's text with its references as they stand.
/// @param[out] text  set on success
/// @return false when the object can't be loaded
bool loadObjectText(CSourFile& source, const SObj& object, std::string& text);

/// Number and generation out of the text of a reference, such as "12 0 R". A number that isn't an int is cut
/// to the nearest one.
SObj referenceFromText(const char* begin, const char* end);

}  // namespace TESSEL
