#include "TesselPage/Structure/tessel_objectstreams.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Structure/raw_source.h"
#include "Tests/Support/pdf_builder.h"

namespace {

using TESSEL::DecodingBudget;
using TESSEL::ObjectStreams;
using TESSEL::SObj;
using tessel_test::deflated;
using tessel_test::RawFile;
using tessel_test::RawSource;
using tessel_test::streamBody;
using testing::ElementsAre;
using testing::Pair;

/// A source with object streams at the places that the test gives.
class Container {
 public:
  explicit Container(const std::string& body) : Container(std::vector<std::string>{body}) {}
  explicit Container(const std::vector<std::string>& bodies) {
    RawFile file;
    file.put("%PDF-1.7\n");
    std::vector<long long> places;
    for (std::size_t i = 0; i < bodies.size(); ++i)
      places.push_back(file.put(std::to_string(i + 1) + " 0 obj\n" + bodies[i] + "\nendobj\n"));
    source = std::make_unique<RawSource>(file.bytes);
    for (std::size_t i = 0; i < places.size(); ++i)
      source->info().objEntries[SObj(static_cast<int>(i) + 1, 0)] = {places[i], 0, 0, 1, 'n'};
  }
  auto get(int number = 1) { return streams.get(**source, number); }
  TESSEL::CSourFile& file() { return **source; }

