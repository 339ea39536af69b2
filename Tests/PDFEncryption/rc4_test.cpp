#include "PDFEncryption/rc4.h"

#include <gtest/gtest.h>

#include "Tests/PDFEncryption/bytes_in_tests.h"

namespace {

using pcrypt::PDFEncryptionRC4;
using raw::hex;
using raw::toHex;

std::string rc4(std::string data, const std::string& key) {
  std::string keyBytes = key;
  PDFEncryptionRC4().RC4(raw::at(data), raw::size(data), raw::at(keyBytes), raw::size(keyBytes));
  return data;
}

struct Vector {
  std::string key, plain, cipher;
};

class Rc4Vector : public testing::TestWithParam<Vector> {};

TEST_P(Rc4Vector, BufferForm) { EXPECT_EQ(toHex(rc4(GetParam().plain, GetParam().key)), GetParam().cipher); }

TEST_P(Rc4Vector, StringForm) {
  std::string data = GetParam().plain;
  PDFEncryptionRC4().RC4(data, raw::size(data), GetParam().key);
  EXPECT_EQ(toHex(data), GetParam().cipher);
}

INSTANTIATE_TEST_SUITE_P(Classic, Rc4Vector,
                         testing::Values(Vector{"Key", "Plaintext", "bbf316e8d940af0ad3"},
                                         Vector{"Wiki", "pedia", "1021bf0420"},
                                         Vector{"Secret", "Attack at dawn", "45a01f645fc35b383552544b9bf5"}));

// RFC 6229, section 2: the key stream at its start.
INSTANTIATE_TEST_SUITE_P(
    Rfc6229, Rc4Vector,
    testing::Values(Vector{hex("0102030405"), std::string(32, '\0'),
                           "b2396305f03dc027ccc3524a0a1118a86982944f18fc82d589c403a47a0d0919"},
                    Vector{hex("0102030405060708090a0b0c0d0e0f10"), std::string(32, '\0'),
                           "9ac7cc9a609d1ef7b2932899cde41b975248c4959014126a6e8a84f11d1a9e1c"},
                    Vector{hex("0102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f20"),
                           std::string(32, '\0'),
                           "eaa6bd25880bf93d3f5d1e4ca2611d91cfa45c9f7e714b54bdfa80027cb14380"}));

TEST(Rc4, KeyStreamOfRfc6229At4096) {
  const std::string stream = rc4(std::string(4112, '\0'), hex("0102030405"));
  EXPECT_EQ(toHex(stream.substr(4096)), "ff25b58995996707e51fbdf08b34d875");
}

TEST(Rc4, TwiceWithTheSameKeyRestoresTheData) {
  EXPECT_EQ(rc4(rc4("some text of odd length", "key"), "key"), "some text of odd length");
}

TEST(Rc4, StatelessCallsBeginTheKeyStreamAnew) {
  EXPECT_EQ(rc4("abc", "key"), rc4("abc", "key"));
  EXPECT_NE(rc4("abc", "key") + rc4("def", "key"), rc4("abcdef", "key"));
}

// With the identity as state: x = 1, y = 1 gives S[1 + 1] = 2; x = 2, y = 3 gives S[2 + 3] = 5; and so on.
TEST(Rc4, EmptyKeyLeavesTheIdentityAndStillChangesTheData) {
  EXPECT_EQ(toHex(rc4(std::string(4, '\0'), "")), "0205070d");
}

TEST(Rc4, KeyLengthBelow1LeavesTheIdentityInEveryForm) {
  std::string data(4, '\0'), string(4, '\0'), keyed(4, '\0'), prepared(4, '\0'), key = "key";
  PDFEncryptionRC4::RC4_KEY state;
  PDFEncryptionRC4 cipher(raw::at(key), 0);
  cipher.RC4(raw::at(data), 4, raw::at(key), -1);
  cipher.RC4(string, 4, "");
  EXPECT_EQ(cipher.newRC4(raw::at(keyed), 4), 1);
  cipher.PrepareKey(raw::at(key), 0, &state);
  cipher.RC4Imp(raw::at(prepared), 4, &state);
  for (const std::string& result : {data, string, keyed, prepared}) EXPECT_EQ(toHex(result), "0205070d");
}

TEST(Rc4, KeyCountsWithItsFirst256BytesOnly) {
  const std::string key = raw::random(300, 3);
  const std::string data(300, '\0');
  EXPECT_EQ(rc4(data, key), rc4(data, key.substr(0, 256)));
  EXPECT_NE(rc4(data, key), rc4(data, key.substr(0, 255)));
}

TEST(Rc4, LengthBelowOneDoesNothing) {
  std::string data = "abc", key = "key";
  PDFEncryptionRC4().RC4(data, 0, key);
  PDFEncryptionRC4().RC4(raw::at(data), -1, raw::at(key), 3);
  EXPECT_EQ(data, "abc");
}

TEST(Rc4, StringFormGivesAsManyBytesAsTheLengthSays) {
  std::string shorter = "abcdef", longer = "abc";
  PDFEncryptionRC4().RC4(shorter, 2, "key");
  PDFEncryptionRC4().RC4(longer, 6, "key");
  EXPECT_EQ(shorter, rc4("ab", "key"));
  EXPECT_EQ(longer.substr(0, 3), rc4("abc", "key"));
  EXPECT_EQ(longer.size(), 6U);
}

TEST(Rc4, KeyedObjectGoesOnInItsKeyStream) {
  std::string data = "some text in pieces", key = "key";
  PDFEncryptionRC4 cipher(raw::at(key), 3);
  EXPECT_EQ(cipher.newRC4(raw::at(data), 7), 1);
  EXPECT_EQ(cipher.newRC4(raw::at(data) + 7, raw::size(data) - 7), 1);
  EXPECT_EQ(data, rc4("some text in pieces", "key"));
}

TEST(Rc4, KeyedObjectWithoutAKeyDoesNothing) {
  std::string data = "abc";
  EXPECT_EQ(PDFEncryptionRC4().newRC4(raw::at(data), 3), 0);
  EXPECT_EQ(data, "abc");
}

TEST(Rc4, SettingTheKeyAgainBeginsTheKeyStreamAnew) {
  std::string data = "abcabc", key = "key";
  PDFEncryptionRC4 cipher;
  for (const int start : {0, 3}) {
    cipher.SetEncryptionKey(raw::at(key), 3);
    cipher.newRC4(raw::at(data) + start, 3);
  }
  EXPECT_EQ(data, rc4("abc", "key") + rc4("abc", "key"));
}

TEST(Rc4, PreparedStateGoesOnInItsKeyStream) {
  std::string data = "some text in pieces", key = "key";
  PDFEncryptionRC4 cipher;
  PDFEncryptionRC4::RC4_KEY state;
  cipher.PrepareKey(raw::at(key), 3, &state);
  cipher.RC4Imp(raw::at(data), 1, &state);
  cipher.RC4Imp(raw::at(data) + 1, raw::size(data) - 1, &state);
  EXPECT_EQ(data, rc4("some text in pieces", "key"));
}

}  // namespace
