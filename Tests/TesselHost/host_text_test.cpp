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

TEST(PdfDocEncoding, HasAByteForEachOfItsCharactersAndNoneForOthers) {
  EXPECT_EQ(pdfDocEncoded("plain"), "plain");
  EXPECT_EQ(pdfDocEncoded("\xC3\xA4\xE2\x82\xAC\xE2\x80\xA2\xCB\x98"), "\xE4\xA0\x80\x18");
  EXPECT_EQ(pdfDocEncoded(""), "");
  for (const char* none : {"\xD0\xB0", "\xF0\x9D\x84\x9E", "\xEF\xBF\xBD"})
    EXPECT_EQ(pdfDocEncoded(none), std::nullopt) << none;
}

TEST(PdfDocEncoding, WantsSoundUtf8) {
  for (const char* broken : {"\xE4", "\xC3", "a\xA0", "\xC1\xA1", "\xC3(", "\xFF\xFE"})
    EXPECT_EQ(pdfDocEncoded(broken), std::nullopt) << broken;
}

}  // namespace
}  // namespace TesselHost
