#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

#include "KelpGraphicService/kelp_codecs.h"
#include "Tests/KelpGraphicService/codec_fixture.h"

namespace KelpGraphicService_NS {
namespace {

struct Picture {
  unsigned width;
  unsigned height;
  int components;
  J_COLOR_SPACE space;
  bool progressive = false;
};

constexpr Picture grey{32, 24, 1, JCS_GRAYSCALE};
constexpr Picture colour{32, 24, 3, JCS_RGB};
constexpr Picture print{16, 8, 4, JCS_CMYK};

/// A smooth ramp, which the transform changes by little.
std::string ramp(const Picture& picture) {
  std::string samples;
  for (unsigned y = 0; y < picture.height; ++y)
    for (unsigned x = 0; x < picture.width; ++x)
      for (int c = 0; c < picture.components; ++c)
        samples += static_cast<char>(40 + x * 2 + y + unsigned(c) * 30);
  return samples;
}

std::string jpegOf(const Picture& picture) {
  jpeg_compress_struct image{};
  jpeg_error_mgr errors;
  image.err = jpeg_std_error(&errors);
  jpeg_create_compress(&image);
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&image, &bytes, &size);
  image.image_width = picture.width;
  image.image_height = picture.height;
  image.input_components = picture.components;
  image.in_color_space = picture.space;
  jpeg_set_defaults(&image);
  jpeg_set_quality(&image, 100, TRUE);
  if (picture.progressive) jpeg_simple_progression(&image);
  jpeg_start_compress(&image, TRUE);
  std::string samples = ramp(picture);
  for (std::size_t at = 0; image.next_scanline < image.image_height;
       at += std::size_t{picture.width} * unsigned(picture.components)) {
    JSAMPROW row = reinterpret_cast<JSAMPROW>(samples.data() + at);
    jpeg_write_scanlines(&image, &row, 1);
  }
  jpeg_finish_compress(&image);
  jpeg_destroy_compress(&image);
  std::string result(reinterpret_cast<char*>(bytes), size);
  std::free(bytes);
  return result;
}

int largestDifference(const std::string& a, const std::string& b) {
  int largest = a.size() == b.size() ? 0 : 1000;
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i)
    largest =
        std::max(largest, std::abs(static_cast<unsigned char>(a[i]) - static_cast<unsigned char>(b[i])));
  return largest;
}

/// Height and width of the frame header become those of the largest image.
std::string withHugeFrame(std::string jpeg, char frameMarker) {
  const std::size_t frame = jpeg.find(std::string("\xFF") + frameMarker);
  return jpeg.replace(frame + 5, 4, "\xFF\xDC\xFF\xDC");
}

TEST(DCT, SamplesComeBackInTheImagesOwnColours) {
  for (const Picture& picture : {grey, colour, print}) {
    const Outcome got = inflateAs(ftDCT, jpegOf(picture));
    EXPECT_EQ(got.code, ftSuccess);
    EXPECT_LE(largestDifference(got.bytes, ramp(picture)), 6) << picture.components << " components";
  }
}

TEST(DCT, ProgressiveImages) {
  Picture picture = colour;
  picture.progressive = true;
  EXPECT_LE(largestDifference(inflateAs(ftDCT, jpegOf(picture)).bytes, ramp(picture)), 6);
}

TEST(DCT, ImageCutAtEveryLengthGivesWholeRows) {
  const std::string jpeg = jpegOf(grey);
  const std::string whole = inflateAs(ftDCT, jpeg).bytes;
  for (std::size_t n = 0; n < jpeg.size(); ++n) {
    const Outcome got = inflateAs(ftDCT, jpeg.substr(0, n));
    ASSERT_EQ(got.code, ftSuccess) << "cut at " << n;
    ASSERT_EQ(got.bytes.size() % grey.width, 0U) << "cut at " << n;
    ASSERT_LE(got.bytes.size(), whole.size()) << "cut at " << n;
  }
}

TEST(DCT, WhatIsNoImageIsDamage) {
  EXPECT_EQ(inflateAs(ftDCT, "GIF89a and so on"), failure(ftDamaged));
  EXPECT_EQ(inflateAs(ftDCT, std::string(100, '\0')), failure(ftDamaged));
  EXPECT_EQ(inflateAs(ftDCT, hex("FFD8 FFD9")), failure(ftDamaged));
}

TEST(DCT, NoDataGiveNoSamples) { EXPECT_EQ(inflateAs(ftDCT, ""), success("")); }

TEST(DCT, FlippedBytesNeverEscape) {
  const std::string jpeg = jpegOf(colour);
  for (std::size_t i = 0; i < jpeg.size(); ++i) {
    std::string bad = jpeg;
    bad[i] = static_cast<char>(~bad[i]);
    const int code = inflateAs(ftDCT, bad).code;
    ASSERT_TRUE(code == ftSuccess || code == ftDamaged || code == ftTooLarge) << "byte " << i << ": " << code;
  }
}

TEST(DCT, HugeImageIsTooLarge) {
  EXPECT_EQ(inflateAs(ftDCT, withHugeFrame(jpegOf(grey), '\xC0')), failure(ftTooLarge));
}

TEST(DCT, HugeProgressiveImageIsTooLarge) {
  Picture picture = grey;
  picture.progressive = true;
  EXPECT_EQ(inflateAs(ftDCT, withHugeFrame(jpegOf(picture), '\xC2')), failure(ftTooLarge));
}

TEST(DCT, NothingIsPrinted) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  inflateAs(ftDCT, jpegOf(grey).substr(0, 400));
  inflateAs(ftDCT, hex("FFD8") + noise(500));
  EXPECT_EQ(testing::internal::GetCapturedStderr() + testing::internal::GetCapturedStdout(), "");
}

}  // namespace
}  // namespace KelpGraphicService_NS
