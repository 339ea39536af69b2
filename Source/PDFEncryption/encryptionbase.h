#pragma once

#include <initializer_list>
#include <string>

#include "PDFEncryption/encryptinfo.h"

namespace pcrypt {

inline constexpr int paddingSize = 32;

/// The padding of passwords (ISO 32000-2, 7.6.4.3.2, Algorithm 2, step a).
inline constexpr unsigned char ori_key[paddingSize] = {
    0x28, 0xbf, 0x4e, 0x5e, 0x4e, 0x75, 0x8a, 0x41, 0x64, 0x00, 0x4e, 0x56, 0xff, 0xfa, 0x01, 0x08,
    0x2e, 0x2e, 0x00, 0xb6, 0xd0, 0x68, 0x3e, 0x80, 0x2f, 0x0c, 0xa9, 0xfe, 0x64, 0x53, 0x69, 0x7a};

/// A password as revisions 5 and 6 take it: its first 127 bytes, as they come. There is no conversion.
std::string getUTF8Str(const std::string& password);

/// What the reading and the writing side of the standard security handler share. No data, no exceptions.
class PDFEncryptionBase {
 public:
  /// Appends the first 32 - `length` bytes of `ori_key`; nothing when `length` is 32 or more.
  void padKey(std::string& password, int length) const;

  /// Copies the same bytes to `buffer` + `length`.
  void padKey(unsigned char* buffer, int length) const;

  /// Writes the `count` low bytes of `value` at `buffer` + `offset`, low byte first.
  void padInteger(unsigned char* buffer, int offset, int value, int count) const;

  /// Appends the same bytes.
  void padInteger(std::string& text, int value, int count) const;

  /// The hash of revision 6 (ISO 32000-2, 7.6.4.3.4, Algorithm 2.B).
  ///
  /// @param[out] result  32 bytes; may be one of the inputs
  /// @param hash         the SHA-256 hash to begin with, of which 32 bytes count
  /// @param u            the 48 bytes of /U; counts when `isUser` is false
  void caculateHashR6(std::string& result, const std::string& password, const std::string& hash,
                      const std::string& u, bool isUser) const;

  /// Key of the strings and streams of one object (ISO 32000-2, 7.6.3.2, Algorithm 1; 7.6.3.3,
  /// Algorithm 1.A).
  ///
  /// @param[out] key  at most 16 bytes, or the file key as it stands for AESV3
  void calculateKey(int objNo, int genNo, const EncryptInfo& info, std::string& key) const;

 protected:
  /// What the file key of revisions up to 4 is hashed from (Algorithm 2, steps a to f). The password is
  /// padded here, and counts with all its bytes.
  std::string fileKeyInput(const EncryptInfo& info, const std::string& password) const;

  /// The file key of revisions up to 4 (Algorithm 2).
  std::string fileKeyOf(const EncryptInfo& info, const std::string& password) const;

  /// A password with a salt of /U, or with one of /O and the whole of /U.
  struct Salted {
    std::string password;
    std::string salt;
    std::string u = {};

    /// SHA-256 of all, which is the hash of revision 5, and begins that of revision 6.
    std::string hash() const;
  };

  /// The hash of revision 5 or 6.
  /// @param info  remembers the hashes of revision 6
  std::string saltedHash(const EncryptInfo& info, int revision, const Salted& input) const;

  /// Has `info` remember hashes of revision 6 that `saltedHash` is about to be asked for: together they take
  /// less time than one after the other.
  void hashAhead(const EncryptInfo& info, std::initializer_list<Salted> inputs) const;
};

}  // namespace pcrypt
