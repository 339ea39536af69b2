#include "TesselPage/Syntax/tessel_obj.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "Tests/Support/object_copy.h"
#include "Tests/Syntax/byte_streams.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Notes where it was read and what the stream then held.
class Probe : public CObj {
 public:
  explicit Probe(int number, int flags = foundByTable) : CObj(SObj(number, 0)) { typeFlags = flags; }

  bool Read(CSourFile& source) override {
    subSource = source.isSubSource;
    std::getline(source, line);
    return answer;
  }

  bool answer = true;
  bool subSource = false;
  std::string line;
};

std::string headLeft(const std::string& text) {
  std::istringstream in(text);
  return CObj::IsObjStart(in) ? rest(in) : "none";
}

PdfBuilder document() { return pdf().onePage("/MediaBox[0 0 9 9]"); }

std::string rawText(const std::string& file, int number, bool result = true) {
  const Source source = PdfBuilder::openBytes(file);
  MappedSource mapped(file);
  std::string text = "untouched";
  std::string mappedText = text;
  EXPECT_EQ(CObj(SObj(number, 0)).ReadObj(text, *source), result);
  EXPECT_EQ(CObj(SObj(number, 0)).ReadObj(mappedText, mapped.file), result);
  EXPECT_EQ(text, mappedText);
  EXPECT_TRUE(source->good());
  return text;
}

/// Reads the integer at `place` of a document; -1 when that fails.
int integerOf(const PdfBuilder& builder, const std::string& place) {
  const std::string file = builder.build();
  const Source source = PdfBuilder::openBytes(file);
  source->seekg(static_cast<std::streamoff>(file.find(place) + place.size()));
  int value = 77;
  return CObj().ReadIntObj(*source, value) ? value : -1;
}

struct Numbers {
  bool result = false;
  std::vector<float> values;
  std::string left;
};

/// Reads the array behind `place` of a document.
Numbers numbersOf(const PdfBuilder& builder, const std::string& place) {
  const std::string file = builder.build();
  const Source source = PdfBuilder::openBytes(file);
  source->seekg(static_cast<std::streamoff>(file.find(place) + place.size()));
  Numbers numbers;
  numbers.result = CObj().ReadNumArrayObj(*source, numbers.values);
  EXPECT_TRUE(source->good());
  std::getline(*source, numbers.left);
  return numbers;
}

}  // namespace

TEST(ObjectHead, IsNumberGenerationAndTheWord) {
  EXPECT_EQ(headLeft("1 0 obj<</A 1>>"), "<</A 1>>");
  EXPECT_EQ(headLeft(" 12\n3\robj\r\n (a)"), "(a)");
  EXPECT_EQ(headLeft("1 0 obj %c\n  %d\r\n%e\n[1]"), "[1]");
  EXPECT_EQ(headLeft("1 0 objx <<"), "none");
  EXPECT_EQ(headLeft("1 0 obj%c\n<<"), "none");
  EXPECT_EQ(headLeft("1 obj <<"), "none");
  EXPECT_EQ(headLeft("1.0 0 obj <<"), "none");
  EXPECT_EQ(headLeft("obj"), "none");
}

TEST(FromStream, ReadsAtThePresentPlaceUnlessFoundByTheTable) {
  const Source source = document().open();
  source->seekg(0);
  Probe probe(3, 0);
  EXPECT_TRUE(probe.fromStream(*source));
  EXPECT_EQ(probe.line, "%PDF-1.7");
}

TEST(FromStream, PlacesTheReadBehindTheBracketOfTheObject) {
  const Source source = document().object(7, "<</A 1>>").open();
  Probe probe(7);
  EXPECT_TRUE(probe.fromStream(*source));
  EXPECT_EQ(probe.line, "/A 1>>");
  EXPECT_FALSE(probe.subSource);
}

TEST(FromStream, FailsWhereNoDictionaryOrArrayStands) {
  const Source source = document().object(7, "(a)").open();
  EXPECT_FALSE(Probe(7).fromStream(*source));
  EXPECT_FALSE(Probe(99).fromStream(*source));
}

TEST(FromStream, ReadsAnObjectOfAnObjectStreamFromItsHeadOn) {
  const Source source = document().compressed(20, 7, "<</A 1>>").open();
  Probe probe(7);
  EXPECT_TRUE(probe.fromStream(*source));
  EXPECT_EQ(probe.line, "7 0 obj");
  EXPECT_TRUE(probe.subSource);
  EXPECT_EQ(probe.typeFlags, CObj::foundByTable | CObj::inObjectStream);
}

