// Half-wave reduction against limit lines, the range restore and the sum of the reduced bands.
#include "analysis/band_reduction.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "base/common.h"
#include "support/analysis_fixture.h"
#include "support/expect_values.h"
#include "support/session_fixture.h"

namespace velmora {
namespace {

using testing::ExpectValues;

std::vector<double> Reduced(double limit, std::vector<double> wave) {
  double lo = 0, hi = 0;
  ReduceHalfWaves(limit, wave, lo, hi);
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
  std::vector<double> wave = c.wave, range = c.reduced.empty() ? std::vector<double>{0} : c.reduced;
  double lo = 7, hi = 7;
  ReduceHalfWaves(c.limit, wave, lo, hi);
  ExpectValues(wave, c.reduced);
  EXPECT_NEAR(lo, *std::ranges::min_element(range), 1e-12);
  EXPECT_NEAR(hi, *std::ranges::max_element(range), 1e-12);
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
