#include <gtest/gtest.h>

#include <string>

#include "TesselPage/tessel_page.h"
#include "Tests/Support/pdf_builder.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

PdfBuilder document(const std::string& catalogEntries = {}) {
  return pdf().onePage("/MediaBox[0 0 9 9]", catalogEntries);
}

OpenPage opened(const PdfBuilder& builder) {
  OpenPage page = builder.openPage();
  EXPECT_EQ(page.result, 0);
  return page;
}

int versionOf(const PdfBuilder& builder) { return opened(builder)->getVersion(); }

// Version
// ----------------------------------------------------------------------------------------------------------

struct VersionCase {
  const char* header;
  const char* catalogEntries;
  int version;
};

class FileVersion : public testing::TestWithParam<VersionCase> {};

TEST_P(FileVersion, IsTheGreaterOfHeaderAndCatalog) {
  EXPECT_EQ(versionOf(document(GetParam().catalogEntries).header(GetParam().header)), GetParam().version);
}

INSTANTIATE_TEST_SUITE_P(Headers, FileVersion,
                         testing::Values(VersionCase{"%PDF-1.0", "", 0}, VersionCase{"%PDF-1.1", "", 1},
                                         VersionCase{"%PDF-1.2", "", 2}, VersionCase{"%PDF-1.3", "", 3},
                                         VersionCase{"%PDF-1.4", "", 4}, VersionCase{"%PDF-1.5", "", 5},
                                         VersionCase{"%PDF-1.6", "", 6}, VersionCase{"%PDF-1.7", "", 7},
                                         VersionCase{"%PDF-2.0", "", 10}));

INSTANTIATE_TEST_SUITE_P(Catalogs, FileVersion,
                         testing::Values(VersionCase{"%PDF-1.4", "/Version/1.6", 6},
                                         VersionCase{"%PDF-1.7", "/Version/1.4", 7},
                                         VersionCase{"%PDF-1.7", "/Version/2.0", 10},
                                         VersionCase{"%PDF-2.0", "/Version/1.7", 10},
                                         VersionCase{"%PDF-1.0", "/Version/1.0", 0}));

TEST(Marked, IsWhatTheCatalogSays) {
  EXPECT_TRUE(opened(document("/MarkInfo<</Marked true>>"))->isMarked());
  EXPECT_FALSE(opened(document("/MarkInfo<</Marked false>>"))->isMarked());
  EXPECT_FALSE(opened(document())->isMarked());
  EXPECT_TRUE(opened(document("/MarkInfo 5 0 R").object(5, "<</Marked true>>"))->isMarked());
}

// Metadata
// ----------------------------------------------------------------------------------------------------------

constexpr const char* pdfaSchema = "http://www.aiim.org/pdfa/ns/id/";
constexpr const char* rdfSyntax = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";

/// A packet of metadata that holds these descriptions; prefixes rdf and x are declared.
std::string packet(const std::string& descriptions) {
  return "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
         "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n <rdf:RDF xmlns:rdf=\"" +
         std::string(rdfSyntax) + "\">\n" + descriptions +
         "\n </rdf:RDF>\n</x:xmpmeta>\n<?xpacket end=\"w\"?>";
}

/// A description of the PDF/A schema with these elements.
std::string description(const std::string& elements) {
  return "<rdf:Description rdf:about=\"\" xmlns:pdfaid=\"" + std::string(pdfaSchema) + "\">" + elements +
         "</rdf:Description>";
}

std::string part(const std::string& text) { return "<pdfaid:part>" + text + "</pdfaid:part>"; }
std::string conformance(const std::string& text) {
  return "<pdfaid:conformance>" + text + "</pdfaid:conformance>";
}

PdfBuilder withMetadata(const std::string& text, const std::string& catalogEntries = {}) {
  return document("/Metadata 5 0 R" + catalogEntries).stream(5, "/Type/Metadata/Subtype/XML", text);
}

int versionByMetadata(const std::string& text) { return versionOf(withMetadata(text)); }

struct SchemaCase {
  const char* part;
  const char* conformance;
  int version;
};

