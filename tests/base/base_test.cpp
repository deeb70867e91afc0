// The application frame: start-up with its single-instance lock and folder tree, the error log, the
// settings files (shipped defaults, groups read and saved, previous values) and the conditions dialog.
#include "base/startup.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fmt/format.h>
#include <limits>
#include <map>
#include <random>
#include <regex>
#include <set>
#include <sstream>
#include <sys/wait.h>
#include <tuple>
#include <unistd.h>

#include "base/app_paths.h"
#include "base/colour.h"
#include "base/common.h"
#include "base/conditions_dialog.h"
#include "base/error_log.h"
#include "base/file_export_name.h"
#include "base/file_helpers.h"
#include "base/folders.h"
#include "base/ini_file.h"
#include "base/legacy_format.h"
#include "base/legacy_math.h"
#include "base/macros.h"
#include "base/number_helpers.h"
#include "base/path_helpers.h"
#include "base/settings_io.h"
#include "base/window_placement.h"
#include "base/text_encoding.h"
#include "support/checks.h"

namespace velmora {
namespace {

// A sandbox for the frame's tests: the session fixture, with VELMORA_HOME in a temporary folder (the
// real home is never touched) and a program folder holding copies of the shipped ini files.
namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::WriteBytes;

class FrameSandbox : public testing::SessionTest {
 protected:
  void SetUp() override {
    if (const char* old = std::getenv("VELMORA_HOME")) savedHome_ = old;
    home_ = dir_ / "home";
    app_ = dir_ / "app";
    fs::create_directories(home_);
    fs::create_directories(app_);
    ::setenv("VELMORA_HOME", home_.c_str(), 1);
    for (const char* name : {"Default.ini", "TOLVAVERI.ini"})
      fs::copy_file(testing::SourceDir() / "resources" / name, app_ / name);
  }
  void TearDown() override {
    if (savedHome_) ::setenv("VELMORA_HOME", savedHome_->c_str(), 1);
    else ::unsetenv("VELMORA_HOME");
  }

  // Starts as the desktop program does, one instance per user.
  StartUpResult Start(const std::string& commandLine = "") {
    return StartUp(session, {commandLine, app_.string(), /*SingleInstance=*/true, /*ScratchRoot=*/{}});
  }
  fs::path UserLocal() const { return home_ / "Velmora"; }
  // A file in the user-local tree holding its own relative path, its folders made as needed.
  void Put(const std::string& relative) const {
    fs::create_directories((UserLocal() / relative).parent_path());
    WriteBytes(UserLocal() / relative, relative);
  }
  // The file's lines, decoded from Shift-JIS.
  static std::vector<std::string> Lines(const fs::path& path) { return ReadSystemTextLines(path); }

  fs::path home_;
  fs::path app_;

 private:
  std::optional<std::string> savedHome_;
};

const char* const kAlreadyOpen = "このアプリケーションはすでに開かれています。";

class StartUpTest : public FrameSandbox {};

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
  EXPECT_FALSE(session.Paths.DebugSwitch || result.Splash.Show);  // SplushTime=0 in the shipped file
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
  EXPECT_FALSE(second.MayGoOn || second.Lock.Held());
  testing::ExpectMessages(ui_, {{kAlreadyOpen, "APP Load Error", MsgIcon::Exclamation}});
  for (const char* file : {"Project/Profile/open.erd", "stray.txt"}) EXPECT_EQ(ReadBytes(UserLocal() / file), file);
  EXPECT_EQ(session.Paths.UserLocalPath, pathsOfFirstRun.UserLocalPath);
  EXPECT_FALSE(session.Paths.DebugSwitch);

