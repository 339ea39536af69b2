#include "TesselPage/Model/tessel_harvest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TesselPage/Model/tessel_keyscan.h"
#include "Tests/Model/model_verbs.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Work list
// -----------------------------------------------------------------------------------------------------------------

/// Objects 5 to 7, of which 6 lies in an object stream.
Source threeObjects() {
  return pdf().onePage("").object(5, "/Five").compressed(9, 6, "/Six").object(7, "/Seven").open();
}

/// Runs the loop and notes the identity and the first name of each visit.
struct Visits {
  Visits(const Source& source, std::list<SObj> start, MissingObjects rule, int failAt = 0)
      : work(std::move(start)) {
    reader.id = SObj(1, 0);
    result = harvest(reader, *source, work, rule, [&](CSourFile& body) {
      std::string token;
      while (token.substr(0, 1) != "/") body >> token;
      seen.push_back(std::to_string(reader.id.objNum) + token);
      return reader.id.objNum != failAt;
    });
  }

  CObj reader;
  std::list<SObj> work;
  std::vector<std::string> seen;
  bool result = false;
};

TEST(Harvest, VisitsEachObjectUnderItsIdentityWhereverItLies) {
  const Source source = threeObjects();
  const Visits visits(source, {SObj(7, 0), SObj(6, 0), SObj(5, 0)}, MissingObjects::endTheLoop);
  EXPECT_TRUE(visits.result);
  EXPECT_THAT(visits.seen, ElementsAre("7/Seven", "6/Six", "5/Five"));
  EXPECT_EQ(visits.reader.id, SObj(1, 0));
}

TEST(Harvest, MissingObjectEndsTheLoopWithTheRestUnvisited) {
  const Source source = threeObjects();
  const Visits visits(source, {SObj(5, 0), SObj(99, 0), SObj(7, 0)}, MissingObjects::dropAnnotations);
  EXPECT_FALSE(visits.result);
  EXPECT_THAT(visits.seen, ElementsAre("5/Five"));
  EXPECT_THAT(numbers(visits.work), ElementsAre(99, 7));
  EXPECT_TRUE(source->good());
  EXPECT_EQ(visits.reader.id, SObj(1, 0));
}

TEST(Harvest, MissingObjectOfAnAnnotationIsDropped) {
  for (int flag : {ObjFlag::underAnnots, ObjFlag::annotSubtree}) {
    const Source source = threeObjects();
    const Visits visits(source, {SObj(99, 0, flag), SObj(7, 0)}, MissingObjects::dropAnnotations);
    EXPECT_TRUE(visits.result);
    EXPECT_THAT(visits.seen, ElementsAre("7/Seven"));
    EXPECT_FALSE(Visits(source, {SObj(99, 0, flag)}, MissingObjects::endTheLoop).result);
  }
}

TEST(Harvest, VisitThatFailedEndsTheLoop) {
  const Source source = threeObjects();
  const Visits visits(source, {SObj(5, 0), SObj(6, 0), SObj(7, 0)}, MissingObjects::endTheLoop, 6);
  EXPECT_FALSE(visits.result);
  EXPECT_THAT(visits.seen, ElementsAre("5/Five", "6/Six"));
}

TEST(Harvest, ObjectThatRanIntoTheEndDoesNotTakeTheNextOne) {
  const Source source = threeObjects();
  CObj reader;
  std::list<SObj> work{SObj(5, 0), SObj(7, 0)};
  int visits = 0;
  EXPECT_TRUE(harvest(reader, *source, work, MissingObjects::endTheLoop, [&](CSourFile& body) {
    ++visits;
    body.setstate(std::ios::eofbit | std::ios::failbit);
    return true;
  }));
  EXPECT_EQ(visits, 2);
}

TEST(Harvest, PlainVisitTakesWhatIsNotYetThere) {
  const Source source = pdf().onePage("").open();
  source->enterPageObject(SObj(6, 0));
  CSourFile body("<</A 5 0 R/B 6 0 R/S( 7 0 R )/H<8 0 R>/C[9 0 R 5 0 R]>>endobj 10 0 R");
  std::list<SObj> work;
  EXPECT_TRUE(harvestObject(*source, body, SObj(1, 0), work));
  EXPECT_THAT(numbers(work), ElementsAre(5, 9));
  EXPECT_THAT(harvested(source), ElementsAre(5, 6, 9));
}

// Brackets and strings
// ----------------------------------------------------------------------------------------------------------

