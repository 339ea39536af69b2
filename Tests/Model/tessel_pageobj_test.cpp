#include "TesselPage/Model/tessel_pageobj.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TesselPage/Structure/tessel_objflags.h"
#include "Tests/Model/model_verbs.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

/// One page with these entries, objects 5 to 9 there as plain dictionaries, and a second page, 4.
PdfBuilder withPage(const std::string& entries) {
  PdfBuilder builder;
  builder.pageTree({3, 4})
      .object(3, "<</Type/Page/Parent 2 0 R " + entries + ">>")
      .object(4, "<</Type/Page>>");
  for (int number = 5; number <= 9; ++number)
    builder.object(number, "<</Plain " + std::to_string(number) + ">>");
  return builder;
}

Source pageOf(const std::string& entries) {
  Source source = withPage(entries).open();
  readPage(source);
  return source;
}

// What a key means
// ----------------------------------------------------------------------------------------------------------

struct KeyCase {
  const char* entries;
  ObjectNumbers harvest;
};

class PageKey : public testing::TestWithParam<KeyCase> {};

TEST_P(PageKey, DecidesWhatIsHarvested) {
  EXPECT_EQ(harvested(pageOf(GetParam().entries)), GetParam().harvest);
}

INSTANTIATE_TEST_SUITE_P(Keys, PageKey,
                         testing::Values(KeyCase{"/B 5 0 R", {5}}, KeyCase{"/PieceInfo<</X 5 0 R>>", {5}},
                                         KeyCase{"/Thumb 7 0 R", {}}, KeyCase{"/Thumb 7 0 R/B 5 0 R", {5}},
                                         KeyCase{"/Illustrator 7 0 R", {}}, KeyCase{"/ThumbNail 7 0 R", {}},
                                         KeyCase{"/StructParents 5", {}},
                                         KeyCase{"/Dest[3 0 R/Fit 5 0 R]/B 6 0 R", {6}},
                                         KeyCase{"/Dest 5 0 R", {}},
                                         KeyCase{"/Foo<</Thumb<<>>/X 7 0 R>>", {7}},
                                         KeyCase{"/Parent 5 0 R", {}}, KeyCase{"/Group 5 0 R", {}},
                                         KeyCase{"/Contents 5 0 R", {5}}, KeyCase{"/Resources 5 0 R", {5}},
                                         KeyCase{"/Resources<</Font<</F 5 0 R>>>>", {5}}));

TEST(Page, DestThatIsNoArrayDoesNotHideReferences) {
  EXPECT_THAT(harvested(pageOf("/Dest/Name/B 5 0 R")), ElementsAre(5));
}

TEST(Page, ReferencesKeepTheKeyThatLedToThem) {
  const Source source = pageOf("/Contents 5 0 R/Resources 6 0 R/B 7 0 R");
  EXPECT_EQ(flagsOf(source, 5), ObjFlag::underContents);
  EXPECT_EQ(flagsOf(source, 6), ObjFlag::underResources);
  EXPECT_EQ(flagsOf(source, 7), ObjFlag::none);
}

TEST(Page, KeyCountsByWhatTheTokenHolds) {
  const Source source = pageOf("/ContentsOf 5 0 R/ResourcesOf 6 0 R");
  EXPECT_THAT(numbers(source->pageContentObjs), ElementsAre(5));
  EXPECT_THAT(numbers(source->pageResourceObjs), ElementsAre(6));
}

TEST(Page, KeyInANestedDictionaryMeansNothing) {
  const Source source = pageOf("/Foo<</Contents 9 0 R/Resources 8 0 R>>");
  EXPECT_THAT(source->pageContentObjs, IsEmpty());
  EXPECT_THAT(source->pageResourceObjs, IsEmpty());
  EXPECT_THAT(harvested(source), ElementsAre(8, 9));
  EXPECT_EQ(flagsOf(source, 9), ObjFlag::none);
}

