#include "TesselPage/Security/tessel_encrypt.h"

#include <gtest/gtest.h>

#include <string>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "Tests/Support/pdf_builder.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

constexpr int rc4 = 1;
constexpr int aesV2 = 2;
constexpr int aesV3 = 3;

/// A record, and what Read said of it.
struct ReadRecord {
  bool result = false;
  CEncrypt record;
  std::string left;  ///< the token behind
};

ReadRecord readFrom(const std::string& text, int number) {
  CSourFile source(text);
  ReadRecord read;
  read.record.setIdentity(SObj(number, 0));
  read.result = read.record.Read(source);
  source >> read.left;
  return read;
}

/// A dictionary that is direct in a trailer.
ReadRecord readDirect(const std::string& entries) { return readFrom("<<" + entries + ">> behind ", 0); }

ReadRecord readIndirect(const std::string& entries) {
  return readFrom("9 0 obj\n<<" + entries + ">>\nendobj\nbehind ", 9);
}

std::string head(const BoundedBytes& bytes, std::size_t count) { return bytes.first(count); }

TEST(EncryptDictionary, DefaultsAreThoseOfNoDictionary) {
  const CEncrypt record;
  EXPECT_EQ(record.permissions, -1);
  EXPECT_EQ(record.keyLength, 0);
  EXPECT_EQ(record.R, 0);
  EXPECT_EQ(record.V, 0);
  EXPECT_TRUE(record.encryptMetadata);
  EXPECT_EQ(record.accessState, 0);
  EXPECT_EQ(record.version, "%PDF-1.3");
  EXPECT_EQ(record.handler, 0);
  EXPECT_FALSE(record.activeForReading());
  EXPECT_FALSE(record.activeForWriting());
}

TEST(EncryptDictionary, ReadsEveryKey) {
  const ReadRecord read = readIndirect(
      "/Filter /Standard /R 6 /V 5 /Length 256 /P -44 /O (owner) /U <75736572> /OE (oe) /UE (ue) /Perms "
      "(perms)");
  EXPECT_TRUE(read.result);
  EXPECT_EQ(read.left, "behind");
  EXPECT_EQ(read.record.filterName, "/Standard");
  EXPECT_EQ(read.record.handler, CEncrypt::standardHandler);
  EXPECT_EQ(read.record.R, 6);
  EXPECT_EQ(read.record.V, 5);
  EXPECT_EQ(read.record.permissions, -44);
  EXPECT_EQ(head(read.record.O, 6), std::string("owner\0", 6));
  EXPECT_EQ(head(read.record.U, 4), "user");
  EXPECT_EQ(head(read.record.OE, 2), "oe");
  EXPECT_EQ(head(read.record.UE, 2), "ue");
  EXPECT_EQ(head(read.record.Perms, 5), "perms");
}

TEST(EncryptDictionary, EscapesOfItsStringsAreUndone) {
  EXPECT_EQ(head(readDirect("/O (a\\(\\101\\n)").record.O, 4), "a(A\n");
}

struct HandlerCase {
  const char* filter;
  bool result;
  int handler;
};

TEST(EncryptDictionary, KnowsFourHandlers) {
  constexpr HandlerCase rows[] = {{"/Standard", true, 1},      {"/Entrust.PPKEF", true, 3},
                                  {"/Adobe.PPKLite", true, 3}, {"/Adobe.PubSec", true, 3},
                                  {"/FooBar", false, 0},       {"/standard", false, 0}};
  for (const HandlerCase& row : rows) {
    const ReadRecord read = readDirect(std::string("/Filter ") + row.filter);
    EXPECT_EQ(read.result, row.result) << row.filter;
    EXPECT_EQ(read.record.handler, row.handler) << row.filter;
    EXPECT_EQ(read.record.filterName, row.result ? row.filter : "");
  }
}

TEST(EncryptDictionary, CryptFiltersMakeAnyHandlerTheStandardOne) {
  EXPECT_EQ(readDirect("/Filter/Adobe.PubSec/CF<<>>").record.handler, CEncrypt::standardHandler);
  EXPECT_EQ(readDirect("/CF<<>>/Filter/Adobe.PubSec").record.handler, CEncrypt::otherHandler);
}

struct PermissionsCase {
  const char* text;
  bool result;
  int permissions;
};

