#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "TesselHost/host_json.h"
#include "TesselHost/host_source.h"

namespace TesselHost {

/// What a source claims to be. A claim, not a proof.
class Conformance {
 public:
  explicit Conformance(const Source& source);

  /// Such as "PDF/A-2b" (ISO 19005) and "PDF/X-4" (ISO 15930); empty when there is no claim.
  std::string_view pdfa() const;
  std::string_view pdfx() const;
  /// The part of ISO 19005 that is claimed, of parts 2 and 3 only, and its level "A", "B" or "U"; 0 and empty
  /// for any other claim.
  int pdfaPart() const;
  std::string_view pdfaLevel() const;
  /// Whether the document is tagged (ISO 32000-2, 14.7).
  bool tagged() const { return isTagged; }

 private:
  int pdfaKind;
  int pdfxKind;
  bool isTagged;
};

/// An ICC profile (ICC.1), as far as a PDF needs to know of it.
class IccProfile {
 public:
  IccProfile() = default;
  explicit IccProfile(std::string someBytes) : content(std::move(someBytes)) {}

  const std::string& bytes() const { return content; }
  bool empty() const { return content.empty(); }
  /// The data colour space of its header, such as "RGB" or "CMYK"; empty when it has no header.
  std::string colorSpace() const;
  /// The components of that; 0 when a PDF has no use for it (ISO 32000-2, table 65).
  int components() const;
  /// SHA-256 of its bytes, in hexadecimal digits.
  std::string checksum() const;

  friend bool operator==(const IccProfile&, const IccProfile&) = default;

 private:
  std::string content;
};

/// An output intent (ISO 32000-2, table 401); texts are in UTF-8 and empty where there is no entry.
struct OutputIntent {
  std::string subtype;     ///< such as "GTS_PDFX"
  std::string identifier;  ///< of the output condition
  std::string condition;
  std::string registry;
  std::string info;
  IccProfile profile;  ///< empty when it has none, or when it can't be read

  friend bool operator==(const OutputIntent&, const OutputIntent&) = default;
};

/// The output intents of a source, in its order.
std::vector<OutputIntent> outputIntentsOf(const Source& source);

/// Claims and output intents for a person, each on a line of its own.
std::string conformanceText(const Source& source);

/// The same as entries of a JSON object: "tagged", "claims" and "outputIntents".
void writeConformance(JsonWriter& json, const Source& source);

/// The bytes of the profile of an output intent, counted from 1. Throws SourceError when there is none.
std::string profileOf(const Source& source, int number);

}  // namespace TesselHost
