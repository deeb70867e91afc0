// The application frame: start-up with its single-instance lock and folder tree, the error log, the
// settings files (shipped defaults, groups read and saved, previous values) and the conditions dialog.
#include "base/startup.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <regex>
#include <string>
#include <tuple>

#include "base/colour.h"
#include "base/conditions_dialog.h"
#include "base/error_log.h"
#include "base/ini_file.h"
#include "base/legacy_error.h"
#include "base/session.h"
#include "base/settings_io.h"
#include "base/text_encoding.h"
#include "support/checks.h"
#include "support/session_fixture.h"
#include "support/test_support.h"

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

}  // namespace
}  // namespace velmora
