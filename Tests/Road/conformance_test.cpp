#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/road.h"

namespace tessel_test {
namespace {

using testing::HasSubstr;
using testing::Not;

/// The least that counts as an ICC profile: a header, no tags, and something that tells it from others.
std::string profile(const std::string& space, const std::string& mark = {}) {
  std::string bytes(128, '\0');
  bytes.replace(16, 4, space);
  bytes.replace(36, 4, "acsp");
  return bytes + std::string(4, '\0') + mark;
}

std::string pdfaMetadata(const std::string& part, const std::string& level) {
  return "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
         "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
         "<rdf:Description rdf:about='' xmlns:pdfaid='http://www.aiim.org/pdfa/ns/id/'><pdfaid:part>" +
         part + "</pdfaid:part><pdfaid:conformance>" + level +
         "</pdfaid:conformance></rdf:Description></rdf:RDF></x:xmpmeta>";
}

const std::string rgb = profile("RGB ");

/// A page with an output intent 5 and its profile 6.
PdfBuilder withIntent(const std::string& subtype = "GTS_PDFA1", const std::string& icc = rgb,
                      const std::string& catalogEntries = {}) {
  return pdf()
      .onePage("/MediaBox[0 0 20 10]", "/OutputIntents[5 0 R]" + catalogEntries)
      .object(5, "<</Type/OutputIntent/S/" + subtype +
                     "/OutputConditionIdentifier(Some \\(RGB\\))/RegistryName(http://www.color.org)"
                     "/Info<FEFF00E4>/DestOutputProfile 6 0 R>>")
      .stream(6, "/N 3/Filter/FlateDecode", deflated(icc));
}

/// The same with a claim to PDF/A in its metadata.
std::string pdfa(const std::string& part, const std::string& level, const std::string& icc = rgb,
                 const std::string& catalogEntries = {}) {
  return withIntent("GTS_PDFA1", icc, "/Metadata 7 0 R" + catalogEntries)
      .stream(7, "/Type/Metadata/Subtype/XML", pdfaMetadata(part, level))
      .build();
}

class ConformanceInfo : public RoadTest {};

TEST_F(ConformanceInfo, TellsTheLaterVersionOfHeaderAndCatalog) {
  file("in.pdf", pdf().header("%PDF-1.3").onePage("", "/Version/1.6").build());
  EXPECT_THAT(tessel({"info", "in.pdf"}).out, HasSubstr("in.pdf: PDF 1.6, 1 page\n"));
}

TEST_F(ConformanceInfo, AVersionThatDoesNotExistIsNeitherToldNorWritten) {
  file("in.pdf", pdf().header("%PDF-1.5").onePage("/MediaBox[0 0 20 10]", "/Version/1.9").build());
  EXPECT_THAT(tessel({"info", "in.pdf"}).out, HasSubstr("in.pdf: PDF 1.5, 1 page\n"));
  EXPECT_EQ(tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1"}).status, 0);
  EXPECT_THAT(tessel({"info", "out.pdf"}).out, HasSubstr("out.pdf: PDF 1.5, 1 page\n"));
}

TEST_F(ConformanceInfo, TellsClaimsTagsAndOutputIntents) {
  file("in.pdf", pdfa("2", "U", rgb, "/MarkInfo<</Marked true>>"));
  EXPECT_THAT(tessel({"info", "in.pdf"}).out,
              HasSubstr("  claims to be PDF/A-2u, tagged\n"
                        "  output intent 1: GTS_PDFA1, condition Some (RGB), registry http://www.color.org, "
                        "info \xC3\xA4, profile of 132 bytes, RGB, SHA-256 "));
}

TEST_F(ConformanceInfo, TellsAFileThatClaimsNothing) {
  file("in.pdf", pdf().onePage("/MediaBox[0 0 20 10]").build());
  EXPECT_THAT(tessel({"info", "in.pdf"}).out, HasSubstr("1 page\n  not tagged\n  page 1:"));
}

TEST_F(ConformanceInfo, TellsPrograms) {
  file("in.pdf", withIntent("GTS_PDFX", profile("CMYK"))
                     .object(8, "<</GTS_PDFXVersion(PDF/X-4)>>")
                     .trailer("/Info 8 0 R")
                     .build());
  EXPECT_THAT(tessel({"info", "--json", "in.pdf"}).out,
              HasSubstr(R"("tagged":false,"claims":["PDF/X-4"],"outputIntents":[{"subtype":"GTS_PDFX",)"
                        R"j("identifier":"Some (RGB)","condition":null,"registry":"http://www.color.org",)j"
                        "\"info\":\"\xC3\xA4\","
                        R"("profile":{"bytes":132,"colorSpace":"CMYK","sha256":")"));
}

TEST_F(ConformanceInfo, WritesAProfileByteForByte) {
  file("in.pdf", withIntent().build());
  EXPECT_EQ(tessel({"info", "in.pdf", "--profile", "1", "-o", "out.icc"}).status, 0);
  EXPECT_EQ(contentOf("out.icc"), rgb);
  EXPECT_EQ(shell("qpdf --show-object=6 --filtered-stream-data in.pdf | cmp - out.icc").status, 0);
}

TEST_F(ConformanceInfo, LeavesNothingWhereThereIsNoProfile) {
  file("in.pdf", withIntent().build());
  const Outcome outcome = tessel({"info", "in.pdf", "--profile", "2", "-o", "out.icc"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "tessel: in.pdf: its output intents are 1 to 1\n");
  EXPECT_EQ(files(), std::vector<std::string>{"in.pdf"});
}

TEST_F(ConformanceInfo, RefusesAProfileOfManyFilesOrNone) {
  file("in.pdf", withIntent().build());
  EXPECT_EQ(tessel({"info", "in.pdf", "in.pdf", "--profile", "1", "-o", "out.icc"}).status, 2);
  EXPECT_EQ(tessel({"info", "in.pdf", "--profile", "1"}).status, 2);
  EXPECT_EQ(tessel({"info", "in.pdf", "--profile", "0", "-o", "out.icc"}).status, 2);
  EXPECT_EQ(tessel({"info", "in.pdf", "--profile", "1", "-o", "in.pdf"}).status, 2);
}

class OutputIntents : public RoadTest {
 protected:
  Outcome nup(const std::vector<std::string>& inputs, const std::vector<std::string>& options = {}) const {
    std::vector<std::string> arguments = {"nup", "-o", "out.pdf", "--grid", "1x1"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.insert(arguments.end(), inputs.begin(), inputs.end());
    return tessel(arguments);
  }
  /// What `info` tells of the output, without its first line and the pages.
  std::string told() const {
    EXPECT_EQ(complaintsAbout("out.pdf"), "");
    return shell(quoted(TESSEL_TOOL) + " info out.pdf | grep -e claims -e tagged -e intent | cut -c1-60").out;
  }
};

const std::string intentLine = "  output intent 1: GTS_PDFA1, condition Some (RGB), registry\n";

TEST_F(OutputIntents, ComeAlongFromTheSource) {
  file("in.pdf", withIntent("GTS_PDFX").build());
  EXPECT_EQ(nup({"in.pdf"}).status, 0);
  EXPECT_THAT(told(), HasSubstr("output intent 1: GTS_PDFX, condition Some (RGB)"));
  EXPECT_EQ(tessel({"info", "out.pdf", "--profile", "1", "-o", "out.icc"}).status, 0);
  EXPECT_EQ(contentOf("out.icc"), rgb);
}

TEST_F(OutputIntents, StayAwayWhenNotWanted) {
  file("in.pdf", pdfa("2", "B"));
  EXPECT_EQ(nup({"in.pdf"}, {"--output-intent", "none"}).status, 0);
  EXPECT_EQ(told(), "  not tagged\n");
}

TEST_F(OutputIntents, AndInputsAreNotOverwritten) {
  const std::string source = withIntent().build();
  file("out.pdf", source);
  EXPECT_EQ(nup({"out.pdf"}).err, "tessel: out.pdf: the output would overwrite this input\n");
  EXPECT_EQ(nup({"./out.pdf"}).status, 2);
  EXPECT_EQ(contentOf("out.pdf"), source);
  file("in.pdf", source);
  file("out.pdf", rgb);
  const Outcome outcome = nup({"in.pdf"}, {"--output-intent", "out.pdf"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err, "tessel: out.pdf: the output would overwrite this profile\n");
  EXPECT_EQ(contentOf("out.pdf"), rgb);
}

TEST_F(OutputIntents, ThatDifferAreWarnedOfAndLeftOut) {
  file("a.pdf", pdfa("2", "B"));
  file("b.pdf", pdfa("2", "B", profile("RGB ", "other")));
  const Outcome outcome = nup({"a.pdf", "b.pdf", "a.pdf"});
  EXPECT_EQ(
      outcome.err,
      "tessel: warning: b.pdf: has other output intents than the inputs before it; the output gets none\n");
  EXPECT_EQ(told(), "  not tagged\n");
}

TEST_F(OutputIntents, ComeFromAFile) {
  file("in.pdf", pdfa("2", "B"));
  file("own.icc", profile("GRAY"));
  EXPECT_EQ(nup({"in.pdf"}, {"--output-intent", "own.icc"}).status, 0);
  EXPECT_EQ(told(),
            "  claims to be PDF/A-1a, not tagged\n"
            "  output intent 1: GTS_PDFA1, condition Custom, info Custom,\n");
  EXPECT_EQ(shell("qpdf --json out.pdf | grep -c '\"/Metadata\"'").out, "0\n");
}

TEST_F(OutputIntents, RefuseWhatIsNoProfile) {
  file("in.pdf", withIntent().build());
  file("bad.icc", "no profile");
  const Outcome outcome = nup({"in.pdf"}, {"--output-intent", "bad.icc"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err, "tessel: bad.icc: no ICC profile of grey, RGB, Lab or CMYK colours\n");
  EXPECT_EQ(nup({"in.pdf"}, {"--output-intent", "missing.icc"}).status, 2);
  EXPECT_EQ(nup({"in.pdf"}, {"--output-intent", "."}).err, "tessel: .: the profile can't be read\n");
  EXPECT_EQ(nup({"in.pdf"}, {"--output-intent", "/dev/zero"}).err,
            "tessel: /dev/zero: too large for an ICC profile\n");
  EXPECT_EQ(files(), (std::vector<std::string>{"bad.icc", "in.pdf"}));
}

class PdfaClaim : public OutputIntents {};

TEST_F(PdfaClaim, StaysWhenAllSourcesMakeIt) {
  file("a.pdf", pdfa("2", "U"));
  file("b.pdf", pdfa("2", "A"));
  EXPECT_EQ(nup({"a.pdf", "b.pdf"}).status, 0);
  EXPECT_EQ(told(), "  claims to be PDF/A-2u, not tagged\n" + intentLine);
  EXPECT_THAT(shell("pdfinfo -meta out.pdf").out, HasSubstr("<pdfaid:conformance>U</pdfaid:conformance>"));
  EXPECT_EQ(shell("qpdf --show-object=trailer out.pdf | grep -c /ID").out, "1\n");
}

TEST_F(PdfaClaim, IsThatOfTheLowestLevel) {
  file("a.pdf", pdfa("3", "U"));
  file("b.pdf", pdfa("3", "B"));
  EXPECT_EQ(nup({"a.pdf", "b.pdf"}).status, 0);
  EXPECT_THAT(told(), HasSubstr("PDF/A-3b"));
}

TEST_F(PdfaClaim, GoesWhenTheSourcesDiffer) {
  file("a.pdf", pdfa("2", "B"));
  for (const std::string& other : {pdfa("3", "B"), pdfa("1", "B"), withIntent().build(),
                                   pdf().onePage("/MediaBox[0 0 20 10]").build()}) {
    file("b.pdf", other);
    EXPECT_EQ(nup({"a.pdf", "b.pdf"}).status, 0);
    EXPECT_THAT(told(), Not(HasSubstr("PDF/A-2")));
    EXPECT_EQ(nup({"b.pdf", "a.pdf"}).status, 0);
    EXPECT_THAT(told(), Not(HasSubstr("PDF/A-2")));
  }
}

TEST_F(PdfaClaim, GoesWithProtectionAndWithoutAProfile) {
  file("a.pdf", pdfa("2", "B"));
  EXPECT_EQ(nup({"a.pdf"}, {"--encrypt", "aes-256", "--owner-password", "o"}).status, 0);
  EXPECT_THAT(told(), Not(HasSubstr("PDF/A-2")));
  file("b.pdf", pdfa("2", "B", "no profile"));
  EXPECT_EQ(nup({"b.pdf"}).status, 0);
  EXPECT_THAT(told(), Not(HasSubstr("PDF/A-2")));
}

TEST_F(PdfaClaim, GoesWithLayers) {
  file("a.pdf",
       withIntent("GTS_PDFA1", rgb, "/Metadata 7 0 R/OCProperties<</OCGs[9 0 R]/D<</Order[9 0 R]>>>>")
           .object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 20 10]/Resources<</Properties<</L 9 0 R>>>>>>")
           .object(9, "<</Type/OCG/Name(L)>>")
           .stream(7, "/Type/Metadata/Subtype/XML", pdfaMetadata("2", "B"))
           .build());
  EXPECT_EQ(nup({"a.pdf"}).status, 0);
  EXPECT_THAT(told(), Not(HasSubstr("PDF/A-2")));
  EXPECT_EQ(nup({"a.pdf"}, {"--no-layers"}).status, 0);
  EXPECT_THAT(told(), HasSubstr("PDF/A-2b"));
}

}  // namespace
}  // namespace tessel_test
