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

struct PreparedCase {
  const char* given;
  const char* prepared;
};

TEST(SaslPrep, GivesOneFormToTextsThatLookTheSame) {
  const PreparedCase rows[] = {
      {"", ""},
      {"plain \x01", "plain \x01"},
      {"\xC3\xA9", "\xC3\xA9"},           // e with an acute, in one character
      {"e\xCC\x81", "\xC3\xA9"},          // and in two
      {"I\xC2\xADX", "IX"},               // soft hyphen: RFC 4013, 3
      {"\xC2\xAA", "a"},                  // feminine ordinal: the same
      {"\xE2\x85\xA8", "IX"},             // Roman nine: the same
      {"a\xC2\xA0\x62", "a b"},           // space that doesn't break
      {"\xC2\xBD", "1\xE2\x81\x84\x32"},  // a half
      {"\xEF\xB7\xBA",
       "\xD8\xB5\xD9\x84\xD9\x89 \xD8\xA7\xD9\x84\xD9\x84\xD9\x87 \xD8\xB9\xD9\x84\xD9\x8A"
       "\xD9\x87 \xD9\x88\xD8\xB3\xD9\x84\xD9\x85"},  // the longest expansion
  };
  for (const PreparedCase& row : rows) EXPECT_EQ(saslPrepared(row.given), row.prepared) << row.given;
}

TEST(SaslPrep, RefusesWhatIsForbiddenAndWhatIsNoUtf8) {
  // A control behind ASCII, a character of private use, Arabic in front of a digit (RFC 4013, 3), broken
  // bytes.
  for (const char* none : {"\xC3\xA9\x07", "\xEE\x80\x80", "\xD8\xA7\x31", "\xC3", "a\xA0", "\xFF\xFE"})
    EXPECT_EQ(saslPrepared(none), std::nullopt) << none;
}

}  // namespace
}  // namespace TesselHost
