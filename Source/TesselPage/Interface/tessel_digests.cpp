#include "TesselPage/Interface/tessel_digests.h"

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_obj.h"
#include "TesselPage/tessel_page.h"

namespace TESSEL {

StreamDigest& StreamDigests::entry(CSourFile& source, const SObj& object) {
  const auto [place, fresh] = known.try_emplace(object.identity());
  StreamDigest& result = place->second;
  if (!fresh) return result;
  std::string text;
  plainText(source, object, text, result.dropped);
  if (!CTesselPage::isStreamObj(text, result.digest)) result.digest.clear();
  return result;
}

const StreamDigest& StreamDigests::plain(CSourFile& source, const SObj& object) {
  return entry(source, object);
}

const std::string& StreamDigests::any(CSourFile& source, const SObj& object) {
  StreamDigest& result = entry(source, object);
  if (result.shareable()) return result.digest;
  if (!result.rawTested) {
    result.rawTested = true;
    std::string text;
    CObj(object).ReadObj(text, source);
    if (!text.empty() && text.front() == '\n') text.erase(0, 1);
    if (!CTesselPage::isStreamObj(text, result.rawDigest)) result.rawDigest.clear();
  }
  return result.rawDigest;
}

}  // namespace TESSEL
