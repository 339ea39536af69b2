#include "TesselPage/Model/tessel_annot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <list>
#include <string>

#include "TesselPage/Structure/tessel_objflags.h"
#include "Tests/Model/model_verbs.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr unsigned everything = 0xFFFFFFFF;
constexpr unsigned links = AnnotsEnableLink;
constexpr unsigned texts = AnnotsEnableText;

struct Wishes {
  unsigned annots = 0;
  unsigned forms = 0;
};

/// Pages 3 and 4, the first with these entries; the test adds the rest.
PdfBuilder withPage(const std::string& entries) {
  return pdf()
      .pageTree({3, 4})
      .object(3, "<</Type/Page/Parent 2 0 R " + entries + ">>")
      .object(4, "<</Type/Page>>");
}

/// The first page's annotations are the array object 5.
PdfBuilder withArray(const std::string& array) { return withPage("/Annots 5 0 R").object(5, array); }

Source readWith(const PdfBuilder& builder, Wishes wishes, std::size_t page = 1) {
  Source source = builder.open();
  source->switches.annotsEnable = wishes.annots;
  source->switches.formsEnable = wishes.forms;
  readPage(source, page);
  return source;
}

const SDestInfo* destOf(const Source& source, int number, int index = 0) {
  const auto found = source->destObjMap.find({SObj(number, 0), index});
  return found == source->destObjMap.end() ? nullptr : &found->second;
}

// What is kept
// ----------------------------------------------------------------------------------------------------------

PdfBuilder linkAndText() {
  return withArray("[6 0 R 7 0 R]")
      .object(6, "<</Type/Annot/Subtype/Link/Rect[0 0 9 9]/BS 8 0 R>>")
      .object(7, "<</Type/Annot/Subtype/Text/Rect[0 0 9 9]/Popup 9 0 R>>")
      .object(8, "<</W 1>>")
      .object(9, "<</Type/Annot/Subtype/Popup/Rect[0 0 9 9]/Parent 7 0 R>>");
}

TEST(AnnotHarvest, NothingOfAnyAnnotationStaysWhenBothFiltersAreOff) {
  EXPECT_THAT(harvested(readWith(linkAndText(), {0, 0})), ElementsAre(5));
}

TEST(AnnotHarvest, KeepsTheSubtypesAskedForWithWhatTheyReach) {
  const Source source = readWith(linkAndText(), {texts, 0});
  EXPECT_THAT(harvested(source), ElementsAre(5, 7, 9));
  EXPECT_EQ(flagsOf(source, 7), 0x1000 | 0x80000 | 0x20000);
  EXPECT_EQ(flagsOf(source, 9), 0x1000 | 0x80000);
}

TEST(AnnotHarvest, NeverWalksTheSubtreeOfADroppedAnnotation) {
  EXPECT_THAT(harvested(readWith(linkAndText(), {AnnotsEnableInk, 0})), ElementsAre(5));
}

TEST(AnnotHarvest, KeepsAllAtAll) {
  EXPECT_THAT(harvested(readWith(linkAndText(), {everything, 0})), ElementsAre(5, 6, 7, 8, 9));
}

TEST(AnnotHarvest, ArrayObjectKeepsOnlyItsMark) {
  EXPECT_EQ(flagsOf(readWith(linkAndText(), {everything, everything}), 5), ObjFlag::underAnnots);
}

TEST(AnnotHarvest, PopupOfAKeptAnnotationIsKeptThoughNotAskedForAndWhereverItStands) {
  for (const char* array : {"[7 0 R 9 0 R]", "[9 0 R 7 0 R]"}) {
    const Source source = readWith(linkAndText().object(5, array), {texts, 0});
    EXPECT_THAT(harvested(source), ElementsAre(5, 7, 9)) << array;
    EXPECT_EQ(flagsOf(source, 9), 0x81000) << array;
  }
}

TEST(AnnotHarvest, PopupDoesNotBringAnUnknownParent) {
  EXPECT_THAT(harvested(readWith(linkAndText().object(5, "[9 0 R]"), {AnnotsEnablePopup, 0})),
              ElementsAre(5, 9));
}

