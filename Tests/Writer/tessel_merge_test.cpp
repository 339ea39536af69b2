#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "TesselPage/Model/tessel_catalog.h"
#include "TesselPage/Model/tessel_pages.h"
#include "TesselPage/Security/tessel_encryptbridge.h"
#include "Tests/Writer/merge_verbs.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

namespace {

// Reading
// ---------------------------------------------------------------------------------------------------------

TEST(MergeHeader, IsTheHighestVersionOfTheSources) {
  Merge merge;
  merge.first->version = "%PDF-1.4";
  merge.second->version = "%PDF-1.6";
  EXPECT_EQ(merge.dest.ReadHeader(), 0);
  EXPECT_EQ(merge.dest.header, "%PDF-1.6");
  merge.first->version = "%PDF-2.0";
  EXPECT_EQ(merge.dest.ReadHeader(), 0);
  EXPECT_EQ(merge.dest.header, "%PDF-2.0");
}

TEST(MergeHeader, HigherOneStays) {
  Merge merge;
  merge.dest.header = "%PDF-2.0";
  merge.dest.ReadHeader();
  EXPECT_EQ(merge.dest.header, "%PDF-2.0");
}

TEST(MergeHeader, ComparesTexts) {
  Merge merge;
  merge.first->version = "%PDF-1.4";
  merge.second->version = "%PDF-1.10";
  merge.dest.ReadHeader();
  EXPECT_EQ(merge.dest.header, "%PDF-1.4");
}

TEST(MergeHeader, WithoutSourcesIsEmpty) {
  CDestFile dest;
  EXPECT_EQ(dest.ReadHeader(), 0);
  EXPECT_EQ(dest.header, "");
}

/// Pages whose resources are page objects now, by the number of the page.
std::vector<int> pagesRead(const Source& source) {
  std::vector<int> pages;
  for (int page = 1; page <= 3; ++page)
    if (source->isPageObject(SObj(page + 12, 0))) pages.push_back(page);
  return pages;
}

TEST(MergeRead, EmptySelectionReadsNothing) {
  Merge merge;
  EXPECT_EQ(merge.dest.ReadPageObj(), 0);
  EXPECT_THAT(merge.first->pageObjects, IsEmpty());
  EXPECT_THAT(merge.second->pageObjects, IsEmpty());
}

TEST(MergeRead, SelectedPagesAreRead) {
  Merge merge;
  merge.dest.pageSelection = {{1, 3}, {2, 1}, {1, 1}};
  EXPECT_EQ(merge.dest.ReadPageObj(), 0);
  EXPECT_THAT(pagesRead(merge.first), ElementsAre(1, 3));
  EXPECT_THAT(pagesRead(merge.second), ElementsAre(1));
}

TEST(MergeRead, PageZeroIsAllPagesOfItsFile) {
  Merge merge;
  merge.dest.pageSelection = {{2, 0}};
  EXPECT_EQ(merge.dest.ReadPageObj(), 0);
  EXPECT_THAT(pagesRead(merge.first), IsEmpty());
  EXPECT_THAT(pagesRead(merge.second), ElementsAre(1, 2, 3));
  EXPECT_EQ(merge.dest.pageSelection, (Selection{{2, 0}}));
}

TEST(MergeRead, AllPagesOfAllFilesTakeThePlaceOfTheSelection) {
  Merge merge;
  merge.dest.pageSelection = {{2, 1}, {0, 0}, {1, 1}};
  EXPECT_EQ(merge.dest.ReadPageObj(), 0);
  EXPECT_EQ(merge.dest.pageSelection, (Selection{{1, 1}, {1, 2}, {1, 3}, {2, 1}, {2, 2}, {2, 3}}));
  EXPECT_THAT(pagesRead(merge.first), ElementsAre(1, 2, 3));
  EXPECT_THAT(pagesRead(merge.second), ElementsAre(1, 2, 3));
}

TEST(MergeRead, UnknownFilesAndPagesArePassedOver) {
  Merge merge;
  merge.dest.pageSelection = {{3, 1}, {0, 5}, {-1, 1}, {1, 4}, {1, -1}, {1, 2}};
  EXPECT_EQ(merge.dest.ReadPageObj(), 0);
  EXPECT_THAT(pagesRead(merge.first), ElementsAre(2));
  EXPECT_THAT(pagesRead(merge.second), IsEmpty());
}

TEST(MergeRead, ReadsHeaderAndPages) {
  Merge merge;
  merge.dest.pageSelection = {{1, 1}};
  EXPECT_EQ(merge.dest.Read(), 0);
  EXPECT_EQ(merge.dest.header, "%PDF-1.7");
  EXPECT_THAT(pagesRead(merge.first), ElementsAre(1));
}

TEST(MergeRead, DamagedPageTakesNoOtherWithIt) {
  const Source source = pdf()
                            .pageTree({3, 4})
                            .object(3, "<</Type/Page/Foo 4 0 R/Resources 13 0 R>>")
                            .object(4, "<</Type/Page/Resources 14 0 R>>")
                            .object(14, "<<>>")
                            .open();
  CDestFile dest;
  dest.files = {{1, source.file.get()}};
  dest.pageSelection = {{1, 0}};
  int result = -1;
  EXPECT_NO_THROW(result = dest.ReadPageObj());
  EXPECT_EQ(result, 0);
  EXPECT_TRUE(source->isPageObject(SObj(14, 0)));
}

// Numbering
// ---------------------------------------------------------------------------------------------------------

TEST(MergeNumbers, GoThroughTheSourcesInTheOrderOfTheirObjects) {
  Merge merge;
  for (const SObj& object : {SObj(14, 0), SObj(7, 1), SObj(7, 0)}) merge.first->enterPageObject(object);
  for (const SObj& object : {SObj(15, 0), SObj(7, 0)}) merge.second->enterPageObject(object);
  merge.dest.TidyObj();
  const auto newNumber = [&](int file, const SObj& object) {
    merge.dest.currentFile = file;
    const SObj* found = merge.dest.findNewObj(object);
    return found ? found->identity() : std::pair{-1, -1};
  };
  EXPECT_THAT(newNumber(1, SObj(7, 0)), Pair(1, 0));
  EXPECT_THAT(newNumber(1, SObj(7, 1)), Pair(2, 0));
  EXPECT_THAT(newNumber(1, SObj(14, 0)), Pair(3, 0));
  EXPECT_THAT(newNumber(2, SObj(7, 0)), Pair(4, 0));
  EXPECT_THAT(newNumber(2, SObj(15, 0)), Pair(5, 0));
  EXPECT_THAT(newNumber(2, SObj(14, 0)), Pair(-1, -1));
  EXPECT_EQ(merge.dest.nextNumber, 6);
}

TEST(MergeNumbers, BeginBehindTheFirstNumberAfterInit) {
  Merge merge;
  merge.dest.getStartObj(10);
  merge.dest.Init("");
  merge.first->enterPageObject(SObj(7, 0));
  merge.dest.TidyObj();
  merge.dest.currentFile = 1;
  ASSERT_NE(merge.dest.findNewObj(SObj(7, 0)), nullptr);
  EXPECT_EQ(*merge.dest.findNewObj(SObj(7, 0)), SObj(11, 0));
}

TEST(MergeNumbers, FirstNumberCountsOnlyFromInitOn) {
  CDestFile dest;
  dest.getStartObj(10);
  EXPECT_EQ(dest.nextNumber, 1);
  EXPECT_TRUE(dest.Init(""));
  EXPECT_EQ(dest.nextNumber, 11);
}

TEST(MergeInit, EmptiesAllThatAWrittenFileLeaves) {
  Merge merge;
  CDestFile& dest = merge.dest;
  dest.header = "%PDF-1.7";
  dest.pageSelection = {{1, 1}};
  dest.insertNewObjTab({0, 0, SObj(3, 0)}, SObj(7, 0));
  dest.fileInfo.objEntries[SObj(7, 0)] = {};
  dest.rootPages().kids = {SObj(3, 0)};
  dest.catalog().names.dests = SObj(9, 0);
  dest.catalog().pages = SObj(2, 0);
  dest.pages[SObj(5, 0)] = std::make_unique<CPages>("/Pages");
  dest.rawFlag = true;
  dest.currentFile = 2;
  dest.start = dest.endMark = 7;
  dest.currentObject = SObj(7, 0);
  EXPECT_TRUE(dest.Init(""));
  EXPECT_EQ(dest.header, "");
  EXPECT_THAT(dest.pageSelection, IsEmpty());
  EXPECT_FALSE(dest.rawFlag);
  EXPECT_EQ(dest.currentFile, 0);
  EXPECT_EQ(dest.start, 0U);
  EXPECT_EQ(dest.endMark, 0U);
  EXPECT_EQ(dest.currentObject.objNum, 0);
  EXPECT_EQ(dest.findNewObj(SObj(3, 0)), nullptr);
  EXPECT_THAT(dest.fileInfo.objEntries, IsEmpty());
  EXPECT_THAT(dest.rootPages().kids, IsEmpty());
  EXPECT_EQ(dest.catalog().names.dests.objNum, 0);
  EXPECT_EQ(dest.catalog().pages.objNum, 0);
  EXPECT_THAT(dest.pages, IsEmpty());
  EXPECT_EQ(dest.nextNumber, 1);
}

// Writing objects
// ---------------------------------------------------------------------------------------------------------

TEST(MergeObjects, AreWrittenUnderTheirNewNumbersInTheOrderOfTheSources) {
  const Source first = pdf().onePage("").object(7, "<</A 8 0 R/B 99 0 R>>").object(8, "(x)").open();
  const Source second = pdf().onePage("").object(7, "[7 0 R]").open();
  CDestFile dest;
  dest.files = {{1, first.file.get()}, {2, second.file.get()}};
  first->enterPageObject(SObj(7, 0));
  first->enterPageObject(SObj(8, 0));
  second->enterPageObject(SObj(7, 0));
  dest.TidyObj();
  EXPECT_EQ(dest.WritePageObj(), 0);
  EXPECT_EQ(static_cast<const std::string&>(dest),
            "1 0 obj <</A 2 0 R>>\nendobj\n"
            "2 0 obj (x)\nendobj\n"
            "3 0 obj [ 3 0 R]\nendobj\n");
  EXPECT_EQ(dest.currentFile, 0);
}

TEST(MergeObjects, HaveEntriesAtTheirPlaces) {
  const Source source = pdf().onePage("").object(7, "(x)").object(8, "(yy)").open();
  CDestFile dest;
  dest.files = {{1, source.file.get()}};
  source->enterPageObject(SObj(7, 0));
  source->enterPageObject(SObj(8, 0));
  dest.append("%PDF-1.7\n");
  dest.endMark = dest.size();
  dest.TidyObj();
  dest.WritePageObj();
  ASSERT_EQ(identities(std::vector<SObj>{dest.fileInfo.objEntries.begin()->first,
                                         dest.fileInfo.objEntries.rbegin()->first}),
            (std::vector<std::pair<int, int>>{{1, 0}, {2, 0}}));
  EXPECT_EQ(dest.fileInfo.objEntries.at(SObj(1, 0)).entryOffset, 9);
  EXPECT_EQ(dest.fileInfo.objEntries.at(SObj(2, 0)).entryOffset, 9 + 19);
  EXPECT_EQ(dest.fileInfo.objEntries.at(SObj(2, 0)).entryFlag, 'n');
}

struct FlagCase {
  int flags;
  bool written;
};

class MergeObjectFlags : public testing::TestWithParam<FlagCase> {};

TEST_P(MergeObjectFlags, DecideWhetherItIsWritten) {
  const Source source = pdf().onePage("").object(7, "(x)").open();
  CDestFile dest;
  dest.files = {{1, source.file.get()}};
  source->enterPageObject(SObj(7, 0, GetParam().flags));
  dest.TidyObj();
  dest.WritePageObj();
  EXPECT_EQ(static_cast<const std::string&>(dest), GetParam().written ? "1 0 obj (x)\nendobj\n" : "");
  EXPECT_EQ(dest.fileInfo.objEntries.count(SObj(1, 0)), GetParam().written ? 1U : 0U);
}

INSTANTIATE_TEST_SUITE_P(Bits, MergeObjectFlags,
                         testing::Values(FlagCase{0x1, false}, FlagCase{0x100, false}, FlagCase{0x800, false},
                                         FlagCase{0x901, false}, FlagCase{0x21, false}, FlagCase{0, true},
                                         FlagCase{0x2, true}, FlagCase{0x10, true}, FlagCase{0x20, true},
                                         FlagCase{0x40, true}, FlagCase{0x80, true}, FlagCase{0x200, true},
                                         FlagCase{0x400, true}, FlagCase{0x1000, true},
                                         FlagCase{0x80000, true}, FlagCase{0x800000, true}));

TEST(MergeObjects, WithoutANumberAreNotWritten) {
  const Source source = pdf().onePage("").object(7, "(x)").open();
  CDestFile dest;
  dest.files = {{1, source.file.get()}};
  source->enterPageObject(SObj(7, 0));
  EXPECT_EQ(dest.WritePageObj(), 0);
  EXPECT_TRUE(dest.empty());
}

TEST(MergeObjects, OfAnObjectStreamAreWrittenToo) {
  const Source source = pdf().onePage("").compressed(9, 7, "<</A 7 0 R>>").open();
  CDestFile dest;
  dest.files = {{1, source.file.get()}};
  source->enterPageObject(SObj(7, 0));
  dest.TidyObj();
  dest.WritePageObj();
  EXPECT_THAT(static_cast<const std::string&>(dest), testing::StartsWith("1 0 obj <</A 1 0 R>>"));
}

TEST(MergeObjects, AreEncryptedUnderTheirNewNumbers) {
  const Source source = pdf().onePage("").object(7, "<78>").object(6, "0").open();
  CDestFile dest;
  dest.files = {{1, source.file.get()}};
  CEncrypt& record = dest.fileInfo.encrypt;
  record.R = 2;
  record.V = 1;
  record.method = 1;
  record.keyLength = 40;
  record.accessState = CEncrypt::keyFromHost;
  record.fileKey.put("12345");
  source->enterPageObject(SObj(6, 0));
  source->enterPageObject(SObj(7, 0));
  dest.TidyObj();
  dest.WritePageObj();
  std::string data = "x";
  const SObj newId(2, 0);
  encryptString(record, &newId, data);
  char digits[3];
  std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(data.at(0)));
  EXPECT_EQ(static_cast<const std::string&>(dest),
            "1 0 obj 0\nendobj\n2 0 obj <" + std::string(digits) + ">\nendobj\n");
}

