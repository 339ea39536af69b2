// Three small operations that undo escapes for the host.

#include <cstring>

#include "TesselPage/tessel_page.h"

namespace TESSEL {

namespace {

bool isOctal(char c) { return c >= '0' && c <= '7'; }

constexpr int octalDigits = 3;

/// The byte that stands for an escape letter; the letter itself when it is one of the three that only lose
/// the backslash; 0 when it is none.
char escapedByte(char letter) {
  constexpr char letters[] = "()\\bfnrt";
  constexpr char bytes[] = "()\\\b\f\n\r\t";
  const char* found = letter == 0 ? nullptr : std::strchr(letters, letter);
  return found ? bytes[found - letters] : '\0';
}

/// Undoes a literal string's escapes; `pos` stands behind what was taken.
class StringUnescaper {
 public:
  StringUnescaper(const std::string& in, std::string& out) : text(in), result(out) {}

  bool run() {
    while (pos < text.size()) step();
    return depth == 0;
  }

 private:
  void step() {
    const char c = text[pos++];
    if (c == '\\') return escape();
    if (c == '\r') return lineEnd();
    if (c == '(') ++depth;
    if (c == ')') --depth;
    result += c;
  }
  void lineEnd() {
    result += '\n';
    if (pos < text.size() && text[pos] == '\n') ++pos;
  }
  void escape() {
    if (pos == text.size()) return;
    if (isOctal(text[pos])) return octal();
    const char byte = escapedByte(text[pos]);
    if (byte == 0) return;  // the backslash goes, and the byte is handled next
    result += byte;
    ++pos;
  }
  void octal() {
    unsigned value = 0;
    for (int i = 0; i < octalDigits && pos < text.size() && isOctal(text[pos]); ++i)
      value = value * 8 + static_cast<unsigned>(text[pos++] - '0');
    result += static_cast<char>(value & 0xFF);
  }

  const std::string& text;
  std::string& result;
  std::size_t pos = 0;
  int depth = 0;
};

/// A digit's value by the system's own rule, without a test that it is one.
int hexValue(char c) {
  const int plain = c - '0';
  return plain < 10 ? plain : ((c - 1) & 15) + 10;
}

}  // namespace

bool CTesselPage::unescapeStringObj(const std::string& in, std::string& out) {
  return StringUnescaper(in, out).run();
}

bool CTesselPage::unescapeNameObj(const std::string& in, std::string& out) {
  for (std::size_t i = 0; i < in.size(); ++i) {
    if (in[i] != '#') {
      out += in[i];
      continue;
    }
    if (in.size() - i < 3) break;  // an escape without its two digits ends the name
    out += static_cast<char>((hexValue(in[i + 1]) << 4) + hexValue(in[i + 2]));
    i += 2;
  }
  return true;
}

bool CTesselPage::unescapeFilseSpecification(const std::string& in, std::string& out) {
  constexpr std::string_view pair = "\\/";
  std::size_t start = 0;
  for (std::size_t pos = in.find(pair); pos != std::string::npos; pos = in.find(pair, start)) {
    out.append(in, start, pos - start);
    out += '/';
    start = pos + pair.size();
  }
  out.append(in, start);
  return true;
}

}  // namespace TESSEL
