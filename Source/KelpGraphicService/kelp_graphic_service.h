#pragma once

#include <cstddef>
#include <cstdint>

/// Stream codecs behind four functions: the filters of ISO 32000-1, 7.4, by number.
///
/// Everything here keeps no state between calls and may be used from several threads at a time, as long
/// as each has its own records. Nothing throws, prints or ends the process.
namespace KelpGraphicService_NS {

/// The filters by the numbers that a `FilterPropTD` carries.
enum FILTER_TYPE : std::int32_t {
  ftFlate = 1,      ///< FlateDecode
  ftLZW = 2,        ///< LZWDecode
  ftASCIIHex = 3,   ///< ASCIIHexDecode
  ftASCII85 = 4,    ///< ASCII85Decode
  ftRunLength = 5,  ///< RunLengthDecode
  ftCCITTFax = 6,   ///< CCITTFaxDecode
  ftDCT = 7,        ///< DCTDecode
  ftUnknown = 10,   ///< no filter that the service has
};

/// What `Ft_InflateStream` and `Ft_DeflateStream` return.
enum FtResult : int {
  ftSuccess = 0,        ///< the output holds the whole result
  ftUnknownFilter = 1,  ///< `filterKind` names no filter of this direction
  ftDamaged = 2,        ///< the data, or the parameters that they would need, make no sense
  ftNoMemory = 3,       ///< the system gave no memory
  ftTooLarge = 4,       ///< the result would pass `ftMaxOutput`
  ftUnknownMode = 5,    ///< `Ft_DeflateStream` was called with another mode than `ftEncodeWhole`
};

/// Bytes that one call may give at most, so that a small bomb doesn't take the host's memory.
inline constexpr std::size_t ftMaxOutput = std::size_t{1} << 30;

/// The mode of `Ft_DeflateStream`: the input is the whole stream, the output ends with its end of data.
inline constexpr int ftEncodeWhole = 2;

/// The parameters of one filter: the entries of /DecodeParms (ISO 32000-1, tables 8, 11 and 13).
///
/// A value below 1 of `columns`, `colors` and `bitsPerComponent` stands for its default (1, 1 and 8;
/// 1728 for the columns of CCITTFaxDecode). `earlyChange` must be set: its default in PDF is 1.
struct FilterPropTD {
  std::int32_t filterKind = 0;  ///< a `FILTER_TYPE`
  std::int32_t reserved4 = 0;
  std::int32_t columns = 0;  ///< samples in a row
  std::int32_t reserved12 = 0;
  std::int32_t quality = 0;           ///< of an image encoder, in percent; no decoder looks at it
  std::int32_t colors = 0;            ///< components of a sample
  std::int32_t k = 0;                 ///< fax: below 0 is Group 4, 0 Group 3 1-D, above 0 Group 3 2-D
  std::int32_t rows = 0;              ///< fax: rows at most; 0 decodes until the data end
  std::int32_t predictor = 0;         ///< Flate and LZW: 2 is TIFF's, 10 to 15 PNG's, below 2 none
  std::int32_t bitsPerComponent = 0;  ///< 1, 2, 4, 8 or 16
  std::int32_t reserved40[2] = {0, 0};
  std::int32_t endOfLine = 0;         ///< fax: rows begin with an end-of-line code; found without, too
  std::int32_t blackIs1 = 0;          ///< fax: black pixels are 1 bits, else 0 bits
  std::int32_t earlyChange = 0;       ///< LZW: codes grow one code early, unless 0
  std::int32_t encodedByteAlign = 0;  ///< fax without end-of-line codes: each row begins a byte
  std::int32_t reserved64[4] = {0, 0, 0, 0};
};

// Hosts of the service lay the record out themselves.
static_assert(sizeof(FilterPropTD) == 80);
static_assert(offsetof(FilterPropTD, filterKind) == 0 && offsetof(FilterPropTD, columns) == 8);
static_assert(offsetof(FilterPropTD, quality) == 16 && offsetof(FilterPropTD, colors) == 20);
static_assert(offsetof(FilterPropTD, k) == 24 && offsetof(FilterPropTD, rows) == 28);
static_assert(offsetof(FilterPropTD, predictor) == 32 && offsetof(FilterPropTD, bitsPerComponent) == 36);
static_assert(offsetof(FilterPropTD, endOfLine) == 48 && offsetof(FilterPropTD, blackIs1) == 52);
static_assert(offsetof(FilterPropTD, earlyChange) == 56 && offsetof(FilterPropTD, encodedByteAlign) == 60);

/// A run of bytes that goes into the service or comes out of it.
///
/// An input is filled by the caller, who keeps its bytes: both sizes hold the byte count. An output's
/// bytes belong to the service and live until `Ft_MemClear`.
struct MemTD {
  std::uint32_t size = 0;    ///< bytes
  std::uint64_t size64 = 0;  ///< bytes; the one that the service reads
  char* data = nullptr;      ///< may be null when there are no bytes
};

/// Makes `mem` empty, whatever it held; nothing is freed.
void Ft_MemInit(MemTD& mem) noexcept;

/// Frees the bytes of a record that the service filled and makes it empty. An empty record is left so.
/// Not for inputs: their bytes are the caller's.
void Ft_MemClear(MemTD& mem) noexcept;

/// Decodes `input` through the one filter that `prop` describes, predictor included.
///
/// Data that end early, miss their end-of-data mark, have a wrong or no checksum, or go on behind their
/// end, are a success with what was decoded. Requires: `output` is empty.
/// @param[out] output  the decoded bytes, to be freed with `Ft_MemClear`; left empty when the call fails
/// @return an `FtResult`; `ftDamaged` for data that are wrong before they end
int Ft_InflateStream(const MemTD& input, MemTD& output, const FilterPropTD& prop) noexcept;

/// Encodes `input` with `prop.filterKind`: ASCII85 (lines of 72 columns at most, "~>" at the end) or
/// Flate. Requires: `output` is empty.
/// @param[out] output  the encoded bytes, to be freed with `Ft_MemClear`; left empty when the call fails
/// @param mode  `ftEncodeWhole`
/// @return an `FtResult`; `ftUnknownFilter` for a kind that isn't encoded here
int Ft_DeflateStream(const MemTD& input, MemTD& output, const FilterPropTD& prop, int mode) noexcept;

}  // namespace KelpGraphicService_NS
