#include "TesselPage/Security/tessel_encryptbridge.h"

#include <gtest/gtest.h>

#include <string>

#include "PDFEncryption/rijndael.h"
#include "TesselPage/Security/tessel_encrypt.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_stream.h"
#include "TesselPage/Syntax/tessel_string.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "Tests/Security/keyed_record.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

const SObj object(12, 3);

const CEncrypt rc4Record = recordOf(key128, 2, 1);
const CEncrypt aes128Record = recordOf(key128, 4, 2);
const CEncrypt aes256Record = recordOf(key256, 5, 3);

std::string encrypted(const CEncrypt& record, std::string data, const SObj& of = object) {
  EXPECT_EQ(encryptString(record, &of, data), 0);
  return data;
}

std::string decrypted(const CEncrypt& record, std::string data, const SObj& of = object) {
  EXPECT_EQ(DecryptString(record, &of, data), 0);
  return data;
}

std::string numbered(char first, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += static_cast<char>(first + static_cast<char>(i % 32));
  return text;
}

CEncrypt filledRecord(int revision) {
  CEncrypt record = recordOf(key128, 4, 2);
  record.R = revision;
  record.O.put(numbered('A', 48));
  record.U.put(numbered('a', 48));
  record.OE.put(numbered('0', 32));
  record.UE.put(numbered('!', 32));
  record.Perms.put(numbered('P', 16));
  record.fileIdentifier.put("identifier");
  record.fileIdentifierLength = 10;
  record.permissions = -44;
  record.encryptMetadata = false;
  record.password = "secret";
  record.ownerPassword = "owner";
  record.firstAccess = true;
  return record;
}

TEST(EncryptBridge, CarriesEveryFieldOfRevision6AndBack) {
  pcrypt::EncryptInfo info;
  saveEncryptInfo(filledRecord(6), info);
  CEncrypt back;
  resaveEncryptInfo(info, back);
  EXPECT_EQ(back.O.first(256), numbered('A', 48) + std::string(208, '\0'));
  EXPECT_EQ(back.U.first(48), numbered('a', 48));
  EXPECT_EQ(back.OE.first(33), numbered('0', 32) + '\0');
  EXPECT_EQ(back.UE.first(33), numbered('!', 32) + '\0');
  EXPECT_EQ(back.Perms.first(17), numbered('P', 16) + '\0');
  EXPECT_EQ(back.fileIdentifier.first(11), std::string("identifier\0", 11));
  EXPECT_EQ(back.fileIdentifierLength, 10);
  EXPECT_EQ(back.fileKey.first(17), key128 + '\0');
  EXPECT_EQ(back.keyLength, 128);
  EXPECT_EQ(back.R, 6);
  EXPECT_EQ(back.V, 4);
  EXPECT_EQ(back.method, 2);
  EXPECT_EQ(back.permissions, -44);
  EXPECT_FALSE(back.encryptMetadata);
}

TEST(EncryptBridge, CarriesNoPasswordAndNoFlag) {
  pcrypt::EncryptInfo info;
  saveEncryptInfo(filledRecord(6), info);
  EXPECT_EQ(info.ownerPassword, "");
  EXPECT_FALSE(info.firstAccess);
  info.ownerPassword = info.userPassword = "secret";
  info.firstAccess = info.secondAccess = true;
  CEncrypt back;
  resaveEncryptInfo(info, back);
  EXPECT_EQ(back.password + back.ownerPassword + back.userPassword, "");
  EXPECT_FALSE(back.firstAccess || back.secondAccess);
}

TEST(EncryptBridge, UpToRevision4TheEntriesHave32BytesAndTheOthersNone) {
  pcrypt::EncryptInfo info;
  saveEncryptInfo(filledRecord(4), info);
  EXPECT_EQ(info.O, numbered('A', 32));
  EXPECT_EQ(info.U, numbered('a', 32));
  EXPECT_EQ(info.OE + info.UE + info.Perms, "");
}

TEST(EncryptBridge, ShortEntriesAreFilledWithZeroBytes) {
  CEncrypt record;
  record.O.put("ooooo");
  pcrypt::EncryptInfo info;
  saveEncryptInfo(record, info);
  EXPECT_EQ(info.O, "ooooo" + std::string(27, '\0'));
}

TEST(EncryptBridge, StringsOfAnInfoInUseAreAppendedTo) {
  pcrypt::EncryptInfo info;
  info.U = "used";
  saveEncryptInfo(filledRecord(4), info);
  EXPECT_EQ(info.U, "used" + numbered('a', 32));
}

TEST(EncryptBridge, AnEmptyStringOfTheInfoLeavesTheField) {
  CEncrypt record = filledRecord(4);
  resaveEncryptInfo(pcrypt::EncryptInfo(), record);
  EXPECT_EQ(record.fileKey.first(16), key128);
  EXPECT_EQ(record.O.first(4), "ABCD");
}

