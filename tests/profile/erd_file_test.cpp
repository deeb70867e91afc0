// The ERD reader, writer and title updater against one small fixture per case (tests/data/erd, made
// by tools/make_erd_fixtures.py) and hand-written expected bytes.
#include "profile/erd_file.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <filesystem>
#include <fstream>

#include "base/legacy_error.h"
#include "support/test_support.h"

namespace velmora {
namespace {

using testing::ReadBytes;
using testing::ScriptedUi;
using testing::TempDir;
using testing::WriteBytes;

std::string Fixture(const std::string& name) { return (testing::SourceDir() / "tests/data/erd" / name).string(); }

ErdRecord ReadOk(const std::string& name) {
  ScriptedUi ui;
  ErdRecord rec;
  EXPECT_TRUE(ReadERD(Fixture(name), rec)) << name;
  EXPECT_TRUE(ui.Messages().empty()) << name;
  return rec;
}

std::vector<double> Samples(const ErdRecord& rec) { return rec.Elevation.vector(); }

TEST(ReadErd, HeaderWithoutEndStopsAfterHundredLinesAndTheNextIsData) {
  const ErdRecord rec = ReadOk("header_without_end.erd");
  EXPECT_EQ(rec.Title, "hundredth");  // the 100th header line is still a key
  EXPECT_EQ(Samples(rec), (std::vector<double>{7.5, 8.5}));
  EXPECT_EQ(rec.NumSamples, 2);
}

TEST(ReadErd, BlankLinesAmongSamplesAreSkippedAndNotCounted) {
  const ErdRecord rec = ReadOk("blank_line_in_data.erd");
  EXPECT_EQ(Samples(rec), (std::vector<double>{1.0, 2.0}));
  EXPECT_EQ(rec.NumSamples, 2);
  EXPECT_EQ(rec.NumSamplesHeader, 3);
}

TEST(ReadErd, FeetScaleThePitchButNotTheHeights) {
  const ErdRecord rec = ReadOk("feet_units.erd");
  EXPECT_DOUBLE_EQ(rec.StepSize, 0.5 * 0.3048);
  EXPECT_EQ(Samples(rec), (std::vector<double>{10.0, -2.5}));
  EXPECT_EQ(rec.DistanceUnit, "ft");
  EXPECT_FALSE(rec.IsMetric);
  EXPECT_EQ(rec.SlopeUnitScale, 63360.0);
  EXPECT_EQ(rec.SlopeUnitName, " in/mi");
}

TEST(ReadErd, CentimetreAndMetreHeightsBecomeMillimetres) {
  const ErdRecord cm = ReadOk("cm_heights.erd");
  EXPECT_EQ(Samples(cm), (std::vector<double>{15.0, -2.5, 0.0}));
  EXPECT_TRUE(cm.IsMetric);
  EXPECT_EQ(cm.SlopeUnitScale, 1000.0);
  EXPECT_EQ(cm.SlopeUnitName, " m/km");
  const ErdRecord m = ReadOk("m_heights.erd");
  ASSERT_EQ(m.NumSamples, 3);
  EXPECT_DOUBLE_EQ(m.Elevation[1], 1.5);
  EXPECT_DOUBLE_EQ(m.Elevation[2], -2.0);
  EXPECT_DOUBLE_EQ(m.Elevation[3], 1000.0);
}

TEST(ReadErd, ShiftJisTitleCarriesKpSignLaneAndRepairRange) {
  const ErdRecord rec = ReadOk("sjis_title_with_kp.erd");
  EXPECT_EQ(rec.Title, "国道１２号　上り");
  EXPECT_EQ(rec.KpText, "123.45000+-");
  EXPECT_DOUBLE_EQ(rec.KpStart, 123.45);
  EXPECT_EQ(rec.KpSign, 0);
  EXPECT_EQ(rec.Lane, -1);
  EXPECT_EQ(rec.RepairRangeText, "123.50000,124.00000");
  EXPECT_DOUBLE_EQ(rec.RepairRangeStart, 123.5);
  EXPECT_DOUBLE_EQ(rec.RepairRangeEnd, 124.0);
  EXPECT_EQ(rec.RepairRangeOn, 0);  // only the check box sets it
  EXPECT_EQ(rec.ShortName[1], "LElev.");
  EXPECT_EQ(rec.YLabel, "Elevation");
  EXPECT_EQ(rec.XLabel, "Distance");
}

TEST(ReadErd, KpFieldShorterThanItsFlagsGivesKpZeroAndNoFlags) {
  const ErdRecord rec = ReadOk("title_short_kp.erd");
  EXPECT_EQ(rec.Title, "route");
  EXPECT_EQ(rec.KpText, "-");
  EXPECT_EQ(rec.KpStart, 0.0);
  EXPECT_EQ(rec.KpSign, 0);  // the lone "-" is neither the sign nor the lane
  EXPECT_EQ(rec.Lane, 0);
}

TEST(ReadErd, HeaderCountMayDifferFromTheLinesPresent) {
  const ErdRecord rec = ReadOk("header_count_differs.erd");
  EXPECT_EQ(rec.NumSamplesHeader, 10);
  EXPECT_EQ(rec.NumSamples, 3);
}

TEST(ReadErd, LineTwoIsSplitAtCommasWhateverTheWidths) {
  const ErdRecord rec = ReadOk("line2_free_widths.erd");
  EXPECT_EQ(rec.NumChannels, 1);
  EXPECT_EQ(rec.NumSamplesHeader, 3);
  EXPECT_EQ(rec.FormatCode, 5);
  EXPECT_DOUBLE_EQ(rec.StepSize, 0.25);
  EXPECT_EQ(Samples(rec), (std::vector<double>{1, 2, 3}));
}

TEST(ReadErd, ShortKeysWithLessPaddingAreRecognised) {
  const ErdRecord rec = ReadOk("short_key_padding.erd");
  EXPECT_EQ(rec.Title, "Short pad");
  EXPECT_EQ(rec.YLabel, "Height");
  EXPECT_EQ(rec.XLabel, "Dist");
  EXPECT_EQ(rec.DistanceUnit, "m");
  EXPECT_EQ(Samples(rec), (std::vector<double>{4, 5, 6}));
}

TEST(ReadErd, TwoChannelHeaderFillsEightColumnSlices) {
  const ErdRecord rec = ReadOk("two_channel_header.erd");
  EXPECT_EQ(rec.NumChannels, 2);
  EXPECT_EQ(rec.ShortName[1], "LElev.  ");
  EXPECT_EQ(rec.ShortName[2], "RElev.");
  EXPECT_EQ(rec.UnitsName[1], "cm      ");
  EXPECT_EQ(rec.UnitsName[2], "cm");
  EXPECT_EQ(Samples(rec), (std::vector<double>{10.0, 20.0}));  // the padded "cm" still counts
}

TEST(ReadErd, HeaderErrorsShowTheirMessageAndGiveFalse) {
  const struct {
    const char* file;
    const char* text;
  } cases[] = {
      {"not_erd.erd", "指定されたファイルは ERD フォマットではありません。"},
      {"format_code_4.erd", "Data not stored in correct format."},
      {"three_channels.erd", "File must have 1 or 2 channels."},
      {"zero_step.erd", "Illegal step size."},
  };
  for (const auto& c : cases) {
    ScriptedUi ui;
    ErdRecord rec;
    EXPECT_FALSE(ReadERD(Fixture(c.file), rec)) << c.file;
    const auto messages = ui.Messages();
    ASSERT_EQ(messages.size(), 1u) << c.file;
    EXPECT_EQ(messages[0].Text, std::string(c.text) + "\r\n\r\nファイル名：" + Fixture(c.file));
    EXPECT_EQ(messages[0].Title, "読み込みエラー");
    EXPECT_EQ(messages[0].Icon, MsgIcon::Exclamation);
  }
}

TEST(ReadErd, DataLineThatIsNotOneNumberRaisesNamingFileAndLine) {
  ScriptedUi ui;
  ErdRecord rec;
  try {
    ReadERD(Fixture("data_line_not_number.erd"), rec);
    FAIL() << "no error";
  } catch (const LegacyError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::TypeMismatch);
    const std::string text = error.what();
    EXPECT_NE(text.find(Fixture("data_line_not_number.erd")), std::string::npos) << text;
    EXPECT_NE(text.find("14 行目"), std::string::npos) << text;  // 11 header lines, then 1.0, 2.0, abc
  }
  EXPECT_THROW(ReadERD(Fixture("two_numbers_on_line.erd"), rec), LegacyError);
  EXPECT_TRUE(ui.Messages().empty());
}

TEST(ReadErd, MissingFileOrAFolderRaisesNamingIt) {
  TempDir dir;
  for (const std::string& path : {std::string("/nonexistent/nowhere.erd"), dir.path().string()}) {
    ErdRecord rec;
    try {
      ReadERD(path, rec);
      FAIL() << "no error for " << path;
    } catch (const LegacyError& error) {
      EXPECT_NE(std::string(error.what()).find(path), std::string::npos) << error.what();
    }
  }
}

ErdRecord SmallRecord() {
  ErdRecord rec;
  rec.NumChannels = 1;
  rec.NumSamples = 3;
  rec.NumSamplesHeader = 99;  // the writer ignores it
  rec.FormatCode = 5;
  rec.StepSize = 0.01;
  rec.Title = "T";
  rec.ShortName[1] = "RElev";
  rec.YLabel = "Elevation";
  rec.XLabel = "Distance";
  rec.Elevation = Array1<double>{1.5, -0.25, 1234.56789};
  return rec;
}

const char* const kSmallRecordHeadTail =
    "TITLE   T\r\nSHORTNAMRElev\r\nLONGNAMERight Elevation\r\nUNITSNAMmm\r\nGENNAME Elevation\r\n"
    "XLABEL  Distance\r\nXUNITS  m\r\nFORMAT  (G14.6)\r\nEND\r\n"
    "1.50000000 \r\n-0.25000000 \r\n1234.56789000 \r\n";

TEST(WriteErd, LayoutIsByteExact) {
  TempDir dir;
  const std::string path = (dir / "small.erd").string();
  EXPECT_TRUE(WriteERD(path, SmallRecord()));
  EXPECT_EQ(ReadBytes(path), std::string("ERDFILEV2.00\r\n"
                                         "      1,      3,      3,      1,      5, 0.010000    ,     -1,\r\n") +
                                 kSmallRecordHeadTail);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);  // no temporary left
}

