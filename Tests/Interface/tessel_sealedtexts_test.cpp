// The texts that leave under an output key, byte for byte. The cipher is RC4, which needs no initial vector;
// what is expected was computed by another program from the key and the number that each object gets.

#include <gtest/gtest.h>

#include <string>

#include "Tests/Interface/probed_page.h"
#include "Tests/Support/hex.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

class SealedTexts : public testing::Test {
 protected:
  /// A page whose texts pass by all three writers: plain objects, the page's, and annotations.
  void SetUp() override {
    page =
        probe(pdf()
                  .onePage("/Resources<</Properties<</M 6 0 R/D<</T<646972656374>>>>>/XObject<</X 7 0 R>>>>"
                           "/Annots[8 0 R]/W<77>",
                           "/Lang<656e>/RC<656e>/DS(en)/AcroForm 9 0 R")
                  .object(6, "<</S(plain text)/H<736563726574>/E()/F<>>>")
                  .stream(7, "/T<7469746c65>", "plain data")
                  .object(8, "<</Subtype/Text/Rect[0 0 9 9]/Contents<6e6f7465>/AP<</N 7 0 R>>/Popup 10 0 R>>")
                  .object(9, "<</DA<2f4820313220546620>/Fields[]>>")
                  .object(10, "<</Subtype/Popup/Contents<706f707570>/Rect[0 0 9 9]>>"));
    page->setAnnotsEnable(AnnotsEnableAll);
    page->setAcroFormsEnable(AcroFormsEnableAll);
    page->setCurPageObj(70, 0);
    EXPECT_EQ(page->setPageNo(1), 0);
  }
  void harvestUnder(const std::string& key, int revision) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(key.data());
    EXPECT_EQ(page->setEncryptKey(bytes, static_cast<int>(key.size()), revision), 0);
    page->setStartObjNo(10);
  }
  std::string text(int number) const { return page->at({number, 0}); }

  Probe page;
};

TEST_F(SealedTexts, OfPlainObjectsAreForTheirNewNumbers) {
  harvestUnder("12345", 2);
  const std::string literal(
      "\x80\xc7~\xd4"
      "Fz\0\x82\xf4h",
      10);
  EXPECT_EQ(text(10), "<</S(" + literal + ")/H<83ce7ccf4d2e>/E()/F<>>>\n");
  EXPECT_EQ(text(11),
            "<</Length 10 /T<f21aee37b5>>>\nstream\r\n\xf6\x1f\xfb\x32\xbe\x12\xc4\x4e\x87\xc2\nendstream\n");
}

TEST_F(SealedTexts, OfAnnotationsAreForTheirNewNumbers) {
  harvestUnder("12345", 2);
  EXPECT_EQ(text(12), "<</Subtype/Text/Rect[0 0 0 0]/Contents<40ff2ae4>/AP<</N 11 0 R>>/Popup 13 0 R>>\n");
  EXPECT_EQ(text(13), "<</Subtype/Popup/Contents<73f800f8ce>/Rect[0 0 0 0]>>\n");
}

TEST_F(SealedTexts, OfAKeyOf16BytesWithRevision3AreRc4Too) {
  harvestUnder("0123456789abcdef", 3);
  EXPECT_NE(text(10).find("/H<24484a322a6b>"), std::string::npos);
}

TEST_F(SealedTexts, OfThePageAreForTheNumberThatTheHostGives) {
  harvestUnder("12345", 2);
  const std::string resources = "/Properties<</M 10 0 R/D<</T<f63316db93ee>>>>>/XObject<</X 11 0 R>>>>";
  EXPECT_EQ(page->getPageRootString(3),
            "<</Type/Page /Resources<<" + resources + "/Annots[ 12 0 R]/W<e5>>>\nendobj\n");
  const std::string* out = nullptr;
  EXPECT_EQ(page->getPageRes(&out, 3), 0);
  EXPECT_EQ(*out, "<<" + resources);
}

TEST_F(SealedTexts, OfCatalogAndFormAreForTheNumberThatTheHostGives) {
  harvestUnder("12345", 2);
  EXPECT_EQ(page->getRootString(61), "<</Type/Catalog/Lang<1e86>/RC<656e>/DS(en)>>\nendobj\n");
  const std::string* out = nullptr;
  EXPECT_EQ(page->getAcroFormFields(&out, 60), 0);
  EXPECT_EQ(*out, "/DA<a48668926398819387>/Fields[]");
}

TEST_F(SealedTexts, AreInTheClearWhereNoNumberIsGiven) {
  harvestUnder("12345", 2);
  EXPECT_EQ(page->getRootString(0), "<</Type/Catalog/Lang<656e>/RC<656e>/DS(en)>>\nendobj\n");
  EXPECT_NE(page->getPageRootString(0).find("/W<77>"), std::string::npos);
  const std::string* out = nullptr;
  EXPECT_EQ(page->getAcroFormFields(&out, 0), 0);
  EXPECT_EQ(*out, "/DA<2f4820313220546620>/Fields[]");
}

}  // namespace
