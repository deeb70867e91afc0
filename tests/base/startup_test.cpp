#include "base/startup.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <regex>

#include "base/session.h"
#include "base/settings_io.h"
#include "frame_sandbox.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::WriteBytes;

class StartUpTest : public testing::FrameSandbox {};

TEST_F(StartUpTest, FreshStartBuildsTheTreeLoadsSettingsAndMayGoOn) {
  const StartUpResult result = Start();
  ASSERT_TRUE(result.MayGoOn);
  EXPECT_TRUE(result.Lock.Held());
  EXPECT_TRUE(ui_.Messages().empty());
  EXPECT_EQ(session.Paths.AppPath, app_.string());
  EXPECT_EQ(session.Paths.UserLocalPath, UserLocal().string());
  EXPECT_EQ(session.Paths.TempPath, (UserLocal() / "Temp").string());
  EXPECT_EQ(session.Paths.DebugPath, (UserLocal() / "Debug").string());
  EXPECT_EQ(session.Paths.TempBmpPath, (UserLocal() / "Temp" / "temp.bmp").string());
  for (const char* sub : {"Project/Profile", "Project/Screening", "Temp", "Debug", "Resource"})
    EXPECT_TRUE(fs::is_directory(UserLocal() / sub)) << sub;
  for (const fs::path& made : {home_ / "Documents" / "Velmora", home_ / "Pictures" / "Velmora",
                              home_ / "Velmora_Public" / "Resource"})
    EXPECT_TRUE(fs::is_directory(made)) << made;
  const auto log = Lines(UserLocal() / "debug.log");
  ASSERT_EQ(log.size(), 1u);
  EXPECT_TRUE(std::regex_match(log[0], std::regex(R"(\d{4}/\d{2}/\d{2} \d{2}:\d{2}:\d{2} : \[START\])"))) << log[0];
  EXPECT_FALSE(session.Paths.DebugSwitch);
  EXPECT_FALSE(result.Splash.Show);  // SplushTime=0 in the shipped file
  // The shipped conditions reached the working copy; the evaluation length comes from no file.
  EXPECT_EQ(session.CurrentConditions.Iri.Speed, 80.0);
  EXPECT_EQ(session.CurrentConditions.RepairIri.KtMs, 653.0);
  EXPECT_EQ(session.CurrentConditions.Iri.IriBaseLength, 10.0);
  EXPECT_EQ(session.CurrentConditions.RepairIri.IriBaseLength, 10.0);
  EXPECT_EQ(session.CurrentConditions, session.DefaultConditions);
  EXPECT_EQ(session.Settings.LongOctaves, (std::vector<std::int32_t>{1, 2, 3}));
}

TEST_F(StartUpTest, RestartWipesRootFilesProjectAndTempButKeepsOtherFoldersAndResource) {
  {
    StartUpResult first = Start();
    ASSERT_TRUE(first.MayGoOn);
    SetPrevValue(session, "CommonDialogPath", "ERDファイル追加", "/data/roads");
    WriteBytes(UserLocal() / "stray.txt", "x");
    fs::create_directories(UserLocal() / "mine" / "deep");
    WriteBytes(UserLocal() / "mine" / "deep" / "keep.txt", "keep");
    WriteBytes(UserLocal() / "Project" / "Profile" / "a.erd", "x");
    fs::create_directories(UserLocal() / "Project" / "Extra");
    WriteBytes(UserLocal() / "Temp" / "t.bmp", "x");
    WriteBytes(UserLocal() / "Debug" / "Profile.csv", "x");
    fs::create_directories(UserLocal() / "Debug" / "old");
    WriteBytes(UserLocal() / "Debug" / "old" / "kept.csv", "x");
  }  // the first run ends: its lock is released
  ASSERT_TRUE(Start().MayGoOn);
  EXPECT_FALSE(fs::exists(UserLocal() / "stray.txt"));
  EXPECT_EQ(ReadBytes(UserLocal() / "mine" / "deep" / "keep.txt"), "keep");
  EXPECT_FALSE(fs::exists(UserLocal() / "Project" / "Profile" / "a.erd"));
  EXPECT_FALSE(fs::exists(UserLocal() / "Project" / "Extra"));
  EXPECT_TRUE(fs::is_directory(UserLocal() / "Project" / "Profile"));
  EXPECT_FALSE(fs::exists(UserLocal() / "Temp" / "t.bmp"));
  EXPECT_FALSE(fs::exists(UserLocal() / "Debug" / "Profile.csv"));
  EXPECT_TRUE(fs::exists(UserLocal() / "Debug" / "old" / "kept.csv"));  // Debug loses its files only
  EXPECT_EQ(GetPrevValue(session, "CommonDialogPath", "ERDファイル追加"), "/data/roads");
}

