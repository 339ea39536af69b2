#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "TesselHost/host_conformance.h"
#include "TesselHost/host_objects.h"
#include "TesselHost/host_observer.h"
#include "TesselHost/host_source.h"

namespace TesselHost {

/// Where the output intents of an output come from.
struct IntentChoice {
  enum class Kind { fromSource, none, profile };
  Kind kind = Kind::fromSource;
  std::string file;  ///< the ICC profile, of kind `profile`

  /// "from-source", "none" or the path of a file. Nothing for an empty text.
  static std::optional<IntentChoice> parse(const std::string& text);
};

/// The claim to PDF/A-2 or PDF/A-3 that all of some sources make, at the lowest of their levels. The output
/// isn't tagged, so level A comes down to U (ISO 19005-2, 6.7).
struct SharedClaim {
  int part = 0;  ///< of ISO 19005; 0: they make no claim together
  std::string_view level;

  void add(const Conformance& claims);

 private:
  bool any = false;
};

/// What an output says about its colours and about the standard that it keeps to.
class OutputClaims {
 public:
  /// Throws UsageError when the profile that was asked for can't be used. Warns in one line when the sources
  /// have different output intents; the output then has none. The sources aren't needed any more behind this.
  OutputClaims(const IntentChoice& choice, const std::vector<const Source*>& sources, Observer& observer);

  /// Writes the output intents, and metadata with the sources' claim to PDF/A when the output bears it out:
  /// it isn't encrypted, says that it is binary (ISO 19005-2, 6.1.2), is of a version up to 1.7, has the
  /// output intents of all its sources, one of them with a profile for PDF/A, and neither fields nor layers.
  /// @param catalog  the entries that the catalog has so far
  /// @return entries for the catalog
  std::string catalogEntries(ObjectWriter& writer, PdfVersion version, std::string_view catalog) const;

  /// What tells this output from others.
  std::string text() const;

 private:
  bool bearsClaimOut(const ObjectWriter& writer, PdfVersion version, std::string_view catalog) const;

  std::vector<OutputIntent> intents;
  bool ofAllSources = false;  ///< every source has these intents
  SharedClaim claim;
};

}  // namespace TesselHost
