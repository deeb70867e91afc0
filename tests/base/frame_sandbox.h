#pragma once
// A sandbox for the application frame's tests: the session fixture, with VELMORA_HOME in a temporary
// folder (the real home is never touched) and a program folder holding copies of the shipped ini files.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "base/startup.h"
#include "base/text_encoding.h"
#include "support/session_fixture.h"
#include "support/test_support.h"

namespace velmora::testing {

class FrameSandbox : public SessionTest {
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
  }

  // Starts as the desktop program does, one instance per user.
  StartUpResult Start(const std::string& commandLine = "") {
    return StartUp(session, {commandLine, app_.string(), /*SingleInstance=*/true, /*ScratchRoot=*/{}});
  }
  std::filesystem::path UserLocal() const { return home_ / "Velmora"; }
  // A file in the user-local tree holding its own relative path, its folders made as needed.
  void Put(const std::string& relative) const {
    std::filesystem::create_directories((UserLocal() / relative).parent_path());
    WriteBytes(UserLocal() / relative, relative);
  }
  // The file's lines, decoded from Shift-JIS.
  static std::vector<std::string> Lines(const std::filesystem::path& path) { return ReadSystemTextLines(path); }

  std::filesystem::path home_;
  std::filesystem::path app_;

 private:
  std::optional<std::string> savedHome_;
};

}  // namespace velmora::testing
