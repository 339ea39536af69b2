#include "TesselPage/Syntax/tessel_string.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <istream>

#include "TesselPage/Security/tessel_encryptbridge.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_bytecursor.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

namespace {

struct Escape {
  char letter;
  char value;
};

constexpr Escape EscTab[] = {{'n', '\n'}, {'r', '\r'},  {'t', '\t'}, {'b', '\b'},
                             {'f', '\f'}, {'\\', '\\'}, {'(', '('},  {')', ')'}};

constexpr std::size_t bytesPerLiteralLine = 100;
constexpr std::size_t bytesPerHexLine = 80;
constexpr std::string_view fontOperator = "Tf";

bool isOctal(int byte) { return byte >= '0' && byte <= '7'; }

/// Reads a literal string's body and hands each byte of its value to the sink.
template <class Sink>
class LiteralBody {
 public:
  LiteralBody(std::istream& in, Sink target) : cursor(in), sink(target) {}

  void read() {
    int depth = 0;
    for (int byte = cursor.take(); byte != ByteCursor::end; byte = cursor.take()) {
      if (byte == '\\') {
        readEscape();
        continue;
      }
      if (byte == ')' && depth == 0) return;
      if (byte == ')') --depth;
      if (byte == '(') ++depth;
      sink(static_cast<char>(byte));
    }
    cursor.fail();
  }

 private:
  void readEscape() {
    const int byte = cursor.take();
    if (byte == '\r' || byte == ByteCursor::end) return;
    if (byte == '\n') {
      if (cursor.peek() == '\r') cursor.take();
      return;
    }
    sink(isOctal(byte) ? readOctal(byte) : unescaped(static_cast<char>(byte)));
  }

  /// Two further bytes always belong to the escape; one that isn't octal counts as 0 and stays consumed.
  char readOctal(int first) {
    const int second = octalValue(cursor.take());
    const int third = octalValue(cursor.take());
    return static_cast<char>((first - '0') << 6 | second << 3 | third);
  }

  static int octalValue(int byte) { return isOctal(byte) ? byte - '0' : 0; }

  static char unescaped(char letter) {
    for (const Escape& row : EscTab)
      if (row.letter == letter) return row.value;
    return letter;
  }

  ByteCursor cursor;
  Sink sink;
};

template <class Sink>
void readLiteralBody(std::istream& in, Sink sink) {
  if (in.good()) LiteralBody<Sink>(in, sink).read();
}

/// Reads a hexadecimal string's body and hands each byte of its value to the sink.
template <class Sink>
void readHexBody(std::istream& in, Sink sink) {
  if (!in.good()) return;
  ByteCursor cursor(in);
  int high = -1;
  int byte = cursor.take();
  for (; byte != '>' && byte != ByteCursor::end; byte = cursor.take()) {
    const int digit = hexValue(byte);
    if (digit < 0) continue;
    if (high >= 0) sink(static_cast<char>(high << 4 | digit));
    high = high < 0 ? digit : -1;
  }
  if (high >= 0) sink(static_cast<char>(high << 4));
  if (byte == ByteCursor::end) cursor.fail();
}

char escapeLetter(char byte) {
  for (const Escape& row : EscTab)
    if (row.value == byte) return row.letter;
  return '\0';
}

/// White space of an appearance string (ISO 32000-2, table 1).
bool isPdfSpace(char c) { return c == '\0' || c == '\t' || c == '\n' || c == '\f' || c == '\r' || c == ' '; }

/// The first field that isn't 0 tells how much the placement enlarges.
float scaleOf(const PgCmTD& cm) {
  for (const float field : {cm.a, cm.d, cm.b, cm.c})
    if (field != 0) return std::fabs(field);
  return 1;
}

/// The number in front of `place`, white space between them; empty when there is none.
std::string_view numberBefore(std::string_view text, std::size_t place) {
  std::size_t end = place;
  while (end > 0 && isPdfSpace(text[end - 1])) --end;
  std::size_t begin = end;
  while (begin > 0 && !isPdfSpace(text[begin - 1])) --begin;
  const std::string_view word = text.substr(begin, end - begin);
  const bool number =
      !word.empty() && (isDigit(word[0]) || std::string_view("+-.").find(word[0]) != word.npos);
  return number && end != place ? word : std::string_view();
}

double realValue(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

}  // namespace

bool CStringType::Read(CSourFile& source) {
  if (hexadecimal) {
    RedHexString(source);
  } else {
    value.clear();
    readLiteralBody(source, [this](char byte) { value.push_back(byte); });
  }
  const CEncrypt& encrypt = source.fileInfo.encrypt;
  if (encrypt.activeForReading() && !value.empty() && !noDecrypt) DecryptString(encrypt, &id, value);
  length = static_cast<int>(value.size());
  source.setf(std::ios_base::skipws);
  return source.good();
}

bool CStringType::RedHexString(std::istream& in) {
  value.clear();
  readHexBody(in, [this](char byte) { value.push_back(byte); });
  return true;
}

bool CStringType::Write(CDestFile& dest, CSourFile&) {
  writeTo(dest);
  return true;
}

void CStringType::writeTo(CDestFile& dest) {
  if (dest.encrypts() && !value.empty() && !noEncrypt)
    encryptString(dest.fileInfo.encrypt, &dest.currentObject, value);
  length = static_cast<int>(value.size());
  WrtBody(dest);
}

void CStringType::WrtString(CDestFile& dest) const {
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (i % bytesPerLiteralLine == 0 && i != 0) dest.append("\\\n");
    const char letter = escapeLetter(value[i]);
    if (letter != '\0') dest.push_back('\\');
    dest.push_back(letter != '\0' ? letter : value[i]);
  }
  dest.push_back(')');
}

void CStringType::WrtHexString(CDestFile& dest) const {
  static constexpr char digits[] = "0123456789abcdef";
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (i % bytesPerHexLine == 0 && i != 0) dest.push_back('\n');
    const auto byte = static_cast<unsigned char>(value[i]);
    dest.push_back(digits[byte >> 4]);
    dest.push_back(digits[byte & 0xF]);
  }
  dest.push_back('>');
}

void CStringType::Translate4Annot(const PgCmTD& cm) {
  const float scale = scaleOf(cm);
  if (value.size() < fontOperator.size() || scale == 1) return;
  const std::string_view text = value;
  std::string result;
  std::size_t copied = 0;
  for (std::size_t place = text.find(fontOperator); place != text.npos;
       place = text.find(fontOperator, place + fontOperator.size())) {
    const std::string_view number = numberBefore(text, place);
    if (number.empty()) continue;
    result.append(text.data() + copied, number.data());
    wrtNumberFtoStr(result, static_cast<float>(realValue(number) * static_cast<double>(scale)));
    copied = place;
  }
  result.append(text.substr(copied));
  value = std::move(result);
  length = static_cast<int>(value.size());
}

void skipString(CSourFile& source, const SObj&, char open) {
  const auto ignore = [](char) {};
  if (open == '<') {
    readHexBody(source, ignore);
  } else {
    readLiteralBody(source, ignore);
  }
  source.setf(std::ios_base::skipws);
}

}  // namespace TESSEL
