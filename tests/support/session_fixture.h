#pragma once
// The one fixture for tests that need the program's common state: a fresh session per test whose
// interaction is a scripted one, with TempPath and DebugPath in a temporary folder ("Temp", "Debug").
#include <gtest/gtest.h>

#include <filesystem>

#include "base/session.h"
#include "support/test_support.h"

namespace velmora::testing {

class SessionTest : public ::testing::Test {
 protected:
  SessionTest() {
    session.Paths.TempPath = (dir_ / "Temp").string();
    session.Paths.DebugPath = (dir_ / "Debug").string();
    std::filesystem::create_directories(session.Paths.TempPath);
  }

  TempDir dir_;
  ScriptedUi ui_;
  Session session{ui_};
};

}  // namespace velmora::testing
