#pragma once
// A registered profile built in memory: one channel of `samples` (mm) at `pitch` (m), its working copy
// filled as reading an ERD file would fill it.
#include <string>
#include <utility>
#include <vector>

#include "app/common.h"
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

}  // namespace velmora::testing
