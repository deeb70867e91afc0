// Tab 4 (band reduction) through the workbench: its Go stores the lines in the conditions, splits the
// profile into octaves when needed and keeps the reduced bands with the limits they were held to.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "analysis/band_reduction.h"
#include "base/app_paths.h"
#include "base/common.h"
#include "base/session.h"
#include "support/session_fixture.h"
#include "support/test_support.h"
#include "workbench/workbench.h"

namespace velmora::workbench {
namespace {

using testing::ScriptedUi;
using testing::TempDir;

// 1024 samples at 0.05 m of a 2 mm sine of wavelength 51.2/11 m (octave 5: 3.2 to 6.4 m).
ProfileRecord Sine() {
  ProfileRecord r;
  r.FileName = "sine.erd";
  r.Erd.StepSize = 0.05;
  r.Erd.NumSamples = 1024;
  r.WorkCount = 1024;
  r.WorkProfile = Array1<double>(1024);
  for (std::int32_t i = 1; i <= 1024; ++i) r.WorkProfile[i] = 2.0 * std::sin(2 * std::numbers::pi * 11.0 * (i - 1) / 1024.0);
  r.Erd.Elevation = r.WorkProfile;
  return r;
}

class BandReductionTab : public testing::SessionTest {
 protected:
  void SetUp() override {
    session.Paths.TempPath = temp.path().string();
    session.CurrentConditions = CalcConditions{};
    session.Settings.LongOctaves = {1, 2, 3};
    session.Settings.ShortOctaves = {7, 8, 9};
    InstallAnalyses(bench);
    bench.FormLoad();
    bench.AddProfile(Sine());
    bench.Select(tab::BandReduction, {1});
  }
  TempDir temp;
  testing::ScriptedUi& ui = ui_;
  Workbench bench{session};
};

TEST_F(BandReductionTab, GoReducesTheLimitedBandToItsLimitAndKeepsTheOthers) {
  bench.Band.Lines = {};
  bench.Band.Lines[5] = " 1 ";
  ASSERT_TRUE(bench.Go(tab::BandReduction));
  EXPECT_FALSE(bench.TabDirty[tab::BandReduction]);
  const ProfileRecord& r = bench.Profile(1);
  const BandReductionBlock& block = r.Analysis.BandReduction;
  ASSERT_TRUE(block.Calculated);
  ASSERT_TRUE(r.Analysis.Octave.Calculated);  // the split was made on the way
  EXPECT_EQ(block.Limits[5], 1.0);
  EXPECT_EQ(block.Limits[4], NoLimit);
  // The stored conditions keep the limit and the no value for the blank lines.
  EXPECT_EQ(session.CurrentConditions.BandLines.Value[5], 1.0);
  EXPECT_TRUE(IsNoValue(session.CurrentConditions.BandLines.Value[4]));

  // Each half-wave above 1 mm ends with a peak of exactly 1 mm.
  const SeriesStats& five = block.Result.Reduced[5].Stats;
  EXPECT_EQ(std::max(five.Maximum, -five.Minimum), 1.0);
  double total = 0;
  for (std::int32_t i = 1; i <= 1024; ++i) {
    EXPECT_EQ(block.Result.Reduced[4].Values[i], r.Analysis.Octave.Band[4].Values[i]);
    double sum = 0;
    for (std::size_t k = 1; k <= 9; ++k) sum += block.Result.Reduced[k].Values[i];
    total = std::max(total, std::abs(sum - block.Result.Total.Values[i]));
  }
  EXPECT_LT(total, 1e-12);
  // The short-wave sum is that of octaves 7, 8 and 9, as set up.
  EXPECT_DOUBLE_EQ(block.ShortSum.Values[100], block.Result.Reduced[7].Values[100] +
                                                    block.Result.Reduced[8].Values[100] +
                                                    block.Result.Reduced[9].Values[100]);
}

TEST_F(BandReductionTab, SameLinesDoNotRecomputeAndATextIsNoLimit) {
  bench.Band.Lines = {};
  bench.Band.Lines[2] = "x";
  bench.Band.Lines[5] = "1";
  ASSERT_TRUE(bench.Go(tab::BandReduction));
  EXPECT_EQ(bench.ComputeCount(tab::BandReduction), 1);
  EXPECT_EQ(bench.Profile(1).Analysis.BandReduction.Limits[2], NoLimit);
  ASSERT_TRUE(bench.Go(tab::BandReduction));
  EXPECT_EQ(bench.ComputeCount(tab::BandReduction), 1);
  bench.Band.Lines[5] = "0";
  ASSERT_TRUE(bench.Go(tab::BandReduction));
  EXPECT_EQ(bench.ComputeCount(tab::BandReduction), 2);
  // A limit of zero turns the whole band into zeros.
  EXPECT_EQ(bench.Profile(1).Analysis.BandReduction.Result.Reduced[5].Stats.Maximum, 0.0);
  EXPECT_EQ(bench.Profile(1).Analysis.BandReduction.Result.Reduced[5].Stats.Minimum, 0.0);
}

TEST_F(BandReductionTab, FormResetShowsTheConditionsLines) {
  session.CurrentConditions.BandLines.Value[3] = 4.5;
  session.CurrentConditions.BandLines.Value[6] = kNoValue;
  bench.FormReset();
  EXPECT_EQ(bench.Band.Lines[3], "4.5");
  EXPECT_EQ(bench.Band.Lines[6], "");
}

}  // namespace
}  // namespace velmora::workbench
