#include "TesselHost/host_outputintent.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <map>

#include "TesselHost/host_error.h"
#include "TesselHost/host_text.h"

namespace TesselHost {

namespace {

constexpr PdfVersion pdf17{1, 7};
constexpr std::string_view pdfaSubtype = "GTS_PDFA1";
// Far beyond any real one.
constexpr std::size_t longestProfile = std::size_t{256} << 20U;

/// Metadata of a PDF/A file (ISO 19005-2, 6.6.4). A reader of files may not need the blanks that a packet may
/// be edited in.
constexpr std::string_view packetForm =
    "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
    "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
    " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
    "  <rdf:Description rdf:about=\"\" xmlns:pdfaid=\"http://www.aiim.org/pdfa/ns/id/\">\n"
    "   <pdfaid:part>{}</pdfaid:part>\n"
    "   <pdfaid:conformance>{}</pdfaid:conformance>\n"
    "  </rdf:Description>\n"
    "  <rdf:Description rdf:about=\"\" xmlns:pdf=\"http://ns.adobe.com/pdf/1.3/\">\n"
    "   <pdf:Producer>tessel</pdf:Producer>\n"
    "  </rdf:Description>\n"
    " </rdf:RDF>\n"
    "</x:xmpmeta>\n"
    "<?xpacket end=\"r\"?>";

/// Wrong usage where there is none: the name may be a misspelt word of the option.
std::string contentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw UsageError(fmt::format("{}: the profile can't be read: {}", path, std::strerror(errno)));
  std::string bytes;
  std::array<char, 1U << 16U> block{};
  while (in.read(block.data(), block.size()), in.gcount() > 0) {
    bytes.append(block.data(), static_cast<std::size_t>(in.gcount()));
    if (bytes.size() > longestProfile) throw UsageError(path + ": too large for an ICC profile");
  }
  if (in.bad()) throw UsageError(path + ": the profile can't be read");
  return bytes;
}

OutputIntent intentFromFile(const std::string& path) {
  OutputIntent intent;
  intent.subtype = pdfaSubtype;
  // No registry knows the condition, so that the profile alone tells it (ISO 32000-2, table 401).
  intent.identifier = "Custom";
  intent.info = "Custom";
  intent.profile = IccProfile(contentOf(path));
  if (intent.profile.components() == 0)
    throw UsageError(path + ": no ICC profile of grey, RGB, Lab or CMYK colours");
  return intent;
}

std::string entry(std::string_view key, const std::string& utf8) {
  return utf8.empty() ? std::string() : fmt::format("/{} {}", key, textString(utf8));
}

/// Writes each profile once.
class IntentWriter {
 public:
  explicit IntentWriter(ObjectWriter& aWriter) : writer(aWriter) {}

  std::string dictionaryOf(const OutputIntent& intent) {
    return fmt::format("<</Type/OutputIntent/S/{}{}{}{}{}{}>>", intent.subtype,
                       entry("OutputConditionIdentifier", intent.identifier),
                       entry("OutputCondition", intent.condition), entry("RegistryName", intent.registry),
                       entry("Info", intent.info), profileEntry(intent.profile));
  }

 private:
  std::string profileEntry(const IccProfile& profile) {
    if (profile.components() == 0) return {};
    const auto [place, isNew] = numbers.try_emplace(profile.bytes(), 0);
    if (isNew) {
      place->second = writer.reserve();
      writer.writePackedStream(place->second, fmt::format("/N {}", profile.components()), profile.bytes());
    }
    return "/DestOutputProfile " + referenceTo(place->second);
  }

  ObjectWriter& writer;
  std::map<std::string, int> numbers;
};

bool isPlainName(const std::string& name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
  });
}

/// Intents that can be written: a name of a kind, and a profile that a PDF has a use for, if any.
std::vector<OutputIntent> usable(std::vector<OutputIntent> intents) {
  const auto unusable = [](const OutputIntent& intent) {
    return !isPlainName(intent.subtype) || (!intent.profile.empty() && intent.profile.components() == 0);
  };
  intents.erase(std::remove_if(intents.begin(), intents.end(), unusable), intents.end());
  return intents;
}

}  // namespace

std::optional<IntentChoice> IntentChoice::parse(const std::string& text) {
  if (text.empty()) return std::nullopt;
  if (text == "from-source") return IntentChoice{};
  if (text == "none") return IntentChoice{Kind::none, {}};
  return IntentChoice{Kind::profile, text};
}

void SharedClaim::add(const Conformance& claims) {
  const std::string_view own = claims.pdfaLevel() == "A" ? "U" : claims.pdfaLevel();
  if (!any) {
    part = claims.pdfaPart();
    level = own;
  }
  any = true;
  if (claims.pdfaPart() != part) part = 0;
  if (own != level) level = "B";
}

OutputClaims::OutputClaims(const IntentChoice& choice, const std::vector<const Source*>& sources,
                           Observer& observer) {
  for (const Source* source : sources) claim.add(Conformance(*source));
  if (choice.kind == IntentChoice::Kind::profile) intents.push_back(intentFromFile(choice.file));
  if (choice.kind != IntentChoice::Kind::fromSource) return;
  ofAllSources = true;
  for (const Source* source : sources) {
    std::vector<OutputIntent> own = usable(outputIntentsOf(*source));
    if (own != intents && source != sources.front()) ofAllSources = false;
    if (own.empty() || own == intents) continue;
    if (!intents.empty()) {
      observer.warn(source->path() +
                    ": has other output intents than the inputs before it; the output gets none");
      intents.clear();
      return;
    }
    intents = std::move(own);
  }
}

bool OutputClaims::bearsClaimOut(const ObjectWriter& writer, PdfVersion version,
                                 std::string_view catalog) const {
  const bool colours = std::any_of(intents.begin(), intents.end(), [](const OutputIntent& intent) {
    return intent.subtype == pdfaSubtype && !intent.profile.empty();
  });
  const bool plain =
      catalog.find("/AcroForm") == catalog.npos && catalog.find("/OCProperties") == catalog.npos;
  return claim.part != 0 && ofAllSources && colours && plain && version <= pdf17 &&
         writer.protection() == nullptr && !writer.isAscii();
}

std::string OutputClaims::catalogEntries(ObjectWriter& writer, PdfVersion version,
                                         std::string_view catalog) const {
  std::string entries;
  IntentWriter intentWriter(writer);
  for (const OutputIntent& intent : intents) entries += intentWriter.dictionaryOf(intent);
  if (!entries.empty()) entries = "/OutputIntents[" + entries + "]";
  if (!bearsClaimOut(writer, version, catalog)) return entries;
  const int metadata = writer.reserve();
  // Metadata stay readable for programs that know no filters.
  writer.writeStream(metadata, "/Type/Metadata/Subtype/XML",
                     fmt::format(packetForm, claim.part, claim.level));
  return entries + "/Metadata " + referenceTo(metadata);
}

std::string OutputClaims::text() const {
  std::string text = fmt::format("{}{}", claim.part, claim.level);
  for (const OutputIntent& intent : intents)
    text += fmt::format(" {} {} {}", intent.subtype, intent.identifier, intent.profile.checksum());
  return text;
}

}  // namespace TesselHost
