#include "PDFEncryption/encryptionmanager.h"

#include "PDFEncryption/randomsource.h"
#include "PDFEncryption/securitysteps.h"

namespace pcrypt {
namespace {

using namespace steps;

constexpr char fillerByte = 0x5a;
constexpr std::size_t fileKeySize = 32;
constexpr std::size_t permsRest = 4;
constexpr int permissionBytes = 4;

std::string fillers(std::size_t count) {
  return systemRandomInUse() ? systemRandom(count) : std::string(count, fillerByte);
}

const std::string& ownerOf(const EncryptOption& option) {
  return option.ownerPassword.empty() ? option.userPassword : option.ownerPassword;
}

}  // namespace

void EncryptOption::saveUPW(const char* password) { userPassword = password != nullptr ? password : ""; }

void EncryptOption::saveOPW(const char* password) { ownerPassword = password != nullptr ? password : ""; }

void PDFEncryptionManager::useSystemRandom(bool on) { pcrypt::useSystemRandom(on); }

void PDFEncryptionManager::createKey(EncryptInfo& info, const std::string& password) const {
  const bool sealed = info.R >= revision5 && info.keyLength == aes256KeyLength;
  info.fileKey = sealed ? fillers(fileKeySize) : fileKeyOf(info, password);
}

void PDFEncryptionManager::calculateOKey(const EncryptOption& option, EncryptInfo& info) const {
  if (info.R < revision5) {
    info.O = ownerEntry(option, info);
    return;
  }
  sealKey(info, ownerOf(option), info.U, info.O, info.OE);
}

void PDFEncryptionManager::drawOKey(EncryptInfo& info) const {
  const bool hashed = info.R >= revision5;
  info.O = fillers(hashed ? entrySize : paddingSize);
  if (hashed) info.OE = fillers(fileKeySize);
}

void PDFEncryptionManager::calculateUKey(const EncryptOption& option, EncryptInfo& info) const {
  if (info.R < revision3) {
    info.U = rc4(padding(), info.fileKey);
  } else if (info.R < revision5) {
    const std::string arbitrary = part(padding(), 0, md5Size);
    info.U = rc4Passes(identifierHash(info.fileIdentifier), info.fileKey, 0, lastPass) + arbitrary;
  } else {
    sealKey(info, option.userPassword, {}, info.U, info.UE);
  }
}

void PDFEncryptionManager::calculatePerms(const EncryptOption& option, EncryptInfo& info) const {
  if (info.R < revision5) return;
  std::string block;
  padInteger(block, option.permissions, permissionBytes);
  block += "\xff\xff\xff\xff";
  block += option.encryptMetadata ? 'T' : 'F';
  block += "adb";
  block += fillers(permsRest);
  info.Perms = blockEncrypt256(block, info.fileKey);
}

/// Algorithms 8 and 9: the entry that a password is tested by, and the file key under the password.
/// @param u  /U for the owner's, empty for the user's
void PDFEncryptionManager::sealKey(const EncryptInfo& info, const std::string& password, const std::string& u,
                                   std::string& entry, std::string& sealedKey) const {
  const std::string salts = fillers(2 * saltSize);
  const Salted test = {password, part(salts, 0, saltSize), u};
  const Salted key = {password, part(salts, saltSize, saltSize), u};
  if (info.R == revision6) hashAhead(info, {test, key});
  entry = saltedHash(info, info.R, test) + salts;
  sealedKey = chainEncrypt256(info.fileKey, saltedHash(info, info.R, key));
}

/// Algorithm 3. Passwords count with all their bytes; the entry keeps 32.
std::string PDFEncryptionManager::ownerEntry(const EncryptOption& option, const EncryptInfo& info) const {
  std::string owner = ownerOf(option);
  padKey(owner, static_cast<int>(owner.size()));
  const std::string key = stretched(md5(owner, keyBytes(option.keyLength)), info.R, option.keyLength);
  std::string user = option.userPassword;
  padKey(user, static_cast<int>(user.size()));
  const int passes = info.R < revision3 ? 0 : lastPass;
  return part(rc4Passes(std::move(user), key, 0, passes), 0, paddingSize);
}

}  // namespace pcrypt
