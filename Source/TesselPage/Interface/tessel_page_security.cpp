// The source's security as a host sees it, and the key of the host's own output.

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <utility>
#include <vector>

#include "KelpCommon/kelp_md5.h"
#include "PDFEncryption/decryptionmanager.h"
#include "TesselPage/Interface/tessel_page_state.h"
#include "TesselPage/Interface/tessel_pageinfo.h"
#include "TesselPage/Security/tessel_encrypt.h"
#include "TesselPage/Security/tessel_encryptbridge.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "TesselPage/tessel_page.h"

namespace TESSEL {

namespace {

using pcrypt::PDFDecryptionManager;
namespace Method = pcrypt::Method;

constexpr int leastKeyBytes = 5;
constexpr int mostKeyBytes = 32;
constexpr int octetBits = 8;
constexpr int longestPassword = 127;  // of revisions 5 and 6
constexpr int firstLongRevision = 5;
constexpr int openPermissions = -4;  // all that can be allowed

struct KeyKind {
  int length;
  int revision;
  int kind;
};

/// All other keys are those of RC4.
constexpr KeyKind aesKeys[] = {{16, 4, Method::aesV2}, {32, 5, Method::aesV3}};

int kindOf(int length, int revision) {
  for (const KeyKind& row : aesKeys)
    if (row.length == length && row.revision == revision) return row.kind;
  return Method::rc4;
}

/// A password as the host gave it.
struct GivenPassword {
  const std::string& text;
  bool maybeLong;  ///< SetSourceLongPassword's
};

/// The tests of a password that lead nowhere, as a result; 0 when the password can be tried.
int refusal(const CEncrypt& encrypt, bool tooLong) {
  if (encrypt.handler == CEncrypt::otherHandler) return Result::passwordNotTried;
  if (encrypt.handler != CEncrypt::standardHandler) return Result::notProtected;
  if (!encrypt.firstAccess && !encrypt.secondAccess) return Result::notProtected;
  return tooLong ? Result::passwordNotTried : Result::success;
}

/// What SetSourcePassword() tells. Leaves the password, and what was found by it, in the record.
int toldState(CEncrypt& encrypt, const GivenPassword& given) {
  const bool tooLong = given.text.size() > CEncrypt::passwordBytes && !given.maybeLong;
  if (const int refused = refusal(encrypt, tooLong); refused != Result::success) return refused;
  const bool counts = given.maybeLong && encrypt.R >= firstLongRevision;
  encrypt.password = given.text.substr(0, counts ? longestPassword : CEncrypt::passwordBytes);
  pcrypt::EncryptInfo info;
  saveEncryptInfo(encrypt, info);
  std::string tried = encrypt.passwordText();
  const int passwordState = PDFDecryptionManager().calPassWordState(info, tried);
  resaveEncryptInfo(info, encrypt);
  return passwordState;
}

/// What getPasswordState() tells; otherwise as toldState.
int knownState(CEncrypt& encrypt, const GivenPassword& given) {
  const int told = toldState(encrypt, given);
  if (told != PDFDecryptionManager::neither && told != PDFDecryptionManager::emptyNotOwner) return told;
  pcrypt::EncryptInfo info;
  saveEncryptInfo(encrypt, info);
  std::string tried = encrypt.passwordText();
  const int known = PDFDecryptionManager().stateByKeys(info, tried);
  const bool needsNone = known == PDFDecryptionManager::neither && encrypt.leavesContents();
  return needsNone ? PDFDecryptionManager::emptyNotOwner : known;
}

PASSWORD_TYPE typeOf(int passwordState) {
  switch (passwordState) {
    case PDFDecryptionManager::ownerOnly:
    case PDFDecryptionManager::userOnly:
      return passwordOfTwo;
    case PDFDecryptionManager::undecided:
    case PDFDecryptionManager::neither:
    case PDFDecryptionManager::emptyNotOwner:
      return passwordRestricted;
    default:
      return passwordUnrestricted;
  }
}

/// Goes through a source from its first byte, and leaves it where it stood.
class WholeFile {
 public:
  explicit WholeFile(CSourFile& file)
      : source(file), place(file.rdbuf()->pubseekoff(0, std::ios_base::cur, std::ios_base::in)) {
    standAt(0);
  }
  ~WholeFile() { standAt(place); }
  WholeFile(const WholeFile&) = delete;
  WholeFile& operator=(const WholeFile&) = delete;

  void digestInto(SFileKey& key) {
    KelpCommonNS::MD5_CTX context;
    std::vector<char> block(blockBytes);
    while (const auto read = readBlock(block)) {
      context.Update(block.data(), read);
      key.fileSize += read;
    }
    unsigned char digest[KelpCommonNS::MD5_CTX::digestSize];
    context.Final(digest);
    char* digits = key.digest;
    for (const unsigned char byte : digest) digits += std::snprintf(digits, 3, "%02x", byte);
  }

 private:
  static constexpr std::size_t blockBytes = 4096;

