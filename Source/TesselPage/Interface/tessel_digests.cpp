#include "TesselPage/Interface/tessel_digests.h"

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_obj.h"
#include "TesselPage/Syntax/tessel_positionguard.h"
#include "TesselPage/tessel_page.h"

namespace TESSEL {

namespace {

const StreamDigest noDigest;

/// The object as it stands, in the form that the object map holds.
std::string rawText(CSourFile& source, const SObj& object) {
  // Asked for in the middle of a copy too, whose place the source then has to keep.
  const PositionGuard place(source, PositionGuard::State::clear);
  std::string text;
  CObj(object).ReadObj(text, source);
  if (!text.empty() && text.front() == '\n') text.erase(0, 1);
  return text;
}

}  // namespace

const StreamDigest& StreamDigests::plain(CSourFile& source, const SObj& object) {
  const auto identity = object.identity();
  if (plainTested.insert(identity)) {
    std::string text;
    StreamDigest result;
    plainText(source, object, text, result.dropped);
    if (CTesselPage::isStreamObj(text, result.digest)) known.emplace(identity, std::move(result));
  }
  const auto found = known.find(identity);
  return found == known.end() ? noDigest : found->second;
}

const std::string& StreamDigests::any(CSourFile& source, const SObj& object) {
  const StreamDigest& result = plain(source, object);
  if (result.shareable()) return result.digest;
  const auto identity = object.identity();
  if (!rawTested.insert(identity)) return result.rawDigest;
  std::string digest;
  if (!CTesselPage::isStreamObj(rawText(source, object), digest)) return noDigest.rawDigest;
  return known[identity].rawDigest = std::move(digest);
}

}  // namespace TESSEL
