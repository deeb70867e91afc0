// The workbench: its tabs, Go with its progress and failures, the marks of changed inputs, the reset,
// the tools, and the profile tab's boxes and the conditions dialog bound to it.
#include "workbench/workbench.h"

#include <gtest/gtest.h>

#include <thread>

#include "analysis/band_reduction.h"
#include "base/app_paths.h"
#include "base/startup.h"
#include "base/text_encoding.h"
#include "profile/erd_file.h"
#include "repair/study_fixture.h"
#include "repair/study_targets.h"
#include "support/checks.h"
#include "support/profile_fixture.h"
#include "workbench/background_go.h"
#include "workbench/engine_bindings.h"
#include "workbench/make_result_files.h"
#include "workbench/repair_register.h"
#include "workbench/repair_result_files.h"
#include "workbench/tab_table.h"

namespace velmora::workbench {
namespace {

using testing::Kinds;
using testing::Titles;
using Texts = std::vector<std::string>;

ProfileRecord Named(const std::string& name) {
  ProfileRecord record;
  record.FileName = name + ".erd";
  return record;
}

// A workbench with three profiles whose IRI tab computation records its calls and fails on `failOn`.
class WorkbenchTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    session.CurrentConditions = CalcConditions{};
    bench.FormLoad();
    for (const char* name : {"A", "B", "C"}) bench.AddProfile(Named(name));
    bench.Hooks.Draw = [this](int tab) { drawn.push_back(tab); };
    TabComputation computation;
    computation.ProgressTitle = "テスト計算";
    computation.InputKey = [this] { return bench.Iri.EvalLength + "|" + std::to_string(session.CurrentConditions.Iri.Speed); };
    computation.Compute = [this](ProfileRecord& record) {
      if (failOn + ".erd" == record.FileName) RaiseDivisionByZero("test");
      computed.push_back(ProfileList::NameOf(record));
      return true;
    };
    bench.SetComputation(tab::Iri, std::move(computation));
    ui.Log.clear();
  }

  testing::ScriptedUi& ui = ui_;
  Workbench bench{session};
  std::vector<std::string> computed;
  std::vector<int> drawn;
  std::string failOn;
};

TEST_F(WorkbenchTest, GoWithoutProfilesDoesNothingAndShowsNothing) {
  Workbench empty{session};
  empty.FormLoad();
  empty.SetComputation(tab::Iri, {"t", "m", nullptr, [] { return std::string("k"); },
                                  [](ProfileRecord&) { return true; }, nullptr, false, nullptr});
  EXPECT_FALSE(empty.Go(tab::Iri));
  EXPECT_TRUE(ui.Log.empty());
  EXPECT_EQ(std::pair(empty.ComputeCount(tab::Iri), empty.TabDirty[tab::Iri]), std::pair(0, true));
}

TEST_F(WorkbenchTest, LoadingProfileStopsGoAndChangeEvents) {
  bench.Select(tab::Iri, {1});
  bench.TabDirty.fill(false);
  bench.LoadingProfile = true;
  EXPECT_FALSE(bench.Go(tab::Iri));
  bench.ProfileEdited(1);
  bench.SetPositionMode(PositionMode::Kp);
  EXPECT_TRUE(computed.empty());
  EXPECT_TRUE(ui.Log.empty());
  EXPECT_EQ(bench.Axis.Mode, PositionMode::ZeroBased);
  for (bool dirty : bench.TabDirty) EXPECT_FALSE(dirty);
}

TEST_F(WorkbenchTest, ModeChangedTwiceMakesTabsFiveSevenEightNineAvailable) {
  EXPECT_EQ(bench.TabEnabled, (std::array<bool, kTabCount>{false, true, true, true, true, false, true, false, false,
                                                            false, false, false, false, false, true}));
  EXPECT_EQ(bench.ModeCaption(), "●プロファイル分析　○補修形状検討");
  EXPECT_FALSE(bench.RepairRangeVisible);
  // Into the study's tabs 10 to 13 and back: then tabs 2 to 9 and 14 are all open.
  for (const bool study : {true, false}) {
    bench.MnuBunseki();
    EXPECT_EQ(bench.ModeCaption(), study ? "○プロファイル分析　●補修形状検討" : "●プロファイル分析　○補修形状検討");
    EXPECT_EQ(bench.RepairRangeVisible, study);
    for (int t = 2; t <= 14; ++t) EXPECT_EQ(bench.TabEnabled[t], study == (t >= 10 && t <= 13)) << t;
  }
}

