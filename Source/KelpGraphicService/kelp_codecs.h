#pragma once

#include "KelpGraphicService/kelp_buffer.h"

/// The codecs behind the service, one function each. All append to `out`, return an FtResult, and take data
/// that end early as a success with what was decoded. `out` is undefined after a failure.
namespace KelpGraphicService_NS {

/// A zlib stream (RFC 1950). The checksum isn't looked at, nor is what stands behind it.
FtResult decodeFlate(Bytes in, Buffer& out);
/// A zlib stream of the input, checksum included.
FtResult encodeFlate(Bytes in, Buffer& out);

/// LZW codes of 9 to 12 bits, most significant bit first.
FtResult decodeLZW(Bytes in, Buffer& out, bool earlyChange);

FtResult decodeASCIIHex(Bytes in, Buffer& out);
FtResult decodeASCII85(Bytes in, Buffer& out);
/// Lines of 72 columns, closed by "~>".
FtResult encodeASCII85(Bytes in, Buffer& out);

FtResult decodeRunLength(Bytes in, Buffer& out);

/// Fax rows, each padded to a byte; black pixels are 0 bits unless `prop.blackIs1`.
FtResult decodeCCITTFax(Bytes in, Buffer& out, const FilterPropTD& prop);

/// Samples of a JPEG image, 8 bits each, rows from the top: grey, RGB or CMYK by the image's own components.
FtResult decodeDCT(Bytes in, Buffer& out);

/// Takes the prediction back, in place, as `prop.predictor` says. A last row that isn't whole counts as far
/// as it goes.
FtResult undoPrediction(Buffer& data, const FilterPropTD& prop);

}  // namespace KelpGraphicService_NS
