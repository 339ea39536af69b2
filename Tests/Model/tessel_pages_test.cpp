#include "TesselPage/Model/tessel_pages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TesselPage/Structure/tessel_objflags.h"
#include "Tests/Model/model_verbs.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const CPaperInfo& paperOf(const Source& source, std::size_t page = 1) {
  return source->paperInfoMap.at(source->pageList.at(page - 1));
}

RectTD mediaOf(const Source& source, std::size_t page = 1) {
  return paperOf(source, page).box(PageBox::media);
}

/// Reads a node's entries, from behind its "<<", in a source without a document.
struct Node {
  explicit Node(const std::string& entries) : source(entries), read(pages.Read(source)) {}

  CSourFile source;
  CPages pages;
  bool read;
};

// Order of pages
// ---------------------------------------------------------------------------------------------------------

TEST(PageTree, PagesStandInDocumentOrderWhateverTheirNumbers) {
  const Source source = pdf()
                            .pageTree({9, 4, 8})
                            .object(9, "<</Type/Page/Parent 2 0 R>>")
                            .object(4, "<</Type/Pages/Parent 2 0 R/Kids[7 0 R 5 0 R]>>")
                            .object(7, "<</Type/Page/Parent 4 0 R>>")
                            .object(5, "<</Type/Page/Parent 4 0 R>>")
                            .object(8, "<</Type/Page/Parent 2 0 R>>")
                            .open();
  ASSERT_EQ(source.result, 0);
  EXPECT_THAT(numbers(source->pageList), ElementsAre(9, 7, 5, 8));
}

TEST(PageTree, CountPlaysNoPart) {
  const Source source = pdf().pageTree({3}, "/Count 17").object(3, "<</Type/Page>>").open();
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3));
}

TEST(PageTree, NodeKeepsItsParent) {
  const Source source = pdf().onePage("").open();
  EXPECT_EQ(source->parentMap.at(SObj(3, 0)), SObj(2, 0));
}

TEST(PageTree, NodeOfAnotherTypeDamagesTheFile) {
  EXPECT_EQ(pdf().pageTree({3}).object(3, "<</Type/Font>>").open().result, 1000);
  EXPECT_EQ(pdf().pageTree({3}).object(3, "<</Foo 1>>").open().result, 1000);
  EXPECT_EQ(pdf().pageTree({3}).open().result, 1000);
}

TEST(PageTree, CycleOfKidsEndsWithThePagesThatWereRead) {
  const Source source = pdf()
                            .pageTree({3, 4})
                            .object(3, "<</Type/Page>>")
                            .object(4, "<</Type/Pages/Kids[2 0 R 5 0 R]>>")
                            .object(5, "<</Type/Page>>")
                            .open();
  EXPECT_EQ(source.result, 0);
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3, 5));
}

// Keys of one node
// ----------------------------------------------------------------------------------------------------------

struct BoxCase {
  const char* text;
  RectTD expected;
};

class PageBoxText : public testing::TestWithParam<BoxCase> {};

