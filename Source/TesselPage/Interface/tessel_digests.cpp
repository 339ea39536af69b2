#include "TesselPage/Interface/tessel_digests.h"

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_obj.h"
#include "TesselPage/Syntax/tessel_positionguard.h"
#include "TesselPage/tessel_page.h"

namespace TESSEL {

StreamDigest& StreamDigests::entry(CSourFile& source, const SObj& object) {
  const auto [slot, fresh] = known.try_emplace(object.identity());
  StreamDigest& result = slot->second;
  if (!fresh) return result;
  // Asked for in the middle of a copy too, whose place the source then has to keep.
  const PositionGuard place(source, PositionGuard::State::clear);
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
    const PositionGuard place(source, PositionGuard::State::clear);
    std::string text;
    CObj(object).ReadObj(text, source);
    if (!text.empty() && text.front() == '\n') text.erase(0, 1);
    if (!CTesselPage::isStreamObj(text, result.rawDigest)) result.rawDigest.clear();
  }
  return result.rawDigest;
}

}  // namespace TESSEL
