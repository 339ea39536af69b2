#pragma once

#include <cstdint>
#include <string>

namespace pcrypt {

/// MD5 (RFC 1321). Has no data of its own, so one object may serve any number of messages and threads.
class PDFEncryptionMD5 {
 public:
  /// A message under way. Belongs to its caller.
  struct MD5_CTX {
    std::uint32_t state[4];    ///< A, B, C, D
    std::uint32_t count[2];    ///< bits so far, low word first
    unsigned char buffer[64];  ///< the block that is not full yet
  };

  /// Digest of a whole message of at most 65535 bytes; the caller's conversion cuts a longer one.
  ///
  /// @param[out] digest  gets the first `digestLength` bytes of the digest, at most 16; none when it is below
  /// 1
  void MD5(unsigned char* data, unsigned short length, unsigned char* digest, int digestLength);

  /// Digest of a whole message; its length counts modulo 2^32.
  ///
  /// @param[out] digest  replaced by the first `digestLength` bytes of the digest, at most 16; may be `data`
  void MD5(const std::string& data, std::string& digest, int digestLength);

  /// Begins a message.
  void MD5Init(MD5_CTX* context);

  /// Adds `length` bytes to the message.
  void MD5Update(MD5_CTX* context, unsigned char* input, unsigned int length);

  /// Ends the message: writes the 16 bytes of its digest and clears the context.
  void MD5Final(unsigned char* digest, MD5_CTX* context);

  /// Works one block of 64 bytes into the four words of the state.
  void MD5Transform(std::uint32_t* state, unsigned char* block);

  /// Words to bytes, low byte first. `length` counts bytes and is a multiple of 4.
  void Encode(unsigned char* output, std::uint32_t* input, unsigned int length);

  /// Bytes to words, low byte first. `length` counts bytes and is a multiple of 4.
  void Decode(std::uint32_t* output, unsigned char* input, unsigned int length);

  /// Copies `length` bytes.
  void MD5_memcpy(unsigned char* output, unsigned char* input, unsigned int length);

  /// Sets `length` bytes to `value`.
  void MD5_memset(unsigned char* output, int value, unsigned int length);
};

/// A SHA-256 message under way (FIPS 180-4, 6.2). Each 32-bit word has a 64-bit slot. Belongs to its caller.
struct _Sha256Calc {
  signed char digest[32];   ///< digest of all that was given so far
  long hash[8];             ///< running state
  long block[16];           ///< words of the block that is not full yet; bytes not given yet are 0
  long schedule[64];        ///< room of the message schedule; kept for the layout
  std::uint32_t countLow;   ///< bytes so far, low 32 bits
  std::uint32_t countHigh;  ///< bytes so far, the 29 bits above
  int position;             ///< bytes in `block`
};

/// Clears the context and sets the initial hash. @return 0
int Sha256Calc_init(_Sha256Calc* context);

/// The same as `Sha256Calc_init`. @return 0
int Sha256Calc_reset(_Sha256Calc* context);

/// Does nothing. @return 0
int Sha256Calc_uninit(_Sha256Calc* context);

/// Adds data to the message and leaves the digest of the whole message so far in `context->digest`. Padding
/// is worked on a copy, so the message may go on.
///
/// @param length  bytes; 0 or below adds nothing
/// @return 0, or 1 with nothing done when the message would pass 2^61 - 1 bytes
int Sha256Calc_calculate(_Sha256Calc* context, signed char* data, int length);

/// Works one block into the running state.
///
/// @param[in,out] hash      eight words
/// @param[in,out] schedule  64 words, of which the first 16 are the block; the others are computed here
/// @return 0
int Sha256Calc_calcBlock(long* hash, long* schedule);

/// A SHA-384 or SHA-512 message under way (FIPS 180-4, 6.4 and 6.5). Belongs to its caller.
struct SHA512_CTX {
  std::uint64_t count[2];     ///< bytes so far, low half first
  std::uint64_t state[8];     ///< running state
  unsigned char buffer[128];  ///< the block that is not full yet
  int fill;                   ///< bytes in `buffer`
};
using SHA384_CTX = SHA512_CTX;

/// Begins a message. Must stand before each one.
void SHA384Init(SHA384_CTX* context);

/// Adds `length` bytes to the message; 0 or below adds nothing.
void SHA384Update(SHA384_CTX* context, const unsigned char* data, int length);

/// Ends the message: writes the 48 bytes of its digest.
void SHA384Final(SHA384_CTX* context, unsigned char* digest);

/// Begins a message. Must stand before each one.
void SHA512Init(SHA512_CTX* context);

/// Adds `length` bytes to the message; 0 or below adds nothing.
void SHA512Update(SHA512_CTX* context, const unsigned char* data, int length);

/// Ends the message: writes the 64 bytes of its digest.
void SHA512Final(SHA512_CTX* context, unsigned char* digest);

}  // namespace pcrypt
