#include "workbench/workbench.h"

#include <gtest/gtest.h>

#include "base/app_paths.h"
#include "base/legacy_error.h"
#include "base/session.h"
#include "support/session_fixture.h"
#include "support/test_support.h"

namespace velmora::workbench {
namespace {

using testing::ScriptedUi;
using testing::TempDir;

ProfileRecord Named(const std::string& name) {
  ProfileRecord record;
  record.FileName = name + ".erd";
  return record;
}

// A workbench with three profiles and a tab computation that counts and records its calls.
class WorkbenchTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    session.Paths.TempPath = temp.path().string();
    session.CurrentConditions = CalcConditions{};
    bench.FormLoad();
    for (const char* name : {"A", "B", "C"}) bench.AddProfile(Named(name));
    bench.Hooks.Draw = [this](int tab) { drawn.push_back(tab); };
  }

  void InstallCounting(int tab) {
    TabComputation computation;
    computation.ProgressTitle = "テスト計算";
    computation.InputKey = [this] { return bench.Iri.EvalLength + "|" + std::to_string(session.CurrentConditions.Iri.Speed); };
    computation.Compute = [this](ProfileRecord& record) {
      if (failOn + ".erd" == record.FileName) RaiseDivisionByZero("test");
      computed.push_back(ProfileList::NameOf(record));
      return true;
    };
    bench.SetComputation(tab, std::move(computation));
  }

  std::vector<std::string> Kinds(const ScriptedUi& ui) const {
    std::vector<std::string> kinds;
    for (const auto& entry : ui.Log) kinds.push_back(entry.Kind);
    return kinds;
  }

  TempDir temp;
  Workbench bench{session};
  std::vector<std::string> computed;
  std::vector<int> drawn;
  std::string failOn;
};

TEST_F(WorkbenchTest, GoWithoutProfilesDoesNothingAndShowsNothing) {
  ScriptedUi ui(session);
  Workbench empty{session};
  empty.FormLoad();
  int calls = 0;
  empty.SetComputation(tab::Iri, {"t", "m", nullptr, [] { return std::string("k"); },
                                  [&](ProfileRecord&) { return ++calls > 0; }, nullptr, false, nullptr});
  EXPECT_FALSE(empty.Go(tab::Iri));
  EXPECT_TRUE(ui.Log.empty());
  EXPECT_EQ(calls, 0);
  EXPECT_TRUE(empty.TabDirty[tab::Iri]);
}

TEST_F(WorkbenchTest, LoadingProfileStopsGoAndChangeEvents) {
  ScriptedUi ui(session);
  InstallCounting(tab::Iri);
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
  const std::array<bool, kTabCount> atStart{false, true, true, true, true, false, true, false,
                                            false, false, false, false, false, false, true};
  EXPECT_EQ(bench.TabEnabled, atStart);
  EXPECT_EQ(bench.ModeCaption(), "●プロファイル分析　○補修形状検討");
  EXPECT_FALSE(bench.RepairRangeVisible);

  bench.MnuBunseki();
  EXPECT_EQ(bench.ModeCaption(), "○プロファイル分析　●補修形状検討");
  EXPECT_TRUE(bench.RepairRangeVisible);
  for (int t = 2; t <= 9; ++t) EXPECT_FALSE(bench.TabEnabled[t]) << t;
  for (int t = 10; t <= 13; ++t) EXPECT_TRUE(bench.TabEnabled[t]) << t;
  EXPECT_FALSE(bench.TabEnabled[14]);

  bench.MnuBunseki();
  EXPECT_EQ(bench.ModeCaption(), "●プロファイル分析　○補修形状検討");
  EXPECT_FALSE(bench.RepairRangeVisible);
  for (int t = 2; t <= 9; ++t) EXPECT_TRUE(bench.TabEnabled[t]) << t;
  for (int t = 10; t <= 13; ++t) EXPECT_FALSE(bench.TabEnabled[t]) << t;
  EXPECT_TRUE(bench.TabEnabled[14]);
}

