#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace TesselHost {

/// The characters, in UTF-8, of a text string (ISO 32000-2, 7.9.2.2), given as it stands in a file, with its
/// brackets: UTF-16, UTF-8 or PDFDocEncoding. Empty for what is no string.
std::string utf8OfString(std::string_view token);

/// Characters in UTF-8 as a text string: a literal one where they are ASCII, else UTF-16 in hexadecimal.
std::string textString(std::string_view utf8);

/// Characters in UTF-8 as bytes of PDFDocEncoding (ISO 32000-2, D.3); nothing when one of them has no place
/// there, or when the bytes aren't UTF-8.
std::optional<std::string> pdfDocEncoded(std::string_view utf8);

/// A password in UTF-8 as SASLprep (RFC 4013) makes it, which readers of AES-256 are to do (ISO 32000-2,
/// 7.6.4.3.3): one form for texts that look the same. Nothing when it has forbidden characters, or when the
/// bytes aren't UTF-8. ASCII stays as it is.
std::optional<std::string> saslPrepared(const std::string& utf8);

}  // namespace TesselHost
