#pragma once

#include "TesselPage/Model/tessel_acroform.h"
#include "TesselPage/Model/tessel_names.h"
#include "TesselPage/Model/tessel_ocproperties.h"
#include "TesselPage/Syntax/tessel_obj.h"

namespace TESSEL {

/// /MarkInfo (ISO 32000-2, 14.7.1): whether the document is tagged.
class CMarkInfo : public CObj {
 public:
  bool Read(CSourFile& source) override;

  bool marked = false;
};

/// What the system needs of the document catalog (ISO 32000-2, 7.7.2). Unlike the readers of a page it
/// understands nesting: the value of a key that it doesn't know is passed over by counting brackets. Two
/// passes: /Names can reach far, so the read at opening only notes the key; a second read takes nothing but
/// /Names.
class CCatalog : public CObj {
 public:
  CCatalog() { typeFlags = foundByTable; }

  bool Read(CSourFile& source) override;
  /// Writes a new catalog under the destination's /Root identity: the destination's page tree, and of this
  /// catalog the form, the optional content and the names that have a number. Always true.
  bool Write(CDestFile& dest, CSourFile& source) override;
  void Init();

  SObj pages;     ///< /Pages: start of the page tree
  SObj metadata;  ///< /Metadata
  CNames names;
  CAcroForm form;
  CMarkInfo markInfo;
  bool secondPass = false;  ///< the next read takes /Names and nothing else
  COCProperties optionalContent;
  int version = 0;  ///< /Version: 0 to 7 for 1.0 to 1.7, 10 for 2.0; 0 until read
};

}  // namespace TESSEL