TEST_F(WorkbenchTest, GoRunsSelectedRowsInListOrderWithProgressAndClearsTheFlag) {
  bench.Select(tab::Iri, {3, 1});
  ASSERT_TRUE(bench.Go(tab::Iri));
  EXPECT_EQ(computed, (Texts{"A", "C"}));
  EXPECT_EQ(Kinds(ui), (Texts{"progress-start", "progress-exit"}));
  EXPECT_EQ(ui.Log[0].Title + " " + ui.Log[0].Text, "テスト計算 しばらくお待ちください。");
  EXPECT_EQ(ui.ProgressValues, (std::vector<int>{0, 50, 100}));
  EXPECT_FALSE(bench.TabDirty[tab::Iri]);
  EXPECT_EQ(drawn, (std::vector<int>{tab::Iri}));
  // The drawing switch computes without drawing.
  bench.DispGrp = true;
  bench.Select(tab::Iri, {2});
  ASSERT_TRUE(bench.Go(tab::Iri));
  EXPECT_EQ(computed, (Texts{"A", "C", "B"}));
  EXPECT_EQ(drawn.size(), 1u);
}

TEST_F(WorkbenchTest, SecondGoWithUnchangedInputsDoesNotRecompute) {
  bench.Select(tab::Iri, {1, 2});
  ASSERT_TRUE(bench.Go(tab::Iri));
  ASSERT_TRUE(bench.Go(tab::Iri));
  EXPECT_EQ(computed.size(), 2u);
  // A newly selected row is computed alone; a changed input recomputes all selected rows.
  bench.SelectAll(tab::Iri);
  ASSERT_TRUE(bench.Go(tab::Iri));
  EXPECT_EQ(computed, (Texts{"A", "B", "C"}));
  bench.Iri.EvalLength = "100";
  ASSERT_TRUE(bench.Go(tab::Iri));
  EXPECT_EQ(computed.size(), 6u);
  // An edit of a profile invalidates its results only.
  bench.ProfileEdited(2);
  ASSERT_TRUE(bench.Go(tab::Iri));
  EXPECT_EQ(computed.back(), "B");
  EXPECT_EQ(computed.size(), 7u);
}

TEST_F(WorkbenchTest, FailedComputationLeavesTheFlagSetAndStillEndsTheProgress) {
  bench.Select(tab::Iri, {1, 2, 3});
  failOn = "B";
  EXPECT_FALSE(bench.Go(tab::Iri));
  EXPECT_TRUE(bench.TabDirty[tab::Iri]);
  EXPECT_EQ(computed, (Texts{"A"}));
  EXPECT_EQ(Kinds(ui), (Texts{"progress-start", "progress-exit", "message"}));
  EXPECT_EQ(ui.Log[2].Title, "[ frmTop : cmdGo_IRI_Click ]");
  EXPECT_TRUE(drawn.empty());
  EXPECT_TRUE(std::filesystem::exists(dir_ / "Temp" / "Sorvik_Err.log"));
  // The failed row is retried on the next Go, the good one is kept.
  failOn.clear();
  EXPECT_TRUE(bench.Go(tab::Iri));
  EXPECT_EQ(computed, (Texts{"A", "B", "C"}));
  EXPECT_FALSE(bench.TabDirty[tab::Iri]);
}

TEST_F(WorkbenchTest, ChangeOnATabThatIsNotCurrentOnlySetsFlagsAndWorkHappensOnEntry) {
  bench.Select(tab::Iri, {1});
  ASSERT_TRUE(bench.Go(tab::Iri));
  ASSERT_EQ(bench.CurrentTab, tab::Profile);
  session.CurrentConditions.Iri.Speed = 60;
  bench.ConditionsChanged();
  EXPECT_EQ(computed.size(), 1u);
  for (bool dirty : bench.TabDirty) EXPECT_TRUE(dirty);
  bench.TabClick(tab::Iri);
  EXPECT_EQ(computed.size(), 2u);
  EXPECT_FALSE(bench.TabDirty[tab::Iri]);
  EXPECT_TRUE(bench.TabDirty[tab::Filter]);
  // Entering again without a change draws nothing new and computes nothing.
  drawn.clear();
  bench.TabClick(tab::Profile);
  bench.TabClick(tab::Iri);
  EXPECT_EQ(computed.size(), 2u);
  EXPECT_EQ(drawn, (std::vector<int>{tab::Profile}));
}

TEST_F(WorkbenchTest, PsdLegendAndReportRowsAreRenewedOnEveryEntry) {
  bench.SetComputation(tab::Psd, {});  // these profiles hold no samples
  bench.MnuBunseki();
  bench.MnuBunseki();
  for (const auto& [added, rows, legend] : {std::tuple(false, std::vector{2}, Texts{"B"}), {true, {1, 4}, {"A", "D"}}}) {
    if (added) bench.AddProfile(Named("D"));
    bench.TabDirty.fill(false);  // renewed even without a change
    bench.Select(tab::Psd, rows);
    bench.TabClick(tab::Psd);
    EXPECT_EQ(bench.PsdLegend, legend);
    bench.TabClick(tab::Report);
    EXPECT_EQ(bench.ReportProfileRows.size(), added ? 4u : 3u);
  }
  EXPECT_EQ(bench.ReportProfileRows, (Texts{"A", "B", "C", "D"}));
}

