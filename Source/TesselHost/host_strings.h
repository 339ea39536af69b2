#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace TesselHost {

/// The bytes that a string token stands for (ISO 32000-2, 7.3.4), given with its brackets.
std::string bytesOfString(std::string_view token);

/// The bytes as a hexadecimal string, with its brackets.
std::string hexString(std::string_view bytes);

/// The text of an object with each of its strings replaced by what `change` makes of its bytes. Strings come
/// back as hexadecimal ones; empty ones stay as they are.
std::string withStrings(std::string_view text,
                        const std::function<std::string(std::string_view bytes)>& change);

}  // namespace TesselHost
