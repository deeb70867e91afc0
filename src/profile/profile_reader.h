#pragma once
// A registered profile is born here: the ERD file read into its record, and the fields every
// analysis reads derived from it.
#include <string>

#include "base/session.h"
#include "profile/profile_record.h"

namespace velmora {

// ReadERD into `profile.Erd`, then SamplesPerMetre = 1 / StepSize (StepSize in m), WorkCount and
// WorkProfile (mm, 1..NumSamples) from the elevations, and KpDisplay. With DebugLevel above 0 the
// working samples go to DebugPath as a table. False when ReadERD refused the file (it has shown
// why); run-time errors raise to the caller.
bool ReadProfile(Session& session, const std::string& path, ProfileRecord& profile);

}  // namespace velmora
