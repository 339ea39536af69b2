#include <gmock/gmock.h>

#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/road.h"

namespace tessel_test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char* appearance = "/DA(/Helv 12 Tf 0 g)";
constexpr const char* fontResources = "/DR<</Font<</Helv 6 0 R>>>>";

std::string widget(const std::string& entries, int page = 3) {
  return "<</Type/Annot/Subtype/Widget/F 4/Rect[20 20 180 60]/P " + std::to_string(page) + " 0 R" + entries +
         ">>";
}

/// Pages 3 and 4 of 200 by 100 points with these annotations, and a form with these fields; the font is 6.
PdfBuilder form(const std::string& fields, const std::string& first, const std::string& second = {}) {
  const std::string page = "<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 100]";
  return pdf()
      .pageTree({3, 4})
      .object(1, "<</Type/Catalog/Pages 2 0 R/AcroForm<</Fields[" + fields + "]" + appearance +
                     fontResources + ">>>>")
      .object(3, page + "/Annots[" + first + "]>>")
      .object(4, page + "/Annots[" + second + "]>>")
      .object(6, "<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>");
}

std::string oneField(const std::string& name) {
  return form("8 0 R", "8 0 R").object(8, widget("/FT/Tx/T(" + name + ")/V(old)" + appearance)).build();
}

class Fields : public RoadTest {
 protected:
  void nup(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "nup");
    arguments.insert(arguments.end(), {"-o", "out.pdf"});
    const Outcome outcome = tessel(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(complaintsAbout("out.pdf"), "");
  }
  /// Has another program fill the text fields; how many it found.
  std::string fill() const {
    return shell("mutool run " + quoted(TESSEL_SOURCE_DIR "/Tests/Road/fill_fields.js") +
                 " out.pdf filled.pdf")
        .out;
  }
  /// Full names and values of the text fields, as qpdf reads them.
  std::string fieldsOf(const std::string& name) const {
    return shell(
               "qpdf --json=1 --json-key=acroform " + quoted(name) +
               " | grep -E '\"(fullname|value)\"' | sed -E 's/^ *\"(fullname|value)\": \"?//; s/\"?,?$//' | "
               "paste -sd' '")
        .out;
  }
  std::string textOf(const std::string& name, int page) const {
    const std::string number = std::to_string(page);
    return shell("pdftotext -layout -f " + number + " -l " + number + " " + name + " - | tr -s ' \\n\\f' ' '")
        .out;
  }
};

TEST_F(Fields, FilledByAnotherProgramKeepAndShowTheirValues) {
  file("a.pdf", oneField("name"));
  file("b.pdf", oneField("name"));
  nup({"a.pdf", "b.pdf", "--grid", "2x2"});
  EXPECT_EQ(fieldsOf("out.pdf"), "name old b.name old\n");
  EXPECT_EQ(fill(), "2\n");
  EXPECT_EQ(fieldsOf("filled.pdf"), "name value 1 b.name value 2\n");
  EXPECT_EQ(textOf("filled.pdf", 1), "value 1 value 2 ");
  for (const Renderer renderer : {Renderer::poppler, Renderer::mupdf})
    EXPECT_GT(difference(picture("out.pdf", 1, renderer), picture("filled.pdf", 1, renderer)).mean, 0.2);
}

TEST_F(Fields, OfOtherNamesStayAtTheTop) {
  file("a.pdf", oneField("one"));
  file("b.pdf", oneField("two"));
  nup({"a.pdf", "b.pdf", "--grid", "2x2"});
  EXPECT_EQ(fieldsOf("out.pdf"), "one old two old\n");
}

TEST_F(Fields, OfTheSameNameAreKeptApartByTheNameOfTheirFile) {
  file("a.pdf", oneField("name"));
  file("b.c.pdf", oneField("name"));
  file("b.c (1).pdf", oneField("name"));
  nup({"a.pdf", "b.c.pdf", "b.c (1).pdf", "b.c.pdf", "--grid", "4x2"});
  EXPECT_EQ(fieldsOf("out.pdf"), "name old b_c.name old b_c (1).name old b_c-2.name old\n");
}

