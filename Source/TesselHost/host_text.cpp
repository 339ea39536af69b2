#include "TesselHost/host_text.h"

#include <unicode/localpointer.h>
#include <unicode/unistr.h>
#include <unicode/usprep.h>

#include <algorithm>
#include <array>
#include <cstdint>

#include "TesselHost/host_strings.h"

namespace TesselHost {

namespace {

constexpr std::string_view utf16Mark = "\xFE\xFF";
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr char32_t replacement = 0xFFFD;

constexpr int longestExpansion = 18;  // of one character by NFKC, in units of UTF-16

// PDFDocEncoding where it isn't Latin 1 (ISO 32000-2, D.3).
constexpr unsigned firstAccent = 0x18;
constexpr std::array<char32_t, 8> accents = {0x2D8, 0x2C7, 0x2C6, 0x2D9, 0x2DD, 0x2DB, 0x2DA, 0x2DC};
constexpr unsigned firstSpecial = 0x80;
constexpr std::array<char32_t, 33> specials = {
    0x2022, 0x2020, 0x2021, 0x2026, 0x2014, 0x2013, 0x192,  0x2044, 0x2039, 0x203A,      0x2212,
    0x2030, 0x201E, 0x201C, 0x201D, 0x2018, 0x2019, 0x201A, 0x2122, 0xFB01, 0xFB02,      0x141,
    0x152,  0x160,  0x178,  0x17D,  0x131,  0x142,  0x153,  0x161,  0x17E,  replacement, 0x20AC};

char32_t ofPdfDoc(unsigned char byte) {
  if (byte >= firstAccent && byte < firstAccent + accents.size()) return accents[byte - firstAccent];
  if (byte >= firstSpecial && byte < firstSpecial + specials.size()) return specials[byte - firstSpecial];
  return byte;
}

void appendUtf8(std::string& out, char32_t c) {
  const auto put = [&out](char32_t bits) { out += static_cast<char>(bits); };
  if (c < 0x80) return put(c);
  if (c < 0x800) {
    put(0xC0 | c >> 6U);
  } else if (c < 0x10000) {
    put(0xE0 | c >> 12U);
    put(0x80 | (c >> 6U & 0x3F));
  } else {
    put(0xF0 | c >> 18U);
    put(0x80 | (c >> 12U & 0x3F));
    put(0x80 | (c >> 6U & 0x3F));
  }
  put(0x80 | (c & 0x3F));
}

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

std::string utf8OfUtf16(std::string_view bytes) {
  const auto unitAt = [bytes](std::size_t i) {
    return static_cast<char32_t>(static_cast<unsigned char>(bytes[i]) << 8U |
                                 static_cast<unsigned char>(bytes[i + 1]));
  };
  std::string text;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    char32_t c = unitAt(i);
    if (isHighSurrogate(c) && i + 3 < bytes.size() && isLowSurrogate(unitAt(i + 2))) {
      c = 0x10000 + ((c & 0x3FF) << 10U) + (unitAt(i + 2) & 0x3FF);
      i += 2;
    }
    appendUtf8(text, isHighSurrogate(c) || isLowSurrogate(c) ? replacement : c);
  }
  return text;
}

/// The next character of a text in UTF-8, which is taken off; a byte that belongs to none is a character.
char32_t takeUtf8(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  char32_t c = length == 1 ? lead : lead & (0x7FU >> length);
  for (std::size_t i = 1; i < std::min(length, text.size()); ++i)
    c = c << 6U | (static_cast<unsigned char>(text[i]) & 0x3FU);
  text.remove_prefix(std::min(length, text.size()));
  return c;
}

void appendUtf16(std::string& out, char32_t c) {
  const auto put = [&out](char32_t unit) {
    out += static_cast<char>(unit >> 8U);
    out += static_cast<char>(unit & 0xFFU);
  };
  if (c < 0x10000) return put(c);
  put(0xD800 | ((c - 0x10000) >> 10U & 0x3FF));
  put(0xDC00 | (c & 0x3FF));
}

std::optional<char> inPdfDoc(char32_t c) {
  for (unsigned byte = 0; byte <= 0xFFU; ++byte)
    if (c != replacement && ofPdfDoc(static_cast<unsigned char>(byte)) == c) return static_cast<char>(byte);
  return std::nullopt;
}

bool isPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

}  // namespace

std::string utf8OfString(std::string_view token) {
  if (token.empty() || (token[0] != '(' && token[0] != '<')) return {};
  const std::string bytes = bytesOfString(token);
  const std::string_view view = bytes;
  if (view.starts_with(utf16Mark)) return utf8OfUtf16(view.substr(utf16Mark.size()));
  if (view.starts_with(utf8Mark)) return bytes.substr(utf8Mark.size());
  std::string text;
  for (const char byte : bytes) appendUtf8(text, ofPdfDoc(static_cast<unsigned char>(byte)));
  return text;
}

std::string textString(std::string_view utf8) {
  if (!isPlain(utf8)) {
    std::string units(utf16Mark);
    while (!utf8.empty()) appendUtf16(units, takeUtf8(utf8));
    return hexString(units);
  }
  std::string literal = "(";
  for (const char c : utf8) {
    if (c == '(' || c == ')' || c == '\\') literal += '\\';
    literal += c;
  }
  return literal += ')';
}

std::optional<std::string> pdfDocEncoded(std::string_view utf8) {
  std::string bytes;
  while (!utf8.empty()) {
    const std::string_view before = utf8;
    const char32_t c = takeUtf8(utf8);
    std::string again;
    appendUtf8(again, c);
    const auto byte = inPdfDoc(c);
    if (!byte || before.substr(0, before.size() - utf8.size()) != again) return std::nullopt;
    bytes += *byte;
  }
  return bytes;
}

std::optional<std::string> saslPrepared(const std::string& utf8) {
  const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (std::all_of(utf8.begin(), utf8.end(), isAscii)) return utf8;
  // Bytes that aren't UTF-8 become a character that is forbidden.
  const icu::UnicodeString text = icu::UnicodeString::fromUTF8(utf8);
  UErrorCode status = U_ZERO_ERROR;
  const icu::LocalUStringPrepProfilePointer profile(usprep_openByType(USPREP_RFC4013_SASLPREP, &status));
  icu::UnicodeString prepared;
  const int32_t room = longestExpansion * text.length();
  const int32_t length =
      usprep_prepare(profile.getAlias(), text.getBuffer(), text.length(), prepared.getBuffer(room), room,
                     USPREP_ALLOW_UNASSIGNED, nullptr, &status);
  prepared.releaseBuffer(U_SUCCESS(status) ? length : 0);
  if (U_FAILURE(status)) return std::nullopt;
  std::string result;
  return prepared.toUTF8String(result);
}

}  // namespace TesselHost
