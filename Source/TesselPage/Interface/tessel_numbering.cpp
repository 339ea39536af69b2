#include "TesselPage/Interface/tessel_numbering.h"

#include "TesselPage/Structure/tessel_objflags.h"
#include "TesselPage/Structure/tessel_sourfile.h"

namespace TESSEL {

namespace {

/// The entry of pageObjects that takes part in the harvest, or null.
const SObj* harvestEntry(const CSourFile& source, const SObj& object) {
  const auto found = source.pageObjects.find(object);
  if (found == source.pageObjects.end() || found->hasAny(ObjFlag::outsideHarvest)) return nullptr;
  return &*found;
}

}  // namespace

void Numbering::reconsider(const Identity& object) {
  const bool waits = harvestEntry(*source, SObj(object.first, object.second)) && !isOld(object);
  const bool changed = waits ? pending.insert(object).second : pending.erase(object) != 0;
  if (changed) numbered = false;
}

void Numbering::follow(CSourFile& changed) {
  source = &changed;
  for (const SObj& object : changed.newPageObjects) reconsider(object.identity());
  for (const SObj& object : changed.erasedPageObjects) reconsider(object.identity());
  changed.newPageObjects.clear();
  changed.erasedPageObjects.clear();
}

bool Numbering::enterOld(const Identity& old, const Identity& newId) {
  if (!old2NewObjects.insert(old, newId)) return false;
  if (pending.erase(old) != 0) numbered = false;
  return true;
}

void Numbering::merge(const std::vector<IdentityPair>& pairs) {
  for (const auto& [old, newId] : pairs)
    if (enterOld(old, newId) && !isHarvested(old)) foreign.insert(old);
}

void Numbering::share(const Identity& old, const Identity& newId) {
  enterOld(old, newId);
  harvested(old, newId);
  foreign.erase(old);
}

void Numbering::forget(const Identity& old) {
  old2NewObjects.erase(old);
  harvestedObjects.erase(old);
  foreign.erase(old);
  reconsider(old);
}

int Numbering::number(int start) {
  if (!numbered || numberedFrom != start) {
    numbers.clear();
    int next = start;
    for (const Identity& object : pending) numbers.emplace_hint(numbers.end(), object, SObj(next++, 0));
    numberedFrom = start;
    numbered = true;
  }
  return start + static_cast<int>(pending.size());
}

const SObj* Numbering::find(const SObj& object) const {
  const Identity old = object.identity();
  if (const auto fresh = numbers.find(old); fresh != numbers.end()) return &fresh->second;
  const Identity* known = old2NewObjects.find(old);
  if (!known || !source || !harvestEntry(*source, object)) return nullptr;
  answer = SObj(known->first, known->second);
  return &answer;
}

const Numbering::Identity* Numbering::inOutput(const Identity& old) const {
  const Identity* const newId = old2NewObjects.find(old);
  return newId ? newId : harvestedObjects.find(old);
}

std::vector<Numbering::IdentityPair> Numbering::allPairs() const {
  std::vector<IdentityPair> pairs;
  old2NewObjects.appendTo(pairs);
  harvestedObjects.appendTo(pairs);
  return pairs;
}

}  // namespace TESSEL