TEST_P(PageBoxText, IsStoredUprightOrNotAtAll) {
  const Source source =
      pdf().onePage(std::string("/MediaBox ") + GetParam().text).object(9, "[1 2 3 4]").open();
  EXPECT_EQ(mediaOf(source), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Boxes, PageBoxText,
                         testing::Values(BoxCase{"[0 0 612 792]", {0, 0, 612, 792}},
                                         BoxCase{"[612 792 0 0]", {0, 0, 612, 792}},
                                         BoxCase{"[0 792 612 0]", {0, 0, 612, 792}},
                                         BoxCase{"[-5.5 1 10 20]", {-5.5F, 1, 10, 20}},
                                         BoxCase{"[1 2 3 4 5]", {1, 2, 3, 4}},
                                         BoxCase{"[0 0 612]", {0, 0, 0, 0}}, BoxCase{"[]", {0, 0, 0, 0}},
                                         BoxCase{"/None", {0, 0, 0, 0}}, BoxCase{"9 0 R", {1, 2, 3, 4}}));

TEST(PageTree, EachBoxHasItsOwnKey) {
  const Source source = pdf()
                            .onePage(
                                "/MediaBox[0 0 1 1]/CropBox[0 0 2 2]/BleedBox[0 0 3 3]"
                                "/TrimBox[0 0 4 4]/ArtBox[0 0 5 5]")
                            .open();
  const CPaperInfo& paper = paperOf(source);
  EXPECT_EQ(paper.box(PageBox::media), (RectTD{0, 0, 1, 1}));
  EXPECT_EQ(paper.box(PageBox::crop), (RectTD{0, 0, 2, 2}));
  EXPECT_EQ(paper.box(PageBox::bleed), (RectTD{0, 0, 3, 3}));
  EXPECT_EQ(paper.box(PageBox::trim), (RectTD{0, 0, 4, 4}));
  EXPECT_EQ(paper.box(PageBox::art), (RectTD{0, 0, 5, 5}));
}

struct RotateCase {
  const char* text;
  int expected;
};

class StoredRotation : public testing::TestWithParam<RotateCase> {};

TEST_P(StoredRotation, IsAMultipleOfAQuarterTurnOrZero) {
  const Source source = pdf().onePage(std::string("/Rotate ") + GetParam().text).object(9, "270").open();
  EXPECT_EQ(paperOf(source).rotation, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Rotations, StoredRotation,
                         testing::Values(RotateCase{"45", 0}, RotateCase{"90", 90}, RotateCase{"-90", -90},
                                         RotateCase{"450", 450}, RotateCase{"9 0 R", 270},
                                         RotateCase{"0", 0}));

TEST(PageTree, ScanGoesOnBehindAnIndirectRotation) {
  const Source source = pdf().onePage("/Rotate 9 0 R/MediaBox[0 0 7 8]").object(9, "270").open();
  EXPECT_EQ(mediaOf(source), (RectTD{0, 0, 7, 8}));
}

TEST(PageTree, RotationOfThePageReadLastIsTheCurrentOne) {
  const Source source = pdf()
                            .pageTree({3, 4})
                            .object(3, "<</Type/Page/Rotate 90>>")
                            .object(4, "<</Type/Page/Rotate 180>>")
                            .open();
  EXPECT_EQ(source->switches.currentRotation, 180);
}

TEST(PageTree, FirstTypeThatSaysPageStays) {
  EXPECT_EQ(Node("/Type/Page/Group<</Type/Group/S/Transparency>>>> endobj").pages.type, "/Page");
  EXPECT_EQ(Node("/Group<</Type/Group>>/Type/Page>> endobj").pages.type, "/Page");
  EXPECT_EQ(Node("/Type/Pages/Foo<</Type/Page>>>> endobj").pages.type, "/Pages");
  EXPECT_EQ(Node("/Foo 1>> endobj").pages.type, "");
}

TEST(PageTree, ParentThatIsNoReferenceIsPassedOver) {
  const Node node("/Parent null/Type/Page>> endobj");
  EXPECT_EQ(node.pages.parent.objNum, 0);
  EXPECT_EQ(node.pages.type, "/Page");
}

TEST(PageTree, UnreadableCountFailsTheNode) { EXPECT_FALSE(Node("/Count 1 0 R/Type/Page>> endobj").read); }

TEST(PageTree, NodeThatRunsIntoTheEndCountsAsFarAsItCame) {
  const Node node("/Type/Page/Parent 4 0 R /Fo");
  EXPECT_TRUE(node.read);
  EXPECT_EQ(node.pages.parent, SObj(4, 0));
}

TEST(PageTree, ResourcesByReferenceAreKeptWithTheirFlag) {
  const Node node("/Resources 8 0 R>> endobj");
  EXPECT_EQ(node.pages.ownResources, SObj(8, 0));
  EXPECT_EQ(node.pages.ownResources.objFlags, ObjFlag::underResources);
  EXPECT_THAT(node.pages.resourceReferences, IsEmpty());
}

TEST(PageTree, DirectResourcesGiveAllTheirReferences) {
  const Node node(
      "/Resources<</Font<</F1 5 0 R>>/XObject<</X [6 0 R]>>/P(7 0 R >>)/Q<3920>>>/Parent 8 0 R>> endobj");
  EXPECT_THAT(numbers(node.pages.resourceReferences), ElementsAre(5, 6));
  EXPECT_EQ(node.pages.ownResources.objNum, 0);
  EXPECT_EQ(node.pages.parent, SObj(8, 0));
}

TEST(PageTree, ResourcesOfAnotherKindArePassedOver) {
  const Node node("/Resources null/Parent 8 0 R>> endobj");
  EXPECT_EQ(node.pages.parent, SObj(8, 0));
  EXPECT_THAT(node.pages.resourceReferences, IsEmpty());
}

TEST(PageTree, InitEmptiesANode) {
  Node node("/Type/Pages/Count 3/Kids[4 0 R]>> endobj");
  node.pages.id = SObj(2, 0);
  node.pages.Init();
  EXPECT_EQ(node.pages.count, 0);
  EXPECT_EQ(node.pages.type, "");
  EXPECT_THAT(node.pages.kids, IsEmpty());
  EXPECT_EQ(node.pages.id.objNum, 0);
}

// Kids
// ------------------------------------------------------------------------------------------------------------------------

struct KidsCase {
  const char* text;
  bool read;
  ObjectNumbers kids;
};

class KidsText : public testing::TestWithParam<KidsCase> {};

TEST_P(KidsText, HoldsReferencesOnly) {
  const Node node(std::string("/Kids ") + GetParam().text + ">> endobj");
  EXPECT_EQ(node.read, GetParam().read);
  EXPECT_EQ(numbers(node.pages.kids), GetParam().kids);
}

INSTANTIATE_TEST_SUITE_P(Arrays, KidsText,
                         testing::Values(KidsCase{"[4 0 R 5 1 R]", true, {4, 5}}, KidsCase{"[]", true, {}},
                                         KidsCase{"[4 0 R null]", false, {4}}, KidsCase{"[null]", false, {}},
                                         KidsCase{"[4 0 R 7]", false, {4}},
                                         KidsCase{"[<</Type/Page>>]", false, {}}, KidsCase{"4", false, {}},
                                         KidsCase{"9 0 R", false, {}}));

TEST(PageTree, KidsMayLieInAnotherObject) {
  const Source source = pdf()
                            .object(1, "<</Type/Catalog/Pages 2 0 R>>")
                            .object(2, "<</Type/Pages/Kids 4 0 R/MediaBox[0 0 3 4]>>")
                            .object(3, "<</Type/Page>>")
                            .object(4, "[3 0 R]")
                            .open();
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3));
  EXPECT_EQ(mediaOf(source), (RectTD{0, 0, 3, 4}));
}

