#include "PDFEncryption/decryptionmanager.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "PDFEncryption/bytes.h"
#include "PDFEncryption/randomsource.h"
#include "PDFEncryption/rc4.h"
#include "PDFEncryption/rijndael.h"
#include "PDFEncryption/securitysteps.h"

namespace pcrypt {
namespace {

using namespace steps;

constexpr std::size_t entryR4 = 32;  // bytes of /O and /U up to revision 4
constexpr std::size_t passwordBuffer = 127;
constexpr char paddingStart = '(';  // first byte of ori_key
constexpr std::size_t permsMark = 9;
constexpr const char* permsText = "adb";
constexpr int aesBlock = 16;
constexpr std::size_t aes128KeyBytes = 16;
constexpr std::size_t aes256KeyBytes = 32;

std::string entry(const std::string& stored) { return part(stored, 0, entryR4); }

bool sealedByAES256(const EncryptInfo& info) {
  return (info.R == revision5 || info.R == revision6) && info.keyLength == aes256KeyLength;
}

/// Whether the bytes of the key, at most a digest, stand at the start of both. No key matches nothing.
bool keyBytesEqual(const EncryptInfo& info, const std::string& a, const std::string& b) {
  const int count = std::min(keyBytes(info.keyLength), md5Size);
  return count > 0 && startsEqual(a, b, static_cast<std::size_t>(count));
}

/// The state of a file that the empty password doesn't open.
int stateOf(bool user, bool owner) {
  if (user) return owner ? PDFDecryptionManager::userAndOwner : PDFDecryptionManager::userOnly;
  return owner ? PDFDecryptionManager::ownerOnly : PDFDecryptionManager::neither;
}

void setAccess(EncryptInfo& info, bool first, bool second) {
  info.firstAccess = first;
  info.secondAccess = second;
}

void keep(EncryptInfo& info, std::string& password, bool keepInPassword, std::string key) {
  (keepInPassword ? password : info.fileKey) = std::move(key);
}

/// The data's own vector makes any other one needless. It is drawn all the same, so that the vectors that a
/// process makes with `rand` stay the same whatever it reads in between.
void drawVector() {
  unsigned char vector[initialVectorSize];
  if (!systemRandomInUse()) makeInitialVector(vector);
}

/// Decrypts CBC data whose first block is the vector, in place. @return bytes left, or below 0 for bad
/// padding
int decryptAES(unsigned char* data, int length, const std::string& key, Rijndael::KeyLength keyLength) {
  if (length < 2 * aesBlock || length % aesBlock != 0) return Rijndael::corruptedData;
  const int body = length - 2 * aesBlock;
  // One key schedule serves both runs. The vector is that of the last block, which is looked at first; what
  // it makes of the first block is mended.
  unsigned char last[aesBlock], mend[aesBlock];
  Rijndael cipher;
  cipher.init(Rijndael::CBC, Rijndael::Decrypt, bytes::of(key.data()), keyLength, data + body);
  const int left = cipher.padDecrypt(data + body + aesBlock, aesBlock, last);
  if (left < 0) return left;
  const auto sum = [](unsigned char a, unsigned char b) { return static_cast<unsigned char>(a ^ b); };
  std::transform(data, data + aesBlock, data + body, mend, sum);
  if (cipher.pdfDecrypt(data + aesBlock, body, data) > 0)
    std::transform(data, data + aesBlock, mend, data, sum);
  std::copy_n(last, left, data + body);
  return body + left;
}

}  // namespace

int PDFDecryptionManager::calPassWordState(EncryptInfo& info, std::string& password) const {
  hashAllAhead(info, password);
  if (tryEmpty(info)) {
    setAccess(info, true, false);
    if (!isOwnerPWD(info, password)) return emptyNotOwner;
    info.userPassword.clear();
    info.ownerPassword = password;
    return emptyAndOwner;
  }
  if (!findKey(info, password)) info.fileKey.clear();
  const bool user = testUser(info, password);
  const bool owner = isOwnerPWD(info, password);
  setAccess(info, user != owner, true);
  if (user && owner) info.ownerPassword.clear();
  return stateOf(user, owner);
}

int PDFDecryptionManager::stateByKeys(EncryptInfo& info, std::string& password) const {
  if (info.R >= revision5) return calPassWordState(info, password);
  std::string tried = padded(password);
  const bool owner = tryOwner(info, tried);
  if (tryEmpty(info)) return owner ? emptyAndOwner : emptyNotOwner;
  return stateOf(PdfTryKey(info, tried), owner);
}

bool PDFDecryptionManager::getFileKey(EncryptInfo& info, const std::string& password, bool& passwordNeeded,
                                      bool& emptyPassword) const {
  hashAllAhead(info, password);
  if (tryEmpty(info)) {
    emptyPassword = true;
    return true;
  }
  passwordNeeded = true;
  std::string key = asTried(info, password);
  if (PdfTryKey(info, key) && !password.empty()) return true;
  if (info.R == revision6) return isOwnerPWD6(info, password);
  if (info.R == revision5) return isOwnerPWD5(info, password);
  return tryOwner(info, key);
}

bool PDFDecryptionManager::PdfTryKey(EncryptInfo& info, std::string& paddedPassword) const {
  createKey(info, paddedPassword, false, false);
  if (info.fileKey.empty() || info.keyLength < 1) return false;
  if (info.R == revision6) return isUserPWDR6(info, paddedPassword);
  if (info.R == revision5) return isUserPWDR5(info, paddedPassword);
  if (info.R < revision3) return rc4(entry(info.U), info.fileKey) == padding();
  const std::string plain = rc4Passes(entry(info.U), info.fileKey, lastPass, 0);
  return keyBytesEqual(info, plain, identifierHash(info.fileIdentifier));
}

void PDFDecryptionManager::createKey(EncryptInfo& info, std::string& password, bool keepInPassword,
                                     bool hashOnly) const {
  if (sealedByAES256(info)) {
    createKeyAES256(info, password, keepInPassword, hashOnly);
    return;
  }
  std::string key = hashOnly ? stretched(md5(password, keyBytes(info.keyLength)), info.R, info.keyLength)
                             : fileKeyOf(info, password);
  keep(info, password, keepInPassword, std::move(key));
}

void PDFDecryptionManager::createKey(EncryptInfo& info, unsigned char* password, bool keepInPassword,
                                     bool hashOnly) const {
  constexpr std::size_t inputLimit = 256;
  const auto text = reinterpret_cast<const char*>(password);
  std::string key;
  if (sealedByAES256(info)) {
    // The validation salt of /U stands where the key salt should, for both passwords.
    Salted input = keyInput(info, std::string(text, strnlen(text, passwordBuffer)), hashOnly);
    input.salt = part(info.U, validationSalt, saltSize);
    key = keyAES256(info, input, hashOnly);
  } else if (hashOnly) {
    key = md5(std::string(text, paddingSize), keyBytes(info.keyLength));
  } else {
    const std::string input = part(fileKeyInput(info, std::string(text, paddingSize)), 0, inputLimit);
    key = stretched(md5(input, keyBytes(info.keyLength)), info.R, info.keyLength);
  }
  if (keepInPassword) {
    std::copy(key.begin(), key.end(), password);
  } else {
    info.fileKey = key;
  }
}

void PDFDecryptionManager::createKeyAES256(EncryptInfo& info, std::string& password, bool keepInPassword,
                                           bool owner) const {
  keep(info, password, keepInPassword, keyAES256(info, keyInput(info, password, owner), owner));
}

bool PDFDecryptionManager::isUserPWD(EncryptInfo& info, const std::string& password) const {
  if (info.R == revision6) return isUserPWDR6(info, password);
  if (info.R == revision5) return isUserPWDR5(info, password);
  std::string key = padded(password);
  return info.R < revision3 ? isUserPWDR2(info, key) : isUserPWDR3(info, key, true);
}

bool PDFDecryptionManager::isOwnerPWD(EncryptInfo& info, const std::string& password) const {
  if (info.R == revision6) return isOwnerPWD6(info, password);
  if (info.R == revision5) return isOwnerPWD5(info, password);
  return info.R < revision3 ? isOwnerPWDR2(info, password) : isOwnerPWDR3(info, password);
}

bool PDFDecryptionManager::isUserPWDR3(EncryptInfo& info, std::string& password, bool recomputeKey) const {
  if (recomputeKey) PdfTryKey(info, password);
  const bool counts = !info.fileIdentifier.empty() && info.fileIdentifier.front() != '\0';
  const std::string hash = part(identifierHash(counts ? info.fileIdentifier : std::string()), 0,
                                static_cast<std::size_t>(std::max(keyBytes(info.keyLength), 0)));
  if (!keyBytesEqual(info, info.U, rc4Passes(hash, info.fileKey, 0, lastPass))) return false;
  info.userPassword.clear();
  return true;
}

bool PDFDecryptionManager::isUserPWDR5(EncryptInfo& info, const std::string& password) const {
  const std::string hash = saltedHash(info, revision5, userTest(info, password));
  if (!startsEqual(hash, info.U, hashSize)) return false;
  info.userPassword = password;
  return true;
}

bool PDFDecryptionManager::isUserPWDR6(EncryptInfo& info, const std::string& password) const {
  const std::string hash = saltedHash(info, revision6, userTest(info, password));
  if (startsEqual(hash, info.U, hashSize)) {
    info.userPassword = password;
    return true;
  }
  // A key that was found by the owner password is as good.
  if (info.fileKey.empty()) return false;
  return part(blockDecrypt256(part(info.Perms, 0, aesBlock), info.fileKey), permsMark,
              std::strlen(permsText)) == permsText;
}

bool PDFDecryptionManager::isOwnerPWD5(EncryptInfo& info, const std::string& password) const {
  return isOwnerPWDOf(info, password, revision5);
}

bool PDFDecryptionManager::isOwnerPWD6(EncryptInfo& info, const std::string& password) const {
  return isOwnerPWDOf(info, password, revision6);
}

void PDFDecryptionManager::DecryptData(const EncryptInfo& info, int objNo, int genNo, unsigned char* data,
                                       int* length) const {
  std::string key;
  calculateKey(objNo, genNo, info, key);
  if (info.method < Method::aesV2) {
    PDFEncryptionRC4().RC4(data, *length, bytes::of(key.data()), static_cast<int>(key.size()));
    return;
  }
  if (*length == aesBlock) {
    data[0] = 0;
    *length = 0;
    return;
  }
  drawVector();
  const bool wide = info.method >= Method::aesV3;
  key.resize(wide ? aes256KeyBytes : aes128KeyBytes, '\0');
  const int left = decryptAES(data, *length, key, wide ? Rijndael::Key32Bytes : Rijndael::Key16Bytes);
  if (left >= 0) *length = left;
}

/// What the search for the key, and the tests that follow it, ask for.
void PDFDecryptionManager::hashAllAhead(const EncryptInfo& info, const std::string& password) const {
  if (info.R != revision6 || !sealedByAES256(info)) return;
  hashAhead(info, {keyInput(info, {}, false), userTest(info, {}), keyInput(info, password, false),
                   userTest(info, password), ownerTest(info, password)});
}

bool PDFDecryptionManager::tryEmpty(EncryptInfo& info) const {
  std::string empty = asTried(info, {});
  return PdfTryKey(info, empty);
}

/// The file key of a password that isn't the empty one, as far as it can be found before the tests.
bool PDFDecryptionManager::findKey(EncryptInfo& info, const std::string& password) const {
  std::string tried = asTried(info, password);
  if (PdfTryKey(info, tried) && !password.empty()) return true;
  return info.R >= revision5 ? isOwnerPWD(info, tried) : tryShortOwner(info, tried);
}

/// The owner's way without further rounds and passes. Right for revision 2 alone; for 3 and 4 it fails, and
/// the owner test finds the key.
bool PDFDecryptionManager::tryShortOwner(EncryptInfo& info, const std::string& padded) const {
  std::string user = rc4(entry(info.O), md5(padded, keyBytes(info.keyLength)));
  return PdfTryKey(info, user);
}

/// Recovers the user password (ISO 32000-2, 7.6.4.4.6, Algorithm 7) and tries it.
bool PDFDecryptionManager::tryOwner(EncryptInfo& info, const std::string& padded) const {
  const std::string hash = stretched(md5(padded, keyBytes(info.keyLength)), info.R, info.keyLength);
  const bool single = info.R < revision3;
  std::string user = single ? rc4(entry(info.O), hash) : rc4Passes(entry(info.O), hash, lastPass, 0);
  return PdfTryKey(info, user);
}

bool PDFDecryptionManager::testUser(EncryptInfo& info, const std::string& password) const {
  if (info.R < revision3 || info.R == revision5) return isUserPWD(info, password);
  std::string none;
  if (info.R != revision6) return isUserPWDR3(info, none, false);
  // Without the key, which an owner password may have found: it would pass as the user password.
  std::string key = std::exchange(info.fileKey, {});
  const bool result = isUserPWDR6(info, password);
  info.fileKey = std::move(key);
  return result;
}

bool PDFDecryptionManager::isUserPWDR2(EncryptInfo& info, std::string& padded) const {
  createKey(info, padded, true, false);
  return rc4(entry(info.U), padded) == padding();
}

bool PDFDecryptionManager::isOwnerPWDR2(EncryptInfo& info, const std::string& password) const {
  std::string key = padded(password);
  createKey(info, key, true, true);
  const std::string user = rc4(entry(info.O), key);
  if (!isUserPWD(info, user.substr(0, user.find(paddingStart)))) return false;
  info.ownerPassword = password;
  return true;
}

bool PDFDecryptionManager::isOwnerPWDR3(EncryptInfo& info, const std::string& password) const {
  const std::string kept = info.fileKey;
  std::string key = padded(password);
  createKey(info, key, true, true);
  std::string user = rc4Passes(entry(info.O), key, lastPass, 0);
  const bool result = isUserPWDR3(info, user, true);
  if (result) {
    const std::size_t end = user.find(paddingStart);
    // An empty user password is stored as the whole padding.
    info.userPassword = end == 0 ? user : user.substr(0, end);
    info.ownerPassword = password;
  }
  if (!kept.empty()) info.fileKey = kept;
  return result;
}

bool PDFDecryptionManager::isOwnerPWDOf(EncryptInfo& info, const std::string& password, int revision) const {
  if (!startsEqual(saltedHash(info, revision, ownerTest(info, password)), info.O, hashSize)) return false;
  info.ownerPassword = password;
  std::string owner = password;
  createKey(info, owner, false, true);
  return true;
}

std::string PDFDecryptionManager::padded(const std::string& password) const {
  std::string result = password;
  padKey(result, static_cast<int>(password.size()));
  return result;
}

/// The password as `PdfTryKey` takes it.
std::string PDFDecryptionManager::asTried(const EncryptInfo& info, const std::string& password) const {
  return info.R < revision5 ? padded(password) : password;
}

PDFDecryptionManager::Salted PDFDecryptionManager::userTest(const EncryptInfo& info,
                                                            const std::string& password) {
  return {getUTF8Str(password), part(info.U, validationSalt, saltSize)};
}

PDFDecryptionManager::Salted PDFDecryptionManager::ownerTest(const EncryptInfo& info,
                                                             const std::string& password) {
  return {getUTF8Str(password), part(info.O, validationSalt, saltSize), info.U};
}

PDFDecryptionManager::Salted PDFDecryptionManager::keyInput(const EncryptInfo& info,
                                                            const std::string& password, bool owner) {
  Salted input = {getUTF8Str(password), part(owner ? info.O : info.U, keySalt, saltSize)};
  if (owner) input.u = part(info.U, 0, entrySize);
  return input;
}

/// What /OE or /UE holds under the hash.
std::string PDFDecryptionManager::keyAES256(const EncryptInfo& info, const Salted& input, bool owner) const {
  return chainDecrypt256(owner ? info.OE : info.UE, saltedHash(info, info.R, input));
}

}  // namespace pcrypt