class MetadataClaim : public testing::TestWithParam<SchemaCase> {};

TEST_P(MetadataClaim, IsOfPartAndConformance) {
  const std::string elements = part(GetParam().part) + "\n  " + conformance(GetParam().conformance);
  EXPECT_EQ(versionByMetadata(packet(description(elements))), GetParam().version);
}

TEST_P(MetadataClaim, MayTellThemInEitherOrder) {
  const std::string elements = conformance(GetParam().conformance) + part(GetParam().part);
  EXPECT_EQ(versionByMetadata(packet(description(elements))), GetParam().version);
}

INSTANTIATE_TEST_SUITE_P(Known, MetadataClaim,
                         testing::Values(SchemaCase{"2", "A", 0x3007}, SchemaCase{"2", "B", 0x4007},
                                         SchemaCase{"2", "U", 0x5007}, SchemaCase{"3", "A", 0x6007},
                                         SchemaCase{"3", "B", 0x7007}, SchemaCase{"3", "U", 0x8007}));

INSTANTIATE_TEST_SUITE_P(Others, MetadataClaim,
                         testing::Values(SchemaCase{"1", "A", 7}, SchemaCase{"1", "B", 7},
                                         SchemaCase{"4", "E", 7}, SchemaCase{"2", "C", 7},
                                         SchemaCase{"2", "b", 7}, SchemaCase{" 2", "B", 7},
                                         SchemaCase{"2", "B ", 7}, SchemaCase{"22", "B", 7},
                                         SchemaCase{"", "", 7}));

TEST(Metadata, ClaimStandsBesideTheVersion) {
  const std::string claim = packet(description(part("2") + conformance("B")));
  EXPECT_EQ(versionOf(withMetadata(claim).header("%PDF-1.4")), 0x4004);
  EXPECT_EQ(versionOf(withMetadata(claim, "/Version/1.6").header("%PDF-1.4")), 0x4006);
  EXPECT_EQ(versionOf(withMetadata(claim).header("%PDF-2.0")), 0x400A);
}

TEST(Metadata, AmendmentIsReadAndMakesNoClaim) {
  EXPECT_EQ(
      versionByMetadata(packet(description(part("2") + "<pdfaid:amd>3</pdfaid:amd>" + conformance("B")))),
      0x4007);
  EXPECT_EQ(versionByMetadata(packet(description("<pdfaid:amd>2</pdfaid:amd>" + conformance("B")))), 7);
}

TEST(Metadata, PartAloneOrConformanceAloneIsNoClaim) {
  EXPECT_EQ(versionByMetadata(packet(description(part("2")))), 7);
  EXPECT_EQ(versionByMetadata(packet(description(conformance("B")))), 7);
}

TEST(Metadata, OtherElementsAndTextsStandBetween) {
  EXPECT_EQ(versionByMetadata(packet(description("\n text <rdf:x>3</rdf:x> " + part("2") +
                                                 " 3 <rdf:y>U</rdf:y> " + conformance("B") + "\n"))),
            0x4007);
}

TEST(Metadata, FirstTextBehindAnElementIsItsValue) {
  EXPECT_EQ(versionByMetadata(packet(description("<pdfaid:part/>2" + conformance("B")))), 0x4007);
}

TEST(Metadata, DescriptionsCountTogether) {
  EXPECT_EQ(versionByMetadata(
                packet("<rdf:Description/>" + description(part("3")) + description(conformance("U")))),
            0x8007);
}

TEST(Metadata, ClaimOfDescriptionsAtOtherDepthsCounts) {
  EXPECT_EQ(versionByMetadata("<rdf:Description xmlns:rdf='" + std::string(rdfSyntax) + "' xmlns:pdfaid='" +
                              pdfaSchema + "'>" + part("2") + conformance("A") + "</rdf:Description>"),
            0x3007);
}

TEST(Metadata, LaterValueTakesThePlaceOfAnEarlierOne) {
  EXPECT_EQ(versionByMetadata(packet(description(part("1") + conformance("B") + part("3")))), 0x7007);
}

