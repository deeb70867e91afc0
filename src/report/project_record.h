#pragma once
// The project as one record: the version of the program that wrote it, the user text and the
// registered profiles with their studies. The calculation conditions it carries are the session's.
#include <cstdint>
#include <string>

#include "base/program_version.h"
#include "profile/profile_list.h"

namespace velmora {

struct ProjectRecord {
  std::int32_t VerMajor = kProgramVersion.Major;
  std::int32_t VerMinor = kProgramVersion.Minor;
  std::int32_t VerRevision = kProgramVersion.Revision;
  std::string User;       // the [USER] text; read, never written
  ProfileList Profiles;   // ProfileCount is Profiles.Count()
};

// A copy of the profiles with what a project file keeps of them (source, names, ERD record, route,
// date, comment, studies), without working samples and results: what a snapshot needs, at a
// fraction of the memory of a whole copy.
ProfileList PersistentCopy(const ProfileList& list);

// The deep compare of the project commands: count, then for each profile FileName, both sample
// counts, FormatCode, StepSize, Title, DistanceUnit, both units and short names, IsMetric,
// SlopeUnitScale, SlopeUnitName, each elevation (exactly), KpStart, Lane, KpSign, RouteName,
// MeasureDate and Comment. Floating fields other than the samples compare with uNearlyEqual.
bool ProfilesChanged(const ProfileList& a, const ProfileList& b);
bool ProjectChanged(const ProjectRecord& a, const ProjectRecord& b);

}  // namespace velmora