// Writing pages
// ---------------------------------------------------------------------------------------------------------

/// Pages 3 and 4 without any reference in them.
PdfBuilder plainPages(const std::string& mark) {
  return pdf()
      .pageTree({3, 4})
      .object(3, "<</Type/Page/N(" + mark + "3)>>")
      .object(4, "<</Type/Page/N(" + mark + "4)>>");
}

/// Two sources of plain pages: those of the first are 1 and 2, that of the second is 3; 4 is the next number.
struct PlainMerge {
  explicit PlainMerge(Selection selection) {
    dest.files = {{1, first.file.get()}, {2, second.file.get()}};
    dest.insertNewObjTab({0, 1, SObj(3, 0)}, SObj(1, 0));
    dest.insertNewObjTab({0, 1, SObj(4, 0)}, SObj(2, 0));
    dest.insertNewObjTab({0, 2, SObj(3, 0)}, SObj(3, 0));
    dest.nextNumber = 4;
    dest.pageSelection = std::move(selection);
  }
  std::string write() {
    EXPECT_EQ(dest.WritePages(), 0);
    return dest;
  }

  Source first = plainPages("a").open();
  Source second = plainPages("b").open();
  CDestFile dest;
};

TEST(MergePages, StandInFrontOfANodeForEachFileAndTheRoot) {
  EXPECT_EQ(PlainMerge({{1, 1}, {1, 2}, {2, 1}}).write(),
            "1 0 obj <</Type/Page/N(a3)>>\nendobj\n"
            "2 0 obj <</Type/Page/N(a4)>>\nendobj\n"
            "3 0 obj <</Type/Page/N(b3)>>\nendobj\n"
            "5 0 obj\n<</Type/Pages/Count 2/Kids[1 0 R 2 0 R ]\n>>endobj\n"
            "6 0 obj\n<</Type/Pages/Count 1/Kids[3 0 R ]\n>>endobj\n"
            "4 0 obj\n<</Type/Pages/Count 3/Kids[5 0 R 6 0 R ]\n>>endobj\n");
}

