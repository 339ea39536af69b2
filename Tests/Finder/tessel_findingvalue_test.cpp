#include "TesselPage/Finder/tessel_findingvalue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "TesselPage/Finder/tessel_finderexception.h"
#include "Tests/Support/pdf_builder.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::MatchesRegex;
using testing::ThrowsMessage;

namespace {

using Wishes = std::vector<std::pair<const char*, EPDFType>>;

FindingHint asking(const Wishes& wishes) {
  FindingHint hint;
  for (const auto& [key, type] : wishes) hint.insertHintInfo(key, type);
  return hint;
}

/// All values found: key and value, each on a line of its own.
std::string told(const FindingHint& hint) {
  std::ostringstream out;
  hint.outPutValue(out);
  return out.str();
}

PdfBuilder document() { return pdf().onePage("/MediaBox[0 0 9 9]"); }

std::string foundInText(const std::string& text, const Wishes& wishes, const PdfBuilder& builder = document(),
                        bool recursive = true) {
  const Source source = builder.open();
  FindingHint hint = asking(wishes);
  FindingValue(hint, source.file.get(), text).find(recursive);
  return told(hint);
}

std::string foundInObject(const PdfBuilder& builder, int number, const Wishes& wishes,
                          bool recursive = true) {
  const Source source = builder.open();
  FindingHint hint = asking(wishes);
  FindingValue(hint, source.file.get(), number, 0).find(recursive);
  return told(hint);
}

// Keys
// ----------------------------------------------------------------------------------------------------------

TEST(FindingValue, TextWithoutADictionaryHasNoValues) {
  for (const char* text : {"", "(x)", "/K(x)", "[/K(x)]", "<</K(x)", "[10 0 R]"})
    EXPECT_EQ(foundInText(text, {{"/K", ePDFString}, {"/T", ePDFString}}, document().object(10, "<</T(x)>>")),
              "")
        << text;
}

TEST(FindingValue, ArrayOfReferencesIsNotWalked) {
  EXPECT_EQ(foundInText("[10 0 R]", {{"/T", ePDFString}, {"/Kids", ePDFUnknown}},
                        document().object(10, "<</T(x)>>")),
            "");
}

TEST(FindingValue, OnlyTheFirstDictionaryCounts) {
  EXPECT_EQ(foundInText("<</A 1>><</K(x)>>", {{"/K", ePDFString}}), "");
  EXPECT_EQ(foundInText("foo [ <</K(x)>> ]", {{"/K", ePDFString}}), "/K\nx\n");
}

TEST(FindingValue, KeyIsAWholeName) {
  EXPECT_EQ(foundInText("<</Info2(a)/Inf(b)/info(c)>>", {{"/Info", ePDFString}}), "");
  EXPECT_EQ(foundInText("<</Info2(a)/Info(b)>>", {{"/Info", ePDFString}}), "/Info\nb\n");
}

TEST(FindingValue, KeyIsNotUnescaped) {
  EXPECT_EQ(foundInText("<</K#41(a)>>", {{"/KA", ePDFString}}), "");
  EXPECT_EQ(foundInText("<</K#41(a)>>", {{"/K#41", ePDFString}}), "/K#41\na\n");
}

TEST(FindingValue, KeyThatIsNotAskedForIsPassedOver) { EXPECT_EQ(foundInText("<</A(x)/B 1>>", {}), ""); }

TEST(FindingValue, KeyInTheDirectDictionaryOfAnotherIsFound) {
  EXPECT_EQ(foundInText("<</A<</B[<</K(x)>>]>>>>", {{"/K", ePDFString}}), "/K\nx\n");
}

TEST(FindingValue, KeyInAStringIsFound) {
  EXPECT_EQ(foundInText("<</A(/Info)(x)>>", {{"/Info", ePDFString}}), "/Info\nx\n");
}

TEST(FindingValue, KeyInThePlaceOfAValueIsAKey) {
  EXPECT_EQ(foundInText("<</Type/Info(x)>>", {{"/Info", ePDFString}}), "/Info\nx\n");
}

TEST(FindingValue, KeyInThePlaceOfAValueTakesTheStringOfTheNextKey) {
  EXPECT_EQ(foundInText("<</Type/Info/Title(x)>>", {{"/Info", ePDFString}}), "/Info\nx\n");
}

TEST(FindingValue, AllValuesOfAKeyStayInOrder) {
  EXPECT_EQ(foundInText("<</K(b)/X<</K(a)>>/K(b)>>", {{"/K", ePDFString}}), "/K\nb\n/K\na\n/K\nb\n");
}

TEST(FindingValue, KeysAreAnsweredInOneRun) {
  EXPECT_EQ(foundInText("<</S/GTS_PDFX/N 5/Info(x)>>",
                        {{"/Info", ePDFString}, {"/S", ePDFName}, {"/Missing", ePDFName}}),
            "/Info\nx\n/S\n/GTS_PDFX\n");
}

TEST(FindingValue, DictionaryEndsAtTheFirstBalancingBrackets) {
  EXPECT_EQ(foundInText("<</A(>>)/K(x)>>", {{"/K", ePDFString}}), "");
  EXPECT_EQ(foundInText("<</A<</K(x)>>", {{"/K", ePDFString}}), "/K\nx\n");
}

TEST(FindingValue, BackslashAtTheEndOfAKeyEscapesTheParenthesisBehindIt) {
  EXPECT_EQ(foundInText("<</K\\(a)(b)>>", {{"/K\\", ePDFString}}), "/K\\\nb\n");
}

// Direct values
// ----------------------------------------------------------------------------------------------------------

struct ValueCase {
  const char* value;
  EPDFType wanted;
  const char* stored;
};

class DirectValue : public testing::TestWithParam<ValueCase> {};

/// Objects 91 and 92 are not there, so none of these may load anything.
TEST_P(DirectValue, OfTheWantedTypeIsStored) {
  const std::string text = std::string("<</A 1/K ") + GetParam().value + "/Z 1>>";
  EXPECT_EQ(foundInText(text, {{"/K", GetParam().wanted}}), std::string("/K\n") + GetParam().stored + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Types, DirectValue,
    testing::Values(ValueCase{"true", ePDFBoolean, "true"}, ValueCase{"false", ePDFBoolean, "false"},
                    ValueCase{"-12.5", ePDFNumber, "-12.5"}, ValueCase{"/N", ePDFName, "/N"},
                    ValueCase{"[91 0 R 92 0 R]", ePDFArray, "[91 0 R 92 0 R]"},
                    ValueCase{"[1[2]]", ePDFArray, "[1[2]]"},
                    ValueCase{"<</X 91 0 R>>", ePDFDictionary, "<</X 91 0 R>>"},
                    ValueCase{"null", ePDFNull, "null"}, ValueCase{"91 0 R", ePDFIndirect, "91 0 R"}));

INSTANTIATE_TEST_SUITE_P(StringsLoseTheirOuterParentheses, DirectValue,
                         testing::Values(ValueCase{"(x)", ePDFString, "x"}, ValueCase{"()", ePDFString, ""},
                                         ValueCase{"((a))", ePDFString, "a"},
                                         ValueCase{"(a(b))", ePDFString, "a(b"},
                                         ValueCase{"( a )", ePDFString, " a "}));

INSTANTIATE_TEST_SUITE_P(StringsKeepTheirEscapes, DirectValue,
                         testing::Values(ValueCase{"(\\101\\n)", ePDFString, "\\101\\n"},
                                         ValueCase{"(a\\)b)", ePDFString, "a\\)b"},
                                         ValueCase{"(a\\(b\\))", ePDFString, "a\\(b\\"},
                                         ValueCase{"<414a>", ePDFString, "<414a>"}));

struct MisfitCase {
  const char* value;
  EPDFType wanted;
};

class MisfitValue : public testing::TestWithParam<MisfitCase> {};

TEST_P(MisfitValue, WithoutAReferenceStaysUnanswered) {
  EXPECT_EQ(foundInText(std::string("<</K ") + GetParam().value + ">>", {{"/K", GetParam().wanted}}), "");
}

INSTANTIATE_TEST_SUITE_P(Types, MisfitValue,
                         testing::Values(MisfitCase{"(x)", ePDFNumber}, MisfitCase{"5", ePDFString},
                                         MisfitCase{"/N", ePDFString}, MisfitCase{"[5]", ePDFNumber},
                                         MisfitCase{"[(x)]", ePDFString}, MisfitCase{"true", ePDFName},
                                         MisfitCase{"null", ePDFString}, MisfitCase{"<</A(x)>>", ePDFString},
                                         MisfitCase{"(x)", ePDFStream}, MisfitCase{"<</A 1>>", ePDFStream},
                                         MisfitCase{"(x)", ePDFUnknown}, MisfitCase{"[1 2]", ePDFUnknown},
                                         MisfitCase{"", ePDFString}));

TEST(FindingValue, NoValueAtAllIsTheValueOfAKeyThatIsOnlyFollowed) {
  EXPECT_EQ(foundInText("<</K>>", {{"/K", ePDFUnknown}}), "/K\n\n");
  EXPECT_EQ(foundInText("<</K foo>>", {{"/K", ePDFUnknown}}), "/K\n\n");
}

// Values behind references
// ----------------------------------------------------------------------------------------------------------

class ReferredValue : public testing::TestWithParam<ValueCase> {};

TEST_P(ReferredValue, IsStoredAsItStandsInTheObject) {
  EXPECT_EQ(
      foundInText("<</K 12 0 R>>", {{"/K", GetParam().wanted}}, document().object(12, GetParam().value)),
      std::string("/K\n") + GetParam().stored + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Types, ReferredValue,
    testing::Values(ValueCase{"true", ePDFBoolean, "true"}, ValueCase{"12.5", ePDFNumber, "12.5"},
                    ValueCase{"(x)", ePDFString, "(x)"}, ValueCase{"<41>", ePDFString, "<41>"},
                    ValueCase{"/N", ePDFName, "/N"}, ValueCase{"[1 0 R]", ePDFArray, "[1 0 R]"},
                    ValueCase{"<</A 1>>", ePDFDictionary, "<</A 1>>"}, ValueCase{"null", ePDFNull, "null"},
                    ValueCase{"(x)", ePDFNumber, ""}));

TEST(FindingValue, ChainOfReferencesIsFollowed) {
  EXPECT_EQ(
      foundInText("<</K 12 0 R>>", {{"/K", ePDFString}}, document().object(12, "13 0 R").object(13, "(x)")),
      "/K\n(x)\n");
}

TEST(FindingValue, EachReferenceOfAnArrayGivesAValue) {
  const auto builder = document().object(12, "(b)").object(13, "(a)");
  EXPECT_EQ(foundInText("<</K[12 0 R 13 0 R]>>", {{"/K", ePDFString}}, builder), "/K\n(b)\n/K\n(a)\n");
  EXPECT_EQ(foundInText("<</K[12 0 R(c)]>>", {{"/K", ePDFString}}, builder), "/K\n(b)\n");
}

TEST(FindingValue, EachReferenceOfADictionaryGivesAValue) {
  EXPECT_EQ(foundInText("<</K<</X 12 0 R/Y 13 0 R>>>>", {{"/K", ePDFString}},
                        document().object(12, "(b)").object(13, "(a)")),
            "/K\n(b)\n/K\n(a)\n");
}

TEST(FindingValue, ReferenceOfAnotherKeyIsNotFollowed) {
  EXPECT_EQ(foundInText("<</A 99 0 R/K(x)>>", {{"/K", ePDFString}}), "/K\nx\n");
}

TEST(FindingValue, StreamIsStoredDecoded) {
  const auto builder =
      document().stream(12, "/Filter/FlateDecode", deflated("hello")).stream(13, "", "plain");
  EXPECT_EQ(foundInText("<</K 12 0 R>>", {{"/K", ePDFStream}}, builder), "/K\nhello\n");
  EXPECT_EQ(foundInText("<</K[13 0 R 12 0 R]>>", {{"/K", ePDFStream}}, builder), "/K\nplain\n/K\nhello\n");
}

TEST(FindingValue, DictionaryOfAStreamIsItsDictionary) {
  EXPECT_EQ(foundInText("<</K 12 0 R>>", {{"/K", ePDFDictionary}}, document().stream(12, "/N 3", "<</A 1>>")),
            "/K\n<</Length 8 /N 3>>\n");
}

// The walk
// ----------------------------------------------------------------------------------------------------------

const Wishes titlesBelowKids{{"/T", ePDFString}, {"/Kids", ePDFUnknown}};

TEST(Walk, ObjectIsAStart) {
  EXPECT_EQ(foundInObject(document().object(10, "<</T(x)>>"), 10, {{"/T", ePDFString}}), "/T\nx\n");
}

TEST(Walk, CatalogIsAStart) {
  const Source source = pdf().onePage("/MediaBox[0 0 9 9]", "/OutputIntents[<</S/X>>]").open();
  FindingHint hint = asking({{"/OutputIntents", ePDFArray}, {"/Pages", ePDFIndirect}});
  FindingValue(hint, source.file.get()).find(true);
  EXPECT_EQ(told(hint), "/OutputIntents\n[<</S/X>>]\n/Pages\n2 0 R\n");
}

TEST(Walk, ObjectInAnObjectStreamIsAStart) {
  EXPECT_EQ(
      foundInObject(document().compressed(20, 10, "<</T(x)/Kids 11 0 R>>").compressed(20, 11, "<</T(y)>>"),
                    10, titlesBelowKids),
      "/T\nx\n/T\ny\n");
}

TEST(Walk, StringsOfObjectsAreWrittenAnew) {
  EXPECT_EQ(foundInObject(document().object(10, "<</T(\\101\\)b)>>"), 10, {{"/T", ePDFString}}),
            "/T\nA\\)b\n");
}

TEST(Walk, DataOfAStreamAreNotLookedAt) {
  EXPECT_EQ(foundInObject(document().stream(10, "/T(x)", "<</T(y)>>"), 10, {{"/T", ePDFString}}), "/T\nx\n");
}

TEST(Walk, FollowsTheLastReferenceFirst) {
  EXPECT_EQ(foundInText("<</Kids[10 0 R 11 0 R]>>", titlesBelowKids,
                        document().object(10, "<</T(ten)>>").object(11, "<</T(eleven)>>")),
            "/T\neleven\n/T\nten\n");
}

TEST(Walk, GoesDownBeforeItGoesOn) {
  const auto builder = document()
                           .object(10, "<</T(10)/Kids[12 0 R]>>")
                           .object(11, "<</T(11)/Kids[13 0 R 14 0 R]>>")
                           .object(12, "<</T(12)>>")
                           .object(13, "<</T(13)>>")
                           .object(14, "<</T(14)>>");
  EXPECT_EQ(foundInText("<</Kids[10 0 R 11 0 R]>>", titlesBelowKids, builder),
            "/T\n11\n/T\n14\n/T\n13\n/T\n10\n/T\n12\n");
}

TEST(Walk, ScansTheWholeTextBeforeItFollows) {
  EXPECT_EQ(foundInText("<</Kids 10 0 R/T(here)>>", titlesBelowKids, document().object(10, "<</T(there)>>")),
            "/T\nhere\n/T\nthere\n");
}

TEST(Walk, FollowsEveryReferenceInTheValue) {
  const auto builder = document().object(10, "<</T(10)>>").object(11, "<</T(11)>>");
  EXPECT_EQ(foundInText("<</Kids<</A[(x)10 0 R]/B 11 0 R>>>>", titlesBelowKids, builder), "/T\n11\n/T\n10\n");
}

TEST(Walk, DropsTheValueOfTheKeyItself) {
  EXPECT_EQ(foundInText("<</Kids[10 0 R(x)5]>>", {{"/Kids", ePDFUnknown}}, document().object(10, "<</A 1>>")),
            "");
}

TEST(Walk, ObjectReachedTwiceIsScannedTwice) {
  EXPECT_EQ(foundInText("<</Kids 10 0 R/Kids 10 0 R>>", titlesBelowKids, document().object(10, "<</T(x)>>")),
            "/T\nx\n/T\nx\n");
}

TEST(Walk, GenerationsAreObjectsOfTheirOwn) {
  EXPECT_EQ(foundInText("<</Kids[10 3 R]>>", titlesBelowKids,
                        document().object(PdfBuilder::Identity{10, 3}, "<</T(x)>>")),
            "/T\nx\n");
}

TEST(Walk, CycleEndsWhereItCloses) {
  EXPECT_EQ(foundInObject(document().object(10, "<</T(x)/Kids 10 0 R>>"), 10, titlesBelowKids), "/T\nx\n");
  EXPECT_EQ(foundInObject(document().object(10, "<</T(x)/Kids 11 0 R>>").object(11, "<</T(y)/Kids[10 0 R]>>"),
                          10, titlesBelowKids),
            "/T\nx\n/T\ny\n");
}

TEST(Walk, WhatStandsBesideACycleIsFound) {
  const auto builder = document().object(10, "<</T(10)/Kids[11 0 R 10 0 R]>>").object(11, "<</T(11)>>");
  EXPECT_EQ(foundInText("<</Kids 10 0 R>>", titlesBelowKids, builder), "/T\n10\n/T\n11\n");
}

// Steps
// ----------------------------------------------------------------------------------------------------------

TEST(Steps, OneStepLeavesTheReferencesAlone) {
  EXPECT_EQ(foundInText("<</Kids[99 0 R]/T(x)>>", titlesBelowKids, document(), false), "/T\nx\n");
  EXPECT_EQ(foundInObject(document().object(10, "<</T(x)/Kids[99 0 R]>>"), 10, titlesBelowKids, false),
            "/T\nx\n");
}

TEST(Steps, OneStepResolvesValuesBehindReferences) {
  EXPECT_EQ(foundInText("<</K 12 0 R>>", {{"/K", ePDFDictionary}}, document().object(12, "<</A 1>>"), false),
            "/K\n<</A 1>>\n");
}

TEST(Steps, NextStepTakesTheLastReference) {
  const Source source = document().object(10, "<</T(ten)>>").object(11, "<</T(eleven)>>").open();
  FindingHint hint = asking(titlesBelowKids);
  FindingValue finder(hint, source.file.get(), "<</Kids[10 0 R 11 0 R]>>");
  finder.find(false);
  EXPECT_EQ(told(hint), "");
  finder.find(false);
  EXPECT_EQ(told(hint), "/T\neleven\n");
  finder.find(true);
  EXPECT_EQ(told(hint), "/T\neleven\n/T\nten\n");
}

TEST(Steps, LoadingAndScanningAreSeparate) {
  const Source source = document().object(10, "<</T(x)>>").open();
  FindingHint hint = asking({{"/T", ePDFString}});
  FindingValue finder(hint, source.file.get(), 10, 0);
  finder.FindingReference();
  EXPECT_EQ(told(hint), "");
  finder.findParsedString();
  EXPECT_EQ(told(hint), "");
  finder.FindingReference();
  EXPECT_EQ(told(hint), "/T\nx\n");
}

TEST(Steps, FinderWithNothingWaitingDoesNothing) {
  const Source source = document().open();
  FindingHint hint = asking({{"/T", ePDFString}});
  FindingValue finder(hint, source.file.get(), "<</T(x)>>");
  finder.find(true);
  finder.find(true);
  finder.find(false);
  finder.findParsedString();
  finder.FindingReference();
  EXPECT_EQ(told(hint), "/T\nx\n");
}

// Failures
// ----------------------------------------------------------------------------------------------------------

constexpr const char* notLoaded =
    "TESSEL_LocalObjErr\nException in file: tessel_findingvalue\\.cpp at line: [0-9]+";

TEST(FindingValue, StartThatIsNotThereThrowsWhenItIsLoaded) {
  const Source source = document().open();
  FindingHint hint = asking({{"/T", ePDFString}});
  FindingValue finder(hint, source.file.get(), 99, 0);
  EXPECT_THAT([&] { finder.find(false); }, ThrowsMessage<BaseException>(MatchesRegex(notLoaded)));
}

TEST(FindingValue, ObjectOfTheWalkThatIsNotThereThrows) {
  const Source source = document().open();
  FindingHint hint = asking(titlesBelowKids);
  FindingValue finder(hint, source.file.get(), "<</T(x)/Kids 99 0 R>>");
  EXPECT_THAT([&] { finder.find(true); }, ThrowsMessage<BaseException>(MatchesRegex(notLoaded)));
  EXPECT_EQ(told(hint), "/T\nx\n");
}

TEST(FindingValue, CatalogThatIsNotThereThrowsFromTheConstructor) {
  const Source source = document().root(99).open();
  FindingHint hint;
  EXPECT_THAT([&] { FindingValue(hint, source.file.get()); },
              ThrowsMessage<BaseException>(MatchesRegex(notLoaded)));
}

TEST(FindingValue, ValueThatIsNotThereThrowsAndWhatWasFoundStays) {
  const Source source = document().open();
  FindingHint hint = asking({{"/A", ePDFString}, {"/B", ePDFString}, {"/C", ePDFString}});
  FindingValue finder(hint, source.file.get(), "<</A(x)/B 99 0 R/C(y)>>");
  EXPECT_THAT([&] { finder.find(true); }, ThrowsMessage<BaseException>(MatchesRegex(
                                              "TESSEL_LocalObjErr error value: 99 0 R\n"
                                              "Exception in file: tessel_[a-z_]+\\.cpp at line: [0-9]+")));
  EXPECT_EQ(told(hint), "/A\nx\n");
}

TEST(FindingValue, StreamThatIsDamagedThrowsAndWhatWasFoundStays) {
  const Source source = document().stream(12, "/Filter/AHx", "4G>").open();
  FindingHint hint = asking({{"/A", ePDFString}, {"/B", ePDFStream}});
  FindingValue finder(hint, source.file.get(), "<</A(x)/B 12 0 R>>");
  EXPECT_THAT([&] { finder.find(true); },
              ThrowsMessage<BaseException>(
                  MatchesRegex("Decomress error\nException in file: tessel_[a-z_]+\\.cpp at line: [0-9]+")));
  EXPECT_EQ(told(hint), "/A\nx\n");
}

TEST(FindingValue, NumberBeyondAllBoundsIsNotThere) {
  EXPECT_THROW(foundInText("<</Kids 99999999999999999999 0 R>>", titlesBelowKids), BaseException);
}

}  // namespace
