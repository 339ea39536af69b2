#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "TesselPage/Model/tessel_annot.h"
#include "TesselPage/Structure/tessel_objflags.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "Tests/Support/pdf_builder.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

constexpr PgCmTD identity{1, 0, 0, 1, 0, 0};
constexpr PgCmTD quarter{0, 1, -1, 0, 300, 0};  ///< turned left by 90 degrees, back into the first quadrant
constexpr PgCmTD twice{2, 0, 0, 2, 100, 200};
constexpr int keptFlags = 0x81000;

/// One object of an annotation's subtree, and how it is written.
struct Writing {
  std::string body;
  PgCmTD cm = identity;
  int rotation = 0;
  int flags = keptFlags;
  unsigned annots = 0xFFFFFFFF;
  PdfBuilder rest = pdf();
  bool compressed = false;
};

struct Written {
  bool result = false;
  std::string text;  ///< without "endobj"

  bool operator==(const Written&) const = default;
};

void PrintTo(const Written& w, std::ostream* out) { *out << (w.result ? "written: " : "failed: ") << w.text; }

/// Writes object 7. Objects 8 and 9 are 80 and 90 in the output, the page is 70, and the destinations
/// reserved for object 7 are 50 and, for the second dictionary, 51.
Written write(Writing what) {
  PdfBuilder builder = what.rest;
  builder.onePage("");
  if (what.compressed)
    builder.compressed(20, 7, what.body);
  else
    builder.object(7, what.body);
  const Source source = builder.open();
  source->switches.pageMatrix = what.cm;
  source->switches.currentRotation = what.rotation;
  source->switches.annotsEnable = what.annots;
  CDestFile dest;
  dest.insertNewObjTab({0, 0, SObj(8, 0)}, SObj(80, 0));
  dest.insertNewObjTab({0, 0, SObj(9, 0)}, SObj(90, 1));
  dest.insertDestination({0, 0, SObj(7, 0)}, SObj(50, 0));
  dest.insertDestination({1, 0, SObj(7, 0)}, SObj(51, 0));
  CAnnot annot;
  annot.setIdentity(SObj(7, 0, what.flags));
  annot.setCurPageObj(70, 2);
  Written written;
  written.result = annot.LocalObj(dest, *source, nullptr);
  written.text = dest.substr(0, dest.rfind("\nendobj"));
  return written;
}

Written whole(const std::string& text) { return {true, text}; }

Written plain(const std::string& body) { return write({.body = body}); }

// What is written at all
// ----------------------------------------------------------------------------------------------------------

TEST(WriteAnnot, NothingWithBothFiltersOff) {
  EXPECT_EQ(write({.body = "<</Subtype/Link>>", .annots = 0}), whole(""));
}

TEST(WriteAnnot, NothingOfADroppedObject) {
  EXPECT_EQ(write({.body = "<</Subtype/Link>>", .flags = 0x1000}), whole(""));
}

TEST(WriteAnnot, OtherBytesAreCopiedAsTheyStand) {
  EXPECT_EQ(plain("<< /Subtype /Text %x\n /C [1 0 0]/F 4/Rotate 90/Contents (a(b)c)>>"),
            whole("<< /Subtype /Text %x\n /C [1 0 0]/F 4/Rotate 90/Contents (a\\(b\\)c)>>"));
}

TEST(WriteAnnot, ObjectInAnObjectStreamIsPlacedAlike) {
  EXPECT_EQ(write({.body = "<</Rect[1 2 3 4]/P 3 0 R>>", .cm = twice, .compressed = true}),
            whole("<</Rect[102 204 106 208]/P 70 2 R>> "));
}

TEST(WriteAnnot, StreamHasItsTrueLength) {
  const auto written =
      write({.body = "<</Subtype/Form/Length 99/Matrix[1 0 0 1 0 0]>>stream\nq Q\nendstream", .cm = twice});
  EXPECT_EQ(written, whole("<</Subtype/Form/Length 3 /Matrix[2 0 0 2 0 0]>>stream\r\nq Q\nendstream"));
}

TEST(WriteAnnot, BrokenLengthFailsTheObject) {
  EXPECT_FALSE(write({.body = "<</Length 30 0 R/Rect[1 2 3 4]>>"}).result);
}

// References
// ----------------------------------------------------------------------------------------------------------

struct TextCase {
  const char* body;
  const char* text;
};