TEST_F(WorkbenchTest, TabChangeChecksTheTabLeftAndShowsTheDrawingSwitch) {
  std::vector<int> checks;
  std::vector<int> stored;
  bench.Hooks.CheckTabInputs = [&](int code) { checks.push_back(code); };
  bench.Hooks.StoreProfileBoxes = [&](int row) { stored.push_back(row); };
  bench.Select(tab::Profile, {3});
  bench.TabClick(tab::Profile);  // no change: nothing happens
  EXPECT_TRUE(checks.empty());
  bench.TabClick(tab::Filter);
  bench.TabClick(tab::BandReduction);
  bench.TabClick(tab::Statistics);
  EXPECT_FALSE(bench.DispGrpVisible);
  bench.TabClick(tab::Iri);
  EXPECT_TRUE(bench.DispGrpVisible);
  EXPECT_EQ(checks, (std::vector<int>{1, 2, 8}));
  EXPECT_EQ(stored, (std::vector<int>{3}));
  EXPECT_EQ(std::pair(bench.VisiblePanel, bench.PreviousTab), std::pair(tab::Iri, tab::Statistics));
}

TEST_F(WorkbenchTest, KpPositionTurnsReversalOffAndMarksEveryTab) {
  bench.TabDirty.fill(false);
  bench.Axis.Reversed = true;
  bench.SetPositionMode(PositionMode::Kp);
  EXPECT_EQ(std::tuple(bench.KpUnitVisible, bench.Axis.Reversed, bench.TabDirty[tab::Profile]), std::tuple(true, false, false));
  // the profile tab has redrawn
  for (int t = 2; t < kTabCount; ++t) EXPECT_TRUE(bench.TabDirty[t]) << t;
  // Unit and reversal only redraw.
  bench.TabDirty.fill(false);
  drawn.clear();
  bench.SetKpUnit(KpUnit::M);
  bench.SetXReversed(true);
  EXPECT_EQ(drawn, (std::vector<int>{tab::Profile, tab::Profile}));
  for (bool dirty : bench.TabDirty) EXPECT_FALSE(dirty);
}

TEST_F(WorkbenchTest, FormResetRestoresTheNewProjectState) {
  session.CurrentConditions.FilterLong = 40;
  session.CurrentConditions.FilterShort = 5;
  session.CurrentConditions.Iri.IriBaseLength = 10.0;
  session.CurrentConditions.BandLines.Value.fill(kNoValue);
  session.CurrentConditions.BandLines.Value[3] = 2.5;
  bool cleared = false;
  bench.Hooks.ClearProfileBoxes = [&] { cleared = true; };
  bench.Select(tab::Iri, {2});
  bench.TabClick(tab::Octave);
  bench.WindowTitle = "other";
  bench.FormReset();
  EXPECT_TRUE(cleared && bench.List().Views[5].Rows.empty() && bench.Selection(tab::Iri).empty());
  EXPECT_EQ(bench.ProfileCount(), 0);
  // The boxes are refilled from the conditions: the cut-offs, the IRI length and the band lines.
  EXPECT_EQ((Texts{bench.Filter.LongCut, bench.Filter.ShortCut, bench.Iri.EvalLength, bench.Band.Lines[3], bench.Band.Lines[4]}),
            (Texts{"40", "5", "10", "2.5", ""}));
  EXPECT_EQ(bench.StatisticsSortProfile, (Texts{"プロファイル", "帯域", "統計値"}));
  EXPECT_EQ(bench.StatisticsSortIri, (Texts{"プロファイル", "IRI算出基準長", "帯域", "統計値"}));
  EXPECT_EQ(bench.PrintForms, (Texts{"帳票形式(1)"}));
  EXPECT_EQ(std::pair(bench.CurrentTab, bench.WindowTitle), std::pair(int{tab::Profile}, std::string(" velmora : [ 新規作成 ]")));
  for (bool dirty : bench.TabDirty) EXPECT_TRUE(dirty);
  for (int i = 0; i <= 6; ++i) EXPECT_EQ(bench.ProjectCommandEnabled[i], i < 3) << i;
}

TEST_F(WorkbenchTest, GoOfATabWithoutAnAnalysisReportsThroughTheErrorPath) {
  bench.Select(tab::Report, {1});
  EXPECT_FALSE(bench.Go(tab::Report));
  EXPECT_EQ(Titles(ui, "message"), Texts{"[ frmTop : cmxExlsCreate_Click ]"});
  EXPECT_TRUE(bench.TabDirty[tab::Report]);
}

