// The workbench: its tabs, Go with its progress and failures, the marks of changed inputs, the reset,
// the tools, and the profile tab's boxes and the conditions dialog bound to it.
#include "workbench/workbench.h"

#include <gtest/gtest.h>

#include "support/checks.h"
#include "support/profile_fixture.h"
#include "workbench/engine_bindings.h"
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

TEST_F(EngineBindingsTest, ProjectResetClearsTheRepairStudyOfEveryProfileWhileTheBindingLives) {
  bench.Profile(1).Studies.emplace_back();
  ASSERT_TRUE(session.Hooks.ClearRepairStudy);
  session.Hooks.ClearRepairStudy();
  EXPECT_TRUE(bench.Profile(1).Studies.empty());
  // The end of a binding releases the hook.
  Session fresh;
  Workbench other{fresh};
  { EngineBindings released(other); }
  EXPECT_FALSE(fresh.Hooks.ClearRepairStudy);
}

}  // namespace
}  // namespace velmora::workbench
