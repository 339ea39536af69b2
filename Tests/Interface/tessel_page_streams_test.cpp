#include <gtest/gtest.h>

#include <string>

#include "Tests/Interface/probed_page.h"
#include "Tests/Support/hex.h"

using namespace TESSEL;
using namespace tessel_test;
using namespace std::string_literals;

namespace {

/// Digest in hexadecimal; "-" when the text is no shareable stream.
std::string digestOf(const std::string& text) {
  std::string digest;
  return CTesselPage::isStreamObj(text, digest) ? toHex(digest) : "-";
}

// Which streams may be shared.

struct DigestRow {
  std::string text;
  const char* digest;
};

class ShareableStream : public testing::TestWithParam<DigestRow> {};
TEST_P(ShareableStream, HasADigest) { EXPECT_EQ(digestOf(GetParam().text), GetParam().digest); }

// The digests are those of what `md5sum` was given: the whole text up to "endstream", or the data alone.
INSTANTIATE_TEST_SUITE_P(Whole, ShareableStream,
                         testing::Values(DigestRow{"<</Length 3>>stream\nabc\nendstream",
                                                   "91e00858d3a575506063da76778e7d4b"},
                                         DigestRow{"<</Length 3>>stream\nabc\nendstream\nmore endstream",
                                                   "91e00858d3a575506063da76778e7d4b"},
                                         DigestRow{"stream endstream", "9eead9b98573219b07378131dafa2e28"}));
INSTANTIATE_TEST_SUITE_P(DataAlone, ShareableStream,
                         testing::Values(DigestRow{"<</Length 3/Subtype/Type1C>>stream\nabc\nendstream",
                                                   "2677429be784fc082564f404bc945717"},
                                         DigestRow{"<</Length 999/Subtype /X/Y 1>>stream\nabc\nendstream\n",
                                                   "2677429be784fc082564f404bc945717"}));
INSTANTIATE_TEST_SUITE_P(None, ShareableStream,
                         testing::Values(DigestRow{"<</Resources 3 0 R>>stream x endstream", "-"},
                                         DigestRow{"<</Resource 3 0 R>>stream x endstream", "-"},
                                         DigestRow{"<<>>stream /Resources endstream", "-"},
                                         DigestRow{"<</Length 3>>", "-"}, DigestRow{"", "-"},
                                         DigestRow{"endstream", "-"}, DigestRow{"<<>>stream abc", "-"},
                                         DigestRow{"endstream stream", "-"},
                                         DigestRow{"streamendstream", "-"}, DigestRow{"stream", "-"}));

TEST(ShareableStream, OfAFormAMatrixOrAColourSpaceTheDictionaryCountsToo) {
  for (const char* key : {"/Form", "/Matrix[1 0 0 1 0 0]", "/ColorSpace/DeviceGray"}) {
    const std::string entries = "/Subtype/X"s + key;
    EXPECT_NE(digestOf("<</A 1" + entries + ">>stream\nabc\nendstream"),
              digestOf("<</A 2" + entries + ">>stream\nabc\nendstream"))
        << key;
  }
}

TEST(ShareableStream, WordsInAStringCount) { EXPECT_NE(digestOf("<</A(stream x endstream)>>"), "-"); }

TEST(ShareableStream, TheDigestIsOfSixteenBytes) {
  std::string digest = "something before";
  EXPECT_TRUE(CTesselPage::isStreamObj("<<>>stream x endstream", digest));
  EXPECT_EQ(digest.size(), 16U);
}

// Entries that the test puts into the map itself.

class PageEntries : public testing::Test {
 protected:
  CTesselPage::iterator entry(int number, const std::string& text, int generation = 0) {
    return page.insert_or_assign({number, generation}, text).first;
  }
  bool leaves(int number, int generation = 0) { return page.check(page.find({number, generation})); }

