#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <list>
#include <string>

#include "TesselPage/Model/tessel_pages.h"
#include "TesselPage/Syntax/tessel_objref.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "Tests/Model/model_verbs.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A source without a document, for writers that read none.
struct NoSource {
  CSourFile file{std::string()};
  operator CSourFile&() { return file; }
};

const std::string& text(const CDestFile& dest) { return dest; }

/// An output in which something stands already: the next object begins at offset 5, which is 7 bytes from
/// the front.
struct Begun {
  Begun() {
    dest.append("before.");
    dest.start = 2;
    dest.endMark = 7;
  }
  /// The text behind what stood there.
  std::string added() const { return text(dest).substr(7); }
  /// Offset of the entry of an object that is in use; -1 when there is none.
  long long offsetOf(const SObj& id) const {
    const auto found = dest.fileInfo.objEntries.find(id);
    return found == dest.fileInfo.objEntries.end() || found->second.entryFlag != 'n'
               ? -1
               : found->second.entryOffset;
  }

  CDestFile dest;
};

// Any object
// ---------------------------------------------------------------------------------------------------------

/// Object 7 of a document, references to 7 and 8 in it.
Source objectSeven() { return pdf().onePage("").object(7, "<</A 8 0 R/B(x)/C 7 0 R>>").open(); }

TEST(WriteObject, HasItsNewNumberAndReferences) {
  const Source source = objectSeven();
  Begun output;
  output.dest.currentFile = 1;
  output.dest.insertNewObjTab({0, 1, SObj(7, 0)}, SObj(17, 2));
  EXPECT_TRUE(CObj(SObj(7, 0)).Write(output.dest, *source));
  EXPECT_EQ(output.added(), "17 2 obj <</B(x)/C 17 2 R>>\nendobj\n");
  EXPECT_EQ(output.offsetOf(SObj(17, 2)), 5);
  EXPECT_EQ(output.dest.currentObject, SObj(17, 2));
  EXPECT_EQ(output.dest.endMark, output.dest.size());
}

TEST(WriteObject, WithoutANewNumberWritesNothing) {
  const Source source = objectSeven();
  CDestFile dest;
  dest.insertNewObjTab({0, 1, SObj(7, 0)}, SObj(17, 0));
  EXPECT_FALSE(CObj(SObj(7, 0)).Write(dest, *source));
  EXPECT_TRUE(dest.empty());
  EXPECT_THAT(dest.fileInfo.objEntries, IsEmpty());
}

TEST(WriteObject, RawHasItsOwnNumberAndReferences) {
  const Source source = objectSeven();
  CDestFile dest;
  dest.rawFlag = true;
  dest.insertNewObjTab({0, 0, SObj(7, 0)}, SObj(17, 0));
  EXPECT_TRUE(CObj(SObj(7, 0)).Write(dest, *source));
  EXPECT_EQ(text(dest), "7 0 obj <</A 8 0 R/B(x)/C 7 0 R>>\nendobj\n");
  EXPECT_THAT(dest.fileInfo.objEntries, IsEmpty());
}

TEST(WriteObject, RawNeedsNoNewNumber) {
  const Source source = objectSeven();
  CDestFile dest;
  dest.rawFlag = true;
  EXPECT_TRUE(CObj(SObj(7, 0)).Write(dest, *source));
  EXPECT_EQ(text(dest), "7 0 obj <</A 8 0 R/B(x)/C 7 0 R>>\nendobj\n");
}

TEST(WriteObject, ToStreamWritesFromTheCurrentSource) {
  const Source first = pdf().onePage("").object(7, "(first)").open();
  const Source second = pdf().onePage("").object(7, "(second)").open();
  CDestFile dest;
  dest.files = {{1, first.file.get()}, {2, second.file.get()}};
  dest.currentFile = 2;
  dest.insertNewObjTab({0, 2, SObj(7, 0)}, SObj(17, 0));
  EXPECT_TRUE(CObj(SObj(7, 0)).toStream(dest));
  EXPECT_EQ(text(dest), "17 0 obj (second)\nendobj\n");
}

TEST(WriteReference, IsFollowedByABlank) {
  CObjRef reference;
  reference.objRef = SObj(12, 3);
  CDestFile dest;
  reference.Write(dest, NoSource());
  EXPECT_EQ(text(dest), "12 3 R ");
}

