#include "TesselPage/Model/tessel_dest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <ostream>
#include <string>

#include "TesselPage/Model/tessel_action.h"
#include "TesselPage/Model/tessel_dests.h"
#include "Tests/Model/model_verbs.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr float unchanged = std::numeric_limits<float>::max();

/// Pages 3 and 4; object 9 has this body.
PdfBuilder with(const std::string& body) {
  return pdf().pageTree({3, 4}).object(3, "<</Type/Page>>").object(4, "<</Type/Page>>").object(9, body);
}

struct View {
  int style = 2;
  float left = 0, top = 0, right = 0, bottom = 0;
  int page = 0;
  std::string name;

  bool operator==(const View&) const = default;
};

void PrintTo(const View& v, std::ostream* out) {
  *out << "style " << v.style << " [" << v.left << ' ' << v.top << ' ' << v.right << ' ' << v.bottom
       << "] page " << v.page << " (" << v.name << ')';
}

View viewOf(const SDestInfo& info) {
  return {info.style, info.left, info.top, info.right, info.bottom, info.page, info.name};
}

View viewOf(const DestTD& dest) {
  return {dest.style, dest.left, dest.top, dest.right, dest.bottom, dest.page, {}};
}

/// The destination that object 9 is.
View readDest(const PdfBuilder& builder) {
  const Source source = builder.open();
  CDest dest;
  dest.readReference(*source, SObj(9, 0));
  return viewOf(dest.info());
}

struct DestCase {
  const char* value;
  View view;
};

void PrintTo(const DestCase& c, std::ostream* out) { *out << c.value; }

class Destination : public testing::TestWithParam<DestCase> {};

TEST_P(Destination, IsReadAsAnObject) { EXPECT_EQ(readDest(with(GetParam().value)), GetParam().view); }

TEST_P(Destination, IsReadWhereItStands) {
  const Source source = with(std::string("<</Dest ") + GetParam().value + "/X(after)>>").open();
  CDest dest;
  source->seekg(source->fileInfo.GetObjState(9, 0).entryOffset);
  CFileBlock::FindStr(*source, "/Dest");
  const auto place = source->tellg();
  dest.readValue(*source, SObj(9, 0));
  EXPECT_EQ(viewOf(dest.info()), GetParam().view);
  EXPECT_EQ(source->tellg(), place);
  EXPECT_TRUE(source->good());
}

TEST_P(Destination, IsReadOutOfAnObjectStream) {
  auto builder = pdf().pageTree({3, 4}).object(3, "<</Type/Page>>").object(4, "<</Type/Page>>");
  builder.compressed(20, 9, GetParam().value);
  EXPECT_EQ(readDest(builder), GetParam().view);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, Destination,
    testing::Values(
        DestCase{"[3 0 R /XYZ null null null]", {1, unchanged, unchanged, unchanged, 0, 1, ""}},
        DestCase{"[3 0 R /XYZ 10 20 1.5]", {1, 10, 20, 1.5F, 0, 1, ""}},
        DestCase{"[4 0 R/XYZ null 20 0]", {1, unchanged, 20, 0, 0, 2, ""}},
        DestCase{"[4 0 R/XYZ 10 nil 2]", {1, 10, 0, 2, 0, 2, ""}},
        DestCase{"[4 0 R/XYZ 10]", {1, 10, 0, 0, 0, 2, ""}}, DestCase{"[4 0 R /Fit]", {2, 0, 0, 0, 0, 2, ""}},
        DestCase{"[4 0 R /FitH 700]", {3, 700, 0, 0, 0, 2, ""}},
        DestCase{"[4 0 R /FitH null]", {3, 0, 0, 0, 0, 2, ""}},
        DestCase{"[4 0 R /FitV -5.5]", {4, -5.5F, 0, 0, 0, 2, ""}},
        DestCase{"[3 0 R /FitR 1 2 3 4]", {5, 1, 2, 3, 4, 1, ""}},
        DestCase{"[3 0 R /FitR 1 2]", {5, 1, 2, 0, 0, 1, ""}},
        DestCase{"[4 0 R /FitB]", {6, 0, 0, 0, 0, 2, ""}},
        DestCase{"[4 0 R /FitBH 8]", {7, 8, 0, 0, 0, 2, ""}},
        DestCase{"[4 0 R /FitBV 9]", {8, 9, 0, 0, 0, 2, ""}}, DestCase{"[null /Fit]", {2, 0, 0, 0, 0, 0, ""}},
        DestCase{"[null /FitH 3]", {3, 3, 0, 0, 0, 0, ""}}, DestCase{"[99 0 R /Fit]", {2, 0, 0, 0, 0, 0, ""}},
        DestCase{"[2 0 R /FitB]", {6, 0, 0, 0, 0, 0, ""}}, DestCase{"[0 /FitV 3]", {4, 3, 0, 0, 0, 0, ""}},
        DestCase{"[4 0 R]", {2, 0, 0, 0, 0, 2, ""}},
        DestCase{"[4 0 R /Other 5 /FitH 6]", {3, 6, 0, 0, 0, 2, ""}},
        DestCase{"<</D[4 0 R/FitH 5]>>", {3, 5, 0, 0, 0, 2, ""}},
        DestCase{"(chapter (one) and \\) more)", {2, 0, 0, 0, 0, 0, "chapter (one) and ) more"}},
        DestCase{"(a\\(b (c) d)", {2, 0, 0, 0, 0, 0, "a(b (c) d"}},
        DestCase{"<63 6861 70>", {2, 0, 0, 0, 0, 0, "chap"}}, DestCase{"/Chapter", {2, 0, 0, 0, 0, 0, ""}},
        DestCase{"null", {2, 0, 0, 0, 0, 0, ""}}, DestCase{"7", {2, 0, 0, 0, 0, 0, ""}}));

