#pragma once

#include <string>

#include "TesselPage/Structure/tessel_sobj.h"

namespace TESSEL {

class CEncrypt;

// An older password handler, for revisions 2 to 4, that works on a CEncrypt's own fields. It stays for hosts
// that call it: nothing else here does. pcrypt::PDFDecryptionManager does the same and more, and differs in
// places, each of which is told below. Passwords are C buffers.

/// Results of PdfTryKey and GetFileKey.
namespace LegacyResult {
inline constexpr int good = 0;
inline constexpr int wrongPassword = 3001;
}  // namespace LegacyResult

/// MD5 of `data`. @param digestLength  bytes of the digest that are wanted, at most 16. @return 0
int MD5decrypt(unsigned char* data, int length, unsigned char* digest, int digestLength);

/// RC4 in place; it undoes itself. @return 0
int decryptrc4(unsigned char* data, int length, unsigned char* key, int keyLength);

/// AES-128 in CBC mode in place, the first 16 bytes being the vector.
/// @param key             16 bytes
/// @param[in,out] length  bytes at `data`
/// @return 0; -1 for data that is no AES data or has bad padding, and nothing is changed
int decryptAES(unsigned char* data, int& length, unsigned char* key);

/// Key of the strings and streams of one object (ISO 32000-2, 7.6.3.2). Unlike the manager's it knows no
/// method 3.
/// @param[out] key  at most 16 bytes
void calcKey(const CEncrypt& encrypt, const SObj* object, std::string& key);

/// Makes the file key (ISO 32000-2, 7.6.4.3.2) of a password padded to 32 bytes.
void createkey(CEncrypt& encrypt, unsigned char* password32);

/// The same into the buffer, of which the key's bytes, at most 16, are overwritten.
/// @param hashOnly  the 32 bytes alone are hashed, once: not yet an owner key from revision 3 on
void createTestKey(const CEncrypt& encrypt, unsigned char* password32, bool hashOnly);

/// Tests a user password by the way of revision 2. On a match stores it in the record.
bool isUserPWD(const CEncrypt& encrypt, unsigned char* password, int length);

/// Tests an owner password. On a match stores it, and the user password as far as a "(" tells where it ends:
/// one of 32 bytes counts as empty. From revision 3 on a file key that was there stays.
bool isOwnerPWD(CEncrypt& encrypt, unsigned char* password, int length);

/// Tests the file key by the way of revisions 3 and 4. Unlike the manager's function it compares 16 bytes of
/// /U whatever the key's length, and on a match stores the password at hand as the user password.
/// @param password        32 bytes; looked at with `recomputeKey` alone
/// @param recomputeKey    makes the file key of `password` first
bool isUserPWDR3(CEncrypt& encrypt, unsigned char* password, bool recomputeKey);

/// Makes the file key of a padded password and tests it.
/// @return 0 when it is good, else 3001: the opposite of the manager's function. From revision 3 on all 16
/// bytes are compared
int PdfTryKey(CEncrypt& encrypt, unsigned char* padded);

/// Finds the file key by the empty password, the password at hand as the user's, and by the owner's way of
/// revision 2, whatever the revision. Sets access state and flags, unless the access state is 0: then only
/// the empty password is tried.
/// @return 0, or 3001 with the file key zeroed
int GetFileKey(CEncrypt& encrypt);

/// Decides about the password at hand.
/// @return as PDFDecryptionManager::calPassWordState; 1 when the access state is 0
int GetPassWordState(CEncrypt& encrypt);

}  // namespace TESSEL
