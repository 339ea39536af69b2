#pragma once

#include <compare>
#include <string>
#include <string_view>

namespace TesselHost {

/// A PDF version (ISO 32000-2, 7.5.2).
struct PdfVersion {
  int major = 1;
  int minor = 0;

  /// The version of a text like "%PDF-1.7" or "/1.7"; 1.0 when the text tells none.
  static PdfVersion parse(std::string_view text);
  std::string text() const;
  /// Whether there is such a version: 1.0 to 1.7, and 2.0.
  bool exists() const;
  // clang-tidy 14 takes the zero that a comparison is made of for a pointer.
  friend auto operator<=>(const PdfVersion&, const PdfVersion&) = default;  // NOLINT(modernize-use-nullptr)
};

/// Transparency groups of forms need this.
inline constexpr PdfVersion pdf14{1, 4};
/// Object streams and cross-reference streams need this.
inline constexpr PdfVersion pdf15{1, 5};
/// /UserUnit needs this.
inline constexpr PdfVersion pdf16{1, 6};

}  // namespace TesselHost
