#pragma once

#include <string>

#include "TesselPage/Syntax/tessel_obj.h"
#include "TesselPage/tessel_types.h"

namespace TESSEL {

/// A string object (ISO 32000-2, 7.3.4), literal or hexadecimal: decrypted while it is read, encrypted while
/// it is written. Its identity is that of the object it stands in, which keys the cipher.
class CStringType : public CObj {
 public:
  explicit CStringType(const SObj& owner) : CObj(owner) { typeFlags = valueObject; }

  /// Reads the body; the stream stands behind the opening "(" or "<". Leaves white-space skipping on.
  bool Read(CSourFile& source) override;
  /// Encrypts when the destination asks for it, then writes the body with its closing byte.
  bool Write(CDestFile& dest, CSourFile& source) override;
  /// The same, for writers that have no source.
  void writeTo(CDestFile& dest);

  /// Body of a hexadecimal string up to ">"; other bytes are passed over.
  bool RedHexString(std::istream& in);
  /// Body of a literal string and ")"; a line continuation before every hundredth byte.
  void WrtString(CDestFile& dest) const;
  /// Body of a hexadecimal string and ">"; a line feed before every eightieth byte.
  void WrtHexString(CDestFile& dest) const;
  /// WrtHexString or WrtString, by the flag.
  void WrtBody(CDestFile& dest) const { hexadecimal ? WrtHexString(dest) : WrtString(dest); }

  /// Scales the font sizes of a default appearance string (ISO 32000-2, 12.7.4.3) by the placement's scale.
  void Translate4Annot(const PgCmTD& cm);

  int length = 0;
  std::string value;         ///< the bytes, unescaped and decrypted
  bool hexadecimal = false;  ///< set before Read when the opening byte was "<"
  bool noDecrypt = false;    ///< part of the encryption dictionary itself
  bool noEncrypt = false;
};

/// Skips the string whose opening byte was `open` ("(" or "<"), as every scan does so that its bytes aren't
/// taken for keys.
void skipString(CSourFile& source, const SObj& owner, char open);

}  // namespace TESSEL
