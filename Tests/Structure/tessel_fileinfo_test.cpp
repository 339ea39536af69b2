#include "TesselPage/Structure/tessel_fileinfo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Structure/raw_source.h"
#include "Tests/Support/pdf_builder.h"

namespace {

using TESSEL::CFileError;
using TESSEL::SObj;
using tessel_test::pdf;
using tessel_test::RawFile;
using tessel_test::RawSource;
using tessel_test::xrefLine;

/// A table with one object, `number` at `offset`, and its trailer.
std::string table(int number, long long offset, const std::string& trailer) {
  return "xref\n" + std::to_string(number) + " 1\n" + xrefLine(offset) + "trailer\n<<" + trailer + ">>\n";
}

long long offsetOf(RawSource& source, int number, int generation = 0) {
  return source.info().GetObjState(number, generation).entryOffset;
}

// Finding the start.

TEST(XRefStart, TheLastWordOfTheTailWithAnEndMarkCounts) {
  RawFile file;
  file.put(std::string(400, '\n'));
  const long long older = file.put(table(1, 50, "/Size 2"));
  file.end(older);
  const long long newer = file.put(table(2, 60, "/Size 3"));
  file.end(newer);
  file.put("startxref\n17\n");  // no "%%EOF" behind it
  RawSource source(file.bytes);
  source.info().Read(*source);
  EXPECT_EQ(source.info().size, 3);
  EXPECT_EQ(offsetOf(source, 1), 0);
  EXPECT_EQ(offsetOf(source, 2), 60);
}

TEST(XRefStart, AnEndMarkAsTheVeryLastBytesCountsByTheSearchOfTheWholeFile) {
  RawFile file;
  file.put(std::string(1000, '\n'));
  file.end(file.put(table(2, 60, "/Size 3")));
  file.bytes.pop_back();
  ASSERT_TRUE(file.bytes.ends_with("%%EOF"));
  RawSource source(file.bytes);
  source.info().Read(*source);
  EXPECT_EQ(source.info().size, 3);
}

TEST(XRefStart, AFileShorterThanTheTailIsSearchedAsAWhole) {
  RawFile file;
  file.put("%PDF-1.7\n\n");
  file.end(file.put(table(2, 60, "/Size 3")));
  ASSERT_LT(file.bytes.size(), 300U);
  RawSource source(file.bytes);
  source.info().Read(*source);
  EXPECT_TRUE(source->good());
  EXPECT_EQ(source.info().size, 3);
}

TEST(XRefStart, WithoutTheWordTheReadThrows) {
  RawSource source("%PDF-1.7\n1 0 obj <<>> endobj\n");
  EXPECT_THROW(source.info().Read(*source), CFileError);
}

TEST(XRefStart, WithoutTheWordOpeningGives1000AtTheInterface) {
  EXPECT_EQ(tessel_test::PdfBuilder::openPageBytes("%PDF-1.7\n1 0 obj <<>> endobj\n").result, 1000);
}

TEST(XRefStart, TheValueTenOfTheTailIsFollowed) {
  RawFile file;
  file.put("%PDF-1.7\n\n");
  EXPECT_EQ(file.put(table(2, 60, "/Size 3")), 10);
  file.put(std::string(400, '\n'));
  file.end(10);
  RawSource source(file.bytes);
  source.info().Read(*source);
  EXPECT_EQ(source.info().size, 3);
}

/// A file with a table at `place` whose tail says 5, and that says `place` behind twice where it says that.
std::string secondStart(std::size_t place) {
  RawFile file;
  const auto padTo = [&](std::size_t size) { file.bytes.resize(size, '\n'); };
  file.put("%PDF-1.7\n");
  padTo(place);
  file.put(table(2, 60, "/Size 3"));
  padTo(120);
  file.put("startxref\n5\n%%EOF\n");
  padTo(300);
  file.put("startxref\n" + std::to_string(place) + "\n");
  padTo(400);
  return file.bytes;
}

TEST(XRefStart, AValueBelowTenSearchesAgainBehindTwiceItsPlace) {
  RawSource source(secondStart(11));
  source.info().Read(*source);
  EXPECT_EQ(source.info().size, 3);
}

TEST(XRefStart, TheValueTenOfTheSecondSearchEndsTheWalk) {
  RawSource source(secondStart(10));
  source.info().Read(*source);
  EXPECT_TRUE(source->good());
  EXPECT_EQ(source.info().size, 0);
}

TEST(XRefStart, ABadValueOfTheWholeFilesSearchEndsTheWalk) {
  RawSource source("%PDF-1.7\nstartxref\nnone\n");
  EXPECT_NO_THROW(source.info().Read(*source));
  EXPECT_TRUE(source.info().objEntries.empty());
}

TEST(XRefStart, ThePlaceBehindTheWordIsABoundary) {
  RawFile file;
  file.put("%PDF-1.7\n\n");
  file.end(file.put(table(2, 60, "/Size 3")));
  RawSource source(file.bytes);
  source.info().Read(*source);
  const auto behind = static_cast<long long>(file.bytes.find("startxref") + 9);
  EXPECT_THAT(source.info().filePositions, testing::UnorderedElementsAre(behind, 60));
}

// The chain.

TEST(XRefChain, TheNewestEntryOfAnIdentityWins) {
  RawFile file;
  file.put("%PDF-1.7\n\n");
  const long long older = file.put("xref\n1 2\n" + xrefLine(50) + xrefLine(51) + "trailer\n<</Size 3>>\n");
  file.end(file.put(table(1, 99, "/Size 4/Prev " + std::to_string(older))));
  RawSource source(file.bytes);
  source.info().Read(*source);
  EXPECT_EQ(offsetOf(source, 1), 99);
  EXPECT_EQ(offsetOf(source, 2), 51);
  EXPECT_EQ(source.info().size, 4);
}

TEST(XRefChain, AnObjectFreedWithARaisedGenerationStaysUnderItsOldOne) {
  RawFile file;
  file.put("%PDF-1.7\n\n");
  const long long older = file.put(table(1, 50, "/Size 2"));
  file.end(file.put("xref\n1 1\n" + xrefLine(7, 1, 'f') + "trailer\n<</Size 2/Prev " + std::to_string(older) +
                    ">>\n"));
  RawSource source(file.bytes);
  source.info().Read(*source);
  EXPECT_EQ(offsetOf(source, 1, 0), 50);
  EXPECT_EQ(source.info().GetObjState(1, 1).entryType, 0);
  EXPECT_EQ(source.info().GetObjState(1, 1).entryFlag, 'f');
}

TEST(XRefChain, ACycleEndsWhereItClosesAndKeepsWhatWasRead) {
  RawFile file;
  file.put("%PDF-1.7\n\n");
  const long long older = file.put(table(1, 50, "/Size 2/Prev 090"));
  file.put(std::string(static_cast<std::size_t>(90 - file.bytes.size()), '\n'));
  file.end(file.put(table(2, 60, "/Size 3/Prev " + std::to_string(older))));
  RawSource source(file.bytes);
  source.info().Read(*source);
  EXPECT_TRUE(source->good());
  EXPECT_EQ(offsetOf(source, 1), 50);
  EXPECT_EQ(offsetOf(source, 2), 60);
}

TEST(XRefChain, RevisionsWithinEachOtherAreReadABoundedNumberOfTimes) {
  // Each trailer's dictionary holds all the revisions that it leads to.
  RawFile file;
  file.put("%PDF-1.7\n\n");
  constexpr std::size_t levels = 20000;
  std::vector<long long> places;
  for (std::size_t i = 0; i < levels; ++i) places.push_back(file.put("xref\ntrailer\n<<"));
  file.put(">>");
  for (std::size_t i = levels - 1; i > 0; --i) file.put("/Prev " + std::to_string(places[i]) + ">>");
  file.put("\n");
  file.end(places[0]);
  // Read as told this takes some 20,000 times half a megabyte.
  RawSource source(file.bytes);
  source.info().Read(*source);
  EXPECT_TRUE(source->good());
}

TEST(XRefChain, APrevThatLeadsToNoTableEndsTheWalkSilently) {
  RawFile file;
  file.put("%PDF-1.7\n\n");
  file.end(file.put(table(1, 50, "/Size 2/Prev 0")));
  RawSource source(file.bytes);
  source.info().Read(*source);
  EXPECT_TRUE(source->good());
  EXPECT_EQ(offsetOf(source, 1), 50);
}

TEST(XRefChain, APrevBehindTheEndFailsTheStream) {
  RawFile file;
  file.put("%PDF-1.7\n\n");
  file.end(file.put(table(1, 50, "/Size 2/Prev 99999")));
  for (const auto rule : {RawSource::BeyondEnd::allow, RawSource::BeyondEnd::refuse}) {
    RawSource source(file.bytes, rule);
    source.info().Read(*source);
    EXPECT_TRUE(source->fail());
    EXPECT_EQ(offsetOf(source, 1), 50);
  }
}

TEST(XRefChain, BytesInFrontOfTheHeaderShiftEveryOffset) {
  const auto source = pdf().before("junk\n").onePage("").open();
  ASSERT_EQ(source.result, 0);
  EXPECT_EQ(source->fileInfo.GetObjState(3, 0).entryOffset, 5 + pdf().onePage("").offsetOf(3));
}

TEST(XRefChain, OffsetsBehindTwoGigabytesAreKept) {
  RawFile file;
  file.put("%PDF-1.7\n\n");
  file.end(file.put(table(1, 5000000000, "/Size 2")));
  RawSource source(file.bytes);
  source.info().Read(*source);
  EXPECT_EQ(offsetOf(source, 1), 5000000000);
}

// Look-up.

TEST(FileInfo, ALookUpOfNoEntryIsAllZeros) {
  const TESSEL::CFileInfo info;
  const TESSEL::SObjState state = info.GetObjState(SObj(4, 0));
  EXPECT_EQ(state.entryOffset, 0);
  EXPECT_EQ(state.entryType, 0);
  EXPECT_EQ(state.entryFlag, 0);
}

TEST(FileInfo, TheMainTableIsAskedBeforeTheHybridOne) {
  TESSEL::CFileInfo info;
  info.objEntries[SObj(1, 0)].entryOffset = 10;
  info.hybridEntries[SObj(1, 0)].entryOffset = 20;
  info.hybridEntries[SObj(2, 0)].entryOffset = 30;
  EXPECT_EQ(info.GetObjState(1, 0).entryOffset, 10);
  EXPECT_EQ(info.GetObjState(2, 0).entryOffset, 30);
}

TEST(FileInfo, InitEmptiesSizeRootAndTheMainTable) {
  TESSEL::CFileInfo info;
  info.size = 5;
  info.root = SObj(1, 0);
  info.objEntries[SObj(1, 0)].entryOffset = 10;
  info.hybridEntries[SObj(1, 0)].entryOffset = 20;
  info.Init();
  EXPECT_EQ(info.size, 0);
  EXPECT_EQ(info.root.objNum, 0);
  EXPECT_EQ(info.GetObjState(1, 0).entryOffset, 20);
}

// /Info behind the walk.

TEST(FileInfo, TheInfoDictionaryIsReadAtItsOffset) {
  const auto source = pdf().onePage("").object(4, "<</Title(Of the file)>>").trailer("/Info 4 0 R").open();
  ASSERT_EQ(source.result, 0);
  EXPECT_EQ(source->fileInfo.info.title, "Of the file");
}

TEST(FileInfo, AnInfoInAnObjectStreamIsReadFromMemory) {
  const auto source =
      pdf().onePage("").compressed(9, 4, "<</Title(Packed)/Producer(P)>>").trailer("/Info 4 0 R").open();
  ASSERT_EQ(source.result, 0);
  EXPECT_EQ(source->fileInfo.info.title, "Packed");
  EXPECT_EQ(source->fileInfo.info.producer, "P");
}

TEST(FileInfo, AnInfoWithoutAnEntryLeavesTheDefaults) {
  const auto source = pdf().onePage("").trailer("/Info 44 0 R").open();
  ASSERT_EQ(source.result, 0);
  EXPECT_EQ(source->fileInfo.info.title, "TESSEL");
}

TEST(FileInfo, ASecondReadKeepsTheEntriesOfTheFirst) {
  const auto source = pdf().onePage("").open();
  source->fileInfo.objEntries[SObj(3, 0)].entryOffset = 12345;
  source->fileInfo.Read(*source);
  EXPECT_EQ(source->fileInfo.GetObjState(3, 0).entryOffset, 12345);
}

}  // namespace