TEST(WriteObject, NamesAndMarkInfoAreWrittenAsAnyOther) {
  const Source source = objectSeven();
  CDestFile dest;
  dest.insertNewObjTab({0, 0, SObj(7, 0)}, SObj(17, 0));
  CNames names;
  names.setIdentity(SObj(7, 0));
  EXPECT_TRUE(names.Write(dest, *source));
  CMarkInfo markInfo;
  markInfo.setIdentity(SObj(7, 0));
  EXPECT_TRUE(markInfo.Write(dest, *source));
  EXPECT_EQ(text(dest), "17 0 obj <</B(x)/C 17 0 R>>\nendobj\n17 0 obj <</B(x)/C 17 0 R>>\nendobj\n");
}

// Catalog
// ---------------------------------------------------------------------------------------------------------

struct CatalogOutput : Begun {
  CatalogOutput() {
    dest.fileInfo.root = SObj(9, 0);
    dest.rootPages().setIdentity(SObj(8, 1));
  }
  std::string write() {
    EXPECT_TRUE(catalog.Write(dest, NoSource()));
    return added();
  }

  CCatalog catalog;
};

TEST(WriteCatalog, LeadsToThePageTree) {
  EXPECT_EQ(CatalogOutput().write(), "9 0 obj\n<</Type/Catalog/Pages 8 1 R >>endobj\n");
}

TEST(WriteCatalog, NamesWhatHasANumberInItsOrder) {
  CatalogOutput output;
  output.catalog.names.id = SObj(5, 0);
  output.catalog.optionalContent.id = SObj(6, 1);
  output.catalog.form.id = SObj(7, 0);
  EXPECT_EQ(
      output.write(),
      "9 0 obj\n<</Type/Catalog/Pages 8 1 R /AcroForm 7 0 R /OCProperties 6 1 R /Names 5 0 R >>endobj\n");
}

TEST(WriteCatalog, EachOfTheThreeMayBeMissing) {
  CatalogOutput form, layers, names;
  form.catalog.form.id = SObj(1, 0);
  EXPECT_EQ(form.write(), "9 0 obj\n<</Type/Catalog/Pages 8 1 R /AcroForm 1 0 R >>endobj\n");
  layers.catalog.optionalContent.id = SObj(1, 0);
  EXPECT_EQ(layers.write(), "9 0 obj\n<</Type/Catalog/Pages 8 1 R /OCProperties 1 0 R >>endobj\n");
  names.catalog.names.id = SObj(1, 0);
  EXPECT_EQ(names.write(), "9 0 obj\n<</Type/Catalog/Pages 8 1 R /Names 1 0 R >>endobj\n");
}

TEST(WriteCatalog, OtherEntriesAreNotWritten) {
  CatalogOutput output;
  output.catalog.metadata = SObj(4, 0);
  output.catalog.version = 7;
  output.catalog.markInfo.marked = true;
  EXPECT_EQ(output.write(), "9 0 obj\n<</Type/Catalog/Pages 8 1 R >>endobj\n");
}

TEST(WriteCatalog, IsRecordedUnderTheRootIdentity) {
  CatalogOutput output;
  output.catalog.setIdentity(SObj(1, 0));
  output.write();
  EXPECT_EQ(output.offsetOf(SObj(9, 0)), 5);
  EXPECT_EQ(output.offsetOf(SObj(1, 0)), -1);
  EXPECT_EQ(output.dest.currentObject, SObj(9, 0));
  EXPECT_EQ(output.dest.endMark, output.dest.size());
}

// Page tree
// ---------------------------------------------------------------------------------------------------------

/// A document whose nodes 10 to 12 are ancestors, with these entries.
PdfBuilder ancestors(const std::string& ten, const std::string& eleven = "", const std::string& twelve = "") {
  return pdf()
      .onePage("")
      .object(10, "<</Type/Pages" + ten + ">>")
      .object(11, "<</Type/Pages" + eleven + ">>")
      .object(12, "<</Type/Pages" + twelve + ">>");
}