TEST(Page, UnbalancedDictionariesTakeTheMeaningFromAllThatFollows) {
  const Source source = pageOf("/Group<</S/Transparency/CS<</A 1>>>>/Contents 5 0 R");
  EXPECT_THAT(source->pageContentObjs, IsEmpty());
  EXPECT_THAT(harvested(source), ElementsAre(5));
}

class PageReference : public testing::TestWithParam<const char*> {};

TEST_P(PageReference, DamagesThePage) {
  const Source source = withPage(GetParam()).open();
  try {
    readPage(source);
    FAIL() << "no int was thrown";
  } catch (int code) {
    EXPECT_EQ(code, 1000);
  }
}

INSTANTIATE_TEST_SUITE_P(Keys, PageReference,
                         testing::Values("/Foo 4 0 R", "/Foo 3 0 R", "/Contents 4 0 R", "/Resources 4 0 R",
                                         "/Annots 4 0 R", "/Foo<</Bar 4 0 R>>"));

TEST(Page, DestToAPageDoesNoHarm) { EXPECT_NO_THROW(pageOf("/Dest[4 0 R/Fit]")); }

TEST(Page, ParentThatIsAPageDoesNoHarm) { EXPECT_NO_THROW(pageOf("/Parent 4 0 R")); }

// Group and rotation
// ------------------------------------------------------------------------------------------------------------

std::string groupOf(const std::string& entries) {
  const Source source = withPage(entries).open();
  CPage page;
  page.setIdentity(source->pageList.front());
  page.fromStream(*source);
  return page.pageGroup;
}

TEST(Page, GroupIsKeptFromBehindTheKeyToItsFirstEnd) {
  EXPECT_EQ(groupOf("/Group <</S/Transparency /I true>>/B 5 0 R"), " <</S/Transparency /I true>>");
  EXPECT_EQ(groupOf("/Group<</CS<</A 1>>/S/T>>"), "<</CS<</A 1>>");
  EXPECT_EQ(groupOf("/Group 5 0 R"), "");
  EXPECT_EQ(groupOf("/Group<</S/T"), "<</S/T>>");
}

TEST(Page, RotationOfThePageReplacesTheCurrentOne) {
  EXPECT_EQ(pageOf("/Rotate 270")->switches.currentRotation, 270);
  EXPECT_EQ(pageOf("/Rotate 100")->switches.currentRotation, 0);
}

TEST(Page, WithoutARotationTheCurrentOneStays) {
  const Source source =
      pdf().pageTree({3, 4}).object(3, "<</Type/Page>>").object(4, "<</Type/Page/Rotate 180>>").open();
  readPage(source, 1);
  EXPECT_EQ(source->switches.currentRotation, 180);
}

// Contents
// -----------------------------------------------------------------------------------------------------------------------

struct ContentsCase {
  const char* contents;
  const char* five;
  const char* six;
  ObjectNumbers expected;
};

class Contents : public testing::TestWithParam<ContentsCase> {};

