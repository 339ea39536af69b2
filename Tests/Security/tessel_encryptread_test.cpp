// How the encryption dictionary is read where it is broken, nested or next to another object.

#include <gtest/gtest.h>

#include <string>

#include "TesselPage/Security/tessel_encrypt.h"
#include "TesselPage/Security/tessel_encryptbridge.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "Tests/Structure/raw_source.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

struct ReadRecord {
  bool result = false;
  CEncrypt record;
};

ReadRecord readFrom(const std::string& text, int number = 0) {
  CSourFile source(text);
  ReadRecord read;
  read.record.setIdentity(SObj(number, 0));
  read.result = read.record.Read(source);
  return read;
}

TEST(ReadEncryptDictionary, DefaultsAreEmpty) {
  const CEncrypt record;
  for (const BoundedBytes* field :
       {&record.O, &record.U, &record.OE, &record.UE, &record.Perms, &record.fileIdentifier, &record.fileKey})
    EXPECT_EQ(field->first(256), std::string(256, '\0'));
  EXPECT_EQ(record.filterName + record.password + record.ownerPassword + record.userPassword, "");
  EXPECT_EQ(record.fileIdentifierLength, 0);
  EXPECT_EQ(record.method, 0);
  EXPECT_FALSE(record.firstAccess || record.secondAccess);
}

struct HeadCase {
  const char* text;
  bool result;
  int R;
};

TEST(ReadEncryptDictionary, AHeadThatDoesNotEndInObjMustBeFollowedByADictionaryOrAnArray) {
  constexpr HeadCase rows[] = {{"9 0 obj <</R 2>> endobj ", true, 2},
                               {"9 0 xyz <</R 2>> endobj ", true, 2},
                               {"9 0 xyz [/R 2] endobj ", true, 2},
                               {"9 0 xyz <ab/R 2> endobj ", true, 2},
                               {"9 0 xyz /R 2 endobj ", false, 0},
                               {"9 0 xyz (/R 2) endobj ", false, 0},
                               {"9 0 xyz", false, 0}};
  for (const HeadCase& row : rows) {
    const ReadRecord read = readFrom(row.text, 9);
    EXPECT_EQ(read.result, row.result) << row.text;
    EXPECT_EQ(read.record.R, row.R) << row.text;
  }
}

TEST(ReadEncryptDictionary, AValueThatIsCutOffFails) {
  for (const char* text : {"<</Filter ", "<</R ", "<</V ", "<</Length ", "<</P ", "<</P 4294967296 "})
    EXPECT_FALSE(readFrom(text).result) << text;
}

/// Object 9 without its last word, and object 10 behind it.
ReadRecord readUnfinished(unsigned char entryType) {
  const std::string first = "\n9 0 obj\n<</R 3/V 2>>\n";
  RawSource source(first + "10 0 obj\n<</R 9>>\nendobj ");
  for (const auto& [number, offset] : {std::pair{9, 1LL}, {10, static_cast<long long>(first.size())}}) {
    SObjState& entry = source.info().objEntries[SObj(number, 0)];
    entry.entryOffset = offset;
    entry.entryType = entryType;
  }
  source->seekg(1);
  ReadRecord read;
  read.record.setIdentity(SObj(9, 0));
  read.result = read.record.Read(*source);
  return read;
}

TEST(ReadEncryptDictionary, EndsWhereTheNextObjectBeginsWhenItIsAPlainOne) {
  const ReadRecord plain = readUnfinished(1);
  EXPECT_TRUE(plain.result);
  EXPECT_EQ(plain.record.R, 3);
  const ReadRecord other = readUnfinished(2);
  EXPECT_TRUE(other.result);
  EXPECT_EQ(other.record.R, 9);
}

struct MethodCase {
  const char* entries;
  int method;
};

TEST(ReadEncryptDictionary, MethodIsWhatAnyKnownCryptFilterNoted) {
  constexpr MethodCase rows[] = {
      {"", 1},
      {"/V 4", 1},
      {"/V 4/CFM/AESV2", 1},
      {"/V 4/CF<</StdCF<</CFM/None>>>>", 1},
      {"/V 4/CF<</StdCF<</CFM/Unknown>>>>", 1},
      {"/V 4/CF<</CFM/AESV2>>", 1},
      {"/V 4/CF<</StdCF<</Length/CFM/AESV2>>>>", 1},  // what follows /Length is skipped
      {"/V 4/CF<</StdCF<</EncryptMetadata/CFM/AESV2>>>>", 1},
      {"/V 4/CF<</StdCF<</Length 16/CFM/AESV2>>>>", 2},
      {"/V 4/CF<</StdCF<</CFM/AESV2>>/DefaultCryptFilter<</CFM/V2>>>>", 2},
      {"/V 4/CF<</DefaultCryptFilter<</CFM/V2>>/StdCF<</CFM/AESV2>>>>", 2},
      {"/V 4/CF<</StdCF<</CFM/AESV3>>/DefaultCryptFilter<</CFM/AESV2>>>>", 2},
      {"/V 5/CF<</StdCF<</CFM/AESV2>>/DefaultCryptFilter<</CFM/AESV3>>>>", 3},
      {"/V 3/CF<</StdCF<</CFM/AESV2>>>>", 1},
      {"/V 6/CF<</StdCF<</CFM/AESV3>>>>", 1},
  };
  for (const MethodCase& row : rows) {
    const ReadRecord read = readFrom(std::string("<<") + row.entries + ">> ");
    EXPECT_TRUE(read.result);
    EXPECT_EQ(read.record.method, row.method) << row.entries;
  }
}

