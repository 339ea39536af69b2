// What a source claims to be: PDF version, PDF/A and PDF/X, output intents.

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>

#include "KelpCommon/kelp_xml.h"
#include "TesselPage/Finder/pdf_rules.h"
#include "TesselPage/Finder/tessel_finderexception.h"
#include "TesselPage/Finder/tessel_findingvalue.h"
#include "TesselPage/Finder/tessel_objecttext.h"
#include "TesselPage/Finder/tessel_searchbudget.h"
#include "TesselPage/Finder/tessel_valueutility.h"
#include "TesselPage/Interface/tessel_page_state.h"
#include "TesselPage/Model/tessel_catalog.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "TesselPage/tessel_page.h"

namespace TESSEL {

namespace {

using KelpCommonNS::KelpName;
using KelpCommonNS::KelpNameTable;
using KelpCommonNS::KelpXmlEvent;
using KelpCommonNS::KelpXmlParser;

constexpr int xShift = 8;
constexpr int aShift = 12;
constexpr int unknownKind = 15;
constexpr int otherVersion = 10;

constexpr int withX(int version, int kind) { return version | kind << xShift; }
constexpr int withA(int version, int kind) { return version | kind << aShift; }

// PDF/X kinds that bring their own version, and PDF/A-1, which builds on 1.4.
constexpr int x1_2001 = withX(3, 1);
constexpr int x1a_2001 = withX(3, 2);
constexpr int x3_2002 = withX(3, 3);
constexpr int x1a_2003 = withX(4, 4);
constexpr int x2_2003 = withX(4, 5);
constexpr int x3_2003 = withX(4, 6);
constexpr int a1a = withA(4, 1);
constexpr int a1b = withA(4, 2);

constexpr char keyOutputIntents[] = "/OutputIntents";
constexpr char keyXVersion[] = "/GTS_PDFXVersion";
constexpr char keyAVersion[] = "/GTS_PDFAVersion";
constexpr char keyXConformance[] = "/GTS_PDFXConformance";

struct HintRow {
  const char* key;
  EPDFType type;
};

constexpr HintRow intentRows[] = {
    {"/Info", ePDFString},
    {"/DestOutputProfile", ePDFStream},
    {"/OutputConditionIdentifier", ePDFString},
    {"/RegistryName", ePDFString},
    {"/OutputCondition", ePDFString},
    {"/S", ePDFName},
    {"/ProfileName", ePDFString},
    {"/F", ePDFString},
    {"/FS", ePDFString},
    {"/ProfileCS", ePDFString},
    {"/CheckSum", ePDFString},
    {"/ICCVersion", ePDFString},
};

/// Runs a query. One that throws counts as failed: what it has found until then stays.
template <class Query>
void attempt(Query query) {
  try {
    query();
  } catch (const BaseException&) {
  }
}

std::unique_ptr<FindingHint> intentHint() {
  auto hint = std::make_unique<FindingHint>();
  for (const HintRow& row : intentRows) hint->insertHintInfo(row.key, row.type);
  return hint;
}

template <class Tokenizer>
Tokenizer tokensOf(const std::string& text) {
  Tokenizer found;
  found.Tokenize(text.data(), text.data() + text.size());
  return found;
}

int headerVersion(const std::string& header) {
  constexpr int knownVersions = 8;
  for (int minor = 0; minor < knownVersions; ++minor)
    if (aIncludeB(header, "PDF-1." + std::to_string(minor))) return minor;
  return otherVersion;
}

/// The bytes between "stream" and "endstream" of an object's text as it is stored.
std::string_view storedData(std::string_view text) {
  constexpr std::string_view word = PDF_RULES::stream_string;
  const std::size_t keyword = text.find(word);
  if (keyword == text.npos) return {};
  const std::size_t begin = keyword + word.size();
  const std::size_t end = text.find(PDF_RULES::endstream_string, begin);
  return end == text.npos ? std::string_view() : text.substr(begin, end - begin);
}

/// Walks XMP metadata for the PDF/A identification schema (ISO 19005-2, 6.6.4).
class PdfaClaim {
 public:
  /// @return the A kind of a claim to PDF/A-2 or PDF/A-3; 0 when there is none
  int read(KelpXmlParser& parser) {
    for (; !parser.isEndOfDocument(); parser.next()) {
      if (parser.getEventType() == KelpXmlEvent::startTag) takeStartTag(parser);
      if (parser.getEventType() != KelpXmlEvent::text || !field) continue;
      field->clear();
      parser.getText().toUTF8String(*field);
      field = nullptr;
      if (const int kind = kindOfClaim()) return kind;
    }
    return 0;
  }

 private:
  static constexpr const char* schema = "http://www.aiim.org/pdfa/ns/id/";

  void takeStartTag(const KelpXmlParser& parser) {
    const KelpName& name = parser.getName();
    if (name.is(shared("rdf"), shared("Description")) && declaresSchema(parser))
      descriptionDepth = parser.getDepth();
    if (name.getNamespaceUri() != schema || parser.getDepth() != descriptionDepth + 1) return;
    if (name.getLocalName() == "part") field = &part;
    if (name.getLocalName() == "amd") field = &amendment;
    if (name.getLocalName() == "conformance") field = &conformance;
  }