TEST(WriteErd, ShortNameWithFullStopGetsLeftElevation) {
  ErdRecord rec = SmallRecord();
  rec.ShortName[1] = "RElev.";
  EXPECT_EQ(ErdHeaderLines(rec)[4], "LONGNAMELeft Elevation");
  rec.ShortName[1] = " relev ";  // compared trimmed and without case
  EXPECT_EQ(ErdHeaderLines(rec)[4], "LONGNAMERight Elevation");
}

TEST(WriteErd, TitleComposesKpAndRepairRange) {
  ErdRecord rec = SmallRecord();
  rec.RepairRangeStart = 1.5;
  EXPECT_EQ(ComposeErdTitle(rec), "T");  // a range without a KP start is not written
  rec.KpStart = 12.3456789;
  rec.KpSign = 1;
  rec.Lane = 1;
  EXPECT_EQ(ComposeErdTitle(rec), "T｜12.34568-+｜1.50000,-99999");
  rec.RepairRangeStart = kNoValue;
  rec.Lane = 7;
  EXPECT_EQ(ComposeErdTitle(rec), "T｜12.34568-0");
  EXPECT_EQ(ComposeKpText(rec.KpStart, rec.KpSign, rec.Lane, /*displayForm=*/true), "12.34568--");
  rec.Lane = -1;
  rec.KpSign = 0;
  EXPECT_EQ(ComposeKpText(rec.KpStart, rec.KpSign, rec.Lane), "12.34568+-");
}

