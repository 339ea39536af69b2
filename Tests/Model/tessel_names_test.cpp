#include "TesselPage/Model/tessel_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Model/model_verbs.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::ElementsAre;

namespace {

/// Opens a document with these names as object 9, and reads them.
struct ReadNames {
  explicit ReadNames(const std::string& dictionary) {
    PdfBuilder builder;
    builder.onePage("").object(9, dictionary).object(20, "<</After 12 0 R>>");
    for (int number = 10; number <= 12; ++number) builder.object(number, "<<>>");
    source = builder.object(13, "<</P 3 0 R/S(12 0 R)/H<12>>>").open();
    names.id = SObj(9, 0);
    result = names.fromStream(*source);
  }

  Source source;
  CNames names;
  bool result = false;
};

struct NamesCase {
  const char* dictionary;
  int dests;
  ObjectNumbers harvest;
};

class NamesText : public testing::TestWithParam<NamesCase> {};

TEST_P(NamesText, KeepsDestsAndHarvestsTheRest) {
  const ReadNames read(GetParam().dictionary);
  EXPECT_TRUE(read.result);
  EXPECT_EQ(read.names.dests.objNum, GetParam().dests);
  EXPECT_EQ(harvested(read.source), GetParam().harvest);
}

INSTANTIATE_TEST_SUITE_P(Keys, NamesText,
                         testing::Values(NamesCase{"<</Dests 9 0 R/JavaScript 10 0 R>>", 9, {10}},
                                         NamesCase{"<</IDS 11 0 R>>", 0, {}},
                                         NamesCase{"<</URLS 11 0 R>>", 0, {}},
                                         NamesCase{"<</Outlines 11 0 R>>", 0, {}},
                                         NamesCase{"<</AP<</Names[(a)11 0 R]>>>>", 0, {11}},
                                         NamesCase{"<</AP 3 0 R/X 10 0 R>>", 0, {10}},
                                         NamesCase{"<</EmbeddedFiles 13 0 R>>", 0, {2, 3, 13}}));

TEST(Names, EnterTheDocumentsObjects) {
  const ReadNames read("<</AP 10 0 R/JavaScript 11 0 R>>");
  EXPECT_THAT(numbers(read.source->documentObjs), ElementsAre(10, 11));
}

TEST(Names, DictionaryWithoutItsEndStopsAtTheNextObject) {
  std::string bytes = pdf()
                          .onePage("")
                          .object(9, "<</AP 10 0 R>>")
                          .object(10, "<<>>")
                          .object(11, "<</X 12 0 R>>")
                          .object(12, "<<>>")
                          .build();
  const std::size_t end = bytes.find("endobj", bytes.find("/AP"));
  bytes.replace(end, 6, "      ");
  const Source source = PdfBuilder::openBytes(bytes);
  CNames names;
  names.id = SObj(9, 0);
  EXPECT_TRUE(names.fromStream(*source));
  EXPECT_THAT(harvested(source), ElementsAre(10));
}

TEST(Names, DirectDictionaryIsReadUpToTheEndOfTheCatalog) {
  const Source source = pdf()
                            .onePage("", "/Names<</Dests 9 0 R/AP 10 0 R>>/Late 11 0 R")
                            .object(10, "<<>>")
                            .object(11, "<<>>")
                            .open();
  ASSERT_TRUE(source->catalogObj->fromStream(*source));
  EXPECT_EQ(source->catalogObj->names.dests, SObj(9, 0));
  EXPECT_THAT(harvested(source), ElementsAre(10, 11));
}

TEST(Names, MissingObjectFailsTheReadAndLeavesTheStreamUsable) {
  const ReadNames read("<</AP 99 0 R>>");
  EXPECT_FALSE(read.result);
  EXPECT_EQ(read.names.id, SObj(9, 0));
  EXPECT_TRUE(read.source->good());
}

TEST(Names, InitClearsDests) {
  CNames names;
  names.dests = SObj(9, 0);
  names.Init();
  EXPECT_EQ(names.dests.objNum, 0);
}

}  // namespace
