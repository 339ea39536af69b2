#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "PDFEncryption/encryptinfo.h"
#include "TesselPage/Structure/tessel_sobj.h"

namespace TESSEL {

class CEncrypt;

// The bridge from objects to the security library: what every encrypted document passes through. The callers
// decide whether a string or stream is encrypted at all.

/// Fills a fresh info from the record. Passwords and access flags aren't carried.
void saveEncryptInfo(const CEncrypt& encrypt, pcrypt::EncryptInfo& info);

/// Takes the same fields back, with as many bytes as the info's strings have.
void resaveEncryptInfo(const pcrypt::EncryptInfo& info, CEncrypt& encrypt);

/// Decrypts a string or a stream of `object` in place (ISO 32000-2, 7.6.3), with the cipher of the record's
/// method. Data that is no AES data, or has bad padding, stays as it is. Always 0.
int DecryptString(const CEncrypt& encrypt, const SObj* object, std::string& data);

/// Encrypts a string or a stream of `object` in place. The version chooses the cipher: RC4 below 4, else AES;
/// the method only tells how the object's key is made. Always 0.
int encryptString(const CEncrypt& encrypt, const SObj* object, std::string& data);

/// Bytes that encryptString makes of `size` bytes.
std::size_t encryptedSize(const CEncrypt& encrypt, std::size_t size);

/// Appends to `out` what encryptString makes of `plain`, with no further copy.
void appendEncrypted(const CEncrypt& encrypt, const SObj& object, std::string_view plain, std::string& out);

/// Encrypts `data` in place with AES in CBC mode: 16 bytes of initial vector, then the data padded to whole
/// blocks (ISO 32000-2, 7.6.3.1).
/// @param key  32 bytes when `v` is 5, else 16
/// @return 0
int encryptAES(std::string& data, const unsigned char* key, int v);

}  // namespace TESSEL