TEST(AnnotHarvest, CustomSubtypeIsKeptOnlyWhenItIsOneOfTheTable) {
  Source source =
      withArray("[6 0 R 7 0 R]").object(6, "<</Subtype/Foo>>").object(7, "<</Subtype/Ink>>").open();
  source->switches.annotsEnable = AnnotsEnableCustom;
  source->switches.customSubtypes = {"/Foo", "/Ink"};
  readPage(source);
  EXPECT_THAT(harvested(source), ElementsAre(5, 7));
}

TEST(AnnotHarvest, SubtypeCountsAtDepthOneOnly) {
  const auto builder =
      withArray("[6 0 R]").object(6, "<</AP<</Subtype/Link>>/Subtype/Text/X<</Subtype/Link>>>>");
  EXPECT_THAT(harvested(readWith(builder, {links, 0})), ElementsAre(5));
  EXPECT_THAT(harvested(readWith(builder, {texts, 0})), ElementsAre(5, 6));
}

TEST(AnnotHarvest, KeysWithinAStringAreNone) {
  const auto builder = withArray("[6 0 R]")
                           .object(6, "<</Contents(/Subtype/Text /BS 7 0 R >>)/Subtype/Link>>")
                           .object(7, "<<>>");
  EXPECT_THAT(harvested(readWith(builder, {links, 0})), ElementsAre(5, 6));
  EXPECT_THAT(harvested(readWith(builder, {texts, 0})), ElementsAre(5));
}

TEST(AnnotHarvest, AnnotationListedTwiceIsReadOnce) {
  EXPECT_THAT(harvested(readWith(linkAndText().object(5, "[6 0 R 6 0 R]"), {texts, 0})), ElementsAre(5));
  EXPECT_THAT(harvested(readWith(linkAndText().object(5, "[6 0 R 6 0 R]"), {links, 0})),
              ElementsAre(5, 6, 8));
}

TEST(AnnotHarvest, ObjectsInAnObjectStreamAreReadAlike) {
  auto builder = withPage("/Annots 5 0 R");
  builder.compressed(20, 5, "[6 0 R 7 0 R]")
      .compressed(20, 6, "<</Subtype/Link/BS 8 0 R>>")
      .compressed(20, 7, "<</Subtype/Text>>")
      .compressed(20, 8, "<</W 1>>");
  EXPECT_THAT(harvested(readWith(builder, {links, 0})), ElementsAre(5, 6, 8));
}

TEST(AnnotHarvest, MissingNullAndWrongAnnotationsDoNotStopTheOthers) {
  const auto builder = withArray("[99 0 R null 6 0 R 7 0 R 8 0 R 12 9 0 R]")
                           .object(6, "null")
                           .object(7, "(a string)")
                           .object(8, "<</Subtype/Text>>")
                           .object(9, "<</Subtype/Text>>");
  EXPECT_THAT(harvested(readWith(builder, {texts, 0})), testing::IsSupersetOf({8, 9}));
}

TEST(AnnotHarvest, MissingAnnotationHasTheFlagsOfADroppedOne) {
  EXPECT_TRUE(ObjFlag::dropped(flagsOf(readWith(withArray("[99 0 R]"), {texts, 0}), 99)));
}

TEST(AnnotHarvest, MissingObjectOfAnAnnotationIsPassedOverThoughAnActionNamedItFirst) {
  const auto builder = withArray("[6 0 R 7 0 R]")
                           .object(6, "<</Subtype/Text/A<</S/Named/X 99 0 R>>/BS 8 0 R>>")
                           .object(7, "<</Subtype/Text/BS 99 0 R>>")
                           .object(8, "<</W 9 0 R>>")
                           .object(9, "1");
  const Source source = readWith(builder, {texts, 0});
  EXPECT_THAT(harvested(source), ElementsAre(5, 6, 7, 8, 9, 99));
  EXPECT_EQ(flagsOf(source, 99), 0x81000);
}