/// A node of a document's pages, and the output that it is written to.
struct NodeOutput : Begun {
  explicit NodeOutput(const PdfBuilder& file, std::list<SObj> list = {SObj(10, 0)}) : source(file.open()) {
    dest.files = {{1, source.file.get()}};
    dest.rootPages().setIdentity(SObj(4, 0));
    node.setIdentity(SObj(6, 0));
    node.kids = {SObj(3, 0)};
    node.count = 1;
    node.sourceIndex = 1;
    node.ancestors = std::move(list);
  }
  std::string write() {
    node.Write(dest, *source);
    return added();
  }
  /// What WriteOther appends; its result is kept.
  std::string carried() {
    result = node.WriteOther(dest);
    return added();
  }

  Source source;
  CPages node{"/Pages"};
  bool result = false;
};

TEST(WritePages, ListsItsKids) {
  Begun output;
  CPages node("/Pages");
  node.setIdentity(SObj(6, 1));
  node.kids = {SObj(3, 0), SObj(12, 2)};
  node.count = 5;
  node.Write(output.dest, NoSource());
  EXPECT_EQ(output.added(), "6 1 obj\n<</Type/Pages/Count 5/Kids[3 0 R 12 2 R ]\n>>endobj\n");
  EXPECT_EQ(output.offsetOf(SObj(6, 1)), 5);
  EXPECT_EQ(output.dest.currentObject, SObj(6, 1));
  EXPECT_EQ(output.dest.endMark, output.dest.size());
}

TEST(WritePages, MayHaveNoKids) {
  CDestFile dest;
  CPages node("/Pages");
  node.setIdentity(SObj(6, 0));
  node.Write(dest, NoSource());
  EXPECT_EQ(text(dest), "6 0 obj\n<</Type/Pages/Count 0/Kids[]\n>>endobj\n");
}

TEST(WritePages, NodeOfASourceWithAncestorsCarriesThemOverAndNamesTheRoot) {
  EXPECT_EQ(NodeOutput(ancestors("/MediaBox[0 0 612 792]")).write(),
            "6 0 obj\n<</Type/Pages/Count 1/Kids[3 0 R ]\n/MediaBox [0 0 612 792] /Parent 4 0 R >>endobj\n");
}

TEST(WritePages, AncestorsThatYieldNothingLeaveTheParent) {
  EXPECT_EQ(NodeOutput(ancestors("/Resources 8 0 R")).write(),
            "6 0 obj\n<</Type/Pages/Count 1/Kids[3 0 R ]\n/Parent 4 0 R >>endobj\n");
}

TEST(WritePages, NodeWithoutAncestorsNamesNoParent) {
  EXPECT_EQ(NodeOutput(ancestors(""), {}).write(), "6 0 obj\n<</Type/Pages/Count 1/Kids[3 0 R ]\n>>endobj\n");
}

TEST(WritePages, RootCarriesNothingOver) {
  NodeOutput output(ancestors("/MediaBox[0 0 612 792]"));
  output.node.sourceIndex = 0;
  EXPECT_EQ(output.write(), "6 0 obj\n<</Type/Pages/Count 1/Kids[3 0 R ]\n>>endobj\n");
}

struct CarriedCase {
  const char* entries;
  const char* expected;
  unsigned mask;
};

class CarriedAttributes : public testing::TestWithParam<CarriedCase> {};

TEST_P(CarriedAttributes, AreWrittenOnceEachInTheirOrder) {
  NodeOutput output{ancestors(GetParam().entries)};
  EXPECT_EQ(output.carried(), GetParam().expected);
  EXPECT_EQ(output.node.writtenMask, GetParam().mask);
}

INSTANTIATE_TEST_SUITE_P(
    Entries, CarriedAttributes,
    testing::Values(
        CarriedCase{"/MediaBox[0 0 612 792]", "/MediaBox [0 0 612 792] ", 1},
        CarriedCase{"/CropBox [ 1 2 3 4 ]", "/CropBox [1 2 3 4] ", 2},
        CarriedCase{"/Rotate 90", "/Rotate 90 ", 4}, CarriedCase{"/Rotate -90", "/Rotate -90 ", 4},
        CarriedCase{"/MediaBox[0 0 9 9]/CropBox[1 1 8 8]/Rotate 180",
                    "/MediaBox [0 0 9 9] /CropBox [1 1 8 8] /Rotate 180 ", 7},
        CarriedCase{"/Rotate 270/CropBox[1 1 8 8]/MediaBox[0 0 9 9]",
                    "/Rotate 270 /CropBox [1 1 8 8] /MediaBox [0 0 9 9] ", 7},
        CarriedCase{"/MediaBox[612 792 0 0]", "/MediaBox [612 792 0 0] ", 1},
        CarriedCase{"/MediaBox[-0.5 .25 612.125 1234567]", "/MediaBox [-0.5 0.25 612.125 1.23457e+06] ", 1},
        CarriedCase{"/MediaBox[0 0 1 1]/MediaBox[0 0 2 2]", "/MediaBox [0 0 1 1] ", 1},
        CarriedCase{"/CropBox[0 0 1 1]/CropBox[0 0 2 2]/Rotate 90/Rotate 180",
                    "/CropBox [0 0 1 1] /Rotate 90 ", 6},
        CarriedCase{"/BleedBox[0 0 1 1]/TrimBox[0 0 1 1]/ArtBox[0 0 1 1]/Resources<</Font 8 0 R>>", "", 0},
        CarriedCase{"", "", 0}));

