#pragma once

#include "TesselPage/tessel_page.h"

namespace TESSEL {

class CEncrypt;

/// Gives a writer's record the key of setEncryptKey: as getEncryptInfo tells it, and with the version that
/// makes the cipher the one which the key's kind stands for. Without a key the record stays inactive.
void giveOutputKey(const PageState& state, CEncrypt& writer);

/// Puts the strings of a harvested text back into the clear where its object is exempt from encryption.
void exemptStrings(CTesselPage& page, CTesselPage::iterator entry);

/// Makes the /Length of every stream in the map a multiple of a cipher block. Data that ends in bytes which
/// look like a line end counts too short; this gives back what it lost.
void roundStreamLengths(CTesselPage& page);

}  // namespace TESSEL
