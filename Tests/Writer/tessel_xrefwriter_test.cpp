#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "TesselPage/Structure/tessel_fileinfo.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Writer/tessel_destfile.h"

using namespace TESSEL;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A line of a table.
struct Line {
  int number;
  int generation;
  long long offset;
  unsigned char flag;
};
using Lines = std::vector<Line>;

void enter(CFileInfo& info, const Lines& lines) {
  for (const Line& line : lines) {
    SObjState& entry = info.objEntries[SObj(line.number, line.generation)];
    entry.entryOffset = line.offset;
    entry.entryFlag = line.flag;
  }
}

/// The table as "number generation offset flag", in key order.
std::vector<std::string> tableOf(const CFileInfo& info) {
  std::vector<std::string> table;
  for (const auto& [id, entry] : info.objEntries)
    table.push_back(std::to_string(id.objNum) + " " + std::to_string(id.genNum) + " " +
                    std::to_string(entry.entryOffset) + " " + static_cast<char>(entry.entryFlag));
  return table;
}

std::vector<std::string> tidied(const Lines& lines) {
  CFileInfo info;
  enter(info, lines);
  info.Tidy();
  return tableOf(info);
}

// Tidying
// ---------------------------------------------------------------------------------------------------------

TEST(TidyTable, MissingNumbersBecomeFreeAndAreChained) {
  EXPECT_THAT(tidied({{1, 0, 100, 'n'}, {3, 0, 300, 'n'}}),
              ElementsAre("0 65535 2 f", "1 0 100 n", "2 65535 0 f", "3 0 300 n"));
}

TEST(TidyTable, EachFreeEntryPointsAtTheNextHigherOne) {
  EXPECT_THAT(tidied({{2, 0, 20, 'n'}, {6, 0, 60, 'n'}}),
              ElementsAre("0 65535 1 f", "1 65535 3 f", "2 0 20 n", "3 65535 4 f", "4 65535 5 f",
                          "5 65535 0 f", "6 0 60 n"));
}

TEST(TidyTable, WithoutGapsOnlyZeroIsFree) {
  EXPECT_THAT(tidied({{1, 0, 10, 'n'}, {2, 0, 20, 'n'}}), ElementsAre("0 65535 0 f", "1 0 10 n", "2 0 20 n"));
}

TEST(TidyTable, OneObjectIsEnough) {
  EXPECT_THAT(tidied({{1, 0, 10, 'n'}}), ElementsAre("0 65535 0 f", "1 0 10 n"));
}

TEST(TidyTable, FreeEntriesThatWereThereJoinTheChainWithTheirGeneration) {
  EXPECT_THAT(tidied({{1, 0, 10, 'n'}, {2, 4, 77, 'f'}, {3, 0, 30, 'n'}, {5, 0, 50, 'n'}}),
              ElementsAre("0 65535 2 f", "1 0 10 n", "2 4 4 f", "3 0 30 n", "4 65535 0 f", "5 0 50 n"));
}

TEST(TidyTable, ZeroThatIsThereJoinsTheChain) {
  EXPECT_THAT(tidied({{0, 65535, 99, 'f'}, {2, 0, 20, 'n'}}),
              ElementsAre("0 65535 1 f", "1 65535 0 f", "2 0 20 n"));
  EXPECT_THAT(tidied({{0, 7, 99, 'f'}, {1, 0, 10, 'n'}}), ElementsAre("0 7 0 f", "1 0 10 n"));
}

TEST(TidyTable, ZeroOfGenerationZeroIsMadeAnew) {
  EXPECT_THAT(tidied({{0, 0, 5, 'n'}, {1, 0, 10, 'n'}}), ElementsAre("0 65535 0 f", "1 0 10 n"));
  EXPECT_THAT(tidied({{0, 0, 5, 'f'}, {0, 65535, 9, 'f'}, {1, 0, 10, 'n'}}),
              ElementsAre("0 65535 0 f", "1 0 10 n"));
}

TEST(TidyTable, OfTwoGenerationsTheHigherStays) {
  EXPECT_THAT(tidied({{1, 0, 100, 'n'}, {1, 3, 130, 'n'}, {2, 0, 200, 'n'}}),
              ElementsAre("0 65535 0 f", "1 3 130 n", "2 0 200 n"));
}

