#include "PDFEncryption/encryptinfo.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "PDFEncryption/randomsource.h"
#include "Tests/PDFEncryption/bytes_in_tests.h"

namespace {

using namespace pcrypt;

/// The system's random source while it lives.
struct SystemRandomGuard {
  SystemRandomGuard() { useSystemRandom(true); }
  ~SystemRandomGuard() { useSystemRandom(false); }
};

std::string vector() {
  std::string result(initialVectorSize, '\0');
  makeInitialVector(raw::at(result));
  return result;
}

/// Bytes of 2000 vectors that stand outside of 1 to 254, and how many of the 254 values came.
void expectBytesFrom1To254() {
  std::array<int, 256> seen = {};
  for (int i = 0; i < 2000; ++i) {
    for (const char c : vector()) ++seen[static_cast<unsigned char>(c)];
  }
  EXPECT_EQ(seen[0], 0);
  EXPECT_EQ(seen[255], 0);
  EXPECT_EQ(std::count_if(seen.begin(), seen.end(), [](int n) { return n > 0; }), 254);
}

TEST(EncryptInfo, Defaults) {
  const EncryptInfo info;
  EXPECT_EQ(info.permissions, -4);
  EXPECT_EQ(info.R, 0);
  EXPECT_EQ(info.V, 1);
  EXPECT_TRUE(info.encryptMetadata);
  EXPECT_FALSE(info.firstAccess || info.secondAccess || info.fileKeyForAllObjects || info.unused);
  EXPECT_EQ(info.keyLength, 0);
  EXPECT_EQ(info.method, 0);
}

TEST(InitialVector, BytesAreNever0Nor255) { expectBytesFrom1To254(); }

TEST(InitialVector, BytesOfTheSystemsSourceAreNever0Nor255) {
  const SystemRandomGuard guard;
  expectBytesFrom1To254();
}

TEST(InitialVector, IsRandModulo255With1For0) {
  std::srand(7);
  std::string expected;
  for (std::size_t i = 0; i < initialVectorSize; ++i) {
    const int byte = std::rand() % 255;
    expected += static_cast<char>(byte == 0 ? 1 : byte);
  }
  std::srand(7);
  EXPECT_EQ(vector(), expected);
}

TEST(InitialVector, OfTheSystemsSourceDoesNotFollowRand) {
  const SystemRandomGuard guard;
  std::srand(7);
  const std::string first = vector();
  std::srand(7);
  EXPECT_NE(vector(), first);
}

TEST(SystemRandom, GivesAsManyBytesAsAskedForAndOthersEachTime) {
  EXPECT_EQ(systemRandom(1000).size(), 1000U);
  EXPECT_NE(systemRandom(16), systemRandom(16));
}

}  // namespace
