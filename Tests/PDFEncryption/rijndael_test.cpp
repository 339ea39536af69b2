#include "PDFEncryption/rijndael.h"

#include <gtest/gtest.h>

#include <bit>

#include "PDFEncryption/rijndael_blocks.h"
#include "PDFEncryption/rijndael_tables.h"
#include "Tests/PDFEncryption/bytes_in_tests.h"

namespace {

using namespace pcrypt;
using raw::hex;
using raw::openssl;
using raw::toHex;
using Operation = int (Rijndael::*)(const unsigned char*, int, unsigned char*);

const std::string keyBytes = hex("000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f");
const std::string someVector = hex("f0e1d2c3b4a5968778695a4b3c2d1e0f");

struct Path {
  const char* name;
  const aes::BlockPath* path;
};

/// The tables, and the instructions where the processor has them.
std::vector<Path> paths() {
  std::vector<Path> all{{"tables", &aes::tablePath()}};
  if (const aes::BlockPath* const instructions = aes::instructionPath())
    all.push_back({"instructions", instructions});
  return all;
}

/// Each test runs by every path that there is.
class Aes : public testing::TestWithParam<Path> {
 protected:
  Rijndael cipher() const { return Rijndael(*GetParam().path); }

  Rijndael set(Rijndael::Mode mode, Rijndael::Direction direction,
               Rijndael::KeyLength length = Rijndael::Key16Bytes, const std::string& key = keyBytes,
               const std::string& vector = someVector) const {
    Rijndael result = cipher();
    EXPECT_EQ(result.init(mode, direction, raw::at(key), length, raw::at(vector)), 0);
    return result;
  }

  /// Output of an operation whose result is a count of bytes; its status in words when it fails.
  static std::string run(Rijndael cipher, Operation operation, const std::string& input) {
    std::string output(input.size() + 16, '?');
    const int done = (cipher.*operation)(raw::at(input), raw::size(input), raw::at(output));
    if (done < 0) return "status " + std::to_string(done);
    output.resize(static_cast<std::size_t>(done));
    return output;
  }

