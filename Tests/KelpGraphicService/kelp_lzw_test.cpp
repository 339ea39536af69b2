#include <gtest/gtest.h>

#include <map>

#include "KelpGraphicService/kelp_codecs.h"
#include "Tests/KelpGraphicService/codec_fixture.h"

namespace KelpGraphicService_NS {
namespace {

Outcome lzw(const std::string& data, int earlyChange = 1) {
  FilterPropTD prop;
  prop.filterKind = ftLZW;
  prop.earlyChange = earlyChange;
  return inflateWith(prop, data);
}

/// Codes as bits, most significant first, of a width that the caller tells.
class CodeWriter {
 public:
  CodeWriter& put(unsigned code, unsigned width = 9) {
    for (unsigned i = width; i-- > 0;) {
      if (count_ % 8 == 0) bytes_ += '\0';
      const unsigned bit = ((code >> i) & 1U) << (7U - count_++ % 8U);
      bytes_.back() = static_cast<char>(static_cast<unsigned char>(bytes_.back()) | bit);
    }
    return *this;
  }
  const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
  unsigned count_ = 0;
};

/// The encoder of ISO 32000-1, 7.4.4.2: the table is cleared when its last code but one is taken.
std::string encode(const std::string& plain, unsigned early) {
  std::map<std::string, unsigned> table;
  unsigned next = 0;
  unsigned width = 9;
  const auto clear = [&] {
    table.clear();
    for (unsigned i = 0; i < 256; ++i) table[std::string(1, static_cast<char>(i))] = i;
    next = 258;
    width = 9;
  };
  CodeWriter out;
  clear();
  out.put(256);
  std::string now;
  for (const char c : plain) {
    if (table.contains(now + c)) {
      now += c;
      continue;
    }
    out.put(table[now], width);
    table[now + c] = next++;
    if (next + early > (1U << width)) ++width;
    if (next == 4095) {
      out.put(256, width);
      clear();
    }
    now = std::string(1, c);
  }
  if (!now.empty()) {
    out.put(table[now], width);
    if (++next + early > (1U << width) && width < 12) ++width;
  }
  return out.put(257, width).bytes();
}

TEST(LZW, ExampleOfTheStandard) { EXPECT_EQ(lzw(hex("80 0B 60 50 22 0C 0C 85 01")), success("-----A---B")); }

TEST(LZW, CodeThatIsJustBeingMade) {
  EXPECT_EQ(lzw(CodeWriter().put(256).put('a').put(258).put(259).put(257).bytes()), success("aaaaaa"));
}

TEST(LZW, ClearStartsTheTableAnew) {
  const CodeWriter codes = CodeWriter().put(256).put('a').put('b').put(256).put('c').put(258).put(257);
  EXPECT_EQ(lzw(codes.bytes()), success("abccc"));
}

TEST(LZW, LeadingClearMayBeMissing) {
  EXPECT_EQ(lzw(CodeWriter().put('a').put('b').put(258).put(257).bytes()), success("abab"));
}

TEST(LZW, MissingEndOfDataIsFine) {
  EXPECT_EQ(lzw(CodeWriter().put(256).put('a').put('b').bytes()), success("ab"));
}

TEST(LZW, WhatFollowsTheEndOfDataIsNotRead) {
  EXPECT_EQ(lzw(CodeWriter().put(256).put('a').put(257).put('b').put(511).bytes()), success("a"));
}

TEST(LZW, NoDataGiveNoData) { EXPECT_EQ(lzw(""), success("")); }

TEST(LZW, CodeThatNoTableHasIsDamage) {
  EXPECT_EQ(lzw(CodeWriter().put(256).put('a').put(260).put(257).bytes()), failure(ftDamaged));
  EXPECT_EQ(lzw(CodeWriter().put(256).put(258).put(257).bytes()), failure(ftDamaged));
}

TEST(LZW, WidthsGrowWithBothRules) {
  std::string text;
  for (int i = 0; i < 3000; ++i) text += std::to_string(i * i) + " ";
  for (const std::string& plain : {text, noise(20000), std::string(100000, 'x')}) {
    EXPECT_EQ(lzw(encode(plain, 1), 1), success(plain));
    EXPECT_EQ(lzw(encode(plain, 0), 0), success(plain));
  }
}

TEST(LZW, TheRulesDifferFromTheFirstGrowthOn) {
  const std::string plain = noise(600);
  EXPECT_NE(lzw(encode(plain, 1), 0), success(plain));
  EXPECT_NE(lzw(encode(plain, 0), 1), success(plain));
}

TEST(LZW, StreamCutAtEveryLengthGivesABeginning) {
  const std::string plain = noise(700);
  const std::string packed = encode(plain, 1);
  for (std::size_t n = 0; n <= packed.size(); ++n) {
    const Outcome got = lzw(packed.substr(0, n));
    ASSERT_EQ(got.code, ftSuccess) << "cut at " << n;
    ASSERT_EQ(got.bytes, plain.substr(0, got.bytes.size())) << "cut at " << n;
  }
}

TEST(LZW, FullTableGoesOnWithoutGrowing) {
  // One new string a code until the table is full, then codes of 12 bits that still mean what they did.
  CodeWriter codes;
  codes.put(256);
  unsigned next = 257;
  for (unsigned width = 9; next < 4200; ++next) {
    codes.put('a', width);
    if (next + 1 + 1 >= (1U << width) && width < 12) ++width;
  }
  codes.put(258, 12).put(4095, 12).put(257, 12);
  EXPECT_EQ(lzw(codes.bytes()), success(std::string(4200 - 257 + 2 + 2, 'a')));
}

TEST(LZW, ResultPastTheLimitIsTooLarge) {
  const std::string packed = encode(std::string(100000, 'x'), 1);
  Buffer small(99999);
  EXPECT_EQ(decodeLZW({reinterpret_cast<const unsigned char*>(packed.data()), packed.size()}, small, true),
            ftTooLarge);
}

}  // namespace
}  // namespace KelpGraphicService_NS
