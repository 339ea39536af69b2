#pragma once

#include <array>
#include <vector>

#include "TesselPage/Structure/tessel_sobj.h"
#include "TesselPage/tessel_types.h"

namespace TESSEL {

class CDestFile;
class CSourFile;

/// The page boxes, in the order in which they are stored (ISO 32000-2, 14.11.2).
enum class PageBox : int { media = 0, crop = 1, bleed = 2, trim = 3, art = 4 };
inline constexpr int pageBoxCount = 5;

/// Boxes and rotation of one page, with inheritance and defaults applied.
struct CPaperInfo {
  std::array<RectTD, pageBoxCount> boxes{};
  int rotation = 0;  ///< degrees, a multiple of 90

  const RectTD& box(PageBox which) const { return boxes[static_cast<std::size_t>(which)]; }
  /// Appends " [", the four numbers with a blank between them, " ] ".
  static void WriteRect(CDestFile& dest, const RectTD& rect);
  /// Reads an integer into the rotation; whether the stream's state stayed good.
  bool ReadRotate(CSourFile& source);
};

/// What the /Pages node read last has published. It stays in force until another node overwrites it, also for
/// pages that aren't its descendants.
struct InheritedAttrs {
  std::array<RectTD, pageBoxCount> boxes{};
  int rotation = 0;
  SObj font;
  SObj xobject;
  SObj resources;
};

/// What a climb for resources has learnt of a /Pages node; kept, so that a wide tree isn't read again for
/// every page.
struct ResourceNode {
  SObj own;                      ///< /Resources, when it is a reference
  std::vector<SObj> references;  ///< every reference inside a direct /Resources
  SObj parent;
};

}  // namespace TESSEL