TEST(TidyTable, OfThreeGenerationsTheHighestStays) {
  EXPECT_THAT(tidied({{1, 0, 100, 'n'}, {1, 1, 110, 'n'}, {1, 2, 120, 'n'}, {2, 0, 200, 'n'}}),
              ElementsAre("0 65535 0 f", "1 2 120 n", "2 0 200 n"));
}

TEST(TidyTable, HighestNumberMayHaveTwoGenerations) {
  EXPECT_THAT(tidied({{1, 0, 100, 'n'}, {3, 0, 300, 'n'}, {3, 1, 310, 'n'}}),
              ElementsAre("0 65535 2 f", "1 0 100 n", "2 65535 0 f", "3 1 310 n"));
}

TEST(TidyTable, FreeEntryOfAHigherGenerationReplacesTheObject) {
  EXPECT_THAT(tidied({{1, 0, 100, 'n'}, {1, 1, 88, 'f'}, {2, 0, 200, 'n'}}),
              ElementsAre("0 65535 1 f", "1 1 0 f", "2 0 200 n"));
}

TEST(TidyTable, HighestNumberIsLeftAsItIs) {
  EXPECT_THAT(tidied({{1, 0, 100, 'n'}, {2, 1, 55, 'f'}}),
              ElementsAre("0 65535 0 f", "1 0 100 n", "2 1 55 f"));
}

TEST(TidyTable, EmptyOneStaysEmpty) {
  EXPECT_THAT(tidied({}), IsEmpty());
  EXPECT_THAT(tidied({{0, 0, 5, 'n'}}), IsEmpty());
}

TEST(TidyTable, SecondTimeChangesNothing) {
  CFileInfo info;
  enter(info, {{2, 0, 20, 'n'}, {2, 1, 21, 'n'}, {5, 0, 50, 'n'}});
  info.Tidy();
  const std::vector<std::string> once = tableOf(info);
  info.Tidy();
  EXPECT_EQ(tableOf(info), once);
  EXPECT_THAT(
      once, ElementsAre("0 65535 1 f", "1 65535 3 f", "2 1 21 n", "3 65535 4 f", "4 65535 0 f", "5 0 50 n"));
}

// Table
// ---------------------------------------------------------------------------------------------------------

/// What WriteXRef appends to "body" for these lines, the root being 1 0.
std::string written(const Lines& lines, const SObj& root = SObj(1, 0)) {
  CDestFile dest;
  dest.append("body");
  dest.fileInfo.root = root;
  enter(dest.fileInfo, lines);
  EXPECT_TRUE(dest.fileInfo.WriteXRef(dest));
  EXPECT_TRUE(dest.starts_with("body"));
  return dest.substr(4);
}

TEST(XRefTable, IsOneSectionOfLinesOfTwentyBytes) {
  EXPECT_EQ(written({{0, 65535, 0, 'f'}, {1, 0, 17, 'n'}, {2, 3, 1234, 'n'}}),
            "xref\r\n0 3\r\n"
            "0000000000 65535 f\r\n"
            "0000000017 00000 n\r\n"
            "0000001234 00003 n\r\n"
            "trailer\r\n<</Size 3 /Root 1 0 R >>\nstartxref\n4\n%%EOF");
}

TEST(XRefTable, IsWrittenAsItStandsAlsoWithGaps) {
  EXPECT_EQ(written({{1, 0, 0, 'n'}, {3, 0, 30, 'n'}}),
            "xref\r\n0 2\r\n0000000000 00000 n\r\n0000000030 00000 n\r\n"
            "trailer\r\n<</Size 2 /Root 1 0 R >>\nstartxref\n4\n%%EOF");
}

TEST(XRefTable, TwoGenerationsOfANumberAreTwoLines) {
  EXPECT_EQ(written({{1, 0, 10, 'n'}, {1, 2, 12, 'n'}}),
            "xref\r\n0 2\r\n0000000010 00000 n\r\n0000000012 00002 n\r\n"
            "trailer\r\n<</Size 2 /Root 1 0 R >>\nstartxref\n4\n%%EOF");
}

TEST(XRefTable, EmptyOneHasItsTrailer) {
  EXPECT_EQ(written({}), "xref\r\n0 0\r\ntrailer\r\n<</Size 0 /Root 1 0 R >>\nstartxref\n4\n%%EOF");
}