TEST(EncryptBridge, EveryCipherIsUndone) {
  for (const CEncrypt* record : {&rc4Record, &aes128Record, &aes256Record})
    for (const std::size_t size : {1U, 15U, 16U, 17U, 100U, 1000U}) {
      const std::string plain = numbered('a', size);
      const std::string cipher = encrypted(*record, plain);
      EXPECT_NE(cipher.substr(0, size), plain);
      EXPECT_EQ(decrypted(*record, cipher), plain) << record->method << ' ' << size;
    }
}

TEST(EncryptBridge, AnotherObjectHasAnotherKeyExceptWithAES256) {
  const std::string plain = "some text of an object";
  const SObj other(12, 4);
  EXPECT_NE(decrypted(rc4Record, encrypted(rc4Record, plain), other), plain);
  EXPECT_NE(decrypted(aes128Record, encrypted(aes128Record, plain), other), plain);
  EXPECT_EQ(decrypted(aes256Record, encrypted(aes256Record, plain), other), plain);
}

TEST(EncryptBridge, RC4KeepsTheLengthAndAESAddsVectorAndPadding) {
  EXPECT_EQ(encrypted(rc4Record, "abc").size(), 3U);
  EXPECT_EQ(encrypted(aes128Record, "abc").size(), 32U);
  EXPECT_EQ(encrypted(aes128Record, std::string(15, 'x')).size(), 32U);
  EXPECT_EQ(encrypted(aes128Record, std::string(16, 'x')).size(), 48U);
}

TEST(EncryptBridge, VersionChoosesTheCipherForWritingAndMethodForReading) {
  const CEncrypt mixed = recordOf(key128, 4, 1);
  const std::string cipher = encrypted(mixed, "abc");
  EXPECT_EQ(cipher.size(), 32U);
  EXPECT_EQ(decrypted(mixed, cipher).size(), 32U);
  EXPECT_NE(decrypted(mixed, cipher).substr(0, 3), "abc");
}

TEST(EncryptBridge, AShortKeyOfAnAESVersionStaysInBounds) {
  const CEncrypt record = recordOf("12345", 5, 1);
  EXPECT_EQ(encrypted(record, "abc").size(), 32U);
}

TEST(EncryptBridge, SixteenBytesOfAESAreAnEmptyString) {
  EXPECT_EQ(decrypted(aes128Record, std::string(16, 'x')), "");
  EXPECT_EQ(decrypted(aes256Record, std::string(16, 'x')), "");
}

TEST(EncryptBridge, DataThatIsNoAESDataStays) {
  for (const std::size_t size : {1U, 15U, 17U, 32U, 33U, 100U}) {
    const std::string data(size, 'x');
    EXPECT_EQ(decrypted(aes128Record, data), data) << size;
  }
}

TEST(EncryptBridge, AESPutsItsVectorInFront) {
  for (const int version : {4, 5}) {
    std::string data = "some text of more than one block";
    const std::string plain = data;
    const auto* key = reinterpret_cast<const unsigned char*>(key256.data());
    EXPECT_EQ(encryptAES(data, key, version), 0);
    std::string back(data.size(), '\0');
    pcrypt::Rijndael cipher;
    cipher.init(pcrypt::Rijndael::CBC, pcrypt::Rijndael::Decrypt, key,
                version == 5 ? pcrypt::Rijndael::Key32Bytes : pcrypt::Rijndael::Key16Bytes,
                reinterpret_cast<const unsigned char*>(data.data()));
    const int size =
        cipher.padDecrypt(reinterpret_cast<const unsigned char*>(data.data()) + 16,
                          static_cast<int>(data.size()) - 16, reinterpret_cast<unsigned char*>(back.data()));
    ASSERT_EQ(size, static_cast<int>(plain.size()));
    EXPECT_EQ(back.substr(0, plain.size()), plain);
  }
}

TEST(EncryptBridge, BytesOfAVectorAreNever0Or255) {
  for (int i = 0; i < 200; ++i) {
    const std::string vector = encrypted(aes128Record, "a").substr(0, 16);
    EXPECT_EQ(vector.find('\0'), std::string::npos);
    EXPECT_EQ(vector.find('\xff'), std::string::npos);
  }
}

// Strings and streams on their way in and out.

std::string hex(const std::string& bytes) {
  CStringType string{SObj()};
  string.value = bytes;
  CDestFile dest;
  string.WrtHexString(dest);
  return dest;
}

CStringType readString(const std::string& body, const CEncrypt& record, bool noDecrypt = false) {
  CSourFile source(body);
  source.fileInfo.encrypt = record;
  CStringType string(object);
  string.hexadecimal = body.ends_with('>');
  string.noDecrypt = noDecrypt;
  EXPECT_TRUE(string.Read(source));
  return string;
}

TEST(EncryptedString, IsDecryptedWhileItIsRead) {
  const CStringType string = readString(hex(encrypted(aes128Record, "secret")), aes128Record);
  EXPECT_EQ(string.value, "secret");
  EXPECT_EQ(string.length, 6);
}

TEST(EncryptedString, OfTheDictionaryItselfStays) {
  const std::string cipher = encrypted(rc4Record, "secret");
  EXPECT_EQ(readString(hex(cipher), rc4Record, true).value, cipher);
}

