#pragma once
// The KP range a registered profile covers, shared by the statistics grid and the KP alignment of the
// cross-correlation.
#include "profile/profile_record.h"

namespace velmora {

struct KpExtent {
  double Start = 0;       // km, the lower end
  double End = 0;         // km, the upper end
  double PitchKm = 0;     // sample pitch in km
  bool Downward = false;  // the KP falls along the profile: its first sample is at End
};

// KP of the first sample in km; an unset KP counts as 0.
double KpStartKm(const ProfileRecord& profile);

// start = KP of the first sample, end = start + (WorkCount - 1) * pitch; for a profile whose KP runs
// downward end = start - (WorkCount - 1) * pitch and the two are exchanged.
KpExtent ProfileKpExtent(const ProfileRecord& profile);

}  // namespace velmora