TEST(AnnotHarvest, AnnotationSharedByTwoPagesIsFilteredForEach) {
  auto builder = pdf().pageTree({3, 4});
  builder.object(3, "<</Type/Page/Annots 5 0 R>>").object(4, "<</Type/Page/Annots 5 0 R>>");
  builder.object(5, "[6 0 R]").object(6, "<</Subtype/Text>>");
  Source source = readWith(builder, {links, 0});
  EXPECT_EQ(flagsOf(source, 6), -1);
  source->switches.annotsEnable = texts;
  readPage(source, 2);
  EXPECT_EQ(flagsOf(source, 6), 0x81000);
}

TEST(AnnotHarvest, DroppedAnnotationGoesThoughTheFormOrThePageEnteredItBefore) {
  auto builder = withPage("/Foo 6 0 R/Annots 5 0 R").object(5, "[6 0 R]").object(6, "<</Subtype/Link>>");
  EXPECT_THAT(harvested(readWith(builder, {0, 0})), ElementsAre(5));
  EXPECT_THAT(harvested(readWith(builder, {texts, 0})), ElementsAre(5));
  EXPECT_THAT(harvested(readWith(builder, {links, 0})), ElementsAre(5, 6));
}

TEST(AnnotHarvest, ReferenceToAPageFromTheArrayDamagesThePage) {
  for (const char* array : {"[4 0 R]", "[<</Subtype/Link/P 3 0 R>>]"}) {
    Source source = withArray(array).open();
    EXPECT_THROW(readPage(source), int) << array;
  }
}

TEST(AnnotHarvest, PagesAnAnnotationRefersToStayOut) {
  const auto builder = withArray("[6 0 R]").object(6, "<</Subtype/Text/P 3 0 R/X 4 0 R/Y[4 0 R]>>");
  EXPECT_THAT(harvested(readWith(builder, {texts, 0})), ElementsAre(5, 6));
}

// Plain objects: resources, actions, icons
// ----------------------------------------------------------------------------------------------------------

TEST(AnnotHarvest, ResourcesOfAnAppearanceArePlainObjects) {
  const auto builder = withArray("[6 0 R]")
                           .object(6, "<</Subtype/Stamp/AP<</N 7 0 R>>>>")
                           .stream(7, "/Subtype/Form/Resources 8 0 R/OC 10 0 R", "q Q")
                           .object(8, "<</Font<</F 9 0 R>>>>")
                           .object(9, "<</Type/Font>>")
                           .object(10, "<<>>");
  const Source source = readWith(builder, {everything, 0});
  EXPECT_EQ(flagsOf(source, 7), 0x81000);
  EXPECT_EQ(flagsOf(source, 8), 0);
  EXPECT_EQ(flagsOf(source, 9), 0);
  EXPECT_EQ(flagsOf(source, 10), 0x81000);
}

TEST(AnnotHarvest, DirectResourcesArePlainUpToTheirEnd) {
  const auto builder = withArray("[6 0 R]")
                           .object(6, "<</Subtype/Stamp/AP<</N 7 0 R>>>>")
                           .stream(7, "/Resources<</Font<</F 9 0 R>>/X<<>>>>/OC 10 0 R", "q Q")
                           .object(9, "<</Type/Font>>")
                           .object(10, "<<>>");
  const Source source = readWith(builder, {everything, 0});
  EXPECT_EQ(flagsOf(source, 9), 0);
  EXPECT_EQ(flagsOf(source, 10), 0x81000);
}

struct PlainKeyCase {
  const char* key;
  int flags;
};

class PlainKey : public testing::TestWithParam<PlainKeyCase> {};

TEST_P(PlainKey, MakesItsObjectAPlainOne) {
  const auto builder = withArray("[6 0 R]")
                           .object(6, std::string("<</Subtype/Text") + GetParam().key + " 7 0 R>>")
                           .object(7, "<</S/URI>>");
  EXPECT_EQ(flagsOf(readWith(builder, {everything, 0}), 7), GetParam().flags);
}