TEST_F(StartUpTest, SecondInstanceIsRefusedBeforeAnyFolderWork) {
  StartUpResult first = Start();
  ASSERT_TRUE(first.MayGoOn);
  WriteBytes(UserLocal() / "Project" / "Profile" / "open.erd", "work of the first run");
  WriteBytes(UserLocal() / "stray.txt", "x");
  const AppPaths pathsOfFirstRun = session.Paths;
  ui_.Log.clear();

  const StartUpResult second = Start("SWDEBUG");
  EXPECT_FALSE(second.MayGoOn);
  EXPECT_FALSE(second.Lock.Held());
  const auto messages = ui_.Messages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].Text, "このアプリケーションはすでに開かれています。");
  EXPECT_EQ(messages[0].Title, "APP Load Error");
  EXPECT_EQ(messages[0].Icon, MsgIcon::Exclamation);
  EXPECT_EQ(ReadBytes(UserLocal() / "Project" / "Profile" / "open.erd"), "work of the first run");
  EXPECT_TRUE(fs::exists(UserLocal() / "stray.txt"));
  EXPECT_EQ(session.Paths.UserLocalPath, pathsOfFirstRun.UserLocalPath);
  EXPECT_FALSE(session.Paths.DebugSwitch);
}

TEST_F(StartUpTest, AnotherProcessHoldingTheLockRefusesThisOne) {
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // The other process: starts, says so, and stays until its parent closes the pipe.
    ::close(ready[0]);
    StartUpResult held = StartUp(session, {"", app_.string(), true});
    const char ok = held.MayGoOn ? '1' : '0';
    [[maybe_unused]] auto n = ::write(ready[1], &ok, 1);
    ::pause();
    ::_exit(0);
  }
  ::close(ready[1]);
  char ok = 0;
  ASSERT_EQ(::read(ready[0], &ok, 1), 1);
  ::close(ready[0]);
  EXPECT_EQ(ok, '1');
  WriteBytes(UserLocal() / "stray.txt", "x");
  const StartUpResult mine = Start();
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_FALSE(mine.MayGoOn);
  EXPECT_EQ(ui_.OnlyMessageText(), "このアプリケーションはすでに開かれています。");
  EXPECT_TRUE(fs::exists(UserLocal() / "stray.txt"));
  // With the other process gone, the lock is free again.
  EXPECT_TRUE(Start().MayGoOn);
}

TEST_F(StartUpTest, WithoutTheDesktopRuleASessionStartsBesideARunningInstance) {
  const StartUpResult desktop = Start();
  ASSERT_TRUE(desktop.Lock.Held());
  Session other;
  const StartUpResult engine = StartUp(other, {"", app_.string(), false});
  EXPECT_TRUE(engine.MayGoOn);
  EXPECT_FALSE(engine.Lock.Held());
  EXPECT_TRUE(ui_.Messages().empty());
}

TEST_F(StartUpTest, MissingDefaultIniShowsItsMessageAndEnds) {
  fs::remove(app_ / "Default.ini");
  const StartUpResult result = Start();
  EXPECT_FALSE(result.MayGoOn);
  const auto messages = ui_.Messages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].Text, "下記の設定ファイルが見つかりませんでした。\r\n\r\n設定ファイル名：" + app_.string() +
                                  "/Default.ini\r\n\r\n確認してください。");
  EXPECT_EQ(messages[0].Title, "設定ファイル");
  EXPECT_EQ(messages[0].Icon, MsgIcon::Exclamation);
  // The project was reset on built-in values before the check; no start line was written.
  EXPECT_EQ(session.CurrentConditions.FilterLong, 50);
  EXPECT_EQ(session.CurrentConditions.Iri.Speed, 0.0);
  EXPECT_EQ(session.CurrentConditions.LongBoundary, 51.2);
  EXPECT_EQ(session.CurrentConditions.Iri.IriBaseLength, 10.0);
  EXPECT_FALSE(fs::exists(UserLocal() / "debug.log"));
}

TEST_F(StartUpTest, RelativeFoldersAreTakenAsAbsoluteWithoutATrailingSeparator) {
  const fs::path cwd = fs::current_path();
  fs::current_path(dir_.path());
  ::setenv("VELMORA_HOME", "home/", 1);
  const StartUpResult result = StartUp(session, {"", "./app/"});
  fs::current_path(cwd);
  ASSERT_TRUE(result.MayGoOn);
  EXPECT_EQ(session.Paths.AppPath, app_.string());
  EXPECT_EQ(session.Paths.UserLocalPath, UserLocal().string());
  EXPECT_TRUE(fs::is_directory(UserLocal() / "Project" / "Profile"));
}

