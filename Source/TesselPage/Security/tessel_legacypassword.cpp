#include "TesselPage/Security/tessel_legacypassword.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "PDFEncryption/bytes.h"
#include "PDFEncryption/decryptionmanager.h"
#include "PDFEncryption/encryptionbase.h"
#include "PDFEncryption/hashes.h"
#include "PDFEncryption/randomsource.h"
#include "PDFEncryption/rc4.h"
#include "PDFEncryption/rijndael.h"
#include "PDFEncryption/securitysteps.h"
#include "TesselPage/Security/tessel_encrypt.h"

namespace TESSEL {

namespace {

using namespace pcrypt::steps;
using pcrypt::ori_key;
using pcrypt::paddingSize;
using pcrypt::PDFDecryptionManager;

constexpr int lastRevision = 4;
constexpr std::size_t checkBytes = 16;  // of /U from revision 3 on
constexpr int aesBlock = 16;
constexpr int permissionBytes = 4;
constexpr int numberBytes = 3;
constexpr int generationBytes = 2;
constexpr char paddingStart = '(';  // first byte of ori_key

/// A password of 32 bytes, as the functions pass it.
struct PaddedPassword {
  unsigned char bytes[paddingSize];

  PaddedPassword(const unsigned char* password, int length) {
    const int kept = std::clamp(length, 0, paddingSize);
    std::copy_n(password, kept, bytes);
    std::copy_n(ori_key, paddingSize - kept, bytes + kept);
  }
  explicit PaddedPassword(const std::string& password)
      : PaddedPassword(pcrypt::bytes::of(password.data()), static_cast<int>(password.size())) {}
};

std::string text(const unsigned char* bytes, std::size_t count) { return std::string(bytes, bytes + count); }

std::string fileKey(const CEncrypt& encrypt) { return encrypt.fileKey.first(encrypt.keyBytes()); }

std::string keyOf(const CEncrypt& encrypt, const std::string& input) {
  return stretched(md5(input, static_cast<int>(encrypt.keyBytes())), encrypt.R, encrypt.keyLength);
}

std::string identifierHashOf(const CEncrypt& encrypt) {
  return identifierHash(encrypt.fileIdentifier.first(static_cast<std::size_t>(encrypt.fileIdentifierLength)));
}

/// What the file key is hashed from.
std::string keyInput(const CEncrypt& encrypt, const unsigned char* password32) {
  const pcrypt::PDFEncryptionBase base;
  std::string input = text(password32, paddingSize) + encrypt.O.first(CEncrypt::entryBytes);
  base.padInteger(input, encrypt.permissions, permissionBytes);
  input += encrypt.fileIdentifier.first(static_cast<std::size_t>(encrypt.fileIdentifierLength));
  if (!encrypt.encryptMetadata) input += "\xff\xff\xff\xff";
  return input;
}

void zeroKey(CEncrypt& encrypt) { encrypt.fileKey.put(std::string(BoundedBytes::limit, '\0')); }

bool hasKey(const CEncrypt& encrypt) {
  const std::string key = fileKey(encrypt);
  return std::any_of(key.begin(), key.end(), [](char byte) { return byte != '\0'; });
}

/// The text in front of the first "("; none when a search for a C string doesn't find one.
std::string beforePadding(const std::string& padded) {
  const std::string asCString = padded.c_str();
  const std::size_t end = asCString.find(paddingStart);
  return end == std::string::npos ? std::string() : asCString.substr(0, end);
}

bool opensWithEmptyPassword(CEncrypt& encrypt) {
  PaddedPassword empty{std::string()};
  return PdfTryKey(encrypt, empty.bytes) == LegacyResult::good;
}

bool opensWithPassword(CEncrypt& encrypt) {
  PaddedPassword padded(encrypt.passwordText());
  return PdfTryKey(encrypt, padded.bytes) == LegacyResult::good;
}

/// The owner's way of revision 2: a single hash, a single pass.
bool opensByShortOwnerWay(CEncrypt& encrypt) {
  PaddedPassword owner(encrypt.passwordText());
  const std::string hash = md5(text(owner.bytes, paddingSize), static_cast<int>(encrypt.keyBytes()));
  PaddedPassword user(rc4(encrypt.O.first(CEncrypt::entryBytes), hash));
  return PdfTryKey(encrypt, user.bytes) == LegacyResult::good;
}

void setAccess(CEncrypt& encrypt, bool first, bool second) {
  encrypt.firstAccess = first;
  encrypt.secondAccess = second;
}

}  // namespace

int MD5decrypt(unsigned char* data, int length, unsigned char* digest, int digestLength) {
  const std::string hash = md5(text(data, static_cast<std::size_t>(std::max(length, 0))), digestLength);
  std::copy(hash.begin(), hash.end(), digest);
  return 0;
}

int decryptrc4(unsigned char* data, int length, unsigned char* key, int keyLength) {
  pcrypt::PDFEncryptionRC4().RC4(data, length, key, keyLength);
  return 0;
}

int decryptAES(unsigned char* data, int& length, unsigned char* key) {
  unsigned char vector[pcrypt::initialVectorSize];
  pcrypt::makeInitialVector(vector);
  std::vector<unsigned char> plain(static_cast<std::size_t>(std::max(length, 0)) + aesBlock);
  pcrypt::Rijndael cipher;
  cipher.init(pcrypt::Rijndael::CBC, pcrypt::Rijndael::Decrypt, key, pcrypt::Rijndael::Key16Bytes, vector);
  const int result = cipher.padDecrypt(data, length, plain.data());
  if (result < 1) return -1;
  // The data's own vector came out as a first block.
  length = std::max(result - aesBlock, 0);
  std::copy_n(plain.data() + aesBlock, length, data);
  return 0;
}

void calcKey(const CEncrypt& encrypt, const SObj* object, std::string& key) {
  const pcrypt::PDFEncryptionBase base;
  std::string input = fileKey(encrypt);
  base.padInteger(input, object->objNum, numberBytes);
  base.padInteger(input, object->genNum, generationBytes);
  if (encrypt.method == pcrypt::Method::aesV2) input += "sAlT";
  key = md5(input, static_cast<int>(std::min<std::size_t>(input.size(), md5Size)));
}

void createkey(CEncrypt& encrypt, unsigned char* password32) {
  encrypt.fileKey.put(keyOf(encrypt, keyInput(encrypt, password32)));
}

void createTestKey(const CEncrypt& encrypt, unsigned char* password32, bool hashOnly) {
  const std::string key = hashOnly ? md5(text(password32, paddingSize), static_cast<int>(encrypt.keyBytes()))
                                   : keyOf(encrypt, keyInput(encrypt, password32));
  std::copy(key.begin(), key.end(), password32);
}

bool isUserPWD(const CEncrypt& encrypt, unsigned char* password, int length) {
  PaddedPassword key(password, length);
  createTestKey(encrypt, key.bytes, false);
  const std::size_t keyBytes = std::min<std::size_t>(encrypt.keyBytes(), md5Size);
  if (rc4(encrypt.U.first(CEncrypt::entryBytes), text(key.bytes, keyBytes)) != padding()) return false;
  encrypt.userPassword =
      text(password, static_cast<std::size_t>(std::max(length, 0))).substr(0, CEncrypt::userPasswordBytes);
  return true;
}

bool isUserPWDR3(CEncrypt& encrypt, unsigned char* password, bool recomputeKey) {
  if (recomputeKey) PdfTryKey(encrypt, password);
  const std::string hash = part(identifierHashOf(encrypt), 0, encrypt.keyBytes());
  std::string check = rc4Passes(hash, fileKey(encrypt), 0, lastPass);
  // What a short key leaves out of the buffer is zero, and is compared too.
  check.resize(checkBytes, '\0');
  if (check != encrypt.U.first(checkBytes)) return false;
  encrypt.userPassword = encrypt.passwordText();
  return true;
}

namespace {

/// What /O holds under the owner key of a password.
std::string ownersUserPassword(const CEncrypt& encrypt, unsigned char* password, int length) {
  PaddedPassword owner(password, length);
  createTestKey(encrypt, owner.bytes, true);
  const std::size_t keyBytes = std::min<std::size_t>(encrypt.keyBytes(), md5Size);
  const std::string key = stretched(text(owner.bytes, keyBytes), encrypt.R, encrypt.keyLength);
  const int first = encrypt.R < revision3 ? 0 : lastPass;
  return rc4Passes(encrypt.O.first(CEncrypt::entryBytes), key, first, 0);
}

/// Tests what /O held as the user password, padded; a file key that was there stays.
bool testOwnersUser(CEncrypt& encrypt, const std::string& padded) {
  const std::string kept = hasKey(encrypt) ? fileKey(encrypt) : std::string();
  PaddedPassword user(padded);
  const bool result = isUserPWDR3(encrypt, user.bytes, true);
  encrypt.fileKey.put(kept);
  return result;
}

}  // namespace

bool isOwnerPWD(CEncrypt& encrypt, unsigned char* password, int length) {
  const std::string padded = ownersUserPassword(encrypt, password, length);
  std::string user = beforePadding(padded);
  const bool result = encrypt.R < revision3
                          ? isUserPWD(encrypt, pcrypt::bytes::of(user.data()), static_cast<int>(user.size()))
                          : testOwnersUser(encrypt, padded);
  if (!result) return false;
  encrypt.userPassword = user;
  encrypt.ownerPassword =
      text(password, static_cast<std::size_t>(std::max(length, 0))).substr(0, CEncrypt::ownerPasswordBytes);
  return true;
}

int PdfTryKey(CEncrypt& encrypt, unsigned char* padded) {
  createkey(encrypt, padded);
  const std::string key = fileKey(encrypt);
  if (key.empty() || encrypt.R > lastRevision) return LegacyResult::wrongPassword;
  bool good = false;
  if (encrypt.R < revision3) {
    good = rc4(encrypt.U.first(CEncrypt::entryBytes), key) == padding();
  } else {
    good = rc4Passes(encrypt.U.first(checkBytes), key, lastPass, 0) == identifierHashOf(encrypt);
  }
  return good ? LegacyResult::good : LegacyResult::wrongPassword;
}

int GetFileKey(CEncrypt& encrypt) {
  const bool empty = opensWithEmptyPassword(encrypt);
  if (encrypt.accessState == CEncrypt::closed)
    return empty ? LegacyResult::good : LegacyResult::wrongPassword;
  if (empty) {
    encrypt.accessState = CEncrypt::openedByEmptyPassword;
    encrypt.firstAccess = true;
    return LegacyResult::good;
  }
  encrypt.accessState = CEncrypt::openedByPassword;
  encrypt.secondAccess = true;
  if (opensWithPassword(encrypt) || opensByShortOwnerWay(encrypt)) return LegacyResult::good;
  zeroKey(encrypt);
  return LegacyResult::wrongPassword;
}

namespace {

bool isOwner(CEncrypt& encrypt) {
  std::string password = encrypt.passwordText();
  return isOwnerPWD(encrypt, pcrypt::bytes::of(password.data()), static_cast<int>(password.size()));
}

bool isUser(CEncrypt& encrypt) {
  if (encrypt.R >= revision3) {
    PaddedPassword empty{std::string()};
    return isUserPWDR3(encrypt, empty.bytes, false);
  }
  std::string password = encrypt.passwordText();
  return isUserPWD(encrypt, pcrypt::bytes::of(password.data()), static_cast<int>(password.size()));
}

int stateWithEmptyPassword(CEncrypt& encrypt) {
  setAccess(encrypt, true, false);
  encrypt.accessState = CEncrypt::openedByEmptyPassword;
  if (!isOwner(encrypt)) return PDFDecryptionManager::emptyNotOwner;
  encrypt.userPassword.clear();
  return PDFDecryptionManager::emptyAndOwner;
}

int stateOfPassword(CEncrypt& encrypt) {
  encrypt.secondAccess = true;
  if (!encrypt.passwordText().empty() && opensWithPassword(encrypt)) {
    encrypt.accessState = CEncrypt::openedByPassword;
  } else if (!opensByShortOwnerWay(encrypt)) {
    zeroKey(encrypt);
  }
  const bool user = isUser(encrypt);
  const bool owner = isOwner(encrypt);
  if (user && owner) {
    setAccess(encrypt, false, true);
    encrypt.ownerPassword.clear();
    return PDFDecryptionManager::userAndOwner;
  }
  if (!user && !owner) return PDFDecryptionManager::neither;
  setAccess(encrypt, true, true);
  return user ? PDFDecryptionManager::userOnly : PDFDecryptionManager::ownerOnly;
}

}  // namespace

int GetPassWordState(CEncrypt& encrypt) {
  const bool closed = encrypt.accessState == CEncrypt::closed;
  const int state =
      opensWithEmptyPassword(encrypt) ? stateWithEmptyPassword(encrypt) : stateOfPassword(encrypt);
  if (!closed) return state;
  encrypt.accessState = CEncrypt::closed;
  return PDFDecryptionManager::undecided;
}

}  // namespace TESSEL
