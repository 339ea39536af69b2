#include "TesselPage/Writer/tessel_pageselection.h"

#include <algorithm>
#include <limits>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_bytecursor.h"

namespace TESSEL {

namespace {

constexpr int noFile = -1;
constexpr int allFiles = 0;

/// The number that leads the text, with a sign and white space in front of it; the nearest that fits when
/// there are too many digits, 0 when there are none.
int leadingInt(std::string_view text) {
  constexpr long long limit = std::numeric_limits<int>::max();
  std::size_t place = std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size());
  const bool negative = text.substr(place, 1) == "-";
  if (negative || text.substr(place, 1) == "+") ++place;
  long long value = 0;
  for (; place < text.size() && isDigit(text[place]) && value < limit; ++place)
    value = std::min(value * 10 + (text[place] - '0'), limit);
  return static_cast<int>(negative ? -value : value);
}

std::size_t decimalLength(int number) {
  std::size_t digits = 1;
  while (number /= 10) ++digits;
  return digits;
}

}  // namespace

bool PageSelection::parse(std::string_view selection, Pages& selected) {
  text = selection;
  numberStart = 0;
  file = noFile;
  for (at = 0; at < text.size(); ++at)
    if (!onMark(text[at], selected)) return false;
  return !selected.empty();
}

bool PageSelection::onMark(char mark, Pages& selected) {
  switch (mark) {
    case ':':
      return onColon(selected);
    case ',':
      return onComma(selected);
    case '~':
    case '-':
      return onRange(selected);
    case ' ':
      numberStart = at + 1;
      return true;
    default:
      return true;
  }
}

bool PageSelection::onColon(Pages& selected) {
  file = numberAt(numberStart);
  if (file < 0) return false;
  // A file that reads as 0 without being one passes when it is a single character.
  if (file == allFiles && charAt(numberStart) != '0' && charAt(numberStart + 1) != ':') return false;
  const int page = numberAt(at + 1);
  if (page < 0 || (file == allFiles && page != 0) || (page == 0 && charAt(at + 1) != '0')) return false;
  addKnown(page, selected);
  passOver(page);
  return true;
}

bool PageSelection::onComma(Pages& selected) {
  const int page = numberAt(at + 1);
  if (page < 0) return false;
  addKnown(page, selected);
  passOver(page);
  return true;
}

bool PageSelection::onRange(Pages& selected) {
  const int last = numberAt(at + 1);
  if (file == noFile || file > fileCount() || selected.empty()) return false;
  const int first = selected.back().second;
  if (last <= first) return false;
  // Pages that the file doesn't have would be passed over later on.
  for (int page = first + 1; page <= std::min(last, pageCount()); ++page) selected.emplace_back(file, page);
  passOver(last);
  return true;
}

int PageSelection::numberAt(std::size_t place) const {
  return leadingInt(text.substr(std::min(place, text.size())));
}

void PageSelection::passOver(int number) { at += decimalLength(number); }

void PageSelection::addKnown(int page, Pages& selected) const {
  const bool known = file == allFiles || (file > 0 && file <= fileCount() && page <= pageCount());
  if (known) selected.emplace_back(file, page);
}

int PageSelection::pageCount() const {
  const auto source = files.find(file);
  return source == files.end() ? 0 : static_cast<int>(source->second->pageList.size());
}

}  // namespace TESSEL