INSTANTIATE_TEST_SUITE_P(Keys, PlainKey,
                         testing::Values(PlainKeyCase{"/A", 0}, PlainKeyCase{"/AA", 0}, PlainKeyCase{"/I", 0},
                                         PlainKeyCase{"/RI", 0}, PlainKeyCase{"/IX", 0},
                                         PlainKeyCase{"/FS", 0}, PlainKeyCase{"/Resources", 0},
                                         PlainKeyCase{"/BS", 0x81000}, PlainKeyCase{"/MK", 0x91000},
                                         PlainKeyCase{"/Parent", 0xA1000}));

TEST(AnnotHarvest, PlainnessStaysOnBehindAnActionsReferenceUpToTheNextDictionary) {
  const auto builder = withArray("[6 0 R]")
                           .object(6, "<</Subtype/Text/A 7 0 R/BS 8 0 R/X<<>>/BE 9 0 R>>")
                           .object(7, "<</S/URI>>")
                           .object(8, "<<>>")
                           .object(9, "<<>>");
  const Source source = readWith(builder, {everything, 0});
  EXPECT_EQ(flagsOf(source, 8), 0);
  EXPECT_EQ(flagsOf(source, 9), 0x81000);
}

TEST(AnnotHarvest, ActionOfALinkCarriesTheLinksFlags) {
  const auto builder =
      withArray("[6 0 R]").object(6, "<</Subtype/Link/A 7 0 R>>").object(7, "<</S/URI/URI(x)>>");
  EXPECT_EQ(flagsOf(readWith(builder, {everything, 0}), 7), 0x281000);
}

// Form fields
// ----------------------------------------------------------------------------------------------------------

TEST(FormHarvest, WidgetNeedsTheFormFilter) {
  const auto builder = withArray("[6 0 R]").object(6, "<</Subtype/Widget/FT/Tx>>");
  EXPECT_THAT(harvested(readWith(builder, {everything, 0})), ElementsAre(5));
  const Source source = readWith(builder, {0, AcroFormsEnableText});
  EXPECT_EQ(flagsOf(source, 6), 0x181000);
  EXPECT_THAT(numbers(source->catalogObj->form.fields), ElementsAre(6));
  EXPECT_TRUE(source->catalogObj->form.fields.begin()->hasAny(ObjFlag::keptByFormFilter));
}

struct WidgetCase {
  const char* entries;
  unsigned mask;
};

class Widget : public testing::TestWithParam<WidgetCase> {};

TEST_P(Widget, IsKeptByItsTypesBit) {
  const auto builder =
      withArray("[6 0 R]").object(6, std::string("<</Subtype/Widget") + GetParam().entries + ">>");
  EXPECT_EQ(flagsOf(readWith(builder, {0, GetParam().mask}), 6), 0x181000);
  EXPECT_EQ(flagsOf(readWith(builder, {0, 0x7F & ~GetParam().mask}), 6), -1);
}

INSTANTIATE_TEST_SUITE_P(Types, Widget,
                         testing::Values(WidgetCase{"/FT/Btn/Ff 65536", 0x2},
                                         WidgetCase{"/FT/Btn/Ff 32768", 0x1}, WidgetCase{"/FT/Btn/Ff 0", 0x4},
                                         WidgetCase{"/FT/Btn", 0x4}, WidgetCase{"/FT/Ch", 0x8},
                                         WidgetCase{"/FT/Ch/Ff 131072", 0x10}, WidgetCase{"/FT/Tx", 0x20},
                                         WidgetCase{"/FT/Sig", 0x40}));

PdfBuilder radioGroup(const std::string& parent) {
  return withArray("[6 0 R]")
      .object(6, "<</Subtype/Widget/Parent 7 0 R/AS/Off>>")
      .object(7, parent)
      .object(8, "<</Subtype/Widget/Parent 7 0 R/P 4 0 R>>");
}

