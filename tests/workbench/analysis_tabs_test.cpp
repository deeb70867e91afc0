// The analysis tabs through the workbench on small profiles whose figures follow by hand: the band
// reduction's Go with its lines, the statistics and verification tabs with their checks, the saves
// and the registration of shifted copies.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "analysis/band_reduction.h"
#include "base/app_paths.h"
#include "base/common.h"
#include "base/session.h"
#include "base/text_encoding.h"
#include "support/octave_five_sine.h"
#include "support/profile_fixture.h"
#include "support/readback.h"
#include "support/session_fixture.h"
#include "workbench/workbench.h"

namespace velmora::workbench {
namespace {

using testing::MakeProfile;
using testing::Ramp;
using testing::Road;
using testing::TempDir;
using Row = std::vector<std::string>;

class AnalysisTabsTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    session.Paths.UserLocalPath = dir_.path().string();
    std::filesystem::create_directories(dir_ / "Resource");
    session.CurrentConditions = CalcConditions{};
    session.Settings.LongOctaves = {1, 2, 3};
    session.Settings.ShortOctaves = {7, 8, 9};
    bench.FormLoad();
  }
  const BandReductionBlock& Block() { return bench.Profile(1).Analysis.BandReduction; }

  testing::ScriptedUi& ui = ui_;
  Workbench bench{session};
};

TEST_F(AnalysisTabsTest, BandReductionGoReducesTheLimitedBandToItsLimitAndKeepsTheOthers) {
  bench.AddProfile(MakeProfile("sine", 0.05, testing::OctaveFiveSine()));  // 2 mm in octave 5
  bench.Select(tab::BandReduction, {1});
  bench.Band.Lines = {};
  bench.Band.Lines[5] = " 1 ";
  ASSERT_TRUE(bench.Go(tab::BandReduction));
  EXPECT_FALSE(bench.TabDirty[tab::BandReduction]);
  const ProfileRecord& r = bench.Profile(1);
  ASSERT_TRUE(Block().Calculated);
  ASSERT_TRUE(r.Analysis.Octave.Calculated);  // the split was made on the way
  EXPECT_EQ(Block().Limits[5], 1.0);
  EXPECT_EQ(Block().Limits[4], NoLimit);
  // The stored conditions keep the limit and the no value for the blank lines.
  EXPECT_EQ(session.CurrentConditions.BandLines.Value[5], 1.0);
  EXPECT_TRUE(IsNoValue(session.CurrentConditions.BandLines.Value[4]));
  // Each half-wave above 1 mm ends with a peak of exactly 1 mm; band 4 is the split's.
  const SeriesStats& five = Block().Result.Reduced[5].Stats;
  EXPECT_EQ(std::max(five.Maximum, -five.Minimum), 1.0);
  EXPECT_TRUE(std::ranges::equal(Block().Result.Reduced[4].Values.span(), r.Analysis.Octave.Band[4].Values.span()));
  // The short-wave sum is that of octaves 7, 8 and 9, as set up.
  const auto& reduced = Block().Result.Reduced;
  EXPECT_DOUBLE_EQ(Block().ShortSum.Values[100], reduced[7].Values[100] + reduced[8].Values[100] + reduced[9].Values[100]);

  // The same lines again keep the results; a text is no limit, and a limit of zero zeros the band.
  bench.Band.Lines[2] = "x";
  bench.Band.Lines[5] = "0";
  ASSERT_TRUE(bench.Go(tab::BandReduction));
  ASSERT_TRUE(bench.Go(tab::BandReduction));
  EXPECT_EQ(bench.ComputeCount(tab::BandReduction), 2);
  EXPECT_EQ(Block().Limits[2], NoLimit);
  EXPECT_EQ(Block().Result.Reduced[5].Stats.Maximum, 0.0);
  EXPECT_EQ(Block().Result.Reduced[5].Stats.Minimum, 0.0);
}

TEST_F(AnalysisTabsTest, StatisticsGoFillsThePagesInTheOrderOfTheSortListsAndSaves) {
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
  EXPECT_FALSE(testing::Titles(ui, "progress-start").empty());
  // Statistic first: both means (of 1..400 and of 999..600), then both deviations.
  const StatisticsPage& whole = bench.Evaluation.Statistics.Results.Pages[0];
  EXPECT_EQ(whole.RowText(0), (Row{"プロファイル", "A", "B", "A", "B"}));
  EXPECT_EQ(whole.RowText(2), (Row{"統計値", "平均 μ", "平均 μ", "標準偏差 σ", "標準偏差 σ"}));
  EXPECT_EQ(whole.Cell(3, 1), "200.50000000");
  EXPECT_EQ(whole.Cell(3, 2), "799.50000000");

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
  testing::ExpectHeads(testing::FileNames(out.path()), Row(4, "統計値_"));  // the profile pages; no IRI was asked for
  EXPECT_EQ(ui.Messages().back().Title, "データ保存");
}

TEST_F(AnalysisTabsTest, StatisticsOfTheIriMakeTheOctaveSplitFirst) {
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

TEST_F(AnalysisTabsTest, VerificationGoTableSaveAndShiftedRegistration) {
  // A's feature at index k lies at k + 3 in B: the shift against A is 3.
  bench.AddProfile(MakeProfile("A", 0.25, Road(400, 3), 1.0));
  bench.AddProfile(MakeProfile("B", 0.25, Road(400), 1.0));
  bench.SelectAll(tab::Verification);
  CorrelationOptions& o = bench.Evaluation.Verification.Options;
  o.FilterMode = 0;
  o.Measure = 3;
  ASSERT_TRUE(bench.Go(tab::Verification));
  EXPECT_EQ(bench.Evaluation.Verification.Results.Cell(1, 2).Peak(CorrelationRow::Rho).Shift, 3);
  EXPECT_EQ(std::ranges::count(testing::Titles(ui, "progress-start"), "相互相関値の集計中です"), 1);

  TempDir out;
  ui.Files.push_back({out.path().string()});
  ASSERT_TRUE(SaveVerificationTab(bench));
  testing::ExpectHeads(testing::FileNames(out.path()), Row(6, "CC_"));

  bench.TabDirty.fill(false);
  EXPECT_EQ(RegisterShiftedProfilesTab(bench), (std::vector<std::string>{"B-3P"}));
  ASSERT_EQ(bench.ProfileCount(), 3);
  EXPECT_EQ(ProfileList::NameOf(bench.Profile(3)), "B-3P");
  EXPECT_TRUE(bench.TabDirty[tab::Statistics]);  // registered as any file is
}

TEST_F(AnalysisTabsTest, VerificationRefusesMixedPitchesAndLogsAConstantProfile) {
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
  for (const auto& line : ReadSystemTextLines(dir_ / "Temp" / "Sorvik_Err.log")) log += line;
  EXPECT_NE(log.find("cmdGO相互相関"), std::string::npos) << log;
}

}  // namespace
}  // namespace velmora::workbench
