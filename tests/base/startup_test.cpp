#include "base/startup.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <regex>

#include "base/session.h"
#include "base/settings_io.h"
#include "frame_sandbox.h"
#include "support/checks.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::WriteBytes;

const char* const kAlreadyOpen = "このアプリケーションはすでに開かれています。";

class StartUpTest : public testing::FrameSandbox {};

TEST_F(StartUpTest, FreshStartBuildsTheTreeLoadsSettingsAndMayGoOn) {
  const StartUpResult result = Start();
  ASSERT_TRUE(result.MayGoOn);
  EXPECT_TRUE(result.Lock.Held());
  EXPECT_TRUE(ui_.Messages().empty());
  const AppPaths& p = session.Paths;
  EXPECT_EQ((std::vector{p.AppPath, p.UserLocalPath, p.TempPath, p.DebugPath, p.TempBmpPath}),
            (std::vector<std::string>{app_, UserLocal(), UserLocal() / "Temp", UserLocal() / "Debug",
                                      UserLocal() / "Temp" / "temp.bmp"}));
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
  const IriParams golden{80, 63.3, 6, 0.15, 653, 11, 0, 10};
  EXPECT_EQ(session.CurrentConditions.Iri, golden);
  EXPECT_EQ(session.CurrentConditions.RepairIri, golden);
  EXPECT_EQ(session.CurrentConditions, session.DefaultConditions);
  EXPECT_EQ(session.Settings.LongOctaves, (std::vector<std::int32_t>{1, 2, 3}));
}

TEST_F(StartUpTest, RestartWipesRootFilesProjectAndTempButKeepsOtherFoldersAndResource) {
  {
    StartUpResult first = Start();
    ASSERT_TRUE(first.MayGoOn);
    SetPrevValue(session, "CommonDialogPath", "ERDファイル追加", "/data/roads");
    for (const char* file : {"stray.txt", "mine/deep/keep.txt", "Project/Profile/a.erd", "Project/Extra/b.erd",
                             "Temp/t.bmp", "Debug/Profile.csv", "Debug/old/kept.csv"})
      Put(file);
  }  // the first run ends: its lock is released
  ASSERT_TRUE(Start().MayGoOn);
  for (const char* gone : {"stray.txt", "Project/Profile/a.erd", "Project/Extra", "Temp/t.bmp", "Debug/Profile.csv"})
    EXPECT_FALSE(fs::exists(UserLocal() / gone)) << gone;
  // Debug loses its files only.
  for (const char* kept : {"mine/deep/keep.txt", "Debug/old/kept.csv"}) EXPECT_EQ(ReadBytes(UserLocal() / kept), kept);
  EXPECT_TRUE(fs::is_directory(UserLocal() / "Project" / "Profile"));
  EXPECT_EQ(GetPrevValue(session, "CommonDialogPath", "ERDファイル追加"), "/data/roads");
}

TEST_F(StartUpTest, SecondDesktopInstanceIsRefusedBeforeAnyFolderWorkAnEngineSessionIsNot) {
  StartUpResult first = Start();
  ASSERT_TRUE(first.MayGoOn);
  Put("Project/Profile/open.erd");
  Put("stray.txt");
  const AppPaths pathsOfFirstRun = session.Paths;
  ui_.Log.clear();

  const StartUpResult second = Start("SWDEBUG");
  EXPECT_FALSE(second.MayGoOn);
  EXPECT_FALSE(second.Lock.Held());
  testing::ExpectMessages(ui_, {{kAlreadyOpen, "APP Load Error", MsgIcon::Exclamation}});
  for (const char* file : {"Project/Profile/open.erd", "stray.txt"}) EXPECT_EQ(ReadBytes(UserLocal() / file), file);
  EXPECT_EQ(session.Paths.UserLocalPath, pathsOfFirstRun.UserLocalPath);
  EXPECT_FALSE(session.Paths.DebugSwitch);

  // Without the desktop rule a session starts beside the running instance.
  ui_.Log.clear();
  Session other;
  const StartUpResult engine = StartUp(other, {"", app_.string(), false});
  EXPECT_TRUE(engine.MayGoOn);
  EXPECT_FALSE(engine.Lock.Held());
  EXPECT_TRUE(ui_.Messages().empty());
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
  Put("stray.txt");
  const StartUpResult mine = Start();
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_FALSE(mine.MayGoOn);
  EXPECT_EQ(ui_.OnlyMessageText(), kAlreadyOpen);
  EXPECT_EQ(ReadBytes(UserLocal() / "stray.txt"), "stray.txt");
  // With the other process gone, the lock is free again.
  EXPECT_TRUE(Start().MayGoOn);
}

TEST_F(StartUpTest, MissingDefaultIniShowsItsMessageAndEnds) {
  fs::remove(app_ / "Default.ini");
  const StartUpResult result = Start();
  EXPECT_FALSE(result.MayGoOn);
  testing::ExpectMessages(ui_, {{"下記の設定ファイルが見つかりませんでした。\r\n\r\n設定ファイル名：" + app_.string() +
                                     "/Default.ini\r\n\r\n確認してください。",
                                 "設定ファイル", MsgIcon::Exclamation}});
  // The project was reset on built-in values before the check; no start line was written.
  const CalcConditions& c = session.CurrentConditions;
  EXPECT_EQ(std::tuple(c.FilterLong, c.Iri.Speed, c.LongBoundary, c.Iri.IriBaseLength), std::tuple(50, 0.0, 51.2, 10.0));
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
  EXPECT_EQ(std::tuple(three.Show, three.Ticks, three.Seconds), std::tuple(true, 7, 3.5));
  EXPECT_EQ(SplashTimingFor(1).Ticks, 3);
  WriteBytes(app_ / "TOLVAVERI.ini", "[General]\r\nSplushTime=3\r\n");
  const SplashTiming fromFile = Start().Splash;
  EXPECT_EQ(std::tuple(fromFile.Show, fromFile.Ticks), std::tuple(true, 7));
}

TEST_F(StartUpTest, UserLocalFolderThatCannotBeMadeIsReportedAndStartUpGoesOn) {
  WriteBytes(home_ / "Velmora", "a file where the folder should be");
  const StartUpResult result = Start();
  EXPECT_TRUE(result.MayGoOn);
  const std::string text = ui_.OnlyMessageText();
  EXPECT_EQ(ui_.Messages().at(0).Title, "[ basMain : Main->FolderCreateAndInitialize ]");
  EXPECT_NE(text.find("ERROR : " + UserLocal().string()), std::string::npos) << text;
  EXPECT_NE(text.find("フォルダを作成できません"), std::string::npos) << text;
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
    const testing::Shown question{"プログラムを終了しますか？", "", MsgIcon::Question, MsgButtons::YesNo};
    testing::ExpectMessages(ui_, {question, question});
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
