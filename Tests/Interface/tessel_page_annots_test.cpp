#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "Tests/Interface/probed_page.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

namespace {

constexpr auto all = AnnotsEnableAll;
constexpr PgCmTD identity{1, 0, 0, 1, 0, 0};
constexpr PgCmTD twice{2, 0, 0, 2, 100, 200};

/// What the host says before it selects the page.
struct Wishes {
  TESSEL_AnnotsEnableE annots = all;
  TESSEL_AcroFormsEnableE forms = AcroFormsEnableNone;
  PgCmTD cm = identity;
};

/// Pages 3 and 4, the first with these entries; the harvest begins at 100.
PdfBuilder withPage(const std::string& entries) {
  return pdf()
      .pageTree({3, 4})
      .object(3, "<</Type/Page/MediaBox[0 0 9 9]" + entries + ">>")
      .object(4, "<</Type/Page/MediaBox[0 0 9 9]>>");
}

Probe harvested(const PdfBuilder& builder, const Wishes& wishes = {}) {
  Probe page = probe(builder);
  page->setAnnotsEnable(wishes.annots);
  page->setAcroFormsEnable(wishes.forms);
  EXPECT_EQ(page->setPageCm(wishes.cm), 0);
  page->setCurPageObj(70, 0);
  EXPECT_EQ(page->setPageNo(1), 0);
  page->setStartObjNo(100);
  return page;
}

constexpr const char* leftAlone = "left alone";

/// The page's annotations; `leftAlone` when the output wasn't stored.
std::string annotsOf(const Probe& page) {
  const std::string untouched = leftAlone;
  const std::string* text = &untouched;
  EXPECT_EQ(page->getPageAnnots(&text), 0);
  return *text;
}

std::string formOf(const Probe& page, int objNo = 0, int result = 0) {
  const std::string untouched = leftAlone;
  const std::string* text = &untouched;
  EXPECT_EQ(page->getAcroFormFields(&text, objNo), result);
  return *text;
}

// Annotations
// ----------------------------------------------------------------------------------------------------------

TEST(PageAnnots, PageWithoutAnnotationsHasAnEmptyText) { EXPECT_EQ(annotsOf(harvested(withPage(""))), ""); }

TEST(PageAnnots, AreTheReferencesOfTheArrayObjectInTheHarvestsNumbering) {
  const auto builder = withPage("/Annots 5 0 R")
                           .object(5, "[6 0 R 7 0 R]")
                           .object(6, "<</Subtype/Link/Rect[0 0 1 1]/P 3 0 R>>")
                           .object(7, "<</Subtype/Text/Rect[50 60 10 20]/P 3 0 R>>");
  const Probe page = harvested(builder, {AnnotsEnableText, AcroFormsEnableNone, twice});
  EXPECT_EQ(annotsOf(page), "  101 0 R \n");
  EXPECT_EQ(texts(*page).at({101, 0}), "<</Subtype/Text/Rect[120 240 200 320]/P 70 0 R>>\n");
}

TEST(PageAnnots, DictionariesOfAnArrayObjectArePlacedOnce) {
  const auto builder =
      withPage("/Annots 5 0 R").object(5, "[<</Subtype/Link/Rect[1 2 3 4]/Dest[4 0 R/Fit]>>]");
  const Probe page = harvested(builder, {all, AcroFormsEnableNone, twice});
  EXPECT_EQ(annotsOf(page), " <</Subtype/Link/Rect[102 204 106 208]/Dest 101 0 R>> \n");
}

TEST(PageAnnots, ArrayWithoutAKeptAnnotationHasAnEmptyText) {
  const auto builder = withPage("/Annots 5 0 R").object(5, "[6 0 R]").object(6, "<</Subtype/Link>>");
  EXPECT_EQ(annotsOf(harvested(builder, {AnnotsEnableText})), "");
  EXPECT_EQ(annotsOf(harvested(builder, {AnnotsEnableNone})), "");
}

TEST(PageAnnots, AnArrayThatCannotBeWrittenLeavesTheOutputAlone) {
  const auto builder = withPage("/Annots 5 0 R").object(5, "[<</Rect[1 2 3]>>]");
  EXPECT_EQ(annotsOf(harvested(builder)), leftAlone);
}

TEST(PageAnnots, RectangleOfADirectArrayIsUprightBeforeItIsPlaced) {
  const auto builder = withPage("/Annots[<</Subtype/Text/Rect [100 200 50 80]/X 1>>]");
  EXPECT_EQ(annotsOf(harvested(builder)),
            " <</Subtype/Text/Rect[ 50.000000 80.000000 100.000000 200.000000]/X 1>> ");
  EXPECT_EQ(annotsOf(harvested(builder, {all, AcroFormsEnableNone, twice})),
            " <</Subtype/Text/Rect[ 200.000000 360.000000 300.000000 600.000000]/X 1>> ");
}

TEST(PageAnnots, BrokenRectangleOfADirectArrayLeavesTheOutputAlone) {
  for (const char* rect : {"[1 2 3]", "(x)", "null", "[1 2 x 4]"})
    EXPECT_EQ(annotsOf(harvested(withPage(std::string("/Annots[<</Rect ") + rect + ">>]"))), leftAlone)
        << rect;
}

TEST(PageAnnots, KeysInStringsOfADirectArrayAreNone) {
  const auto builder = withPage("/Annots[<</Contents(/Rect x /Dest y)/X 1>>]");
  EXPECT_EQ(annotsOf(harvested(builder)), " <</Contents(/Rect x /Dest y)/X 1>> ");
}

TEST(PageAnnots, ArrayDestinationsOfADirectArrayTakeTheirReservedObjects) {
  const auto builder =
      withPage("/Annots[<</Dest[4 0 R/FitH 5]/X 1>><</Dest(name)>><</X<<>>/Dest [3 0 R/Fit]>>]");
  const Probe page = harvested(builder);
  EXPECT_EQ(annotsOf(page), " <</Dest 100 0 R /X 1>><</Dest(name)>><</X<<>>/Dest 102 0 R >> ");
  const auto destinations = page->getDestVector();
  ASSERT_EQ(destinations.size(), 3U);
  EXPECT_EQ(destinations[0].objNum, 100);
  EXPECT_EQ(destinations[0].page, 2);
  EXPECT_EQ(destinations[0].style, 3);
  EXPECT_EQ(destinations[1].page, 0);
  EXPECT_EQ(destinations[2].objNum, 102);
  EXPECT_EQ(destinations[2].page, 1);
}

TEST(PageAnnots, DestinationsOfALinkObjectDoNotShiftThoseOfADirectOne) {
  const auto builder =
      withPage("/Annots[5 0 R<</Dest[4 0 R/Fit]>>]").object(5, "<</Subtype/Link/Dest[3 0 R/FitB]>>");
  const Probe page = harvested(builder);
  EXPECT_EQ(annotsOf(page), "  100 0 R<</Dest 101 0 R >> ");
  EXPECT_EQ(texts(*page).at({100, 0}), "<</Subtype/Link/Dest 102 0 R>>\n");
  EXPECT_EQ(page->getDestVector().at(0).page, 2);
}

TEST(PageAnnots, TextIsTheSameAtASecondCall) {
  const auto builder =
      withPage("/Annots 5 0 R").object(5, "[6 0 R]").object(6, "<</Subtype/Link/Dest[4 0 R/Fit]>>");
  const Probe page = harvested(builder);
  const std::string first = annotsOf(page);
  EXPECT_EQ(annotsOf(page), first);
  EXPECT_EQ(page->getDestVector().at(0).objNum, 102);
}

TEST(PageAnnots, CustomSubtypesAreTaken) {
  const auto builder = withPage("/Annots 5 0 R").object(5, "[6 0 R]").object(6, "<</Subtype/Ink>>");
  Probe page = probe(builder);
  page->setAnnotsEnable(AnnotsEnableCustom);
  page->setAnnotsCustomSubtype({"/Ink"});
  page->setPageNo(1);
  page->setStartObjNo(100);
  EXPECT_EQ(annotsOf(page), "  101 0 R \n");
}

// Links
// ----------------------------------------------------------------------------------------------------------

TEST(LinkTargets, EveryKindOfLinkLeadsToItsReservedObject) {
  const auto builder = withPage("/Annots 5 0 R")
                           .object(1, "<</Type/Catalog/Pages 2 0 R/Names 20 0 R>>")
                           .object(5, "[6 0 R 7 0 R 8 0 R 9 0 R]")
                           .object(6, "<</Subtype/Link/Dest[4 0 R/XYZ 1 2 null]>>")
                           .object(7, "<</Subtype/Link/A<</S/GoTo/D(chapter)>>>>")
                           .object(8, "<</Subtype/Link/A 10 0 R>>")
                           .object(9, "<</Subtype/Link/A<</S/URI/URI(http://x)>>>>")
                           .object(10, "<</S/GoTo/D[3 0 R/FitV 7]>>")
                           .object(20, "<</Dests 21 0 R>>")
                           .object(21, "<</Names[(chapter)22 0 R]>>")
                           .object(22, "<</D[4 0 R/FitB]>>");
  const Probe page = harvested(builder);
  EXPECT_EQ(texts(*page).at({101, 0}), "<</Subtype/Link/Dest 106 0 R>>\n");
  EXPECT_EQ(texts(*page).at({102, 0}), "<</Subtype/Link/A<</S/GoTo/D 107 0 R>>>>\n");
  EXPECT_EQ(texts(*page).at({103, 0}), "<</Subtype/Link/A 105 0 R>>\n");
  EXPECT_EQ(texts(*page).at({104, 0}), "<</Subtype/Link/A<</S/URI/URI(http://x)>>>>\n");
  EXPECT_EQ(texts(*page).at({105, 0}), "<</S/GoTo/D 108 0 R>>\n");
  const auto destinations = page->getDestVector();
  ASSERT_EQ(destinations.size(), 3U);
  EXPECT_EQ(destinations[0].objNum, 106);
  EXPECT_EQ(destinations[0].style, 1);
  EXPECT_EQ(destinations[0].page, 2);
  EXPECT_EQ(destinations[0].top, 2);
  EXPECT_EQ(destinations[1].objNum, 107);
  EXPECT_EQ(destinations[1].style, 6);
  EXPECT_EQ(destinations[1].page, 2);
  EXPECT_EQ(destinations[2].objNum, 108);
  EXPECT_EQ(destinations[2].left, 7);
  EXPECT_EQ(destinations[2].page, 1);
}

TEST(LinkTargets, PageWithoutLinksHasNone) {
  EXPECT_THAT(harvested(withPage(""))->getDestVector(), IsEmpty());
}

// Forms
// ----------------------------------------------------------------------------------------------------------

constexpr Wishes forms{AnnotsEnableNone, AcroFormsEnableAll, identity};

TEST(AcroFormFields, FormsThatAreOffLeaveTheOutputAlone) {
  EXPECT_EQ(formOf(harvested(withPage("").object(1, "<</Type/Catalog/Pages 2 0 R/AcroForm<</Q 1>>>>"))),
            leftAlone);
}

PdfBuilder withField(const std::string& acroForm) {
  return withPage("/Annots 5 0 R")
      .object(1, "<</Type/Catalog/Pages 2 0 R/AcroForm " + acroForm + ">>")
      .object(5, "[6 0 R]")
      .object(6, "<</Subtype/Widget/FT/Tx/T(a)/Rect[0 0 9 9]>>")
      .object(7, "<</FT/Tx/T(of another page)>>")
      .object(8, "<</Type/Font>>");
}

TEST(AcroFormFields, AreTheEntriesOfTheFormObject) {
  const auto builder =
      withField("9 0 R").object(9, "<</Fields[6 0 R 7 0 R]/DR<</Font<</F 8 0 R>>>>/DA(/F 0 Tf)>>");
  EXPECT_EQ(formOf(harvested(builder, forms)), "/Fields[ 101 0 R]/DR<</Font<</F 102 0 R>>>>/DA(/F 0 Tf)");
}

TEST(AcroFormFields, AreTheEntriesOfADirectForm) {
  const auto builder = withField("<</Fields[6 0 R 7 0 R]/DR<</Font<</F 8 0 R>>>>/Q 1>>");
  EXPECT_EQ(formOf(harvested(builder, forms)), "/Fields[ 101 0 R]/DR<</Font<</F 102 0 R>>>>/Q 1");
}

TEST(AcroFormFields, CatalogWithoutAFormHasAnEmptyText) {
  EXPECT_EQ(formOf(harvested(withPage(""), forms)), "");
}

TEST(AcroFormFields, FormThatIsNotThereIsAnError) {
  Probe page = harvested(withField("99 0 R"), forms);
  EXPECT_EQ(formOf(page, 0, 8001), leftAlone);
}

TEST(AcroFormFields, WidgetIsWrittenWithItsPlace) {
  const auto builder = withField("9 0 R").object(9, "<</Fields[6 0 R]>>");
  const Probe page = harvested(builder, {AnnotsEnableNone, AcroFormsEnableText, twice});
  EXPECT_EQ(texts(*page).at({101, 0}), "<</Subtype/Widget/FT/Tx/T(a)/Rect[100 200 118 218]>>\n");
}

// The document
// ----------------------------------------------------------------------------------------------------------

std::string namesOf(const Probe& page, int result = 0) {
  const std::string untouched = leftAlone;
  const std::string* text = &untouched;
  EXPECT_EQ(page->getNames(&text), result);
  return *text;
}

TEST(NamesText, IsTheInnerTextOfTheObject) {
  const auto builder = withPage("")
                           .object(1, "<</Type/Catalog/Pages 2 0 R/Names 5 0 R>>")
                           .object(5, "<</Dests 6 0 R/EmbeddedFiles 7 0 R>>")
                           .object(6, "<<>>")
                           .object(7, "<</Names[(a)<<>>]>>");
  EXPECT_EQ(namesOf(harvested(builder)), "/EmbeddedFiles 100 0 R");
}

TEST(NamesText, DirectNamesYieldNothing) {
  const auto builder = withPage("").object(1, "<</Type/Catalog/Pages 2 0 R/Names<</X(a)>>>>");
  EXPECT_EQ(namesOf(harvested(builder)), "");
  EXPECT_EQ(namesOf(harvested(withPage(""))), "");
}

TEST(NamesText, NamesThatAreNotThereAreAnError) {
  EXPECT_EQ(namesOf(harvested(withPage("").object(1, "<</Type/Catalog/Pages 2 0 R/Names 99 0 R>>")), 8001),
            leftAlone);
}

TEST(Layers, ThoseThatReachedTheOutputAreTold) {
  const auto builder =
      withPage("/Resources<</Properties<</A 6 0 R/B 7 0 R/C 8 0 R>>>>")
          .object(1,
                  "<</Type/Catalog/Pages 2 0 R/OCProperties<</D<</ON[6 0 R 8 0 R]/OFF[7 0 R 8 0 R 9 0 R]"
                  "/Order[7 0 R 6 0 R 9 0 R]>>>>>>")
          .object(6, "<</Type/OCG/Name(on)>>")
          .object(7, "<</Type/OCG/Name(off)>>")
          .object(8, "<</Type/OCG/Name(both)>>")
          .object(9, "<</Type/OCG/Name(of another page)>>");
  const Probe page = harvested(builder);
  std::map<Identity, bool> shown{{{100, 0}, false}};
  std::vector<Identity> order;
  page->getCatalogOCProperties(shown, order);
  EXPECT_THAT(shown, UnorderedElementsAre(Pair(Identity{100, 0}, false), Pair(Identity{101, 0}, false),
                                          Pair(Identity{102, 0}, true)));
  EXPECT_THAT(order, ElementsAre(Identity{101, 0}, Identity{100, 0}));
}

TEST(Layers, BeforeOpeningThereAreNone) {
  std::istringstream stream("no PDF");
  CTesselPage page(stream, "");
  std::map<Identity, bool> shown;
  std::vector<Identity> order;
  page.getCatalogOCProperties(shown, order);
  EXPECT_THAT(shown, IsEmpty());
}

// Additions for hosts
// ----------------------------------------------------------------------------------------------------------

TEST(SourceObjects, StandAsInTheSource) {
  const auto builder = withPage("/Annots 5 0 R")
                           .object(5, "[6 0 R]")
                           .object(6, "<</A 7 0 R/B(x)>>")
                           .stream(7, "/K 6 0 R", "data");
  const Probe page = harvested(builder);
  EXPECT_EQ(page->getSourceObject({6, 0}), "<</A 7 0 R/B(x)>>\n");
  EXPECT_EQ(page->getSourceObject({7, 0}), "<</Length 4 /K 6 0 R>>\nstream\r\ndata\nendstream\n");
  EXPECT_EQ(page->getSourceObject({99, 0}), "");
  EXPECT_EQ(page->getRootObject(), Identity(1, 0));
  EXPECT_EQ(page->getPageObject(2), Identity(4, 0));
  for (const int none : {0, 3, -1}) EXPECT_EQ(page->getPageObject(none), Identity(0, 0));
}

TEST(HarvestAgain, GivesKnownObjectsNewNumbersAndTexts) {
  const auto builder = withPage("/Annots[6 0 R]")
                           .object(6, "<</Subtype/Text/Rect[1 2 3 4]/AP<</N 7 0 R>>>>")
                           .stream(7, "/BBox[0 0 1 1]", "x");
  const Probe page = harvested(builder);
  EXPECT_EQ(texts(*page).count({100, 0}), 1U);
  page->setPageCm(twice);
  page->setOld2NewObjectVector(page->getNewObjectPairs());
  page->harvestAgain({{6, 0}});
  page->setStartObjNo(200);
  EXPECT_EQ(texts(*page).at({200, 0}), "<</Subtype/Text/Rect[102 204 106 208]/AP<</N 101 0 R>>>>\n");
  EXPECT_EQ(texts(*page).count({201, 0}), 0U);
  EXPECT_EQ(annotsOf(page), "  200 0 R ");
}

TEST(HarvestAgain, CountsOnceAndNotForObjectsThatNobodyMet) {
  const auto builder = withPage("/Annots[6 0 R]").object(6, "<</Subtype/Text/Rect[1 2 3 4]>>");
  const Probe page = harvested(builder);
  page->harvestAgain({{77, 0}, {4, 0}});
  page->setStartObjNo(200);
  EXPECT_EQ(texts(*page).size(), 1U);
  page->harvestAgain({{6, 0}});
  page->setStartObjNo(300);
  page->setStartObjNo(400);
  EXPECT_THAT(texts(*page),
              UnorderedElementsAre(Pair(Identity(100, 0), testing::_), Pair(Identity(300, 0), testing::_)));
}

}  // namespace
