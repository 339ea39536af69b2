#include "TesselPage/Structure/tessel_paperinfo.h"

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_token.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

void CPaperInfo::WriteRect(CDestFile& dest, const RectTD& rect) {
  dest.append(" [");
  dest << rect.left;
  for (const float number : {rect.bottom, rect.right, rect.top}) {
    dest.append(" ");
    dest << number;
  }
  dest.append(" ] ");
}

bool CPaperInfo::ReadRotate(CSourFile& source) {
  readInteger(source, rotation);
  return source.good();
}

}  // namespace TESSEL
