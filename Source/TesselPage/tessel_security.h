#pragma once

#include <cstddef>

/// What a host may ask of a source's security.
struct SFileInfo {
  static constexpr std::size_t versionSize = 32;

  int pageCount = 0;
  int permissions = 0;        ///< /P of the encryption dictionary (ISO 32000-2, table 22); -1 without one
  bool passwordNeed = false;  ///< the record's first access flag: the empty user password opens the file
  bool ownerAccess = false;   ///< its second access flag: a password is needed
  char version[versionSize] = {};  ///< such as "PDF-1.3"
};

namespace TESSEL {

/// What a source's encryption dictionary tells (ISO 32000-2, 7.6.2), wherever it stands.
struct SSourceSecurity {
  bool encrypted = false;       ///< the source has one; without it the rest means nothing
  int version = 0;              ///< /V
  int revision = 0;             ///< /R; 0 when the dictionary can't be read
  int keyLength = 0;            ///< bits
  int method = 0;               ///< cipher of strings and streams: 1 RC4, 2 AES-128, 3 AES-256
  int permissions = 0;          ///< /P
  bool encryptMetadata = true;  ///< /EncryptMetadata
};

/// How far a source's password has led. Only the numbers are part of the interface.
enum PASSWORD_TYPE {
  passwordUnrestricted = 0,  ///< not protected, or opened with the owner password
  passwordOfTwo = 3,         ///< opened with one of two passwords, the user's or the owner's
  passwordRestricted = 4,    ///< opened with the empty user password alone, or not opened
};

/// Tells a source again by its bytes. It has nothing to do with an encryption key.
struct SFileKey {
  static constexpr std::size_t digestSize = 256;

  char digest[digestSize] = {};  ///< MD5 as 32 lower-case hexadecimal digits; zero bytes behind them
  unsigned fileSize = 0;         ///< bytes, modulo 2^32
  unsigned pageCount = 0;
  int reserved = 0;
};

}  // namespace TESSEL
