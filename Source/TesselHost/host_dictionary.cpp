#include "TesselHost/host_dictionary.h"

#include <algorithm>
#include <optional>

#include "TesselHost/host_number.h"

namespace TesselHost {

namespace {

constexpr std::string_view whiteSpace{"\0\t\n\f\r ", 6};
constexpr std::string_view delimiters{"\0\t\n\f\r ()<>[]{}/%", 16};

/// Walks a text token by token (ISO 32000-2, 7.2); brackets are tokens of their own, strings are one token.
class Cursor {
 public:
  explicit Cursor(std::string_view aText) : text(aText) {}

  std::size_t position() const { return pos; }
  void moveTo(std::size_t aPosition) { pos = aPosition; }

  /// The next token, empty at the end of the text and for a string that isn't closed.
  std::string_view next() {
    skipBlank();
    const std::size_t start = pos;
    pos = std::min(pos + tokenLength(), text.size());
    return text.substr(start, pos - start);
  }

  /// Where the next token begins.
  std::size_t peekPosition() {
    skipBlank();
    return pos;
  }

 private:
  void skipBlank() {
    pos = std::min(text.find_first_not_of(whiteSpace, pos), text.size());
    while (pos < text.size() && text[pos] == '%') {
      pos = std::min(text.find_first_of("\r\n", pos), text.size());
      pos = std::min(text.find_first_not_of(whiteSpace, pos), text.size());
    }
  }

  std::size_t tokenLength() const {
    if (pos >= text.size()) return 0;
    const std::string_view two = text.substr(pos, 2);
    if (two == "<<" || two == ">>") return 2;
    switch (text[pos]) {
      case '(':
        return literalLength();
      case '<':
        return hexLength();
      case '/':
        return 1 + wordLength(pos + 1);
      case '>':
      case ')':
      case '[':
      case ']':
      case '{':
      case '}':
        return 1;
      default:
        return wordLength(pos);
    }
  }

  std::size_t wordLength(std::size_t from) const {
    return std::min(text.find_first_of(delimiters, from), text.size()) - from;
  }

  std::size_t hexLength() const {
    const auto end = text.find('>', pos);
    return end == std::string_view::npos ? 0 : end + 1 - pos;
  }

  std::size_t literalLength() const {
    int depth = 0;
    for (std::size_t i = pos; i < text.size(); ++i) {
      if (text[i] == '\\') {
        ++i;
      } else if (text[i] == '(') {
        ++depth;
      } else if (text[i] == ')' && --depth == 0) {
        return i + 1 - pos;
      }
    }
    return 0;
  }

  std::string_view text;
  std::size_t pos = 0;
};

bool isOpening(std::string_view token) { return token == "<<" || token == "["; }
bool isClosing(std::string_view token) { return token == ">>" || token == "]"; }

bool isCount(std::string_view token) {
  return !token.empty() && token.find_first_not_of("0123456789") == std::string_view::npos;
}

/// Moves behind the rest of a value whose opening bracket has been read; false when it isn't closed.
bool skipBrackets(Cursor& cursor) {
  for (int depth = 1; depth > 0;) {
    const auto token = cursor.next();
    if (token.empty()) return false;
    if (isOpening(token)) ++depth;
    if (isClosing(token)) --depth;
  }
  return true;
}

/// After a number: moves behind the rest of a reference, if it is one.
void skipReference(Cursor& cursor) {
  const auto behindNumber = cursor.position();
  if (!isCount(cursor.next()) || cursor.next() != "R") cursor.moveTo(behindNumber);
}

/// Moves behind the next value; false when there is none.
bool skipValue(Cursor& cursor) {
  const auto token = cursor.next();
  if (token.empty() || isClosing(token)) return false;
  if (isOpening(token)) return skipBrackets(cursor);
  if (isCount(token)) skipReference(cursor);
  return true;
}

/// Hands keys and values of the first dictionary in `text` to `visit` until it answers false.
template <class Visit>
void forEachEntry(std::string_view text, const Visit& visit) {
  Cursor cursor(text);
  for (auto token = cursor.next(); token != "<<"; token = cursor.next())
    if (token.empty()) return;
  for (;;) {
    const auto name = cursor.next();
    if (name.empty() || name == ">>") return;
    if (name[0] != '/') continue;
    const auto start = cursor.peekPosition();
    if (!skipValue(cursor)) return;
    if (!visit(name, text.substr(start, cursor.position() - start))) return;
  }
}

}  // namespace

std::string_view valueAt(std::string_view text) {
  Cursor cursor(text);
  const auto start = cursor.peekPosition();
  return skipValue(cursor) ? text.substr(start, cursor.position() - start) : std::string_view{};
}

std::string_view valueOfKey(std::string_view text, std::string_view key) {
  std::string_view found;
  forEachEntry(text, [&](std::string_view name, std::string_view value) {
    if (name == key) found = value;
    return name != key;
  });
  return found;
}

std::vector<std::pair<std::string_view, std::string_view>> entriesOf(std::string_view text) {
  std::vector<std::pair<std::string_view, std::string_view>> entries;
  forEachEntry(text, [&](std::string_view name, std::string_view value) {
    entries.emplace_back(name, value);
    return true;
  });
  return entries;
}

std::vector<std::string_view> valuesIn(std::string_view text) {
  std::vector<std::string_view> values;
  Cursor cursor(text);
  for (;;) {
    const auto start = cursor.peekPosition();
    if (!skipValue(cursor)) return values;
    values.push_back(text.substr(start, cursor.position() - start));
  }
}

std::vector<std::string_view> elementsOf(std::string_view value) {
  const bool array = value.size() >= 2 && value.front() == '[' && value.back() == ']';
  return array ? valuesIn(value.substr(1, value.size() - 2)) : std::vector<std::string_view>{};
}

bool isDictionary(std::string_view value) { return value.substr(0, 2) == "<<"; }

std::optional<std::pair<int, int>> referenceIn(std::string_view value) {
  Cursor cursor(value);
  const auto number = parseCount(cursor.next());
  const auto generation = parseCount(cursor.next());
  if (!number || !generation || cursor.next() != "R") return std::nullopt;
  return std::pair{*number, *generation};
}

std::string withReferences(std::string_view text,
                           const std::function<std::string(const std::pair<int, int>&)>& replacement) {
  std::string result;
  Cursor cursor(text);
  std::size_t copied = 0;
  for (;;) {
    const auto start = cursor.peekPosition();
    const auto token = cursor.next();
    if (token.empty()) return result += text.substr(copied);
    if (!isCount(token)) continue;
    skipReference(cursor);
    const auto reference = referenceIn(text.substr(start, cursor.position() - start));
    if (!reference) continue;
    result += text.substr(copied, start - copied);
    result += replacement(*reference);
    copied = cursor.position();
  }
}

std::string_view nextString(std::string_view text, std::size_t from) {
  Cursor cursor(text);
  cursor.moveTo(from);
  auto token = cursor.next();
  while (!token.empty() && token[0] != '(' && (token[0] != '<' || token == "<<")) token = cursor.next();
  return token;
}

std::string_view insideOf(std::string_view value) {
  const bool dictionary =
      value.size() >= 4 && value.substr(0, 2) == "<<" && value.substr(value.size() - 2) == ">>";
  return dictionary ? value.substr(2, value.size() - 4) : std::string_view{};
}

}  // namespace TesselHost
