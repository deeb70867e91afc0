#include "base/number_helpers.h"

#include <cmath>

#include "base/common.h"
#include "base/legacy_format.h"

namespace velmora {

std::string uDblToText(double value, std::string_view format) {
  return IsNoValue(value) ? std::string() : FormatNumber(value, format);
}

std::string uLongToText(std::int32_t value) {
  return value == kNoValueLong ? std::string() : std::to_string(value);
}

double uDblZero(double value) { return IsNoValue(value) ? 0.0 : value; }

std::string uFormatRight(double value, std::string_view format) {
  std::string bare;
  for (const char c : format)
    if (c != '#') bare += c;
  std::string text = FormatNumber(value, bare);
  const std::size_t width = CharLength(format);
  const std::size_t length = CharLength(text);
  if (length < width) text.insert(0, width - length, ' ');
  return text;
}

std::string uTrimZero(double value) {
  std::string text = FormatNumber(value, "0.0000000000");
  while (!text.empty() && text.back() == '0') text.pop_back();
  if (!text.empty() && text.back() == '.') text.pop_back();
  return text;
}

bool uNearlyEqual(double a, double b) { return std::fabs(a - b) < 1e-9; }

double uSqrt(double x) { return (std::isnan(x) || x < 0) ? 0.0 : std::sqrt(x); }

double Kiriage(double value) { return std::floor(value + 0.99999); }

std::optional<double> uMin(std::optional<double> a, std::optional<double> b) {
  if (!a) return b;
  if (!b) return a;
  return uMin(*a, *b);
}

std::optional<double> uMax(std::optional<double> a, std::optional<double> b) {
  if (!a) return b;
  if (!b) return a;
  return uMax(*a, *b);
}

std::optional<double> uMin(std::span<const double> values) {
  std::optional<double> best;
  for (const double v : values) best = uMin(best, std::optional<double>(v));
  return best;
}

std::optional<double> uMax(std::span<const double> values) {
  std::optional<double> best;
  for (const double v : values) best = uMax(best, std::optional<double>(v));
  return best;
}

}  // namespace velmora
