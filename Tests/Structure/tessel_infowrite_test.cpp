#include <gtest/gtest.h>

#include <string>

#include "TesselPage/Security/tessel_encryptbridge.h"
#include "TesselPage/Structure/tessel_info.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "Tests/Structure/raw_source.h"

using namespace TESSEL;
using tessel_test::RawSource;

namespace {

/// A dictionary that says nothing.
CInfo emptyInfo() {
  CInfo info;
  info.setIdentity(SObj(4, 0));
  for (std::string* value : {&info.title, &info.author, &info.subject, &info.keywords, &info.creator,
                             &info.producer, &info.trapped})
    value->clear();
  return info;
}

/// The entries that a dictionary is written with.
std::string entriesOf(CInfo info) {
  CDestFile dest;
  RawSource source("");
  EXPECT_TRUE(info.Write(dest, *source));
  const std::string head = "4 0 obj\n<<";
  EXPECT_TRUE(dest.starts_with(head) && dest.ends_with("endobj\n")) << dest;
  return dest.substr(head.size(), dest.size() - head.size() - 7);
}

// Entries
// ---------------------------------------------------------------------------------------------------------

struct FieldCase {
  std::string CInfo::*field;
  const char* expected;
};

class WrittenField : public testing::TestWithParam<FieldCase> {};

TEST_P(WrittenField, HasItsKey) {
  CInfo info = emptyInfo();
  info.*GetParam().field = "v";
  EXPECT_EQ(entriesOf(info), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Fields, WrittenField,
                         testing::Values(FieldCase{&CInfo::title, "/Title (v)\n"},
                                         FieldCase{&CInfo::author, "/Author (v)\n"},
                                         FieldCase{&CInfo::subject, "/Subject (v)\n"},
                                         FieldCase{&CInfo::keywords, "/Keywords (v)\n"},
                                         FieldCase{&CInfo::creator, "/Creator (v)\n"},
                                         FieldCase{&CInfo::producer, "/Producer (v)\n"},
                                         FieldCase{&CInfo::creationDate, "/CreationDate (v)\n"},
                                         FieldCase{&CInfo::trapped, "/Trapped (v)\n"},
                                         FieldCase{&CInfo::modDate, "/ModDate (v)"}));

TEST(WriteInfo, NineEntriesStandInTheirOrder) {
  CInfo info = emptyInfo();
  info.modDate = "9";
  info.trapped = "8";
  info.creationDate = "7";
  info.producer = "6";
  info.creator = "5";
  info.keywords = "4";
  info.subject = "3";
  info.author = "2";
  info.title = "1";
  EXPECT_EQ(entriesOf(info),
            "/Title (1)\n/Author (2)\n/Subject (3)\n/Keywords (4)\n/Creator (5)\n/Producer (6)\n"
            "/CreationDate (7)\n/Trapped (8)\n/ModDate (9)");
}

TEST(WriteInfo, ThatSaysNothingHasAHeadAndAnEnd) { EXPECT_EQ(entriesOf(emptyInfo()), ""); }

TEST(WriteInfo, NewDocumentSaysWhatItsDefaultsAre) {
  CInfo info;
  info.setIdentity(SObj(4, 0));
  info.author = "somebody";
  EXPECT_EQ(entriesOf(info),
            "/Title (TESSEL)\n/Author (somebody)\n/Subject (Tessel-Merge\\(Split\\)-Kit)\n"
            "/Keywords (TESSEL<>)\n/Creator (TESSEL)\n/Producer (Quillory.Co.Ltd)\n/Trapped (Unknown)\n");
}

TEST(WriteInfo, TrappedOfASourceGoesOutAsAString) {
  CInfo info = emptyInfo();
  RawSource source("4 0 obj <</Trapped/True>> endobj ");
  ASSERT_TRUE(info.Read(*source));
  EXPECT_EQ(entriesOf(info), "/Trapped (/True)\n");
}

struct ValueCase {
  const char* name;
  std::string value;
  std::string expected;
};

TEST(WriteInfo, ValuesAreEscaped) {
  const ValueCase cases[] = {
      {"parentheses", "a(b)c", "a\\(b\\)c"},
      {"backslash", "a\\b", "a\\\\b"},
      {"control bytes", "\n\r\t\b\f", "\\n\\r\\t\\b\\f"},
      {"other bytes", std::string("\0\x01\xfe\xff", 4), std::string("\0\x01\xfe\xff", 4)},
      {"hundred bytes", std::string(100, 'x'), std::string(100, 'x')},
      {"more", std::string(101, 'x'), std::string(100, 'x') + "\\\nx"},
      {"250 bytes", std::string(250, 'x'),
       std::string(100, 'x') + "\\\n" + std::string(100, 'x') + "\\\n" + std::string(50, 'x')}};
  for (const ValueCase& value : cases) {
    CInfo info = emptyInfo();
    info.title = value.value;
    EXPECT_EQ(entriesOf(info), "/Title (" + value.expected + ")\n") << value.name;
  }
}

// Place
// ---------------------------------------------------------------------------------------------------------

TEST(WriteInfo, IsRecordedBehindTheLastObject) {
  CInfo info = emptyInfo();
  info.setIdentity(SObj(4, 2));
  CDestFile dest;
  dest.append("before, and more");
  dest.start = 3;
  dest.endMark = 7;
  RawSource source("");
  EXPECT_TRUE(info.Write(dest, *source));
  EXPECT_EQ(static_cast<const std::string&>(dest), "before, and more4 2 obj\n<<endobj\n");
  const SObjState& entry = dest.fileInfo.objEntries.at(SObj(4, 2));
  EXPECT_EQ(entry.entryOffset, 4);
  EXPECT_EQ(entry.entryFlag, 'n');
  EXPECT_EQ(dest.endMark, dest.size());
  EXPECT_EQ(dest.currentObject, SObj(4, 2));
}

TEST(WriteInfo, CanBeReadBackThoughItIsNotClosed) {
  CInfo info = emptyInfo();
  info.title = std::string(250, '(') + "\n\\)";
  info.modDate = "D:20240101000000+00'00'";
  CDestFile dest;
  RawSource none("");
  info.Write(dest, *none);
  RawSource written(static_cast<const std::string&>(dest) + " ");
  CInfo read = emptyInfo();
  EXPECT_TRUE(read.Read(*written));
  EXPECT_EQ(read.title, info.title);
  EXPECT_EQ(read.modDate, info.modDate);
}

// Encryption
// ---------------------------------------------------------------------------------------------------------

void encryptOutput(CDestFile& dest) {
  CEncrypt& record = dest.fileInfo.encrypt;
  record.R = 2;
  record.V = 1;
  record.method = 1;
  record.keyLength = 40;
  record.accessState = CEncrypt::keyFromHost;
  record.fileKey.put("12345");
}

TEST(WriteInfo, ValuesAreEncryptedUnderItsIdentity) {
  CInfo info = emptyInfo();
  info.setIdentity(SObj(4, 2));
  info.title = "in clear words";
  CDestFile dest;
  encryptOutput(dest);
  dest.currentObject = SObj(9, 0);
  RawSource none("");
  EXPECT_TRUE(info.Write(dest, *none));

  CInfo read = emptyInfo();
  RawSource written(static_cast<const std::string&>(dest) + " ");
  ASSERT_TRUE(read.Read(*written));
  EXPECT_NE(read.title, "in clear words");
  const SObj id(4, 2);
  DecryptString(dest.fileInfo.encrypt, &id, read.title);
  EXPECT_EQ(read.title, "in clear words");
}

TEST(WriteInfo, OfNumberZeroStaysInClear) {
  CInfo info = emptyInfo();
  info.setIdentity(SObj(0, 0));
  info.title = "in clear words";
  CDestFile dest;
  encryptOutput(dest);
  RawSource none("");
  EXPECT_TRUE(info.Write(dest, *none));
  EXPECT_EQ(static_cast<const std::string&>(dest), "0 0 obj\n<</Title (in clear words)\nendobj\n");
}

// Identifier
// ---------------------------------------------------------------------------------------------------------

std::string identifier(const std::string& first, const std::string& second, long long length) {
  CFileID id;
  id.first = first;
  id.second = second;
  id.length = length;
  CDestFile dest;
  RawSource source("");
  EXPECT_TRUE(id.Write(dest, *source));
  return dest;
}

TEST(WriteIdentifier, HasTwoHexadecimalStrings) {
  EXPECT_EQ(identifier("AB", "yz", 2), "/ID[<4142><797a>]");
  EXPECT_EQ(identifier(std::string("\0\x0f\xf0\xff", 4), "()<>", 4), "/ID[<000ff0ff><28293c3e>]");
}

TEST(WriteIdentifier, MayBeEmpty) { EXPECT_EQ(identifier("", "", 0), "/ID[<><>]"); }

TEST(WriteIdentifier, LengthIsThatOfBoth) {
  EXPECT_EQ(identifier("ABC", "wxyz", 3), "/ID[<414243><777879>]");
  EXPECT_EQ(identifier("ABC", "wxyz", 1), "/ID[<41><77>]");
  EXPECT_EQ(identifier("ABC", "w", 3), "/ID[<414243><770000>]");
}

TEST(WriteIdentifier, LongStringsHaveALineFeedBeforeEveryEightiethByte) {
  std::string digits;
  for (int i = 0; i < 80; ++i) digits += "41";
  EXPECT_EQ(identifier(std::string(80, 'A'), std::string(80, 'A'), 80),
            "/ID[<" + digits + "><" + digits + ">]");
  EXPECT_EQ(identifier(std::string(81, 'A'), std::string(81, 'A'), 81),
            "/ID[<" + digits + "\n41><" + digits + "\n41>]");
}

}  // namespace
