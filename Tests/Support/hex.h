#pragma once

#include <string>
#include <string_view>

namespace tessel_test {

/// Lower-case hexadecimal digits of bytes.
inline std::string toHex(std::string_view bytes) {
  constexpr char digits[] = "0123456789abcdef";
  std::string result;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    result += {digits[byte >> 4], digits[byte & 15]};
  }
  return result;
}

}  // namespace tessel_test
