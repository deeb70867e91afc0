// The analysis and study tabs through the workbench's Go. The analysis tabs on small profiles whose
// figures follow by hand: the band reduction with its lines, the statistics and verification tabs with
// their checks, the saves and the registration of shifted copies. The study's tabs 10 to 13 on a made-up
// road of three sines.
#include <gtest/gtest.h>

#include "analysis/band_reduction.h"
#include "base/common.h"
#include "base/text_encoding.h"
#include "repair/ideal_shape.h"
#include "repair/study_fixture.h"
#include "repair/study_targets.h"
#include "repair/three_wave.h"
#include "support/checks.h"
#include "support/profile_fixture.h"
#include "workbench/evaluation_tabs.h"
#include "workbench/repair_register.h"
#include "workbench/repair_result_files.h"
#include "workbench/tab_table.h"
#include "workbench/workbench.h"

namespace velmora::workbench {
namespace {

using testing::MakeProfile;
using testing::Ramp;
using testing::Road;
using testing::TempDir;
using Texts = std::vector<std::string>;

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

TEST_F(AnalysisTabsTest, BandReductionGoReducesTheLimitedBandToItsLimitAndSumsTheListedOctaves) {
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
  // The split's 2 mm of octave 5 reduced to the line of 1 mm.
  const SeriesStats& five = Block().Result.Reduced[5].Stats;
  EXPECT_EQ(std::max(five.Maximum, -five.Minimum), 1.0);
  // The short-wave sum is that of octaves 7, 8 and 9, as set up.
  const auto& reduced = Block().Result.Reduced;
  EXPECT_DOUBLE_EQ(Block().ShortSum.Values[100], reduced[7].Values[100] + reduced[8].Values[100] + reduced[9].Values[100]);

  // A changed line runs again, the same lines again keep the results.
  bench.Band.Lines[5] = "0";
  ASSERT_TRUE(bench.Go(tab::BandReduction));
  ASSERT_TRUE(bench.Go(tab::BandReduction));
  EXPECT_EQ(bench.ComputeCount(tab::BandReduction), 2);
  EXPECT_EQ(Block().Limits[5], 0.0);
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
  EXPECT_EQ(whole.RowText(0), (Texts{"プロファイル", "A", "B", "A", "B"}));
  EXPECT_EQ(whole.RowText(2), (Texts{"統計値", "平均 μ", "平均 μ", "標準偏差 σ", "標準偏差 σ"}));

  // The same inputs again keep the results; a changed order runs again.
  EXPECT_TRUE(bench.Go(tab::Statistics));
  EXPECT_EQ(bench.ComputeCount(tab::Statistics), 1);
  bench.StatisticsSortProfile = {"プロファイル", "帯域", "統計値"};
  ASSERT_TRUE(bench.Go(tab::Statistics));
  EXPECT_EQ(bench.ComputeCount(tab::Statistics), 2);
  EXPECT_EQ(bench.Evaluation.Statistics.Results.Pages[0].RowText(0), (Texts{"プロファイル", "A", "A", "B", "B"}));

  TempDir out;
  ui.Files.push_back({out.path().string()});
  ASSERT_TRUE(SaveStatisticsTab(bench));
  testing::ExpectHeads(testing::FileNames(out.path()), Texts(4, "統計値_"));  // the profile pages; no IRI was asked for
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
  EXPECT_EQ(whole.RowText(2), (Texts{"帯域", "1-OCT"}));
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
  testing::ExpectHeads(testing::FileNames(out.path()), Texts(6, "CC_"));

  bench.TabDirty.fill(false);
  EXPECT_EQ(RegisterShiftedProfilesTab(bench), (std::vector<std::string>{"B-3P"}));
  EXPECT_EQ(bench.ProfileCount(), 3);
  EXPECT_TRUE(bench.TabDirty[tab::Statistics]);  // registered as any file is
}

TEST_F(AnalysisTabsTest, VerificationRefusedByItsCheckComputesNothing) {
  // Mixed pitches: the check's message (worked out in the engine's tests) and no run.
  bench.AddProfile(MakeProfile("A", 0.25, Road(100), 1.0));
  bench.AddProfile(MakeProfile("B", 0.1, Road(100), 1.0));
  bench.SelectAll(tab::Verification);
  EXPECT_FALSE(bench.Go(tab::Verification));
  EXPECT_EQ(testing::Kinds(ui), Texts{"message"});
  EXPECT_EQ(bench.ComputeCount(tab::Verification), 0);
}

const std::string kNoAdjustment = "----------【 調整なし 】----------";

class RepairTabsTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    session.Paths.UserLocalPath = dir_.path().string();
    session.CurrentConditions = CalcConditions{};
    testing::UseGoldenCarForStudy(session);
    bench.FormLoad();
    bench.MnuBunseki();
    bench.AddProfile(testing::ThreeSineProfile("a.ERD"));
    bench.Repair.Form = testing::StudyForm();  // 51.2 m / 4 m, IRI over 10 m, no band lines
    // The study's values as if the boxes had been saved with the project: no change on the first Go.
    getParam_補修形状検討_3波分解(session, bench.Repair.Form, bench.Repair.Stored);
    for (int t = tab::ThreeWave; t <= tab::IdealShape; ++t) bench.SelectAll(t);
    bench.TabClick(tab::ThreeWave);  // the entry splits the road: the tab is dirty
    ui.Log.clear();
  }
  ProfileRecord& Road() { return bench.Profile(1); }
  bool Run(int from = tab::ThreeWave, int to = tab::IdealShape) {
    for (int t = from; t <= to; ++t)
      if (!bench.Go(t)) return false;
    return true;
  }

