#include <gmock/gmock.h>

#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/road.h"

namespace tessel_test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// A page that looks different from every side: red at the bottom, green at the left, blue in the upper
/// right.
const std::string lopsided =
    "1 0 0 rg 0 0 300 20 re f 0 1 0 rg 0 20 20 380 re f 0 0 1 rg 200 300 100 100 re f "
    "0 g BT /F1 24 Tf 60 200 Td (Tessel) Tj ET";
const std::string helvetica = "<</Font<</F1<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>>>>>";

/// A document of one page with this content.
PdfBuilder onePage(const std::string& entries, const std::string& content) {
  return pdf().onePage(entries + "/Contents 4 0 R/Resources " + helvetica).stream(4, {}, content);
}

PdfBuilder lopsidedPage(const std::string& entries) { return onePage(entries, lopsided); }

/// A document of `count` pages, each filled with one grey of its own, on 200 by 100 points.
std::string greys(int count) {
  PdfBuilder builder;
  std::vector<int> kids;
  for (int i = 0; i < count; ++i) kids.push_back(10 + 2 * i);
  builder.pageTree(kids);
  for (int i = 0; i < count; ++i) {
    const std::string content = std::to_string(10 + 2 * i + 1);
    builder.object(10 + 2 * i,
                   "<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 100]/Contents " + content + " 0 R>>");
    builder.stream(10 + 2 * i + 1, {}, std::to_string(0.1 * (i + 1)) + " g 0 0 200 100 re f");
  }
  return builder.build();
}

std::size_t countOf(const std::string& text, const std::string& word) {
  std::size_t count = 0;
  for (auto at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) ++count;
  return count;
}

bool isGrey(const std::vector<int>& pixel, int value) {
  return pixel.size() == 3 && std::abs(pixel[0] - value) <= 2 && std::abs(pixel[1] - value) <= 2 &&
         std::abs(pixel[2] - value) <= 2;
}

class Nup : public RoadTest {
 protected:
  /// Places the file one by one and compares the first page as both programs draw it.
  void expectSameLook(const std::string& source,
                      const std::vector<Renderer>& renderers = {Renderer::poppler, Renderer::mupdf}) {
    const Outcome outcome = tessel({"nup", source, "-o", "out.pdf", "--grid", "1x1", "--paper", "auto"});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(complaintsAbout("out.pdf"), "");
    for (const Renderer renderer : renderers) {
      const Difference off = difference(picture(source, 1, renderer), picture("out.pdf", 1, renderer));
      EXPECT_TRUE(off.alike()) << off;
    }
  }
};

class PageLook : public Nup, public testing::WithParamInterface<const char*> {};

TEST_P(PageLook, IsTheSameOneOnOne) {
  file("in.pdf", lopsidedPage(GetParam()).build());
  expectSameLook("in.pdf");
}

INSTANTIATE_TEST_SUITE_P(Geometry, PageLook,
                         testing::Values("/MediaBox[0 0 300 400]", "/MediaBox[0 0 300 400]/Rotate 90",
                                         "/MediaBox[0 0 300 400]/Rotate 180",
                                         "/MediaBox[0 0 300 400]/Rotate 270",
                                         "/MediaBox[0 0 300 400]/Rotate -90",
                                         "/MediaBox[-50 -30 350 450]/CropBox[10 10 290 350]",
                                         "/MediaBox[-50 -30 350 450]/CropBox[10 10 290 350]/Rotate 90",
                                         "/MediaBox[300 400 0 0]", "/MediaBox[0 0 300.25 400.75]"));

TEST_F(Nup, CutsACropBoxToTheMediaBox) {
  // One of the two programs draws the whole media box when a side of the crop box lies beyond it.
  file("in.pdf", lopsidedPage("/MediaBox[10 20 300 400]/CropBox[-100 -100 250 1000]/Rotate 270").build());
  expectSameLook("in.pdf", {Renderer::mupdf});
}

