#pragma once
// A scratch user-local tree, a small palette and fixture copies for the profile list's tests.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "base/app_paths.h"
#include "base/settings.h"
#include "support/test_support.h"

namespace velmora {

inline std::string Fixture(const std::string& name) {
  return (testing::SourceDir() / "tests/data/erd" / name).string();
}

// A scratch user-local tree and a palette of three colours for each test.
class ProfileListTest : public ::testing::Test {
 protected:
  void SetUp() override {
    savedPaths_ = Paths();
    savedSettings_ = Settings();
    Paths().UserLocalPath = (dir_ / "local").string();
    Paths().TempPath = (dir_ / "local" / "Temp").string();
    Paths().AppPath = (dir_ / "app").string();
    std::filesystem::create_directories(Paths().TempPath);
    std::filesystem::create_directories(dir_ / "local" / "Resource");
    std::filesystem::create_directories(Paths().AppPath);
    Paths().ProjectDirty = false;
    Settings().PaletteProfile = {0x0000FF, 0x00FF00, 0xFF0000};
    Settings().PaletteRepair = {0x111111, 0x222222};
    Settings().CsvProfileLimit = 0;
  }
  void TearDown() override {
    Paths() = savedPaths_;
    Settings() = savedSettings_;
  }
  // A copy of a fixture under another name, in the source folder of the test.
  std::string Source(const std::string& name, const std::string& fixture = "line2_free_widths.erd") {
    std::filesystem::create_directories(dir_ / "src");
    const auto path = dir_ / "src" / name;
    testing::WriteBytes(path, testing::ReadBytes(Fixture(fixture)));
    return path.string();
  }
  std::filesystem::path ProjectCopy(const std::string& fileName) const {
    return dir_ / "local" / "Project" / "Profile" / fileName;
  }

  testing::TempDir dir_;
  AppPaths savedPaths_;
  AppSettings savedSettings_;
};

}  // namespace velmora
