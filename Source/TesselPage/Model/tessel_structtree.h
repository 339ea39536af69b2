#pragma once

#include "TesselPage/Model/tessel_pagetrees.h"

namespace TESSEL {

/// A structure element (ISO 32000-2, 14.7.2): its page is its own /Pg, else that of its first kid that has
/// one.
class CTag : public PageTreeNode {
 public:
  using PageTreeNode::PageTreeNode;

  /// Reads the element, which stands here or behind its "<<", and all below it into the source's map of
  /// structure elements.
  /// @return whether the stream stayed good
  bool Read(CSourFile& source) override;
  bool scan(CSourFile& source);
  bool settle();
};

/// The root of the logical structure.
class CStructTreeRoot : public CObj {
 public:
  CStructTreeRoot() { typeFlags = foundByTable; }

  /// Walks the whole tree below /K.
  bool Read(CSourFile& source) override;
  /// Nothing of the tree is written.
  bool Write(CDestFile&, CSourFile&) override { return true; }
};

/// The value of the catalog's /StructTreeRoot: behind a reference it is kept for the first question (few
/// documents ever put one, and the trees are large), else read here. The position is kept.
void noteStructTree(CSourFile& source);

/// The page that a structure element leads to, or null. The first question walks the tree. The position is
/// kept.
const SObj* structurePage(CSourFile& main, const SObj& element);

}  // namespace TESSEL