std::string blending(const std::string& group) {
  return pdf()
      .onePage("/MediaBox[0 0 300 300]/Contents 4 0 R/Group " + group +
               "/Resources<</ExtGState<</G<</BM/Multiply/ca 0.5>>>>>>")
      .stream(4, {}, "/G gs 1 0 0 rg 0 0 200 200 re f 0 1 1 rg 100 100 200 200 re f")
      .object(9, "<</S/Transparency/CS/DeviceRGB>>")
      .build();
}

TEST_F(Nup, KeepsTransparencyGroups) {
  const std::string group = "<</S/Transparency/CS/DeviceRGB/I true/K false>>";
  file("in.pdf", blending(group));
  expectSameLook("in.pdf");
  // A page that is all of its sheet leaves the group to the sheet; one that is placed has its own.
  EXPECT_EQ(countOf(contentOf("out.pdf"), "/Group " + group), 1U);
  tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1", "--paper", "A4"});
  EXPECT_EQ(countOf(contentOf("out.pdf"), "/Group " + group), 2U);
}

TEST_F(Nup, BlendsAlikeWithAGroupByReference) {
  file("in.pdf", blending("9 0 R"));
  expectSameLook("in.pdf");
}

TEST_F(Nup, KeepsAGroupOnASheetOfSeveralPages) {
  const std::string group = "<</S/Transparency/CS/DeviceCMYK>>";
  file("a.pdf", greys(1));
  file("b.pdf", blending(group));
  tessel({"nup", "a.pdf", "b.pdf", "-o", "out.pdf", "--grid", "2x1"});
  EXPECT_EQ(countOf(contentOf("out.pdf"), "/Group " + group), 2U);
  EXPECT_EQ(complaintsAbout("out.pdf"), "");
}

TEST_F(Nup, JoinsSeveralContentStreams) {
  PdfBuilder builder = pdf().onePage("/MediaBox[0 0 200 200]/Contents[4 0 R 5 0 R]");
  file("in.pdf", builder.stream(4, {}, "0 0 1 r").stream(5, {}, "g 0 0 100 200 re f").build());
  tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1"});
  // The streams are joined with a white space, so "r" and "g" are no operator together; nothing is blue.
  EXPECT_EQ(
      difference(picture("in.pdf", 1, Renderer::poppler), picture("out.pdf", 1, Renderer::poppler)).alike(),
      true);
}

TEST_F(Nup, TakesInheritedResources) {
  PdfBuilder builder = pdf().pageTree({3}, "/Resources 5 0 R/MediaBox[0 0 300 400]");
  builder.object(3, "<</Type/Page/Parent 2 0 R/Contents 4 0 R>>")
      .stream(4, {}, lopsided)
      .object(5, helvetica);
  file("in.pdf", builder.build());
  expectSameLook("in.pdf");
}

TEST_F(Nup, GivesThe1x1SheetExactlyThePageSize) {
  file("in.pdf", lopsidedPage("/MediaBox[0.12 0.34 612.12 792.34]/Rotate 90").build());
  tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1", "--paper", "auto"});
  EXPECT_THAT(contentOf("out.pdf"), HasSubstr("/MediaBox[0 0 792 612]"));
}

TEST_F(Nup, LaysPagesRowByRow) {
  file("in.pdf", greys(4));
  const Outcome outcome = tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "2x2", "--paper", "400x200pt"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  const Picture sheet = picture("out.pdf", 1, Renderer::mupdf);
  EXPECT_TRUE(isGrey(sheet.at(0.25, 0.25), 26));
  EXPECT_TRUE(isGrey(sheet.at(0.75, 0.25), 51));
  EXPECT_TRUE(isGrey(sheet.at(0.25, 0.75), 77));
  EXPECT_TRUE(isGrey(sheet.at(0.75, 0.75), 102));
}

