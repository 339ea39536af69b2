#include "TesselPage/Syntax/tessel_fileblock.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <istream>
#include <limits>
#include <ostream>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_bytecursor.h"
#include "TesselPage/Syntax/tessel_comments.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/Syntax/tessel_token.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

namespace {

constexpr std::size_t wordBufferSize = 1024;
constexpr float tolerance = 1e-5F;
constexpr int decimals = 5;
/// The longest finite float has 39 digits before the point.
constexpr std::size_t realTextSize = 64;

/// Where GetWords cuts a word, or null.
char* findCutMark(char* word) {
  if (char* mark = std::strstr(word, "<<")) return mark;
  if (char* mark = std::strstr(word, ">>")) return mark;
  if (char* mark = word[0] == '/' ? nullptr : std::strchr(word, '/')) return mark;
  if (char* mark = std::strchr(word, '[')) return mark;
  return std::strchr(word, ']');
}

}  // namespace

bool CFileBlock::fromStream(CSourFile& source) { return Read(source); }

bool CFileBlock::toStream(CDestFile& dest) {
  CSourFile* source = dest.GetSourFile();
  return source && Write(dest, *source);
}

bool CFileBlock::IsNum(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return isDigit(c); });
}

bool CFileBlock::FindStr(std::istream& in, const std::string& word) {
  std::string token;
  while (in.good()) {
    readPDFString(in, token);
    if (token == word) return true;
  }
  throw CFileError();
}

bool CFileBlock::FindStrInObj(std::istream& in, const std::string& word) {
  std::string token;
  while (in.good()) {
    readPDFString(in, token);
    if (token == word) return true;
    if (token == kwendobj) return false;
  }
  return false;
}

void CFileBlock::GetWords(std::istream& in, std::string& out) {
  out.clear();
  const std::streamoff start = in.tellg();
  char word[wordBufferSize] = {};
  in >> word;
  char* const mark = findCutMark(word);
  if (mark) *mark = '\0';
  out.append(word);
  // Counted from where the word was looked for, white space in front of it included.
  if (mark) in.seekg(start + static_cast<std::streamoff>(out.size()));
}

bool CFileBlock::RedHexString(std::ostream& out, std::istream& in, int& count) {
  count = 0;
  int high = -1;
  const auto put = [&](int low) {
    out.put(static_cast<char>(high << 4 | low));
    ++count;
    high = -1;
  };
  for (char byte = 0; readByte(in, byte);) {
    if (byte == '\r' || byte == '\n') continue;
    const int digit = hexValue(byte);
    if (digit < 0) break;
    if (high < 0) {
      high = digit;
    } else {
      put(digit);
    }
  }
  if (high >= 0) put(0);
  return in.good();
}

SObjState CFileBlock::GetObjState(CSourFile& source, int num, int gen) {
  return source.fileInfo.GetObjState(num, gen);
}

SObjState CFileBlock::GetObjState(CSourFile& source, const SObj& id) {
  return source.fileInfo.GetObjState(id);
}

bool CFileBlock::isDictStart(std::istream& in) {
  char byte = readPastComments(in);
  in.putback(byte);
  byte = 0;
  readByte(in, byte);
  if (byte == '[') return true;
  if (byte == '<') {
    readByte(in, byte);
    return true;
  }
  in.putback(byte);
  return false;
}

void CFileBlock::wrtNumberFtoStr(std::string& out, float value) {
  if (isfeq(value, 0)) {
    out.append("0 ");
    return;
  }
  char text[realTextSize];
  char* end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals).ptr;
  while (end - text > 1 && end[-1] == '0') --end;
  if (end[-1] == '.') --end;
  out.append(text, static_cast<std::size_t>(end - text)).push_back(' ');
}

bool CFileBlock::isfeq(float a, float b) { return b - a <= tolerance && a - b <= tolerance; }

}  // namespace TESSEL
