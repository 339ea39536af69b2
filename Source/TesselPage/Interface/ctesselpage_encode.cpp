#include "TesselPage/ctesselpage_encode.h"

#include <algorithm>
#include <iostream>
#include <sstream>

#include "KelpGraphicService/kelp_graphic_service.h"
#include "TesselPage/Finder/pdf_rules.h"
#include "TesselPage/Syntax/tessel_keywords.h"

namespace TESSEL {

namespace {

namespace service = KelpGraphicService_NS;

struct FilterName {
  int kind;
  const char* name;
};

constexpr FilterName filterNames[] = {
    {service::ftFlate, "/FlateDecode"},
    {service::ftLZW, "/LZWDecode"},
    {service::ftASCIIHex, "/ASCIIHexDecode"},
    {service::ftASCII85, "/ASCII85Decode"},
    {service::ftRunLength, "/RunLengthDecode"},
    {service::ftCCITTFax, "/CCITTFaxDecode"},
    {service::ftDCT, "/DCTDecode"},
};

std::string nameOf(int kind) {
  for (const FilterName& row : filterNames)
    if (row.kind == kind) return row.name;
  return {};
}

constexpr unsigned char highBit = 0x80;
bool isAscii(char byte) { return (static_cast<unsigned char>(byte) & highBit) == 0; }

const char* endOf(const std::string& text) { return text.data() + text.size(); }

/// Bytes that the service encodes.
class Encoded {
 public:
  Encoded(const char* data, std::size_t size, const service::FilterPropTD& options) {
    service::MemTD input;
    service::Ft_MemInit(input);
    service::Ft_MemInit(output);
    // The service only reads its input.
    input = {static_cast<std::uint32_t>(size), size, const_cast<char*>(data)};
    service::Ft_DeflateStream(input, output, options, service::ftEncodeWhole);
  }
  ~Encoded() { service::Ft_MemClear(output); }
  Encoded(const Encoded&) = delete;
  Encoded& operator=(const Encoded&) = delete;

  std::string_view bytes() const { return {output.data ? output.data : "", output.size64}; }

 private:
  service::MemTD output;
};

}  // namespace

CTesselPage_Encode::CTesselPage_Encode(const char* path, const std::string& password)
    : CTesselPage(path, password), options(std::make_unique<service::FilterPropTD>()) {
  options->filterKind = service::ftASCII85;
}

CTesselPage_Encode::CTesselPage_Encode(std::istream& in, const std::string& password)
    : CTesselPage(in, password), options(std::make_unique<service::FilterPropTD>()) {
  options->filterKind = service::ftASCII85;
}

CTesselPage_Encode::~CTesselPage_Encode() = default;

int CTesselPage_Encode::setStartObjNo(int startNo) {
  CTesselPage::setStartObjNo(startNo);
  for (iterator it = begin(); it != end(); ++it)
    if (checkNeedASCII85Encode(it)) encode(it);
  return Result::success;
}

void CTesselPage_Encode::encode(const iterator& it) {
  std::string* holder = nullptr;
  char* begin = nullptr;
  char* end = nullptr;
  const long oldLength = lengthOf(it, &holder, &begin);
  findStreamPos(it, &holder, &begin, &end, oldLength);
  const auto there = static_cast<std::size_t>(endOf(*holder) - begin);
  const Encoded encoded(begin, std::min(static_cast<std::size_t>(oldLength), there), *options);
  // The stream's last byte stands behind this place and stays.
  holder->replace(static_cast<std::size_t>(begin - holder->data()), static_cast<std::size_t>(end - begin),
                  encoded.bytes());
  replaceLength(it, oldLength, encoded.bytes().size());
  findFilterPos(it, &holder, &begin, &end);
  holder->replace(static_cast<std::size_t>(begin - holder->data()), static_cast<std::size_t>(end - begin),
                  constructFilterEntity(std::string(begin, end)));
}

void CTesselPage_Encode::replaceLength(const iterator& it, long oldLength, std::size_t newLength) {
  std::string* holder = nullptr;
  char* value = nullptr;
  lengthOf(it, &holder, &value);
  holder->replace(static_cast<std::size_t>(value - holder->data()), std::to_string(oldLength).size(),
                  std::to_string(newLength));
}

/// The entry's /Length and where it stands; 0 and `holder` left alone when there is none.
long CTesselPage_Encode::lengthOf(const iterator& it, std::string** holder, char** value) {
  char* end = nullptr;
  iterator holderIt;
  std::string* found = nullptr;
  findLengthPos(it, &found, value, &end, &holderIt);
  if (!found) return 0;
  *holder = found;
  long length = 0;
  std::istringstream(std::string(*value, end)) >> length;
  return std::max(length, 0L);
}

bool CTesselPage_Encode::checkNeedASCII85Encode(const iterator& it) {
  const std::string& text = it->second;
  if (text.find(kwstream) == std::string::npos) return false;
  PDF_RULES::FilterNameTokenizer names;
  names.Tokenize(text.data(), endOf(text));
  if (names.empty()) return false;
  yard::OneTokenizer<yard::MatchString<PDF_RULES::ASCII85Decode_string>> ascii85;
  ascii85.Tokenize(names.front().first, names.tokens().back().second);
  return ascii85.empty() && !checkStreamIsASCII(it);
}

bool CTesselPage_Encode::checkStreamIsASCII(const iterator& it) {
  std::string* holder = nullptr;
  char* begin = nullptr;
  char* end = nullptr;
  const long length = lengthOf(it, &holder, &begin);
  std::cout << "stream length old" << length << std::endl;
  begin = end = nullptr;
  findStreamPos(it, &holder, &begin, &end, length);
  return std::all_of(begin, std::max(begin, end), isAscii);
}

int CTesselPage_Encode::findStreamPos(const iterator& it, std::string** holder, char** begin, char** end,
                                      long length) {
  std::string& text = it->second;
  yard::OneTokenizer<PDF_RULES::MatchStreamKeyword> keyword;
  keyword.Tokenize(text.data(), endOf(text));
  if (keyword.empty()) return 0;
  *holder = &text;
  *begin = text.data() + (keyword.front().second - text.data());
  *end = *begin + std::min<std::ptrdiff_t>(length - 1, endOf(text) - *begin);
  return 0;
}

int CTesselPage_Encode::findFilterPos(const iterator& it, std::string** holder, char** begin, char** end) {
  std::string& text = it->second;
  yard::OneTokenizer<PDF_RULES::MatchFilterEntry> entry;
  entry.Tokenize(text.data(), endOf(text));
  if (!entry.empty()) {
    *holder = &text;
    *begin = text.data() + (entry.front().first - text.data());
    *end = text.data() + (entry.front().second - text.data());
  } else if (const std::size_t word = text.find(kwstream); word != std::string::npos) {
    *holder = &text;
    *begin = *end = text.data() + word;
  }
  return 0;
}

std::string CTesselPage_Encode::constructFilterEntity(const std::string& filterText) {
  yard::Tokenizer<PDF_RULES::MatchPlainName> found;
  found.Tokenize(filterText.data(), endOf(filterText));
  std::string entry;
  int count = 0;
  for (const auto& [begin, end] : found.tokens()) {
    if (end - begin < 2) continue;  // a bare slash
    if (++count == 2) entry += " [" + nameOf(options->filterKind);
    entry.append(begin, end) += ' ';
  }
  if (count == 0) return "/Filter /ASCII85Decode ";
  return count == 1 ? entry : entry + ']';
}

}  // namespace TESSEL