TEST(FormHarvest, WidgetHasTypeAndFlagsOfItsParent) {
  const auto builder = radioGroup("<</FT/Btn/Ff 32768/Kids[6 0 R 8 0 R]>>");
  const Source source = readWith(builder, {0, AcroFormsEnableRadioButton});
  EXPECT_EQ(flagsOf(source, 6), 0x181000 | 0x40000);
  EXPECT_EQ(flagsOf(source, 7), 0x181000 | 0x20000);
  EXPECT_THAT(numbers(source->catalogObj->form.fields), ElementsAre(7));
  EXPECT_EQ(flagsOf(readWith(builder, {0, AcroFormsEnableCheckBox}), 6), -1);
}

TEST(FormHarvest, ParentInAnObjectStreamIsReadAlike) {
  auto builder = withArray("[6 0 R]").object(6, "<</Subtype/Widget/Parent 7 0 R>>");
  builder.compressed(20, 7, "<</FT/Btn/Ff 32768/Kids[6 0 R]>>");
  EXPECT_EQ(flagsOf(readWith(builder, {0, AcroFormsEnableRadioButton}), 7), 0x1A1000);
}

TEST(FormHarvest, OwnTypeCountsBeforeTheParents) {
  auto builder = radioGroup("<</FT/Tx/Ff 32768>>").object(6, "<</Subtype/Widget/FT/Btn/Parent 7 0 R>>");
  EXPECT_NE(flagsOf(readWith(builder, {0, AcroFormsEnableRadioButton}), 6), -1);
}

TEST(FormHarvest, SiblingsComeWithAParentThatHasAType) {
  const Source source = readWith(radioGroup("<</FT/Btn/Ff 32768/Kids[6 0 R 8 0 R]>>"), {0, everything});
  EXPECT_EQ(flagsOf(source, 8), 0x1C1000);
}

TEST(FormHarvest, SiblingsStayOutWithAParentThatHasNone) {
  auto builder =
      radioGroup("<</T(group)/Kids[6 0 R 8 0 R]>>").object(6, "<</Subtype/Widget/FT/Tx/Parent 7 0 R>>");
  EXPECT_THAT(harvested(readWith(builder, {0, everything})), ElementsAre(5, 6, 7));
}

TEST(FormHarvest, ReadsAFieldTreeOfAnyDepth) {
  constexpr int depth = 10000;
  auto builder = withArray("[6 0 R]").object(6, "<</Subtype/Widget/FT/Tx/Parent 7 0 R>>");
  for (int i = 0; i < depth; ++i)
    builder.object(
        7 + i, "<</T(x)/Kids[" + std::to_string(6 + i) + " 0 R]/Parent " + std::to_string(8 + i) + " 0 R>>");
  builder.object(7 + depth, "<</T(top)/Kids[" + std::to_string(6 + depth) + " 0 R]>>");
  const Source source = readWith(builder, {0, everything});
  EXPECT_EQ(source->pageObjects.size(),
            depth + 4U);  // the array, the widget, the tree, and the mark of a climb
  EXPECT_EQ(flagsOf(source, 7 + depth), 0x1A1000);
}

TEST(FormHarvest, ParentsThatLoopAreReadOnce) {
  const auto builder = withArray("[6 0 R]")
                           .object(6, "<</Subtype/Widget/FT/Tx/Parent 7 0 R>>")
                           .object(7, "<</FT/Tx/Parent 8 0 R/Kids[6 0 R 7 0 R]>>")
                           .object(8, "<</FT/Tx/Parent 7 0 R/Kids[8 0 R]>>");
  EXPECT_THAT(harvested(readWith(builder, {0, everything})), ElementsAre(5, 6, 7, 8));
}

TEST(FormHarvest, FieldInfoIsReadUpToTheObjectsEnd) {
  Source source = withArray("[]").object(6, "<</Ff(x)/Kids[<</FT/Ch>>]/Ff 12/FT/Tx>>").open();
  std::string type;
  int flags = 0;
  EXPECT_TRUE(CAnnot().ReadParent(*source, SObj(6, 0), type, flags));
  EXPECT_EQ(type, "/Tx");
  EXPECT_EQ(flags, 12);
  EXPECT_FALSE(CAnnot().ReadParent(*source, SObj(99, 0), type, flags));
}

