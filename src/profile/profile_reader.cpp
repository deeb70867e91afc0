#include "profile/profile_reader.h"

#include <filesystem>

#include "base/app_paths.h"
#include "base/legacy_format.h"
#include "base/session.h"
#include "base/settings.h"
#include "base/text_encoding.h"
#include "profile/erd_file.h"
#include "profile/profile_statistics.h"

namespace velmora {
namespace {

// The debug table of a read: one row per working sample. The name carries the profile's name so
// that several reads in one session do not overwrite each other.
void WriteDebugTable(Session& session, const std::string& path, const ProfileRecord& profile) {
  std::vector<std::string> rows{"No,Elevation(mm)"};
  rows.reserve(static_cast<std::size_t>(profile.WorkCount) + 1);
  for (std::ptrdiff_t i = 1; i <= profile.WorkProfile.size(); ++i)
    rows.push_back(std::to_string(i) + "," + FormatNumber(profile.WorkProfile[i], "0.00000000"));
  const std::filesystem::path folder(session.Paths.DebugPath);
  std::filesystem::create_directories(folder);
  const std::string name = std::filesystem::path(path).stem().string();
  WriteSystemTextFile(folder / ("ReadProfile_" + name + ".csv"), rows);
}

}  // namespace

bool ReadProfile(Session& session, const std::string& path, ProfileRecord& profile) {
  ErdRecord& erd = profile.Erd;
  if (!ReadERD(session, path, erd)) return false;
  profile.SamplesPerMetre = 1.0 / erd.StepSize;
  profile.WorkCount = erd.NumSamples;
  profile.WorkProfile = erd.Elevation;
  profile.Statistics = CalcProfileStatistics(profile.WorkProfile.span());
  erd.KpDisplay = ComposeKpText(erd.KpStart, erd.KpSign, erd.Lane, /*displayForm=*/true);
  if (session.Settings.DebugLevel > 0) WriteDebugTable(session, path, profile);
  return true;
}

}  // namespace velmora
