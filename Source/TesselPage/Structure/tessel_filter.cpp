#include "TesselPage/Structure/tessel_filter.h"

#include <algorithm>
#include <istream>

#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_token.h"

namespace TESSEL {
namespace {

namespace service = KelpGraphicService_NS;
using service::FilterPropTD;

constexpr int resultDamaged = 5000;  ///< the interface's code for a stream whose data are damaged
constexpr int defaultQuality = 100;
constexpr int defaultBits = 8;

struct FilterName {
  const char* name;
  service::FILTER_TYPE type;
};

constexpr FilterName filterNames[] = {
    {nmFlateDecode, service::ftFlate},
    {nmFl, service::ftFlate},
    {nmLZWDecode, service::ftLZW},
    {nmLZW, service::ftLZW},
    {nmASCIIHexDecode, service::ftASCIIHex},
    {nmAHx, service::ftASCIIHex},
    {nmASCII85Decode, service::ftASCII85},
    {nmA85, service::ftASCII85},
    {nmRunLengthDecode, service::ftRunLength},
    {nmRL, service::ftRunLength},
    {nmCCITTFaxDecode, service::ftCCITTFax},
    {nmCCF, service::ftCCITTFax},
    {nmDCTDecode, service::ftDCT},
    {nmDCT, service::ftDCT},
};

struct Parameter {
  const char* key;
  std::int32_t FilterPropTD::*field;
};

constexpr Parameter parameters[] = {
    {"/Columns", &FilterPropTD::columns},         {"/Predictor", &FilterPropTD::predictor},
    {"/Colors", &FilterPropTD::colors},           {nmBitsPerComponent, &FilterPropTD::bitsPerComponent},
    {"/EarlyChange", &FilterPropTD::earlyChange},
};

constexpr std::int32_t FilterPropTD::*neverNegative[] = {
    &FilterPropTD::k,
    &FilterPropTD::rows,
    &FilterPropTD::endOfLine,
    &FilterPropTD::blackIs1,
    &FilterPropTD::encodedByteAlign,
};

void bringToDefaults(FilterPropTD& properties) {
  if (properties.colors < 1) properties.colors = 1;
  if (properties.quality < 1) properties.quality = defaultQuality;
  if (properties.bitsPerComponent < 1) properties.bitsPerComponent = defaultBits;
  for (const auto field : neverNegative) properties.*field = std::max(properties.*field, 0);
}

/// Reads on to a /DecodeParms of the dictionary. False when its data or the end of the stream come first.
bool findParameters(std::istream& in) {
  std::string token;
  do {
    readPDFString(in, token);
    if (token == nmDecodeParms) return true;
  } while (in.good() && token != kwstream);
  return false;
}

/// A record that the service filled, for as long as it is looked at.
class Decoded {
 public:
  Decoded() { service::Ft_MemInit(mem_); }
  ~Decoded() { service::Ft_MemClear(mem_); }
  Decoded(const Decoded&) = delete;
  Decoded& operator=(const Decoded&) = delete;

  int decode(std::string& data, const FilterPropTD& properties) {
    service::MemTD input;
    service::Ft_MemInit(input);
    input = {static_cast<std::uint32_t>(data.size()), data.size(), data.data()};
    return service::Ft_InflateStream(input, mem_, properties);
  }
  void copyTo(std::string& bytes) const { bytes.assign(mem_.data ? mem_.data : "", mem_.size64); }

 private:
  service::MemTD mem_;
};

}  // namespace

bool CFilter::ReadFilter(std::istream& in, long long startPos) {
  FilterPropTD properties;
  properties.earlyChange = 1;
  std::string token;
  readPDFString(in, token);
  return token == "[" ? readArray(in, properties) : readSingle(in, token, properties, startPos);
}

/// A /DecodeParms behind the array isn't seen: an array's filters run with default parameters. The record
/// isn't cleared between rounds.
bool CFilter::readArray(std::istream& in, FilterPropTD& properties) {
  std::string token;
  readPDFString(in, token);
  for (int place = 0; token != "]"; ++place) {
    const FILTER_TYPE type = GetFilterType(token);
    if (!IsNeedCompType(type)) return false;
    readPDFString(in, token);
    if (token == nmDecodeParms && !ReadParameter(in, properties)) return false;
    properties.filterKind = type;
    chain.emplace(place, properties);
  }
  return true;
}

bool CFilter::readSingle(std::istream& in, const std::string& name, FilterPropTD& properties,
                         long long startPos) {
  const FILTER_TYPE type = GetFilterType(name);
  if (!IsNeedCompType(type)) return false;
  const std::streampos behindName = in.tellg();
  if (startPos > 0) in.seekg(startPos);
  if (findParameters(in) && !ReadParameter(in, properties)) return false;
  in.seekg(behindName);
  properties.filterKind = type;
  chain.emplace(0, properties);
  return true;
}

bool CFilter::ReadParameter(std::istream& in, FilterPropTD& properties) {
  std::string token;
  readPDFString(in, token);
  if (token != "<<") return false;
  for (readPDFString(in, token); token != ">>"; readPDFString(in, token)) {
    if (!in.good()) return false;
    for (const Parameter& known : parameters) {
      if (token == known.key) readInteger(in, properties.*known.field);
    }
  }
  return true;
}

CFilter::FILTER_TYPE CFilter::GetFilterType(const std::string& name) {
  for (const FilterName& known : filterNames) {
    if (name == known.name) return known.type;
  }
  return service::ftUnknown;
}

bool CFilter::IsNeedCompType(FILTER_TYPE type) { return type >= service::ftFlate && type <= service::ftDCT; }

int CFilter::filterStreamType(std::string& data, int& length) {
  if (length >= 0 && static_cast<std::size_t>(length) < data.size())
    data.resize(static_cast<std::size_t>(length));
  const int result = runChain(data, nullptr);
  if (result == 0) length = static_cast<int>(data.size());
  return result;
}

int CFilter::filterStream(std::string& data, std::string& out) { return runChain(data, &out); }

/// `out`, when there is one, follows `data` from filter to filter.
int CFilter::runChain(std::string& data, std::string* out) {
  for (auto& [place, properties] : chain) {
    if (properties.filterKind == service::ftFlate) bringToDefaults(properties);
    Decoded decoded;
    const int result = decoded.decode(data, properties);
    if (result != service::ftSuccess) return result == service::ftDamaged ? resultDamaged : result;
    decoded.copyTo(data);
    if (out) *out = data;
  }
  return 0;
}

}  // namespace TESSEL
