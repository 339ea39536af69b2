#include <gtest/gtest.h>

#include "KelpGraphicService/kelp_codecs.h"
#include "Tests/KelpGraphicService/codec_fixture.h"

namespace KelpGraphicService_NS {
namespace {

constexpr std::size_t checksumSize = 4;

std::string page() {
  std::string text;
  for (int i = 0; i < 40; ++i) text += "q 1 0 0 1 " + std::to_string(i * 17) + " 72 cm BT (line) Tj ET Q\n";
  return text;
}

Bytes bytesOf(const std::string& text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

TEST(Flate, DecodesWhatZlibPacked) {
  const std::string plains[] = {"", "a", page(), std::string(1 << 20, '\0'), noise(300000)};
  for (const std::string& plain : plains) {
    for (const int level : {0, 1, 6, 9})
      EXPECT_EQ(inflateAs(ftFlate, zlibStream(plain, level)), success(plain));
  }
}

TEST(Flate, DecodesAStreamWrittenOut) {
  EXPECT_EQ(inflateAs(ftFlate, hex("789C 4B4C4A06 00 024D0127")), success("abc"));
}

TEST(Flate, NoDataGiveNoData) { EXPECT_EQ(inflateAs(ftFlate, ""), success("")); }

TEST(Flate, StreamCutAtEveryLengthGivesABeginning) {
  const std::string plain = page();
  const std::string packed = zlibStream(plain);
  std::size_t before = 0;
  for (std::size_t n = 0; n <= packed.size(); ++n) {
    const Outcome got = inflateAs(ftFlate, packed.substr(0, n));
    ASSERT_EQ(got.code, ftSuccess) << "cut at " << n;
    ASSERT_EQ(got.bytes, plain.substr(0, got.bytes.size())) << "cut at " << n;
    ASSERT_GE(got.bytes.size(), before) << "cut at " << n;
    before = got.bytes.size();
  }
  EXPECT_EQ(before, plain.size());
}

TEST(Flate, HalfAStreamGivesAboutHalfThePlainBytes) {
  const std::string plain = noise(100000);
  const Outcome got = inflateAs(ftFlate, zlibStream(plain).substr(0, 50000));
  EXPECT_EQ(got.code, ftSuccess);
  EXPECT_GT(got.bytes.size(), 49000U);
  EXPECT_EQ(got.bytes, plain.substr(0, got.bytes.size()));
}

TEST(Flate, WrongChecksumCountsNothing) {
  std::string packed = zlibStream(page());
  packed.back() = static_cast<char>(packed.back() ^ 0x55);
  EXPECT_EQ(inflateAs(ftFlate, packed), success(page()));
}

TEST(Flate, MissingChecksumCountsNothing) {
  const std::string packed = zlibStream(page());
  EXPECT_EQ(inflateAs(ftFlate, packed.substr(0, packed.size() - checksumSize)), success(page()));
}

TEST(Flate, WhatFollowsTheStreamIsNotRead) {
  EXPECT_EQ(inflateAs(ftFlate, zlibStream(page()) + "\r\nendstream" + noise(50)), success(page()));
}

TEST(Flate, DamageInTheMiddleIsDamage) {
  struct Case {
    const char* what;
    std::string stream;
  };
  const Case cases[] = {
      {"block type 3", hex("789C 07") + std::string(20, 'x')},
      {"stored block whose length check is wrong", hex("789C 01 0300 FCFE 616263 00000000")},
      {"distance before the start", hex("789C 4B 03 52 00 00 00 00 00")},
      {"literal 'a', then length code 286", hex("789C 4B1C0300 00000000")},
      {"literal 'a', then distance code 30", hex("789C 4B043E00 00000000")},
      {"the same without a checksum", hex("789C 4B1C0300")},
      {"sound block, then block type 3", hex("789C 00 0300 FCFF 616263 07 00000000")},
  };
  for (const Case& c : cases) EXPECT_EQ(inflateAs(ftFlate, c.stream), failure(ftDamaged)) << c.what;
}

TEST(Flate, FlippedByteNeverGivesMoreThanAFailureOrOtherBytes) {
  const std::string packed = zlibStream(page());
  int damaged = 0;
  for (std::size_t i = 2; i < packed.size() - checksumSize; ++i) {
    std::string bad = packed;
    bad[i] = static_cast<char>(~bad[i]);
    const Outcome got = inflateAs(ftFlate, bad);
    ASSERT_TRUE(got.code == ftSuccess || got.code == ftDamaged) << "byte " << i;
    ASSERT_NE(got, success(page())) << "byte " << i;
    damaged += got.code == ftDamaged;
  }
  EXPECT_GT(damaged, 0);
}

TEST(Flate, BrokenHeaderIsDamage) {
  const std::string body = zlibStream(page()).substr(2);
  for (const char* header : {"789D", "799B", "889C", "78BB", "0000", "FFFF"})
    EXPECT_EQ(inflateAs(ftFlate, hex(header) + body), failure(ftDamaged)) << header;
  EXPECT_EQ(inflateAs(ftFlate, "a"), failure(ftDamaged));
}

TEST(Flate, EveryHeaderOfTheFormatIsTaken) {
  const std::string body = zlibStream(page()).substr(2);
  for (const char* header : {"7801", "785E", "789C", "78DA", "081D", "68DE"})
    EXPECT_EQ(inflateAs(ftFlate, hex(header) + body), success(page())) << header;
}

TEST(Flate, ResultPastTheLimitIsTooLarge) {
  const std::string packed = zlibStream(std::string(5000, 'a'));
  Buffer small(4999);
  EXPECT_EQ(decodeFlate(bytesOf(packed), small), ftTooLarge);
  Buffer enough(5000);
  EXPECT_EQ(decodeFlate(bytesOf(packed), enough), ftSuccess);
  EXPECT_EQ(enough.size(), 5000U);
}

TEST(Flate, CutStreamPastTheLimitIsTooLarge) {
  const std::string packed = zlibStream(noise(5000));
  Buffer small(3000);
  EXPECT_EQ(decodeFlate(bytesOf(packed.substr(0, 4000)), small), ftTooLarge);
}

TEST(Flate, EncodesWhatZlibUnpacks) {
  for (const std::string& plain : {std::string(), page(), noise(70000)}) {
    const Outcome packed = deflateWith(ftFlate, plain);
    ASSERT_EQ(packed.code, ftSuccess);
    std::string back(plain.size() + 1, '\0');
    uLongf size = back.size();
    ASSERT_EQ(uncompress(reinterpret_cast<Bytef*>(back.data()), &size,
                         reinterpret_cast<const Bytef*>(packed.bytes.data()), packed.bytes.size()),
              Z_OK);
    EXPECT_EQ(back.substr(0, size), plain);
  }
}

}  // namespace
}  // namespace KelpGraphicService_NS