TEST(Dest, FollowsAChainOfReferences) {
  EXPECT_EQ(readDest(with("10 0 R").object(10, "11 0 R").object(11, "[4 0 R/FitH 5]")),
            (View{3, 5, 0, 0, 0, 2, ""}));
  EXPECT_EQ(readDest(with("11 0 R").object(10, "[4 0 R/FitH 5]").object(11, "10 0 R")),
            (View{3, 5, 0, 0, 0, 2, ""}));
}

TEST(Dest, ChainThatClosesIsNone) {
  EXPECT_EQ(readDest(with("10 0 R").object(10, "9 0 R")), View{});
  EXPECT_EQ(readDest(with("9 0 R")), View{});
}

TEST(Dest, StopsAtTheNextObjectWithoutAnEnd) {
  auto file = with("[4 0 R endob").object(10, "[3 0 R /FitH 5]").build();
  const Source source = PdfBuilder::openBytes(file);
  CDest dest;
  dest.readReference(*source, SObj(9, 0));
  EXPECT_EQ(viewOf(dest.info()), (View{2, 0, 0, 0, 0, 2, ""}));
}

TEST(Dest, StyleIsStoredByItsName) {
  CDest dest;
  EXPECT_TRUE(dest.GetDestStyle("/FitBV"));
  EXPECT_EQ(dest.style, 8);
  EXPECT_FALSE(dest.GetDestStyle("/Fits"));
  EXPECT_FALSE(dest.GetDestStyle("Fit"));
  EXPECT_EQ(dest.style, 8);
}

TEST(Dest, ElementThatIsNoPageMayBeAStructureElement) {
  auto builder = pdf().object(1, "<</Type/Catalog/Pages 2 0 R/StructTreeRoot 5 0 R>>");
  builder.object(2, "<</Type/Pages/Kids[3 0 R 4 0 R]/Count 2>>")
      .object(3, "<</Type/Page>>")
      .object(4, "<</Type/Page>>");
  builder.object(5, "<</K 6 0 R>>").object(6, "<</S/P/Pg 4 0 R>>").object(9, "[6 0 R/FitH 5]");
  EXPECT_EQ(readDest(builder), (View{3, 5, 0, 0, 0, 2, ""}));
}

// Actions
// ----------------------------------------------------------------------------------------------------------

/// Stands for a destination that wasn't recorded.
const View noView{-1, 0, 0, 0, 0, -1, ""};

struct ReadAction {
  Source source;
  bool result = false;

