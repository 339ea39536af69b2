#pragma once

#include <functional>
#include <future>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "PDFEncryption/encryptinfo.h"
#include "TesselHost/host_permissions.h"
#include "TesselHost/host_version.h"
#include "TesselPage/tessel_page.h"

namespace TesselHost {

enum class Cipher { rc4With40, rc4With128, aes128, aes256 };

/// "rc4-40", "rc4-128", "aes-128" or "aes-256"; nothing for any other text.
std::optional<Cipher> parseCipher(std::string_view text);

/// Whether metadata can stay in the clear under this cipher.
bool hasMetadataSwitch(Cipher cipher);

/// How an output is to be protected.
struct ProtectionOptions {
  Cipher cipher = Cipher::aes256;
  std::string userPassword;   ///< opens the output, with what `allowed` allows; may be empty
  std::string ownerPassword;  ///< opens it without restrictions; empty: nobody is the owner
  Permissions allowed;
  bool cleartextMetadata = false;  ///< the document's metadata stays readable for everyone; AES only
};

/// What the user should know of passwords that don't protect, or that other readers may refuse, and of
/// permissions that the cipher has no bits for; a line each.
std::vector<std::string> doubtsAbout(const ProtectionOptions& options);

/// The protection of one output (ISO 32000-2, 7.6): its key, and the dictionary that tells readers how to get
/// to it. Salts, the 256-bit key and initial vectors come from the operating system's random source.
class OutputProtection {
 public:
  /// Takes the process to the operating system's random source.
  /// @param fileIdentifier  as the trailer's /ID has it
  OutputProtection(const ProtectionOptions& options, std::string fileIdentifier);

  /// Has the library encrypt what it hands over from here on.
  void giveKeyTo(TESSEL::CTesselPage& source) const;

  /// The least version of PDF that knows the cipher.
  PdfVersion version() const;
  /// Body of the encryption dictionary, which itself is never encrypted.
  std::string dictionary() const;

  /// Data of a stream as the object `number` of generation 0 has it.
  std::string encrypted(int number, std::string_view data) const;
  /// Undoes encrypted.
  std::string decrypted(int number, std::string_view data) const;
  /// Whether streams may say that they aren't encrypted (ISO 32000-2, 7.6.6).
  bool hasCryptFilters() const;
  /// Whether metadata is to stay in the clear.
  bool leavesMetadata() const { return !info.encryptMetadata; }
  /// A dictionary, or another object without a stream, with its strings as the object `number` has them.
  std::string withStringsEncrypted(int number, std::string_view text) const;
  /// Undoes withStringsEncrypted; for texts that the library hands over for an object of the host's.
  std::string withStringsDecrypted(int number, std::string_view text) const;

 private:
  std::string keyOf(int number) const;

  pcrypt::EncryptInfo info;                         ///< with the key, and not yet all entries
  std::shared_future<pcrypt::EncryptInfo> entries;  ///< the same with all entries
  int keyRevision = 0;                              ///< as the library takes it
};

/// A file identifier that nothing can be told from, 16 bytes. Throws OutputError when the system gives none.
std::string randomIdentifier();

}  // namespace TesselHost
