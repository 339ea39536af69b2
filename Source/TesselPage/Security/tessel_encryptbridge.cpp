#include "TesselPage/Security/tessel_encryptbridge.h"

#include <utility>

#include "PDFEncryption/bytes.h"
#include "PDFEncryption/decryptionmanager.h"
#include "PDFEncryption/randomsource.h"
#include "PDFEncryption/rc4.h"
#include "PDFEncryption/rijndael.h"
#include "TesselPage/Security/tessel_encrypt.h"

namespace TESSEL {

namespace {

using pcrypt::EncryptInfo;
using pcrypt::Rijndael;

constexpr int firstSealedRevision = 5;  // the file key is carried by /OE and /UE from here on
constexpr int firstAesVersion = 4;
constexpr int aes256Version = 5;
constexpr std::size_t sealedEntryBytes = 48;
constexpr std::size_t sealedKeyBytes = 32;
constexpr std::size_t permsBytes = 16;
constexpr std::size_t aesBlock = 16;
constexpr std::size_t longestAesKey = 32;

/// What makes an object's key, and no more: the passwords' entries play no part in it.
EncryptInfo keyInfo(const CEncrypt& encrypt) {
  EncryptInfo info;
  info.fileKey = encrypt.fileKey.first(encrypt.keyBytes());
  info.V = encrypt.V;
  info.method = encrypt.method;
  return info;
}

/// The revision of an info that only encrypts; nothing looks at it.
int revisionFor(int method) {
  if (method == pcrypt::Method::aesV2) return 4;
  return method == pcrypt::Method::aesV3 ? 5 : 3;
}

/// Bytes of the vector and of the data with its padding.
std::size_t aesSize(std::size_t size) { return aesBlock + (size / aesBlock + 1) * aesBlock; }

/// Appends the initial vector and the data under it.
void appendAES(std::string_view plain, const unsigned char* key, int version, std::string& out) {
  const std::size_t begin = out.size();
  out.resize(begin + aesSize(plain.size()));
  unsigned char* const vector = pcrypt::bytes::of(out.data() + begin);
  pcrypt::makeInitialVector(vector);
  Rijndael cipher;
  cipher.init(Rijndael::CBC, Rijndael::Encrypt, key,
              version == aes256Version ? Rijndael::Key32Bytes : Rijndael::Key16Bytes, vector);
  cipher.padEncrypt(pcrypt::bytes::of(plain.data()), static_cast<int>(plain.size()), vector + aesBlock);
}

}  // namespace

void saveEncryptInfo(const CEncrypt& encrypt, EncryptInfo& info) {
  const bool sealed = encrypt.R >= firstSealedRevision;
  const std::size_t entry = sealed ? sealedEntryBytes : CEncrypt::entryBytes;
  info.encryptMetadata = encrypt.encryptMetadata;
  if (sealed) {
    info.UE += encrypt.UE.first(sealedKeyBytes);
    info.OE += encrypt.OE.first(sealedKeyBytes);
    info.Perms += encrypt.Perms.first(permsBytes);
  }
  info.U += encrypt.U.first(entry);
  info.O += encrypt.O.first(entry);
  info.keyLength = encrypt.keyLength;
  info.R = encrypt.R;
  info.permissions = encrypt.permissions;
  info.fileIdentifier += encrypt.fileIdentifier.first(static_cast<std::size_t>(encrypt.fileIdentifierLength));
  info.fileKey += encrypt.fileKey.first(encrypt.keyBytes());
  info.V = encrypt.V;
  info.method = encrypt.method;
  info.knownHashes = encrypt.knownHashes;
}

void resaveEncryptInfo(const EncryptInfo& info, CEncrypt& encrypt) {
  encrypt.encryptMetadata = info.encryptMetadata;
  encrypt.UE.put(info.UE);
  encrypt.OE.put(info.OE);
  encrypt.Perms.put(info.Perms);
  encrypt.U.put(info.U);
  encrypt.O.put(info.O);
  encrypt.keyLength = info.keyLength;
  encrypt.R = info.R;
  encrypt.permissions = info.permissions;
  encrypt.fileIdentifier.put(info.fileIdentifier);
  encrypt.fileIdentifierLength = static_cast<int>(info.fileIdentifier.size());
  encrypt.fileKey.put(info.fileKey);
  encrypt.V = info.V;
  encrypt.method = info.method;
  encrypt.knownHashes = info.knownHashes;
}

int DecryptString(const CEncrypt& encrypt, const SObj* object, std::string& data) {
  int length = static_cast<int>(data.size());
  pcrypt::PDFDecryptionManager().DecryptData(keyInfo(encrypt), object->objNum, object->genNum,
                                             pcrypt::bytes::of(data.data()), &length);
  data.resize(static_cast<std::size_t>(length));
  return 0;
}

std::size_t encryptedSize(const CEncrypt& encrypt, std::size_t size) {
  return encrypt.V < firstAesVersion ? size : aesSize(size);
}

void appendEncrypted(const CEncrypt& encrypt, const SObj& object, std::string_view plain, std::string& out) {
  EncryptInfo info = keyInfo(encrypt);
  info.R = revisionFor(info.method);
  std::string key;
  pcrypt::PDFEncryptionBase().calculateKey(object.objNum, object.genNum, info, key);
  if (info.V < firstAesVersion) {
    const std::size_t begin = out.size();
    out.append(plain);
    pcrypt::PDFEncryptionRC4().RC4(pcrypt::bytes::of(out.data() + begin), static_cast<int>(plain.size()),
                                   pcrypt::bytes::of(key.data()), static_cast<int>(key.size()));
    return;
  }
  // A key that is too short for the cipher counts as filled up with zero bytes.
  if (key.size() < longestAesKey) key.resize(longestAesKey, '\0');
  appendAES(plain, pcrypt::bytes::of(key.data()), info.V, out);
}

int encryptString(const CEncrypt& encrypt, const SObj* object, std::string& data) {
  std::string result;
  appendEncrypted(encrypt, *object, data, result);
  data = std::move(result);
  return 0;
}

int encryptAES(std::string& data, const unsigned char* key, int v) {
  std::string result;
  appendAES(data, key, v, result);
  data = std::move(result);
  return 0;
}

}  // namespace TESSEL
