#include <gtest/gtest.h>

#include <algorithm>

#include "Tests/KelpGraphicService/codec_fixture.h"

namespace KelpGraphicService_NS {
namespace {

struct Case {
  std::string text;
  Outcome outcome;
};

TEST(ASCIIHex, Table) {
  const Case cases[] = {
      {"48656C6c6F>", success("Hello")},
      {" 48\t65\r6C\n6c\f6F >", success("Hello")},
      {std::string("48\0 65>", 7), success("He")},
      {"", success("")},
      {">", success("")},
      {"414", success("A@")},
      {"414>", success("A@")},
      {"4142", success("AB")},
      {"41>42", success("A")},
      {"41>\xFFxyz", success("A")},
      {"00ff", success(std::string("\0\xFF", 2))},
      {"4G>", failure(ftDamaged)},
      {"41\x80>", failure(ftDamaged)},
      {"41<42>", failure(ftDamaged)},
  };
  for (const Case& c : cases) EXPECT_EQ(inflateAs(ftASCIIHex, c.text), c.outcome) << c.text;
}

TEST(ASCII85, Table) {
  const Case cases[] = {
      {"9jqo^~>", success("Man ")},
      {"9jqo^BlbD-BleB1DJ+*+F(f,q~>", success("Man is distinguished")},
      {"9jq o^\r\nBlbD-\t~>", success("Man is d")},
      {"z~>", success(std::string(4, '\0'))},
      {"zz9jqo^~>", success(std::string(8, '\0') + "Man ")},
      {"!!!!!~>", success(std::string(4, '\0'))},
      {"s8W-!~>", success("\xFF\xFF\xFF\xFF")},
      {"5l~>", success("A")},
      {"5sb~>", success("AB")},
      {"5sdp~>", success("ABC")},
      {"5sdp", success("ABC")},
      {"5sdp~", success("ABC")},
      {"9jqo^5~>", success("Man ")},
      {"9jqo^s~>", success("Man ")},
      {"9jqo^~>\xFF{}", success("Man ")},
      {"", success("")},
      {"~>", success("")},
      {"s8W-\"~>", failure(ftDamaged)},
      {"uuuuu~>", failure(ftDamaged)},
      {"uu~>", failure(ftDamaged)},
      {"9jz~>", failure(ftDamaged)},
      {"9jv~>", failure(ftDamaged)},
      {"9j\x80~>", failure(ftDamaged)},
  };
  for (const Case& c : cases) EXPECT_EQ(inflateAs(ftASCII85, c.text), c.outcome) << c.text;
}

TEST(ASCII85, EncodesToTheWrittenForm) {
  const Case cases[] = {
      {"", success("~>")},
      {"Man ", success("9jqo^~>")},
      {"A", success("5l~>")},
      {"AB", success("5sb~>")},
      {"ABC", success("5sdp~>")},
      {std::string(4, '\0'), success("z~>")},
      {std::string(3, '\0'), success("!!!!~>")},
      {std::string(5, '\0'), success("z!!~>")},
      {"\xFF\xFF\xFF\xFF", success("s8W-!~>")},
  };
  for (const Case& c : cases) EXPECT_EQ(deflateWith(ftASCII85, c.text), c.outcome) << c.text;
}

TEST(ASCII85, EveryLengthComesBack) {
  for (std::size_t n = 0; n < 300; ++n) {
    const std::string plain = noise(n, static_cast<unsigned>(n));
    EXPECT_EQ(inflateAs(ftASCII85, deflateWith(ftASCII85, plain).bytes), success(plain)) << n;
  }
}

TEST(ASCII85, LinesAre72ColumnsAndTheEndMarkIsWhole) {
  for (std::size_t n = 0; n < 300; ++n) {
    const std::string text = deflateWith(ftASCII85, noise(n)).bytes + "\n";
    ASSERT_TRUE(text.ends_with("~>\n")) << n;
    for (std::size_t at = 0; at < text.size(); at = text.find('\n', at) + 1)
      ASSERT_LE(text.find('\n', at) - at, 72U) << n;
    ASSERT_TRUE(
        std::all_of(text.begin(), text.end(), [](char c) { return c == '\n' || (c > ' ' && c < 127); }));
  }
}

}  // namespace
}  // namespace KelpGraphicService_NS
