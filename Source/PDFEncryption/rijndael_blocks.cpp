#include "PDFEncryption/rijndael_blocks.h"

#include <cstdint>
#include <cstring>

#include "PDFEncryption/bytes.h"
#include "PDFEncryption/rijndael_tables.h"

namespace pcrypt::aes {
namespace {

using Word = std::uint32_t;
constexpr int columns = 4;

/// The four words of a state, or of a vector that is added to one.
struct Block {
  Word column[columns];
};

Block load(const unsigned char* p) {
  Block b;
  for (int i = 0; i < columns; ++i) b.column[i] = bytes::loadBig32(p + 4 * i);
  return b;
}

void store(const Block& b, unsigned char* p) {
  for (int i = 0; i < columns; ++i) bytes::storeBig32(p + 4 * i, b.column[i]);
}

Block operator^(const Block& a, const Block& b) {
  return {{a.column[0] ^ b.column[0], a.column[1] ^ b.column[1], a.column[2] ^ b.column[2],
           a.column[3] ^ b.column[3]}};
}

/// What the two directions differ in: their tables, and the way that the rows shift.
struct Forwards {
  static constexpr int shift = 1;
  static constexpr const Words256 &t1 = T1, &t2 = T2, &t3 = T3, &t4 = T4;
  static constexpr const Bytes256& substitution = S;
  static int keyOf(int round, int) { return round; }
};

struct Backwards {
  static constexpr int shift = 3;
  static constexpr const Words256 &t1 = T5, &t2 = T6, &t3 = T7, &t4 = T8;
  static constexpr const Bytes256& substitution = S5;
  static int keyOf(int round, int rounds) { return rounds - round; }
};

/// Byte `row` of the column that the shifted row takes into column `i`.
template <class Way>
inline unsigned int byteAt(const Block& s, int i, int row) {
  return s.column[(i + Way::shift * row) % columns] >> (24 - 8 * row) & 0xff;
}

template <class Way>
inline Block mixed(const Block& s) {
  Block r;
#pragma GCC unroll 4
  for (int i = 0; i < columns; ++i) {
    r.column[i] = Way::t1[byteAt<Way>(s, i, 0)] ^ Way::t2[byteAt<Way>(s, i, 1)] ^
                  Way::t3[byteAt<Way>(s, i, 2)] ^ Way::t4[byteAt<Way>(s, i, 3)];
  }
  return r;
}

template <class Way>
Block substituted(const Block& s) {
  Block r = {};
#pragma GCC unroll 4
  for (int i = 0; i < columns; ++i) {
#pragma GCC unroll 4
    for (int row = 0; row < 4; ++row) {
      r.column[i] = r.column[i] << 8 | Way::substitution[byteAt<Way>(s, i, row)];
    }
  }
  return r;
}

template <class Way>
Block ciphered(const ExpandedKey& key, Block s) {
  s = s ^ load(key.roundKeys[Way::keyOf(0, key.rounds)]);
  for (int round = 1; round < key.rounds; ++round) {
    s = mixed<Way>(s) ^ load(key.roundKeys[Way::keyOf(round, key.rounds)]);
  }
  return substituted<Way>(s) ^ load(key.roundKeys[Way::keyOf(key.rounds, key.rounds)]);
}

class TablePath final : public BlockPath {
 public:
  void encrypt(const ExpandedKey& key, const unsigned char* input, unsigned char* output,
               std::size_t blocks) const override {
    for (std::size_t i = 0; i < blocks * blockSize; i += blockSize) {
      store(ciphered<Forwards>(key, load(input + i)), output + i);
    }
  }

  void decrypt(const ExpandedKey& key, const unsigned char* input, unsigned char* output,
               std::size_t blocks) const override {
    for (std::size_t i = 0; i < blocks * blockSize; i += blockSize) {
      store(ciphered<Backwards>(key, load(input + i)), output + i);
    }
  }

  void chainEncrypt(std::span<Chain> chains) const override {
    // Copies, which the bytes of output can't be part of.
    for (const Chain chain : chains) {
      Block before = load(chain.vector);
      for (std::size_t i = 0; i < chain.blocks * blockSize; i += blockSize) {
        before = ciphered<Forwards>(chain.key, before ^ load(chain.input + i));
        store(before, chain.output + i);
      }
      store(before, chain.vector);
    }
  }

  void chainDecrypt(const ExpandedKey& key, unsigned char* vector, const unsigned char* input,
                    unsigned char* output, std::size_t blocks) const override {
    Block before = load(vector);
    for (std::size_t i = 0; i < blocks * blockSize; i += blockSize) {
      const Block now = load(input + i);
      store(ciphered<Backwards>(key, now) ^ before, output + i);
      before = now;
    }
    store(before, vector);
  }
};

}  // namespace

const BlockPath& tablePath() {
  static const TablePath path;
  return path;
}

const BlockPath& bestPath() {
  static const BlockPath& best = instructionPath() != nullptr ? *instructionPath() : tablePath();
  return best;
}

}  // namespace pcrypt::aes