TEST_F(WorkbenchTest, ToolRegistrationKeepsTheResultsOfTheOtherRows) {
  bench.SelectAll(tab::Iri);
  ASSERT_TRUE(bench.Go(tab::Iri));
  computed.clear();
  session.Paths.UserLocalPath = dir_.path().string();  // registration copies into the project's folder
  const ToolOutput output{"D.ERD", testing::MakeProfile("D", 0.25, {1, 2, 3}).Erd};
  ASSERT_TRUE(bench.RegisterToolOutputs({output}));
  EXPECT_EQ(ui.Messages().front().Title, "登録");
  ASSERT_EQ(bench.ProfileCount(), 4);
  EXPECT_EQ(ProfileList::NameOf(bench.Profile(4)), "D");
  EXPECT_TRUE(bench.Profile(4).Erd.Elevation == output.Erd.Elevation && bench.TabDirty[tab::Iri]);
  // The new row is computed on the next Go; A, B and C keep their results.
  bench.SelectAll(tab::Iri);
  ASSERT_TRUE(bench.Go(tab::Iri));
  EXPECT_EQ(computed, Texts{"D"});
}

TEST_F(WorkbenchTest, ToolsGetEveryProfileAndProjectSnapshotTellsChanges) {
  std::vector<std::string> names;
  bench.Hooks.OpenTool = [&](int tool, const Array1<ProfileRecord>& inputs) {
    EXPECT_EQ(tool, 3);
    for (const auto& p : inputs) names.push_back(ProfileList::NameOf(p));
  };
  bench.MnuTool(3);
  EXPECT_EQ(names, (Texts{"A", "B", "C"}));
  EXPECT_THROW(bench.MnuTool(5), LegacyError);

  bench.TakeProjectSnapshot();
  EXPECT_FALSE(bench.ProjectChanged());
  session.CurrentConditions.FilterLong = 77;
  EXPECT_TRUE(bench.ProjectChanged());
}

// The profile tab's boxes and the project reset bound to the workbench; A holds 3 samples at 0.05 m.
class EngineBindingsTest : public WorkbenchTest {
 protected:
  void SetUp() override {
    WorkbenchTest::SetUp();
    bench.Profile(1).Erd.StepSize = 0.05;
    bench.Profile(1).Erd.NumSamples = 3;
    bench.Select(tab::Profile, {1});
    binding.ShowProfile(1);
    bench.TabDirty.fill(false);
  }
  EngineBindings binding{bench};
};

TEST_F(EngineBindingsTest, LeavingTheProfileTabStoresTheBoxesAndANewPitchMarksEveryTab) {
  EXPECT_EQ(binding.ProfileBoxes.txt緒元[3], "0.05000");
  binding.ProfileBoxes.txt緒元[8] = "new comment";
  bench.TabClick(tab::Statistics);
  EXPECT_EQ(bench.Profile(1).Comment, "new comment");
  EXPECT_FALSE(bench.TabDirty[tab::Iri]);  // a comment changes no result

  bench.TabClick(tab::Profile);
  binding.ProfileBoxes.txt緒元[3] = "0.1";
  bench.TabClick(tab::Statistics);
  EXPECT_EQ(bench.Profile(1).Erd.StepSize, 0.1);
  EXPECT_TRUE(bench.TabDirty[tab::Iri]);
  EXPECT_TRUE(bench.TabDirty[tab::Octave]);
}

TEST_F(EngineBindingsTest, LeavingColoursTheBadBoxesAndTheResetEmptiesThem) {
  binding.ProfileBoxes.txt緒元[3] = "abc";
  binding.ProfileBoxes.txt緒元[4] = "";
  bench.TabClick(tab::Statistics);
  EXPECT_EQ(binding.ProfileBoxes.Colours[3].Back, kBoxNotNumeric);
  EXPECT_EQ(binding.ProfileBoxes.Colours[4].Back, kBoxEmpty);
  bench.FormReset();
  EXPECT_EQ(binding.ProfileBoxes.txt緒元[3], "");
  EXPECT_EQ(binding.ProfileBoxes.opt上下, 2);  // なし
}

TEST_F(EngineBindingsTest, ConditionsMenuAppliesTheDialogAndMarksTheTabs) {
  binding.RunConditionsDialog = [](ConditionsDialog& dialog) {
    dialog.Boxes.txt_IRI[0] = "60";  // speed, km/h
    EXPECT_TRUE(dialog.Ok());
  };
  bench.MnuConditions();
  EXPECT_EQ(session.CurrentConditions.Iri.Speed, 60.0);
  EXPECT_TRUE(bench.TabDirty[tab::Iri]);
  // Which changes mark the tabs is the dialog's, checked with it.
  bench.TabDirty.fill(false);
  binding.RunConditionsDialog = nullptr;  // closed at once
  bench.MnuConditions();
  EXPECT_FALSE(bench.TabDirty[tab::Iri]);
}

