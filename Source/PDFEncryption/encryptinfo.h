#pragma once

#include <map>
#include <string>

namespace pcrypt {

/// Cipher of strings and streams, the values of `EncryptInfo::method`.
namespace Method {
inline constexpr int none = 0;
inline constexpr int rc4 = 1;    ///< RC4 with a key of its own for each object
inline constexpr int aesV2 = 2;  ///< AES-128 in CBC mode with a key of its own for each object
inline constexpr int aesV3 = 3;  ///< AES-256 in CBC mode under the file key
}  // namespace Method

/// All state of the standard security handler (ISO 32000-2, 7.6.4) for one file. A plain value; it belongs
/// to one thread at a time. Strings hold raw bytes; strings in the dictionary's sense are as stored there.
struct EncryptInfo {
  bool unused = false;                ///< always false; kept for the layout
  bool encryptMetadata = true;        ///< /EncryptMetadata
  std::string O;                      ///< /O: 32 bytes, 48 for R 5 and 6
  std::string OE;                     ///< /OE: 32 bytes, R 5 and 6
  std::string U;                      ///< /U: 32 bytes, 48 for R 5 and 6
  std::string UE;                     ///< /UE: 32 bytes, R 5 and 6
  std::string fileKey;                ///< the file encryption key; empty until it is found or made
  int permissions = -4;               ///< /P
  std::string Perms;                  ///< /Perms: 16 bytes, R 5 and 6
  std::string fileIdentifier;         ///< first element of the trailer's /ID
  int R = 0;                          ///< /R, the revision
  int V = 1;                          ///< /V, the version
  int keyLength = 0;                  ///< in bits
  int method = Method::none;          ///< cipher of strings and streams
  bool firstAccess = false;           ///< first access flag, see `PDFDecryptionManager::calPassWordState`
  bool secondAccess = false;          ///< second access flag
  std::string ownerPassword;          ///< set by the password tests
  std::string userPassword;           ///< set by the password tests
  bool fileKeyForAllObjects = false;  ///< true: the file key is the key of every object, whatever the method
  /// Hashes of revision 6 that have been made, by what they were made from. They are slow by design, and one
  /// decision asks for some of them again and again.
  mutable std::map<std::string, std::string> knownHashes;
};

}  // namespace pcrypt
