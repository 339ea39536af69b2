#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "TesselPage/Model/tessel_pageobj.h"
#include "Tests/Interface/probed_page.h"
#include "Tests/Model/model_verbs.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

namespace {

struct Selectors {
  std::string a;
  std::string b;
  std::string c;
};

const Selectors wanted{"Ink", "alpha", "beta"};

bool matches(const PdfBuilder& builder, const Selectors& selectors, int number = 5) {
  const Source source = builder.open();
  PieceInfoSelector selector{selectors.a, selectors.b, selectors.c, number, 0, source.file.get()};
  return selector.match();
}

/// A document whose object 5 has this body.
PdfBuilder withObject(const std::string& body) { return pdf().onePage("/MediaBox[0 0 9 9]").object(5, body); }

// Texts
// ----------------------------------------------------------------------------------------------------------

struct SelectorCase {
  Selectors selectors;
  bool matches;
};
void PrintTo(const SelectorCase& c, std::ostream* out) {
  *out << c.selectors.a << " | " << c.selectors.b << " | " << c.selectors.c;
}

class PieceInfoText : public testing::TestWithParam<SelectorCase> {};

TEST_P(PieceInfoText, HoldsAllThreeAnywhere) {
  const auto builder = withObject("<</A(gamma)/PieceInfo<</Ink<</Private(alpha beta)>>>>/Z(delta)>>");
  EXPECT_EQ(matches(builder, GetParam().selectors), GetParam().matches);
}

INSTANTIATE_TEST_SUITE_P(Selectors, PieceInfoText,
                         testing::Values(SelectorCase{{"Ink", "alpha", "beta"}, true},
                                         SelectorCase{{"beta", "Ink", "alpha"}, true},
                                         SelectorCase{{"alpha", "alpha", "alpha"}, true},
                                         SelectorCase{{"a b", "<</I", ">>>>"}, true},
                                         SelectorCase{{"gamma", "alpha", "beta"}, false},
                                         SelectorCase{{"Ink", "gamma", "beta"}, false},
                                         SelectorCase{{"Ink", "alpha", "delta"}, false},
                                         SelectorCase{{"ink", "alpha", "beta"}, false},
                                         SelectorCase{{"Ink", "alpha", "alpha  beta"}, false}));

INSTANTIATE_TEST_SUITE_P(EmptyOnes, PieceInfoText,
                         testing::Values(SelectorCase{{"", "alpha", "beta"}, false},
                                         SelectorCase{{"Ink", "", "beta"}, false},
                                         SelectorCase{{"Ink", "alpha", ""}, false},
                                         SelectorCase{{"", "", ""}, false}));

TEST(PieceInfo, KeyIsPartOfTheText) {
  const auto builder = withObject("<</PieceInfo<</Ink 1>>/A 1>>");
  EXPECT_TRUE(matches(builder, {"/PieceInfo", "Ink", "1"}));
  EXPECT_TRUE(matches(builder, {"/PieceInfo\n<</Ink 1>>\n", "Ink", "1"}));
}

TEST(PieceInfo, EmptySelectorAsksNothing) {
  PieceInfoSelector selector{"Ink", "", "beta", 5, 0, nullptr};
  EXPECT_FALSE(selector.match());
}

// Where it is looked for
// ----------------------------------------------------------------------------------------------------------

struct BodyCase {
  const char* body;
  bool matches;
};

class PieceInfoPlace : public testing::TestWithParam<BodyCase> {};

TEST_P(PieceInfoPlace, IsLookedFor) {
  const auto builder = withObject(GetParam().body)
                           .object(7, "<</Ink(alpha beta)>>")
                           .object(8, "(alpha beta)")
                           .object(9, "7 0 R");
  EXPECT_EQ(matches(builder, wanted), GetParam().matches) << GetParam().body;
}

INSTANTIATE_TEST_SUITE_P(
    Found, PieceInfoPlace,
    testing::Values(BodyCase{"<</PieceInfo<</Ink(alpha beta)>>>>", true},
                    BodyCase{"<</PieceInfo<</Ink(alpha beta)>>", true},
                    BodyCase{"<</A 1/PieceInfo  <</Ink<</B(beta)/A(alpha)>>>>>>", true},
                    BodyCase{"<</PieceInfo 7 0 R>>", true}, BodyCase{"<</PieceInfo 9 0 R>>", true},
                    BodyCase{"<</X<</PieceInfo<</Ink(alpha beta)>>>>>>", true},
                    BodyCase{"[<</PieceInfo<</Ink(alpha beta)>>>>]", true},
                    BodyCase{"<</PieceInfo<</Ink 1>>/X<</PieceInfo<</Y(alpha beta)>>>>>>", true},
                    BodyCase{"<</PieceInfo<</Ink(alpha beta)>>/Length 3>>\nstream\nabc\nendstream", true}));

INSTANTIATE_TEST_SUITE_P(NotFound, PieceInfoPlace,
                         testing::Values(BodyCase{"<</A<</Ink(alpha beta)>>>>", false},
                                         BodyCase{"<</PieceInfo(Ink alpha beta)>>", false},
                                         BodyCase{"<</PieceInfo[(Ink alpha beta)]>>", false},
                                         BodyCase{"<</PieceInfos<</Ink(alpha beta)>>>>", false},
                                         BodyCase{"<</PieceInfo<</Ink 8 0 R>>>>", false},
                                         BodyCase{"<</X 7 0 R>>", false},
                                         BodyCase{"<</A 1>><</PieceInfo<</Ink(alpha beta)>>>>", false},

                                         BodyCase{"<</PieceInfo 8 0 R>>", false},
                                         BodyCase{"(Ink alpha beta)", false}, BodyCase{"7 0 R", false}));

TEST(PieceInfo, GenerationIsPartOfTheIdentity) {
  const Source source = pdf()
                            .onePage("/MediaBox[0 0 9 9]")
                            .object(PdfBuilder::Identity{5, 2}, "<</PieceInfo<</Ink(alpha beta)>>>>")
                            .open();
  EXPECT_TRUE((PieceInfoSelector{"Ink", "alpha", "beta", 5, 2, source.file.get()}).match());
  EXPECT_FALSE((PieceInfoSelector{"Ink", "alpha", "beta", 5, 0, source.file.get()}).match());
}

TEST(PieceInfo, ObjectInAnObjectStreamIsAsked) {
  EXPECT_TRUE(matches(pdf().onePage("").compressed(20, 5, "<</PieceInfo<</Ink(alpha beta)>>>>"), wanted));
}

TEST(PieceInfo, ObjectThatIsNotThereDoesNotMatch) { EXPECT_FALSE(matches(withObject("<<>>"), wanted, 99)); }

TEST(PieceInfo, ValueThatIsNotThereDoesNotMatch) {
  EXPECT_FALSE(matches(withObject("<</PieceInfo 99 0 R>>"), wanted));
  EXPECT_FALSE(matches(withObject("<</PieceInfo<</Ink(alpha beta)>>/X<</PieceInfo 99 0 R>>>>"), wanted));
}

// What the selection takes out of a page
// ----------------------------------------------------------------------------------------------------------

constexpr const char* inkObject = "<</PieceInfo<</Ink(alpha beta)>>/X 6 0 R>>";

/// Page 3 with these entries, page 4; object 5 is picked by `wanted` and leads to 6.
PdfBuilder withPage(const std::string& entries, const std::string& pagesEntries = {}) {
  return pdf()
      .pageTree({3, 4}, pagesEntries)
      .object(3, "<</Type/Page/Parent 2 0 R" + entries + ">>")
      .object(4, "<</Type/Page/Parent 2 0 R/B 5 0 R>>")
      .object(5, inkObject)
      .object(6, "<</Y 1>>");
}

bool select(const Source& source, const Selectors& selectors, std::size_t page = 1) {
  CPage reader;
  reader.selectorA = selectors.a;
  reader.selectorB = selectors.b;
  reader.selectorC = selectors.c;
  reader.setIdentity(source->pageList.at(page - 1));
  return reader.fromStream(*source);
}

Source selected(const PdfBuilder& builder, const Selectors& selectors = wanted) {
  Source source = builder.open();
  select(source, selectors);
  return source;
}

TEST(PieceSelection, PickedObjectIsEnteredAndNotWalked) {
  const Source source = selected(withPage("/B 5 0 R"));
  EXPECT_THAT(numbers(source->pieceFilteredObjs), ElementsAre(5));
  EXPECT_THAT(harvested(source), ElementsAre(5));
}

TEST(PieceSelection, OtherObjectsAreWalked) {
  const Source source = selected(withPage("/B 5 0 R"), {"Ink", "alpha", "gamma"});
  EXPECT_THAT(source->pieceFilteredObjs, IsEmpty());
  EXPECT_THAT(harvested(source), ElementsAre(5, 6));
}

TEST(PieceSelection, WithAnEmptySelectorNothingIsPicked) {
  for (const Selectors& selectors : {Selectors{}, Selectors{"Ink", "alpha", ""}, Selectors{"Ink", "", "beta"},
                                     Selectors{"", "alpha", "beta"}}) {
    const Source source = selected(withPage("/B 5 0 R"), selectors);
    EXPECT_THAT(source->pieceFilteredObjs, IsEmpty());
    EXPECT_THAT(harvested(source), ElementsAre(5, 6));
  }
}

struct EntryCase {
  const char* entries;
  ObjectNumbers picked;
};

class PieceSelectionOfKey : public testing::TestWithParam<EntryCase> {};

TEST_P(PieceSelectionOfKey, DependsOnTheKey) {
  const auto builder = withPage(GetParam().entries).object(8, "<</Z 5 0 R>>").object(9, "[5 0 R]");
  EXPECT_EQ(numbers(selected(builder)->pieceFilteredObjs), GetParam().picked) << GetParam().entries;
}

INSTANTIATE_TEST_SUITE_P(Asked, PieceSelectionOfKey,
                         testing::Values(EntryCase{"/B 5 0 R", {5}}, EntryCase{"/Resources 5 0 R", {5}},
                                         EntryCase{"/PieceInfo 5 0 R", {5}},
                                         EntryCase{"/Resources<</XObject<</F 5 0 R>>>>", {5}},
                                         EntryCase{"/Foo<</Contents 5 0 R>>", {5}},
                                         EntryCase{"/Foo[5 0 R]", {5}}, EntryCase{"/B 8 0 R", {5}},
                                         EntryCase{"/B 9 0 R", {5}},
                                         EntryCase{"/B 5 0 R/Contents 5 0 R", {5}}));

INSTANTIATE_TEST_SUITE_P(NotAsked, PieceSelectionOfKey,
                         testing::Values(EntryCase{"/Contents 5 0 R", {}},
                                         EntryCase{"/Contents 5 0 R/B 5 0 R", {}},
                                         EntryCase{"/Annots 9 0 R", {}}, EntryCase{"/Thumb 5 0 R", {}},
                                         EntryCase{"/Illustrator 5 0 R", {}}, EntryCase{"/Dest 5 0 R", {}},
                                         EntryCase{"", {}}));

TEST(PieceSelection, PickedResourcesStayThePagesResources) {
  const Source source = selected(withPage("/Resources 5 0 R"));
  EXPECT_THAT(numbers(source->pageResourceObjs), ElementsAre(5));
  EXPECT_THAT(harvested(source), ElementsAre(5));
}

TEST(PieceSelection, ResourcesOfAnAncestorAreAsked) {
  const Source source = selected(withPage("", "/Resources 5 0 R"));
  EXPECT_THAT(numbers(source->pieceFilteredObjs), ElementsAre(5));
  EXPECT_THAT(numbers(source->pageResourceObjs), ElementsAre(5));
  EXPECT_THAT(harvested(source), ElementsAre(5));
}

TEST(PieceSelection, ReferencesOfAnAncestorsDirectResourcesAreNotAsked) {
  const Source source = selected(withPage("", "/Resources<</XObject<</F 5 0 R>>>>"));
  EXPECT_THAT(source->pieceFilteredObjs, IsEmpty());
  EXPECT_THAT(harvested(source), ElementsAre(5, 6));
}

TEST(PieceSelection, ScanGoesOnBehindAPickedObject) {
  const auto builder = withPage("/B 5 0 R/C 8 0 R/Contents 9 0 R")
                           .object(8, "<</Z 5 0 R/Y 10 0 R>>")
                           .stream(9, "", "q")
                           .object(10, "[]");
  const Source source = selected(builder);
  EXPECT_THAT(harvested(source), ElementsAre(5, 8, 9, 10));
  EXPECT_THAT(numbers(source->pageContentObjs), ElementsAre(9));
}

TEST(PieceSelection, WalkGoesOnBehindAPickedObject) {
  const auto builder = withPage("/B 8 0 R").object(8, "<</Z 5 0 R/Y 10 0 R>>").object(10, "[]");
  const Source source = selected(builder);
  EXPECT_THAT(numbers(source->pieceFilteredObjs), ElementsAre(5));
  EXPECT_THAT(harvested(source), ElementsAre(5, 8, 10));
}

TEST(PieceSelection, PageInAnObjectStreamPicksToo) {
  const Source source = selected(pdf()
                                     .object(1, "<</Type/Catalog/Pages 2 0 R>>")
                                     .object(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>")
                                     .compressed(20, 3, "<</Type/Page/B 8 0 R/C 5 0 R/D 10 0 R>>")
                                     .compressed(20, 5, inkObject)
                                     .compressed(20, 8, "<</Z 5 0 R>>")
                                     .object(6, "<</Y 1>>")
                                     .object(10, "[]"));
  EXPECT_THAT(numbers(source->pieceFilteredObjs), ElementsAre(5));
  EXPECT_THAT(harvested(source), ElementsAre(5, 8, 10));
}

TEST(PieceSelection, SearchThatFailsPicksNothingAndTheHarvestGoesOn) {
  const auto builder =
      withPage("/B 8 0 R/C 9 0 R").object(8, "<</PieceInfo 99 0 R>>").object(9, "<</Y 6 0 R>>");
  const Source source = builder.open();
  EXPECT_NO_THROW(select(source, wanted));
  EXPECT_THAT(source->pieceFilteredObjs, IsEmpty());
  EXPECT_THAT(harvested(source), AllOf(Contains(6), Contains(8), Contains(9)));
}

TEST(PieceSelection, PagesAreNeverPicked) {
  const auto builder = withPage("/B 8 0 R")
                           .object(8, "<</P 4 0 R>>")
                           .object(4, "<</Type/Page/Parent 2 0 R/PieceInfo<</Ink(alpha beta)>>>>");
  const Source source = selected(builder);
  EXPECT_THAT(source->pieceFilteredObjs, IsEmpty());
  EXPECT_THAT(harvested(source), ElementsAre(8));
}

TEST(PieceSelection, PickedObjectsStayForLaterPages) {
  const Source source = selected(withPage("/B 5 0 R"));
  select(source, {}, 2);
  EXPECT_THAT(numbers(source->pieceFilteredObjs), ElementsAre(5));
  EXPECT_THAT(harvested(source), ElementsAre(5));
}

TEST(PieceSelection, ObjectThatAnEarlierPageBroughtIsNotAskedAgain) {
  const Source source = selected(withPage("/B 5 0 R"), {});
  select(source, wanted, 2);
  EXPECT_THAT(source->pieceFilteredObjs, IsEmpty());
}

// The whole road
// ----------------------------------------------------------------------------------------------------------

Probe selectedPage(const PdfBuilder& builder, const Selectors& selectors) {
  Probe opened = probe(builder);
  opened->state->pageStringA = selectors.a;
  opened->state->pageStringB = selectors.b;
  opened->state->pageStringC = selectors.c;
  EXPECT_EQ(opened->setPageNo(1), 0);
  opened->setStartObjNo(10);
  return opened;
}

TEST(PieceSelection, PickedObjectComesAsAnEmptyForm) {
  const auto builder = withPage("/Resources<</XObject<</F 5 0 R>>>>");
  EXPECT_THAT(texts(*selectedPage(builder, wanted)), ElementsAre(Pair(Identity(10, 0), emptyForm)));
  const Probe whole = selectedPage(builder, {});
  EXPECT_THAT(texts(*whole), testing::SizeIs(2));
  EXPECT_THAT(whole->at({10, 0}), HasSubstr("/PieceInfo<</Ink(alpha beta)>>"));
}

TEST(PieceSelection, ReferencesToAPickedObjectStay) {
  const Probe page = selectedPage(withPage("/B 8 0 R").object(8, "<</F 5 0 R>>"), wanted);
  EXPECT_THAT(texts(*page),
              ElementsAre(Pair(Identity(10, 0), emptyForm), Pair(Identity(11, 0), "<</F 10 0 R>>\n")));
}

TEST(PieceSelection, SearchThatFailsIsNoFailureOfThePage) {
  const Probe page = probe(withPage("/B 8 0 R").object(8, "<</PieceInfo 99 0 R>>"));
  page->state->pageStringA = page->state->pageStringB = page->state->pageStringC = "Ink";
  EXPECT_EQ(page->setPageNo(1), 0);
  EXPECT_THAT(numbers(page->state->sourFile->pageObjects), Contains(8));
}

}  // namespace