TEST_F(EngineBindingsTest, ProjectResetClearsTheRepairStudyOfEveryProfile) {
  bench.Profile(1).Studies.emplace_back();
  ASSERT_TRUE(session.Hooks.ClearRepairStudy);
  session.Hooks.ClearRepairStudy();
  EXPECT_TRUE(bench.Profile(1).Studies.empty());
}

TEST(EngineBindings, EndOfTheBindingReleasesTheProjectHook) {
  Session session;
  Workbench bench{session};
  { EngineBindings binding(bench); }
  EXPECT_FALSE(session.Hooks.ClearRepairStudy);
}

// Two roads split into octaves once, single pass; the convergent split is the long computation that
// runs on the worker.
class BackgroundGoTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    bench.FormLoad();
    bench.AddProfile(testing::MakeProfile("A", 0.05, testing::Road(4000)));
    bench.AddProfile(testing::MakeProfile("B", 0.05, testing::Road(4000, 7)));
    bench.DispGrp = true;
    bench.SelectAll(tab::Octave);
    ASSERT_TRUE(bench.Go(tab::Octave));
    singlePass = bench.Profile(2).Analysis.Octave;
    bench.Octave.Converge = true;
  }

  // Runs the Go of the octave tab in the background, answering its calls here until it ends.
  GoOutcome RunInBackground() {
    CallerQueue caller;
    std::optional<GoOutcome> outcome;
    int answered = 0;
    const std::thread::id here = std::this_thread::get_id();
    EXPECT_TRUE(background.Start(tab::Octave,
                                 [&](std::function<void()> task) {
                                   caller.Post([&, task = std::move(task)] {
                                     EXPECT_EQ(std::this_thread::get_id(), here);
                                     ++answered;
                                     task();
                                   });
                                 },
                                 [&](GoOutcome o) { outcome = o; }));
    EXPECT_TRUE(background.Busy());
    EXPECT_FALSE(background.Start(tab::Octave, caller.Poster(), {}));  // one Go at a time
    caller.RunUntil([&] { return outcome.has_value(); });
    EXPECT_GT(answered, 1);  // the progress went through this thread
    EXPECT_FALSE(background.Busy());
    EXPECT_EQ(&session.Ui(), &ui_);  // the caller's interaction is back in force
    return *outcome;
  }

  Workbench bench{session};
  BackgroundGo background{bench};
  OctaveBandSet singlePass;
};

TEST_F(BackgroundGoTest, AStopAskedForByTheProgressLeavesThePreviousResultsUntouched) {
  // The progress values of the first road's peeling, counted on a workbench of its own: the stop comes
  // a few values into the second road, when the first already holds its new bands.
  testing::ScriptedUi counter;
  Session alone(counter);
  Workbench solo{alone};
  solo.FormLoad();
  solo.AddProfile(testing::MakeProfile("A", 0.05, testing::Road(4000)));
  solo.DispGrp = true;
  solo.Octave.Converge = true;
  solo.SelectAll(tab::Octave);
  ASSERT_TRUE(solo.Go(tab::Octave));
  const int firstRoad = static_cast<int>(counter.ProgressValues.size()) - 1;  // without the closing 100

  const int computedBefore = bench.ComputeCount(tab::Octave);
  ui_.StopAfterValues = static_cast<int>(ui_.ProgressValues.size()) + firstRoad + 3;
  EXPECT_EQ(RunInBackground(), GoOutcome::Cancelled);

  EXPECT_EQ(bench.ComputeCount(tab::Octave), computedBefore + 2);  // the second road had begun
  for (int row = 1; row <= 2; ++row) {
    const OctaveBandSet& bands = bench.Profile(row).Analysis.Octave;
    EXPECT_TRUE(bands.Calculated);
    EXPECT_FALSE(bands.Converged) << "row " << row;
  }
  for (int k = 1; k <= 9; ++k)
    EXPECT_EQ(bench.Profile(2).Analysis.Octave.Band[static_cast<std::size_t>(k)].Values, singlePass.Band[static_cast<std::size_t>(k)].Values);
  EXPECT_TRUE(ui_.Messages().empty());  // a stop is no error
  EXPECT_FALSE(std::filesystem::exists(dir_ / "Temp" / "Sorvik_Err.log"));

  // The single-pass results still count as current: going back to them computes nothing.
  bench.Octave.Converge = false;
  const int computedAfterStop = bench.ComputeCount(tab::Octave);
  ui_.StopAfterValues = -1;
  EXPECT_EQ(bench.RunGo(tab::Octave), GoOutcome::Completed);
  EXPECT_EQ(bench.ComputeCount(tab::Octave), computedAfterStop);
}

