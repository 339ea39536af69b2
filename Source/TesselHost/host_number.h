#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace TesselHost {

/// A real number as a PDF file has it (ISO 32000-2, 7.3.3): no exponent, at most `decimals` digits behind the
/// point, no zeros at the end, no "-0". What isn't finite comes out as 0.
std::string decimal(double value, int decimals = 5);

/// The number with the fewest decimals that lies within half a unit of single precision at `magnitude`:
/// undoes what a float did to a number that a file states in decimals.
double unblurred(float value, float magnitude);

/// The number that the whole of `text` is, such as "12.5"; no sign, no exponent, no white space.
std::optional<double> parseDecimal(std::string_view text);
/// The whole number from 0 to 999,999,999 that the whole of `text` is.
std::optional<int> parseCount(std::string_view text);

}  // namespace TesselHost
