#pragma once
// Where an axis ends and where its ticks lie, for linear and logarithmic axes, and the text of a tick.
#include <array>
#include <string>
#include <vector>

namespace velmora::graph {

// The step mantissas of a linear axis, tried in this order within each decade.
inline constexpr std::array<double, 4> NiceSteps{1.0, 2.0, 2.5, 5.0};

// Tick values in rising order; the first is the axis's low end, the last its high end.
struct AxisDivision {
  std::vector<double> Values;
  double Pitch = 0;  // linear axes only
  int count() const { return static_cast<int>(Values.size()); }
  double Low() const { return Values.front(); }
  double High() const { return Values.back(); }
};

// Linear axis over [min, max] (either order) with about `numDiv` steps: the step is the smallest
// 1, 2, 2.5 or 5 times a power of ten (10^-36 .. 10^36) not below (max - min)/numDiv, and the ends are
// the multiples of it that enclose the range. A tick within 1/10000 step of zero is exactly 0.
// numDiv >= 1; an empty range gives a step of 1e-36 and one tick. A range that is not finite, or
// wider than numDiv steps of 5e36, raises std::invalid_argument.
AxisDivision autoScaleAxis(double min, double max, int numDiv);

// Logarithmic axis: one tick per decade, from the largest power of ten strictly below the low end (an
// exact power gets one decade more) to the smallest power not below the high end, within
// 10^-36 .. 10^36. Both ends must be positive (std::invalid_argument otherwise).
AxisDivision autoScaleLogAxis(double min, double max);

double Log10(double x);

// The number pattern of a tick label, chosen by the value's decimal exponent (-2 deliberately gets one
// decimal fewer than -1); "0.0" for a value within 1e-32 of zero.
std::string GetAxisLabelFormat(double value);
// The tick label itself: the value in the pattern above.
std::string AxisLabel(double value);

}  // namespace velmora::graph
