#pragma once
// Number helpers shared by the whole program: no-value aware conversions to text, right-aligned
// columns, tolerant comparisons and roundings.
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace velmora {

// Empty for the no value (-99999.0), else FormatNumber(value, format).
std::string uDblToText(double value, std::string_view format);
// Empty for -99999, else the decimal number.
std::string uLongToText(std::int32_t value);
// 0 for the no value, else the value (sums that must skip unset entries).
double uDblZero(double value);

// The value formatted with `format` less its '#' characters, then left-padded with blanks to the
// character length of `format`: "######0" gives a right-aligned integer in 7 columns. A longer
// result is not cut.
std::string uFormatRight(double value, std::string_view format);

// The value formatted "0.0000000000", trailing zeros dropped, and the point too when nothing is left
// behind it: 1.5 → "1.5", 2 → "2", 1/3 → "0.3333333333".
std::string uTrimZero(double value);

// True when |a − b| < 1e-9.
bool uNearlyEqual(double a, double b);
// 0 for a negative value or NaN, else the square root.
double uSqrt(double x);

// Rounds up to the next whole number: Int(value + 0.99999), as the section grid does. A value less
// than 1e-5 above a whole number stays on it, which absorbs the noise of divisions such as 30.000000000004.
double Kiriage(double value);

// Of two values: the first unless the second is strictly smaller (uMin) or larger (uMax).
template <class T>
T uMin(T a, T b) {
  return b < a ? b : a;
}
template <class T>
T uMax(T a, T b) {
  return b > a ? b : a;
}
// Of values that may be absent: an absent value never wins; absent only when both are.
std::optional<double> uMin(std::optional<double> a, std::optional<double> b);
std::optional<double> uMax(std::optional<double> a, std::optional<double> b);
// Over an array: the first of the smallest (largest) elements; absent for an empty array.
std::optional<double> uMin(std::span<const double> values);
std::optional<double> uMax(std::span<const double> values);

}  // namespace velmora