TEST(WriteOther, LeavesOutWhatTheNodeHasWritten) {
  NodeOutput output(ancestors("/MediaBox[0 0 9 9]/CropBox[1 1 8 8]/Rotate 90"));
  CSourFile ancestor("/MediaBox[0 0 9 9]/CropBox[1 1 8 8]/Rotate 90>> endobj ");
  output.node.writtenMask = 1;
  EXPECT_TRUE(output.node.WriteOtherInfo(output.dest, ancestor));
  EXPECT_EQ(output.added(), "/CropBox [1 1 8 8] /Rotate 90 ");
  EXPECT_EQ(output.node.writtenMask, 7U);
}

TEST(WriteOther, ClimbsUntilAnAncestorYieldsSomething) {
  NodeOutput output(ancestors("/Parent 11 0 R", "/Parent 12 0 R/Rotate 90", "/MediaBox[0 0 9 9]"));
  EXPECT_EQ(output.carried(), "/Rotate 90 ");
}

TEST(WriteOther, ClimbsPastAncestorsThatYieldNothing) {
  NodeOutput output(ancestors("/Parent 11 0 R", "/Parent 12 0 R", "/MediaBox[0 0 9 9]"));
  EXPECT_EQ(output.carried(), "/MediaBox [0 0 9 9] ");
  EXPECT_EQ(output.source->parentMap.at(SObj(10, 0)), SObj(11, 0));
  EXPECT_EQ(output.source->parentMap.at(SObj(11, 0)), SObj(12, 0));
}

TEST(WriteOther, TakesTheNextOfSeveralAncestors) {
  EXPECT_EQ(
      NodeOutput(ancestors("", "/CropBox[0 0 1 1]", "/Rotate 90"), {SObj(10, 0), SObj(11, 0), SObj(12, 0)})
          .carried(),
      "/CropBox [0 0 1 1] ");
}

TEST(WriteOther, GivesTheNodeItsIdentityBack) {
  NodeOutput output(ancestors("/Rotate 90"));
  output.carried();
  EXPECT_EQ(output.node.id, SObj(6, 0));
  EXPECT_THAT(output.node.ancestors, IsEmpty());
}

TEST(WriteOther, AncestorThatCanNotBeReachedEndsTheWalk) {
  NodeOutput output(ancestors("", "/Rotate 90"), {SObj(99, 0), SObj(11, 0)});
  EXPECT_EQ(output.carried(), "");
  EXPECT_FALSE(output.result);
  EXPECT_TRUE(output.source->good());
}

TEST(WriteOther, AncestorInAnObjectStreamYieldsItsOwnAndEndsTheWalk) {
  const PdfBuilder file =
      pdf().onePage("").compressed(20, 10, "<</Type/Pages/Parent 11 0 R/Rotate 90>>").object(11, "<<>>");
  NodeOutput output(file);
  EXPECT_EQ(output.carried(), "/Rotate 90 ");
  EXPECT_FALSE(output.result);
  EXPECT_EQ(output.node.ancestors.front(), SObj(10, 0));
  EXPECT_EQ(output.node.id, SObj(10, 0));
  EXPECT_EQ(output.source->parentMap.at(SObj(10, 0)), SObj(11, 0));
}

