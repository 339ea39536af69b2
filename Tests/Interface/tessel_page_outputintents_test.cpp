#include <gtest/gtest.h>

#include <string>

#include "TesselPage/tessel_page.h"
#include "TesselPage/tessel_text.h"
#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/protected_pdf.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

PdfBuilder document(const std::string& catalogEntries = {}) {
  return pdf().onePage("/MediaBox[0 0 9 9]", catalogEntries);
}

OpenPage opened(const PdfBuilder& builder) {
  OpenPage page = builder.openPage();
  EXPECT_EQ(page.result, 0);
  return page;
}

std::string intent(const std::string& subtype) { return "<</Type/OutputIntent/S/" + subtype + ">>"; }

// Output intents
// ----------------------------------------------------------------------------------------------------------

int countOf(const PdfBuilder& builder) { return opened(builder)->getOutputIntentsCount(); }

TEST(OutputIntents, DocumentWithoutThemHasNone) {
  EXPECT_EQ(countOf(document()), 0);
  EXPECT_EQ(countOf(document("/OutputIntents[]")), 0);
  EXPECT_EQ(countOf(document("/OutputIntents null")), 0);
  EXPECT_EQ(countOf(document("/OutputIntents[(x)5]")), 0);
}

TEST(OutputIntents, DirectOneIsFound) {
  const OpenPage page = opened(document("/OutputIntents[" + intent("GTS_PDFX") + "]"));
  EXPECT_EQ(page->getOutputIntentsCount(), 1);
  EXPECT_EQ(page->getOPIS(0), "/GTS_PDFX");
}

TEST(OutputIntents, EveryDirectOneIsFound) {
  const OpenPage page = opened(document("/OutputIntents[" + intent("A") + " " + intent("B") + "]"));
  EXPECT_EQ(page->getOutputIntentsCount(), 2);
  EXPECT_EQ(page->getOPIS(0), "/A");
  EXPECT_EQ(page->getOPIS(1), "/B");
}

TEST(OutputIntents, ObjectsAreFoundInTheOrderOfTheArray) {
  const OpenPage page =
      opened(document("/OutputIntents[8 0 R 7 0 R]").object(7, intent("A")).object(8, intent("B")));
  EXPECT_EQ(page->getOutputIntentsCount(), 2);
  EXPECT_EQ(page->getOPIS(0), "/B");
  EXPECT_EQ(page->getOPIS(1), "/A");
}

TEST(OutputIntents, ArrayMayBeAnObject) {
  const auto array = document("/OutputIntents 6 0 R").object(7, intent("A"));
  EXPECT_EQ(opened(PdfBuilder(array).object(6, "[7 0 R]"))->getOPIS(0), "/A");
  EXPECT_EQ(opened(PdfBuilder(array).object(6, "[" + intent("B") + "]"))->getOPIS(0), "/B");
}

TEST(OutputIntents, BesideADirectOneObjectsDoNotCount) {
  const OpenPage page = opened(document("/OutputIntents[7 0 R" + intent("B") + "]").object(7, intent("A")));
  EXPECT_EQ(page->getOutputIntentsCount(), 1);
  EXPECT_EQ(page->getOPIS(0), "/B");
}

TEST(OutputIntents, ObjectOfAnObjectLeadsOn) {
  const auto builder = document("/OutputIntents[7 0 R]")
                           .object(7, "<</OutputIntents 8 0 R/Info(x)>>")
                           .object(8, intent("GTS_PDFX"));
  EXPECT_EQ(opened(builder)->getOPIS(0), "/GTS_PDFX");
}

TEST(OutputIntents, CycleOfObjectsEnds) {
  const OpenPage page = opened(document("/OutputIntents[7 0 R]").object(7, "<</S/A/OutputIntents[7 0 R]>>"));
  EXPECT_EQ(page->getOutputIntentsCount(), 1);
  EXPECT_EQ(page->getOPIS(0), "/A");
}

