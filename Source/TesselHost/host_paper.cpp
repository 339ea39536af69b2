#include "TesselHost/host_paper.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>

#include "TesselHost/host_lengths.h"
#include "TesselHost/host_number.h"

namespace TesselHost {

namespace {

// ISO 32000-1, annex C.2: 3 units.
constexpr double smallestSide = 3;

struct NamedPaper {
  std::string_view name;
  Size size;
};

constexpr Size millimetres(double width, double height) {
  return {width * pointsPerMillimetre, height * pointsPerMillimetre};
}

// ISO 216 and ANSI/ASME Y14.1 sizes.
constexpr std::array papers = {
    NamedPaper{"A0", millimetres(841, 1189)}, NamedPaper{"A1", millimetres(594, 841)},
    NamedPaper{"A2", millimetres(420, 594)},  NamedPaper{"A3", millimetres(297, 420)},
    NamedPaper{"A4", millimetres(210, 297)},  NamedPaper{"A5", millimetres(148, 210)},
    NamedPaper{"A6", millimetres(105, 148)},  NamedPaper{"B4", millimetres(250, 353)},
    NamedPaper{"B5", millimetres(176, 250)},  NamedPaper{"Letter", letterSize},
    NamedPaper{"Legal", {612, 1008}},         NamedPaper{"Tabloid", {792, 1224}},
};

bool sameWord(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

std::optional<Paper> parseNamed(std::string_view text) {
  const auto dash = text.find('-');
  const auto name = text.substr(0, dash);
  const auto* found =
      std::find_if(papers.begin(), papers.end(), [name](auto& row) { return sameWord(row.name, name); });
  if (found == papers.end()) return std::nullopt;
  if (dash == std::string_view::npos) return Paper{Paper::Kind::turnable, found->size};
  if (sameWord(text.substr(dash), "-portrait")) return Paper{Paper::Kind::fixed, found->size};
  if (sameWord(text.substr(dash), "-landscape")) return Paper{Paper::Kind::fixed, found->size.turned()};
  return std::nullopt;
}

bool isUsableSide(double points) { return points >= smallestSide && points <= largestPaperSide; }

std::optional<Paper> parseMeasured(std::string_view text) {
  const auto times = text.find('x');
  if (times == std::string_view::npos) return std::nullopt;
  const auto height = text.substr(times + 1);
  const auto unit = pointsIn(height.substr(std::min(height.find_first_not_of("0123456789."), height.size())));
  const auto width = parseDecimal(text.substr(0, times));
  const auto heightInPoints = parseLength(height);
  if (!unit || !width || !heightInPoints) return std::nullopt;
  const Size size{*width * *unit, *heightInPoints};
  if (!isUsableSide(size.width) || !isUsableSide(size.height)) return std::nullopt;
  return Paper{Paper::Kind::fixed, size};
}

bool isAbout(const Size& a, const Size& b) {
  return std::fabs(a.width - b.width) <= 1 && std::fabs(a.height - b.height) <= 1;
}

}  // namespace

std::optional<Paper> Paper::parse(std::string_view text) {
  if (sameWord(text, "auto")) return Paper{};
  if (const auto named = parseNamed(text)) return named;
  return parseMeasured(text);
}

std::string paperNameOf(const Size& size) {
  for (const NamedPaper& paper : papers) {
    if (isAbout(size, paper.size)) return std::string(paper.name);
    if (isAbout(size, paper.size.turned())) return std::string(paper.name) + " landscape";
  }
  return {};
}

}  // namespace TesselHost
