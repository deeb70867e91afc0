#include "base/legacy_math.h"

#include <cmath>
#include <limits>

#include <fmt/format.h>

#include "base/legacy_error.h"

namespace velmora {
namespace {
template <class T>
T Narrow(double rounded, double original) {
  if (std::isnan(rounded) || rounded < static_cast<double>(std::numeric_limits<T>::min()) ||
      rounded > static_cast<double>(std::numeric_limits<T>::max()))
    RaiseOverflow(fmt::format("{}", original));
  return static_cast<T>(rounded);
}
}  // namespace

// std::nearbyint rounds half to even in the default rounding mode, which the program never changes.
std::int32_t CLng(double value) { return Narrow<std::int32_t>(std::nearbyint(value), value); }
std::int16_t CInt(double value) { return Narrow<std::int16_t>(std::nearbyint(value), value); }

std::int32_t RoundHalfAway(double value) {
  return Narrow<std::int32_t>(std::trunc(value >= 0 ? value + 0.5 : value - 0.5), value);
}

double Int(double value) { return std::floor(value); }
std::int32_t IntLong(double value) { return Narrow<std::int32_t>(std::floor(value), value); }
std::int32_t FixLong(double value) { return Narrow<std::int32_t>(std::trunc(value), value); }

std::int32_t CheckedI32(long long value) {
  if (value < std::numeric_limits<std::int32_t>::min() || value > std::numeric_limits<std::int32_t>::max())
    RaiseOverflow(fmt::format("{}", value));
  return static_cast<std::int32_t>(value);
}

}  // namespace velmora
