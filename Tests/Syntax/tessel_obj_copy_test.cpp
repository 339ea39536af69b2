#include <gtest/gtest.h>

#include <string>

#include "TesselPage/Syntax/tessel_obj.h"
#include "Tests/Support/object_copy.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

PdfBuilder document() { return pdf().onePage("/MediaBox[0 0 9 9]"); }

/// Copies object 7 of a document in which it has this body.
Copy copied(const std::string& body, Renumbering table = {}, bool raw = false) {
  return copyAs<CObj>(document().object(7, body).object(8, "[8]").object(9, "12").build(), 7, table, raw);
}

Copy whole(const std::string& text, bool dropped = false) { return {true, dropped, text + "\nendobj\n"}; }

}  // namespace

TEST(CopyObject, TakesTheTextByteForByte) {
  const std::string body = "<< /A  1 % comment 5 0 S\r\n\t/B[1 .5 true]/C<</D/E>> >>";
  EXPECT_EQ(copied(body), whole(body));
}

TEST(CopyObject, ReplacesReferencesThatHaveANewNumber) {
  EXPECT_EQ(copied("<</A 8 0 R/B 1>>", {{8, 80}}), whole("<</A 80 0 R/B 1>>"));
  EXPECT_EQ(copied("<</A   8\n0 R /B 1>>", {{8, 80}}), whole("<</A 80 0 R /B 1>>"));
  EXPECT_EQ(copied("8 0 R", {{8, 80}}), whole(" 80 0 R"));
}

TEST(CopyObject, DropsAnEntryWhoseReferenceHasNone) {
  EXPECT_EQ(copied("<</A 1/Parent 3 0 R/B 2>>"), whole("<</A 1/B 2>>", true));
  EXPECT_EQ(copied("<</Parent 3 0 R /A 8 0 R>>", {{8, 80}}), whole("<< /A 80 0 R>>", true));
}

TEST(CopyObject, DropsAnElementWhoseReferenceHasNone) {
  EXPECT_EQ(copied("[ 1 0 R 8 0 R ]", {{8, 80}}), whole("[ 80 0 R ]"));
  EXPECT_EQ(copied("<</A[8 0 R 9 0 R]/B 1>>"), whole("<</A[]/B 1>>"));
}

TEST(CopyObject, SecondReferenceOfAKeyIsAnElement) {
  EXPECT_EQ(copied("<</A 8 0 R 9 0 R>>", {{8, 80}}), whole("<</A 80 0 R>>"));
}

TEST(CopyObject, WritesStringsAnew) {
  EXPECT_EQ(copied("(a)"), whole("(a)"));
  EXPECT_EQ(copied("<</A(x\\(y\\)\\101)/B<4a4B4>/C 1>>"), whole("<</A(x\\(y\\)A)/B<4a4b40>/C 1>>"));
  EXPECT_EQ(copied("[(8 0 R)<41>8 0 R]", {{8, 80}}), whole("[(8 0 R)<41> 80 0 R]"));
}

TEST(CopyObject, CopiesAStreamWithItsLength) {
  EXPECT_EQ(copied("<</Length 5/A 1>>stream\nhello\nendstream"),
            whole("<</Length 5 /A 1>>stream\r\nhello\nendstream"));
  EXPECT_EQ(copied("<</A 8 0 R /Length 5 >>\nstream\r\nhello\r\nendstream ", {{8, 80}}),
            whole("<</A 80 0 R /Length 5  >>\nstream\r\nhello\r\nendstream "));
}

TEST(CopyObject, CorrectsAWrongLength) {
  EXPECT_EQ(copied("<</Length 123 /A 1>>stream\nhello\nendstream"),
            whole("<</Length 5  /A 1>>stream\r\nhello\nendstream"));
  EXPECT_EQ(copied("<</Length 1/A 1>>stream\nhello world\nendstream"),
            whole("<</Length 12 /A 1>>stream\r\nhello world\nendstream"));
}

TEST(CopyObject, WritesALengthBehindAReferenceInItsPlace) {
  EXPECT_EQ(copied("<</Length 9 0 R/A 1>>stream\nhello world!\nendstream"),
            whole("<</Length 12 /A 1>>stream\r\nhello world!\nendstream"));
}

TEST(CopyObject, LengthOfNoStreamKeepsItsWidth) {
  EXPECT_EQ(copied("<</Length 12/A 1>>"), whole("<</Length 12/A 1>>"));
  EXPECT_EQ(copied("<</Length 9 0 R/A 1>>"), whole("<</Length      /A 1>>"));
}

TEST(CopyObject, FailsWhenTheLengthCannotBeRead) {
  const Copy copy = copied("<</A 1/Length 99 0 R>>stream\nhello\nendstream");
  EXPECT_FALSE(copy.result);
}

TEST(CopyObject, TakesBinaryDataAsItIs) {
  const std::string data("\0\r\n1 0 R(endobj)\xff\\", 19);
  EXPECT_EQ(copied("<</Length 19>>stream\n" + data + "\nendstream"),
            whole("<</Length 19 >>stream\r\n" + data + "\nendstream"));
}

TEST(CopyObject, RawKeepsReferences) {
  EXPECT_EQ(copied("<</A 8 0 R/B[9 0 R](x)>>", {{8, 80}}, true), whole("<</A 8 0 R/B[9 0 R](x)>>"));
}

TEST(CopyObject, RawKeepsALengthBehindAReference) {
  EXPECT_EQ(copied("<</Length 9 0 R>>stream\nhello world!\nendstream", {}, true),
            whole("<</Length 9 0 R>>stream\r\nhello world!\nendstream"));
}