// Arrays that are written in the page, and dictionaries that are written in an array
// ----------------------------------------------------------------------------------------------------------

TEST(DirectAnnots, ReferencesOfAPagesOwnArrayAreFiltered) {
  auto builder = withPage("/Annots[6 0 R 7 0 R]/Metadata 8 0 R");
  builder.object(6, "<</Subtype/Link>>").object(7, "<</Subtype/Text>>").object(8, "<</Type/Metadata>>");
  const Source source = readWith(builder, {texts, 0});
  EXPECT_THAT(harvested(source), ElementsAre(7, 8));
  EXPECT_EQ(flagsOf(source, 7), 0x81000);
  EXPECT_EQ(flagsOf(source, 8), 0);
  EXPECT_THAT(numbers(source->pageAnnotObjs), IsEmpty());
}

TEST(DirectAnnots, NoReferenceOfThemStaysWhenBothFiltersAreOff) {
  auto builder = withPage("/Annots[6 0 R 7 0 R]/Contents 8 0 R");
  builder.object(6, "<</Subtype/Link>>").object(7, "<</Subtype/Text>>").stream(8, "", "q");
  EXPECT_THAT(harvested(readWith(builder, {0, 0})), ElementsAre(8));
}

TEST(DirectAnnots, WhatADictionaryInThePageRefersToIsThePagesOwn) {
  auto builder = withPage("/Annots[<</Subtype/Text/AP 7 0 R>>]").object(7, "<<>>");
  EXPECT_EQ(flagsOf(readWith(builder, {0, 0}), 7), 0);
}

TEST(DirectAnnots, WhatThePageNeedsOtherwiseStays) {
  auto builder = withPage("/Group 8 0 R/Annots[]/Metadata 8 0 R").object(8, "<<>>");
  EXPECT_THAT(harvested(readWith(builder, {texts, 0})), ElementsAre(8));
}

TEST(DirectAnnots, WhatThePageRefersToBehindThemIsEnteredAnew) {
  auto builder = withPage("/Foo 8 0 R/Annots[]/Resources 8 0 R").object(8, "<<>>");
  EXPECT_EQ(flagsOf(readWith(builder, {0, 0}), 8), 0x20);
  EXPECT_EQ(flagsOf(readWith(builder, {texts, 0}), 8), 0x20);
}

TEST(DirectAnnots, AreCheckedOnlyWhenLinksAreAskedFor) {
  const auto builder = withArray("[<</Subtype/Text/AP 7 0 R>>]").object(7, "<<>>");
  EXPECT_EQ(flagsOf(readWith(builder, {texts, 0}), 7), -1);
  EXPECT_EQ(flagsOf(readWith(builder, {texts | links, 0}), 7), 0x81000);
}

TEST(DirectAnnots, DestinationsHaveTheirDictionarysPlaceInTheArray) {
  const auto builder =
      withArray("[<</Subtype/Link/Dest[4 0 R/FitH 7]>><</Subtype/Text>>null<</Subtype/Link/Dest(name)>>]");
  const Source source = readWith(builder, {everything, 0});
  ASSERT_NE(destOf(source, 5, 0), nullptr);
  EXPECT_EQ(destOf(source, 5, 0)->page, 2);
  EXPECT_EQ(destOf(source, 5, 0)->style, 3);
  EXPECT_EQ(destOf(source, 5, 1), nullptr);
  ASSERT_NE(destOf(source, 5, 2), nullptr);
  EXPECT_EQ(destOf(source, 5, 2)->name, "name");
}

TEST(DirectAnnots, DestinationOfAnyKindIsOneValue) {
  for (const char* value : {"/Name", " 7", " null", "<</D[4 0 R/Fit]>>", "[[4 0 R]]", "<6E>", "(\\)>>)"}) {
    const auto array = "[<</Subtype/Link/Dest" + std::string(value) + "/BS 6 0 R>><</Dest[4 0 R/FitB]>>]";
    const Source source = readWith(withArray(array).object(6, "<</W 1>>"), {links, 0});
    EXPECT_THAT(harvested(source), ElementsAre(5, 6)) << value;
    ASSERT_NE(destOf(source, 5, 1), nullptr) << value;
    EXPECT_EQ(destOf(source, 5, 1)->style, 6) << value;
  }
}

