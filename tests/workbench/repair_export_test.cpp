// The study's result files on small hand-made records: names, heads and rows written out by hand.
#include "workbench/repair_result_files.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "base/app_paths.h"
#include "base/session.h"
#include "base/text_encoding.h"
#include "profile/erd_file.h"
#include "support/session_fixture.h"
#include "support/test_support.h"

namespace velmora::workbench {
namespace {

using testing::Noon;
using testing::ReadBytes;
using testing::ScriptedUi;
using testing::TempDir;

WaveSeries Wave(std::initializer_list<double> values) {
  WaveSeries wave;
  StoreWave(wave, Array1<double>(values));
  return wave;
}

// Three samples at 0.5 m, a KP of 1.2 km at the first, split by hand so that L + M + S = profile.
ProfileRecord Split(const std::string& name) {
  ProfileRecord r;
  r.FileName = name + ".erd";
  r.Erd.StepSize = 0.5;
  r.Erd.KpStart = 1.2;
  r.Erd.Title = "試験";
  r.Erd.NumChannels = 1;
  r.Erd.FormatCode = 5;
  r.Erd.ShortName[1] = "RElev";
  r.Erd.YLabel = "Elevation";
  r.Erd.XLabel = "Distance";
  r.WorkCount = 3;
  r.WorkProfile = Array1<double>{6.0, 3.0, -1.5};
  r.ThreeWave.LongWave = Wave({1.0, 1.0, 1.0});
  r.ThreeWave.MiddleWave = Wave({4.0, 1.5, -2.0});
  r.ThreeWave.ShortWave = Wave({1.0, 0.5, -0.5});
  r.ThreeWave.Valid = true;
  return r;
}

class RepairExportTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    session.Paths.AppPath = temp.path().string();  // no TOLVAVERI.ini: the built-in names
    session.Paths.UserLocalPath = temp.path().string();
    session.Paths.TempPath = temp.path().string();
    std::filesystem::create_directories(temp / "out");
    bench.AddProfile(Split("a"));
    bench.AddProfile(ProfileRecord{});  // no split: passed over
    for (int t = tab::ThreeWave; t <= tab::IdealShape; ++t) bench.SelectAll(t);
    ui.Files.push_back({(temp / "out" / "ignored.Dummy").string()});
  }
  std::string Folder() const { return (temp / "out").string(); }

  TempDir temp;
  Workbench bench{session};
  testing::ScriptedUi& ui = ui_;
};

TEST_F(RepairExportTest, ThreeWaveProfileFileHasTheDistanceAndTheThreeWaves) {
  const ExportOutcome out = MakeRepairResultFiles(bench, {RepairExportKind::ThreeWaveProfile, false, tab::ThreeWave}, Noon());
  ASSERT_EQ(out.Files.size(), 1u);
  EXPECT_EQ(out.Files[0], Folder() + "/a_3波分解(Profile)_20240305120000.CSV");
  EXPECT_EQ(FromSystemCodePage(ReadBytes(out.Files[0])),
            "Distance(m), Profile, L波, M波, S波\r\n"
            "0.00000, 6.00000000, 1.00000000, 4.00000000, 1.00000000\r\n"
            "0.50000, 3.00000000, 1.00000000, 1.50000000, 0.50000000\r\n"
            "1.00000, -1.50000000, 1.00000000, -2.00000000, -0.50000000\r\n");
  ASSERT_EQ(ui.Messages().size(), 1u);
  EXPECT_EQ(ui.Messages()[0].Text, "CSV形式で以下のフォルダに保存しました。 \r\n保存先：" + Folder());
}

TEST_F(RepairExportTest, KpAxisInKmGivesTheKpColumn) {
  bench.Axis.Mode = PositionMode::Kp;
  const ExportOutcome out = MakeRepairResultFiles(bench, {RepairExportKind::ThreeWaveProfile, false, tab::ThreeWave}, Noon());
  ASSERT_EQ(out.Files.size(), 1u);
  const std::string text = FromSystemCodePage(ReadBytes(out.Files[0]));
  // 1.2 km + 0.5 m = 1.2005 km.
  EXPECT_EQ(text.substr(0, text.find("\r\n", text.find("\r\n") + 2) + 2),
            "Distance(KP), Profile, L波, M波, S波\r\n1.20000, 6.00000000, 1.00000000, 4.00000000, 1.00000000\r\n");
  EXPECT_NE(text.find("\r\n1.20050, 3.00000000"), std::string::npos);
}

