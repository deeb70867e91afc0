// The statistics and verification tabs through the workbench: Go, its checks, the saves and the
// registration of shifted copies, on small profiles whose figures follow by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "base/app_paths.h"
#include "base/session.h"
#include "base/text_encoding.h"
#include "evaluation/correlation_tables.h"
#include "support/profile_fixture.h"
#include "support/session_fixture.h"
#include "support/test_support.h"
#include "workbench/workbench.h"

namespace velmora::workbench {
namespace {

using testing::Ramp;
using testing::Road;

using testing::MakeProfile;
using testing::ScriptedUi;
using testing::TempDir;
using Row = std::vector<std::string>;


class EvaluationTabsTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    session.Paths.UserLocalPath = temp.path().string();
    session.Paths.TempPath = (temp / "Temp").string();
    std::filesystem::create_directories(temp / "Temp");
    std::filesystem::create_directories(temp / "Resource");
    session.CurrentConditions = CalcConditions{};
    bench.FormLoad();
  }
  void TearDown() override { session.Paths = saved; }

  TempDir temp;
  AppPaths saved = session.Paths;
  Workbench bench{session};
};

TEST_F(EvaluationTabsTest, StatisticsGoFillsThePagesInTheOrderOfTheSortListsAndSaves) {
  ScriptedUi ui(session);
  bench.AddProfile(MakeProfile("A", 0.25, Ramp(400), 1.0));
  bench.AddProfile(MakeProfile("B", 0.25, Ramp(400, true), 1.0));
  StatisticsSelection& s = bench.Evaluation.Statistics.Selection;
  s.ProfileBands[0] = true;
  s.ProfileMeasures = {true, true, false, false, false};
  bench.StatisticsSortProfile = {"統計値", "プロファイル", "帯域"};

  // Nothing selected: the first check refuses, nothing is computed.
  EXPECT_FALSE(bench.Go(tab::Statistics));
  EXPECT_EQ(ui.OnlyMessageText(), "表示用プロファイルが選択されていません。");
  EXPECT_EQ(bench.ComputeCount(tab::Statistics), 0);

  bench.SelectAll(tab::Statistics);
  ASSERT_TRUE(bench.Go(tab::Statistics));
  EXPECT_EQ(ui.Messages().size(), 1u);
  const StatisticsPage& whole = bench.Evaluation.Statistics.Results.Pages[0];
  // Statistic first: both means, then both deviations.
  EXPECT_EQ(whole.RowText(0), (Row{"プロファイル", "A", "B", "A", "B"}));
  EXPECT_EQ(whole.RowText(2), (Row{"統計値", "平均 μ", "平均 μ", "標準偏差 σ", "標準偏差 σ"}));
  // Mean of 1..400 is 200.5, of 999..600 is 799.5; the population deviation of 400 equally spaced
  // values is sqrt((400² - 1) / 12) for both.
  EXPECT_EQ(whole.Cell(3, 1), "200.50000000");
  EXPECT_EQ(whole.Cell(3, 2), "799.50000000");
  EXPECT_NEAR(std::stod(whole.Cell(3, 3)), std::sqrt((400.0 * 400.0 - 1) / 12), 1e-8);
  EXPECT_EQ(whole.Cell(3, 3), whole.Cell(3, 4));
  // 10 m blocks of 40 samples from 1.000 km: 1..40 and 999..960.
  const StatisticsPage& tens = bench.Evaluation.Statistics.Results.Pages[1];
  ASSERT_EQ(tens.RowCount(), 4u + 10u);
  EXPECT_EQ(tens.RowText(4)[0], "1.000");
  EXPECT_EQ(tens.Cell(4, 1), "20.50000000");
  EXPECT_EQ(tens.Cell(4, 2), "979.50000000");
  EXPECT_NEAR(std::stod(tens.Cell(4, 3)), std::sqrt((40.0 * 40.0 - 1) / 12), 1e-8);
  bool progressShown = false;
  for (const auto& entry : ui.Log) progressShown = progressShown || entry.Kind == "progress-start";
  EXPECT_TRUE(progressShown);

  // The same inputs again keep the results; a changed order runs again.
  EXPECT_TRUE(bench.Go(tab::Statistics));
  EXPECT_EQ(bench.ComputeCount(tab::Statistics), 1);
  bench.StatisticsSortProfile = {"プロファイル", "帯域", "統計値"};
  ASSERT_TRUE(bench.Go(tab::Statistics));
  EXPECT_EQ(bench.ComputeCount(tab::Statistics), 2);
  EXPECT_EQ(bench.Evaluation.Statistics.Results.Pages[0].RowText(0), (Row{"プロファイル", "A", "A", "B", "B"}));

  TempDir out;
  ui.Files.push_back({out.path().string()});
  ASSERT_TRUE(SaveStatisticsTab(bench));
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(out.path())) {
    ++files;
    EXPECT_EQ(entry.path().filename().string().rfind("統計値_", 0), 0u) << entry.path();
  }
  EXPECT_EQ(files, 4);  // the profile pages; no IRI was asked for
  EXPECT_EQ(ui.Messages().back().Title, "データ保存");
}

