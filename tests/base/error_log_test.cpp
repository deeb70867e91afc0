#include "base/error_log.h"

#include <gtest/gtest.h>

#include <regex>

#include "base/legacy_error.h"
#include "frame_sandbox.h"
#include "support/checks.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

class ErrorLogTest : public testing::FrameSandbox {
 protected:
  void SetUp() override {
    FrameSandbox::SetUp();
    ASSERT_TRUE((run_ = Start()).MayGoOn);
  }
  fs::path LogFile() const { return UserLocal() / "Temp" / "Sorvik_Err.log"; }
  void Log(const std::string& text, bool quiet = false) {
    ErrorLog(session, "basERD", "ReadERD", LegacyError(ErrorNumber::InvalidData, text), quiet);
  }
  StartUpResult run_;
};

TEST_F(ErrorLogTest, LineAndMessageNameModuleAndProcedure) {
  ErrorLog(session, "bas共通", "uToken", LegacyError(ErrorNumber::InvalidData, "区切りが不正です"));
  const auto lines = Lines(LogFile());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_TRUE(std::regex_match(
      lines[0], std::regex(R"(\d{4}/\d{2}/\d{2} \d{2}:\d{2}:\d{2}  \[ bas共通 : uToken \]  ERROR : 区切りが不正です)")))
      << lines[0];
  testing::ExpectMessages(ui_, {{"ERROR : 区切りが不正です", "[ bas共通 : uToken ]", MsgIcon::Exclamation}});
}

TEST_F(ErrorLogTest, QuietWritesOnlyASecondErrorAddsALineARestartStartsANewLog) {
  Log("first", /*quiet=*/true);
  EXPECT_TRUE(ui_.Messages().empty());
  Log("second");
  auto lines = Lines(LogFile());
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_TRUE(lines[0].ends_with("  ERROR : first"));
  EXPECT_TRUE(lines[1].ends_with("  ERROR : second"));
  run_ = {};  // the first run ends, releasing its lock
  ASSERT_TRUE(Start().MayGoOn);
  EXPECT_FALSE(fs::exists(LogFile()));
  Log("third", true);
  lines = Lines(LogFile());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_TRUE(lines[0].ends_with("  ERROR : third"));
}

TEST_F(ErrorLogTest, UnwritableLogStillShowsTheMessageThenRaisesNamingTheLog) {
  fs::remove_all(UserLocal() / "Temp");
  testing::WriteBytes(UserLocal() / "Temp", "not a folder");
  EXPECT_NE(testing::WhatOf([&] { Log("boom"); }).find("Sorvik_Err.log"), std::string::npos);
  EXPECT_EQ(ui_.OnlyMessageText(), "ERROR : boom");
  // At a boundary that goes on, the failure of the log itself stops nothing.
  EXPECT_FALSE(GuardedContinue(session, "basMain", "Main", [] { throw LegacyError(ErrorNumber::Overflow, "again"); }));
  EXPECT_EQ(ui_.Messages().size(), 2u);
}

TEST_F(ErrorLogTest, BeforeTheTempFolderIsKnownNothingIsWrittenAnywhere) {
  session.Paths.TempPath.clear();
  const fs::path cwd = fs::current_path();
  fs::current_path(dir_.path());
  Log("early");
  fs::current_path(cwd);
  EXPECT_FALSE(fs::exists(dir_ / "Sorvik_Err.log"));
  EXPECT_FALSE(fs::exists(LogFile()));
  EXPECT_EQ(ui_.OnlyMessageText(), "ERROR : early");
}

TEST_F(ErrorLogTest, GuardedReportsAndSaysWhetherTheOperationEndedNormally) {
  EXPECT_TRUE(Guarded(session, "basIRI", "RunIri", [] {}));
  EXPECT_FALSE(Guarded(session, "basIRI", "RunIri", [] { RaiseDivisionByZero("dx"); }));
  const auto lines = Lines(LogFile());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_NE(lines[0].find("[ basIRI : RunIri ]  ERROR : "), std::string::npos);
  EXPECT_NE(lines[0].find("(dx)"), std::string::npos);
}

}  // namespace
}  // namespace velmora