TEST(EncryptDictionary, PermissionsMayBeSignedOrUnsigned) {
  constexpr PermissionsCase rows[] = {{"-4", true, -4},
                                      {"4294967292", true, -4},
                                      {"2147483647", true, 2147483647},
                                      {"2147483648", true, -2147483647 - 1},
                                      {"0", true, 0}};
  for (const PermissionsCase& row : rows) {
    const ReadRecord read = readDirect(std::string("/P ") + row.text);
    EXPECT_EQ(read.result, row.result) << row.text;
    EXPECT_EQ(read.record.permissions, row.permissions) << row.text;
  }
  EXPECT_FALSE(readDirect("/P 99999999999").result);
  EXPECT_FALSE(readDirect("/P /none").result);
}

TEST(EncryptDictionary, ANumberThatCantBeReadFails) {
  for (const char* entry : {"/R /x", "/V (a)", "/Length <<", "/Length 2147483648"})
    EXPECT_FALSE(readDirect(entry).result) << entry;
}

struct MethodCase {
  const char* entries;
  int method;
};

TEST(EncryptDictionary, MethodNeedsVersionAndCryptFilter) {
  constexpr MethodCase rows[] = {
      {"/V 4/CF<</StdCF<</CFM/V2>>>>", rc4},
      {"/V 4/CF<</StdCF<</CFM/AESV2>>>>", aesV2},
      {"/V 4/CF<</DefaultCryptFilter<</CFM/AESV2>>>>", aesV2},
      {"/V 4/CF<</OtherCF<</CFM/AESV2>>>>", rc4},
      {"/V 4/CF<</OtherCF<</Type/CryptFilter/CFM/V2>>/StdCF<</CFM/AESV2>>>>", aesV2},
      {"/V 5/CF<</StdCF<</CFM/AESV2>>>>", rc4},
      {"/V 5/CF<</StdCF<</CFM/AESV3>>>>", aesV3},
      {"/V 4/CF<</StdCF<</CFM/AESV3>>>>", rc4},
      {"/V 2/CF<</StdCF<</CFM/AESV2>>>>", rc4},
      {"/CF<</StdCF<</AuthEvent/DocOpen/CFM/AESV2/Length 16>>>>/V 4", aesV2},
      {"/CF<</StdCF<</Nested<</A 1>>/CFM/AESV2>>>>/V 4", aesV2},
  };
  for (const MethodCase& row : rows) {
    EXPECT_EQ(readDirect(row.entries).record.method, row.method) << row.entries;
    EXPECT_EQ(readIndirect(row.entries).record.method, row.method) << row.entries;
  }
}

TEST(EncryptDictionary, KeyLengthIsNeverThatOfACryptFilter) {
  EXPECT_EQ(readIndirect("/V 4/R 4/CF<</StdCF<</CFM/AESV2/Length 16>>>>").record.keyLength, 128);
  EXPECT_EQ(readIndirect("/CF<</StdCF<</Length 16>>>>/V 1").record.keyLength, 40);
}

struct LengthCase {
  const char* entries;
  int length;
  bool metadata;  ///< with /EncryptMetadata false
};

TEST(EncryptDictionary, LengthAndMetadataFlagAreSettledByTheFirstRowThatFits) {
  constexpr LengthCase rows[] = {
      {"/Length 64/V 2/R 3", 64, true},
      {"/Length 128/V 4/R 4", 128, false},
      {"/Length 128/V 2/R 4", 128, false},
      {"/Length 128/V 4/R 3", 128, false},
      {"/Length 0/V 2/R 3", 40, true},
      {"/Length -8/V 1/R 2", 40, true},
      {"/V 1/R 2", 40, true},
      {"/V 2/R 3", 40, true},
      {"/V 2/R 4", 40, false},
      {"/V 5/R 6", 256, false},
      {"/V 5/R 2", 256, false},
      {"/R 2", 40, true},
      {"/R 3", 128, true},
      {"/R 4", 128, false},
      {"/V 3/R 3", 128, true},
      {"/V 3/R 4", 128, false},
      {"/V 4/R 3", 128, false},
      {"/V 4/R 4", 128, false},
  };
  for (const LengthCase& row : rows) {
    const ReadRecord read = readDirect(std::string(row.entries) + "/EncryptMetadata false");
    EXPECT_EQ(read.record.keyLength, row.length) << row.entries;
    EXPECT_EQ(read.record.encryptMetadata, row.metadata) << row.entries;
  }
}

