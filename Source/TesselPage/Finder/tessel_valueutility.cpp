#include "TesselPage/Finder/tessel_valueutility.h"

#include <algorithm>
#include <sstream>
#include <string_view>

#include "TesselPage/Finder/pdf_rules.h"
#include "TesselPage/Finder/tessel_finderexception.h"
#include "TesselPage/Finder/tessel_valuescan.h"
#include "TesselPage/Structure/tessel_filter.h"

namespace TESSEL {

namespace {

using ParseRange = std::string (*)(const char* begin, const char* end, const char* bufferStart);

template <class R>
std::string parse(const char* begin, const char* end, const char* bufferStart) {
  return parseValue(yard::OneTokenizer<R>(), begin, end, bufferStart);
}

struct ValueRow {
  EPDFType type;
  ParseRange parse;
};

constexpr ValueRow valueRows[] = {
    {ePDFBoolean, &parse<PDF_RULES::MatchBooleanObject>},
    {ePDFNumber, &parse<PDF_RULES::MatchNumberObject>},
    {ePDFString, &parse<PDF_RULES::MatchStringObject>},
    {ePDFName, &parse<PDF_RULES::MatchNameObject>},
    {ePDFArray, &parse<PDF_RULES::MatchArrayObject>},
    {ePDFDictionary, &parse<PDF_RULES::MatchDictionaryObject>},
    {ePDFNull, &parse<yard::MatchString<PDF_RULES::null_string>>},
    {ePDFIndirect, &parse<PDF_RULES::MatchIndirectObject>},
};

constexpr std::string_view lineEnds = "\r\n";

/// Where the data of a stream object lie in its text: `end` may be before `begin`.
struct DataRange {
  std::size_t begin;
  std::size_t end;
};

DataRange dataBetweenKeywords(std::string_view text) {
  const std::size_t keyword = text.find(PDF_RULES::stream_string);
  const std::size_t begin =
      keyword == text.npos ? text.size() : keyword + yard::lengthOf(PDF_RULES::stream_string);
  const std::size_t end = text.rfind(PDF_RULES::endstream_string);
  return {begin, end == text.npos ? begin : end};
}

void stepOverLineEnds(std::string_view text, DataRange& range) {
  range.begin = std::min(text.find_first_not_of(lineEnds, range.begin), text.size());
  while (range.end > 0 && lineEnds.find(text[range.end - 1]) != lineEnds.npos) --range.end;
}

CFilter filterOf(const std::string& text, std::size_t behindKey, std::size_t length) {
  std::istringstream in(text.substr(behindKey, length));
  CFilter filter;
  // What was read of a list with something unknown in it counts.
  filter.ReadFilter(in, 0);
  return filter;
}

}  // namespace

bool aIncludeB(const std::string& a, const std::string& b) {
  return b.empty() ? !a.empty() : a.find(b) != std::string::npos;
}

std::string trimParenthes(const std::string& text) {
  const std::size_t first = text.find_first_not_of('(');
  const std::size_t last = text.find_last_not_of(')');
  if (first == text.npos || last == text.npos || last < first) return {};
  return text.substr(first, last - first + 1);
}

long help_function_MatchStreamObject(const std::string& text) {
  yard::OneTokenizer<PDF_RULES::MatchStreamObject> found;
  found.Tokenize(text.data(), text.data() + text.size());
  return found.empty() ? 0 : 1;
}

namespace utility {

std::pair<const char*, const char*> getRangeOfDictionary(const char* begin, const char* end) {
  yard::OneTokenizer<PDF_RULES::MatchDictionaryObject> found;
  found.Tokenize(begin, end);
  return found.empty() ? std::pair(begin, begin) : found.front();
}

EPDFType getType(const char* begin, const char* end, const char* bufferStart) {
  return ValueScan(begin, end, bufferStart ? bufferStart : begin).at(begin).type;
}

EPDFType getType(const std::string& text) {
  const char* const begin = text.data();
  const char* const end = begin + text.size();
  constexpr int dictionaryEnd = 2;  // ">>"
  yard::OneTokenizer<PDF_RULES::MatchStreamBegin> stream;
  stream.Tokenize(begin, end);
  return getType(begin, stream.empty() ? end : stream.front().first + dictionaryEnd);
}

std::string getValue(const char* begin, const char* end, EPDFType type, const char* bufferStart) {
  if (type == ePDFStream) return getDecompressStream(std::string(begin, end));
  for (const ValueRow& row : valueRows)
    if (row.type == type) return row.parse(begin, end, bufferStart);
  return {};
}

std::string getDecompressStream(const std::string& objectText) {
  constexpr std::string_view filterKey = PDF_RULES::Filter_string;
  DataRange range = dataBetweenKeywords(objectText);
  const std::size_t key = objectText.find(filterKey);
  if (key == objectText.npos) {
    stepOverLineEnds(objectText, range);
    // An end before the beginning makes a count without bounds.
    return objectText.substr(range.begin, range.end - range.begin);
  }
  CFilter filter = filterOf(objectText, key + filterKey.size(), range.begin);
  stepOverLineEnds(objectText, range);
  if (range.end <= range.begin) return {};
  std::string data = objectText.substr(range.begin, range.end - range.begin);
  int length = static_cast<int>(data.size());
  if (filter.filterStreamType(data, length) != 0) throw BaseException("Decomress error", TESSEL_THROW_PLACE);
  return data;
}

}  // namespace utility

}  // namespace TESSEL
