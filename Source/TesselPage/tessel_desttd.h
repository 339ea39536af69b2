#pragma once

namespace TESSEL {

/// What the host writes into a reserved destination object (ISO 32000-2, 12.3.2.2).
struct DestTD {
  int page = 0;    ///< target page of the source, counted from 1; 0 when not known
  int objNum = 0;  ///< the reserved object in the host's numbering
  int genNum = 0;
  int style = 2;   ///< 1 XYZ, 2 Fit, 3 FitH, 4 FitV, 5 FitR, 6 FitB, 7 FitBH, 8 FitBV
  float left = 0;  ///< numbers of the view, in the order of the style; the largest float stands for null
  float top = 0;
  float right = 0;
  float bottom = 0;
};

}  // namespace TESSEL
