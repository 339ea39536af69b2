#include <gtest/gtest.h>

#include <string>

#include "Tests/Interface/probed_page.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

const unsigned char key16[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

Probe selected(const PdfBuilder& builder) {
  Probe opened = probe(builder);
  opened->setPageNo(1);
  return opened;
}

/// The page's content; the result as text when it isn't 0.
std::string contents(const Probe& opened) {
  const std::string* out = nullptr;
  const int result = opened->getPageContents(&out);
  return result != 0 ? std::to_string(result) : *out;
}

std::string contents(const PdfBuilder& builder) { return contents(selected(builder)); }

/// The content of a page whose only stream has these entries and data.
std::string contentsOf(const std::string& entries, const std::string& data) {
  return contents(pdf().onePage("/Contents 4 0 R").stream(4, entries, data));
}

std::string resources(const Probe& opened, int pageObjNo = 0) {
  const std::string* out = nullptr;
  const int result = opened->getPageRes(&out, pageObjNo);
  return result != 0 ? std::to_string(result) : *out;
}

std::string resources(const PdfBuilder& builder, int pageObjNo = 0) {
  return resources(harvest(builder), pageObjNo);
}

// Content.

TEST(PageContents, APageWithoutContentGivesAnEmptyText) { EXPECT_EQ(contents(pdf().onePage("")), ""); }

TEST(PageContents, AnUnfilteredStreamComesWithItsLineEndsAndACarriageReturn) {
  EXPECT_EQ(contentsOf("", "q Q"), "\r\nq Q\n\r");
}

TEST(PageContents, AFilteredStreamIsDecoded) {
  EXPECT_EQ(contentsOf("/Filter/FlateDecode", deflated("q Q")), "q Q\r");
  EXPECT_EQ(contentsOf("/Filter /AHx ", "71 20 51>"), "q Q\r");
  EXPECT_EQ(contentsOf("/Filter[/AHx]", "71 20 51>"), "q Q\r");
}

TEST(PageContents, AChainOfFiltersIsDecodedInItsOrder) {
  std::string digits;
  for (const char c : deflated("q Q")) {
    static constexpr char hex[] = "0123456789abcdef";
    digits += {hex[static_cast<unsigned char>(c) >> 4], hex[static_cast<unsigned char>(c) & 15]};
  }
  EXPECT_EQ(contentsOf("/Filter[/AHx/Fl]", digits + ">"), "q Q\r");
}

TEST(PageContents, ParametersBehindTheFilterCount) {
  EXPECT_EQ(
      contentsOf("/Filter/FlateDecode/DecodeParms<</Predictor 12/Columns 3>>", deflated("\2abc\2\1\1\1")),
      "abcbcd\r");
}

TEST(PageContents, ParametersBeforeTheFilterAreNotSeen) {
  EXPECT_EQ(contentsOf("/DecodeParms<</Predictor 12/Columns 3>>/Filter/FlateDecode", deflated("\2abc")),
            "\2abc\r");
}

TEST(PageContents, AnUnknownFilterLeavesTheDataTrimmed) {
  EXPECT_EQ(contentsOf("/Filter/Unknown", "abc"), "abc\r");
  EXPECT_EQ(contentsOf("/Filter/ASCIIHexDecode", "71>"), "71>\r");
}

TEST(PageContents, StreamsOfAnArrayAreJoined) {
  EXPECT_EQ(contents(pdf()
                         .onePage("/Contents[4 0 R 5 0 R]")
                         .stream(4, "/Filter/FlateDecode", deflated("q"))
                         .stream(5, "", "Q")),
            "q\r\r\nQ\n\r");
}

TEST(PageContents, AFilteredStreamOfNothingGivesItsCarriageReturnAlone) {
  EXPECT_EQ(contents(pdf()
                         .onePage("/Contents[4 0 R 5 0 R]")
                         .stream(4, "/Filter/FlateDecode", deflated("q"))
                         .stream(5, "/Filter/FlateDecode", "")),
            "q\r\r");
}

TEST(PageContents, AnArrayThatIsAnObjectAddsACarriageReturn) {
  EXPECT_EQ(contents(pdf()
                         .onePage("/Contents 5 0 R")
                         .object(5, "[6 0 R 7 0 R]")
                         .stream(6, "/Filter/AHx", "71>")
                         .stream(7, "/Filter/AHx", "51>")),
            "\rq\rQ\r");
}

TEST(PageContents, AMissingStreamGivesItsCarriageReturnAlone) {
  EXPECT_EQ(contents(pdf().onePage("/Contents 90 0 R")), "\r");
}

TEST(PageContents, AStreamNamedTwiceComesOnce) {
  EXPECT_EQ(contents(pdf().onePage("/Contents[4 0 R 4 0 R]").stream(4, "/Filter/AHx", "71>")), "q\r");
}

TEST(PageContents, AStreamTakenOutPaintsNothing) {
  const Probe opened = selected(pdf().onePage("/Contents 4 0 R").stream(4, "/Filter/AHx", "71>"));
  opened->state->sourFile->pieceFilteredObjs.insert(SObj(4, 0));
  EXPECT_EQ(contents(opened), "\r\n\r");
}

TEST(PageContents, DamagedDataIsReportedAndTheOutputStays) {
  const Probe opened = selected(pdf()
                                    .onePage("/Contents[4 0 R 5 0 R]")
                                    .stream(4, "/Filter/AHx", "71>")
                                    .stream(5, "/Filter/FlateDecode", "\x78\x9c\x07\xff\xff"));
  const std::string* out = nullptr;
  EXPECT_EQ(opened->getPageContents(&out), 5000);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(opened->state->contentsString, "q\r");
}

TEST(PageContents, IsInTheClearUnderAKey) {
  const Probe opened = selected(pdf().onePage("/Contents 4 0 R").stream(4, "", "q Q"));
  opened->setEncryptKey(key16, 16, 4);
  opened->setStartObjNo(10);
  EXPECT_EQ(contents(opened), "\r\nq Q\n\r");
}

TEST(PageContents, TheNextPageOverwritesTheSameText) {
  const Probe opened = selected(pdf()
                                    .pageTree({3, 4})
                                    .object(3, "<</Type/Page/Parent 2 0 R/Contents 5 0 R>>")
                                    .object(4, "<</Type/Page/Parent 2 0 R/Contents 6 0 R>>")
                                    .stream(5, "/Filter/AHx", "71>")
                                    .stream(6, "/Filter/AHx", "51>"));
  const std::string *first = nullptr, *second = nullptr;
  opened->getPageContents(&first);
  EXPECT_EQ(*first, "q\r");
  opened->setPageNo(2);
  opened->getPageContents(&second);
  EXPECT_EQ(first, second);
  EXPECT_EQ(*first, "Q\r");
}

// Content as it is stored.

struct Stored {
  bool given;
  std::string data, filters;
};

Stored stored(const PdfBuilder& builder) {
  Stored found{false, "untouched", "untouched"};
  found.given = selected(builder)->getStoredContents(found.data, found.filters);
  return found;
}

TEST(StoredContents, GivesTheOnlyStreamWithItsFilter) {
  const Stored found =
      stored(pdf().onePage("/Contents 4 0 R").stream(4, "/Filter/FlateDecode", deflated("q Q")));
  EXPECT_TRUE(found.given);
  EXPECT_EQ(found.data, deflated("q Q"));
  EXPECT_NE(found.filters.find("/Filter"), std::string::npos);
  EXPECT_NE(found.filters.find("/FlateDecode"), std::string::npos);
}

TEST(StoredContents, KeepsTheParameters) {
  const Stored found =
      stored(pdf()
                 .onePage("/Contents 4 0 R")
                 .stream(4, "/DecodeParms<</Predictor 12/Columns 3>>/Filter/FlateDecode", deflated("\2abc")));
  EXPECT_TRUE(found.given);
  EXPECT_NE(found.filters.find("/DecodeParms"), std::string::npos);
  EXPECT_NE(found.filters.find("/Predictor 12/Columns 3"), std::string::npos);
}

TEST(StoredContents, GivesAnUnfilteredStreamWithoutEntries) {
  const Stored found = stored(pdf().onePage("/Contents 4 0 R").stream(4, "", "q Q"));
  EXPECT_TRUE(found.given);
  EXPECT_EQ(found.data, "q Q");
  EXPECT_EQ(found.filters, "");
}

TEST(StoredContents, NeedsExactlyOneReadableStream) {
  EXPECT_FALSE(stored(pdf().onePage("")).given);
  EXPECT_FALSE(stored(pdf().onePage("/Contents 90 0 R")).given);
  EXPECT_FALSE(stored(pdf().onePage("/Contents[4 0 R 5 0 R]").stream(4, "", "q").stream(5, "", "Q")).given);
}

TEST(StoredContents, NeedsItsFilterInPlace) {
  EXPECT_FALSE(
      stored(pdf().onePage("/Contents 4 0 R").stream(4, "/Filter 5 0 R", "71>").object(5, "/AHx")).given);
}

// Resources.

TEST(PageResources, WithoutAnyTheDictionaryIsEmpty) {
  EXPECT_EQ(resources(pdf().onePage("")), "<< >>");
  EXPECT_EQ(resources(pdf().onePage(""), 50), "<< >>");
}

TEST(PageResources, DirectOnesComeInTheHarvestsNumbers) {
  const PdfBuilder document = pdf().onePage("/Resources <</Font<</F 6 0 R>>>>/X 1").object(6, "<<>>");
  EXPECT_EQ(resources(document), " <</Font<</F 10 0 R>>>>");
  EXPECT_EQ(resources(document, 50), " <</Font<</F 10 0 R>>>>");
}

TEST(PageResources, IndirectOnesAreTheTextOfTheirObject) {
  EXPECT_EQ(
      resources(
          pdf().onePage("/Resources 5 0 R").object(5, "<</Font<</F 6 0 R>>/Other 1>>").object(6, "<<>>")),
      "<</Font<</F 10 0 R>>/Other 1>>\n");
}

TEST(PageResources, SeveralIndirectOnesStandInARow) {
  EXPECT_EQ(
      resources(
          pdf().onePage("/Resources 5 0 R/Resources 6 0 R").object(5, "<</A 1>>").object(6, "<</B 2>>")),
      "<</A 1>>\nendobj\n<</B 2>>\n");
}

TEST(PageResources, OwnAndInheritedObjectsAreMerged) {
  EXPECT_EQ(resources(pdf()
                          .pageTree({3}, "/Resources 5 0 R")
                          .object(3, "<</Type/Page/Parent 2 0 R/Resources<</Font<</F 6 0 R>>/Other 1>>>>")
                          .object(5, "<</Font<</G 7 0 R>>/XObject<</X 8 0 R>>/ProcSet[/PDF /Text]>>")
                          .object(6, "<<>>")
                          .object(7, "<<>>")
                          .object(8, "<<>>")),
            "<</XObject<</X 12 0 R>>/Font<</F 10 0 R/G 11 0 R>>/ProcSet[PDF /Text]>>");
}

TEST(PageResources, InheritedDirectOnesNeedAPageNumber) {
  const PdfBuilder document = pdf()
                                  .pageTree({3}, "/Resources<</Font<</F 6 0 R>>>>")
                                  .object(3, "<</Type/Page/Parent 2 0 R>>")
                                  .object(6, "<<>>");
  EXPECT_EQ(resources(document, 0), "<< >>");
  EXPECT_EQ(resources(document, 50), "<</Font<</F 10 0 R>>>>");
}

TEST(PageResources, ASecondPageRefersToWhatTheFirstBrought) {
  const Probe opened =
      harvest(pdf()
                  .pageTree({3, 4})
                  .object(3, "<</Type/Page/Parent 2 0 R/Resources<</Font<</F 6 0 R>>>>>>")
                  .object(4, "<</Type/Page/Parent 2 0 R/Resources<</Font<</G 6 0 R/H 7 0 R>>>>>>")
                  .object(6, "<<>>")
                  .object(7, "<<>>"));
  opened->setOld2NewObjectVector(opened->getOld2NewObjectVector());
  opened->setPageNo(2);
  opened->setStartObjNo(20);
  EXPECT_EQ(resources(opened), "<</Font<</G 10 0 R/H 20 0 R>>>>");
}

TEST(PageResources, WithoutTheVectorASecondPageRefersToNumbersThatStayEmpty) {
  const Probe opened =
      harvest(pdf()
                  .pageTree({3, 4})
                  .object(3, "<</Type/Page/Parent 2 0 R/Resources<</Font<</F 6 0 R>>>>>>")
                  .object(4, "<</Type/Page/Parent 2 0 R/Resources<</Font<</G 6 0 R/H 7 0 R>>>>>>")
                  .object(6, "<<>>")
                  .object(7, "<<>>"));
  opened->setPageNo(2);
  opened->setStartObjNo(20);
  EXPECT_EQ(resources(opened), "<</Font<</G 20 0 R/H 21 0 R>>>>");
  EXPECT_EQ(opened->count({20, 0}), 0U);
  EXPECT_EQ(opened->count({21, 0}), 1U);
}

TEST(PageResources, SharedStreamsKeepTheIdentityOfTheHost) {
  const PdfBuilder document = pdf().onePage("/Resources<</XObject<</X 6 0 R>>>>").stream(6, "", "abc");
  std::string digest;
  ASSERT_TRUE(CTesselPage::isStreamObj(harvest(document)->at({10, 0}), digest));
  CTesselPage::StreamObjMap table{{digest, {77, 0}}};
  const Probe opened = selected(document);
  opened->setStreamObjMap(&table);
  opened->setStartObjNo(10);
  EXPECT_EQ(resources(opened), "<</XObject<</X 77 0 R>>>>");
}

TEST(PageResources, AMissingObjectIsReportedAndTheOutputStays) {
  const Probe opened = harvest(pdf().onePage("/Resources 90 0 R"));
  const std::string* out = nullptr;
  EXPECT_EQ(opened->getPageRes(&out, 0), 8001);
  EXPECT_EQ(out, nullptr);
}

TEST(PageResources, AnObjectTakenOutIsTheEmptyForm) {
  const Probe opened = selected(pdf().onePage("/Resources 5 0 R").object(5, "<<>>"));
  opened->state->sourFile->pieceFilteredObjs.insert(SObj(5, 0));
  opened->setStartObjNo(10);
  EXPECT_EQ(resources(opened), emptyForm);
}

TEST(PageResources, TheNextCallOverwritesTheSameText) {
  const Probe opened =
      harvest(pdf().pageTree({3}, "/Resources<</A 1>>").object(3, "<</Type/Page/Parent 2 0 R>>"));
  const std::string *first = nullptr, *second = nullptr;
  opened->getPageRes(&first, 0);
  EXPECT_EQ(*first, "<< >>");
  opened->getPageRes(&second, 50);
  EXPECT_EQ(first, second);
  EXPECT_EQ(*first, "<</A 1>>");
}

// The group.

TEST(PageGroup, IsTakenWithTheResources) {
  const Probe opened =
      harvest(pdf()
                  .onePage("/Resources<</Properties<</M 6 0 R>>>>/Group <</S/Transparency/CS 6 0 R>>")
                  .object(6, "<<>>"));
  EXPECT_EQ(opened->getPageGroup(), "");
  resources(opened);
  EXPECT_EQ(opened->getPageGroup(), " <</S/Transparency/CS 10 0 R>>");
}

TEST(PageGroup, WhatItAloneRefersToIsNotHarvested) {
  const Probe opened = harvest(pdf().onePage("/Group<</S/Transparency/CS 6 0 R>>").object(6, "<<>>"));
  resources(opened);
  EXPECT_EQ(opened->getPageGroup(), "<</S/Transparency>>");
  EXPECT_TRUE(opened->empty());
}

TEST(PageGroup, StaysWhereTheResourcesAreAnObject) {
  const Probe opened =
      harvest(pdf()
                  .pageTree({3, 4})
                  .object(3, "<</Type/Page/Parent 2 0 R/Group<</S/First>>>>")
                  .object(4, "<</Type/Page/Parent 2 0 R/Group<</S/Second>>/Resources 5 0 R>>")
                  .object(5, "<<>>"));
  resources(opened);
  opened->setPageNo(2);
  opened->setStartObjNo(20);
  resources(opened);
  EXPECT_EQ(opened->getPageGroup(), "<</S/First>>");
}

// The page's dictionary.

TEST(PageRootString, IsThePageWithoutItsParent) {
  const Probe opened = harvest(pdf().onePage("/Resources<</Font<</F 6 0 R>>>>/N(x)").object(6, "<<>>"));
  for (int number : {0, 50})
    EXPECT_EQ(opened->getPageRootString(number),
              "<</Type/Page /Resources<</Font<</F 10 0 R>>>>/N(x)>>\nendobj\n");
}

TEST(PageRootString, AReferenceToThePageNamesTheHostsPage) {
  const Probe opened = harvest(pdf().onePage("/Dest[3 0 R/Fit]/Resources<<>>"));
  EXPECT_EQ(opened->getPageRootString(50), "<</Type/Page /Dest[ 50 0 R/Fit]/Resources<<>>>>\nendobj\n");
  EXPECT_EQ(opened->getPageRootString(0), "<</Type/Page /Dest[ 0 0 R/Fit]/Resources<<>>>>\nendobj\n");
}

TEST(PageRootString, AncestorsFollowUpToTheOneWithResources) {
  const Probe opened = harvest(pdf()
                                   .object(1, "<</Type/Catalog/Pages 2 0 R>>")
                                   .object(2, "<</Type/Pages/Kids[4 0 R]/Count 1/Resources<</A 1>>>>")
                                   .object(4, "<</Type/Pages/Parent 2 0 R/Kids[3 0 R]/Count 1>>")
                                   .object(3, "<</Type/Page/Parent 4 0 R>>"));
  EXPECT_EQ(opened->getPageRootString(0), "<</Type/Page>>\nendobj\n");
  EXPECT_EQ(opened->getPageRootString(50),
            "<</Type/Page>>\nendobj\n<</Type/Pages/Kids[ 50 0 R]/Count 1>>\nendobj\n"
            "<</Type/Pages/Kids[ 50 0 R]/Count 1/Resources<</A 1>>>>\nendobj\n");
}

TEST(PageRootString, AParentWithoutItsOwnEndsTheClimb) {
  const Probe opened = harvest(pdf().pageTree({3}).object(3, "<</Type/Page/Parent 2 0 R>>"));
  EXPECT_EQ(opened->getPageRootString(50),
            "<</Type/Page>>\nendobj\n<</Type/Pages/Kids[ 50 0 R ]/Count 1>>\nendobj\n");
}

TEST(PageRootString, ACycleOfParentsEnds) {
  const Probe opened = harvest(pdf().pageTree({3}, "/Parent 2 0 R").object(3, "<</Type/Page/Parent 2 0 R>>"));
  EXPECT_EQ(opened->getPageRootString(50).rfind("<</Type/Page>>\nendobj\n<</Type/Pages", 0), 0U);
}

TEST(PageRootString, IsInTheClearForNoPageNumber) {
  const Probe opened = selected(pdf().onePage("/Resources<<>>/N(a secret)"));
  opened->setEncryptKey(key16, 16, 3);
  opened->setStartObjNo(10);
  EXPECT_NE(opened->getPageRootString(0).find("(a secret)"), std::string::npos);
  EXPECT_EQ(opened->getPageRootString(50).find("a secret"), std::string::npos);
}

// The catalog.

TEST(CatalogText, ComesInTheHarvestsNumbers) {
  const Probe opened = harvest(pdf().onePage("/X 6 0 R", "/Other 6 0 R/Lang(en)").object(6, "<<>>"));
  EXPECT_EQ(opened->getRootString(0), "<</Type/Catalog/Other 10 0 R/Lang(en)>>\nendobj\n");
}

TEST(CatalogText, AReferenceToItselfNamesTheHostsCatalog) {
  const Probe opened = harvest(pdf().onePage("", "/Self 1 0 R"));
  EXPECT_EQ(opened->getRootString(60), "<</Type/Catalog/Self 60 0 R>>\nendobj\n");
}

TEST(CatalogText, IsInTheClearForNoNumber) {
  const Probe opened = selected(pdf().onePage("", "/Lang(a secret)"));
  opened->setEncryptKey(key16, 16, 4);
  opened->setStartObjNo(10);
  EXPECT_EQ(opened->getRootString(0), "<</Type/Catalog/Lang(a secret)>>\nendobj\n");
  EXPECT_EQ(opened->getRootString(60).find("a secret"), std::string::npos);
}

}  // namespace
