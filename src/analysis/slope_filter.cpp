#include "analysis/slope_filter.h"

#include <cmath>
#include <string>

#include "base/legacy_error.h"

namespace velmora {

// Any length: the 16-bit sample counter of old, which refused roads above 330 m at 1 cm, is gone.
Array1<double> SlopeSeries(std::int32_t n, const Array1<double>& y, double dx, bool cutMode, double cut) {
  if (n < 1 || n > y.size()) RaiseSubscriptOutOfRange("Slope filter: " + std::to_string(n) + " samples");
  Array1<double> slope(static_cast<std::size_t>(n));
  for (std::int32_t i = 1; i <= n - 1; ++i) slope[i] = dx == 0 ? 0.0 : (y[i + 1] - y[i]) / dx;
  if (!cutMode) return slope;

  for (std::int32_t i = 1; i <= n; ++i)
    if (std::abs(slope[i]) >= cut) slope[i] = 0;
  Array1<double> rebuilt(static_cast<std::size_t>(n));
  rebuilt[1] = y[1];
  for (std::int32_t i = 2; i <= n; ++i) rebuilt[i] = rebuilt[i - 1] + dx * slope[i - 1];
  return rebuilt;
}

void SlopeFilter(AnalysisBlock& block, bool cutMode, double cut) {
  if (block.SamplesPerMetre == 0) RaiseDivisionByZero("Slope filter: the profile has no pitch");
  const double dx = 1 / block.SamplesPerMetre;
  StoreWave(block.Filter.SlopeWave, SlopeSeries(block.Count, block.Profile.Values, dx, cutMode, cut));
}

}  // namespace velmora
