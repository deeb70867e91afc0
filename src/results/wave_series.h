#pragma once
// The stored wave of a profile: every result series (filters, bands, IRI windows, study waves) is one.
#include "base/one_based.h"

namespace velmora {

struct SeriesStats {
  double Minimum = 0;
  double Maximum = 0;
  double Mean = 0;
  double StdDev = 0;  // population form: sqrt(sum((x - mean)^2) / n)
};

struct WaveSeries {
  Array1<double> Values;  // 1..n
  double DisplayMin = 0;  // copied from Stats after each calculation; graph scaling may change them
  double DisplayMax = 0;
  SeriesStats Stats;
  bool Calculated = false;
};

// One pass for sum, minimum and maximum over 1..n, a second for the squared deviations. n = 0 gives
// all zero.
void CalcSeriesStats(std::ptrdiff_t n, const Array1<double>& values, SeriesStats& stats);

// Stores `values` in `series`, computes its statistics, copies them to the display range and marks
// the series calculated.
void StoreWave(WaveSeries& series, Array1<double> values);

}  // namespace velmora
