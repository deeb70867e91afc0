#pragma once
// A sandbox for the application frame's tests: VELMORA_HOME in a temporary folder (the real home is
// never touched), a program folder holding copies of the shipped ini files, a scripted user
// interaction, and the process-wide paths, settings and conditions restored afterwards.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "base/app_paths.h"
#include "base/settings.h"
#include "base/startup.h"
#include "base/text_encoding.h"
#include "support/test_support.h"

namespace velmora::testing {

class FrameSandbox : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const char* old = std::getenv("VELMORA_HOME")) savedHome_ = old;
    home_ = dir_ / "home";
    app_ = dir_ / "app";
    std::filesystem::create_directories(home_);
    std::filesystem::create_directories(app_);
    ::setenv("VELMORA_HOME", home_.c_str(), 1);
    for (const char* name : {"Default.ini", "TOLVAVERI.ini"})
      std::filesystem::copy_file(SourceDir() / "resources" / name, app_ / name);
  }
  void TearDown() override {
    if (savedHome_) ::setenv("VELMORA_HOME", savedHome_->c_str(), 1);
    else ::unsetenv("VELMORA_HOME");
    Paths() = savedPaths_;
    Settings() = savedSettings_;
    DefaultConditions() = savedDefault_;
    CurrentConditions() = savedCurrent_;
    ProjectHooks() = savedHooks_;
  }

  StartUpResult Start(const std::string& commandLine = "") { return StartUp({commandLine, app_.string()}); }
  std::filesystem::path UserLocal() const { return home_ / "Velmora"; }
  // The file's lines, decoded from Shift-JIS.
  static std::vector<std::string> Lines(const std::filesystem::path& path) { return ReadSystemTextLines(path); }

  TempDir dir_;
  std::filesystem::path home_;
  std::filesystem::path app_;
  ScriptedUi ui_;

 private:
  std::optional<std::string> savedHome_;
  AppPaths savedPaths_ = Paths();
  AppSettings savedSettings_ = Settings();
  CalcConditions savedDefault_ = DefaultConditions();
  CalcConditions savedCurrent_ = CurrentConditions();
  ProjectResetHooks savedHooks_ = ProjectHooks();
};

}  // namespace velmora::testing
