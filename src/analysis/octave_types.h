#pragma once
#include <array>
#include <cstdint>

#include "analysis/complex.h"
#include "app/one_based.h"
#include "profile/wave_series.h"

namespace velmora {

// One octave band of a profile: the real part is the wave (mm), the imaginary part what the inverse
// transform left in it (about 0). Extremes and statistics are over elements 1..n.
struct OctaveBand {
  Array1<Complex> Values;  // 1..n
  double MinReal = 0;
  double MinImag = 0;
  double MaxReal = 0;
  double MaxImag = 0;
  SeriesStats Stats;       // of the real part
  bool Calculated = false;
};

// The nine octave bands of a profile with the long-wave and short-wave sums.
struct OctaveBandSet {
  std::array<OctaveBand, 10> Band;  // [1..9], 1 the longest wavelengths; [0] unused
  WaveSeries LongSum;               // sum of the octaves of Settings().LongOctaves
  WaveSeries ShortSum;              // sum of the octaves of Settings().ShortOctaves
  bool Calculated = false;          // bands and sums are valid for the prepared profile
  bool Converged = false;           // they came from the peeling with repeated passes
};

}  // namespace velmora
