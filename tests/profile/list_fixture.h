#pragma once
// A scratch user-local tree, a small palette and fixture copies for the profile list's tests.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/session_fixture.h"
#include "support/test_support.h"

namespace velmora {

inline std::string Fixture(const std::string& name) {
  return (testing::SourceDir() / "tests/data/erd" / name).string();
}

// A scratch user-local tree and a palette of three colours for each test.
class ProfileListTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    session.Paths.UserLocalPath = (dir_ / "local").string();
    session.Paths.TempPath = (dir_ / "local" / "Temp").string();
    session.Paths.AppPath = (dir_ / "app").string();
    std::filesystem::create_directories(session.Paths.TempPath);
    std::filesystem::create_directories(dir_ / "local" / "Resource");
    std::filesystem::create_directories(session.Paths.AppPath);
    session.Project.Dirty = false;
    session.Settings.PaletteProfile = {0x0000FF, 0x00FF00, 0xFF0000};
    session.Settings.PaletteRepair = {0x111111, 0x222222};
    session.Settings.CsvProfileLimit = 0;
  }
  // A copy of a fixture under another name, in a source folder of the test.
  std::string Source(const std::string& name, const std::string& fixture = "line2_free_widths.erd",
                     const std::string& folder = "src") {
    std::filesystem::create_directories(dir_ / folder);
    const auto path = dir_ / folder / name;
    testing::WriteBytes(path, testing::ReadBytes(Fixture(fixture)));
    return path.string();
  }
  std::filesystem::path ProjectCopy(const std::string& fileName) const {
    return dir_ / "local" / "Project" / "Profile" / fileName;
  }
};

}  // namespace velmora