TEST_F(WorkbenchTest, GoRunsSelectedRowsInListOrderWithProgressAndClearsTheFlag) {
  ScriptedUi ui(session);
  InstallCounting(tab::Iri);
  bench.Select(tab::Iri, {3, 1});
  ASSERT_TRUE(bench.Go(tab::Iri));
  EXPECT_EQ(computed, (std::vector<std::string>{"A", "C"}));
  EXPECT_EQ(Kinds(ui), (std::vector<std::string>{"progress-start", "progress-exit"}));
  EXPECT_EQ(ui.Log[0].Title, "テスト計算");
  EXPECT_EQ(ui.Log[0].Text, "しばらくお待ちください。");
  EXPECT_EQ(ui.ProgressValues, (std::vector<int>{0, 50, 100}));
  EXPECT_FALSE(bench.TabDirty[tab::Iri]);
  EXPECT_EQ(drawn, (std::vector<int>{tab::Iri}));
}

TEST_F(WorkbenchTest, SecondGoWithUnchangedInputsDoesNotRecompute) {
  ScriptedUi ui(session);
  InstallCounting(tab::Iri);
  bench.Select(tab::Iri, {1, 2});
  ASSERT_TRUE(bench.Go(tab::Iri));
  ASSERT_TRUE(bench.Go(tab::Iri));
  EXPECT_EQ(computed.size(), 2u);
  // A newly selected row is computed alone; a changed input recomputes all selected rows.
  bench.Select(tab::Iri, {1, 2, 3});
  ASSERT_TRUE(bench.Go(tab::Iri));
  EXPECT_EQ(computed, (std::vector<std::string>{"A", "B", "C"}));
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
  ScriptedUi ui(session);
  InstallCounting(tab::Iri);
  bench.Select(tab::Iri, {1, 2, 3});
  failOn = "B";
  EXPECT_FALSE(bench.Go(tab::Iri));
  EXPECT_TRUE(bench.TabDirty[tab::Iri]);
  EXPECT_EQ(computed, (std::vector<std::string>{"A"}));
  EXPECT_EQ(Kinds(ui), (std::vector<std::string>{"progress-start", "progress-exit", "message"}));
  EXPECT_EQ(ui.Log[2].Title, "[ frmTop : cmdGo_IRI_Click ]");
  EXPECT_TRUE(drawn.empty());
  EXPECT_TRUE(std::filesystem::exists(temp / "Sorvik_Err.log"));
  // The failed row is retried on the next Go, the good one is kept.
  failOn.clear();
  EXPECT_TRUE(bench.Go(tab::Iri));
  EXPECT_EQ(computed, (std::vector<std::string>{"A", "B", "C"}));
  EXPECT_FALSE(bench.TabDirty[tab::Iri]);
}

TEST_F(WorkbenchTest, ChangeOnATabThatIsNotCurrentOnlySetsFlagsAndWorkHappensOnEntry) {
  ScriptedUi ui(session);
  InstallCounting(tab::Iri);
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
  bench.Select(tab::Psd, {2});
  bench.TabClick(tab::Psd);
  EXPECT_EQ(bench.PsdLegend, (std::vector<std::string>{"B"}));
  bench.TabClick(tab::Report);
  EXPECT_EQ(bench.ReportProfileRows, (std::vector<std::string>{"A", "B", "C"}));

  bench.TabDirty.fill(false);
  bench.AddProfile(Named("D"));
  bench.TabDirty.fill(false);
  bench.Select(tab::Psd, {1, 4});
  bench.TabClick(tab::Psd);
  EXPECT_EQ(bench.PsdLegend, (std::vector<std::string>{"A", "D"}));
  bench.TabClick(tab::Report);
  EXPECT_EQ(bench.ReportProfileRows, (std::vector<std::string>{"A", "B", "C", "D"}));
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
  EXPECT_EQ(bench.VisiblePanel, tab::Iri);
  EXPECT_EQ(bench.PreviousTab, tab::Statistics);
}

TEST_F(WorkbenchTest, DrawingSwitchComputesWithoutDrawing) {
  ScriptedUi ui(session);
  InstallCounting(tab::Octave);
  bench.Select(tab::Octave, {1});
  bench.DispGrp = true;
  ASSERT_TRUE(bench.Go(tab::Octave));
  EXPECT_EQ(computed.size(), 1u);
  EXPECT_TRUE(drawn.empty());
}

