#include "profile/profile_statistics.h"

#include <cmath>

namespace velmora {

ProfileStatistics CalcProfileStatistics(std::span<const double> values) {
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