void PrintTo(const TextCase& c, std::ostream* out) { *out << c.body; }

class AnnotReference : public testing::TestWithParam<TextCase> {};

TEST_P(AnnotReference, IsWritten) { EXPECT_EQ(plain(GetParam().body), whole(GetParam().text)); }

INSTANTIATE_TEST_SUITE_P(Kept, AnnotReference,
                         testing::Values(TextCase{"<</BS 8 0 R/X[9 0 R 8 0 R]>>",
                                                  "<</BS 80 0 R/X[ 90 1 R 80 0 R]>>"},
                                         TextCase{"<</Popup 30 0 R/X[30 0 R]>>", "<</Popup null/X[ null]>>"},
                                         TextCase{"<</P 3 0 R>>", "<</P 70 2 R>>"},
                                         TextCase{"<</Type/Annot/P 30 0 R>>", "<</Type/Annot/P 70 2 R>>"},
                                         TextCase{"<</X<</P 8 0 R>>>>", "<</X<</P 80 0 R>>>>"},
                                         TextCase{"<</Type/Border/P 8 0 R>>", "<</Type/Border/P 80 0 R>>"},
                                         TextCase{"<</Annots 8 0 R/X 1>>", "<</X 1>>"},
                                         TextCase{"<</Annots[8 0 R 9 0 R]/X 1>>", "<</X 1>>"}));

TEST(WriteAnnot, ReferenceToADroppedAnnotationLeavesTheArrayWithoutATrace) {
  EXPECT_EQ(write({.body = "[8 0 R 30 0 R 9 0 R]", .flags = 0x2}), whole("[ 80 0 R 90 1 R]"));
}

TEST(WriteAnnot, UnknownKidLeavesItsParentWithoutATrace) {
  EXPECT_EQ(write({.body = "<</T(x)/Kids[30 0 R 8 0 R]>>", .flags = 0x1A1000}),
            whole("<</T(x)/Kids[ 80 0 R]>>"));
}

// Geometry
// ----------------------------------------------------------------------------------------------------------

struct PlacedCase {
  const char* body;
  PgCmTD cm;
  const char* text;
};

void PrintTo(const PlacedCase& c, std::ostream* out) { *out << c.body; }

class AnnotGeometry : public testing::TestWithParam<PlacedCase> {};

