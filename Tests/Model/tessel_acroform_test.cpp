#include "TesselPage/Model/tessel_acroform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Model/model_verbs.h"

using namespace TESSEL;
using namespace tessel_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

/// A document whose form is direct in the catalog, or object 9 behind a reference.
enum class FormPlace { direct, byReference };

PdfBuilder withForm(const std::string& form, FormPlace place) {
  PdfBuilder builder;
  if (place == FormPlace::direct) return builder.onePage("", "/AcroForm" + form + "/Metadata 20 0 R");
  return builder.onePage("", "/AcroForm 9 0 R/Metadata 20 0 R").object(9, form);
}

class Form : public testing::TestWithParam<FormPlace> {
 protected:
  Source open(const std::string& form) {
    PdfBuilder builder = withForm(form, GetParam());
    builder.object(5, "<</T(a)/P 3 0 R>>")
        .object(6, "<</T(b)>>")
        .object(7, "<</BaseFont/Helv/W 8 0 R>>")
        .object(8, "[]");
    return builder.object(10, "[5 0 R]").object(11, "<</Helv 7 0 R>>").open();
  }
};

INSTANTIATE_TEST_SUITE_P(Places, Form, testing::Values(FormPlace::direct, FormPlace::byReference));

TEST_P(Form, FieldsAreKeptAndNotHarvested) {
  const Source source = open("<</Fields[5 0 R 6 0 R]/NeedAppearances true>>");
  EXPECT_THAT(numbers(source->catalogObj->form.fields), ElementsAre(5, 6));
  EXPECT_THAT(harvested(source), IsEmpty());
}

TEST_P(Form, FieldsBehindAReferenceAreHarvested) {
  const Source source = open("<</Fields 10 0 R>>");
  EXPECT_THAT(source->catalogObj->form.fields, IsEmpty());
  EXPECT_EQ(source->documentObjs.count(SObj(10, 0)), 1U);
  EXPECT_THAT(harvested(source), ElementsAre(2, 3, 5, 10));
}

TEST_P(Form, FontIsRecordedAndHarvested) {
  const Source source = open("<</DR<</Font<</Helv 7 0 R/ZaDb 6 0 R>>>>>>");
  EXPECT_THAT(source->catalogObj->form.fonts,
              ElementsAre(Pair("/Helv", SObj(7, 0)), Pair("/ZaDb", SObj(6, 0))));
  EXPECT_THAT(harvested(source), ElementsAre(6, 7, 8));
}

TEST_P(Form, FontBehindAReferenceIsNotHarvested) {
  const Source source = open("<</DR<</Font 11 0 R/XObject<</X 6 0 R>>>>>>");
  EXPECT_THAT(source->catalogObj->form.fonts, IsEmpty());
  EXPECT_THAT(harvested(source), ElementsAre(6));
}

TEST_P(Form, OtherReferencesAreHarvestedAndRemembered) {
  const Source source = open("<</CO[6 0 R]/DR<</XObject 8 0 R>>>>");
  EXPECT_THAT(harvested(source), ElementsAre(6, 8));
  EXPECT_THAT(numbers(source->documentObjs), ElementsAre(6, 8));
}

TEST_P(Form, ReferenceToAPageInAFieldBringsThePage) {
  const Source source = open("<</CO[5 0 R]>>");
  EXPECT_THAT(harvested(source), ElementsAre(2, 3, 5));
}

TEST_P(Form, CatalogGoesOnBehindIt) {
  const Source source = open("<</Fields[5 0 R]/DR<</Font<</Helv 7 0 R>>>>/CO[6 0 R]>>");
  EXPECT_EQ(source->catalogObj->metadata, SObj(20, 0));
}

TEST_P(Form, MissingObjectLosesWhatWasStillWaitingAndNothingElse) {
  const Source source = open("<</CO[99 0 R 7 0 R]>>");
  EXPECT_EQ(source.result, 0);
  EXPECT_THAT(harvested(source), ElementsAre(7, 99));
  EXPECT_EQ(source->catalogObj->metadata, SObj(20, 0));
}

TEST(AcroForm, KnownPagesAreIgnored) {
  const Source source =
      pdf().onePage("").object(9, "<</CO[3 0 R 5 0 R]/Fields 3 0 R>>").object(5, "<<>>").open();
  CAcroForm form;
  form.id = SObj(9, 0);
  form.byReference = true;
  EXPECT_TRUE(form.fromStream(*source));
  EXPECT_THAT(harvested(source), ElementsAre(5));
}

TEST(AcroForm, IdentityIsRestoredBehindAHarvestThatFailed) {
  const Source source = pdf().onePage("").object(9, "<</CO 99 0 R>>").open();
  CAcroForm form;
  form.id = SObj(9, 0);
  form.byReference = true;
  EXPECT_FALSE(form.fromStream(*source));
  EXPECT_EQ(form.id, SObj(9, 0));
  EXPECT_TRUE(source->good());
}

TEST(AcroForm, StreamsAreSteppedOver) {
  const Source source = pdf().onePage("").stream(9, "/CO 5 0 R", " 6 0 R ").object(5, "<<>>").open();
  CAcroForm form;
  form.id = SObj(9, 0);
  form.byReference = true;
  EXPECT_TRUE(form.fromStream(*source));
  EXPECT_THAT(harvested(source), ElementsAre(5));
}

TEST(AcroForm, InitEmptiesFieldsAndFonts) {
  CAcroForm form;
  form.fields.insert(SObj(5, 0));
  form.fonts.emplace_back("/F", SObj(6, 0));
  form.Init();
  EXPECT_THAT(form.fields, IsEmpty());
  EXPECT_THAT(form.fonts, IsEmpty());
}

}  // namespace
