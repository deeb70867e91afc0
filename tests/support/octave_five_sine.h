#pragma once
// 1024 samples at 0.05 m (51.2 m) of a sine of 2 mm amplitude and 11 cycles: wavelength 51.2/11 =
// 4.6545 m, inside octave 5 (3.2 to 6.4 m), and exactly on bin 11 of a 1024-point transform.
#include <cmath>
#include <numbers>
#include <vector>

namespace velmora::testing {

inline std::vector<double> OctaveFiveSine() {
  std::vector<double> v(1024);
  for (std::size_t i = 0; i < v.size(); ++i) v[i] = 2.0 * std::sin(2 * std::numbers::pi * 11.0 * static_cast<double>(i) / 1024.0);
  return v;
}

}  // namespace velmora::testing
