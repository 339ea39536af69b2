#pragma once

#include <string>
#include <string_view>

namespace TesselHost {

/// SHA-256 (FIPS 180-4) in lower-case hexadecimal digits.
std::string sha256Hex(std::string_view bytes);

}  // namespace TesselHost
