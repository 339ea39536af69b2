#include "TesselPage/Model/tessel_dpart.h"

#include <string>

#include "TesselPage/Model/tessel_harvest.h"
#include "TesselPage/Model/tessel_keyscan.h"
#include "TesselPage/Model/tessel_objectend.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_positionguard.h"

namespace TESSEL {

namespace {

/// Reads one document part.
class PartScan {
 public:
  PartScan(CDPart& reader, CSourFile& in) : part(reader), source(in), end(in, reader.id) {
    const bool entered = (reader.typeFlags & CObj::foundByTable) != 0 && !in.isSubSource;
    depth = DictDepth(entered ? 1 : 0);
  }

  bool atEnd() { return end.passed(); }
  Turn onReference(const SObj& ref);
  Turn onToken(const std::string& token);

 private:
  CDPart& part;
  CSourFile& source;
  ObjectEnd end;
  DictDepth depth;
  int brackets = 0;
  bool inParts = false;
  bool atStart = false;
};

Turn PartScan::onReference(const SObj& ref) {
  if (inParts && brackets > 0) {
    part.kids.push_back(ref);
  } else if (atStart) {
    part.page = ref;
    return Turn::success;
  }
  return Turn::goOn;
}

Turn PartScan::onToken(const std::string& token) {
  if (token.empty()) return Turn::failure;
  if (token == kwendobj || depth.closes(token)) return Turn::success;
  if (token == nmDParts) inParts = true;
  if (token == nmStart) atStart = true;
  if (token == "[") ++brackets;
  if (token == "]" && --brackets == 0 && inParts) return Turn::success;
  skipIfString(source, part.id, token, StringsSkipped::both);
  return Turn::goOn;
}

/// Looks for the reference behind /DPartRootNode.
class PartRootScan {
 public:
  PartRootScan(CDPartRoot& reader, CSourFile& in) : root(reader), source(in), end(in, reader.id) {}

  bool atEnd() { return end.passed(); }
  Turn onReference(const SObj&) { return Turn::goOn; }
  Turn onToken(const std::string& token) {
    if (token.empty()) return Turn::failure;
    if (token == nmDPartRootNode) {
      tryReference(source, node);
      return Turn::success;
    }
    skipIfString(source, root.id, token, StringsSkipped::both);
    return token == kwendobj || depth.closes(token) ? Turn::success : Turn::goOn;
  }

  SObj node;

 private:
  CDPartRoot& root;
  CSourFile& source;
  ObjectEnd end;
  DictDepth depth;
};

}  // namespace

bool CDPart::scan(CSourFile& source) {
  PartScan part(*this, source);
  return scanKeys(source, part) && source.good();
}

// The first child's page counts also over a page of its own.
bool CDPart::settle() {
  if (!children.empty()) page = children.front();
  return true;
}

bool CDPart::Read(CSourFile& source) {
  CSourFile& main = source.mainSource();
  return scan(source) && PageTreeReader<CDPart>(main, main.destLookup.partPages).readBelow(*this);
}

bool CDPartRoot::Read(CSourFile& source) {
  CSourFile& main = source.mainSource();
  PartRootScan root(*this, source);
  if (!scanKeys(source, root)) return false;
  if (root.node.objNum == 0) return source.good();
  return PageTreeReader<CDPart>(main, main.destLookup.partPages).read(root.node);
}

void noteDocumentParts(CSourFile& source) {
  DestLookup& lookup = source.mainSource().destLookup;
  if (lookup.partTree || !lookup.partPages.empty()) return;
  PositionGuard back(source, PositionGuard::State::clear);
  SObj ref;
  if (tryReference(source, ref)) {
    lookup.partTree = ref;
    return;
  }
  CDPartRoot direct;
  direct.typeFlags = 0;
  direct.fromStream(source);
}

const SObj* documentPartPage(CSourFile& main, const SObj& part) {
  DestLookup& lookup = main.destLookup;
  if (lookup.partTree) {
    PositionGuard back(main, PositionGuard::State::clear);
    CDPartRoot root;
    root.id = *lookup.partTree;
    lookup.partTree.reset();
    root.fromStream(main);
  }
  const auto found = lookup.partPages.find(part);
  return found == lookup.partPages.end() ? nullptr : &found->second;
}

}  // namespace TESSEL