TEST(MergePages, PageZeroIsAllPagesOfTheFile) {
  EXPECT_EQ(PlainMerge({{1, 0}}).write(),
            "1 0 obj <</Type/Page/N(a3)>>\nendobj\n"
            "2 0 obj <</Type/Page/N(a4)>>\nendobj\n"
            "5 0 obj\n<</Type/Pages/Count 2/Kids[1 0 R 2 0 R ]\n>>endobj\n"
            "4 0 obj\n<</Type/Pages/Count 2/Kids[5 0 R ]\n>>endobj\n");
}

TEST(MergePages, StandInTheOrderOfTheSelection) {
  const std::string text = PlainMerge({{1, 2}, {1, 1}}).write();
  EXPECT_THAT(text, testing::StartsWith("2 0 obj <</Type/Page/N(a4)>>\nendobj\n1 0 obj "));
  EXPECT_THAT(text, HasSubstr("/Kids[2 0 R 1 0 R ]"));
}

TEST(MergePages, UnknownFileIsPassedOver) {
  EXPECT_EQ(PlainMerge({{3, 1}, {2, 1}}).write(),
            "3 0 obj <</Type/Page/N(b3)>>\nendobj\n"
            "5 0 obj\n<</Type/Pages/Count 1/Kids[3 0 R ]\n>>endobj\n"
            "4 0 obj\n<</Type/Pages/Count 1/Kids[5 0 R ]\n>>endobj\n");
}

