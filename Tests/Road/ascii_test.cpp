#include <gmock/gmock.h>

#include <algorithm>

#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/road.h"

namespace tessel_test {
namespace {

using testing::HasSubstr;

bool isAscii(const std::string& bytes) {
  return std::none_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<signed char>(c) < 0; });
}

/// Rows of a picture under PNG's predictor "sub": each pixel is as much greyer than the one in front.
std::string predictedRows(int rows, int columns) {
  std::string data;
  for (int row = 0; row < rows; ++row) data += '\1' + std::string(static_cast<std::size_t>(columns), '\x04');
  return data;
}

/// Streams with and without filter and parameters, and text beyond seven bits.
std::string binaryPage() {
  const std::string image = "/Type/XObject/Subtype/Image/BitsPerComponent 8";
  const std::string packed = deflated(predictedRows(40, 40));
  return pdf()
      .onePage(
          "/MediaBox[0 0 200 200]/Contents 4 0 R/Resources<</XObject<</Im\xE4 5 0 R/Raw 6 0 R/Fm 7 0 R>>"
          "/Properties<</M<</Words(\xFE\xFFgr\xFC\xDF)>>>>>>")
      .stream(4, "/Filter/FlateDecode",
              deflated("q 80 0 0 80 10 110 cm /Im\xE4 Do Q q 80 0 0 80 110 110 cm /Raw Do Q /Fm Do % \xE4\n"))
      .stream(5,
              image +
                  "/Width 40/Height 40/ColorSpace/DeviceGray/Filter/FlateDecode"
                  "/DecodeParms<</Predictor 12/Columns 40>>",
              packed)
      .stream(6, image + "/Width 2/Height 1/ColorSpace/DeviceRGB", "\xF0\x20\x10\x20\xF0\x80")
      .stream(7, "/Type/XObject/Subtype/Form/BBox[0 0 100 100]/Name(\xE4)", "0 0 1 rg 10 10 80 80 re f")
      .build();
}

class Ascii : public RoadTest {};

TEST_F(Ascii, OutputStaysWithinSevenBitsAndLooksLikeItsSource) {
  file("in.pdf", binaryPage());
  const Outcome outcome = tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1", "--ascii"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out, "");
  EXPECT_TRUE(isAscii(contentOf("out.pdf")));
  EXPECT_EQ(complaintsAbout("out.pdf"), "");
  for (const Renderer renderer : {Renderer::poppler, Renderer::mupdf}) {
    const Difference off = difference(picture("in.pdf", 1, renderer), picture("out.pdf", 1, renderer));
    EXPECT_TRUE(off.alike()) << off;
  }
}

TEST_F(Ascii, OutputOfTheManualLooksLikeIt) {
  const std::string manual = TESSEL_SOURCE_DIR "/Samples/host-guide.pdf";
  ASSERT_EQ(tessel({"nup", manual, "-o", "out.pdf", "--grid", "1x1", "--ascii"}).status, 0);
  EXPECT_TRUE(isAscii(contentOf("out.pdf")));
  EXPECT_EQ(complaintsAbout("out.pdf"), "");
  for (const int page : {1, 5})
    EXPECT_TRUE(
        difference(picture(manual, page, Renderer::poppler), picture("out.pdf", page, Renderer::poppler))
            .alike());
}

TEST_F(Ascii, OutputToStandardOutputIsThePdfAlone) {
  file("in.pdf", binaryPage());
  const Outcome outcome = tessel({"nup", "in.pdf", "-o", "-", "--grid", "1x1", "--ascii"});
  tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1", "--ascii"});
  EXPECT_EQ(outcome.out, contentOf("out.pdf"));
  EXPECT_THAT(outcome.out, testing::StartsWith("%PDF-1.7\n"));
}

TEST_F(Ascii, GoesNeitherWithEncryptionNorWithObjectStreams) {
  file("in.pdf", binaryPage());
  for (const std::vector<std::string>& more :
       {std::vector<std::string>{"--object-streams"}, {"--encrypt", "aes-256", "--user-password", "x"}}) {
    std::vector<std::string> arguments{"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1", "--ascii"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Outcome outcome = tessel(arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "tessel: --ascii goes neither with --encrypt nor with --object-streams\n");
  }
}

}  // namespace
}  // namespace tessel_test