TEST_P(AnnotGeometry, IsPlaced) {
  EXPECT_EQ(write({.body = GetParam().body, .cm = GetParam().cm}), whole(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Rect, AnnotGeometry,
    testing::Values(PlacedCase{"<</Rect [100 100 50 50]>>", identity, "<</Rect[50 50 100 100]>>"},
                    PlacedCase{"<</Rect[100 50 50 100]/X 1>>", identity, "<</Rect[50 50 100 100]/X 1>>"},
                    PlacedCase{"<</Rect[1 2 3.5 4 5]>>", twice, "<</Rect[102 204 107 208]>>"},
                    PlacedCase{"<</Rect[10 20 110 70]>>", quarter, "<</Rect[230 10 280 110]>>"},
                    PlacedCase{"<</Rect[0 299.99997 5 7]>>", quarter, "<</Rect[0 0 293 5]>>"}));

INSTANTIATE_TEST_SUITE_P(
    Line, AnnotGeometry,
    testing::Values(PlacedCase{"<</L [100 100 50 50]>>", identity, "<</L[100 100 50 50]>>"},
                    PlacedCase{"<</L[10 20 110 70]>>", quarter, "<</L[280 10 230 110]>>"},
                    PlacedCase{"<</3DA<</L[1 2 3 4]/X<<>>>>/L[1 2 3 4]>>", twice,
                               "<</3DA<</L[1 2 3 4]/X<<>>>>/L[102 204 106 208]>>"}));

INSTANTIATE_TEST_SUITE_P(Margins, AnnotGeometry,
                         testing::Values(PlacedCase{"<</RD[1 2 3 4]>>", twice, "<</RD[2 4 6 8]>>"},
                                         PlacedCase{"<</RD[1 2 3 4]>>", quarter, "<</RD[0 0 0 0]>>"}));

INSTANTIATE_TEST_SUITE_P(Matrix, AnnotGeometry,
                         testing::Values(PlacedCase{"<</Matrix[1 0 0 1 5 6]>>", twice,
                                                    "<</Matrix[2 0 0 2 5 6]>>"},
                                         PlacedCase{"<</Matrix[1 2 3 4 5 6]>>",
                                                    {10, 20, 30, 40, 7, 8},
                                                    "<</Matrix[70 100 150 220 5 6]>>"}));

INSTANTIATE_TEST_SUITE_P(
    Points, AnnotGeometry,
    testing::Values(PlacedCase{"<</QuadPoints[1 2 3 4 5 6 7 8]>>", twice,
                               "<</QuadPoints[102 204 106 208 110 212 114 216 ]>>"},
                    PlacedCase{"<</Vertices [1 2]/X 1>>", quarter, "<</Vertices[298 1 ]/X 1>>"},
                    PlacedCase{"<</CL[1 2 3 4 5 6]>>", identity, "<</CL[1 2 3 4 5 6 ]>>"},
                    PlacedCase{"<</Vertices[]>>", twice, "<</Vertices[]>>"},
                    PlacedCase{"<</InkList [[1 2 3 4] [5 6]]/X 1>>", twice,
                               "<</InkList[[102 204 106 208 ][110 212 ]]/X 1>>"},
                    PlacedCase{"<</InkList[]>>", twice, "<</InkList[]>>"}));

INSTANTIATE_TEST_SUITE_P(
    FontSize, AnnotGeometry,
    testing::Values(PlacedCase{"<</DA(/F1 12 Tf 0 g)>>", twice, "<</DA(/F1 24 Tf 0 g)>>"},
                    PlacedCase{"<</DA(/F1 12 Tf)>>", identity, "<</DA(/F1 12 Tf)>>"},
                    PlacedCase{"<</Contents(/F1 12 Tf)>>", twice, "<</Contents(/F1 12 Tf)>>"},
                    PlacedCase{"[/F1 12 Tf 0 g]", twice, "[/F1 24 Tf 0 g]"},
                    PlacedCase{"[/F1 x Tf]", twice, "[/F1 x Tf]"}));

TEST(WriteAnnot, NumberArraysMayBeObjects) {
  const auto rest = pdf().object(10, "[1 2 3 11 0 R]").object(11, "4").object(12, "[[1 2]10 0 R]");
  EXPECT_EQ(
      write({.body = "<</Rect 10 0 R/CL 10 0 R/InkList 12 0 R/X 8 0 R>>", .cm = twice, .rest = rest}),
      whole(
          "<</Rect[102 204 106 208]/CL[102 204 106 208 ]/InkList[[102 204 ][102 204 106 208 ]]/X 80 0 R>>"));
}

class BrokenGeometry : public testing::TestWithParam<const char*> {};

TEST_P(BrokenGeometry, FailsTheObject) { EXPECT_FALSE(plain(GetParam()).result); }

INSTANTIATE_TEST_SUITE_P(Arrays, BrokenGeometry,
                         testing::Values("<</Rect[1 2 3]>>", "<</Rect 30 0 R>>", "<</Rect(x)>>",
                                         "<</Rect[1 2 x 4]>>", "<</L[1 2 3]>>", "<</RD[1 2 3]>>", "<</RD/X>>",
                                         "<</Matrix[1 2 3 4 5]>>", "<</Matrix null>>",
                                         "<</QuadPoints[1 2 3 4 5 6 7]>>", "<</QuadPoints 1>>",
                                         "<</Vertices[1]>>", "<</Vertices>>", "<</CL[1 2 3]>>",
                                         "<</InkList[[1 2 3]]>>", "<</InkList[1 2]>>", "<</InkList 30 0 R>>",
                                         "<</InkList[[1 2]"));

TEST(WriteAnnot, SharedNumberArraysAreBounded) {
  std::string numbers = "[";
  for (int i = 0; i < 40000; ++i) numbers += "1 2 ";
  std::string body = "<<";
  for (int i = 0; i < 1000; ++i) body += "/Vertices 10 0 R";
  EXPECT_FALSE(write({.body = body + ">>", .rest = pdf().object(10, numbers + "]")}).result);
}

// Rotation
// ----------------------------------------------------------------------------------------------------------

struct RotationCase {
  int rotation;
  const char* body;
  const char* text;
};

void PrintTo(const RotationCase& c, std::ostream* out) { *out << c.rotation << ' ' << c.body; }

class AnnotRotation : public testing::TestWithParam<RotationCase> {};

TEST_P(AnnotRotation, IsUndone) {
  EXPECT_EQ(write({.body = GetParam().body, .rotation = GetParam().rotation}), whole(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    NoRotate, AnnotRotation,
    testing::Values(RotationCase{90, "<</F 16/Rect[10 20 40 100]>>", "<</F 16/Rect[10 100 90 130]>>"},
                    RotationCase{90, "<</Rect[40 100 10 20]/F 20>>", "<</Rect[10 100 90 130]/F 20>>"},
                    RotationCase{180, "<</F 16/Rect[10 20 40 100]>>", "<</F 16/Rect[-20 100 10 180]>>"},
                    RotationCase{270, "<</F 16/Rect[10 20 40 100]>>", "<</F 16/Rect[-70 70 10 100]>>"},
                    RotationCase{-90, "<</F 16/Rect[10 20 40 100]>>", "<</F 16/Rect[10 20 40 100]>>"},
                    RotationCase{0, "<</F 16/Rect[10 20 40 100]>>", "<</F 16/Rect[10 20 40 100]>>"},
                    RotationCase{90, "<</F 4/Rect[10 20 40 100]>>", "<</F 4/Rect[10 20 40 100]>>"},
                    RotationCase{90, "<</F -16/Rect[10 20 40 100]>>", "<</F -16/Rect[10 20 40 100]>>"}));

INSTANTIATE_TEST_SUITE_P(
    Captions, AnnotRotation,
    testing::Values(RotationCase{90, "<</MK<</R 90/CA(x)>>/X 1>>", "<</MK<</R 0/CA(x)>>/X 1>>"},
                    RotationCase{90, "<</MK<</CA(x) >>/X 1>>", "<</MK<</CA(x) /R 270>>/X 1>>"},
                    RotationCase{90, "<</MK<<>>>>", "<</MK<</R 270>>>>"},
                    RotationCase{180, "<</MK<</R 270>>>>", "<</MK<</R 90>>>>"},
                    RotationCase{270, "<</MK<</R 0>>>>", "<</MK<</R 90>>>>"},
                    RotationCase{-90, "<</MK<</R 0>>>>", "<</MK<</R 90>>>>"},
                    RotationCase{0, "<</MK<</R 90>>>>", "<</MK<</R 90>>>>"},
                    RotationCase{360, "<</MK<<>>>>", "<</MK<<>>>>"},
                    RotationCase{90, "<</R 90/MK<</IF<</R 5>>>>/R 1>>",
                                 "<</R 90/MK<</IF<</R 5>>/R 270>>/R 1>>"},
                    RotationCase{90, "<</MK 8 0 R/AP<<>>>>", "<</MK 80 0 R/AP<<>>>>"}));

TEST(WriteAnnot, CaptionObjectOfItsOwnIsTurned) {
  EXPECT_EQ(write({.body = "<</BG[1]>>", .rotation = 90, .flags = 0x91000}), whole("<</BG[1]/R 270>>"));
  EXPECT_EQ(write({.body = "<</BG[1]>>", .rotation = 0, .flags = 0x91000}), whole("<</BG[1]>>"));
}

// Destinations
// ----------------------------------------------------------------------------------------------------------

class AnnotDest : public testing::TestWithParam<TextCase> {};

TEST_P(AnnotDest, BecomesTheReservedObject) { EXPECT_EQ(plain(GetParam().body), whole(GetParam().text)); }

INSTANTIATE_TEST_SUITE_P(
    Values, AnnotDest,
    testing::Values(TextCase{"<</Dest[3 0 R/Fit]/X 1>>", "<</Dest 50 0 R/X 1>>"},
                    TextCase{"<</Dest (a(b\\)c))/X 1>>", "<</Dest 50 0 R/X 1>>"},
                    TextCase{"<</Dest <6162>/X 1>>", "<</Dest 50 0 R/X 1>>"},
                    TextCase{"<</Dest /Name/X 1>>", "<</Dest 50 0 R/X 1>>"},
                    TextCase{"<</Dest 8 0 R/X 1>>", "<</Dest 50 0 R/X 1>>"},
                    TextCase{"<</Dest<</D[3 0 R/Fit]>>/X 1>>", "<</Dest 50 0 R/X 1>>"},
                    TextCase{"<</A<</S/GoTo/D[3 0 R/Fit]>>/X 8 0 R>>", "<</A<</S/GoTo/D 50 0 R>>/X 80 0 R>>"},
                    TextCase{"<</A<</D(n)/S/GoTo/Next<</S/GoTo/D 8 0 R>>>>>>",
                             "<</A<</D 50 0 R/S/GoTo/Next<</S/GoTo/D 50 0 R>>>>>>"},
                    TextCase{"<</AP<</D 8 0 R/N 9 0 R>>>>", "<</AP<</D 80 0 R/N 90 1 R>>>>"},
                    TextCase{"<</A<</S/URI/URI(http://x)>>/D 8 0 R>>",
                             "<</A<</S/URI/URI(http://x)>>/D 80 0 R>>"},
                    TextCase{"<</A<</S/GoToR/F(x)/D[0/Fit]>>>>", "<</A<</S/GoToR/F(x)/D[0/Fit]>>>>"},
                    TextCase{"<</A<</S/GoToR/D 8 0 R>>>>", "<</A<</S/GoToR/D 80 0 R>>>>"},
                    TextCase{"<</A<</S/GoTo/SD[8 0 R/Fit]/D[3 0 R/Fit]>>>>", "<</A<</S/GoTo/D 50 0 R>>>>"},
                    TextCase{"<</A<</S/GoTo/D[3 0 R/Fit]/SD 8 0 R>>>>", "<</A<</S/GoTo/D 50 0 R>>>>"},
                    TextCase{"<</SD[8 0 R/Fit]>>", "<</SD[ 80 0 R/Fit]>>"},
                    TextCase{"<</A<</S/GoToDp/Dp 8 0 R>>/X 8 0 R>>", "<</A<</S/GoTo/D 50 0 R>>/X 80 0 R>>"},
                    TextCase{"<</A<</Dp 8 0 R /Type/Action/X<</S/Y>>/Z(>>)/S /GoToDp>>/X 1>>",
                             "<</A<</D 50 0 R/S/GoTo>>/X 1>>"}));

TEST(WriteAnnot, DestinationWithoutAReservedObjectIsNull) {
  EXPECT_EQ(plain("[<<>><<>><</Dest[3 0 R/Fit]/A<</D(x)>>>>]"),
            whole("[<<>><<>><</Dest null/A<</D null>>>>]"));
}

TEST(WriteAnnot, EachDictionaryOfAnArrayHasItsOwnDestination) {
  EXPECT_EQ(write({.body = "[8 0 R<</Dest(a)>>null<</X<<>>/Dest(b)>>]", .flags = 0x2}),
            whole("[ 80 0 R<</Dest 50 0 R>>null<</X<<>>/Dest 51 0 R>>]"));
}

TEST(WriteAnnot, ActionObjectIsAnActionAllThrough) {
  EXPECT_EQ(write({.body = "<</S/GoTo/D[3 0 R/Fit]/Next 8 0 R>>", .flags = 0x281000}),
            whole("<</S/GoTo/D 50 0 R/Next 80 0 R>>"));
  EXPECT_EQ(write({.body = "<</S/GoToDp/Dp 8 0 R>>", .flags = 0x281000}), whole("<</S/GoTo/D 50 0 R>>"));
  EXPECT_EQ(write({.body = "<</S/GoTo/D[3 0 R/Fit]>>"}), whole("<</S/GoTo/D[ null/Fit]>>"));
}

// Dictionaries of a type that is no name
// ----------------------------------------------------------------------------------------------------------

TEST(WriteAnnot, DictionaryOfABadTypeIsWrittenOnlyWhenItsSubtypeIsWanted) {
  EXPECT_EQ(write({.body = "[<</Type 1/Subtype/Text>> <</Type 1/Subtype/Link>>]", .flags = 0x2, .annots = 1}),
            whole("[ <</Type 1/Subtype/Link>>]"));
  EXPECT_EQ(write({.body = "<</Type 1/X<</Subtype/Text>>>>", .annots = 1}),
            whole("<</Type 1/X<</Subtype/Text>>>>"));
  EXPECT_EQ(write({.body = "<</Type/X/Subtype/Text>>", .annots = 1}), whole("<</Type/X/Subtype/Text>>"));
}

TEST(WriteAnnot, SkippedDictionaryKeepsItsPlaceInTheArray) {
  EXPECT_EQ(write({.body = "[<</Type 1/Subtype/Text>><</Subtype/Link/Dest(b)>>]", .flags = 0x2, .annots = 1}),
            whole("[<</Subtype/Link/Dest 51 0 R>>]"));
}

}  // namespace