struct LengthCase {
  const char* entries;
  int length;
  bool metadata;  ///< with /EncryptMetadata false
};

TEST(ReadEncryptDictionary, LengthsThatTheTableHasAtItsEdges) {
  constexpr LengthCase rows[] = {
      {"/Length 1/V 1/R 2", 1, true},
      {"/Length 40/V 5/R 6", 40, false},
      {"/Length 64/V 3/R 3", 64, true},
      {"/Length 64/V 3/R 4", 64, false},
      {"/Length 64", 64, true},
      {"", 128, true},
      {"/V 0/R 2", 40, true},
      {"/V 1/R 4", 40, false},
      {"/Length 0/V 5/R 3", 256, false},
      {"/V 6/R 7", 128, false},
      {"/Length 0/V 4/R 4", 128, false},
  };
  for (const LengthCase& row : rows) {
    const ReadRecord read = readFrom(std::string("<<") + row.entries + "/EncryptMetadata false>> ");
    EXPECT_EQ(read.record.keyLength, row.length) << row.entries;
    EXPECT_EQ(read.record.encryptMetadata, row.metadata) << row.entries;
  }
}

struct IdentityCase {
  const char* entries;
  bool identity;
};

// A filter that isn't named is the identity one too; before version 4 there are none.
TEST(ReadEncryptDictionary, ContentsHaveTheIdentityFilterWhenStreamsAndStringsHave) {
  constexpr IdentityCase rows[] = {{"/V 5/StmF/Identity/StrF/Identity", true},
                                   {"/StrF/Identity/StmF/Identity/V 4", true},
                                   {"/V 5", true},
                                   {"/V 4/StmF/Identity", true},
                                   {"/V 5/StmF/StdCF/StrF/Identity", false},
                                   {"/V 5/StmF/Identity/StrF/StdCF", false},
                                   {"/V 2", false},
                                   {"/V 2/StmF/Identity/StrF/Identity", false}};
  for (const IdentityCase& row : rows) {
    const ReadRecord read = readFrom(std::string("<</Filter/Standard/R 4") + row.entries + ">>");
    EXPECT_EQ(read.record.identityContents, row.identity) << row.entries;
    EXPECT_FALSE(read.record.leavesContents()) << row.entries;
  }
}

TEST(ReadEncryptDictionary, TheNameOfAFilterIsPassedOverLikeAnyOtherToken) {
  const ReadRecord read = readFrom("<</Filter/Standard/StmF/R 4/StrF/V 4>>");
  EXPECT_TRUE(read.result);
  EXPECT_EQ(read.record.R, 4);
  EXPECT_EQ(read.record.V, 4);
}

TEST(ReadEncryptDictionary, OnlyTheWordFalseClearsTheMetadataFlag) {
  for (const char* word : {"true", "null", "0", "/false", "False"})
    EXPECT_TRUE(readFrom(std::string("<</V 4/R 4/EncryptMetadata ") + word + ">> ").record.encryptMetadata)
        << word;
  EXPECT_TRUE(readFrom("<</V 4/R 4/CF<</Other<</EncryptMetadata false>>>>>> ").record.encryptMetadata);
}

TEST(ReadEncryptDictionary, KeysBehindTheCryptFiltersStillCount) {
  const ReadRecord read =
      readFrom("<</CF<</A<</B<</C 1>>>>/StdCF<</CFM/AESV2/D<</E 1>>>>/F<</G 1>>>>/V 4/R 4/P -8>> ");
  EXPECT_EQ(read.record.method, 2);
  EXPECT_EQ(read.record.R, 4);
  EXPECT_EQ(read.record.permissions, -8);
}

// Strings of the dictionary are never encrypted, whatever object of whatever file it is.
TEST(ReadEncryptDictionary, ItsStringsAreTakenAsTheyAreFromAFileThatDecrypts) {
  for (const int number : {0, 7, 9}) {
    const std::string entries = "<</O(sixteen bytes o!)/U<7573657220656e747279>/V 2>>";
    CSourFile source(number == 0 ? entries + " " : std::to_string(number) + " 0 obj" + entries + "endobj ");
    CEncrypt& active = source.fileInfo.encrypt;
    active.setIdentity(SObj(7, 0));
    active.accessState = CEncrypt::openedByPassword;
    active.keySearched = true;
    active.keyLength = 128;
    active.R = 3;
    active.method = 1;
    active.fileKey.put("0123456789abcdef");
    CEncrypt record;
    record.setIdentity(SObj(number, 0));
    EXPECT_TRUE(record.Read(source));
    EXPECT_EQ(record.O.first(17), std::string("sixteen bytes o!\0", 17)) << number;
    EXPECT_EQ(record.U.first(11), std::string("user entry\0", 11)) << number;
    EXPECT_EQ(active.keyLength, 128);
    EXPECT_TRUE(active.activeForReading());
  }
}

}  // namespace