  testing::ScriptedUi& ui = ui_;
  Workbench bench{session};
};

TEST_F(RepairTabsTest, FourGosGiveTheWavesTheCorrectedProfileAndTheIdealShape) {
  ASSERT_TRUE(Run(tab::ThreeWave, tab::ShortWave));
  ui.Log.clear();
  ASSERT_TRUE(bench.Go(tab::IdealShape));
  EXPECT_EQ(testing::Titles(ui, "progress-start"), (Texts{"オリジナルプロファイルの計算", "理想形状案の計算", "ＩＲＩ計算"}));
  EXPECT_TRUE(ui.Messages().empty());

  // Each step's result is there; its numbers are the engine's, checked with the study.
  const RepairStudyData& study = Road().RepairStudy;
  ASSERT_TRUE(Road().ThreeWave.Valid && study.MiddleValid && study.ShortReducedValid && study.IdealValid);
  EXPECT_EQ(study.IdealShape.Wave.Values.size(), Road().WorkCount);

  // Each tab's output buttons opened, and the study lists show the fixed first item.
  EXPECT_EQ(bench.Repair.OutputEnabled, (std::array<bool, 4>{true, true, true, true}));
  EXPECT_EQ(bench.Repair.MWaveChoices, Texts{kNoAdjustment});
  for (int t = tab::ThreeWave; t <= tab::IdealShape; ++t) EXPECT_FALSE(bench.TabDirty[t]) << t;
  // Unchanged, a second round recomputes nothing and shows no box.
  std::array<int, 4> counts{};
  for (int t = tab::ThreeWave; t <= tab::IdealShape; ++t) counts[t - tab::ThreeWave] = bench.ComputeCount(t);
  ASSERT_TRUE(Run());
  for (int t = tab::ThreeWave; t <= tab::IdealShape; ++t) EXPECT_EQ(bench.ComputeCount(t), counts[t - tab::ThreeWave]) << t;
  EXPECT_TRUE(ui.Messages().empty());
}

