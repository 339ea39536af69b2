#include "TesselPage/Model/tessel_catalog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Model/model_verbs.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Reads a catalog's entries, from behind its "<<", in a source without a document.
struct Catalog {
  explicit Catalog(const std::string& entries) : source(entries + ">> endobj"), read(catalog.Read(source)) {}

  CSourFile source;
  CCatalog catalog;
  bool read;
};

Source withCatalog(const std::string& entries) { return pdf().onePage("", entries).open(); }

// Version
// -------------------------------------------------------------------------------------------------------------------

struct VersionCase {
  const char* text;
  int expected;  ///< -1: the read ends with a failure
};

class CatalogVersion : public testing::TestWithParam<VersionCase> {};

TEST_P(CatalogVersion, IsOneOfTheKnownOnes) {
  const Catalog reader(std::string("/Version ") + GetParam().text + "/Pages 2 0 R");
  EXPECT_EQ(reader.read, GetParam().expected != -1);
  EXPECT_EQ(reader.catalog.version, std::max(GetParam().expected, 0));
  EXPECT_EQ(reader.catalog.pages.objNum, reader.read ? 2 : 0);
}

INSTANTIATE_TEST_SUITE_P(Names, CatalogVersion,
                         testing::Values(VersionCase{"/1.0", 0}, VersionCase{"/1.1", 1},
                                         VersionCase{"/1.4", 4}, VersionCase{"/1.7", 7},
                                         VersionCase{"/2.0", 10}, VersionCase{"/1x5", 5},
                                         VersionCase{"/1.8", -1}, VersionCase{"/3.0", -1},
                                         VersionCase{"/2.1", -1}, VersionCase{"/1.10", -1},
                                         VersionCase{"/1.", -1}, VersionCase{"1.4 ", -1},
                                         VersionCase{"(1.4)", -1}));

TEST(Catalog, VersionMayBeAReference) {
  const Source source = pdf().onePage("", "/Version 9 0 R/Metadata 8 0 R").object(9, "/1.6").open();
  EXPECT_EQ(source->catalogObj->version, 6);
  EXPECT_EQ(source->catalogObj->metadata, SObj(8, 0));
}

// References
// ------------------------------------------------------------------------------------------------------------------

TEST(Catalog, PagesAndMetadataMustBeReferences) {
  EXPECT_FALSE(Catalog("/Pages<</Type/Pages>>").read);
  EXPECT_FALSE(Catalog("/Metadata null").read);
  const Catalog reader("/Pages 2 0 R/Metadata 7 1 R");
  EXPECT_TRUE(reader.read);
  EXPECT_EQ(reader.catalog.pages, SObj(2, 0));
  EXPECT_EQ(reader.catalog.metadata, SObj(7, 1));
}

TEST(Catalog, LiesInAnObjectStreamToo) {
  const Source source = pdf()
                            .compressed(6, 1, "<</Type/Catalog/Lang(x)/Pages 2 0 R/Metadata 8 0 R>>")
                            .object(2, "<</Type/Pages/Kids[3 0 R]>>")
                            .object(3, "<</Type/Page>>")
                            .open();
  EXPECT_EQ(source.result, 0);
  EXPECT_EQ(source->catalogObj->pages, SObj(2, 0));
  EXPECT_EQ(source->catalogObj->metadata, SObj(8, 0));
}

// Unknown keys
// ----------------------------------------------------------------------------------------------------------------

struct SkipCase {
  const char* value;
  bool read;
  int pages;
};

class UnknownValue : public testing::TestWithParam<SkipCase> {};

TEST_P(UnknownValue, IsSteppedOverAsAWhole) {
  const Catalog reader(std::string("/Foo ") + GetParam().value + "/Pages 2 0 R");
  EXPECT_EQ(reader.read, GetParam().read);
  EXPECT_EQ(reader.catalog.pages.objNum, GetParam().pages);
}

INSTANTIATE_TEST_SUITE_P(
    Values, UnknownValue,
    testing::Values(SkipCase{"<</Pages 3 0 R>>", true, 2}, SkipCase{"[/Pages 3 0 R]", true, 2},
                    SkipCase{"<</A<</Pages 3 0 R>>/B[/Pages 4 0 R]>>", true, 2},
                    SkipCase{"(/Pages 3 0 R)", true, 2}, SkipCase{"(a\\)/Pages 3 0 R)", true, 2},
                    SkipCase{"(a(/Pages 3 0 R)b)", true, 2}, SkipCase{"[(]]])]", true, 2},
                    SkipCase{"5 0 R", true, 2}, SkipCase{"true", true, 2}, SkipCase{">>", false, 0},
                    SkipCase{"]", false, 0}, SkipCase{"(unclosed", false, 0}));

