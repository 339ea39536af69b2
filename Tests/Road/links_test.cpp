#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <sstream>

#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/road.h"

namespace tessel_test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

/// A link as another program lists it.
struct Link {
  int page = 0;
  std::array<double, 4> rect{};
  std::string kind;  ///< "to" or "uri"
  std::string address;
  int target = 0;
  std::string view;
  std::vector<std::string> numbers;  ///< of the view
};

Link parsed(const std::string& line) {
  std::istringstream in(line);
  Link link;
  in >> link.page;
  for (double& side : link.rect) in >> side;
  in >> link.kind;
  if (link.kind == "uri") in >> link.address;
  if (link.kind != "to") return link;
  in >> link.target >> link.view;
  for (std::string number; in >> number;) link.numbers.push_back(number);
  return link;
}

class Links : public RoadTest {
 protected:
  std::vector<std::string> linesOf(const std::string& name) const {
    const Outcome outcome =
        shell("mutool run " + quoted(TESSEL_SOURCE_DIR "/Tests/Road/list_links.js") + " " + quoted(name));
    EXPECT_EQ(outcome.err, "");
    std::istringstream in(outcome.out);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
  }
  std::vector<Link> linksOf(const std::string& name) const {
    std::vector<Link> links;
    for (const std::string& line : linesOf(name)) links.push_back(parsed(line));
    return links;
  }
  /// Runs nup with these arguments on in.pdf and lists the links of what comes out.
  std::vector<std::string> placed(std::vector<std::string> arguments, const std::string& warning = "") const {
    arguments.insert(arguments.begin(), {"nup", "in.pdf", "-o", "out.pdf"});
    const Outcome outcome = tessel(arguments);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, warning);
    EXPECT_EQ(complaintsAbout("out.pdf"), "");
    return linesOf("out.pdf");
  }
};

/// Catalog 1 with `catalog`; pages 3, 4 and so on of 200 by 100 points with these entries.
PdfBuilder pagesWith(const std::vector<std::string>& entries, const std::string& catalog = {}) {
  std::vector<int> kids;
  for (std::size_t i = 0; i < entries.size(); ++i) kids.push_back(3 + static_cast<int>(i));
  PdfBuilder builder = pdf().pageTree(kids);
  if (!catalog.empty()) builder.object(1, "<</Type/Catalog/Pages 2 0 R" + catalog + ">>");
  for (std::size_t i = 0; i < entries.size(); ++i)
    builder.object(kids[i], "<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 100]" + entries[i] + ">>");
  return builder;
}

std::string linkTo(const std::string& destination) {
  return "<</Type/Annot/Subtype/Link/Rect[10 20 30 40]/Dest" + destination + ">>";
}

// The manual
// ----------------------------------------------------------------------------------------------------------

constexpr double manualWidth = 595.276;
constexpr double manualHeight = 841.89;

/// Where the lower left corner of a page of the manual lies when four are on a sheet.
std::pair<double, double> cornerOf(int page) {
  const int cell = (page - 1) % 4;
  return {cell % 2 * manualWidth, cell < 2 ? manualHeight : 0};
}
int sheetOf(int page) { return (page + 3) / 4; }

void expectMoved(double now, double before, double by) { EXPECT_NEAR(now, before + by, 0.5); }

void expectSameTarget(const Link& now, const Link& before) {
  const auto [x, y] = cornerOf(before.target);
  EXPECT_EQ(now.target, sheetOf(before.target));
  if (before.view == "XYZ") {
    EXPECT_EQ(now.view, "XYZ");
    expectMoved(std::stod(now.numbers.at(0)), std::stod(before.numbers.at(0)), x);
    expectMoved(std::stod(now.numbers.at(1)), std::stod(before.numbers.at(1)), y);
    EXPECT_EQ(now.numbers.at(2), before.numbers.at(2));
  } else if (before.view == "FitH") {
    EXPECT_EQ(now.view, "FitH");
    expectMoved(std::stod(now.numbers.at(0)), std::stod(before.numbers.at(0)), y);
  } else {
    EXPECT_EQ(before.view, "Fit");
    EXPECT_EQ(now.view, "FitR");
    expectMoved(std::stod(now.numbers.at(0)), 0, x);
    expectMoved(std::stod(now.numbers.at(1)), 0, y);
    expectMoved(std::stod(now.numbers.at(2)), manualWidth, x);
    expectMoved(std::stod(now.numbers.at(3)), manualHeight, y);
  }
}

