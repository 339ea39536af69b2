#pragma once

#include <cstddef>
#include <set>
#include <stack>
#include <string>
#include <vector>

#include "TesselPage/Finder/tessel_findinghint.h"
#include "TesselPage/Finder/tessel_searchbudget.h"
#include "TesselPage/Structure/tessel_sobj.h"

namespace TESSEL {

class CSourFile;

/// Finds values by their keys anywhere below a starting point, in the raw text of objects, without a model of
/// what it passes through.
///
/// Any name in the first dictionary of a text that equals a key of the hint counts as that key: at any depth
/// of direct nesting, in the place of a value, and inside strings. The value is the first one behind it, or,
/// where a string is wanted and a name with a string behind it stands there, that string.
/// Keys hinted `ePDFUnknown` have the references in their values walked, the last one first, so that values
/// found behind sibling references are stored in reverse order.
///
/// An object that is reached again below itself is not scanned again; one that is reached on several ways is
/// scanned, and its values stored, once for each, up to the bound of SearchBudget.
///
/// An object of this class serves one query on one thread. Reading moves the position of the file.
class FindingValue {
 public:
  /// Starts at the catalog, whose text is loaded at once. The hint takes the answers; neither is owned.
  /// @throws BaseException  when the catalog can't be loaded
  FindingValue(FindingHint& hint, CSourFile* file);
  /// Starts at a piece of an object's text.
  FindingValue(FindingHint& hint, CSourFile* file, const std::string& text);
  /// Starts at an object.
  FindingValue(FindingHint& hint, CSourFile* file, int objNo, int genNo);
  FindingValue(const FindingValue&) = delete;
  FindingValue& operator=(const FindingValue&) = delete;

  /// Makes one pair of the steps below, or, recursive, as many as there is anything waiting.
  /// @throws BaseException  when an object can't be loaded or decoded; the values found so far stay
  void find(bool recursive);

  /// Takes what the search costs from a budget that other searches share. It isn't owned.
  void shareBudget(SearchBudget& shared) { budget = &shared; }

  /// Loads the object that was found last. Does nothing when none is waiting.
  void findParsedString();
  /// Scans the text that was loaded last. Does nothing when none is waiting.
  void FindingReference();

 private:
  class Scan;
  /// An object to be loaded, and how many objects lie on the way to it.
  struct Waiting {
    SObj object;
    std::size_t depth;
  };

  bool enterPath(const Waiting& reached);
  void loadInto(const SObj& object);

  std::stack<Waiting> references;
  CSourFile* source;
  std::stack<std::string> texts;
  FindingHint& hints;
  SearchBudget ownBudget;
  SearchBudget* budget = &ownBudget;
  std::vector<SObj> path;  ///< from the start to the object scanned last
  std::set<SObj> onPath;   ///< the same, to be asked
};

}  // namespace TESSEL