  // Without the desktop rule a session starts beside the running instance.
  ui_.Log.clear();
  Session other;
  const StartUpResult engine = StartUp(other, {"", app_.string(), false, {}});
  EXPECT_TRUE(engine.MayGoOn && !engine.Lock.Held());
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
    StartUpResult held = StartUp(session, {"", app_.string(), true, {}});
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
  const StartUpResult result = StartUp(session, {"", "./app/", false, {}});
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
  EXPECT_FALSE(SplashTimingFor(0).Show || SplashTimingFor(-2).Show);
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
  EXPECT_EQ(std::tuple(session.Project.FileName, session.Project.Dirty, session.CurrentConditions.FilterLong),
            std::tuple(std::string(), false, 50));
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

TEST_F(StartUpTest, WindowPlacementKeptAcrossRunsAndRefusedWhenItCannotBeRead) {
  {
    ASSERT_TRUE(Start().MayGoOn);
    EXPECT_FALSE(LoadWindowPlacement(session).has_value());  // nothing written yet
    SaveWindowPlacement(session, {-8, 40, 1300, 720, true});
  }
  ASSERT_TRUE(Start().MayGoOn);
  EXPECT_NE(ReadBytes(UserLocal() / "Resource" / "前回値.ini")
                .find("[Window]\r\nLeft=-8\r\nTop=40\r\nWidth=1300\r\nHeight=720\r\nMaximized=1\r\n"),
            std::string::npos);
  const std::optional<WindowPlacement> back = LoadWindowPlacement(session);
  ASSERT_TRUE(back.has_value());
  EXPECT_EQ(std::tuple(back->Left, back->Top, back->Width, back->Height, back->Maximized),
            std::tuple(-8, 40, 1300, 720, true));
  // A hand-edited file: a value that is no whole number, or a size of nothing, leaves the default.
  for (const char* width : {"12x", "", "0", "-5", "1e3"}) {
    SCOPED_TRACE(width);
    SetPrevValue(session, "Window", "Width", width);
    EXPECT_FALSE(LoadWindowPlacement(session).has_value());
  }
}

class ErrorLogTest : public FrameSandbox {
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
  const std::string bytes = ReadBytes(LogFile());  // each line ends in CR LF
  EXPECT_TRUE(bytes.find("  ERROR : first\r\n") < bytes.find("\n") && bytes.ends_with("  ERROR : second\r\n")) << bytes;
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
  EXPECT_FALSE(fs::exists(dir_ / "Sorvik_Err.log") || fs::exists(LogFile()));
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

// The settings functions with AppPath and UserLocalPath in the sandbox, without a full start.
class SettingsTest : public FrameSandbox {
 protected:
  void SetUp() override {
    FrameSandbox::SetUp();
    session.Paths.AppPath = app_.string();
    session.Paths.UserLocalPath = UserLocal().string();
    session.Paths.TempPath = (UserLocal() / "Temp").string();
    fs::create_directories(UserLocal() / "Temp");
    fs::create_directories(UserLocal() / "Resource");
  }
  void WriteIni(const char* name, const std::vector<std::string>& lines) { WriteSystemTextFile(app_ / name, lines); }
};

// The golden car's values and the band lines as loaded are checked where start-up and the conditions
// dialog show them; the groups 3 to 7 come back byte for byte in the save test below.
TEST_F(SettingsTest, ShippedFilesLoadWithoutAReportIntoTheirFields) {
  LoadGeneralSettings(session);
  LoadDefaultGroups(session, std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, false);
  EXPECT_TRUE(ui_.Messages().empty());
  const CalcConditions& c = session.DefaultConditions;
  EXPECT_EQ(std::tuple(c.FilterLong, c.FilterShort, c.LongBoundary, c.ShortBoundary, c.ScreenLongBoundary,
                       c.ScreenShortBoundary, c.LineColour, c.AppliedColour, c.SkipPartialSections),
            std::tuple(50, 10, 51.2, 6.4, 51.2, 6.4, Colour{0xFF00FF}, Colour{0x00FF00}, false));
  const AppSettings& s = session.Settings;
  EXPECT_EQ(std::tuple(s.DebugLevel, s.SplushTime, s.CsvProfileLimit, s.ShortOctaves, s.PaletteProfile.at(0)),
            std::tuple(0, 0, 0, std::vector<std::int32_t>{7, 8, 9}, MakeColour(255, 0, 0)));
  EXPECT_EQ(GetIniValue(session, GeneralIniPath(session.Paths), "収束判定値", "標準偏差比"), "1.1");
}

TEST_F(SettingsTest, OctaveListsKeepOnlyBandsOneToNinePalettesFillMissingParts) {
  WriteIni("TOLVAVERI.ini", {"[General]", "長波長合算Octave=1,2,0,10,3", "短波長合算Octave=9, x,8.5,7"});
  WriteIni("Default.ini", {"[ColorPalette_プロファイル分析]", "numColor=3", "Color-1= 10,20 ", "Color-3=1,2,3",
                           "[ColorPalette_補修形状検討]", "Color-1=1,1,1"});
  LoadGeneralSettings(session);
  EXPECT_EQ(session.Settings.LongOctaves, (std::vector<std::int32_t>{1, 2, 3}));
  EXPECT_EQ(session.Settings.ShortOctaves, (std::vector<std::int32_t>{9, 7}));
  // Colour 1 lacks blue (255); colour 2 has no key and stays black.
  EXPECT_EQ(session.Settings.PaletteProfile, (std::vector<Colour>{0xFF140A, 0, 0x030201}));
  EXPECT_TRUE(session.Settings.PaletteRepair.empty());  // no numColor: no colours, whatever else is there
  EXPECT_TRUE(ui_.Messages().empty());
}

TEST_F(SettingsTest, BadNumbersAreReportedByNameWhileGoodKeysAreStillRead) {
  WriteIni("TOLVAVERI.ini", {"[General]", "DebugLevel=abc", "SplushTime=2"});
  WriteIni("Default.ini", {"[IRI解析パラメータ]", "Speed=fast", "KsMs=63.3", "[ColorPalette_プロファイル分析]",
                           "numColor=100000"});
  LoadGeneralSettings(session);
  EXPECT_EQ(std::pair(session.Settings.DebugLevel, session.Settings.SplushTime), std::pair(0, 2));
  EXPECT_TRUE(session.Settings.PaletteProfile.empty());
  LoadDefaults(session, 2);
  EXPECT_EQ(std::pair(session.DefaultConditions.Iri.Speed, session.DefaultConditions.Iri.KsMs), std::pair(0.0, 63.3));
  const auto messages = ui_.Messages();
  ASSERT_EQ(messages.size(), 3u);
  EXPECT_EQ(messages[0].Title, "[ basInitialize : LoadGeneralSettings ]");
  EXPECT_EQ(messages[2].Title, "[ basInitialize : LoadDefaults ]");
  const char* const named[] = {"TOLVAVERI.ini", "numColor=100000", "Speed=fast"};
  for (int i = 0; i < 3; ++i) EXPECT_NE(messages[i].Text.find(named[i]), std::string::npos) << messages[i].Text;
  EXPECT_NE(messages[0].Text.find("DebugLevel=abc"), std::string::npos);
  // Every report also went to the error log.
  EXPECT_EQ(ReadSystemTextLines(UserLocal() / "Temp" / "Sorvik_Err.log").size(), 3u);
}

TEST_F(SettingsTest, UnreadableDefaultIniIsReportedOnceAndBuiltInsHold) {
  WriteBytes(app_ / "Default.ini", ToSystemCodePage("[移動平均パラメータ]\r\n") + "LongCutOffWavelength=\x82\r\n");
  session.DefaultConditions.FilterLong = 99;
  session.DefaultConditions.LongBoundary = 1;
  LoadDefaultGroups(session, std::vector<int>{1, 7}, false);
  EXPECT_EQ(std::pair(session.DefaultConditions.FilterLong, session.DefaultConditions.LongBoundary), std::pair(50, 51.2));
  EXPECT_NE(ui_.OnlyMessageText().find("Default.ini: 2 行目"), std::string::npos) << ui_.OnlyMessageText();
}

TEST_F(SettingsTest, GroupsStartFromBuiltInValuesAndIgnoreNumbersOutsideOneToTen) {
  WriteIni("Default.ini", {"[プロファイル分解_バンド別低減ラインパラメータ]", "1-Oct=abc", "2-Oct=", "3-Oct=2.5",
                           "[バンド別色分けリスト]", "3-Oct=10,20", "[移動平均パラメータ]",
                           "LongCutOffWavelength=40.5", "ShortCutOffWavelength=11.5"});
  CalcConditions& c = session.DefaultConditions;
  c = CalcConditions{};
  c.Iri.Speed = 5;
  c.Iri.IriBaseLength = 10;
  c.LineColour = 1;
  for (int group = 1; group <= 10; ++group) LoadDefaults(session, group);
  EXPECT_TRUE(ui_.Messages().empty());  // bad band lines are dropped in silence
  for (int band : {1, 2, 9}) EXPECT_TRUE(IsNoValue(c.BandLines.Value[band])) << band;
  EXPECT_EQ(c.BandLines.Value[3], 2.5);
  EXPECT_EQ(c.BandColours[3], 0xFF140Au);
  EXPECT_EQ(c.BandColours[1], 0xFFFFFFu);
  EXPECT_EQ(c.RepairBandColours[3], 0xFF140Au);  // all three band groups read the one colour list
  EXPECT_EQ(std::pair(c.FilterLong, c.FilterShort), std::pair(40, 12));  // half to even
  EXPECT_EQ(c.Iri.Speed, 0.0);
  EXPECT_EQ(c.Iri.IriBaseLength, 10.0);  // not a key of the file
  EXPECT_EQ(std::pair(c.LineColour, c.LongBoundary), std::pair(Colour{0xFF00FF}, 51.2));
  const CalcConditions before = c;
  LoadDefaults(session, 0);
  LoadDefaults(session, 11);
  EXPECT_EQ(c, before);
}

TEST_F(SettingsTest, SaveWritesGroupsThreeToSevenInTheirFormatsKeepsTheRestAndRaisesWhenItCannot) {
  const std::string original = ReadBytes(app_ / "Default.ini");
  LoadDefaultGroups(session, std::vector<int>{3, 4, 7}, false);
  CalcConditions& c = session.DefaultConditions;
  c.BandLines.Value[1] = 9.5;
  c.BandLines.Value[2] = kNoValue;
  c.LineColour = MakeColour(1, 2, 3);
  c.LongBoundary = 40;
  c.Iri.Speed = 60;
  for (int group : {3, 4, 7, 2}) SaveDefaults(session, group);  // 2 is not a group that is saved
  const auto lines = ReadSystemTextLines(app_ / "Default.ini");
  for (const char* line : {"1-Oct=9.50000", "2-Oct=", "低減ライン値の表示色=1, 2, 3", "長波側境界値=40.00000", "Speed=80"})
    EXPECT_NE(std::find(lines.begin(), lines.end(), line), lines.end()) << line;
  // Same number of lines: values were replaced in place, nothing added.
  EXPECT_EQ(lines.size(), ReadSystemTextLines(testing::SourceDir() / "resources" / "Default.ini").size());
  const CalcConditions saved = c;
  LoadDefaultGroups(session, std::vector<int>{3, 4, 7}, false);
  EXPECT_EQ(std::tuple(c.BandLines, c.LineColour, c.LongBoundary), std::tuple(saved.BandLines, saved.LineColour, 40.0));
  // Writing the loaded values back gives the file as shipped.
  WriteBytes(app_ / "Default.ini", original);
  LoadDefaultGroups(session, std::vector<int>{3, 4, 5, 6, 7}, false);
  for (int group = 3; group <= 7; ++group) SaveDefaults(session, group);
  EXPECT_EQ(ReadBytes(app_ / "Default.ini"), original);

  // A file that cannot be written raises and leaves nothing.
  fs::remove(app_ / "Default.ini");
  fs::create_directory(app_ / "Default.ini");
  EXPECT_THROW(SaveDefaults(session, 7), LegacyError);
  EXPECT_TRUE(fs::is_directory(app_ / "Default.ini"));
}

TEST_F(SettingsTest, PreviousValuesKeepUserLocalPathsValidAfterTheTreeMoved) {
  SetPrevValue(session, "CommonDialogPath", "プロジェクト読込みフォルダ", UserLocal().string() + "/Project");
  SetPrevValue(session, "CommonDialogPath", "ERDファイル保存", app_.string() + "/out");
  const auto stored = ReadSystemTextLines(UserLocal() / "Resource" / "前回値.ini");
  EXPECT_EQ(stored, (std::vector<std::string>{"[CommonDialogPath]", "プロジェクト読込みフォルダ=$(UserLocalPath)/Project",
                                              "ERDファイル保存=$(AppPath)/out"}));
  // The user-local tree moves (another account, another disk) with its Resource folder.
  const fs::path moved = dir_ / "elsewhere" / "Velmora";
  fs::create_directories(moved.parent_path());
  fs::rename(UserLocal(), moved);
  session.Paths.UserLocalPath = moved.string();
  EXPECT_EQ(GetPrevValue(session, "CommonDialogPath", "プロジェクト読込みフォルダ"), moved.string() + "/Project");
  EXPECT_EQ(GetPrevValue(session, "CommonDialogPath", "ERDファイル保存"), app_.string() + "/out");
  EXPECT_EQ(GetPrevValue(session, "CommonDialogPath", "missing"), "");
  SetPrevValue(session, "CommonDialogPath", "blank", "");
  EXPECT_EQ(GetPrevValue(session, "CommonDialogPath", "blank"), "");
}

TEST_F(SettingsTest, BrokenPreviousValuesFileReadsEmptyWithOneReportAndIsNotOverwritten) {
  const std::string broken = "[CommonDialogPath]\r\nERDファイル追加=\xFF\xFF\r\n";
  WriteBytes(UserLocal() / "Resource" / "前回値.ini", broken);
  EXPECT_EQ(GetPrevValue(session, "CommonDialogPath", "ERDファイル追加"), "");
  EXPECT_EQ(ui_.Messages().size(), 1u);
  SetPrevValue(session, "CommonDialogPath", "ERDファイル追加", "/data");  // logged without a message
  EXPECT_EQ(ui_.Messages().size(), 1u);
  EXPECT_EQ(ReadBytes(UserLocal() / "Resource" / "前回値.ini"), broken);
  EXPECT_EQ(ReadSystemTextLines(UserLocal() / "Temp" / "Sorvik_Err.log").size(), 2u);
}

TEST_F(SettingsTest, ReadIniTreatsEmptyAsAbsentAndCutsLikeThePlatformBuffer) {
  const std::string ascii(300, 'a');
  std::string wide;
  for (int i = 0; i < 200; ++i) wide += "あ";  // two bytes each in Shift-JIS
  WriteIni("x.ini", {"[S]", "ascii=" + ascii, "wide=" + wide, "empty=", "half=ｱ" + std::string(260, 'b')});
  auto read = [&](const char* key) {
    std::string value = "unchanged";
    return ReadIni(app_ / "x.ini", "S", key, value) ? value : "false, " + value;
  };
  EXPECT_EQ(read("empty"), "false, unchanged");
  EXPECT_EQ(read("none"), "false, unchanged");
  EXPECT_EQ(read("ascii"), std::string(254, 'a'));
  EXPECT_EQ(read("wide"), wide.substr(0, 127 * 3));  // 127 characters = 254 bytes; the 128th would not fit
  EXPECT_EQ(read("half"), "ｱ" + std::string(253, 'b'));  // a half-width kana is one byte
}

const char* const kInvalid = "指定データにエラーがありました。\r\n修正してください。";

class ConditionsDialogTest : public FrameSandbox {
 protected:
  void SetUp() override {
    FrameSandbox::SetUp();
    ASSERT_TRUE((run_ = Start()).MayGoOn);
    ui_.Log.clear();
  }
  ConditionsDialog Open() {
    return ConditionsDialog(session, [this] { ++dirtyMarks_; });
  }
  std::optional<std::string> DefaultValue(const std::string& section, const std::string& key) const {
    return ReadIniValue(DefaultIniPath(session.Paths), section, key);
  }
  StartUpResult run_;
  int dirtyMarks_ = 0;
};

TEST_F(ConditionsDialogTest, OpensShowingTheCurrentConditions) {
  const ConditionsDialog dialog = Open();
  EXPECT_TRUE(dialog.IsOpen());
  ConditionsBoxes expected;
  expected.txtBandFilter = {"50", "10"};
  expected.txt_IRI = {"80", "63.3", "6", "0.15", "653", "11"};
  expected.txt_バンド別低減ライン = {"12", "8", "5", "3", "2", "1.2", "0.8", "0.5", "0.3"};
  expected.cmd補修予測色 = {0xFF00FF, 0x00FF00};
  EXPECT_EQ(dialog.Boxes, expected);  // ARS, partial sections computed, every box enabled
}

TEST_F(ConditionsDialogTest, CheckRefusesEmptyOrNonNumericEnabledBoxesAndOkStaysOpen) {
  ConditionsDialog dialog = Open();
  const CalcConditions before = session.CurrentConditions;
  dialog.Boxes.txt_IRI[2] = " ";
  dialog.Boxes.txt_IRI[4] = "abc";
  dialog.Boxes.txt_IRIEnabled[4] = false;  // a disabled box is not checked
  dialog.Boxes.txtBandFilter[1] = "1O";
  dialog.Boxes.txt_バンド別低減ライン[0] = "not checked";
  EXPECT_EQ(InvalidBoxes(dialog.Boxes), (std::vector<std::string>{"txtBandFilter(1)", "txt_IRI(2)"}));
  EXPECT_FALSE(dialog.Ok());
  EXPECT_TRUE(dialog.IsOpen());
  testing::ExpectMessages(ui_, {{kInvalid, "エラー"}});
  EXPECT_EQ(session.CurrentConditions, before);
  EXPECT_EQ(dirtyMarks_, 0);
}

TEST_F(ConditionsDialogTest, OkStoresTheBoxesAndMarksTabsOnlyWhenSomethingChanged) {
  {
    ConditionsDialog unchanged = Open();
    unchanged.Boxes.txt_IRI[0] = "80.000";  // the same value typed differently
    EXPECT_TRUE(unchanged.Ok());
    EXPECT_EQ(dirtyMarks_, 0);
  }
  ConditionsDialog dialog = Open();
  dialog.Boxes.txt_IRI[0] = "60";
  dialog.Boxes.optIRI_PW = 1;
  dialog.Boxes.opt_IRI算出区間条件_しない = true;
  dialog.Boxes.txt_バンド別低減ライン[1] = "";
  dialog.Boxes.txt_バンド別低減ライン[2] = "abc";
  dialog.Boxes.txt_バンド別低減ライン[3] = "2.75";
  dialog.Boxes.cmd補修予測色[1] = 0x123456;
  CalcConditions expected = session.CurrentConditions;  // IriBaseLength is not a box: kept
  expected.Iri.Speed = 60;
  expected.Iri.PowerWeighting = 1;
  expected.SkipPartialSections = true;
  expected.RepairBandLines.Value[2] = expected.RepairBandLines.Value[3] = kNoValue;
  expected.RepairBandLines.Value[4] = 2.75;
  expected.RepairAppliedColour = 0x123456;
  EXPECT_TRUE(dialog.Ok());
  EXPECT_FALSE(dialog.IsOpen());
  EXPECT_EQ(dirtyMarks_, 1);
  EXPECT_EQ(session.CurrentConditions, expected);
  EXPECT_EQ(session.DefaultConditions.Iri.Speed, 80.0);  // the defaults are not touched by OK
}

TEST_F(ConditionsDialogTest, ClosingWithChangesAsksAndFollowsTheAnswer) {
  ConditionsDialog dialog = Open();
  EXPECT_TRUE(Open().Close());  // nothing changed: no question
  EXPECT_TRUE(ui_.Messages().empty());

  dialog.Boxes.txt_IRI[1] = "70";
  ui_.Answers = {MsgAnswer::Cancel, MsgAnswer::No};
  EXPECT_FALSE(dialog.Close());
  EXPECT_TRUE(dialog.IsOpen());
  EXPECT_TRUE(dialog.Close());
  EXPECT_EQ(session.CurrentConditions.Iri.KsMs, 63.3);
  EXPECT_EQ(dirtyMarks_, 0);

  ConditionsDialog again = Open();
  again.Boxes.txt_IRI[1] = "";
  ui_.Answers = {MsgAnswer::Yes, MsgAnswer::Yes};
  EXPECT_FALSE(again.Close());  // Yes runs the check, which fails: the dialog stays
  again.Boxes.txt_IRI[1] = "70";
  EXPECT_TRUE(again.Close());
  EXPECT_EQ(session.CurrentConditions.Iri.KsMs, 70.0);
  EXPECT_EQ(dirtyMarks_, 1);
  const testing::Shown question{"データが変更されています。保存しますか？", "確認", std::nullopt, MsgButtons::YesNoCancel};
  testing::ExpectMessages(ui_, {question, question, question, {kInvalid, "エラー"}, question});
}

TEST_F(ConditionsDialogTest, ResetShowsTheFileValuesOfThePageOnlyAfterOk) {
  WriteIniValue(DefaultIniPath(session.Paths), "補修形状検討_バンド別低減ラインパラメータ", "1-Oct", "7");
  WriteIniValue(DefaultIniPath(session.Paths), "補修形状検討_バンド別低減ラインパラメータ", "2-Oct", "");
  ConditionsDialog dialog = Open();
  dialog.Boxes.txt_IRI[0] = "55";
  ui_.Answers = {MsgAnswer::Cancel};
  EXPECT_FALSE(dialog.ResetPage(ConditionsPage::RepairLines));
  EXPECT_EQ(dialog.Boxes.txt_バンド別低減ライン[0], "12");
  testing::ExpectMessages(ui_, {{"規定値を読み込み適用します。\r\nよろしいですか？", "確認", std::nullopt, MsgButtons::OkCancel}});

  EXPECT_TRUE(dialog.ResetPage(ConditionsPage::RepairLines));
  EXPECT_EQ(dialog.Boxes.txt_バンド別低減ライン[0], "7");
  EXPECT_EQ(dialog.Boxes.txt_バンド別低減ライン[1], "");
  EXPECT_EQ(dialog.Boxes.txt_IRI[0], "55");  // other pages keep what was typed
  EXPECT_EQ(session.CurrentConditions.RepairBandLines.Value[1], 12.0);
  EXPECT_TRUE(dialog.ResetPage(ConditionsPage::Iri));
  EXPECT_EQ(dialog.Boxes.txt_IRI[0], "80");
}

TEST_F(ConditionsDialogTest, SaveWritesTheStudyPagesAndLeavesTheIriGroupOutOfTheFile) {
  ConditionsDialog dialog = Open();
  dialog.Boxes.cmd補修予測色[0] = MakeColour(1, 2, 3);
  EXPECT_TRUE(dialog.SavePage(ConditionsPage::RepairColours));
  EXPECT_EQ(ui_.Messages().at(0).Text, "規定値として保存します。\r\nよろしいですか？");
  EXPECT_EQ(DefaultValue("補修形状検討_表示オプション", "低減ライン値の表示色"), "1, 2, 3");
  EXPECT_EQ(DefaultValue("プロファイル分解_表示オプション", "低減ライン値の表示色"), "255, 0, 255");

  dialog.Boxes.txt_バンド別低減ライン[8] = "0.25";
  EXPECT_TRUE(dialog.SavePage(ConditionsPage::RepairLines));
  EXPECT_EQ(DefaultValue("補修形状検討_バンド別低減ラインパラメータ", "9-Oct"), "0.25000");

  const std::string before = ReadBytes(DefaultIniPath(session.Paths));
  dialog.Boxes.txt_IRI[0] = "60";
  EXPECT_TRUE(dialog.SavePage(ConditionsPage::Iri));
  ui_.Answers = {MsgAnswer::Cancel};
  dialog.Boxes.txt_バンド別低減ライン[8] = "9";
  EXPECT_FALSE(dialog.SavePage(ConditionsPage::RepairLines));
  EXPECT_EQ(ReadBytes(DefaultIniPath(session.Paths)), before);
}

TEST_F(ConditionsDialogTest, SaveThatCannotWriteIsReportedNamingTheFile) {
  fs::remove(app_ / "Default.ini");
  fs::create_directory(app_ / "Default.ini");
  ConditionsDialog dialog = Open();
  ui_.Log.clear();
  EXPECT_FALSE(dialog.SavePage(ConditionsPage::RepairColours));
  const auto messages = ui_.Messages();
  ASSERT_EQ(messages.size(), 2u);  // the question, then the error
  EXPECT_EQ(messages[1].Title, "[ frm計算条件 : SaveDefaults ]");
  EXPECT_NE(messages[1].Text.find("Default.ini"), std::string::npos);
}

// The text, number, path and name helpers of the base layer: tokens, lenient numbers, the legacy
// number and date formats, Shift-JIS files, path pieces and the macros of file names.
using std::pair;
using testing::ExpectEach;
using testing::ReadBytes;
using testing::WriteBytes;
using Texts = std::vector<std::string>;

TEST(Token, QuotesKeepDelimitersAndDoubledQuotesAMinimumSizePads) {
  EXPECT_EQ(uToken("a,\"b,c\",d", ","), (Texts{"a", "b,c", "d"}));
  EXPECT_EQ(uToken("\"say \"\"hi\"\"\",x", ","), (Texts{"say \"hi\"", "x"}));
  EXPECT_EQ(uToken("a,,", ","), (Texts{"a", "", ""}));
  EXPECT_TRUE(uToken("", ",").empty());
  EXPECT_EQ(uTokenCount("", ","), 0u);
  // A minimum size pads, but the count stays real.
  EXPECT_EQ(uToken("a", ",", 20), [] { Texts padded(20); padded[0] = "a"; return padded; }());
  EXPECT_EQ(uTokenCount("a", ","), 1u);
  EXPECT_EQ(uTokenSpace("velmora\t swdebug  x.prj "), (Texts{"velmora", "swdebug", "x.prj"}));
  EXPECT_TRUE(uTokenSpace(" \t ").empty());
  ExpectEach(uQuote, {pair{"a,b", "\"a,b\""}, {"", "\"\""}});
}

TEST(Numeric, LenientTestsNoValueConversionsAndRoundingRules) {
  ExpectEach(IsNumeric, {pair{" 1,000.5 ", true}, {"-1.5E+03", true}, {"１２．５", true}, {"&H1F", true}, {"", false},
                         {"1.2.3", false}, {"12 3", false}, {"E5", false}});
  ExpectEach(uDblVal, {pair{"１２．５", 12.5}, {"abc", 0.0}});
  ExpectEach(uLongVal, {pair{"2.5", 2}, {"3.5", 4}});  // half to even
  EXPECT_TRUE(IsNoValue(uTextToDbl("   ")));
  EXPECT_EQ(std::pair(uTextToLong(""), uTextToLong("x")), std::pair(kNoValueLong, 0));
  EXPECT_THROW(uLongVal("3000000000"), LegacyError);
  ExpectEach(CLng, {pair{-2.5, -2}, {1.5, 2}});
  ExpectEach(RoundHalfAway, {pair{2.5, 3}, {-2.5, -3}});
  EXPECT_EQ(IntLong(-0.5), -1);
  EXPECT_EQ(CInt(32767.4), 32767);
  EXPECT_THROW(CInt(32767.5), LegacyError);
}

TEST(Text, EqualityTrimsAndIgnoresCaseOnlyAndPiecesCountCharacters) {
  EXPECT_TRUE(uStrEqual(" rElev ", "RELEV"));
  EXPECT_FALSE(uStrEqual(" rElev ", "RElev."));
  EXPECT_EQ(CharLength("｜ab"), 3u);
  EXPECT_EQ((Texts{CharLeft("路線｜12", 2), CharMid("路線｜12", 4), CharRight("123.45+-", 2)}), (Texts{"路線", "12", "+-"}));
}

TEST(NumberText, NoValueIsEmptyWidthIsThePatternsNeverCutTrailingZerosDropped) {
  ExpectEach([](double v) { return uDblToText(v, "0.00"); }, {pair{kNoValue, ""}, {-99999.01, "-99999.01"}, {1.5, "1.50"}});
  ExpectEach(uLongToText, {pair{kNoValueLong, ""}, {-99998, "-99998"}});
  ExpectEach(uDblZero, {pair{kNoValue, 0.0}, {-3.25, -3.25}});
  ExpectEach([](double v) { return uFormatRight(v, "######0"); }, {pair{42.0, "     42"}, {-7.0, "     -7"}, {12345678.0, "12345678"}});
  // "##0.00" less its '#' is "0.00": 3.14 in six columns.
  EXPECT_EQ(uFormatRight(3.14159, "##0.00"), "  3.14");
  // Ten decimals at most: the eleventh (5) of 0.12345678905 rounds the tenth up.
  ExpectEach(uTrimZero, {pair{1.5, "1.5"}, {2.0, "2"}, {0.0, "0"}, {-0.25, "-0.25"}, {1.0 / 3.0, "0.3333333333"},
                         {0.12345678905, "0.1234567891"}, {100.0, "100"}});
}

TEST(Tolerances, NearlyEqualSqrtAndKiriage) {
  EXPECT_TRUE(uNearlyEqual(0.1 + 0.2, 0.3));
  EXPECT_TRUE(uNearlyEqual(-1.0, -1.0 + 0.9e-9));
  EXPECT_FALSE(uNearlyEqual(1.0, 1.0 + 2e-9));
  ExpectEach(uSqrt, {pair{9.0, 3.0}, {-4.0, 0.0}, {std::numeric_limits<double>::quiet_NaN(), 0.0}});
  // 300 m of 10 m sections computed with noise stays 30 sections; 0.3 / 0.1 is 2.9999999999999996.
  ExpectEach(Kiriage, {pair{2.0, 2.0}, {2.1, 3.0}, {0.0, 0.0}, {0.001, 1.0}, {-2.5, -2.0}, {30.000000000004, 30.0},
                       {0.3 / 0.1, 3.0}});
}

TEST(MinMax, FirstArgumentKeptUnlessStrictlyBeatenAbsentValuesNeverWin) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(uMin(2.0, nan), 2.0);
  EXPECT_TRUE(std::isnan(uMin(nan, 2.0)));  // 2 < NaN is false: the first stays
  EXPECT_EQ(std::pair(uMax(3, 5), uMin(3, 5)), std::pair(5, 3));
  // -0.0 and 0.0 compare equal: the first one is returned, sign included.
  EXPECT_TRUE(std::signbit(uMin(-0.0, 0.0)));
  EXPECT_FALSE(std::signbit(uMax(0.0, -0.0)));
  EXPECT_EQ(uMin(std::nullopt, std::optional<double>(5.0)), 5.0);
  EXPECT_EQ(uMax(std::optional<double>(-5.0), std::nullopt), -5.0);
  EXPECT_FALSE(uMin(std::optional<double>(), std::optional<double>()).has_value());
  const std::vector<double> values{3.0, -1.5, 7.25, -1.5};
  EXPECT_EQ(uMin(std::span<const double>(values)), -1.5);
  EXPECT_EQ(uMax(std::span<const double>(values)), 7.25);
  EXPECT_FALSE(uMax(std::span<const double>()).has_value());
}

TEST(Colours, SplitJoinAndMissingComponentsAre255) {
  // 0xBBGGRR: 0x123456 is red 0x56, green 0x34, blue 0x12.
  EXPECT_EQ(uColourSplit(0x123456), (ColourParts{0x56, 0x34, 0x12}));
  EXPECT_EQ(MakeColour(0x56, 0x34, 0x12), 0x123456u);
  // "10,20" has blue 255, green 20, red 10.
  ExpectEach(ParseColourText, {pair{"10,20", Colour{0xFF140A}}, {" 255, 0, 255 ", 0xFF00FF}, {"", 0xFFFFFF},
                               {"0,x,300", MakeColour(0, 255, 255)}});
  EXPECT_EQ(ColourText(0xFF00FF, ", ") + "|" + ColourText(0x00FF00, ","), "255, 0, 255|0,255,0");
}

TEST(FormatNumber, FixedOptionalGroupedAndScientificPatterns) {
  const struct {
    double value;
    const char* pattern;
    const char* text;
  } cases[] = {
      {0.01, "0.000000", "0.010000"}, {123.45, "0.00000", "123.45000"}, {0, "0.00000", "0.00000"},
      // 0.125 and 2.675 are not exact in binary; 15 significant digits make them ties, rounded away.
      {0.125, "0.00", "0.13"}, {2.675, "0.00", "2.68"}, {-2.5, "0", "-3"}, {0.5, "0", "1"},
      {9.9999996, "0.000000", "10.000000"}, {-1.234567891, "0.00000000", "-1.23456789"},
      {1000, "######0", "1000"}, {-1, "######0", "-1"}, {0.5, "#.##", ".5"}, {3, "0.##", "3."},
      {1234567.891, "#,##0.0", "1,234,567.9"},
      {12345.678, "0.0000000000E+00", "1.2345678000E+04"}, {0.00012, "0.0000000000E+00", "1.2000000000E-04"},
      {0, "0.0000000000E+00", "0.0000000000E+00"}, {-9.99999999999, "0.00E+00", "-1.00E+01"},
      {5e-300, "0.0E+00", "5.0E-300"},
  };
  for (const auto& c : cases) EXPECT_EQ(FormatNumber(c.value, c.pattern), c.text) << c.value << " " << c.pattern;
  EXPECT_THROW(FormatNumber(1, "0.0x"), LegacyError);
  EXPECT_THROW(FormatNumber(1.0 / 0.0 * 0.0, "0"), LegacyError);
}

TEST(FormatNumber, PlainDecimalsGiveWhatThePatternInterpreterGives) {
  // The result files' "0.00000" and "0.00000000" take a faster route: it must agree everywhere,
  // also at ties, carries into a new digit, values that round to zero, and the extremes.
  std::mt19937_64 random(11);
  std::uniform_real_distribution<double> mantissa(-10, 10);
  std::uniform_int_distribution<int> exponent(-14, 15);
  std::vector<double> values = {0.0, -0.0, 0.5, -0.5, 9.999995, 0.000005, -0.000004999, 0.125, 2.675, 99999.999995,
                                1e15, 1e-300, -1e300, 123456789.123456789, std::numeric_limits<double>::denorm_min(),
                                // exact binary ties at the 15th digit (to even), and roundings into a new power of ten
                                123456789012345.5, 123456789012346.5, 12345678901234.25, 12345678901234.75,
                                9.999999999999999, 0.09999999999999999, 99999.99999999999, 999999999999999.9,
                                // the edges of the integer route: 1e-12 and 1e15, and integers
                                1e-12, 9.99999999999e-13, 999999999999999.0, 4503599627370495.0, 3.0, 1e14, 0.01};
  for (int k = 0; k < 200000; ++k) values.push_back(mantissa(random) * std::pow(10.0, exponent(random)));
  for (int k = 0; k < 2000; ++k) values.push_back(std::nextafter(std::pow(10.0, k % 28 - 13), k % 2 ? 0.0 : 1e300));
  for (const char* pattern : {"0.0", "0.000", "0.00000", "0.00000000", "0.000000", "0.000000000000000"})
    for (double v : values) ASSERT_EQ(FormatNumber(v, pattern), FormatNumberByPattern(v, pattern)) << v << " " << pattern;
}

TEST(ToSystemCodePage, AsciiRunsPassAndEverythingElseIsConverted) {
  // "距" is 0x8B 0x97 and "離" 0x97 0xA3 in Shift-JIS; "€" has no Shift-JIS form and becomes "?".
  EXPECT_EQ(ToSystemCodePage("a,1.5\r\n距離(m), x€y"), "a,1.5\r\n\x8B\x97\x97\xA3(m), x?y");
  EXPECT_EQ(ToSystemCodePage(""), "");
}

TEST(FormatDateTime, PatternsOfStampsAndNamesMinutesAfterTheHour) {
  const std::tm t = testing::At(2026, 11, 2, 7, 5, 9);
  ExpectEach([&](const char* pattern) { return FormatDateTime(t, pattern); },
             {pair{"YYYYMMDDHHNNSS", "20261102070509"}, {"YYYY/MM/DD HH:MM:SS", "2026/11/02 07:05:09"}, {"yyyymm", "202611"},
              {"MM", "11"}});
}

TEST(SystemCodePage, FullWidthBarIs8162UnmappableBecomesQuestionMarkInvalidBytesNameTheFile) {
  EXPECT_EQ(ToSystemCodePage("｜"), "\x81\x62");
  EXPECT_EQ(FromSystemCodePage("\x81\x62"), "｜");
  const std::string key = "長波長合算Octave";
  EXPECT_EQ(FromSystemCodePage(ToSystemCodePage(key)), key);
  EXPECT_EQ(ToSystemCodePage("a😀b"), "a?b");
  EXPECT_NE(testing::WhatOf([] { FromSystemCodePage("ab\x81", "road.erd"); }).find("road.erd"), std::string::npos);
}

TEST(SystemTextFile, WritesCrLfReadsAnyLineEndAndAFailedWriteLeavesNothingBehind) {
  testing::TempDir dir;
  WriteSystemTextFile(dir / "a.txt", {"ERDFILEV2.00", "TITLE   路線｜1.00000++"});
  EXPECT_EQ(ReadBytes(dir / "a.txt"), "ERDFILEV2.00\r\nTITLE   \x98\x48\x90\xfc\x81\x62" "1.00000++\r\n");
  WriteBytes(dir / "b.txt", "x\ny\r\nz\r\r\nw");
  EXPECT_EQ(ReadSystemTextLines(dir / "b.txt"), (Texts{"x", "y", "z", "", "w"}));
  EXPECT_THROW(ReadSystemTextLines(dir / "none.txt"), LegacyError);
  // A folder in the target's place cannot be replaced: other files are untouched, no temporary is left.
  std::filesystem::create_directory(dir / "folder");
  EXPECT_THROW(WriteSystemTextFile(dir / "folder", {"new"}), LegacyError);
  EXPECT_EQ(ReadBytes(dir / "b.txt"), "x\ny\r\nz\r\r\nw");
  EXPECT_EQ(testing::EntryNames(dir.path()), (Texts{"a.txt", "b.txt", "folder"}));
}

TEST(PathText, EitherSeparatorIsAddedOnceSearchesCountCharactersAndOnlyFilesAreFound) {
  ExpectEach(flGetFileName, {pair{"C:\\data\\road.erd", "road.erd"}, {"/home/u/road.erd", "road.erd"},
                             {"a/b\\路線.txt", "路線.txt"}, {"road", "road"}, {"/home/u/", ""}});
  ExpectEach(flGetFileNameNonExt, {pair{"/x/a.b.erd", "a.b"}, {"/x.y/name", "name"}});
  ExpectEach(flGetPathName, {pair{"/home/u/road.erd", "/home/u"}, {"C:\\data\\road.erd", "C:\\data"}, {"road.erd", ""}});
  // Where the only "." stands in a folder name there is no extension.
  ExpectEach(flGetExtension, {pair{"a.b.ERD", "ERD"}, {"/x.y/name", ""}, {"C:\\x.y\\name", ""}, {"name.", ""}});
  ExpectEach(flAddDirSep, {pair{"/a", "/a/"}, {"/a/", "/a/"}, {"C:\\a\\", "C:\\a\\"}});
  // 路 線 / 路: the last "路線" starts at character 4, not at byte 8.
  EXPECT_EQ(std::pair(flInStrRev("路線/路線.erd", "路線"), flInStrRev("abc", "x")), std::pair(std::size_t{4}, std::size_t{0}));
  EXPECT_EQ(flStrRev("abc路"), "路cba");
  testing::TempDir dir;
  WriteBytes(dir / "a.ini", "x");
  ExpectEach(flSearchPath, {pair{(dir / "a.ini").string(), true}, {dir.path().string(), false},
                            {(dir / "b.ini").string(), false}, {std::string(), false}});
}

TEST(NameMacros, FirstOccurrenceOnlyWhateverTheCaseMonthIsMmMinuteIsNn) {
  EXPECT_EQ(uReplaceMacro("x_$(profilename)$_y", "$(PROFILENAME)$", "R1"), "x_R1_y");
  EXPECT_EQ(uReplaceMacro("$(IRI種別)$.csv", "$(IRI種別)$", "10m"), "10m.csv");
  EXPECT_EQ(uReplaceMacro("plain", "$(X)$", "v"), "plain");
  const std::tm t = testing::At(2024, 3, 7, 9, 5, 2);
  EXPECT_EQ(uExpandDate("$(YYYYMMDDHHNNSS)$", t), "20240307090502");
  EXPECT_EQ(uExpandDate("$(yyyymmdd)$_$(HH)$$(NN)$", t), "20240307_0905");
  EXPECT_EQ(uExpandDate("$(YYYYMMDDHHNN)$|$(YYYYMMDDHH)$|$(YYYYMM)$|$(YYYY)$", t), "202403070905|2024030709|202403|2024");
  EXPECT_EQ(uExpandDate("$(DD)$.$(SS)$", t), "07.02");
  EXPECT_EQ(uExpandDate("$(MM)$-$(NN)$-$(MM)$", t), "03-05-$(MM)$");
  // The name and the kind's macros once each too; a blank pattern takes the built-in one.
  EXPECT_EQ(FileExportName("$(profilename)$_$(CutOff)$_$(yyyymmdd)$+$(PROFILENAME)$", "unused", "road1",
                           {{"$(CUTOFF)$", "MAHP_50m"}}, t),
            "road1_MAHP_50m_20240307+$(PROFILENAME)$");
  EXPECT_EQ(FileExportName("  ", "$(PROFILENAME)$_Octave$(OctaveNum)$_$(YYYYMMDDHHNNSS)$", "r", {{"$(OctaveNum)$", "3"}}, t),
            "r_Octave3_20240307090502");
}

TEST(PathMacros, AppPathFirstAndOnlyAtAFolderBoundaryAndAStoredPathFollowsAMovedFolder) {
  AppPaths paths;
  paths.AppPath = "/opt/velmora/bin";
  paths.UserLocalPath = "/home/u/.local/share/Velmora";
  testing::ExpectEach([&](const char* path) { return uAbbreviatePathMacro(paths, path); },
                      {std::pair{"/opt/velmora/bin/Default.ini", "$(AppPath)/Default.ini"}, {"/OPT/Velmora/BIN/a", "$(AppPath)/a"},
                       {"/home/u/.local/share/Velmora/Resource/x", "$(UserLocalPath)/Resource/x"},
                       {"/home/u/.local/share/Velmora", "$(UserLocalPath)"},
                       {"/opt/velmora/binary/x", "/opt/velmora/binary/x"}, {"/data/road.erd", "/data/road.erd"}});
  EXPECT_EQ(uExpandPathMacro(paths, "$(apppath)/a"), "/opt/velmora/bin/a");
  EXPECT_EQ(uExpandPathMacro(paths, "$(AppPath)/$(UserLocalPath)"), "/opt/velmora/bin/$(UserLocalPath)");
  EXPECT_EQ(uExpandPathMacro(paths, "/no/macro"), "/no/macro");
  const std::string stored = uAbbreviatePathMacro(paths, "/home/u/.local/share/Velmora/Project/p.prj");
  paths.UserLocalPath = "/mnt/other/Velmora";
  EXPECT_EQ(uExpandPathMacro(paths, stored), "/mnt/other/Velmora/Project/p.prj");
  // A user-local tree inside the program's folder is still abbreviated by AppPath, which is tried first.
  paths.UserLocalPath = "/opt/velmora/bin/local";
  EXPECT_EQ(uAbbreviatePathMacro(paths, "/opt/velmora/bin/local/x"), "$(AppPath)/local/x");
}

// The file-system helpers of the base layer: patterns, deletion, copies and free names; ini files
// read and written byte for byte in Shift-JIS; the user's folders from the environment.
namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::WriteBytes;
using Names = std::vector<std::string>;

// A scratch folder, its paths as the helpers take them and files in it written byte for byte, folders
// made as needed.
class Scratch : public ::testing::Test {
 protected:
  std::string At(const std::string& name = "") const { return name.empty() ? dir_.path().string() : (dir_ / name).string(); }
  fs::path Put(const std::string& name, const std::string& bytes = "x") const {
    fs::create_directories((dir_ / name).parent_path());
    WriteBytes(dir_ / name, bytes);
    return dir_ / name;
  }
  testing::TempDir dir_;
};
using FileHelpers = Scratch;
using Ini = Scratch;

TEST(FilePattern, WildcardsIgnoreCaseAndStarDotStarTakesAll) {
  // "?" is one character, not one byte.
  const std::tuple<const char*, const char*, bool> cases[] = {
      {"README", "*.*", true},       {"A.ERD", "*.erd", true},      {"a.erd.bak", "*.erd", false}, {"路.txt", "?.txt", true},
      {"路線.txt", "?.txt", false},  {"axxbyyc", "a*b*c", true},    {"axxbyy", "a*b*c", false},    {"", "*", true}};
  for (const auto& [name, pattern, match] : cases) EXPECT_EQ(MatchFilePattern(name, pattern), match) << name << " " << pattern;
}

TEST_F(FileHelpers, APatternDeletesOnlyMatchingFilesOfThatFolderAndDeletionsAreSilentWhenAbsent) {
  for (const char* name : {"a.erd", "b.ERD", "c.txt", "sub.erd/d.erd", "tree/deep/g.txt"}) Put(name);
  DeletePath(At(), "*.erd");
  EXPECT_EQ(testing::EntryNames(dir_.path()), (Names{"c.txt", "sub.erd", "tree"}));
  EXPECT_TRUE(fs::exists(dir_ / "sub.erd" / "d.erd"));
  EXPECT_NO_THROW(DeletePath(At("absent"), "*.*"));

  EXPECT_NO_THROW(DeleteFile(At("none.txt")));
  DeleteFile(At("c.txt"));
  DeleteFolder(At("tree"));
  EXPECT_EQ(testing::EntryNames(dir_.path()), (Names{"sub.erd"}));
  EXPECT_NO_THROW(DeleteFolder(At("tree")));
  // A folder is not deleted as a file.
  EXPECT_NE(testing::WhatOf([&] { DeleteFile(At()); }).find(At()), std::string::npos);
}

TEST_F(FileHelpers, CopyAndMoveOverwriteAndSkipAMissingSourceOrAnEmptyTarget) {
  Put("src.txt", "new");
  Put("dst.txt", "old");
  uFileCopy_A(At("src.txt"), At("dst.txt"));
  EXPECT_EQ(ReadBytes(dir_ / "dst.txt"), "new");
  EXPECT_EQ(ReadBytes(dir_ / "src.txt"), "new");
  uFileCopy_A(At("missing.txt"), At("dst.txt"));
  uFileCopy_A(At("src.txt"), "");
  EXPECT_EQ(ReadBytes(dir_ / "dst.txt"), "new");

  Put("target.txt", "older");
  uFileMove(At("src.txt"), At("target.txt"));
  EXPECT_NO_THROW(uFileMove(At("src.txt"), At("target.txt")));
  EXPECT_EQ(ReadBytes(dir_ / "target.txt"), "new");
  EXPECT_EQ(testing::EntryNames(dir_.path()), (Names{"dst.txt", "target.txt"}));
}

TEST_F(FileHelpers, FailedCopyNamesTheTargetAndLeavesNothing) {
  Put("src.txt");
  EXPECT_NE(testing::WhatOf([&] { uFileCopy_A(At("src.txt"), At("no/dst.txt")); }).find(At("no/dst.txt")),
            std::string::npos);
  // A folder in the target's place is kept whole.
  Put("busy/inside.txt", "keep");
  EXPECT_THROW(uFileCopy_A(At("src.txt"), At("busy")), LegacyError);
  EXPECT_EQ(ReadBytes(dir_ / "busy" / "inside.txt"), "keep");
  EXPECT_EQ(testing::EntryNames(dir_.path()), (Names{"busy", "src.txt"}));  // no temporary left, no "no"
}

TEST_F(FileHelpers, FindAllListsTheFilesOfAFolderFirstThenItsSubFoldersInNameOrder) {
  for (const char* name : {"b.erd", "a.erd", "z/c.erd", "m/d.ERD", "m/e.txt"}) Put(name);
  EXPECT_EQ(uFileFindAll(At(), "*.erd"), (Names{At("a.erd"), At("b.erd"), At("m/d.ERD"), At("z/c.erd")}));
  EXPECT_TRUE(uFileFindAll(At("none"), "*.*").empty());
}

TEST_F(FileHelpers, FreeNameNumbersFromOneUpToNineHundredNinetyNine) {
  EXPECT_EQ(uFreeName(At(), "road", "ERD"), "road.ERD");
  Put("road.ERD");
  EXPECT_EQ(uFreeName(At(), "road", "ERD"), "road(001).ERD");
  Put("road(001).ERD");
  EXPECT_EQ(uFreeName(At(), "road", "ERD"), "road(002).ERD");
  EXPECT_EQ(uFreeName(At(), "road", ""), "road");
  for (int i = 2; i <= 999; ++i) Put(fmt::format("road({:03}).ERD", i));
  EXPECT_THROW(uFreeName(At(), "road", "ERD"), LegacyError);
}

TEST_F(Ini, NamesIgnoreCaseValuesAreTrimmedTheFirstWinsAndAReplacedKeyChangesOnlyItsLine) {
  // Comments, odd blanks, a LF-only line, a section appearing twice.
  const std::string mixed = "; comment=not a key\r\n[General]\r\n  DebugLevel =  1  \r\nQuoted=\"  spaced  \"\r\nEmpty=\r\n"
                            "debuglevel=2\r\nno equals sign here\n\r\n[ Other ]\r\nKey=other\r\n[general]\r\nLate=ignored\r\n";
  const fs::path path = Put("a.ini", mixed);
  const IniDocument ini = IniDocument::Load(path);
  EXPECT_EQ(ini.Get("GENERAL", "debugLevel"), "1");
  EXPECT_EQ(ini.Get("General", "Quoted"), "  spaced  ");
  EXPECT_EQ(ini.Get("General", "Empty"), "");
  EXPECT_EQ(ini.Get("other", "KEY"), "other");
  EXPECT_EQ(ini.Get("General", "Late"), std::nullopt);  // only the first [General] counts
  EXPECT_EQ(ini.Get("General", "; comment"), std::nullopt);
  EXPECT_EQ(ini.Get("Missing", "Key"), std::nullopt);
  EXPECT_EQ(ReadIniValue(dir_ / "absent.ini", "General", "DebugLevel"), std::nullopt);

  WriteIniValue(path, "general", "DEBUGLEVEL", "5");
  std::string expected = mixed;
  EXPECT_EQ(ReadBytes(path), expected.replace(expected.find("  DebugLevel =  1  "), 19, "DEBUGLEVEL=5"));
}

TEST_F(Ini, NewKeyGoesBehindTheLastLineOfItsSectionNewSectionAtTheEnd) {
  const fs::path path = Put("a.ini", "[A]\r\nx=1\r\n\r\n[B]\r\ny=2");  // no line end at the very end
  WriteIniValue(path, "A", "z", "3");
  WriteIniValue(path, "B", "w", "4");
  WriteIniValue(path, "C", "v", "");
  EXPECT_EQ(ReadBytes(path), "[A]\r\nx=1\r\nz=3\r\n\r\n[B]\r\ny=2\r\nw=4\r\n[C]\r\nv=\r\n");
  WriteIniValue(dir_ / "new.ini", "S", "k", "v");
  EXPECT_EQ(ReadBytes(dir_ / "new.ini"), "[S]\r\nk=v\r\n");
}

TEST_F(Ini, JapaneseNamesRoundTripInShiftJis) {
  // "ゾーン" holds the bytes 0x5D and 0x5B (']' and '[') as trail bytes, "表示" holds 0x5C.
  WriteIniValue(dir_ / "j.ini", "ゾーン", "表示", "値");
  EXPECT_EQ(ReadBytes(dir_ / "j.ini"), "[\x83\x5d\x81\x5b\x83\x93]\r\n\x95\x5c\x8e\xa6=\x92\x6c\r\n");
  EXPECT_EQ(ReadIniValue(dir_ / "j.ini", "ゾーン", "表示"), "値");
  WriteIniValue(dir_ / "j.ini", "ゾーン", "表示", "長");
  EXPECT_EQ(ReadBytes(dir_ / "j.ini"), "[\x83\x5d\x81\x5b\x83\x93]\r\n\x95\x5c\x8e\xa6=\x92\xb7\r\n");
}

TEST_F(Ini, BytesThatAreNotShiftJisNameFileAndLineAndWritingKeepsTheFile) {
  const std::string broken = "[A]\r\nx=\x81\r\n";  // a lead byte with no trail byte
  const fs::path path = Put("bad.ini", broken);
  const std::string what = testing::WhatOf([&] { IniDocument::Load(path); });
  EXPECT_NE(what.find("bad.ini: 2 行目"), std::string::npos) << what;
  EXPECT_THROW(WriteIniValue(path, "A", "y", "1"), LegacyError);
  EXPECT_EQ(ReadBytes(path), broken);
}

TEST_F(Ini, FolderInPlaceOfTheFileAndUnwritableTextsAreRefused) {
  fs::create_directory(dir_ / "dir.ini");
  EXPECT_THROW(ReadIniValue(dir_ / "dir.ini", "A", "x"), LegacyError);
  const fs::path path = Put("a.ini", "[A]\r\nx=1\r\n");
  const std::tuple<const char*, const char*, const char*> refused[] = {
      {"A", "x", "1\r\n[B]"}, {"A", "k=v", "1"}, {"A]", "x", "1"}, {"", "x", "1"}};
  for (const auto& [section, key, value] : refused)
    EXPECT_THROW(WriteIniValue(path, section, key, value), LegacyError) << section << " " << key << " " << value;
  EXPECT_EQ(ReadBytes(path), "[A]\r\nx=1\r\n");
  EXPECT_THROW(WriteIniValue(dir_ / "no" / "a.ini", "A", "x", "1"), LegacyError);
}

TEST_F(Ini, MalformedLinesAreIgnoredAndANulEndsTheValue) {
  using namespace std::string_literals;
  const IniDocument ini =
      IniDocument::Load(Put("m.ini", "orphan=before any section\r\n[broken\r\nk=1\r\n[A]\r\nv=ab\0cd\r\n=nokey\r\n"s));
  EXPECT_EQ(ini.Get("A", "v"), "ab");
  EXPECT_EQ(ini.Get("broken", "k"), std::nullopt);
  EXPECT_EQ(ini.Get("A", ""), std::nullopt);
}

// Lines of a byte string without their endings, for comparing files line by line.
std::multiset<std::string> LineSet(const std::string& bytes) {
  std::multiset<std::string> lines;
  std::istringstream in(bytes);
  for (std::string line; std::getline(in, line);) {
    if (line.ends_with('\r')) line.pop_back();
    lines.insert(line);
  }
  return lines;
}

TEST_F(Ini, OneWriteChangesOneKeyAndAtMostOneExistingLine) {
  const std::vector<std::string> sections{"General", "ゾーン", "表示", "a"};
  const std::vector<std::string> keys{"k", "K2", "長波側境界値", "x"};
  const std::vector<std::string> values{"1", "", "51.2", "$(AppPath)/値", "a=b"};
  std::mt19937 random(20240307);
  auto pick = [&](const std::vector<std::string>& pool) { return pool[random() % pool.size()]; };
  for (int round = 0; round < 300; ++round) {
    std::string text;
    const int lineCount = static_cast<int>(random() % 12);
    for (int i = 0; i < lineCount; ++i) {
      switch (random() % 5) {
        case 0: text += "[" + pick(sections) + "]"; break;
        case 1: text += " " + pick(keys) + " = " + pick(values); break;
        case 2: text += "; " + pick(keys) + "=comment"; break;
        case 3: text += "no key here"; break;
        default: break;  // blank line
      }
      if (i + 1 < lineCount || random() % 2) text += random() % 2 ? "\r\n" : "\n";
    }
    const fs::path path = Put("p.ini", ToSystemCodePage(text));
    const IniDocument before = IniDocument::Load(path);
    const std::string section = pick(sections), key = pick(keys), value = pick(values);
    WriteIniValue(path, section, key, value);
    const IniDocument after = IniDocument::Load(path);
    ASSERT_EQ(after.Get(section, key), value) << text;
    for (const auto& s : sections)
      for (const auto& k : keys)
        if (!(UCase(s) == UCase(section) && k == key)) {
          ASSERT_EQ(after.Get(s, k), before.Get(s, k)) << text;
        }
    // Every old line is still there except, at most, the one that held the key.
    auto newLines = LineSet(ReadBytes(path));
    int lost = 0;
    for (const auto& line : LineSet(ToSystemCodePage(text))) {
      if (const auto at = newLines.find(line); at != newLines.end()) newLines.erase(at);
      else ++lost;
    }
    ASSERT_LE(lost, 1) << text;
  }
}

// Sets environment variables for one test and puts the old values back afterwards.
class Environment : public Scratch {
 protected:
  void Set(const char* name, const std::optional<std::string>& value) {
    if (!saved_.count(name)) {
      const char* old = std::getenv(name);
      saved_[name] = old ? std::optional<std::string>(old) : std::nullopt;
    }
    if (value) ::setenv(name, value->c_str(), 1);
    else ::unsetenv(name);
  }
  void TearDown() override {
    for (const auto& [name, value] : saved_) {
      if (value) ::setenv(name.c_str(), value->c_str(), 1);
      else ::unsetenv(name.c_str());
    }
  }
  // A plain XDG environment with the home in the temporary folder.
  void PlainHome() {
    Set("VELMORA_HOME", std::nullopt);
    Set("HOME", (dir_ / "h").string());
    for (const char* name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_DOCUMENTS_DIR", "XDG_PICTURES_DIR"})
      Set(name, std::nullopt);
  }
  // Data home, documents and pictures as read from the environment now.
  static std::vector<std::string> Folders() {
    const FolderEnvironment env = ReadFolderEnvironment();
    return {env.DataHome, env.Documents, env.Pictures};
  }

 private:
  std::map<std::string, std::optional<std::string>> saved_;
};

TEST_F(Environment, XdgDefaultsFallBackToTheHomeFolder) {
  PlainHome();
  const std::string home = (dir_ / "h").string();
  EXPECT_EQ(Folders(), (std::vector<std::string>{home + "/.local/share", home, home}));
  const FolderEnvironment env = ReadFolderEnvironment();
  EXPECT_EQ(ResolveFolderPath(kFolderLocalAppDataCreate, env), home + "/.local/share");
  EXPECT_EQ(ResolveFolderPath(kFolderCommonDocuments, env), home + "/.local/share");
}

TEST_F(Environment, UserDirsFileAndVariablesNameDocumentsAndPictures) {
  PlainHome();
  fs::create_directories(dir_ / "h" / ".config");
  WriteBytes(dir_ / "h" / ".config" / "user-dirs.dirs",
                      "# written by xdg-user-dirs-update\nXDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n"
                      "XDG_PICTURES_DIR=\"/srv/pictures\"\nXDG_MUSIC_DIR=\"relative\"\n");
  EXPECT_EQ(Folders(), (std::vector<std::string>{(dir_ / "h").string() + "/.local/share",
                                                 (dir_ / "h").string() + "/Dokumente", "/srv/pictures"}));
  Set("XDG_DOCUMENTS_DIR", "/var/docs");
  Set("XDG_DATA_HOME", "/var/data");
  EXPECT_EQ(Folders(), (std::vector<std::string>{"/var/data", "/var/docs", "/srv/pictures"}));
}

TEST_F(Environment, VelmoraHomeMovesEverythingAndIgnoresXdg) {
  PlainHome();
  Set("XDG_DATA_HOME", "/var/data");
  Set("XDG_DOCUMENTS_DIR", "/var/docs");
  Set("VELMORA_HOME", (dir_ / "v").string());
  EXPECT_EQ(Folders(), (std::vector<std::string>{dir_ / "v", dir_ / "v" / "Documents", dir_ / "v" / "Pictures"}));
  // The create flag of local application data makes the folder.
  EXPECT_EQ(GetFolderPath("/opt/velmora", kFolderLocalAppDataCreate), (dir_ / "v").string());
  EXPECT_TRUE(fs::is_directory(dir_ / "v"));
}

TEST_F(Environment, FoldersWithoutACounterpartOrValueResolveToAppPath) {
  PlainHome();
  Set("HOME", std::nullopt);
  // kFolderPersonal has no home at all.
  for (int folder : {int{kFolderWindows}, int{kFolderSystem}, int{kFolderPersonal}, 12345})
    EXPECT_EQ(GetFolderPath("/opt/velmora", folder), "/opt/velmora") << folder;
}

TEST(ProgramFolder, IsTheFolderOfTheRunningBinary) {
  EXPECT_EQ(fs::canonical(ProgramFolder()), fs::canonical(VELMORA_BIN_DIR));
}
}  // namespace
}  // namespace velmora