TEST_P(Contents, AreFlattenedInTheOrderOfDiscovery) {
  const Source source = pdf()
                            .onePage(std::string("/Contents ") + GetParam().contents)
                            .object(5, GetParam().five)
                            .object(6, GetParam().six)
                            .stream(7, "", "q")
                            .stream(8, "", "Q")
                            .open();
  readPage(source);
  EXPECT_EQ(numbers(source->pageContentObjs), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Values, Contents,
                         testing::Values(ContentsCase{"7 0 R", "", "", {7}},
                                         ContentsCase{"[7 0 R 8 0 R]", "", "", {7, 8}},
                                         ContentsCase{"[7 0 R 7 0 R]", "", "", {7}},
                                         ContentsCase{"5 0 R", "[6 0 R 7 0 R]", "[]", {5, 6, 7}},
                                         ContentsCase{"5 0 R", "[6 0 R 7 0 R]", "[8 0 R]", {5, 6, 7, 8}},
                                         ContentsCase{"5 0 R", "[7 0 R 6 0 R]", "[8 0 R]", {5, 7, 6}},
                                         ContentsCase{"5 0 R", "6 0 R", "[7 0 R]", {5, 6, 7}},
                                         ContentsCase{"5 0 R", "[6 0 R]", "[5 0 R 7 0 R]", {5, 6, 7}},
                                         ContentsCase{"[5 0 R 8 0 R]", "[7 0 R]", "", {5, 7, 8}},
                                         ContentsCase{"[99 0 R 7 0 R]", "", "", {99, 7}},
                                         ContentsCase{"null", "", "", {}}));

TEST(Page, ContentsArrayMayLieInAnObjectStream) {
  const Source source = pdf()
                            .onePage("/Contents 5 0 R/B 6 0 R")
                            .compressed(9, 5, "[7 0 R]")
                            .stream(7, "", "q")
                            .object(6, "<<>>")
                            .open();
  readPage(source);
  EXPECT_THAT(numbers(source->pageContentObjs), ElementsAre(5, 7));
  EXPECT_THAT(harvested(source), ElementsAre(5, 6));
}

TEST(Page, ContentStreamsDictionaryYieldsNothing) {
  const Source source =
      pdf().onePage("/Contents 5 0 R").stream(5, "/Foo 6 0 R", "q").object(6, "<<>>").open();
  readPage(source);
  EXPECT_THAT(harvested(source), ElementsAre(5));
}

TEST(Page, ReadTreeWithoutAListOnlyFillsTheSet) {
  const Source source = pdf().onePage("").object(5, "[6 0 R]").object(6, "[7 0 R]").stream(7, "", "q").open();
  CPage page;
  std::set<SObj> seen;
  source->seekg(3);
  EXPECT_TRUE(page.ReadTree(*source, SObj(5, 0), seen, nullptr));
  EXPECT_THAT(numbers(seen), ElementsAre(6, 7));
  EXPECT_EQ(source->tellg(), std::streampos(3));
  EXPECT_FALSE(page.ReadTree(*source, SObj(99, 0), seen, nullptr));
}

// Resources
// ----------------------------------------------------------------------------------------------------------------------

TEST(Resources, OwnReferenceIsTaken) {
  const Source source =
      pdf().pageTree({3}, "/Resources 6 0 R").object(3, "<</Type/Page/Parent 2 0 R/Resources 5 0 R>>").open();
  readPage(source);
  EXPECT_THAT(numbers(source->pageResourceObjs), ElementsAre(5));
}

TEST(Resources, InheritedReferenceIsTakenWithItsFlagAndHarvested) {
  const Source source = pdf()
                            .pageTree({3}, "/Resources 5 0 R")
                            .object(3, "<</Type/Page/Parent 2 0 R>>")
                            .object(5, "<</Font 6 0 R>>")
                            .object(6, "<<>>")
                            .open();
  readPage(source);
  EXPECT_THAT(numbers(source->pageResourceObjs), ElementsAre(5));
  EXPECT_EQ(flagsOf(source, 5), ObjFlag::underResources);
  EXPECT_THAT(harvested(source), ElementsAre(5, 6));
}

TEST(Resources, InheritedDirectDictionaryGivesItsReferencesOnly) {
  const Source source = pdf()
                            .pageTree({3}, "/Resources<</Font<</F 5 0 R>>/XObject<</X 6 0 R>>>>")
                            .object(3, "<</Type/Page/Parent 2 0 R>>")
                            .object(5, "<</Widths 7 0 R>>")
                            .object(6, "<<>>")
                            .object(7, "[]")
                            .open();
  readPage(source);
  EXPECT_THAT(source->pageResourceObjs, IsEmpty());
  EXPECT_THAT(harvested(source), ElementsAre(5, 6, 7));
  EXPECT_EQ(flagsOf(source, 5), ObjFlag::none);
}

TEST(Resources, DirectOnesOfThePageStillClimb) {
  const Source source = pdf()
                            .pageTree({3}, "/Resources 5 0 R")
                            .object(3, "<</Type/Page/Parent 2 0 R/Resources<</Font<<>>>>>>")
                            .object(5, "<<>>")
                            .open();
  readPage(source);
  EXPECT_THAT(numbers(source->pageResourceObjs), ElementsAre(5));
}

TEST(Resources, ClimbGoesUpToTheNextNodeThatHasSome) {
  const Source source = pdf()
                            .pageTree({4}, "/Resources 5 0 R")
                            .object(4, "<</Type/Pages/Parent 2 0 R/Kids[3 0 R]>>")
                            .object(3, "<</Type/Page/Parent 4 0 R>>")
                            .object(5, "<<>>")
                            .open();
  readPage(source);
  EXPECT_THAT(numbers(source->pageResourceObjs), ElementsAre(5));
}

TEST(Resources, ClimbThatFindsNothingEntersTheEmptyIdentity) {
  const Source source = pageOf("");
  ASSERT_EQ(source->pageObjects.size(), 1U);
  EXPECT_EQ(source->pageObjects.begin()->objNum, 0);
  EXPECT_EQ(source->pageObjects.begin()->objFlags, ObjFlag::underResources);
  EXPECT_THAT(source->pageResourceObjs, IsEmpty());
}

TEST(Resources, CycleOfParentsEndsTheClimb) {
  const Source source = pdf()
                            .pageTree({4})
                            .object(4, "<</Type/Pages/Parent 6 0 R/Kids[3 0 R]>>")
                            .object(6, "<</Type/Pages/Parent 4 0 R>>")
                            .object(3, "<</Type/Page/Parent 4 0 R/B 5 0 R>>")
                            .object(5, "<</C 7 0 R>>")
                            .object(7, "<<>>")
                            .open();
  readPage(source);
  EXPECT_THAT(harvested(source), ElementsAre(5, 7));
}

TEST(Resources, BrokenParentLeavesTheHarvestGoingOn) {
  for (const char* parent : {"99 0 R", "null", "7 0 R"}) {
    const Source source = pdf()
                              .pageTree({3})
                              .object(3, std::string("<</Type/Page/B 5 0 R/Parent ") + parent + ">>")
                              .object(5, "<</C 6 0 R>>")
                              .object(6, "<<>>")
                              .object(7, "null")
                              .open();
    readPage(source);
    EXPECT_THAT(harvested(source), ElementsAre(5, 6)) << parent;
  }
}

TEST(Resources, PageAsInheritedResourcesDamagesThePage) {
  const Source source = pdf()
                            .pageTree({3, 4}, "/Resources 4 0 R")
                            .object(3, "<</Type/Page/Parent 2 0 R>>")
                            .object(4, "<</Type/Page>>")
                            .open();
  EXPECT_THROW(readPage(source), int);
}

TEST(Resources, ReferenceBehindParentCountsBeforeThoseOfADirectAnnotsArray) {
  const char* const orders[] = {"/Parent 2 0 R/Annots[8 0 R]", "/Annots[8 0 R]/Parent 2 0 R"};
  for (const char* order : orders) {
    const Source source = pdf()
                              .pageTree({3}, "/Resources 5 0 R")
                              .object(3, std::string("<</Type/Page") + order + ">>")
                              .object(5, "<<>>")
                              .object(8, "<</Resources 6 0 R>>")
                              .open();
    readPage(source);
    EXPECT_THAT(numbers(source->pageResourceObjs), ElementsAre(5)) << order;
  }
}

TEST(Resources, WithoutAParentThatOfADirectAnnotsArrayIsClimbed) {
  const Source source = pdf()
                            .pageTree({3})
                            .object(3, "<</Type/Page/Annots[8 0 R]>>")
                            .object(5, "<<>>")
                            .object(8, "<</Resources 5 0 R>>")
                            .open();
  readPage(source);
  EXPECT_THAT(numbers(source->pageResourceObjs), ElementsAre(5));
}

// Annotations
// --------------------------------------------------------------------------------------------------------------------

TEST(PageAnnotations, ReferenceToTheArrayIsKept) {
  const Source source =
      pdf().onePage("/Annots 5 0 R/B 7 0 R").object(5, "[6 0 R]").object(6, "<<>>").object(7, "<<>>").open();
  readPage(source);
  EXPECT_THAT(numbers(source->pageAnnotObjs), ElementsAre(5));
  EXPECT_THAT(harvested(source), AllOf(Contains(7), Not(Contains(6))));
  EXPECT_EQ(flagsOf(source, 5), ObjFlag::underAnnots);
}

TEST(PageAnnotations, PageGoesOnBehindADirectArray) {
  const Source source =
      pdf().onePage("/Annots[6 0 R]/Contents 7 0 R").object(6, "<<>>").stream(7, "", "q").open();
  readPage(source);
  EXPECT_THAT(numbers(source->pageContentObjs), ElementsAre(7));
  EXPECT_THAT(source->pageAnnotObjs, IsEmpty());
  EXPECT_THAT(harvested(source), ElementsAre(7));
}

TEST(PageAnnotations, ArrayIsReadBehindARotationThatIsNoNumber) {
  const Source source = pdf()
                            .object(1, "<</Type/Catalog/Pages 2 0 R>>")
                            .object(2, "<</Type/Pages/Kids[3 0 R]>>")
                            .compressed(4, 3, "<</Type/Page/B 7 0 R/Rotate 6 0 R/Annots 5 0 R>>")
                            .object(5, "[7 0 R]")
                            .object(6, "/Name")
                            .object(7, "<<>>")
                            .open();
  readPage(source);
  EXPECT_THAT(harvested(source), ElementsAre(5));
}

TEST(PageAnnotations, MissingArrayDoesNotStopThePage) {
  const Source source = pdf().onePage("/Annots 99 0 R/Contents 7 0 R").stream(7, "", "q").open();
  readPage(source);
  EXPECT_THAT(numbers(source->pageContentObjs), ElementsAre(7));
}

// Harvest
// ------------------------------------------------------------------------------------------------------------------------

TEST(PageHarvest, ReachesEverythingButPages) {
  const Source source = pdf()
                            .onePage("/B 5 0 R")
                            .object(5, "<</P 3 0 R/Next 6 0 R/Parent 2 0 R>>")
                            .object(6, "[7 0 R 5 0 R]")
                            .object(7, "<<>>")
                            .open();
  readPage(source);
  EXPECT_THAT(harvested(source), ElementsAre(2, 5, 6, 7));
}

TEST(PageHarvest, StringsAreNotTakenForReferences) {
  const Source source =
      pdf().onePage("/B 5 0 R").object(5, "<</A( 6 0 R endobj )/C 7 0 R>>").object(7, "<<>>").open();
  readPage(source);
  EXPECT_THAT(harvested(source), ElementsAre(5, 7));
}

TEST(PageHarvest, StreamsDataIsNotLookedAt) {
  const Source source =
      pdf().onePage("/B 5 0 R").stream(5, "/A 6 0 R", "7 0 R").object(6, "<<>>").object(7, "<<>>").open();
  readPage(source);
  EXPECT_THAT(harvested(source), ElementsAre(5, 6));
}

TEST(PageHarvest, BodyWithoutALineEndBehindStreamTakesNothingElse) {
  const Source source = pdf()
                            .onePage("/B 5 0 R/C 6 0 R")
                            .object(5, "<</Length 3/A 7 0 R>>stream abc endstream")
                            .object(6, "<</A 8 0 R>>")
                            .object(7, "<<>>")
                            .object(8, "<<>>")
                            .open();
  readPage(source);
  EXPECT_THAT(harvested(source), ElementsAre(5, 6, 7, 8));
}

TEST(PageHarvest, ObjectsInObjectStreamsAreReachedToo) {
  const Source source = pdf()
                            .compressed(10, 1, "<</Type/Catalog/Pages 2 0 R>>")
                            .compressed(10, 2, "<</Type/Pages/Kids[3 0 R]>>")
                            .compressed(10, 3, "<</Type/Page/Parent 2 0 R/B 5 0 R/Contents 8 0 R>>")
                            .compressed(10, 5, "<</C[6 0 R]>>")
                            .object(6, "<</D 7 0 R>>")
                            .compressed(11, 7, "7")
                            .stream(8, "", "q")
                            .open();
  ASSERT_EQ(source.result, 0);
  readPage(source);
  EXPECT_THAT(harvested(source), ElementsAre(5, 6, 7, 8));
  EXPECT_THAT(numbers(source->pageContentObjs), ElementsAre(8));
}

TEST(PageHarvest, DanglingReferenceLosesWhatWasStillWaiting) {
  const Source source = pdf()
                            .onePage("/B[5 0 R 99 0 R 6 0 R]")
                            .object(5, "<</A 7 0 R>>")
                            .object(6, "<</A 8 0 R>>")
                            .object(7, "<<>>")
                            .object(8, "<<>>")
                            .open();
  EXPECT_FALSE(readPage(source));
  EXPECT_THAT(harvested(source), ElementsAre(5, 6, 7, 99));
}

TEST(PageHarvest, BrokenHeadLosesWhatWasStillWaiting) {
  std::string bytes = pdf().onePage("/B[5 0 R 6 0 R]").object(5, "<<>>").object(6, "<</A 7 0 R>>").build();
  bytes.replace(bytes.find("5 0 obj"), 7, "5 0 OBJ");
  const Source source = PdfBuilder::openBytes(bytes);
  EXPECT_FALSE(readPage(source));
  EXPECT_THAT(harvested(source), ElementsAre(5, 6));
  EXPECT_TRUE(source->good());
}

TEST(PageHarvest, LaterPageWalksOnlyWhatIsNew) {
  const Source source = pdf()
                            .pageTree({3, 4})
                            .object(3, "<</Type/Page/F 5 0 R>>")
                            .object(4, "<</Type/Page/F 5 0 R/G 7 0 R>>")
                            .object(5, "<</W 6 0 R>>")
                            .object(6, "[]")
                            .object(7, "<<>>")
                            .open();
  readPage(source, 1);
  source->newPageObjects.clear();
  source->erasePageObject(SObj(6, 0));
  readPage(source, 2);
  EXPECT_THAT(numbers(source->newPageObjects), ElementsAre(7));
}

TEST(PageHarvest, CollectionsOfThePageBeforeAreCleared) {
  const Source source = pdf()
                            .pageTree({3, 4})
                            .object(3, "<</Type/Page/Contents 5 0 R/Resources 6 0 R/Annots 7 0 R>>")
                            .object(4, "<</Type/Page>>")
                            .stream(5, "", "q")
                            .object(6, "<<>>")
                            .object(7, "[]")
                            .open();
  readPage(source, 1);
  source->destObjMap[{}] = {};
  readPage(source, 2);
  EXPECT_THAT(source->pageContentObjs, IsEmpty());
  EXPECT_THAT(source->pageContentSet, IsEmpty());
  EXPECT_THAT(source->pageResourceObjs, IsEmpty());
  EXPECT_THAT(source->pageAnnotObjs, IsEmpty());
  EXPECT_TRUE(source->destObjMap.empty());
  EXPECT_THAT(harvested(source), AllOf(Contains(5), Contains(6), Contains(7)));
}

TEST(PageHarvest, EmptySelectorsTakeNothingOut) {
  PieceInfoSelector selector{"a", "b", "", 5, 0, nullptr};
  EXPECT_FALSE(selector.match());
  EXPECT_THAT(pageOf("/B 5 0 R")->pieceFilteredObjs, IsEmpty());
}

}  // namespace