TEST(MergePages, PageThatTheFileDoesNotHaveIsPassedOver) {
  EXPECT_EQ(PlainMerge({{2, 1}, {2, 9}}).write(),
            "3 0 obj <</Type/Page/N(b3)>>\nendobj\n"
            "5 0 obj\n<</Type/Pages/Count 1/Kids[3 0 R ]\n>>endobj\n"
            "4 0 obj\n<</Type/Pages/Count 1/Kids[5 0 R ]\n>>endobj\n");
}

TEST(MergePages, OfNoSelectionAreAnEmptyTree) {
  EXPECT_EQ(PlainMerge({}).write(), "4 0 obj\n<</Type/Pages/Count 0/Kids[]\n>>endobj\n");
}

TEST(MergePages, FileThatComesBackHasANodeOfItsOwnForEachRun) {
  EXPECT_EQ(PlainMerge({{1, 1}, {2, 1}, {1, 2}}).write(),
            "1 0 obj <</Type/Page/N(a3)>>\nendobj\n"
            "3 0 obj <</Type/Page/N(b3)>>\nendobj\n"
            "2 0 obj <</Type/Page/N(a4)>>\nendobj\n"
            "5 0 obj\n<</Type/Pages/Count 1/Kids[1 0 R ]\n>>endobj\n"
            "6 0 obj\n<</Type/Pages/Count 1/Kids[3 0 R ]\n>>endobj\n"
            "7 0 obj\n<</Type/Pages/Count 1/Kids[2 0 R ]\n>>endobj\n"
            "4 0 obj\n<</Type/Pages/Count 3/Kids[5 0 R 6 0 R 7 0 R ]\n>>endobj\n");
}

