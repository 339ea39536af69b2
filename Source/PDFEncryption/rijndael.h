#pragma once

namespace pcrypt {

namespace aes {
class BlockPath;
struct ExpandedKey;
}  // namespace aes

/// AES (FIPS 197) with the block modes and the padding that PDF needs. Blocks have 128 bits.
///
/// Every operation gives a count or one of the negative statuses, and 0 with nothing written for a null input
/// or a negative length, as for a length of 0 where the operation has no padding to write. Output may be the
/// input's own memory, or begin in front of it. An object belongs to one thread at a time.
class Rijndael {
 public:
  enum Mode : int {
    ECB = 0,
    CBC = 1,
    CFB1 = 2,  ///< cipher feedback of one bit; wants direction `Encrypt` in both ways
  };
  enum Direction : int { Encrypt = 0, Decrypt = 1 };
  enum KeyLength : int { Key16Bytes = 0, Key24Bytes = 1, Key32Bytes = 2 };

  static constexpr int success = 0;
  static constexpr int unsupportedMode = -1;       ///< unknown mode, or one that the operation doesn't have
  static constexpr int unsupportedDirection = -2;  ///< of `init`
  static constexpr int unsupportedKeyLength = -3;  ///< of `init`
  static constexpr int badKey = -4;                ///< of `init`: no key
  static constexpr int notInitialized = -5;  ///< no good `init` yet; `padEncrypt`: also the wrong direction
  static constexpr int badDirection = -6;    ///< the object was set up for the other direction
  static constexpr int corruptedData = -7;   ///< bad padding, or a length that is no multiple of 16

  /// Not initialised. Takes the processor's AES instructions where it has them.
  Rijndael();

  /// Not initialised. Works its blocks by `path`, which must live as long as the object.
  explicit Rijndael(const aes::BlockPath& path);

  /// Sets key, mode and direction.
  ///
  /// @param key         16, 24 or 32 bytes, as `keyLength` says; copied
  /// @param initVector  16 bytes, copied; null stands for zeros
  /// @return 0, or a status; the object is not initialised then
  int init(Mode mode, Direction direction, const unsigned char* key, KeyLength keyLength,
           const unsigned char* initVector = nullptr);

  /// Encrypts whole blocks. Each call begins at the initial vector. In mode CFB1 the data is worked in place
  /// on `output`, which must hold it already.
  ///
  /// @return bits done: `inputBits` rounded down to a multiple of 128
  int blockEncrypt(const unsigned char* input, int inputBits, unsigned char* output);

  /// Reverses `blockEncrypt`. @return as there
  int blockDecrypt(const unsigned char* input, int inputBits, unsigned char* output);

  /// Encrypts a whole message and its padding of 1 to 16 bytes, modes ECB and CBC.
  ///
  /// @param inputOctets  0 gives a block of padding alone
  /// @return bytes written: 16 times (`inputOctets` / 16 + 1)
  int padEncrypt(const unsigned char* input, int inputOctets, unsigned char* output);

  /// Reverses `padEncrypt`. ECB refuses a whole block of padding, and takes a last byte of 0 for none.
  ///
  /// @return bytes of plain data; `corruptedData` for bad padding, with all blocks but the last written
  int padDecrypt(const unsigned char* input, int inputOctets, unsigned char* output);

  /// Encrypts the whole blocks of a piece, CBC only. What stands behind them is to be given again.
  ///
  /// @return bytes done: `inputOctets` rounded down to a multiple of 16
  int pdfEncrypt(const unsigned char* input, int inputOctets, unsigned char* output);

  /// Encrypts the last 0 to 15 bytes of a message with their padding, CBC only. A piece of 16 bytes gets
  /// none.
  ///
  /// @return 16; 0 for any other length
  int pdfEncryptEnd(const unsigned char* input, int inputOctets, unsigned char* output);

  /// Decrypts the whole blocks of a piece, CBC only. @return as `pdfEncrypt`
  int pdfDecrypt(const unsigned char* input, int inputOctets, unsigned char* output);

  /// Decrypts the last block of a message, CBC only.
  ///
  /// @return bytes of plain data, 0 to 15; `corruptedData` for bad padding or a length other than 16
  int pdfDecryptEnd(const unsigned char* input, int inputOctets, unsigned char* output);

  /// The key of a good `init`, as the paths of blocks take it. Lives as long as the object, up to the next
  /// `init`.
  aes::ExpandedKey expandedKey() const;

 private:
  using Byte = unsigned char;
  static constexpr int blockSize = 16;
  static constexpr int maxRounds = 14;

  int refusal(int direction, int whenWrong) const;
  bool chains() const { return mode_ == CBC; }
  bool pads() const { return mode_ == ECB || mode_ == CBC; }
  void keySched(const Byte* key, int keyWords);
  void keyEncToDec();
  void encrypt(const Byte* input, Byte* output, int blocks, Byte* vector) const;
  void decrypt(const Byte* input, Byte* output, int blocks, Byte* vector) const;
  void feedBack(Byte* data, int blocks, bool encrypting) const;
  int unpad(const Byte* block, Byte* output) const;

  int state_ = 1;  ///< 1 not initialised, 0 valid
  int mode_ = ECB;
  int direction_ = Encrypt;
  Byte initVector_[blockSize] = {};
  Byte runningVector_[blockSize] = {};  ///< of the operations that take a message in pieces
  int rounds_ = 0;
  alignas(16) Byte expandedKey_[maxRounds + 1][blockSize] = {};
  const aes::BlockPath* path_;
};

}  // namespace pcrypt
