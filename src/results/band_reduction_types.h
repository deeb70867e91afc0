#pragma once
// The band reduction stored with a profile: the reduced bands, their sum and the limits they were
// reduced against.
#include <array>

#include "results/wave_series.h"

namespace velmora {

// The nine reduced bands ([1..9]) and their sum.
struct BandReductionResult {
  std::array<WaveSeries, 10> Reduced;
  WaveSeries Total;
};

struct BandReductionBlock {
  BandReductionResult Result;       // Reduced[1..9] and Total, mm
  WaveSeries LongSum;               // reduced octaves of the long-wave sum, mm
  WaveSeries ShortSum;              // reduced octaves of the short-wave sum, mm
  std::array<double, 10> Limits{};  // [1..9], mm; NoLimit where a line was blank
  bool Calculated = false;          // valid for the octave split now held by the record
};

}  // namespace velmora