TEST(Metadata, FirstClaimThatIsCompleteCounts) {
  EXPECT_EQ(versionByMetadata(packet(description(part("2") + conformance("B") + part("3")))), 0x4007);
}

TEST(Metadata, ElementsBelowOrAboveTheSchemasOwnDoNotCount) {
  EXPECT_EQ(versionByMetadata(packet(description("<rdf:x>" + part("2") + conformance("B") + "</rdf:x>"))), 7);
  EXPECT_EQ(versionByMetadata(packet(description("<rdf:x/>") + "<pdfaid:part xmlns:pdfaid='" + pdfaSchema +
                                     "'>2</pdfaid:part>" + "<pdfaid:conformance xmlns:pdfaid='" + pdfaSchema +
                                     "'>B</pdfaid:conformance>")),
            7);
}

TEST(Metadata, AttributesMakeNoClaim) {
  EXPECT_EQ(versionByMetadata(packet("<rdf:Description xmlns:pdfaid='" + std::string(pdfaSchema) +
                                     "' pdfaid:part='2' pdfaid:conformance='B'/>")),
            7);
}

/// A description of which name, prefix and schema can be told.
std::string describedAs(const std::string& tag, const std::string& prefix, const std::string& schema) {
  return "<" + tag + " xmlns:" + prefix + "=\"" + schema + "\"><" + prefix + ":part>2</" + prefix +
         ":part><" + prefix + ":conformance>B</" + prefix + ":conformance></" + tag + ">";
}

TEST(Metadata, NamesAndSchemaAreTakenAsTheyStand) {
  EXPECT_EQ(versionByMetadata(packet(describedAs("rdf:Description", "pdfaid", pdfaSchema))), 0x4007);
  EXPECT_EQ(versionByMetadata(packet(describedAs("rdf:description", "pdfaid", pdfaSchema))), 7);
  EXPECT_EQ(versionByMetadata(packet(describedAs("x:Description", "pdfaid", pdfaSchema))), 7);
  EXPECT_EQ(versionByMetadata(packet(describedAs("rdf:Description", "aid", pdfaSchema))), 7);
  EXPECT_EQ(
      versionByMetadata(packet(describedAs("rdf:Description", "pdfaid", "http://www.aiim.org/pdfa/ns/id"))),
      7);
  EXPECT_EQ(versionByMetadata(packet(describedAs("rdf:Description", "pdfaid", "http://www.example.org/"))),
            7);
}

TEST(Metadata, SchemaDeclaredAboveTheDescriptionMakesNoClaim) {
  EXPECT_EQ(versionByMetadata("<x:a xmlns:x='u' xmlns:rdf='" + std::string(rdfSyntax) + "' xmlns:pdfaid='" +
                              pdfaSchema + "'><rdf:RDF><rdf:Description>" + part("2") + conformance("B") +
                              "</rdf:Description></rdf:RDF></x:a>"),
            7);
}

TEST(Metadata, SchemaMayBeDeclaredAmongOtherAttributes) {
  EXPECT_EQ(versionByMetadata(packet("<rdf:Description xmlns:dc='u' xmlns:pdfaid='" +
                                     std::string(pdfaSchema) + "' xmlns:xmp='v' rdf:about='' dc:format='w'>" +
                                     part("2") + conformance("U") + "</rdf:Description>")),
            0x5007);
}

TEST(Metadata, WhatCannotBeReadMakesNoClaim) {
  for (const char* text : {"", " ", "no XML", "<", "<?xpacket begin=''?>", "<a><b></a>", "<rdf:Description"})
    EXPECT_EQ(versionByMetadata(text), 7) << text;
}

TEST(Metadata, ClaimBeforeAFaultCountsAndOneBehindItDoesNot) {
  const std::string claim = description(part("2") + conformance("B"));
  EXPECT_EQ(versionByMetadata(packet(claim + "<a><b></a>")), 0x4007);
  EXPECT_EQ(versionByMetadata(packet("<a><b></a>" + claim)), 7);
}

TEST(Metadata, PackedTextIsNoXml) {
  const std::string claim = packet(description(part("2") + conformance("B")));
  EXPECT_EQ(versionOf(document("/Metadata 5 0 R").stream(5, "/Filter/FlateDecode", deflated(claim))), 7);
}

