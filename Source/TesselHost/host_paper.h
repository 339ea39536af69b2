#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "TesselHost/host_layout.h"

namespace TesselHost {

/// Readers refuse or misdraw what is wider or higher, in points (ISO 32000-1, annex C.2: 14,400 units).
constexpr double largestPaperSide = 14400;

/// The paper of a sheet, as a user names it.
struct Paper {
  enum class Kind {
    fitted,    ///< as large as what lies on it: "auto"
    turnable,  ///< a paper by name: upright or across, whichever shows the pages larger
    fixed,     ///< exactly this size: "A4-portrait", "A4-landscape", "210x297mm"
  };
  Kind kind = Kind::fitted;
  Size size;  ///< upright when turnable; unused when fitted

  /// "auto"; A0 to A6, B4, B5, Letter, Legal, Tabloid, in any case, with "-portrait" or "-landscape" if
  /// wanted; or width x height with a unit behind the height, points when there is none. Nothing for any
  /// other text.
  static std::optional<Paper> parse(std::string_view text);
};

/// The usual name of a page size, with "landscape" when it lies across; empty when it has none within 1
/// point.
std::string paperNameOf(const Size& size);

/// US Letter, upright; stands in for a page that has no usable size.
inline constexpr Size letterSize{612, 792};

}  // namespace TesselHost
