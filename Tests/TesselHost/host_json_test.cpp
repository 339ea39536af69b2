#include "TesselHost/host_json.h"

#include <gtest/gtest.h>

#include <limits>

namespace TesselHost {
namespace {

TEST(Json, SetsCommasBetweenValues) {
  JsonWriter json;
  json.beginObject().key("a").value(1).key("b").beginArray().value(2).value(true).null().endArray();
  json.key("c").beginObject().endObject().endObject();
  EXPECT_EQ(json.text(), R"({"a":1,"b":[2,true,null],"c":{}})");
}

TEST(Json, BeginsAnewAfterClear) {
  JsonWriter json;
  json.beginArray().value(1).endArray();
  json.clear();
  json.beginArray().value(2).endArray();
  EXPECT_EQ(json.text(), "[2]");
}

std::string ofFloat(float number) { return JsonWriter().value(number).text(); }

TEST(Json, WritesFloatsWithNineDigits) {
  EXPECT_EQ(ofFloat(0), "0");
  EXPECT_EQ(ofFloat(-0.5F), "-0.5");
  EXPECT_EQ(ofFloat(595.276F), "595.276001");
  EXPECT_EQ(ofFloat(16777216.0F), "16777216");
  EXPECT_EQ(ofFloat(3e9F), "3e+09");
  EXPECT_EQ(ofFloat(1e-7F), "1.00000001e-07");
}

TEST(Json, HasNoNumberForWhatIsNotFinite) {
  EXPECT_EQ(ofFloat(std::numeric_limits<float>::infinity()), "null");
  EXPECT_EQ(ofFloat(std::numeric_limits<float>::quiet_NaN()), "null");
}

struct TextCase {
  std::string bytes;
  const char* json;
};
class JsonText : public testing::TestWithParam<TextCase> {};

TEST_P(JsonText, IsEscapedAndAlwaysUtf8) {
  EXPECT_EQ(JsonWriter().value(GetParam().bytes).text(), GetParam().json);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, JsonText,
    testing::Values(TextCase{"", "\"\""}, TextCase{"a/b", "\"a/b\""}, TextCase{"\"\\", "\"\\\"\\\\\""},
                    TextCase{"\n\r\t", "\"\\n\\r\\t\""}, TextCase{"\x01\x7F", "\"\\u0001\\u007f\""},
                    TextCase{std::string("\0", 1), "\"\\u0000\""}, TextCase{"\xC3\xA4", "\"\xC3\xA4\""},
                    TextCase{"\xE2\x82\xAC", "\"\xE2\x82\xAC\""},
                    TextCase{"\xF0\x9F\x98\x80", "\"\xF0\x9F\x98\x80\""},
                    TextCase{"\xFF", "\"\xEF\xBF\xBD\""}, TextCase{"\xC3", "\"\xEF\xBF\xBD\""},
                    TextCase{"\xC3(", "\"\xEF\xBF\xBD(\""},
                    TextCase{"\xC0\x80", "\"\xEF\xBF\xBD\xEF\xBF\xBD\""},
                    TextCase{"\xED\xA0\x80", "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""},
                    TextCase{"\xF4\x90\x80\x80", "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""}));

// RFC 4648, 10.
struct Base64Case {
  std::string bytes;
  const char* text;
};
class Base64 : public testing::TestWithParam<Base64Case> {};

TEST_P(Base64, IsAsTheStandardHasIt) {
  EXPECT_EQ(JsonWriter().base64(GetParam().bytes).text(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Vectors, Base64,
                         testing::Values(Base64Case{"", "\"\""}, Base64Case{"f", "\"Zg==\""},
                                         Base64Case{"fo", "\"Zm8=\""}, Base64Case{"foo", "\"Zm9v\""},
                                         Base64Case{"foob", "\"Zm9vYg==\""},
                                         Base64Case{"fooba", "\"Zm9vYmE=\""},
                                         Base64Case{"foobar", "\"Zm9vYmFy\""},
                                         Base64Case{"\xFB\xFF\xFE", "\"+//+\""}));

}  // namespace
}  // namespace TesselHost