TEST(FromStream, FailureInAnObjectStreamClearsTheSource) {
  const Source source = document().compressed(20, 7, "<</A 1>>").open();
  source->setstate(std::ios_base::eofbit);
  Probe probe(7);
  probe.answer = false;
  EXPECT_FALSE(probe.fromStream(*source));
  EXPECT_TRUE(source->good());
}

TEST(FromStream, MemorySourceTakesOverTheSwitches) {
  class SwitchProbe : public CObj {
   public:
    SwitchProbe() : CObj(SObj(7, 0)) { typeFlags = foundByTable; }
    bool Read(CSourFile& source) override {
      EXPECT_EQ(source.switches.annotsEnable, 5U);
      EXPECT_EQ(source.switches.pageMatrix.a, 2);
      EXPECT_EQ(source.switches.customSubtypes, std::vector<std::string>{"/Foo"});
      return true;
    }
  };
  const Source source = document().compressed(20, 7, "<<>>").open();
  source->switches.annotsEnable = 5;
  source->switches.pageMatrix.a = 2;
  source->switches.customSubtypes = {"/Foo"};
  EXPECT_TRUE(SwitchProbe().fromStream(*source));
}

TEST(RawObject, IsTheBodyUpToTheNextObject) {
  const std::string file = document().object(7, "<</A 3 0 R>>").object(8, "[1]").build();
  EXPECT_EQ(rawText(file, 7), "<</A 3 0 R>>\nendobj\n");
}

TEST(RawObject, OfAnObjectStreamIsTheWholeMemoryText) {
  const std::string file = document().compressed(20, 7, "<</A 1>>").compressed(20, 8, "[2]").build();
  EXPECT_EQ(rawText(file, 7), "7 0 obj\n<</A 1>> \nendobj\r\n");
  EXPECT_EQ(rawText(file, 8), "8 0 obj\n[2] \nendobj\r\n");
}

TEST(RawObject, MissingOneLeavesTheTextAlone) {
  EXPECT_EQ(rawText(document().build(), 99, false), "untouched");
}

TEST(RawObject, WithoutAKnownEndRunsToTheEndOfTheFile) {
  std::string file = document().object(7, "[1]").build();
  MappedSource source(file);
  source.file.fileInfo.objectBoundaries = {source.file.fileInfo.GetObjState(7, 0).entryOffset};
  std::string text;
  EXPECT_TRUE(CObj(SObj(7, 0)).ReadObj(text, source.file));
  EXPECT_EQ(text, file.substr(file.find("[1]")));
  EXPECT_TRUE(source.file.good());
}

TEST(ObjectInStream, OnlyOneEndsWithTheStream) {
  const Source source = document().compressed(20, 7, "[1 2]").open();
  std::string text;
  EXPECT_TRUE(CObj(SObj(7, 0)).ReadObjStream(*source, text, source->fileInfo.GetObjState(7, 0)));
  EXPECT_EQ(text, "7 0 obj\n[1 2] \nendobj\r\n");
}

TEST(ObjectInStream, OfAnotherNumberThanTheTableSaysIsRefused) {
  const Source source = document().compressed(20, 7, "[1]").compressed(20, 8, "[2]").open();
  SObjState entry = source->fileInfo.GetObjState(7, 0);
  std::string text = "untouched";
  entry.entryIndex = 1;
  EXPECT_FALSE(CObj(SObj(7, 0)).ReadObjStream(*source, text, entry));
  entry.entryIndex = 2;
  EXPECT_FALSE(CObj(SObj(7, 0)).ReadObjStream(*source, text, entry));
  entry.entryIndex = -1;
  EXPECT_FALSE(CObj(SObj(7, 0)).ReadObjStream(*source, text, entry));
  EXPECT_EQ(text, "untouched");
}