TEST_F(RepairTabsTest, AStopDuringTheMWaveStepIsNoErrorAndLeavesTheSplitAsItWas) {
  ASSERT_TRUE(bench.Go(tab::ThreeWave));
  const Array1<double> middle = Road().ThreeWave.MiddleWave.Values;
  ui.StopAfterValues = static_cast<int>(ui.ProgressValues.size()) + 2;  // inside the M-wave's eight steps
  EXPECT_EQ(bench.RunGo(tab::MediumWave), GoOutcome::Cancelled);
  EXPECT_TRUE(ui.Messages().empty());  // not logged as a failed step
  EXPECT_FALSE(Road().RepairStudy.MiddleValid);
  EXPECT_EQ(Road().ThreeWave.MiddleWave.Values, middle);
  EXPECT_TRUE(bench.TabDirty[tab::MediumWave]);
}

TEST_F(RepairTabsTest, ChangedIriLengthClearsTheStudyAndClosesTheTabsWithoutData) {
  ASSERT_TRUE(Run());
  ui.Log.clear();
  bench.Repair.Form.IriLength = "20";  // the IRI length alone is a change of the study's values
  ASSERT_TRUE(bench.Go(tab::ThreeWave));
  // What the reset clears in the study is the engine's; here, what the tabs show of it.
  EXPECT_TRUE(bench.Repair.LastRunReset);
  EXPECT_EQ(ui.Messages().size(), 1u);
  // The M and S tabs start from the split and stay open; the ideal shape has nothing to start from.
  for (int t : {tab::MediumWave, tab::ShortWave, tab::IdealShape}) EXPECT_EQ(bench.TabEnabled[t], t != tab::IdealShape);
  EXPECT_EQ(bench.Repair.OutputEnabled, (std::array<bool, 4>{true, false, false, false}));
  EXPECT_TRUE(bench.Repair.MWaveChoices.empty() && bench.Repair.StudyTargets.empty() && bench.TabDirty[tab::IdealShape]);
}

TEST_F(RepairTabsTest, BadBoundaryStopsTheGoWithItsMessage) {
  bench.Repair.Form.LongBoundary = "5l.2";
  EXPECT_FALSE(bench.Go(tab::MediumWave));
  EXPECT_EQ(testing::Kinds(ui), Texts{"message"});  // the check's message, no progress
  EXPECT_EQ(bench.ComputeCount(tab::MediumWave), 0);
}

TEST_F(RepairTabsTest, ShortWaveIriFileWithoutBandLinesHasEqualIriOfSAndSPrime) {
  ASSERT_TRUE(Run());
  ui.Files.push_back({(dir_ / "x.Dummy").string()});
  const ExportOutcome out = MakeRepairResultFiles(bench, {RepairExportKind::ShortWaveIri, false, tab::ShortWave}, {});
  ASSERT_EQ(out.Files.size(), 1u);
  const Texts lines = ReadSystemTextLines(out.Files[0]);
  ASSERT_GT(lines.size(), 100u);
  EXPECT_EQ(lines[0],
            "Start(m), End(m), Mid(m), Profile, S波IRI(10m連続), 1-OCT(S波), 2-OCT(S波), 3-OCT(S波), 4-OCT(S波), "
            "5-OCT(S波), 6-OCT(S波), 7-OCT(S波), 8-OCT(S波), 9-OCT(S波), S'波IRI(10m連続)");
  // Windows of 10 m at 0.25 m: the first runs from 0 to 10 m.
  EXPECT_EQ(lines[1].rfind("0.00000, 10.00000, 5.00000, ", 0), 0u) << lines[1];
  // S holds wavelengths below 4 m and the 2 m wave lies in octave 6 (1.6 to 3.2 m): octaves 1 to 4
  // carry next to none of its IRI. S' is S up to rounding, and so are their IRIs.
  for (std::size_t row = 1; row < lines.size(); row += 50) {
    const Texts fields = uToken(lines[row], ", ");
    ASSERT_EQ(fields.size(), 15u) << lines[row];
    EXPECT_NEAR(std::stod(fields[14]), std::stod(fields[4]), 1e-5) << row;
    for (std::size_t k = 1; k <= 4; ++k) EXPECT_LT(std::stod(fields[4 + k]), 0.01 * std::stod(fields[4])) << row << " " << k;
  }
}