  View view(int number = 9) const {
    const auto found = source->destObjMap.find({SObj(number, 0), 0});
    return found == source->destObjMap.end() ? noView : viewOf(found->second);
  }
};

ReadAction readAction(const PdfBuilder& builder) {
  ReadAction read{builder.open()};
  CAction action;
  action.id = action.key = SObj(9, 0);
  action.typeFlags = CObj::foundByTable;
  read.result = action.fromStream(*read.source);
  return read;
}

struct ActionCase {
  const char* dictionary;
  View view;  ///< noView: none is recorded
};

void PrintTo(const ActionCase& c, std::ostream* out) { *out << c.dictionary; }

class Action : public testing::TestWithParam<ActionCase> {};

TEST_P(Action, RecordsWhereItGoes) {
  const ReadAction read = readAction(with(GetParam().dictionary));
  EXPECT_TRUE(read.result);
  EXPECT_EQ(read.view(), GetParam().view);
  EXPECT_EQ(read.source->actionObjs.size(), GetParam().view == noView ? 0U : 1U);
}

TEST_P(Action, IsReadOutOfAnObjectStreamAlike) {
  auto builder = pdf().pageTree({3, 4}).object(3, "<</Type/Page>>").object(4, "<</Type/Page>>");
  builder.compressed(20, 9, GetParam().dictionary);
  EXPECT_EQ(readAction(builder).view(), GetParam().view);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, Action,
    testing::Values(ActionCase{"<</S/GoTo/D[4 0 R/FitH 5]>>", {3, 5, 0, 0, 0, 2, ""}},
                    ActionCase{"<</D[4 0 R/FitH 5]/S/GoTo>>", {3, 5, 0, 0, 0, 2, ""}},
                    ActionCase{"<</S/GoTo/D(name)>>", {2, 0, 0, 0, 0, 0, "name"}},
                    ActionCase{"<</S/GoTo>>", {2, 0, 0, 0, 0, 0, ""}},
                    ActionCase{"<</S/GoTo/SD[3 0 R/FitV 1]/D[4 0 R/FitH 5]>>", {4, 1, 0, 0, 0, 1, ""}},
                    ActionCase{"<</S/GoTo/D[4 0 R/FitH 5]/SD[3 0 R/FitV 1]>>", {4, 1, 0, 0, 0, 1, ""}},
                    ActionCase{"<</S/GoTo/X<</D[3 0 R/Fit]/S/URI>>/D[4 0 R/FitB]>>", {6, 0, 0, 0, 0, 2, ""}},
                    ActionCase{"<</S/GoTo/X(/S/URI /D[3 0 R/Fit] >>)/D[4 0 R/FitB]>>",
                               {6, 0, 0, 0, 0, 2, ""}},
                    ActionCase{"<</S/URI/URI(x)>>", noView}, ActionCase{"<</S/GoToR/D[0/Fit]>>", noView},
                    ActionCase{"<</S/Launch/D[4 0 R/Fit]>>", noView},
                    ActionCase{"<</D[4 0 R/Fit]>>", noView}));

TEST(ActionType, IsGoToForTheTwoThatStayInTheDocument) {
  CAction action;
  for (const char* name : {"/GoTo", "/GoToDp"}) {
    action.getActionType(name);
    EXPECT_EQ(action.type, 0) << name;
  }
  for (const char* name : {"/GoToR", "/GoToE", "/URI", "", "/goto"}) {
    action.getActionType(name);
    EXPECT_EQ(action.type, 8) << name;
  }
}

TEST(ActionRead, DestinationMayBeAnObject) {
  EXPECT_EQ(readAction(with("<</S/GoTo/D 10 0 R>>").object(10, "[4 0 R/FitH 5]")).view(),
            (View{3, 5, 0, 0, 0, 2, ""}));
}