TEST_F(Nup, LaysANamedPaperTheWayThatShowsPagesLarger) {
  file("wide.pdf", greys(2));
  file("tall.pdf", lopsidedPage("/MediaBox[0 0 300 400]").build());
  tessel({"nup", "wide.pdf", "-o", "a.pdf", "--grid", "1x2", "--paper", "A4"});
  EXPECT_THAT(contentOf("a.pdf"), HasSubstr("/MediaBox[0 0 595.27559 841.88976]"));
  tessel({"nup", "tall.pdf", "-o", "b.pdf", "--grid", "2x1", "--paper", "A4"});
  EXPECT_THAT(contentOf("b.pdf"), HasSubstr("/MediaBox[0 0 841.88976 595.27559]"));
  tessel({"nup", "tall.pdf", "-o", "c.pdf", "--grid", "2x1", "--paper", "A4-portrait"});
  EXPECT_THAT(contentOf("c.pdf"), HasSubstr("/MediaBox[0 0 595.27559 841.88976]"));
}

TEST_F(Nup, TakesTheLargestPageForCellsOnAutoPaper) {
  file("a.pdf", lopsidedPage("/MediaBox[0 0 300 100]").build());
  file("b.pdf", lopsidedPage("/MediaBox[0 0 200 400]").build());
  tessel({"nup", "a.pdf", "b.pdf", "-o", "out.pdf", "--grid", "2x1", "--margin", "10", "--gutter", "5pt"});
  EXPECT_THAT(contentOf("out.pdf"), HasSubstr("/MediaBox[0 0 625 420]"));
  EXPECT_THAT(contentOf("out.pdf"), HasSubstr("q 1 0 0 1 10 160 cm /P1 Do Q\nq 1 0 0 1 365 10 cm /P2 Do Q"));
}

TEST_F(Nup, DrawsFramesWhenAsked) {
  file("in.pdf", greys(1));
  tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1", "--margin", "10", "--frame"});
  EXPECT_THAT(contentOf("out.pdf"), HasSubstr("q 0.5 w 0.5 G 10 10 200 100 re S Q"));
}

TEST_F(Nup, TakesThePagesAskedForOfEachInput) {
  file("a.pdf", greys(5));
  file("b.pdf", greys(2));
  tessel({"nup", "a.pdf", "b.pdf", "-o", "out.pdf", "--grid", "1x1", "--pages", "2,4-"});
  EXPECT_EQ(shell("qpdf --show-npages out.pdf").out, "4\n");
  EXPECT_TRUE(isGrey(picture("out.pdf", 1, Renderer::mupdf).at(0.5, 0.5), 51));
  EXPECT_TRUE(isGrey(picture("out.pdf", 2, Renderer::mupdf).at(0.5, 0.5), 102));
  EXPECT_TRUE(isGrey(picture("out.pdf", 4, Renderer::mupdf).at(0.5, 0.5), 51));
}

TEST_F(Nup, WritesAPageThatIsWantedTwiceOnce) {
  file("in.pdf", greys(1));
  tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "2x1", "--pages", "1,1"});
  EXPECT_THAT(contentOf("out.pdf"), HasSubstr("/XObject<</P1 2 0 R/P2 2 0 R>>"));
  EXPECT_EQ(complaintsAbout("out.pdf"), "");
}

/// Two pages that show one image; the image's data holds the word "needle".
std::string sharedImage(int imageNumber) {
  const std::string image = std::to_string(imageNumber) + " 0 R";
  const std::string page =
      "<</Type/Page/Parent 2 0 R/MediaBox[0 0 100 100]/Contents 5 0 R/Resources<</XObject<</I " + image +
      ">>>>>>";
  return pdf()
      .pageTree({3, 4})
      .object(3, page)
      .object(4, page)
      .stream(5, {}, "100 0 0 100 0 0 cm /I Do")
      .stream(imageNumber,
              "/Type/XObject/Subtype/Image/Width 2/Height 1/BitsPerComponent 8/ColorSpace/DeviceRGB",
              "needle")
      .build();
}

TEST_F(Nup, WritesWhatPagesShareOnce) {
  file("in.pdf", sharedImage(6));
  tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "2x1"});
  EXPECT_EQ(countOf(contentOf("out.pdf"), "needle"), 1U);
  EXPECT_EQ(complaintsAbout("out.pdf"), "");
}

