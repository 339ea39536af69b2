#pragma once

#include <list>
#include <string>

#include "TesselPage/Structure/tessel_destlookup.h"
#include "TesselPage/Syntax/tessel_obj.h"
#include "TesselPage/tessel_desttd.h"

namespace TESSEL {

/// Looks one name up in the name tree of destinations (ISO 32000-2, 7.9.6 and 12.3.2.4). What the nodes hold
/// is kept in the source, so that a tree is read once however many names are asked for.
class CDests : public CObj {
 public:
  CDests() { typeFlags = foundByTable; }

  /// Searches from the root, at which the stream stands, unless it has been read; fills `result`.
  /// @return false when there is no such name, or its destination can't be read
  bool Read(CSourFile& source) override;
  bool ReadOthers(CSourFile& source, std::list<SObj>& work);
  /// One node that isn't the root.
  bool ReadObjs(CSourFile* main, CSourFile& source, std::list<SObj>& work);

  std::string name;             ///< looked for
  SObj destination;             ///< the object found
  DestTD result;                ///< style 2 at the start; no object number
  CSourFile* search = nullptr;  ///< runs the search; not owned

 private:
  void take(CSourFile& main, NameTreeNode& node, std::list<SObj>& work);
  void visitRoot(CSourFile& source, std::list<SObj>& work);
  void visitKnown(CSourFile& main, std::list<SObj>& work);
  bool resolve(CSourFile& main);
};

}  // namespace TESSEL
