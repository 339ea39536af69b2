#include "TesselPage/Syntax/tessel_token.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <istream>
#include <limits>
#include <locale>
#include <sstream>
#include <type_traits>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_bytecursor.h"

namespace TESSEL {

// clang-format off
const unsigned char tokenArray[256] = {
    1, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    1, 0, 0, 0, 0, 0, 0, 0, 2, 2, 0, 0, 0, 0, 0, 2,  // ( ) /
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 2, 0,  // < >
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 2, 0, 0,  // [ ]
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 2, 0, 0,  // { }
};
// clang-format on

void ExtStr2Int(const char* buf, int& pos, int len, int& value) {
  unsigned bits = 0;
  for (int i = 0; i < len; ++i) bits = bits << 8 | static_cast<unsigned char>(buf[pos++]);
  value = static_cast<int>(bits);
}

CharBuffer::CharBuffer() : data(std::make_unique<char[]>(minCapacity + 1)) {}

CharBuffer::~CharBuffer() = default;

void CharBuffer::assign(const char* bytes, std::size_t n) {
  if (n > capacity) {
    capacity = std::max(n, minCapacity);
    data = std::make_unique<char[]>(capacity + 1);
  }
  std::memcpy(data.get(), bytes, n);
  data[n] = '\0';
  length = n;
}

namespace {

constexpr char escape = '\\';

bool startsRun(char first) { return first == '/' || isRegular(first); }

/// Bytes of a name or word from its first byte on, when its end is in sight; else 0.
std::size_t runLength(std::string_view area) {
  for (std::size_t i = 0; i < area.size(); ++i) {
    if (i > 0 && !isRegular(area[i])) return i;
    // What is escaped belongs to the run, whatever it is. So rare that it mustn't hold up the other bytes.
    if (area[i] == escape) [[unlikely]]
      ++i;
  }
  return 0;
}

template <class Token>
class Tokeniser {
 public:
  Tokeniser(std::istream& in, Token& out) : stream(in), cursor(in), token(out) {}

  void read() {
    const int byte = skipWhiteSpace();
    if (byte == ByteCursor::end) return cursor.fail();
    if (startsRun(static_cast<char>(byte))) return readRun();
    const char first = take();
    if (first == '<' || first == '>') readTwin(first);
  }

 private:
  /// The byte that the token begins with.
  int skipWhiteSpace() {
    int byte = cursor.peek();
    while (byte != ByteCursor::end && isWhiteSpace(static_cast<char>(byte))) byte = cursor.next();
    return byte;
  }

  char take() {
    const char byte = static_cast<char>(cursor.take());
    token.push_back(byte);
    return byte;
  }

  /// "<<" and ">>". At the end of the stream the failed read leaves the former byte, which so counts twice.
  void readTwin(char first) {
    const int second = cursor.peek();
    if (second == ByteCursor::end) {
      token.push_back(first);
      cursor.fail();
    } else if (static_cast<char>(second) == first) {
      take();
    }
  }

  void readRun() {
    const std::string_view area = cursor.area();  // empty when the buffer has none
    const std::size_t n = runLength(area);
    if (n == 0) return readRunBytewise();
    token.insert(token.end(), area.begin(), area.begin() + static_cast<std::ptrdiff_t>(n));
    cursor.step(n);
  }

  void readRunBytewise() {
    char byte = take();
    bool escaped = byte == escape;
    for (int next = cursor.peek(); next != ByteCursor::end; next = cursor.next()) {
      byte = static_cast<char>(next);
      if (!escaped && !isRegular(byte)) return;
      token.push_back(byte);
      escaped = byte == escape && !escaped;
    }
    endAtEndOfStream(byte, escaped);
  }

  /// The failed read leaves the former byte: a regular one is appended again, a delimiter is put back, which
  /// takes the end-of-file bit away and leaves the stream failed.
  void endAtEndOfStream(char last, bool escaped) {
    cursor.fail();
    if (escaped || isRegular(last)) {
      token.push_back(last);
    } else {
      stream.clear(stream.rdstate() & ~std::ios_base::eofbit);
    }
  }