TEST_F(WorkbenchTest, KpPositionTurnsReversalOffAndMarksEveryTab) {
  bench.TabDirty.fill(false);
  bench.Axis.Reversed = true;
  bench.SetPositionMode(PositionMode::Kp);
  EXPECT_TRUE(bench.KpUnitVisible);
  EXPECT_FALSE(bench.Axis.Reversed);
  EXPECT_FALSE(bench.TabDirty[tab::Profile]);  // the profile tab has redrawn
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
  EXPECT_TRUE(cleared);
  EXPECT_EQ(bench.ProfileCount(), 0);
  EXPECT_TRUE(bench.List().Views[5].Rows.empty());
  EXPECT_TRUE(bench.Selection(tab::Iri).empty());
  EXPECT_EQ(bench.Filter.LongCut, "40");
  EXPECT_EQ(bench.Filter.ShortCut, "5");
  EXPECT_EQ(bench.Iri.EvalLength, "10");
  EXPECT_EQ(bench.Band.Lines[3], "2.5");
  EXPECT_EQ(bench.Band.Lines[4], "");
  EXPECT_EQ(bench.StatisticsSortProfile, (std::vector<std::string>{"プロファイル", "帯域", "統計値"}));
  EXPECT_EQ(bench.StatisticsSortIri, (std::vector<std::string>{"プロファイル", "IRI算出基準長", "帯域", "統計値"}));
  EXPECT_EQ(bench.PrintForms, (std::vector<std::string>{"帳票形式(1)"}));
  EXPECT_EQ(bench.CurrentTab, tab::Profile);
  EXPECT_EQ(bench.WindowTitle, " velmora : [ 新規作成 ]");
  for (bool dirty : bench.TabDirty) EXPECT_TRUE(dirty);
  for (int i = 0; i <= 6; ++i) EXPECT_EQ(bench.ProjectCommandEnabled[i], i < 3) << i;
}

TEST_F(WorkbenchTest, GoOfATabWithoutAnAnalysisReportsThroughTheErrorPath) {
  ScriptedUi ui(session);
  bench.Select(tab::Report, {1});
  EXPECT_FALSE(bench.Go(tab::Report));
  ASSERT_EQ(ui.Messages().size(), 1u);
  EXPECT_EQ(ui.Messages()[0].Title, "[ frmTop : cmxExlsCreate_Click ]");
  EXPECT_TRUE(bench.TabDirty[tab::Report]);
}

TEST_F(WorkbenchTest, ToolRegistrationKeepsTheResultsOfTheOtherRows) {
  InstallCounting(tab::Iri);
  bench.SelectAll(tab::Iri);
  ASSERT_TRUE(bench.Go(tab::Iri));
  computed.clear();
  session.Paths.UserLocalPath = temp.path().string();  // registration copies into the project's folder
  ToolOutput output{"D.ERD", {}};
  output.Erd.NumChannels = 1;
  output.Erd.FormatCode = 5;
  output.Erd.StepSize = 0.25;
  output.Erd.Elevation = Array1<double>{1, 2, 3};
  output.Erd.NumSamples = output.Erd.NumSamplesHeader = 3;
  ScriptedUi ui(session);
  ASSERT_TRUE(bench.RegisterToolOutputs({output}));
  EXPECT_EQ(ui.Messages().front().Title, "登録");
  ASSERT_EQ(bench.ProfileCount(), 4);
  EXPECT_EQ(ProfileList::NameOf(bench.Profile(4)), "D");
  EXPECT_EQ(bench.Profile(4).Erd.Elevation, output.Erd.Elevation);
  EXPECT_TRUE(bench.TabDirty[tab::Iri]);
  // The new row is computed on the next Go; A, B and C keep their results.
  bench.SelectAll(tab::Iri);
  ASSERT_TRUE(bench.Go(tab::Iri));
  EXPECT_EQ(computed, std::vector<std::string>{"D"});
}

TEST_F(WorkbenchTest, ToolsGetEveryProfileAndProjectSnapshotTellsChanges) {
  std::vector<std::string> names;
  bench.Hooks.OpenTool = [&](int tool, const Array1<ProfileRecord>& inputs) {
    EXPECT_EQ(tool, 3);
    for (const auto& p : inputs) names.push_back(ProfileList::NameOf(p));
  };
  bench.MnuTool(3);
  EXPECT_EQ(names, (std::vector<std::string>{"A", "B", "C"}));
  EXPECT_THROW(bench.MnuTool(5), LegacyError);

  bench.TakeProjectSnapshot();
  EXPECT_FALSE(bench.ProjectChanged());
  session.CurrentConditions.FilterLong = 77;
  EXPECT_TRUE(bench.ProjectChanged());
}

}  // namespace
}  // namespace velmora::workbench
