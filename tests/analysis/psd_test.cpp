// Windows, the raw PSD, its smoothing, the ratio of two spectra and what the PSD tab computes.
#include "analysis/psd.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>
#include <vector>

#include "analysis/psd_view.h"
#include "analysis/psd_window.h"
#include "support/analysis_fixture.h"
#include "support/checks.h"
#include "support/expect_values.h"
#include "support/profile_fixture.h"
#include "support/session_fixture.h"

namespace velmora {
namespace {

using testing::ExpectValues;
using testing::Road;

constexpr double kPsdPi = 3.14159265358979;  // the factor of the PSD's definition

Array1<double> Psd(Session& session, const std::vector<double>& x, double dx, int window, bool mirror) {
  Array1<double> out;
  EXPECT_TRUE(PsdCalc(session, static_cast<std::int32_t>(x.size()), Array1<double>(x), dx, window, mirror, out));
  return out;
}

TEST(PsdWindow, HanningAndHammingAndSmallStatisticsByHand) {
  // n = 5: t = 0, π/2, π, 3π/2, 2π, so cos t = 1, 0, −1, 0, 1.
  std::vector<double> w(5);
  MakeWindow(false, w);
  ExpectValues(w, {0, 0.5, 1, 0.5, 0}, 1e-13);
  MakeWindow(true, w);
  ExpectValues(w, {0.08, 0.54, 1, 0.54, 0.08}, 1e-13);
  std::vector<double> three(3);
  MakeWindow(false, three);  // t = 0, π, 2π
  EXPECT_NEAR(three[1], 1.0, 1e-15);
  std::vector<double> one(1);
  EXPECT_THROW(MakeWindow(false, one), LegacyError);
  // The small statistics beside the windows.
  const std::vector<double> a = {1, 2, 3, 4}, b = {2, 0, 1, -1};
  EXPECT_DOUBLE_EQ(SumOfProducts(a, b), 2 + 0 + 3 - 4);
  EXPECT_DOUBLE_EQ(Mean(a), 2.5);
  EXPECT_DOUBLE_EQ(SampleStdDev(a), std::sqrt(5.0 / 3.0));  // squares 2.25 + 0.25 + 0.25 + 2.25 over 3
  EXPECT_THROW(SampleStdDev(std::vector<double>{1}), LegacyError);
}

using PsdTest = testing::SessionTest;

TEST_F(PsdTest, LengthAndImpulseByHand) {
  for (const auto& [n, length] : {std::pair{1, 4}, {2, 4}, {3, 4}, {5, 8}, {1024, 1024}, {1025, 2048}})
    EXPECT_EQ(PsdLength(n), length) << n;
  // An impulse has |c| = 1 in every bin: out = 1 / ((1/0.5) · 4) / 1 · π = π/8.
  ExpectValues(Psd(session, {1, 0, 0, 0}, 0.5, kWindowNone, true), std::vector<double>(4, kPsdPi / 8), 1e-15);
  // Hanning of 4 points: 0, 0.75, 0.75, 0 (cos of 0, 2π/3, 4π/3, 2π); U = 2 · 0.5625 / 4 = 0.28125.
  // The impulse at sample 2 becomes 0.75: out = 0.5625 / 8 / 0.28125 · π = π/4.
  ExpectValues(Psd(session, {0, 1, 0, 0}, 0.5, kWindowHanning, true), std::vector<double>(4, kPsdPi / 4), 1e-13);
}

TEST_F(PsdTest, FoldOrZerosFillTheMissingSamples) {
  // 5 samples → 8. Fold: 2 point-symmetric samples on the left (2·1 − 4, 2·1 − 2) and the first on
  // the right (2·16 − 8): −2, 0, 1, 2, 4, 8, 16, 24. Zeros: 1, 2, 4, 8, 16, 0, 0, 0.
  // Bin 1 is the plain sum, bin 5 the alternating sum; dx = 1, n2 = 8: out = |c|² / 8 · π.
  const std::vector<double> x = {1, 2, 4, 8, 16};
  const Array1<double> folded = Psd(session, x, 1.0, kWindowNone, true);
  EXPECT_NEAR(folded[1], 53.0 * 53 / 8 * kPsdPi, 1e-9);
  EXPECT_NEAR(folded[5], 15.0 * 15 / 8 * kPsdPi, 1e-9);
  const Array1<double> zeros = Psd(session, x, 1.0, kWindowNone, false);
  EXPECT_NEAR(zeros[1], 31.0 * 31 / 8 * kPsdPi, 1e-9);
  EXPECT_NEAR(zeros[5], 11.0 * 11 / 8 * kPsdPi, 1e-9);
  // With a power of two the samples are all there and the fill mode changes nothing.
  const std::vector<double> full = Road(64);
  EXPECT_EQ(Psd(session, full, 0.25, kWindowHamming, true), Psd(session, full, 0.25, kWindowHamming, false));
}

TEST_F(PsdTest, ParsevalHoldsForTheRawSpectrum) {
  // Σ|c|² = n2 · Σz², so Σ out = π · dx · Σz² / U.
  const double dx = 0.25;
  const std::vector<double> x = Road(512);
  const Array1<double> plain = Psd(session, x, dx, kWindowNone, true);
  const double energy = std::inner_product(x.begin(), x.end(), x.begin(), 0.0);
  EXPECT_NEAR(std::accumulate(plain.begin(), plain.end(), 0.0), kPsdPi * dx * energy, 1e-9 * energy);

  std::vector<double> w(512);
  MakeWindow(false, w);
  double windowed = 0, u = 0;
  for (std::size_t i = 0; i < 512; ++i) {
    windowed += (w[i] * x[i]) * (w[i] * x[i]);
    u += w[i] * w[i] / 512;
  }
  const Array1<double> hanning = Psd(session, x, dx, kWindowHanning, true);
  EXPECT_NEAR(std::accumulate(hanning.begin(), hanning.end(), 0.0), kPsdPi * dx * windowed / u, 1e-9 * energy);
}

TEST_F(PsdTest, OneSampleMoreSamplesThanGivenAndAZeroPitchEndThroughTheErrorPath) {
  // Four points at the least: one sample can be neither windowed nor folded out to them.
  Array1<double> out;
  EXPECT_FALSE(PsdCalc(session, 1, Array1<double>({2.0}), 0.5, kWindowHanning, true, out));
  EXPECT_FALSE(PsdCalc(session, 1, Array1<double>({2.0}), 0.5, kWindowNone, true, out));
  EXPECT_EQ(ui_.Messages().at(0).Title, "[ basFFT : subPSD計算用_観音開き作成 ]");  // the fold says why
  EXPECT_FALSE(PsdCalc(session, 4, Array1<double>({1.0, 2.0}), 0.5, kWindowNone, true, out));
  EXPECT_FALSE(PsdCalc(session, 2, Array1<double>({1.0, 2.0}), 0.0, kWindowNone, true, out));
}

void ExpectPairs(const std::vector<PsdPair>& actual, const std::vector<PsdPair>& expected) {
  ASSERT_GE(actual.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(actual[i].Wn, expected[i].Wn, 1e-15) << i;
    EXPECT_NEAR(actual[i].Val, expected[i].Val, 1e-12) << i;
  }
}

TEST(PsdSmoothTest, OneBandPerOctaveByHandAndTheLowEndFollowsTheRawPointsWhileTheirStepIsCoarser) {
  // n2 = 64 at 1 m: df = 1/64, h = 32, raw rows T(k) = (k/64, P(k + 1)) for k = 1..31, T(32) = (0, 0).
  // R = 2: no raw step ratio k/(k−1) is above 2, so the grid doubles: 1, 2, 4, 8, 16, 32, 64 (/64),
  // stopping after the first point past the Nyquist number 0.5. Band starts √2·S(i−1): 1.41, 2.83,
  // 5.66, 11.3, 22.6, 45.3 (/64) → first rows 2, 3, 6, 12, 23, none (33).
  // With P(i) = i: 2; mean P(3) = 3; mean P(4..6) = 5; mean P(7..12) = 9.5; mean P(13..23) = 18;
  // rows 23..32 hold P(24..32) and the empty last row: 252 / 10 = 25.2.
  const std::vector<PsdPair> smooth = SmoothPsdValues(DebugTables{}, Array1<double>(testing::Ramp(64)), 64, 1.0, 1);
  EXPECT_EQ(smooth.size(), 6u);
  ExpectPairs(smooth, {{1.0 / 64, 2}, {2.0 / 64, 3}, {4.0 / 64, 5}, {8.0 / 64, 9.5}, {16.0 / 64, 18}, {32.0 / 64, 25.2}});

  // R = 2^(1/12) ≈ 1.0595: k/(k−1) > R for k ≤ 17, so the first 17 points are the raw ones; the 18th is
  // R times the 17th.
  const std::vector<PsdPair> twelfths = SmoothPsdValues(DebugTables{}, Array1<double>(testing::Ramp(256)), 256, 1.0, 12);
  std::vector<PsdPair> raw;
  for (int k = 1; k <= 17; ++k) raw.push_back({k / 256.0, k + 1.0});
  ExpectPairs(twelfths, raw);
  ASSERT_GT(twelfths.size(), 18u);
  EXPECT_NEAR(twelfths[17].Wn, std::pow(2.0, 1.0 / 12) * 17 / 256, 1e-15);
  EXPECT_LE(twelfths.back().Wn, 0.5);
}

TEST_F(PsdTest, SmoothRunsTheRawSpectrumFirst) {
  const std::vector<double> x = Road(300);
  std::int32_t count = 0;
  std::vector<PsdPair> pairs;
  ASSERT_TRUE(PsdSmooth(session, 300, Array1<double>(x), 0.1, kWindowHanning, true, 12, count, pairs));
  EXPECT_EQ(count, static_cast<std::int32_t>(pairs.size()));
  const Array1<double> raw = Psd(session, x, 0.1, kWindowHanning, true);
  ASSERT_FALSE(pairs.empty());
  EXPECT_NEAR(pairs[0].Wn, 1 / (512 * 0.1), 1e-15);
  EXPECT_EQ(pairs[0].Val, raw[2]);
}

TEST_F(PsdTest, RatioOfTwoSpectraByHand) {
  // countA = 4 at 0.5 m: Wn = k/2 up to 1/(2·0.5) = 1: rows k = 1 and 2.
  std::int32_t count = 0;
  std::vector<PsdPair> pairs;
  ASSERT_TRUE(PsdRatioRaw(session, 4, Array1<double>({9, 4, 1, 16}), 4, Array1<double>({1, 16, 9, 4}), 0.5, count, pairs));
  ASSERT_EQ(count, 2);
  ExpectPairs(pairs, {{0.5, 2.0}, {1.0, 3.0}});  // sqrt(16/4), sqrt(9/1)

  ASSERT_TRUE(PsdRatioRaw(session, 4, Array1<double>({1, 1, 1, 1}), 8, Array1<double>(std::vector<double>(8, 1.0)), 0.5,
                          count, pairs));
  EXPECT_EQ(count, 0);
  EXPECT_TRUE(pairs.empty());
  ASSERT_TRUE(PsdRatioRaw(session, 1, Array1<double>({1}), 1, Array1<double>({1}), 0.5, count, pairs));
  EXPECT_EQ(count, -1);
  EXPECT_TRUE(pairs.empty());

  EXPECT_FALSE(PsdRatioRaw(session, 4, Array1<double>({1, 0, 1, 1}), 4, Array1<double>({1, 1, 1, 1}), 0.5, count, pairs));
  EXPECT_EQ(ui_.Messages().size(), 1u);
}

class PsdTabTest : public testing::SessionTest {
 protected:
  bool Redraw(const std::vector<std::size_t>& selected) { return Redraw_PSD(session, profiles, selected, options, curves); }
  // How often the stored spectra have been computed.
  long Computations() const {
    return std::ranges::count_if(
        ui_.Log, [](const auto& e) { return e.Kind == "progress-start" && e.Title == "パワースペクトル計算"; });
  }

