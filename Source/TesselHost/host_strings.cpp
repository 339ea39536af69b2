#include "TesselHost/host_strings.h"

#include <algorithm>
#include <array>

#include "TesselHost/host_dictionary.h"

namespace TesselHost {

namespace {

struct Escape {
  char letter;
  char value;
};
constexpr std::array escapes = {Escape{'n', '\n'}, Escape{'r', '\r'}, Escape{'t', '\t'}, Escape{'b', '\b'},
                                Escape{'f', '\f'}};

constexpr std::size_t longestOctal = 3;
constexpr unsigned octalBits = 3;
constexpr unsigned hexBits = 4;

bool isOctal(char c) { return c >= '0' && c <= '7'; }

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

/// Goes through what stands between the parentheses of a literal string.
class LiteralReader {
 public:
  explicit LiteralReader(std::string_view inside) : text(inside) {}

  std::string read() {
    std::string bytes;
    while (!text.empty()) {
      const char c = take();
      if (c == '\\')
        takeEscape(bytes);
      else
        bytes += c == '\r' ? lineEnd() : c;
    }
    return bytes;
  }

 private:
  char take() {
    const char c = text.front();
    text.remove_prefix(1);
    return c;
  }
  /// A line end of any kind is one line feed.
  char lineEnd() {
    if (!text.empty() && text.front() == '\n') text.remove_prefix(1);
    return '\n';
  }
  void takeEscape(std::string& bytes) {
    if (text.empty()) return;
    if (isOctal(text.front())) {
      bytes += takeOctal();
      return;
    }
    const char c = take();
    if (c == '\r') lineEnd();
    if (c == '\r' || c == '\n') return;
    const auto* found =
        std::find_if(escapes.begin(), escapes.end(), [c](auto& escape) { return escape.letter == c; });
    bytes += found == escapes.end() ? c : found->value;
  }
  char takeOctal() {
    unsigned value = 0;
    for (std::size_t i = 0; i < longestOctal && !text.empty() && isOctal(text.front()); ++i)
      value = value << octalBits | static_cast<unsigned>(take() - '0');
    return static_cast<char>(value);
  }

  std::string_view text;
};

std::string hexBytes(std::string_view inside) {
  std::string bytes;
  int high = -1;
  for (const char c : inside) {
    const int digit = hexDigit(c);
    if (digit < 0) continue;
    if (high >= 0) bytes += static_cast<char>(high << hexBits | digit);
    high = high < 0 ? digit : -1;
  }
  if (high >= 0) bytes += static_cast<char>(high << hexBits);
  return bytes;
}

}  // namespace

std::string bytesOfString(std::string_view token) {
  if (token.size() < 2) return {};
  const std::string_view inside = token.substr(1, token.size() - 2);
  return token[0] == '(' ? LiteralReader(inside).read() : hexBytes(inside);
}

std::string hexString(std::string_view bytes) {
  static constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text = "<";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += digits[byte >> hexBits];
    text += digits[byte & 0xFU];
  }
  return text += '>';
}

std::string withStrings(std::string_view text,
                        const std::function<std::string(std::string_view bytes)>& change) {
  std::string result;
  std::size_t copied = 0;
  for (auto token = nextString(text, 0); !token.empty(); token = nextString(text, copied)) {
    const auto begin = static_cast<std::size_t>(token.data() - text.data());
    result += text.substr(copied, begin - copied);
    copied = begin + token.size();
    const std::string bytes = bytesOfString(token);
    result += bytes.empty() ? std::string(token) : hexString(change(bytes));
  }
  return result += text.substr(copied);
}

}  // namespace TesselHost
