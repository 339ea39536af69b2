#include "TesselHost/host_access.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>

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

/// What to try of a password.
/// @param begun  its first 32 bytes, as they are, have been tried
std::vector<std::string> formsOf(const std::string& password, bool begun) {
  std::vector<std::string> forms;
  if (!begun || password.size() > longestShortPassword) forms.push_back(password);
  for (const std::string& text : {password, saslPrepared(password).value_or(password)}) {
    // Up to revision 4 a character is a byte (ISO 32000-2, 7.6.4.3.2, Algorithm 2, step a).
    for (const std::string& form : {text, pdfDocEncoded(text).value_or(text)}) {
      if (form == password || std::find(forms.begin(), forms.end(), form) != forms.end()) continue;
      forms.push_back(form);
    }
  }
  return forms;
}

/// How far a password leads, each value further than the one before.
enum class Reach { untried, closed, open, whole };

Reach reachOf(int passwordState) {
  switch (passwordState) {
    case Result::passwordNotTried:
      return Reach::untried;
    case PDFDecryptionManager::neither:
      return Reach::closed;
    case PDFDecryptionManager::emptyAndOwner:
    case PDFDecryptionManager::ownerOnly:
    case PDFDecryptionManager::userAndOwner:
      return Reach::whole;
    default:
      return Reach::open;
  }
}

/// What leads further than the first password as it is, which the source was opened with.
/// @param state  where that one has led
std::optional<std::string> betterForm(const CTesselPage& reader, int state, const Passwords& passwords) {
  std::optional<std::string> best;
  Reach reached = reachOf(state);
  bool begun = true;
  for (const std::string& password : passwords) {
    Reach reach = begun ? reached : Reach::untried;
    for (const std::string& form : formsOf(password, begun)) {
      if (reached == Reach::whole) return best;
      if (reach >= Reach::open) break;
      reach = reachOf(reader.getPasswordState(form));
      if (reach <= reached) continue;
      best = form;
      reached = reach;
    }
    begun = false;
  }
  return best;
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

std::string reasonToStayClosed(const Passwords& passwords) {
  if (passwords.size() > 1) return "none of the passwords opens it";
  return firstOf(passwords).empty() ? "it needs a password" : "the password doesn't open it";
}

}  // namespace

std::string firstOf(const Passwords& passwords) {
  return passwords.empty() ? std::string() : passwords.front();
}

Opening openReader(CTesselPage& reader, const Passwords& passwords) {
  pcrypt::PDFEncryptionManager::useSystemRandom();
  reader.heedIdentityFilters();
  int result = reader.init();
  int state = reader.getPasswordState();
  if (const auto better = betterForm(reader, state, passwords)) {
    result = reopen(reader, *better);
    state = reader.getPasswordState();
  }
  if (state == PDFDecryptionManager::neither) return {Result::wrongPassword, reasonToStayClosed(passwords)};
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

Opening openFile(CTesselPage& reader, const std::string& path, const Passwords& passwords) {
  Opening opening = openReader(reader, passwords);
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

bool Access::byOwner() const { return reachOf(passwordState) == Reach::whole; }

bool Access::mayPlace() const {
  return !encrypted() || byOwner() || permissions().allowPlacing(security.revision);
}

}  // namespace TesselHost