TEST(EncryptDictionary, MetadataFlagMayStandInTheCryptFilter) {
  EXPECT_FALSE(readDirect("/V 4/R 4/CF<</StdCF<</EncryptMetadata false>>>>").record.encryptMetadata);
  EXPECT_TRUE(readDirect("/V 4/R 4/EncryptMetadata true").record.encryptMetadata);
}

TEST(EncryptDictionary, CryptFiltersMayBeReferences) {
  const Source source = pdf()
                            .onePage("")
                            .object(9, "<</CF 10 0 R/Filter/Standard/V 4/R 4/Length 128>>")
                            .object(10, "<</StdCF 11 0 R>>")
                            .object(11, "<</CFM/AESV2/EncryptMetadata false>>")
                            .trailer("/Encrypt 9 0 R/ID[(a)(b)]")
                            .open();
  const CEncrypt& record = source->fileInfo.encrypt;
  EXPECT_EQ(record.method, aesV2);
  EXPECT_EQ(record.R, 4);
  EXPECT_FALSE(record.encryptMetadata);
}

TEST(EncryptDictionary, CryptFiltersBehindAReferenceThatLeadsNowhereAreNone) {
  for (const char* filters : {"10 0 R", "<</StdCF 10 0 R>>", "9 0 R"}) {
    const Source source =
        pdf()
            .onePage("")
            .object(9, std::string("<</CF ") + filters + "/Filter/Standard/V 4/R 4/Length 128>>")
            .trailer("/Encrypt 9 0 R/ID[(a)(b)]")
            .open();
    const CEncrypt& record = source->fileInfo.encrypt;
    EXPECT_EQ(record.method, rc4) << filters;
    EXPECT_EQ(record.R, 4) << filters;
  }
}

TEST(EncryptDictionary, AnUnknownNestedDictionaryEndsADirectOneEarly) {
  const std::string entries = "/V 2/Other<</A 1>>/R 3";
  EXPECT_EQ(readDirect(entries).record.R, 0);
  EXPECT_EQ(readDirect(entries).left, "/R");
  EXPECT_EQ(readIndirect(entries).record.R, 3);
}

TEST(EncryptDictionary, AStringKeepsAtMost256Bytes) {
  const ReadRecord read = readDirect("/O (" + std::string(300, 'o') + ")/U (" + std::string(5, 'u') + ")");
  EXPECT_TRUE(read.result);
  EXPECT_EQ(head(read.record.O, 1000), std::string(256, 'o'));
  EXPECT_EQ(head(read.record.U, 8), std::string("uuuuu\0\0\0", 8));
}

TEST(EncryptDictionary, FiveMegabytesOfOwnerEntryAreCut) {
  const ReadRecord read = readDirect("/R 3/O (" + std::string(5'000'000, 'o') + ")/P -4");
  EXPECT_TRUE(read.result);
  EXPECT_EQ(read.record.permissions, -4);
}

TEST(EncryptDictionary, EveryTruncationEnds) {
  const std::string whole =
      "9 0 obj<</Filter/Standard/V 4/R 4/Length 128/P -4/O(0123)/U<4142>/CF<</StdCF<</CFM/AESV2>>>>>>endobj";
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const ReadRecord read = readFrom(whole.substr(0, size), 9);
    EXPECT_LE(read.record.R, 4);
  }
}

TEST(BoundedBytes, ANewValueLeavesWhatStoodBehindIt) {
  BoundedBytes bytes;
  bytes.put("abcdef");
  bytes.put("XY");
  EXPECT_EQ(bytes.first(7), std::string("XYcdef\0", 7));
  bytes.put("");
  EXPECT_EQ(bytes.first(2), "XY");
}

TEST(EncryptRecord, PasswordIsCutAt32BytesAndEndsAtAZeroByte) {
  CEncrypt record;
  record.setPassword(std::string(40, 'p'));
  EXPECT_EQ(record.passwordText(), std::string(32, 'p'));
  record.setPassword(std::string("ab\0cd", 5));
  EXPECT_EQ(record.passwordText(), "ab");
}