  std::istringstream in;
  ProbedPage page{in, ""};
};

// Strings that are left alone.

using StringCheck = PageEntries;

TEST_F(StringCheck, StreamsAreNotLeftAlone) {
  entry(1, "<</Length 3>>\nstream\nabc\nendstream");
  EXPECT_FALSE(leaves(1));
}

TEST_F(StringCheck, PlainObjectsAreLeftAlone) {
  entry(1, "<</A(x)>>");
  EXPECT_TRUE(leaves(1));
}

TEST_F(StringCheck, OnlyGenerationZeroIsLeftAlone) {
  entry(1, "<</A(x)>>", 1);
  EXPECT_FALSE(leaves(1, 1));
}

TEST_F(StringCheck, LengthObjectsAreNotLeftAlone) {
  entry(1, "<</Length 2 0 R>>\nstream\nabc\nendstream");
  entry(2, "3 ");
  entry(3, "4 ");
  EXPECT_FALSE(leaves(2));
  EXPECT_TRUE(leaves(3));
}

TEST_F(StringCheck, ALengthIsFollowedByTheFirstReferenceOfEachObject) {
  entry(1, "<</Length 2 0 R>>\nstream\nabc\nendstream");
  entry(2, "[3 0 R 4 0 R]");
  entry(3, "5 0 R");
  for (int number : {4, 5}) entry(number, "3 ");
  EXPECT_FALSE(leaves(3));
  EXPECT_FALSE(leaves(5));
  EXPECT_TRUE(leaves(4));
}

TEST_F(StringCheck, ACycleOfLengthsEnds) {
  entry(1, "<</Length 2 0 R>>\nstream\nabc\nendstream");
  entry(2, "3 0 R");
  entry(3, "2 0 R");
  EXPECT_FALSE(leaves(2));
  EXPECT_FALSE(leaves(3));
}

TEST_F(StringCheck, ALengthOutsideTheMapEndsTheChain) {
  entry(1, "<</Length 9 0 R>>\nstream\nabc\nendstream");
  page.lengthObjectFilt();
  EXPECT_EQ(page.state->lengthObjects, std::set<Identity>({{9, 0}}));
}

TEST_F(StringCheck, LengthsAreCollectedOnceInTheLifeOfTheObject) {
  entry(1, "<</Length 2 0 R>>\nstream\nabc\nendstream");
  entry(2, "3 ");
  EXPECT_FALSE(leaves(2));
  entry(3, "<</Length 4 0 R>>\nstream\nabc\nendstream");
  entry(4, "3 ");
  EXPECT_TRUE(leaves(4));
}

TEST_F(StringCheck, AStreamAloneDoesNotSetTheCollectionOff) {
  entry(1, "<</Length 3>>\nstream\nabc\nendstream");
  EXPECT_FALSE(leaves(1));
  EXPECT_FALSE(page.state->lengthFiltered);
}

TEST_F(StringCheck, ADirectLengthNamesNoObject) {
  entry(1, "<</Length 3 /A 2 0 R>>\nstream\nabc\nendstream");
  page.lengthObjectFilt();
  EXPECT_TRUE(page.state->lengthFiltered);
  EXPECT_TRUE(page.state->lengthObjects.empty());
}

TEST_F(StringCheck, TheEndOfTheMapIsNoEntry) {
  page.lengthObjectFilt_1(page.end());
  page.refObjFilt(page.end());
  EXPECT_TRUE(page.state->lengthObjects.empty());
}

TEST_F(StringCheck, OneEntryGivesItsLengthAndWhatThatRefersTo) {
  const auto it = entry(1, "<</Length 2 0 R>>");
  entry(2, "3 1 R");
  page.lengthObjectFilt_1(it);
  EXPECT_EQ(page.state->lengthObjects, std::set<Identity>({{2, 0}, {3, 1}}));
  EXPECT_FALSE(page.state->lengthFiltered);
}

TEST_F(StringCheck, AnEmptyEntryRefersToNothing) {
  page.refObjFilt(entry(1, ""));
  page.refObjFilt(entry(2, "no reference"));
  EXPECT_TRUE(page.state->lengthObjects.empty());
}

TEST_F(StringCheck, AReferenceNeedsBlanksBetweenItsParts) {
  page.refObjFilt(entry(1, "3 0R 4  0\tR"));
  EXPECT_EQ(page.state->lengthObjects, std::set<Identity>({{4, 0}}));
}

// Lengths.

struct LengthRow {
  std::string text;
  int length;
};

class StreamLength : public testing::TestWithParam<LengthRow> {};
TEST_P(StreamLength, IsCounted) {
  std::istringstream in;
  CTesselPage page(in, "");
  EXPECT_EQ(page.calcStreamLength(page.insert_or_assign({1, 0}, GetParam().text).first), GetParam().length);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, StreamLength,
    testing::Values(LengthRow{"", 0}, LengthRow{"<</A 1>>", 0}, LengthRow{"<<>>stream\nabc\nendstream", 3},
                    LengthRow{"<<>>stream\r\nabc\r\nendstream", 3},
                    LengthRow{"<<>>stream\nab\r\n\r\n\nendstream", 2},
                    LengthRow{"<<>>stream\nab \nendstream", 3},
                    LengthRow{"<<>>stream\n \t\f\0abc\nendstream"s, 3}, LengthRow{"<<>>stream\nabc", 3},
                    LengthRow{"<<>>stream", 0}, LengthRow{"stream x", 1},
                    LengthRow{"<<>>stream\nendstream", 0}, LengthRow{"<<>>streamabc\nendstream", 3},
                    LengthRow{"<<>>stream\nendstream\nendstream", 9}, LengthRow{"endstream stream x", 0}));

/// What findLengthPos left, as the test reads it.
struct FoundLength {
  std::string* holder = nullptr;
  char* begin = nullptr;
  char* end = nullptr;
  CTesselPage::iterator entry;