TEST(WriteOther, IsNotClimbedBeyondAnObjectStream) {
  const PdfBuilder file = pdf()
                              .onePage("")
                              .compressed(20, 10, "<</Type/Pages/Parent 11 0 R>>")
                              .object(11, "<</Type/Pages/MediaBox[0 0 9 9]>>");
  NodeOutput output(file);
  EXPECT_EQ(output.carried(), "");
  EXPECT_FALSE(output.result);
}

TEST(WriteOther, CycleOfParentsEnds) {
  EXPECT_EQ(NodeOutput(ancestors("/Parent 11 0 R", "/Parent 12 0 R", "/Parent 10 0 R")).write(),
            "6 0 obj\n<</Type/Pages/Count 1/Kids[3 0 R ]\n/Parent 4 0 R >>endobj\n");
  EXPECT_EQ(NodeOutput(ancestors("/Parent 10 0 R")).carried(), "");
}

TEST(WriteOther, LongChainOfParentsIsClimbed) {
  PdfBuilder file = pdf().onePage("");
  constexpr int last = 5000;
  for (int i = 10; i < last; ++i) file.object(i, "<</Parent " + std::to_string(i + 1) + " 0 R>>");
  file.object(last, "<</Rotate 90>>");
  EXPECT_EQ(NodeOutput(file).carried(), "/Rotate 90 ");
}

TEST(WriteOther, BoxWithoutFourNumbersLeavesAWellFormedNode) {
  const std::string written = NodeOutput(ancestors("/MediaBox[0 0]/Rotate 90")).write();
  EXPECT_THAT(written, testing::EndsWith("/Parent 4 0 R >>endobj\n"));
  EXPECT_THAT(written, testing::HasSubstr("/Rotate 90 "));
}

TEST(WriteOtherInfo, ParentGoesToTheEndOfTheAncestors) {
  CSourFile source("<</Kids[3 0 R]/Parent 11 0 R/Font 8 0 R>> endobj /Rotate 90 ");
  CDestFile dest;
  CPages node("/Pages");
  node.setIdentity(SObj(10, 0));
  node.ancestors = {SObj(10, 0)};
  EXPECT_TRUE(node.WriteOtherInfo(dest, source));
  EXPECT_THAT(node.ancestors, ElementsAre(SObj(10, 0), SObj(11, 0)));
  EXPECT_EQ(source.parentMap.at(SObj(10, 0)), SObj(11, 0));
  EXPECT_EQ(text(dest), "");
}

// Page
// ---------------------------------------------------------------------------------------------------------

/// Two pages, with what the copier cuts and a reference; numbered 12 and 13, their node is 20.
struct PageOutput : Begun {
  PageOutput() {
    dest.files = {{1, source.file.get()}};
    dest.currentFile = 1;
    dest.insertNewObjTab({0, 1, SObj(3, 0)}, SObj(12, 0));
    dest.insertNewObjTab({0, 1, SObj(4, 0)}, SObj(13, 1));
    dest.insertNewObjTab({0, 1, SObj(7, 0)}, SObj(17, 0));
    source->newRoot = SObj(20, 0);
  }
  bool write(int number) {
    CPage page;
    page.setIdentity(SObj(number, 0));
    return page.Write(dest, *source);
  }

  Source source = pdf()
                      .pageTree({3, 4, 5})
                      .object(3, "<</Type/Page/A 7 0 R/B 8 0 R/MediaBox[0 0 9 9]/Contents 7 0 R>>")
                      .object(4, "<</Type/Page/N(4)>>")
                      .object(5, "<</Type/Page/N(5)>>")
                      .open();
};

TEST(WritePage, IsCopiedUnderItsNewNumber) {
  PageOutput output;
  EXPECT_TRUE(output.write(3));
  EXPECT_EQ(output.added(), "12 0 obj <</Type/Page/A 17 0 R/B null >>\nendobj\n");
  EXPECT_EQ(output.offsetOf(SObj(12, 0)), 5);
  EXPECT_EQ(output.dest.currentObject, SObj(12, 0));
  EXPECT_EQ(output.dest.endMark, output.dest.size());
}

TEST(WritePage, MakesTheNodeOfItsSource) {
  PageOutput output;
  output.write(3);
  ASSERT_EQ(output.dest.pages.size(), 1U);
  const CPages& node = *output.dest.pages.begin()->second;
  EXPECT_EQ(node.id, SObj(20, 0));
  EXPECT_EQ(node.type, "/Pages");
  EXPECT_EQ(node.count, 1);
  EXPECT_EQ(node.sourceIndex, 1);
  EXPECT_THAT(identities(node.kids), ElementsAre(std::pair{12, 0}));
}

