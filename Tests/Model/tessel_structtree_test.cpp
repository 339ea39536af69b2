#include "TesselPage/Model/tessel_structtree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "TesselPage/Model/tessel_dpart.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "Tests/Model/model_verbs.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

/// Pages 3 and 4, with these entries of the catalog.
PdfBuilder withCatalog(const std::string& entries) {
  return pdf()
      .object(1, "<</Type/Catalog/Pages 2 0 R" + entries + ">>")
      .object(2, "<</Type/Pages/Kids[3 0 R 4 0 R]/Count 2>>")
      .object(3, "<</Type/Page>>")
      .object(4, "<</Type/Page>>");
}

std::map<int, int> byNumber(const std::map<SObj, SObj>& pages) {
  std::map<int, int> found;
  for (const auto& [node, page] : pages) found[node.objNum] = page.objNum;
  return found;
}

/// Elements and their pages; the tree's root is object 5.
std::map<int, int> elements(PdfBuilder builder) {
  const Source source = builder.open();
  structurePage(*source, SObj(6, 0));
  return byNumber(source->destLookup.elementPages);
}

PdfBuilder withElements(const std::string& root) {
  return withCatalog("/StructTreeRoot 5 0 R").object(5, root);
}

/// Parts and their pages; the root is object 5, its node 6.
std::map<int, int> parts(PdfBuilder builder) {
  const Source source = builder.open();
  documentPartPage(*source, SObj(6, 0));
  return byNumber(source->destLookup.partPages);
}

PdfBuilder withParts() {
  return withCatalog("/DPartRoot 5 0 R").object(5, "<</Type/DPartRoot/X 7 0 R/DPartRootNode 6 0 R>>");
}

// Structure
// ----------------------------------------------------------------------------------------------------------

TEST(StructTree, ElementHasItsOwnPage) {
  EXPECT_THAT(elements(withElements("<</K 6 0 R>>").object(6, "<</S/P/Pg 4 0 R>>")), ElementsAre(Pair(6, 4)));
}

TEST(StructTree, OwnPageStaysThoughKidsNameOthers) {
  for (const char* element : {"<</Pg 3 0 R/K[7 0 R]>>", "<</K[7 0 R]/Pg 3 0 R>>", "<</K 7 0 R/Pg 3 0 R>>"}) {
    const auto found = elements(withElements("<</K 6 0 R>>").object(6, element).object(7, "<</Pg 4 0 R>>"));
    EXPECT_THAT(found, ElementsAre(Pair(6, 3), Pair(7, 4))) << element;
  }
}

TEST(StructTree, ElementWithoutAPageHasThatOfItsFirstKidWithOne) {
  const auto found = elements(withElements("<</K[6 0 R]>>")
                                  .object(6, "<</K[7 0 R 0 8 0 R<</Type/MCR/MCID 1>>9 0 R]>>")
                                  .object(7, "<</K 1>>")
                                  .object(8, "<</Pg 4 0 R>>")
                                  .object(9, "<</Pg 3 0 R>>"));
  EXPECT_THAT(found, ElementsAre(Pair(6, 4), Pair(8, 4), Pair(9, 3)));
}

TEST(StructTree, IntegerKidIsNoneAndDoesNotEndTheRead) {
  EXPECT_THAT(elements(withElements("<</K 6 0 R>>").object(6, "<</K 3/Pg 4 0 R>>")), ElementsAre(Pair(6, 4)));
}

TEST(StructTree, ElementWithNoPageAnywhereHasNoEntry) {
  EXPECT_THAT(elements(withElements("<</K 6 0 R>>").object(6, "<</K 7 0 R>>").object(7, "<</K[1 2]>>")),
              IsEmpty());
}

TEST(StructTree, MarkedContentReferenceTellsThePage) {
  EXPECT_THAT(elements(withElements("<</K 6 0 R>>").object(6, "<</K<</Type/MCR/Pg 4 0 R/MCID 1>>/S/P>>")),
              ElementsAre(Pair(6, 4)));
}