  std::string value() const { return begin == nullptr ? "none" : std::string(begin, end); }
};

class LengthPlace : public PageEntries {
 protected:
  FoundLength find(int number) {
    FoundLength found;
    EXPECT_EQ(
        page.findLengthPos(page.find({number, 0}), &found.holder, &found.begin, &found.end, &found.entry), 0);
    return found;
  }
};

TEST_F(LengthPlace, ADirectValueIsItsDigits) {
  const auto it = entry(1, "<</Length 12/A 3>>stream");
  const FoundLength found = find(1);
  EXPECT_EQ(found.value(), "12");
  EXPECT_EQ(found.holder, &it->second);
  EXPECT_EQ(found.begin, it->second.data() + 10);
  EXPECT_EQ(found.entry, it);
}

TEST_F(LengthPlace, AReferredObjectIsTheValueAsAWhole) {
  entry(1, "<</Length 7 0 R>>stream");
  const auto length = entry(7, "123 ");
  const FoundLength found = find(1);
  EXPECT_EQ(found.value(), "123 ");
  EXPECT_EQ(found.holder, &length->second);
  EXPECT_EQ(found.entry, length);
}

TEST_F(LengthPlace, ReferencesAreFollowed) {
  entry(1, "<</Length 7 0 R>>stream");
  entry(7, "<</Length 8 0 R>>");
  entry(8, "<</Length 5>>");
  EXPECT_EQ(find(1).value(), "5");
  EXPECT_EQ(find(1).holder, &page.at({8, 0}));
}

TEST_F(LengthPlace, AnIntegerAtTheHeadMakesTheWholeTextTheValue) {
  entry(1, " 42 and more");
  EXPECT_EQ(find(1).value(), " 42 and more");
}

TEST_F(LengthPlace, WithoutAValueTheOutputsStay) {
  for (const char* text : {"", "<</A 1>>", "<</Length/X>>", "<</Length1 5>>"}) {
    const auto it = entry(1, text);
    const FoundLength found = find(1);
    EXPECT_EQ(found.holder, nullptr) << text;
    EXPECT_EQ(found.begin, nullptr) << text;
    EXPECT_EQ(found.end, nullptr) << text;
    EXPECT_EQ(found.entry, it) << text;
  }
}

TEST_F(LengthPlace, AReferenceOutOfTheMapGivesNoValue) {
  entry(1, "<</Length 9 0 R>>stream");
  EXPECT_EQ(find(1).holder, nullptr);
}

TEST_F(LengthPlace, ACycleOfReferencesEndsWithoutAValue) {
  entry(1, "<</Length 2 0 R>>");
  entry(2, "<</Length 1 0 R>>");
  EXPECT_EQ(find(1).holder, nullptr);
}

TEST_F(LengthPlace, TheEntryIsTheFirstKeyWithABlankBehindIt) {
  entry(1, "<</Length1 5/Length 6/Length 7>>");
  EXPECT_EQ(find(1).value(), "6");
}

// Restoring strings.

TEST(StringRestore, NothingIsDoneUnlessItIsSwitchedOn) {
  const Probe opened = probe(pdf().onePage(""));
  const unsigned char key[16] = {};
  opened->setEncryptKey(key, 16, 4);
  EXPECT_EQ(opened->decryptObject("<</A(x)>>endobj", 5, 0), "<</A(x)>>endobj");
}

TEST(StringRestore, ATextWithoutItsEndStays) {
  const Probe opened = probe(pdf().onePage(""));
  opened->state->stringsRestorable = true;
  EXPECT_EQ(opened->decryptObject("<</A(x)>>", 5, 0), "<</A(x)>>");
}

TEST(StringRestore, WithoutAKeyStringsAreWrittenAnew) {
  const Probe opened = probe(pdf().onePage(""));
  opened->state->stringsRestorable = true;
  EXPECT_EQ(opened->decryptObject("<</A (x)/B<4142>/C 5 0 R>>\nendobj\nrest", 5, 0),
            "<</A (x)/B<4142>/C 5 0 R>>\nendobj");
}

TEST(StringRestore, EncryptedStringsComeBackInTheClear) {
  const PdfBuilder document = pdf()
                                  .onePage("/Resources<</Properties<</M 6 0 R>>>>")
                                  .object(6, "<</S(a secret text)/H<736563726574>/N 1>>");
  struct Kind {
    int length, revision;
  };
  for (const Kind& kind : {Kind{5, 2}, {16, 3}, {16, 4}, {32, 5}}) {
    const unsigned char key[32] = {1, 2, 3, 4, 5, 6, 7, 8};
    const Probe opened = probe(document);
    opened->setEncryptKey(key, kind.length, kind.revision);
    opened->setPageNo(1);
    opened->setStartObjNo(10);
    const std::string sealed = opened->at({10, 0});
    EXPECT_EQ(sealed.find("a secret text"), std::string::npos);
    opened->state->stringsRestorable = true;
    const std::string restored = opened->decryptObject(sealed + "endobj\n", 10, 0);
    EXPECT_EQ(restored, "<</S(a secret text)/H<736563726574>/N 1>>\nendobj") << kind.length;
  }
}

}  // namespace