TEST(WriteErd, KpOfExactlyNoValueDropsAllKpFields) {
  TempDir dir;
  ErdRecord rec = ReadOk("kp_no_value.erd");
  EXPECT_EQ(rec.KpStart, kNoValue);
  EXPECT_DOUBLE_EQ(rec.RepairRangeStart, 1.0);
  const std::string path = (dir / "out.erd").string();
  WriteERD(path, rec);
  ErdRecord again = ReadOk(path);
  EXPECT_EQ(again.Title, "road");
  EXPECT_TRUE(again.KpText.empty());
  EXPECT_TRUE(again.RepairRangeText.empty());
}

TEST(WriteErd, WriteReadWriteIsByteIdentical) {
  TempDir dir;
  const std::string first = (dir / "first.erd").string(), second = (dir / "second.erd").string();
  const ErdRecord fromFixture = ReadOk("sjis_title_with_kp.erd");
  WriteERD(first, fromFixture);
  ErdRecord reread = ReadOk(first);
  WriteERD(second, reread);
  EXPECT_EQ(ReadBytes(first), ReadBytes(second));
  // The Shift-JIS title survives byte for byte: line 3 is the fixture's own.
  const std::string fixtureBytes = ReadBytes(Fixture("sjis_title_with_kp.erd"));
  const auto titleLine = [](const std::string& bytes) {
    const std::size_t start = bytes.find("TITLE");
    return bytes.substr(start, bytes.find("\r\n", start) - start);
  };
  EXPECT_EQ(titleLine(ReadBytes(first)), titleLine(fixtureBytes));
  EXPECT_EQ(reread.Elevation, fromFixture.Elevation);
}

