#include "PDFEncryption/securitysteps.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "PDFEncryption/bytes.h"
#include "PDFEncryption/encryptionbase.h"
#include "PDFEncryption/hashes.h"
#include "PDFEncryption/rc4.h"
#include "PDFEncryption/rijndael.h"

namespace pcrypt::steps {
namespace {

constexpr std::size_t key256 = 32;

int sizeOf(const std::string& text) { return static_cast<int>(text.size()); }

using BlockOperation = int (Rijndael::*)(const unsigned char*, int, unsigned char*);

/// Runs a block operation over `data`; empty when there are more bits than the cipher counts.
std::string ciphered(Rijndael& cipher, BlockOperation operation, std::string data) {
  if (data.size() > INT_MAX / octetBits) return {};
  unsigned char* const bytes = bytes::of(data.data());
  const int bits = (cipher.*operation)(bytes, octetBits * sizeOf(data), bytes);
  data.resize(static_cast<std::size_t>(std::max(bits, 0) / octetBits));
  return data;
}

std::string ciphered256(Rijndael::Mode mode, Rijndael::Direction direction, const std::string& data,
                        std::string key) {
  key.resize(key256, '\0');
  Rijndael cipher;
  cipher.init(mode, direction, bytes::of(key.data()), Rijndael::Key32Bytes);
  const bool encrypts = direction == Rijndael::Encrypt;
  return ciphered(cipher, encrypts ? &Rijndael::blockEncrypt : &Rijndael::blockDecrypt, data);
}

}  // namespace

std::string part(const std::string& text, std::size_t from, std::size_t count) {
  return from < text.size() ? text.substr(from, count) : std::string();
}

bool startsEqual(const std::string& a, const std::string& b, std::size_t count) {
  return a.size() >= count && b.size() >= count &&
         std::equal(a.begin(), a.begin() + static_cast<int>(count), b.begin());
}

std::string padding() { return std::string(std::begin(ori_key), std::end(ori_key)); }

std::string md5(const std::string& data, int digestLength) {
  std::string digest;
  PDFEncryptionMD5().MD5(data, digest, digestLength);
  return digest;
}

std::string sha256(const std::string& data) {
  std::string text = data;
  _Sha256Calc context;
  Sha256Calc_reset(&context);
  Sha256Calc_calculate(&context, reinterpret_cast<signed char*>(text.data()), sizeOf(text));
  return std::string(std::begin(context.digest), std::end(context.digest));
}

std::string stretched(std::string digest, int revision, int keyLength) {
  if (revision < revision3) return digest;
  for (int i = 0; i < hashRounds; ++i) digest = md5(digest, keyBytes(keyLength));
  return digest;
}

std::string rc4(std::string data, const std::string& key) {
  PDFEncryptionRC4().RC4(data, sizeOf(data), key);
  return data;
}

std::string rc4Passes(std::string data, const std::string& key, int from, int to) {
  const int step = from <= to ? 1 : -1;
  for (int pass = from; pass != to + step; pass += step) {
    std::string passKey = key;
    for (char& c : passKey) c = static_cast<char>(c ^ pass);
    data = rc4(std::move(data), passKey);
  }
  return data;
}

std::string identifierHash(const std::string& identifier) { return md5(padding() + identifier); }

std::string chainEncrypt256(const std::string& data, const std::string& key) {
  return ciphered256(Rijndael::CBC, Rijndael::Encrypt, data, key);
}

std::string chainDecrypt256(const std::string& data, const std::string& key) {
  return ciphered256(Rijndael::CBC, Rijndael::Decrypt, data, key);
}

std::string blockEncrypt256(const std::string& data, const std::string& key) {
  return ciphered256(Rijndael::ECB, Rijndael::Encrypt, data, key);
}

std::string blockDecrypt256(const std::string& data, const std::string& key) {
  return ciphered256(Rijndael::ECB, Rijndael::Decrypt, data, key);
}

}  // namespace pcrypt::steps
