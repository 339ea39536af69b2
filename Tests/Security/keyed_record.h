#pragma once

#include <string>

#include "TesselPage/Security/tessel_encrypt.h"

/// Encryption records as if their key had been found, or handed in by a host.
namespace tessel_test {

inline const std::string key128 = "0123456789abcdef";
inline const std::string key256 = "0123456789abcdef0123456789ABCDEF";

inline TESSEL::CEncrypt recordOf(const std::string& key, int version, int method) {
  TESSEL::CEncrypt record;
  record.fileKey.put(key);
  record.keyLength = static_cast<int>(key.size()) * 8;
  record.V = version;
  record.R = 4;
  record.method = method;
  record.accessState = TESSEL::CEncrypt::keyFromHost;
  record.keySearched = true;
  return record;
}

}  // namespace tessel_test