TEST(ActionRead, DocumentPartLeadsToItsFirstPage) {
  auto builder = pdf().object(1, "<</Type/Catalog/Pages 2 0 R/DPartRoot 5 0 R>>");
  builder.object(2, "<</Type/Pages/Kids[3 0 R 4 0 R]/Count 2>>")
      .object(3, "<</Type/Page>>")
      .object(4, "<</Type/Page>>");
  builder.object(5, "<</DPartRootNode 6 0 R>>")
      .object(6, "<</Start 4 0 R>>")
      .object(9, "<</S/GoToDp/Dp 6 0 R>>");
  EXPECT_EQ(readAction(builder).view(), (View{2, 0, 0, 0, 0, 2, ""}));
  builder.object(8, "<<>>");
}

TEST(ActionRead, UnknownDocumentPartHasNoPage) {
  EXPECT_EQ(readAction(with("<</S/GoToDp/Dp 6 0 R>>")).view(), View{});
}

TEST(ActionRead, FollowingActionsAreReadUnderTheirOwnIdentity) {
  const auto read = readAction(with("<</S/URI/Next 10 0 R>>")
                                   .object(10, "<</S/GoTo/D[3 0 R/Fit]/Next 11 0 R>>")
                                   .object(11, "<</S/GoTo/D[4 0 R/Fit]>>"));
  EXPECT_EQ(read.view(9), noView);
  EXPECT_EQ(read.view(10).page, 1);
  EXPECT_EQ(read.view(11).page, 2);
  EXPECT_TRUE(read.source->actionObjs.contains({10, 0}));
  EXPECT_TRUE(read.source->actionObjs.contains({11, 0}));
  EXPECT_EQ(read.source->actionObjs.size(), 2U);
}

TEST(ActionRead, OfTwoActionsAtOneIdentityTheFirstStays) {
  EXPECT_EQ(readAction(with("<</S/GoTo/D[4 0 R/FitH 5]/Next<</S/GoTo/D[3 0 R/Fit]>>>>")).view(),
            (View{3, 5, 0, 0, 0, 2, ""}));
  EXPECT_EQ(readAction(with("<</S/GoTo/Next<</S/GoTo/D[3 0 R/Fit]>>/D[4 0 R/FitH 5]>>")).view(),
            (View{3, 5, 0, 0, 0, 2, ""}));
}

TEST(ActionRead, DirectFollowingActionMayBeTheOneThatGoes) {
  EXPECT_EQ(readAction(with("<</S/URI/Next<</S/GoTo/D[4 0 R/Fit]>>>>")).view().page, 2);
}

TEST(ActionRead, ChainThatClosesEndsThere) {
  const auto read = readAction(
      with("<</S/GoTo/D[3 0 R/Fit]/Next 10 0 R>>").object(10, "<</S/GoTo/D[4 0 R/Fit]/Next 9 0 R>>"));
  EXPECT_TRUE(read.result);
  EXPECT_EQ(read.view(10).page, 2);
}

TEST(ActionRead, LongChainsNeedNoStack) {
  constexpr int length = 20000;
  auto builder = with("<</S/URI/Next 10 0 R>>");
  for (int i = 10; i < 10 + length; ++i)
    builder.object(i, "<</S/URI/Next " + std::to_string(i + 1) + " 0 R>>");
  builder.object(10 + length, "<</S/GoTo/D[4 0 R/Fit]>>");
  EXPECT_EQ(readAction(builder).view(10 + length).page, 2);
}

TEST(ActionRead, MissingFollowingActionIsPassedOver) {
  const auto read = readAction(with("<</S/GoTo/D[4 0 R/Fit]/Next 99 0 R>>"));
  EXPECT_TRUE(read.result);
  EXPECT_EQ(read.view().page, 2);
}

TEST(ActionRead, FileThatEndsWithinItFails) {
  const std::string file = with("<</S/GoTo/D[4 0 R/Fit]").build();
  const Source source = PdfBuilder::openBytes(file);
  CSourFile cut(std::string("<</S/GoTo/D[4 0 R/Fit]"), *source);
  CAction action;
  EXPECT_FALSE(action.fromStream(cut));
}

// Names
// ----------------------------------------------------------------------------------------------------------