TEST(OutputIntents, OneThatIsNotThereDoesNotKeepTheDocumentClosed) {
  const OpenPage page = opened(document("/OutputIntents[7 0 R 99 0 R]").object(7, intent("A")));
  EXPECT_EQ(page->getOutputIntentsCount(), 2);
  EXPECT_EQ(page->getOPIS(0), "/A");
  EXPECT_EQ(page->getOPIS(1), "");
}

TEST(OutputIntents, ArrayThatIsNotThereDoesNotKeepTheDocumentClosed) {
  EXPECT_EQ(countOf(document("/OutputIntents 99 0 R")), 0);
}

// Their entries
// ----------------------------------------------------------------------------------------------------------

struct EntryCase {
  const char* key;
  std::string (CTesselPage::*get)(unsigned short) const;
};
void PrintTo(const EntryCase& c, std::ostream* out) { *out << c.key; }

class IntentEntry : public testing::TestWithParam<EntryCase> {
 protected:
  static std::string entryOf(const PdfBuilder& builder, unsigned short index = 0) {
    const OpenPage page = opened(builder);
    return ((*page).*GetParam().get)(index);
  }
  static PdfBuilder direct(const std::string& entries) {
    return document("/OutputIntents[<</Type/OutputIntent" + entries + ">>]");
  }
};

constexpr const char* allEntries =
    "/Info(1)/OutputConditionIdentifier(2)/RegistryName(3)/OutputCondition(4)/ProfileName(5)/F(6)/FS(7)"
    "/ProfileCS(8)/CheckSum(9)/ICCVersion(10)";

TEST_P(IntentEntry, IsThatOfItsKey) {
  const std::string key = std::string(GetParam().key) + "(";
  const std::string all = allEntries;
  const std::size_t begin = all.find(key) + key.size();
  EXPECT_EQ(entryOf(direct(all)), all.substr(begin, all.find(')', begin) - begin));
}

TEST_P(IntentEntry, StandsAsInTheFile) {
  const std::string key = GetParam().key;
  EXPECT_EQ(entryOf(direct(key + "(a\\(b\\)c)")), "a\\(b\\)c");
  EXPECT_EQ(entryOf(direct(key + " <4142>")), "<4142>");
}

TEST_P(IntentEntry, BehindAReferenceKeepsItsParentheses) {
  EXPECT_EQ(entryOf(direct(std::string(GetParam().key) + " 9 0 R").object(9, "(text)")), "(text)");
}

TEST_P(IntentEntry, OfAnObjectIsFound) {
  EXPECT_EQ(
      entryOf(document("/OutputIntents[7 0 R]").object(7, std::string("<<") + GetParam().key + "(text)>>")),
      "text");
}

TEST_P(IntentEntry, ThatIsNotThereIsEmpty) {
  EXPECT_EQ(entryOf(direct("/Other(x)")), "");
  EXPECT_EQ(entryOf(direct(std::string(GetParam().key) + " 5")), "");
  EXPECT_EQ(entryOf(document()), "");
}

TEST_P(IntentEntry, BeyondTheLastIntentIsEmpty) {
  const auto builder = direct(std::string(GetParam().key) + "(text)");
  EXPECT_EQ(entryOf(builder, 1), "");
  EXPECT_EQ(entryOf(builder, 65535), "");
}

INSTANTIATE_TEST_SUITE_P(
    Strings, IntentEntry,
    testing::Values(EntryCase{"/OutputConditionIdentifier", &CTesselPage::getOPIOutputConditionIdentifier},
                    EntryCase{"/RegistryName", &CTesselPage::getOPIRegistryName},
                    EntryCase{"/ProfileName", &CTesselPage::getOPIProfileName},
                    EntryCase{"/F", &CTesselPage::getOPIF}, EntryCase{"/FS", &CTesselPage::getOPIFS},
                    EntryCase{"/ProfileCS", &CTesselPage::getOPIProfileCS},
                    EntryCase{"/CheckSum", &CTesselPage::getOPICheckSum},
                    EntryCase{"/ICCVersion", &CTesselPage::getOPIICCVersion}));