TEST(EncryptRecord, IsActiveForWritingWithAKeyAndAnAccessState) {
  CEncrypt record;
  record.accessState = CEncrypt::keyFromHost;
  EXPECT_FALSE(record.activeForWriting());
  record.keyLength = 40;
  EXPECT_TRUE(record.activeForWriting());
}

TEST(EncryptRecord, IsActiveForReadingOnceTheKeyWasSearched) {
  CEncrypt record;
  record.accessState = CEncrypt::openedByEmptyPassword;
  record.keyLength = 40;
  record.R = 2;
  record.V = 1;
  EXPECT_FALSE(record.activeForReading());
  EXPECT_FALSE(record.findFileKey("id"));
  EXPECT_TRUE(record.activeForReading());
  EXPECT_EQ(record.accessState, CEncrypt::openedByPassword);
  EXPECT_FALSE(record.firstAccess);
  EXPECT_TRUE(record.secondAccess);
}

TEST(EncryptRecord, OperationsOfOldDoNothing) {
  std::string data = "abc";
  int length = 3;
  CEncrypt record;
  EXPECT_EQ(record.EncrptStream(data, length), 1);
  EXPECT_EQ(record.EncryptString(data, length), 1);
  EXPECT_EQ(data, "abc");
}

CEncrypt writtenRecord() {
  CEncrypt record;
  record.setIdentity(SObj(7, 0));
  record.R = 3;
  record.V = 2;
  record.keyLength = 128;
  record.permissions = -44;
  record.filterName = "/Adobe.PubSec";
  record.O.put("o(");
  record.U.put(std::string(40, 'u'));
  return record;
}

std::string writeTo(CDestFile& dest, CEncrypt record) {
  CSourFile source{std::string()};
  EXPECT_TRUE(record.Write(dest, source));
  return dest;
}

const std::string zeros = std::string(30, '\0');

TEST(EncryptDictionary, IsWrittenWith32BytesOfBothEntries) {
  CDestFile dest;
  dest.endMark = 12;
  dest.start = 2;
  dest.currentObject = SObj(5, 0);
  EXPECT_EQ(writeTo(dest, writtenRecord()), "7 0 obj\n<</R 3/Length 128/Filter /Standard/P -44/V 2/O(o\\(" +
                                                zeros + ")/U(" + std::string(32, 'u') + ")>>endobj\n");
  EXPECT_EQ(dest.currentObject.objNum, 0);
  EXPECT_EQ(dest.endMark, dest.size());
  ASSERT_EQ(dest.fileInfo.objEntries.count(SObj(7, 0)), 1U);
  EXPECT_EQ(dest.fileInfo.objEntries.at(SObj(7, 0)).entryOffset, 10);
  EXPECT_EQ(dest.fileInfo.objEntries.at(SObj(7, 0)).entryFlag, 'n');
}

TEST(EncryptDictionary, IsWrittenWithACryptFilterFromVersion16On) {
  CEncrypt record = writtenRecord();
  record.method = aesV2;
  record.encryptMetadata = false;
  const std::string filter =
      "\n/CF<</StdCF<</Length 16/CFM/V2/AuthEvent/DocOpen>>>>/StmF/StdCF/StrF/StdCF/EncryptMetadata false";
  for (const char* version : {"%PDF-1.6", "%PDF-1.7", "%PDF-2.0"}) {
    CDestFile dest;
    dest.header = version;
    EXPECT_TRUE(writeTo(dest, record).ends_with(")" + filter + ">>endobj\n")) << version;
  }
  for (const char* version : {"", "%PDF-1.5"}) {
    CDestFile dest;
    dest.header = version;
    EXPECT_EQ(writeTo(dest, record).find("/CF"), std::string::npos) << version;
  }
}

TEST(EncryptDictionary, MetadataFlagIsOnlyWrittenWhenItIsFalse) {
  CDestFile dest;
  dest.header = "%PDF-1.6";
  EXPECT_EQ(writeTo(dest, writtenRecord()).find("/EncryptMetadata"), std::string::npos);
}

