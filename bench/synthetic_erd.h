#pragma once
// A one-channel ERD record of `n` elevations (mm) at `pitch` m for the benchmarks: elevation(i) for
// i = 1..n.
#include <cstdint>
#include <functional>

#include "profile/erd_file.h"

namespace velmora::bench {

inline ErdRecord SyntheticErd(std::int32_t n, double pitch, const std::function<double(std::int32_t)>& elevation) {
  ErdRecord rec;
  rec.NumChannels = 1;
  rec.NumSamples = n;
  rec.FormatCode = 5;
  rec.StepSize = pitch;
  rec.Title = "bench";
  rec.ShortName[1] = "LElev.";
  rec.Elevation.resize(n);
  for (std::int32_t i = 1; i <= n; ++i) rec.Elevation[i] = elevation(i);
  return rec;
}

}  // namespace velmora::bench