TEST(MergePages, RootHasTheNumberThatWasNextAndTheNodesThoseBehindIt) {
  PlainMerge merge({{1, 1}, {2, 1}});
  merge.write();
  EXPECT_EQ(merge.dest.rootPages().id, SObj(4, 0));
  EXPECT_THAT(numbers(merge.dest.rootPages().kids), ElementsAre(5, 6));
  EXPECT_EQ(merge.dest.nextNumber, 7);
}

TEST(MergeWrite, MakesTheEntryOfObjectZeroThenObjectsThenPages) {
  const Source source = plainPages("a").object(7, "(x)").open();
  CDestFile dest;
  dest.files = {{1, source.file.get()}};
  source->enterPageObject(SObj(7, 0));
  dest.TidyObj();
  dest.insertNewObjTab({0, 1, SObj(3, 0)}, SObj(dest.nextNumber++, 0));
  dest.pageSelection = {{1, 1}};
  EXPECT_EQ(dest.Write(), 0);
  dest.fileInfo.root = SObj(9, 0);
  dest.fileInfo.WriteXRef(dest);
  EXPECT_EQ(static_cast<const std::string&>(dest),
            "1 0 obj (x)\nendobj\n"
            "2 0 obj <</Type/Page/N(a3)>>\nendobj\n"
            "4 0 obj\n<</Type/Pages/Count 1/Kids[2 0 R ]\n>>endobj\n"
            "3 0 obj\n<</Type/Pages/Count 1/Kids[4 0 R ]\n>>endobj\n"
            "xref\r\n0 5\r\n0000000000 65535 f\r\n0000000000 00000 n\r\n0000000019 00000 n\r\n"
            "0000000107 00000 n\r\n0000000055 00000 n\r\n"
            "trailer\r\n<</Size 5 /Root 9 0 R >>\nstartxref\n159\n%%EOF");
}

