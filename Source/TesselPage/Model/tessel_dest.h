#pragma once

#include <limits>
#include <string>

#include "TesselPage/Structure/tessel_destinfo.h"
#include "TesselPage/Syntax/tessel_obj.h"

namespace TESSEL {

/// A destination (ISO 32000-2, 12.3.2): which page of the source, and which view of it.
class CDest : public CObj {
 public:
  /// The view, by the number that a host gets in DestTD.
  enum Style : int { xyz = 1, fit = 2, fitH = 3, fitV = 4, fitR = 5, fitB = 6, fitBH = 7, fitBV = 8 };
  /// Stands for a "null" of an /XYZ view: the viewer's value stays.
  static constexpr float unchanged = std::numeric_limits<float>::max();

  /// One value: an array, a string (whose name is then to be looked up), or a dictionary with such an array
  /// in it. The stream stands in front of it, or within the array already; it is left somewhere within the
  /// value.
  bool Read(CSourFile& source) override;
  /// Stores the view that the token names. False for any other token.
  bool GetDestStyle(const std::string& token);
  /// The numbers of the view. Always true; what can't be read stays as it was.
  bool GetFit(CSourFile& source);

  /// Reads the value that stands at the present place, direct or behind a reference, as part of the object
  /// `owner`. The position and a good state are restored.
  void readValue(CSourFile& source, const SObj& owner);
  /// The same of the object behind `ref`. The position is not kept.
  void readReference(CSourFile& source, const SObj& ref);
  SDestInfo info() const;

  std::string name;
  int style = fit;
  float left = 0;  ///< the view's numbers in its own order; the zoom of /XYZ is the third
  float top = 0;
  float right = 0;
  float bottom = 0;
  int page = 0;  ///< place in the page list, from 1; 0 when not known
};

/// The place of a page in the source's page list, from 1, the page itself or the one that a structure element
/// leads to; else 0.
int targetPage(CSourFile& main, const SObj& target);

/// The place of a page in the source's page list, from 1; 0 when it is no page.
int pageNumber(CSourFile& main, const SObj& page);

}  // namespace TESSEL
