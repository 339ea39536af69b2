#include "TesselPage/ctesselpage_encode.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "KelpGraphicService/kelp_graphic_service.h"
#include "Tests/Support/pdf_builder.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

namespace service = KelpGraphicService_NS;

/// A page of a source with these objects, harvested from 10 on, and what that printed.
struct Encoded {
  std::istringstream stream;
  std::unique_ptr<CTesselPage_Encode> page;
  std::string printed;
};

std::unique_ptr<Encoded> harvest(PdfBuilder builder) {
  auto encoded = std::make_unique<Encoded>();
  encoded->stream.str(builder.build());
  encoded->page = std::make_unique<CTesselPage_Encode>(encoded->stream, "");
  EXPECT_EQ(encoded->page->init(), 0);
  EXPECT_EQ(encoded->page->setPageNo(1), 0);
  testing::internal::CaptureStdout();
  EXPECT_EQ(encoded->page->setStartObjNo(10), 0);
  encoded->printed = testing::internal::GetCapturedStdout();
  return encoded;
}

/// The only object that a page of this source needs.
std::string harvested(const std::string& entries, const std::string& data, std::string* printed = nullptr) {
  const auto encoded =
      harvest(pdf().onePage("/MediaBox[0 0 9 9]/Resources<</XObject<</X 5 0 R>>>>").stream(5, entries, data));
  if (printed) *printed = encoded->printed;
  return encoded->page->at({10, 0});
}

/// `data` as the service packs it into ASCII85.
std::string ascii85(std::string data) {
  service::FilterPropTD options;
  options.filterKind = service::ftASCII85;
  service::MemTD input;
  service::MemTD output;
  input = {static_cast<std::uint32_t>(data.size()), data.size(), data.data()};
  EXPECT_EQ(service::Ft_DeflateStream(input, output, options, service::ftEncodeWhole), 0);
  const std::string result(output.data, output.size64);
  service::Ft_MemClear(output);
  return result;
}

const std::string highBytes =
    "ab\xff\xfe\x80"
    "cd";

TEST(AsciiSafe, AStreamWithHighBytesIsEncodedAndKeepsItsLastByteBehindTheData) {
  std::string printed;
  const std::string text = harvested("/Filter /FlateDecode", highBytes, &printed);
  const std::string data = ascii85(highBytes);
  EXPECT_EQ(text, "<</Length " + std::to_string(data.size()) +
                      " /Filter  [/ASCII85Decode/FlateDecode ]>>\nstream\r\n" + data + "d\nendstream\n");
  EXPECT_EQ(printed, "stream length old7\n");
}

TEST(AsciiSafe, DecodeParmsStayAsTheyStand) {
  const std::string text = harvested("/Filter/FlateDecode/DecodeParms<</Predictor 12>>", highBytes);
  EXPECT_NE(text.find("/Filter  [/ASCII85Decode/FlateDecode ]/DecodeParms<</Predictor 12>>"), text.npos);
}

TEST(AsciiSafe, TheNewFilterComesFirstInAnArray) {
  const std::string text = harvested("/Filter[/ASCIIHexDecode /FlateDecode]", highBytes);
  EXPECT_NE(text.find("/Filter  [/ASCII85Decode/ASCIIHexDecode /FlateDecode ]"), text.npos);
}

TEST(AsciiSafe, TheTextOfALargerStreamIsSevenBitOnceItsLastByteIs) {
  std::string data = "a";  // white space at the head would count as in front of the data
  for (int i = 0; i < 5000; ++i) data += static_cast<char>(i * 7);
  data += 'z';
  const std::string text = harvested("/Filter/FlateDecode", data);
  EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; }));
  EXPECT_NE(text.find(ascii85(data) + "z\nendstream"), text.npos);
}

struct UnchangedCase {
  const char* entries;
  std::string data;
  const char* printed;
};

TEST(AsciiSafe, OtherStreamsStayAsTheyAre) {
  const UnchangedCase rows[] = {
      {"/Filter/FlateDecode", "only ASCII", "stream length old10\n"},
      {"/Filter/FlateDecode", "the last byte\xff", "stream length old14\n"},
      {"/Filter/FlateDecode", "", "stream length old0\n"},
      {"/Filter/ASCII85Decode", highBytes, ""},
      {"/Filter[/ASCII85Decode/FlateDecode]", highBytes, ""},
      {"", highBytes, ""},
  };
  for (const UnchangedCase& row : rows) {
    std::string printed;
    const std::string text = harvested(row.entries, row.data, &printed);
    EXPECT_EQ(text, "<</Length " + std::to_string(row.data.size()) + " " + row.entries + ">>\nstream\r\n" +
                        row.data + "\nendstream\n");
    EXPECT_EQ(printed, row.printed) << row.entries;
  }
}

TEST(AsciiSafe, AnObjectThatIsNoStreamPrintsNothing) {
  const auto encoded = harvest(pdf()
                                   .onePage("/MediaBox[0 0 9 9]/Resources<</Font<</F 5 0 R>>>>")
                                   .object(5, "<</Filter/FlateDecode/S(\xff)>>"));
  EXPECT_EQ(encoded->page->at({10, 0}), "<</Filter/FlateDecode/S(\xff)>>\n");
  EXPECT_EQ(encoded->printed, "");
}

