#pragma once

#include "TesselPage/Model/tessel_pagetrees.h"

namespace TESSEL {

/// A node of the document part hierarchy (ISO 32000-2, 14.12): its page is that of its first leaf.
class CDPart : public PageTreeNode {
 public:
  using PageTreeNode::PageTreeNode;

  /// Reads the node, which stands here or behind its "<<", and all below it into the source's map of document
  /// parts.
  /// @return whether the stream stayed good
  bool Read(CSourFile& source) override;
  bool scan(CSourFile& source);
  bool settle();
};

/// The root of the document part hierarchy.
class CDPartRoot : public CObj {
 public:
  CDPartRoot() { typeFlags = foundByTable; }

  /// Walks the whole tree below /DPartRootNode.
  bool Read(CSourFile& source) override;
  /// Nothing of the tree is written.
  bool Write(CDestFile&, CSourFile&) override { return true; }
};

/// The value of the catalog's /DPartRoot: behind a reference it is kept for the first question, else read
/// here. The position is kept.
void noteDocumentParts(CSourFile& source);

/// The first page of a document part, or null. The first question walks the tree. The position is kept.
const SObj* documentPartPage(CSourFile& main, const SObj& part);

}  // namespace TESSEL