TEST(PageTree, KidsMayLieInAnObjectStream) {
  const Source source = pdf()
                            .object(1, "<</Type/Catalog/Pages 2 0 R>>")
                            .object(2, "<</Type/Pages/Kids 4 0 R/MediaBox[0 0 3 4]>>")
                            .object(3, "<</Type/Page>>")
                            .compressed(6, 4, "[3 0 R]")
                            .open();
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3));
  EXPECT_EQ(mediaOf(source), (RectTD{0, 0, 3, 4}));
}

TEST(PageTree, NodesMayLieInAnObjectStream) {
  const Source source = pdf()
                            .compressed(6, 1, "<</Type/Catalog/Pages 2 0 R>>")
                            .compressed(6, 2, "<</Type/Pages/Kids 4 0 R/MediaBox[0 0 3 4]>>")
                            .compressed(6, 3, "<</Type/Page>>")
                            .compressed(6, 4, "[3 0 R]")
                            .open();
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3));
  EXPECT_EQ(mediaOf(source), (RectTD{0, 0, 3, 4}));
}

TEST(PageTree, ValuesOutsideThatAreNoNumbersLeaveTheOtherNodesOfAnObjectStreamReadable) {
  for (const char* value :
       {"/MediaBox[7 0 R 0 3 4]", "/MediaBox 7 0 R", "/MediaBox 8 0 R", "/Rotate 7 0 R"}) {
    const Source source = pdf()
                              .compressed(6, 1, "<</Type/Catalog/Pages 2 0 R>>")
                              .compressed(6, 2, "<</Type/Pages/Kids[3 0 R 4 0 R]>>")
                              .compressed(6, 3, std::string("<</Type/Page") + value + ">>")
                              .compressed(6, 4, "<</Type/Page>>")
                              .object(7, "/Name")
                              .object(8, "[/Name]")
                              .open();
    EXPECT_THAT(numbers(source->pageList), ElementsAre(3, 4)) << value;
  }
}

TEST(PageTree, KidsBehindAClosedChainOfReferencesFailTheNode) {
  const Source source = pdf()
                            .object(1, "<</Type/Catalog/Pages 2 0 R>>")
                            .object(2, "<</Type/Pages/Kids 4 0 R>>")
                            .object(4, "5 0 R")
                            .object(5, "4 0 R")
                            .open();
  EXPECT_THAT(source->pageList, IsEmpty());
}

