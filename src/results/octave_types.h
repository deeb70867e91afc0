#pragma once
#include <array>
#include <cstdint>

#include "base/one_based.h"
#include "results/wave_series.h"

namespace velmora {

// One octave band of a profile (mm). Its spectrum is symmetric, so the inverse transform gives a
// real wave: the imaginary part is 0 everywhere and is not kept. Extremes and statistics are over
// elements 1..n.
struct OctaveBand {
  Array1<double> Values;  // 1..n
  double MinReal = 0;
  double MaxReal = 0;
  SeriesStats Stats;
  bool Calculated = false;
};

// The nine octave bands of a profile with the long-wave and short-wave sums.
struct OctaveBandSet {
  std::array<OctaveBand, 10> Band;  // [1..9], 1 the longest wavelengths; [0] unused
  WaveSeries LongSum;               // sum of the long-wave octaves of the settings
  WaveSeries ShortSum;              // sum of the short-wave octaves of the settings
  bool Calculated = false;          // bands and sums are valid for the prepared profile
  bool Converged = false;           // they came from the peeling with repeated passes
};

}  // namespace velmora