  static bool declaresSchema(const KelpXmlParser& parser) {
    for (int i = parser.getAttributeCount(); i-- > 0;)
      if (parser.getAttributeName(i).is(shared("xmlns"), shared("pdfaid")) &&
          parser.getAttributeValue(i) == icu::UnicodeString(schema))
        return true;
    return false;
  }

  int kindOfClaim() const {
    constexpr std::string_view levels = "ABU";
    const std::size_t level = conformance.size() == 1 ? levels.find(conformance) : levels.npos;
    if (level == levels.npos) return 0;
    if (part == "2") return firstOfPart2 + static_cast<int>(level);
    return part == "3" ? firstOfPart3 + static_cast<int>(level) : 0;
  }

  static const char* shared(std::string_view name) { return KelpNameTable::getSharedNameString(name); }

  static constexpr int firstOfPart2 = 3;
  static constexpr int firstOfPart3 = 6;
  static constexpr int nowhere = -2;

  int descriptionDepth = nowhere;  ///< of the last description that declares the schema
  std::string part;
  std::string amendment;
  std::string conformance;
  std::string* field = nullptr;  ///< that takes the next text
};

/// The A kind that the document's metadata claim; 0 when they make no claim or can't be read.
int claimOfMetadata(CSourFile& source) {
  const SObj& metadata = source.catalogObj->metadata;
  CDestFile text;
  if (metadata.objNum == 0 || !CObj(metadata).LocalObj(text, source, nullptr)) return 0;
  const std::string_view packet = storedData(text);
  if (packet.empty()) return 0;
  const auto parser = KelpCommonNS::KelpXmlUtil::getRootParser(KelpCommonNS::KelpMemStream(packet), nullptr,
                                                               std::string(), std::string());
  return parser ? PdfaClaim().read(*parser) : 0;
}

/// The results of both claims so far; 0: no claim.
struct Claims {
  int a = 0;
  int x = 0;
};

struct IntentRow {
  const char* subtype;
  Claims claims;
};

constexpr IntentRow claimingIntents[] = {{"/GTS_PDFX", {0, x1a_2001}}, {"/GTS_PDFA1", {a1a, 0}}};

std::optional<Claims> claimsOfIntents(const std::vector<std::unique_ptr<FindingHint>>& intents) {
  for (const auto& intent : intents)
    for (const IntentRow& row : claimingIntents)
      if (intent->getPropertyValue("/S") == row.subtype) return row.claims;
  return std::nullopt;
}

struct XRow {
  const char* text;
  int result;  ///< below `leastResult` a kind, which goes with the file's own version
};

constexpr int leastResult = 1 << xShift;

/// In the order in which they are looked for: "PDF/X-4" is a part of "PDF/X-4p".
constexpr XRow xRows[] = {
    {"PDF/X-1:2001", x1_2001}, {"PDF/X-1a:2001", x1a_2001},
    {"PDF/X-3:2002", x3_2002}, {"PDF/X-1a:2003", x1a_2003},
    {"PDF/X-2:2003", x2_2003}, {"PDF/X-3:2003", x3_2003},
    {"PDF/X-4p", 8},           {"PDF/X-4", 7},
    {"PDF/X-5g", 9},           {"PDF/X-5n", 10},
    {"PDF/X-5pg", 11},
};

int xResult(const std::string& claim, const std::string& conformance, int version) {
  for (const XRow& row : xRows) {
    if (!aIncludeB(claim, row.text)) continue;
    if (row.result == x1_2001 && aIncludeB(conformance, "PDF/X-1a:2001")) return x1a_2001;
    return row.result < leastResult ? withX(version, row.result) : row.result;
  }
  return withX(version, unknownKind);
}

int aResult(const std::string& claim, int version) {
  if (aIncludeB(claim, "PDF/A-1a")) return a1a;
  return aIncludeB(claim, "PDF/A-1b") ? a1b : withA(version, unknownKind);
}

/// What the information dictionary claims replaces what the intents do.
void takeInfoClaims(CSourFile& source, int version, Claims& claims) {
  FindingHint hint;
  for (const char* key : {keyXVersion, keyAVersion, keyXConformance}) hint.insertHintInfo(key, ePDFString);
  const SObj& info = source.fileInfo.info.identity();
  attempt([&] { FindingValue(hint, &source, info.objNum, info.genNum).find(true); });
  if (hint.getPropertyValueCount(keyXVersion) > 0)
    claims.x = xResult(hint.getPropertyValue(keyXVersion), hint.getPropertyValue(keyXConformance), version);
  if (hint.getPropertyValueCount(keyAVersion) > 0)
    claims.a = aResult(hint.getPropertyValue(keyAVersion), version);
}

/// Both claims in one result. Whether they go together is asked of the bits that they share, the version's
/// among them: claims that share none are not combined, and the X claim wins.
int combined(const Claims& claims, int version) {
  if ((claims.a & claims.x) == 0) {
    if (claims.x != 0) return claims.x;
    return claims.a != 0 ? claims.a : version;
  }
  if (claims.a != a1a && claims.a != a1b) return withA(version, unknownKind);
  for (const int x : {x1a_2003, x3_2003, x2_2003})
    if (claims.x == x) return claims.a | claims.x;
  return withX(version, unknownKind);
}

/// More than these have no index.
constexpr std::size_t mostIntents = std::numeric_limits<unsigned short>::max() + std::size_t{1};

/// All intents of a source share one budget: they may share their profile too.
void askText(FindingHint& hint, CSourFile* source, const yard::Token& dictionary, SearchBudget& budget) {
  FindingValue query(hint, source, std::string(dictionary.first, dictionary.second));
  query.shareBudget(budget);
  query.find(true);
}

void askObject(FindingHint& hint, CSourFile* source, const yard::Token& reference, SearchBudget& budget) {
  hint.insertHintInfo(keyOutputIntents, ePDFUnknown);
  const SObj intent = referenceFromText(reference.first, reference.second);
  FindingValue query(hint, source, intent.objNum, intent.genNum);
  query.shareBudget(budget);
  query.find(true);
}

}  // namespace

void findIntents(PageState& state) {
  CSourFile* const source = state.sourFile.get();
  FindingHint question;
  question.insertHintInfo(keyOutputIntents, ePDFArray);
  attempt([&] { FindingValue(question, source).find(true); });
  if (question.getPropertyValueCount(keyOutputIntents) == 0) return;
  const std::string array = question.getPropertyValue(keyOutputIntents);

  const auto dictionaries = tokensOf<yard::Tokenizer<PDF_RULES::MatchDictionaryObject>>(array);
  const auto references = tokensOf<yard::Tokenizer<PDF_RULES::MatchIndirectObject>>(array);
  const bool direct = !dictionaries.empty();
  const yard::TokenList& intents = direct ? static_cast<const yard::TokenList&>(dictionaries) : references;
  state.outputIntentsCount = static_cast<unsigned short>(intents.size());
  SearchBudget budget;
  for (const yard::Token& intent : intents.tokens()) {
    if (state.outputIntentHints.size() == mostIntents) return;
    FindingHint& hint = *state.outputIntentHints.emplace_back(intentHint());
    attempt(
        [&] { direct ? askText(hint, source, intent, budget) : askObject(hint, source, intent, budget); });
  }
}

int CTesselPage::getVersion() const {
  CSourFile& source = *state->sourFile;
  const int version = std::max(headerVersion(state->versionString), source.catalogObj->version);
  if (const int kind = claimOfMetadata(source)) return withA(version, kind);
  std::optional<Claims> claims = claimsOfIntents(state->outputIntentHints);
  if (!claims || source.fileInfo.info.identity().objNum == 0) return version;
  takeInfoClaims(source, version, *claims);
  return combined(*claims, version);
}

bool CTesselPage::isMarked() const { return state->sourFile->catalogObj->markInfo.marked; }

unsigned short CTesselPage::getOutputIntentsCount() const { return state->outputIntentsCount; }

std::string PageState::intentValue(unsigned short index, const char* key) const {
  return index < outputIntentHints.size() ? outputIntentHints[index]->getPropertyValue(key) : std::string();
}

void CTesselPage::getOPIInfo(unsigned short index, icu::UnicodeString& out) const {
  out = getXFString(state->intentValue(index, "/Info"));
}

void CTesselPage::getOPIOutputCondition(unsigned short index, icu::UnicodeString& out) const {
  out = getXFString(state->intentValue(index, "/OutputCondition"));
}

std::string CTesselPage::getOPIOutputConditionIdentifier(unsigned short index) const {
  return state->intentValue(index, "/OutputConditionIdentifier");
}

std::string CTesselPage::getOPIS(unsigned short index) const { return state->intentValue(index, "/S"); }

std::string CTesselPage::getOPIRegistryName(unsigned short index) const {
  return state->intentValue(index, "/RegistryName");
}

std::string CTesselPage::getOPIDestOutputProfile(unsigned short index) const {
  return state->intentValue(index, "/DestOutputProfile");
}

std::string CTesselPage::getOPIProfileName(unsigned short index) const {
  return state->intentValue(index, "/ProfileName");
}

std::string CTesselPage::getOPIF(unsigned short index) const { return state->intentValue(index, "/F"); }

std::string CTesselPage::getOPIFS(unsigned short index) const { return state->intentValue(index, "/FS"); }

std::string CTesselPage::getOPIProfileCS(unsigned short index) const {
  return state->intentValue(index, "/ProfileCS");
}

std::string CTesselPage::getOPICheckSum(unsigned short index) const {
  return state->intentValue(index, "/CheckSum");
}

std::string CTesselPage::getOPIICCVersion(unsigned short index) const {
  return state->intentValue(index, "/ICCVersion");
}

}  // namespace TESSEL