TEST_F(BackgroundGoTest, AStoppedGoLeavesTheConditionsAsTheyWereBeforeItsInputs) {
  const CalcConditions before = session.CurrentConditions;
  bench.SelectAll(tab::Iri);
  bench.Iri.EvalLength = before.Iri.IriBaseLength == 20 ? "30" : "20";
  ui_.StopAfterValues = static_cast<int>(ui_.ProgressValues.size());
  EXPECT_EQ(bench.RunGo(tab::Iri), GoOutcome::Cancelled);
  EXPECT_EQ(session.CurrentConditions, before);
  ui_.StopAfterValues = -1;
  EXPECT_EQ(bench.RunGo(tab::Iri), GoOutcome::Completed);
  EXPECT_NE(session.CurrentConditions, before);  // a Go to the end keeps what it stored
}

TEST_F(BackgroundGoTest, ACancelButtonStopsTheRunAndAGoToTheEndStoresWhatASynchronousGoStores) {
  background.RequestStop();  // before the start: a new Go starts afresh
  EXPECT_EQ(RunInBackground(), GoOutcome::Completed);
  const OctaveBandSet inBackground = bench.Profile(2).Analysis.Octave;
  EXPECT_TRUE(inBackground.Converged);

  bench.Profile(2).Analysis.Octave.Calculated = false;
  ASSERT_TRUE(bench.Go(tab::Octave));
  for (int k = 1; k <= 9; ++k)
    EXPECT_EQ(inBackground.Band[static_cast<std::size_t>(k)].Values, bench.Profile(2).Analysis.Octave.Band[static_cast<std::size_t>(k)].Values);

  // The window's Cancel: asked for from the caller's thread at the first progress report it answers.
  bench.Octave.Converge = false;
  CallerQueue caller;
  std::optional<GoOutcome> outcome;
  ASSERT_TRUE(background.Start(tab::Octave,
                               [&](std::function<void()> task) {
                                 caller.Post([&, task = std::move(task)] {
                                   background.RequestStop();
                                   task();
                                 });
                               },
                               [&](GoOutcome o) { outcome = o; }));
  caller.RunUntil([&] { return outcome.has_value(); });
  EXPECT_EQ(*outcome, GoOutcome::Cancelled);
  EXPECT_TRUE(bench.Profile(1).Analysis.Octave.Converged);
}

// The analysis and study tabs through the workbench's Go. The analysis tabs on small profiles whose
// figures follow by hand: the band reduction with its lines, the statistics and verification tabs with
// their checks, the saves and the registration of shifted copies. The study's tabs 10 to 13 on a made-up
// road of three sines.
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

// The result files through the workbench, on small hand-made records: names by the built-in
// patterns, the folder dialog, heads and rows in Shift-JIS written out by hand, ERD output, and the
// checks that stop before anything is asked.
using testing::ReadBytes;
using Texts = std::vector<std::string>;

// Two profiles a and b; the folder dialog, when it comes, is answered with a file in "out" unless the
// test cancels it. The time in the names is testing::Noon().
class ResultFilesTest : public testing::SessionTest {
 protected:
  void Load(ProfileRecord a, ProfileRecord b) {
    session.Paths.AppPath = dir_.path().string();  // no TOLVAVERI.ini: the built-in name patterns
    session.Paths.UserLocalPath = dir_.path().string();
    session.Settings.CsvProfileLimit = 0;
    std::filesystem::create_directories(dir_ / "out");
    bench.AddProfile(std::move(a));
    bench.AddProfile(std::move(b));
    for (int t = tab::Filter; t < kTabCount; ++t) bench.SelectAll(t);
  }
  ExportOutcome Export(ExportKind kind, bool erd = false, bool answer = true, ExportOptions options = {}) {
    if (answer) Answer();
    return MakeResultFiles(bench, {kind, erd, tab::Filter, options}, testing::Noon());
  }
  ExportOutcome Export(RepairExportKind kind, bool erd, int tab, bool answer = true) {
    if (answer) Answer();
    return MakeRepairResultFiles(bench, {kind, erd, tab}, testing::Noon());
  }
  void Answer() { ui_.Files.push_back({(dir_ / "out" / "ignored.Dummy").string()}); }
  std::string Folder() const { return (dir_ / "out").string(); }
  // The one message shown and nothing else: its text and title.
  void ExpectOnlyMessage(const std::string& text, const std::string& title) {
    ASSERT_EQ(testing::Kinds(ui_), Texts{"message"});
    EXPECT_EQ(ui_.Log[0].Text, text);
    EXPECT_EQ(ui_.Log[0].Title, title);
  }

  Workbench bench{session};
};

// Two samples at 0.5 m high-passed at 50 m, the second one null; a whole IRI of 2 mm/m.
ProfileRecord Filtered(const std::string& name) {
  ProfileRecord r = testing::MakeProfile(name, 0.5, {0, 0});
  auto& filter = r.Analysis.Filter;
  filter.FilterWave.Values = Array1<double>{1.0, kNoValue};
  filter.FilterWave.Calculated = true;
  filter.FilterCount = 2;
  filter.Request.Band = FilterKind::HiPass;
  filter.Request.LongCut = 50;
  r.Analysis.Iri.IriWholeProfile = 2.0;
  return r;
}

