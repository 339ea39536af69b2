#include "TesselPage/Structure/tessel_sourfile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "TesselPage/Model/tessel_catalog.h"
#include "TesselPage/Structure/tessel_objflags.h"
#include "Tests/Structure/raw_source.h"
#include "Tests/Support/pdf_builder.h"

namespace {

using TESSEL::CSourFile;
using TESSEL::SObj;
using tessel_test::numbers;
using tessel_test::pdf;
using tessel_test::PdfBuilder;
using tessel_test::RawSource;
using testing::ElementsAre;

// Construction.

TEST(SourceFile, ReadsNothingWhenItIsMade) {
  std::istringstream in("abc");
  in.seekg(2);
  CSourFile file(in);
  EXPECT_EQ(in.tellg(), 2);
  EXPECT_EQ(file.tellg(), 2);
  EXPECT_EQ(file.rdbuf(), in.rdbuf());
  EXPECT_FALSE(file.isSubSource);
  EXPECT_EQ(file.curPage, 0);
  EXPECT_EQ(file.version, "");
}

TEST(SourceFile, OfAPathThatCantBeOpenedHasFailedFromTheStart) {
  TESSEL::SourceStream in("/that/is/not/there");
  CSourFile file(in);
  EXPECT_TRUE(file.fail());
  EXPECT_EQ(file.CheckAndInit(), 1000);
}

TEST(MemorySource, SharesTheTableAndTheSwitchesOfTheRealOne) {
  RawSource real("a file");
  real->switches.annotsEnable = 3;
  real->switches.customSubtypes = {"Link"};
  real->fileInfo.hybridEntries[SObj(2, 0)].entryOffset = 20;
  CSourFile memory("1 0 obj", *real);
  real->fileInfo.objEntries[SObj(1, 0)].entryOffset = 10;
  EXPECT_TRUE(memory.isSubSource);
  EXPECT_EQ(&memory.mainSource(), &*real);
  EXPECT_EQ(memory.fileInfo.GetObjState(1, 0).entryOffset, 10);
  EXPECT_EQ(memory.fileInfo.GetObjState(2, 0).entryOffset, 0);
  EXPECT_EQ(memory.switches.annotsEnable, 3U);
  EXPECT_THAT(memory.switches.customSubtypes, ElementsAre("Link"));
  EXPECT_EQ(memory.catalogObj, nullptr);
}

TEST(MemorySource, OfAMemorySourceLeadsToTheFile) {
  RawSource real("a file");
  CSourFile outer("one", *real);
  CSourFile inner("two", outer);
  EXPECT_EQ(&inner.mainSource(), &*real);
  std::string token;
  inner >> token;
  EXPECT_EQ(token, "twoo");  // it runs to the end of the text
}

TEST(MemorySource, OfATextAloneIsItsOwnMainSource) {
  CSourFile file("/A 1");
  EXPECT_EQ(&file.mainSource(), &file);
  bool found = false;
  EXPECT_EQ(file.span(found), "/A 1");
  EXPECT_TRUE(found);
}

// The header.

struct Header {
  const char* line;
  int result;
  const char* version;
};
class HeaderLine : public testing::TestWithParam<Header> {};

TEST_P(HeaderLine, IsJudged) {
  const auto source = pdf().onePage("").header(GetParam().line).open();
  EXPECT_EQ(source.result, GetParam().result);
  EXPECT_EQ(source->version, GetParam().version);
}
INSTANTIATE_TEST_SUITE_P(Versions, HeaderLine,
                         testing::Values(Header{"%PDF-1.0", 0, "%PDF-1.0"}, Header{"%PDF-1.1", 0, "%PDF-1.1"},
                                         Header{"%PDF-1.2", 0, "%PDF-1.2"}, Header{"%PDF-1.3", 0, "%PDF-1.3"},
                                         Header{"%PDF-1.4", 0, "%PDF-1.4"}, Header{"%PDF-1.5", 0, "%PDF-1.5"},
                                         Header{"%PDF-1.6", 0, "%PDF-1.6"}, Header{"%PDF-1.7", 0, "%PDF-1.7"},
                                         Header{"%PDF-2.0", 0, "%PDF-2.0"}, Header{"%PDF-1.8", 1000, ""},
                                         Header{"%PDF-2.1", 1000, ""}, Header{"%PDF-1.", 1000, ""},
                                         Header{"%PDF-1.7 and more", 0, "%PDF-1.7"},
                                         // The literals are tried in their order, not in that of the line.
                                         Header{"%PDF-1.8 %PDF-1.4 %PDF-1.3", 0, "%PDF-1.3"}));

TEST(SourceHeader, IsFoundOnALaterLine) {
  const auto source = pdf().onePage("").before("\xEF\xBB\xBFjunk\n\nmore ").open();
  EXPECT_EQ(source.result, 0);
  EXPECT_EQ(source->headerOffset, 14);
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3));
}

TEST(SourceHeader, IsFoundBehindZeroBytes) {
  const auto source = pdf().onePage("").before(std::string("a\0b", 3)).open();
  EXPECT_EQ(source.result, 0);
  EXPECT_EQ(source->headerOffset, 3);
}

TEST(SourceHeader, AFileWithoutOneGives1000) {
  EXPECT_EQ(PdfBuilder::openBytes("no header\nat all").result, 1000);
  EXPECT_EQ(PdfBuilder::openBytes("").result, 1000);
}

TEST(SourceHeader, ALongLineInFrontOfItEndsTheSearch) {
  EXPECT_EQ(pdf().onePage("").before(std::string(1022, 'x') + "\n").open().result, 0);
  EXPECT_EQ(pdf().onePage("").before(std::string(1024, 'x') + "\n").open().result, 1000);
}

