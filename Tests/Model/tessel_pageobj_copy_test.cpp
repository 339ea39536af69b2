#include <gtest/gtest.h>

#include <string>

#include "TesselPage/Model/tessel_pageobj.h"
#include "Tests/Support/object_copy.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

PdfBuilder document() { return pdf().onePage("/MediaBox[0 0 9 9]"); }

/// Copies object 7 of a document in which it has this body.
Copy copied(const std::string& body, Renumbering table = {}, bool raw = false) {
  return copyAs<CPage>(document().object(7, body).object(8, "[8]").object(9, "12").build(), 7, table, raw);
}

Copy whole(const std::string& text) { return {true, false, text + "\nendobj\n"}; }

}  // namespace

TEST(CopyPageObject, RenumbersReferences) {
  EXPECT_EQ(copied("<</A 8 0 R/B[9 0 R 8 0 R](x)>>", {{8, 80}, {9, 90}}),
            whole("<</A 80 0 R/B[ 90 0 R 80 0 R](x)>>"));
}

TEST(CopyPageObject, ReferenceWithoutANewNumberIsNull) {
  EXPECT_EQ(copied("<</Parent 3 0 R/B[9 0 R 8 0 R]>>", {{8, 80}}),
            whole("<</Parent null /B[ null  80 0 R]>>"));
}

TEST(CopyPageObject, CutsFourKeysWithTheirArrays) {
  EXPECT_EQ(copied("<</MediaBox [0 0 9 9]/Rotate 90/CropBox[1 1 2 2]/A 1>>"), whole("<</Rotate 90/A 1>>"));
  EXPECT_EQ(copied("<</Annots[8 0 R 9 0 R]/Contents[8 0 R]/A 1>>", {{8, 80}}), whole("<</A 1>>"));
  EXPECT_EQ(copied("<< /MediaBox [0 0 9 9] /A 1 >>"), whole("<<  /A 1 >>"));
}

TEST(CopyPageObject, CutsAnnotsAndContentsWithTheirReference) {
  EXPECT_EQ(copied("<</Annots 8 0 R/Contents 9 0 R/A 8 0 R>>", {{8, 80}, {9, 90}}), whole("<</A 80 0 R>>"));
}

TEST(CopyPageObject, ReferenceOfABoxStaysWithoutItsKey) {
  EXPECT_EQ(copied("<</MediaBox 8 0 R/CropBox 9 0 R/A 1>>", {{8, 80}}), whole("<< 80 0 R null /A 1>>"));
}

TEST(CopyPageObject, CutsAContentsString) {
  EXPECT_EQ(copied("<</Contents(a b)/A(c)>>"), whole("<</A(c)>>"));
}

TEST(CopyPageObject, OtherValuesOfCutKeysStayWithoutTheirKey) {
  EXPECT_EQ(copied("<</MediaBox /Name/Contents 5/Annots<41>/A 1>>"), whole("<< /Name 5<41>/A 1>>"));
}

TEST(CopyPageObject, CutsTheKeysAtAnyDepth) {
  EXPECT_EQ(copied("<</A<</Contents 8 0 R/B[<</Annots[1]>>]>>>>", {{8, 80}}), whole("<</A<</B[<<>>]>>>>"));
}

TEST(CopyPageObject, CopiesAStreamWithItsLength) {
  EXPECT_EQ(copied("<</Length 123 /A 1>>stream\nhello\nendstream"),
            whole("<</Length 5  /A 1>>stream\r\nhello\nendstream"));
  EXPECT_EQ(copied("<</Length 9 0 R/A 1>>stream\nhello world!\nendstream"),
            whole("<</Length 12 /A 1>>stream\r\nhello world!\nendstream"));
}

TEST(CopyPageObject, SecondLengthGoesWithItsValue) {
  EXPECT_EQ(copied("<</Length 5/A<</Length 5/B 1>>>>stream\nhello\nendstream"),
            whole("<</Length 5 /A<</B 1>>>>stream\r\nhello\nendstream"));
  EXPECT_EQ(copied("<</Length 9 0 R/A<</Length 9 0 R/B 1>>>>stream\nhello world!\nendstream"),
            whole("<</Length 12 /A<</B 1>>>>stream\r\nhello world!\nendstream"));
}

TEST(CopyPageObject, FailsWhenTheLengthCannotBeRead) {
  EXPECT_FALSE(copied("<</Length 99 0 R>>stream\nhello\nendstream").result);
}

TEST(CopyPageObject, RenumbersReferencesBehindRichText) {
  EXPECT_EQ(copied("<</RC 8 0 R>>", {{8, 80}}), whole("<</RC 80 0 R>>"));
}

TEST(CopyPageObject, RawKeepsReferencesAndCutsKeys) {
  EXPECT_EQ(copied("<</A 8 0 R/Annots 9 0 R/MediaBox[1]>>", {{8, 80}}, true), whole("<</A 8 0 R 9 0 R>>"));
}

TEST(CopyPageObject, WithoutEndobjRunsIntoTheNextObject) {
  std::string file = document().object(7, "<</A 1>>").object(8, "[8]").build();
  file.replace(file.find("\nendobj", file.find("/A 1")), 7, "       ");
  EXPECT_EQ(copyAs<CPage>(file, 7), whole("<</A 1>>       \n8 0 obj\n[8]"));
}

TEST(CopyPageObject, OfAnObjectStreamIsTheSame) {
  const std::string file = document().compressed(20, 7, "<</A 8 0 R/Annots[1]>>").build();
  EXPECT_EQ(copyAs<CPage>(file, 7), (Copy{true, false, "<</A null >> \nendobj\n"}));
}