TEST(Catalog, HeadInsideTheTextEndsASkip) {
  const Catalog reader("/Foo obj <</Pages 2 0 R");
  EXPECT_EQ(reader.catalog.pages, SObj(2, 0));
}

TEST(Catalog, BehindNamesUnknownValuesAreTakenTokenByToken) {
  const Catalog reader("/Pages 2 0 R/Names 9 0 R/Foo<</Pages 3 0 R>>");
  EXPECT_EQ(reader.catalog.pages, SObj(3, 0));
}

// Two passes
// ------------------------------------------------------------------------------------------------------------------

TEST(Catalog, NamesWaitForTheSecondPass) {
  const Source source = pdf()
                            .onePage("", "/Names 9 0 R")
                            .object(9, "<</Dests 10 0 R/JavaScript 11 0 R>>")
                            .object(11, "<<>>")
                            .open();
  CCatalog& catalog = *source->catalogObj;
  EXPECT_TRUE(catalog.secondPass);
  EXPECT_EQ(catalog.names.dests.objNum, 0);

  EXPECT_TRUE(catalog.fromStream(*source));
  EXPECT_EQ(catalog.names.dests, SObj(10, 0));
  EXPECT_THAT(harvested(source), ElementsAre(11));
  EXPECT_TRUE(catalog.secondPass);
}

TEST(Catalog, SecondPassTakesNothingButNames) {
  const Source source = pdf().onePage("", "/Version/1.4/Names<</Dests 10 0 R>>").open();
  CCatalog& catalog = *source->catalogObj;
  catalog.version = 0;
  catalog.pages = {};
  EXPECT_TRUE(catalog.fromStream(*source));
  EXPECT_EQ(catalog.version, 0);
  EXPECT_EQ(catalog.pages.objNum, 0);
  EXPECT_EQ(catalog.names.dests, SObj(10, 0));
}

TEST(Catalog, NamesThatHaveAnIdentityAreNotReadAgain) {
  const Source source = pdf().onePage("", "/Names 9 0 R").object(9, "<</Dests 10 0 R>>").open();
  CCatalog& catalog = *source->catalogObj;
  catalog.names.id = SObj(7, 0);
  EXPECT_TRUE(catalog.fromStream(*source));
  EXPECT_EQ(catalog.names.dests.objNum, 0);
}

TEST(Catalog, WithoutNamesThereIsNoSecondPass) { EXPECT_FALSE(withCatalog("")->catalogObj->secondPass); }

TEST(Catalog, InitClearsNamesPagesAndForm) {
  const Source source = pdf().onePage("", "/AcroForm<</Fields[5 0 R]>>").open();
  CCatalog& catalog = *source->catalogObj;
  catalog.names.id = SObj(7, 0);
  catalog.Init();
  EXPECT_THAT(catalog.form.fields, IsEmpty());
  EXPECT_EQ(catalog.names.id.objNum, 0);
  EXPECT_EQ(catalog.pages.objNum, 0);
}

// Parts
// -----------------------------------------------------------------------------------------------------------------------

TEST(MarkInfo, TellsWhetherTheDocumentIsTagged) {
  EXPECT_TRUE(Catalog("/MarkInfo<</Marked true>>").catalog.markInfo.marked);
  EXPECT_FALSE(Catalog("/MarkInfo<</Marked false>>").catalog.markInfo.marked);
  EXPECT_FALSE(Catalog("/MarkInfo<</Marked trueish>>").catalog.markInfo.marked);
  EXPECT_TRUE(Catalog("/MarkInfo<</A<<>>/Marked true>>").catalog.markInfo.marked);
  EXPECT_FALSE(Catalog("/MarkInfo<<>>/Foo<</Marked true>>").catalog.markInfo.marked);
}

TEST(MarkInfo, MayBeAReferenceAndTheCatalogGoesOnBehindIt) {
  const Source source =
      pdf().onePage("", "/MarkInfo 9 0 R/Metadata 8 0 R").object(9, "<</Marked true>>").open();
  EXPECT_TRUE(source->catalogObj->markInfo.marked);
  EXPECT_EQ(source->catalogObj->metadata, SObj(8, 0));
}