  void standAt(std::streampos where) {
    source.clear();
    source.seekg(where);
  }
  unsigned readBlock(std::vector<char>& block) {
    source.read(block.data(), static_cast<std::streamsize>(block.size()));
    return static_cast<unsigned>(source.gcount());
  }

  CSourFile& source;
  std::streampos place;
};

}  // namespace

void PageState::fillEncryptInfo(CEncrypt& out) const {
  out.keyLength = static_cast<int>(encryptKey.size()) * octetBits;
  if (encryptKeyKind <= Method::aesV3) out.method = encryptKeyKind;
  out.fileKey.put(encryptKey);
  if (encryptKeyKind != Method::none) {
    out.V = 4;
    out.accessState = CEncrypt::keyFromHost;
  }
  out.R = encryptRevision;
}

int CTesselPage::setEncryptKey(const unsigned char* key, int length, int revision) {
  if (length < leastKeyBytes || length > mostKeyBytes) return Result::badKeyLength;
  state->encryptKey.assign(key, key + length);
  state->encryptKeyKind = kindOf(length, revision);
  state->encryptRevision = revision;
  return Result::success;
}

void CTesselPage::getEncryptInfo(CEncrypt& out) const { state->fillEncryptInfo(out); }

int CTesselPage::SetSourcePassword(const std::string& password) {
  state->longPassword = false;
  return reopen(password);
}

int CTesselPage::SetSourceLongPassword(const std::string& password) {
  state->longPassword = true;
  // What was read without the right key tells nothing.
  state->outputIntentHints.clear();
  state->outputIntentsCount = 0;
  return reopen(password);
}

int CTesselPage::reopen(const std::string& password) {
  CSourFile& source = *state->sourFile;
  state->password = password;
  const int passwordState = SetSourcePassword();
  // What another key has decoded may be wrong.
  source.objectStreams.clear();
  source.destLookup = DestLookup();
  state->digests.clear();
  if (const int opened = source.CheckAndInit(); opened != Result::success) throw opened;
  if (const int read = readDocument(*state); read != Result::success) throw read;
  findIntents(*state);
  return passwordState;
}

int CTesselPage::SetSourcePassword() const {
  return toldState(state->sourFile->fileInfo.encrypt, {state->password, state->longPassword});
}

int CTesselPage::getPasswordState() const {
  return knownState(state->sourFile->fileInfo.encrypt, {state->password, state->longPassword});
}

int CTesselPage::getPasswordState(const std::string& password) const {
  CEncrypt& encrypt = state->sourFile->fileInfo.encrypt;
  CEncrypt trial = encrypt;
  const int known = knownState(trial, {password, true});
  encrypt.knownHashes = std::move(trial.knownHashes);
  return known;
}

void CTesselPage::heedIdentityFilters() { state->heedsIdentityFilters = true; }

std::string CTesselPage::getEncryptString() const {
  CSourFile& source = *state->sourFile;
  CDestFile writer;
  const bool written = source.fileInfo.encrypt.LocalObj(writer, source, nullptr);
  source.clear();  // a dictionary that breaks off must not keep the next password out
  if (!written) return {};
  return std::move(static_cast<std::string&>(writer));
}

int CTesselPage::getSecurity(PASSWORD_TYPE& type, int& permissions) const {
  type = passwordUnrestricted;
  permissions = openPermissions;
  const std::string text = getEncryptString();
  if (text.empty()) return Result::success;
  std::istringstream(CPageInfo(text).getValueString("/P")) >> permissions;
  type = typeOf(SetSourcePassword());
  return Result::success;
}

SSourceSecurity CTesselPage::getSourceSecurity() const {
  const CEncrypt& encrypt = state->sourFile->fileInfo.encrypt;
  SSourceSecurity security;
  security.encrypted = encrypt.accessState != CEncrypt::closed;
  security.version = encrypt.V;
  security.revision = encrypt.R;
  security.keyLength = encrypt.keyLength;
  security.method = encrypt.method;
  security.permissions = encrypt.permissions;
  security.encryptMetadata = encrypt.encryptMetadata;
  return security;
}

int CTesselPage::GetSourceFileInfo(SFileInfo& out) const {
  const CSourFile& source = *state->sourFile;
  const CEncrypt& encrypt = source.fileInfo.encrypt;
  out.pageCount = static_cast<int>(source.pageList.size());
  out.permissions = encrypt.permissions;
  out.passwordNeed = encrypt.firstAccess;
  out.ownerAccess = encrypt.secondAccess;
  const std::string version = encrypt.version.substr(1, SFileInfo::versionSize - 1);
  std::copy_n(version.c_str(), version.size() + 1, out.version);
  return 1;
}

SFileKey CTesselPage::getFileKey() const {
  CSourFile& source = *state->sourFile;
  SFileKey key;
  WholeFile(source).digestInto(key);
  key.pageCount = static_cast<unsigned>(source.pageList.size());
  return key;
}

}  // namespace TESSEL