TEST(Metadata, ObjectThatIsNoStreamOrIsNotThereMakesNoClaim) {
  EXPECT_EQ(versionOf(document("/Metadata 5 0 R").object(5, "<</Type/Metadata>>")), 7);
  EXPECT_EQ(versionOf(document("/Metadata 99 0 R")), 7);
}

TEST(Metadata, IsAskedBeforeIntentsAndInformation) {
  const std::string claim = packet(description(part("3") + conformance("B")));
  const auto builder = withMetadata(claim, "/OutputIntents[<</S/GTS_PDFX>>]")
                           .object(6, "<</GTS_PDFXVersion(PDF/X-1a:2003)/GTS_PDFAVersion(PDF/A-1b)>>")
                           .trailer("/Info 6 0 R");
  EXPECT_EQ(versionOf(builder), 0x7007);
}

TEST(Metadata, WithoutAClaimLeavesTheAnswerToIntentsAndInformation) {
  const auto builder =
      withMetadata(packet(description(part("1") + conformance("B"))), "/OutputIntents[<</S/GTS_PDFA1>>]")
          .object(6, "<</Title(x)>>");
  EXPECT_EQ(versionOf(builder), 7);
  EXPECT_EQ(versionOf(PdfBuilder(builder).trailer("/Info 6 0 R")), 0x1004);
}

// Intents and information
// ----------------------------------------------------------------------------------------------------------

PdfBuilder withInfo(const std::string& intents, const std::string& infoEntries) {
  return document("/OutputIntents[" + intents + "]")
      .object(6, "<</Title(x)" + infoEntries + ">>")
      .trailer("/Info 6 0 R");
}

std::string intent(const std::string& subtype) { return "<</Type/OutputIntent/S/" + subtype + ">>"; }

TEST(Claim, WithoutAnIntentIsNone) {
  const std::string claims = "/GTS_PDFXVersion(PDF/X-1a:2003)/GTS_PDFAVersion(PDF/A-1b)";
  EXPECT_EQ(versionOf(document().object(6, "<<" + claims + ">>").trailer("/Info 6 0 R")), 7);
  EXPECT_EQ(versionOf(withInfo("", claims)), 7);
  for (const char* other : {"ISO_PDFE1", "GTS_PDFA", "GTS_PDFA2", "GTS_PDFX1", "gts_pdfx"})
    EXPECT_EQ(versionOf(withInfo(intent(other), claims)), 7) << other;
  EXPECT_EQ(versionOf(withInfo("<</Type/OutputIntent>>", claims)), 7);
}

TEST(Claim, WithoutInformationIsNone) {
  EXPECT_EQ(versionOf(document("/OutputIntents[" + intent("GTS_PDFX") + "]")), 7);
  EXPECT_EQ(versionOf(document("/OutputIntents[" + intent("GTS_PDFA1") + "]").header("%PDF-1.4")), 4);
}

TEST(Claim, IntentDecidesWhereTheInformationClaimsNothing) {
  EXPECT_EQ(versionOf(withInfo(intent("GTS_PDFX"), "")), 0x203);
  EXPECT_EQ(versionOf(withInfo(intent("GTS_PDFA1"), "")), 0x1004);
}

PdfBuilder withIntentObjects(const std::string& first, const std::string& second) {
  return withInfo("7 0 R 8 0 R", "").object(7, intent(first)).object(8, intent(second));
}

TEST(Claim, FirstIntentOfAKnownKindCounts) {
  EXPECT_EQ(versionOf(withIntentObjects("GTS_PDFX", "GTS_PDFA1")), 0x203);
  EXPECT_EQ(versionOf(withIntentObjects("GTS_PDFA1", "GTS_PDFX")), 0x1004);
  EXPECT_EQ(versionOf(withIntentObjects("ISO_PDFE1", "GTS_PDFA1")), 0x1004);
  EXPECT_EQ(versionOf(withIntentObjects("ISO_PDFE1", "GTS_PDFX")), 0x203);
}

