#include "TesselPage/tessel_page.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <streambuf>

#include "Tests/Interface/probed_page.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

const std::string plainFile = pdf().onePage("/MediaBox[0 0 100 100]").build();

PdfBuilder threePages() {
  PdfBuilder builder = pdf().pageTree({3, 4, 5}, "/MediaBox[0 0 100 100]");
  for (int number : {3, 4, 5})
    builder.object(number, "<</Type/Page/Parent 2 0 R/Resources<</Font<</F 6 0 R>>>>/N " +
                               std::to_string(number) + ">>");
  return builder.object(6, "<</Type/Font>>");
}

int initOf(const std::string& bytes) { return PdfBuilder::openPageBytes(bytes).result; }

/// A file that exists as long as this does.
class FileOnDisk {
 public:
  explicit FileOnDisk(const std::string& bytes)
      : path((std::filesystem::temp_directory_path() / ("tessel_page_test_" + std::to_string(getpid())))
                 .string()) {
    std::ofstream(path, std::ios::binary) << bytes;
  }
  ~FileOnDisk() { std::filesystem::remove(path); }
  FileOnDisk(const FileOnDisk&) = delete;
  FileOnDisk& operator=(const FileOnDisk&) = delete;

  const std::string path;
};

// Construction.

TEST(PageConstruction, DefaultsHold) {
  std::istringstream in(plainFile);
  const ProbedPage page(in, "secret");
  EXPECT_TRUE(page.empty());
  EXPECT_EQ(page.state->sourceStream, &in);
  EXPECT_EQ(page.state->sourcePath, "");
  EXPECT_EQ(page.state->password, "secret");
  EXPECT_EQ(page.state->sourFile, nullptr);
  EXPECT_EQ(page.state->boxOption, CTesselPage::visibleBox);
  EXPECT_EQ(page.state->curPageNo, 0);
  EXPECT_EQ(page.state->startObjNo, 0);
  EXPECT_EQ(page.state->curPageObj, Identity(0, 0));
  EXPECT_EQ(page.state->encryptKeyKind, 0);
  EXPECT_EQ(page.state->streamObjMap, nullptr);
  EXPECT_FALSE(page.state->lengthFiltered);
  EXPECT_FALSE(page.state->stringsRestorable);
}

TEST(PageConstruction, ReadsNothingOfTheStream) {
  std::istringstream in(plainFile);
  const CTesselPage page(in, "");
  EXPECT_EQ(in.tellg(), 0);
}

TEST(PageConstruction, ReadsAFileByItsPath) {
  const FileOnDisk file(plainFile);
  CTesselPage page(file.path.c_str(), "");
  EXPECT_EQ(page.init(), Result::success);
  EXPECT_EQ(page.getPageCount(), 1);
}

TEST(PageConstruction, AMissingFileShowsInInit) {
  CTesselPage page("/no/such/file.pdf", "");
  EXPECT_EQ(page.init(), Result::notReadable);
}

TEST(PageConstruction, AnEmptyPathOpensNothing) {
  CTesselPage page("", "");
  EXPECT_EQ(page.init(), Result::notReadable);
}

TEST(PageConstruction, TheCallersStreamOutlivesTheObject) {
  std::istringstream in(plainFile);
  { CTesselPage(in, "").init(); }
  in.clear();
  in.seekg(0);
  std::string word;
  EXPECT_TRUE(in >> word);
  EXPECT_EQ(word, "%PDF-1.7");
}

TEST(PageConstruction, ABaseReferenceMayDestroyIt) {
  std::istringstream in(plainFile);
  std::unique_ptr<CTesselPage> page = std::make_unique<ProbedPage>(in, "");
  EXPECT_EQ(page->init(), Result::success);
}

// Opening.

TEST(PageInit, OpensALeastDocument) {
  const OpenPage open = PdfBuilder::openPageBytes(plainFile);
  EXPECT_EQ(open.result, Result::success);
  EXPECT_EQ(open->getPageCount(), 1);
  EXPECT_TRUE(open->empty());
}

TEST(PageInit, AStreamInAFailedStateIsNotReadable) {
  std::istringstream in(plainFile);
  in.setstate(std::ios::failbit);
  CTesselPage page(in, "");
  EXPECT_EQ(page.init(), Result::notReadable);
}

struct Unreadable {
  const char* name;
  std::string bytes;
  int result;
};
std::ostream& operator<<(std::ostream& out, const Unreadable& file) { return out << file.name; }

class UnreadableSource : public testing::TestWithParam<Unreadable> {};

TEST_P(UnreadableSource, IsRefusedByInit) { EXPECT_EQ(initOf(GetParam().bytes), GetParam().result); }

