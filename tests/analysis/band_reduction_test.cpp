// Half-wave reduction against limit lines, the range restore and the sum of the reduced bands.
#include "analysis/band_reduction.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "base/app_paths.h"
#include "base/common.h"
#include "base/settings.h"
#include "support/expect_values.h"
#include "support/session_fixture.h"
#include "support/test_support.h"

namespace velmora {
namespace {

using testing::ExpectValues;

std::vector<double> Reduced(double limit, std::vector<double> wave, double* lo = nullptr, double* hi = nullptr) {
  double minimum = -1, maximum = -1;
  ReduceHalfWaves(limit, wave, minimum, maximum);
  if (lo) *lo = minimum;
  if (hi) *hi = maximum;
  return wave;
}

struct HalfWaves {
  const char* name;
  double limit;
  std::vector<double> wave, reduced;  // the reduced wave's range is its lowest and highest sample
};
void PrintTo(const HalfWaves& c, std::ostream* out) { *out << c.name; }

class ReduceHalfWavesTest : public ::testing::TestWithParam<HalfWaves> {};

TEST_P(ReduceHalfWavesTest, ByHand) {
  const HalfWaves& c = GetParam();
  double lo = 7, hi = 7;
  ExpectValues(Reduced(c.limit, c.wave, &lo, &hi), c.reduced);
  EXPECT_NEAR(lo, c.reduced.empty() ? 0 : *std::min_element(c.reduced.begin(), c.reduced.end()), 1e-12);
  EXPECT_NEAR(hi, c.reduced.empty() ? 0 : *std::max_element(c.reduced.begin(), c.reduced.end()), 1e-12);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, ReduceHalfWavesTest,
    ::testing::Values(
        // Half-waves: (1, 3, 1) peak 3 → × 2/3; (−1, −4, −2) peak 4 → × 1/2; (0.5) within the line, kept.
        HalfWaves{"AboveTheLineScaledToIt", 2, {1, 3, 1, -1, -4, -2, 0.5}, {2.0 / 3, 2, 2.0 / 3, -0.5, -2, -1, 0.5}},
        // The 0 splits the negative run in two: (−4) is cut to −1; (0) alone; (−1) equals the line, kept.
        // Were the 0 negative, one half-wave (−4, 0, −1) would give (−1, 0, −0.25).
        HalfWaves{"ZeroBelongsToThePositiveSide", 1, {-4, 0, -1}, {-1, 0, -1}},
        HalfWaves{"NoZeroCrossingIsOneHalfWave", 2.5, {1, 5, 2}, {0.5, 2.5, 1}},
        HalfWaves{"APeakOnTheLineIsNotAboveIt", 2, {0.3, 2, -2, -0.7}, {0.3, 2, -2, -0.7}},
        HalfWaves{"ALineOfZeroFlattens", 0, {1, -2, 3}, {0, 0, 0}},
        // A negative line takes its peak from every sample and turns the half-wave over.
        HalfWaves{"ANegativeLineTurnsOver", -1, {2, 1}, {-1, -0.5}},
        HalfWaves{"EmptyHasTheRangeZero", 1, {}, {}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(RestoreOutsideRange, KeepsOnlyTheHalfWavesThatMeetTheRange) {
  const std::vector<double> original = {1, 2, -1, -3, -1, 2, 4, 2, -1};
  std::vector<double> reduced = Reduced(1, original);
  ExpectValues(reduced, {0.5, 1, -1.0 / 3, -1, -1.0 / 3, 0.5, 1, 0.5, -1});
  // The range 4..4 lies inside the negative half-wave 3..5: that one stays reduced, the rest is put back.
  RestoreOutsideRange(original, reduced, 4, 4);
  ExpectValues(reduced, {1, 2, -1.0 / 3, -1, -1.0 / 3, 2, 4, 2, -1});
}

TEST(RestoreOutsideRange, HalfWavesReachingTheEndsRestoreNothingThere) {
  const std::vector<double> original = {3, 3, -3, 3, 3};
  std::vector<double> reduced = Reduced(1, original);  // 1, 1, −1, 1, 1
  RestoreOutsideRange(original, reduced, 2, 4);
  ExpectValues(reduced, {1, 1, -1, 1, 1});
  RestoreOutsideRange(original, reduced, 3, 3);  // only the middle half-wave
  ExpectValues(reduced, {3, 3, -1, 3, 3});
  EXPECT_THROW(RestoreOutsideRange(original, reduced, 0, 3), LegacyError);
  EXPECT_THROW(RestoreOutsideRange(original, reduced, 2, 6), LegacyError);
}

OctaveBandSet BandsOf(const std::vector<std::vector<double>>& waves) {
  OctaveBandSet set;
  for (std::size_t k = 1; k <= 9; ++k) {
    const std::vector<double>& wave = waves[k - 1];
    set.Band[k].Values = Array1<double>(wave);
  }
  return set;
}

class BandReduction : public testing::SessionTest {};

TEST_F(BandReduction, LimitsFromLineTexts) {
  EXPECT_EQ(BandLimitFromText(" 2.5 "), 2.5);
  EXPECT_EQ(BandLimitFromText(""), NoLimit);
  EXPECT_EQ(BandLimitFromText("abc"), NoLimit);
  std::array<std::string, 10> texts;
  texts[3] = "1";
  const auto limits = BandLimitsFromTexts(texts);
  EXPECT_EQ(limits[1], NoLimit);
  EXPECT_EQ(limits[3], 1.0);
  BandReductionLines lines;
  lines.Value.fill(kNoValue);
  lines.Value[9] = 0.5;
  const auto stored = BandLimitsFromLines(lines);
  EXPECT_EQ(stored[2], NoLimit);
  EXPECT_EQ(stored[9], 0.5);
}

TEST_F(BandReduction, ReducesEachBandAndSumsAllNine) {
  testing::ScriptedUi ui(session);
  std::vector<std::vector<double>> waves(9, std::vector<double>{0, 0, 0, 0});
  waves[0] = {10, 10, 10, 10};  // octave 1, no line: kept
  waves[2] = {1, 4, -2, -1};    // octave 3, line 2: (1, 4) × 1/2, (−2, −1) kept
  waves[8] = {-6, 3, 3, -3};    // octave 9, line 1.5: each half-wave cut to 1.5
  const OctaveBandSet bands = BandsOf(waves);
  std::array<std::string, 10> texts;
  texts[3] = "2";
  texts[9] = " 1.5";
  BandReductionResult result;
  ASSERT_TRUE(Cal_バンド別低減(session, BandLimitsFromTexts(texts), 4, bands, result));
  const std::vector<double> third = {0.5, 2, -2, -1}, ninth = {-1.5, 1.5, 1.5, -1.5};
  for (int i = 1; i <= 4; ++i) {
    EXPECT_EQ(result.Reduced[1].Values[i], 10.0);
    EXPECT_NEAR(result.Reduced[3].Values[i], third[static_cast<std::size_t>(i - 1)], 1e-12);
    EXPECT_NEAR(result.Reduced[9].Values[i], ninth[static_cast<std::size_t>(i - 1)], 1e-12);
  }
  const std::vector<double> total = {9, 13.5, 9.5, 7.5};
  for (int i = 1; i <= 4; ++i) EXPECT_NEAR(result.Total.Values[i], total[static_cast<std::size_t>(i - 1)], 1e-12);
  EXPECT_NEAR(result.Reduced[9].Stats.Minimum, -1.5, 1e-12);
  EXPECT_NEAR(result.Total.Stats.Maximum, 13.5, 1e-12);
  EXPECT_TRUE(result.Total.Calculated);
}

TEST_F(BandReduction, RangeKeepsTheReductionOnTheHalfWavesItMeets) {
  testing::ScriptedUi ui(session);
  std::vector<std::vector<double>> waves(9, std::vector<double>(6, 0.0));
  waves[4] = {4, 4, -4, -4, 4, 4};  // octave 5, line 1
  const OctaveBandSet bands = BandsOf(waves);
  std::array<double, 10> limits;
  limits.fill(NoLimit);
  limits[5] = 1;
  BandReductionResult result;
  ASSERT_TRUE(Cal_バンド別低減(session, limits, 6, bands, result, true, 3, 3));
  const std::vector<double> expected = {4, 4, -1, -1, 4, 4};
  for (int i = 1; i <= 6; ++i) {
    EXPECT_NEAR(result.Reduced[5].Values[i], expected[static_cast<std::size_t>(i - 1)], 1e-12);
    EXPECT_NEAR(result.Total.Values[i], expected[static_cast<std::size_t>(i - 1)], 1e-12);
  }
}

TEST_F(BandReduction, BadRangeIsLoggedAndLeavesTheResult) {
  testing::TempDir dir;
  const AppPaths saved = session.Paths;
  session.Paths.TempPath = dir.path().string();
  testing::ScriptedUi ui(session);
  const OctaveBandSet bands = BandsOf(std::vector<std::vector<double>>(9, std::vector<double>{1, -1}));
  std::array<double, 10> limits;
  limits.fill(NoLimit);
  BandReductionResult result;
  result.Total.Values = Array1<double>({42});
  EXPECT_FALSE(Cal_バンド別低減(session, limits, 2, bands, result, true, 1, 5));
  EXPECT_EQ(result.Total.Values, Array1<double>({42}));
  ASSERT_EQ(ui.Messages().size(), 1u);
  EXPECT_EQ(ui.Messages()[0].Title, "[ bas計算共通 : Cal_バンド別低減 ]");
  // Bands shorter than the count asked for are refused the same way.
  EXPECT_FALSE(Cal_バンド別低減(session, limits, 3, bands, result));
  session.Paths = saved;
}

}  // namespace
}  // namespace velmora