TEST_F(EvaluationTabsTest, StatisticsOfTheIriMakeTheOctaveSplitFirst) {
  ScriptedUi ui(session);
  bench.AddProfile(MakeProfile("A", 0.25, Road(2000), 0.0));
  bench.SelectAll(tab::Statistics);
  StatisticsSelection& s = bench.Evaluation.Statistics.Selection;
  s.IriBands[3] = true;  // 1-OCT
  s.IriMeasures[0] = true;
  s.IriLengths[1] = true;
  EXPECT_FALSE(bench.Profile(1).Analysis.Octave.Calculated);
  ASSERT_TRUE(bench.Go(tab::Statistics));
  EXPECT_TRUE(bench.Profile(1).Analysis.Octave.Calculated);
  const StatisticsPage& whole = bench.Evaluation.Statistics.Results.Pages[4];
  EXPECT_EQ(whole.RowText(2), (Row{"帯域", "1-OCT"}));
  EXPECT_GE(std::stod(whole.Cell(4, 1)), 0.0);
  EXPECT_TRUE(bench.Evaluation.Statistics.Results.Pages[0].Empty());
}

TEST_F(EvaluationTabsTest, VerificationGoTableSaveAndShiftedRegistration) {
  ScriptedUi ui(session);
  // A's feature at index k lies at k + 3 in B: the shift against A is 3. C equals A.
  bench.AddProfile(MakeProfile("A", 0.25, Road(400, 3), 1.0));
  bench.AddProfile(MakeProfile("B", 0.25, Road(400), 1.0));
  bench.AddProfile(MakeProfile("C", 0.25, Road(400, 3), 1.0));
  bench.SelectAll(tab::Verification);
  CorrelationOptions& o = bench.Evaluation.Verification.Options;
  o.FilterMode = 0;
  o.Measure = 3;
  ASSERT_TRUE(bench.Go(tab::Verification));
  const CorrelationResults& r = bench.Evaluation.Verification.Results;
  EXPECT_EQ(r.Cell(1, 2).Peak(CorrelationRow::Rho).Shift, 3);
  // Identical series: (n - 1) / n at shift 0, for the deviations divide by n - 1 and Rho by n.
  EXPECT_NEAR(r.Cell(1, 3).Peak(CorrelationRow::Rho).Value, 399.0 / 400.0, 1e-12);
  EXPECT_EQ(r.Cell(1, 3).Peak(CorrelationRow::Rho).Shift, 0);
  const auto table = BuildCorrelationTable(r);
  EXPECT_EQ(table[0], (Row{"", "A", "B", "C"}));
  EXPECT_EQ(table[3][1], "1.00000");  // 標準偏差比 of A and C
  bool captionShown = false;
  for (const auto& entry : ui.Log) captionShown = captionShown || entry.Title == "相互相関値の集計中です";
  EXPECT_TRUE(captionShown);

  TempDir out;
  ui.Files.push_back({out.path().string()});
  ASSERT_TRUE(SaveVerificationTab(bench));
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(out.path())) {
    ++files;
    EXPECT_EQ(entry.path().filename().string().rfind("CC_", 0), 0u) << entry.path();
  }
  EXPECT_EQ(files, 6);

  bench.TabDirty.fill(false);
  EXPECT_EQ(RegisterShiftedProfilesTab(bench), (std::vector<std::string>{"B-3P"}));
  ASSERT_EQ(bench.ProfileCount(), 4);
  EXPECT_EQ(ProfileList::NameOf(bench.Profile(4)), "B-3P");
  EXPECT_NEAR(bench.Profile(4).Erd.KpStart, 1.0 - 3 * 0.25 / 1000, 1e-9);  // km
  EXPECT_EQ(bench.Profile(4).WorkCount, 400);
  EXPECT_TRUE(bench.TabDirty[tab::Statistics]);  // registered as any file is
}

TEST_F(EvaluationTabsTest, VerificationRefusesMixedPitchesAndLogsAConstantProfile) {
  ScriptedUi ui(session);
  bench.AddProfile(MakeProfile("A", 0.25, Road(100), 1.0));
  bench.AddProfile(MakeProfile("B", 0.1, Road(100), 1.0));
  bench.AddProfile(MakeProfile("F", 0.25, std::vector<double>(100, 5.0), 1.0));
  bench.Evaluation.Verification.Options.FilterMode = 0;
  bench.Select(tab::Verification, {1, 2});
  EXPECT_FALSE(bench.Go(tab::Verification));
  EXPECT_EQ(ui.OnlyMessageText(),
            "対象プロファイルのサンプルピッチは全て同じにしてください。\r\nA ： 0.2500\r\nB ： 0.1000\r\n確認してください。");
  EXPECT_EQ(bench.ComputeCount(tab::Verification), 0);

  // A flat profile has no deviation: the division by zero ends the run through the error log.
  bench.Select(tab::Verification, {1, 3});
  EXPECT_FALSE(bench.Go(tab::Verification));
  EXPECT_FALSE(bench.Evaluation.Verification.Results.Valid);
  std::string log;
  for (const auto& line : ReadSystemTextLines(temp / "Temp" / "Sorvik_Err.log")) log += line;
  EXPECT_NE(log.find("cmdGO相互相関"), std::string::npos) << log;
}

}  // namespace
}  // namespace velmora::workbench