struct ClaimCase {
  const char* header;
  const char* entries;
  int version;
};
void PrintTo(const ClaimCase& c, std::ostream* out) { *out << c.header << " " << c.entries; }

class ClaimUnderX : public testing::TestWithParam<ClaimCase> {};
class ClaimUnderA : public testing::TestWithParam<ClaimCase> {};

TEST_P(ClaimUnderX, IsThatOfTheInformation) {
  EXPECT_EQ(versionOf(withInfo(intent("GTS_PDFX"), GetParam().entries).header(GetParam().header)),
            GetParam().version);
}

TEST_P(ClaimUnderA, IsThatOfTheInformation) {
  EXPECT_EQ(versionOf(withInfo(intent("GTS_PDFA1"), GetParam().entries).header(GetParam().header)),
            GetParam().version);
}

INSTANTIATE_TEST_SUITE_P(KindsWithTheirOwnVersion, ClaimUnderX,
                         testing::Values(ClaimCase{"%PDF-1.6", "/GTS_PDFXVersion(PDF/X-1:2001)", 0x103},
                                         ClaimCase{"%PDF-1.6", "/GTS_PDFXVersion(PDF/X-1a:2001)", 0x203},
                                         ClaimCase{"%PDF-1.6", "/GTS_PDFXVersion(PDF/X-3:2002)", 0x303},
                                         ClaimCase{"%PDF-1.6", "/GTS_PDFXVersion(PDF/X-1a:2003)", 0x404},
                                         ClaimCase{"%PDF-1.6", "/GTS_PDFXVersion(PDF/X-2:2003)", 0x504},
                                         ClaimCase{"%PDF-1.6", "/GTS_PDFXVersion(PDF/X-3:2003)", 0x604}));

constexpr const char* x1ByConformance = "/GTS_PDFXVersion(PDF/X-1:2001)/GTS_PDFXConformance(PDF/X-1a:2001)";

INSTANTIATE_TEST_SUITE_P(
    ConformanceOfX1, ClaimUnderX,
    testing::Values(
        ClaimCase{"%PDF-1.3", x1ByConformance, 0x203},
        ClaimCase{"%PDF-1.3", "/GTS_PDFXConformance(see PDF/X-1a:2001!)/GTS_PDFXVersion(PDF/X-1:2001)",
                  0x203},
        ClaimCase{"%PDF-1.3", "/GTS_PDFXVersion(PDF/X-1:2001)/GTS_PDFXConformance(PDF/X-1:2001)", 0x103},
        ClaimCase{"%PDF-1.3", "/GTS_PDFXConformance(PDF/X-1a:2001)", 0x203},
        ClaimCase{"%PDF-1.3", "/GTS_PDFXVersion(PDF/X-3:2002)/GTS_PDFXConformance(PDF/X-1a:2001)", 0x303}));

INSTANTIATE_TEST_SUITE_P(KindsWithTheFilesVersion, ClaimUnderX,
                         testing::Values(ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-4)", 0x707},
                                         ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-4p)", 0x807},
                                         ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-5g)", 0x907},
                                         ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-5n)", 0xA07},
                                         ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-5pg)", 0xB07},
                                         ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-6)", 0xF07},
                                         ClaimCase{"%PDF-1.6", "/GTS_PDFXVersion(PDF/X-4)", 0x706},
                                         ClaimCase{"%PDF-1.0", "/GTS_PDFXVersion(PDF/X-4p)", 0x800},
                                         ClaimCase{"%PDF-2.0", "/GTS_PDFXVersion(PDF/X-6)", 0xF0A},
                                         ClaimCase{"%PDF-1.4", "/GTS_PDFXVersion(pdf/x-4)", 0xF04}));

INSTANTIATE_TEST_SUITE_P(
    KindsBySearch, ClaimUnderX,
    testing::Values(ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(xPDF/X-4py)", 0x807},
                    ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-4:2010)", 0x707},
                    ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-4 PDF/X-1:2001)", 0x103},
                    ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-1a:2001 PDF/X-1:2001)", 0x103},
                    ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-3:2003 PDF/X-1a:2003)", 0x404},
                    ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-4 PDF/X-4p)", 0x807},
                    ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-5pg PDF/X-5n)", 0xA07},
                    ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-5n PDF/X-5g)", 0x907}));