TEST_F(Fields, NamesAreComparedAsCharacters) {
  file("a.pdf", oneField("na\\155e"));
  file("b.pdf", form("8 0 R", "8 0 R").object(8, widget("/FT/Tx/T<FEFF006E0061006D0065>")).build());
  nup({"a.pdf", "b.pdf", "--grid", "2x2"});
  EXPECT_THAT(fieldsOf("out.pdf"), testing::StartsWith("name old b.name"));
}

TEST_F(Fields, OfAPageThatComesTwiceAreKeptApart) {
  file("in.pdf", oneField("name"));
  nup({"in.pdf", "--grid", "2x1", "--pages", "1,1"});
  EXPECT_EQ(fieldsOf("out.pdf"), "name old in.name old\n");
}

/// A field with a widget on each of two pages, below a node without a type.
std::string sharedField(const std::string& fieldType = "/FT/Tx/V(both)") {
  return form("7 0 R", "9 0 R", "10 0 R")
      .object(7, "<</T(top)/Kids[8 0 R]>>")
      .object(8, "<</T(field)/Parent 7 0 R/Kids[9 0 R 10 0 R]" + fieldType + appearance + ">>")
      .object(9, widget("/Parent 8 0 R"))
      .object(10, widget("/Parent 8 0 R", 4))
      .build();
}

TEST_F(Fields, WithWidgetsOnSeveralPagesStayOneField) {
  file("in.pdf", sharedField());
  nup({"in.pdf", "--grid", "2x1"});
  EXPECT_EQ(fieldsOf("out.pdf"), "top.field both top.field both\n");
  EXPECT_EQ(shell("mutool show out.pdf pages/1/Annots/1/Rect | tr -d '\\n '").out, "[202018060]");
  EXPECT_EQ(shell("mutool show out.pdf pages/1/Annots/2/Rect | tr -d '\\n '").out, "[2202038060]");
}

TEST_F(Fields, KeepOnlyTheWidgetsThatArePlaced) {
  file("in.pdf", sharedField());
  nup({"in.pdf", "--grid", "1x1", "--pages", "2"});
  EXPECT_EQ(fieldsOf("out.pdf"), "top.field both\n");
  nup({"in.pdf", "--grid", "1x1", "--pages", "2,2"});
  EXPECT_EQ(fieldsOf("out.pdf"), "top.field both top.field both\n");
}

TEST_F(Fields, DefaultsOfASecondFormComeAlong) {
  file("a.pdf", oneField("one"));
  std::string other = form("8 0 R", "8 0 R").object(8, widget("/FT/Tx/T(two)")).build();
  other.replace(other.find("12 Tf 0 g"), 9, "09 Tf 1 g");
  file("b.pdf", other);
  nup({"a.pdf", "b.pdf", "--grid", "4x1"});
  EXPECT_EQ(shell("mutool show out.pdf trailer/Root/AcroForm/DA").out, "(/Helv 12 Tf 0 g)\n");
  EXPECT_EQ(shell("mutool show out.pdf pages/1/Annots/2/DA").out, "(/Helv 09 Tf 1 g)\n");
  EXPECT_EQ(shell("mutool show out.pdf pages/1/Annots/1/DA").out, "(/Helv 12 Tf 0 g)\n");
}