TEST(WriteErd, MoreSamplesClaimedThanHeldIsAnErrorAndWritesNothing) {
  TempDir dir;
  ErdRecord rec = SmallRecord();
  rec.NumSamples = 4;
  EXPECT_THROW(WriteERD((dir / "x.erd").string(), rec), LegacyError);
  EXPECT_FALSE(std::filesystem::exists(dir / "x.erd"));
}

class UpdateErdTest : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ = (dir_ / "p.erd").string();
    WriteBytes(path_, ReadBytes(Fixture("sjis_title_with_kp.erd")));
    original_ = ReadBytes(path_);
  }
  TempDir dir_;
  std::string path_;
  std::string original_;
};

TEST_F(UpdateErdTest, ReplacesOnlyTheTitleLine) {
  ScriptedUi ui;
  EXPECT_TRUE(UpdateERD(path_, "新題｜1.00000++"));
  std::string expected = original_;
  const std::size_t start = expected.find("TITLE");
  const std::size_t end = expected.find("\r\n", start);
  // "新題｜1.00000++" in Shift-JIS: 新 0x9056, 題 0x91E8, ｜ 0x8162.
  expected.replace(start, end - start, "TITLE   \x90\x56\x91\xE8\x81\x62" "1.00000++");
  EXPECT_EQ(ReadBytes(path_), expected);
  const auto messages = ui.Messages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].Text, "以下のファイルを書き換えました\r\n\r\n対象ファイル名：" + path_);
  EXPECT_EQ(messages[0].Title, "ファイル更新");
  EXPECT_EQ(messages[0].Icon, MsgIcon::Information);

  ScriptedUi quiet;
  EXPECT_TRUE(UpdateERD(path_, "x", /*showMessage=*/false));
  EXPECT_TRUE(quiet.Messages().empty());
  EXPECT_EQ(ReadOk(path_).Title, "x");
}

TEST_F(UpdateErdTest, MissingFileShowsMessageE) {
  ScriptedUi ui;
  const std::string missing = (dir_ / "none.erd").string();
  EXPECT_FALSE(UpdateERD(missing, "x"));
  EXPECT_EQ(ui.OnlyMessageText(),
            "ファイルが見つかりませんでした。\r\n\r\nファイル名：" + missing + "\r\n\r\n確認してください。");
  EXPECT_EQ(ui.Messages()[0].Icon, MsgIcon::Information);
}

TEST_F(UpdateErdTest, FailureInReadOnlyFolderLeavesTheOriginalIntact) {
  namespace fs = std::filesystem;
  fs::permissions(dir_.path(), fs::perms::owner_read | fs::perms::owner_exec);
  const bool canStillWrite = std::ofstream(dir_ / "probe").good();  // root ignores the mode
  if (canStillWrite) {
    fs::permissions(dir_.path(), fs::perms::owner_all);
    GTEST_SKIP() << "folder permissions are not enforced for this user";
  }
  ScriptedUi ui;
  EXPECT_FALSE(UpdateERD(path_, "x"));
  fs::permissions(dir_.path(), fs::perms::owner_all);
  EXPECT_EQ(ReadBytes(path_), original_);
  ASSERT_EQ(ui.Messages().size(), 1u);
  EXPECT_EQ(ui.Messages()[0].Icon, MsgIcon::Critical);
  EXPECT_NE(ui.Messages()[0].Text.find("\r\nUpdateERD"), std::string::npos);
}

TEST_F(UpdateErdTest, FailedWriteLeavesTheOriginalIntact) {
  // A file size limit below the file's size makes the write fail even for a privileged user.
  rlimit saved{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
  auto* previousHandler = signal(SIGXFSZ, SIG_IGN);
  rlimit tight = saved;
  tight.rlim_cur = 64;
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
  ScriptedUi ui;
  const bool result = UpdateERD(path_, "x");
  setrlimit(RLIMIT_FSIZE, &saved);
  signal(SIGXFSZ, previousHandler);
  EXPECT_FALSE(result);
  EXPECT_EQ(ReadBytes(path_), original_);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir_.path()), {}), 1);  // no temporary left
  ASSERT_EQ(ui.Messages().size(), 1u);
  EXPECT_EQ(ui.Messages()[0].Icon, MsgIcon::Critical);
}

}  // namespace
}  // namespace velmora
