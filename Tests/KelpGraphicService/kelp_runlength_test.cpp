#include <gtest/gtest.h>

#include "KelpGraphicService/kelp_codecs.h"
#include "Tests/KelpGraphicService/codec_fixture.h"

namespace KelpGraphicService_NS {
namespace {

TEST(RunLength, Table) {
  struct Case {
    const char* data;
    Outcome outcome;
  };
  const Case cases[] = {
      {"02 616263 80", success("abc")},
      {"FE 61 80", success("aaa")},
      {"FF 61 80", success("aa")},
      {"81 61 80", success(std::string(128, 'a'))},
      {"00 61 FE 62 01 6364 80", success("abbbcd")},
      {"00 61 80 00 62", success("a")},
      {"02 616263", success("abc")},
      {"7F 616263", success("abc")},
      {"00 61 FE", success("a")},
      {"00 61 02", success("a")},
      {"80", success("")},
      {"", success("")},
  };
  for (const Case& c : cases) EXPECT_EQ(inflateAs(ftRunLength, hex(c.data)), c.outcome) << c.data;
}

TEST(RunLength, LongestLiteral) {
  const std::string literal = noise(128);
  EXPECT_EQ(inflateAs(ftRunLength, "\x7F" + literal + "\x80"), success(literal));
}

TEST(RunLength, ResultPastTheLimitIsTooLarge) {
  const std::string runs = hex("81 61 81 62");
  Buffer small(255);
  EXPECT_EQ(decodeRunLength({reinterpret_cast<const unsigned char*>(runs.data()), runs.size()}, small),
            ftTooLarge);
}

}  // namespace
}  // namespace KelpGraphicService_NS
