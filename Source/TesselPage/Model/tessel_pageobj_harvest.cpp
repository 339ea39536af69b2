#include <list>
#include <memory>
#include <set>
#include <vector>

#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Model/tessel_pageobj.h"
#include "TesselPage/Model/tessel_pages.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_positionguard.h"

namespace TESSEL {

namespace {

/// Behind an array's "[", or in front of a reference that is the whole object. False for anything else.
bool opensArray(CSourFile& body) {
  const std::streampos start = body.tellg();
  SObj ref;
  if (tryReference(body, ref)) {
    body.seekg(start);
    return true;
  }
  char byte = 0;
  readByte(body, byte);
  return byte == '[';
}

/// What a climb learns of the node. Only a /Pages node is kept: reading any other changes the source's
/// rotation.
ResourceNode resourceNode(CSourFile& main, const SObj& object) {
  const auto known = main.resourceNodes.find(object);
  if (known != main.resourceNodes.end()) return known->second;
  CPages reader;
  reader.id = object;
  main.clear();
  reader.fromStream(main);
  ResourceNode node{reader.ownResources, reader.resourceReferences, reader.parent};
  if (reader.type == nmPages) main.resourceNodes.emplace(object, node);
  return node;
}

}  // namespace

// A member that isn't an array ends the walk, also when arrays still wait: those are in the list already.
bool CPage::ReadTree(CSourFile& source, const SObj& start, std::set<SObj>& seen, std::vector<SObj>* found) {
  PositionGuard back(source, PositionGuard::State::clear);
  IdentityGuard own(*this);
  std::list<SObj> waiting{start};
  for (; !waiting.empty(); waiting.pop_front()) {
    id = waiting.front();
    source.clear();
    std::unique_ptr<CSourFile> memory;
    CSourFile* body = ParseObj(source, memory, id);
    if (!body) return false;
    if (!opensArray(*body)) return true;
    forEachReference(*body, id, StringsSkipped::none, [&](const SObj& ref) {
      if (!seen.insert(ref).second) return;
      if (found) found->push_back(ref);
      waiting.push_back(ref);
    });
  }
  return true;
}

bool CPage::getParentResource(CSourFile& source, const SObj& parent, SObj& resources,
                              std::vector<SObj>& references) {
  CSourFile& main = source.mainSource();
  PositionGuard back(main, PositionGuard::State::clear);
  std::set<SObj> climbed;
  for (SObj at = parent; at.objNum != 0 && climbed.insert(at).second;) {
    const ResourceNode node = resourceNode(main, at);
    if (node.own.objNum != 0) {
      resources = node.own;
      return true;
    }
    if (!node.references.empty()) {
      references = node.references;
      return false;
    }
    at = node.parent;
  }
  return false;
}

bool CPage::ReadObjs(CSourFile* main, CSourFile& source, std::list<SObj>& work) {
  forEachReference(source, id, StringsSkipped::literalOnly, [&](const SObj& ref) {
    if (main->isPageObject(ref) || main->isPage(ref)) return;
    if (isTakenOut(*main, source, ref))
      main->pieceFilteredObjs.insert(ref);
    else
      work.push_back(ref);
    main->insertFileObject(ref);
  });
  return true;
}

bool CPage::ReadOthers(CSourFile& source, std::list<SObj>& work) {
  CSourFile& main = source.mainSource();
  return harvest(*this, main, work, MissingObjects::dropAnnotations,
                 [&](CSourFile& body) { return ReadObjs(&main, body, work); });
}

bool CPage::isTakenOut(CSourFile& main, CSourFile& reading, const SObj& ref) const {
  if (selectorA.empty() || selectorB.empty() || selectorC.empty()) return false;
  const std::ios_base::iostate state = reading.rdstate();
  PositionGuard back(reading, PositionGuard::State::clear);
  const bool matches =
      PieceInfoSelector{selectorA, selectorB, selectorC, ref.objNum, ref.genNum, &main}.match();
  back.restore();
  reading.clear(state);
  return matches;
}

}  // namespace TESSEL
