#pragma once

#include <map>
#include <set>
#include <utility>
#include <vector>

#include "TesselPage/Structure/tessel_identitytable.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

class CSourFile;

/// Old identity to new identity, by the one rule: an object of the source's pageObjects that takes part in
/// the harvest has the identity of the old-to-new table, or else the start number plus its place among those
/// that have none there.
///
/// The table of the rule is never built whole: the objects without an entry in the old-to-new table are kept
/// apart
/// (`pending`), so that a page costs what it adds and not what earlier pages have brought.
class Numbering : public NumberSource {
 public:
  using Identity = std::pair<int, int>;
  using IdentityPair = std::pair<Identity, Identity>;

  /// Takes the source's changes since the last call into account.
  void follow(CSourFile& source);
  /// Enters pairs into the old-to-new table; a pair known earlier stays.
  void merge(const std::vector<IdentityPair>& pairs);
  /// The object's text is in the output under `newId`, so it needs none: both tables, where the key is
  /// absent.
  void share(const Identity& old, const Identity& newId);
  /// The object's text has been put into the map.
  /// @return whether it is the first time
  bool harvested(const Identity& old, const Identity& newId) { return harvestedObjects.insert(old, newId); }

  /// The object is to be numbered and written as one that nobody has met. Requires: follow.
  void forget(const Identity& old);

  bool isOld(const Identity& old) const { return old2NewObjects.contains(old); }
  bool isHarvested(const Identity& old) const { return harvestedObjects.contains(old); }

  /// Numbers the pending objects from `start` on, unless that is how they are numbered already.
  /// @return the first number behind them
  int number(int start);

  /// Objects of the harvest that the old-to-new table doesn't know, ascending.
  const std::set<Identity>& pendingObjects() const { return pending; }
  /// Objects of the old-to-new table that this object hasn't harvested: the host brought them.
  const std::set<Identity>& foreignObjects() const { return foreign; }

  const SObj* find(const SObj& object) const override;

  /// The new identity of an object that is in the output, or null.
  const Identity* inOutput(const Identity& old) const;

  /// Both tables in key order, the old-to-new table first.
  std::vector<IdentityPair> allPairs() const;

 private:
  void reconsider(const Identity& object);
  bool enterOld(const Identity& old, const Identity& newId);

  CSourFile* source = nullptr;
  IdentityMap<Identity> old2NewObjects;
  IdentityMap<Identity> harvestedObjects;
  std::set<Identity> pending;
  std::set<Identity> foreign;
  std::map<Identity, SObj> numbers;  ///< of the pending objects
  int numberedFrom = 0;
  bool numbered = false;
  mutable SObj answer;  ///< what find points at for an old object
};

}  // namespace TESSEL
