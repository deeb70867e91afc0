#pragma once
// The band reduction stored with a profile: the reduced bands, their sum and the limits they were
// reduced against.
#include <array>

#include "analysis/band_reduction.h"

namespace velmora {

struct BandReductionBlock {
  BandReductionResult Result;       // Reduced[1..9] and Total, mm
  WaveSeries LongSum;               // reduced octaves of Settings().LongOctaves, mm
  WaveSeries ShortSum;              // reduced octaves of Settings().ShortOctaves, mm
  std::array<double, 10> Limits{};  // [1..9], mm; NoLimit where a line was blank
  bool Calculated = false;          // valid for the octave split now held by the record
};

}  // namespace velmora