TEST(AsciiSafe, EveryStreamOfAPageIsLookedAt) {
  const auto encoded = harvest(pdf()
                                   .onePage("/MediaBox[0 0 9 9]/Resources<</XObject<</X 5 0 R/Y 6 0 R>>>>")
                                   .stream(5, "/Filter/FlateDecode", highBytes)
                                   .stream(6, "/Filter/FlateDecode", "plain"));
  EXPECT_EQ(encoded->printed, "stream length old7\nstream length old5\n");
  EXPECT_NE(encoded->page->at({10, 0}).find("/ASCII85Decode"), std::string::npos);
  EXPECT_EQ(encoded->page->at({11, 0}).find("/ASCII85Decode"), std::string::npos);
}

class AsciiSafeEntry : public testing::Test {
 protected:
  AsciiSafeEntry() : page(nothing, "") {}
  CTesselPage_Encode::iterator entry(const std::string& text, int number = 5) {
    return page.insert_or_assign({number, 0}, text).first;
  }
  bool needsEncoding(const std::string& text) {
    testing::internal::CaptureStdout();
    const bool needed = page.checkNeedASCII85Encode(entry(text));
    testing::internal::GetCapturedStdout();
    return needed;
  }
  /// What findStreamPos points at; "none" when it points nowhere.
  std::string streamOf(const std::string& text, long length) {
    std::string* holder = nullptr;
    char* begin = nullptr;
    char* end = nullptr;
    EXPECT_EQ(page.findStreamPos(entry(text), &holder, &begin, &end, length), 0);
    return holder ? std::string(begin, end) : "none";
  }

  std::istringstream nothing;
  CTesselPage_Encode page;
};

struct FilterCase {
  const char* entry;
  const char* made;
};

TEST_F(AsciiSafeEntry, FilterEntriesAreRebuiltNameByName) {
  constexpr FilterCase rows[] = {
      {"/Filter /FlateDecode", "/Filter  [/ASCII85Decode/FlateDecode ]"},
      {"/Filter[/A /B /C]", "/Filter  [/ASCII85Decode/A /B /C ]"},
      {"/Filter 7 0 R", "/Filter "},
      {"/Filter", "/Filter "},
      {"/Filter / /Fl#61te", "/Filter  [/ASCII85Decode/Fl ]"},
      {"", "/Filter /ASCII85Decode "},
      {"/ /", "/Filter /ASCII85Decode "},
  };
  for (const FilterCase& row : rows) EXPECT_EQ(page.constructFilterEntity(row.entry), row.made) << row.entry;
}

TEST_F(AsciiSafeEntry, TheStreamBeginsBehindAllWhiteSpaceAndEndsOneByteEarly) {
  EXPECT_EQ(streamOf("<<>>stream\r\nabcdef\nendstream", 6), "abcde");
  EXPECT_EQ(streamOf("<<>>stream\r\n\n bcdef\nendstream", 6), "bcdef");
  EXPECT_EQ(streamOf("<<>>stream\r\na\nendstream", 1), "");
  EXPECT_EQ(streamOf("<</Length 3>>", 3), "none");
}

TEST_F(AsciiSafeEntry, ALengthBeyondTheTextIsCutToIt) {
  EXPECT_EQ(streamOf("<<>>stream\nabc", 1000), "abc");
  EXPECT_FALSE(needsEncoding("<</Length 2147483647/Filter/F>>stream\nabc"));
  EXPECT_TRUE(needsEncoding("<</Length 2147483647/Filter/F>>stream\na\xff\nendstream"));
}

TEST_F(AsciiSafeEntry, TheFilterEntryIsFoundOrItsPlaceInFrontOfTheStream) {
  std::string* holder = nullptr;
  char* begin = nullptr;
  char* end = nullptr;
  EXPECT_EQ(page.findFilterPos(entry("<</Filter /A>>stream"), &holder, &begin, &end), 0);
  EXPECT_EQ(std::string(begin, end), "/Filter /A");
  EXPECT_EQ(page.findFilterPos(entry("<</Length 1>>stream"), &holder, &begin, &end), 0);
  EXPECT_EQ(begin, end);
  EXPECT_EQ(begin - holder->data(), 13);
  holder = nullptr;
  EXPECT_EQ(page.findFilterPos(entry("<</Length 1>>"), &holder, &begin, &end), 0);
  EXPECT_EQ(holder, nullptr);
}

TEST_F(AsciiSafeEntry, OnlyAFilteredStreamWithHighBytesNeedsEncoding) {
  EXPECT_TRUE(
      needsEncoding("<</Length 3/Filter/A>>stream\n\xff"
                    "bc\nendstream"));
  EXPECT_TRUE(
      needsEncoding("<</Length 3/Filter/A>>stream\na\xff"
                    "c\nendstream"));
  EXPECT_FALSE(needsEncoding("<</Length 3/Filter/A>>stream\nab\xff\nendstream"));
  EXPECT_FALSE(
      needsEncoding("<</Length 3>>stream\n\xff"
                    "bc\nendstream"));
  EXPECT_FALSE(needsEncoding("<</Filter/A/S(\xff\xff)>>"));
  EXPECT_FALSE(needsEncoding(""));
}

TEST_F(AsciiSafeEntry, AnIndirectLengthIsFollowed) {
  entry("3 ", 9);
  EXPECT_TRUE(
      needsEncoding("<</Length 9 0 R/Filter/A>>stream\n\xff"
                    "bc\nendstream"));
  entry("1 ", 9);
  EXPECT_FALSE(
      needsEncoding("<</Length 9 0 R/Filter/A>>stream\n\xff"
                    "bc\nendstream"));
}

TEST(AsciiSafe, APathIsTakenAsByTheBase) {
  CTesselPage_Encode page("/no/such/file.pdf", "");
  EXPECT_EQ(page.init(), Result::notReadable);
}

}  // namespace