TEST(XRefTable, OffsetsBeyondTwoGibibytesFitTheLine) {
  EXPECT_EQ(written({{1, 0, 2147483648LL, 'n'}, {2, 0, 4294967297LL, 'n'}, {3, 0, 9999999999LL, 'n'}}),
            "xref\r\n0 3\r\n2147483648 00000 n\r\n4294967297 00000 n\r\n9999999999 00000 n\r\n"
            "trailer\r\n<</Size 3 /Root 1 0 R >>\nstartxref\n4\n%%EOF");
}

TEST(XRefTable, SizeCountsTheFreeEntriesToo) {
  CDestFile dest;
  dest.fileInfo.root = SObj(1, 0);
  enter(dest.fileInfo, {{1, 0, 0, 'n'}, {3, 0, 30, 'n'}});
  dest.fileInfo.Tidy();
  dest.fileInfo.WriteXRef(dest);
  EXPECT_EQ(static_cast<const std::string&>(dest),
            "xref\r\n0 4\r\n0000000002 65535 f\r\n0000000000 00000 n\r\n0000000000 65535 f\r\n"
            "0000000030 00000 n\r\ntrailer\r\n<</Size 4 /Root 1 0 R >>\nstartxref\n0\n%%EOF");
}

// Trailer
// ---------------------------------------------------------------------------------------------------------

/// The trailer dictionary, without "<<" and ">>", that `set` makes of the output's settings.
template <class Set>
std::string trailer(Set set) {
  CDestFile dest;
  dest.fileInfo.root = SObj(8, 1);
  set(dest.fileInfo);
  EXPECT_TRUE(dest.fileInfo.WriteXRef(dest));
  const std::string head = "xref\r\n0 0\r\ntrailer\r\n<<";
  const std::string tail = ">>\nstartxref\n0\n%%EOF";
  EXPECT_TRUE(dest.starts_with(head) && dest.ends_with(tail)) << dest;
  return dest.substr(head.size(), dest.size() - head.size() - tail.size());
}

void setId(CFileInfo& info, const std::string& first, const std::string& second) {
  info.fileId.first = first;
  info.fileId.second = second;
  info.fileId.length = static_cast<long long>(first.size());
}

TEST(Trailer, WithoutIdentifierInfoAndEncryptionHasTwoKeys) {
  EXPECT_EQ(trailer([](CFileInfo&) {}), "/Size 0 /Root 8 1 R ");
}

TEST(Trailer, NamesTheInfoDictionary) {
  EXPECT_EQ(trailer([](CFileInfo& info) { info.info.id = SObj(1, 2); }), "/Size 0 /Root 8 1 R /Info 1 2 R ");
}

TEST(Trailer, NamesTheEncryptionDictionaryAndThenHasAnIdentifier) {
  EXPECT_EQ(trailer([](CFileInfo& info) { info.encrypt.id = SObj(5, 0); }),
            "/Size 0 /Root 8 1 R /Encrypt 5 0 R /ID[<><>]");
}

TEST(Trailer, KeysStandInTheirOrder) {
  EXPECT_EQ(trailer([](CFileInfo& info) {
              info.encrypt.id = SObj(5, 0);
              info.info.id = SObj(4, 0);
              setId(info, "AB", "CD");
            }),
            "/Size 0 /Root 8 1 R /Info 4 0 R /Encrypt 5 0 R /ID[<4142><4344>]");
}

TEST(Trailer, IdentifierIsWrittenInHexadecimalAlsoWithoutEncryption) {
  EXPECT_EQ(trailer([](CFileInfo& info) { setId(info, "J\xff(", "\x0a\\)"); }),
            "/Size 0 /Root 8 1 R /ID[<4aff28><0a5c29>]");
}

TEST(Trailer, MissingSecondIdentifierIsTheFirst) {
  EXPECT_EQ(trailer([](CFileInfo& info) { setId(info, "AB", ""); }), "/Size 0 /Root 8 1 R /ID[<4142><4142>]");
}

TEST(Trailer, SecondIdentifierAloneMakesNoKey) {
  EXPECT_EQ(trailer([](CFileInfo& info) { setId(info, "", "CD"); }), "/Size 0 /Root 8 1 R ");
}

