#pragma once
// For tests of computations that log and write debug tables: TempPath and DebugPath in a temporary
// folder ("Temp", "Debug"), a scripted user interaction, and the process-wide paths and settings
// restored afterwards.
#include <gtest/gtest.h>

#include <filesystem>

#include "base/app_paths.h"
#include "base/settings.h"
#include "support/test_support.h"

namespace velmora::testing {

class ScratchPathsTest : public ::testing::Test {
 protected:
  ScratchPathsTest() {
    Paths().TempPath = (dir_ / "Temp").string();
    Paths().DebugPath = (dir_ / "Debug").string();
    std::filesystem::create_directories(Paths().TempPath);
  }
  ~ScratchPathsTest() override {
    Paths() = savedPaths_;
    Settings() = savedSettings_;
  }

 private:
  AppPaths savedPaths_ = Paths();
  AppSettings savedSettings_ = Settings();

 protected:
  TempDir dir_;
  ScriptedUi ui_;
};

}  // namespace velmora::testing
