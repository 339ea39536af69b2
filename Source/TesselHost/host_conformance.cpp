#include "TesselHost/host_conformance.h"

#include <fmt/format.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>

#include "TesselHost/host_error.h"
#include "TesselHost/host_hash.h"
#include "TesselHost/host_text.h"

namespace TesselHost {

namespace {

using TESSEL::CTesselPage;

constexpr unsigned kindMask = 15;
constexpr int pdfxShift = 8;
constexpr int pdfaShift = 12;

struct PdfaKind {
  std::string_view name;
  int part = 0;
  std::string_view level;
};

// By the kinds of CTesselPage::getVersion; the last one stands for claims of no known kind.
constexpr std::array<PdfaKind, kindMask + 1> pdfaKinds = {{{"", 0, ""},
                                                           {"PDF/A-1a", 0, ""},
                                                           {"PDF/A-1b", 0, ""},
                                                           {"PDF/A-2a", 2, "A"},
                                                           {"PDF/A-2b", 2, "B"},
                                                           {"PDF/A-2u", 2, "U"},
                                                           {"PDF/A-3a", 3, "A"},
                                                           {"PDF/A-3b", 3, "B"},
                                                           {"PDF/A-3u", 3, "U"},
                                                           {"", 0, ""},
                                                           {"", 0, ""},
                                                           {"", 0, ""},
                                                           {"", 0, ""},
                                                           {"", 0, ""},
                                                           {"", 0, ""},
                                                           {"PDF/A of an unknown kind", 0, ""}}};
constexpr std::array<std::string_view, kindMask + 1> pdfxKinds = {"",
                                                                  "PDF/X-1:2001",
                                                                  "PDF/X-1a:2001",
                                                                  "PDF/X-3:2002",
                                                                  "PDF/X-1a:2003",
                                                                  "PDF/X-2:2003",
                                                                  "PDF/X-3:2003",
                                                                  "PDF/X-4",
                                                                  "PDF/X-4p",
                                                                  "PDF/X-5g",
                                                                  "PDF/X-5n",
                                                                  "PDF/X-5pg",
                                                                  "",
                                                                  "",
                                                                  "",
                                                                  "PDF/X of an unknown kind"};

int kindAt(int version, int shift) {
  return static_cast<int>(static_cast<unsigned>(version) >> static_cast<unsigned>(shift) & kindMask);
}

/// A string as the library stores it: without its outer parentheses when it stands in the intent itself, with
/// them when it stands behind a reference, in hexadecimal with its brackets. An escaped parenthesis at the
/// end of the text went with the outer ones, and left its backslash.
std::string utf8Of(const std::string& stored) {
  if (stored.empty()) return {};
  if (stored.front() == '<' || stored.front() == '(') return utf8OfString(stored);
  const std::size_t backslashes = stored.size() - (stored.find_last_not_of('\\') + 1);
  return utf8OfString("(" + stored + (backslashes % 2 == 1 ? "))" : ")"));
}

std::string utf8Of(const icu::UnicodeString& text) {
  std::string utf8;
  text.toUTF8String(utf8);
  const bool lost = utf8.find('\0') != std::string::npos;
  const bool plain = std::all_of(utf8.begin(), utf8.end(), [](char c) { return c >= ' ' && c <= '~'; });
  // Escapes stay in the text; UTF-16 whose high bytes are zero doesn't come through.
  if (lost) return {};
  return plain && utf8.find('\\') != std::string::npos ? utf8Of(utf8) : utf8;
}

OutputIntent intentAt(const CTesselPage& reader, unsigned short index) {
  icu::UnicodeString condition;
  icu::UnicodeString info;
  reader.getOPIOutputCondition(index, condition);
  reader.getOPIInfo(index, info);
  const std::string subtype = reader.getOPIS(index);
  return {subtype.empty() ? subtype : subtype.substr(1),
          utf8Of(reader.getOPIOutputConditionIdentifier(index)),
          utf8Of(condition),
          utf8Of(reader.getOPIRegistryName(index)),
          utf8Of(info),
          IccProfile(reader.getOPIDestOutputProfile(index))};
}

std::string claimText(const Conformance& claims) {
  std::string text;
  for (const std::string_view claim : {claims.pdfa(), claims.pdfx()})
    if (!claim.empty()) text += fmt::format("{}{}", text.empty() ? "  claims to be " : " and ", claim);
  return text + (text.empty() ? "  " : ", ") + (claims.tagged() ? "tagged\n" : "not tagged\n");
}

std::string profileText(const IccProfile& profile) {
  if (profile.empty()) return ", no profile";
  const std::string space = profile.colorSpace();
  return fmt::format(", profile of {} bytes, {}, SHA-256 {}", profile.bytes().size(),
                     space.empty() ? "no ICC header" : space, profile.checksum());
}

std::string intentText(std::size_t number, const OutputIntent& intent) {
  std::string text = fmt::format("  output intent {}: {}", number, intent.subtype);
  for (const auto& [name, value] : {std::pair("condition", &intent.identifier),
                                    {"that is", &intent.condition},
                                    {"registry", &intent.registry},
                                    {"info", &intent.info}})
    if (!value->empty()) text += fmt::format(", {} {}", name, *value);
  return text + profileText(intent.profile) + "\n";
}

void writeText(JsonWriter& json, std::string_view key, std::string_view text) {
  json.key(key);
  if (text.empty())
    json.null();
  else
    json.value(text);
}

void writeProfile(JsonWriter& json, const IccProfile& profile) {
  json.key("profile");
  if (profile.empty()) {
    json.null();
    return;
  }
  json.beginObject().key("bytes").value(static_cast<long long>(profile.bytes().size()));
  writeText(json, "colorSpace", profile.colorSpace());
  json.key("sha256").value(profile.checksum()).endObject();
}

void writeIntent(JsonWriter& json, const OutputIntent& intent) {
  json.beginObject();
  writeText(json, "subtype", intent.subtype);
  writeText(json, "identifier", intent.identifier);
  writeText(json, "condition", intent.condition);
  writeText(json, "registry", intent.registry);
  writeText(json, "info", intent.info);
  writeProfile(json, intent.profile);
  json.endObject();
}

}  // namespace

Conformance::Conformance(const Source& source)
    : pdfaKind(kindAt(source.pages().getVersion(), pdfaShift)),
      pdfxKind(kindAt(source.pages().getVersion(), pdfxShift)),
      isTagged(source.pages().isMarked()) {}

std::string_view Conformance::pdfa() const { return pdfaKinds[static_cast<std::size_t>(pdfaKind)].name; }
std::string_view Conformance::pdfx() const { return pdfxKinds[static_cast<std::size_t>(pdfxKind)]; }
int Conformance::pdfaPart() const { return pdfaKinds[static_cast<std::size_t>(pdfaKind)].part; }
std::string_view Conformance::pdfaLevel() const {
  return pdfaKinds[static_cast<std::size_t>(pdfaKind)].level;
}

std::string IccProfile::colorSpace() const {
  // ICC.1:2022, table 17
  constexpr std::size_t headerBytes = 128;
  constexpr std::size_t spaceAt = 16;
  constexpr std::size_t signatureAt = 36;
  constexpr std::size_t wordBytes = 4;
  if (content.size() < headerBytes || content.compare(signatureAt, wordBytes, "acsp") != 0) return {};
  std::string space = content.substr(spaceAt, wordBytes);
  space.erase(space.find_last_not_of(' ') + 1);
  return space;
}

int IccProfile::components() const {
  constexpr std::pair<std::string_view, int> spaces[] = {{"GRAY", 1}, {"RGB", 3}, {"Lab", 3}, {"CMYK", 4}};
  for (const auto& [name, count] : spaces)
    if (name == colorSpace()) return count;
  return 0;
}

std::string IccProfile::checksum() const { return sha256Hex(content); }

std::vector<OutputIntent> outputIntentsOf(const Source& source) {
  std::vector<OutputIntent> intents;
  for (unsigned short i = 0; i < source.pages().getOutputIntentsCount(); ++i)
    intents.push_back(intentAt(source.pages(), i));
  return intents;
}

std::string conformanceText(const Source& source) {
  std::string text = claimText(Conformance(source));
  std::size_t number = 0;
  for (const OutputIntent& intent : outputIntentsOf(source)) text += intentText(++number, intent);
  return text;
}

void writeConformance(JsonWriter& json, const Source& source) {
  const Conformance claims(source);
  json.key("tagged").value(claims.tagged()).key("claims").beginArray();
  for (const std::string_view claim : {claims.pdfa(), claims.pdfx()})
    if (!claim.empty()) json.value(claim);
  json.endArray().key("outputIntents").beginArray();
  for (const OutputIntent& intent : outputIntentsOf(source)) writeIntent(json, intent);
  json.endArray();
}

std::string profileOf(const Source& source, int number) {
  const auto count = static_cast<int>(source.pages().getOutputIntentsCount());
  if (number < 1 || number > count)
    throw SourceError(source.path(), count == 0 ? "it has no output intent"
                                                : fmt::format("its output intents are 1 to {}", count));
  std::string profile = source.pages().getOPIDestOutputProfile(static_cast<unsigned short>(number - 1));
  if (profile.empty())
    throw SourceError(source.path(), fmt::format("its output intent {} has no profile", number));
  return profile;
}

}  // namespace TesselHost
