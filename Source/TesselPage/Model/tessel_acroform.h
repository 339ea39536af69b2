#pragma once

#include <list>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "TesselPage/Syntax/tessel_obj.h"

namespace TESSEL {

/// The interactive form (ISO 32000-2, 12.7.3): reads the dictionary and harvests what it reaches, but for
/// /Fields, whose members enter a page's objects only through the page's annotations.
class CAcroForm : public CObj {
 public:
  CAcroForm() { typeFlags = foundByTable; }

  bool Read(CSourFile& source) override;
  bool ReadOthers(CSourFile& source, std::list<SObj>& work);
  bool ReadObjs(CSourFile* main, CSourFile& source, std::list<SObj>& work);
  /// Writes a new form with the formFields of all sources, under their new numbers.
  /// @return false, with the object unfinished, when one has no new number
  bool Write(CDestFile& dest, CSourFile& source) override;
  void Init();

  std::set<SObj> fields;                            ///< /Fields, and widgets that the form filter kept
  std::vector<std::pair<std::string, SObj>> fonts;  ///< resource name and font object of each /Font entry
  bool byReference = false;                         ///< entered through a reference of the catalog
};

}  // namespace TESSEL
