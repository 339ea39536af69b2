#include <gtest/gtest.h>

#include <cstring>

#include "Tests/KelpGraphicService/codec_fixture.h"

namespace KelpGraphicService_NS {
namespace {

TEST(Service, InitMakesARecordEmpty) {
  char byte = 'x';
  MemTD mem{1, 1, &byte};
  Ft_MemInit(mem);
  EXPECT_EQ(mem.size, 0U);
  EXPECT_EQ(mem.size64, 0U);
  EXPECT_EQ(mem.data, nullptr);
}

TEST(Service, ClearEmptiesARecordAndMayBeRepeated) {
  MemTD mem;
  std::string data = "41>";
  FilterPropTD prop;
  prop.filterKind = ftASCIIHex;
  ASSERT_EQ(Ft_InflateStream(inputOf(data), mem, prop), ftSuccess);
  Ft_MemClear(mem);
  Ft_MemClear(mem);
  EXPECT_EQ(mem.size64, 0U);
  EXPECT_EQ(mem.data, nullptr);
}

TEST(Service, BothSizesHoldTheByteCount) {
  MemTD mem;
  std::string data = "414243>";
  FilterPropTD prop;
  prop.filterKind = ftASCIIHex;
  ASSERT_EQ(Ft_InflateStream(inputOf(data), mem, prop), ftSuccess);
  EXPECT_EQ(mem.size, 3U);
  EXPECT_EQ(mem.size64, 3U);
  Ft_MemClear(mem);
}

TEST(Service, FailureLeavesTheOutputEmpty) {
  MemTD mem;
  std::string data = "4142!";
  FilterPropTD prop;
  prop.filterKind = ftASCIIHex;
  EXPECT_EQ(Ft_InflateStream(inputOf(data), mem, prop), ftDamaged);
  EXPECT_EQ(mem.size64, 0U);
  EXPECT_EQ(mem.data, nullptr);
}

TEST(Service, UnknownFiltersFailWithACodeOfTheirOwn) {
  for (const int kind : {-1, 0, 8, 10, 11}) {
    FilterPropTD prop;
    prop.filterKind = kind;
    EXPECT_EQ(inflateWith(prop, "abc"), failure(ftUnknownFilter)) << kind;
  }
}

TEST(Service, OnlyTwoFiltersEncode) {
  for (const FILTER_TYPE kind : {ftLZW, ftASCIIHex, ftRunLength, ftCCITTFax, ftDCT, ftUnknown})
    EXPECT_EQ(deflateWith(kind, "abc"), failure(ftUnknownFilter)) << kind;
}

TEST(Service, OnlyOneModeEncodes) {
  for (const int mode : {-1, 0, 1, 3}) EXPECT_EQ(deflateWith(ftASCII85, "abc", mode), failure(ftUnknownMode));
}

TEST(Service, NullInputIsAnEmptyOne) {
  for (int kind = ftFlate; kind <= ftDCT; ++kind) {
    FilterPropTD prop;
    prop.filterKind = kind;
    MemTD output;
    EXPECT_EQ(Ft_InflateStream(MemTD{}, output, prop), ftSuccess) << kind;
    Ft_MemClear(output);
  }
}

TEST(Service, RecordIsReadAtTheOffsetsOfItsFields) {
  unsigned char raw[80] = {};
  raw[0] = ftFlate;
  raw[8] = 3;
  raw[32] = 12;
  FilterPropTD prop;
  std::memcpy(&prop, raw, sizeof raw);
  EXPECT_EQ(inflateWith(prop, zlibStream(hex("02 010203 02 010101"))), success(hex("010203 020304")));
}

TEST(Service, NoiseNeverEscapes) {
  for (int kind = ftFlate; kind <= ftDCT; ++kind) {
    for (unsigned seed = 0; seed < 200; ++seed) {
      FilterPropTD prop;
      prop.filterKind = kind;
      prop.predictor = static_cast<int>(seed % 16);
      prop.columns = static_cast<int>(seed * 7);
      prop.k = static_cast<int>(seed % 3) - 1;
      const int code = inflateWith(prop, noise(seed * 3, seed)).code;
      ASSERT_TRUE(code == ftSuccess || code == ftDamaged) << kind << ", seed " << seed << ": " << code;
    }
  }
}

}  // namespace
}  // namespace KelpGraphicService_NS
