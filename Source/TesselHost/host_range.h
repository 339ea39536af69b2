#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace TesselHost {

/// A selection of pages such as "1-4,7,12-": parts in the order given, repeats allowed. A part is a page, a
/// run, a run to the last page ("12-") or from the first ("-3"); a run written downwards ("4-1") goes
/// backwards.
class PageRange {
 public:
  /// Every page.
  PageRange() : parts{{1, last}} {}

  /// Nothing when `text` is no such selection; pages are counted from 1.
  static std::optional<PageRange> parse(std::string_view text);

  /// The pages that a document of `count` pages has of the selection, counted from 1, in the selection's
  /// order.
  std::vector<int> pagesOf(int count) const;

 private:
  static constexpr int last = 0;  ///< stands for the last page, whatever its number
  struct Part {
    int from;
    int to;
  };
  explicit PageRange(std::vector<Part> someParts) : parts(std::move(someParts)) {}
  static std::optional<Part> parsePart(std::string_view text);

  std::vector<Part> parts;
};

}  // namespace TesselHost
