#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TesselHost {

/// What a protected document allows whoever opens it with the user password: /P of the encryption dictionary
/// (ISO 32000-2, table 22). A plain value.
class Permissions {
 public:
  /// Everything.
  Permissions() = default;
  /// As /P has them.
  explicit Permissions(int value) : bits(static_cast<std::uint32_t>(value)) {}

  /// "all", "none", or a list of words such as "print,copy"; nothing for any other text.
  static std::optional<Permissions> parse(std::string_view text);
  /// The words of parse, for a help text.
  static std::string allWords();

  /// As a dictionary of this revision has them: bits that have no meaning there are set as the standard wants
  /// them.
  int valueFor(int revision) const;
  /// What is allowed, in the words of parse; a dictionary of revision 2 knows fewer of them.
  std::vector<std::string> words(int revision) const;

  /// Whether nothing is forbidden.
  bool allowAll() const;
  /// Whether a dictionary of this revision can tell them apart from others: revision 2 knows fewer words.
  bool fit(int revision) const;

  /// Whether pages of the document may go into another one: that changes and assembles.
  bool allowPlacing(int revision) const;

 private:
  std::uint32_t bits = ~std::uint32_t{0};
};

}  // namespace TesselHost
