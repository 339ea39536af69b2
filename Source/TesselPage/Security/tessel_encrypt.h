#pragma once

#include <string>

#include "TesselPage/Structure/tessel_sobj.h"

namespace TESSEL {

/// State of the security handler of one file. No handler is built yet: a record is never active.
class CEncrypt {
 public:
  SObj id;              ///< the /Encrypt reference; number 0 in a file without one
  int accessState = 0;  ///< 0 no key in use
  int keyBits = 0;      ///< Length
  int revision = 0;     ///< R
  static constexpr std::size_t passwordBytes = 32;

  /// Keeps the first 32 bytes.
  void setPassword(const std::string& given) { password = given.substr(0, passwordBytes); }

  std::string password;

  bool activeForReading() const { return false; }
  bool activeForWriting() const { return false; }
};

}  // namespace TESSEL