TEST_F(Links, OfTheManualPointWhereTheirTargetsLie) {
  const std::string manual = TESSEL_SOURCE_DIR "/Samples/host-guide.pdf";
  ASSERT_EQ(tessel({"nup", manual, "-o", "out.pdf", "--grid", "2x2"}).status, 0);
  const std::vector<Link> before = linksOf(manual);
  const std::vector<Link> now = linksOf("out.pdf");
  ASSERT_EQ(now.size(), before.size());
  ASSERT_GE(now.size(), 40U);
  for (std::size_t i = 0; i < now.size(); ++i) {
    const auto [x, y] = cornerOf(before[i].page);
    EXPECT_EQ(now[i].page, sheetOf(before[i].page));
    for (const std::size_t side : {0U, 1U, 2U, 3U})
      expectMoved(now[i].rect[side], before[i].rect[side], side % 2 == 0 ? x : y);
    EXPECT_EQ(now[i].kind, before[i].kind);
    EXPECT_EQ(now[i].address, before[i].address);
    if (before[i].kind == "to") expectSameTarget(now[i], before[i]);
  }
}

// Places
// ----------------------------------------------------------------------------------------------------------

TEST_F(Links, AreScaledWithTheirPageAndTheirTarget) {
  file("in.pdf", pagesWith({"/Annots[9 0 R]", ""}).object(9, linkTo("[4 0 R/XYZ 100 50 2]")).build());
  // Two cells of 100 by 100 points: a page comes at half its size, 25 points above the lower edge.
  EXPECT_THAT(placed({"--grid", "2x1", "--paper", "200x100pt"}),
              ElementsAre("1 5 35 15 45 to 1 XYZ 150 50 2"));
}

struct Turn {
  const char* rotate;
  const char* line;
};
class TurnedLinks : public Links, public testing::WithParamInterface<Turn> {};