  /// The same for `blockEncrypt` and `blockDecrypt`, which count bits.
  static std::string blocks(Rijndael cipher, Operation operation, const std::string& input) {
    std::string output = input;
    EXPECT_EQ((cipher.*operation)(raw::at(input), 8 * raw::size(input), raw::at(output)),
              8 * raw::size(input));
    return output;
  }
};

INSTANTIATE_TEST_SUITE_P(Path, Aes, testing::ValuesIn(paths()),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(AesTables, SubstitutionOfFips197) {
  EXPECT_EQ(aes::S[0x00], 0x63);
  EXPECT_EQ(aes::S[0x53], 0xed);
  EXPECT_EQ(aes::S[0xff], 0x16);
  for (unsigned int i = 0; i < 256; ++i) EXPECT_EQ(aes::S5[aes::S[i]], i);
}

TEST(AesTables, ColumnsJoinSubstitutionAndMixing) {
  EXPECT_EQ(aes::T1[0], 0xc66363a5U);
  EXPECT_EQ(aes::T2[0], 0xa5c66363U);
  EXPECT_EQ(aes::T5[0], 0x51f4a750U);
  EXPECT_EQ(aes::U1[1], 0x0e090d0bU);
}

TEST(AesTables, ColumnsFollowFromTheSubstitutionByRule) {
  const auto doubled = [](unsigned int v) { return ((v << 1) ^ ((v & 0x80) != 0 ? 0x11b : 0)) & 0xff; };
  const auto times = [&](unsigned int v, unsigned int by) {
    unsigned int sum = 0;
    for (; by != 0; by >>= 1, v = doubled(v)) sum ^= (by & 1) != 0 ? v : 0;
    return sum;
  };
  const auto column = [&](unsigned int v, unsigned int a, unsigned int b, unsigned int c, unsigned int d) {
    return times(v, a) << 24 | times(v, b) << 16 | times(v, c) << 8 | times(v, d);
  };
  for (unsigned int i = 0; i < 256; ++i) {
    EXPECT_EQ(aes::T1[i], column(aes::S[i], 2, 1, 1, 3));
    EXPECT_EQ(aes::T5[i], column(aes::S5[i], 14, 9, 13, 11));
    EXPECT_EQ(aes::U1[i], column(i, 14, 9, 13, 11));
  }
}

TEST(AesTables, EachColumnIsTheOneBeforeTurnedByAByte) {
  for (unsigned int i = 0; i < 256; ++i) {
    EXPECT_EQ(aes::T2[i], std::rotr(aes::T1[i], 8));
    EXPECT_EQ(aes::T3[i], std::rotr(aes::T2[i], 8));
    EXPECT_EQ(aes::T4[i], std::rotr(aes::T3[i], 8));
    EXPECT_EQ(aes::T6[i], std::rotr(aes::T5[i], 8));
    EXPECT_EQ(aes::T7[i], std::rotr(aes::T6[i], 8));
    EXPECT_EQ(aes::T8[i], std::rotr(aes::T7[i], 8));
    EXPECT_EQ(aes::U2[i], std::rotr(aes::U1[i], 8));
    EXPECT_EQ(aes::U3[i], std::rotr(aes::U2[i], 8));
    EXPECT_EQ(aes::U4[i], std::rotr(aes::U3[i], 8));
  }
}

// FIPS 197, B and C.

struct Fips197 {
  Rijndael::KeyLength length;
  std::string cipher;
};

TEST_P(Aes, Fips197AppendixB) {
  const std::string key = hex("2b7e151628aed2a6abf7158809cf4f3c"),
                    plain = hex("3243f6a8885a308d313198a2e0370734");
  EXPECT_EQ(toHex(blocks(set(Rijndael::ECB, Rijndael::Encrypt, Rijndael::Key16Bytes, key),
                         &Rijndael::blockEncrypt, plain)),
            "3925841d02dc09fbdc118597196a0b32");
}

TEST_P(Aes, Fips197AppendixCInBothDirections) {
  const std::string plain = hex("00112233445566778899aabbccddeeff");
  const Fips197 vectors[] = {{Rijndael::Key16Bytes, "69c4e0d86a7b0430d8cdb78070b4c55a"},
                             {Rijndael::Key24Bytes, "dda97ca4864cdfe06eaf70a0ec0d7191"},
                             {Rijndael::Key32Bytes, "8ea2b7ca516745bfeafc49904b496089"}};
  for (const auto& [length, cipher] : vectors) {
    EXPECT_EQ(toHex(blocks(set(Rijndael::ECB, Rijndael::Encrypt, length), &Rijndael::blockEncrypt, plain)),
              cipher);
    EXPECT_EQ(blocks(set(Rijndael::ECB, Rijndael::Decrypt, length), &Rijndael::blockDecrypt, hex(cipher)),
              plain);
  }
}

// NIST SP 800-38A.

const std::string plain38A =
    hex("6bc1bee22e409f96e93d7e117393172a ae2d8a571e03ac9c9eb76fac45af8e51"
        "30c81c46a35ce411e5fbc1191a0a52ef f69f2445df4f9b17ad2b417be66c3710");
const std::string key38A = hex("2b7e151628aed2a6abf7158809cf4f3c");
const std::string vector38A = hex("000102030405060708090a0b0c0d0e0f");

TEST_P(Aes, ChainOfSp80038A) {
  const std::string cipherText =
      hex("7649abac8119b246cee98e9b12e9197d 5086cb9b507219ee95db113a917678b2"
          "73bed6b8e3c1743b7116e69e22229516 3ff1caa1681fac09120eca307586e1a7");
  const auto with = [&](Rijndael::Direction direction) {
    return set(Rijndael::CBC, direction, Rijndael::Key16Bytes, key38A, vector38A);
  };
  EXPECT_EQ(blocks(with(Rijndael::Encrypt), &Rijndael::blockEncrypt, plain38A), cipherText);
  EXPECT_EQ(blocks(with(Rijndael::Decrypt), &Rijndael::blockDecrypt, cipherText), plain38A);
}

TEST_P(Aes, FeedbackOfOneBitOfSp80038A) {
  const auto feedback = set(Rijndael::CFB1, Rijndael::Encrypt, Rijndael::Key16Bytes, key38A, vector38A);
  EXPECT_EQ(toHex(blocks(feedback, &Rijndael::blockEncrypt, plain38A)).substr(0, 4), "68b3");
}

// Against the judgement of another.

std::string opensslArguments(const std::string& name, int bits, const std::string& mode) {
  const std::string key = toHex(keyBytes.substr(0, static_cast<std::size_t>(bits / 8)));
  const std::string vector = mode == "ecb" ? "" : " -iv " + toHex(someVector);
  return "enc " + name + " -aes-" + std::to_string(bits) + "-" + mode + " -K " + key + vector + " -in";
}

TEST_P(Aes, PaddedChainEqualsOpenssl) {
  for (const auto length : {Rijndael::Key16Bytes, Rijndael::Key24Bytes, Rijndael::Key32Bytes}) {
    for (const std::size_t size : {0U, 1U, 15U, 16U, 17U, 127U, 128U, 129U, 1000U, 70000U}) {
      const std::string plain = raw::random(size, static_cast<unsigned int>(size) + 5);
      const std::string expected = openssl(opensslArguments("", 128 + 64 * length, "cbc"), plain);
      EXPECT_EQ(run(set(Rijndael::CBC, Rijndael::Encrypt, length), &Rijndael::padEncrypt, plain), expected);
      EXPECT_EQ(run(set(Rijndael::CBC, Rijndael::Decrypt, length), &Rijndael::padDecrypt, expected), plain);
    }
  }
}

TEST_P(Aes, PaddedBlocksEqualOpenssl) {
  const std::string plain = raw::random(333, 6);
  const std::string expected = openssl(opensslArguments("", 256, "ecb"), plain);
  EXPECT_EQ(run(set(Rijndael::ECB, Rijndael::Encrypt, Rijndael::Key32Bytes), &Rijndael::padEncrypt, plain),
            expected);
  EXPECT_EQ(run(set(Rijndael::ECB, Rijndael::Decrypt, Rijndael::Key32Bytes), &Rijndael::padDecrypt, expected),
            plain);
}

TEST_P(Aes, FeedbackOfOneBitEqualsOpensslInBothWays) {
  const std::string plain = raw::random(160, 7);
  const std::string expected = openssl(opensslArguments("", 128, "cfb1"), plain);
  EXPECT_EQ(blocks(set(Rijndael::CFB1, Rijndael::Encrypt), &Rijndael::blockEncrypt, plain), expected);
  EXPECT_EQ(blocks(set(Rijndael::CFB1, Rijndael::Encrypt), &Rijndael::blockDecrypt, expected), plain);
}

// The cipher runs forwards whatever the direction; that of decryption has turned the keys for the other way.
TEST_P(Aes, FeedbackOfOneBitTakesBothDirectionsForDecryption) {
  const std::string text = "0123456789abcdef";
  EXPECT_EQ(toHex(blocks(set(Rijndael::CFB1, Rijndael::Encrypt), &Rijndael::blockDecrypt, text)),
            "1e803c71421b4e51a32fabe3a586a761");
  EXPECT_EQ(toHex(blocks(set(Rijndael::CFB1, Rijndael::Decrypt), &Rijndael::blockDecrypt, text)),
            "207d91de8153478d53cf372ff59c778e");
  EXPECT_EQ(run(set(Rijndael::CFB1, Rijndael::Decrypt), &Rijndael::blockEncrypt, text), "status -6");
}

TEST_P(Aes, FeedbackOfOneBitBeginsAtTheInitialVectorEachTimeAndCountsWholeBlocks) {
  Rijndael feedback = set(Rijndael::CFB1, Rijndael::Encrypt);
  std::string input = "0123456789abcdef", first = input + "rest", second = input;
  EXPECT_EQ(feedback.blockEncrypt(raw::at(input), 8 * 20, raw::at(first)), 128);
  EXPECT_EQ(toHex(first), "1fa781a2c951ddd816f0efb9a85ec824" + toHex("rest"));
  feedback.blockEncrypt(raw::at(input), 128, raw::at(second));
  EXPECT_EQ(toHex(second), "1fa781a2c951ddd816f0efb9a85ec824");
}

// Counts, and what a call leaves behind.

TEST_P(Aes, BlockOperationsCountWholeBlocksInBits) {
  Rijndael ecb = set(Rijndael::ECB, Rijndael::Encrypt);
  std::string input(48, 'x'), output(48, '.');
  EXPECT_EQ(ecb.blockEncrypt(raw::at(input), 100, raw::at(output)), 0);
  EXPECT_EQ(output, std::string(48, '.'));
  EXPECT_EQ(ecb.blockEncrypt(raw::at(input), 300, raw::at(output)), 256);
  EXPECT_EQ(output.substr(32), std::string(16, '.'));
}

TEST_P(Aes, BlockOperationsBeginAtTheInitialVectorEachTime) {
  Rijndael chain = set(Rijndael::CBC, Rijndael::Encrypt);
  std::string input(32, 'x'), first(32, '.'), second(32, '.');
  chain.blockEncrypt(raw::at(input), 256, raw::at(first));
  chain.blockEncrypt(raw::at(input), 256, raw::at(second));
  EXPECT_EQ(first, second);
}

TEST_P(Aes, NullVectorStandsForZeros) {
  Rijndael chain = cipher();
  chain.init(Rijndael::CBC, Rijndael::Encrypt, raw::at(keyBytes), Rijndael::Key16Bytes, nullptr);
  const std::string zeros(16, '\0'), plain(16, 'x');
  EXPECT_EQ(blocks(chain, &Rijndael::blockEncrypt, plain),
            blocks(set(Rijndael::CBC, Rijndael::Encrypt, Rijndael::Key16Bytes, keyBytes, zeros),
                   &Rijndael::blockEncrypt, plain));
}

TEST_P(Aes, OutputMayBeTheInputOrLieInFrontOfIt) {
  const std::string plain = raw::random(500, 8);
  std::string text = run(set(Rijndael::CBC, Rijndael::Encrypt), &Rijndael::padEncrypt, plain);
  std::string shifted = std::string(16, '?') + text;
  Rijndael inPlace = set(Rijndael::CBC, Rijndael::Decrypt), inFront = inPlace;
  EXPECT_EQ(inPlace.padDecrypt(raw::at(text), raw::size(text), raw::at(text)), 500);
  EXPECT_EQ(text.substr(0, 500), plain);
  EXPECT_EQ(inFront.padDecrypt(raw::at(shifted) + 16, raw::size(shifted) - 16, raw::at(shifted)), 500);
  EXPECT_EQ(shifted.substr(0, 500), plain);
}

TEST_P(Aes, PadEncryptMayWorkInPlace) {
  const std::string plain = raw::random(200, 9);
  std::string text = plain + std::string(16, '?');
  Rijndael chain = set(Rijndael::CBC, Rijndael::Encrypt);
  ASSERT_EQ(chain.padEncrypt(raw::at(text), 200, raw::at(text)), 208);
  EXPECT_EQ(text.substr(0, 208), run(set(Rijndael::CBC, Rijndael::Encrypt), &Rijndael::padEncrypt, plain));
}

// Padding.

TEST_P(Aes, PaddingOfAnEmptyMessageIsABlockOfSixteens) {
  for (const auto mode : {Rijndael::CBC, Rijndael::ECB}) {
    const std::string block = run(set(mode, Rijndael::Encrypt), &Rijndael::padEncrypt, "");
    EXPECT_EQ(block.size(), 16U);
    EXPECT_EQ(blocks(set(mode, Rijndael::Decrypt), &Rijndael::blockDecrypt, block), std::string(16, '\x10'));
  }
}

TEST_P(Aes, ChainTakesAFullBlockOfPaddingAndEcbRefusesIt) {
  const std::string chained = run(set(Rijndael::CBC, Rijndael::Encrypt), &Rijndael::padEncrypt, "");
  const std::string single = run(set(Rijndael::ECB, Rijndael::Encrypt), &Rijndael::padEncrypt, "");
  EXPECT_EQ(run(set(Rijndael::CBC, Rijndael::Decrypt), &Rijndael::padDecrypt, chained), "");
  EXPECT_EQ(run(set(Rijndael::ECB, Rijndael::Decrypt), &Rijndael::padDecrypt, single), "status -7");
}

TEST_P(Aes, EcbTakesALastByteOf0ForNoPaddingAndTheChainRefusesIt) {
  const std::string plain = "fifteen bytes...";
  const std::string block = plain.substr(0, 15) + '\0';
  const std::string single = blocks(set(Rijndael::ECB, Rijndael::Encrypt), &Rijndael::blockEncrypt, block);
  const std::string chained = blocks(set(Rijndael::CBC, Rijndael::Encrypt), &Rijndael::blockEncrypt, block);
  EXPECT_EQ(run(set(Rijndael::ECB, Rijndael::Decrypt), &Rijndael::padDecrypt, single), block);
  EXPECT_EQ(run(set(Rijndael::CBC, Rijndael::Decrypt), &Rijndael::padDecrypt, chained), "status -7");
}

TEST_P(Aes, PaddingMustBeUniformAndAtMostABlock) {
  struct Case {
    std::string block, result;
  };
  const Case cases[] = {{std::string(13, 'x') + "\3\3\3", std::string(13, 'x')},
                        {std::string(13, 'x') + "\3\2\3", "status -7"},
                        {std::string(15, 'x') + "\1", std::string(15, 'x')},
                        {std::string(16, '\x11'), "status -7"},
                        {std::string(15, 'x') + "\xff", "status -7"}};
  for (const auto& [block, result] : cases) {
    for (const auto mode : {Rijndael::CBC, Rijndael::ECB}) {
      const std::string text = blocks(set(mode, Rijndael::Encrypt), &Rijndael::blockEncrypt, block);
      EXPECT_EQ(run(set(mode, Rijndael::Decrypt), &Rijndael::padDecrypt, text), result);
    }
  }
}

TEST_P(Aes, PadDecryptRefusesLengthsThatAreNoMultipleOf16) {
  EXPECT_EQ(run(set(Rijndael::CBC, Rijndael::Decrypt), &Rijndael::padDecrypt, std::string(17, 'x')),
            "status -7");
}

// Pieces.

TEST_P(Aes, PiecesEqualTheWhole) {
  const std::string plain = raw::random(40, 10);
  Rijndael chain = set(Rijndael::CBC, Rijndael::Encrypt);
  std::string output(48, '?');
  EXPECT_EQ(chain.pdfEncrypt(raw::at(plain), 40, raw::at(output)), 32);
  EXPECT_EQ(chain.pdfEncryptEnd(raw::at(plain) + 32, 8, raw::at(output) + 32), 16);
  EXPECT_EQ(output, run(set(Rijndael::CBC, Rijndael::Encrypt), &Rijndael::padEncrypt, plain));
}

TEST_P(Aes, PiecesOfAnySizeEqualTheWholeInBothWays) {
  const std::string plain = raw::random(1003, 11);
  const std::string expected = run(set(Rijndael::CBC, Rijndael::Encrypt), &Rijndael::padEncrypt, plain);
  for (const int piece : {16, 48, 160, 992}) {
    Rijndael encrypt = set(Rijndael::CBC, Rijndael::Encrypt), decrypt = set(Rijndael::CBC, Rijndael::Decrypt);
    std::string output(1008, '?'), back(1008, '?');
    for (int i = 0; i < 992; i += piece) {
      const int size = std::min(piece, 992 - i);
      encrypt.pdfEncrypt(raw::at(plain) + i, size, raw::at(output) + i);
      decrypt.pdfDecrypt(raw::at(expected) + i, size, raw::at(back) + i);
    }
    EXPECT_EQ(encrypt.pdfEncryptEnd(raw::at(plain) + 992, 11, raw::at(output) + 992), 16);
    EXPECT_EQ(decrypt.pdfDecryptEnd(raw::at(expected) + 992, 16, raw::at(back) + 992), 11);
    EXPECT_EQ(output, expected);
    EXPECT_EQ(back.substr(0, 1003), plain);
  }
}

TEST_P(Aes, EndOfAWholeBlockGetsNoPaddingAndOfNothingAFullOne) {
  const std::string plain(16, 'x');
  EXPECT_EQ(run(set(Rijndael::CBC, Rijndael::Encrypt), &Rijndael::pdfEncryptEnd, plain),
            blocks(set(Rijndael::CBC, Rijndael::Encrypt), &Rijndael::blockEncrypt, plain));
  EXPECT_EQ(run(set(Rijndael::CBC, Rijndael::Encrypt), &Rijndael::pdfEncryptEnd, ""),
            run(set(Rijndael::CBC, Rijndael::Encrypt), &Rijndael::padEncrypt, ""));
  EXPECT_EQ(run(set(Rijndael::CBC, Rijndael::Encrypt), &Rijndael::pdfEncryptEnd, std::string(17, 'x')), "");
}

TEST_P(Aes, PiecesBelowABlockDoNothing) {
  EXPECT_EQ(run(set(Rijndael::CBC, Rijndael::Encrypt), &Rijndael::pdfEncrypt, std::string(15, 'x')), "");
  EXPECT_EQ(run(set(Rijndael::CBC, Rijndael::Decrypt), &Rijndael::pdfDecrypt, std::string(15, 'x')), "");
}

TEST_P(Aes, EndOfDecryptionRefusesBadPaddingAndOtherLengths) {
  const Rijndael chain = set(Rijndael::CBC, Rijndael::Decrypt);
  const std::string bad =
      blocks(set(Rijndael::CBC, Rijndael::Encrypt), &Rijndael::blockEncrypt, std::string(16, '\x11'));
  EXPECT_EQ(run(chain, &Rijndael::pdfDecryptEnd, bad), "status -7");
  EXPECT_EQ(run(chain, &Rijndael::pdfDecryptEnd, bad.substr(1)), "status -7");
}

TEST_P(Aes, PiecesGoOnWhereTheyStoppedWhateverBlocksCameBetween) {
  const std::string plain = raw::random(40, 12);
  const std::string expected = run(set(Rijndael::CBC, Rijndael::Encrypt), &Rijndael::padEncrypt, plain);
  Rijndael chain = set(Rijndael::CBC, Rijndael::Encrypt);
  std::string output(48, '?'), other(48, '?');
  chain.pdfEncrypt(raw::at(plain), 16, raw::at(output));
  chain.blockEncrypt(raw::at(plain), 256, raw::at(other));
  chain.padEncrypt(raw::at(plain), 20, raw::at(other));
  chain.pdfEncrypt(raw::at(plain) + 16, 16, raw::at(output) + 16);
  chain.pdfEncryptEnd(raw::at(plain) + 32, 8, raw::at(output) + 32);
  EXPECT_EQ(output, expected);
}

TEST_P(Aes, InitBeginsTheMessageAnew) {
  const std::string plain(16, 'x');
  Rijndael chain = set(Rijndael::CBC, Rijndael::Encrypt);
  const std::string first = run(chain, &Rijndael::pdfEncrypt, plain);
  std::string again(16, '?');
  chain.pdfEncrypt(raw::at(plain), 16, raw::at(again));
  chain.init(Rijndael::CBC, Rijndael::Encrypt, raw::at(keyBytes), Rijndael::Key16Bytes, raw::at(someVector));
  chain.pdfEncrypt(raw::at(plain), 16, raw::at(again));
  EXPECT_EQ(again, first);
}

TEST_P(Aes, NullVectorStandsForZerosInPiecesToo) {
  const std::string plain(16, 'x');
  Rijndael chain = cipher();
  chain.init(Rijndael::CBC, Rijndael::Encrypt, raw::at(keyBytes), Rijndael::Key16Bytes);
  EXPECT_EQ(run(chain, &Rijndael::pdfEncrypt, plain),
            run(set(Rijndael::CBC, Rijndael::Encrypt, Rijndael::Key16Bytes, keyBytes, std::string(16, '\0')),
                &Rijndael::pdfEncrypt, plain));
}

TEST_P(Aes, EveryPaddingOfALastPieceComesOff) {
  for (std::size_t size = 0; size < 16; ++size) {
    const std::string plain(size, 'x');
    const std::string block = run(set(Rijndael::CBC, Rijndael::Encrypt), &Rijndael::pdfEncryptEnd, plain);
    EXPECT_EQ(block, run(set(Rijndael::CBC, Rijndael::Encrypt), &Rijndael::padEncrypt, plain)) << size;
    EXPECT_EQ(run(set(Rijndael::CBC, Rijndael::Decrypt), &Rijndael::pdfDecryptEnd, block), plain) << size;
  }
}

// Statuses.

constexpr Operation encryptions[] = {&Rijndael::blockEncrypt, &Rijndael::padEncrypt, &Rijndael::pdfEncrypt,
                                     &Rijndael::pdfEncryptEnd};
constexpr Operation decryptions[] = {&Rijndael::blockDecrypt, &Rijndael::padDecrypt, &Rijndael::pdfDecrypt,
                                     &Rijndael::pdfDecryptEnd};

TEST_P(Aes, EveryOperationBeforeInitGivesMinus5) {
  const std::string text(16, 'x');
  for (const Operation o : encryptions) EXPECT_EQ(run(cipher(), o, text), "status -5");
  for (const Operation o : decryptions) EXPECT_EQ(run(cipher(), o, text), "status -5");
}

TEST_P(Aes, WrongDirectionGivesMinus6AndMinus5FromPadEncrypt) {
  const std::string text(16, 'x');
  for (const Operation o : encryptions) {
    const char* const expected = o == &Rijndael::padEncrypt ? "status -5" : "status -6";
    EXPECT_EQ(run(set(Rijndael::CBC, Rijndael::Decrypt), o, text), expected);
  }
  for (const Operation o : decryptions)
    EXPECT_EQ(run(set(Rijndael::CBC, Rijndael::Encrypt), o, text), "status -6");
}

TEST_P(Aes, NullInputAndNegativeLengthsGive0AndWriteNothing) {
  std::string text(16, 'x'), output(32, '.');
  for (const Operation o : encryptions) {
    Rijndael chain = set(Rijndael::CBC, Rijndael::Encrypt);
    EXPECT_EQ((chain.*o)(nullptr, 16, raw::at(output)), 0);
    EXPECT_EQ((chain.*o)(raw::at(text), -16, raw::at(output)), 0);
  }
  for (const Operation o : decryptions) {
    Rijndael chain = set(Rijndael::CBC, Rijndael::Decrypt);
    EXPECT_EQ((chain.*o)(nullptr, 16, raw::at(output)), 0);
    EXPECT_EQ((chain.*o)(raw::at(text), 0, raw::at(output)), 0);
    EXPECT_EQ((chain.*o)(raw::at(text), -16, raw::at(output)), 0);
  }
  EXPECT_EQ(output, std::string(32, '.'));
}

TEST_P(Aes, ModesThatAnOperationDoesNotHaveGiveMinus1) {
  const std::string text(16, 'x');
  EXPECT_EQ(run(set(Rijndael::CFB1, Rijndael::Encrypt), &Rijndael::padEncrypt, text), "status -1");
  EXPECT_EQ(run(set(Rijndael::CFB1, Rijndael::Decrypt), &Rijndael::padDecrypt, text), "status -1");
  for (const auto mode : {Rijndael::ECB, Rijndael::CFB1}) {
    EXPECT_EQ(run(set(mode, Rijndael::Encrypt), &Rijndael::pdfEncrypt, text), "status -1");
    EXPECT_EQ(run(set(mode, Rijndael::Encrypt), &Rijndael::pdfEncryptEnd, text), "status -1");
    EXPECT_EQ(run(set(mode, Rijndael::Decrypt), &Rijndael::pdfDecrypt, text), "status -1");
    EXPECT_EQ(run(set(mode, Rijndael::Decrypt), &Rijndael::pdfDecryptEnd, text), "status -1");
  }
}

TEST_P(Aes, InitRefusesWhatItDoesNotKnow) {
  Rijndael r = cipher();
  const unsigned char* const key = raw::at(keyBytes);
  EXPECT_EQ(r.init(Rijndael::Mode(3), Rijndael::Encrypt, key, Rijndael::Key16Bytes), -1);
  EXPECT_EQ(r.init(Rijndael::CBC, Rijndael::Direction(2), key, Rijndael::Key16Bytes), -2);
  EXPECT_EQ(r.init(Rijndael::CBC, Rijndael::Encrypt, key, Rijndael::KeyLength(3)), -3);
  EXPECT_EQ(r.init(Rijndael::CBC, Rijndael::Encrypt, nullptr, Rijndael::Key16Bytes), -4);
}

TEST_P(Aes, FailedInitLeavesAGoodObjectNotInitialised) {
  Rijndael r = set(Rijndael::ECB, Rijndael::Encrypt);
  EXPECT_EQ(r.init(Rijndael::ECB, Rijndael::Encrypt, nullptr, Rijndael::Key16Bytes), -4);
  EXPECT_EQ(run(r, &Rijndael::blockEncrypt, std::string(16, 'x')), "status -5");
}

TEST_P(Aes, ALengthOf0Gives0WhereThereIsNoPaddingToWrite) {
  std::string text(16, 'x'), output(16, '.');
  for (const Operation o : {&Rijndael::blockEncrypt, &Rijndael::pdfEncrypt}) {
    Rijndael chain = set(Rijndael::CBC, Rijndael::Encrypt);
    EXPECT_EQ((chain.*o)(raw::at(text), 0, raw::at(output)), 0);
  }
  EXPECT_EQ(output, std::string(16, '.'));
}

TEST_P(Aes, BlocksAreWorkedInEveryModeAndInTheirDirectionOnly) {
  const std::string text(16, 'x');
  for (const auto mode : {Rijndael::ECB, Rijndael::CBC}) {
    EXPECT_EQ(run(set(mode, Rijndael::Decrypt), &Rijndael::blockEncrypt, text), "status -6");
    EXPECT_EQ(run(set(mode, Rijndael::Encrypt), &Rijndael::blockDecrypt, text), "status -6");
    EXPECT_EQ(run(set(mode, Rijndael::Decrypt), &Rijndael::padEncrypt, text), "status -5");
    EXPECT_EQ(run(set(mode, Rijndael::Encrypt), &Rijndael::padDecrypt, text), "status -6");
    EXPECT_EQ(run(set(mode, Rijndael::Decrypt), &Rijndael::padDecrypt, text + "x"), "status -7");
  }
}

TEST_P(Aes, InitLooksAtModeAndDirectionAndThenAtTheKey) {
  Rijndael r = cipher();
  EXPECT_EQ(r.init(Rijndael::Mode(3), Rijndael::Direction(2), nullptr, Rijndael::KeyLength(3)), -1);
  EXPECT_EQ(r.init(Rijndael::CFB1, Rijndael::Direction(2), nullptr, Rijndael::KeyLength(3)), -2);
  EXPECT_EQ(r.init(Rijndael::CFB1, Rijndael::Decrypt, nullptr, Rijndael::KeyLength(3)), -3);
  EXPECT_EQ(r.init(Rijndael::CFB1, Rijndael::Decrypt, nullptr, Rijndael::Key32Bytes), -4);
}

// The paths themselves, on every count of blocks around the number that is worked side by side.

/// Chains of `blocks` blocks each, every one under a key and a vector of its own.
void expectChainsEqualOpenssl(const aes::BlockPath& path, const std::vector<std::size_t>& blocks) {
  std::vector<Rijndael> ciphers(blocks.size());
  std::vector<std::string> texts, vectors, expected;
  std::vector<aes::Chain> chains;
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    const auto seed = static_cast<unsigned int>(i);
    const std::string key = raw::random(16, 100 + seed);
    vectors.push_back(raw::random(16, 200 + seed));
    texts.push_back(raw::random(16 * blocks[i], 300 + seed));
    expected.push_back(
        openssl("enc -aes-128-cbc -nopad -K " + toHex(key) + " -iv " + toHex(vectors[i]) + " -in", texts[i]));
    ciphers[i].init(Rijndael::CBC, Rijndael::Encrypt, raw::at(key), Rijndael::Key16Bytes);
  }
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    unsigned char* const text = raw::at(texts[i]);
    chains.push_back({ciphers[i].expandedKey(), raw::at(vectors[i]), text, text, blocks[i]});
  }
  path.chainEncrypt(chains);
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    EXPECT_EQ(toHex(texts[i]), toHex(expected[i])) << i << " of " << blocks.size();
    if (blocks[i] == 0) continue;
    EXPECT_EQ(toHex(vectors[i]), toHex(expected[i].substr(16 * blocks[i] - 16)));
  }
}

