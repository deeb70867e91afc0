#pragma once
// A registered profile built in memory: one channel of `samples` (mm) at `pitch` (m), its working copy
// filled as reading an ERD file would fill it; and the sample profiles the tests build them from.
#include <cmath>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "base/common.h"
#include "profile/profile_record.h"

namespace velmora::testing {

inline ProfileRecord MakeProfile(const std::string& name, double pitch, std::vector<double> samples,
                                 double kp = kNoValue, int kpSign = 0) {
  ProfileRecord p;
  p.FileName = name + ".erd";
  p.Erd.StepSize = pitch;
  p.Erd.KpStart = kp;
  p.Erd.KpSign = kpSign;
  p.Erd.NumChannels = 1;
  p.Erd.FormatCode = 5;
  p.Erd.NumSamples = p.Erd.NumSamplesHeader = static_cast<std::int32_t>(samples.size());
  p.Erd.IsMetric = true;
  p.Erd.Title = name;
  p.Erd.Elevation = Array1<double>(samples);
  p.WorkCount = static_cast<std::int32_t>(samples.size());
  p.WorkProfile = Array1<double>(std::move(samples));
  p.SamplesPerMetre = 1.0 / pitch;
  return p;
}

// 1, 2, ..., n mm or, falling, 1000 - 1, 1000 - 2, ...
inline std::vector<double> Ramp(int n, bool falling = false) {
  std::vector<double> v;
  for (int i = 1; i <= n; ++i) v.push_back(falling ? 1000 - i : i);
  return v;
}

// A rough profile in mm: f(i) for i from `from`, so Road(n, 3)[k] = Road(n)[k + 3] (a lag of 3 samples).
inline std::vector<double> Road(int n, int from = 0) {
  std::vector<double> v;
  for (int i = from; i < from + n; ++i) v.push_back(3 * std::sin(0.21 * i) + std::sin(1.3 * i + 0.4 * std::cos(0.05 * i)));
  return v;
}

// 1024 samples at 0.05 m (51.2 m) of a sine of 2 mm amplitude and 11 cycles: wavelength 51.2/11 =
// 4.6545 m, inside octave 5 (3.2 to 6.4 m), and exactly on bin 11 of a 1024-point transform.
inline std::vector<double> OctaveFiveSine() {
  std::vector<double> v(1024);
  for (std::size_t i = 0; i < v.size(); ++i) v[i] = 2.0 * std::sin(2 * std::numbers::pi * 11.0 * static_cast<double>(i) / 1024.0);
  return v;
}

}  // namespace velmora::testing
