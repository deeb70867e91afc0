// The ERD writer and title updater against hand-written expected bytes; the reader's cases are in
// erd_read_test.cpp.
#include "profile/erd_file.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <filesystem>
#include <fstream>

#include "base/legacy_error.h"
#include "support/checks.h"
#include "support/session_fixture.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::ScriptedUi;
using testing::TempDir;

fs::path Fixture(const std::string& name) { return testing::SourceDir() / "tests/data/erd" / name; }

ErdRecord ReadOk(const fs::path& path) {
  ScriptedUi ui;
  Session session(ui);
  ErdRecord rec;
  EXPECT_TRUE(ReadERD(session, path.string(), rec)) << path;
  EXPECT_TRUE(ui.Messages().empty()) << path;
  return rec;
}

// The TITLE line of a file's bytes, without its line end.
std::string TitleLine(const std::string& bytes) {
  const std::size_t start = bytes.find("TITLE");
  return bytes.substr(start, bytes.find("\r\n", start) - start);
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

TEST(WriteErd, LayoutIsByteExactAndMoreSamplesClaimedThanHeldWritesNothing) {
  TempDir dir;
  EXPECT_TRUE(WriteERD((dir / "small.erd").string(), SmallRecord()));
  EXPECT_EQ(ReadBytes(dir / "small.erd"),
            "ERDFILEV2.00\r\n      1,      3,      3,      1,      5, 0.010000    ,     -1,\r\n"
            "TITLE   T\r\nSHORTNAMRElev\r\nLONGNAMERight Elevation\r\nUNITSNAMmm\r\nGENNAME Elevation\r\n"
            "XLABEL  Distance\r\nXUNITS  m\r\nFORMAT  (G14.6)\r\nEND\r\n"
            "1.50000000 \r\n-0.25000000 \r\n1234.56789000 \r\n");
  ErdRecord rec = SmallRecord();
  rec.NumSamples = 4;
  EXPECT_THROW(WriteERD((dir / "x.erd").string(), rec), LegacyError);
  EXPECT_EQ(testing::EntryNames(dir.path()), (std::vector<std::string>{"small.erd"}));  // no temporary left
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
  EXPECT_EQ(ComposeKpText(rec.KpStart, 0, -1), "12.34568+-");
}

// Read, write, read, write: the same bytes both times and the same record. The examples are in the
// writer's own layout and come back unchanged.
TEST(WriteErd, RewritesAreByteIdentical) {
  TempDir dir;
  std::vector<fs::path> files{Fixture("sjis_title_with_kp.erd"), Fixture("kp_no_value.erd")};
  for (const auto& entry : fs::directory_iterator(testing::SourceDir() / "examples"))
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
  // The Shift-JIS title survives byte for byte.
  EXPECT_EQ(TitleLine(ReadBytes(dir / "1_sjis_title_with_kp.erd")), TitleLine(ReadBytes(files[0])));
  // A KP of exactly the no-value drops the KP and the repair range.
  const ErdRecord noKp = ReadOk(dir / "1_kp_no_value.erd");
  EXPECT_EQ(noKp.Title, "road");
  EXPECT_TRUE(noKp.KpText.empty());
  EXPECT_TRUE(noKp.RepairRangeText.empty());
}

// A copy of the Shift-JIS fixture to update, and the scripted user of the update.
class UpdateErdTest : public testing::SessionTest {
 protected:
  void SetUp() override { testing::WriteBytes(path_, original_); }
  // The update fails, shows one critical message and leaves the file as it was, with no temporary beside it.
  void ExpectRefusedAndIntact(bool refused) {
    EXPECT_FALSE(refused);
    EXPECT_EQ(ReadBytes(path_), original_);
    EXPECT_EQ(testing::EntryNames(folder_.path()), (std::vector<std::string>{"p.erd"}));
    ASSERT_EQ(ui_.Messages().size(), 1u);
    EXPECT_EQ(ui_.Messages()[0].Icon, MsgIcon::Critical);
    EXPECT_NE(ui_.Messages()[0].Text.find("\r\nUpdateERD"), std::string::npos) << ui_.Messages()[0].Text;
  }
  TempDir folder_;
  const std::string path_ = (folder_ / "p.erd").string();
  const std::string original_ = ReadBytes(Fixture("sjis_title_with_kp.erd"));
};

TEST_F(UpdateErdTest, ReplacesOnlyTheTitleLine) {
  EXPECT_TRUE(UpdateERD(session, path_, "新題｜1.00000++"));
  std::string expected = original_;
  // "新題｜1.00000++" in Shift-JIS: 新 0x9056, 題 0x91E8, ｜ 0x8162.
  expected.replace(expected.find("TITLE"), TitleLine(original_).size(), "TITLE   \x90\x56\x91\xE8\x81\x62" "1.00000++");
  EXPECT_EQ(ReadBytes(path_), expected);
  testing::ExpectMessages(ui_, {{"以下のファイルを書き換えました\r\n\r\n対象ファイル名：" + path_, "ファイル更新",
                                 MsgIcon::Information}});
  EXPECT_TRUE(UpdateERD(session, path_, "x", /*showMessage=*/false));
  EXPECT_EQ(ui_.Messages().size(), 1u);
  EXPECT_EQ(ReadOk(path_).Title, "x");
}

TEST_F(UpdateErdTest, MissingFileIsReported) {
  const std::string missing = (folder_ / "none.erd").string();
  EXPECT_FALSE(UpdateERD(session, missing, "x"));
  testing::ExpectMessages(ui_, {{"ファイルが見つかりませんでした。\r\n\r\nファイル名：" + missing + "\r\n\r\n確認してください。",
                                 std::nullopt, MsgIcon::Information}});
}

TEST_F(UpdateErdTest, FailureInReadOnlyFolderLeavesTheOriginalIntact) {
  fs::permissions(folder_.path(), fs::perms::owner_read | fs::perms::owner_exec);
  if (std::ofstream(folder_ / "probe").good()) {  // root ignores the mode
    fs::permissions(folder_.path(), fs::perms::owner_all);
    GTEST_SKIP() << "folder permissions are not enforced for this user";
  }
  const bool updated = UpdateERD(session, path_, "x");
  fs::permissions(folder_.path(), fs::perms::owner_all);
  ExpectRefusedAndIntact(updated);
}

TEST_F(UpdateErdTest, FailedWriteLeavesTheOriginalIntact) {
  // A file size limit below the file's size makes the write fail even for a privileged user.
  rlimit saved{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
  auto* previousHandler = signal(SIGXFSZ, SIG_IGN);
  rlimit tight = saved;
  tight.rlim_cur = 64;
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
  const bool updated = UpdateERD(session, path_, "x");
  setrlimit(RLIMIT_FSIZE, &saved);
  signal(SIGXFSZ, previousHandler);
  ExpectRefusedAndIntact(updated);
}

}  // namespace
}  // namespace velmora