TEST(MarkInfo, FollowsAChainOfReferencesAndAClosedOneIsNone) {
  const Source chain =
      pdf().onePage("", "/MarkInfo 9 0 R").object(9, "10 0 R").object(10, "<</Marked true>>").open();
  EXPECT_TRUE(chain->catalogObj->markInfo.marked);

  const Source closed =
      pdf().onePage("", "/MarkInfo 9 0 R/Metadata 8 0 R").object(9, "10 0 R").object(10, "9 0 R").open();
  EXPECT_FALSE(closed->catalogObj->markInfo.marked);
  EXPECT_EQ(closed->catalogObj->metadata, SObj(8, 0));
}

TEST(MarkInfo, MissingObjectDoesNotStopTheCatalog) {
  const Source source = withCatalog("/MarkInfo 99 0 R/Metadata 8 0 R");
  EXPECT_EQ(source.result, 0);
  EXPECT_EQ(source->catalogObj->metadata, SObj(8, 0));
}

TEST(Catalog, GoesOnBehindItsParts) {
  const Source direct =
      withCatalog("/AcroForm<</Fields[5 0 R]>>/OCProperties<</D<</OFF[6 0 R]>>>>/Metadata 8 0 R");
  EXPECT_EQ(direct->catalogObj->metadata, SObj(8, 0));
  EXPECT_FALSE(direct->catalogObj->form.byReference);
  EXPECT_FALSE(direct->catalogObj->optionalContent.indirect);

  const Source referenced = pdf()
                                .onePage("", "/AcroForm 9 0 R/OCProperties 10 0 R/Metadata 8 0 R")
                                .object(9, "<</Fields[5 0 R]>>")
                                .object(10, "<</D<</OFF[6 0 R]>>>>")
                                .open();
  const CCatalog& catalog = *referenced->catalogObj;
  EXPECT_EQ(catalog.metadata, SObj(8, 0));
  EXPECT_EQ(catalog.form.id, SObj(9, 0));
  EXPECT_TRUE(catalog.form.byReference);
  EXPECT_EQ(catalog.optionalContent.id, SObj(10, 0));
  EXPECT_TRUE(catalog.optionalContent.indirect);
  EXPECT_THAT(numbers(catalog.form.fields), ElementsAre(5));
  EXPECT_THAT(numbers(catalog.optionalContent.off), ElementsAre(6));
}

class DamagedPart : public testing::TestWithParam<const char*> {};

TEST_P(DamagedPart, IsSteppedOverAndTheCatalogGoesOn) {
  const Source source = withCatalog(std::string(GetParam()) + "/Metadata 8 0 R");
  EXPECT_EQ(source.result, 0);
  EXPECT_EQ(source->catalogObj->metadata, SObj(8, 0));
}

INSTANTIATE_TEST_SUITE_P(Parts, DamagedPart,
                         testing::Values("/AcroForm 99 0 R", "/AcroForm null",
                                         "/AcroForm<</DR 99 0 R/Metadata 7 0 R>>",
                                         "/AcroForm[/Metadata 7 0 R]", "/AcroForm<1234>",
                                         "/OCProperties 99 0 R", "/OCProperties null",
                                         "/OCProperties[/Metadata 7 0 R]",
                                         "/OCProperties<</D<</OFF 5/ON[]>>/Metadata 7 0 R>>",
                                         "/OCProperties<</D<</Order[[/Bad]]>>>>"));

class EndlessPart : public testing::TestWithParam<const char*> {};

// A catalog in an object stream and a part that lies in the file are two sources; both have to be usable.
TEST_P(EndlessPart, DoesNotStopACatalogWhereverItLies) {
  const std::string entries = std::string(GetParam()) + "/Metadata 8 0 R";
  EXPECT_EQ(pdf().onePage("", entries).object(9, "(no end").open().result, 0);
  const Source source = pdf()
                            .compressed(6, 1, "<</Type/Catalog/Pages 2 0 R" + entries + ">>")
                            .object(2, "<</Type/Pages/Kids[3 0 R]>>")
                            .object(3, "<</Type/Page>>")
                            .object(9, "(no end")
                            .open();
  EXPECT_EQ(source.result, 0);
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3));
}

INSTANTIATE_TEST_SUITE_P(Parts, EndlessPart,
                         testing::Values("/AcroForm<</DR 9 0 R>>", "/AcroForm 9 0 R", "/Version 9 0 R",
                                         "/OCProperties<</D 9 0 R>>", "/OCProperties<</OCGs 9 0 R>>"));

}  // namespace
