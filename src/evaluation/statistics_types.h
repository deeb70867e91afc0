#pragma once
// The profile's own statistics, computed where a profile is read. Header-only so that the profile
// library that fills them needs no link to the evaluation library.
#include <cmath>
#include <cstdint>
#include <span>

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

inline ProfileStatistics CalcProfileStatistics(std::span<const double> values) {
  ProfileStatistics s;
  if (values.empty()) return s;
  s.Max = -1e16;
  s.Min = 1e16;
  for (double x : values) {
    s.Sum += x;
    if (x > s.Max) s.Max = x;
    if (x < s.Min) s.Min = x;
  }
  s.Count = static_cast<std::int32_t>(values.size());
  s.Mean = s.Sum / s.Count;
  double squares = 0;
  for (double x : values) squares += (x - s.Mean) * (x - s.Mean);
  s.StdDev = std::sqrt(squares / s.Count);
  s.Spread = std::abs(s.Max - s.Min);
  return s;
}

}  // namespace velmora
