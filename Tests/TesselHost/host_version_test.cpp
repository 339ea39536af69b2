#include "TesselHost/host_version.h"

#include <gtest/gtest.h>

namespace TesselHost {
namespace {

TEST(Version, IsReadFromHeaderAndCatalog) {
  EXPECT_EQ(PdfVersion::parse("%PDF-1.7"), (PdfVersion{1, 7}));
  EXPECT_EQ(PdfVersion::parse("/2.0"), (PdfVersion{2, 0}));
  EXPECT_EQ(PdfVersion::parse("%PDF-1.4 and more"), pdf14);
}

TEST(Version, IsTheOldestWhenNoneIsTold) {
  for (const char* text : {"", "%PDF-", "%PDF-1", "%PDF-1.", "%PDF-x.y", "99999999999.1"})
    EXPECT_EQ(PdfVersion::parse(text), (PdfVersion{1, 0})) << text;
}

TEST(Version, ExistsFrom10To17AndAs20) {
  for (const char* text : {"/1.0", "/1.4", "/1.7", "/2.0"})
    EXPECT_TRUE(PdfVersion::parse(text).exists()) << text;
  for (const char* text : {"/0.9", "/1.8", "/1.10", "/2.1", "/3.0", "/12.3"})
    EXPECT_FALSE(PdfVersion::parse(text).exists()) << text;
}

TEST(Version, GoesByMajorThenMinor) {
  EXPECT_LT(pdf14, pdf15);
  EXPECT_LT((PdfVersion{1, 7}), (PdfVersion{2, 0}));
  EXPECT_EQ((PdfVersion{2, 0}).text(), "2.0");
}

}  // namespace
}  // namespace TesselHost
