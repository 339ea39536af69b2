#pragma once

#include <memory>
#include <string>

#include "TesselPage/tessel_page.h"

namespace KelpGraphicService_NS {
struct FilterPropTD;
}

namespace TESSEL {

/// Pages for a host whose output must stay within seven-bit text: after the harvest every stream of the map
/// that has a /Filter, no ASCII85 filter and a byte with its high bit set is encoded as ASCII85 (ISO 32000-2,
/// 7.4.3), by one more filter in front of the others. /DecodeParms stay as they are, and so does the last
/// byte of the data, which ends up behind the encoded ones. For each stream with another filter one line goes
/// to `std::cout`.
///
/// In an output that is encrypted the host would have to encode before it encrypts: such a key isn't for this
/// class.
class CTesselPage_Encode : public CTesselPage {
 public:
  CTesselPage_Encode(const char* path, const std::string& password);
  CTesselPage_Encode(std::istream& in, const std::string& password);
  ~CTesselPage_Encode() override;

  /// The harvest of the base, then the encoding. Always 0.
  int setStartObjNo(int startNo) override;

  /// Whether the entry is a stream that has to be encoded.
  bool checkNeedASCII85Encode(const iterator& it);
  /// Whether no byte of the stream's data, its last one left out, has its high bit set. Prints the line.
  bool checkStreamIsASCII(const iterator& it);
  /// The place of the stream's data within the entry's text, from behind the word "stream" and all white
  /// space there, to one byte before its last. Cut to the text. Left alone when there is no stream. Always 0.
  /// @param length  bytes of the data
  int findStreamPos(const iterator& it, std::string** holder, char** begin, char** end, long length);
  /// The place of the first /Filter entry; without one the place in front of "stream", twice. Left alone when
  /// there is neither. Always 0.
  int findFilterPos(const iterator& it, std::string** holder, char** begin, char** end);
  /// A /Filter entry with the new filter in front of those of `filterText`; they become an array. A reference
  /// as value is lost.
  std::string constructFilterEntity(const std::string& filterText);

 private:
  long lengthOf(const iterator& it, std::string** holder, char** value);
  void encode(const iterator& it);
  void replaceLength(const iterator& it, long oldLength, std::size_t newLength);

  std::unique_ptr<KelpGraphicService_NS::FilterPropTD> options;  ///< of the filter to come
};

}  // namespace TESSEL
