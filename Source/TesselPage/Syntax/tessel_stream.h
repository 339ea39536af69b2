#pragma once

#include <string>
#include <string_view>

#include "TesselPage/Structure/tessel_filter.h"
#include "TesselPage/Syntax/tessel_obj.h"

namespace TESSEL {

class CEncrypt;

/// Carries a stream's /Length.
class CLength : public CObj {
 public:
  /// A direct integer or a reference to one.
  bool ReadLen(CSourFile& source);
  bool WriteLen(CDestFile& dest) const;

  int length = 0;
};

/// A stream's body (ISO 32000-2, 7.3.8): its length is repaired and its bytes decrypted while it is read,
/// encrypted while it is written. One identity, one length, one filter chain.
class CStreamType : virtual public CLength, virtual public CFilter {
 public:
  explicit CStreamType(const SObj& owner) {
    id = owner;
    typeFlags = valueObject;
  }
  CStreamType(const CStreamType&) = delete;
  CStreamType& operator=(const CStreamType&) = delete;

  /// Reads the body; the stream stands behind the word "stream", `length` holds /Length.
  bool Read(CSourFile& source) override;
  /// Appends CR LF and the data. With `lengthWidth` of at least 1, puts " length " into the hole of that many
  /// bytes at `lengthPos` of the destination.
  using CObj::Write;
  bool Write(CDestFile& dest, CSourFile& source, long long lengthPos, long long lengthWidth);
  /// Inserts at the start or appends; `length` becomes the new size.
  void addStr(const std::string& text, bool atFront);

  /// The body as it stands: a view into the source's buffer where that is possible, else into the own copy.
  /// Valid until the stream is read again or the source goes away.
  std::string_view data() const { return body; }
  /// Own copy of the body, to be changed in place by a filter.
  std::string takeData() const { return std::string(body); }

  bool ofEncryptDictionary = false;  ///< the body isn't decrypted

 private:
  void decrypt(const CEncrypt& encrypt);

  std::string_view body;
  std::string owned;
};

}  // namespace TESSEL
