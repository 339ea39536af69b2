#include <gtest/gtest.h>

#include <string>

#include "TesselPage/Security/tessel_encrypt.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Writer/tessel_destfile.h"

using namespace TESSEL;

namespace {

const std::string ownerEntry(32, 'o');
const std::string userEntry(32, 'u');

CEncrypt record() {
  CEncrypt encrypt;
  encrypt.setIdentity(SObj(7, 0));
  encrypt.R = 3;
  encrypt.V = 2;
  encrypt.keyLength = 128;
  encrypt.permissions = -44;
  encrypt.O.put(ownerEntry);
  encrypt.U.put(userEntry);
  return encrypt;
}

std::string written(CEncrypt encrypt, const std::string& version = "%PDF-1.4") {
  CDestFile dest;
  dest.header = version;
  CSourFile source{std::string()};
  EXPECT_TRUE(encrypt.Write(dest, source));
  return dest;
}

/// Reads a written dictionary.
CEncrypt readBack(const std::string& text) {
  CSourFile source(text + " ");
  CEncrypt encrypt;
  encrypt.setIdentity(SObj(7, 0));
  EXPECT_TRUE(encrypt.Read(source));
  return encrypt;
}

TEST(WriteEncryptDictionary, OfAnOldVersionHasSevenEntries) {
  EXPECT_EQ(written(record()), "7 0 obj\n<</R 3/Length 128/Filter /Standard/P -44/V 2/O(" + ownerEntry +
                                   ")/U(" + userEntry + ")>>endobj\n");
}

TEST(WriteEncryptDictionary, OfANewVersionHasACryptFilterToo) {
  EXPECT_EQ(written(record(), "%PDF-1.6"),
            "7 0 obj\n<</R 3/Length 128/Filter /Standard/P -44/V 2/O(" + ownerEntry + ")/U(" + userEntry +
                ")\n/CF<</StdCF<</Length 16/CFM/V2/AuthEvent/DocOpen>>>>/StmF/StdCF/StrF/StdCF>>endobj\n");
}

TEST(WriteEncryptDictionary, OfANewVersionMayLeaveTheMetadataInClear) {
  CEncrypt encrypt = record();
  encrypt.encryptMetadata = false;
  EXPECT_EQ(written(encrypt, "%PDF-1.6"),
            "7 0 obj\n<</R 3/Length 128/Filter /Standard/P -44/V 2/O(" + ownerEntry + ")/U(" + userEntry +
                ")\n/CF<</StdCF<</Length 16/CFM/V2/AuthEvent/DocOpen>>>>/StmF/StdCF/StrF/StdCF"
                "/EncryptMetadata false>>endobj\n");
}

TEST(WriteEncryptDictionary, OfAnOldVersionSaysNothingOfTheMetadata) {
  CEncrypt encrypt = record();
  encrypt.encryptMetadata = false;
  EXPECT_EQ(written(encrypt), written(record()));
}

struct VersionCase {
  const char* version;
  bool cryptFilter;
};

class OutputVersion : public testing::TestWithParam<VersionCase> {};

TEST_P(OutputVersion, IsComparedAsAText) {
  const std::string text = written(record(), GetParam().version);
  EXPECT_EQ(text.find("/CF<<") != std::string::npos, GetParam().cryptFilter);
}

INSTANTIATE_TEST_SUITE_P(Versions, OutputVersion,
                         testing::Values(VersionCase{"", false}, VersionCase{"%PDF-1.3", false},
                                         VersionCase{"%PDF-1.5", false}, VersionCase{"%PDF-1.10", false},
                                         VersionCase{"%PDF-1.59", false}, VersionCase{"%PDF-1.6", true},
                                         VersionCase{"%PDF-1.60", true}, VersionCase{"%PDF-1.7", true},
                                         VersionCase{"%PDF-2.0", true}));

TEST(WriteEncryptDictionary, CryptFilterIsV2WhateverTheMethod) {
  for (const int method : {1, 2, 3}) {
    CEncrypt encrypt = record();
    encrypt.method = method;
    EXPECT_EQ(written(encrypt, "%PDF-1.7"), written(record(), "%PDF-1.7")) << method;
  }
}

TEST(WriteEncryptDictionary, FilterIsTheStandardOneWhateverWasRead) {
  CEncrypt encrypt = record();
  encrypt.filterName = "/Adobe.PubSec";
  encrypt.handler = CEncrypt::otherHandler;
  EXPECT_EQ(written(encrypt), written(record()));
}

TEST(WriteEncryptDictionary, EntriesOfNewerRevisionsAreNotWritten) {
  CEncrypt encrypt = record();
  encrypt.OE.put("oe");
  encrypt.UE.put("ue");
  encrypt.Perms.put("perms");
  EXPECT_EQ(written(encrypt), written(record()));
}

TEST(WriteEncryptDictionary, LongEntriesAreCutAndShortOnesFilled) {
  CEncrypt encrypt = record();
  encrypt.O.put(std::string(48, 'o'));
  encrypt.U = {};
  encrypt.U.put("uu");
  EXPECT_EQ(written(encrypt), "7 0 obj\n<</R 3/Length 128/Filter /Standard/P -44/V 2/O(" + ownerEntry +
                                  ")/U(uu" + std::string(30, '\0') + ")>>endobj\n");
}

TEST(WriteEncryptDictionary, BytesOfTheEntriesAreEscapedAndCanBeReadBack) {
  CEncrypt encrypt = record();
  const std::string bytes = "\n\r\t\b\f\\()" + std::string(24, '\xff');
  encrypt.O.put(bytes);
  const std::string text = written(encrypt);
  EXPECT_NE(text.find("/O(\\n\\r\\t\\b\\f\\\\\\(\\)\xff"), std::string::npos);
  EXPECT_EQ(readBack(text).O.first(32), bytes);
}

TEST(WriteEncryptDictionary, ReadsBackAsItWasWritten) {
  CEncrypt encrypt = record();
  encrypt.R = 4;
  encrypt.V = 4;
  encrypt.encryptMetadata = false;
  const CEncrypt read = readBack(written(encrypt, "%PDF-1.6"));
  EXPECT_EQ(read.R, 4);
  EXPECT_EQ(read.V, 4);
  EXPECT_EQ(read.keyLength, 128);
  EXPECT_EQ(read.permissions, -44);
  EXPECT_EQ(read.filterName, "/Standard");
  EXPECT_EQ(read.O.first(33), ownerEntry + '\0');
  EXPECT_EQ(read.U.first(33), userEntry + '\0');
  EXPECT_FALSE(read.encryptMetadata);
}

TEST(WriteEncryptDictionary, OfAesReadsBackAsRc4) {
  CEncrypt encrypt = record();
  encrypt.R = 4;
  encrypt.V = 4;
  encrypt.method = 2;
  EXPECT_EQ(readBack(written(encrypt, "%PDF-1.6")).method, 1);
}

TEST(WriteEncryptDictionary, NumbersAreWrittenAsTheyAre) {
  CEncrypt encrypt;
  encrypt.setIdentity(SObj(12, 3));
  encrypt.permissions = -2147483647 - 1;
  const std::string zeros(32, '\0');
  EXPECT_EQ(written(encrypt), "12 3 obj\n<</R 0/Length 0/Filter /Standard/P -2147483648/V 0/O(" + zeros +
                                  ")/U(" + zeros + ")>>endobj\n");
}

TEST(WriteEncryptDictionary, IsRecordedAndItsStringsStayInClear) {
  CDestFile dest;
  CEncrypt& own = dest.fileInfo.encrypt;
  own = record();
  own.accessState = CEncrypt::keyFromHost;
  own.method = 1;
  own.fileKey.put("0123456789abcdef");
  dest.append("before.");
  dest.start = 2;
  dest.endMark = 7;
  dest.currentObject = SObj(5, 1);
  CSourFile source{std::string()};
  EXPECT_TRUE(own.Write(dest, source));
  EXPECT_EQ(static_cast<const std::string&>(dest), "before." + written(record(), ""));
  EXPECT_EQ(dest.fileInfo.objEntries.at(SObj(7, 0)).entryOffset, 5);
  EXPECT_EQ(dest.fileInfo.objEntries.at(SObj(7, 0)).entryFlag, 'n');
  EXPECT_EQ(dest.currentObject.objNum, 0);
  EXPECT_EQ(dest.currentObject.genNum, 0);
}

}  // namespace
