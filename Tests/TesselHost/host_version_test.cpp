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

TEST(Version, GoesByMajorThenMinor) {
  EXPECT_LT(pdf14, pdf15);
  EXPECT_LT((PdfVersion{1, 7}), (PdfVersion{2, 0}));
  EXPECT_EQ((PdfVersion{2, 0}).text(), "2.0");
}

}  // namespace
}  // namespace TesselHost
