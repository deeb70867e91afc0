#include "graph/axis_scale.h"

#include <cmath>
#include <stdexcept>

#include "base/legacy_format.h"

namespace velmora::graph {
namespace {

constexpr int kLowestExponent = -36;
constexpr int kHighestExponent = 36;

double Power10(int exponent) { return std::pow(10.0, exponent); }

double FindPitch(double delta) {
  for (int e = kLowestExponent; e <= kHighestExponent; ++e) {
    for (double mantissa : NiceSteps) {
      const double candidate = std::fabs(Power10(e) * mantissa);
      if (!(candidate < delta)) return candidate;
    }
  }
  // Ticks further apart than 5e36 would leave the range unmarked; such data is not a road's.
  throw std::invalid_argument("the axis range is too large to divide");
}

}  // namespace

AxisDivision autoScaleAxis(double min, double max, int numDiv) {
  if (!std::isfinite(min) || !std::isfinite(max) || numDiv < 1)
    throw std::invalid_argument("axis range must be finite and the division count at least 1");
  const double lo = std::fmin(min, max);
  const double hi = std::fmax(min, max);
  const double pitch = FindPitch((hi - lo) / numDiv);
  const double eps = pitch / 10000;

  // The ends are the multiples of the pitch enclosing [lo, hi], a multiple within eps of an end
  // counting as that end. They are found by division rather than by stepping from zero so that a range
  // far from zero costs nothing and the ticks carry no summed rounding.
  double lowSteps = std::floor(lo / pitch);
  if (std::fabs((lowSteps + 1) * pitch - lo) < eps) lowSteps += 1;
  double highSteps = std::ceil(hi / pitch);
  if (std::fabs((highSteps - 1) * pitch - hi) < eps) highSteps -= 1;
  if (highSteps < lowSteps) highSteps = lowSteps;

  AxisDivision division;
  division.Pitch = pitch;
  // Counted in whole steps: past 2^53 steps "+ 1" would no longer change the step number.
  const auto steps = static_cast<long long>(std::llround(highSteps - lowSteps));
  for (long long i = 0; i <= steps; ++i) {
    const double value = (lowSteps + static_cast<double>(i)) * pitch;
    division.Values.push_back(std::fabs(value) < eps ? 0.0 : value);
  }
  return division;
}

AxisDivision autoScaleLogAxis(double min, double max) {
  const double lo = std::fmin(min, max);
  const double hi = std::fmax(min, max);
  if (!(lo > 0) || !std::isfinite(hi)) throw std::invalid_argument("a logarithmic axis needs a positive range");
  int minExp = kLowestExponent;
  for (int e = kLowestExponent; e <= kHighestExponent && Power10(e) < lo; ++e) minExp = e;
  int maxExp = kHighestExponent;
  for (int e = kLowestExponent; e <= kHighestExponent; ++e) {
    if (!(Power10(e) < hi)) {
      maxExp = e;
      break;
    }
  }
  AxisDivision division;
  for (int e = minExp; e <= maxExp; ++e) division.Values.push_back(Power10(e));
  return division;
}

double Log10(double x) { return std::log(x) / std::log(10.0); }

std::string GetAxisLabelFormat(double value) {
  if (std::fabs(value) < 1e-32) return "0.0";
  const std::string scientific = FormatNumber(value, "0.0000000000E+00");
  switch (std::stoi(scientific.substr(scientific.size() - 3))) {
    case -2: return "0.0000";
    case -1: return "0.00000";
    case 0: return "0.0000";
    case 1: return "0.000";
    case 2: return "0.00";
    case 3: return "0.0";
    case 4: return "0";
    default: return "0.000E+00";
  }
}

std::string AxisLabel(double value) {
  const std::string format = GetAxisLabelFormat(value);
  return std::fabs(value) < 1e-32 ? format : FormatNumber(value, format);
}

}  // namespace velmora::graph
