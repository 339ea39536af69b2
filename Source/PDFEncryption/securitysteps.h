#pragma once

#include <cstddef>
#include <string>

#include "PDFEncryption/encryptinfo.h"

/// The steps that the algorithms of the standard security handler are made of, on strings of raw bytes. A
/// string that is shorter than a step wants yields what it has, never a read behind it.
namespace pcrypt::steps {

inline constexpr int octetBits = 8;
inline constexpr int hashRounds = 50;  ///< further MD5 rounds from revision 3 on
inline constexpr int lastPass = 19;    ///< the last RC4 pass from revision 3 on; the first is 0
inline constexpr int md5Size = 16;
inline constexpr int aes256KeyLength = 256;

// Parts of /O and /U of revisions 5 and 6: a hash and two salts.
inline constexpr std::size_t hashSize = 32;
inline constexpr std::size_t saltSize = 8;
inline constexpr std::size_t validationSalt = hashSize;
inline constexpr std::size_t keySalt = hashSize + saltSize;
inline constexpr std::size_t entrySize = hashSize + 2 * saltSize;

// The first revisions that do something.
inline constexpr int revision3 = 3;
inline constexpr int revision5 = 5;
inline constexpr int revision6 = 6;

/// Bytes of a key.
inline int keyBytes(int keyLength) { return keyLength / octetBits; }

/// `count` bytes of `text` from `from` on, as far as there are any.
std::string part(const std::string& text, std::size_t from, std::size_t count);

/// Whether both texts have `count` bytes and these are equal.
bool startsEqual(const std::string& a, const std::string& b, std::size_t count);

/// `ori_key` as a string.
std::string padding();

std::string md5(const std::string& data, int digestLength = md5Size);
std::string sha256(const std::string& data);

/// 50 rounds of MD5 from revision 3 on, each over the first `keyLength` / 8 bytes of the one before.
std::string stretched(std::string digest, int revision, int keyLength);

/// RC4 of all of `data`.
std::string rc4(std::string data, const std::string& key);

/// RC4 passes over `data` with the bytes of `key` XORed by `from` and so on to `to`, up or down.
std::string rc4Passes(std::string data, const std::string& key, int from, int to);

/// MD5 of `ori_key` and `identifier`, which the check of revisions 3 and 4 begins with.
std::string identifierHash(const std::string& identifier);

// AES-256 without padding over the whole blocks of `data`, vector 0 where there is one. A shorter key is
// filled up with zero bytes.
std::string chainEncrypt256(const std::string& data, const std::string& key);
std::string chainDecrypt256(const std::string& data, const std::string& key);
std::string blockEncrypt256(const std::string& data, const std::string& key);
std::string blockDecrypt256(const std::string& data, const std::string& key);

}  // namespace pcrypt::steps
