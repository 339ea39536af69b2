#pragma once

#include <string>

namespace TESSEL {

/// Joins two resource dictionaries by text: the page's own and those that stand as objects. Entries of both
/// stand side by side; a name that occurs in both stays twice. Requires: both texts outlive the merger.
class ResourceDictMerger {
 public:
  ResourceDictMerger(const std::string& ownText, const std::string& objectText)
      : own(ownText), object(objectText) {}

  /// The whole merged dictionary; keys other than the seven subdictionaries and /ProcSet are lost.
  std::string merged() const;
  /// Appends `key` with the entries of both subdictionaries; nothing when neither text has the key.
  void dictValMerge(const std::string& key, std::string& out) const;
  /// The entries of the dictionary that stands at `pos`, up to the first ">>": no count of depth, as it is
  /// meant for subdictionaries of names and references. Empty when a reference stands there.
  static std::string getDirectKeyPos(const std::string& text, unsigned long pos);

 private:
  void mergeProcSet(std::string& out) const;

  const std::string& own;
  const std::string& object;
};

}  // namespace TESSEL
