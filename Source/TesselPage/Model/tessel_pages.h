#pragma once

#include <list>
#include <string>
#include <vector>

#include "TesselPage/Syntax/tessel_obj.h"

namespace TESSEL {

/// Reader of a node of the page tree (ISO 32000-2, 7.7.3). A page's boxes and rotation go to the source's
/// paperInfoMap with all inheritance applied; a /Pages node publishes what it found to the source's
/// inheritedAttrs. Also the writer of a node of a new page tree, which carries over what its pages inherited
/// in their source.
class CPages : public CObj {
 public:
  explicit CPages(const std::string& nodeType = {}) : type(nodeType) { typeFlags = foundByTable; }

  bool Read(CSourFile& source) override;
  /// The value of /Kids, direct or behind a reference. An array may hold references only.
  bool ReadKids(CSourFile& source, std::vector<SObj>& list);
  /// Writes a new /Pages object: the kids, and for a node of a source that has ancestors what WriteOther
  /// carries over and the destination's root as /Parent. Always true.
  bool Write(CDestFile& dest, CSourFile& source) override;
  /// The same, for writers that have no source at hand.
  void writeTo(CDestFile& dest);
  /// Visits the ancestors in the node's source until one of them has yielded /MediaBox, /CropBox or /Rotate.
  /// False, with the ancestor left in the list, when one can't be reached or lies in an object stream.
  bool WriteOther(CDestFile& dest);
  /// Appends what the ancestor at the place of `source` states of these three, each once for the node; its
  /// /Parent goes to the end of the ancestors. Always true.
  bool WriteOtherInfo(CDestFile& dest, CSourFile& source);
  /// Back to the empty state.
  void Init();

  // Bits of writtenMask.
  static constexpr unsigned mediaBoxWritten = 1;
  static constexpr unsigned cropBoxWritten = 2;
  static constexpr unsigned rotateWritten = 4;

  std::string type;  ///< "/Pages", "/Page", or empty
  std::vector<SObj> kids;
  int count = 0;                         ///< /Count as read or written; takes no part in the number of pages
  unsigned writtenMask = 0;              ///< what WriteOther has written already
  std::list<SObj> ancestors;             ///< of the node in its source, still to visit by WriteOther
  int sourceIndex = 0;                   ///< number of the source of a written node's pages; 0 for the root
  SObj ownResources;                     ///< /Resources, when it is a reference
  std::vector<SObj> resourceReferences;  ///< every reference inside a direct /Resources
  SObj parent;
};

}  // namespace TESSEL
