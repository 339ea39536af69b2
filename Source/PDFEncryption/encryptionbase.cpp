#include "PDFEncryption/encryptionbase.h"

#include <algorithm>

#include "PDFEncryption/bytes.h"
#include "PDFEncryption/hashes.h"
#include "PDFEncryption/securitysteps.h"

namespace pcrypt {
namespace {

using namespace steps;

constexpr std::size_t passwordLimit = 127;
constexpr const char* aesSalt = "sAlT";
constexpr const char* metadataMark = "\xff\xff\xff\xff";
constexpr int permissionBytes = 4;
constexpr int numberBytes = 3;
constexpr int generationBytes = 2;

int padStart(int length) { return std::clamp(length, 0, paddingSize); }

// Algorithm 2.B.
constexpr int copies = 64;
constexpr int lastSureRound = 63;
constexpr int roundSlack = 31;
constexpr std::size_t selectorSize = 16;

using Digest512 = unsigned char[64];

std::string sha384(const std::string& data) {
  SHA384_CTX context;
  Digest512 digest;
  SHA384Init(&context);
  SHA384Update(&context, bytes::of(data.data()), static_cast<int>(data.size()));
  SHA384Final(&context, digest);
  return std::string(digest, digest + 48);
}

std::string sha512(const std::string& data) {
  SHA512_CTX context;
  Digest512 digest;
  SHA512Init(&context);
  SHA512Update(&context, bytes::of(data.data()), static_cast<int>(data.size()));
  SHA512Final(&context, digest);
  return std::string(digest, digest + 64);
}

std::string repeated(const std::string& text, int times) {
  std::string result;
  result.reserve(text.size() * static_cast<std::size_t>(times));
  for (int i = 0; i < times; ++i) result += text;
  return result;
}

/// The sum of bytes modulo 3 is that of the number which they make, as 256 is 1 modulo 3.
int selector(const std::string& e) {
  int sum = 0;
  for (std::size_t i = 0; i < std::min(selectorSize, e.size()); ++i) sum += static_cast<unsigned char>(e[i]);
  return sum % 3;
}

std::string selectedHash(const std::string& e) {
  constexpr std::string (*hashes[3])(const std::string&) = {sha256, sha384, sha512};
  return hashes[selector(e)](e);
}

}  // namespace

std::string getUTF8Str(const std::string& password) { return password.substr(0, passwordLimit); }

void PDFEncryptionBase::padKey(std::string& password, int length) const {
  password.append(ori_key, std::end(ori_key) - padStart(length));
}

void PDFEncryptionBase::padKey(unsigned char* buffer, int length) const {
  std::copy(ori_key, std::end(ori_key) - padStart(length), buffer + padStart(length));
}

void PDFEncryptionBase::padInteger(unsigned char* buffer, int offset, int value, int count) const {
  for (int i = 0; i < count; ++i) buffer[offset + i] = static_cast<unsigned char>(value >> (octetBits * i));
}

void PDFEncryptionBase::padInteger(std::string& text, int value, int count) const {
  for (int i = 0; i < count; ++i) text += static_cast<char>(value >> (octetBits * i));
}

void PDFEncryptionBase::caculateHashR6(std::string& result, const std::string& password,
                                       const std::string& hash, const std::string& u, bool isUser) const {
  const std::string tail = isUser ? std::string() : u;
  std::string k = hash.substr(0, hashSize);
  k.resize(hashSize, '\0');
  for (int round = 0;; ++round) {
    std::string block = password;
    block.append(k).append(tail);
    const std::string e = chainEncrypt128(repeated(block, copies), k);
    if (e.empty()) break;
    k = selectedHash(e);
    if (round >= lastSureRound && round - roundSlack >= static_cast<unsigned char>(e.back())) break;
  }
  result = k.substr(0, hashSize);
}

void PDFEncryptionBase::calculateKey(int objNo, int genNo, const EncryptInfo& info, std::string& key) const {
  if (info.method >= Method::aesV3 || info.fileKeyForAllObjects) {
    key = info.fileKey;
    return;
  }
  std::string input = info.fileKey;
  padInteger(input, objNo, numberBytes);
  padInteger(input, genNo, generationBytes);
  // The salt counts among the bytes that the key may keep, beyond the five that the standard allows.
  if (info.method == Method::aesV2) input += aesSalt;
  key = md5(input, static_cast<int>(std::min<std::size_t>(input.size(), md5Size)));
}

std::string PDFEncryptionBase::fileKeyInput(const EncryptInfo& info, const std::string& password) const {
  std::string input = password;
  padKey(input, static_cast<int>(password.size()));
  input += info.O;
  padInteger(input, info.permissions, permissionBytes);
  input += info.fileIdentifier;
  // For every revision: readers of the dictionary force the flag to true below revision 4.
  if (!info.encryptMetadata) input += metadataMark;
  return input;
}

std::string PDFEncryptionBase::fileKeyOf(const EncryptInfo& info, const std::string& password) const {
  const std::string digest = md5(fileKeyInput(info, password), keyBytes(info.keyLength));
  return stretched(digest, info.R, info.keyLength);
}

std::string PDFEncryptionBase::saltedHash(const EncryptInfo& info, int revision, const std::string& password,
                                          const std::string& salt, const std::string& u) const {
  std::string hash = sha256(password + salt + u);
  if (revision != revision6) return hash;
  constexpr std::size_t mostHashes = 16;
  if (info.knownHashes.size() > mostHashes) info.knownHashes.clear();
  const std::string source = std::to_string(password.size()) + ' ' + password + hash + u;
  const auto [known, isNew] = info.knownHashes.try_emplace(source);
  if (isNew) caculateHashR6(known->second, password, hash, u, u.empty());
  return known->second;
}

}  // namespace pcrypt
