#include "KelpCommon/kelp_md5.h"

#include <algorithm>

namespace KelpCommonNS {

MD5_CTX::MD5_CTX() { pcrypt::PDFEncryptionMD5().MD5Init(&context); }

void MD5_CTX::Update(const void* data, std::size_t length) {
  constexpr std::size_t most = std::size_t{1} << 30;  // of one call below, which counts in 32 bits
  // The call below takes its input unchanged, whatever its signature says.
  auto* bytes = static_cast<unsigned char*>(const_cast<void*>(data));
  for (std::size_t done = 0; done < length;) {
    const std::size_t part = std::min(length - done, most);
    pcrypt::PDFEncryptionMD5().MD5Update(&context, bytes + done, static_cast<unsigned int>(part));
    done += part;
  }
}

void MD5_CTX::Final(unsigned char (&digest)[digestSize]) {
  pcrypt::PDFEncryptionMD5().MD5Final(digest, &context);
}

}  // namespace KelpCommonNS