TEST(WritePage, JoinsTheNodeThatIsThere) {
  PageOutput output;
  output.write(4);
  output.write(3);
  ASSERT_EQ(output.dest.pages.size(), 1U);
  const CPages& node = *output.dest.pages.begin()->second;
  EXPECT_EQ(node.count, 2);
  EXPECT_THAT(identities(node.kids), ElementsAre(std::pair{13, 1}, std::pair{12, 0}));
}

TEST(WritePage, MakesANewNodeForANewIdentityOfTheSourcesRoot) {
  PageOutput output;
  output.write(3);
  output.source->newRoot = SObj(21, 0);
  output.write(4);
  EXPECT_EQ(output.dest.pages.size(), 2U);
}

TEST(WritePage, IsCountedInTheOutput) {
  PageOutput output;
  output.write(3);
  EXPECT_EQ(output.dest.rootPages().count, 1);
  output.write(4);
  EXPECT_EQ(output.dest.rootPages().count, 2);
}

TEST(WritePage, WithoutANewNumberWritesNothing) {
  PageOutput output;
  EXPECT_FALSE(output.write(5));
  EXPECT_EQ(output.added(), "");
  EXPECT_THAT(output.dest.fileInfo.objEntries, IsEmpty());
  EXPECT_THAT(output.dest.pages, IsEmpty());
  EXPECT_EQ(output.dest.rootPages().count, 0);
}

TEST(WritePage, NumberOfAnotherFileIsNotItsOwn) {
  PageOutput output;
  output.dest.currentFile = 0;
  EXPECT_FALSE(output.write(3));
  EXPECT_EQ(output.added(), "");
}

TEST(WritePage, RawHasItsOwnNumberAndReferencesAndNoNode) {
  PageOutput output;
  output.dest.rawFlag = true;
  EXPECT_TRUE(output.write(4));
  EXPECT_EQ(output.added(), "4 0 obj <</Type/Page/N(4)>>\nendobj\n");
  EXPECT_THAT(output.dest.fileInfo.objEntries, IsEmpty());
  EXPECT_THAT(output.dest.pages, IsEmpty());
  EXPECT_EQ(output.dest.rootPages().count, 0);
}

// Form
// ---------------------------------------------------------------------------------------------------------

struct FormOutput : Begun {
  FormOutput() {
    dest.files = {{1, &first}, {2, &second}};
    form.setIdentity(SObj(30, 1));
  }
  bool write() { return form.Write(dest, first); }

  CSourFile first{std::string()};
  CSourFile second{std::string()};
  CAcroForm form;
};

TEST(WriteForm, WithoutFieldsIsEmpty) {
  FormOutput output;
  EXPECT_TRUE(output.write());
  EXPECT_EQ(output.added(), "30 1 obj\n<</Fields[] >>endobj\n");
  EXPECT_EQ(output.offsetOf(SObj(30, 1)), 5);
  EXPECT_EQ(output.dest.currentObject, SObj(30, 1));
  EXPECT_EQ(output.dest.endMark, output.dest.size());
}

TEST(WriteForm, ListsTheFieldsOfAllSourcesInOrder) {
  FormOutput output;
  output.first.formFields[SObj(6, 0)];
  output.first.formFields[SObj(5, 0)];
  output.second.formFields[SObj(5, 0)];
  output.dest.insertNewObjTab({0, 1, SObj(5, 0)}, SObj(15, 0));
  output.dest.insertNewObjTab({0, 1, SObj(6, 0)}, SObj(16, 0));
  output.dest.insertNewObjTab({0, 2, SObj(5, 0)}, SObj(25, 3));
  EXPECT_TRUE(output.write());
  EXPECT_EQ(output.added(), "30 1 obj\n<</Fields[ 15 0 R  16 0 R  25 3 R ] >>endobj\n");
}

TEST(WriteForm, FieldsWithTheirFlagAreLeftOut) {
  FormOutput output;
  output.first.formFields[SObj(5, 0, 0x200)];
  output.first.formFields[SObj(6, 0, 0x100)];
  output.dest.insertNewObjTab({0, 1, SObj(6, 0)}, SObj(16, 0));
  EXPECT_TRUE(output.write());
  EXPECT_EQ(output.added(), "30 1 obj\n<</Fields[ 16 0 R ] >>endobj\n");
}

