#include "TesselHost/host_sourceobjects.h"

#include "TesselHost/host_dictionary.h"

namespace TesselHost {

namespace {

// References to references are rare; a longer chain is one that closes.
constexpr int longestChain = 16;

}  // namespace

std::string SourceObjects::valueOf(const Identity& object) const {
  return std::string(valueAt(reader.getSourceObject(object)));
}

std::string SourceObjects::resolved(std::string_view value) const {
  std::string text(value);
  for (int steps = 0; steps < longestChain; ++steps) {
    const auto reference = referenceIn(text);
    if (!reference) return text;
    text = valueOf(*reference);
  }
  return {};
}

std::string SourceObjects::entry(std::string_view dictionary, std::string_view key) const {
  return resolved(valueOfKey(dictionary, key));
}

}  // namespace TesselHost