TEST(EncryptedString, StaysWhenTheRecordIsNotActive) {
  CEncrypt idle = rc4Record;
  const std::string cipher = encrypted(rc4Record, "secret");
  idle.keySearched = false;
  EXPECT_EQ(readString(hex(cipher), idle).value, cipher);
  idle = rc4Record;
  idle.R = 0;
  EXPECT_EQ(readString(hex(cipher), idle).value, cipher);
}

TEST(EncryptedString, OfAnObjectInAnObjectStreamStays) {
  CSourFile real{std::string("x")};
  real.fileInfo.encrypt = rc4Record;
  CSourFile memory("plain)", real);
  CStringType string(object);
  EXPECT_TRUE(string.Read(memory));
  EXPECT_EQ(string.value, "plain");
}

std::string writeString(const SObj& current, bool noEncrypt, const std::string& value = "secret") {
  CDestFile dest;
  dest.fileInfo.encrypt = rc4Record;
  dest.currentObject = current;
  CStringType string(SObj(1, 0));
  string.value = value;
  string.hexadecimal = true;
  string.noEncrypt = noEncrypt;
  CSourFile source{std::string()};
  EXPECT_TRUE(string.Write(dest, source));
  EXPECT_EQ(string.length, static_cast<int>(value.size()));
  return dest;
}

TEST(EncryptedString, IsEncryptedForTheObjectThatIsWritten) {
  EXPECT_EQ(writeString(object, false), hex(encrypted(rc4Record, "secret")));
}

TEST(EncryptedString, StaysWithoutACurrentObjectOrWhenExempt) {
  EXPECT_EQ(writeString(SObj(0, 0), false), hex("secret"));
  EXPECT_EQ(writeString(object, true), hex("secret"));
  EXPECT_EQ(writeString(object, false, ""), ">");
}

struct ReadStream {
  std::string data;
  int length = 0;
};

ReadStream readStream(const std::string& cipher, const CEncrypt& record, bool ofDictionary = false) {
  CSourFile source("\n" + cipher + "\nendstream ");
  source.fileInfo.encrypt = record;
  CStreamType stream(object);
  stream.length = static_cast<int>(cipher.size());
  stream.ofEncryptDictionary = ofDictionary;
  EXPECT_TRUE(stream.Read(source));
  std::string token;
  source >> token;
  EXPECT_EQ(token, "endstream");
  return {std::string(stream.data()), stream.length};
}

TEST(EncryptedStream, IsDecryptedWhileItIsRead) {
  const std::string plain(1000, 'p');
  for (const CEncrypt* record : {&rc4Record, &aes128Record, &aes256Record}) {
    const ReadStream read = readStream(encrypted(*record, plain), *record);
    EXPECT_EQ(read.data, plain) << record->method;
    EXPECT_EQ(read.length, 1000) << record->method;
  }
}

TEST(EncryptedStream, ReadFromABufferThatShowsNoSpanIsDecryptedToo) {
  std::istringstream in("\n" + encrypted(aes128Record, "some data") + "\nendstream");
  CSourFile source(in);
  source.fileInfo.encrypt = aes128Record;
  CStreamType stream(object);
  stream.length = 32;
  EXPECT_TRUE(stream.Read(source));
  EXPECT_EQ(stream.data(), "some data");
}

TEST(EncryptedStream, OfTheDictionaryItselfStays) {
  EXPECT_EQ(readStream("cipher", rc4Record, true).data, "cipher");
}

TEST(EncryptedStream, WithBadPaddingStaysAsItWas) {
  const std::string bad(48, 'x');
  EXPECT_EQ(readStream(bad, aes256Record).data, bad);
}

TEST(EncryptedStream, IsEncryptedWhileItIsWrittenAndItsLengthFollows) {
  CSourFile source{std::string("\nsome data\nendstream")};
  CStreamType stream(SObj(1, 0));
  stream.length = 9;
  ASSERT_TRUE(stream.Read(source));
  CDestFile dest;
  dest.append("<</Length    >>stream");
  dest.fileInfo.encrypt = aes128Record;
  dest.currentObject = object;
  EXPECT_TRUE(stream.Write(dest, source, 9, 4));
  const std::string head = "<</Length 32 >>stream\r\n";
  ASSERT_TRUE(dest.starts_with(head));
  EXPECT_EQ(decrypted(aes128Record, dest.substr(head.size())), "some data");
}

TEST(EncryptedStream, StaysWithoutACurrentObjectAndWhenItIsEmpty) {
  for (const std::string data : {"some data", ""}) {
    CSourFile source("\n" + data + "\nendstream");
    CStreamType stream(SObj(1, 0));
    stream.length = static_cast<int>(data.size());
    ASSERT_TRUE(stream.Read(source));
    CDestFile dest;
    dest.fileInfo.encrypt = aes128Record;
    dest.currentObject = data.empty() ? object : SObj();
    EXPECT_TRUE(stream.Write(dest, source, 0, 0));
    EXPECT_EQ(static_cast<std::string&>(dest), "\r\n" + data);
  }
}

}  // namespace
