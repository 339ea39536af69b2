#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "Tests/Interface/probed_page.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

const unsigned char key16[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

/// A page with one resource of its own, the object 6.
PdfBuilder withObject(const std::string& body) {
  return pdf().onePage("/Resources<</Properties<</M 6 0 R>>>>").object(6, body);
}

/// What becomes of the object 6 when it alone is harvested, as 10.
std::string textOf(const std::string& body) { return harvest(withObject(body))->at({10, 0}); }

const std::string fontFile = "<</Length 3 /Subtype/Type1C>>\nstream\r\nabc\nendstream\n";

/// A page whose font 6 leads to a descriptor 7 and a font file 8.
PdfBuilder withFont() {
  return pdf()
      .onePage("/Resources<</Font<</F 6 0 R>>>>")
      .object(6, "<</Type/Font/FontDescriptor 7 0 R>>")
      .object(7, "<</Type/FontDescriptor/FontFile3 8 0 R>>")
      .stream(8, "/Subtype/Type1C", "abc");
}

/// Pages 3, 4 and 5 with the font 6 in common and a pattern of their own each, 7, 8 and 9.
PdfBuilder sharedFont() {
  PdfBuilder builder = pdf().pageTree({3, 4, 5}).object(6, "<</Type/Font>>");
  for (int page : {3, 4, 5}) {
    const std::string own = std::to_string(page + 4);
    builder.object(
        page, "<</Type/Page/Parent 2 0 R/Resources<</Font<</F 6 0 R>>/Pattern<</P " + own + " 0 R>>>>>>");
    builder.object(page + 4, "<</Pattern " + own + "/Font 6 0 R>>");
  }
  return builder;
}

std::string digestOf(const std::string& text) {
  std::string digest;
  CTesselPage::isStreamObj(text, digest);
  return digest;
}

Probe selected(const PdfBuilder& builder) {
  Probe opened = probe(builder);
  opened->setPageNo(1);
  return opened;
}

// The map.

TEST(PageHarvest, APageWithoutObjectsGivesAnEmptyMap) {
  const Probe opened = selected(pdf().onePage("/MediaBox[0 0 1 1]"));
  EXPECT_EQ(opened->setStartObjNo(10), 0);
  EXPECT_TRUE(opened->empty());
  EXPECT_THAT(opened->getOld2NewObjectVector(), IsEmpty());
}

TEST(PageHarvest, ObjectsAreNumberedInTheirOrderFromTheStart) {
  const Probe opened = harvest(withFont(), 10);
  EXPECT_THAT(texts(*opened),
              ElementsAre(Pair(Identity(10, 0), "<</Type/Font/FontDescriptor 11 0 R>>\n"),
                          Pair(Identity(11, 0), "<</Type/FontDescriptor/FontFile3 12 0 R>>\n"),
                          Pair(Identity(12, 0), fontFile)));
}

TEST(PageHarvest, TellsOldAndNewIdentities) {
  EXPECT_EQ(harvest(withFont(), 100)->getOld2NewObjectVector(),
            (IdentityPairs{{{6, 0}, {100, 0}}, {{7, 0}, {101, 0}}, {{8, 0}, {102, 0}}}));
}

TEST(PageHarvest, AGenerationIsReadAndBecomesZero) {
  const Probe opened =
      harvest(pdf().onePage("/Resources<</Font<</F 6 2 R>>>>").object({6, 2}, "<</A 6 2 R>>"));
  EXPECT_EQ(opened->at({10, 0}), "<</A 10 0 R>>\n");
  EXPECT_EQ(opened->getOld2NewObjectVector(), (IdentityPairs{{{6, 2}, {10, 0}}}));
}

TEST(PageHarvest, AnObjectThatTwoPathsReachComesOnce) {
  const Probe opened = harvest(pdf()
                                   .onePage("/Resources<</Font<</F 6 0 R/G 6 0 R>>/XObject<</X 7 0 R>>>>")
                                   .object(6, "<<>>")
                                   .object(7, "<</A 6 0 R>>"));
  EXPECT_THAT(texts(*opened),
              ElementsAre(Pair(Identity(10, 0), "<<>>\n"), Pair(Identity(11, 0), "<</A 10 0 R>>\n")));
}

TEST(PageHarvest, ContentsAndIndirectResourcesTakeNoNumber) {
  const Probe opened = harvest(pdf()
                                   .onePage("/Contents 4 0 R/Resources 5 0 R")
                                   .stream(4, "", "q Q")
                                   .object(5, "<</Font<</F 6 0 R>>>>")
                                   .object(6, "<</Type/Font>>"));
  EXPECT_THAT(texts(*opened), ElementsAre(Pair(Identity(10, 0), "<</Type/Font>>\n")));
}

TEST(PageHarvest, CompressedObjectsAreHarvestedToo) {
  const Probe opened =
      harvest(pdf().onePage("/Resources<</Font<</F 6 0 R>>>>").compressed(20, 6, "<</Type/Font>>"));
  EXPECT_EQ(opened->at({10, 0}), "<</Type/Font>> \n");
}

TEST(PageHarvest, TheNamesComeThoughThePageHasAStringWithoutItsEnd) {
  const Probe opened =
      harvest(pdf().onePage("/Title (open ", "/Names 8 0 R").object(8, "<</A 9 0 R>>").object(9, "<<>>"));
  EXPECT_THAT(texts(*opened), ElementsAre(Pair(Identity(10, 0), "<<>>\n")));
}

TEST(PageHarvest, TheFirstHarvestCarriesWhatTheNamesLeadTo) {
  const Probe opened = harvest(pdf()
                                   .onePage("", "/Names 8 0 R")
                                   .object(8, "<</JavaScript 9 0 R>>")
                                   .object(9, "<</Names[(a) 10 0 R]>>")
                                   .object(10, "<</S/JavaScript>>"),
                               50);
  EXPECT_THAT(texts(*opened), ElementsAre(Pair(Identity(50, 0), "<</Names[(a) 51 0 R]>>\n"),
                                          Pair(Identity(51, 0), "<</S/JavaScript>>\n")));
}

// The texts.

struct BodyRow {
  const char* body;
  const char* text;
};

class HarvestedText : public testing::TestWithParam<BodyRow> {};
TEST_P(HarvestedText, IsTheBodyWithItsReferencesRewritten) {
  EXPECT_EQ(textOf(GetParam().body), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, HarvestedText,
    testing::Values(BodyRow{"<</A 1>>", "<</A 1>>\n"}, BodyRow{"<</A  6  0  R >>", "<</A 10 0 R >>\n"},
                    BodyRow{"[6 0 R 6 0 R]", "[ 10 0 R 10 0 R]\n"}, BodyRow{"(a string)", "(a string)\n"},
                    BodyRow{"42", "42\n"}, BodyRow{"<</P 3 0 R/Q 1>>", "<</P null /Q 1>>\n"},
                    BodyRow{"<</A 1 % remark\r\n/B\t2>>  ", "<</A 1 % remark\r\n/B\t2>>  \n"},
                    BodyRow{"<</MediaBox[0 0 9 9]/A 1>>", "<</A 1>>\n"}));

TEST(PageHarvest, AStreamKeepsItsDataAndGetsItsTrueLength) {
  EXPECT_EQ(textOf("<</Length 3/A 1>>\nstream\nabc\nendstream"),
            "<</Length 3 /A 1>>\nstream\r\nabc\nendstream\n");
  EXPECT_EQ(textOf("<</Length 13/A 1>>\nstream\r\nabc\nendstream"),
            "<</Length 3 /A 1>>\nstream\r\nabc\nendstream\n");
}

TEST(PageHarvest, AnIndirectLengthBecomesDirect) {
  const Probe opened = harvest(withObject("<</Length 7 0 R/A 1>>\nstream\nabc\nendstream").object(7, "3"));
  EXPECT_EQ(opened->at({10, 0}), "<</Length 3 /A 1>>\nstream\r\nabc\nendstream\n");
}

// Objects that are dropped.

TEST(PageHarvest, AMissingObjectLeavesAnEmptyText) {
  const Probe opened = harvest(withObject("<</A 7 0 R/Z 90 0 R>>").object(7, "<</B 1>>"));
  EXPECT_THAT(texts(*opened), ElementsAre(Pair(Identity(10, 0), "<</A 11 0 R/Z 12 0 R>>\n"),
                                          Pair(Identity(11, 0), "<</B 1>>\n"), Pair(Identity(12, 0), "")));
  EXPECT_EQ(opened->getOld2NewObjectVector(), (IdentityPairs{{{6, 0}, {10, 0}}, {{7, 0}, {11, 0}}}));
}

TEST(PageHarvest, AnUnreadableLengthLeavesAnEmptyText) {
  EXPECT_EQ(textOf("<</Length 90 0 R>>\nstream\nabc\nendstream"), "");
}

TEST(PageHarvest, APlainObjectThatTurnsOutAnAnnotationIsDroppedAndItsNumberStaysUsed) {
  for (const char* body : {"<</Type/Annot>>", "<</A(/Annots)>>", "<</AnnotState 1>>"}) {
    const Probe opened = harvest(withObject(body));
    EXPECT_EQ(opened->at({10, 0}), "") << body;
    EXPECT_THAT(opened->getOld2NewObjectVector(), IsEmpty()) << body;
  }
}

TEST(PageHarvest, ADroppedObjectKeepsItsNumber) {
  const Probe opened = harvest(pdf()
                                   .onePage("/Resources<</Properties<</A 6 0 R/B 7 0 R>>>>")
                                   .object(6, "<</Type/Annot>>")
                                   .object(7, "<</C 6 0 R>>"));
  EXPECT_THAT(texts(*opened),
              ElementsAre(Pair(Identity(10, 0), ""), Pair(Identity(11, 0), "<</C 10 0 R>>\n")));
  EXPECT_EQ(opened->getOld2NewObjectVector(), (IdentityPairs{{{7, 0}, {11, 0}}}));
}

TEST(PageHarvest, AStreamThatLosesAReferenceIsNoPlainObject) {
  EXPECT_EQ(textOf("<</Type/Annot/X 6 0 R/Length 3>>\nstream\nabc\nendstream"),
            "<</Type/Annot/X 10 0 R/Length 3 >>\nstream\r\nabc\nendstream\n");
}

// Objects taken out by their piece information.

TEST(PageHarvest, AnObjectTakenOutIsAnEmptyForm) {
  EXPECT_EQ(emptyForm.size(), 86U);
  EXPECT_EQ(EMPTY_FORM_TEXT, emptyForm);
  const Probe opened = selected(withFont());
  opened->state->sourFile->pieceFilteredObjs.insert(SObj(7, 0));
  opened->setStartObjNo(10);
  EXPECT_EQ(opened->at({11, 0}), emptyForm);
  EXPECT_EQ(opened->getOld2NewObjectVector().size(), 3U);
}

TEST(PageHarvest, AnEmptyFormIsTheSameUnderAKey) {
  const Probe opened = selected(withFont());
  opened->setEncryptKey(key16, 16, 4);
  opened->state->sourFile->pieceFilteredObjs.insert(SObj(6, 0));
  opened->setStartObjNo(10);
  EXPECT_EQ(opened->at({10, 0}), emptyForm);
}

// Objects that the output has already.

TEST(PageHarvest, AnObjectOfTheVectorIsReferredToAndNotWritten) {
  const Probe opened = selected(withFont());
  opened->setOld2NewObjectVector({{{7, 0}, {70, 3}}});
  EXPECT_THAT(opened->getOld2NewObjectVector(), IsEmpty());
  opened->setStartObjNo(10);
  EXPECT_THAT(texts(*opened), ElementsAre(Pair(Identity(10, 0), "<</Type/Font/FontDescriptor 70 3 R>>\n"),
                                          Pair(Identity(11, 0), fontFile)));
  EXPECT_EQ(opened->getOld2NewObjectVector(),
            (IdentityPairs{{{7, 0}, {70, 3}}, {{6, 0}, {10, 0}}, {{8, 0}, {11, 0}}}));
}

TEST(PageHarvest, TheFirstPairOfAnIdentityCounts) {
  const Probe opened = selected(withFont());
  opened->setOld2NewObjectVector({{{7, 0}, {70, 0}}, {{7, 0}, {71, 0}}});
  opened->setStartObjNo(10);
  EXPECT_EQ(opened->at({10, 0}), "<</Type/Font/FontDescriptor 70 0 R>>\n");
}

TEST(PageHarvest, APairThatIsKnownStays) {
  const Probe opened = selected(sharedFont());
  opened->setOld2NewObjectVector({{{6, 0}, {60, 0}}});
  opened->setStartObjNo(10);
  opened->setOld2NewObjectVector({{{6, 0}, {61, 0}}});
  opened->setPageNo(2);
  opened->setStartObjNo(20);
  EXPECT_EQ(opened->getOld2NewObjectVector().front(), (CTesselPage::IdentityPair{{6, 0}, {60, 0}}));
}

TEST(PageHarvest, ASecondPageBringsOnlyWhatIsNew) {
  const Probe opened = harvest(sharedFont(), 10);
  EXPECT_THAT(texts(*opened), ElementsAre(Pair(Identity(10, 0), "<</Type/Font>>\n"),
                                          Pair(Identity(11, 0), "<</Pattern 7/Font 10 0 R>>\n")));
  opened->setOld2NewObjectVector(opened->getOld2NewObjectVector());
  opened->setPageNo(2);
  opened->setStartObjNo(12);
  EXPECT_THAT(texts(*opened), ElementsAre(Pair(Identity(12, 0), "<</Pattern 8/Font 10 0 R>>\n")));
}

TEST(PageHarvest, WithoutTheVectorNumbersOfTheEarlierPageAreLeftEmpty) {
  const Probe opened = harvest(sharedFont(), 10);
  opened->setPageNo(2);
  opened->setStartObjNo(20);
  // 6 and 7 are given 20 and 21 anew, and no text follows.
  EXPECT_THAT(texts(*opened), ElementsAre(Pair(Identity(22, 0), "<</Pattern 8/Font 20 0 R>>\n")));
}

TEST(PageHarvest, TheNewPairsAloneSufficeForTheNextPage) {
  const Probe opened = harvest(sharedFont(), 10);
  EXPECT_EQ(opened->getNewObjectPairs(), (IdentityPairs{{{6, 0}, {10, 0}}, {{7, 0}, {11, 0}}}));
  opened->setOld2NewObjectVector(opened->getNewObjectPairs());
  opened->setPageNo(2);
  opened->setStartObjNo(12);
  EXPECT_EQ(opened->getNewObjectPairs(), (IdentityPairs{{{8, 0}, {12, 0}}}));
  opened->setOld2NewObjectVector(opened->getNewObjectPairs());
  opened->setPageNo(3);
  opened->setStartObjNo(13);
  EXPECT_THAT(texts(*opened), ElementsAre(Pair(Identity(13, 0), "<</Pattern 9/Font 10 0 R>>\n")));
}

TEST(PageHarvest, ASecondHarvestOfThePageAddsNoText) {
  const Probe opened = harvest(withFont(), 10);
  const ObjectTexts first = texts(*opened);
  EXPECT_EQ(opened->setStartObjNo(20), 0);
  EXPECT_EQ(texts(*opened), first);
  EXPECT_THAT(opened->getNewObjectPairs(), IsEmpty());
}

TEST(PageHarvest, AnEntryThatIsThereKeepsItsText) {
  const Probe opened = selected(withFont());
  opened->insert({{11, 0}, "here before"});
  opened->setStartObjNo(10);
  EXPECT_EQ(opened->at({11, 0}), "here before");
}

// Sharing by digest.

TEST(StreamSharing, AStreamOfTheHostsTableIsReferredToAndNotWritten) {
  CTesselPage::StreamObjMap table{{digestOf(fontFile), {77, 0}}};
  const Probe opened = selected(withFont());
  opened->setStreamObjMap(&table);
  opened->setStartObjNo(10);
  EXPECT_THAT(texts(*opened),
              ElementsAre(Pair(Identity(10, 0), "<</Type/Font/FontDescriptor 11 0 R>>\n"),
                          Pair(Identity(11, 0), "<</Type/FontDescriptor/FontFile3 77 0 R>>\n")));
  EXPECT_EQ(opened->getOld2NewObjectVector(),
            (IdentityPairs{{{8, 0}, {77, 0}}, {{6, 0}, {10, 0}}, {{7, 0}, {11, 0}}, {{8, 0}, {77, 0}}}));
  EXPECT_EQ(table.size(), 1U);
}

TEST(StreamSharing, ASharedStreamTakesNoNumber) {
  const std::string form = "<</Length 1 >>\nstream\r\nx\nendstream\n";
  CTesselPage::StreamObjMap table{{digestOf(form), {77, 0}}};
  const Probe opened = selected(pdf()
                                    .onePage("/Resources<</XObject<</A 6 0 R/B 7 0 R>>>>")
                                    .stream(6, "", "x")
                                    .object(7, "<</C 6 0 R>>"));
  opened->setStreamObjMap(&table);
  opened->setStartObjNo(10);
  EXPECT_THAT(texts(*opened), ElementsAre(Pair(Identity(10, 0), "<</C 77 0 R>>\n")));
}

TEST(StreamSharing, AnotherDigestSharesNothing) {
  CTesselPage::StreamObjMap table{{std::string(16, 'x'), {77, 0}}};
  const Probe opened = selected(withFont());
  opened->setStreamObjMap(&table);
  opened->setStartObjNo(10);
  EXPECT_EQ(opened->at({12, 0}), fontFile);
}

TEST(StreamSharing, AStreamThatRefersToObjectsIsNeverShared) {
  const PdfBuilder document =
      withObject("<</Subtype/Type1C/X 7 0 R/Length 3>>\nstream\nabc\nendstream").object(7, "<<>>");
  const std::string text = harvest(document)->at({10, 0});
  CTesselPage::StreamObjMap table{{digestOf(text), {77, 0}}};
  const Probe opened = selected(document);
  opened->setStreamObjMap(&table);
  opened->setStartObjNo(10);
  EXPECT_EQ(opened->at({10, 0}), text);
}

TEST(StreamSharing, AnIndirectLengthIsNoSuchReference) {
  const PdfBuilder document =
      withObject("<</Subtype/Type1C/Length 7 0 R>>\nstream\nabc\nendstream").object(7, "3");
  CTesselPage::StreamObjMap table{{digestOf(fontFile), {77, 0}}};
  const Probe opened = selected(document);
  opened->setStreamObjMap(&table);
  opened->setStartObjNo(10);
  EXPECT_THAT(texts(*opened), ElementsAre(Pair(Identity(10, 0), "3\n")));
}

TEST(StreamSharing, ADictionaryThatBringsTheBytesOfItsStreamIsComparedToo) {
  const std::string body = "<</Subtype/Image/ColorSpace/DeviceGray/Width 1/Length 1>>\nstream\nx\nendstream";
  const std::string other = "<</Subtype/Image/ColorSpace/DeviceGray/Width 2/Length 1>>\nstream\nx\nendstream";
  CTesselPage::StreamObjMap table{{digestOf(textOf(body)), {77, 0}}};
  const Probe same = selected(withObject(body)), different = selected(withObject(other));
  for (const Probe* opened : {&same, &different}) {
    (*opened)->setStreamObjMap(&table);
    (*opened)->setStartObjNo(10);
  }
  EXPECT_TRUE(same->empty());
  EXPECT_EQ(different->size(), 1U);
}

TEST(StreamSharing, StreamsOfInheritedResourcesAreShared) {
  const PdfBuilder document = pdf()
                                  .pageTree({3}, "/Resources<</XObject<</X 6 0 R>>>>")
                                  .object(3, "<</Type/Page/Parent 2 0 R>>")
                                  .stream(6, "/Subtype/Type1C", "abc");
  CTesselPage::StreamObjMap table{{digestOf(fontFile), {77, 0}}};
  const Probe opened = selected(document);
  opened->setStreamObjMap(&table);
  opened->setStartObjNo(10);
  EXPECT_TRUE(opened->empty());
  EXPECT_EQ(opened->getOld2NewObjectVector().size(), 2U);
}

TEST(StreamSharing, NullTurnsItOff) {
  CTesselPage::StreamObjMap table{{digestOf(fontFile), {77, 0}}};
  const Probe opened = selected(withFont());
  opened->setStreamObjMap(&table);
  opened->setStreamObjMap(nullptr);
  opened->setStartObjNo(10);
  EXPECT_EQ(opened->size(), 3U);
}

TEST(StreamSharing, ASharedStreamKeepsItsIdentityOnTheNextPage) {
  CTesselPage::StreamObjMap table{{digestOf(fontFile), {77, 0}}};
  PdfBuilder document = pdf().pageTree({3, 4}).stream(6, "/Subtype/Type1C", "abc");
  for (int page : {3, 4}) {
    document.object(page, "<</Type/Page/Parent 2 0 R/X " + std::to_string(page + 4) + " 0 R>>");
    document.object(page + 4, "<</FontFile3 6 0 R>>");
  }
  const Probe opened = selected(document);
  opened->setStreamObjMap(&table);
  opened->setStartObjNo(10);
  opened->setOld2NewObjectVector(opened->getOld2NewObjectVector());
  opened->setStreamObjMap(nullptr);
  opened->setPageNo(2);
  opened->setStartObjNo(11);
  EXPECT_THAT(texts(*opened), ElementsAre(Pair(Identity(11, 0), "<</FontFile3 77 0 R>>\n")));
}

TEST(StreamSharing, TheDigestOfAHarvestedStreamIsThatOfItsText) {
  const Probe opened = harvest(withFont());
  EXPECT_EQ(opened->getStreamDigest({12, 0}), digestOf(fontFile));
  EXPECT_EQ(opened->getStreamDigest({10, 0}), "");
  EXPECT_EQ(opened->getStreamDigest({99, 0}), "");
}

TEST(StreamSharing, UnderAKeyTheDigestIsThatOfThePlainText) {
  const Probe opened = selected(withFont());
  opened->setEncryptKey(key16, 16, 4);
  opened->setStartObjNo(10);
  EXPECT_NE(opened->at({12, 0}), fontFile);
  EXPECT_EQ(opened->getStreamDigest({12, 0}), digestOf(fontFile));
}

// Output under a key.

TEST(EncryptedHarvest, StringsAndDataAreSealedReferencesAreNot) {
  const Probe opened =
      selected(withObject("<</S(a secret)/A 7 0 R>>").stream(7, "/T(a title)", "plain data"));
  opened->setEncryptKey(key16, 5, 2);
  opened->setStartObjNo(10);
  EXPECT_EQ(opened->at({10, 0}).find("secret"), std::string::npos);
  EXPECT_NE(opened->at({10, 0}).find("/A 11 0 R>>\n"), std::string::npos);
  EXPECT_EQ(opened->at({11, 0}).find("title"), std::string::npos);
  EXPECT_EQ(opened->at({11, 0}).find("plain data"), std::string::npos);
}

TEST(EncryptedHarvest, EqualStringsOfTwoObjectsDiffer) {
  const Probe opened = selected(pdf()
                                    .onePage("/Resources<</Properties<</A 6 0 R/B 7 0 R>>>>")
                                    .object(6, "(a secret)")
                                    .object(7, "(a secret)"));
  opened->setEncryptKey(key16, 16, 3);
  opened->setStartObjNo(10);
  EXPECT_NE(opened->at({10, 0}), opened->at({11, 0}));
}

/// A harvest under AES-128 with entries that the test has put into the map.
class PaddedLength : public testing::Test {
 protected:
  std::string after(const std::string& text, const Identity& asked, const std::string& lengthObject = {}) {
    const Probe opened = selected(pdf().onePage(""));
    opened->setEncryptKey(key16, 16, 4);
    opened->insert({{900, 0}, text});
    if (!lengthObject.empty()) opened->insert({{901, 0}, lengthObject});
    opened->setStartObjNo(10);
    return opened->at(asked);
  }
  static std::string stream(const std::string& length, std::size_t size) {
    return "<</Length " + length + "/A 1>>\nstream\r\n" + std::string(size, 'x') + "\nendstream\n";
  }
};

TEST_F(PaddedLength, IsAMultipleOf16WithABlankBehindIt) {
  EXPECT_EQ(after(stream("33", 33), {900, 0}), stream("48 ", 33));
  EXPECT_EQ(after(stream("1", 1), {900, 0}), stream("16 ", 1));
}

TEST_F(PaddedLength, AMultipleStays) { EXPECT_EQ(after(stream("32", 32), {900, 0}), stream("32 ", 32)); }

TEST_F(PaddedLength, IsWrittenIntoTheObjectThatHoldsIt) {
  EXPECT_EQ(after(stream("901 0 R", 33), {901, 0}, "33\n"), "48 ");
  EXPECT_EQ(after(stream("901 0 R", 33), {900, 0}, "33\n"), stream("901 0 R", 33));
}

TEST_F(PaddedLength, AnEmptyStreamIsLeft) { EXPECT_EQ(after(stream("0", 0), {900, 0}), stream("0", 0)); }

TEST(EncryptedHarvest, OtherKindsOfKeysLeaveTheLength) {
  for (int revision : {3, 5}) {
    const Probe opened = selected(pdf().onePage(""));
    opened->setEncryptKey(key16, 16, revision);
    opened->insert({{900, 0}, "<</Length 3>>stream\nabc\nendstream"});
    opened->setStartObjNo(10);
    EXPECT_EQ(opened->at({900, 0}), "<</Length 3>>stream\nabc\nendstream");
  }
}

TEST(EncryptedHarvest, AStreamUnderAesTellsItsWholeLength) {
  const Probe opened = selected(withFont());
  opened->setEncryptKey(key16, 16, 4);
  opened->setStartObjNo(10);
  const std::string text = opened->at({12, 0});
  EXPECT_EQ(text.rfind("<</Length 32 ", 0), 0U) << text;
  const std::size_t data = text.find("stream\r\n") + 8;
  EXPECT_EQ(text.substr(data + 32), "\nendstream\n");
}

// Finishing.

TEST(PageHarvest, EntriesAreCutAtTheirEndAndLoseOneLineFeed) {
  const Probe opened = selected(pdf().onePage(""));
  opened->insert({{900, 0}, "\n\n<<>>\nendobj\nendobj\n"});
  opened->insert({{901, 0}, "\n"});
  opened->setStartObjNo(10);
  EXPECT_EQ(opened->at({900, 0}), "\n<<>>\nendobj\n");
  EXPECT_EQ(opened->at({901, 0}), "");
}

TEST(PageHarvest, WithoutAKeyNoStringIsLookedAt) {
  const Probe opened = selected(withObject("<</A(x)>>"));
  opened->setStartObjNo(10);
  EXPECT_FALSE(opened->state->lengthFiltered);
}

TEST(PageHarvest, UnderAKeyTheLengthObjectsAreCollected) {
  const Probe opened = selected(withObject("<</A(x)>>"));
  opened->setEncryptKey(key16, 16, 3);
  opened->setStartObjNo(10);
  EXPECT_TRUE(opened->state->lengthFiltered);
}

// Walking the map.

TEST(PageHarvest, IteratorsMoveOn) {
  const Probe opened = harvest(withFont());
  CTesselPage::iterator it = opened->begin();
  EXPECT_EQ(CTesselPage::next(it), 0);
  EXPECT_EQ(it->first, Identity(11, 0));
  CTesselPage::const_iterator constant = opened->cbegin();
  EXPECT_EQ(CTesselPage::next(constant), 0);
  CTesselPage::next(constant);
  CTesselPage::next(constant);
  EXPECT_EQ(constant, opened->cend());
}

// Destinations.

TEST(PageHarvest, DestinationsAreNumberedBehindTheObjects) {
  const PdfBuilder document = pdf()
                                  .pageTree({3, 4})
                                  .object(3, "<</Type/Page/Parent 2 0 R/X 6 0 R/Annots[7 0 R]>>")
                                  .object(4, "<</Type/Page/Parent 2 0 R>>")
                                  .object(6, "<<>>")
                                  .object(7, "<</Type/Annot/Subtype/Link/Rect[0 0 1 1]/Dest[4 0 R/Fit]>>");
  const Probe opened = probe(document);
  opened->setAnnotsEnable(AnnotsEnableAll);
  opened->setPageNo(1);
  opened->setStartObjNo(10);
  const std::vector<DestTD> destinations = opened->getDestVector();
  ASSERT_EQ(destinations.size(), 1U);
  EXPECT_EQ(destinations[0].objNum, 10 + static_cast<int>(opened->size()));
  EXPECT_EQ(destinations[0].page, 2);
}

}  // namespace