TEST(CopyObject, RawCorrectsADirectLength) {
  EXPECT_EQ(copied("<</Length 3>>stream\nhello\nendstream", {}, true),
            whole("<</Length 6 >>stream\r\nhello\nendstream"));
}

TEST(CopyObject, TriesNoReferenceBehindRichText) {
  EXPECT_EQ(copied("<</RC 8 0 R/DS 9 0 R/A 8 0 R>>", {{8, 80}, {9, 90}}),
            whole("<</RC 8 0 R/DS 9 0 R/A 80 0 R>>"));
}

TEST(CopyObject, KeepsTheCurrentObjectBehindRichText) {
  const Source source = document().object(7, "<</RC(a)/DS(b)>>").open();
  CDestFile dest;
  dest.currentObject = SObj(70, 0);
  EXPECT_TRUE(CObj(SObj(7, 0)).LocalObj(dest, *source, nullptr));
  EXPECT_EQ(dest, "<</RC(a)/DS(b)>>\nendobj\n");
  EXPECT_EQ(dest.currentObject, SObj(70, 0));
}

TEST(CopyObject, WithoutEndobjStopsAtTheNextObject) {
  std::string file = document().object(7, "<</A 8 0 R/B 2>>").object(8, "[8 0 R]").build();
  file.replace(file.find("\nendobj", file.find("/B 2")), 7, "       ");
  EXPECT_EQ(copyAs<CObj>(file, 7, {{8, 80}}), (Copy{true, false, "<</A 80 0 R"}));
}

TEST(CopyObject, OfAnObjectStreamIsTheSame) {
  const std::string file = document().compressed(20, 7, "<</A 8 0 R/B(x)>>").compressed(20, 8, "[1]").build();
  EXPECT_EQ(copyAs<CObj>(file, 7, {{8, 80}}), (Copy{true, false, "<</A 80 0 R/B(x)>> \nendobj\n"}));
}

TEST(CopyObject, MissingOneFails) { EXPECT_FALSE(copyAs<CObj>(document().build(), 99).result); }

TEST(CopyObject, WrongOffsetFailsAndLeavesAGoodStream) {
  std::string file = document().object(7, "[1]").build();
  file.replace(file.find("7 0 obj"), 7, "7 0 job");
  const Source source = PdfBuilder::openBytes(file);
  CDestFile dest;
  EXPECT_FALSE(CObj(SObj(7, 0)).LocalObj(dest, *source, nullptr));
  EXPECT_EQ(dest, "");
  EXPECT_TRUE(source->good());
}

TEST(CopyObject, ReadsASourceThatAnEarlierReaderLeftFailed) {
  const Source source = document().object(7, "[1]").open();
  source->setstate(std::ios_base::eofbit | std::ios_base::failbit);
  CDestFile dest;
  EXPECT_TRUE(CObj(SObj(7, 0)).LocalObj(dest, *source, nullptr));
  EXPECT_EQ(dest, "[1]\nendobj\n");
}

TEST(CopyObject, StreamWithoutALineEndTakesNoOtherWithIt) {
  const std::string file =
      document().object(7, "<</Length 5>>stream hello\nendstream").object(8, "[8]").build();
  EXPECT_EQ(copyAs<CObj>(file, 7), whole("<</Length 5 >>stream\r\nhello\nendstream"));
  EXPECT_EQ(copyAs<CObj>(file, 8), whole("[8]"));
}

TEST(CopyObject, StreamWithoutItsEndTakesNoOtherWithIt) {
  std::string file = document().object(8, "[8]").object(7, "<</Length 5>>stream\nhello\nendstrea ").build();
  const Source source = PdfBuilder::openBytes(file);
  CDestFile dest;
  CObj(SObj(7, 0)).LocalObj(dest, *source, nullptr);
  dest.clear();
  EXPECT_TRUE(CObj(SObj(8, 0)).LocalObj(dest, *source, nullptr));
  EXPECT_EQ(dest, "[8]\nendobj\n");
}

TEST(CopyObject, EmptyTableDropsEveryEntryWithAReference) {
  EXPECT_EQ(copied("<</Type/Catalog/Pages 2 0 R/Lang(de)/Names 8 0 R>>"),
            whole("<</Type/Catalog/Lang(de)>>", true));
}

TEST(CopyObject, OfADamagedFileIsTheSameFromMemoryAndFromAStream) {
  const std::string object =
      "7 0 obj\n<</Length 9 0 R/A(x\\101)/B<4a4>/C[8 0 R]>>stream\nhello\nendstream\nendobj\n";
  const std::string good =
      document().object(7, object.substr(8, object.size() - 16)).object(8, "[8]").object(9, "5").build();
  const std::size_t start = good.find(object);
  ASSERT_NE(start, std::string::npos);
  for (std::size_t i = 0; i < object.size(); ++i)
    for (const char damage : {'\0', ' ', '<', '(', '9'}) {
      std::string file = good;
      file[start + i] = damage;
      copyAs<CObj>(file, 7, {{8, 80}});  // expects equal copies
    }
}

TEST(CopyObject, OfAFileCutAnywhereIsTheSameFromMemoryAndFromAStream) {
  const std::string body = "<</Length 3/A 8 0 R>>stream\nhello\nendstream ";
  const std::string good = document().object(7, body).build();
  const Source known = PdfBuilder::openBytes(good);
  for (std::size_t size = good.find(body); size < good.size(); ++size) {
    const std::string text = good.substr(0, size);
    std::istringstream in(text);
    CSourFile streamed(in);
    CSourFile mapped(text);
    streamed.fileInfo.entries = mapped.fileInfo.entries = known->fileInfo.entries;
    EXPECT_EQ(copyFrom<CObj>(streamed, 7, {}, false), copyFrom<CObj>(mapped, 7, {}, false)) << size;
  }
}