TEST(ObjectInStream, StartsAndEndsStayWithinTheData) {
  const auto text = [](const std::string& data) {
    const Source source = document().stream(20, "/Type/ObjStm/N 2/First 10", data).open();
    SObjState entry;
    entry.entryOffset = 20;
    std::string out = "none";
    CObj(SObj(7, 0)).ReadObjStream(*source, out, entry);
    return out;
  };
  EXPECT_EQ(text("7 0 8 3   abcdef"), "7 0 obj\nabc\nendobj\r\n");
  EXPECT_EQ(text("7 0 8 99  abcdef"), "7 0 obj\nabcdef\nendobj\r\n");
  EXPECT_EQ(text("7 5 8 2   abcdef"), "7 0 obj\n\nendobj\r\n");
  EXPECT_EQ(text("7 99 8 2  abcdef"), "7 0 obj\n\nendobj\r\n");
}

TEST(ObjectInStream, NeedsAStreamOfTheRightType) {
  const Source source = document().stream(20, "/Type/Other/N 1/First 4", "7 0 [1]").open();
  SObjState entry;
  entry.entryOffset = 20;
  std::string text;
  EXPECT_FALSE(CObj(SObj(7, 0)).ReadObjStream(*source, text, entry));
}

TEST(Integer, IsDirectOrBehindReferences) {
  EXPECT_EQ(integerOf(document().object(7, "<</X 12/Y 1>>"), "/X"), 12);
  EXPECT_EQ(integerOf(document().object(7, "<</X 8 0 R>>").object(8, "34"), "/X"), 34);
  EXPECT_EQ(integerOf(document().object(7, "<</X 8 0 R>>").object(8, "9 0 R").object(9, "56"), "/X"), 56);
  EXPECT_EQ(integerOf(document().object(7, "<</X 8 0 R>>").compressed(20, 8, "78"), "/X"), 78);
  EXPECT_EQ(integerOf(document().object(7, "<</X 8 0 R>>").compressed(20, 8, "9 0 R").object(9, "90"), "/X"),
            90);
}

TEST(Integer, ChainOfReferencesEndsWhereItCloses) {
  EXPECT_EQ(integerOf(document().object(7, "<</X 8 0 R>>").object(8, "8 0 R"), "/X"), -1);
  EXPECT_EQ(integerOf(document().object(7, "<</X 8 0 R>>").object(8, "9 0 R").object(9, "8 0 R"), "/X"), -1);
}

TEST(Integer, LongChainOfReferencesTakesNoStack) {
  PdfBuilder builder = document().object(7, "<</X 10 0 R>>");
  const int last = 20000;
  for (int i = 10; i < last; ++i) builder.object(i, std::to_string(i + 1) + " 0 R");
  builder.object(last, "5");
  EXPECT_EQ(integerOf(builder, "/X"), 5);
}

TEST(Integer, MissingReferenceFails) {
  EXPECT_EQ(integerOf(document().object(7, "<</X 99 0 R>>"), "/X"), -1);
}

TEST(Integer, LeavesTheStreamBehindTheReference) {
  const std::string file = document().object(7, "<</X 8 0 R/Y 1>>").object(8, "34").build();
  const Source source = PdfBuilder::openBytes(file);
  source->seekg(static_cast<std::streamoff>(file.find("/X") + 2));
  int value = 0;
  CObj().ReadIntObj(*source, value);
  EXPECT_EQ(source->get(), '/');
}

TEST(Integer, WhatIsNoNumberShowsInTheStreamsStateAlone) {
  CSourFile source(std::string("/A"));
  int value = 77;
  EXPECT_TRUE(CObj().ReadIntObj(source, value));
  EXPECT_EQ(value, 0);
  EXPECT_TRUE(source.fail());
}

TEST(NumberArray, IsDirectOrBehindAReference) {
  EXPECT_THAT(numbersOf(document().object(7, "<</X[1 -2.5 .5]>>"), "/X").values, ElementsAre(1, -2.5, 0.5));
  const Numbers behind = numbersOf(document().object(7, "<</X 8 0 R/Y 1>>").object(8, "[ 1 2 ]"), "/X");
  EXPECT_TRUE(behind.result);
  EXPECT_THAT(behind.values, ElementsAre(1, 2));
  EXPECT_EQ(behind.left, "/Y 1>>");
}

TEST(NumberArray, TakesElementsThatAreReferences) {
  const Numbers numbers = numbersOf(
      document().object(7, "<</X[1 8 0 R 3 9 0 R]/Y 1>>").object(8, "2.5").compressed(20, 9, "4"), "/X");
  EXPECT_TRUE(numbers.result);
  EXPECT_THAT(numbers.values, ElementsAre(1, 2.5, 3, 4));
  EXPECT_EQ(numbers.left, "/Y 1>>");
}