class AnalysisFilesTest : public ResultFilesTest {
 protected:
  void SetUp() override { Load(Filtered("a"), Filtered("b")); }
};

TEST_F(AnalysisFilesTest, WritesCsvNamedByThePatternAndReportsTheFolder) {
  const ExportOutcome out = Export(ExportKind::Profile);
  ASSERT_EQ(out.Files.size(), 2u);
  EXPECT_EQ(out.Files[0], Folder() + "/a_MAHP_50m_20240305120000.CSV");  // its lines are the report's
  EXPECT_EQ(testing::Kinds(ui_), (Texts{"save", "message"}));
  EXPECT_EQ(ui_.Log[0].Title, "CSVファイル保存");
  EXPECT_EQ(ui_.Log[0].Text, "フォルダ名の取得に使用され、ファイル名は無視されます");
  EXPECT_EQ(ui_.Log[1].Title, "データ保存");
  EXPECT_EQ(ui_.Log[1].Text, "CSV形式で以下のフォルダに保存しました。 \r\n保存先：" + Folder());
}

TEST_F(AnalysisFilesTest, JapaneseHeadsAreWrittenInShiftJis) {
  const ExportOutcome out = Export(ExportKind::IriWhole);
  ASSERT_EQ(out.Files, Texts{Folder() + "/IRI(全区間)_20240305120000.CSV"});
  // "区間" is 8B E6 8A D4 in Shift-JIS; the whole-section label "全区間IRI(0.50m)".
  const std::string bytes = ReadBytes(out.Files[0]);
  EXPECT_EQ(bytes.rfind("Profile, \x8B\xE6\x8A\xD4, IRI(mm/m)\r\n", 0), 0u);
  EXPECT_NE(bytes.find("a, \x91\x53\x8B\xE6\x8A\xD4IRI(0.50m), 2.00000000\r\n"), std::string::npos);
}

TEST_F(AnalysisFilesTest, ChecksStopBeforeTheDialog) {
  EXPECT_TRUE(Export(ExportKind::OctaveBand, false, false).Files.empty());
  ExpectOnlyMessage("バンド別表示が１個も指定されていません。\r\nファイル出力を中止します。", "警告");
  ExportOptions options;
  options.BandsPerOctave = 0;
  ui_.Log.clear();
  EXPECT_TRUE(Export(ExportKind::PsdSmoothed, false, false, options).Files.empty());
  ExpectOnlyMessage("BandsPerOctave値はゼロより大きく指定してください。", "警告");
  options = {};
  options.Octaves = {2};  // no octave results in these profiles
  ui_.Log.clear();
  EXPECT_TRUE(Export(ExportKind::OctaveBand, false, false, options).Files.empty());
  ExpectOnlyMessage("該当する件数がありません。", "案内");
}

TEST_F(AnalysisFilesTest, CancelledDialogWritesNothingAndTheLimitCutsTheProfiles) {
  EXPECT_TRUE(Export(ExportKind::Profile, false, false).Files.empty());
  EXPECT_TRUE(ui_.Messages().empty());
  EXPECT_TRUE(std::filesystem::is_empty(dir_ / "out"));
  session.Settings.CsvProfileLimit = 1;
  const ExportOutcome out = Export(ExportKind::Profile);
  ASSERT_EQ(out.Files.size(), 1u);
  EXPECT_NE(out.Files[0].find("/a_MAHP"), std::string::npos);
}

TEST_F(AnalysisFilesTest, ErdOutputOfTheFilteredProfile) {
  const ExportOutcome out = Export(ExportKind::Profile, true);
  ASSERT_EQ(out.Files.size(), 2u);
  EXPECT_EQ(out.Files[1], Folder() + "/b_MAHP_50m_20240305120000.ERD");
  EXPECT_EQ(testing::Titles(ui_, "save"), Texts{"ERDファイル保存"});
  EXPECT_EQ(ui_.Messages().back().Text, "ERD形式で以下のフォルダに保存しました。 \r\n保存先：" + Folder());
  EXPECT_NE(ReadBytes(out.Files[1]).find("1.00000000 \r\n"), std::string::npos);  // the filtered values
}

WaveSeries Wave(std::initializer_list<double> values) {
  WaveSeries wave;
  StoreWave(wave, Array1<double>(values));
  return wave;
}