TEST_F(Nup, WritesEqualStreamsOfSeveralSourcesOnce) {
  file("a.pdf", sharedImage(6));
  file("b.pdf", sharedImage(8));
  tessel({"nup", "a.pdf", "b.pdf", "-o", "out.pdf", "--grid", "2x2"});
  EXPECT_EQ(countOf(contentOf("out.pdf"), "needle"), 1U);
  EXPECT_TRUE(difference(picture("a.pdf", 1, Renderer::mupdf), picture("b.pdf", 1, Renderer::mupdf)).alike());
  EXPECT_EQ(complaintsAbout("out.pdf"), "");
}

TEST_F(Nup, WritesEqualPagesOnce) {
  file("in.pdf", greys(2));
  tessel({"nup", "in.pdf", "in.pdf", "-o", "out.pdf", "--grid", "1x1"});
  EXPECT_EQ(shell("qpdf --show-npages out.pdf").out, "4\n");
  EXPECT_EQ(countOf(contentOf("out.pdf"), "/Subtype/Form"), 2U);
  EXPECT_EQ(countOf(contentOf("out.pdf"), "/P1 Do"), 1U);
  EXPECT_TRUE(isGrey(picture("out.pdf", 4, Renderer::mupdf).at(0.5, 0.5), 51));
  EXPECT_EQ(complaintsAbout("out.pdf"), "");
}

TEST_F(Nup, GivesEqualBytesForEqualInputsAndOptions) {
  file("in.pdf", greys(3));
  file("copy.pdf", greys(3));
  for (const std::string streams : {"--quiet", "--object-streams"}) {
    tessel({"nup", "in.pdf", "-o", "a.pdf", "--grid", "2x1", streams});
    tessel({"nup", "copy.pdf", "-o", "b.pdf", "--grid", "2x1", streams});
    EXPECT_FALSE(contentOf("a.pdf").empty());
    EXPECT_EQ(contentOf("a.pdf"), contentOf("b.pdf"));
  }
}

TEST_F(Nup, TellsOutputsApartByTheirIdentifier) {
  file("in.pdf", greys(3));
  tessel({"nup", "in.pdf", "-o", "a.pdf", "--grid", "1x1"});
  tessel({"nup", "in.pdf", "-o", "b.pdf", "--grid", "1x1", "--pages", "1-2"});
  const auto idOf = [this](const std::string& name) {
    return shell("qpdf --show-object=trailer " + name).out;
  };
  EXPECT_THAT(idOf("a.pdf"), HasSubstr("/ID"));
  EXPECT_NE(idOf("a.pdf"), idOf("b.pdf"));
}

TEST_F(Nup, WritesObjectStreamsWhenAsked) {
  file("in.pdf", greys(10));
  tessel({"nup", "in.pdf", "-o", "classic.pdf", "--grid", "1x1"});
  tessel({"nup", "in.pdf", "-o", "packed.pdf", "--grid", "1x1", "--object-streams"});
  EXPECT_EQ(complaintsAbout("classic.pdf"), "");
  EXPECT_EQ(complaintsAbout("packed.pdf"), "");
  EXPECT_THAT(contentOf("packed.pdf"), HasSubstr("/Type/ObjStm"));
  EXPECT_THAT(contentOf("packed.pdf"), Not(HasSubstr("\nxref\n")));
  EXPECT_LT(contentOf("packed.pdf").size(), contentOf("classic.pdf").size());
  for (const int page : {1, 10})
    EXPECT_TRUE(
        difference(picture("in.pdf", page, Renderer::poppler), picture("packed.pdf", page, Renderer::poppler))
            .alike());
}

