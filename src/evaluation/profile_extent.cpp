#include "evaluation/profile_extent.h"

#include <utility>

#include "base/common.h"

namespace velmora {

double KpStartKm(const ProfileRecord& profile) {
  return IsNoValue(profile.Erd.KpStart) ? 0.0 : profile.Erd.KpStart;
}

KpExtent ProfileKpExtent(const ProfileRecord& profile) {
  KpExtent extent;
  extent.PitchKm = profile.Erd.StepSize / 1000.0;
  extent.Downward = profile.Erd.KpSign != 0;
  extent.Start = KpStartKm(profile);
  const double length = (profile.WorkCount - 1) * extent.PitchKm;
  extent.End = extent.Downward ? extent.Start - length : extent.Start + length;
  if (extent.Downward) std::swap(extent.Start, extent.End);
  return extent;
}

}  // namespace velmora
