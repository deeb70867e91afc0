#include "base/error_log.h"

#include <gtest/gtest.h>

#include <regex>

#include "base/legacy_error.h"
#include "frame_sandbox.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

class ErrorLogTest : public testing::FrameSandbox {
 protected:
  fs::path LogFile() const { return UserLocal() / "Temp" / "Sorvik_Err.log"; }
  static LegacyError Sample(const std::string& text) { return LegacyError(ErrorNumber::InvalidData, text); }
};

TEST_F(ErrorLogTest, LineAndMessageNameModuleAndProcedure) {
  ASSERT_TRUE(Start().MayGoOn);
  ErrorLog(session, "bas共通", "uToken", Sample("区切りが不正です"));
  const auto lines = Lines(LogFile());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_TRUE(std::regex_match(
      lines[0], std::regex(R"(\d{4}/\d{2}/\d{2} \d{2}:\d{2}:\d{2}  \[ bas共通 : uToken \]  ERROR : 区切りが不正です)")))
      << lines[0];
  const auto messages = ui_.Messages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].Title, "[ bas共通 : uToken ]");
  EXPECT_EQ(messages[0].Text, "ERROR : 区切りが不正です");
  EXPECT_EQ(messages[0].Icon, MsgIcon::Exclamation);
}

TEST_F(ErrorLogTest, QuietWritesOnlyASecondErrorAddsALineARestartStartsANewLog) {
  {
    StartUpResult run = Start();
    ASSERT_TRUE(run.MayGoOn);
    ErrorLog(session, "basERD", "ReadERD", Sample("first"), /*quiet=*/true);
    EXPECT_TRUE(ui_.Messages().empty());
    ErrorLog(session, "basERD", "ReadERD", Sample("second"));
    const auto lines = Lines(LogFile());
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_TRUE(lines[0].ends_with("ERROR : first"));
    EXPECT_TRUE(lines[1].ends_with("ERROR : second"));
  }
  ASSERT_TRUE(Start().MayGoOn);
  EXPECT_FALSE(fs::exists(LogFile()));
  ErrorLog(session, "basERD", "ReadERD", Sample("third"), true);
  const auto lines = Lines(LogFile());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_TRUE(lines[0].ends_with("ERROR : third"));
}

TEST_F(ErrorLogTest, UnwritableLogStillShowsTheMessageThenRaisesNamingTheLog) {
  ASSERT_TRUE(Start().MayGoOn);
  fs::remove_all(UserLocal() / "Temp");
  testing::WriteBytes(UserLocal() / "Temp", "not a folder");
  try {
    ErrorLog(session, "basMain", "Main", Sample("boom"));
    FAIL() << "the log failure must reach the caller";
  } catch (const LegacyError& e) {
    EXPECT_NE(std::string(e.what()).find("Sorvik_Err.log"), std::string::npos);
  }
  EXPECT_EQ(ui_.OnlyMessageText(), "ERROR : boom");
  // At a boundary that goes on, the failure of the log itself stops nothing.
  EXPECT_FALSE(GuardedContinue(session, "basMain", "Main", [] { throw LegacyError(ErrorNumber::Overflow, "again"); }));
  EXPECT_EQ(ui_.Messages().size(), 2u);
}

TEST_F(ErrorLogTest, BeforeTheTempFolderIsKnownNothingIsWrittenAnywhere) {
  session.Paths.TempPath.clear();
  const fs::path cwd = fs::current_path();
  fs::current_path(dir_.path());
  ErrorLog(session, "basMain", "Main->InitCreateFolder", Sample("early"));
  fs::current_path(cwd);
  EXPECT_FALSE(fs::exists(dir_ / "Sorvik_Err.log"));
  EXPECT_EQ(ui_.OnlyMessageText(), "ERROR : early");
}

TEST_F(ErrorLogTest, GuardedReportsAndSaysWhetherTheOperationEndedNormally) {
  ASSERT_TRUE(Start().MayGoOn);
  EXPECT_TRUE(Guarded(session, "basIRI", "RunIri", [] {}));
  EXPECT_FALSE(Guarded(session, "basIRI", "RunIri", [] { RaiseDivisionByZero("dx"); }));
  const auto lines = Lines(LogFile());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_NE(lines[0].find("[ basIRI : RunIri ]  ERROR : "), std::string::npos);
  EXPECT_NE(lines[0].find("(dx)"), std::string::npos);
}

}  // namespace
}  // namespace velmora