TEST(MergeSources, AreDeleted) {
  CDestFile dest;
  dest.files = {{1, new CSourFile(std::string("a"))}, {2, new CSourFile(std::string("b"))}};
  dest.DeleteSour();
  EXPECT_THAT(dest.files, IsEmpty());
  EXPECT_EQ(dest.GetSourFile(1), nullptr);
}

// Whole files
// ---------------------------------------------------------------------------------------------------------

/// Writes the whole file and gives it.
std::string wholeFile(CDestFile& dest, const std::string& selection) {
  EXPECT_EQ(dest.SetReadFileAndPage(selection), 0);
  EXPECT_EQ(dest.Read(), 0);
  dest.TidyObj();
  dest.append(dest.header + "\n");
  dest.endMark = dest.size();
  EXPECT_EQ(dest.Write(), 0);
  dest.fileInfo.root = SObj(dest.nextNumber++, 0);
  CSourFile none{std::string()};
  EXPECT_TRUE(dest.catalog().Write(dest, none));
  dest.fileInfo.Tidy();
  EXPECT_TRUE(dest.fileInfo.WriteXRef(dest));
  return dest;
}

/// Each object that the table calls used begins where the table says.
void expectEntriesPointAtTheirObjects(const CDestFile& dest) {
  const std::string& text = dest;
  for (const auto& [id, entry] : dest.fileInfo.objEntries) {
    if (entry.entryFlag != 'n') continue;
    const std::string head = std::to_string(id.objNum) + " " + std::to_string(id.genNum) + " obj";
    const auto place = static_cast<std::size_t>(entry.entryOffset);
    ASSERT_LT(place, text.size()) << head;
    EXPECT_EQ(text.substr(place, head.size()), head);
  }
}

/// Text of an object of a file, references as they stand.
std::string textOf(const Source& source, const SObj& id) {
  CDestFile dest;
  dest.rawFlag = true;
  CObj object(id);
  EXPECT_TRUE(object.LocalObj(dest, *source, nullptr));
  return dest;
}

TEST(MergedFile, OpensAndHasTheSelectedPagesInOrder) {
  Merge merge;
  const Source file = PdfBuilder::openBytes(wholeFile(merge.dest, "2:3 1:1~2"));
  ASSERT_EQ(file.result, 0);
  ASSERT_EQ(file->pageList.size(), 3U);
  EXPECT_THAT(textOf(file, file->pageList[0]), HasSubstr("/N(b5)"));
  EXPECT_THAT(textOf(file, file->pageList[1]), HasSubstr("/N(a3)"));
  EXPECT_THAT(textOf(file, file->pageList[2]), HasSubstr("/N(a4)"));
  EXPECT_EQ(file->version, "%PDF-1.7");
  expectEntriesPointAtTheirObjects(merge.dest);
}

