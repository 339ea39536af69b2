#include <gtest/gtest.h>

#include <limits>

#include "Tests/KelpGraphicService/codec_fixture.h"

namespace KelpGraphicService_NS {
namespace {

constexpr int group4 = -1;
constexpr int group3In2D = 4;

/// Four rows of 20 pixels, in each coding.
constexpr const char* rows = "0F8130 1E8160 3C81C0 0F8180";
constexpr const char* inGroup4 = "36679054111D6952E2A18EA0 02002 0";
constexpr const char* inGroup3 = "001B3E4F800C31D721F1C005DBAE9C006CFB80";
constexpr const char* inGroup3In2D = "001D9F27C0048223AD2800DDBAE9C00418EA";
constexpr const char* inBareRows = "B3E4FC31D721F1DDBAE9ECFB80";
constexpr const char* inAlignedRows = "B3E4F8863AE43E3876EBA7B3EE00";

FilterPropTD fax(int k, int columns = 20) {
  FilterPropTD prop;
  prop.filterKind = ftCCITTFax;
  prop.k = k;
  prop.columns = columns;
  prop.blackIs1 = 1;
  return prop;
}

FilterPropTD alignedFax() {
  FilterPropTD prop = fax(0);
  prop.encodedByteAlign = 1;
  return prop;
}

TEST(CCITTFax, DecodesEachCoding) {
  EXPECT_EQ(inflateWith(fax(group4), hex(inGroup4)), success(hex(rows)));
  EXPECT_EQ(inflateWith(fax(group3In2D), hex(inGroup3In2D)), success(hex(rows)));
  EXPECT_EQ(inflateWith(fax(0), hex(inGroup3)), success(hex(rows)));
  EXPECT_EQ(inflateWith(fax(0), hex(inBareRows)), success(hex(rows)));
  EXPECT_EQ(inflateWith(alignedFax(), hex(inAlignedRows)), success(hex(rows)));
}

TEST(CCITTFax, WhiteIs1UnlessBlackIs1) {
  FilterPropTD prop = fax(group4);
  prop.blackIs1 = 0;
  EXPECT_EQ(inflateWith(prop, hex(inGroup4)), success(hex("F07ECF E17E9F C37E3F F07E7F")));
}

TEST(CCITTFax, RowsEndTheImageEarly) {
  FilterPropTD prop = fax(group4);
  prop.rows = 2;
  EXPECT_EQ(inflateWith(prop, hex(inGroup4)), success(hex("0F8130 1E8160")));
}

TEST(CCITTFax, WhatFollowsTheEndMarkIsNotRead) {
  EXPECT_EQ(inflateWith(fax(group4), hex(inGroup4) + "\r\nendstream"), success(hex(rows)));
}

TEST(CCITTFax, ImageCutAtEveryLengthGivesWholeRows) {
  const std::pair<FilterPropTD, const char*> codings[] = {{fax(group4), inGroup4},
                                                          {fax(group3In2D), inGroup3In2D},
                                                          {fax(0), inGroup3},
                                                          {fax(0), inBareRows},
                                                          {alignedFax(), inAlignedRows}};
  for (const auto& [prop, coded] : codings) {
    const std::string whole = hex(coded);
    for (std::size_t n = 0; n <= whole.size(); ++n) {
      const Outcome got = inflateWith(prop, whole.substr(0, n));
      ASSERT_EQ(got.code, ftSuccess) << coded << " cut at " << n;
      ASSERT_EQ(got.bytes, hex(rows).substr(0, got.bytes.size())) << coded << " cut at " << n;
      ASSERT_EQ(got.bytes.size() % 3, 0U) << coded << " cut at " << n;
    }
  }
}

TEST(CCITTFax, RowThatIsTooLongIsDamage) {
  std::string data = hex(inGroup4);
  data[5] = static_cast<char>(data[5] ^ 0x55);
  EXPECT_EQ(inflateWith(fax(group4), data), failure(ftDamaged));
}

TEST(CCITTFax, ColumnsDefaultTo1728) {
  // Each 1 bit is a row like the white one above it.
  FilterPropTD prop = fax(group4, 0);
  prop.rows = 3;
  EXPECT_EQ(inflateWith(prop, "\xFF"), success(std::string(3 * 1728 / 8, '\0')));
}

TEST(CCITTFax, RowsAreBoundedByTheBitsOfTheData) {
  FilterPropTD prop = fax(group4, 8);
  prop.rows = std::numeric_limits<int>::max();
  EXPECT_EQ(inflateWith(prop, "\xFF\xFF"), success(std::string(16, '\0')));
}

TEST(CCITTFax, AbsurdColumnsAreDamage) {
  EXPECT_EQ(inflateWith(fax(group4, std::numeric_limits<int>::max()), hex(inGroup4)), failure(ftDamaged));
}

TEST(CCITTFax, NoDataGiveNoRows) { EXPECT_EQ(inflateWith(fax(group4), ""), success("")); }

TEST(CCITTFax, NothingIsPrinted) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  inflateWith(fax(group4), noise(500));
  inflateWith(fax(0), noise(500));
  EXPECT_EQ(testing::internal::GetCapturedStderr() + testing::internal::GetCapturedStdout(), "");
}

}  // namespace
}  // namespace KelpGraphicService_NS