TEST(Trailer, BothIdentifiersHaveTheLengthOfTheFirst) {
  EXPECT_EQ(trailer([](CFileInfo& info) { setId(info, "AB", "CDEF"); }),
            "/Size 0 /Root 8 1 R /ID[<4142><4344>]");
  EXPECT_EQ(trailer([](CFileInfo& info) { setId(info, "AB", "C"); }),
            "/Size 0 /Root 8 1 R /ID[<4142><4300>]");
  EXPECT_EQ(trailer([](CFileInfo& info) {
              setId(info, "ABCD", "EFGH");
              info.fileId.length = 3;
            }),
            "/Size 0 /Root 8 1 R /ID[<414243><454647>]");
}

TEST(Trailer, LongIdentifierHasALineFeedBeforeItsEightyFirstByte) {
  std::string digits;
  for (int i = 0; i < 80; ++i) digits += "41";
  EXPECT_EQ(trailer([](CFileInfo& info) { setId(info, std::string(81, 'A'), ""); }),
            "/Size 0 /Root 8 1 R /ID[<" + digits + "\n41><" + digits + "\n41>]");
}

TEST(Trailer, StartOfTheTableCountsFromTheStartOfTheOutput) {
  CDestFile dest;
  dest.append("host text, then ours");
  dest.start = 11;
  dest.endMark = 15;
  dest.fileInfo.root = SObj(1, 0);
  dest.fileInfo.WriteXRef(dest);
  EXPECT_TRUE(dest.ends_with(">>\nstartxref\n9\n%%EOF")) << dest;
}

// Closing a file
// ---------------------------------------------------------------------------------------------------------

/// An output with an /Info of one key, and an /Encrypt dictionary when `encrypted`.
struct Output {
  explicit Output(const SObj& infoId, bool encrypted = false) {
    dest.fileInfo.root = SObj(1, 0);
    CInfo& info = dest.fileInfo.info;
    info.id = infoId;
    info.title = "T";
    for (std::string* value :
         {&info.author, &info.subject, &info.keywords, &info.creator, &info.producer, &info.trapped})
      value->clear();
    if (encrypted) encrypt();
  }

  void encrypt() {
    CEncrypt& record = dest.fileInfo.encrypt;
    record.id = SObj(5, 0);
    record.R = 2;
    record.V = 1;
    record.keyLength = 40;
    record.permissions = -4;
    record.O.put(std::string(32, 'o'));
    record.U.put(std::string(32, 'u'));
  }

  std::string write() {
    CSourFile source{std::string()};
    EXPECT_TRUE(dest.fileInfo.Write(dest, source));
    return dest;
  }

  CDestFile dest;
};

const std::string infoText = "4 0 obj\n<</Title (T)\nendobj\n";
const std::string encryptText = "5 0 obj\n<</R 2/Length 40/Filter /Standard/P -4/V 1/O(" +
                                std::string(32, 'o') + ")/U(" + std::string(32, 'u') + ")>>endobj\n";

TEST(CloseFile, WritesInfoTableAndTrailer) {
  EXPECT_EQ(infoText.size(), 28U);
  EXPECT_EQ(Output(SObj(4, 0)).write(),
            infoText +
                "xref\r\n0 1\r\n0000000000 00000 n\r\n"
                "trailer\r\n<</Size 1 /Root 1 0 R /Info 4 0 R >>\nstartxref\n28\n%%EOF");
}

TEST(CloseFile, WritesTheEncryptionDictionaryBehindTheInfo) {
  const std::string bodies = infoText + encryptText;
  EXPECT_EQ(Output(SObj(4, 0), true).write(),
            bodies +
                "xref\r\n0 2\r\n0000000000 00000 n\r\n0000000028 00000 n\r\n"
                "trailer\r\n<</Size 2 /Root 1 0 R /Info 4 0 R /Encrypt 5 0 R /ID[<><>]>>\nstartxref\n" +
                std::to_string(bodies.size()) + "\n%%EOF");
}

