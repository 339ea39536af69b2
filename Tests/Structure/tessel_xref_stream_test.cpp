#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TesselPage/Structure/tessel_fileinfo.h"
#include "TesselPage/Structure/tessel_objflags.h"
#include "Tests/Structure/raw_source.h"
#include "Tests/Support/pdf_builder.h"

namespace {

using TESSEL::SObj;
using tessel_test::deflated;
using tessel_test::RawSource;
using tessel_test::streamBody;

/// What stands behind a cross-reference stream's object number.
std::string body(const std::string& entries, const std::string& data) {
  return "0 obj\n" + streamBody(entries, data) + "\nendobj\n";
}

struct Read {
  explicit Read(const std::string& text, bool hybrid = false, long long header = 0) : source(text) {
    source->headerOffset = header;
    result = source.info().ReadXRefObj(*source, number, hybrid);
  }
  TESSEL::SObjState entry(int num) { return source.info().GetObjState(num, 0); }
  std::size_t entries() { return source.info().objEntries.size(); }

  RawSource source;
  long long number = 7;
  bool result = false;
};

std::string bytes(std::initializer_list<int> values) {
  std::string text;
  for (const int value : values) text += static_cast<char>(value);
  return text;
}

// Entries.

TEST(XRefStream, ReadsTheThreeTypes) {
  Read read(body("/Type/XRef/W[1 2 1]/Size 3", bytes({0, 0, 5, 9, 1, 1, 0, 3, 2, 0, 8, 4})));
  ASSERT_TRUE(read.result);
  EXPECT_EQ(read.entry(0).entryType, 0);
  EXPECT_EQ(read.entry(0).entryOffset, 5);
  EXPECT_EQ(read.entry(0).entryIndex, 9);
  EXPECT_EQ(read.entry(1).entryType, 1);
  EXPECT_EQ(read.entry(1).entryOffset, 256);
  EXPECT_EQ(read.entry(1).entryIndex, 3);
  EXPECT_EQ(read.entry(2).entryType, 2);
  EXPECT_EQ(read.entry(2).entryOffset, 8);
  EXPECT_EQ(read.entry(2).entryIndex, 4);
  EXPECT_EQ(read.entry(1).entryFlag, 0);
  EXPECT_EQ(read.number, -1);
}

TEST(XRefStream, TheHeadersPlaceIsAddedToOffsetsButNotToStreamNumbers) {
  Read read(body("/W[1 1 0]/Size 3", bytes({0, 5, 1, 6, 2, 7})), false, 100);
  EXPECT_EQ(read.entry(0).entryOffset, 105);
  EXPECT_EQ(read.entry(1).entryOffset, 106);
  EXPECT_EQ(read.entry(2).entryOffset, 7);
}

TEST(XRefStream, WithoutATypeFieldEveryEntryIsFree) {
  Read read(body("/W[0 1 0]/Size 2", bytes({5, 6})));
  EXPECT_EQ(read.entry(0).entryType, 0);
  EXPECT_EQ(read.entry(1).entryType, 0);
  EXPECT_EQ(read.entry(1).entryOffset, 6);
}

TEST(XRefStream, AnEntryOfAnotherTypeIsItsTypeAloneAndShiftsTheRest) {
  Read read(body("/W[1 1 0]/Size 2", bytes({3, 1, 44, 99})));
  EXPECT_EQ(read.entry(0).entryType, 3);
  EXPECT_EQ(read.entry(0).entryOffset, 0);
  EXPECT_EQ(read.entry(1).entryType, 1);
  EXPECT_EQ(read.entry(1).entryOffset, 44);
}

TEST(XRefStream, WithoutAnIndexFieldTheIndexIsZero) {
  Read read(body("/W[1 1 0]/Size 1", bytes({2, 9})));
  EXPECT_EQ(read.entry(0).entryIndex, 0);
}

TEST(XRefStream, AnOffsetOfFiveBytesIsKeptWhole) {
  Read read(body("/W[1 5 0]/Size 1", bytes({1, 1, 0, 0, 0, 2})));
  EXPECT_EQ(read.entry(0).entryOffset, 4294967298);
}

TEST(XRefStream, RangesOfTheIndexComeInSequence) {
  Read read(body("/W[1 1 0]/Size 9/Index[5 1 2 2]", bytes({1, 50, 1, 20, 1, 30})));
  EXPECT_EQ(read.entry(5).entryOffset, 50);
  EXPECT_EQ(read.entry(2).entryOffset, 20);
  EXPECT_EQ(read.entry(3).entryOffset, 30);
  EXPECT_EQ(read.entries(), 3U);
}

TEST(XRefStream, AnEntryThatIsThereStays) {
  Read read(body("/W[1 1 0]/Size 9/Index[5 1 5 1]", bytes({1, 50, 1, 60})));
  EXPECT_EQ(read.entry(5).entryOffset, 50);
}

TEST(XRefStream, AHybridStreamFillsTheTableOfItsOwn) {
  Read read(body("/W[1 1 0]/Size 1", bytes({1, 50})), true);
  EXPECT_EQ(read.entries(), 0U);
  EXPECT_EQ(read.source.info().hybridEntries.size(), 1U);
}

TEST(XRefStream, ReadingStopsWhereTheDataEnds) {
  Read read(body("/W[1 1 0]/Size 2147483647", bytes({1, 50, 1, 60, 1})));
  EXPECT_TRUE(read.result);
  EXPECT_EQ(read.entries(), 2U);
}

TEST(XRefStream, EntriesOfNoBytesAreBounded) {
  Read read(body("/W[0 0 0]/Size 2147483647", ""));
  EXPECT_TRUE(read.result);
  EXPECT_EQ(static_cast<long long>(read.entries()), TESSEL::XRefBudget::leastEntries);
}

TEST(XRefStream, HugeAndNegativeWidthsReadNothing) {
  Read huge(body("/W[1 2147483647 2147483647]/Size 1", bytes({1, 50})));
  EXPECT_EQ(huge.entries(), 0U);
  Read negative(body("/W[1 -1 -2]/Size 1", bytes({1, 50})));
  EXPECT_EQ(negative.entry(0).entryType, 1);
  EXPECT_EQ(negative.entry(0).entryOffset, 0);
}

// Filters.

TEST(XRefStream, IsDecoded) {
  Read read(body("/Filter/FlateDecode/W[1 1 0]/Size 1", deflated(bytes({1, 50}))));
  ASSERT_TRUE(read.result);
  EXPECT_EQ(read.entry(0).entryOffset, 50);
}

/// Two rows of two bytes under the "up" predictor: 1 50, 1 60.
const std::string upPredicted = bytes({2, 1, 50, 2, 0, 10});

TEST(XRefStream, ParametersBehindTheFilterAreFound) {
  Read read(body("/Filter/FlateDecode/DecodeParms<</Predictor 12/Columns 2>>/W[1 1 0]/Size 2",
                 deflated(upPredicted)));
  ASSERT_TRUE(read.result);
  EXPECT_EQ(read.entry(0).entryOffset, 50);
  EXPECT_EQ(read.entry(1).entryOffset, 60);
}

TEST(XRefStream, ParametersInFrontOfTheFilterAreFound) {
  Read read(body("/DecodeParms<</Predictor 12/Columns 2>>/W[1 1 0]/Filter/FlateDecode/Size 2",
                 deflated(upPredicted)));
  ASSERT_TRUE(read.result);
  EXPECT_EQ(read.entry(1).entryOffset, 60);
}

TEST(XRefStream, DamagedDataFails) {
  Read read(body("/Filter/FlateDecode/W[1 1 0]/Size 1", "no flate data"));
  EXPECT_FALSE(read.result);
  EXPECT_EQ(read.entries(), 0U);
}

// The dictionary's keys.

TEST(XRefStream, ItsIdentityIsNotedAndMarked) {
  Read read("3 obj\n" + streamBody("/W[1 1 0]/Size 0", "") + "\nendobj\n");
  EXPECT_EQ(read.source.info().identity().identity(), std::pair(7, 3));
  EXPECT_TRUE(read.source.info().identity().hasAny(TESSEL::ObjFlag::xrefStream));
  EXPECT_EQ(read.source->xrefStreamObjs.count(SObj(7, 3)), 1U);
}

TEST(XRefStream, ItsPrevIsGiven) {
  Read read(body("/W[1 1 0]/Size 0/Prev 123", ""));
  EXPECT_EQ(read.number, 123);
}

TEST(XRefStream, TheFirstSizeRootAndEncryptStay) {
  Read read(body("/W[1 1 0]/Size 4/Root 1 2 R/Encrypt 3 4 R/Size 9/Root 5 0 R/Encrypt 6 0 R", ""));
  EXPECT_EQ(read.source.info().size, 4);
  EXPECT_EQ(read.source.info().root.identity(), std::pair(1, 2));
  EXPECT_EQ(read.source.info().encrypt.id.identity(), std::pair(3, 4));
}

TEST(XRefStream, TheLastInfoStaysWithoutItsGeneration) {
  Read read(body("/W[1 1 0]/Info 3 0 R/Info 4 2 R", ""));
  EXPECT_EQ(read.source.info().info.identity().identity(), std::pair(4, 0));
}

TEST(XRefStream, BothIdStringsAreRead) {
  Read read(body("/ID[<4142>(C)]/W[1 1 0]", ""));
  EXPECT_EQ(read.source.info().fileId.first, "AB");
  EXPECT_EQ(read.source.info().fileId.second, "C");
  EXPECT_EQ(read.source.info().fileId.length, 2);
}

TEST(XRefStream, AnIndirectLengthIsFollowed) {
  const std::string object = "\n3 0 obj 2 endobj\n";
  RawSource source(object + "0 obj\n<</W[1 1 0]/Size 1/Length 3 0 R>>\nstream\n" + bytes({1, 50}) +
                   "\nendstream\nendobj\n");
  source.info().objEntries[SObj(3, 0)] = {1, 0, 0, 1, 'n'};
  source->seekg(static_cast<std::streamoff>(object.size()));
  long long number = 7;
  ASSERT_TRUE(source.info().ReadXRefObj(*source, number, false));
  EXPECT_EQ(source.info().GetObjState(0, 0).entryOffset, 50);
}

class BadXRefStream : public testing::TestWithParam<const char*> {};

TEST_P(BadXRefStream, Fails) {
  Read read(GetParam());
  EXPECT_FALSE(read.result);
  EXPECT_EQ(read.number, 7);
}
INSTANTIATE_TEST_SUITE_P(Rows, BadXRefStream,
                         testing::Values("x obj <</W[1 1 0]>> endobj ",     // no generation
                                         "0 xobj <</W[1 1 0]>> endobj ",    //
                                         "0 obj (W) endobj ",               // no dictionary
                                         "0 obj <</Type/ObjStm>> endobj ",  //
                                         "0 obj <</Size x>> endobj ",       //
                                         "0 obj <</Length x>> endobj ",     //
                                         "0 obj <</Filter/None>> endobj ",  //
                                         "0 obj <</W 1 1 0>> endobj ",      //
                                         "0 obj <</W[1 1]>> endobj ",       //
                                         "0 obj <</W[1 1 1 1]>> endobj ",   //
                                         "0 obj <</Index 1>> endobj ",      //
                                         "0 obj <</Index[-1 2]>> endobj ",  //
                                         "0 obj <</Index[1 x]>> endobj ",   //
                                         "0 obj <</Index[1 2 ",             //
                                         "0 obj <</Prev x>> endobj ",       //
                                         "0 obj <</Root x>> endobj ",       //
                                         "0 obj <</ID(A)(B)>> endobj ",     //
                                         "0 obj <</ID[A]>> endobj ",        //
                                         "0 obj <</ID[(A)]>> endobj ",      // one string only
                                         "0 obj <</Encrypt<<>>>> endobj ",  //
                                         "0 obj <</W[1 1 0]>> "));          // no end

}  // namespace
