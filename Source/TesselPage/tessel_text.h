#pragma once

#include <unicode/unistr.h>

#include <string>

namespace TESSEL {

/// A PDF text string (ISO 32000-2, 7.9.2.2), given as the value search stores it, as Unicode text.
///
/// Bytes that begin with 0xFE or 0xFF are UTF-16 behind two bytes of byte order mark, big-endian for 0xFE
/// 0xFF; what follows a zero byte is lost, since hosts rely on texts that end there. Bytes that begin with
/// "<" are hexadecimal digits: UTF-16 when the first four are a byte order mark, else one unit for each pair.
/// All others are in ICU's default code page. Escapes of literal strings stay as they are.
/// @return the text; empty for empty bytes
icu::UnicodeString getXFString(const std::string& bytes);

/// Whether `a` holds `b`. An empty `b` gives whether `a` isn't empty.
bool aIncludeB(const std::string& a, const std::string& b);

}  // namespace TESSEL
