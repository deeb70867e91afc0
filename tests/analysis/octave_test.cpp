// Octave masks, the preparation of a profile, the single and the repeated split, the sums, and the
// half-wave reduction of the bands against limit lines.
#include "analysis/octave.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <numeric>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "analysis/band_reduction.h"
#include "analysis/octave_bands.h"
#include "analysis/prepare_profile.h"
#include "base/common.h"
#include "support/analysis_fixture.h"
#include "support/checks.h"
#include "support/expect_values.h"
#include "support/literal_pass.h"
#include "support/profile_fixture.h"
#include "support/session_fixture.h"

namespace velmora {
namespace {

using testing::ExpectValues;

// A rough road: a few sines across the octaves, a slope and an offset.
std::vector<double> RoughProfile(int n, double dx) {
  std::vector<double> y;
  for (int i = 0; i < n; ++i) {
    const double x = i * dx;
    y.push_back(12.0 + 0.01 * x + 8 * std::sin(2 * M_PI * x / 37.0) + 3 * std::sin(2 * M_PI * x / 5.3 + 1) +
                1.5 * std::cos(2 * M_PI * x / 0.93) + 0.4 * std::sin(2 * M_PI * x / 0.27));
  }
  return y;
}

// The largest difference between the sum of the nine bands and the profile.
double WorstSumBack(const ProfileRecord& record) {
  double worst = 0;
  for (int i = 1; i <= record.WorkCount; ++i) {
    double sum = 0;
    for (int k = 1; k <= 9; ++k) sum += record.Analysis.Octave.Band[k].Values[i];
    worst = std::max(worst, std::abs(sum - record.WorkProfile[i]));
  }
  return worst;
}

using Waves = std::array<std::vector<double>, 10>;  // [1..9]

// The split exactly as the steps are written: nine literal masked passes.
Waves LiteralSplit(const AnalysisBlock& block, const Array1<double>& source) {
  Waves waves;
  for (std::size_t k = 1; k <= 9; ++k) waves[k] = testing::LiteralMaskedPass(block.Count, source, block.Masks[k]);
  return waves;
}

double Deviation(const std::vector<double>& wave) {
  const double mean = std::accumulate(wave.begin(), wave.end(), 0.0) / static_cast<double>(wave.size());
  double squares = 0;
  for (double v : wave) squares += (v - mean) * (v - mean);
  return std::sqrt(squares / static_cast<double>(wave.size()));
}

// The peeling as written, on the literal split: every pass makes all nine octaves, the rest is the sum
// of the octaves between, a stage ends when both deviations stop shrinking by the ratio.
Waves LiteralPeeling(const AnalysisBlock& block, double ratio, int maxPasses) {
  const auto n = static_cast<std::size_t>(block.Count);
  Waves acc, pass;
  for (auto& wave : acc) wave.assign(n, 0.0);
  std::vector<double> rest = block.Profile.Values.vector();
  for (int s = 1; s <= 4; ++s) {
    double previous[2] = {1e30, 1e30};
    bool done[2] = {false, false};
    for (int i = 1; i <= maxPasses && !(done[0] && done[1]); ++i) {
      pass = LiteralSplit(block, Array1<double>(rest));
      std::fill(rest.begin(), rest.end(), 0.0);
      for (int k = 1; k <= 9; ++k)
        for (std::size_t j = 0; j < n; ++j) (k <= s || k >= 10 - s ? acc[k][j] : rest[j]) += pass[k][j];
      for (int side = 0; side < 2; ++side) {
        const double deviation = Deviation(pass[side == 0 ? s : 10 - s]);
        done[side] = done[side] || previous[side] / deviation < ratio;
        previous[side] = deviation;
      }
    }
  }
  acc[5] = pass[5];
  return acc;
}

// Largest difference between the stored bands and the literal ones, over the profile's range.
double WorstRelativeDifference(const OctaveBandSet& set, const Waves& literal, const Array1<double>& profile) {
  double worst = 0;
  for (int k = 1; k <= 9; ++k)
    worst = std::max(worst, testing::WorstRelativeToRange(set.Band[k].Values, literal[k], profile));
  return worst;
}

class OctaveTest : public testing::SessionTest {
 protected:
  // The split of `samples` at `pitch` as a registered profile; a failed split ends the test.
  ProfileRecord Split(const std::vector<double>& samples, double pitch, bool converge = false,
                      FilterConvergence limits = {}) {
    ProfileRecord record = testing::MakeProfile("test", pitch, samples);
    if (!DecomposeProfile(session, record, converge, limits)) throw std::runtime_error("the octave split failed");
    return record;
  }
};

TEST(OctaveMasks, EachPositionLiesInTheOctaveOfItsHarmonic) {
  // Position p of a mask of length L looks at harmonic j = p up to L/2 + 1 and at j = L + 2 − p above
  // (one bin above its own). With L·dx = 51.2 m, j = 1 is exactly 1/51.2 c/m (octave 1) and every
  // octave limit is a harmonic 2^m with the upper limit inclusive: j = 2 octave 2, 3..4 octave 3, ...,
  // j = 128 (2.5 c/m = 1/0.4) octave 8, 129 up to the highest octave 9. At 6.4 m (eight times shorter)
  // j = 1 is 1/6.4, the upper limit of octave 4: every octave three higher, j = 9 (1.406 c/m) octave 8.
  for (const auto& [length, dx, shift] : {std::tuple{8, 6.4, 0}, {16, 0.4, 3}, {512, 0.1, 0}}) {
    SCOPED_TRACE(length);
    OctaveMasks masks;
    MakeOctaveMasks(length, dx, masks);
    for (std::size_t k = 1; k <= 9; ++k) ASSERT_EQ(masks[k].size(), length);
    for (int p = 1; p <= length; ++p) {
      const int j = p <= length / 2 + 1 ? p : length + 2 - p;
      std::size_t octave = 1 + shift;
      for (int limit = 1; limit < j && octave < 9; limit *= 2) ++octave;
      for (std::size_t k = 1; k <= 9; ++k) EXPECT_EQ(masks[k][p], k == octave) << "position " << p;
    }
  }
}

TEST_F(OctaveTest, PrepareFillsLengthsCopyAndMasksAndRefusesBadPitchAndCount) {
  ProfileRecord record = testing::MakeProfile("test", 0.1, {1, 2, 3, 4, 5});
  PrepareProfile(DebugTables{}, record);
  const AnalysisBlock& block = record.Analysis;
  EXPECT_DOUBLE_EQ(block.SamplesPerMetre, 10.0);
  EXPECT_EQ(std::tuple(block.Count, block.FftLength1, block.FftLength2), std::tuple(5, 8, 16));
  EXPECT_EQ(block.Profile.Values, Array1<double>({1, 2, 3, 4, 5}));
  EXPECT_DOUBLE_EQ(block.Profile.Stats.StdDev, std::sqrt(2.0));
  for (int k = 1; k <= 10; ++k) EXPECT_EQ(block.Masks[k].size(), 16);
  // 16 points at 0.1 m: the zero position is j = 1, 0.625 c/m = 1/1.6, the top of octave 6.
  EXPECT_EQ(block.Masks[6][1], 1);

  ProfileRecord flat = testing::MakeProfile("test", 0.0, {1, 2, 3});
  const std::string what = testing::WhatOf([&] { PrepareProfile(DebugTables{}, flat); });
  EXPECT_NE(what.find("test.erd"), std::string::npos) << what;
  ProfileRecord shorter = testing::MakeProfile("test", 0.1, {1, 2, 3});
  shorter.WorkCount = 4;
  EXPECT_THROW(PrepareProfile(DebugTables{}, shorter), LegacyError);
}

TEST_F(OctaveTest, SinglePassIsTheLiteralStepsAndSumsBack) {
  // The bands come back through half-length real transforms on two cores; each must match the literal
  // sequence of complex transforms of the whole length far inside 1e-9 of the profile's range.
  for (const std::int32_t n : {3000, 4096, 5}) {
    ui_.Log.clear();
    const ProfileRecord record = Split(RoughProfile(n, 0.1), 0.1);
    const OctaveBandSet& set = record.Analysis.Octave;
    const Waves literal = LiteralSplit(record.Analysis, record.Analysis.Profile.Values);
    EXPECT_LT(WorstRelativeDifference(set, literal, record.WorkProfile), 1e-12) << n;
    EXPECT_LT(WorstSumBack(record), 1e-9) << n;
    EXPECT_TRUE(set.Calculated);
    EXPECT_FALSE(set.Converged);
    EXPECT_EQ(ui_.Log.front().Kind, "progress-start");
    EXPECT_EQ(ui_.Log.front().Title, "プロファイル分解計算");
    EXPECT_EQ(ui_.Log.back().Kind, "progress-exit");
    if (n != 3000) continue;
    // The mean level (12 mm plus half the slope) lies in octave 1, the other bands average about 0.
    EXPECT_NEAR(set.Band[1].Stats.Mean, record.Analysis.Profile.Stats.Mean, 0.5);
    for (std::size_t k = 2; k <= 9; ++k) EXPECT_LT(std::abs(set.Band[k].Stats.Mean), 0.5) << k;
  }
}

TEST_F(OctaveTest, SineOfOneOctaveLandsInThatBand) {
  // 4.4 m lies in octave 5 (3.2..6.4 m), near its geometric middle; 4096 samples at 0.1 m (409.6 m).
  const double amplitude = 10, rms = amplitude / std::sqrt(2.0);
  const std::vector<double> y = testing::Sine(4096, 44, amplitude);
  const ProfileRecord record = Split(y, 0.1);
  const OctaveBandSet& set = record.Analysis.Octave;
  EXPECT_NEAR(set.Band[5].Stats.StdDev, rms, 0.01 * rms);
  // The fold bends the sine at both ends; the brick-wall masks spread that bend into the neighbouring
  // octaves near the ends only. In the middle half the other bands stay small and octave 5 is the sine.
  for (std::size_t k = 1; k <= 9; ++k) {
    double middle = 0;
    for (int i = 1024; i <= 3072; ++i)
      middle = std::max(middle, std::abs(set.Band[k].Values[i] - (k == 5 ? y[i - 1] : 0.0)));
    EXPECT_LT(middle, (k == 5 ? 0.03 : 0.02) * amplitude) << "octave " << k;
    if (k != 5) { EXPECT_LT(set.Band[k].Stats.StdDev, 0.06 * rms) << "octave " << k; }
  }
}

TEST_F(OctaveTest, PeelingIsTheLiteralStepsWithinRounding) {
  // With all passes forced and with the default ratio, which stops stages at different passes.
  ProfileRecord record = testing::MakeProfile("test", 0.05, RoughProfile(1500, 0.05));
  for (const FilterConvergence limits : {FilterConvergence{0.0, 3}, FilterConvergence{1.1, 10}}) {
    ASSERT_TRUE(DecomposeProfile(session, record, true, limits, true));
    const Waves literal = LiteralPeeling(record.Analysis, limits.StdRatio, limits.MaxPasses);
    EXPECT_LT(WorstRelativeDifference(record.Analysis.Octave, literal, record.WorkProfile), 1e-11)
        << limits.StdRatio;
  }
}

TEST_F(OctaveTest, ShortTransformLeavesOctaveOneEmpty) {
  // 100 samples at 0.1 m: FftLength2 = 256, 25.6 m, below 51.2 m; the mean goes to octave 2.
  const ProfileRecord record = Split(std::vector<double>(100, 7.0), 0.1);
  ExpectValues(record.Analysis.Octave.Band[1].Values, std::vector<double>(100, 0.0), 0);
  ExpectValues(record.Analysis.Octave.Band[2].Values, std::vector<double>(100, 7.0));
}

TEST_F(OctaveTest, SumsFollowTheSettingsLists) {
  session.Settings.LongOctaves = {1, 2, 3};
  session.Settings.ShortOctaves = {9, 3, 9};  // an octave listed twice counts once
  ProfileRecord record = Split(RoughProfile(600, 0.1), 0.1);
  const OctaveBandSet& set = record.Analysis.Octave;
  for (int i = 1; i <= 600; ++i) {
    EXPECT_DOUBLE_EQ(set.LongSum.Values[i], set.Band[1].Values[i] + set.Band[2].Values[i] + set.Band[3].Values[i]);
    EXPECT_DOUBLE_EQ(set.ShortSum.Values[i], set.Band[3].Values[i] + set.Band[9].Values[i]);
  }
  EXPECT_TRUE(set.LongSum.Calculated);
  EXPECT_EQ(set.ShortSum.DisplayMax, set.ShortSum.Stats.Maximum);

  session.Settings.LongOctaves.clear();
  session.Settings.ShortOctaves.clear();
  ASSERT_TRUE(DecomposeProfile(session, record, false, FilterConvergence{}, true));
  ExpectValues(set.LongSum.Values, std::vector<double>(600, 0.0), 0);
  ExpectValues(set.ShortSum.Values, std::vector<double>(600, 0.0), 0);
}

TEST_F(OctaveTest, ValidBandsAreNotRecomputedUnlessForcedOrTheOptionChanges) {
  ProfileRecord record = Split(RoughProfile(600, 0.1), 0.1);
  // Whether a run removes a mark put into band 4.
  const auto recomputes = [&](bool converge, bool force) {
    record.Analysis.Octave.Band[4].Values[1] = 1234.5;
    EXPECT_TRUE(DecomposeProfile(session, record, converge, FilterConvergence{1.1, 2}, force));
    return record.Analysis.Octave.Band[4].Values[1] != 1234.5;
  };
  EXPECT_FALSE(recomputes(false, false));
  EXPECT_TRUE(recomputes(false, true));
  EXPECT_TRUE(recomputes(true, false));
  EXPECT_TRUE(record.Analysis.Octave.Converged);
  PrepareProfile(DebugTables{}, record);  // a changed profile makes the bands stale
  EXPECT_TRUE(recomputes(true, false));
}

TEST_F(OctaveTest, PeelingShowsEachStageAndPassAndStopsAStageWhenBothBandsHaveConverged) {
  // A ratio of 0 never converges, so every stage runs all three passes: 12 passes.
  Split(RoughProfile(600, 0.1), 0.1, true, {0.0, 3});
  std::vector<std::string> captions = {"しばらくお待ちください。", "収束計算中・・・・"};
  for (int s = 1; s <= 4; ++s)
    for (int pass = 1; pass <= 3; ++pass)
      captions.push_back("収束計算中( " + std::to_string(s) + "-OCT、" + std::to_string(10 - s) + "-OCT )  " +
                         std::to_string(pass) + " / 3 ・・・・");
  EXPECT_EQ(testing::ProgressTexts(ui_), captions);
  const std::vector<int> bar = {10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 0, 10, 100};
  EXPECT_EQ(ui_.ProgressValues, bar);  // the last 100 marks the end of the split

  // With an enormous ratio limit the first pass of each stage already counts as converged.
  ui_.Log.clear();
  Split(RoughProfile(600, 0.1), 0.1, true, {1e300, 10});
  const auto texts = testing::ProgressTexts(ui_);
  EXPECT_EQ(std::ranges::count_if(texts, [](const std::string& text) { return text.find(" / 10 ") != std::string::npos; }), 4);
}

TEST_F(OctaveTest, EmptyOctaveStopsThePeelingAndKeepsTheStoredBands) {
  // At 0.5 m the highest frequency of the transform is about 1 c/m, below 1/0.8: octaves 8 and 9 are
  // empty, and the convergence test of stage 1 divides by a zero deviation.
  ProfileRecord record = Split(RoughProfile(400, 0.5), 0.5);
  ExpectValues(record.Analysis.Octave.Band[8].Values, std::vector<double>(400, 0.0), 0);
  ExpectValues(record.Analysis.Octave.Band[9].Values, std::vector<double>(400, 0.0), 0);
  const OctaveBandSet before = record.Analysis.Octave;
  EXPECT_FALSE(DecomposeProfile(session, record, true, FilterConvergence{1.1, 10}, false));
  EXPECT_EQ(record.Analysis.Octave.Band[3].Values, before.Band[3].Values);
  EXPECT_FALSE(record.Analysis.Octave.Converged);
  EXPECT_EQ(testing::OnlyMessageTitle(ui_), "[ bas計算共通 : Cal_プロファイル分解_収束計算 ]");
  EXPECT_TRUE(std::filesystem::exists(dir_ / "Temp" / "Sorvik_Err.log"));
  EXPECT_EQ(ui_.Log.back().Kind, "progress-exit");
}


std::vector<double> Reduced(double limit, std::vector<double> wave) {
  double lo = 0, hi = 0;
  ReduceHalfWaves(limit, wave, lo, hi);
  return wave;
}

TEST(ReduceHalfWaves, ByHand) {
  const struct { const char* name; double limit; std::vector<double> wave, reduced; } cases[] = {
      // Half-waves: (1, 3, 1) peak 3 → × 2/3; (−1, −4, −2) peak 4 → × 1/2; (0.5) within the line, kept.
      {"above the line scaled to it", 2, {1, 3, 1, -1, -4, -2, 0.5}, {2.0 / 3, 2, 2.0 / 3, -0.5, -2, -1, 0.5}},
      // The 0 splits the negative run in two: (−4) is cut to −1; (0) alone; (−1) equals the line, kept.
      // Were the 0 negative, one half-wave (−4, 0, −1) would give (−1, 0, −0.25).
      {"zero belongs to the positive side", 1, {-4, 0, -1}, {-1, 0, -1}},
      {"no zero crossing is one half-wave", 2.5, {1, 5, 2}, {0.5, 2.5, 1}},
      {"a peak on the line is not above it", 2, {0.3, 2, -2, -0.7}, {0.3, 2, -2, -0.7}},
      {"a line of zero flattens", 0, {1, -2, 3}, {0, 0, 0}},
      // A negative line takes its peak from every sample and turns the half-wave over.
      {"a negative line turns over", -1, {2, 1}, {-1, -0.5}},
      {"empty has the range zero", 1, {}, {}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    // The reduced wave's range is its lowest and highest sample.
    std::vector<double> wave = c.wave, range = c.reduced.empty() ? std::vector<double>{0} : c.reduced;
    double lo = 7, hi = 7;
    ReduceHalfWaves(c.limit, wave, lo, hi);
    ExpectValues(wave, c.reduced);
    EXPECT_NEAR(lo, *std::ranges::min_element(range), 1e-12);
    EXPECT_NEAR(hi, *std::ranges::max_element(range), 1e-12);
  }
}

TEST(RestoreOutsideRange, KeepsOnlyTheHalfWavesThatMeetTheRange) {
  const std::vector<double> original = {1, 2, -1, -3, -1, 2, 4, 2, -1};
  std::vector<double> reduced = Reduced(1, original);
  ExpectValues(reduced, {0.5, 1, -1.0 / 3, -1, -1.0 / 3, 0.5, 1, 0.5, -1});
  // The range 4..4 lies inside the negative half-wave 3..5: that one stays reduced, the rest is put back.
  RestoreOutsideRange(original, reduced, 4, 4);
  ExpectValues(reduced, {1, 2, -1.0 / 3, -1, -1.0 / 3, 2, 4, 2, -1});

  // Half-waves that reach the ends restore nothing there; the range must lie on the wave.
  const std::vector<double> ends = {3, 3, -3, 3, 3};
  reduced = Reduced(1, ends);
  RestoreOutsideRange(ends, reduced, 2, 4);
  ExpectValues(reduced, {1, 1, -1, 1, 1});
  RestoreOutsideRange(ends, reduced, 3, 3);  // only the middle half-wave
  ExpectValues(reduced, {3, 3, -1, 3, 3});
  EXPECT_THROW(RestoreOutsideRange(ends, reduced, 0, 3), LegacyError);
  EXPECT_THROW(RestoreOutsideRange(ends, reduced, 2, 6), LegacyError);
}

OctaveBandSet BandsOf(const std::vector<std::vector<double>>& waves) {
  OctaveBandSet set;
  for (std::size_t k = 1; k <= 9; ++k) set.Band[k].Values = Array1<double>(waves[k - 1]);
  return set;
}

std::array<double, 10> NoLimits() {
  std::array<double, 10> limits;
  limits.fill(NoLimit);
  return limits;
}

class BandReduction : public testing::SessionTest {};

TEST_F(BandReduction, LimitsFromLineTexts) {
  EXPECT_EQ(BandLimitFromText(" 2.5 "), 2.5);
  EXPECT_EQ(BandLimitFromText(""), NoLimit);
  EXPECT_EQ(BandLimitFromText("abc"), NoLimit);
  BandReductionLines lines;
  lines.Value.fill(kNoValue);
  lines.Value[9] = 0.5;
  EXPECT_EQ(BandLimitsFromLines(lines)[2], NoLimit);
  EXPECT_EQ(BandLimitsFromLines(lines)[9], 0.5);
}

TEST_F(BandReduction, ReducesEachBandAndSumsAllNine) {
  std::vector<std::vector<double>> waves(9, std::vector<double>{0, 0, 0, 0});
  waves[0] = {10, 10, 10, 10};  // octave 1, no line: kept
  waves[2] = {1, 4, -2, -1};    // octave 3, line 2: (1, 4) × 1/2, (−2, −1) kept
  waves[8] = {-6, 3, 3, -3};    // octave 9, line 1.5: each half-wave cut to 1.5
  std::array<std::string, 10> texts;
  texts[3] = "2";
  texts[9] = " 1.5";
  BandReductionResult result;
  ASSERT_TRUE(Cal_バンド別低減(session, BandLimitsFromTexts(texts), 4, BandsOf(waves), result));
  ExpectValues(result.Reduced[1].Values, {10, 10, 10, 10}, 0);
  ExpectValues(result.Reduced[3].Values, {0.5, 2, -2, -1});
  ExpectValues(result.Reduced[9].Values, {-1.5, 1.5, 1.5, -1.5});
  ExpectValues(result.Total.Values, {9, 13.5, 9.5, 7.5});
  EXPECT_NEAR(result.Reduced[9].Stats.Minimum, -1.5, 1e-12);
  EXPECT_NEAR(result.Total.Stats.Maximum, 13.5, 1e-12);
  EXPECT_TRUE(result.Total.Calculated);
}

TEST_F(BandReduction, RangeKeepsTheReductionOnTheHalfWavesItMeets) {
  std::vector<std::vector<double>> waves(9, std::vector<double>(6, 0.0));
  waves[4] = {4, 4, -4, -4, 4, 4};  // octave 5, line 1
  std::array<double, 10> limits = NoLimits();
  limits[5] = 1;
  BandReductionResult result;
  ASSERT_TRUE(Cal_バンド別低減(session, limits, 6, BandsOf(waves), result, true, 3, 3));
  ExpectValues(result.Reduced[5].Values, {4, 4, -1, -1, 4, 4});
  ExpectValues(result.Total.Values, {4, 4, -1, -1, 4, 4});
}

TEST_F(BandReduction, BadRangeIsLoggedAndLeavesTheResult) {
  const OctaveBandSet bands = BandsOf(std::vector<std::vector<double>>(9, std::vector<double>{1, -1}));
  BandReductionResult result;
  result.Total.Values = Array1<double>({42});
  EXPECT_FALSE(Cal_バンド別低減(session, NoLimits(), 2, bands, result, true, 1, 5));
  EXPECT_EQ(result.Total.Values, Array1<double>({42}));
  EXPECT_EQ(testing::OnlyMessageTitle(ui_), "[ bas計算共通 : Cal_バンド別低減 ]");
  // Bands shorter than the count asked for are refused the same way.
  EXPECT_FALSE(Cal_バンド別低減(session, NoLimits(), 3, bands, result));
}

}  // namespace
}  // namespace velmora