TEST(IntentSubtype, IsAName) {
  EXPECT_EQ(opened(document("/OutputIntents[<</S /GTS_PDFX>>]"))->getOPIS(0), "/GTS_PDFX");
  EXPECT_EQ(opened(document("/OutputIntents[<</S(GTS_PDFX)>>]"))->getOPIS(0), "");
  EXPECT_EQ(opened(document("/OutputIntents[<</S 9 0 R>>]").object(9, "/GTS_PDFX"))->getOPIS(0), "/GTS_PDFX");
}

TEST(IntentSubtype, BeyondTheLastIntentIsEmpty) {
  const auto builder = document("/OutputIntents[7 0 R 8 0 R]").object(7, intent("A")).object(8, intent("B"));
  const OpenPage page = opened(builder);
  EXPECT_EQ(page->getOPIS(1), "/B");
  EXPECT_EQ(page->getOPIS(2), "");
  EXPECT_EQ(page->getOPIS(5), "");
}

// Profiles
// ----------------------------------------------------------------------------------------------------------

PdfBuilder withProfile() { return document("/OutputIntents[<</S/GTS_PDFX/DestOutputProfile 9 0 R>>]"); }

std::string profileOf(const PdfBuilder& builder) { return opened(builder)->getOPIDestOutputProfile(0); }

const std::string profileBytes("\0\0\x02\x0Clcms(endstream)<</\xFF\xFE", 24);

TEST(IntentProfile, IsDecoded) {
  EXPECT_EQ(profileOf(withProfile().stream(9, "/N 4", "profile")), "profile");
  EXPECT_EQ(profileOf(withProfile().stream(9, "/N 4/Filter/FlateDecode", deflated(profileBytes))),
            profileBytes);
}

TEST(IntentProfile, IsDecodedThroughAChain) {
  EXPECT_EQ(profileOf(withProfile().stream(9, "/Filter[/AHx/AHx]", "343134323E>")), "AB");
}

TEST(IntentProfile, LosesLineEndsAtBothEnds) {
  EXPECT_EQ(profileOf(withProfile().stream(9, "", "\r\nprofile\n\n")), "profile");
}

TEST(IntentProfile, IsReadThroughReferences) {
  EXPECT_EQ(profileOf(withProfile().object(9, "10 0 R").stream(10, "", "profile")), "profile");
  EXPECT_EQ(profileOf(document("/OutputIntents[7 0 R]")
                          .object(7, "<</S/A/DestOutputProfile 9 0 R>>")
                          .stream(9, "", "profile")),
            "profile");
}

TEST(IntentProfile, WithItsLengthElsewhereIsRead) {
  EXPECT_EQ(
      profileOf(withProfile().object(9, "<</Length 10 0 R>>\nstream\nprofile\nendstream").object(10, "7")),
      "profile");
}

TEST(IntentProfile, ThatIsNoneIsEmpty) {
  EXPECT_EQ(profileOf(document("/OutputIntents[" + intent("A") + "]")), "");
  EXPECT_EQ(profileOf(document("/OutputIntents[<</DestOutputProfile(x)>>]")), "");
  EXPECT_EQ(profileOf(withProfile().object(9, "<</N 4>>")), "");
  EXPECT_EQ(profileOf(document()), "");
}

TEST(IntentProfile, ThatIsDamagedDoesNotKeepTheDocumentClosed) {
  const OpenPage page = opened(withProfile().stream(9, "/Filter/AHx", "4G>"));
  EXPECT_EQ(page->getOutputIntentsCount(), 1);
  EXPECT_EQ(page->getOPIDestOutputProfile(0), "");
}

TEST(IntentProfile, ThatIsNotThereLeavesWhatWasFound) {
  const OpenPage page = opened(withProfile());
  EXPECT_EQ(page->getOPIS(0), "/GTS_PDFX");
  EXPECT_EQ(page->getOPIDestOutputProfile(0), "");
}

