// What the bridge and the older password functions compute, byte for byte. The expected bytes come from
// another program, which follows the standard's steps.

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "PDFEncryption/encryptionmanager.h"
#include "PDFEncryption/rijndael.h"
#include "TesselPage/Security/tessel_encrypt.h"
#include "TesselPage/Security/tessel_encryptbridge.h"
#include "TesselPage/Security/tessel_legacypassword.h"
#include "Tests/PDFEncryption/bytes_in_tests.h"
#include "Tests/Security/keyed_record.h"

using namespace TESSEL;
using namespace tessel_test;
using raw::padText;

namespace {

const SObj object(12, 3);

struct CipherCase {
  std::string fileKey;
  int version;
  int method;
  const char* cipher;  ///< of "some text" in object 12 3
};

// Below version 4 the cipher is RC4. The method only adds the salt to the key, or takes the file key as it
// is.
TEST(BridgeBytes, EncryptStringIsRc4BelowVersion4) {
  const CipherCase rows[] = {{key128, 0, 0, "5e190ee760d9efc003"}, {key128, 1, 1, "5e190ee760d9efc003"},
                             {key128, 2, 1, "5e190ee760d9efc003"}, {key128, 3, 1, "5e190ee760d9efc003"},
                             {key128, 2, 2, "d2d72b98904adb99e1"}, {key128, 3, 3, "f7072d3cdd3ac5e07d"},
                             {"12345", 1, 1, "fcb43f74e7025c5bc5"}};
  for (const CipherCase& row : rows) {
    std::string data = "some text";
    EXPECT_EQ(encryptString(recordOf(row.fileKey, row.version, row.method), &object, data), 0);
    EXPECT_EQ(toHex(data), row.cipher) << row.version << ' ' << row.method;
  }
}

struct AesCase {
  std::string fileKey;
  int version;
  int method;
  std::string aesKey;  ///< 32 bytes for version 5, else 16
};

TEST(BridgeBytes, EncryptStringIsAesFromVersion4OnWith256BitsInVersion5Alone) {
  const std::string plainKey = raw::hex("e4c3175f23f0ec2cdf1b50799bfe12b0");
  const std::string saltedKey = raw::hex("a3255fe29fb0c87db50f74fa0f5f256f");
  const AesCase rows[] = {{key128, 4, 1, plainKey},
                          {key128, 4, 2, saltedKey},
                          {key256, 4, 3, key128},
                          {key256, 5, 3, key256},
                          {key128, 6, 2, saltedKey}};
  for (const AesCase& row : rows) {
    std::string data = "some text", back(32, '?');
    EXPECT_EQ(encryptString(recordOf(row.fileKey, row.version, row.method), &object, data), 0);
    ASSERT_EQ(data.size(), 32U) << row.version;
    pcrypt::Rijndael cipher;
    cipher.init(pcrypt::Rijndael::CBC, pcrypt::Rijndael::Decrypt, raw::at(row.aesKey),
                row.version == 5 ? pcrypt::Rijndael::Key32Bytes : pcrypt::Rijndael::Key16Bytes,
                raw::at(data));
    EXPECT_EQ(cipher.padDecrypt(raw::at(data) + 16, 16, raw::at(back)), 9)
        << row.version << ' ' << row.method;
    EXPECT_EQ(back.substr(0, 9), "some text");
  }
}

TEST(BridgeBytes, DecryptStringGoesByTheMethodWhateverTheVersion) {
  const std::string rc4 = "5e190ee760d9efc003";
  const std::string aesV2 = "7369787465656e20627974657320697616e83d5184904b44cf0220158295cc09";
  const std::string aesV3 = "7369787465656e206279746573206976fb673ca7cf9077f9d57bf82b531be502";
  for (const int version : {1, 2, 4, 5}) {
    const CipherCase rows[] = {{key128, version, 0, rc4.c_str()},
                               {key128, version, 1, rc4.c_str()},
                               {key128, version, 2, aesV2.c_str()},
                               {key256, version, 3, aesV3.c_str()}};
    for (const CipherCase& row : rows) {
      std::string data = raw::hex(row.cipher);
      EXPECT_EQ(DecryptString(recordOf(row.fileKey, version, row.method), &object, data), 0);
      EXPECT_EQ(data, "some text") << version << ' ' << row.method;
    }
  }
}

TEST(BridgeBytes, NothingDecryptsToNothing) {
  for (const int method : {1, 2, 3}) {
    std::string data;
    EXPECT_EQ(DecryptString(recordOf(key256, 5, method), &object, data), 0);
    EXPECT_EQ(data, "");
  }
}

TEST(BridgeBytes, EncryptAesPadsAWholeBlockToo) {
  for (const std::size_t size : {0U, 15U, 16U}) {
    std::string data(size, 'x');
    EXPECT_EQ(encryptAES(data, raw::at(key128), 4), 0);
    EXPECT_EQ(data.size(), size < 16 ? 32U : 48U);
  }
}

TEST(BridgeBytes, Revision5CarriesAsMuchAsRevision6) {
  CEncrypt record = recordOf(key256, 5, 3);
  record.R = 5;
  for (BoundedBytes* field : {&record.O, &record.U, &record.OE, &record.UE, &record.Perms})
    field->put(std::string(256, 'x'));
  pcrypt::EncryptInfo info;
  saveEncryptInfo(record, info);
  EXPECT_EQ(info.O.size(), 48U);
  EXPECT_EQ(info.U.size(), 48U);
  EXPECT_EQ(info.OE.size(), 32U);
  EXPECT_EQ(info.UE.size(), 32U);
  EXPECT_EQ(info.Perms.size(), 16U);
  EXPECT_EQ(info.fileKey, key256);
}

// The older functions.

struct FileKeyCase {
  int revision;
  int keyLength;
  bool metadata;
  std::string identifier;
  const char* key;
};

const std::string identifier = "0123456789abcdef";

CEncrypt legacyRecord(const FileKeyCase& row) {
  CEncrypt record;
  record.R = row.revision;
  record.keyLength = row.keyLength;
  record.encryptMetadata = row.metadata;
  record.permissions = -44;
  record.O.put("owner entry of thirty-two bytes.and sixteen more");  // of which 32 count
  record.fileIdentifier.put(row.identifier);
  record.fileIdentifierLength = static_cast<int>(row.identifier.size());
  return record;
}

TEST(LegacyBytes, CreatekeyAndCreateTestKeyHash32BytesOfOAndTheIdentifierWhole) {
  const FileKeyCase rows[] = {
      {2, 40, true, identifier, "ddf136fe29"},
      {2, 40, false, identifier, "7ce1fd3664"},
      {3, 128, true, identifier, "c2545344e065fb41f8a1890acd1ac292"},
      {3, 128, false, identifier, "8943b981a0572639357b3067a43b89be"},
      {3, 40, true, identifier, "52ee399fc2"},
      {4, 128, true, identifier, "c2545344e065fb41f8a1890acd1ac292"},
      {3, 128, true, "", "57f5c38d3ccca72358dfd4ff035a4286"},
      {3, 128, true, '\0' + identifier.substr(1), "049624a5cec128a760506870830f4951"},
  };
  const std::string password = "user" + padText.substr(0, 28);
  for (const FileKeyCase& row : rows) {
    CEncrypt record = legacyRecord(row);
    std::string buffer = password;
    createTestKey(record, raw::at(buffer), false);
    EXPECT_EQ(toHex(buffer), row.key + toHex(password.substr(record.keyBytes()))) << row.revision;
    EXPECT_EQ(record.fileKey.first(16), std::string(16, '\0'));
    buffer = password;
    createkey(record, raw::at(buffer));
    EXPECT_EQ(toHex(record.fileKey.first(record.keyBytes())), row.key) << row.revision;
    EXPECT_EQ(buffer, password);
  }
}

TEST(LegacyBytes, CreateTestKeyWithHashOnlyHashesTheBufferOnce) {
  for (const auto& [revision, keyLength, hash] :
       {std::tuple{2, 40, "31d9734a2e"}, {3, 128, "31d9734a2e0e5369eae2fb2f6a923b10"}}) {
    CEncrypt record;
    record.R = revision;
    record.keyLength = keyLength;
    std::string buffer = "user" + padText.substr(0, 28);
    const std::string behind = buffer.substr(record.keyBytes());
    createTestKey(record, raw::at(buffer), true);
    EXPECT_EQ(toHex(buffer), hash + toHex(behind));
  }
}

struct CalcKeyCase {
  std::string fileKey;
  SObj object;
  int method;
  const char* key;
};

TEST(LegacyBytes, CalcKeySaltsForMethod2AndHashesForMethod3Too) {
  const CalcKeyCase rows[] = {
      {"12345", SObj(70000, 300), 0, "5938234ed0e6484e1e9d"},
      {"12345", SObj(70000, 300), 1, "5938234ed0e6484e1e9d"},
      {"12345", SObj(70000, 300), 2, "fa33f0c7d562aa310f24eb1b944d"},
      {key128, SObj(12, 3), 1, "e4c3175f23f0ec2cdf1b50799bfe12b0"},
      {key128, SObj(12, 3), 2, "a3255fe29fb0c87db50f74fa0f5f256f"},
      {key128, SObj(12, 3), 3, "e4c3175f23f0ec2cdf1b50799bfe12b0"},
  };
  for (const CalcKeyCase& row : rows) {
    std::string key = "left over";
    calcKey(recordOf(row.fileKey, 4, row.method), &row.object, key);
    EXPECT_EQ(toHex(key), row.key) << row.fileKey << ' ' << row.method;
  }
}

TEST(LegacyBytes, DigestsAreCutToTheLengthAskedFor) {
  std::string data = "abc", digest(16, '.');
  EXPECT_EQ(MD5decrypt(raw::at(data), 3, raw::at(digest), 5), 0);
  EXPECT_EQ(toHex(digest), "900150983c" + toHex("..........."));
}

TEST(LegacyBytes, DecryptAesTakes128BitsAndDropsTheVector) {
  std::string key = raw::hex("a3255fe29fb0c87db50f74fa0f5f256f");
  std::string data = raw::hex("7369787465656e20627974657320697616e83d5184904b44cf0220158295cc09");
  const std::string before = data;
  int length = 32;
  EXPECT_EQ(decryptAES(raw::at(data), length, raw::at(key)), 0);
  EXPECT_EQ(length, 9);
  EXPECT_EQ(data, "some text" + before.substr(9));
}

TEST(LegacyBytes, DecryptAesOfNothingFails) {
  std::string key = key128, data = "untouched";
  int length = 0;
  EXPECT_EQ(decryptAES(raw::at(data), length, raw::at(key)), -1);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(data, "untouched");
}

// The search for "(" is that of a C string: it ends at a zero byte, and the password counts as empty.
TEST(LegacyBytes, AUserPasswordWithAZeroByteIsKeptAsEmpty) {
  const std::string user("a\0b", 3);
  pcrypt::EncryptInfo info;
  info.R = 3;
  info.keyLength = 128;
  info.fileIdentifier = identifier;
  pcrypt::EncryptOption option;
  option.userPassword = user;
  option.ownerPassword = "own";
  option.keyLength = 128;
  const pcrypt::PDFEncryptionManager maker;
  maker.calculateOKey(option, info);
  maker.createKey(info, user);
  maker.calculateUKey(option, info);
  CEncrypt record;
  resaveEncryptInfo(info, record);
  record.userPassword = "left over";
  std::string owner = "owner";
  EXPECT_TRUE(isOwnerPWD(record, raw::at(owner), 3));
  EXPECT_EQ(record.userPassword, "");
  EXPECT_EQ(record.ownerPassword, "own");
}

}  // namespace
