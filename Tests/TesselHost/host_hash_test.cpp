#include "TesselHost/host_hash.h"

#include <gtest/gtest.h>

#include "TesselHost/host_deflate.h"

namespace TesselHost {
namespace {

// FIPS 180-4 example vectors.
TEST(Sha256Hex, IsAsTheStandardHasIt) {
  EXPECT_EQ(sha256Hex(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(sha256Hex("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(Fingerprint, DoesNotDependOnThePieces) {
  Fingerprint whole;
  whole.add("hello world");
  Fingerprint pieces;
  pieces.add("hello ");
  pieces.add("world");
  EXPECT_EQ(whole.bytes(), pieces.bytes());
  EXPECT_EQ(whole.bytes().size(), 16U);
}

TEST(Fingerprint, TellsContentsApart) {
  Fingerprint one;
  one.add("hello world");
  Fingerprint other;
  other.add("hello worle");
  EXPECT_NE(one.bytes(), other.bytes());
}

}  // namespace
}  // namespace TesselHost