TEST_F(Fields, FormBehindReferencesIsTakenAsWell) {
  file("in.pdf",
       form("", "8 0 R")
           .object(1, "<</Type/Catalog/Pages 2 0 R/AcroForm 11 0 R>>")
           .object(11, "<</Fields 12 0 R/DR 13 0 R/DA 14 0 R/NeedAppearances true/CO[8 0 R 9 0 R]>>")
           .object(12, "[8 0 R 9 0 R]")
           .object(13, "<</Font<</Helv 6 0 R>>/Encoding 15 0 R>>")
           .object(14, "(/Helv 7 Tf)")
           .object(15, "<</Own<</Type/Encoding>>>>")
           .object(8, widget("/FT/Tx/T(name)/V(old)"))
           .object(9, widget("/FT/Tx/T(gone)", 4))
           .build());
  nup({"in.pdf", "--grid", "1x1"});
  EXPECT_EQ(fieldsOf("out.pdf"), "name old\n");
  EXPECT_EQ(shell("mutool show out.pdf trailer/Root/AcroForm/DR/Font/Helv/BaseFont").out, "/Helvetica\n");
  EXPECT_EQ(shell("mutool show out.pdf trailer/Root/AcroForm/DR/Encoding/Own/Type").out, "/Encoding\n");
  EXPECT_EQ(shell("mutool show out.pdf trailer/Root/AcroForm/NeedAppearances").out, "true\n");
  EXPECT_EQ(shell("mutool show out.pdf trailer/Root/AcroForm/CO/1/T").out, "(name)\n");
}

TEST_F(Fields, AreOnlyThoseOfTheTypesAskedFor) {
  file("in.pdf", form("8 0 R 9 0 R", "8 0 R 9 0 R")
                     .object(8, widget("/FT/Tx/T(text)/V(a)"))
                     .object(9, widget("/FT/Btn/T(box)/V/Off"))
                     .build());
  nup({"in.pdf", "--grid", "1x1", "--forms", "text"});
  EXPECT_EQ(fieldsOf("out.pdf"), "text a\n");
  nup({"in.pdf", "--grid", "1x1", "--forms", "checkbox,radio"});
  EXPECT_EQ(fieldsOf("out.pdf"), "box /Off\n");
  for (const std::vector<std::string>& none :
       {std::vector<std::string>{"--forms", "none"}, {"--annotations", "none"}, {"--annotations", "link"}}) {
    nup({"in.pdf", "--grid", "1x1", none[0], none[1]});
    EXPECT_EQ(fieldsOf("out.pdf"), "\n");
    EXPECT_THAT(shell("qpdf --qdf out.pdf -").out, Not(HasSubstr("/AcroForm")));
  }
}

TEST_F(Fields, OfAnEncryptedOutputCanBeRead) {
  file("a.pdf", oneField("name"));
  std::string other = form("8 0 R", "8 0 R").object(8, widget("/FT/Tx/T(name)/V(old)")).build();
  other.replace(other.find("12 Tf 0 g"), 9, "09 Tf 1 g");
  file("b.pdf", other);
  for (const char* cipher : {"rc4-128", "aes-256"}) {
    nup({"a.pdf", "b.pdf", "--grid", "2x2", "--encrypt", cipher, "--owner-password", "o"});
    EXPECT_EQ(fieldsOf("out.pdf"), "name old b.name old\n") << cipher;
    EXPECT_EQ(shell("mutool show out.pdf pages/1/Annots/2/DA").out, "(/Helv 09 Tf 1 g)\n") << cipher;
  }
}

