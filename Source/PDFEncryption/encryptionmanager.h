#pragma once

#include <cstddef>
#include <string>

#include "PDFEncryption/encryptinfo.h"
#include "PDFEncryption/encryptionbase.h"

namespace pcrypt {

/// What a host asks for when it encrypts its own PDF.
struct EncryptOption {
  std::string userPassword;
  std::string ownerPassword;    ///< empty: the user password stands for it
  int permissions = -4;         ///< /P
  int keyLength = 0;            ///< in bits
  int reserved = 0;             ///< not read
  bool encryptMetadata = true;  ///< /EncryptMetadata

  /// Sets the user password; null stands for none.
  void saveUPW(const char* password);

  /// Sets the owner password; null stands for none.
  void saveOPW(const char* password);
};

/// The writing side of the standard security handler, revisions 2 to 6 (ISO 32000-2, 7.6.4): makes the
/// entries of an encryption dictionary and the file key. No state; reports nothing, missing input makes wrong
/// output.
///
/// The caller first sets R, V, key length, permissions, metadata flag and file identifier in the info; the
/// order of the calls is binding, as each uses what the one before left there: R 2 to 4: `calculateOKey`,
/// `createKey` with the user password, `calculateUKey`; R 5 and 6: `createKey`, `calculateUKey`,
/// `calculateOKey`, `calculatePerms`.
///
/// Where the standard asks for random bytes, one fixed byte stands, so that equal passwords give equal
/// entries, unless `useSystemRandom` was called.
class PDFEncryptionManager : public PDFEncryptionBase {
 public:
  /// Has salts, the 256-bit file key and the rest of /Perms come from the operating system's random source,
  /// and the initial vectors of all strings and streams that this process encrypts too; false goes back to
  /// the fixed byte and to `rand`. Holds for the whole process. An entry that gets no random bytes lacks
  /// them.
  static void useSystemRandom(bool on = true);

  /// Makes the file key: from the password for revisions up to 4, else of its own accord.
  void createKey(EncryptInfo& info, const std::string& password) const;

  /// Makes /O, and /OE for R 5 and 6 (Algorithms 3 and 9).
  void calculateOKey(const EncryptOption& option, EncryptInfo& info) const;

  /// Beyond the handler's own operations, in the place of `calculateOKey`: /O, and /OE for R 5 and 6, that no
  /// password fits, so that the document has no owner. They are of chance alone; nobody can tell them from
  /// those of a password that was thrown away, and no slow hash is made. Call `useSystemRandom` before.
  void drawOKey(EncryptInfo& info) const;

  /// Makes /U, and /UE for R 5 and 6 (Algorithms 4, 5 and 8). A long password is not cut here; a reader of R
  /// 5 and 6 takes its first 127 bytes, see `getUTF8Str`.
  void calculateUKey(const EncryptOption& option, EncryptInfo& info) const;

  /// Makes /Perms (Algorithm 10); nothing below R 5.
  void calculatePerms(const EncryptOption& option, EncryptInfo& info) const;

 private:
  std::string ownerEntry(const EncryptOption& option, const EncryptInfo& info) const;
  void sealKey(const EncryptInfo& info, const std::string& password, const std::string& u, std::string& entry,
               std::string& sealedKey) const;
};

}  // namespace pcrypt
