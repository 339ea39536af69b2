#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "TesselPage/Syntax/tessel_obj.h"

namespace TESSEL {

/// A value of raw bytes of at most 256: a longer string of a broken file is cut there. It reads as if all
/// bytes that nothing has set were 0.
class BoundedBytes {
 public:
  static constexpr std::size_t limit = 256;

  /// The first `count` bytes, at most 256.
  std::string first(std::size_t count) const;
  /// Overwrites from the start. What was there behind the new bytes stays.
  void put(std::string_view text);
  void clear() { bytes.clear(); }

 private:
  std::string bytes;
};

/// The encryption dictionary of one file (ISO 32000-2, 7.6) as an object, and what is known of the file's
/// security: the password at hand, the file key once found, the access that was reached. A source has one in
/// its CFileInfo, a destination one for what it writes. A source's dictionary that is direct in the trailer
/// has number 0.
class CEncrypt : public CObj {
 public:
  static constexpr std::size_t passwordBytes = 32;       ///< of the password that a host gives
  static constexpr std::size_t ownerPasswordBytes = 32;  ///< that are kept
  static constexpr std::size_t userPasswordBytes = 38;   ///< that are kept
  static constexpr std::size_t entryBytes = 32;          ///< of /O and /U up to revision 4

  // Values of accessState.
  static constexpr int closed = 0;                 ///< no key in use
  static constexpr int openedByEmptyPassword = 2;  ///< also: a dictionary was found
  static constexpr int openedByPassword = 3;  ///< a password is needed, whether or not the one at hand fits
  static constexpr int keyFromHost = 4;

  // Values of handler.
  static constexpr int standardHandler = 1;
  static constexpr int otherHandler = 3;

  /// Parses the dictionary at the stream's place. Its strings are never decrypted.
  /// @return false for an unknown /Filter and for a value that can't be read
  bool Read(CSourFile& source) override;
  /// Writes the dictionary as an indirect object, for revisions up to 4: 32 bytes of /O and /U, /Filter
  /// always /Standard, and from version 1.6 on a crypt filter that is always /V2. Always true.
  bool Write(CDestFile& dest, CSourFile& source) override;

  /// Does nothing. Always 1; encryptString and DecryptString do the work.
  int EncrptStream(std::string& data, int& length);
  int EncryptString(std::string& data, int& length);

  /// Keeps the first 32 bytes as the password at hand.
  void setPassword(const std::string& given) { password = given.substr(0, passwordBytes); }
  /// The password at hand, up to a zero byte.
  std::string passwordText() const { return password.c_str(); }

  /// Looks for the file key: by the empty password, then by the one at hand. Sets the access state and its
  /// flag; from here on the record is active for reading, also with a key that fits nothing.
  /// @param identifier  first element of the trailer's /ID
  /// @return whether the key is good
  bool findFileKey(const std::string& identifier);

  /// Whether strings and streams that are read are decrypted.
  bool activeForReading() const {
    return keySearched && accessState >= 1 && keyLength >= 1 && R >= 1 && !leavesContents();
  }
  /// Whether strings and streams are read as they are although there is a dictionary, since only attached
  /// files are encrypted.
  bool leavesContents() const { return heedsIdentity && identityContents; }
  /// Whether strings and streams of an object that has a number are encrypted while they are written.
  bool activeForWriting() const { return accessState >= 1 && keyLength >= 1; }
  /// Bytes of the file key.
  std::size_t keyBytes() const;

  std::string filterName;            ///< /Filter with its "/"
  BoundedBytes O;                    ///< /O
  BoundedBytes U;                    ///< /U
  BoundedBytes OE;                   ///< /OE
  BoundedBytes UE;                   ///< /UE
  BoundedBytes Perms;                ///< /Perms
  int permissions = -1;              ///< /P
  int keyLength = 0;                 ///< /Length in bits, with the default for the version
  int R = 0;                         ///< /R, the revision
  int V = 0;                         ///< /V, the version
  BoundedBytes fileIdentifier;       ///< first element of the trailer's /ID
  int fileIdentifierLength = 0;      ///< in bytes
  bool encryptMetadata = true;       ///< /EncryptMetadata
  std::string password;              ///< the password at hand
  int accessState = closed;          ///< at least 1: strings and streams are encrypted
  bool firstAccess = false;          ///< the empty user password opens the file
  bool secondAccess = false;         ///< a password is needed
  BoundedBytes fileKey;              ///< keyBytes() of it count
  std::string ownerPassword;         ///< set by the older password functions
  mutable std::string userPassword;  ///< set by the older password functions, also on a record they only test
  std::string version = "%PDF-1.3";  ///< header text of the PDF version
  int method = 0;                    ///< a pcrypt::Method: the cipher of strings and streams
  int handler = 0;                   ///< standardHandler or otherHandler; 0 without a dictionary
  bool keySearched = false;          ///< the search for the file key has run
  bool identityContents = false;     ///< /StmF and /StrF leave streams and strings as they are
  bool heedsIdentity = false;        ///< whether that counts, which it does for hosts that ask for it
  /// Slow hashes of revision 6 that were made for this record, see pcrypt::EncryptInfo.
  std::map<std::string, std::string> knownHashes;

 private:
  void settleMethod(bool aesV2, bool aesV3);
  void settleLength();

  friend class EncryptScan;
};

}  // namespace TESSEL
