#include "TesselHost/host_outputintent.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "TesselHost/host_error.h"
#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/road.h"

using namespace TesselHost;
using tessel_test::pdf;
using tessel_test::PdfBuilder;

namespace {

std::string profile(const std::string& space, const std::string& signature = "acsp") {
  std::string bytes(128, '\0');
  return bytes.replace(16, 4, space).replace(36, 4, signature);
}

struct SpaceCase {
  const char* space;
  const char* name;
  int components;
};

class ProfileSpace : public testing::TestWithParam<SpaceCase> {};
TEST_P(ProfileSpace, IsThatOfTheHeader) {
  const IccProfile icc(profile(GetParam().space));
  EXPECT_EQ(icc.colorSpace(), GetParam().name);
  EXPECT_EQ(icc.components(), GetParam().components);
}
INSTANTIATE_TEST_SUITE_P(Spaces, ProfileSpace,
                         testing::Values(SpaceCase{"GRAY", "GRAY", 1}, SpaceCase{"RGB ", "RGB", 3},
                                         SpaceCase{"Lab ", "Lab", 3}, SpaceCase{"CMYK", "CMYK", 4},
                                         SpaceCase{"6CLR", "6CLR", 0}, SpaceCase{"    ", "", 0}));

TEST(Profile, WithoutAHeaderHasNoSpace) {
  EXPECT_EQ(IccProfile(profile("RGB ", "none")).colorSpace(), "");
  EXPECT_EQ(IccProfile(profile("RGB ").substr(0, 127)).colorSpace(), "");
  EXPECT_EQ(IccProfile().components(), 0);
}

TEST(IntentChoice, IsTwoWordsOrAFile) {
  EXPECT_EQ(IntentChoice::parse("from-source")->kind, IntentChoice::Kind::fromSource);
  EXPECT_EQ(IntentChoice::parse("none")->kind, IntentChoice::Kind::none);
  EXPECT_EQ(IntentChoice::parse("a.icc")->kind, IntentChoice::Kind::profile);
  EXPECT_EQ(IntentChoice::parse("a.icc")->file, "a.icc");
  EXPECT_FALSE(IntentChoice::parse(""));
}

class SourceFile : public tessel_test::RoadTest {
 protected:
  Source source(const PdfBuilder& builder) const { return Source(file("in.pdf", builder.build())); }
};

using IntentTexts = SourceFile;

/// A document whose only intent has this identifier, in its own dictionary or behind a reference.
PdfBuilder withIdentifier(const std::string& text) {
  return pdf().onePage("/MediaBox[0 0 9 9]",
                       "/OutputIntents[<</S/GTS_PDFX/OutputConditionIdentifier" + text + ">>]");
}

TEST_F(IntentTexts, ComeInUtf8WhereverTheyStand) {
  const std::pair<const char*, const char*> cases[] = {{"(plain)", "plain"},
                                                       {"(a \\(b\\))", "a (b)"},
                                                       {"(\\344)", "\xC3\xA4"},
                                                       {"<6162>", "ab"},
                                                       {"<FEFF00e4>", "\xC3\xA4"},
                                                       {" 5 0 R", "a (b)"},
                                                       {"()", ""},
                                                       {"/Name", ""}};
  for (const auto& [text, utf8] : cases)
    EXPECT_EQ(outputIntentsOf(source(withIdentifier(text).object(5, "(a \\(b\\))"))).at(0).identifier, utf8)
        << text;
}

TEST_F(IntentTexts, ProfileThatIsNotThereIsEmpty) {
  const Source none = source(withIdentifier("(x)"));
  EXPECT_TRUE(outputIntentsOf(none).at(0).profile.empty());
  EXPECT_THROW(profileOf(none, 1), SourceError);
  EXPECT_THROW(profileOf(none, 0), SourceError);
  EXPECT_THROW(profileOf(none, 2), SourceError);
}

using Sharing = SourceFile;

PdfBuilder claiming(const std::string& part, const std::string& level) {
  return pdf()
      .onePage("/MediaBox[0 0 9 9]", "/Metadata 5 0 R")
      .stream(
          5, "",
          "<r:RDF xmlns:r='u' xmlns:rdf='v'><rdf:Description xmlns:pdfaid='http://www.aiim.org/pdfa/ns/id/'>"
          "<pdfaid:part>" +
              part + "</pdfaid:part><pdfaid:conformance>" + level +
              "</pdfaid:conformance></rdf:Description></r:RDF>");
}

std::string shared(const std::vector<Conformance>& sources) {
  SharedClaim claim;
  for (const Conformance& each : sources) claim.add(each);
  return claim.part == 0 ? "none" : std::to_string(claim.part) + std::string(claim.level);
}

TEST_F(Sharing, ClaimIsOfOnePartAndTheLowestLevel) {
  const auto of = [this](const char* part, const char* level) {
    return Conformance(source(claiming(part, level)));
  };
  EXPECT_EQ(shared({of("2", "U"), of("2", "U")}), "2U");
  EXPECT_EQ(shared({of("2", "A"), of("2", "U")}), "2U");
  EXPECT_EQ(shared({of("3", "A"), of("3", "B"), of("3", "A")}), "3B");
  EXPECT_EQ(shared({of("3", "B")}), "3B");
  EXPECT_EQ(shared({of("2", "B"), of("3", "B")}), "none");
  EXPECT_EQ(shared({of("2", "B"), of("3", "B"), of("2", "B")}), "none");
  EXPECT_EQ(shared({of("1", "B")}), "none");
  EXPECT_EQ(shared({of("1", "B"), of("2", "B")}), "none");
  EXPECT_EQ(shared({}), "none");
}

}  // namespace
