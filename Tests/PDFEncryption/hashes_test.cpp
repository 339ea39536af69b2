#include "PDFEncryption/hashes.h"

#include <gtest/gtest.h>

#include "PDFEncryption/sha256_blocks.h"
#include "PDFEncryption/sha512_blocks.h"
#include "Tests/PDFEncryption/bytes_in_tests.h"

namespace {

using namespace pcrypt;
using raw::openssl;
using raw::toHex;

const std::string twoBlocks256 = "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq";
const std::string twoBlocks512 =
    "abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlmnopqrsmnopqrst"
    "nopqrstu";
const std::string millionA(1'000'000, 'a');

/// Lengths around the ends of blocks, and their padding.
constexpr std::size_t lengths[] = {0, 1, 55, 56, 57, 63, 64, 65, 111, 112, 113, 127, 128, 129, 1000, 70000};

struct Vector {
  std::string message;
  std::string digest;
};

void PrintTo(const Vector& v, std::ostream* out) { *out << v.digest; }

std::string md5(const std::string& data, int digestLength = 16) {
  std::string digest;
  PDFEncryptionMD5().MD5(data, digest, digestLength);
  return digest;
}

std::string sha256(const std::string& data) {
  _Sha256Calc context;
  std::string message = data;
  Sha256Calc_init(&context);
  EXPECT_EQ(
      Sha256Calc_calculate(&context, reinterpret_cast<signed char*>(message.data()), raw::size(message)), 0);
  return {std::begin(context.digest), std::end(context.digest)};
}

void give(_Sha256Calc& context, std::string data) {
  Sha256Calc_calculate(&context, reinterpret_cast<signed char*>(data.data()), raw::size(data));
}

std::string digestIn(const _Sha256Calc& context) {
  return toHex({reinterpret_cast<const char*>(context.digest), sizeof context.digest});
}

std::string sha384(const std::string& data) {
  SHA384_CTX context;
  std::string digest(48, '?');
  SHA384Init(&context);
  SHA384Update(&context, raw::at(data), raw::size(data));
  SHA384Final(&context, raw::at(digest));
  return digest;
}

std::string sha512(const std::string& data) {
  SHA512_CTX context;
  std::string digest(64, '?');
  SHA512Init(&context);
  SHA512Update(&context, raw::at(data), raw::size(data));
  SHA512Final(&context, raw::at(digest));
  return digest;
}

// RFC 1321, A.5.

class Rfc1321 : public testing::TestWithParam<Vector> {};

TEST_P(Rfc1321, StringForm) { EXPECT_EQ(toHex(md5(GetParam().message)), GetParam().digest); }

TEST_P(Rfc1321, BufferForm) {
  std::string message = GetParam().message, digest(16, '?');
  PDFEncryptionMD5().MD5(raw::at(message), static_cast<unsigned short>(message.size()), raw::at(digest), 16);
  EXPECT_EQ(toHex(digest), GetParam().digest);
}

TEST_P(Rfc1321, OneByteAtATime) {
  PDFEncryptionMD5 md5;
  PDFEncryptionMD5::MD5_CTX context;
  std::string digest(16, '?');
  md5.MD5Init(&context);
  for (char c : GetParam().message) md5.MD5Update(&context, reinterpret_cast<unsigned char*>(&c), 1);
  md5.MD5Final(raw::at(digest), &context);
  EXPECT_EQ(toHex(digest), GetParam().digest);
}

INSTANTIATE_TEST_SUITE_P(
    Suite, Rfc1321,
    testing::Values(Vector{"", "d41d8cd98f00b204e9800998ecf8427e"},
                    Vector{"a", "0cc175b9c0f1b6a831c399e269772661"},
                    Vector{"abc", "900150983cd24fb0d6963f7d28e17f72"},
                    Vector{"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
                    Vector{"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
                    Vector{"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
                           "d174ab98d277d9f5a5611c2c9f419d9f"},
                    Vector{"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
                           "57edf4a22be3c955ac49da2e2107b67a"}));

TEST(Md5, DigestLengthCutsTheDigestAndNeverLengthensIt) {
  EXPECT_EQ(toHex(md5("abc", 5)), "900150983c");
  EXPECT_EQ(md5("abc", 32).size(), 16U);
  EXPECT_EQ(md5("abc", 0), "");
  EXPECT_EQ(md5("abc", -1), "");
}

TEST(Md5, BufferFormWritesNoMoreThanAskedFor) {
  std::string message = "abc", digest(16, '.');
  PDFEncryptionMD5().MD5(raw::at(message), 3, raw::at(digest), 5);
  EXPECT_EQ(digest.substr(5), "...........");
}

TEST(Md5, BufferFormCountsTheLengthIn16Bits) {
  std::string message(65536 + 3, 'x'), digest(16, '?');
  PDFEncryptionMD5().MD5(raw::at(message), static_cast<unsigned short>(message.size()), raw::at(digest), 16);
  EXPECT_EQ(digest, md5("xxx"));
}

TEST(Md5, BufferFormTakesADigestLengthBelow1ForNone) {
  std::string message = "abc", digest(16, '.');
  for (const int length : {0, -1}) PDFEncryptionMD5().MD5(raw::at(message), 3, raw::at(digest), length);
  EXPECT_EQ(digest, std::string(16, '.'));
}

TEST(Md5, BufferFormTakes65535BytesAndNeverMoreThan16OfTheDigest) {
  std::string message(65535, 'x'), digest(20, '.');
  PDFEncryptionMD5().MD5(raw::at(message), 65535, raw::at(digest), 20);
  EXPECT_EQ(digest, md5(message) + "....");
}

TEST(Md5, StepsWorkOneBlockAndCopyAndFillBytes) {
  PDFEncryptionMD5 md5;
  std::uint32_t state[4] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
  std::string block = "abc\x80" + std::string(60, '\0'), digest(16, '?');
  block[56] = 24;
  md5.MD5Transform(state, raw::at(block));
  md5.Encode(raw::at(digest), state, 16);
  EXPECT_EQ(toHex(digest), "900150983cd24fb0d6963f7d28e17f72");
  md5.MD5_memcpy(raw::at(digest), raw::at(block), 3);
  md5.MD5_memset(raw::at(digest) + 3, 'x', 2);
  EXPECT_EQ(digest.substr(0, 5), "abcxx");
}

TEST(Md5, DigestMayReplaceTheMessage) {
  std::string text = "abc";
  PDFEncryptionMD5().MD5(text, text, 16);
  EXPECT_EQ(toHex(text), "900150983cd24fb0d6963f7d28e17f72");
}

TEST(Md5, StepsEncodeWordsLowByteFirst) {
  std::uint32_t word = 0x04030201;
  std::string bytes(4, '?');
  PDFEncryptionMD5().Encode(raw::at(bytes), &word, 4);
  EXPECT_EQ(bytes, "\1\2\3\4");
  word = 0;
  PDFEncryptionMD5().Decode(&word, raw::at(bytes), 4);
  EXPECT_EQ(word, 0x04030201U);
}

TEST(Md5, CountOfBitsCarriesIntoItsHighWord) {
  PDFEncryptionMD5::MD5_CTX context;
  PDFEncryptionMD5 md5;
  std::string block(64, 'x');
  md5.MD5Init(&context);
  context.count[0] = 0xfffffe00;
  md5.MD5Update(&context, raw::at(block), 64);
  EXPECT_EQ(context.count[0], 0U);
  EXPECT_EQ(context.count[1], 1U);
}

// FIPS 180.

TEST(Sha256, Fips180) {
  EXPECT_EQ(toHex(sha256("abc")), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(toHex(sha256(twoBlocks256)), "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(toHex(sha256(millionA)), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
  EXPECT_EQ(toHex(sha256("")), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST(Sha384, Fips180) {
  EXPECT_EQ(toHex(sha384("abc")),
            "cb00753f45a35e8bb5a03d699ac65007272c32ab0eded163"
            "1a8b605a43ff5bed8086072ba1e7cc2358baeca134c825a7");
  EXPECT_EQ(toHex(sha384(twoBlocks512)),
            "09330c33f71147e83d192fc782cd1b4753111b173b3b05d2"
            "2fa08086e3b0f712fcc7c71a557e2db966c3e9fa91746039");
  EXPECT_EQ(toHex(sha384(millionA)),
            "9d0e1809716474cb086e834e310a4a1ced149e9c00f24852"
            "7972cec5704c2a5b07b8b3dc38ecc4ebae97ddd87f3d8985");
}

TEST(Sha512, Fips180) {
  EXPECT_EQ(toHex(sha512("abc")),
            "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
            "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f");
  EXPECT_EQ(toHex(sha512(twoBlocks512)),
            "8e959b75dae313da8cf4f72814fc143f8f7779c6eb9f7fa17299aeadb6889018"
            "501d289e4900f7e4331b99dec4b5433ac7d329eeb6dd26545e96e55b874be909");
  EXPECT_EQ(toHex(sha512(millionA)),
            "e718483d0ce769644e2e42c7bc15b4638e1f98b13b2044285632a803afa973eb"
            "de0ff244877ea60a4cb0432ce577c31beb009c5c2c49aa2e4eadb217ad8cc09b");
}

TEST(Sha256, GoesOnWithTheMessageAfterEachDigest) {
  _Sha256Calc context;
  Sha256Calc_reset(&context);
  give(context, "a");
  EXPECT_EQ(digestIn(context), "ca978112ca1bbdcafac231b39a23dc4da786eff8147c4e72b9807785afee48bb");
  give(context, "bc");
  EXPECT_EQ(digestIn(context), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(Sha256, InPiecesEqualsWhole) {
  const std::string message = raw::random(1000, 1);
  for (const std::size_t piece : {1U, 7U, 63U, 64U, 65U, 200U}) {
    _Sha256Calc context;
    Sha256Calc_init(&context);
    for (std::size_t i = 0; i < message.size(); i += piece) give(context, message.substr(i, piece));
    EXPECT_EQ(digestIn(context), toHex(sha256(message))) << piece;
  }
}

TEST(Sha256, CalcBlockWorksOneBlockIntoTheState) {
  long hash[8] = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                  0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  long schedule[64] = {0x61626380};  // "abc" and the bit behind it
  schedule[15] = 24;
  EXPECT_EQ(Sha256Calc_calcBlock(hash, schedule), 0);
  const long expected[8] = {0xba7816bf, 0x8f01cfea, 0x414140de, 0x5dae2223,
                            0xb00361a3, 0x96177a9c, 0xb410ff61, 0xf20015ad};
  EXPECT_TRUE(std::equal(std::begin(hash), std::end(hash), expected));
}

TEST(Sha256, ResetBeginsAnew) {
  _Sha256Calc context;
  Sha256Calc_init(&context);
  give(context, "something else");
  EXPECT_EQ(Sha256Calc_reset(&context), 0);
  give(context, "abc");
  EXPECT_EQ(digestIn(context), toHex(sha256("abc")));
  EXPECT_EQ(Sha256Calc_uninit(&context), 0);
}

TEST(Sha256, NegativeLengthAddsNothing) {
  _Sha256Calc context;
  Sha256Calc_init(&context);
  give(context, "abc");
  signed char byte = 'x';
  EXPECT_EQ(Sha256Calc_calculate(&context, &byte, -5), 0);
  EXPECT_EQ(digestIn(context), toHex(sha256("abc")));
}

TEST(Sha256, RefusesMoreBytesThan61BitsCount) {
  _Sha256Calc context;
  Sha256Calc_init(&context);
  context.countHigh = 0x1fffffff;
  context.countLow = 0xfffffffe;
  signed char bytes[2] = {'x', 'y'};
  EXPECT_EQ(Sha256Calc_calculate(&context, bytes, 2), 1);
  EXPECT_EQ(context.countLow, 0xfffffffeU);
  EXPECT_EQ(Sha256Calc_calculate(&context, bytes, 1), 0);
}

TEST(Sha512, InPiecesEqualsWhole) {
  const std::string message = raw::random(1000, 2);
  for (const int piece : {1, 7, 127, 128, 129, 300}) {
    SHA512_CTX context;
    std::string digest(64, '?');
    SHA512Init(&context);
    for (int i = 0; i < 1000; i += piece) {
      SHA512Update(&context, raw::at(message) + i, std::min(piece, 1000 - i));
    }
    SHA512Final(&context, raw::at(digest));
    EXPECT_EQ(toHex(digest), toHex(sha512(message))) << piece;
  }
}

TEST(Sha512, LengthBelow1AddsNothing) {
  SHA512_CTX context;
  std::string digest(64, '?'), small(48, '?');
  SHA512Init(&context);
  for (const int length : {0, -5, 3}) SHA512Update(&context, raw::at(std::string("abc")), length);
  SHA512Final(&context, raw::at(digest));
  EXPECT_EQ(toHex(digest), toHex(sha512("abc")));
  SHA384Init(&context);
  for (const int length : {3, -5, 0}) SHA384Update(&context, raw::at(std::string("abc")), length);
  SHA384Final(&context, raw::at(small));
  EXPECT_EQ(toHex(small), toHex(sha384("abc")));
}

// The paths of SHA-256, each fed with padded messages.

struct ShaPath {
  const char* name;
  sha256::BlockPath path;
};

/// The portable one, and the instructions where the processor has them.
std::vector<ShaPath> shaPaths() {
  std::vector<ShaPath> all{{"portable", sha256::portableBlocks}};
  if (const sha256::BlockPath instructions = sha256::instructionPath())
    all.push_back({"instructions", instructions});
  return all;
}

class Sha256Path : public testing::TestWithParam<ShaPath> {
 protected:
  std::string digest(std::string message) const {
    const std::size_t bits = 8 * message.size();
    message += '\x80';
    while (message.size() % 64 != 56) message += '\0';
    for (int shift = 56; shift >= 0; shift -= 8) message += static_cast<char>(bits >> shift);
    long hash[8] = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                    0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    GetParam().path(hash, raw::at(message), message.size() / 64);
    std::string result;
    for (const long word : hash) {
      for (int shift = 24; shift >= 0; shift -= 8) result += static_cast<char>(word >> shift);
    }
    return toHex(result);
  }
};

TEST_P(Sha256Path, Fips180) {
  EXPECT_EQ(digest("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(digest(twoBlocks256), "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(digest(millionA), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST_P(Sha256Path, EqualsOpensslOnRandomMessages) {
  for (const std::size_t length : lengths) {
    const std::string message = raw::random(length, static_cast<unsigned int>(length));
    EXPECT_EQ(digest(message), toHex(openssl("dgst -sha256 -binary", message))) << length;
  }
}

INSTANTIATE_TEST_SUITE_P(Suite, Sha256Path, testing::ValuesIn(shaPaths()),
                         [](const auto& tested) { return std::string(tested.param.name); });

// The paths of SHA-512 likewise.

struct Sha512PathOf {
  const char* name;
  sha512::BlockPath path;
};

/// The portable one, and the vectors where the processor has them.
std::vector<Sha512PathOf> sha512Paths() {
  std::vector<Sha512PathOf> all{{"portable", sha512::portableBlocks}};
  if (const sha512::BlockPath vectors = sha512::vectorPath()) all.push_back({"vectors", vectors});
  return all;
}

class Sha512Path : public testing::TestWithParam<Sha512PathOf> {
 protected:
  std::string digest(std::string message) const {
    const std::size_t bits = 8 * message.size();
    message += '\x80';
    while (message.size() % 128 != 112) message += '\0';
    message.append(8, '\0');  // the upper half of the count
    for (int shift = 56; shift >= 0; shift -= 8) message += static_cast<char>(bits >> shift);
    std::uint64_t hash[8] = {0x6a09e667f3bcc908, 0xbb67ae8584caa73b, 0x3c6ef372fe94f82b, 0xa54ff53a5f1d36f1,
                             0x510e527fade682d1, 0x9b05688c2b3e6c1f, 0x1f83d9abfb41bd6b, 0x5be0cd19137e2179};
    GetParam().path(hash, raw::at(message), message.size() / 128);
    std::string result;
    for (const std::uint64_t word : hash) {
      for (int shift = 56; shift >= 0; shift -= 8) result += static_cast<char>(word >> shift);
    }
    return toHex(result);
  }
};

TEST_P(Sha512Path, Fips180) {
  EXPECT_EQ(digest("abc"),
            "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
            "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f");
  EXPECT_EQ(digest(millionA),
            "e718483d0ce769644e2e42c7bc15b4638e1f98b13b2044285632a803afa973eb"
            "de0ff244877ea60a4cb0432ce577c31beb009c5c2c49aa2e4eadb217ad8cc09b");
}

TEST_P(Sha512Path, EqualsOpensslOnRandomMessages) {
  for (const std::size_t length : lengths) {
    const std::string message = raw::random(length, static_cast<unsigned int>(length));
    EXPECT_EQ(digest(message), toHex(openssl("dgst -sha512 -binary", message))) << length;
  }
}

/// Four blocks go side by side, and 0 to 3 are left over.
TEST_P(Sha512Path, EqualsOpensslForEachNumberOfBlocks) {
  for (std::size_t blocks = 1; blocks <= 13; ++blocks) {
    const std::string message = raw::random(128 * blocks - 17, static_cast<unsigned int>(blocks));
    EXPECT_EQ(digest(message), toHex(openssl("dgst -sha512 -binary", message))) << blocks;
  }
}

INSTANTIATE_TEST_SUITE_P(Suite, Sha512Path, testing::ValuesIn(sha512Paths()),
                         [](const auto& tested) { return std::string(tested.param.name); });

// Several messages at once.

struct MessagesPathOf {
  const char* name;
  sha512::MessagesPath path;
};

/// One by one, and in lanes where the processor has those that pay.
std::vector<MessagesPathOf> messagesPaths() {
  std::vector<MessagesPathOf> all{{"oneByOne", sha512::oneByOne}};
  if (const sha512::MessagesPath lanes = sha512::lanesPath()) all.push_back({"lanes", lanes});
  return all;
}

class Sha512Messages : public testing::TestWithParam<MessagesPathOf> {};

TEST_P(Sha512Messages, EqualOnesThatAreWorkedAlone) {
  const std::vector<std::size_t> lists[] = {{},
                                            {2},
                                            {3, 3},
                                            {0, 4},
                                            {1, 5, 3},
                                            {4, 4, 4, 4},
                                            {2, 7, 2, 9, 1},
                                            {0, 0, 3},
                                            {9, 8, 7, 6, 5, 4, 3, 2, 1}};
  for (const auto& blocks : lists) {
    std::vector<std::string> texts;
    std::vector<std::array<std::uint64_t, 8>> hashes(blocks.size()), alone(blocks.size());
    std::vector<sha512::Message> messages;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
      texts.push_back(raw::random(128 * blocks[i], static_cast<unsigned int>(i)));
      hashes[i].fill(i + 1);
      alone[i] = hashes[i];
      sha512::portableBlocks(alone[i].data(), raw::at(texts[i]), blocks[i]);
    }
    for (std::size_t i = 0; i < blocks.size(); ++i)
      messages.push_back({hashes[i].data(), raw::at(texts[i]), blocks[i]});
    GetParam().path(messages);
    EXPECT_EQ(hashes, alone) << blocks.size();
  }
}

INSTANTIATE_TEST_SUITE_P(Suite, Sha512Messages, testing::ValuesIn(messagesPaths()),
                         [](const auto& tested) { return std::string(tested.param.name); });

// Against the judgement of another.

struct Judge {
  const char* name;
  std::string (*hash)(const std::string&);
};

std::string wholeMd5(const std::string& data) { return md5(data); }

class HashAgainstOpenssl : public testing::TestWithParam<Judge> {};

TEST_P(HashAgainstOpenssl, AtLengthsAroundTheEndsOfBlocks) {
  for (const std::size_t length : lengths) {
    const std::string message = raw::random(length, 100 + static_cast<unsigned int>(length));
    const std::string expected = openssl(std::string("dgst -binary -") + GetParam().name, message);
    EXPECT_EQ(toHex(GetParam().hash(message)), toHex(expected)) << length;
  }
}

INSTANTIATE_TEST_SUITE_P(Suite, HashAgainstOpenssl,
                         testing::Values(Judge{"md5", wholeMd5}, Judge{"sha256", sha256},
                                         Judge{"sha384", sha384}, Judge{"sha512", sha512}),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
