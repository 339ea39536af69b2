#include "TesselHost/host_permissions.h"

#include <algorithm>
#include <array>

namespace TesselHost {

namespace {

constexpr std::uint32_t bit(unsigned position) { return std::uint32_t{1} << (position - 1); }

constexpr std::uint32_t bitPrint = bit(3);
constexpr std::uint32_t bitModify = bit(4);
constexpr std::uint32_t bitCopy = bit(5);
constexpr std::uint32_t bitAnnotate = bit(6);
constexpr std::uint32_t bitFillForms = bit(9);
constexpr std::uint32_t bitAccessibility = bit(10);
constexpr std::uint32_t bitAssemble = bit(11);
constexpr std::uint32_t bitPrintHigh = bit(12);
constexpr std::uint32_t bitsOfRevision2 = bitPrint | bitModify | bitCopy | bitAnnotate;
constexpr std::uint32_t bitsOfAll =
    bitsOfRevision2 | bitFillForms | bitAccessibility | bitAssemble | bitPrintHigh;
constexpr std::uint32_t alwaysClear = bit(1) | bit(2);

constexpr int revisionOfMoreBits = 3;

struct Word {
  std::string_view word;
  std::uint32_t bits;     ///< all of them must be set
  std::uint32_t oldBits;  ///< in revision 2; 0: it doesn't know the word
};

constexpr std::string_view wordPrint = "print";
constexpr std::string_view wordPrintLow = "print-low";
constexpr std::array table = {
    Word{wordPrint, bitPrint | bitPrintHigh, bitPrint},
    Word{wordPrintLow, bitPrint, 0},
    Word{"modify", bitModify, bitModify},
    Word{"copy", bitCopy, bitCopy},
    Word{"annotate", bitAnnotate, bitAnnotate},
    Word{"fill-forms", bitFillForms, 0},
    Word{"assemble", bitAssemble, 0},
    Word{"accessibility", bitAccessibility, 0},
};

const Word* find(std::string_view word) {
  const auto* found =
      std::find_if(table.begin(), table.end(), [word](const Word& row) { return row.word == word; });
  return found == table.end() ? nullptr : found;
}

bool allSet(std::uint32_t bits, std::uint32_t wanted) { return wanted != 0 && (bits & wanted) == wanted; }

}  // namespace

std::optional<Permissions> Permissions::parse(std::string_view text) {
  if (text == "all") return Permissions();
  Permissions allowed(0);
  if (text == "none") return allowed;
  for (;;) {
    const auto comma = std::min(text.find(','), text.size());
    const Word* word = find(text.substr(0, comma));
    if (word == nullptr) return std::nullopt;
    allowed.bits |= word->bits;
    if (comma == text.size()) return allowed;
    text.remove_prefix(comma + 1);
  }
}

std::string Permissions::allWords() {
  std::string text;
  for (const Word& row : table) text.append(text.empty() ? "" : ", ").append(row.word);
  return text;
}

int Permissions::valueFor(int revision) const {
  const std::uint32_t known = revision < revisionOfMoreBits ? bitsOfRevision2 : bitsOfAll;
  // Readers for people who can't see aren't shut out (ISO 32000-2, table 22, bit 10).
  return static_cast<int>((bits | ~known | bitAccessibility) & ~alwaysClear);
}

std::vector<std::string> Permissions::words(int revision) const {
  std::vector<std::string> words;
  for (const Word& row : table) {
    const bool implied = row.word == wordPrintLow && !words.empty();
    if (!implied && allSet(bits, revision < revisionOfMoreBits ? row.oldBits : row.bits))
      words.emplace_back(row.word);
  }
  return words;
}

bool Permissions::fit(int revision) const {
  std::uint32_t told = 0;
  for (const Word& row : table)
    if (row.oldBits != 0 && allSet(bits, row.bits)) told |= row.bits;
  // Accessibility is always allowed.
  return revision >= revisionOfMoreBits || allowAll() || told == (bits & bitsOfAll & ~bitAccessibility);
}

bool Permissions::allowAll() const { return allSet(bits, bitsOfAll); }

bool Permissions::allowPlacing(int revision) const {
  return allSet(bits, revision < revisionOfMoreBits ? bitModify : bitModify | bitAssemble);
}

}  // namespace TesselHost