TEST_F(StartUpTest, DebugSwitchIsOneWholeWordInAnyCaseAndPlace) {
  const std::pair<const char*, bool> cases[] = {
      {"a.prj swDebug", true}, {"SWDEBUG", true}, {"x\tSwDeBuG\ty", true}, {"SWDEBUGX", false}, {"", false},
      {"-SWDEBUG", false}};
  for (const auto& [commandLine, expected] : cases) {
    StartUpResult result = Start(commandLine);
    ASSERT_TRUE(result.MayGoOn);
    EXPECT_EQ(session.Paths.DebugSwitch, expected) << "\"" << commandLine << "\"";
  }
}

TEST_F(StartUpTest, SplashTicksAtHalfSeconds) {
  EXPECT_FALSE(SplashTimingFor(0).Show);
  EXPECT_FALSE(SplashTimingFor(-2).Show);
  const SplashTiming three = SplashTimingFor(3);
  EXPECT_TRUE(three.Show);
  EXPECT_EQ(three.Ticks, 7);
  EXPECT_EQ(three.Seconds, 3.5);
  EXPECT_EQ(SplashTimingFor(1).Ticks, 3);
  // From the settings file.
  WriteBytes(app_ / "TOLVAVERI.ini", "[General]\r\nSplushTime=3\r\n");
  const StartUpResult result = Start();
  EXPECT_TRUE(result.Splash.Show);
  EXPECT_EQ(result.Splash.Ticks, 7);
}

TEST_F(StartUpTest, UserLocalFolderThatCannotBeMadeIsReportedAndStartUpGoesOn) {
  WriteBytes(home_ / "Velmora", "a file where the folder should be");
  const StartUpResult result = Start();
  EXPECT_TRUE(result.MayGoOn);
  const auto messages = ui_.Messages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].Title, "[ basMain : Main->FolderCreateAndInitialize ]");
  EXPECT_NE(messages[0].Text.find("ERROR : " + UserLocal().string()), std::string::npos) << messages[0].Text;
  EXPECT_NE(messages[0].Text.find("フォルダを作成できません"), std::string::npos);
  EXPECT_EQ(ReadBytes(home_ / "Velmora"), "a file where the folder should be");
  EXPECT_EQ(session.CurrentConditions.Iri.Speed, 80.0);
  EXPECT_EQ(session.Settings.ShortOctaves, (std::vector<std::int32_t>{7, 8, 9}));
}

TEST_F(StartUpTest, NewProjectRunsTheOwnersHooksAroundTheDefaults) {
  ASSERT_TRUE(Start().MayGoOn);
  std::vector<std::string> calls;
  session.Hooks.ReleaseProject = [&] { calls.push_back("release " + std::to_string(session.CurrentConditions.Iri.Speed)); };
  session.Hooks.ClearRepairStudy = [&] { calls.push_back("study " + std::to_string(session.CurrentConditions.Iri.Speed)); };
  session.Project.FileName = "/data/a.prj";
  session.Project.Dirty = true;
  session.CurrentConditions.Iri.Speed = 1;
  session.CurrentConditions.FilterLong = 7;
  InitProjectData(session);
  EXPECT_EQ(calls, (std::vector<std::string>{"release 1.000000", "study 80.000000"}));
  EXPECT_EQ(session.Project.FileName, "");
  EXPECT_FALSE(session.Project.Dirty);
  EXPECT_EQ(session.CurrentConditions.FilterLong, 50);
}

TEST_F(StartUpTest, ExitQuestionAndStatisticsFlagsKeptAcrossRuns) {
  {
    StartUpResult run = Start();
    ASSERT_TRUE(run.MayGoOn);
    ui_.Answers = {MsgAnswer::No, MsgAnswer::Yes};
    EXPECT_FALSE(ConfirmExit(session));
    EXPECT_TRUE(ConfirmExit(session));
    const auto messages = ui_.Messages();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].Text, "プログラムを終了しますか？");
    EXPECT_EQ(messages[0].Title, "");
    EXPECT_EQ(messages[0].Icon, MsgIcon::Question);
    EXPECT_EQ(messages[0].Buttons, MsgButtons::YesNo);
    SaveStatisticsFlags(session, {true, false, true, true, false});
  }
  ASSERT_TRUE(Start().MayGoOn);
  // 統計値 / 表示指定情報 in Shift-JIS: 93 9D 8C 76 92 6C / 95 5C 8E A6 8E 77 92 E8 8F EE 95 F1.
  EXPECT_NE(ReadBytes(UserLocal() / "Resource" / "前回値.ini")
                .find("[\x93\x9d\x8c\x76\x92\x6c]\r\n\x95\x5c\x8e\xa6\x8e\x77\x92\xe8\x8f\xee\x95\xf1=1,0,1,1,0\r\n"),
            std::string::npos);
  EXPECT_EQ(LoadStatisticsFlags(session), (std::vector<bool>{true, false, true, true, false}));
}

}  // namespace
}  // namespace velmora