// Texts of intents
// ----------------------------------------------------------------------------------------------------------

std::string utf8(const icu::UnicodeString& text) {
  std::string bytes;
  return text.toUTF8String(bytes);
}

std::string infoOf(const PdfBuilder& builder, unsigned short index = 0) {
  icu::UnicodeString text = u"left alone";
  opened(builder)->getOPIInfo(index, text);
  return utf8(text);
}

std::string conditionOf(const PdfBuilder& builder, unsigned short index = 0) {
  icu::UnicodeString text = u"left alone";
  opened(builder)->getOPIOutputCondition(index, text);
  return utf8(text);
}

TEST(IntentText, IsUnicode) {
  const auto builder = document("/OutputIntents[<</Info(Coated)/OutputCondition<feff4e2d6587>>>]");
  EXPECT_EQ(infoOf(builder), "Coated");
  EXPECT_EQ(conditionOf(builder), "\u4e2d\u6587");
}

TEST(IntentText, OfRawBytesIsDecoded) {
  EXPECT_EQ(infoOf(document("/OutputIntents[<</Info(\xFE\xFF\x4E\x2D\x65\x87)>>]")), "\u4e2d\u6587");
}

TEST(IntentText, BehindAReferenceKeepsItsParentheses) {
  EXPECT_EQ(infoOf(document("/OutputIntents[<</Info 9 0 R>>]").object(9, "(Coated)")), "(Coated)");
}

TEST(IntentText, ThatIsNotThereIsEmpty) {
  const auto builder = document("/OutputIntents[" + intent("A") + "]");
  EXPECT_EQ(infoOf(builder), "");
  EXPECT_EQ(conditionOf(builder), "");
}

TEST(IntentText, BeyondTheLastIntentIsEmpty) {
  const auto builder = document("/OutputIntents[<</Info(a)/OutputCondition(b)>>]");
  EXPECT_EQ(infoOf(builder, 1), "");
  EXPECT_EQ(conditionOf(builder, 65535), "");
  EXPECT_EQ(infoOf(document()), "");
}

TEST(IntentText, OfAProtectedSourceIsInTheClear) {
  const auto builder = document("/OutputIntents[7 0 R]").object(7, "<</S/GTS_PDFX/Info(Coated)>>");
  const OpenPage page =
      PdfBuilder::openPageBytes(protectedPdf(builder.build(), allProtections[3], {"", "owner"}));
  ASSERT_EQ(page.result, 0);
  icu::UnicodeString text;
  page->getOPIInfo(0, text);
  EXPECT_EQ(utf8(text), "Coated");
}

TEST(IntentText, OfASourceThatWantsAPasswordIsInTheClear) {
  const auto builder = document("/OutputIntents[7 0 R]").object(7, "<</S/GTS_PDFX/Info(Coated)>>");
  const OpenPage page =
      PdfBuilder::openPageBytes(protectedPdf(builder.build(), allProtections[3], {"user", "owner"}), "user");
  ASSERT_EQ(page.result, 0);
  EXPECT_EQ(page->getOutputIntentsCount(), 1);
  icu::UnicodeString text;
  page->getOPIInfo(0, text);
  EXPECT_EQ(utf8(text), "Coated");
}

// Text strings
// ----------------------------------------------------------------------------------------------------------

struct TextCase {
  std::string bytes;
  std::u16string text;
};

class TextString : public testing::TestWithParam<TextCase> {};

TEST_P(TextString, IsUnicode) {
  EXPECT_EQ(getXFString(GetParam().bytes),
            icu::UnicodeString(GetParam().text.data(), static_cast<int>(GetParam().text.size())))
      << GetParam().bytes;
}

INSTANTIATE_TEST_SUITE_P(PlainBytes, TextString,
                         testing::Values(TextCase{"", u""}, TextCase{"abc", u"abc"}, TextCase{"(x)", u"(x)"},
                                         TextCase{"a\\(b", u"a\\(b"}, TextCase{" <41>", u" <41>"}));