TEST_P(UnreadableSource, ThrowsItsResultWhenOpenedAnew) {
  const OpenPage open = PdfBuilder::openPageBytes(GetParam().bytes);
  try {
    open->SetSourcePassword("x");
    ADD_FAILURE() << "nothing was thrown";
  } catch (int thrown) {
    EXPECT_EQ(thrown, GetParam().result);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Files, UnreadableSource,
    testing::Values(Unreadable{"Empty", "", 1000}, Unreadable{"NoHeader", "no such file at all\n", 1000},
                    Unreadable{"ShortHeader", "%PDF-1\n", 1000},
                    Unreadable{"UnknownMinorVersion", pdf().header("%PDF-1.8").onePage("").build(), 1000},
                    Unreadable{"UnknownMajorVersion", pdf().header("%PDF-3.0").onePage("").build(), 1000},
                    Unreadable{"NoCrossReferences", "%PDF-1.7\nnothing else at all here\n", 1000},
                    Unreadable{"KidThatIsNoPage",
                               pdf().pageTree({3}).object(3, "<</Type/Font/Parent 2 0 R>>").build(), 1000},
                    Unreadable{"CatalogWithABrokenLength", pdf().onePage("", "/Length 90 0 R").build(),
                               8001}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(PageInit, CrossReferencesThatCannotBeReachedAreNotReadable) {
  EXPECT_EQ(initOf("%PDF-1.7\n% a remark\nstartxref\n99999\n%%EOF\n"), Result::xrefNotReadable);
}

TEST(PageInit, KnowsAllVersions) {
  for (const char* version : {"%PDF-1.0", "%PDF-1.1", "%PDF-1.2", "%PDF-1.3", "%PDF-1.4", "%PDF-1.5",
                              "%PDF-1.6", "%PDF-1.7", "%PDF-2.0"}) {
    const OpenPage open = pdf().header(version).onePage("").openPage();
    EXPECT_EQ(open.result, Result::success) << version;
    EXPECT_EQ(open->getHeaderVersion(), version);
  }
}

TEST(PageInit, KeepsTheCatalogWithoutItsReferences) {
  const Probe opened = probe(pdf().onePage("", "/Lang(en)/Metadata 2 0 R"));
  EXPECT_EQ(opened->state->rootString, "<</Type/Catalog/Lang(en)>>\nendobj\n");
}

TEST(PageInit, JoinsTheIdentifiersAsZeroTerminatedStrings) {
  EXPECT_EQ(probe(pdf().onePage("").trailer("/ID[(ab)(cd)]"))->state->idString, "abcd");
  EXPECT_EQ(probe(pdf().onePage("").trailer("/ID[<610062><63>]"))->state->idString, "ac");
  EXPECT_EQ(probe(pdf().onePage(""))->state->idString, "");
}

TEST(PageInit, IgnoresAPasswordThatIsTooLongForAnOpenFile) {
  EXPECT_EQ(PdfBuilder::openPageBytes(plainFile, std::string(40, 'p')).result, Result::success);
}

/// A stream whose reads fail with an exception of their own.
class ThrowingBuffer : public std::streambuf {
  int_type underflow() override { throw std::runtime_error("no more"); }
  pos_type seekoff(off_type off, std::ios::seekdir, std::ios::openmode) override { return pos_type(off); }
  pos_type seekpos(pos_type pos, std::ios::openmode) override { return pos; }
};

TEST(PageInit, AnExceptionOfTheStreamBecomesAResult) {
  ThrowingBuffer buffer;
  std::istream in(&buffer);
  CTesselPage page(in, "");
  int result = 0;
  EXPECT_NO_THROW(result = page.init());
  EXPECT_TRUE(result == Result::notReadable || result == Result::exceptionCaught) << result;
}

TEST(PageInit, ANewPasswordForAnOpenSourceDoesNothing) {
  const Probe opened = probe(threePages());
  EXPECT_EQ(opened->SetSourcePassword("x"), Result::notProtected);
  EXPECT_EQ(opened->state->password, "x");
  EXPECT_EQ(opened->getPageCount(), 3);
  EXPECT_EQ(opened->state->rootString, "<</Type/Catalog>>\nendobj\n");
}

// Selecting a page.

TEST(PageSelection, EachPageIsReadInItsTurn) {
  const OpenPage open = threePages().openPage();
  for (int number : {1, 3, 2}) {
    EXPECT_EQ(open->setPageNo(number), Result::success);
    EXPECT_NE(open->getPageRootString(0).find("/N " + std::to_string(number + 2)), std::string::npos);
  }
}

TEST(PageSelection, AStringWithoutItsEndCostsItsOwnPageOnly) {
  PdfBuilder builder = threePages();
  builder.object(3, "<</Type/Page/Parent 2 0 R/Title (open >>");
  const OpenPage open = builder.openPage();
  EXPECT_EQ(open->setPageNo(1), Result::success);
  open->getPageRootString(0);
  EXPECT_EQ(open->setPageNo(2), Result::success);
  open->setStartObjNo(10);
  EXPECT_EQ(open->size(), 1U);
}

TEST(PageSelection, TheSamePageKeepsItsMap) {
  const Probe opened = harvest(threePages());
  EXPECT_EQ(opened->size(), 1U);
  EXPECT_EQ(opened->setPageNo(1), Result::success);
  EXPECT_EQ(opened->size(), 1U);
}

TEST(PageSelection, AnotherPageEmptiesTheMap) {
  const Probe opened = harvest(threePages());
  EXPECT_EQ(opened->setPageNo(2), Result::success);
  EXPECT_TRUE(opened->empty());
}

TEST(PageSelection, ZeroSucceedsOnAFreshObject) {
  const OpenPage open = threePages().openPage();
  EXPECT_EQ(open->setPageNo(0), Result::success);
}

TEST(PageSelection, ZeroIsOutOfRangeAfterAnotherPage) {
  const Probe opened = harvest(threePages());
  EXPECT_EQ(opened->setPageNo(0), Result::pageOutOfRange);
  EXPECT_TRUE(opened->empty());
  EXPECT_EQ(opened->setPageNo(1), Result::success);
}

TEST(PageSelection, ARejectedNumberCountsAsSelected) {
  const Probe opened = harvest(threePages());
  EXPECT_EQ(opened->setPageNo(4), Result::pageOutOfRange);
  EXPECT_TRUE(opened->empty());
  EXPECT_EQ(opened->state->curPageNo, 4);
  EXPECT_EQ(opened->state->sourFile->curPage, 4);
  EXPECT_EQ(opened->setPageNo(4), Result::success);
}

TEST(PageSelection, NegativeNumbersAreOutOfRange) {
  const OpenPage open = threePages().openPage();
  EXPECT_EQ(open->setPageNo(-1), Result::pageOutOfRange);
  EXPECT_EQ(open->setPageNo(-2147483647 - 1), Result::pageOutOfRange);
}

TEST(PageSelection, APageIsReadableAfterARejectedNumber) {
  const OpenPage open = threePages().openPage();
  open->setPageNo(9);
  EXPECT_EQ(open->setPageNo(2), Result::success);
}

TEST(PageSelection, APageThatRefersToAPageIsDamaged) {
  for (const char* entry :
       {"/Foo 3 0 R", "/Contents 3 0 R", "/Resources 3 0 R", "/Annots[<<>>]/Annots 3 0 R"}) {
    const OpenPage open = pdf().onePage(entry).openPage();
    EXPECT_EQ(open.result, Result::success) << entry;
    EXPECT_EQ(open->setPageNo(1), Result::notReadable) << entry;
  }
}

TEST(PageSelection, ADamagedPageCountsAsSelected) {
  const OpenPage open = pdf().onePage("/Foo 3 0 R").openPage();
  EXPECT_EQ(open->setPageNo(1), Result::notReadable);
  EXPECT_EQ(open->setPageNo(1), Result::success);
}

// Results of other operations.

TEST(PageResults, KeyLengthsFrom5To32AreTaken) {
  const unsigned char key[40] = {};
  const OpenPage open = PdfBuilder::openPageBytes(plainFile);
  for (int length : {-1, 0, 4, 33})
    EXPECT_EQ(open->setEncryptKey(key, length, 4), Result::badKeyLength) << length;
  for (int length : {5, 16, 32}) EXPECT_EQ(open->setEncryptKey(key, length, 4), Result::success) << length;
}

TEST(PageResults, KeyKindsFollowLengthAndRevision) {
  struct Row {
    int length, revision, kind;
  };
  const unsigned char key[32] = {};
  const Probe opened = probeBytes(plainFile);
  for (const Row& row : {Row{16, 4, 2}, {32, 5, 3}, {16, 3, 1}, {32, 4, 1}, {5, 2, 1}, {16, 5, 1}}) {
    opened->setEncryptKey(key, row.length, row.revision);
    EXPECT_EQ(opened->state->encryptKeyKind, row.kind) << row.length << ' ' << row.revision;
    EXPECT_EQ(opened->state->encryptRevision, row.revision);
  }
}

}  // namespace
