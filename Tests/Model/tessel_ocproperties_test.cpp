#include "TesselPage/Model/tessel_ocproperties.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TesselPage/Syntax/tessel_token.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "Tests/Model/model_verbs.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Reads the value of one key of "/D" in a source without a document.
struct Configuration {
  explicit Configuration(const std::string& entries)
      : source("<<" + entries + ">> /Next "), read(properties.ReadD(source)) {}

  CSourFile source;
  COCProperties properties;
  bool read;
};

struct ListCase {
  const char* text;
  bool read;
  ObjectNumbers expected;
};

class StateArray : public testing::TestWithParam<ListCase> {};

TEST_P(StateArray, HoldsEachReferenceOnce) {
  const Configuration off(std::string("/OFF ") + GetParam().text);
  EXPECT_EQ(off.read, GetParam().read);
  EXPECT_EQ(numbers(off.properties.off), GetParam().expected);
  const Configuration on(std::string("/ON ") + GetParam().text);
  EXPECT_EQ(on.read, GetParam().read);
  EXPECT_EQ(numbers(on.properties.on), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Arrays, StateArray,
                         testing::Values(ListCase{"[1 0 R 1 0 R]", true, {1}},
                                         ListCase{"[2 0 R 1 0 R]", true, {2, 1}},
                                         ListCase{"[1 0 R 1 1 R]", true, {1, 1}}, ListCase{"[]", true, {}},
                                         ListCase{"[1 0 R null/X 2 0 R]", true, {1, 2}},
                                         ListCase{"5", false, {}}, ListCase{"9 0 R", false, {}},
                                         ListCase{"[1 0 R", false, {1}}));

class OrderArray : public testing::TestWithParam<ListCase> {};

TEST_P(OrderArray, IsMadeFlat) {
  const Configuration order(std::string("/Order ") + GetParam().text);
  EXPECT_EQ(order.read, GetParam().read);
  EXPECT_EQ(numbers(order.properties.order), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Arrays, OrderArray,
                         testing::Values(ListCase{"[1 0 R 2 0 R]", true, {1, 2}},
                                         ListCase{"7 0 R", true, {7}},
                                         ListCase{"[1 0 R [(Title) 2 0 R] 3 0 R]", true, {1, 2, 3}},
                                         ListCase{"[[(a(b)c) 2 0 R] 3 0 R]", true, {2, 3}},
                                         ListCase{"[[(\\)]) 2 0 R] 3 0 R]", true, {2, 3}},
                                         ListCase{"[1 0 R [2 0 R 3 0 R] 4 0 R]", true, {1, 2, 3, 4}},
                                         ListCase{"[1 0 R [/Name 2 0 R] 3 0 R]", false, {1}},
                                         ListCase{"[[(open 2 0 R]", false, {}},
                                         ListCase{"[[(A) 1 0 R [2 0 R]]]", false, {1}},
                                         ListCase{"/None", false, {}}));

TEST(OptionalContent, LaterKeyReplacesTheList) {
  EXPECT_THAT(numbers(Configuration("/OFF[1 0 R]/OFF[2 0 R]").properties.off), ElementsAre(2));
}

TEST(OptionalContent, BaseStateIsDropped) {
  const Configuration read("/BaseState/OFF/ON[1 0 R]");
  EXPECT_TRUE(read.read);
  EXPECT_THAT(read.properties.off, IsEmpty());
  EXPECT_THAT(numbers(read.properties.on), ElementsAre(1));
}

TEST(OptionalContent, StreamStandsBehindADirectConfiguration) {
  Configuration read("/OFF[1 0 R]/AS[<</Event/View>>]");
  std::string next;
  read.source >> next;
  EXPECT_EQ(next, "/Next");
}

TEST(OptionalContent, ListBehindAReferenceIsReadAndTheStreamStandsBehindIt) {
  const Source source = pdf()
                            .onePage("", "/OCProperties<</D<</OFF 5 0 R/ON 6 0 R>>>>/Metadata 8 0 R")
                            .object(5, "[1 0 R]")
                            .compressed(7, 6, "[2 0 R 2 0 R]")
                            .open();
  EXPECT_THAT(numbers(source->catalogObj->optionalContent.off), ElementsAre(1));
  EXPECT_THAT(numbers(source->catalogObj->optionalContent.on), ElementsAre(2));
  EXPECT_EQ(source->catalogObj->metadata, SObj(8, 0));
}

TEST(OptionalContent, ListBehindAClosedChainOfReferencesFails) {
  const Source source = pdf().onePage("").object(5, "6 0 R").object(6, "5 0 R").object(9, "5 0 R ").open();
  COCProperties properties;
  std::vector<SObj> list;
  source->seekg(pdf().onePage("").object(5, "6 0 R").object(6, "5 0 R").object(9, "5 0 R ").offsetOf(9) + 8);
  EXPECT_FALSE(properties.ReadArray(*source, list));
  EXPECT_THAT(list, IsEmpty());
}

TEST(OptionalContent, ReadsTheDefaultConfigurationAlone) {
  const Source source = pdf()
                            .onePage("", "/OCProperties 9 0 R")
                            .object(9, "<</OCGs[1 0 R 2 0 R]/D<</ON[1 0 R]/OFF[2 0 R]/Order[1 0 R 2 0 R]>>>>")
                            .object(10, "<</D<</OFF[7 0 R]>>>>")
                            .open();
  const COCProperties& properties = source->catalogObj->optionalContent;
  EXPECT_THAT(numbers(properties.on), ElementsAre(1));
  EXPECT_THAT(numbers(properties.off), ElementsAre(2));
  EXPECT_THAT(numbers(properties.order), ElementsAre(1, 2));
}

TEST(OptionalContent, ReadTellsWhetherTheStreamIsGood) {
  CSourFile whole("<</D<</OFF[1 0 R]>>>> /Next ");
  EXPECT_TRUE(COCProperties().Read(whole));
  CSourFile cut("<</D<</OFF[1 0 R]>>");
  EXPECT_FALSE(COCProperties().Read(cut));
}

TEST(OptionalContent, UnreadableConfigurationDoesNotEndTheDictionaryEarly) {
  CSourFile source("<</D<</Order[[/Bad]]/ON[]>>/Configs[]>> /Next ");
  EXPECT_TRUE(COCProperties().Read(source));
  std::string next;
  source >> next;
  EXPECT_EQ(next, "/Next");
}

// Writing
// ------------------------------------------------------------------------------------------------------------------------

TEST(OptionalContent, WritesTheGroupsThatTravelledAndNullForTheOthers) {
  COCProperties properties;
  properties.id = SObj(4, 0);
  properties.off = {SObj(1, 0), SObj(2, 0)};
  CSourFile source("");
  CDestFile dest;
  dest.insertNewObjTab({0, 0, SObj(2, 0)}, SObj(12, 0));
  EXPECT_TRUE(properties.Write(dest, source));
  EXPECT_EQ(static_cast<const std::string&>(dest), "4 0 obj\n<</D<</OFF[ null  12 0 R]/ON[]>> >>endobj\n");
  EXPECT_EQ(dest.currentObject, SObj(4, 0));
}

}  // namespace
