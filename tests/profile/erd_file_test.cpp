// The ERD writer and title updater against hand-written expected bytes; the reader's cases are in
// erd_read_test.cpp.
#include "profile/erd_file.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <filesystem>
#include <fstream>

#include "base/legacy_error.h"
#include "support/session_fixture.h"
#include "support/test_support.h"

namespace velmora {
namespace {

using testing::ReadBytes;
using testing::ScriptedUi;
using testing::TempDir;
using testing::WriteBytes;

std::filesystem::path Fixture(const std::string& name) { return testing::SourceDir() / "tests/data/erd" / name; }

ErdRecord ReadOk(const std::filesystem::path& path) {
  ScriptedUi ui;
  Session session(ui);
  ErdRecord rec;
  EXPECT_TRUE(ReadERD(session, path.string(), rec)) << path;
  EXPECT_TRUE(ui.Messages().empty()) << path;
  return rec;
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

class WriteErd : public testing::SessionTest {};

TEST_F(WriteErd, LayoutIsByteExact) {
  TempDir dir;
  const std::string path = (dir / "small.erd").string();
  EXPECT_TRUE(WriteERD(path, SmallRecord()));
  EXPECT_EQ(ReadBytes(path), std::string("ERDFILEV2.00\r\n"
                                         "      1,      3,      3,      1,      5, 0.010000    ,     -1,\r\n") +
                                 kSmallRecordHeadTail);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);  // no temporary left
}

TEST_F(WriteErd, ShortNameWithFullStopGetsLeftElevation) {
  ErdRecord rec = SmallRecord();
  rec.ShortName[1] = "RElev.";
  EXPECT_EQ(ErdHeaderLines(rec)[4], "LONGNAMELeft Elevation");
  rec.ShortName[1] = " relev ";  // compared trimmed and without case
  EXPECT_EQ(ErdHeaderLines(rec)[4], "LONGNAMERight Elevation");
}

TEST_F(WriteErd, TitleComposesKpAndRepairRange) {
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

// Read, write, read, write: the same bytes both times and the same record. The examples are in the
// writer's own layout and come back unchanged.
TEST_F(WriteErd, RewritesAreByteIdentical) {
  TempDir dir;
  std::vector<std::filesystem::path> files{Fixture("sjis_title_with_kp.erd"), Fixture("kp_no_value.erd")};
  for (const auto& entry : std::filesystem::directory_iterator(testing::SourceDir() / "examples"))
    if (entry.path().extension() == ".erd") files.push_back(entry.path());
  ASSERT_GE(files.size(), 4u);
  for (const auto& source : files) {
    const auto first = dir / ("1_" + source.filename().string()), second = dir / "2.erd";
    const ErdRecord original = ReadOk(source);
    WriteERD(first.string(), original);
    const ErdRecord reread = ReadOk(first);
    WriteERD(second.string(), reread);
    EXPECT_EQ(ReadBytes(first), ReadBytes(second)) << source;
    EXPECT_EQ(reread.Elevation, original.Elevation) << source;
    EXPECT_EQ(ComposeErdTitle(reread), ComposeErdTitle(original)) << source;
    EXPECT_EQ(reread.StepSize, original.StepSize) << source;
    if (source.parent_path().filename() == "examples") {
      EXPECT_EQ(ReadBytes(first), ReadBytes(source)) << source;
    }
  }
  // The Shift-JIS title survives byte for byte: line 3 is the fixture's own.
  const auto titleLine = [](const std::string& bytes) {
    const std::size_t start = bytes.find("TITLE");
    return bytes.substr(start, bytes.find("\r\n", start) - start);
  };
  EXPECT_EQ(titleLine(ReadBytes(dir / "1_sjis_title_with_kp.erd")), titleLine(ReadBytes(files[0])));
  // A KP of exactly the no-value drops the KP and the repair range.
  const ErdRecord noKp = ReadOk(dir / "1_kp_no_value.erd");
  EXPECT_EQ(noKp.Title, "road");
  EXPECT_TRUE(noKp.KpText.empty());
  EXPECT_TRUE(noKp.RepairRangeText.empty());
}

TEST_F(WriteErd, MoreSamplesClaimedThanHeldIsAnErrorAndWritesNothing) {
  TempDir dir;
  ErdRecord rec = SmallRecord();
  rec.NumSamples = 4;
  EXPECT_THROW(WriteERD((dir / "x.erd").string(), rec), LegacyError);
  EXPECT_FALSE(std::filesystem::exists(dir / "x.erd"));
}

class UpdateErdTest : public testing::SessionTest {
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
  testing::ScriptedUi ui(session);
  EXPECT_TRUE(UpdateERD(session, path_, "新題｜1.00000++"));
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

  ScriptedUi quiet(session);
  EXPECT_TRUE(UpdateERD(session, path_, "x", /*showMessage=*/false));
  EXPECT_TRUE(quiet.Messages().empty());
  EXPECT_EQ(ReadOk(path_).Title, "x");
}

TEST_F(UpdateErdTest, MissingFileShowsMessageE) {
  testing::ScriptedUi ui(session);
  const std::string missing = (dir_ / "none.erd").string();
  EXPECT_FALSE(UpdateERD(session, missing, "x"));
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
  testing::ScriptedUi ui(session);
  EXPECT_FALSE(UpdateERD(session, path_, "x"));
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
  testing::ScriptedUi ui(session);
  const bool result = UpdateERD(session, path_, "x");
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
