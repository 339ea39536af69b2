#pragma once

#include <string>

namespace pcrypt {

/// RC4. The `RC4` operations are stateless: each begins a key stream of its own. The other ones keep the
/// place in the key stream, in the object or in an `RC4_KEY`, so that a message can be given in pieces; an
/// object with a key belongs to one thread at a time. Encryption and decryption are the same.
///
/// A key counts with its first 256 bytes. A key length below 1 is no error: the state stays the identity.
/// A data length of 0 or below does nothing.
class PDFEncryptionRC4 {
 public:
  /// Where a key stream stands.
  struct RC4_KEY {
    unsigned char S[256];
    unsigned char x;
    unsigned char y;
  };

  /// No key set.
  PDFEncryptionRC4() = default;

  /// Sets a key, as `SetEncryptionKey` does.
  PDFEncryptionRC4(unsigned char* key, int keyLength);

  virtual ~PDFEncryptionRC4() = default;

  /// Encrypts `length` bytes in place under a key stream that begins here.
  void RC4(unsigned char* data, int length, unsigned char* key, int keyLength);

  /// The same on a string, which leaves with `length` bytes: cut, or filled up with zero bytes before it is
  /// encrypted.
  void RC4(std::string& data, int length, const std::string& key);

  /// Sets the object's key and begins its key stream.
  void SetEncryptionKey(unsigned char* key, int keyLength);

  /// Encrypts `length` bytes in place and goes on in the object's key stream.
  ///
  /// @return 1, or 0 with nothing done when no key is set
  int newRC4(unsigned char* data, int length);

  /// Begins the key stream of `key` in `state`.
  void PrepareKey(unsigned char* key, int keyLength, RC4_KEY* state);

  /// Encrypts `length` bytes in place and goes on in the key stream of `state`.
  void RC4Imp(unsigned char* data, int length, RC4_KEY* state);

 private:
  bool keySet_ = false;
  RC4_KEY key_ = {};
};

}  // namespace pcrypt
