#pragma once

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace TESSEL {

class CSourFile;

/// Token class of each byte: 0 regular, 1 white space, 2 delimiter. Wider than ISO 32000-2, table 1: 0x07,
/// 0x08 and 0x0B are white space, and "%" is regular, so that a comment is not a token kind.
extern const unsigned char tokenArray[256];

enum class TokenClass : unsigned char { regular = 0, whiteSpace = 1, delimiter = 2 };

/// Token class of `c`, as a number of TokenClass.
inline char getCharTokenType(char c) { return static_cast<char>(tokenArray[static_cast<unsigned char>(c)]); }

/// Reads `len` bytes of `buf` at `pos`, most significant first, into `value` and advances `pos`.
/// With `len` below 1, `value` is 0 and `pos` stays. Requires: the bytes are there.
void ExtStr2Int(const char* buf, int& pos, int len, int& value);

/// A growable byte buffer that is always zero-terminated. Starts with room for 15 bytes.
class CharBuffer {
 public:
  static constexpr std::size_t minCapacity = 15;

  CharBuffer();
  virtual ~CharBuffer();
  CharBuffer(const CharBuffer&) = delete;
  CharBuffer& operator=(const CharBuffer&) = delete;

  /// Takes over a copy of the bytes. In place when they fit, else in a new array of max(n, 15) + 1 bytes.
  void assign(const char* bytes, std::size_t n);

  const char* c_str() const { return data.get(); }
  std::size_t size() const { return length; }
  std::size_t room() const { return capacity; }
  std::string_view view() const { return {data.get(), length}; }
  bool operator==(std::string_view other) const { return view() == other; }

 private:
  std::unique_ptr<char[]> data;
  std::size_t length = 0;
  std::size_t capacity = minCapacity;
};

/// The tokeniser: appends the next token to `token`. Nothing is appended at the end of the stream.
/// A token is "<<", ">>", one other delimiter byte, a name with its "/", or a run of regular bytes in which a
/// backslash protects the next byte. Failure shows in the stream's state alone.
/// A regular token that runs to the very end of the stream gets its last byte twice ("%%EOF" reads as
/// "%%EOFF"): the failed read leaves the former byte, and the search for the last "startxref" counts on the
/// mismatch.
void readPDFString(std::istream& in, std::vector<char>& token);

/// The same into an emptied string.
void readPDFString(std::istream& in, std::string& token);

CSourFile& operator>>(CSourFile& in, std::string& token);
CSourFile& operator>>(CSourFile& in, CharBuffer& token);
std::istream& operator>>(std::istream& in, CharBuffer& token);

/// Formatted reads with the very results and stream states of `in >> value` in the "C" locale, without its
/// cost. Each returns whether the stream has not failed. White space is skipped as the stream's flags say.
bool readInteger(std::istream& in, int& value);
bool readInteger(std::istream& in, long long& value);
bool readReal(std::istream& in, float& value);
bool readByte(std::istream& in, char& value);

}  // namespace TESSEL