TEST(EncryptDictionary, IsFoundByAReferenceOrDirectInTheTrailer) {
  const std::string entries = "<</Filter/Standard/V 1/R 2/P -4/O(o)/U(u)>>";
  const Source indirect =
      pdf().onePage("").object(9, entries).trailer("/Encrypt 9 0 R/ID[(abc)(def)]").open();
  EXPECT_EQ(indirect->fileInfo.encrypt.R, 2);
  EXPECT_EQ(indirect->fileInfo.encrypt.id.objNum, 9);
  EXPECT_EQ(head(indirect->fileInfo.encrypt.fileIdentifier, 3), "abc");
  EXPECT_EQ(indirect->fileInfo.encrypt.fileIdentifierLength, 3);
  EXPECT_TRUE(indirect->fileInfo.encrypt.keySearched);

  const Source direct = pdf().onePage("").trailer("/Encrypt " + entries + "/ID[(abc)(def)]").open();
  EXPECT_EQ(direct->fileInfo.encrypt.R, 2);
  EXPECT_EQ(direct->fileInfo.encrypt.id.objNum, 0);
  EXPECT_TRUE(direct->fileInfo.encrypt.keySearched);
  EXPECT_EQ(direct->fileInfo.fileId.first, "abc");
}

TEST(EncryptDictionary, ANullOneIsNone) {
  const Source source = pdf().onePage("").trailer("/Encrypt null").open();
  EXPECT_EQ(source.result, 0);
  EXPECT_EQ(source->fileInfo.encrypt.accessState, CEncrypt::closed);
}

TEST(EncryptDictionary, NoKeyIsSearchedForAnotherHandler) {
  const Source source =
      pdf().onePage("").object(9, "<</Filter/Adobe.PubSec/V 2/R 3>>").trailer("/Encrypt 9 0 R").open();
  EXPECT_EQ(source.result, 0);
  EXPECT_FALSE(source->fileInfo.encrypt.keySearched);
  EXPECT_EQ(source->fileInfo.encrypt.accessState, CEncrypt::openedByEmptyPassword);
}

TEST(EncryptDictionary, OfAnEnemyEndsWithAResult) {
  const std::string big(1000, 'x');
  const std::string aes = "/CF<</StdCF<</CFM/AESV3>>>>";
  const std::string rows[] = {
      "/V 9/R 9/P -4/O(o)/U(u)",
      "/V 2147483647/R 2147483647",
      "/V 2/R 3/Length 2147483647/O(o)/U(u)",
      "/V 2/R 3/Length 2147483648/O(o)/U(u)",
      "/V 2/R 3/Length 7/O(o)/U(u)",
      "/V 4/R 4/Length -128/CF<</StdCF<</CFM/AESV2>>>>",
      "/V 4/R 4/Length 8/CF<</StdCF<</CFM/AESV2>>>>",
      "/V 5/R 5" + aes,
      "/V 5/R 6" + aes,
      "/V 5/R 6/Length 40" + aes + "/O(ooooo)/U(uuuuu)/OE()/UE(u)/Perms(p)",
      "/V 5/R 6" + aes + "/O(" + big + ")/U(" + big + ")/OE(" + big + ")/UE(" + big + ")/Perms(" + big + ")",
      "/V 2/R 3/CF<<",
      "/V 2/R 3/CF<</StdCF<<",
      "/O",
      "/Filter",
      "/P",
  };
  for (const std::string& entries : rows) {
    OpenPage open = pdf()
                        .onePage("/Contents 4 0 R/Resources<</P<</S(abc)/H<" + std::string(64, '4') + ">>>>>")
                        .stream(4, "", std::string(48, 'c'))
                        .object(9, "<</Filter/Standard" + entries + ">>")
                        .trailer("/Encrypt 9 0 R")
                        .openPage("password");
    EXPECT_TRUE(open.result == 0 || open.result == Result::xrefNotReadable) << open.result << entries;
    if (open.result != 0) continue;
    const std::string* content = nullptr;
    open->setPageNo(1);
    EXPECT_EQ(open->getPageContents(&content), 0) << entries;
    EXPECT_NE(open->getPageRootString(0).find("/Resources"), std::string::npos) << entries;
  }
}

TEST(EncryptDictionary, AnInfoObjectOutsideTheTableLeavesTheDictionaryUnread) {
  const Source source = pdf()
                            .onePage("")
                            .object(9, "<</Filter/Standard/V 1/R 2>>")
                            .trailer("/Info 77 0 R/Encrypt 9 0 R")
                            .open();
  EXPECT_EQ(source->fileInfo.encrypt.R, 0);
}

}  // namespace
