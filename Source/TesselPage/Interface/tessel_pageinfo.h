#pragma once

#include <string>

namespace TESSEL {

/// A copy of one dictionary text, to take values from.
class CPageInfo {
 public:
  explicit CPageInfo(const std::string& dictionary) : text(dictionary) {}

  /// The value behind the first place of `key`. Known keys: "/P", "Resources", "AcroForm", "Group", "Annots";
  /// any other gives an empty text.
  std::string getValueString(const std::string& key) const;

 private:
  std::string text;
};

/// The first dictionary, or reference, of `text`, with the white space before it.
std::string getDicStr(const std::string& text);
/// The first array of `text`; empty when the value is a reference.
std::string getArrayStr(const std::string& text);

}  // namespace TESSEL
