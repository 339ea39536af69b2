#pragma once

#include <map>
#include <string_view>
#include <utility>
#include <vector>

namespace TESSEL {

class CSourFile;

/// Parses a selection of pages over several sources: "1:2,4~6 2:0". One pass over the characters; the marks
/// ":", ",", "~", "-" and " " act, and all else is passed over.
class PageSelection {
 public:
  using Pages = std::vector<std::pair<int, int>>;  ///< file and page; page 0: all pages

  explicit PageSelection(const std::map<int, CSourFile*>& sources) : files(sources) {}

  /// @param[out] selected  what was read, also of a text that breaks the rules
  /// @return false for such a text, and for one that selects nothing
  bool parse(std::string_view selection, Pages& selected);

 private:
  bool onMark(char mark, Pages& selected);
  bool onColon(Pages& selected);
  bool onComma(Pages& selected);
  bool onRange(Pages& selected);
  int numberAt(std::size_t place) const;
  char charAt(std::size_t place) const { return place < text.size() ? text[place] : '\0'; }
  void passOver(int number);
  void addKnown(int page, Pages& selected) const;
  int fileCount() const { return static_cast<int>(files.size()); }
  int pageCount() const;

  const std::map<int, CSourFile*>& files;
  std::string_view text;
  std::size_t at = 0;           ///< of the character in hand
  std::size_t numberStart = 0;  ///< behind the last blank
  int file = -1;                ///< of the pages that are named; -1: none yet
};

}  // namespace TESSEL
