#include "results/wave_series.h"

#include <cmath>

namespace velmora {

void CalcSeriesStats(std::ptrdiff_t n, const Array1<double>& values, SeriesStats& stats) {
  stats = SeriesStats{};
  if (n <= 0) return;
  double sum = 0, minimum = values[1], maximum = values[1];
  for (std::ptrdiff_t i = 1; i <= n; ++i) {
    const double v = values[i];
    sum += v;
    if (v < minimum) minimum = v;
    if (v > maximum) maximum = v;
  }
  const double mean = sum / static_cast<double>(n);
  double squares = 0;
  for (std::ptrdiff_t i = 1; i <= n; ++i) squares += (values[i] - mean) * (values[i] - mean);
  stats.Minimum = minimum;
  stats.Maximum = maximum;
  stats.Mean = mean;
  stats.StdDev = std::sqrt(squares / static_cast<double>(n));
}

void StoreWave(WaveSeries& series, Array1<double> values) {
  series.Values = std::move(values);
  CalcSeriesStats(series.Values.size(), series.Values, series.Stats);
  series.DisplayMin = series.Stats.Minimum;
  series.DisplayMax = series.Stats.Maximum;
  series.Calculated = true;
}

}  // namespace velmora