TEST_F(Nup, HasAtLeastTheVersionOfItsSources) {
  file("old.pdf", lopsidedPage("/MediaBox[0 0 9 9]").header("%PDF-1.2").build());
  file("new.pdf", lopsidedPage("/MediaBox[0 0 9 9]").header("%PDF-2.0").build());
  file("catalog.pdf", pdf().header("%PDF-1.3").onePage("/MediaBox[0 0 9 9]", "/Version/1.6").build());
  const auto versionOf = [this](const std::vector<std::string>& inputs) {
    std::vector<std::string> arguments{"nup", "-o", "out.pdf", "--grid", "1x1"};
    arguments.insert(arguments.end(), inputs.begin(), inputs.end());
    tessel(arguments);
    return contentOf("out.pdf").substr(0, 8);
  };
  EXPECT_EQ(versionOf({"old.pdf"}), "%PDF-1.4");
  EXPECT_EQ(versionOf({"old.pdf", "new.pdf"}), "%PDF-2.0");
  EXPECT_EQ(versionOf({"catalog.pdf", "old.pdf"}), "%PDF-1.6");
  EXPECT_EQ(versionOf({"old.pdf", "--object-streams"}), "%PDF-1.5");
}

TEST_F(Nup, PlacesAPageWithoutContent) {
  file("in.pdf", pdf().onePage("/MediaBox[0 0 100 100]").build());
  EXPECT_EQ(tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1"}).status, 0);
  EXPECT_EQ(complaintsAbout("out.pdf"), "");
}

TEST_F(Nup, LeavesThePlaceOfAPageWithoutSizeEmptyAndSaysSo) {
  file("in.pdf", pdf().onePage("/MediaBox[5 5 5 5]/CropBox[5 5 5 5]").build());
  const Outcome outcome = tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "tessel: warning: in.pdf: page 1: no usable size, its place stays empty\n");
  EXPECT_THAT(contentOf("out.pdf"), HasSubstr("/MediaBox[0 0 612 792]"));
  EXPECT_EQ(complaintsAbout("out.pdf"), "");
}

TEST_F(Nup, SaysNothingOfTroubleWhenQuiet) {
  file("in.pdf", pdf().onePage("/MediaBox[5 5 5 5]/CropBox[5 5 5 5]").build());
  EXPECT_EQ(tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1", "--quiet"}).err, "");
}

TEST_F(Nup, WritesToStandardOutput) {
  file("in.pdf", greys(1));
  const Outcome outcome = tessel({"nup", "in.pdf", "-o", "-", "--grid", "1x1"});
  tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1"});
  EXPECT_EQ(outcome.out, contentOf("out.pdf"));
  EXPECT_THAT(outcome.out, HasSubstr("%%EOF\n"));
}

TEST_F(Nup, BuildsAPageTreeThatReadersFindTheirWayIn) {
  file("in.pdf", greys(200));
  ASSERT_EQ(tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1"}).status, 0);
  EXPECT_EQ(complaintsAbout("out.pdf"), "");
  EXPECT_EQ(shell("qpdf --show-npages out.pdf").out, "200\n");
  EXPECT_EQ(countOf(contentOf("out.pdf"), "/Type/Pages"), 5U);
}

TEST_F(Nup, RefusesAMarginThatLeavesNoRoom) {
  file("in.pdf", greys(1));
  const Outcome outcome =
      tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1", "--paper", "A4", "--margin", "20cm"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err, "tessel: margins and gutters leave no room for the pages\n");
  EXPECT_THAT(files(), ElementsAre("in.pdf"));
}

TEST_F(Nup, ImposesTheManual) {
  const std::string manual = TESSEL_SOURCE_DIR "/Samples/host-guide.pdf";
  const Outcome outcome = tessel({"nup", manual, "-o", "out.pdf", "--grid", "1x1", "--paper", "auto"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(complaintsAbout("out.pdf"), "");
  for (const int page : {1, 5, 12})
    for (const Renderer renderer : {Renderer::poppler, Renderer::mupdf}) {
      shell("cp " + quoted(manual) + " in.pdf");
      const Difference off =
          difference(picture("in.pdf", page, renderer), picture("out.pdf", page, renderer));
      EXPECT_TRUE(off.alike()) << "page " << page << ": " << off;
    }
}

}  // namespace
}  // namespace tessel_test
