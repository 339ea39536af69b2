#include "TesselHost/host_version.h"

#include <fmt/format.h>

#include <charconv>

namespace TesselHost {

PdfVersion PdfVersion::parse(std::string_view text) {
  const auto digit = text.find_first_of("0123456789");
  if (digit == std::string_view::npos) return {};
  const char* const end = text.data() + text.size();
  PdfVersion version;
  const auto major = std::from_chars(text.data() + digit, end, version.major);
  const bool hasMinor = major.ec == std::errc() && end - major.ptr >= 2 && *major.ptr == '.';
  if (!hasMinor) return {};
  const auto minor = std::from_chars(major.ptr + 1, end, version.minor);
  return minor.ec == std::errc() && minor.ptr != major.ptr + 1 ? version : PdfVersion{};
}

bool PdfVersion::exists() const {
  constexpr int lastOfOne = 7;
  return major == 1 ? minor >= 0 && minor <= lastOfOne : major == 2 && minor == 0;
}

std::string PdfVersion::text() const { return fmt::format("{}.{}", major, minor); }

}  // namespace TesselHost
