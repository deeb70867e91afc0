#pragma once
#include <cstdint>

#include "base/one_based.h"

namespace velmora {

// The raw PSD of a profile: element i belongs to the wave number (i − 1) / (PsdCount · pitch).
struct PsdResult {
  std::int32_t PsdCount = 0;  // the transform length n2
  Array1<double> PsdValues;   // 1..PsdCount
  // The options the values were computed with; a change of either makes them stale.
  bool Calculated = false;
  std::int32_t WindowKind = 0;
  bool MirrorFill = true;
};

// One point of a smoothed spectrum or of a ratio: wave number (cycle/m) and value.
struct PsdPair {
  double Wn = 0;
  double Val = 0;
};

}  // namespace velmora
