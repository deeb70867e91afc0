#include "analysis/filter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "analysis/fft_filter.h"
#include "analysis/moving_average.h"
#include "analysis/prepare_profile.h"
#include "analysis/slope_filter.h"
#include "base/legacy_error.h"
#include "profile/profile_record.h"
#include "support/analysis_fixture.h"
#include "support/checks.h"
#include "support/error_of.h"
#include "support/expect_values.h"
#include "support/profile_fixture.h"
#include "support/session_fixture.h"

namespace velmora {
namespace {

using testing::ExpectValues;

Array1<double> A(std::vector<double> values) { return Array1<double>(std::move(values)); }

// A registered profile prepared for analysis: its samples at `pitch` m.
ProfileRecord Prepared(const std::string& name, std::vector<double> samples, double pitch) {
  ProfileRecord record = testing::MakeProfile(name, pitch, std::move(samples));
  PrepareProfile(DebugTables{}, record);
  return record;
}

FilterSpec MakeFilter(FilterCalcType type, FilterKind band, double longCut, double shortCut, bool slopeMode = false,
                      double slopeCut = 50) {
  return {type, band, slopeMode, longCut, shortCut, slopeCut, false};
}

class FilterTest : public testing::SessionTest {
 protected:
  FilterRunOutcome Run(const FilterSpec& filterSpec, bool force, const std::vector<ProfileRecord*>& profiles) {
    return RunFilter(session, filterSpec, force, profiles, IriParams{}, ReadFilterConvergence(session.Paths));
  }
};

TEST_F(FilterTest, MovingAverageMatchesHandSumsAndRefusesWindowsItCannotUse) {
  const Array1<double> source = A({1, 2, 4, 7, 11});
  Array1<double> high, mean;
  // Window 3 folds one sample: ext = (0, 1, 2, 4, 7, 11, 15), centred means.
  MovingAverageSplit(DebugTables{}, 3, 5, source, high, mean);
  ExpectValues(mean, {1, 7.0 / 3, 13.0 / 3, 22.0 / 3, 11});
  ExpectValues(high, {0, -1.0 / 3, -1.0 / 3, -1.0 / 3, 0});

  // Window 4 folds round(1.5) = 2: ext = (−2, 0, 1, 2, 4, 7, 11, 15, 18); each mean covers
  // source(o − 2 .. o + 1), half a sample to the left.
  MovingAverageSplit(DebugTables{}, 4, 5, source, high, mean);
  ExpectValues(mean, {0.25, 1.75, 3.5, 6, 9.25});

  // Window 2 folds round(0.5) = 0: the sum never reaches the last sample, which stays 0.
  MovingAverageSplit(DebugTables{}, 2, 5, source, high, mean);
  ExpectValues(mean, {1.5, 3, 5.5, 9, 0});
  ExpectValues(high, {-0.5, -1, -1.5, -2, 0});

  using testing::ErrorOf;
  EXPECT_EQ(ErrorOf([&] { MovingAverageSplit(DebugTables{}, 0, 5, source, high, mean); }), ErrorNumber::DivisionByZero);
  // A fold of 5 reaches beyond 5 samples.
  EXPECT_EQ(ErrorOf([&] { MovingAverageSplit(DebugTables{}, 11, 5, source, high, mean); }), ErrorNumber::SubscriptOutOfRange);
}

TEST_F(FilterTest, MovingAverageOfARampShowsWhereAnEvenWindowStands) {
  // 11 m at 0.1 m: window 110, fold round(54.5) = 54. The fold keeps the ramp, so each mean is the
  // ramp half a sample to the right of its own sample; the last sample is never reached.
  Array1<double> ramp(200);
  for (int i = 1; i <= 200; ++i) ramp[i] = 0.5 * i;
  Array1<double> high, mean;
  MovingAverageSplit(DebugTables{}, 110, 200, ramp, high, mean);
  for (int o = 1; o <= 199; ++o) ASSERT_NEAR(mean[o], 0.5 * (o + 0.5), 1e-9) << o;
  EXPECT_EQ(mean[200], 0.0);
}

TEST_F(FilterTest, MovingAverageKindsCombineTheTwoMeans) {
  // dx 0.5: long 2 m → window 4, short 1.5 m → window 3, means m4 = (0.25, 1.75, 3.5, 6, 9.25) and
  // m3 = (1, 7/3, 13/3, 22/3, 11) from the hand sums above. HiPass p − m4, LowPass m3, BandPass
  // m3 − m4, BandCut p − (m3 − m4).
  const Array1<double> p = A({1, 2, 4, 7, 11});
  ExpectValues(MovingAverageFilter(DebugTables{}, 5, p, 0.5, FilterKind::HiPass, 2, 1.5), {0.75, 0.25, 0.5, 1, 1.75});
  ExpectValues(MovingAverageFilter(DebugTables{}, 5, p, 0.5, FilterKind::LowPass, 2, 1.5), {1, 7.0 / 3, 13.0 / 3, 22.0 / 3, 11});
  ExpectValues(MovingAverageFilter(DebugTables{}, 5, p, 0.5, FilterKind::BandPass, 2, 1.5), {0.75, 7.0 / 12, 5.0 / 6, 4.0 / 3, 1.75});
  ExpectValues(MovingAverageFilter(DebugTables{}, 5, p, 0.5, FilterKind::BandCut, 2, 1.5), {0.25, 17.0 / 12, 19.0 / 6, 17.0 / 3, 9.25});
  // LowPass still splits with the long cut-off first: left blank (0) it fails there.
  EXPECT_THROW(MovingAverageFilter(DebugTables{}, 5, p, 0.5, FilterKind::LowPass, 0, 1.5), LegacyError);
}

TEST_F(FilterTest, SlopesAndTheProfileRebuiltWithoutSteepOnes) {
  const Array1<double> y = A({0, 1, 3, 3, 2});
  ExpectValues(SlopeSeries(5, y, 0.5, false, 0), {2, 4, 0, -2, 0});
  // Cut 3 mm/m drops the 4: the step of 2 mm stays removed at every later point.
  ExpectValues(SlopeSeries(5, y, 0.5, true, 3), {0, 1, 1, 1, 0});
  // A cut at exactly 2 drops the slopes of ±2 as well (|s| ≥ cut).
  ExpectValues(SlopeSeries(5, y, 0.5, true, 2), {0, 0, 0, 0, 0});
  // A cut above every slope gives the profile back.
  ExpectValues(SlopeSeries(5, y, 0.5, true, 10), {0, 1, 3, 3, 2});
}

TEST_F(FilterTest, SlopesOfARoadLongerThanTheOld16BitCounterAreThoseOfThePlainLoop) {
  const std::int32_t n = 40001;
  const double dx = 0.01, cut = 150;
  Array1<double> y(static_cast<std::size_t>(n));
  for (std::int32_t i = 1; i <= n; ++i) y[i] = 3 * std::sin(0.002 * i) + ((i * 7919) % 13 == 0 ? 2.0 : 0.0);
  // The definition as a plain loop: forward differences, the last 0; then the profile rebuilt from
  // the slopes below the cut.
  Array1<double> slope(static_cast<std::size_t>(n)), rebuilt(static_cast<std::size_t>(n));
  for (std::int32_t i = 1; i < n; ++i) slope[i] = (y[i + 1] - y[i]) / dx;
  rebuilt[1] = y[1];
  for (std::int32_t i = 2; i <= n; ++i) rebuilt[i] = rebuilt[i - 1] + dx * (std::abs(slope[i - 1]) >= cut ? 0 : slope[i - 1]);
  EXPECT_EQ(SlopeSeries(n, y, dx, false, 0), slope);
  EXPECT_EQ(SlopeSeries(n, y, dx, true, cut), rebuilt);
}

TEST_F(FilterTest, EachKindChecksItsOwnCutOffs) {
  struct Case { FilterSpec filterSpec; FilterField focus; const char* message; };  // nullptr: passes the checks
  const char* kLong = "Long CutOff wavelength > 0.0 で指定して下さい。";
  const char* kShort = "Short CutOff wavelength > 0.0 で指定して下さい。";
  const char* kOrder = "Long CutOff > Short CutOff で指定して下さい。";
  const std::vector<Case> cases{
      {MakeFilter(FilterCalcType::MovingAverage, FilterKind::HiPass, 0, 5), FilterField::LongCut, kLong},
      {MakeFilter(FilterCalcType::Fourier, FilterKind::HiPass, -1, 5), FilterField::LongCut, kLong},
      {MakeFilter(FilterCalcType::MovingAverage, FilterKind::HiPass, 5, 0), FilterField::None, nullptr},
      {MakeFilter(FilterCalcType::MovingAverage, FilterKind::LowPass, 5, 0), FilterField::ShortCut, kShort},
      {MakeFilter(FilterCalcType::Fourier, FilterKind::LowPass, 0, 5), FilterField::None, nullptr},  // long not looked at
      {MakeFilter(FilterCalcType::Fourier, FilterKind::BandPass, 10, 0), FilterField::ShortCut, kShort},
      {MakeFilter(FilterCalcType::MovingAverage, FilterKind::BandCut, 0, -2), FilterField::ShortCut, kShort},
      {MakeFilter(FilterCalcType::MovingAverage, FilterKind::BandPass, 5, 5), FilterField::LongCut, kOrder},
      {MakeFilter(FilterCalcType::Fourier, FilterKind::BandCut, 4, 5), FilterField::LongCut, kOrder},
      {MakeFilter(FilterCalcType::Fourier, FilterKind::BandCut, 5, 4), FilterField::None, nullptr},
      {MakeFilter(FilterCalcType::Iri, FilterKind::BandPass, 0, 0), FilterField::None, nullptr},
      {MakeFilter(FilterCalcType::Slope, FilterKind::HiPass, 0, 0, true, 0), FilterField::SlopeCut,
       "Slope のCut値は > 0.0 で指定して下さい。"},
      {MakeFilter(FilterCalcType::Slope, FilterKind::HiPass, 0, 0, false, 0), FilterField::None, nullptr},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE(i);
    ui_.Log.clear();
    EXPECT_EQ(CheckFilterSpec(session, cases[i].filterSpec), cases[i].focus);
    if (cases[i].message == nullptr) {
      EXPECT_TRUE(ui_.Messages().empty());
    } else {
      testing::ExpectMessages(ui_, {{cases[i].message, "エラー"}});
    }
  }
}

TEST_F(FilterTest, RunFilterStoresEachProfileSkipsUpToDateOnesAndRefusesWhatTheCheckRefuses) {
  ProfileRecord a = Prepared("a", {1, 2, 4, 7, 11}, 0.5), b = Prepared("b", {3, 3, 3, 3, 3}, 0.5);
  const auto refused = Run(MakeFilter(FilterCalcType::MovingAverage, FilterKind::BandPass, 1, 2), true, {&a});
  EXPECT_EQ(refused.Focus, FilterField::LongCut);
  EXPECT_FALSE(refused.Completed);
  EXPECT_FALSE(a.Analysis.Filter.FilterWave.Calculated);
  EXPECT_TRUE(testing::ProgressTexts(ui_).empty());

  ui_.Log.clear();
  const FilterSpec filterSpec = MakeFilter(FilterCalcType::MovingAverage, FilterKind::HiPass, 2, 1.5);
  EXPECT_TRUE(Run(filterSpec, false, {&a, &b}).Completed);
  ExpectValues(a.Analysis.Filter.FilterWave.Values, {0.75, 0.25, 0.5, 1, 1.75});
  EXPECT_EQ(a.Analysis.Filter.FilterCount, 5);
  EXPECT_TRUE(b.Analysis.Filter.FilterWave.Calculated);
  EXPECT_NEAR(b.Analysis.Filter.FilterWave.Stats.Maximum, 0.0, 1e-12);
  EXPECT_EQ(a.Analysis.Filter.Request, filterSpec);
  EXPECT_EQ(testing::ProgressTexts(ui_), (std::vector<std::string>{"しばらくお待ちください。", "移動平均フィルターa", "移動平均フィルターb"}));
  EXPECT_EQ(ui_.ProgressValues, (std::vector<int>{50, 100}));

  // Same settings, no force: the stored result is not touched; with force it is recalculated.
  a.Analysis.Filter.FilterWave.Values[1] = 99;
  Run(filterSpec, false, {&a});
  EXPECT_EQ(a.Analysis.Filter.FilterWave.Values[1], 99);
  Run(filterSpec, true, {&a});
  EXPECT_NEAR(a.Analysis.Filter.FilterWave.Values[1], 0.75, 1e-12);
}

TEST_F(FilterTest, FourierTypeStoresTheSingleOrTheConvergentPass) {
  const Array1<double> profile(testing::Road(300));
  ProfileRecord record = Prepared("f", testing::Road(300), 0.25);
  FilterSpec filterSpec = MakeFilter(FilterCalcType::Fourier, FilterKind::LowPass, 0, 2);
  ASSERT_TRUE(Run(filterSpec, true, {&record}).Completed);

  WaveSeries single, other;
  std::int32_t seq = 0;
  ASSERT_TRUE(Cal_FFTフィルタ_単体処理(session, seq, 0, 300, 512, 1024, 0.25, FilterKind::LowPass, 0, 2, profile, single, other));
  EXPECT_EQ(record.Analysis.Filter.FilterWave.Values, single.Values);
  EXPECT_EQ(record.Analysis.Filter.FilterCount, 300);

  filterSpec.Converge = true;
  ASSERT_TRUE(Run(filterSpec, false, {&record}).Completed);  // a changed filterSpec recalculates
  WaveSeries converged;
  ASSERT_TRUE(Cal_FFTフィルタ_収束計算(session, 300, 512, 1024, 0.25, FilterKind::LowPass, 0, 2, profile, converged,
                                   ReadFilterConvergence(session.Paths)));
  EXPECT_EQ(record.Analysis.Filter.FilterWave.Values, converged.Values);
}

TEST_F(FilterTest, SlopeAndIriTypesAndAnErrorThatLeavesThePreviousResult) {
  ProfileRecord slope = Prepared("s", {0, 1, 3, 3, 2}, 0.5);
  ASSERT_TRUE(Run(MakeFilter(FilterCalcType::Slope, FilterKind::HiPass, 0, 0, true, 3), true, {&slope}).Completed);
  ExpectValues(slope.Analysis.Filter.SlopeWave.Values, {0, 1, 1, 1, 0});
  ExpectValues(slope.Analysis.Filter.FilterWave.Values, {0, 1, 1, 1, 0});
  EXPECT_DOUBLE_EQ(slope.Analysis.Filter.SlopeWave.Stats.Mean, 0.6);

  // The slope base of 0.25 m spans 5 samples at 0.05 m.
  ProfileRecord iri = Prepared("i", testing::Road(400), 0.05);
  ASSERT_TRUE(Run(MakeFilter(FilterCalcType::Iri, FilterKind::HiPass, 0, 0), true, {&iri}).Completed);
  EXPECT_EQ(iri.Analysis.Filter.FilterCount, 395);
  EXPECT_EQ(iri.Analysis.Filter.FilterWave.Values.size(), 395);

  // A count beyond its samples (a damaged record): logged with the file's name, the stored wave stays.
  ProfileRecord longOne = Prepared("long", std::vector<double>(400), 0.1);
  longOne.Analysis.Count = 401;
  longOne.Analysis.Filter.FilterWave.Values = A({42});
  slope.Analysis.Filter.FilterWave = WaveSeries{};
  ui_.Log.clear();
  EXPECT_FALSE(Run(MakeFilter(FilterCalcType::Slope, FilterKind::HiPass, 0, 0), true, {&slope, &longOne}).Completed);
  EXPECT_TRUE(slope.Analysis.Filter.FilterWave.Calculated);  // the profiles before it are done
  EXPECT_EQ(longOne.Analysis.Filter.FilterWave.Values, A({42}));
  EXPECT_EQ(testing::OnlyMessageTitle(ui_), "[ basFilter : cmdGo_フィルター処理 ]");
  EXPECT_NE(ui_.OnlyMessageText().find("long.erd"), std::string::npos);
  EXPECT_EQ(ui_.Log.back().Kind, "progress-exit");
}

}  // namespace
}  // namespace velmora
