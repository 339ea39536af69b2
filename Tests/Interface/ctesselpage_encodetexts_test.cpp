// The texts of the ASCII-safe variant, written out. The encoded data was made by another program.

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "TesselPage/ctesselpage_encode.h"
#include "Tests/Support/pdf_builder.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

const std::string highBytes =
    "ab\xff\xfe\x80"
    "cd";
const std::string encodedHighBytes = "@:K99J7E*~>";

/// An opened page whose map a test may fill before the harvest.
class Encode : public testing::Test {
 protected:
  void open(const PdfBuilder& builder) {
    stream.str(builder.build());
    page = std::make_unique<CTesselPage_Encode>(stream, "");
    ASSERT_EQ(page->init(), 0);
    ASSERT_EQ(page->setPageNo(1), 0);
  }
  /// What the harvest from 10 on prints.
  std::string harvest() {
    testing::internal::CaptureStdout();
    EXPECT_EQ(page->setStartObjNo(10), 0);
    return testing::internal::GetCapturedStdout();
  }
  /// The text of object 10 when the page needs a stream like that.
  std::string harvested(const std::string& entries, const std::string& data) {
    open(pdf().onePage("/Resources<</XObject<</X 5 0 R>>>>").stream(5, entries, data));
    harvest();
    return text(10);
  }
  std::string& text(int number) { return (*page)[{number, 0}]; }

  std::istringstream stream;
  std::unique_ptr<CTesselPage_Encode> page;
};

TEST_F(Encode, PutsEncodedDataInFrontOfTheLastByte) {
  EXPECT_EQ(harvested("/Filter /FlateDecode", highBytes),
            "<</Length 11 /Filter  [/ASCII85Decode/FlateDecode ]>>\nstream\r\n" + encodedHighBytes +
                "d\nendstream\n");
}

// The data counts from behind the white space, and as many bytes of what follows it are taken along.
TEST_F(Encode, WhiteSpaceThatBeginsTheDataStaysInFront) {
  EXPECT_EQ(harvested("/Filter /FlateDecode",
                      "\n\xff\xfe"
                      "ab"),
            "<</Length 9 /Filter  [/ASCII85Decode/FlateDecode ]>>\nstream\r\n\ns8HG9$3~>\nendstream\n");
}

TEST_F(Encode, AFilterThatIsAReferenceIsLost) {
  open(pdf()
           .onePage("/Resources<</XObject<</X 5 0 R>>>>")
           .stream(5, "/Filter 6 0 R", highBytes)
           .object(6, "/FlateDecode"));
  EXPECT_EQ(harvest(), "stream length old7\n");
  EXPECT_EQ(text(10), "<</Length 11 /Filter >>\nstream\r\n" + encodedHighBytes + "d\nendstream\n");
  EXPECT_EQ(text(11), "/FlateDecode\n");
}

TEST_F(Encode, AnEntryThatIsNoFilterEntryIsNone) {
  EXPECT_EQ(harvested("/Filter null", highBytes),
            "<</Length 7 /Filter null>>\nstream\r\n" + highBytes + "\nendstream\n");
}

TEST_F(Encode, AnAscii85FilterAnywhereInTheEntryIsEnough) {
  for (const std::string entry : {"/Filter[/FlateDecode/ASCII85Decode]", "/Filter/ASCII85DecodeToo"})
    EXPECT_EQ(harvested(entry, highBytes),
              "<</Length 7 " + entry + ">>\nstream\r\n" + highBytes + "\nendstream\n");
}

TEST_F(Encode, OneByteThatIsTheLastCountsAsAscii) {
  open(pdf().onePage("/Resources<</XObject<</X 5 0 R>>>>").stream(5, "/Filter/FlateDecode", "\xff"));
  EXPECT_EQ(harvest(), "stream length old1\n");
  EXPECT_EQ(text(10), "<</Length 1 /Filter/FlateDecode>>\nstream\r\n\xff\nendstream\n");
}

TEST_F(Encode, WhatIsEncodedIsNotLookedAtAgain) {
  const std::string once = harvested("/Filter/FlateDecode", highBytes);
  EXPECT_EQ(harvest(), "");
  EXPECT_EQ(text(10), once);
}

struct LengthCase {
  const char* before;
  const char* after;
};

// As many bytes go as the old number has digits, from where the value begins.
TEST_F(Encode, TheLengthGetsItsDigitsReplaced) {
  constexpr LengthCase rows[] = {{"/Length 7/N 1", "/Length 11/N 1"},
                                 {"/Length 7 /N 1", "/Length 11 /N 1"},
                                 {"/Length 007/N 1", "/Length 1107/N 1"}};
  for (const LengthCase& row : rows) {
    open(pdf().onePage(""));
    text(50) = std::string("<<") + row.before + "/Filter/A>>stream\n" + highBytes + "\nendstream";
    harvest();
    EXPECT_EQ(text(50), std::string("<<") + row.after + "/Filter  [/ASCII85Decode/A ]>>stream\n" +
                            encodedHighBytes + "d\nendstream");
  }
}

TEST_F(Encode, TheLengthMayBeAnObjectOfItsOwn) {
  open(pdf().onePage(""));
  text(50) = "<</Length 51 0 R/Filter/A>>stream\n" + highBytes + "\nendstream";
  text(51) = "7 ";
  harvest();
  EXPECT_EQ(text(50),
            "<</Length 51 0 R/Filter  [/ASCII85Decode/A ]>>stream\n" + encodedHighBytes + "d\nendstream");
  EXPECT_EQ(text(51), "11 ");
}

TEST_F(Encode, DigitsOfPowersOfTenAreCountedRight) {
  for (const std::size_t size : {9U, 10U, 99U, 100U, 999U, 1000U, 10000U}) {
    open(pdf().onePage(""));
    text(50) = "<</Length " + std::to_string(size) + "/Filter/A>>stream\n\xff" + std::string(size - 1, 'x') +
               "\nendstream";
    harvest();
    const std::size_t data = text(50).find("stream\n") + 7, end = text(50).find("~>") + 2;
    EXPECT_TRUE(text(50).starts_with("<</Length " + std::to_string(end - data) + "/Filter")) << size;
    EXPECT_EQ(text(50).substr(end), "x\nendstream");
  }
}

}  // namespace