INSTANTIATE_TEST_SUITE_P(ValuesOfOtherForms, ClaimUnderX,
                         testing::Values(ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion/PDF", 0x203},
                                         ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion 5", 0x203},
                                         ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion<5044462f582d34>", 0xF07}));

INSTANTIATE_TEST_SUITE_P(Kinds, ClaimUnderA,
                         testing::Values(ClaimCase{"%PDF-1.7", "", 0x1004},
                                         ClaimCase{"%PDF-1.7", "/GTS_PDFAVersion(PDF/A-1a)", 0x1004},
                                         ClaimCase{"%PDF-1.7", "/GTS_PDFAVersion(PDF/A-1b)", 0x2004},
                                         ClaimCase{"%PDF-1.4", "/GTS_PDFAVersion(xPDF/A-1b:2005)", 0x2004},
                                         ClaimCase{"%PDF-1.4", "/GTS_PDFAVersion(PDF/A-1b PDF/A-1a)", 0x1004},
                                         ClaimCase{"%PDF-1.4", "/GTS_PDFAVersion(PDF/A-2b)", 0xF004},
                                         ClaimCase{"%PDF-1.7", "/GTS_PDFAVersion(PDF/A-1)", 0xF007},
                                         ClaimCase{"%PDF-1.0", "/GTS_PDFAVersion(pdf/a-1b)", 0xF000}));

/// Entries that claim both.
#define TESSEL_CLAIMS(x, a) "/GTS_PDFXVersion(PDF/X-" x ")/GTS_PDFAVersion(PDF/A-" a ")"

INSTANTIATE_TEST_SUITE_P(JoinedKinds, ClaimUnderX,
                         testing::Values(ClaimCase{"%PDF-1.7", TESSEL_CLAIMS("1a:2003", "1b"), 0x2404},
                                         ClaimCase{"%PDF-1.7", TESSEL_CLAIMS("2:2003", "1b"), 0x2504},
                                         ClaimCase{"%PDF-1.7", TESSEL_CLAIMS("3:2003", "1b"), 0x2604},
                                         ClaimCase{"%PDF-1.7", TESSEL_CLAIMS("1a:2003", "1a"), 0x1404},
                                         ClaimCase{"%PDF-1.7", TESSEL_CLAIMS("2:2003", "1a"), 0x1504},
                                         ClaimCase{"%PDF-1.7", TESSEL_CLAIMS("3:2003", "1a"), 0x1604}));

INSTANTIATE_TEST_SUITE_P(ClashingKinds, ClaimUnderX,
                         testing::Values(ClaimCase{"%PDF-1.7", TESSEL_CLAIMS("4", "1a"), 0xF07},
                                         ClaimCase{"%PDF-1.7", TESSEL_CLAIMS("4", "1b"), 0xF07},
                                         ClaimCase{"%PDF-1.4", TESSEL_CLAIMS("4p", "1b"), 0xF04},
                                         ClaimCase{"%PDF-1.5", TESSEL_CLAIMS("5pg", "1a"), 0xF05},
                                         ClaimCase{"%PDF-1.6", TESSEL_CLAIMS("9", "1b"), 0xF06},
                                         ClaimCase{"%PDF-1.7", TESSEL_CLAIMS("1a:2003", "2b"), 0xF007},
                                         ClaimCase{"%PDF-1.3", TESSEL_CLAIMS("4", "2b"), 0xF003},
                                         ClaimCase{"%PDF-1.2", TESSEL_CLAIMS("1a:2001", "2b"), 0xF002},
                                         ClaimCase{"%PDF-1.7", TESSEL_CLAIMS("9", "9"), 0xF007}));

INSTANTIATE_TEST_SUITE_P(KindsWithNoBitInCommon, ClaimUnderX,
                         testing::Values(ClaimCase{"%PDF-1.7", TESSEL_CLAIMS("1:2001", "1a"), 0x103},
                                         ClaimCase{"%PDF-1.7", TESSEL_CLAIMS("1a:2001", "1b"), 0x203},
                                         ClaimCase{"%PDF-1.7", TESSEL_CLAIMS("3:2002", "1b"), 0x303},
                                         ClaimCase{"%PDF-1.3", TESSEL_CLAIMS("4", "1b"), 0x703},
                                         ClaimCase{"%PDF-1.3", TESSEL_CLAIMS("4", "1a"), 0x703},
                                         ClaimCase{"%PDF-2.0", TESSEL_CLAIMS("4", "1b"), 0x70A},
                                         ClaimCase{"%PDF-1.3", TESSEL_CLAIMS("1a:2003", "2b"), 0x404},
                                         ClaimCase{"%PDF-1.4", TESSEL_CLAIMS("1a:2001", "2b"), 0x203},
                                         ClaimCase{"%PDF-1.0", TESSEL_CLAIMS("4", "2b"), 0x700}));

INSTANTIATE_TEST_SUITE_P(ArchiveClaimAlone, ClaimUnderX,
                         testing::Values(ClaimCase{"%PDF-1.7", "/GTS_PDFAVersion(PDF/A-1a)", 0x203},
                                         ClaimCase{"%PDF-1.7", "/GTS_PDFAVersion(PDF/A-1b)", 0x203},
                                         ClaimCase{"%PDF-1.4", "/GTS_PDFAVersion(PDF/A-2b)", 0x203},
                                         ClaimCase{"%PDF-1.7", "/GTS_PDFAVersion(PDF/A-2b)", 0xF007}));

INSTANTIATE_TEST_SUITE_P(PrintClaim, ClaimUnderA,
                         testing::Values(ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-4)", 0xF07},
                                         ClaimCase{"%PDF-1.3", "/GTS_PDFXVersion(PDF/X-4)", 0x703},
                                         ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-1a:2003)", 0x1404},
                                         ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-3:2003)", 0x1604},
                                         ClaimCase{"%PDF-1.7", "/GTS_PDFXVersion(PDF/X-1a:2001)", 0x203},
                                         ClaimCase{"%PDF-1.7", x1ByConformance, 0x203},
                                         ClaimCase{"%PDF-1.7", TESSEL_CLAIMS("1a:2003", "1b"), 0x2404}));

