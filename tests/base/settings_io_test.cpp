#include "base/settings_io.h"

#include <gtest/gtest.h>

#include <set>
#include <tuple>

#include "base/colour.h"
#include "base/ini_file.h"
#include "base/legacy_error.h"
#include "base/session.h"
#include "base/text_encoding.h"
#include "frame_sandbox.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::WriteBytes;

// The settings functions with AppPath and UserLocalPath in the sandbox, without a full start.
class SettingsTest : public testing::FrameSandbox {
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

TEST_F(SettingsTest, ShippedFilesHoldTheGoldenCarAndTheAgreedDefaults) {
  LoadGeneralSettings(session);
  LoadDefaultGroups(session, std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, false);
  EXPECT_TRUE(ui_.Messages().empty());
  const CalcConditions& c = session.DefaultConditions;
  // The window length is no key of the file.
  const IriParams golden{80, 63.3, 6, 0.15, 653, 11, /*PowerWeighting=*/0, /*IriBaseLength=*/0};
  EXPECT_EQ(c.Iri, golden);
  EXPECT_EQ(c.RepairIri, golden);
  EXPECT_FALSE(c.SkipPartialSections);
  EXPECT_EQ(std::tuple(c.FilterLong, c.FilterShort, c.LongBoundary, c.ShortBoundary), std::tuple(50, 10, 51.2, 6.4));
  EXPECT_EQ(std::pair(c.ScreenLongBoundary, c.ScreenShortBoundary), std::pair(51.2, 6.4));
  for (const BandReductionLines* lines : {&c.BandLines, &c.RepairBandLines, &c.ScreenBandLines})
    for (int band = 1; band <= 9; ++band) {
      EXPECT_GT(lines->Value[band], 0.0);
      if (band > 1) {
        EXPECT_LT(lines->Value[band], lines->Value[band - 1]);  // shorter waves, smaller lines
      }
    }
  EXPECT_EQ(std::set<Colour>(c.BandColours.begin() + 1, c.BandColours.end()).size(), 9u);
  EXPECT_EQ(std::pair(c.LineColour, c.AppliedColour), std::pair(Colour{0xFF00FF}, Colour{0x00FF00}));
  const AppSettings& s = session.Settings;
  EXPECT_EQ(std::tuple(s.DebugLevel, s.SplushTime, s.CsvProfileLimit), std::tuple(0, 0, 0));
  EXPECT_EQ(s.LongOctaves, (std::vector<std::int32_t>{1, 2, 3}));
  EXPECT_EQ(s.ShortOctaves, (std::vector<std::int32_t>{7, 8, 9}));
  for (const auto* palette : {&s.PaletteProfile, &s.PaletteRepair}) {
    EXPECT_GE(palette->size(), 8u);
    EXPECT_EQ(std::set<Colour>(palette->begin(), palette->end()).size(), palette->size());
  }
  EXPECT_EQ(s.PaletteProfile[0], MakeColour(255, 0, 0));
  const auto general = GeneralIniPath(session.Paths);
  EXPECT_EQ(GetIniValue(session, general, "収束判定値", "標準偏差比"), "1.1");
  EXPECT_EQ(GetIniValue(session, general, "収束判定値", "最大収束回数"), "10");
  EXPECT_EQ(ReadIniValue(general, "Filter", "FileExportName"), "");
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

}  // namespace
}  // namespace velmora
