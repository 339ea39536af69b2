#include "TesselHost/host_text.h"

#include <gtest/gtest.h>

namespace TesselHost {
namespace {

TEST(TextString, IsReadInEachOfItsEncodings) {
  EXPECT_EQ(utf8OfString("(plain \\(a\\))"), "plain (a)");
  EXPECT_EQ(utf8OfString("<FEFF00E4D834DD1E>"), "\xC3\xA4\xF0\x9D\x84\x9E");
  EXPECT_EQ(utf8OfString("(\xEF\xBB\xBF\xC3\xA4)"), "\xC3\xA4");
  EXPECT_EQ(utf8OfString("(\\344\\200\\240)"), "\xC3\xA4\xE2\x80\xA2\xE2\x82\xAC");
  EXPECT_EQ(utf8OfString("<FEFFD83400>"), "\xEF\xBF\xBD");
  for (const char* none : {"", "/Name", "12", "["}) EXPECT_EQ(utf8OfString(none), "");
}

TEST(TextString, IsWrittenPlainWhereItCanBe) {
  EXPECT_EQ(textString("a (b) \\"), "(a \\(b\\) \\\\)");
  EXPECT_EQ(textString("\xC3\xA4\xF0\x9D\x84\x9E"), "<FEFF00E4D834DD1E>");
  for (const char* text : {"plain", "\xE2\x82\xAC 5", "\xF0\x9D\x84\x9E"})
    EXPECT_EQ(utf8OfString(textString(text)), text);
}

}  // namespace
}  // namespace TesselHost
