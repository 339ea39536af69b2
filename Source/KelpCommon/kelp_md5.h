#pragma once

#include <cstddef>

#include "PDFEncryption/hashes.h"

namespace KelpCommonNS {

/// An MD5 digest (RFC 1321) under way.
class MD5_CTX {
 public:
  static constexpr std::size_t digestSize = 16;

  /// Begins a message.
  MD5_CTX();

  /// Adds bytes to the message.
  void Update(const void* data, std::size_t length);

  /// Ends the message and writes its digest; another one needs another object.
  void Final(unsigned char (&digest)[digestSize]);

 private:
  pcrypt::PDFEncryptionMD5::MD5_CTX context;
};

}  // namespace KelpCommonNS