TEST(SourceHeader, MayStandInALineThatIsTooLong) {
  EXPECT_EQ(pdf().onePage("").header("%PDF-1.7" + std::string(3000, 'x')).open().result, 0);
}

// Opening.

TEST(SourceFile, OpensAFileByPath) {
  const std::string path = testing::TempDir() + "tessel_sourfile.pdf";
  std::ofstream(path, std::ios::binary) << pdf().onePage("").build();
  TESSEL::SourceStream in(path.c_str());
  CSourFile file(in);
  EXPECT_EQ(file.CheckAndInit(), 0);
  EXPECT_EQ(file.fileInfo.root.objNum, 1);
  EXPECT_EQ(file.catalogObj->pages.objNum, 2);
  EXPECT_THAT(numbers(file.pageList), ElementsAre(3));
}

TEST(SourceFile, ABrokenCrossReferenceGives1001) {
  std::string bytes = pdf().onePage("").build();
  bytes.replace(bytes.find("startxref\n") + 10, 3, "999");
  EXPECT_EQ(PdfBuilder::openBytes(bytes).result, 1001);
}

TEST(SourceFile, ACatalogThatRunsIntoTheEndGives1000) {
  std::string bytes = pdf().onePage("").root(4).build();  // nothing lies at 4
  EXPECT_EQ(PdfBuilder::openBytes(bytes).result, 1000);
}

TEST(SourceFile, WhiteSpaceIsSkippedAfterOpening) {
  const auto source = pdf().onePage("").open();
  EXPECT_NE(source->flags() & std::ios::skipws, std::ios::fmtflags());
  EXPECT_EQ(source->curPage, 0);
}

TEST(SourceFile, OpeningTwiceRebuildsThePageList) {
  const auto source = pdf().onePage("").open();
  source->curPage = 1;
  EXPECT_EQ(source->CheckAndInit(), 0);
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3));
  EXPECT_EQ(source->curPage, 0);
}

TEST(SourceFile, InitOtherReadsCatalogAndPagesOnly) {
  const auto source = pdf().onePage("").open();
  source->version = "kept";
  EXPECT_EQ(source->InitOther(), 0);
  EXPECT_EQ(source->version, "kept");
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3));
}

TEST(SourceFile, InitOtherGives1001WhenTheCatalogFailsTheStream) {
  const auto source = pdf().onePage("").open();
  source->setstate(std::ios::failbit);
  EXPECT_EQ(source->InitOther(), 1001);
}

TEST(SourceFile, AnObjectInAnObjectStreamIsOfTypeTwo) {
  const auto source = pdf().onePage("").compressed(9, 4, "<<>>").open();
  EXPECT_EQ(source->fileInfo.GetObjState(4, 0).entryType, 2);
  EXPECT_EQ(source->fileInfo.GetObjState(4, 0).entryOffset, 9);
}

// Words.

TEST(SourceFile, FindStrStopsBehindTheWord) {
  RawSource source("one two three ");
  EXPECT_TRUE(source->FindStr("two"));
  EXPECT_EQ(source.nextToken(), "three");
}

TEST(SourceFile, FindStrGivesFalseAtTheEndWithoutThrowing) {
  RawSource source("one two three ");
  EXPECT_FALSE(source->FindStr("four"));
  EXPECT_FALSE(source->FindStr("one"));
}

// Page objects.

TEST(PageObjects, TheFirstFlagsOfAnObjectStay) {
  RawSource source("");
  source->insertFileObject(SObj(5, 0));
  source->insertFileObject(SObj(5, 0, TESSEL::ObjFlag::underAnnots));
  EXPECT_EQ(source->pageObjects.begin()->objFlags, 0);
  EXPECT_TRUE(source->isPageObject(SObj(5, 0)));
  EXPECT_FALSE(source->isPageObject(SObj(5, 1)));
}

TEST(PageObjects, WhatIsNewAndWhatIsTakenOutIsNoted) {
  RawSource source("");
  EXPECT_TRUE(source->enterPageObject(SObj(5, 0)));
  EXPECT_FALSE(source->enterPageObject(SObj(5, 0)));
  source->insertFileObject(SObj(4, 0));
  source->erasePageObject(SObj(5, 0));
  source->erasePageObject(SObj(5, 0));
  EXPECT_THAT(numbers(source->newPageObjects), ElementsAre(5, 4));
  EXPECT_THAT(numbers(source->erasedPageObjects), ElementsAre(5));
  EXPECT_THAT(numbers(source->pageObjects), ElementsAre(4));
}

// An object's text without its references.

TEST(PlainText, LosesItsReferencesAndItsLeadingLineFeed) {
  const auto source = pdf().onePage("").object(4, "<</A 1/B 3 0 R/C(x)>>").open();
  std::string text;
  bool dropped = false;
  EXPECT_TRUE(TESSEL::plainText(*source, SObj(4, 0), text, dropped));
  EXPECT_EQ(text, "<</A 1/C(x)>>\n");
  EXPECT_TRUE(dropped);
}

TEST(PlainText, TellsWhenThereWereNone) {
  const auto source = pdf().onePage("").object(4, "<</A 1>>").open();
  source->seekg(20);
  std::string text;
  bool dropped = true;
  EXPECT_TRUE(TESSEL::plainText(*source, SObj(4, 0), text, dropped));
  EXPECT_FALSE(dropped);
  EXPECT_EQ(source->tellg(), 20);
}

TEST(PlainText, OfAnObjectThatIsNotThereIsFalseAndEmpty) {
  const auto source = pdf().onePage("").open();
  std::string text = "former";
  bool dropped = true;
  EXPECT_FALSE(TESSEL::plainText(*source, SObj(44, 0), text, dropped));
  EXPECT_EQ(text, "");
  EXPECT_FALSE(dropped);
}

}  // namespace
