#pragma once

#include <string>

#include "PDFEncryption/encryptinfo.h"
#include "PDFEncryption/encryptionbase.h"

namespace pcrypt {

/// The reading side of the standard security handler, revisions 2 to 6 (ISO 32000-2, 7.6.4): decides what a
/// password opens, finds the file key, decrypts strings and streams. All state is in the `EncryptInfo` given;
/// calls on different ones may run at once. Wrong passwords are plain results. Passwords are raw bytes, and
/// are not converted; revisions 5 and 6 take their first 127 bytes, the others all of them.
class PDFDecryptionManager : public PDFEncryptionBase {
 public:
  /// Results of `calPassWordState`.
  enum PassWordState : int {
    undecided = 1,      ///< a file without encryption; not reached by a decision
    emptyAndOwner = 2,  ///< the empty password opens the file, the given one is the owner password
    ownerOnly = 3,      ///< owner password and not user password
    userOnly = 4,       ///< user password and not owner password
    neither = 5,        ///< neither
    emptyNotOwner = 6,  ///< the empty password opens the file, the given one is not the owner password
    userAndOwner = 7,   ///< both
  };

  /// Full decision for a password. Leaves the file key, the password and the access flags in `info`: the
  /// first flag alone for 2 and 6, the second alone for 5 and 7, both for 3 and 4.
  int calPassWordState(EncryptInfo& info, std::string& password) const;

  /// Beyond the handler's own decision: the same state, told up to revision 4 by the keys alone that the
  /// password makes. `calPassWordState` takes right passwords for wrong ones when the file identifier begins
  /// with a zero byte (revisions 3 and 4), and an owner password when the user password has a "(" in it
  /// (revision 2). The file key in `info` is rubbish afterwards.
  int stateByKeys(EncryptInfo& info, std::string& password) const;

  /// Finds the file key: by the empty password, by `password` as the user password, by it as the owner
  /// password.
  ///
  /// @param[out] passwordNeeded  true when the empty password didn't do; otherwise left alone
  /// @param[out] emptyPassword   true when it did; otherwise left alone
  /// @return whether the key in `info` is good; it is rubbish otherwise
  bool getFileKey(EncryptInfo& info, const std::string& password, bool& passwordNeeded,
                  bool& emptyPassword) const;

  /// Makes the file key from a user password, padded by the caller below revision 5, and tests it against /U.
  /// For revisions 3 and 4 only as many bytes are compared as the key has.
  bool PdfTryKey(EncryptInfo& info, std::string& paddedPassword) const;

  /// Makes the file key of a user password (Algorithm 2), or for a 256-bit key of revisions 5 and 6 that of
  /// `createKeyAES256`, where `hashOnly` says that it is the owner password.
  ///
  /// @param keepInPassword  the result replaces `password` instead of the file key
  /// @param hashOnly        the input is `password` alone, padded by the caller
  void createKey(EncryptInfo& info, std::string& password, bool keepInPassword, bool hashOnly) const;

  /// The same on a buffer of 32 bytes. At most 256 bytes enter the hash, `hashOnly` leaves out the further
  /// rounds, and for a 256-bit key the buffer is a C string and its key comes from the validation salt of /U.
  void createKey(EncryptInfo& info, unsigned char* password, bool keepInPassword, bool hashOnly) const;

  /// Decrypts /UE, or /OE for the owner, under a key of the password (Algorithm 2.A, steps d and e).
  void createKeyAES256(EncryptInfo& info, std::string& password, bool keepInPassword, bool owner) const;

  /// Whether it is the user password, by the revision's own test.
  bool isUserPWD(EncryptInfo& info, const std::string& password) const;

  /// Whether it is the owner password, by the revision's own test. On a match stores it.
  bool isOwnerPWD(EncryptInfo& info, const std::string& password) const;

  /// Tests the file key against /U of revisions 3 and 4 (Algorithm 5), as many bytes as the key has. A file
  /// identifier that begins with a zero byte is left out of the test. On a match clears the user password.
  ///
  /// @param recomputeKey  makes the file key from `password` first, which is padded
  bool isUserPWDR3(EncryptInfo& info, std::string& password, bool recomputeKey) const;

  /// Tests of the user password. On a match store it. Revision 6 also takes a file key that opens /Perms.
  bool isUserPWDR5(EncryptInfo& info, const std::string& password) const;
  bool isUserPWDR6(EncryptInfo& info, const std::string& password) const;

  /// Tests of the owner password. On a match store it, and the file key.
  bool isOwnerPWD5(EncryptInfo& info, const std::string& password) const;
  bool isOwnerPWD6(EncryptInfo& info, const std::string& password) const;

  /// Decrypts one string or stream in place. Data that is no AES data, or has bad padding, stays as it is.
  ///
  /// @param[in,out] length  bytes at `data`; AES makes it smaller
  void DecryptData(const EncryptInfo& info, int objNo, int genNo, unsigned char* data, int* length) const;

 private:
  bool tryEmpty(EncryptInfo& info) const;
  bool findKey(EncryptInfo& info, const std::string& password) const;
  bool tryShortOwner(EncryptInfo& info, const std::string& padded) const;
  bool tryOwner(EncryptInfo& info, const std::string& padded) const;
  bool testUser(EncryptInfo& info, const std::string& password) const;
  bool isUserPWDR2(EncryptInfo& info, std::string& padded) const;
  bool isOwnerPWDR2(EncryptInfo& info, const std::string& password) const;
  bool isOwnerPWDR3(EncryptInfo& info, const std::string& password) const;
  bool isOwnerPWDOf(EncryptInfo& info, const std::string& password, int revision) const;
  std::string padded(const std::string& password) const;
  std::string asTried(const EncryptInfo& info, const std::string& password) const;
  static Salted userTest(const EncryptInfo& info, const std::string& password);
  static Salted ownerTest(const EncryptInfo& info, const std::string& password);
  static Salted keyInput(const EncryptInfo& info, const std::string& password, bool owner);
  std::string keyAES256(const EncryptInfo& info, const Salted& input, bool owner) const;
  void hashAllAhead(const EncryptInfo& info, const std::string& password) const;
};

}  // namespace pcrypt
