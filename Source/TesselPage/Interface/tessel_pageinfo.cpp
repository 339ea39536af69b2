#include "TesselPage/Interface/tessel_pageinfo.h"

#include <algorithm>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_string.h"
#include "TesselPage/Syntax/tessel_token.h"

namespace TESSEL {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Finds one value in a text by its tokens.
class ValueScan {
 public:
  explicit ValueScan(const std::string& dictionary) : text(dictionary), source(dictionary) {}

  std::string dictionary() {
    while (!done && nextToken()) dictionaryToken();
    return value();
  }

  /// Nothing but a "]" or "/Dest" ends an array, so a text without one has none.
  std::string array() {
    end = 0;
    while (!done && nextToken()) arrayToken();
    return value();
  }

 private:
  /// False at the end of the text, which is then the value's end.
  bool nextToken() {
    if (!source.good()) return false;
    before = here();
    source >> token;
    return token.size() != 0;
  }

  std::size_t here() {
    const std::streamoff place = source.tellg();
    return place < 0 ? text.size() : static_cast<std::size_t>(place);
  }

  void endHere() {
    end = here();
    done = true;
  }

  void dictionaryToken() {
    if (number) {
      if (token == kwR) endHere();
      if (token == kwR || isDigit(token.c_str()[0])) return;
    }
    if (token == kwendobj) {
      end = 0;
      done = true;
    } else if (token == "(" || token == "<") {
      skipString(source, SObj(), token.c_str()[0]);
      number = false;
    } else if (token == "<<") {
      if (depth++ == 0) start = before;
      number = false;
    } else if (token == ">>") {
      if (depth-- < 2) return endHere();
      number = false;
    } else if (isDigit(token.c_str()[0]) && depth == 0) {
      start = before;
      number = true;
    }
  }

  void arrayToken() {
    if (token == "(" || token == "<") skipString(source, SObj(), token.c_str()[0]);
    if (token == "<<") ++depth;
    if (token == ">>") --depth;
    if (token == "[" && arrayDepth++ == 0) start = before;
    if (token == "]" && --arrayDepth == 0 && depth == 0) endHere();
    if (token == "/Dest") end = here();
    if (token == kwendobj) done = true;
  }

  std::string value() const {
    const std::size_t last = std::min(end, text.size());
    return last <= start ? std::string() : text.substr(start, last - start);
  }

  const std::string& text;
  CSourFile source;
  CharBuffer token;
  std::size_t before = 0;
  std::size_t start = 0;
  std::size_t end = std::string::npos;
  int depth = 0;
  int arrayDepth = 0;
  bool number = false;
  bool done = false;
};

/// The number behind "/P": up to the next key, or to behind the next "]", whichever comes first.
std::string upToNextKey(const std::string& text, std::size_t from) {
  const std::size_t key = text.find('/', from);
  const std::size_t bracket = text.find(']', from);
  if (bracket == std::string::npos) return text.substr(from);
  return text.substr(from, std::min(key, bracket + 1) - from);
}

}  // namespace

std::string getDicStr(const std::string& text) { return ValueScan(text).dictionary(); }

std::string getArrayStr(const std::string& text) { return ValueScan(text).array(); }

std::string CPageInfo::getValueString(const std::string& key) const {
  const std::size_t found = text.find(key);
  if (found == std::string::npos) return {};
  const std::size_t from = found + key.size();
  if (key == "/P") return upToNextKey(text, from);
  if (key == "Resources" || key == "AcroForm" || key == "Group") return getDicStr(text.substr(from));
  if (key == "Annots") return getArrayStr(text.substr(from));
  return {};
}

}  // namespace TESSEL