/// The tree's root is object 5; the catalog's second pass has run.
Source withTree(PdfBuilder builder) {
  builder.object(1, "<</Type/Catalog/Pages 2 0 R/Names<</Dests 5 0 R>>>>");
  builder.object(2, "<</Type/Pages/Kids[3 0 R 4 0 R]/Count 2>>")
      .object(3, "<</Type/Page>>")
      .object(4, "<</Type/Page>>");
  builder.object(9, "[3 0 R/FitH 9]").object(10, "[4 0 R/FitV 10]");
  Source source = builder.open();
  source->catalogObj->fromStream(*source);
  return source;
}

View named(const Source& source, const std::string& name) {
  DestTD dest;
  EXPECT_TRUE(source->getNameDest(name, dest));
  EXPECT_EQ(dest.objNum, 0);
  return viewOf(dest);
}

constexpr int notFound = 0;

TEST(NameTree, NamesOfTheRootAreFound) {
  const Source source = withTree(pdf().object(5, "<</Names[(a)9 0 R(b)10 0 R]>>"));
  EXPECT_EQ(named(source, "a"), (View{3, 9, 0, 0, 0, 1, ""}));
  EXPECT_EQ(named(source, "b"), (View{4, 10, 0, 0, 0, 2, ""}));
  EXPECT_EQ(named(source, "c"), View{});
}

TEST(NameTree, EmptyNameIsNone) {
  const Source source = withTree(pdf().object(5, "<</Names[(a)9 0 R]>>"));
  DestTD dest;
  dest.page = 77;
  EXPECT_FALSE(source->getNameDest("", dest));
  EXPECT_EQ(dest.page, 77);
}

TEST(NameTree, PositionIsKept) {
  const Source source = withTree(pdf().object(5, "<</Names[(a)9 0 R]>>"));
  source->seekg(17);
  named(source, "a");
  EXPECT_EQ(source->tellg(), 17);
}

TEST(NameTree, RootKnowsNoHexadecimalNamesAndCutsAtTheFirstParenthesis) {
  const Source source = withTree(pdf().object(5, "<</Names[<61>9 0 R(b(c)d)10 0 R]>>"));
  EXPECT_EQ(named(source, "a").page, notFound);
  EXPECT_EQ(named(source, "b(c").page, 2);
}

TEST(NameTree, OtherNodesDecodeTheirNames) {
  const Source source =
      withTree(pdf()
                   .object(5, "<</Kids[6 0 R]>>")
                   .object(6, "<</Limits[(a)(z)]/Names[<61>9 0 R(b\\(c\\))10 0 R(d(e)f)9 0 R]>>"));
  EXPECT_EQ(named(source, "a").page, 1);
  EXPECT_EQ(named(source, "b(c)").page, 2);
  EXPECT_EQ(named(source, "d(e)f").page, 1);
}

TEST(NameTree, TreeOfThreeLevelsIsWalkedWithinTheLimits) {
  const Source source = withTree(pdf()
                                     .object(5, "<</Kids[6 0 R 7 0 R]>>")
                                     .object(6, "<</Limits[(a)(f)]/Kids[8 0 R]>>")
                                     .object(7, "<</Limits[(g)(z)]/Names[(m)10 0 R]>>")
                                     .object(8, "<</Limits[(a)(f)]/Names[(c)9 0 R]>>"));
  EXPECT_EQ(named(source, "m").page, 2);
  EXPECT_EQ(source->destLookup.nodesRead.count(SObj(8, 0)), 0U);
  EXPECT_EQ(named(source, "c").page, 1);
}

TEST(NameTree, NameOutsideOfItsNodesLimitsIsNotFound) {
  const Source source =
      withTree(pdf().object(5, "<</Kids[6 0 R]>>").object(6, "<</Limits[(b)(c)]/Names[(a)9 0 R(b)10 0 R]>>"));
  EXPECT_EQ(named(source, "a").page, notFound);
}

TEST(NameTree, NodeThatWasScannedHandsOverAllItsNames) {
  const Source source =
      withTree(pdf().object(5, "<</Kids[6 0 R]>>").object(6, "<</Limits[(b)(c)]/Names[(a)9 0 R(b)10 0 R]>>"));
  EXPECT_EQ(named(source, "b").page, 2);
  EXPECT_EQ(named(source, "a").page, 1);
}