TEST_F(Fields, OfADeepOrCyclicTreeCostNothing) {
  PdfBuilder builder = form("100 0 R", "8 0 R");
  builder.object(8, widget("/FT/Tx/T(leaf)/Parent 10099 0 R"));
  for (int i = 100; i < 10100; ++i)
    builder.object(i, "<</T(n)/Kids[" + std::to_string(i < 10099 ? i + 1 : 8) + " 0 R]" +
                          (i > 100 ? "/Parent " + std::to_string(i - 1) + " 0 R" : "") + ">>");
  file("in.pdf", builder.build());
  nup({"in.pdf", "--grid", "1x1"});
  file("in.pdf", form("7 0 R", "8 0 R")
                     .object(7, "<</T(a)/Parent 9 0 R/Kids[9 0 R 8 0 R]>>")
                     .object(9, "<</T(b)/Parent 7 0 R/Kids[7 0 R]>>")
                     .object(8, widget("/FT/Tx/T(leaf)/Parent 7 0 R"))
                     .build());
  EXPECT_EQ(tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1"}).status, 0);
}

// Layers
// ----------------------------------------------------------------------------------------------------------

/// A page of 200 by 100 points whose left half is red on layer 8 and whose right half is blue on layer 9.
std::string layered(const std::string& properties, const std::string& name = "One") {
  return pdf()
      .onePage("/MediaBox[0 0 200 100]/Contents 4 0 R/Resources<</Properties<</A 8 0 R/B 9 0 R>>>>",
               "/OCProperties " + properties)
      .stream(4, {}, "/OC/A BDC 1 0 0 rg 0 0 100 100 re f EMC /OC/B BDC 0 0 1 rg 100 0 100 100 re f EMC")
      .object(8, "<</Type/OCG/Name(" + name + ")>>")
      .object(9, "<</Type/OCG/Name(Two)>>")
      .object(10, "<</OCGs 11 0 R/D 12 0 R>>")
      .object(11, "[8 0 R 9 0 R]")
      .object(12,
              "<</BaseState/OFF/ON[9 0 R]/Order[8 0 R(Group)[9 0 R]]/Locked[9 0 R]/RBGroups[[8 0 R 9 0 R]]>>")
      .build();
}

constexpr const char* firstOff = "<</OCGs[8 0 R 9 0 R]/D<</OFF[8 0 R]/Order[(Label)[8 0 R]9 0 R]>>>>";

class LayersRoad : public Fields {
 protected:
  /// Whether left and right half of the first page are painted.
  std::vector<bool> painted(Renderer renderer, double y = 0.5) const {
    const Picture shown = picture("out.pdf", 1, renderer);
    const auto isPainted = [&](double x) { return shown.at(x, y) != std::vector<int>{255, 255, 255}; };
    return {isPainted(0.25), isPainted(0.75)};
  }
};

TEST_F(LayersRoad, ThatAreOffStayOff) {
  for (const std::string& properties : {std::string(firstOff), std::string("10 0 R")}) {
    file("in.pdf", layered(properties));
    nup({"in.pdf", "--grid", "1x1"});
    for (const Renderer renderer : {Renderer::poppler, Renderer::mupdf})
      EXPECT_THAT(painted(renderer), ElementsAre(false, true)) << properties;
  }
}

TEST_F(LayersRoad, AreAllShownWithoutTheirProperties) {
  file("in.pdf", layered(firstOff));
  nup({"in.pdf", "--grid", "1x1", "--no-layers"});
  for (const Renderer renderer : {Renderer::poppler, Renderer::mupdf})
    EXPECT_THAT(painted(renderer), ElementsAre(true, true));
}

TEST_F(LayersRoad, OfSeveralSourcesKeepNamesOrderAndState) {
  file("a.pdf", layered(firstOff));
  file("b.pdf", layered("10 0 R", "Other"));
  nup({"a.pdf", "b.pdf", "--grid", "1x2"});
  for (const Renderer renderer : {Renderer::poppler, Renderer::mupdf}) {
    EXPECT_THAT(painted(renderer, 0.25), ElementsAre(false, true));
    EXPECT_THAT(painted(renderer, 0.75), ElementsAre(false, true));
  }
  const auto shown = [&](const std::string& key) {
    return shell("mutool show out.pdf trailer/Root/OCProperties/" + key + " | tr -d '\\n'").out;
  };
  EXPECT_EQ(shown("OCGs/*/Name"), "(One)(Two)(Other)(Two)");
  EXPECT_EQ(shown("D/OFF/*/Name"), "(One)(Other)");
  EXPECT_EQ(shown("D/Order/1"), "(Label)");
  EXPECT_EQ(shown("D/Order/2/1/Name"), "(One)");
  EXPECT_EQ(shown("D/Order/4/Name"), "(Other)");
  EXPECT_EQ(shown("D/Order/5"), "(Group)");
  EXPECT_EQ(shown("D/Locked/*/Name"), "(Two)");
  EXPECT_EQ(shown("D/RBGroups/1/*/Name"), "(Other)(Two)");
}

}  // namespace
}  // namespace tessel_test