TEST(DirectAnnots, DestinationMayBeAnObject) {
  const auto builder =
      withArray("[<</Dest 6 0 R/X 7 0 R>>]").object(6, "[4 0 R/Fit]").object(7, "<</Subtype/Text>>");
  const Source source = readWith(builder, {texts, 0});
  EXPECT_EQ(destOf(source, 5)->page, 2);
  EXPECT_THAT(harvested(source), ElementsAre(5, 7));
}

TEST(DirectAnnots, ParentIsNoPartOfTheHarvest) {
  const Source source = readWith(withArray("[/Parent 6 0 R]").object(6, "<</Subtype/Text>>"), {texts, 0});
  EXPECT_THAT(harvested(source), ElementsAre(5));
  EXPECT_EQ(source->parentMap.at(SObj(5, 0)), SObj(6, 0));
}

TEST(DirectAnnots, RotateChangesTheRotationThatTheWriterUses) {
  EXPECT_EQ(readWith(withArray("[<</Rotate 180>>]"), {texts, 0})->switches.currentRotation, 180);
  EXPECT_EQ(readWith(withArray("[<</Rotate 100>>]"), {texts, 0})->switches.currentRotation, 0);
}

// Destinations and actions of links
// ----------------------------------------------------------------------------------------------------------

PdfBuilder withLink(const std::string& entries) {
  return withArray("[6 0 R]").object(6, "<</Subtype/Link" + entries + ">>");
}

TEST(LinkHarvest, DestinationIsEnteredUnderTheLink) {
  const Source source = readWith(withLink("/Dest[4 0 R/XYZ 1 2 3]"), {links, 0});
  EXPECT_EQ(destOf(source, 6)->page, 2);
  EXPECT_THAT(harvested(source), ElementsAre(5, 6));
}

TEST(LinkHarvest, DestinationOfAnythingElseIsNone) {
  const auto builder = withArray("[6 0 R]").object(6, "<</Subtype/Text/Dest[4 0 R/Fit]>>");
  EXPECT_EQ(destOf(readWith(builder, {texts, 0}), 6), nullptr);
}

TEST(LinkHarvest, DestinationObjectsAreSharedByLinks) {
  const auto builder = withArray("[6 0 R 7 0 R]")
                           .object(6, "<</Subtype/Link/Dest 8 0 R>>")
                           .object(7, "<</Subtype/Link/Dest 8 0 R>>")
                           .object(8, "[4 0 R/FitV 5]");
  const Source source = readWith(builder, {links, 0});
  EXPECT_EQ(destOf(source, 6)->left, 5);
  EXPECT_EQ(destOf(source, 7)->left, 5);
}

TEST(LinkHarvest, ActionWithinTheLinkIsEnteredUnderTheLink) {
  const Source source =
      readWith(withLink("/A<</S/GoTo/D[4 0 R/Fit]>>/BS 7 0 R").object(7, "<<>>"), {links, 0});
  EXPECT_EQ(destOf(source, 6)->page, 2);
  EXPECT_TRUE(source->actionObjs.contains({6, 0}));
  EXPECT_EQ(source->actionObjs.size(), 1U);
  EXPECT_EQ(flagsOf(source, 7), 0x81000);
}

TEST(LinkHarvest, ActionObjectIsEnteredUnderItself) {
  const Source source = readWith(withLink("/A 7 0 R").object(7, "<</S/GoTo/D[4 0 R/Fit]>>"), {links, 0});
  EXPECT_EQ(destOf(source, 6), nullptr);
  EXPECT_EQ(destOf(source, 7)->page, 2);
  EXPECT_EQ(flagsOf(source, 7), 0x281000);
}