TEST(NameTree, NamesInFrontOfTheLimitsCount) {
  const Source source =
      withTree(pdf().object(5, "<</Kids[6 0 R]>>").object(6, "<</Names[(a)9 0 R]/Limits[(b)(c)]>>"));
  EXPECT_EQ(named(source, "a").page, 1);
}

TEST(NameTree, ValueThatIsNoReferenceIsPassedOver) {
  const Source source = withTree(pdf().object(5, "<</Names[(a)[9 0 R/Fit](b)10 0 R]>>"));
  EXPECT_EQ(named(source, "a").page, notFound);
  EXPECT_EQ(named(source, "b").page, 2);
}

TEST(NameTree, ValueMayBeADictionary) {
  const Source source = withTree(pdf().object(5, "<</Names[(a)11 0 R]>>").object(11, "<</D[4 0 R/FitH 3]>>"));
  EXPECT_EQ(named(source, "a"), (View{3, 3, 0, 0, 0, 2, ""}));
}

TEST(NameTree, SecondLookUpReadsNoTree) {
  std::string file;
  const Source source =
      withTree(pdf().object(5, "<</Kids[6 0 R]>>").object(6, "<</Names[(a)9 0 R(b)10 0 R]>>"));
  named(source, "a");
  const auto nodes = source->destLookup.nodesRead.size();
  source->destLookup.outOfRange.clear();
  source->catalogObj->names.dests = SObj();
  EXPECT_EQ(named(source, "b").page, 2);
  EXPECT_EQ(source->destLookup.nodesRead.size(), nodes);
}

TEST(NameTree, FirstOfEqualNamesCounts) {
  const Source source = withTree(pdf().object(5, "<</Names[(a)9 0 R(a)10 0 R]>>"));
  EXPECT_EQ(named(source, "a").page, 1);
}

TEST(NameTree, KidsThatLoopAreReadOnce) {
  const Source source = withTree(pdf()
                                     .object(5, "<</Kids[6 0 R]>>")
                                     .object(6, "<</Kids[5 0 R 6 0 R 7 0 R]>>")
                                     .object(7, "<</Names[(a)9 0 R]>>"));
  EXPECT_EQ(named(source, "a").page, 1);
  EXPECT_EQ(named(source, "x").page, notFound);
}

TEST(NameTree, MissingKidEndsTheWalk) {
  const Source source = withTree(pdf()
                                     .object(5, "<</Kids[6 0 R 99 0 R 7 0 R]>>")
                                     .object(6, "<</Names[(a)9 0 R]>>")
                                     .object(7, "<</Names[(b)9 0 R]>>"));
  EXPECT_EQ(named(source, "a").page, 1);
  EXPECT_EQ(named(source, "b").page, notFound);
}

TEST(NameTree, NameIsUnknownBeforeTheNamesAreRead) {
  auto builder = pdf().object(1, "<</Type/Catalog/Pages 2 0 R/Names<</Dests 5 0 R>>>>");
  builder.object(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>")
      .object(3, "<</Type/Page>>")
      .object(5, "<</Names[(a)9 0 R]>>");
  builder.object(9, "[3 0 R/Fit]");
  const Source source = builder.open();
  EXPECT_EQ(named(source, "a").page, notFound);
  source->catalogObj->fromStream(*source);
  EXPECT_EQ(named(source, "a").page, 1);
}

TEST(NameTree, ManyLookUpsOfManyNamesAreCheap) {
  constexpr int nodes = 200;
  constexpr int each = 50;
  auto builder = pdf();
  std::string kids;
  const auto name = [](int i) { return "n" + std::to_string(100000 + i); };
  for (int node = 0; node < nodes; ++node) {
    std::string names;
    for (int i = 0; i < each; ++i) names += "(" + name(node * each + i) + ")9 0 R";
    builder.object(100 + node, "<</Names[" + names + "]/Limits[(" + name(node * each) + ")(" +
                                   name(node * each + each - 1) + ")]>>");
    kids += std::to_string(100 + node) + " 0 R ";
  }
  const Source source = withTree(builder.object(5, "<</Kids[" + kids + "]>>"));
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < nodes * each; ++i) {
    named(source, name(i));
    named(source, name(i) + "x");
  }
  EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 5);
}

}  // namespace
