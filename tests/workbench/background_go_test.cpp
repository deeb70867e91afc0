// Go on the worker thread: a stop asked for by the progress or by the Cancel button leaves the results
// from before, a Go to the end stores what a synchronous Go stores. Two roads split into octaves once,
// single pass; the convergent split is the long computation that runs on the worker.
#include "workbench/background_go.h"

#include <gtest/gtest.h>

#include <thread>

#include "support/checks.h"
#include "support/profile_fixture.h"
#include "workbench/tab_table.h"
#include "workbench/workbench.h"

namespace velmora::workbench {
namespace {

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

}  // namespace
}  // namespace velmora::workbench