TEST(NumberArray, EmptyOneIsRead) {
  const Numbers numbers = numbersOf(document().object(7, "<</X[ ]>>"), "/X");
  EXPECT_TRUE(numbers.result);
  EXPECT_THAT(numbers.values, IsEmpty());
}

TEST(NumberArray, WithAnotherElementFailsAndStandsAtItsFirstOne) {
  const Numbers numbers = numbersOf(document().object(7, "<</X[1 /A]>>"), "/X");
  EXPECT_FALSE(numbers.result);
  EXPECT_EQ(numbers.left, "1 /A]>>");
}

TEST(NumberArray, NeedsItsBracket) {
  EXPECT_FALSE(numbersOf(document().object(7, "<</X 1 2>>"), "/X").result);
}

TEST(NumberArray, EndsWhereReferencesClose) {
  EXPECT_FALSE(numbersOf(document().object(7, "<</X 8 0 R>>").object(8, "8 0 R"), "/X").result);
  EXPECT_FALSE(numbersOf(document().object(7, "<</X[99 0 R]>>"), "/X").result);
}

TEST(ParseObject, StandsBehindTheHeadInTheFile) {
  const Source source = document().object(7, "[1]").open();
  std::unique_ptr<CSourFile> memory;
  EXPECT_EQ(CObj::ParseObj(*source, memory, SObj(7, 0)), source.file.get());
  EXPECT_EQ(memory, nullptr);
  EXPECT_EQ(source->get(), '[');
}

TEST(ParseObject, StandsBehindTheHeadInMemory) {
  const Source source = document().compressed(20, 7, "[1]").open();
  std::unique_ptr<CSourFile> memory;
  CSourFile* const place = CObj::ParseObj(*source, memory, SObj(7, 0));
  ASSERT_NE(place, nullptr);
  EXPECT_EQ(place, memory.get());
  EXPECT_EQ(place->get(), '[');
}

TEST(ParseObject, LeadsFromAMemorySourceToTheFile) {
  const Source source = document().compressed(20, 7, "8 0 R").object(8, "[1]").open();
  std::unique_ptr<CSourFile> memory;
  CSourFile* const place = CObj::ParseObj(*source, memory, SObj(7, 0));
  ASSERT_NE(place, nullptr);
  source->setstate(std::ios_base::failbit);
  EXPECT_EQ(CObj::ParseObj(*place, memory, SObj(8, 0)), source.file.get());
  EXPECT_EQ(source->get(), '[');
}

TEST(ParseObject, MissingOneFailsAndLeavesAGoodStream) {
  std::string file = document().object(7, "[1]").build();
  file.replace(file.find("7 0 obj"), 7, "7 0 job");
  const Source source = PdfBuilder::openBytes(file);
  std::unique_ptr<CSourFile> memory;
  EXPECT_EQ(CObj::ParseObj(*source, memory, SObj(7, 0)), nullptr);
  EXPECT_EQ(CObj::ParseObj(*source, memory, SObj(99, 0)), nullptr);
  EXPECT_TRUE(source->good());
}

TEST(WriteObject, GivesItTheNewHeadAndMakesItCurrent) {
  const Source source = document().object(7, "[1 8 0 R]").open();
  CDestFile dest;
  dest.insertNewObjTab({0, 0, SObj(7, 0)}, SObj(70, 2));
  EXPECT_TRUE(CObj(SObj(7, 0)).Write(dest, *source));
  EXPECT_EQ(dest, "70 2 obj [1]\nendobj\n");
  EXPECT_EQ(dest.currentObject, SObj(70, 2));
  EXPECT_EQ(dest.endMark, dest.size());
}

TEST(WriteObject, WithoutANewNumberWritesNothing) {
  const Source source = document().object(7, "[1]").open();
  CDestFile dest;
  EXPECT_FALSE(CObj(SObj(7, 0)).Write(dest, *source));
  EXPECT_EQ(dest, "");
}

TEST(WriteObject, RawKeepsItsHeadAndReferences) {
  const Source source = document().object(7, "[1 8 0 R]").open();
  CDestFile dest;
  dest.rawFlag = true;
  EXPECT_TRUE(CObj(SObj(7, 0)).Write(dest, *source));
  EXPECT_EQ(dest, "7 0 obj [1 8 0 R]\nendobj\n");
}
