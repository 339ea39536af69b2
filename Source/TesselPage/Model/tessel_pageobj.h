#pragma once

#include <list>
#include <set>
#include <string>
#include <vector>

#include "TesselPage/Model/tessel_annot.h"
#include "TesselPage/Syntax/tessel_obj.h"

namespace TESSEL {

/// Picks objects by their piece information. With any selector empty nothing matches.
struct PieceInfoSelector {
  std::string selectorA;
  std::string selectorB;
  std::string selectorC;
  int objNum = 0;
  int genNum = 0;
  CSourFile* source = nullptr;

  bool match();
};

/// The walker that decides which objects the selected page needs, and the writer that copies most of them.
/// Read fills the page collections of the main source; WriteObj copies any harvested object without
/// annotation flags.
class CPage : public CObj {
 public:
  /// Thrown when a page's dictionary or its annotations lead to a page.
  static constexpr int damagedPage = 1000;

  CPage() { typeFlags = foundByTable; }

  /// The page dictionary and everything reachable from it, but for what belongs to the document.
  /// @throws damagedPage when a key other than /Parent or a /Dest leads to a page
  bool Read(CSourFile& source) override;
  /// Flattens a /Contents value: references of nested arrays in the order of their discovery.
  bool ReadTree(CSourFile& source, const SObj& start, std::set<SObj>& seen, std::vector<SObj>* found);
  bool ReadOthers(CSourFile& source, std::list<SObj>& work);
  bool ReadObjs(CSourFile* main, CSourFile& source, std::list<SObj>& work);
  /// Climbs from `parent` for /Resources: true with `resources` when a node has them as a reference; else
  /// `references` holds those of a direct dictionary, if any.
  bool getParentResource(CSourFile& source, const SObj& parent, SObj& resources,
                         std::vector<SObj>& references);
  /// Copies an object without its /Annots, /Contents, /MediaBox and /CropBox; a reference without a new
  /// number is null.
  bool WriteObj(CDestFile& dest, CSourFile& source, bool* dropped) override;

  /// Writes the page under its new number, as WriteObj copies it, and enters it in its source's node of the
  /// destination's page tree, which it makes when there is none. With the raw flag: as it stands and under
  /// its own number.
  /// @return false for a page that has no new number
  bool Write(CDestFile& dest, CSourFile& source) override;

  std::string pageGroup;  ///< /Group, from behind the key to its ">>"
  std::string selectorA;
  std::string selectorB;
  std::string selectorC;

 private:
  friend class PageScan;

  /// Whether the selector takes `ref` out of the harvest; the position and the state of `reading` stay.
  bool isTakenOut(CSourFile& main, CSourFile& reading, const SObj& ref) const;

  CAnnot annots;  ///< reused for each /Annots value of the page
};

}  // namespace TESSEL