#undef TESSEL_CLAIMS

TEST(Claim, IsReadThroughReferences) {
  const auto builder =
      withInfo(intent("GTS_PDFX"), "/GTS_PDFXVersion 7 0 R").object(7, "8 0 R").object(8, "(PDF/X-4)");
  EXPECT_EQ(versionOf(builder), 0x707);
}

TEST(Claim, IsReadFromAnObjectStream) {
  const auto builder = document("/OutputIntents 7 0 R")
                           .compressed(20, 6, "<</GTS_PDFXVersion(PDF/X-3:2003)>>")
                           .compressed(20, 7, "[8 0 R]")
                           .compressed(20, 8, intent("GTS_PDFX"))
                           .trailer("/Info 6 0 R");
  EXPECT_EQ(versionOf(builder), 0x604);
}

TEST(Claim, InformationThatCannotBeReadClaimsNothing) {
  EXPECT_EQ(versionOf(withInfo(intent("GTS_PDFX"), "").trailer("/Info 99 0 R")), 0x203);
  EXPECT_EQ(versionOf(withInfo(intent("GTS_PDFX"), "/GTS_PDFXVersion 99 0 R")), 0x203);
  EXPECT_EQ(versionOf(withInfo(intent("GTS_PDFA1"), "/GTS_PDFAVersion(PDF/A-1b)/GTS_PDFXVersion 99 0 R")),
            0x2004);
}

TEST(Claim, IsTheSameAtASecondCall) {
  const OpenPage page = opened(withInfo(intent("GTS_PDFX"), "/GTS_PDFXVersion(PDF/X-4)"));
  EXPECT_EQ(page->getVersion(), 0x707);
  EXPECT_EQ(page->setPageNo(1), 0);
  EXPECT_EQ(page->getVersion(), 0x707);
}

}  // namespace
