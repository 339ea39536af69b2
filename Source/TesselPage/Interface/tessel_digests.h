#pragma once

#include <map>
#include <string>
#include <utility>

#include "TesselPage/Structure/tessel_identitytable.h"
#include "TesselPage/Structure/tessel_sobj.h"

namespace TESSEL {

class CSourFile;

/// What is known of one object as a stream that may be shared.
struct StreamDigest {
  std::string digest;     ///< of its plain text; empty when it isn't a shareable stream
  bool dropped = false;   ///< writing it with an empty table dropped a reference
  std::string rawDigest;  ///< of its raw text, for an object whose plain text gave none
  bool shareable() const { return !digest.empty(); }
};

/// Digests of a source's objects, each taken once and only when it is asked for.
class StreamDigests {
 public:
  /// The digest of the object's plain text: written with an empty table, in the form that the object map
  /// holds. Valid until clear.
  const StreamDigest& plain(CSourFile& source, const SObj& object);
  /// The plain digest, or else that of the raw text; empty when the object isn't a shareable stream in either
  /// form.
  const std::string& any(CSourFile& source, const SObj& object);
  /// Forgets all, as when the source's key has changed.
  void clear() { *this = {}; }

 private:
  std::map<std::pair<int, int>, StreamDigest> known;  ///< of objects with a digest in either form
  // Most objects are no streams.
  IdentitySet plainTested;
  IdentitySet rawTested;
};

}  // namespace TESSEL