TEST_P(Aes, SeveralChainsAtOnceEqualOpenssl) {
  const std::vector<std::size_t> lists[] = {{},        {3},          {0, 2},
                                            {4, 4},    {5, 1, 3},    {1, 2, 3, 4},
                                            {9, 0, 9}, {2, 2, 2, 7}, {1, 8, 2, 7, 3, 6, 4, 5, 9, 1, 2}};
  for (const auto& blocks : lists) expectChainsEqualOpenssl(*GetParam().path, blocks);
}

TEST_P(Aes, GivesTheSameAsTheTablesForEveryCountOfBlocks) {
  for (const auto mode : {Rijndael::ECB, Rijndael::CBC}) {
    for (int count = 1; count <= 40; ++count) {
      const std::string plain =
          raw::random(static_cast<std::size_t>(16 * count), static_cast<unsigned int>(count));
      Rijndael tables(aes::tablePath()), tested = cipher();
      std::string first = plain, second = plain;
      for (const auto direction : {Rijndael::Encrypt, Rijndael::Decrypt}) {
        const Operation operation =
            direction == Rijndael::Encrypt ? &Rijndael::blockEncrypt : &Rijndael::blockDecrypt;
        tables.init(mode, direction, raw::at(keyBytes), Rijndael::Key32Bytes, raw::at(someVector));
        tested.init(mode, direction, raw::at(keyBytes), Rijndael::Key32Bytes, raw::at(someVector));
        (tables.*operation)(raw::at(first), 128 * count, raw::at(first));
        (tested.*operation)(raw::at(second), 128 * count, raw::at(second));
        ASSERT_EQ(first, second) << count;
      }
      ASSERT_EQ(first, plain);
    }
  }
}

}  // namespace
