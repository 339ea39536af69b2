#include "TesselHost/host_json.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>
#include <iterator>

namespace TesselHost {

namespace {

constexpr char base64Digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

void appendBase64Group(std::string& out, std::uint32_t bits, int digits) {
  for (int i = 0; i < digits; ++i) out += base64Digits[(bits >> (18 - 6 * i)) & 63U];
  out.append(static_cast<std::size_t>(4 - digits), '=');
}

std::uint32_t byteAt(std::string_view bytes, std::size_t i) { return static_cast<unsigned char>(bytes[i]); }

void appendBase64(std::string& out, std::string_view bytes) {
  std::size_t i = 0;
  for (; i + 3 <= bytes.size(); i += 3)
    appendBase64Group(out, byteAt(bytes, i) << 16U | byteAt(bytes, i + 1) << 8U | byteAt(bytes, i + 2), 4);
  if (bytes.size() - i == 1) appendBase64Group(out, byteAt(bytes, i) << 16U, 2);
  if (bytes.size() - i == 2) appendBase64Group(out, byteAt(bytes, i) << 16U | byteAt(bytes, i + 1) << 8U, 3);
}

struct Utf8Form {
  std::size_t length;
  std::uint32_t leadBits;
  std::uint32_t smallest;
};

/// The form that a lead byte of several begins (RFC 3629, 3); length 0 when it begins none.
Utf8Form utf8FormOf(unsigned char lead) {
  if ((lead & 0xE0U) == 0xC0U) return {2, lead & 0x1FU, 0x80};
  if ((lead & 0xF0U) == 0xE0U) return {3, lead & 0x0FU, 0x800};
  if ((lead & 0xF8U) == 0xF0U) return {4, lead & 0x07U, 0x10000};
  return {0, 0, 0};
}

/// Bytes of the well-formed character of several bytes that `text` begins with, 0 when it begins with none.
std::size_t utf8Length(std::string_view text) {
  const Utf8Form form = utf8FormOf(static_cast<unsigned char>(text[0]));
  if (form.length == 0 || text.size() < form.length) return 0;
  std::uint32_t code = form.leadBits;
  for (std::size_t i = 1; i < form.length; ++i) {
    if ((byteAt(text, i) & 0xC0U) != 0x80U) return 0;
    code = code << 6U | (byteAt(text, i) & 0x3FU);
  }
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  return code < form.smallest || code > 0x10FFFF || surrogate ? 0 : form.length;
}

void appendAscii(std::string& out, char c) {
  switch (c) {
    case '"':
      out += "\\\"";
      break;
    case '\\':
      out += "\\\\";
      break;
    case '\n':
      out += "\\n";
      break;
    case '\r':
      out += "\\r";
      break;
    case '\t':
      out += "\\t";
      break;
    default:
      if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
        fmt::format_to(std::back_inserter(out), "\\u{:04x}", static_cast<unsigned>(c));
      else
        out += c;
  }
}

void appendText(std::string& out, std::string_view text) {
  while (!text.empty()) {
    const bool ascii = static_cast<unsigned char>(text[0]) < 0x80;
    const std::size_t length = ascii ? 1 : utf8Length(text);
    if (ascii)
      appendAscii(out, text[0]);
    else
      out += length == 0 ? replacementCharacter : text.substr(0, length);
    text.remove_prefix(length == 0 ? 1 : length);
  }
}

}  // namespace

void JsonWriter::separate() {
  if (needsComma) out += ',';
  needsComma = true;
}

JsonWriter& JsonWriter::open(char bracket) {
  separate();
  out += bracket;
  needsComma = false;
  return *this;
}

JsonWriter& JsonWriter::close(char bracket) {
  out += bracket;
  needsComma = true;
  return *this;
}

JsonWriter& JsonWriter::raw(std::string_view text) {
  separate();
  out += text;
  return *this;
}

JsonWriter& JsonWriter::key(std::string_view name) {
  value(name);
  out += ':';
  needsComma = false;
  return *this;
}

JsonWriter& JsonWriter::value(long long number) {
  separate();
  fmt::format_to(std::back_inserter(out), "{}", number);
  return *this;
}

JsonWriter& JsonWriter::value(float number) {
  if (!std::isfinite(number)) return null();
  separate();
  fmt::format_to(std::back_inserter(out), "{:.9g}", static_cast<double>(number));
  return *this;
}

JsonWriter& JsonWriter::value(std::string_view text) {
  separate();
  out += '"';
  appendText(out, text);
  out += '"';
  return *this;
}

JsonWriter& JsonWriter::base64(std::string_view bytes) {
  separate();
  out += '"';
  out.reserve(out.size() + bytes.size() / 3 * 4 + 5);
  appendBase64(out, bytes);
  out += '"';
  return *this;
}

}  // namespace TesselHost