TEST(BracketScan, EndsAtTheClosingBracketOrTheObjectsEnd) {
  const auto scan = [](const std::string& text, int depth, std::string& tokens) {
    CSourFile source(text);
    return scanDictionary(source, depth, [&](const std::string& token, int) { tokens += token + " "; });
  };
  std::string tokens;
  EXPECT_TRUE(scan("/A<</B>>/C>>/D", 1, tokens));
  EXPECT_EQ(tokens, "/A << /B >> /C ");
  EXPECT_FALSE(scan("/A stream", 1, tokens));
  EXPECT_FALSE(scan("/A endobj", 1, tokens));
  EXPECT_FALSE(scan("/A", 1, tokens));
}

TEST(BracketScan, ClosingBracketThatClosesNothingIsNone) {
  DictDepth depth;
  EXPECT_FALSE(depth.closes(">>"));
  EXPECT_EQ(depth.depth(), -1);
}

TEST(StringSkip, TakesTheKindsThatTheScanKnows) {
  const auto rest = [](const std::string& open, StringsSkipped which) {
    CSourFile source("a) b> /Next ");
    const bool skipped = skipIfString(source, SObj(1, 0), open, which);
    std::string token;
    source >> token;
    return (skipped ? "skipped, then " : "left, then ") + token;
  };
  EXPECT_EQ(rest("(", StringsSkipped::both), "skipped, then b");
  EXPECT_EQ(rest("(", StringsSkipped::literalOnly), "skipped, then b");
  EXPECT_EQ(rest("(", StringsSkipped::none), "left, then a");
  EXPECT_EQ(rest("<", StringsSkipped::both), "skipped, then /Next");
  EXPECT_EQ(rest("<", StringsSkipped::literalOnly), "left, then a");
  EXPECT_EQ(rest("/A", StringsSkipped::both), "left, then a");
}

// Values behind references
// ---------------------------------------------------------------------------------------------------------

TEST(OpenValue, FollowsAChainAndEndsWhereItCloses) {
  const Source source = pdf()
                            .onePage("")
                            .object(5, "6 0 R")
                            .compressed(9, 6, "7 0 R")
                            .object(7, "/Seven")
                            .object(8, "8 0 R")
                            .open();
  std::unique_ptr<CSourFile> memory;
  CSourFile* value = openValue(*source, memory, SObj(5, 0));
  ASSERT_NE(value, nullptr);
  std::string token;
  *value >> token;
  EXPECT_EQ(token, "/Seven");
  EXPECT_EQ(openValue(*source, memory, SObj(8, 0)), nullptr);
  EXPECT_EQ(openValue(*source, memory, SObj(99, 0)), nullptr);
}

// Key scan
// --------------------------------------------------------------------------------------------------------------------------

/// Sums numbers behind /Add, stops at /Stop, fails at /Fail.
class SumScan {
 public:
  explicit SumScan(CSourFile& in) : source(in) {}

  Turn onToken(const std::string& token) {
    static constexpr KeyRow<SumScan> rows[] = {
        {"/Add", &SumScan::add}, {"/Stop", &SumScan::stop}, {"/Fail", &SumScan::fail}};
    return dispatch(*this, rows, token);
  }
  Turn onReference(const SObj& ref) {
    sum += ref.objNum;
    return Turn::goOn;
  }

  int sum = 0;

 private:
  Turn add() {
    int value = 0;
    readInteger(source, value);
    sum += value;
    return Turn::goOn;
  }
  Turn stop() { return Turn::success; }
  Turn fail() { return Turn::failure; }

  CSourFile& source;
};

struct SumCase {
  const char* text;
  bool result;
  int sum;
};

class KeyScan : public testing::TestWithParam<SumCase> {};

TEST_P(KeyScan, EndsAsItsHandlersSay) {
  CSourFile source(GetParam().text);
  SumScan scan(source);
  EXPECT_EQ(scanKeys(source, scan), GetParam().result);
  EXPECT_EQ(scan.sum, GetParam().sum);
}

INSTANTIATE_TEST_SUITE_P(Texts, KeyScan,
                         testing::Values(SumCase{"/Add 1 /Foo 2 /Add 3 /Stop /Add 4", true, 4},
                                         SumCase{"/Add 1 /Fail /Add 2", false, 1},
                                         SumCase{"/Add 1 /Add 2 ", true, 3},
                                         SumCase{"100 0 R /Foo 5 /Stop", true, 100}, SumCase{"", true, 0}));

}  // namespace