TEST_P(TurnedLinks, LieWhereThePageShowsThem) {
  const std::string entries = std::string(GetParam().rotate) + "/Annots[9 0 R]";
  file("in.pdf", pagesWith({entries}).object(9, linkTo("[3 0 R/XYZ 50 60 null]")).build());
  EXPECT_THAT(placed({"--grid", "1x1"}), ElementsAre(GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(Quarters, TurnedLinks,
                         testing::Values(Turn{"", "1 10 20 30 40 to 1 XYZ 50 60 null"},
                                         Turn{"/Rotate 90", "1 20 170 40 190 to 1 XYZ 60 150 null"},
                                         Turn{"/Rotate 180", "1 170 60 190 80 to 1 XYZ 150 40 null"},
                                         Turn{"/Rotate 270", "1 60 10 80 30 to 1 XYZ 40 50 null"}));

struct View {
  const char* source;
  const char* whole;   ///< the page is all of its sheet
  const char* beside;  ///< it lies to the right of another one, 200 points off
};
class LinkViews : public Links, public testing::WithParamInterface<View> {};

TEST_P(LinkViews, LeadToTheSamePlace) {
  file("in.pdf", pagesWith({"", "/Annots[9 0 R]"})
                     .object(9, linkTo(std::string("[4 0 R") + GetParam().source + "]"))
                     .build());
  EXPECT_THAT(placed({"--grid", "1x1"}), ElementsAre(std::string("2 10 20 30 40 to 2 ") + GetParam().whole));
  EXPECT_THAT(placed({"--grid", "2x1"}),
              ElementsAre(std::string("1 210 20 230 40 to 1 ") + GetParam().beside));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, LinkViews,
    testing::Values(View{"/XYZ 10 20 1.5", "XYZ 10 20 1.5", "XYZ 210 20 1.5"},
                    View{"/XYZ null null null", "XYZ null null null", "XYZ 200 100 null"},
                    View{"/XYZ null 20 0", "XYZ null 20 0", "XYZ 200 20 0"},
                    View{"/Fit", "Fit", "FitR 200 0 400 100"}, View{"/FitB", "FitB", "FitR 200 0 400 100"},
                    View{"/FitH 30", "FitH 30", "FitH 30"}, View{"/FitV 30", "FitV 30", "FitV 230"},
                    View{"/FitBH 30", "FitBH 30", "FitH 30"}, View{"/FitBV 30", "FitBV 30", "FitV 230"},
                    View{"/FitR 1 2 3 4", "FitR 1 2 3 4", "FitR 201 2 203 4"}));

TEST_F(Links, LinesTurnWithTheirPage) {
  file("in.pdf", pagesWith({"/Rotate 90/Annots[8 0 R 9 0 R]"})
                     .object(8, linkTo("[3 0 R/FitH 30]"))
                     .object(9, linkTo("[3 0 R/FitV 30]"))
                     .build());
  EXPECT_THAT(placed({"--grid", "1x1"}),
              ElementsAre("1 20 170 40 190 to 1 FitV 30", "1 20 170 40 190 to 1 FitH 170"));
}

// Kinds of links
// ----------------------------------------------------------------------------------------------------------

TEST_F(Links, ByNameByActionAndFromTheWebAreKept) {
  const std::string start = "<</Type/Annot/Subtype/Link/Rect[10 20 30 40]";
  file("in.pdf", pagesWith({"/Annots[10 0 R 11 0 R 12 0 R 13 0 R]", ""}, "/Names<</Dests 20 0 R>>")
                     .object(20, "<</Names[(a\\(b\\)c) 21 0 R<6E> 22 0 R]>>")
                     .object(21, "<</D[4 0 R/XYZ 1 2 3]>>")
                     .object(22, "[3 0 R/Fit]")
                     .object(10, start + "/Dest(a\\(b\\)c)>>")
                     .object(11, start + "/A<</S/GoTo/D(n)>>>>")
                     .object(12, start + "/A 14 0 R>>")
                     .object(13, start + "/A<</S/URI/URI(http://x.example/y)>>>>")
                     .object(14, "<</S/GoTo/D[4 0 R/FitV 7]>>")
                     .build());
  const auto lines = placed({"--grid", "1x1"});
  EXPECT_THAT(lines, testing::Contains("1 10 20 30 40 to 2 FitV 7"));
  EXPECT_THAT(lines, testing::Contains("1 10 20 30 40 uri http://x.example/y"));
  EXPECT_THAT(lines, SizeIs(4));
}

TEST_F(Links, ToPagesThatAreLeftOutBecomeNullAndAreCounted) {
  file("in.pdf", pagesWith({"/Annots[8 0 R 9 0 R]", "", ""})
                     .object(8, linkTo("[4 0 R/Fit]"))
                     .object(9, linkTo("[5 0 R/Fit]"))
                     .build());
  EXPECT_THAT(placed({"--grid", "1x1", "--pages", "1,3"},
                     "tessel: warning: 1 link leads to pages that aren't in the output\n"),
              ElementsAre("1 10 20 30 40 to nowhere", "1 10 20 30 40 to 2 Fit"));
  EXPECT_THAT(placed({"--grid", "1x1", "--pages", "1"},
                     "tessel: warning: 2 links lead to pages that aren't in the output\n"),
              SizeIs(2));
}

TEST_F(Links, ThatLedNowhereLoseNothing) {
  file("in.pdf", pagesWith({"/Annots[8 0 R 9 0 R]"})
                     .object(8, linkTo("(no such name)"))
                     .object(9, linkTo("[77 0 R/Fit]"))
                     .build());
  EXPECT_THAT(placed({"--grid", "1x1"}), ElementsAre("1 10 20 30 40 to nowhere", "1 10 20 30 40 to nowhere"));
}

TEST_F(Links, OfAPageThatComesTwiceLieOnBothPlaces) {
  file("in.pdf", pagesWith({"/Annots[9 0 R]", ""}).object(9, linkTo("[4 0 R/XYZ 1 2 0]")).build());
  EXPECT_THAT(placed({"--grid", "2x2", "--pages", "1,1,2,1"}),
              ElementsAre("1 10 120 30 140 to 1 XYZ 1 2 0", "1 210 120 230 140 to 1 XYZ 1 2 0",
                          "1 210 20 230 40 to 1 XYZ 1 2 0"));
}

TEST_F(Links, OfEqualPagesAreTheirOwn) {
  file("a.pdf", pagesWith({"/Annots[9 0 R]", ""}).object(9, linkTo("[4 0 R/Fit]")).build());
  file("b.pdf", pagesWith({"/Annots[9 0 R]", ""}).object(9, linkTo("[3 0 R/Fit]")).build());
  ASSERT_EQ(tessel({"nup", "a.pdf", "b.pdf", "-o", "out.pdf", "--grid", "1x1"}).status, 0);
  EXPECT_THAT(linesOf("out.pdf"), ElementsAre("1 10 20 30 40 to 2 Fit", "3 10 20 30 40 to 3 Fit"));
}

TEST_F(Links, SharedByTwoPagesLieOnBoth) {
  file("in.pdf",
       pagesWith({"/Annots[9 0 R]", "/Annots[9 0 R]"}).object(9, linkTo("[4 0 R/XYZ 1 2 0]")).build());
  EXPECT_THAT(placed({"--grid", "2x1"}),
              ElementsAre("1 10 20 30 40 to 1 XYZ 201 2 0", "1 210 20 230 40 to 1 XYZ 201 2 0"));
}

TEST_F(Links, WrittenInThePageItselfAreKept) {
  file("in.pdf",
       pagesWith({"", "/Annots[" + linkTo("[3 0 R/XYZ 1 2 0]") + linkTo("[4 0 R/Fit]") + "]"}).build());
  EXPECT_THAT(placed({"--grid", "2x1"}),
              ElementsAre("1 210 20 230 40 to 1 XYZ 1 2 0", "1 210 20 230 40 to 1 FitR 200 0 400 100"));
}

TEST_F(Links, LeadToTheRightPlaceInAnEncryptedOutput) {
  file("in.pdf", pagesWith({"/Annots[8 0 R 9 0 R]", ""})
                     .object(8, linkTo("[4 0 R/FitV 7]"))
                     .object(9, "<</Subtype/Link/Rect[10 20 30 40]/A<</S/URI/URI(http://x.example/y)>>>>")
                     .build());
  EXPECT_THAT(placed({"--grid", "1x1", "--encrypt", "aes-256", "--owner-password", "o"}),
              ElementsAre("1 10 20 30 40 to 2 FitV 7", "1 10 20 30 40 uri http://x.example/y"));
}

TEST_F(Links, ReachedFromAnotherPageAreWrittenForTheirOwn) {
  // The structure leads from the first page to the second one's link, whose hexadecimal text a plain copy
  // would leave without its key.
  const std::string entries =
      "<</Subtype/Link/Rect[10 20 30 40]/Contents<4142>/A<</S/GoTo/D[3 0 R/Fit]/SD[20 0 R/Fit]>>>>";
  file("in.pdf", pagesWith({"/Annots[8 0 R]", "/Annots[9 0 R]"}, "/StructTreeRoot<</K 20 0 R>>")
                     .object(8, entries)
                     .object(9, entries)
                     .object(20, "<</S/Link/Pg 3 0 R/K[<</Type/OBJR/Obj 8 0 R>><</Type/OBJR/Obj 9 0 R>>]>>")
                     .build());
  EXPECT_THAT(placed({"--grid", "2x1"}),
              ElementsAre("1 10 20 30 40 to 1 FitR 0 0 200 100", "1 210 20 230 40 to 1 FitR 0 0 200 100"));
}

// Choices
// ----------------------------------------------------------------------------------------------------------

/// One annotation of each of these subtypes, direct and as an object.
std::string withSubtypes() {
  const std::string rect = "/Rect[10 20 30 40]";
  return pagesWith({"/Annots[8 0 R 9 0 R<</Subtype/Ink" + rect + ">><</Subtype/Square" + rect + ">>]"})
      .object(8, "<</Subtype/Link" + rect + "/A<</S/URI/URI(u)>>>>")
      .object(9, "<</Subtype/Text" + rect + "/Contents(note)>>")
      .build();
}

struct Choice {
  const char* list;
  std::vector<std::string> subtypes;
};
class AnnotationChoices : public Links, public testing::WithParamInterface<Choice> {};

TEST_P(AnnotationChoices, KeepWhatIsAskedFor) {
  file("in.pdf", withSubtypes());
  placed({"--grid", "1x1", "--annotations", GetParam().list});
  const std::string found = shell("mutool show out.pdf pages/1/Annots/*/Subtype | grep -v null").out;
  std::string expected;
  for (const std::string& subtype : GetParam().subtypes) expected += "/" + subtype + "\n";
  EXPECT_EQ(found, expected);
}

INSTANTIATE_TEST_SUITE_P(Lists, AnnotationChoices,
                         testing::Values(Choice{"all", {"Link", "Text", "Ink", "Square"}}, Choice{"none", {}},
                                         Choice{"link", {"Link"}}, Choice{"Text,INK", {"Text", "Ink"}},
                                         Choice{"widget", {}}, Choice{"square", {"Square"}}));

TEST_F(Links, ChoicesThatNobodyKnowsAreRefused) {
  file("in.pdf", withSubtypes());
  for (const char* list : {"links", "", "link,", "all,link"}) {
    const Outcome outcome =
        tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1", "--annotations", list});
    EXPECT_EQ(outcome.status, 2) << list;
    EXPECT_THAT(outcome.err, HasSubstr("is not all, none or subtypes")) << list;
  }
  EXPECT_EQ(tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1", "--forms", "edit"}).status, 2);
  EXPECT_THAT(files(), ElementsAre("in.pdf"));
}

// Comments
// ----------------------------------------------------------------------------------------------------------

/// A page with a red square, and over it a comment with a green lower left corner.
std::string commented(const std::string& rotate, const std::string& appearanceEntries) {
  return pagesWith({rotate + "/Annots[8 0 R]/Contents 9 0 R"})
      .object(8, "<</Subtype/Stamp/F 4/Rect[20 50 60 90]/AP<</N 10 0 R>>>>")
      .stream(9, {}, "0.5 g 0 0 200 100 re f 1 0 0 rg 20 50 40 40 re f")
      .stream(10, "/Subtype/Form/BBox[0 0 10 10]" + appearanceEntries,
              "0 0 1 rg 0 0 10 10 re f 0 1 0 rg 0 0 5 5 re f")
      .build();
}

struct Comment {
  const char* rotate;
  const char* appearanceEntries;
};
class Comments : public Links, public testing::WithParamInterface<Comment> {};

TEST_P(Comments, LieOverTheSameGlyphs) {
  file("in.pdf", commented(GetParam().rotate, GetParam().appearanceEntries));
  placed({"--grid", "1x1"});
  for (const Renderer renderer : {Renderer::poppler, Renderer::mupdf}) {
    const Difference off = difference(picture("in.pdf", 1, renderer), picture("out.pdf", 1, renderer));
    EXPECT_TRUE(off.alike()) << off;
  }
}

INSTANTIATE_TEST_SUITE_P(Turned, Comments,
                         testing::Values(Comment{"", ""}, Comment{"/Rotate 90", ""},
                                         Comment{"/Rotate 180", ""}, Comment{"/Rotate 270", ""},
                                         Comment{"", "/Matrix[0 1 -1 0 10 0]"},
                                         Comment{"/Rotate 90", "/Matrix[1 0 0 1 0 0]"},
                                         Comment{"/Rotate 270", "/Matrix[0 1 -1 0 10 0]"}));

TEST_F(Links, AnAppearanceThatPagesShareLiesAsEachOfThem) {
  const std::string annots = "/Annots[8 0 R]";
  file("in.pdf",
       pagesWith({annots, annots + "/Rotate 90", annots, annots + "/Rotate 90"})
           .object(8, "<</Subtype/Stamp/F 4/Rect[20 50 60 90]/AP<</N 10 0 R>>>>")
           .stream(10, "/Subtype/Form/BBox[0 0 10 10]", "0 0 1 rg 0 0 10 10 re f 0 1 0 rg 0 0 5 5 re f")
           .build());
  placed({"--grid", "1x1"});
  for (const int page : {1, 2, 3, 4})
    EXPECT_TRUE(
        difference(picture("in.pdf", page, Renderer::mupdf), picture("out.pdf", page, Renderer::mupdf))
            .alike())
        << page;
}

}  // namespace
}  // namespace tessel_test
