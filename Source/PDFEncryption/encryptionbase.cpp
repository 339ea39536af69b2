#include "PDFEncryption/encryptionbase.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "PDFEncryption/hardenedhash.h"
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

/// What a hash of revision 6 is known by.
std::string nameOf(const HardenedHash& wanted) {
  return std::to_string(wanted.password.size()) + ' ' + wanted.password + wanted.hash + wanted.u;
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
  HardenedHash wanted = {password, hash, isUser ? std::string() : u};
  harden({&wanted, 1});
  result = wanted.hash;
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

std::string PDFEncryptionBase::Salted::hash() const { return sha256(password + salt + u); }

std::string PDFEncryptionBase::saltedHash(const EncryptInfo& info, int revision, const Salted& input) const {
  std::string hash = input.hash();
  if (revision != revision6) return hash;
  hashAhead(info, {input});
  return info.knownHashes[nameOf({input.password, std::move(hash), input.u})];
}

void PDFEncryptionBase::hashAhead(const EncryptInfo& info, std::initializer_list<Salted> inputs) const {
  constexpr std::size_t mostHashes = 16;
  if (info.knownHashes.size() > mostHashes) info.knownHashes.clear();
  std::vector<HardenedHash> wanted;
  std::vector<std::string*> places;
  for (const Salted& input : inputs) {
    HardenedHash hash = {input.password, input.hash(), input.u};
    const auto [known, isNew] = info.knownHashes.try_emplace(nameOf(hash));
    if (!isNew) continue;
    wanted.push_back(std::move(hash));
    places.push_back(&known->second);
  }
  harden(wanted);
  for (std::size_t i = 0; i < wanted.size(); ++i) *places[i] = std::move(wanted[i].hash);
}

}  // namespace pcrypt
