#pragma once
// The profile's own statistics, computed where a profile is read.
#include <cstdint>

namespace velmora {

// Sum, extremes and like values of a profile's working samples (mm). The standard deviation is the
// population one (divisor Count), as everywhere in the statistics tab. All 0 for no sample.
struct ProfileStatistics {
  std::int32_t Count = 0;
  double Sum = 0;
  double Mean = 0;
  double StdDev = 0;
  double Max = 0;
  double Min = 0;
  double Spread = 0;  // |Max - Min|
};

}  // namespace velmora