TEST(CloseFile, TidiesTheTableWithTheRawFlag) {
  Output output(SObj(4, 0), true);
  output.dest.rawFlag = true;
  const std::string bodies = infoText + encryptText;
  EXPECT_EQ(output.write(),
            bodies +
                "xref\r\n0 6\r\n0000000001 65535 f\r\n0000000002 65535 f\r\n0000000003 65535 f\r\n"
                "0000000000 65535 f\r\n0000000000 00000 n\r\n0000000028 00000 n\r\n"
                "trailer\r\n<</Size 6 /Root 1 0 R /Info 4 0 R /Encrypt 5 0 R /ID[<><>]>>\nstartxref\n" +
                std::to_string(bodies.size()) + "\n%%EOF");
}

TEST(CloseFile, InfoWithoutANumberIsWrittenAsObjectZero) {
  EXPECT_EQ(Output(SObj(0, 0)).write(),
            "0 0 obj\n<</Title (T)\nendobj\nxref\r\n0 1\r\n0000000000 00000 n\r\n"
            "trailer\r\n<</Size 1 /Root 1 0 R >>\nstartxref\n28\n%%EOF");
}

TEST(CloseFile, TidyingTakesObjectZeroOutAgain) {
  Output output(SObj(0, 0), true);
  output.dest.rawFlag = true;
  output.write();
  EXPECT_THAT(tableOf(output.dest.fileInfo), ElementsAre("0 65535 1 f", "1 65535 2 f", "2 65535 3 f",
                                                         "3 65535 4 f", "4 65535 0 f", "5 0 28 n"));
}

TEST(CloseFile, EncryptsTheInfoButNeitherItsOwnDictionaryNorTheIdentifier) {
  Output output(SObj(4, 0), true);
  output.dest.fileInfo.info.title = "in clear words";
  CEncrypt& record = output.dest.fileInfo.encrypt;
  record.accessState = CEncrypt::keyFromHost;
  record.method = 1;
  record.fileKey.put("12345");
  setId(output.dest.fileInfo, "AB", "CD");
  const std::string text = output.write();
  EXPECT_TRUE(text.starts_with("4 0 obj\n<</Title ("));
  EXPECT_EQ(text.find("clear"), std::string::npos);
  EXPECT_NE(text.find(encryptText), std::string::npos);
  EXPECT_NE(text.find("/ID[<4142><4344>]"), std::string::npos);
}

// Long tables
// ---------------------------------------------------------------------------------------------------------

constexpr int manyEntries = 100000;
constexpr std::chrono::seconds patience{
    20};  // a table that is gone through again for each entry takes longer

std::string tableLine(long long offset, int generation, char flag) {
  char line[32];
  std::snprintf(line, sizeof line, "%010lld %05d %c\r\n", offset, generation, flag);
  return line;
}

TEST(LongTable, IsTidiedAndWrittenInLinearTime) {
  CDestFile dest;
  dest.fileInfo.root = SObj(2, 0);
  for (int i = 1; i <= manyEntries; ++i) enter(dest.fileInfo, {{2 * i, 0, 10LL * i, 'n'}});
  std::string expected = "xref\r\n0 200001\r\n" + tableLine(1, 65535, 'f');
  for (int i = 1; i <= manyEntries; ++i)
    expected += tableLine(i == manyEntries ? 0 : 2 * i + 1, 65535, 'f') + tableLine(10LL * i, 0, 'n');
  expected += "trailer\r\n<</Size 200001 /Root 2 0 R >>\nstartxref\n0\n%%EOF";

  const auto begin = std::chrono::steady_clock::now();
  dest.fileInfo.Tidy();
  dest.fileInfo.WriteXRef(dest);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, patience);
  EXPECT_EQ(dest.size(), expected.size());
  EXPECT_TRUE(dest == expected);  // not shown: 4 MB
}

TEST(LongTable, OfTwoGenerationsEachKeepsTheHigher) {
  CFileInfo info;
  for (int i = 1; i <= manyEntries / 2; ++i) enter(info, {{i, 0, 1, 'n'}, {i, 1, 2, 'n'}});
  const auto begin = std::chrono::steady_clock::now();
  info.Tidy();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, patience);
  ASSERT_EQ(info.objEntries.size(), manyEntries / 2 + 1U);
  EXPECT_EQ(info.objEntries.begin()->first, SObj(0, 65535));
  EXPECT_EQ(info.objEntries.rbegin()->first, SObj(manyEntries / 2, 1));
  EXPECT_EQ(info.objEntries.count(SObj(manyEntries / 4, 0)), 0U);
}

}  // namespace
