#pragma once

#include <string>
#include <vector>

#include "TesselPage/Syntax/tessel_obj.h"

namespace TESSEL {

/// Reader of a node of the page tree (ISO 32000-2, 7.7.3). A page's boxes and rotation go to the source's
/// paperInfoMap with all inheritance applied; a /Pages node publishes what it found to the source's
/// inheritedAttrs.
class CPages : public CObj {
 public:
  explicit CPages(const std::string& nodeType = {}) : type(nodeType) { typeFlags = foundByTable; }

  bool Read(CSourFile& source) override;
  /// The value of /Kids, direct or behind a reference. An array may hold references only.
  bool ReadKids(CSourFile& source, std::vector<SObj>& list);
  /// Back to the empty state.
  void Init();

  std::string type;  ///< "/Pages", "/Page", or empty
  std::vector<SObj> kids;
  int count = 0;                         ///< /Count as read; takes no part in the number of pages
  SObj ownResources;                     ///< /Resources, when it is a reference
  std::vector<SObj> resourceReferences;  ///< every reference inside a direct /Resources
  SObj parent;
};

}  // namespace TESSEL