  std::istream& stream;
  ByteCursor cursor;
  Token& token;
};

template <class Token>
void readToken(std::istream& in, Token& token) {
  if (in.good()) Tokeniser<Token>(in, token).read();
}

/// Of tellg's and the formatted reads' sentry: skips white space, and leaves the stream failed when it isn't
/// good.
bool beginFormatted(std::istream& in) {
  if (!in.good()) {
    in.setstate(std::ios_base::failbit);
    return false;
  }
  if (in.tie()) in.tie()->flush();
  if ((in.flags() & std::ios_base::skipws) == 0) return true;
  ByteCursor cursor(in);
  if (cursor.skipFormatSpace() != ByteCursor::end) return true;
  cursor.fail();
  return false;
}

/// The end bit of a number that ran into the end.
std::ios_base::iostate endBit(int byte, const ByteCursor& cursor) {
  return byte == ByteCursor::end ? cursor.endState() : std::ios_base::goodbit;
}

/// Reads an integer's text from behind the white space; a value out of range is the nearest limit, and fails.
template <class Integer>
std::ios_base::iostate extractInteger(std::istream& in, Integer& value) {
  using Limits = std::numeric_limits<Integer>;
  ByteCursor cursor(in);
  int byte = cursor.peek();
  const bool negative = byte == '-';
  if (negative || byte == '+') byte = cursor.next();
  bool valid = isDigit(byte);
  bool overflow = false;
  Integer result = 0;
  for (; isDigit(byte); byte = cursor.next()) {
    // Gathered on its own side of zero: the least value has no positive counterpart.
    const Integer digit = negative ? '0' - byte : byte - '0';
    overflow = overflow || __builtin_mul_overflow(result, 10, &result) ||
               __builtin_add_overflow(result, digit, &result);
  }
  if (overflow) result = negative ? Limits::min() : Limits::max();
  value = result;
  valid = valid && !overflow;
  return (valid ? std::ios_base::goodbit : std::ios_base::failbit) | endBit(byte, cursor);
}

template <class Integer>
bool readIntegerAs(std::istream& in, Integer& value) {
  if (beginFormatted(in)) {
    const auto state = extractInteger(in, value);
    if (state != std::ios_base::goodbit) in.setstate(state);
  }
  return !in.fail();
}

/// Takes the longest text that may begin a real number, as the formatted read does: an exponent's sign counts
/// even when no digit follows. Appends a plus sign nowhere but in the exponent.
class RealText {
 public:
  explicit RealText(std::istream& in) : cursor(in) {}

  std::ios_base::iostate gather() {
    int byte = cursor.peek();
    if (byte == '-') text.push_back('-');
    if (byte == '-' || byte == '+') byte = cursor.next();
    while (accept(byte)) byte = cursor.next();
    return endBit(byte, cursor);
  }

  std::string text;

 private:
  bool accept(int byte) {
    const bool signAllowed = afterExponent;
    afterExponent = false;
    if (isDigit(byte)) {
      mantissa = true;
    } else if (byte == '.' && !point && !exponent) {
      point = true;
    } else if ((byte == 'e' || byte == 'E') && !exponent && mantissa) {
      exponent = afterExponent = true;
    } else if (!signAllowed || (byte != '+' && byte != '-')) {
      return false;
    }
    text.push_back(static_cast<char>(byte));
    return true;
  }

  ByteCursor cursor;
  bool mantissa = false;
  bool point = false;
  bool exponent = false;
  bool afterExponent = false;
};

/// For what is too large or too small: the library's own rule.
std::ios_base::iostate convertByStream(const std::string& text, float& value) {
  std::istringstream in(text);
  in.imbue(std::locale::classic());
  in >> value;
  return in.rdstate() & std::ios_base::failbit;
}

std::ios_base::iostate convertReal(const std::string& text, float& value) {
  const char* const end = text.data() + text.size();
  float result = 0;
  const auto [rest, error] = std::from_chars(text.data(), end, result);
  if (error == std::errc::result_out_of_range) return convertByStream(text, value);
  const bool whole = error == std::errc() && rest == end;
  value = whole ? result : 0.0F;
  return whole ? std::ios_base::goodbit : std::ios_base::failbit;
}

}  // namespace

void readPDFString(std::istream& in, std::vector<char>& token) { readToken(in, token); }

void readPDFString(std::istream& in, std::string& token) {
  token.clear();
  readToken(in, token);
}

CSourFile& operator>>(CSourFile& in, std::string& token) {
  readPDFString(in, token);
  return in;
}

CSourFile& operator>>(CSourFile& in, CharBuffer& token) {
  static_cast<std::istream&>(in) >> token;
  return in;
}

std::istream& operator>>(std::istream& in, CharBuffer& token) {
  std::string text;
  readPDFString(in, text);
  token.assign(text.data(), text.size());
  return in;
}

bool readInteger(std::istream& in, int& value) { return readIntegerAs(in, value); }

bool readInteger(std::istream& in, long long& value) { return readIntegerAs(in, value); }

bool readReal(std::istream& in, float& value) {
  if (beginFormatted(in)) {
    RealText number(in);
    auto state = number.gather();
    state |= convertReal(number.text, value);
    if (state != std::ios_base::goodbit) in.setstate(state);
  }
  return !in.fail();
}

bool readByte(std::istream& in, char& value) {
  if (!beginFormatted(in)) return false;
  ByteCursor cursor(in);
  const int byte = cursor.take();
  if (byte == ByteCursor::end) {
    cursor.fail();
    return false;
  }
  value = static_cast<char>(byte);
  return true;
}

}  // namespace TESSEL