TEST(WriteForm, FieldWithoutANewNumberLeavesTheObjectUnfinished) {
  FormOutput output;
  output.first.formFields[SObj(5, 0)];
  output.first.formFields[SObj(6, 0)];
  output.dest.insertNewObjTab({0, 1, SObj(5, 0)}, SObj(15, 0));
  EXPECT_FALSE(output.write());
  EXPECT_EQ(output.added(), "30 1 obj\n<</Fields[ 15 0 R ");
  EXPECT_EQ(output.dest.endMark, 7U);
}

TEST(WriteForm, SourcesAreCountedFromOneWhateverTheirKeys) {
  FormOutput output;
  output.dest.files = {{3, &output.first}, {7, &output.second}};
  output.second.formFields[SObj(5, 0)];
  output.dest.insertNewObjTab({0, 2, SObj(5, 0)}, SObj(25, 0));
  EXPECT_TRUE(output.write());
  EXPECT_EQ(output.added(), "30 1 obj\n<</Fields[ 25 0 R ] >>endobj\n");
}

TEST(WriteForm, FieldsOfTheDictionaryReadAreNotListed) {
  FormOutput output;
  output.form.fields = {SObj(5, 0)};
  EXPECT_TRUE(output.write());
  EXPECT_EQ(output.added(), "30 1 obj\n<</Fields[] >>endobj\n");
}

// Optional content
// ---------------------------------------------------------------------------------------------------------

struct LayerOutput : Begun {
  LayerOutput() { layers.setIdentity(SObj(4, 1)); }
  std::string write() {
    EXPECT_TRUE(layers.Write(dest, NoSource()));
    return added();
  }

  COCProperties layers;
};

TEST(WriteOptionalContent, WithoutGroupsIsEmpty) {
  EXPECT_EQ(LayerOutput().write(), "4 1 obj\n<</D<</OFF[]/ON[]>> >>endobj\n");
}

TEST(WriteOptionalContent, GroupThatDidNotTravelIsNull) {
  LayerOutput output;
  output.layers.off = {SObj(1, 0)};
  EXPECT_EQ(output.write(), "4 1 obj\n<</D<</OFF[ null ]/ON[]>> >>endobj\n");
}

TEST(WriteOptionalContent, BothListsHaveTheirNewNumbersInOrder) {
  LayerOutput output;
  output.layers.off = {SObj(3, 0), SObj(1, 0)};
  output.layers.on = {SObj(2, 0), SObj(2, 1)};
  output.dest.insertNewObjTab({0, 0, SObj(1, 0)}, SObj(11, 0));
  output.dest.insertNewObjTab({0, 0, SObj(2, 0)}, SObj(12, 3));
  output.dest.insertNewObjTab({0, 0, SObj(3, 0)}, SObj(13, 0));
  EXPECT_EQ(output.write(), "4 1 obj\n<</D<</OFF[ 13 0 R 11 0 R]/ON[ 12 3 R null ]>> >>endobj\n");
}

TEST(WriteOptionalContent, OrderIsNotWritten) {
  LayerOutput output;
  output.layers.order = {SObj(1, 0)};
  output.dest.insertNewObjTab({0, 0, SObj(1, 0)}, SObj(11, 0));
  EXPECT_EQ(output.write(), "4 1 obj\n<</D<</OFF[]/ON[]>> >>endobj\n");
}

TEST(WriteOptionalContent, NumbersAreThoseOfTheCurrentFile) {
  LayerOutput output;
  output.layers.on = {SObj(1, 0)};
  output.dest.currentFile = 2;
  output.dest.insertNewObjTab({0, 1, SObj(1, 0)}, SObj(11, 0));
  output.dest.insertNewObjTab({0, 2, SObj(1, 0)}, SObj(21, 0));
  EXPECT_EQ(output.write(), "4 1 obj\n<</D<</OFF[]/ON[ 21 0 R]>> >>endobj\n");
}

TEST(WriteOptionalContent, IsRecorded) {
  LayerOutput output;
  output.write();
  EXPECT_EQ(output.offsetOf(SObj(4, 1)), 5);
  EXPECT_EQ(output.dest.currentObject, SObj(4, 1));
}

}  // namespace
