#include "TesselPage/Interface/tessel_resourcemerger.h"

#include <gtest/gtest.h>

#include <string>

using namespace TESSEL;

namespace {

std::string merged(const std::string& own, const std::string& object) {
  return ResourceDictMerger(own, object).merged();
}

struct DirectRow {
  std::string text;
  unsigned long pos;
  const char* entries;
};

class DirectDictionary : public testing::TestWithParam<DirectRow> {};
TEST_P(DirectDictionary, GivesItsEntries) {
  EXPECT_EQ(ResourceDictMerger::getDirectKeyPos(GetParam().text, GetParam().pos), GetParam().entries);
}

INSTANTIATE_TEST_SUITE_P(Texts, DirectDictionary,
                         testing::Values(DirectRow{"<</A 1>>", 0, "/A 1"},
                                         DirectRow{"xx<</A 1>>/B<</C 1>>", 2, "/A 1"},
                                         DirectRow{" \t\r\n\f<</A 1>>", 0, "/A 1"},
                                         DirectRow{std::string("\0<</A 1>>", 9), 0, "/A 1"},
                                         DirectRow{"<<>>", 0, ""}, DirectRow{" 12 0 R/B<</A 1>>", 0, ""},
                                         DirectRow{"<</A 1", 0, "/A 1"}, DirectRow{"</A 1>>", 0, ""},
                                         DirectRow{"", 0, ""}, DirectRow{"  ", 0, ""}, DirectRow{"<", 0, ""},
                                         DirectRow{"<</A<</B 1>>/C 2>>", 0, "/A<</B 1"}));

TEST(ResourceMerger, EntriesStandSideBySideTheOwnOnesFirst) {
  EXPECT_EQ(merged("<</Font<</F 1 0 R>>>>", "<</Font<</G 2 0 R>>>>"), "<</Font<</F 1 0 R/G 2 0 R>>>>");
}

TEST(ResourceMerger, ANameOfBothStaysTwice) {
  EXPECT_EQ(merged("<</Font<</F 1 0 R>>>>", "<</Font<</F 2 0 R>>>>"), "<</Font<</F 1 0 R/F 2 0 R>>>>");
}

TEST(ResourceMerger, AKeyOfOneSideIsEnough) {
  EXPECT_EQ(merged("<</Font<</F 1 0 R>>>>", "<</XObject<</X 2 0 R>>>>"),
            "<</XObject<</X 2 0 R>>/Font<</F 1 0 R>>>>");
}

TEST(ResourceMerger, SevenSubdictionariesComeInAFixedOrder) {
  const std::string all =
      "<</Properties<</a 1>>/Font<</b 1>>/XObject<</c 1>>/Shading<</d 1>>/Pattern<</e 1>>/ColorSpace<</f "
      "1>>/ExtGState<</g 1>>>>";
  EXPECT_EQ(
      merged(all, "<<>>"),
      "<</ExtGState<</g 1>>/ColorSpace<</f 1>>/Pattern<</e 1>>/Shading<</d 1>>/XObject<</c 1>>/Font<</b "
      "1>>/Properties<</a 1>>>>");
}

TEST(ResourceMerger, OtherKeysAreLost) { EXPECT_EQ(merged("<</Other 1>>", "<</More<<>>>>"), "<<>>"); }

TEST(ResourceMerger, ASubdictionaryByReferenceTakesNoPart) {
  EXPECT_EQ(merged("<</Font 12 0 R>>", "<</Font<</F 1 0 R>>>>"), "<</Font<</F 1 0 R>>>>");
  EXPECT_EQ(merged("<</Font 12 0 R>>", "<</Font 13 0 R>>"), "<</Font<<>>>>");
}

TEST(ResourceMerger, ANestedDictionaryEndsTheEntriesEarly) {
  EXPECT_EQ(merged("<</Properties<</M<</T 1>>/N 2 0 R>>>>", "<<>>"), "<</Properties<</M<</T 1>>>>");
}

TEST(ResourceMerger, OneSubdictionaryIsAppended) {
  const std::string own = "<</Font<</F 1 0 R>>>>", object = "<</Font <</G 2 0 R>>>>";
  std::string out = "before";
  const ResourceDictMerger merger(own, object);
  merger.dictValMerge("/Font", out);
  EXPECT_EQ(out, "before/Font<</F 1 0 R/G 2 0 R>>");
  merger.dictValMerge("/Shading", out);
  EXPECT_EQ(out, "before/Font<</F 1 0 R/G 2 0 R>>");
}

struct ProcSetRow {
  const char* own;
  const char* object;
  const char* merged;
};

class ProcedureSet : public testing::TestWithParam<ProcSetRow> {};
TEST_P(ProcedureSet, ComesLast) { EXPECT_EQ(merged(GetParam().own, GetParam().object), GetParam().merged); }

INSTANTIATE_TEST_SUITE_P(
    Rows, ProcedureSet,
    testing::Values(ProcSetRow{"<<>>", "<<>>", "<<>>"},
                    ProcSetRow{"<</ProcSet[/PDF /Text]>>", "<<>>", "<</ProcSet[/PDF /Text]>>"},
                    ProcSetRow{"<</ProcSet [/PDF]>>", "<<>>", "<</ProcSet[/PDF]>>"},
                    ProcSetRow{"<</ProcSet[]>>", "<<>>", "<</ProcSet[]>>"},
                    ProcSetRow{"<</ProcSet[/PDF]>>", "<</ProcSet[/Text]>>", "<</ProcSet[/PDF]>>"},
                    ProcSetRow{"<<>>", "<</ProcSet[/PDF /Text]>>", "<</ProcSet[PDF /Text]>>"},
                    ProcSetRow{"<<>>", "<</ProcSet [ /PDF]>>", "<</ProcSet[/PDF]>>"},
                    ProcSetRow{"<</ProcSet[/PDF]/Font<</F 1 0 R>>>>", "<<>>",
                               "<</Font<</F 1 0 R>>/ProcSet[/PDF]>>"}));

TEST(ResourceMerger, AnUnclosedProcedureSetStaysInBounds) {
  for (const char* text : {"/ProcSet", "/ProcSet[", "/ProcSet[/", "/ProcSet 5 0 R"}) {
    for (const std::string& result : {merged(text, "<<>>"), merged("<<>>", text)}) {
      EXPECT_EQ(result.rfind("<</ProcSet[", 0), 0U) << text;
      EXPECT_EQ(result.substr(result.size() - 3), "]>>") << text;
    }
  }
}

}  // namespace