TEST(StructTree, MarkedContentReferencesInTheArrayTellNoPage) {
  const auto element = "<</K[<</Type/MCR/Pg 4 0 R/MCID 1>>2<</K 7 0 R>>]/S/P>>";
  const auto builder = withElements("<</K 6 0 R>>").object(6, element).object(7, "<</Pg 3 0 R>>");
  EXPECT_THAT(elements(builder), ElementsAre(Pair(6, 3), Pair(7, 3)));
}

TEST(StructTree, KeysWithinStringsAreNone) {
  EXPECT_THAT(elements(withElements("<</K 6 0 R>>").object(6, "<</Alt(/Pg 3 0 R >> endobj)/Pg 4 0 R>>")),
              ElementsAre(Pair(6, 4)));
}

TEST(StructTree, RootMayHaveManyElementsAndStandInTheCatalog) {
  auto builder = withCatalog("/StructTreeRoot<</ParentTree 9 0 R/K[6 0 R 7 0 R]>>/Lang(en)/PageMode/None");
  builder.object(6, "<</Pg 3 0 R>>").object(7, "<</Pg 4 0 R>>");
  EXPECT_THAT(elements(builder), ElementsAre(Pair(6, 3), Pair(7, 4)));
}

TEST(StructTree, NodesInObjectStreamsAreReadAlike) {
  auto builder = withCatalog("/StructTreeRoot 5 0 R");
  builder.compressed(20, 5, "<</K 6 0 R>>")
      .compressed(20, 6, "<</K[7 0 R]>>")
      .compressed(20, 7, "<</Pg 4 0 R>>");
  EXPECT_THAT(elements(builder), ElementsAre(Pair(6, 4), Pair(7, 4)));
}

TEST(StructTree, CycleEndsWhereItCloses) {
  const auto found = elements(withElements("<</K 6 0 R>>")
                                  .object(6, "<</K[7 0 R]>>")
                                  .object(7, "<</K[6 0 R 7 0 R 8 0 R]>>")
                                  .object(8, "<</Pg 4 0 R>>"));
  EXPECT_THAT(found, ElementsAre(Pair(6, 4), Pair(7, 4), Pair(8, 4)));
}

TEST(StructTree, SharedKidIsReadOnceAndCountsTwice) {
  const auto found = elements(withElements("<</K[6 0 R 7 0 R]>>")
                                  .object(6, "<</K 8 0 R>>")
                                  .object(7, "<</K 8 0 R>>")
                                  .object(8, "<</Pg 4 0 R>>"));
  EXPECT_THAT(found, ElementsAre(Pair(6, 4), Pair(7, 4), Pair(8, 4)));
}

TEST(StructTree, DepthNeedsNoStack) {
  constexpr int depth = 20000;
  auto builder = withElements("<</K 6 0 R>>");
  for (int i = 6; i < 6 + depth; ++i) builder.object(i, "<</K " + std::to_string(i + 1) + " 0 R>>");
  builder.object(6 + depth, "<</Pg 4 0 R>>");
  const auto found = elements(builder);
  EXPECT_EQ(found.size(), depth + 1U);
  EXPECT_EQ(found.at(6), 4);
}

TEST(StructTree, BrokenTreeKeepsWhatWasRead) {
  const auto found = elements(withElements("<</K[6 0 R 7 0 R]>>")
                                  .object(6, "<</Pg 3 0 R>>")
                                  .object(7, "<</K[8 0 R 99 0 R]>>")
                                  .object(8, "<</Pg 4 0 R>>"));
  EXPECT_THAT(found, ElementsAre(Pair(6, 3), Pair(8, 4)));
}

TEST(StructTree, OpeningDoesNotWalkTheTree) {
  const Source source = withElements("<</K 6 0 R>>").object(6, "<</Pg 4 0 R>>").open();
  EXPECT_EQ(source->destLookup.structTree, SObj(5, 0));
  EXPECT_TRUE(source->destLookup.elementPages.empty());
  source->seekg(9);
  EXPECT_EQ(*structurePage(*source, SObj(6, 0)), SObj(4, 0));
  EXPECT_EQ(source->tellg(), 9);
  EXPECT_FALSE(source->destLookup.structTree.has_value());
}