TEST(LinkHarvest, FollowingActionIsEnteredUnderItself) {
  const auto builder =
      withLink("/A 7 0 R").object(7, "<</S/URI/URI(x)/Next 8 0 R>>").object(8, "<</S/GoTo/D[4 0 R/Fit]>>");
  const Source source = readWith(builder, {links, 0});
  EXPECT_EQ(destOf(source, 7), nullptr);
  EXPECT_EQ(destOf(source, 8)->page, 2);
  EXPECT_EQ(flagsOf(source, 8), 0x281000);
}

TEST(LinkHarvest, MissingActionDoesNotStopTheOthers) {
  const auto builder =
      withArray("[6 0 R 7 0 R]").object(6, "<</Subtype/Link/A 99 0 R>>").object(7, "<</Subtype/Link>>");
  EXPECT_THAT(harvested(readWith(builder, {links, 0})), testing::IsSupersetOf({6, 7}));
}

TEST(LinkHarvest, DestinationsOfTheFormerPageAreForgotten) {
  auto builder = pdf().pageTree({3, 4});
  builder.object(3, "<</Type/Page/Annots 5 0 R>>").object(4, "<</Type/Page>>");
  builder.object(5, "[6 0 R]").object(6, "<</Subtype/Link/Dest[4 0 R/Fit]>>");
  Source source = readWith(builder, {links, 0});
  readPage(source, 2);
  EXPECT_TRUE(source->destObjMap.empty());
}

// Cost
// ----------------------------------------------------------------------------------------------------------

template <class Run>
double seconds(Run run) {
  const auto start = std::chrono::steady_clock::now();
  run();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::string repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

/// Bodies of an annotation array or an annotation whose naive reading is quadratic.
class HostileAnnot : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(HostileAnnot, CostsWhatItIsWorth) {
  constexpr int times = 60000;
  const auto& [open, repeat] = GetParam();
  const auto builder =
      withArray("[6 0 R]").object(6, open + repeated(repeat, times)).object(7, repeated("[", times));
  EXPECT_LT(seconds([&] { readWith(builder, {everything, everything}); }), 5);
  const auto inArray = withArray(repeated(repeat, times));
  EXPECT_LT(seconds([&] { readWith(inArray, {everything, everything}); }), 5);
}

INSTANTIATE_TEST_SUITE_P(
    Repeats, HostileAnnot,
    testing::Values(std::pair("<</Subtype/Link", "/A "), std::pair("<</Subtype/Link", "/A<<"),
                    std::pair("<</Subtype/Link/A", "<</Next"), std::pair("<</Subtype/Link/A<<", "/D["),
                    std::pair("<</Subtype/Link", "/Dest["), std::pair("<</Subtype/Link", "/Dest 7 0 R "),
                    std::pair("<</Subtype/Link", "/A 7 0 R "), std::pair("<<", "null "),
                    std::pair("<<", "<<"), std::pair("<<", "(")));

TEST(AnnotHarvest, FieldsThatShareAParentReadItOnce) {
  constexpr int count = 8000;
  std::string kids;
  for (int i = 0; i < count; ++i) kids += std::to_string(10 + i) + " 0 R ";
  auto builder = withArray("[" + kids + "]").object(6, "<</FT/Btn/Kids[" + kids + "]>>");
  for (int i = 0; i < count; ++i) builder.object(10 + i, "<</Subtype/Widget/Parent 6 0 R>>");
  EXPECT_LT(seconds([&] { readWith(builder, {0, everything}); }), 5);
}

TEST(AnnotHarvest, MovingWaitingObjectsBackIsCheap) {
  constexpr int count = 8000;
  std::string all;
  for (int i = 0; i < count; ++i) all += std::to_string(10 + i) + " 0 R ";
  auto builder = withArray("[" + all + "]").object(6, "<<>>");
  for (int i = 0; i < count; ++i)
    builder.object(10 + i, "<</Subtype/Text/X[" + std::to_string(10 + count - 1 - i) + " 0 R 6 0 R]>>");
  EXPECT_LT(seconds([&] { readWith(builder, {texts, 0}); }), 5);
}

}  // namespace
