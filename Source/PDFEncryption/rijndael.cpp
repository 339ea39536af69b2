#include "PDFEncryption/rijndael.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstdint>
#include <cstring>

#include "PDFEncryption/bytes.h"
#include "PDFEncryption/rijndael_blocks.h"
#include "PDFEncryption/rijndael_tables.h"

namespace pcrypt {
namespace {

using Byte = unsigned char;
constexpr int octetBits = 8;
constexpr int blockBits = 128;
constexpr int wordSize = 4;
constexpr int valid = 0;
constexpr int notValid = 1;
constexpr int lastMode = Rijndael::CFB1;
constexpr int lastDirection = Rijndael::Decrypt;
constexpr int lastKeyLength = Rijndael::Key32Bytes;

bool within(int value, int last) { return value >= 0 && value <= last; }

std::size_t count(int blocks) { return static_cast<std::size_t>(blocks); }

/// SubWord of the key expansion (FIPS 197, 5.2).
std::uint32_t substituted(std::uint32_t word) {
  return std::uint32_t{aes::S[word & 0xff]} | std::uint32_t{aes::S[word >> 8 & 0xff]} << 8 |
         std::uint32_t{aes::S[word >> 16 & 0xff]} << 16 | std::uint32_t{aes::S[word >> 24]} << 24;
}

/// InvMixColumns of one column (FIPS 197, 5.3.3).
void unmix(Byte* column) {
  bytes::storeBig32(column,
                    aes::U1[column[0]] ^ aes::U2[column[1]] ^ aes::U3[column[2]] ^ aes::U4[column[3]]);
}

/// Shifts 128 bits left by one and lets `bit` in at the end.
void shiftIn(Byte* reg, unsigned int bit) {
  for (std::size_t i = aes::blockSize; i-- > 0;) {
    const unsigned int out = reg[i] >> 7;
    reg[i] = static_cast<Byte>(static_cast<unsigned int>(reg[i]) << 1 | bit);
    bit = out;
  }
}

}  // namespace

Rijndael::Rijndael() : Rijndael(aes::bestPath()) {}

Rijndael::Rijndael(const aes::BlockPath& path) : path_(&path) {}

int Rijndael::init(Mode mode, Direction direction, const unsigned char* key, KeyLength keyLength,
                   const unsigned char* initVector) {
  state_ = notValid;
  if (!within(mode, lastMode)) return unsupportedMode;
  if (!within(direction, lastDirection)) return unsupportedDirection;
  mode_ = mode;
  direction_ = direction;
  if (initVector != nullptr) {
    std::copy_n(initVector, blockSize, initVector_);
  } else {
    std::fill_n(initVector_, blockSize, Byte{0});
  }
  std::copy_n(initVector_, blockSize, runningVector_);
  if (!within(keyLength, lastKeyLength)) return unsupportedKeyLength;
  if (key == nullptr) return badKey;
  rounds_ = 2 * keyLength + 10;
  keySched(key, 2 * keyLength + 4);
  if (direction == Decrypt) keyEncToDec();
  state_ = valid;
  return success;
}

int Rijndael::blockEncrypt(const unsigned char* input, int inputBits, unsigned char* output) {
  if (const int status = refusal(Encrypt, badDirection); status != success) return status;
  if (input == nullptr || inputBits <= 0) return 0;
  const int blocks = inputBits / blockBits;
  if (mode_ == CFB1) {
    feedBack(output, blocks, true);
  } else {
    Byte vector[blockSize];
    std::copy_n(initVector_, blockSize, vector);
    encrypt(input, output, blocks, vector);
  }
  return blockBits * blocks;
}

int Rijndael::blockDecrypt(const unsigned char* input, int inputBits, unsigned char* output) {
  const int wanted = mode_ == CFB1 ? direction_ : Decrypt;
  if (const int status = refusal(wanted, badDirection); status != success) return status;
  if (input == nullptr || inputBits <= 0) return 0;
  const int blocks = inputBits / blockBits;
  if (mode_ == CFB1) {
    feedBack(output, blocks, false);
  } else {
    Byte vector[blockSize];
    std::copy_n(initVector_, blockSize, vector);
    decrypt(input, output, blocks, vector);
  }
  return blockBits * blocks;
}

int Rijndael::padEncrypt(const unsigned char* input, int inputOctets, unsigned char* output) {
  if (const int status = refusal(Encrypt, notInitialized); status != success) return status;
  if (input == nullptr || inputOctets < 0 || inputOctets > INT_MAX - blockSize) return 0;
  if (!pads()) return unsupportedMode;
  const int whole = inputOctets / blockSize * blockSize;
  const int left = inputOctets - whole;
  // Filled before anything is written, since the output may lie over the input's end.
  Byte last[blockSize];
  std::fill_n(last, blockSize, static_cast<Byte>(blockSize - left));
  std::copy_n(input + whole, left, last);
  Byte vector[blockSize];
  std::copy_n(initVector_, blockSize, vector);
  encrypt(input, output, whole / blockSize, vector);
  encrypt(last, output + whole, 1, vector);
  return whole + blockSize;
}

int Rijndael::padDecrypt(const unsigned char* input, int inputOctets, unsigned char* output) {
  if (const int status = refusal(Decrypt, badDirection); status != success) return status;
  if (input == nullptr || inputOctets <= 0) return 0;
  if (inputOctets % blockSize != 0) return corruptedData;
  if (!pads()) return unsupportedMode;
  const int front = inputOctets - blockSize;
  Byte last[blockSize], vector[blockSize];
  std::copy_n(input + front, blockSize, last);
  std::copy_n(initVector_, blockSize, vector);
  decrypt(input, output, front / blockSize, vector);
  decrypt(last, last, 1, vector);
  const int left = unpad(last, output + front);
  return left < 0 ? left : front + left;
}

int Rijndael::pdfEncrypt(const unsigned char* input, int inputOctets, unsigned char* output) {
  if (const int status = refusal(Encrypt, badDirection); status != success) return status;
  if (input == nullptr || inputOctets <= 0) return 0;
  if (!chains()) return unsupportedMode;
  encrypt(input, output, inputOctets / blockSize, runningVector_);
  return inputOctets / blockSize * blockSize;
}

int Rijndael::pdfEncryptEnd(const unsigned char* input, int inputOctets, unsigned char* output) {
  if (const int status = refusal(Encrypt, badDirection); status != success) return status;
  if (input == nullptr || !within(inputOctets, blockSize)) return 0;
  if (!chains()) return unsupportedMode;
  Byte last[blockSize];
  std::fill_n(last, blockSize, static_cast<Byte>(blockSize - inputOctets));
  std::copy_n(input, inputOctets, last);
  encrypt(last, output, 1, runningVector_);
  return blockSize;
}

int Rijndael::pdfDecrypt(const unsigned char* input, int inputOctets, unsigned char* output) {
  if (const int status = refusal(Decrypt, badDirection); status != success) return status;
  if (input == nullptr || inputOctets <= 0) return 0;
  if (!chains()) return unsupportedMode;
  decrypt(input, output, inputOctets / blockSize, runningVector_);
  return inputOctets / blockSize * blockSize;
}

int Rijndael::pdfDecryptEnd(const unsigned char* input, int inputOctets, unsigned char* output) {
  if (const int status = refusal(Decrypt, badDirection); status != success) return status;
  if (input == nullptr || inputOctets <= 0) return 0;
  if (!chains()) return unsupportedMode;
  if (inputOctets != blockSize) return corruptedData;
  Byte last[blockSize];
  decrypt(input, last, 1, runningVector_);
  return unpad(last, output);
}

aes::ExpandedKey Rijndael::expandedKey() const { return {expandedKey_, rounds_}; }

int Rijndael::refusal(int direction, int whenWrong) const {
  if (state_ != valid) return notInitialized;
  return direction_ == direction ? success : whenWrong;
}

void Rijndael::keySched(const Byte* key, int keyWords) {
  Byte* const words = expandedKey_[0];
  std::copy_n(key, wordSize * keyWords, words);
  std::uint32_t word = bytes::loadLittle32(words + wordSize * (keyWords - 1));
  const int total = 4 * (rounds_ + 1);
  const Byte* roundConstant = aes::rcon.data();
  for (int i = keyWords, place = 0; i < total; ++i, place = (place + 1 == keyWords ? 0 : place + 1)) {
    if (place == 0) word = substituted(std::rotr(word, octetBits)) ^ *roundConstant++;
    if (place == 4 && keyWords > 6) word = substituted(word);
    word ^= bytes::loadLittle32(words + wordSize * (i - keyWords));
    bytes::storeLittle32(words + wordSize * i, word);
  }
}

void Rijndael::keyEncToDec() {
  for (int round = 1; round < rounds_; ++round) {
    for (int column = 0; column < blockSize; column += wordSize) unmix(expandedKey_[round] + column);
  }
}

void Rijndael::encrypt(const Byte* input, Byte* output, int blocks, Byte* vector) const {
  if (mode_ == CBC) {
    aes::Chain chain = {expandedKey(), vector, input, output, count(blocks)};
    path_->chainEncrypt({&chain, 1});
  } else {
    path_->encrypt(expandedKey(), input, output, count(blocks));
  }
}

void Rijndael::decrypt(const Byte* input, Byte* output, int blocks, Byte* vector) const {
  const aes::ExpandedKey key = expandedKey();
  if (mode_ == CBC) {
    path_->chainDecrypt(key, vector, input, output, count(blocks));
  } else {
    path_->decrypt(key, input, output, count(blocks));
  }
}

void Rijndael::feedBack(Byte* data, int blocks, bool encrypting) const {
  const aes::ExpandedKey key = expandedKey();
  Byte reg[blockSize], mask[blockSize];
  std::copy_n(initVector_, blockSize, reg);
  for (int bit = 0; bit < blockBits * blocks; ++bit) {
    Byte& byte = data[bit / octetBits];
    const int place = octetBits - 1 - bit % octetBits;
    path_->encrypt(key, reg, mask, 1);
    const unsigned int before = byte >> place & 1U;
    const unsigned int after = before ^ mask[0] >> 7;
    byte = static_cast<Byte>(byte ^ (before ^ after) << place);
    shiftIn(reg, encrypting ? after : before);
  }
}

/// Copies what stands in front of the padding of a plain block. @return its bytes, or `corruptedData`
int Rijndael::unpad(const Byte* block, Byte* output) const {
  const int padding = block[blockSize - 1];
  // ECB refuses a full block of padding and takes 0 for none; hosts rely on the difference.
  const bool known = mode_ == CBC ? padding >= 1 && padding <= blockSize : padding < blockSize;
  if (!known) return corruptedData;
  const Byte* const end = block + blockSize - padding;
  const bool uniform = std::all_of(end, block + blockSize, [padding](Byte b) { return b == padding; });
  if (!uniform) return corruptedData;
  std::copy(block, end, output);
  return blockSize - padding;
}

}  // namespace pcrypt