TEST(StructTree, MissingTreeHasNoElements) {
  const Source source = withCatalog("/StructTreeRoot 99 0 R").open();
  EXPECT_EQ(source.result, 0);
  EXPECT_EQ(structurePage(*source, SObj(6, 0)), nullptr);
}

// Document parts
// ----------------------------------------------------------------------------------------------------------

TEST(DocumentParts, FirstLeafsPageIsThatOfEachNodeOnTheWay) {
  const auto found = parts(withParts()
                               .object(6, "<</Type/DPart/DParts[[7 0 R 8 0 R]]>>")
                               .object(7, "<</Type/DPart/Parent 6 0 R/DParts[[9 0 R]]>>")
                               .object(8, "<</Type/DPart/Parent 6 0 R/Start 3 0 R/End 3 0 R>>")
                               .object(9, "<</Type/DPart/Parent 7 0 R/Start 4 0 R>>"));
  EXPECT_THAT(found, ElementsAre(Pair(6, 4), Pair(7, 4), Pair(8, 3), Pair(9, 4)));
}

TEST(DocumentParts, StartInFrontOfTheKidsEndsTheRead) {
  const auto found =
      parts(withParts().object(6, "<</Start 3 0 R/DParts[[7 0 R]]>>").object(7, "<</Start 4 0 R>>"));
  EXPECT_THAT(found, ElementsAre(Pair(6, 3)));
}

TEST(DocumentParts, NodeWithoutAPageHasAnEntryWithoutOne) {
  EXPECT_THAT(parts(withParts().object(6, "<</Type/DPart>>")), ElementsAre(Pair(6, 0)));
}

TEST(DocumentParts, RootMayStandInTheCatalog) {
  auto builder = withCatalog("/DPartRoot<</DPartRootNode 6 0 R>>/Lang(en)").object(6, "<</Start 4 0 R>>");
  EXPECT_THAT(parts(builder), ElementsAre(Pair(6, 4)));
}

TEST(DocumentParts, CycleEndsWhereItCloses) {
  const auto found =
      parts(withParts().object(6, "<</DParts[[7 0 R]]>>").object(7, "<</DParts[[6 0 R 7 0 R]]>>"));
  EXPECT_THAT(found, ElementsAre(Pair(6, 0), Pair(7, 0)));
}

TEST(DocumentParts, DepthNeedsNoStack) {
  constexpr int depth = 20000;
  auto builder = withParts();
  for (int i = 6; i < 6 + depth; ++i) builder.object(i, "<</DParts[[" + std::to_string(i + 1) + " 0 R]]>>");
  builder.object(6 + depth, "<</Start 4 0 R>>");
  EXPECT_EQ(parts(builder).at(6), 4);
}

// Both
// ----------------------------------------------------------------------------------------------------------

TEST(PageTrees, NothingIsWritten) {
  const Source source = withCatalog("").open();
  CDestFile dest;
  CTag tag;
  CStructTreeRoot structRoot;
  CDPart part;
  CDPartRoot partRoot;
  for (CObj* reader : std::initializer_list<CObj*>{&tag, &structRoot, &part, &partRoot})
    EXPECT_TRUE(reader->Write(dest, *source));
  EXPECT_EQ(dest, "");
}

TEST(PageTrees, ReadersFillTheMapsByThemselves) {
  const Source source = withCatalog("")
                            .object(6, "<</K 7 0 R>>")
                            .object(7, "<</Pg 4 0 R>>")
                            .object(8, "<</Start 3 0 R>>")
                            .open();
  CTag tag(SObj(6, 0));
  tag.typeFlags = CObj::foundByTable;
  EXPECT_TRUE(tag.fromStream(*source));
  EXPECT_EQ(tag.page, SObj(4, 0));
  CDPart part(SObj(8, 0));
  part.typeFlags = CObj::foundByTable;
  EXPECT_TRUE(part.fromStream(*source));
  EXPECT_EQ(part.page, SObj(3, 0));
  EXPECT_THAT(byNumber(source->destLookup.elementPages), ElementsAre(Pair(6, 4), Pair(7, 4)));
}

}  // namespace