TEST_F(RepairTabsTest, RegisteredWavesBecomeNewRowsWithMarkedTitles) {
  ASSERT_TRUE(Run());
  const RegisteredWaves registered = RegisterStudyWaves(bench, WaveChoice{true, false, false}, true);
  ASSERT_TRUE(registered.Ok);
  testing::ExpectHeads(registered.FileNames, {"a_L波_", "a_理想形状案_"});
  // Added as rows of the list; the waves and their titles are the engine's, checked with the study.
  ASSERT_EQ(bench.ProfileCount(), 3);
  EXPECT_EQ(bench.Profile(2).Erd.Title, "試験路(L)");
}

TEST_F(RepairTabsTest, PickingAProfileShowsItsStudiesAndAChosenStudyIsANewInput) {
  ASSERT_TRUE(Run());
  ui.Inputs = {"案"};
  const auto made = CreateStudy(session, Road().Studies, StudyForm::Thickness, Road().RepairStudy.PointTable);
  ASSERT_TRUE(made);
  bench.AddProfile(testing::ThreeSineProfile("b.ERD"));  // a second road without studies

  ASSERT_TRUE(bench.ListClick(tab::IdealShape, {2}));
  EXPECT_EQ(bench.Repair.MWaveChoices, Texts{kNoAdjustment});
  ASSERT_TRUE(bench.ListClick(tab::MediumWave, {1}));
  EXPECT_EQ(bench.Repair.MWaveChoices, (Texts{kNoAdjustment, "案[厚]"}));
  EXPECT_EQ(bench.Repair.StudyTargets, bench.Repair.MWaveChoices);

  // The ideal shape of road a is current; choosing the study, then rebuilding it, each make it stale.
  ASSERT_TRUE(bench.ListClick(tab::IdealShape, {1}));
  const int ideals = bench.ComputeCount(tab::IdealShape);
  ASSERT_TRUE(bench.Go(tab::IdealShape));
  EXPECT_EQ(bench.ComputeCount(tab::IdealShape), ideals);
  StudyTarget& target = Road().Studies[*made];
  const std::size_t middle = target.AdjPoints.size() / 2;
  SetPointThickness(target, middle, 2.5);
  ASSERT_TRUE(CalcStudyAdjustment(session, Road(), target, bench.Repair.Form));
  Road().RepairStudy.ChosenStudy = 1;
  ASSERT_TRUE(bench.Go(tab::IdealShape));
  EXPECT_EQ(bench.ComputeCount(tab::IdealShape), ideals + 1);
  const Array1<double> first = Road().RepairStudy.IdealShape.Wave.Values;
  SetPointThickness(target, middle, 5.0);
  ASSERT_TRUE(CalcStudyAdjustment(session, Road(), target, bench.Repair.Form));
  ASSERT_TRUE(bench.Go(tab::IdealShape));
  EXPECT_EQ(bench.ComputeCount(tab::IdealShape), ideals + 2);
  // 2.5 mm more at the middle point of the study raises the ideal shape there by as much.
  const auto at = static_cast<std::ptrdiff_t>(target.AdjPoints[middle]);
  EXPECT_NEAR(Road().RepairStudy.IdealShape.Wave.Values[at] - first[at], 2.5, 1e-9);
}

TEST_F(RepairTabsTest, FormResetEmptiesTheStudyListsAndRefillsTheBoxesFromTheConditions) {
  ASSERT_TRUE(Run());
  bench.FormReset();
  EXPECT_TRUE(bench.Repair.MWaveChoices.empty() && bench.Repair.StudyTargets.empty());
  EXPECT_EQ(bench.Repair.OutputEnabled, (std::array<bool, 4>{}));
  EXPECT_EQ(bench.Repair.Form, ThreeWaveFormFromConditions(session.CurrentConditions));
  EXPECT_EQ(bench.Repair.Stored, ThreeWaveParamsFromConditions(session.CurrentConditions));
}

}  // namespace
}  // namespace velmora::workbench
