#include "TesselPage/Structure/tessel_filter.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <sstream>

namespace TESSEL {
namespace {

using KelpGraphicService_NS::FILTER_TYPE;
using KelpGraphicService_NS::FilterPropTD;

/// A chain that lets its records be seen, and the stream that it was read from.
class Chain : public CFilter {
 public:
  explicit Chain(const std::string& behindKey, long long startPos = 0) : in(behindKey) {
    result = ReadFilter(in, startPos);
  }
  std::size_t size() const { return chain.size(); }
  FilterPropTD& at(int place) { return chain.at(place); }
  std::string rest() { return std::string(std::istreambuf_iterator<char>(in), {}); }
  int decode(std::string data) {
    decoded = std::move(data);
    return filterStream(decoded, out);
  }

  std::istringstream in;
  bool result;
  std::string decoded;
  std::string out;
};

std::string packed(const std::string& plain) {
  uLongf size = compressBound(plain.size());
  std::string bytes(size, '\0');
  compress(reinterpret_cast<Bytef*>(bytes.data()), &size, reinterpret_cast<const Bytef*>(plain.data()),
           plain.size());
  bytes.resize(size);
  return bytes;
}

TEST(FilterType, NamesAreMatchedExactly) {
  const std::pair<const char*, int> names[] = {
      {"/FlateDecode", 1},
      {"/Fl", 1},
      {"/LZWDecode", 2},
      {"/LZW", 2},
      {"/ASCIIHexDecod", 3},
      {"/AHx", 3},
      {"/A85", 4},
      {"/ASCII85Decode", 4},
      {"/RL", 5},
      {"/RunLengthDecode", 5},
      {"/CCITTFaxDecode", 6},
      {"/CCF", 6},
      {"/DCTDecode", 7},
      {"/DCT", 7},
      {"/ASCIIHexDecode", 10},
      {"/JPXDecode", 10},
      {"FlateDecode", 10},
      {"/flatedecode", 10},
      {"/Crypt", 10},
      {"", 10},
  };
  for (const auto& [name, type] : names) EXPECT_EQ(CFilter::GetFilterType(name), type) << name;
}

TEST(FilterType, OneToSevenAreDecoded) {
  for (int type = -1; type <= 11; ++type)
    EXPECT_EQ(CFilter::IsNeedCompType(static_cast<FILTER_TYPE>(type)), type >= 1 && type <= 7) << type;
}

TEST(ReadFilter, SingleNameStandsAtPlaceZero) {
  Chain chain("/FlateDecode/Length 5>>stream");
  EXPECT_TRUE(chain.result);
  ASSERT_EQ(chain.size(), 1U);
  EXPECT_EQ(chain.at(0).filterKind, 1);
  EXPECT_EQ(chain.at(0).earlyChange, 1);
  EXPECT_EQ(chain.at(0).predictor, 0);
}

TEST(ReadFilter, StreamStandsBehindTheNameAgain) {
  Chain chain("/Fl /DecodeParms<</Columns 4>>/Length 5>>stream");
  EXPECT_TRUE(chain.result);
  EXPECT_EQ(chain.rest(), " /DecodeParms<</Columns 4>>/Length 5>>stream");
}

TEST(ReadFilter, ParametersBehindASingleName) {
  Chain chain(
      "/Fl/DecodeParms<</Columns 4/Predictor 12/Colors 3/BitsPerComponent 4/EarlyChange 0/K -1/X[3]>>"
      "/Length 5>>stream");
  EXPECT_TRUE(chain.result);
  EXPECT_EQ(chain.at(0).columns, 4);
  EXPECT_EQ(chain.at(0).predictor, 12);
  EXPECT_EQ(chain.at(0).colors, 3);
  EXPECT_EQ(chain.at(0).bitsPerComponent, 4);
  EXPECT_EQ(chain.at(0).earlyChange, 0);
  EXPECT_EQ(chain.at(0).k, 0);
}

TEST(ReadFilter, ParametersBeforeTheNameAreFoundFromTheStartPosition) {
  const std::string dictionary = "<</DecodeParms<</Columns 4>>/Filter/Fl/Length 5>>stream";
  std::istringstream in(dictionary);
  in.seekg(static_cast<std::streamoff>(dictionary.find("/Fl/")));
  struct Open : CFilter {
    using CFilter::chain;
  } filter;
  ASSERT_TRUE(filter.ReadFilter(in, 2));
  EXPECT_EQ(filter.chain.at(0).columns, 4);
  EXPECT_EQ(in.tellg(), static_cast<std::streamoff>(dictionary.find("/Length")));
}

TEST(ReadFilter, ParametersBehindTheKeywordStreamAreNotSeen) {
  Chain chain("/Fl/Length 5>>stream /DecodeParms<</Columns 4>>");
  EXPECT_TRUE(chain.result);
  EXPECT_EQ(chain.at(0).columns, 0);
}

TEST(ReadFilter, DictionaryWithoutStreamIsReadToItsEnd) {
  Chain chain("/Fl/Length 5>>");
  EXPECT_TRUE(chain.result);
  EXPECT_EQ(chain.size(), 1U);
  EXPECT_TRUE(chain.in.fail());
}

TEST(ReadFilter, BrokenParametersFailAndLeaveTheChainEmpty) {
  for (const char* text : {"/Fl/DecodeParms 5 0 R>>stream", "/Fl/DecodeParms[<</Columns 4>>]>>stream",
                           "/Fl/DecodeParms<</Columns 4", "/Fl/DecodeParms<</Columns null>>>>stream"}) {
    Chain chain(text);
    EXPECT_FALSE(chain.result) << text;
    EXPECT_EQ(chain.size(), 0U) << text;
  }
}

TEST(ReadFilter, UnknownNamesFail) {
  for (const char* text : {"/ASCIIHexDecode>>stream", "/JPXDecode>>stream", "5 0 R>>stream", "<</Fl>>", ""}) {
    Chain chain(text);
    EXPECT_FALSE(chain.result) << text;
    EXPECT_EQ(chain.size(), 0U) << text;
  }
}

TEST(ReadFilter, ArrayKeepsItsOrder) {
  Chain chain("[/A85 /LZWDecode/Fl]/Length 5>>stream");
  EXPECT_TRUE(chain.result);
  ASSERT_EQ(chain.size(), 3U);
  EXPECT_EQ(chain.at(0).filterKind, 4);
  EXPECT_EQ(chain.at(1).filterKind, 2);
  EXPECT_EQ(chain.at(2).filterKind, 1);
  EXPECT_EQ(chain.rest(), "/Length 5>>stream");
}

TEST(ReadFilter, EmptyArrayIsAnEmptyChain) {
  Chain chain("[]/Length 5>>stream");
  EXPECT_TRUE(chain.result);
  EXPECT_FALSE(chain.hasFilters());
}

TEST(ReadFilter, ParametersBehindAnArrayAreNotSeen) {
  Chain chain("[/Fl]/DecodeParms<</Columns 4>>>>stream");
  EXPECT_TRUE(chain.result);
  EXPECT_EQ(chain.at(0).columns, 0);
}

TEST(ReadFilter, ParametersInAnArrayFailAsTheNextName) {
  Chain chain("[/Fl/DecodeParms<</Columns 4>>/AHx]>>stream");
  EXPECT_FALSE(chain.result);
  ASSERT_EQ(chain.size(), 1U);
  EXPECT_EQ(chain.at(0).columns, 4);
}

TEST(ReadFilter, UnknownNameInAnArrayKeepsThoseBefore) {
  Chain chain("[/AHx/Unknown/Fl]>>stream");
  EXPECT_FALSE(chain.result);
  EXPECT_EQ(chain.size(), 1U);
}

TEST(ReadFilter, ArrayWithoutItsEndFails) { EXPECT_FALSE(Chain("[/Fl /AHx ").result); }

TEST(ReadFilter, PlaceThatIsTakenStays) {
  Chain chain("/Fl>>stream");
  std::istringstream again("/AHx>>stream");
  EXPECT_TRUE(chain.ReadFilter(again, 0));
  ASSERT_EQ(chain.size(), 1U);
  EXPECT_EQ(chain.at(0).filterKind, 1);
}

TEST(FilterStream, EmptyChainChangesNothing) {
  Chain chain("[]");
  EXPECT_EQ(chain.decode("4142>"), 0);
  EXPECT_EQ(chain.decoded, "4142>");
  EXPECT_EQ(chain.out, "");
}

TEST(FilterStream, BothStringsHoldTheDecodedBytes) {
  Chain chain("/AHx>>stream");
  EXPECT_EQ(chain.decode("4142>"), 0);
  EXPECT_EQ(chain.decoded, "AB");
  EXPECT_EQ(chain.out, "AB");
}

TEST(FilterStream, FiltersRunInTheArraysOrder) {
  Chain chain("[/AHx/A85]>>stream");
  EXPECT_EQ(chain.decode("39 6A 71 6F 5E 7E 3E>"), 0);
  EXPECT_EQ(chain.out, "Man ");
}

TEST(FilterStream, PredictedRowsOfFlateData) {
  Chain chain("/FlateDecode/DecodeParms<</Predictor 12/Columns 3>>>>stream");
  EXPECT_EQ(chain.decode(packed(std::string("\2abc\2\1\1\1", 8))), 0);
  EXPECT_EQ(chain.out, "abcbcd");
}

TEST(FilterStream, EarlyChangeReachesTheService) {
  // 0 bits are the code 0 at every width. By the early rule 766 codes take 7406 bits, by the other 767 take
  // 7415.
  const std::string zeros(7416 / 8, '\0');
  Chain byDefault("/LZW>>stream");
  Chain late("/LZW/DecodeParms<</EarlyChange 0>>>>stream");
  EXPECT_EQ(byDefault.decode(zeros), 0);
  EXPECT_EQ(late.decode(zeros), 0);
  EXPECT_EQ(byDefault.out, std::string(766, '\0'));
  EXPECT_EQ(late.out, std::string(767, '\0'));
}

TEST(FilterStream, DamageIs5000) {
  Chain chain("/AHx>>stream");
  EXPECT_EQ(chain.decode("41!!"), 5000);
  EXPECT_EQ(chain.decoded, "41!!");
  EXPECT_EQ(chain.out, "");
}

TEST(FilterStream, DamageInTheSecondFilterKeepsWhatTheFirstGave) {
  Chain chain("[/AHx/AHx]>>stream");
  EXPECT_EQ(chain.decode("2121>"), 5000);
  EXPECT_EQ(chain.decoded, "!!");
  EXPECT_EQ(chain.out, "!!");
}

TEST(FilterStream, OtherFailuresKeepTheServicesCode) {
  Chain chain("/AHx>>stream");
  chain.at(0).filterKind = 10;
  EXPECT_EQ(chain.decode("41>"), KelpGraphicService_NS::ftUnknownFilter);
}

TEST(FilterStream, FlateRecordsAreBroughtToTheirDefaults) {
  Chain chain("/Fl>>stream");
  chain.at(0).k = chain.at(0).rows = chain.at(0).endOfLine = -1;
  chain.at(0).blackIs1 = chain.at(0).encodedByteAlign = -1;
  ASSERT_EQ(chain.decode(packed("text")), 0);
  const FilterPropTD& record = chain.at(0);
  EXPECT_EQ(record.colors, 1);
  EXPECT_EQ(record.quality, 100);
  EXPECT_EQ(record.bitsPerComponent, 8);
  EXPECT_EQ(record.columns, 0);
  for (const int value : {record.k, record.rows, record.endOfLine, record.blackIs1, record.encodedByteAlign})
    EXPECT_EQ(value, 0);
}

TEST(FilterStream, OtherRecordsStayAsRead) {
  Chain chain("/AHx>>stream");
  ASSERT_EQ(chain.decode("41>"), 0);
  EXPECT_EQ(chain.at(0).colors, 0);
  EXPECT_EQ(chain.at(0).quality, 0);
  EXPECT_EQ(chain.at(0).bitsPerComponent, 0);
}

TEST(FilterStreamType, CutsToTheLengthFirst) {
  Chain chain("/AHx>>stream");
  std::string data = "414243>";
  int length = 4;
  EXPECT_EQ(chain.filterStreamType(data, length), 0);
  EXPECT_EQ(data, "AB");
  EXPECT_EQ(length, 2);
}

TEST(FilterStreamType, LengthPastTheDataCutsNothing) {
  Chain chain("/AHx>>stream");
  std::string data = "4142>";
  int length = 500;
  EXPECT_EQ(chain.filterStreamType(data, length), 0);
  EXPECT_EQ(data, "AB");
  EXPECT_EQ(length, 2);
}

TEST(FilterStreamType, FailureLeavesTheLength) {
  Chain chain("/AHx>>stream");
  std::string data = "41!!";
  int length = 3;
  EXPECT_EQ(chain.filterStreamType(data, length), 5000);
  EXPECT_EQ(data, "41!");
  EXPECT_EQ(length, 3);
}

TEST(FilterStreamType, EmptyChainOnlyCuts) {
  Chain chain("[]");
  std::string data = "abcdef";
  int length = 2;
  EXPECT_EQ(chain.filterStreamType(data, length), 0);
  EXPECT_EQ(data, "ab");
  EXPECT_EQ(length, 2);
}

}  // namespace
}  // namespace TESSEL
