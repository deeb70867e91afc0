#pragma once
// Shared by the evaluation tests: a profile list made of records built in memory, and a session with a
// temporary user-local tree.
#include <filesystem>
#include <vector>

#include "profile/profile_list.h"
#include "support/test_support.h"

namespace velmora::testing {

inline ProfileList ListOf(std::vector<ProfileRecord> profiles) {
  ProfileList list;
  list.Items.resize(static_cast<std::ptrdiff_t>(profiles.size()));
  for (std::size_t k = 0; k < profiles.size(); ++k) list.Items[static_cast<std::ptrdiff_t>(k + 1)] = std::move(profiles[k]);
  return list;
}

// The session fixture with the user-local tree in its temporary folder, for the error log, the
// remembered folders and the project's profiles.
class EvaluationTest : public SessionTest {
 protected:
  EvaluationTest() {
    session.Paths.UserLocalPath = dir_.path().string();
    std::filesystem::create_directories(dir_ / "Resource");
  }
  // Every row of a list, as a selection.
  static std::vector<std::int32_t> AllRows(const ProfileList& list) {
    std::vector<std::int32_t> rows;
    for (std::int32_t i = 1; i <= list.Count(); ++i) rows.push_back(i);
    return rows;
  }
};

}  // namespace velmora::testing