  std::unique_ptr<RawSource> source;
  ObjectStreams streams;
};

TEST(ObjectStreams, GivesTextAndIndex) {
  Container file(streamBody("/Type/ObjStm/N 2/First 9", "5 0 6 4  <<>>null"));
  const auto stream = file.get();
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(stream->first, 9);
  EXPECT_EQ(stream->count, 2);
  EXPECT_EQ(stream->length, 17);
  EXPECT_EQ(stream->text, "5 0 6 4  <<>>null");
  EXPECT_THAT(stream->pairs, ElementsAre(Pair(5, 0), Pair(6, 4)));
}

TEST(ObjectStreams, IsDecoded) {
  Container file(streamBody("/Type/ObjStm/N 1/First 4/Filter/FlateDecode", deflated("5 0 (a)")));
  ASSERT_NE(file.get(), nullptr);
  EXPECT_EQ(file.get()->text, "5 0 (a)");
}

TEST(ObjectStreams, IsReadOnceAndKept) {
  Container file(streamBody("/N 1/First 4", "5 0 (a)"));
  EXPECT_EQ(file.get(), file.get());
}

TEST(ObjectStreams, OneThatCantBeReadIsRememberedAsSuch) {
  Container file(streamBody("/Type/XRef", "5 0 (a)"));
  EXPECT_EQ(file.get(), nullptr);
  file.file().clear();
  auto& table = file.source->info().objEntries;
  table[SObj(1, 0)] = table[SObj(2, 0)];
  EXPECT_EQ(file.get(), nullptr);
}

TEST(ObjectStreams, WhatWasReadIsForgottenByClear) {
  Container file({streamBody("/Type/XRef", ""), streamBody("/Type/ObjStm", "5 0 (a)")});
  EXPECT_EQ(file.get(1), nullptr);
  file.file().clear();
  auto& table = file.source->info().objEntries;
  table[SObj(1, 0)] = table[SObj(2, 0)];
  file.streams.clear();
  EXPECT_NE(file.get(1), nullptr);
}

TEST(ObjectStreams, AFailedSourceGivesNothingAndRemembersNothing) {
  Container file(streamBody("/N 1/First 4", "5 0 (a)"));
  file.file().setstate(std::ios::failbit);
  EXPECT_EQ(file.get(), nullptr);
  file.file().clear();
  EXPECT_NE(file.get(), nullptr);
}

TEST(ObjectStreams, AMemorySourceReadsThroughTheFile) {
  Container file(streamBody("/N 1/First 4", "5 0 (a)"));
  TESSEL::CSourFile memory("text", file.file());
  EXPECT_NE(file.streams.get(memory, 1), nullptr);
}

TEST(ObjectStreams, ParametersInFrontOfTheFilterAreNotSeen) {
  // Two rows of the "up" predictor, which stay as they are.
  Container file(
      streamBody("/DecodeParms<</Predictor 12/Columns 3>>/Filter/FlateDecode", deflated("\2abc\2def")));
  ASSERT_NE(file.get(), nullptr);
  EXPECT_EQ(file.get()->text, "\2abc\2def");
}

TEST(ObjectStreams, WithoutAStreamThereIsNoText) {
  Container file("<</Type/ObjStm/N 1/First 4>>");
  ASSERT_NE(file.get(), nullptr);
  EXPECT_EQ(file.get()->length, 0);
  EXPECT_TRUE(file.get()->pairs.empty());
}

class BadObjectStream : public testing::TestWithParam<const char*> {};

TEST_P(BadObjectStream, GivesNothing) {
  Container file(GetParam());
  EXPECT_EQ(file.get(), nullptr);
}
INSTANTIATE_TEST_SUITE_P(Rows, BadObjectStream,
                         testing::Values("(no dictionary)",                                  //
                                         "<</Type/XRef>>",                                   //
                                         "<</Length x>>",                                    //
                                         "<</Filter/None>>",                                 //
                                         "<</First x>>",                                     //
                                         "<</N x>>",                                         //
                                         "<</Filter/Fl/Length 3>>stream\nabc\nendstream"));  // damaged

TEST(ObjectStreams, AnotherNumberThanTheTableSaysMatters) {
  Container file(streamBody("/N 1/First 4", "5 0 (a)"));
  EXPECT_EQ(file.get(9), nullptr);  // no entry: offset 0, where the header stands
}

TEST(ObjectStreams, OneWhoseLengthLiesInItselfCantBeRead) {
  Container file("<</N 1/First 4/Length 5 0 R>>stream\n5 0 7\nendstream");
  file.source->info().objEntries[SObj(5, 0)] = {1, 0, 0, 2, 0};
  EXPECT_EQ(file.file().objectStreams.get(file.file(), 1), nullptr);
}

TEST(ObjectStreams, AChainOfLengthsIsFollowedForALittleWhile) {
  for (const int links : {ObjectStreams::maxNesting, 20000}) {
    std::vector<std::string> bodies;
    for (int i = 1; i < links; ++i) {
      const std::string object = std::to_string(100000 + i) + " 0 17 ";
      bodies.push_back("<</N 1/First 9/Length " + std::to_string(100001 + i) + " 0 R>>stream\n" + object +
                       "    \nendstream");
    }
    bodies.push_back(streamBody("/N 1/First 9", std::to_string(100000 + links) + " 0 17 "));
    Container file(bodies);
    for (int i = 1; i <= links; ++i) file.source->info().objEntries[SObj(100000 + i, 0)] = {i, 0, 0, 2, 0};
    const bool found = file.file().objectStreams.get(file.file(), 1) != nullptr;
    EXPECT_EQ(found, links <= ObjectStreams::maxNesting) << links;
  }
}

TEST(ObjectStreams, WhatWasUsedLongestAgoGoesFirst) {
  const std::string data(400, ' ');
  Container file({streamBody("/N 0", data), streamBody("/N 0", data), streamBody("/N 0", data)});
  file.streams = ObjectStreams(1000);
  const auto first = file.get(1).get();
  const std::weak_ptr<const TESSEL::ObjectStream> second = file.get(2);
  EXPECT_EQ(file.get(1).get(), first);
  const auto third = file.get(3).get();
  EXPECT_TRUE(second.expired());
  EXPECT_EQ(file.get(1).get(), first);
  EXPECT_EQ(file.get(3).get(), third);
}

TEST(ObjectStreams, TheLastOneIsKeptHoweverLongItIs) {
  Container file(streamBody("/N 0", std::string(400, ' ')));
  file.streams = ObjectStreams(10);
  const auto first = file.get().get();
  EXPECT_EQ(file.get().get(), first);
}

TEST(ObjectStreams, MoreIsKeptWhereMuchIsDecodedAgain) {
  const std::string body = streamBody("/N 0", std::string(400, ' '));
  Container file({body, body, body});
  file.streams = ObjectStreams(1000);
  const auto first = file.get(1);
  for (const int number : {2, 3}) file.get(number);
  EXPECT_NE(file.get(1), first);
  for (int i = 0; i < 100; ++i) file.get(i % 3 + 1);
  const auto again = file.get(1);
  for (const int number : {2, 3}) file.get(number);
  EXPECT_EQ(file.get(1), again);
}

DecodingBudget bytes(long long count) {
  DecodingBudget budget;
  budget.bytes = count;
  return budget;
}

TEST(ObjectStreams, WhatIsDecodedAgainAndAgainIsPaidForUntilTheBudgetIsUsedUp) {
  const std::string body = streamBody("/N 0", std::string(400, ' '));
  Container file({body, body});
  file.streams = ObjectStreams(0, bytes(2000));
  for (int i = 0; i < 5; ++i) EXPECT_NE(file.get(i % 2 + 1), nullptr) << i;
  EXPECT_EQ(file.get(2), nullptr);
  EXPECT_NE(file.get(1), nullptr);  // still kept
}

TEST(ObjectStreams, WhatCantBeDecodedIsPaidForToo) {
  const std::string damaged = streamBody("/N 0/Filter/Fl", std::string(10, 'x'));
  Container file({damaged, streamBody("/N 0", "x"), streamBody("/N 0", "x")});
  file.streams = ObjectStreams(0, bytes(10 * DecodingBudget::ratioOfFailed + 1));
  EXPECT_EQ(file.get(1), nullptr);
  EXPECT_NE(file.get(2), nullptr);
  EXPECT_EQ(file.get(3), nullptr);
}

TEST(ObjectStreams, TheBudgetGrowsWithTheFile) {
  EXPECT_EQ(DecodingBudget(1000).bytes - DecodingBudget(0).bytes, 1000 * DecodingBudget::bytesPerFileByte);
}

TEST(ObjectStreams, AskingForTheSizeOfTheFileMovesNothing) {
  Container file({streamBody("/N 0", "x"), "null"});
  file.get(2);
  EXPECT_EQ(file.file().tellg(), std::streampos(file.source->info().objEntries[SObj(2, 0)].entryOffset + 8));
}

TEST(ObjectStreams, LengthsComeFromTheIndex) {
  Container file(streamBody("/N 2/First 9", "5 0 6 4  <<>>null!"));
  file.get();
  EXPECT_EQ(file.streams.lengthOf({1, 0, 0, 2, 0}), 4);
  EXPECT_EQ(file.streams.lengthOf({1, 1, 0, 2, 0}), 5);
  EXPECT_EQ(file.streams.lengthOf({1, 2, 0, 2, 0}), 0);
  EXPECT_EQ(file.streams.lengthOf({8, 0, 0, 2, 0}), 0);
}

}  // namespace