INSTANTIATE_TEST_SUITE_P(TwoByteUnits, TextString,
                         testing::Values(TextCase{"\xFE\xFF\x4E\x2D\x65\x87", u"\u4e2d\u6587"},
                                         TextCase{"\xFF\xFE\x2D\x4E\x87\x65", u"\u4e2d\u6587"},
                                         TextCase{"\xFF\x41\x2D\x4E", u"\u4e2d"},
                                         TextCase{"\xFE\x41\x2D\x4E", u"\u4e2d"},
                                         TextCase{"\xFE\xFF\x4E\x2D\x65", u"\u4e2d"},
                                         TextCase{"\xFE\xFF\xD8\x34\xDD\x1E", u"\U0001D11E"}));

INSTANTIATE_TEST_SUITE_P(TooShortForAUnit, TextString,
                         testing::Values(TextCase{"\xFE", u""}, TextCase{"\xFF", u""},
                                         TextCase{"\xFE\xFF", u""}, TextCase{"\xFF\xFE", u""},
                                         TextCase{"\xFE\xFF\x4E", u""}));

TEST(TextString, EndsAtTheFirstZeroByte) {
  const icu::UnicodeString text = getXFString(std::string("\xFE\xFF\x4E\x2D\0A\x65\x87", 8));
  EXPECT_EQ(text.charAt(0), u'\u4e2d');
  EXPECT_EQ(text.indexOf(u'A'), -1);
  EXPECT_EQ(text.indexOf(u'\u6587'), -1);
}

TEST(TextString, ZeroByteInTheMiddleOfAUnitEndsItToo) {
  const icu::UnicodeString text = getXFString(std::string("\xFE\xFF\x41\0\x4E\x2D", 6));
  EXPECT_EQ(text.charAt(0), u'\u4100');
  EXPECT_EQ(text.indexOf(u'\u4e2d'), -1);
}

INSTANTIATE_TEST_SUITE_P(HexadecimalUnits, TextString,
                         testing::Values(TextCase{"<FEFF4E2D6587>", u"\u4e2d\u6587"},
                                         TextCase{"<feff4e2d6587>", u"\u4e2d\u6587"},
                                         TextCase{"<FFFE2D4E8765>", u"\u4e2d\u6587"},
                                         TextCase{"<FEFF00410042>", u"AB"}, TextCase{"<FEFF>", u""},
                                         TextCase{"<FFFE>", u""}));

INSTANTIATE_TEST_SUITE_P(HexadecimalPairs, TextString,
                         testing::Values(TextCase{"<414243>", u"ABC"}, TextCase{"<4e2D>", u"N-"},
                                         TextCase{"<E9>", u"\u00e9"}, TextCase{"<41>", u"A"},
                                         TextCase{"<414>", u"A"}, TextCase{"<>", u""}, TextCase{"<", u""},
                                         TextCase{"<4>", u""}, TextCase{"<FE41>", u"\u00feA"}));

INSTANTIATE_TEST_SUITE_P(CharactersTakenForDigits, TextString,
                         testing::Values(TextCase{"<4:>", u"J"}, TextCase{"<4*>", u"J"},
                                         TextCase{"<4?>", u"O"}, TextCase{"<4/>", u"O"},
                                         TextCase{"<4+>", u"K"}));

INSTANTIATE_TEST_SUITE_P(CharactersThatEndAPair, TextString,
                         testing::Values(TextCase{"<4G41>", u"\u0004A"}, TextCase{"<4 41>", u"\u0004A"},
                                         TextCase{"<4)41>", u"\u0004A"}, TextCase{"<4@41>", u"\u0004A"},
                                         TextCase{"<4g41>", u"\u0004A"},
                                         TextCase{std::string("<4\0"
                                                              "41>",
                                                              6),
                                                  u"\u0004A"}));

}  // namespace