TEST(PageTree, KidsBehindAChainOfReferencesAreRead) {
  const Source source = pdf()
                            .object(1, "<</Type/Catalog/Pages 2 0 R>>")
                            .object(2, "<</Type/Pages/Kids 4 0 R>>")
                            .object(3, "<</Type/Page>>")
                            .object(4, "5 0 R")
                            .object(5, "[3 0 R]")
                            .open();
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3));
}

TEST(PageTree, NodeThatFailedPublishesNothing) {
  const Source source = pdf()
                            .pageTree({4, 3})
                            .object(4, "<</Type/Pages/MediaBox[0 0 5 5]/Kids[null]>>")
                            .object(3, "<</Type/Page>>")
                            .open();
  EXPECT_EQ(mediaOf(source), RectTD{});
}

// Inheritance
// -----------------------------------------------------------------------------------------------------------------

TEST(Inheritance, PageTakesWhatItDoesNotState) {
  const Source source = pdf()
                            .pageTree({3}, "/MediaBox[0 0 5 6]/CropBox[1 1 4 4]/Rotate 90")
                            .object(3, "<</Type/Page/CropBox[2 2 3 3]>>")
                            .open();
  EXPECT_EQ(mediaOf(source), (RectTD{0, 0, 5, 6}));
  EXPECT_EQ(paperOf(source).box(PageBox::crop), (RectTD{2, 2, 3, 3}));
  EXPECT_EQ(paperOf(source).rotation, 90);
}

TEST(Inheritance, PageWithoutAnyBoxIsAllZero) { EXPECT_EQ(mediaOf(pdf().onePage("").open()), RectTD{}); }

TEST(Inheritance, LastNodeReadCountsAlsoForPagesThatAreNotItsDescendants) {
  const Source source = pdf()
                            .pageTree({3, 4, 6}, "/MediaBox[0 0 1 1]")
                            .object(3, "<</Type/Page>>")
                            .object(4, "<</Type/Pages/MediaBox[0 0 2 2]/Kids[5 0 R]>>")
                            .object(5, "<</Type/Page>>")
                            .object(6, "<</Type/Page>>")
                            .open();
  EXPECT_EQ(mediaOf(source, 1), (RectTD{0, 0, 1, 1}));
  EXPECT_EQ(mediaOf(source, 2), (RectTD{0, 0, 2, 2}));
  EXPECT_EQ(mediaOf(source, 3), (RectTD{0, 0, 2, 2}));
}

TEST(Inheritance, RecordOfAPageThatComesTwiceIsTheFirst) {
  const Source source = pdf()
                            .pageTree({3, 4, 3}, "/MediaBox[0 0 1 1]")
                            .object(3, "<</Type/Page>>")
                            .object(4, "<</Type/Pages/MediaBox[0 0 2 2]/Kids[]>>")
                            .open();
  EXPECT_THAT(numbers(source->pageList), ElementsAre(3, 3));
  EXPECT_EQ(mediaOf(source), (RectTD{0, 0, 1, 1}));
}

TEST(Inheritance, DirectResourcesPublishNothing) {
  const Source direct = pdf().pageTree({3}, "/Resources<</Font<<>>>>").object(3, "<</Type/Page>>").open();
  EXPECT_EQ(direct->inheritedAttrs.resources.objNum, 0);
  const Source referenced = pdf().pageTree({3}, "/Resources 8 0 R").object(3, "<</Type/Page>>").open();
  EXPECT_EQ(referenced->inheritedAttrs.resources, SObj(8, 0));
}

TEST(Inheritance, XObjectWithoutAFontIsNotPublished) {
  const Source source = pdf().pageTree({3}, "/XObject 8 0 R").object(3, "<</Type/Page>>").open();
  EXPECT_EQ(source->inheritedAttrs.xobject.objNum, 0);
}

TEST(Inheritance, FontCarriesTheXObjectAlongAndClearsIt) {
  const Source both = pdf().pageTree({3}, "/Font 7 0 R/XObject 8 0 R").object(3, "<</Type/Page>>").open();
  EXPECT_EQ(both->inheritedAttrs.font, SObj(7, 0));
  EXPECT_EQ(both->inheritedAttrs.xobject, SObj(8, 0));

  const Source cleared = pdf()
                             .pageTree({4}, "/Font 7 0 R/XObject 8 0 R")
                             .object(4, "<</Type/Pages/Font 9 0 R/Kids[3 0 R]>>")
                             .object(3, "<</Type/Page>>")
                             .open();
  EXPECT_EQ(cleared->inheritedAttrs.font, SObj(9, 0));
  EXPECT_EQ(cleared->inheritedAttrs.xobject.objNum, 0);
}

}  // namespace
