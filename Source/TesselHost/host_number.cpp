#include "TesselHost/host_number.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace TesselHost {

namespace {

constexpr int maxCountDigits = 9;
constexpr int maxDecimals = 5;
// Room for the largest double in fixed notation.
constexpr int longestFixed = 350;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

std::string decimal(double value, int decimals) {
  if (!std::isfinite(value)) return "0";
  char text[longestFixed];
  const auto written = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
  std::string result(text, written.ptr);
  if (result.find('.') != std::string::npos) {
    result.erase(result.find_last_not_of('0') + 1);
    if (result.back() == '.') result.pop_back();
  }
  return result == "-0" ? "0" : result;
}

double unblurred(float value, float magnitude) {
  const double exact = value;
  // A number that was read into a float is off by half a unit in the last place.
  const double error = 0.5 * std::numeric_limits<float>::epsilon() *
                       std::max({std::fabs(exact), std::fabs(static_cast<double>(magnitude)), 1.0});
  double scale = 1;
  for (int decimals = 0; decimals <= maxDecimals; ++decimals, scale *= 10) {
    const double candidate = std::round(exact * scale) / scale;
    if (std::fabs(candidate - exact) <= error) return candidate;
  }
  return exact;
}

std::optional<double> parseDecimal(std::string_view text) {
  const bool plain =
      !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return isDigit(c) || c == '.'; });
  if (!plain) return std::nullopt;
  double value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
  if (read.ec != std::errc() || read.ptr != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<int> parseCount(std::string_view text) {
  if (text.empty() || text.size() > maxCountDigits || !std::all_of(text.begin(), text.end(), isDigit))
    return std::nullopt;
  int value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

}  // namespace TesselHost
