#pragma once
// Shared by the evaluation tests: a profile list made of records built in memory, and a temporary
// user-local tree for the error log, the remembered folders and the project's profiles.
#include <filesystem>
#include <vector>

#include "base/app_paths.h"
#include "profile/profile_list.h"
#include "support/test_support.h"

namespace velmora::testing {

inline ProfileList ListOf(std::vector<ProfileRecord> profiles) {
  ProfileList list;
  list.Items.resize(static_cast<std::ptrdiff_t>(profiles.size()));
  for (std::size_t k = 0; k < profiles.size(); ++k) list.Items[static_cast<std::ptrdiff_t>(k + 1)] = std::move(profiles[k]);
  return list;
}

struct Workplace {
  TempDir dir;
  AppPaths saved = Paths();
  Workplace() {
    Paths().UserLocalPath = dir.path().string();
    Paths().TempPath = (dir / "Temp").string();
    std::filesystem::create_directories(dir / "Temp");
    std::filesystem::create_directories(dir / "Resource");
  }
  ~Workplace() { Paths() = saved; }
};

}  // namespace velmora::testing
