#include "TesselHost/host_access.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
#include <vector>

#include "PDFEncryption/decryptionmanager.h"
#include "PDFEncryption/encryptinfo.h"
#include "PDFEncryption/encryptionmanager.h"
#include "TesselHost/host_error.h"
#include "TesselHost/host_text.h"

namespace TesselHost {

namespace {

using pcrypt::PDFDecryptionManager;
using TESSEL::CTesselPage;
namespace Result = TESSEL::Result;

constexpr std::size_t longestShortPassword = 32;

/// What to try when the first 32 bytes, as they are, didn't do.
std::vector<std::string> furtherForms(const std::string& password) {
  std::vector<std::string> forms;
  if (password.size() > longestShortPassword) forms.push_back(password);
  // Up to revision 4 a character is a byte (ISO 32000-2, 7.6.4.3.2, Algorithm 2, step a).
  if (auto bytes = pdfDocEncoded(password); bytes && *bytes != password) forms.push_back(std::move(*bytes));
  return forms;
}

bool isSettled(int passwordState) {
  return passwordState != PDFDecryptionManager::neither && passwordState != Result::passwordNotTried;
}

/// Opens the source anew.
int reopen(CTesselPage& reader, const std::string& password) {
  try {
    reader.SetSourceLongPassword(password);
    return Result::success;
  } catch (int result) {
    return result;
  } catch (const std::exception&) {
    return Result::exceptionCaught;
  }
}

/// An encryption that the library passes over, and whose strings and streams it would hand out as they are.
bool isUnknown(const CTesselPage& reader) {
  const TESSEL::SSourceSecurity security = reader.getSourceSecurity();
  return security.encrypted &&
         (security.revision > 0 || reader.getEncryptString().find("<<") != std::string::npos);
}

}  // namespace

Opening openReader(CTesselPage& reader, const std::string& password) {
  pcrypt::PDFEncryptionManager::useSystemRandom();
  reader.heedIdentityFilters();
  int result = reader.init();
  int state = reader.getPasswordState();
  for (const std::string& form : furtherForms(password)) {
    if (isSettled(state)) break;
    result = reopen(reader, form);
    state = reader.getPasswordState();
  }
  if (state == PDFDecryptionManager::neither)
    return {Result::wrongPassword, password.empty() ? "it needs a password" : "the password doesn't open it"};
  if (state == Result::passwordNotTried) return {state, "its encryption takes no password"};
  if (state == Result::notProtected && isUnknown(reader))
    return {Result::passwordNotTried, "its encryption isn't known"};
  return {result, result == Result::success ? std::string() : reasonOf(result)};
}

namespace {

/// Why a file holds no PDF, as far as the file system tells; empty when it tells nothing.
std::string troubleWith(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || access(path.c_str(), R_OK) != 0) return std::strerror(errno);
  if (S_ISDIR(status.st_mode)) return "a directory, not a PDF";
  return S_ISREG(status.st_mode) && status.st_size == 0 ? "the file is empty" : "";
}

}  // namespace

Opening openFile(CTesselPage& reader, const std::string& path, const std::string& password) {
  Opening opening = openReader(reader, password);
  if (opening.result != Result::notReadable) return opening;
  if (std::string trouble = troubleWith(path); !trouble.empty()) opening.reason = std::move(trouble);
  return opening;
}

Access::Access(const CTesselPage& reader)
    : security(reader.getSourceSecurity()), passwordState(reader.getPasswordState()) {}

std::string Access::method() const {
  switch (security.method) {
    case pcrypt::Method::aesV2:
      return "AES-128";
    case pcrypt::Method::aesV3:
      return "AES-256";
    default:
      return fmt::format("RC4-{}", security.keyLength);
  }
}

namespace {

struct Opener {
  int passwordState;
  std::string_view word;
  std::string_view words;
};

constexpr std::array openers = {
    Opener{PDFDecryptionManager::emptyAndOwner, "owner", "the owner password"},
    Opener{PDFDecryptionManager::ownerOnly, "owner", "the owner password"},
    Opener{PDFDecryptionManager::userOnly, "user", "the user password"},
    Opener{PDFDecryptionManager::userAndOwner, "both", "the password of user and owner"},
};
constexpr Opener noOpener{PDFDecryptionManager::emptyNotOwner, "none", "no password"};

const Opener& openerOf(int passwordState) {
  const auto* found = std::find_if(openers.begin(), openers.end(), [passwordState](const Opener& row) {
    return row.passwordState == passwordState;
  });
  return found == openers.end() ? noOpener : *found;
}

}  // namespace

std::string_view Access::opener() const { return openerOf(passwordState).words; }

std::string_view Access::openerWord() const { return openerOf(passwordState).word; }

bool Access::byOwner() const { return openerWord() == "owner" || openerWord() == "both"; }

bool Access::mayPlace() const {
  return !encrypted() || byOwner() || permissions().allowPlacing(security.revision);
}

}  // namespace TesselHost
