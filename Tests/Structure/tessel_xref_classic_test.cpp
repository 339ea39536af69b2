#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TesselPage/Structure/tessel_fileinfo.h"
#include "Tests/Structure/raw_source.h"
#include "Tests/Support/pdf_builder.h"

namespace {

using TESSEL::SObj;
using tessel_test::RawFile;
using tessel_test::RawSource;
using tessel_test::xrefLine;

// One table.

TEST(ClassicTable, EntriesAreKeyedByNumberAndGeneration) {
  RawSource source("5 2\n0000000100 00000 n \n0000000200 00007 n \ntrailer ");
  ASSERT_TRUE(source.info().ReadCrt(*source));
  EXPECT_EQ(source.info().GetObjState(5, 0).entryOffset, 100);
  EXPECT_EQ(source.info().GetObjState(6, 7).entryOffset, 200);
  EXPECT_EQ(source.info().GetObjState(6, 0).entryOffset, 0);
  EXPECT_EQ(source.nextToken(), "trailer");
}

struct Flag {
  char flag;
  int type;
};
class ClassicFlag : public testing::TestWithParam<Flag> {};

TEST_P(ClassicFlag, GivesTheType) {
  RawSource source("1 1\n" + xrefLine(40, 0, GetParam().flag) + "trailer ");
  ASSERT_TRUE(source.info().ReadCrt(*source));
  EXPECT_EQ(source.info().GetObjState(1, 0).entryType, GetParam().type);
  EXPECT_EQ(source.info().GetObjState(1, 0).entryFlag, GetParam().flag);
}
INSTANTIATE_TEST_SUITE_P(Flags, ClassicFlag, testing::Values(Flag{'f', 0}, Flag{'n', 1}, Flag{'x', 1}));

TEST(ClassicTable, AnOffsetOfZeroMakesNoEntry) {
  RawSource source("0 2\n0000000000 65535 f \n0000000000 00000 n \ntrailer ");
  ASSERT_TRUE(source.info().ReadCrt(*source));
  EXPECT_TRUE(source.info().objEntries.empty());
}

TEST(ClassicTable, TheHeadersPlaceIsAdded) {
  RawSource source("1 1\n" + xrefLine(40) + "trailer ");
  source->headerOffset = 7;
  ASSERT_TRUE(source.info().ReadCrt(*source));
  EXPECT_EQ(source.info().GetObjState(1, 0).entryOffset, 47);
  EXPECT_THAT(source.info().filePositions, testing::ElementsAre(47));
}

TEST(ClassicTable, OnlyInUseObjectsArePositions) {
  RawSource source("1 2\n" + xrefLine(40, 0, 'f') + xrefLine(50) + "trailer ");
  ASSERT_TRUE(source.info().ReadCrt(*source));
  EXPECT_THAT(source.info().filePositions, testing::ElementsAre(50));
}

TEST(ClassicTable, AnOlderEntryOfTheKeyStays) {
  RawSource source("1 1\n" + xrefLine(40) + "1 1\n" + xrefLine(50) + "trailer ");
  ASSERT_TRUE(source.info().ReadCrt(*source));
  EXPECT_EQ(source.info().GetObjState(1, 0).entryOffset, 40);
}

TEST(ClassicTable, SubsectionsMayComeInAnyOrder) {
  RawSource source("9 1\n" + xrefLine(90) + "2 2\n" + xrefLine(20) + xrefLine(30) + "trailer ");
  ASSERT_TRUE(source.info().ReadCrt(*source));
  EXPECT_EQ(source.info().GetObjState(2, 0).entryOffset, 20);
  EXPECT_EQ(source.info().GetObjState(3, 0).entryOffset, 30);
  EXPECT_EQ(source.info().GetObjState(9, 0).entryOffset, 90);
}

TEST(ClassicTable, ACountBelowOneReadsNothing) {
  RawSource source("0 0\n3 -1\n1 1\n" + xrefLine(40) + "trailer ");
  ASSERT_TRUE(source.info().ReadCrt(*source));
  EXPECT_EQ(source.info().objEntries.size(), 1U);
}

TEST(ClassicTable, AHugeCountEndsWithTheData) {
  RawSource source("1 2147483647\n" + xrefLine(40) + "trailer ");
  EXPECT_FALSE(source.info().ReadCrt(*source));
  EXPECT_EQ(source.info().GetObjState(1, 0).entryOffset, 40);
}

TEST(ClassicTable, AMissingCountFails) {
  RawSource source("1 trailer ");
  EXPECT_FALSE(source.info().ReadCrt(*source));
}

TEST(ClassicTable, AnotherWordThanTrailerFails) {
  RawSource source("1 1\n" + xrefLine(40) + "startxref");
  EXPECT_FALSE(source.info().ReadCrt(*source));
}

TEST(ClassicTable, ACommentMayStandBeforeTheTrailerOfAFile) {
  RawSource source("1 1\n" + xrefLine(40) + "% a comment\ntrailer <<>>");
  EXPECT_TRUE(source.info().ReadCrt(*source));
  EXPECT_EQ(source.nextToken(), "trailer");
}

TEST(ClassicTable, ACommentIsRefusedWhereTheTextRefusesASeekBehindItsEnd) {
  RawSource source("1 1\n" + xrefLine(40) + "% a comment\ntrailer <<>>", RawSource::BeyondEnd::refuse);
  EXPECT_FALSE(source.info().ReadCrt(*source));
}

TEST(ClassicTable, ACommentWithNoTrailerBehindItEnds) {
  RawSource source("1 1\n" + xrefLine(40) + "% a comment and no more");
  EXPECT_FALSE(source.info().ReadCrt(*source));
}

TEST(ClassicTable, ACommentSignWithItsTextAtItFails) {
  RawSource source("1 1\n" + xrefLine(40) + "%comment\ntrailer <<>>");
  EXPECT_FALSE(source.info().ReadCrt(*source));
}

// The trailer dictionary.

long long prevOf(RawSource& source) { return source.info().GetPrev(*source, true); }

struct Trailer {
  const char* text;
  long long prev;
};
class TrailerPrev : public testing::TestWithParam<Trailer> {};

TEST_P(TrailerPrev, IsRead) {
  RawSource source(GetParam().text);
  EXPECT_EQ(prevOf(source), GetParam().prev);
}
INSTANTIATE_TEST_SUITE_P(Rows, TrailerPrev,
                         testing::Values(Trailer{"trailer <</Size 3/Prev 77>> ", 77},  //
                                         Trailer{"trailer <</Size 3>> ", -1},          //
                                         Trailer{"trailer <</Prev 1/Prev 2>> ", 2},    // the last wins
                                         Trailer{"trailer <</A<</Prev 9>>>> ", 9},     // at any depth
                                         Trailer{"trailer <<>>/Prev 9 ", -1},          // behind the end
                                         Trailer{"trailer %c\n<</Prev 9>> ", 9},       //
                                         Trailer{"xtrailer <</Prev 9>> ", -1},         //
                                         Trailer{"trailer /Prev 9 ", -1},              //
                                         Trailer{"trailer <</Prev 9/ID null/Prev 10>> ", 0},  // a bad /ID
                                         Trailer{"trailer <</Prev 6000000000>> ", 6000000000}));

TEST(TrailerDictionary, WithoutTheWordItMayBeginAtOnce) {
  RawSource source("<</Prev 9>> ");
  EXPECT_EQ(source.info().GetPrev(*source, false), 9);
}

TEST(TrailerDictionary, TheFirstSizeAndRootStay) {
  RawSource source("trailer <</Size 3/Root 1 2 R>> trailer <</Size 4/Root 5 0 R>> ");
  prevOf(source);
  prevOf(source);
  EXPECT_EQ(source.info().size, 3);
  EXPECT_EQ(source.info().root.identity(), std::pair(1, 2));
}

TEST(TrailerDictionary, TheLastInfoStays) {
  RawSource source("trailer <</Info 3 0 R>> trailer <</Info 4 1 R>> ");
  prevOf(source);
  prevOf(source);
  EXPECT_EQ(source.info().info.identity().identity(), std::pair(4, 1));
}

TEST(TrailerDictionary, ADirectInfoIsSkipped) {
  RawSource source("trailer <</Info<</Title(a)/Prev 5>>/Prev 6>> ");
  EXPECT_EQ(prevOf(source), 6);
  EXPECT_EQ(source.info().info.identity().objNum, 0);
}

TEST(TrailerDictionary, ADirectInfoThatRunsIntoTheEndThrows) {
  RawSource source("trailer <</Info<</Title(a) ");
  EXPECT_THROW(prevOf(source), TESSEL::CFileError);
}

TEST(TrailerDictionary, TheInfoIsPassedOverOnceAStreamWasRead) {
  RawSource source("trailer <</Info 3 0 R/Prev 6>> ");
  source.info().id.objNum = 12;
  EXPECT_EQ(prevOf(source), 6);
  EXPECT_EQ(source.info().info.identity().objNum, 0);
}

TEST(TrailerDictionary, TheFirstEncryptReferenceStays) {
  RawSource source("trailer <</Encrypt 8 1 R/Prev 5>> trailer <</Encrypt 9 0 R/Prev 6>> ");
  EXPECT_EQ(prevOf(source), 5);
  EXPECT_EQ(prevOf(source), 6);
  EXPECT_EQ(source.info().encrypt.id.identity(), std::pair(8, 1));
}

TEST(TrailerDictionary, ANullEncryptIsPassedOver) {
  RawSource source("trailer <</Encrypt null/Prev 6>> ");
  EXPECT_EQ(prevOf(source), 6);
  EXPECT_EQ(source.info().encrypt.id.objNum, 0);
}

struct Id {
  const char* text;
  const char* first;
  const char* second;
};
class TrailerId : public testing::TestWithParam<Id> {};

TEST_P(TrailerId, BothStringsAreRead) {
  RawSource source(GetParam().text);
  EXPECT_EQ(prevOf(source), 6);
  EXPECT_EQ(source.info().fileId.first, GetParam().first);
  EXPECT_EQ(source.info().fileId.second, GetParam().second);
  EXPECT_EQ(source.info().fileId.length, static_cast<long long>(std::string(GetParam().first).size()));
}
INSTANTIATE_TEST_SUITE_P(Rows, TrailerId,
                         testing::Values(Id{"trailer <</ID[<4142><43>]/Prev 6>> ", "AB", "C"},       //
                                         Id{"trailer <</ID[(AB)(C)]/Prev 6>> ", "AB", "C"},          //
                                         Id{"trailer <</ID<4142>(C)/Prev 6>> ", "AB", "C"},          //
                                         Id{"trailer <</ID[(AB)]/Prev 6>> ", "AB", ""},              //
                                         Id{"trailer <</ID[% c\n%d\r <4142>]/Prev 6>> ", "AB", ""},  //
                                         Id{"trailer <</ID[()()]/Prev 6>> ", "", ""}));

TEST(TrailerDictionary, TheFirstIdStaysAndTheTokensOfAnotherRunThroughTheScan) {
  RawSource source("trailer <</ID[(A)(B)]>> trailer <</ID[<43><44>]/Prev 6>> ");
  prevOf(source);
  EXPECT_EQ(prevOf(source), 6);
  EXPECT_EQ(source.info().fileId.first, "A");
  EXPECT_EQ(source.info().fileId.second, "B");
}

TEST(TrailerDictionary, ALongIdIsCutAt256Bytes) {
  RawSource source("trailer <</ID[(" + std::string(300, 'a') + ")(b)]>> ");
  prevOf(source);
  EXPECT_EQ(source.info().fileId.first, std::string(256, 'a'));
  EXPECT_EQ(source.info().fileId.length, 256);
}

TEST(TrailerDictionary, OneThatRunsIntoTheEndKeepsItsPrev) {
  RawSource source("trailer <</Prev 6/Size 3");
  EXPECT_EQ(prevOf(source), 6);
  EXPECT_FALSE(source->good());
}

// /XRefStm.

/// A classic file whose trailer names the stream that `entries` and `data` make; opened.
std::string hybridFile(RawFile file, const std::string& trailer) {
  const std::string data("\1\0\0\1\0\0\1\0\0", 9);  // objects 4 to 6 at offset 0, moved below
  std::string moved = data;
  moved[2] = 70;
  moved[5] = 71;
  moved[8] = 72;
  const long long stream = file.put(
      "8 0 obj\n" + tessel_test::streamBody("/Type/XRef/W[1 2 0]/Index[4 3]/Size 9/Info 6 0 R", moved) +
      "\nendobj\n");
  file.end(file.put("xref\n5 1\n" + xrefLine(50) + "trailer\n<</Size 9" + trailer + "/XRefStm " +
                    std::to_string(stream) + ">>\n"));
  return file.bytes;
}

TEST(HybridFile, TheMainTableWinsOverTheStream) {
  RawFile file;
  file.put("%PDF-1.7\n\n");
  RawSource source(hybridFile(file, ""));
  source.info().Read(*source);
  EXPECT_TRUE(source->good());
  EXPECT_EQ(source.info().GetObjState(5, 0).entryOffset, 50);
  EXPECT_EQ(source.info().GetObjState(4, 0).entryOffset, 70);
  EXPECT_EQ(source.info().objEntries.count(SObj(4, 0)), 0U);
  EXPECT_EQ(source.info().hybridEntries.size(), 3U);
}

TEST(HybridFile, TheTrailersInfoIsIgnored) {
  RawFile file;
  file.put("%PDF-1.7\n\n");
  RawSource source(hybridFile(file, "/Info 5 0 R"));
  source.info().Read(*source);
  EXPECT_EQ(source.info().info.identity().objNum, 6);
}

TEST(HybridFile, TheStreamsPlaceIsTheOneOffsetThatIsNotRelativeToTheHeader) {
  RawFile file;
  file.put("junk\n%PDF-1.7\n\n");
  std::string bytes = hybridFile(file, "");
  const std::size_t start = bytes.find("startxref\n") + 10;
  const std::size_t length = bytes.find('\n', start) - start;
  bytes.replace(start, length, std::to_string(std::stoll(bytes.substr(start, length)) - 5));
  RawSource source(bytes);
  source->headerOffset = 5;
  source.info().Read(*source);
  EXPECT_EQ(source.info().GetObjState(5, 0).entryOffset, 55);
  EXPECT_EQ(source.info().GetObjState(4, 0).entryOffset, 75);
}

TEST(HybridFile, TheTrailerIsReadAgainBehindTheStream) {
  RawSource source("trailer <</A<<>>/B 1>> ");
  EXPECT_TRUE(source.info().ReadTrailerXRefStm(*source));
  EXPECT_EQ(source.nextToken(), "trailer");
}

TEST(HybridFile, AnotherWordThanTrailerIsLeftAlone) {
  RawSource source("startxref 5 ");
  EXPECT_TRUE(source.info().ReadTrailerXRefStm(*source));
  EXPECT_EQ(source.nextToken(), "startxref");
}

TEST(HybridFile, AStreamThatCantBeReadFails) {
  RawSource source("trailer <</XRefStm 3>> ");
  EXPECT_FALSE(source.info().ReadTrailerXRefStm(*source));
}

TEST(HybridFile, AnUnclosedTrailerFailsUnlessAKeywordEndsIt) {
  RawSource open("trailer <</A 1 ");
  EXPECT_FALSE(open.info().ReadTrailerXRefStm(*open));
  RawSource ended("trailer <</A 1 startxref 5 ");
  EXPECT_TRUE(ended.info().ReadTrailerXRefStm(*ended));
}

}  // namespace
