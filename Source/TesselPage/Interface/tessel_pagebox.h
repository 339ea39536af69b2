#pragma once

#include "TesselPage/tessel_types.h"

namespace TESSEL::privated {

/// The intersection: the larger left and bottom, the smaller right and top. Whether the two overlap isn't
/// looked at.
void getIntersectRect(const RectTD& a, const RectTD& b, RectTD& out);

}  // namespace TESSEL::privated
