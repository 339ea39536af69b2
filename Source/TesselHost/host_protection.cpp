#include "TesselHost/host_protection.h"

#include <fmt/format.h>
#include <sched.h>

#include <algorithm>
#include <array>
#include <thread>

#include "PDFEncryption/decryptionmanager.h"
#include "PDFEncryption/encryptionmanager.h"
#include "PDFEncryption/randomsource.h"
#include "PDFEncryption/rc4.h"
#include "PDFEncryption/rijndael.h"
#include "TesselHost/host_error.h"
#include "TesselHost/host_strings.h"
#include "TesselHost/host_text.h"

namespace TesselHost {

namespace {

namespace Method = pcrypt::Method;

constexpr std::size_t identifierBytes = 16;
constexpr std::size_t blockBytes = pcrypt::initialVectorSize;
constexpr std::size_t longestOldPassword = 32;  // ISO 32000-2, 7.6.4.3.2, Algorithm 2, step a
constexpr int firstLongRevision = 5;
constexpr int bitsPerByte = 8;

struct Scheme {
  Cipher cipher;
  std::string_view name;
  int version;  ///< /V
  int revision;
  int keyLength;    ///< bits
  int keyRevision;  ///< for setEncryptKey, which knows no revision 6
  int method;
  std::string_view filterMethod;  ///< /CFM
  PdfVersion least;
};

constexpr std::array schemes = {
    Scheme{Cipher::rc4With40, "rc4-40", 1, 2, 40, 2, Method::rc4, "", {1, 1}},
    Scheme{Cipher::rc4With128, "rc4-128", 2, 3, 128, 3, Method::rc4, "", {1, 4}},
    Scheme{Cipher::aes128, "aes-128", 4, 4, 128, 4, Method::aesV2, "/AESV2", {1, 6}},
    Scheme{Cipher::aes256, "aes-256", 5, 6, 256, 5, Method::aesV3, "/AESV3", {2, 0}},
};

template <class Matches>
const Scheme& schemeWith(Matches matches) {
  return *std::find_if(schemes.begin(), schemes.end(), matches);
}

const Scheme& schemeOf(Cipher cipher) {
  return schemeWith([cipher](const Scheme& row) { return row.cipher == cipher; });
}

const Scheme& schemeOf(const pcrypt::EncryptInfo& info) {
  return schemeWith([&info](const Scheme& row) { return row.revision == info.R; });
}

/// A password as readers of this revision take it.
std::string asTaken(const std::string& password, int revision) {
  return revision < firstLongRevision ? pdfDocEncoded(password).value_or(password) : password;
}

/// The bytes of a password that readers of this revision count.
std::string countedPassword(const std::string& password, int revision) {
  const std::string bytes = asTaken(password, revision);
  return revision < firstLongRevision ? bytes.substr(0, longestOldPassword) : pcrypt::getUTF8Str(bytes);
}

unsigned char* bytesOf(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }
const unsigned char* bytesOf(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

/// The initial vector, and the data padded to whole blocks.
std::string encryptedWithAes(const std::string& key, std::string_view data) {
  std::string result(blockBytes + (data.size() / blockBytes + 1) * blockBytes, '\0');
  pcrypt::makeInitialVector(bytesOf(result));
  pcrypt::Rijndael cipher;
  cipher.init(pcrypt::Rijndael::CBC, pcrypt::Rijndael::Encrypt, bytesOf(key),
              key.size() == blockBytes ? pcrypt::Rijndael::Key16Bytes : pcrypt::Rijndael::Key32Bytes,
              bytesOf(result));
  cipher.padEncrypt(bytesOf(data), static_cast<int>(data.size()), bytesOf(result) + blockBytes);
  return result;
}

std::string randomBytes(std::size_t count) {
  std::string bytes = pcrypt::systemRandom(count);
  if (bytes.size() != count) throw OutputError("the output", "the system gives no random bytes", 0);
  return bytes;
}

/// Without an owner everyone who opens the file would be it: an empty owner password stands for the user's.
void makeOwnerEntry(const pcrypt::EncryptOption& option, pcrypt::EncryptInfo& info) {
  const pcrypt::PDFEncryptionManager manager;
  if (option.ownerPassword.empty()) {
    manager.drawOKey(info);
  } else {
    manager.calculateOKey(option, info);
  }
}

/// The key. Up to revision 4 it is made of the owner's entry, from revision 5 on of chance alone.
void makeKey(const pcrypt::EncryptOption& option, pcrypt::EncryptInfo& info) {
  if (info.R < firstLongRevision) makeOwnerEntry(option, info);
  pcrypt::PDFEncryptionManager().createKey(info, option.userPassword);
}

/// The entries by which readers get to the key. From revision 5 on the owner's is made of the user's.
pcrypt::EncryptInfo withEntries(const pcrypt::EncryptOption& option, pcrypt::EncryptInfo info) {
  const pcrypt::PDFEncryptionManager manager;
  manager.calculateUKey(option, info);
  if (info.R >= firstLongRevision) makeOwnerEntry(option, info);
  manager.calculatePerms(option, info);
  return info;
}

/// Takes the thread off a processor, where it has others.
void leaveProcessor(int processor) {
  cpu_set_t set;
  if (processor < 0 || sched_getaffinity(0, sizeof set, &set) != 0) return;
  CPU_CLR(static_cast<std::size_t>(processor), &set);
  if (CPU_COUNT(&set) > 0) sched_setaffinity(0, sizeof set, &set);
}

/// Runs short work beside the caller's, on another processor: kernels of virtual machines may leave a new
/// thread on that of its maker for longer than it lives, though others are idle. Where there can be no thread
/// the caller does the work, when it asks for the result.
template <class Work>
auto beside(Work work) {
  return std::async(std::launch::async | std::launch::deferred,
                    [work, maker = std::this_thread::get_id(), processor = sched_getcpu()] {
                      if (std::this_thread::get_id() != maker) leaveProcessor(processor);
                      return work();
                    });
}

}  // namespace

std::optional<Cipher> parseCipher(std::string_view text) {
  const auto* found =
      std::find_if(schemes.begin(), schemes.end(), [text](const Scheme& row) { return row.name == text; });
  if (found == schemes.end()) return std::nullopt;
  return found->cipher;
}

bool hasMetadataSwitch(Cipher cipher) { return cipher == Cipher::aes128 || cipher == Cipher::aes256; }

namespace {

void addDoubts(std::vector<std::string>& doubts, std::string_view whose, const std::string& password,
               const Scheme& scheme) {
  const std::string counted = countedPassword(password, scheme.revision);
  if (counted.size() < asTaken(password, scheme.revision).size())
    doubts.push_back(fmt::format("only the first {} bytes of the {} password count", counted.size(), whose));
  if (scheme.revision < firstLongRevision && !pdfDocEncoded(password))
    doubts.push_back(
        fmt::format("the {} password has characters that {} doesn't know, and many readers won't take "
                    "it; aes-256 knows all",
                    whose, scheme.name));
}

}  // namespace

std::vector<std::string> doubtsAbout(const ProtectionOptions& options) {
  const Scheme& scheme = schemeOf(options.cipher);
  std::vector<std::string> doubts;
  addDoubts(doubts, "user", options.userPassword, scheme);
  addDoubts(doubts, "owner", options.ownerPassword, scheme);
  if (!options.allowed.allowAll() && countedPassword(options.userPassword, scheme.revision) ==
                                         countedPassword(options.ownerPassword, scheme.revision))
    doubts.emplace_back("user and owner have the same password, so nothing is forbidden");
  if (!options.allowed.fit(scheme.revision))
    doubts.push_back(
        fmt::format("{} knows print, modify, copy and annotate only; what else is allowed follows from these",
                    scheme.name));
  return doubts;
}

OutputProtection::OutputProtection(const ProtectionOptions& options, std::string fileIdentifier) {
  pcrypt::PDFEncryptionManager::useSystemRandom();
  const Scheme& scheme = schemeOf(options.cipher);
  pcrypt::EncryptOption option;
  option.userPassword = countedPassword(options.userPassword, scheme.revision);
  option.ownerPassword = countedPassword(options.ownerPassword, scheme.revision);
  option.permissions = options.allowed.valueFor(scheme.revision);
  option.keyLength = scheme.keyLength;
  option.encryptMetadata = !options.cleartextMetadata;
  info.R = scheme.revision;
  info.V = scheme.version;
  info.keyLength = scheme.keyLength;
  info.method = scheme.method;
  info.permissions = option.permissions;
  info.encryptMetadata = option.encryptMetadata;
  info.fileIdentifier = std::move(fileIdentifier);
  keyRevision = scheme.keyRevision;
  makeKey(option, info);
  // The hashes of revision 6 are slow on purpose, and nobody asks for them before the output's end.
  entries = beside([option, info = info] { return withEntries(option, info); }).share();
}

void OutputProtection::giveKeyTo(TESSEL::CTesselPage& source) const {
  source.setEncryptKey(bytesOf(std::string_view(info.fileKey)), static_cast<int>(info.fileKey.size()),
                       keyRevision);
}

PdfVersion OutputProtection::version() const { return schemeOf(info).least; }

std::string OutputProtection::dictionary() const {
  const pcrypt::EncryptInfo& all = entries.get();
  std::string text = fmt::format("<</Filter/Standard/V {}/R {}/Length {}/P {}/O{}/U{}", all.V, all.R,
                                 all.keyLength, all.permissions, hexString(all.O), hexString(all.U));
  if (all.R >= firstLongRevision)
    text += fmt::format("/OE{}/UE{}/Perms{}", hexString(all.OE), hexString(all.UE), hexString(all.Perms));
  if (const std::string_view method = schemeOf(all).filterMethod; !method.empty())
    text += fmt::format("/CF<</StdCF<</CFM{}/AuthEvent/DocOpen/Length {}>>>>/StmF/StdCF/StrF/StdCF", method,
                        all.keyLength / bitsPerByte);
  if (!all.encryptMetadata) text += "/EncryptMetadata false";
  return text + ">>";
}

std::string OutputProtection::keyOf(int number) const {
  std::string key;
  pcrypt::PDFEncryptionBase().calculateKey(number, 0, info, key);
  return key;
}

std::string OutputProtection::encrypted(int number, std::string_view data) const {
  std::string key = keyOf(number);
  if (info.method != Method::rc4) return encryptedWithAes(key, data);
  std::string result(data);
  pcrypt::PDFEncryptionRC4().RC4(bytesOf(result), static_cast<int>(result.size()), bytesOf(key),
                                 static_cast<int>(key.size()));
  return result;
}

std::string OutputProtection::decrypted(int number, std::string_view data) const {
  std::string result(data);
  int length = static_cast<int>(result.size());
  pcrypt::PDFDecryptionManager().DecryptData(info, number, 0, bytesOf(result), &length);
  result.resize(static_cast<std::size_t>(length));
  return result;
}

bool OutputProtection::hasCryptFilters() const { return !schemeOf(info).filterMethod.empty(); }

std::string OutputProtection::withStringsEncrypted(int number, std::string_view text) const {
  return withStrings(text, [this, number](std::string_view bytes) { return encrypted(number, bytes); });
}

std::string OutputProtection::withStringsDecrypted(int number, std::string_view text) const {
  return withStrings(text, [this, number](std::string_view bytes) { return decrypted(number, bytes); });
}

std::string randomIdentifier() {
  std::string bytes = randomBytes(identifierBytes);
  // The library, when it reads, leaves out an identifier that begins with a zero byte.
  if (bytes.front() == '\0') bytes.front() = '\1';
  return bytes;
}

}  // namespace TesselHost
