#pragma once
// Thickness studies made from adjusted points given by KP, as a user types them beside the road: each
// point moves the crest or trough of the M wave nearest to it.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "profile/profile_record.h"
#include "results/repair_types.h"

namespace velmora {

// One adjusted point: where (KP, km) and how much thicker the pavement becomes there (mm).
struct KpAdjustment {
  double Kp = 0;
  double Thickness = 0;
};

// The sample (1..WorkCount) nearest a KP on the profile, counted from KpStart (0 when unset) in the
// direction of KpSign; nullopt when it lies outside the profile.
std::optional<std::int32_t> SampleAtKp(const ProfileRecord& record, double kp);

// A thickness study named `name` over the profile's M-wave point table, each adjustment set on the
// point nearest its sample. A KP outside the profile raises LegacyError naming `source`, the KP and
// the profile.
StudyTarget ThicknessStudyAtKps(const ProfileRecord& record, std::string name,
                                const std::vector<KpAdjustment>& points, const std::string& source);

}  // namespace velmora