TEST_F(RepairExportTest, ShortWaveFileHasSAndSPrimeAndTheNineReducedBands) {
  ProfileRecord& a = bench.Profile(1);
  a.RepairStudy.ShortReduced = Wave({0.5, 0.25, -0.25});
  for (std::size_t k = 1; k <= 9; ++k) a.RepairStudy.ShortReducedBands[k] = Wave({0, 0, 0});
  a.RepairStudy.ShortReducedBands[7] = Wave({0.5, 0.25, -0.25});
  a.RepairStudy.ShortReducedValid = true;
  const ExportOutcome out = MakeRepairResultFiles(bench, {RepairExportKind::ShortWave, false, tab::ShortWave}, Noon());
  ASSERT_EQ(out.Files.size(), 1u);
  EXPECT_EQ(out.Files[0], Folder() + "/a_S波_20240305120000.CSV");
  const std::string text = FromSystemCodePage(ReadBytes(out.Files[0]));
  EXPECT_EQ(text.substr(0, text.find("\r\n")),
            "Distance(m), Profile, S波Profile, S'波Profile, 1-OCT(S'波), 2-OCT(S'波), 3-OCT(S'波), 4-OCT(S'波), "
            "5-OCT(S'波), 6-OCT(S'波), 7-OCT(S'波), 8-OCT(S'波), 9-OCT(S'波)");
  EXPECT_NE(text.find("\r\n0.50000, 3.00000000, 0.50000000, 0.25000000, 0.00000000, 0.00000000, 0.00000000, "
                      "0.00000000, 0.00000000, 0.00000000, 0.25000000, 0.00000000, 0.00000000\r\n"),
            std::string::npos);
}

TEST_F(RepairExportTest, IdealShapeAsErdHoldsTheIdealShape) {
  ProfileRecord& a = bench.Profile(1);
  a.RepairStudy.IdealShape.Wave = Wave({6.0, 4.5, 0.25});
  a.RepairStudy.MiddleValid = true;
  a.RepairStudy.IdealValid = true;
  const ExportOutcome out = MakeRepairResultFiles(bench, {RepairExportKind::IdealShape, true, tab::IdealShape}, Noon());
  ASSERT_EQ(out.Files.size(), 1u);
  EXPECT_EQ(out.Files[0], Folder() + "/a_理想形状_20240305120000.ERD");
  EXPECT_EQ(ui.Log[0].Title, "ERDファイル保存");
  ErdRecord erd;
  ASSERT_TRUE(ReadERD(session, out.Files[0], erd));
  ASSERT_EQ(erd.NumSamples, 3);
  EXPECT_NEAR(erd.Elevation[1], 6.0, 1e-6);
  EXPECT_NEAR(erd.Elevation[2], 4.5, 1e-6);
  EXPECT_NEAR(erd.Elevation[3], 0.25, 1e-6);
}

TEST_F(RepairExportTest, NothingToWriteIsReportedAndTwoWaveKindsHaveNoErdForm) {
  // No S' yet: "該当する件数がありません。" and no dialog.
  EXPECT_TRUE(MakeRepairResultFiles(bench, {RepairExportKind::ShortWave, false, tab::ShortWave}, Noon()).Files.empty());
  EXPECT_EQ(ui.OnlyMessageText(), "該当する件数がありません。");
  EXPECT_EQ(ui.Messages()[0].Title, "案内");
  ScriptedUi second(session);
  EXPECT_TRUE(MakeRepairResultFiles(bench, {RepairExportKind::ThreeWaveProfile, true, tab::ThreeWave}, Noon()).Files.empty());
  EXPECT_TRUE(std::filesystem::is_empty(temp / "out"));
}

}  // namespace
}  // namespace velmora::workbench
