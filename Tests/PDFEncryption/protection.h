#pragma once

#include <string>

#include "PDFEncryption/encryptionmanager.h"

/// The state that a host makes for a file of its own: dictionary entries, and the file key.
inline pcrypt::EncryptInfo protect(int revision, int keyLength, const std::string& user,
                                   const std::string& owner,
                                   const std::string& identifier = "identifier-of-16") {
  constexpr int versions[] = {1, 2, 4, 5, 5};  // of revisions 2 to 6
  pcrypt::EncryptOption option;
  option.userPassword = user;
  option.ownerPassword = owner;
  option.permissions = -1340;
  option.keyLength = keyLength;
  pcrypt::EncryptInfo info;
  info.R = revision;
  info.V = versions[revision - 2];
  info.method = revision < 4   ? pcrypt::Method::rc4
                : revision < 5 ? pcrypt::Method::aesV2
                               : pcrypt::Method::aesV3;
  info.keyLength = keyLength;
  info.permissions = option.permissions;
  info.fileIdentifier = identifier;
  const pcrypt::PDFEncryptionManager manager;
  if (revision < 5) manager.calculateOKey(option, info);
  manager.createKey(info, user);
  manager.calculateUKey(option, info);
  if (revision >= 5) manager.calculateOKey(option, info);
  manager.calculatePerms(option, info);
  return info;
}

/// The same as a reader finds it in the file: without the key.
inline pcrypt::EncryptInfo stored(pcrypt::EncryptInfo info) {
  info.fileKey.clear();
  return info;
}