// Road a: three samples at 0.5 m from KP 1.2 km, split by hand so that L + M + S = profile. The second
// record has no split and is passed over.
class StudyFilesTest : public ResultFilesTest {
 protected:
  void SetUp() override {
    ProfileRecord a = testing::MakeProfile("a", 0.5, {6.0, 3.0, -1.5}, 1.2);
    a.ThreeWave.LongWave = Wave({1.0, 1.0, 1.0});
    a.ThreeWave.MiddleWave = Wave({4.0, 1.5, -2.0});
    a.ThreeWave.ShortWave = Wave({1.0, 0.5, -0.5});
    a.ThreeWave.Valid = true;
    Load(std::move(a), ProfileRecord{});
  }
  RepairStudyData& Study() { return bench.Profile(1).RepairStudy; }
  // The text of the one file an export of road a wrote, which must be `name`.
  std::string Written(RepairExportKind kind, int tab, const std::string& name) {
    EXPECT_EQ(Export(kind, false, tab).Files, Texts{Folder() + "/" + name});
    return FromSystemCodePage(ReadBytes(dir_ / "out" / name));
  }
};

TEST_F(StudyFilesTest, ThreeWaveProfileFileHasTheDistanceAndTheThreeWaves) {
  EXPECT_EQ(Written(RepairExportKind::ThreeWaveProfile, tab::ThreeWave, "a_3波分解(Profile)_20240305120000.CSV"),
            "Distance(m), Profile, L波, M波, S波\r\n"
            "0.00000, 6.00000000, 1.00000000, 4.00000000, 1.00000000\r\n"
            "0.50000, 3.00000000, 1.00000000, 1.50000000, 0.50000000\r\n"
            "1.00000, -1.50000000, 1.00000000, -2.00000000, -0.50000000\r\n");
  EXPECT_EQ(ui_.OnlyMessageText(), "CSV形式で以下のフォルダに保存しました。 \r\n保存先：" + Folder());
  // On the KP axis in km: 1.2 km + 0.5 m = 1.2005 km.
  bench.Axis.Mode = PositionMode::Kp;
  const Texts kp = uToken(Written(RepairExportKind::ThreeWaveProfile, tab::ThreeWave, "a_3波分解(Profile)_20240305120000.CSV"), "\r\n");
  EXPECT_EQ(kp.at(2), "1.20050, 3.00000000, 1.00000000, 1.50000000, 0.50000000");
}

TEST_F(StudyFilesTest, ShortWaveFileHasSAndSPrimeAndTheNineReducedBands) {
  Study().ShortReduced = Wave({0.5, 0.25, -0.25});
  for (std::size_t k = 1; k <= 9; ++k) Study().ShortReducedBands[k] = Wave({0, 0, 0});
  Study().ShortReducedBands[7] = Wave({0.5, 0.25, -0.25});
  Study().ShortReducedValid = true;
  const Texts lines = uToken(Written(RepairExportKind::ShortWave, tab::ShortWave, "a_S波_20240305120000.CSV"), "\r\n");
  ASSERT_GE(lines.size(), 3u);
  EXPECT_EQ(lines[0],
            "Distance(m), Profile, S波Profile, S'波Profile, 1-OCT(S'波), 2-OCT(S'波), 3-OCT(S'波), 4-OCT(S'波), "
            "5-OCT(S'波), 6-OCT(S'波), 7-OCT(S'波), 8-OCT(S'波), 9-OCT(S'波)");
  EXPECT_EQ(lines[2],
            "0.50000, 3.00000000, 0.50000000, 0.25000000, 0.00000000, 0.00000000, 0.00000000, 0.00000000, "
            "0.00000000, 0.00000000, 0.25000000, 0.00000000, 0.00000000");
}

TEST_F(StudyFilesTest, IdealShapeAsErdHoldsTheIdealShape) {
  Study().IdealShape.Wave = Wave({6.0, 4.5, 0.25});
  Study().MiddleValid = Study().IdealValid = true;
  const ExportOutcome out = Export(RepairExportKind::IdealShape, true, tab::IdealShape);
  ASSERT_EQ(out.Files, Texts{Folder() + "/a_理想形状_20240305120000.ERD"});
  EXPECT_EQ(testing::Titles(ui_, "save"), Texts{"ERDファイル保存"});
  ErdRecord erd;
  ASSERT_TRUE(ReadERD(session, out.Files[0], erd));
  EXPECT_EQ(erd.Elevation, Study().IdealShape.Wave.Values);
}

TEST_F(StudyFilesTest, NothingToWriteIsReportedAndTwoWaveKindsHaveNoErdForm) {
  // No S' yet: said before any dialog.
  EXPECT_TRUE(Export(RepairExportKind::ShortWave, false, tab::ShortWave, false).Files.empty());
  ExpectOnlyMessage("該当する件数がありません。", "案内");
  EXPECT_TRUE(Export(RepairExportKind::ThreeWaveProfile, true, tab::ThreeWave).Files.empty());
  EXPECT_TRUE(std::filesystem::is_empty(dir_ / "out"));
}
}  // namespace
}  // namespace velmora::workbench
