#pragma once

#include <list>

#include "TesselPage/Syntax/tessel_obj.h"

namespace TESSEL {

/// The name dictionary (ISO 32000-2, 7.7.4): keeps the root of the tree of destinations and harvests what the
/// others reach.
class CNames : public CObj {
 public:
  CNames() { typeFlags = foundByTable; }

  bool Read(CSourFile& source) override;
  bool ReadOthers(CSourFile& source, std::list<SObj>& work);
  bool ReadObjs(CSourFile* main, CSourFile& source, std::list<SObj>& work);
  void Init();

  SObj dests;  ///< /Dests
};

}  // namespace TESSEL