  std::vector<ProfileRecord> profiles = {testing::MakeProfile("a", 0.1, Road(100)),
                                         testing::MakeProfile("b", 0.1, Road(90)),
                                         testing::MakeProfile("c", 0.1, Road(300))};
  PsdTabOptions options;
  std::vector<PsdCurve> curves;
};

TEST_F(PsdTabTest, ComputesStoredSpectraOnceAndDrawsCurves) {
  ASSERT_TRUE(Redraw({0, 2}));
  ASSERT_EQ(curves.size(), 2u);
  EXPECT_EQ(curves[1].Profile, 2u);
  ASSERT_EQ(curves[1].Points.size(), 512u);
  EXPECT_DOUBLE_EQ(curves[1].Points[3].Wn, 3 / (512 * 0.1));
  EXPECT_EQ(curves[1].Points[3].Val, profiles[2].Analysis.Psd.PsdValues[4]);
  EXPECT_TRUE(profiles[1].Analysis.Psd.Calculated);  // every registered profile gets its spectrum
  EXPECT_EQ(Computations(), 1);

  options.Smooth = true;
  ASSERT_TRUE(Redraw({0, 2}));
  EXPECT_EQ(Computations(), 1);  // same window and fill: nothing recomputed
  EXPECT_EQ(curves[0].Points.size(),
            SmoothPsdValues(DebugTables{}, profiles[0].Analysis.Psd.PsdValues, 100, 0.1, 12).size());

  options.WindowKind = kWindowHamming;
  ASSERT_TRUE(Redraw({0, 2}));
  EXPECT_EQ(Computations(), 2);
  EXPECT_EQ(profiles[0].Analysis.Psd.WindowKind, kWindowHamming);
}

TEST_F(PsdTabTest, RatioAgainstTheFirstSelectedProfile) {
  std::vector<double> doubled = Road(100);
  for (double& v : doubled) v *= 2;
  profiles[1] = testing::MakeProfile("b", 0.1, doubled);
  options.Ratio = true;
  ASSERT_TRUE(Redraw({0, 1, 2}));
  ASSERT_EQ(curves.size(), 2u);
  // Twice the profile is four times the power: a gain of 2 at every wave number up to 1/(2·0.1).
  ASSERT_EQ(curves[0].Points.size(), 64u);
  for (const PsdPair& p : curves[0].Points) EXPECT_NEAR(p.Val, 2.0, 1e-9);
  EXPECT_TRUE(curves[1].Points.empty());  // 512 points against 128: no rows

  options.Smooth = true;
  ASSERT_TRUE(Redraw({0, 1}));
  ASSERT_EQ(curves.size(), 1u);
  ASSERT_FALSE(curves[0].Points.empty());
  for (const PsdPair& p : curves[0].Points) EXPECT_NEAR(p.Val, 2.0, 1e-9);
}

TEST_F(PsdTabTest, RefusesBandsPerOctaveBelowOne) {
  options.BandsPerOctave = 0;
  EXPECT_FALSE(Redraw({0}));
  testing::ExpectMessages(ui_, {{"BandsPerOctave値はゼロより大きく指定してください。", "警告"}});
  EXPECT_FALSE(profiles[0].Analysis.Psd.Calculated);
}

}  // namespace
}  // namespace velmora
