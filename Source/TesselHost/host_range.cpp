#include "TesselHost/host_range.h"

#include <algorithm>

#include "TesselHost/host_number.h"

namespace TesselHost {

namespace {

/// A page number, or `open` for an empty text; nothing for page 0 and for what is no number.
std::optional<int> parseEnd(std::string_view text, int open) {
  if (text.empty()) return open;
  const auto page = parseCount(text);
  return page && *page > 0 ? page : std::nullopt;
}

void appendRun(std::vector<int>& pages, int from, int to, int count) {
  const int first = std::min(from, count + 1);
  const int final = std::min(to, count + 1);
  const int step = first <= final ? 1 : -1;
  for (int page = first; page != final + step; page += step)
    if (page <= count) pages.push_back(page);
}

}  // namespace

std::optional<PageRange::Part> PageRange::parsePart(std::string_view text) {
  const auto dash = text.find('-');
  const auto from = parseEnd(text.substr(0, dash), 1);
  if (dash == std::string_view::npos)
    return text.empty() || !from ? std::nullopt : std::optional(Part{*from, *from});
  const auto to = parseEnd(text.substr(dash + 1), last);
  if (text.size() == 1 || !from || !to) return std::nullopt;
  return Part{*from, *to};
}

std::optional<PageRange> PageRange::parse(std::string_view text) {
  std::vector<Part> parts;
  for (std::size_t start = 0; start <= text.size();) {
    const auto comma = std::min(text.find(',', start), text.size());
    const auto part = parsePart(text.substr(start, comma - start));
    if (!part) return std::nullopt;
    parts.push_back(*part);
    start = comma + 1;
  }
  return PageRange(std::move(parts));
}

std::vector<int> PageRange::pagesOf(int count) const {
  std::vector<int> pages;
  for (const Part& part : parts) {
    if (part.to == last && part.from > count) continue;
    appendRun(pages, part.from, part.to == last ? count : part.to, count);
  }
  return pages;
}

}  // namespace TesselHost
