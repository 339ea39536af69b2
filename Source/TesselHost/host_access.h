#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "TesselHost/host_permissions.h"
#include "TesselPage/tessel_page.h"

namespace TesselHost {

/// How the opening of a source went.
struct Opening {
  int result = 0;      ///< TESSEL::Result
  std::string reason;  ///< of a result other than 0, in words
};

/// The passwords at hand for a source, in the order in which they are tried. None is as good as an empty one.
using Passwords = std::vector<std::string>;

/// What a reader is to be made with that openReader then opens.
std::string firstOf(const Passwords& passwords);

/// Opens a source: the reader's init, with the operating system's random source in use from then on, and each
/// password in each form that a file may have been made with. The first that is the owner's is the one that
/// the reader then keeps, else the first that opens the source. Passwords that aren't needed are ignored. A
/// source that no password at hand opens is one that isn't open.
/// @param reader  made with the first of the passwords
Opening openReader(TESSEL::CTesselPage& reader, const Passwords& passwords);

/// The same for a source given by path. Where it isn't readable the reason tells what is known of the file.
Opening openFile(TESSEL::CTesselPage& reader, const std::string& path, const Passwords& passwords);

/// Who has opened a source, and what that allows.
class Access {
 public:
  /// Requires: openReader gave success.
  explicit Access(const TESSEL::CTesselPage& reader);

  bool encrypted() const { return security.encrypted; }
  int revision() const { return security.revision; }
  /// Such as "AES-256".
  std::string method() const;
  bool metadataEncrypted() const { return security.encryptMetadata; }
  /// What opened the source: "no password", "the user password", "the owner password" or "the password of
  /// user and owner".
  std::string_view opener() const;
  /// One word for the same: "none", "user", "owner" or "both".
  std::string_view openerWord() const;
  /// What the source allows to whoever hasn't its owner password.
  Permissions permissions() const { return Permissions(security.permissions); }
  /// Whether its pages may be placed: the owner opened it, or its permissions allow it.
  bool mayPlace() const;

 private:
  bool byOwner() const;

  TESSEL::SSourceSecurity security;
  int passwordState = 0;
};

}  // namespace TesselHost
