// The profile tab's boxes and the project reset bound to the workbench.
#include "workbench/engine_bindings.h"

#include <gtest/gtest.h>

#include "base/app_paths.h"
#include "base/session.h"
#include "base/startup.h"
#include "support/session_fixture.h"
#include "support/test_support.h"

namespace velmora::workbench {
namespace {

class EngineBindingsTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    session.CurrentConditions = CalcConditions{};
    bench.FormLoad();
    ProfileRecord record;
    record.FileName = "A.erd";
    record.Erd.StepSize = 0.05;
    record.Erd.NumSamples = 3;
    record.Comment = "old";
    bench.AddProfile(record);
    bench.Select(tab::Profile, {1});
    binding.ShowProfile(1);
    bench.TabDirty.fill(false);
  }
  Workbench bench{session};
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

  bench.TabDirty.fill(false);
  binding.RunConditionsDialog = [](ConditionsDialog& dialog) { EXPECT_TRUE(dialog.Ok()); };  // nothing changed
  bench.MnuConditions();
  EXPECT_FALSE(bench.TabDirty[tab::Iri]);
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

}  // namespace
}  // namespace velmora::workbench