TEST(MergedFile, PagesKeepTheirResources) {
  Merge merge;
  const Source file = PdfBuilder::openBytes(wholeFile(merge.dest, "1:2 2:2"));
  ASSERT_EQ(file->pageList.size(), 2U);
  for (const auto& [page, text] : {std::pair{0U, "<</N(a14)>>"}, std::pair{1U, "<</N(b14)>>"}}) {
    CPages reader;
    reader.setIdentity(file->pageList[page]);
    ASSERT_TRUE(reader.fromStream(*file));
    ASSERT_NE(reader.ownResources.objNum, 0);
    EXPECT_THAT(textOf(file, reader.ownResources), HasSubstr(text));
  }
}

TEST(MergedFile, OfEverythingHasEveryPage) {
  Merge merge;
  const Source file = PdfBuilder::openBytes(wholeFile(merge.dest, "0:0"));
  EXPECT_EQ(file.result, 0);
  EXPECT_EQ(file->pageList.size(), 6U);
}

TEST(MergedFile, SelectionThatReturnsToAFileKeepsItsOrder) {
  Merge merge;
  const Source file = PdfBuilder::openBytes(wholeFile(merge.dest, "1:1 2:1 1:2"));
  ASSERT_EQ(file.result, 0);
  ASSERT_EQ(file->pageList.size(), 3U);
  EXPECT_THAT(textOf(file, file->pageList[0]), HasSubstr("/N(a3)"));
  EXPECT_THAT(textOf(file, file->pageList[1]), HasSubstr("/N(b3)"));
  EXPECT_THAT(textOf(file, file->pageList[2]), HasSubstr("/N(a4)"));
}

TEST(MergedFile, ObjectThatIsMissingInTheSourceIsMissingInTheOutput) {
  const Source source = pdf()
                            .onePage("/Foo 98 0 R/Bar 7 0 R/Resources 8 0 R")
                            .object(7, "<</A 99 0 R/B(seven)>>")
                            .object(8, "<<>>")
                            .open();
  CDestFile dest;
  dest.files = {{1, source.file.get()}};
  const Source file = PdfBuilder::openBytes(wholeFile(dest, "1:1"));
  ASSERT_EQ(file.result, 0);
  EXPECT_EQ(file->pageList.size(), 1U);
  expectEntriesPointAtTheirObjects(dest);
}

TEST(MergedFile, PageWithoutResourcesLeavesNoObjectWithoutABody) {
  const Source source = plainPages("a").open();
  CDestFile dest;
  dest.files = {{1, source.file.get()}};
  const Source file = PdfBuilder::openBytes(wholeFile(dest, "1:0"));
  ASSERT_EQ(file.result, 0);
  EXPECT_EQ(file->pageList.size(), 2U);
  expectEntriesPointAtTheirObjects(dest);
}

TEST(MergedFile, OfPagesInObjectStreamsOpens) {
  const Source source = pdf()
                            .pageTree({3})
                            .compressed(9, 3, "<</Type/Page/N(c3)/Resources 8 0 R>>")
                            .compressed(9, 8, "<</N(c8)>>")
                            .open();
  CDestFile dest;
  dest.files = {{1, source.file.get()}};
  const Source file = PdfBuilder::openBytes(wholeFile(dest, "1:1"));
  ASSERT_EQ(file.result, 0);
  ASSERT_EQ(file->pageList.size(), 1U);
  EXPECT_THAT(textOf(file, file->pageList[0]), HasSubstr("/N(c3)"));
}

TEST(MergedFile, IsTheSameEachTime) {
  Merge merge;
  const std::string once = wholeFile(merge.dest, "0:0");
  Merge again;
  EXPECT_EQ(wholeFile(again.dest, "0:0"), once);
}

}  // namespace
