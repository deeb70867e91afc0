// The quarter-car engine (transition matrix, LU inverse, response and IRI of arrays), the sliding-window
// IRI and the profile layer that fills the analysis block. Golden figures come from
// tools/iri_reference.py (mpmath, independent of this code) or are worked out by hand in the comments.
#include <gtest/gtest.h>

#include <cctype>
#include <functional>
#include <ostream>
#include <span>
#include <string_view>

#include "analysis/fft_filter.h"
#include "analysis/filter.h"
#include "analysis/iri_sections.h"
#include "analysis/iri_window.h"
#include "analysis/moving_average.h"
#include "analysis/octave.h"
#include "analysis/prepare_profile.h"
#include "analysis/psd.h"
#include "analysis/psd_window.h"
#include "analysis/quarter_car.h"
#include "analysis/slope_filter.h"
#include "base/app_paths.h"
#include "base/settings.h"
#include "base/text_encoding.h"
#include "profile/erd_file.h"
#include "support/analysis_fixture.h"
#include "support/checks.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

IriParams GoldenCar(double initFilter, std::int32_t powerWeighting = 0, double windowLength = 10) {
  IriParams p;  // all rates 0: the engine falls back on the golden car
  p.InitFilter = initFilter;
  p.PowerWeighting = powerWeighting;
  p.IriBaseLength = windowLength;
  return p;
}

std::vector<double> Ramp(std::size_t n, double dx, double slope) {
  std::vector<double> y(n);
  for (std::size_t i = 0; i < n; ++i) y[i] = slope * dx * static_cast<double>(i);
  return y;
}

// tools/iri_reference.py: exp(A dt) by mpmath.expm and by eigen-decomposition at 50 digits.
const struct TransitionCase {
  double dx;
  std::array<std::array<double, 4>, 4> st;
  std::array<double, 4> pr;
} kTransitionCases[] = {
    {0.25,
     {{{0.99660706915290878, 0.010915144113348671, -0.0020832747395164562, 0.00031901453108650662},
       {-0.55630449025646506, 0.94387678571627702, -0.8324721017401271, 0.050647008697115303},
       {0.02153175891183214, 0.0021267635405767108, 0.75087136299877365, 0.008221888674476587},
       {3.3350128885106139, 0.33764672464743536, -39.127634918065356, 0.43475639726317044}}},
     {0.0054762055866076759, 1.3887765919965922, 0.22759687808939421, 35.792622029554742}},
    {0.01,
     {{{0.99999363492042283, 0.00044939571851196787, 5.9699769529397853e-6, 6.0423700291119824e-7},
       {-0.02819176096657904, 0.99732143008946747, 0.025561315880572291, 0.0026781748079082991},
       {4.243073803096787e-5, 4.0282466860746549e-6, 0.99951946054269043, 0.00044590593653685351},
       {0.18791731720332366, 0.01785449871938866, -2.129094494260426, 0.98170739256133274}}},
     {3.9510262422598023e-7, 0.0026304450860067497, 0.00043810871927860227, 1.9411771770571023}},
};

TEST(QuarterCarTest, TransitionMatrixMatchesAnIndependentMatrixExponential) {
  for (const auto& tc : kTransitionCases) {
    SCOPED_TRACE(tc.dx);
    Matrix4 a, st;
    Vector4 b, c, pr;
    BuildQuarterCarMatrices(653, 63.3, 6, 0.15, a, b, c);
    BuildTransitionMatrix(tc.dx / (80 / 3.6), a, b, st, pr);
    for (std::size_t i = 1; i <= 4; ++i) {
      for (std::size_t j = 1; j <= 4; ++j) {
        const double expected = tc.st[i - 1][j - 1];
        EXPECT_NEAR(st(i, j), expected, 1e-13 * std::max(1.0, std::fabs(expected))) << i << "," << j;
      }
      EXPECT_NEAR(pr(i), tc.pr[i - 1], 1e-12 * std::max(1.0, std::fabs(tc.pr[i - 1]))) << i;
    }
  }
}

TEST(QuarterCarTest, ZeroStepIsTheIdentityAndReplacesAByItsInverseAndOverflowIsAnError) {
  Matrix4 a, st;
  Vector4 b, c, pr;
  BuildQuarterCarMatrices(653, 63.3, 6, 0.15, a, b, c);
  const Matrix4 original = a;
  BuildTransitionMatrix(0.0, a, b, st, pr);
  EXPECT_EQ(st, Matrix4::Identity());
  for (int i = 1; i <= 4; ++i) {
    EXPECT_NEAR(pr(i), 0.0, 1e-15);
    for (int j = 1; j <= 4; ++j) {
      double product = 0;
      for (int k = 1; k <= 4; ++k) product += original(i, k) * a(k, j);
      EXPECT_NEAR(product, i == j ? 1.0 : 0.0, 1e-12);
    }
  }
  // A series that overflows is an error, not a hang.
  BuildQuarterCarMatrices(653, 63.3, 6, 0.15, a, b, c);
  EXPECT_THROW(BuildTransitionMatrix(1e6, a, b, st, pr), LegacyError);
}

TEST(LuTest, PivotTiesPermutationsAndAZeroRow) {
  // Rows 1 and 2 tie in column 1 (both weigh 1 after scaling): the later row 2 becomes the pivot, d = -1.
  // The inverse of [[1,0],[1,1]] is [[1,0],[-1,1]]; the lower block stays the identity.
  Matrix4 a = Matrix4::Identity(), inverse = Matrix4::Identity();
  a(2, 1) = 1;
  inverse(2, 1) = -1;
  Matrix4 lu = a;
  PivotIndex index{};
  double d = 0;
  EXPECT_TRUE(LuDecompose(lu, index, d));
  EXPECT_EQ(index[1], 2);
  EXPECT_EQ(d, -1.0);
  InvertMatrix(a);
  EXPECT_EQ(a, inverse);
  // [[0,1],[1,0]] ⊕ [[0,2],[0.5,0]] is its own inverse; every column needs a pivot search.
  Matrix4 swap;
  swap(1, 2) = swap(2, 1) = 1;
  swap(3, 4) = 2;
  swap(4, 3) = 0.5;
  const Matrix4 original = swap;
  InvertMatrix(swap);
  EXPECT_EQ(swap, original);
  // A zero row stops the decomposition and the calculation goes on.
  Matrix4 singular = Matrix4::Identity();
  singular(3, 3) = 0;
  lu = singular;
  EXPECT_FALSE(LuDecompose(lu, index, d));
  EXPECT_NO_THROW(InvertMatrix(singular));
  // A model whose unsprung row underflows to zeros is singular; one that reads as 0 becomes the golden car.
  EXPECT_TRUE(QuarterCarIsSingular(IriParams{80, 1e-300, 1e-300, 1e300, 1e-300, 0, 0, 10}));
  EXPECT_FALSE(QuarterCarIsSingular(IriParams{80, 0, 0, 0, 0, 0, 0, 10}));
  EXPECT_FALSE(QuarterCarIsSingular(IriParams{80, 63.3, 6, 0.15, 653, 0, 0, 10}));
}

TEST(IriResponseTest, AnyZeroModelValueSwitchesAllFiveToTheGoldenCar) {
  // Non-zero values, a negative one included, are kept as given; one zero brings in all five.
  for (int zeroAt = -1; zeroAt < 5; ++zeroAt) {
    double values[5] = {500, 50, 5, -0.2, 60};
    if (zeroAt >= 0) values[zeroAt] = 0;
    std::vector<double> y(40, 1.0);
    std::int32_t n = 40;
    double init = 11;
    IriResponse(y, n, 0.25, 0.25, 1.0, init, values[0], values[1], values[2], values[3], values[4]);
    const std::vector<double> expected = zeroAt < 0 ? std::vector<double>{500, 50, 5, -0.2, 60}
                                                    : std::vector<double>{653, 63.3, 6, 0.15, 80};
    EXPECT_EQ(std::vector<double>(values, values + 5), expected) << zeroAt;
    EXPECT_EQ(init, 11);  // not part of the test
  }
}

TEST(IriResponseTest, BaseSamplesFollowThePitchAndShortenTheResponse) {
  // 0.25 m / dx rounded away from zero, raised to 1: 2.5 → 3, 0.83 → 1, 0.25 → 0 → 1, 3.96 → 4.
  for (const auto& [dx, samples] :
       {std::pair{0.25, 1u}, {0.1, 3u}, {0.3, 1u}, {1.0, 1u}, {0.01, 25u}, {0.06306821, 4u}}) {
    EXPECT_EQ(IriBaseSamples(0.25, dx), static_cast<std::int32_t>(samples)) << dx;
    EXPECT_EQ(testing::GoldenResponse(std::vector<double>(100, 0.0), dx).size(), 100 - samples) << dx;
  }
}

TEST(IriResponseTest, RampStartsFromTheSlopeOverKTimesDxAndDecays) {
  // dx 0.25 m, init 0.75 m: K = 4, X(1) = 3·dx·s / (4·dx) = 0.75 s, a quarter of the slope short of
  // the steady state. Figures from tools/iri_reference.py.
  const auto r4 = testing::GoldenResponse(Ramp(12, 0.25, 2.0), 0.25, 0.75);
  EXPECT_NEAR(r4[0], 0.11106033625139327, 1e-13);
  EXPECT_NEAR(r4[1], 0.32940528723706289, 1e-13);
  EXPECT_NEAR(r4[2], 0.50564896728886481, 1e-13);
  // The model is linear and a ramp is its steady state, so the start is proportional to the
  // shortfall s/K: K = 2 (init 0.25 m) gives twice the response of K = 4, K = 1 four times. An
  // initialisation longer than the profile uses the last sample: K = n = 12, X(1) = (y(12) − y(1)) /
  // (12 dx) = 11/12 s, a twelfth short, a third of the K = 4 start.
  for (const auto& [init, factor] : {std::pair{0.25, 2.0}, {0.0, 4.0}, {100.0, 1.0 / 3}}) {
    const auto r = testing::GoldenResponse(Ramp(12, 0.25, 2.0), 0.25, init);
    for (std::size_t i = 0; i < r4.size(); ++i) EXPECT_NEAR(r[i], factor * r4[i], 1e-12) << init;
  }
  // After 400 m the transient has died away.
  const auto longRamp = testing::GoldenResponse(Ramp(2000, 0.25, 2.0), 0.25, 0.0);
  for (std::size_t i = 1600; i < longRamp.size(); ++i) EXPECT_NEAR(longRamp[i], 0.0, 1e-9);
}

TEST(IriOfArrayTest, FlatSineAndProfilesNoLongerThanTheBase) {
  const std::vector<double> flat(500, 123.4);
  EXPECT_EQ(IriOfArray(500, flat, 0.25, GoldenCar(11)), 0.0);
  EXPECT_EQ(IriOfArray(500, flat, 0.01, GoldenCar(11, 1)), 0.0);
  // 5 mm sine of 5 m wavelength, 80 samples at 0.25 m, init 11 m (tools/iri_reference.py).
  const std::vector<double> sine = testing::Sine(80, 20, 5), before = sine;
  EXPECT_NEAR(IriOfArray(80, sine, 0.25, GoldenCar(11, 0)), 4.5850110426171407, 1e-12);
  EXPECT_NEAR(IriOfArray(80, sine, 0.25, GoldenCar(11, 1)), 5.1102440661799208, 1e-12);
  EXPECT_NEAR(IriOfArray(80, sine, 0.25, GoldenCar(11, -3)), 5.1102440661799208, 1e-12);  // any non-zero
  EXPECT_EQ(sine, before);  // the input is left untouched
  const std::vector<double> y(3, 1.0);
  EXPECT_THROW(IriOfArray(3, y, 0.1, GoldenCar(0)), LegacyError);  // IBASE 3, n' = 0
  EXPECT_THROW(IriOfArray(5, y, 0.25, GoldenCar(0)), LegacyError);  // more samples asked than given
  EXPECT_THROW(IriOfArray(3, y, 0.0, GoldenCar(0)), LegacyError);   // a zero pitch overflows the base
}

using IriOfMeasuredProfileTest = testing::SessionTest;

TEST_F(IriOfMeasuredProfileTest, WheelPathsAgreeWithThePublishedIri) {
  const auto folder = testing::SharedDataDir() / "derived";
  if (!std::filesystem::exists(folder / "basic_left_mm.erd")) GTEST_SKIP() << "no measured profiles here";
  // Published 2.888 and 2.573 m/km (183 and 163 in/mi); the reference with the standard start
  // gives 2.8918 and 2.5718. The start over K·dx instead of (K-1)·dx moves the result by far less
  // than 0.001 over 1.6 km.
  const struct { const char* file; double reference; } cases[] = {{"basic_left_mm.erd", 2.8918},
                                                                   {"basic_right_mm.erd", 2.5718}};
  for (const auto& c : cases) {
    ErdRecord erd;
    ASSERT_TRUE(ReadERD(session, (folder / c.file).string(), erd));
    ASSERT_EQ(erd.Elevation.size(), 25544);
    EXPECT_DOUBLE_EQ(erd.StepSize, 0.06306821);
    EXPECT_NEAR(IriOfArray(25544, erd.Elevation.span(), erd.StepSize, GoldenCar(11)), c.reference, 2e-4) << c.file;
  }
}

TEST(SeriesStatsTest, PopulationDeviationOverTheFirstNElements) {
  Array1<double> v{2, 4, 4, 4, 5, 5, 7, 9, 1000};
  SeriesStats s;
  CalcSeriesStats(8, v, s);  // the ninth element is outside n
  EXPECT_EQ(s.Minimum, 2);
  EXPECT_EQ(s.Maximum, 9);
  EXPECT_EQ(s.Mean, 5);
  EXPECT_EQ(s.StdDev, 2);  // sqrt(32 / 8)
  CalcSeriesStats(0, v, s);
  EXPECT_EQ(s.Maximum, 0);
  EXPECT_EQ(s.StdDev, 0);

  WaveSeries w;
  StoreWave(w, Array1<double>{-3, 1});
  EXPECT_TRUE(w.Calculated);
  EXPECT_EQ(w.DisplayMin, -3);
  EXPECT_EQ(w.DisplayMax, 1);
  EXPECT_EQ(w.Stats.Mean, -1);
  EXPECT_EQ(w.Stats.StdDev, 2);
}

// Every window summed from scratch, ascending, held to the running sum within 1e-9 (relative, absolute
// where the window is all zeros).
void ExpectMatchesWindowByWindowSums(const std::vector<double>& r, std::int32_t firstEnd, int power) {
  const auto count = static_cast<std::int32_t>(r.size());
  const auto fast = SlidingWindowIri(r, count, firstEnd, power);
  std::vector<double> slow;
  for (std::int32_t s = 1, e = firstEnd; e <= count || s == 1; ++s, ++e) {
    double sum = 0;
    for (std::int32_t j = s; j <= e; ++j) sum += std::pow(std::fabs(r[static_cast<std::size_t>(j - 1)]), power);
    slow.push_back(std::pow(sum / (e - s + 1), 1.0 / power));
  }
  ASSERT_EQ(fast.size(), slow.size());
  for (std::size_t i = 0; i < fast.size(); ++i)
    ASSERT_LE(std::fabs(fast[i] - slow[i]), 1e-9 * (slow[i] == 0 ? 1 : slow[i])) << "window " << i + 1;
}

TEST(SlidingWindowTest, CountsAndFirstValuesByHand) {
  const std::vector<double> r{3, -4, 0, 5, -12};
  // Window of 2 over 5 elements: 4 windows; ARS |3|,|4| → 3.5; RMS sqrt((9+16)/2).
  testing::ExpectValues(SlidingWindowIri(r, 5, 2, 1), {3.5, 2.0, 2.5, 8.5}, 1e-15);
  // Room asked for beyond the windows is zeros; less than the windows changes nothing.
  testing::ExpectValues(SlidingWindowIri(r, 5, 2, 1, 6), {3.5, 2.0, 2.5, 8.5, 0, 0}, 1e-15);
  testing::ExpectValues(SlidingWindowIri(r, 5, 2, 1, 2), {3.5, 2.0, 2.5, 8.5}, 1e-15);
  const auto rms = SlidingWindowIri(r, 5, 2, 2);
  EXPECT_DOUBLE_EQ(rms[0], std::sqrt(12.5));
  EXPECT_DOUBLE_EQ(rms[3], std::sqrt(84.5));
  // The first window is always taken, even when it ends past the count (here at element 5 of 4).
  testing::ExpectValues(SlidingWindowIri(r, 4, 5, 1), {4.8});
  // A window larger than the series is an error, not a read past its end.
  EXPECT_THROW(SlidingWindowIri(r, 5, 6, 1), LegacyError);
  EXPECT_DOUBLE_EQ(IriPowerMean(r, 5, 1), 24.0 / 5);
  EXPECT_DOUBLE_EQ(IriPowerMean(r, 2, 2), std::sqrt(12.5));
  EXPECT_THROW(IriPowerMean(r, 0, 1), LegacyError);
}

TEST(SlidingWindowTest, RunningSumMatchesTheWindowByWindowSum) {
  // 100,000 responses of a random rough road, windows of 10 m at 0.01 m.
  const std::vector<double> road = testing::GoldenResponse(testing::RandomWalk(100000, 12345), 0.01);
  ExpectMatchesWindowByWindowSums(road, 1001, 1);
  ExpectMatchesWindowByWindowSums(road, 1002, 2);
  // A rough stretch, then a flat one (exactly 0), then one a billion times smaller.
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> value(-1.0, 1.0);
  std::vector<double> r(100000);
  for (std::size_t i = 0; i < r.size(); ++i) r[i] = i < 30000 ? 1e3 * value(random) : i < 60000 ? 0 : 1e-6 * value(random);
  ExpectMatchesWindowByWindowSums(r, 997, 1);
  ExpectMatchesWindowByWindowSums(r, 997, 2);
  EXPECT_EQ(SlidingWindowIri(r, 100000, 997, 1)[40000], 0.0);  // a window of zeros is exactly zero
}

TEST(CalcIriProfileTest, WholeProfileWindowAndBandWindowsOneSampleLonger) {
  // 48 samples at 0.25 m: IBASE 1, N' = 47. L = 2.5 m: M = Int((0.125 + 2.5) / 0.25) = 10, so the
  // profile's windows span 11 responses and the bands' 12. Window count 47 - Int(10.1) = 37: the
  // profile fills all 37, the bands 36 and end in a 0.
  const auto profile = testing::Sine(48, 20, 4.0);
  AnalysisBlock block = testing::BlockWithBands(profile, 0.25, testing::Sine(48, 8, 1.0));
  CalcIriProfile(DebugTables{}, block, GoldenCar(11, 0, 2.5), true);
  const IriResults& r = block.Iri;

  ASSERT_EQ(r.IriResponseCount, 47);
  ASSERT_EQ(r.IriWindowCount, 37);
  const std::vector<double> response(r.IriResponseWave.begin(), r.IriResponseWave.end());
  EXPECT_DOUBLE_EQ(r.IriWholeProfile, IriPowerMean(response, 47, 1));
  EXPECT_EQ(response, testing::GoldenResponse(profile, 0.25));

  ASSERT_EQ(r.IriWindowWave.Values.size(), 37);
  EXPECT_DOUBLE_EQ(r.IriWindowWave.Values[1], IriPowerMean(response, 11, 1));
  EXPECT_DOUBLE_EQ(r.IriWindowWave.Values[37], IriPowerMean(std::span<const double>(response).subspan(36), 11, 1));
  EXPECT_TRUE(r.IriWindowWave.Calculated);

  const SplitWaveIri band3 = IriOfSplitWave(block, GoldenCar(11, 0, 2.5), 3);
  const std::vector<double> bandResponse(band3.Response.begin(), band3.Response.end());
  ASSERT_EQ(bandResponse.size(), 47u);
  EXPECT_EQ(bandResponse, testing::GoldenResponse(testing::Sine(48, 8, 1.0), 0.25));
  const WaveSeries& bandWindow = r.IriWindowBand[3];
  EXPECT_EQ(band3.Window.Values, bandWindow.Values);
  ASSERT_EQ(bandWindow.Values.size(), 37);
  EXPECT_DOUBLE_EQ(bandWindow.Values[1], IriPowerMean(bandResponse, 12, 1));
  EXPECT_DOUBLE_EQ(bandWindow.Values[36], IriPowerMean(std::span<const double>(bandResponse).subspan(35), 12, 1));
  EXPECT_EQ(bandWindow.Values[37], 0.0);
  // Nine equal band windows: the root sum of squares is three times one of them.
  for (std::int32_t i = 1; i <= 37; ++i) EXPECT_NEAR(r.IriWindowRss.Values[i], 3 * bandWindow.Values[i], 1e-12);
  EXPECT_EQ(r.IriWindowLong.Values, bandWindow.Values);
  EXPECT_EQ(r.IriWindowShort.Values, bandWindow.Values);
  EXPECT_EQ(IriOfSplitWave(block, GoldenCar(11, 0, 2.5), kLongSumWave).Response, band3.Response);
}

TEST(CalcIriProfileTest, ArsAndRmsShareOneResponseAndBandsMustBeSplit) {
  const auto profile = testing::Sine(200, 37, 3.0);
  AnalysisBlock ars = testing::BlockWithBands(profile, 0.25, profile), rms = ars;
  CalcIriProfile(DebugTables{}, ars, GoldenCar(11, 0, 5.0), false);
  CalcIriProfile(DebugTables{}, rms, GoldenCar(11, 1, 5.0), false);
  EXPECT_EQ(ars.Iri.IriResponseWave, rms.Iri.IriResponseWave);
  EXPECT_GT(rms.Iri.IriWholeProfile, ars.Iri.IriWholeProfile);
  const std::vector<double> response(rms.Iri.IriResponseWave.begin(), rms.Iri.IriResponseWave.end());
  EXPECT_DOUBLE_EQ(rms.Iri.IriWindowWave.Values[1], IriPowerMean(response, 21, 2));
  // Without bands nothing of the bands is touched.
  EXPECT_FALSE(ars.Iri.IriWindowBand[1].Calculated);
  EXPECT_FALSE(ars.Iri.IriWindowLong.Calculated);
  // Bands that were not split are a clear error; so is a window longer than the profile's response.
  ars.Octave = OctaveBandSet{};
  EXPECT_THROW(CalcIriProfile(DebugTables{}, ars, GoldenCar(11, 0, 5.0), true), LegacyError);
  EXPECT_THROW(CalcIriProfile(DebugTables{}, ars, GoldenCar(11, 0, 50.0), false), LegacyError);
}

TEST(CalcIriFilterTest, SecondCallOnTheSameBlockDoesNothing) {
  const auto wave = testing::Sine(100, 10, 1.0);
  AnalysisBlock block = testing::BlockWithBands(wave, 0.1, wave);
  CalcIriFilter(DebugTables{}, block, GoldenCar(11));
  EXPECT_EQ(block.Iri.IriFilterCount, 97);  // IBASE 3 at 0.1 m
  ASSERT_EQ(block.Iri.IriFilterWave.Values.size(), 97);
  const auto first = block.Iri.IriFilterWave.Values;
  block.Profile.Values[50] += 100;  // a changed profile is not looked at again
  CalcIriFilter(DebugTables{}, block, GoldenCar(11));
  EXPECT_EQ(block.Iri.IriFilterWave.Values, first);
  block.Iri.IriFilterWave.Calculated = false;
  CalcIriFilter(DebugTables{}, block, GoldenCar(11));
  EXPECT_NE(block.Iri.IriFilterWave.Values, first);
}

// The section grid and the fixed 10 m, 100 m, 200 m tables, the length check and the run, and a car
// model that cannot be inverted. The expected tables are worked out by hand in the comments (pitch 1 m
// keeps the arithmetic small).
TEST(NextSectionBoundaryTest, GridLinesAndSampleCountsByHand) {
  const struct { const char* what; double kp, dx; std::int32_t length; bool backwards; double line; std::int32_t count; } cases[] = {
      // 35.3 m at 1 m: first sample rounded up to 36 m; next 10 m line 40 m: 36..40 is 5 samples.
      {"10 m forwards", 0.0353, 1.0, 10, false, 0.04, 5},
      {"100 m forwards", 0.0353, 1.0, 100, false, 0.1, 65},
      {"200 m lines lie on even hundreds", 0.0353, 1.0, 200, false, 0.2, 165},
      // Backwards the line is the one below: 30 m; |30 - 36| / 1 + 1 = 7.
      {"10 m backwards", 0.0353, 1.0, 10, true, 0.03, 7},
      {"a KP on a line: one sample", 1.25, 0.01, 10, false, 1.25, 1},
      // 1250 m: the 100 m line is 1300 (odd), so 1400 forwards and 1200 backwards.
      {"200 m forwards past an odd hundred", 1.25, 0.01, 200, false, 1.4, 15001},
      {"200 m backwards past an odd hundred", 1.25, 0.01, 200, true, 1.2, 5001},
      // 345.6 m backwards: 300, odd hundred, so 200; forwards 400 is already even.
      {"200 m backwards", 0.3456, 0.01, 200, true, 0.2, 14561},
      {"200 m forwards on an even hundred", 0.3456, 0.01, 200, false, 0.4, 5441},
      {"no KP counts as 0, on every grid", kNoValue, 0.01, 100, false, 0.0, 1},
  };
  for (const auto& c : cases) {
    double line = -1;
    std::int32_t count = -1;
    NextSectionBoundary(c.kp, c.dx, c.length, c.backwards, line, count);
    EXPECT_DOUBLE_EQ(line, c.line) << c.what;
    EXPECT_EQ(count, c.count) << c.what;
  }
}

// 250 samples at 1 m from KP 0.0353 km. Response r(i) (signed, alternating) has |r| = 1 up to 64,
// 3 for 65..164, 2 for 165..249 (249 responses: IBASE 1).
std::vector<double> StepResponse() {
  std::vector<double> r(249);
  for (std::size_t k = 0; k < r.size(); ++k) {
    const std::size_t i = k + 1;
    const double magnitude = i <= 64 ? 1.0 : i <= 164 ? 3.0 : 2.0;
    r[k] = i % 2 == 0 ? magnitude : -magnitude;
  }
  return r;
}

SectionIri Sections(bool skip) {
  std::vector<double> values(250);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = 0.5 * static_cast<double>(i);
  const auto response = StepResponse();
  SectionIri result;
  CalcFixedSections(0.0353, 1.0, false, 10.0, 250, values, 249, response, skip, result);
  return result;
}

// How many entries of a section table hold a value.
template <class Table>
long Valued(const Table& table) {
  return std::ranges::count_if(table, [](const SectionEntry& e) { return !IsNoValue(e.Iri); });
}

void ExpectEntry(const SectionEntry& e, std::int32_t count, double kpFrom, double kpTo, double iri,
                 std::int32_t index, std::int16_t partial) {
  EXPECT_EQ(e.Count, count);
  EXPECT_NEAR(e.KpFrom, kpFrom, 1e-12);
  EXPECT_NEAR(e.KpTo, kpTo, 1e-12);
  EXPECT_NEAR(e.Iri, iri, 1e-12);
  EXPECT_EQ(e.Index, index);
  EXPECT_EQ(e.Partial, partial);
}

TEST(CalcFixedSectionsTest, TenMetreSectionsWithShortFirstAndTail) {
  // First section: samples 1..5 (to the 40 m line). Full sections start at 5, 15, ..., 235 (24 of
  // them, 10 samples each, the border sample counted on both sides); the tail starts at 245 with
  // 250 - 245 + 1 = 6 samples. 1 + 24 + 1 = 26 entries.
  const SectionIri s = Sections(false);
  EXPECT_EQ(s.PointCount, 250);
  EXPECT_DOUBLE_EQ(s.KpStart, 0.0353);
  EXPECT_DOUBLE_EQ(s.KpStep, 1.0);
  EXPECT_NEAR(s.Points[1].Kp, 0.0353, 1e-15);
  EXPECT_NEAR(s.Points[1].KpNext, 0.0363, 1e-15);
  EXPECT_NEAR(s.Points[250].Kp, 0.2843, 1e-12);
  EXPECT_EQ(s.Points[3].Value, 1.0);
  ASSERT_EQ(s.SectionCount, 26);
  ExpectEntry(s.Sec10[1], 5, 0.0353, 0.0403, 1.0, 1, -1);
  ExpectEntry(s.Sec10[2], 10, 0.0403, 0.0503, 1.0, 5, 0);
  ExpectEntry(s.Sec10[7], 10, 0.0903, 0.1003, 1.0, 55, 0);   // samples 55..64
  ExpectEntry(s.Sec10[8], 10, 0.1003, 0.1103, 3.0, 65, 0);
  ExpectEntry(s.Sec10[17], 10, 0.1903, 0.2003, 3.0, 155, 0);
  ExpectEntry(s.Sec10[25], 10, 0.2703, 0.2803, 2.0, 235, 0);
  // Tail: responses 245..249 (five of 2) over the six points: 10 / 6, low by design.
  ExpectEntry(s.Sec10[26], 6, 0.2803, 0.2863, 10.0 / 6, 245, -1);
}

TEST(CalcFixedSectionsTest, HundredAndTwoHundredMetreUnitsAreSampleWeightedMeans) {
  const SectionIri s = Sections(false);
  // 100 m: the first unit runs up to the entry that passes the 100 m line (entry 7, to 100.3 m):
  // 5 + 60 samples of 1. Then entries 8..17, exactly 0.1 km: 3. Entries 18..26 never make ten: a
  // short last unit (8 × 10 × 2 + 10) / 86.
  ExpectEntry(s.Sec100[7], 65, 0.0353, 0.1003, 1.0, 1, -1);
  ExpectEntry(s.Sec100[17], 100, 0.1003, 0.2003, 3.0, 65, 0);
  ExpectEntry(s.Sec100[26], 86, 0.2003, 0.2863, 170.0 / 86, 165, -1);
  EXPECT_EQ(Valued(s.Sec100), 3);  // every other slot stays at the no value
  // 200 m: first unit up to the 200 m line (entry 17): (65 + 300) / 165; then a short last unit.
  ExpectEntry(s.Sec200[17], 165, 0.0353, 0.2003, 365.0 / 165, 1, -1);
  ExpectEntry(s.Sec200[26], 86, 0.2003, 0.2863, 170.0 / 86, 165, -1);
  EXPECT_TRUE(IsNoValue(s.Sec200[16].Iri));
}

TEST(CalcFixedSectionsTest, SkippingShortSectionsLeavesNoPartialTenMetreEntry) {
  // Without the first and the tail: 24 full sections in slots 1..24, slot 25 stays empty.
  const SectionIri s = Sections(true);
  ASSERT_EQ(s.SectionCount, 25);
  for (std::int32_t j = 1; j <= 24; ++j) {
    EXPECT_EQ(s.Sec10[j].Partial, 0) << j;
    EXPECT_EQ(s.Sec10[j].Count, 10) << j;
  }
  ExpectEntry(s.Sec10[1], 10, 0.0403, 0.0503, 1.0, 5, 0);
  EXPECT_TRUE(IsNoValue(s.Sec10[25].Iri));
  // 100 m: the first unit (entries 1..6, up to 100.3 m) loses its value; the unit 7..16 is full;
  // the short rest 17..24 is not stored.
  EXPECT_TRUE(IsNoValue(s.Sec100[6].Iri));
  ExpectEntry(s.Sec100[16], 100, 0.1003, 0.2003, 3.0, 65, 0);
  EXPECT_EQ(Valued(s.Sec100), 1);
  EXPECT_EQ(Valued(s.Sec200), 0);
}

TEST(CalcFixedSectionsTest, BackwardsKpRunsDownAndSectionsFollowIt) {
  // From 0.0353 km backwards: the 10 m line is 30 m, 7 samples (36 → 30 by the count rule).
  std::vector<double> values(40, 0.0);
  std::vector<double> response(39, 2.0);
  SectionIri s;
  CalcFixedSections(0.0353, 1.0, true, 10.0, 40, values, 39, response, false, s);
  EXPECT_DOUBLE_EQ(s.KpStep, -1.0);
  EXPECT_NEAR(s.Points[2].Kp, 0.0343, 1e-15);
  // First 1..7; full sections start at 7, 17, 27; the start 37 still lies on the profile and begins
  // the tail of 40 - 37 + 1 = 4 samples, of which responses 37..39 exist: 6 / 4.
  ASSERT_EQ(s.SectionCount, 5);
  ExpectEntry(s.Sec10[1], 7, 0.0353, 0.0283, 2.0, 1, -1);
  ExpectEntry(s.Sec10[2], 10, 0.0283, 0.0183, 2.0, 7, 0);
  ExpectEntry(s.Sec10[4], 10, 0.0083, -0.0017, 2.0, 27, 0);
  ExpectEntry(s.Sec10[5], 4, -0.0017, -0.0057, 1.5, 37, -1);
  // The 100 m line below 35.3 m is 0 km: entry 4 passes it and closes the first unit; entry 5 alone
  // is the short last unit.
  ExpectEntry(s.Sec100[4], 37, 0.0353, -0.0017, 2.0, 1, -1);
  ExpectEntry(s.Sec100[5], 4, -0.0017, -0.0057, 1.5, 37, -1);
}

TEST(CalcFixedSectionsTest, TablesListEveryTenMetreEntryAndTheUnits) {
  // A head line and a column line before each table: 26 entries of 10 m, three 100 m units, one 200 m.
  const auto lines = SectionTableLines(Sections(false));
  ASSERT_EQ(lines.size(), 2u + 26 + 2 + 3 + 2 + 2);
  EXPECT_EQ(lines[2], "1,0.03530,0.04030,1,5,1.00000000,,");
  EXPECT_EQ(lines[2 + 16], "17,0.19030,0.20030,155,10,3.00000000,3.00000000,2.21212121");
  EXPECT_EQ(lines[30], "1,0.03530,0.10030,1,65,1.00000000");
  EXPECT_EQ(lines[32], "3,0.20030,0.28630,165,86,1.97674419");
  EXPECT_EQ(lines[33], "<< 200m固定 >>");
}

TEST(CalcFixedSectionsTest, BadInputIsRefusedWithAnError) {
  std::vector<double> values(10, 0.0), response(9, 1.0);
  SectionIri s;
  EXPECT_THROW(CalcFixedSections(0, 1.0, false, 0.2, 10, values, 9, response, false, s), LegacyError);
  EXPECT_THROW(CalcFixedSections(0, 1.0, false, 10, 11, values, 9, response, false, s), LegacyError);
}

// A registered profile whose octave split is already there: each band a ninth of the road.
ProfileRecord Profile(double pitch, int count, double kp = kNoValue) {
  ProfileRecord p = testing::MakeProfile("p", pitch, testing::Road(count), kp);
  std::vector<double> ninth = testing::Road(count);
  for (double& v : ninth) v /= 9;
  p.Analysis = testing::BlockWithBands(testing::Road(count), pitch, ninth);
  return p;
}

using CheckIriLengthTest = testing::SessionTest;

TEST_F(CheckIriLengthTest, MessagesForBlankTextNumbersAndLimits) {
  // A: 0.01 m, 1000 samples, IBASE 25, 975 usable. B: 0.05 m, 300 samples, IBASE 5, 295 usable.
  ProfileRecord a = Profile(0.01, 1000), b = Profile(0.05, 300);
  std::vector<ProfileRecord*> list{&a, &b};
  const struct { const char* text; const char* message; } refused[] = {{"  ", "IRIの評価値が指定されていません。"},
                 {"10m", "IRIの評価値は数値で指定して下さい。"},
                 {"0.04", "0.05 以上で指定して下さい。"},
                 {"14.71", "14.7 以下で指定して下さい。"}};  // (295 - 1) × 0.05
  for (const auto& c : refused) {
    ui_.Log.clear();
    double value = -1;
    EXPECT_FALSE(CheckIriLength(session, c.text, list, value)) << c.text;
    testing::ExpectMessages(ui_, {{c.message, "警告"}});
    EXPECT_EQ(value, -1);
  }
  ui_.Log.clear();
  double value = 0;
  EXPECT_TRUE(CheckIriLength(session, " 14.7 ", list, value));
  EXPECT_EQ(value, 14.7);
  EXPECT_TRUE(ui_.Messages().empty());
  // The limit takes the last profile's pitch, not that of the shortest one: 294 × 0.01.
  std::vector<ProfileRecord*> reversed{&b, &a};
  EXPECT_FALSE(CheckIriLength(session, "3", reversed, value));
  EXPECT_EQ(ui_.OnlyMessageText(), "2.94 以下で指定して下さい。");
}

using RunIriTest = testing::SessionTest;

TEST_F(RunIriTest, ComputesSelectedProfilesAndRecomputesOnlyWhenTheLengthChanges) {
  ProfileRecord a = Profile(0.25, 400, 1.0), b = Profile(0.25, 300);
  std::vector<ProfileRecord*> list{&a, &b};
  std::vector<ProfileRecord*> selected{&a};
  IriRunRequest request{"10", IriParams{}, false, false, FilterConvergence{}};
  request.Params.InitFilter = 11;
  double last = kNoValue;
  ASSERT_TRUE(RunIri(session, list, selected, request, last));
  EXPECT_EQ(last, 10.0);
  ASSERT_FALSE(ui_.Log.empty());
  EXPECT_EQ(ui_.Log.front().Title, "ＩＲＩ計算");
  EXPECT_EQ(ui_.Log.back().Kind, "progress-exit");
  EXPECT_EQ(ui_.ProgressValues.back(), 100);
  EXPECT_TRUE(a.Analysis.Iri.IriWindowWave.Calculated);
  EXPECT_FALSE(b.Analysis.Iri.IriWindowWave.Calculated);
  EXPECT_EQ(a.Analysis.Iri.IriWindowCount, 399 - 40);
  EXPECT_TRUE(a.Analysis.Iri.IriWindowBand[9].Calculated);
  EXPECT_DOUBLE_EQ(a.Analysis.Sections.KpStart, 1.0);
  EXPECT_EQ(a.Analysis.Sections.Sec10[1].Count, 1);  // KP on the grid line
  EXPECT_EQ(a.Analysis.Sections.Sec10[2].Count, 40);

  // Same length: the stored responses stay (a marker survives), the sections follow the option.
  a.Analysis.Iri.IriWholeProfile = 123.0;
  request.SkipPartialSections = true;
  ASSERT_TRUE(RunIri(session, list, selected, request, last));
  EXPECT_EQ(a.Analysis.Iri.IriWholeProfile, 123.0);
  EXPECT_EQ(a.Analysis.Sections.Sec10[1].Partial, 0);
  // A new length recomputes.
  request.LengthText = "20";
  ASSERT_TRUE(RunIri(session, list, selected, request, last));
  EXPECT_NE(a.Analysis.Iri.IriWholeProfile, 123.0);
  EXPECT_EQ(a.Analysis.Iri.IriWindowCount, 399 - 80);
  // A refused length runs nothing and keeps the last length.
  request.LengthText = "abc";
  EXPECT_FALSE(RunIri(session, list, selected, request, last));
  EXPECT_EQ(last, 20.0);
}

TEST_F(RunIriTest, MissingBandSplitIsMadeFirstAndABandWindowAloneIsTheRunsOwn) {
  // A profile as read, not yet prepared: the run prepares and splits it, then takes the band IRI.
  ProfileRecord p = testing::MakeProfile("road", 0.25, testing::Road(800));
  std::vector<ProfileRecord*> list{&p};
  IriRunRequest request{"10", IriParams{}, false, false, FilterConvergence{}};
  double last = kNoValue;
  ASSERT_TRUE(RunIri(session, list, list, request, last));
  EXPECT_TRUE(p.Analysis.Octave.Calculated);
  EXPECT_TRUE(p.Analysis.Iri.IriWindowRss.Calculated);
  EXPECT_GT(p.Analysis.Iri.IriWindowRss.Stats.Maximum, 0.0);
  EXPECT_EQ(p.Analysis.Iri.IriWindowCount, 799 - 40);

  // The window of one band alone, for a file that keeps no responses, is the window the run with bands
  // keeps: the same response, and a window that starts one sample later than the profile's.
  IriParams params = request.Params;
  params.IriBaseLength = 10;
  for (const std::size_t k : {1u, 5u, 9u}) {
    const WaveSeries alone = IriOfDerivedWave(p.Analysis, p.Analysis.Octave.Band[k].Values, params).Window;
    EXPECT_EQ(alone.Values, p.Analysis.Iri.IriWindowBand[k].Values) << k;
    EXPECT_TRUE(alone.Calculated) << k;
  }
  // Its own window is not the profile's: fed the profile itself, it starts one sample later.
  const WaveSeries shifted = IriOfDerivedWave(p.Analysis, p.Analysis.Profile.Values, params).Window;
  ASSERT_EQ(shifted.Values.size(), p.Analysis.Iri.IriWindowWave.Values.size());
  EXPECT_NE(shifted.Values, p.Analysis.Iri.IriWindowWave.Values);
}

// Every rate tiny and the unsprung mass huge: the model's last row underflows to zeros. It is said once
// by the run, inside its progress, and the engine goes on with it.
TEST_F(RunIriTest, ASingularCarIsSaidOnceByTheIriRunAndTheIriFilterOnly) {
  const IriParams singular{80, 1e-300, 1e-300, 1e300, 1e-300, 0, 0, 10};
  const auto expectSaidOnce = [&] { testing::ExpectMessages(ui_, {{"Singular matrix", "", MsgIcon::None}}); };
  ProfileRecord road = testing::MakeProfile("road", 0.25, testing::Road(400));
  ProfileRecord other = testing::MakeProfile("other", 0.25, testing::Road(400, 9));
  std::vector<ProfileRecord*> list{&road, &other};
  double last = kNoValue;
  RunIri(session, list, list, IriRunRequest{"10", singular, false, false, FilterConvergence{}}, last);
  expectSaidOnce();

  FilterSpec filter;
  for (const FilterCalcType type : {FilterCalcType::Iri, FilterCalcType::Slope}) {
    ui_.Log.clear();
    filter.CalcType = type;
    PrepareProfile(DebugTables{}, road);
    RunFilter(session, filter, true, {&road}, singular, FilterConvergence{});
    if (type == FilterCalcType::Iri) expectSaidOnce();
    else EXPECT_TRUE(ui_.Messages().empty());
  }
}

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

TEST_F(FilterTest, SlopesOfRoadsAtAndBeyondTheOld16BitCounterAreThoseOfThePlainLoop) {
  // 32,767 samples was the most the old counter took; 40,001 is a 400 m road at 1 cm.
  for (const std::int32_t n : {32767, 40001}) {
    SCOPED_TRACE(n);
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

// The intermediate tables the computations write into the Debug folder: none while debugging is off,
// and when it is on each file in Shift-JIS with CR LF, its head, its length and the rows worked out by
// hand. One case per computation.
constexpr std::size_t kEveryRow = static_cast<std::size_t>(-1);

// A row as written, or a pattern of it: "…" stands for any text, "#" for one digit.
bool Matches(std::string_view pattern, std::string_view text) {
  constexpr std::string_view kAny = "…";
  if (pattern.starts_with(kAny)) {
    pattern.remove_prefix(kAny.size());
    for (std::size_t skip = 0; skip <= text.size(); ++skip)
      if (Matches(pattern, text.substr(skip))) return true;
    return false;
  }
  if (pattern.empty() || text.empty()) return pattern.empty() && text.empty();
  const bool same = pattern[0] == '#' ? std::isdigit(static_cast<unsigned char>(text[0])) != 0 : pattern[0] == text[0];
  return same && Matches(pattern.substr(1), text.substr(1));
}

struct Table {
  std::string file;
  std::size_t lines;                                     // 0: only that it is there
  std::vector<std::pair<std::size_t, std::string>> rows;  // row (0 the head) or kEveryRow after the head
};

struct DebugCase {
  const char* name;
  bool bySwitch;  // the PSD follows the debug switch of the paths, the others DebugLevel
  std::function<void(Session&)> run;
  std::vector<Table> tables;
};
void PrintTo(const DebugCase& c, std::ostream* out) { *out << c.name; }

class DebugTablesTest : public testing::SessionTest, public ::testing::WithParamInterface<DebugCase> {};

TEST_P(DebugTablesTest, WrittenOnlyWhenAskedForWithTheirHeadsAndHandRows) {
  const DebugCase& c = GetParam();
  const auto debug = dir_ / "Debug";
  c.run(session);
  EXPECT_FALSE(std::filesystem::exists(debug)) << "debugging off";

  if (c.bySwitch) session.Paths.DebugSwitch = true;
  else session.Settings.DebugLevel = 1;
  c.run(session);
  for (const Table& table : c.tables) {
    SCOPED_TRACE(table.file);
    ASSERT_TRUE(std::filesystem::exists(debug / table.file));
    const std::string bytes = testing::ReadBytes(debug / table.file);
    EXPECT_TRUE(bytes.ends_with("\r\n"));
    EXPECT_EQ(bytes.find("\n"), bytes.find("\r\n") + 1) << "lines end in CR LF";
    const auto lines = ReadSystemTextLines(debug / table.file);
    if (table.lines > 0) { EXPECT_EQ(lines.size(), table.lines); }
    for (const auto& [row, pattern] : table.rows) {
      if (row != kEveryRow) {
        ASSERT_LT(row, lines.size());
        EXPECT_TRUE(Matches(pattern, lines[row])) << "row " << row << ": " << lines[row] << "\n  expected " << pattern;
      } else {
        for (std::size_t r = 1; r < lines.size(); ++r)
          ASSERT_TRUE(Matches(pattern, lines[r])) << "row " << r << ": " << lines[r] << "\n  expected " << pattern;
      }
    }
  }
}

void Fold(Session& session) {
  Array1<double> dest;
  std::int32_t count = 0;
  MirrorExtend(DebugTablesOf(session), true, 1, 3, Array1<double>({1, 2, 4}), count, dest);
  MirrorExtend(DebugTablesOf(session), false, 1, 3, Array1<double>({1, 2, 4}), count, dest, "観音開きデータ(移動平均フィルター).csv");
}

void FourierHiPass(Session& session) {
  std::int32_t seq = 0;
  WaveSeries result, other;  // N = 8: lengths 8 and 16
  Cal_FFTフィルタ_単体処理(session, seq, 0, 8, 8, 16, 1.0, FilterKind::HiPass, 10, 2, Array1<double>({1, 2, 4, 7, 11, 16, 22, 29}),
                    result, other);
}

void IriOfAWave(Session& session) {
  const std::vector<double> wave = testing::Sine(48, 20, 4);  // 48 samples at 0.25 m
  AnalysisBlock block = testing::BlockWithBands(wave, 0.25, wave);
  IriParams params;
  params.InitFilter = 11;
  CalcIriFilter(DebugTablesOf(session), block, params);
  params.IriBaseLength = 2.5;
  CalcIriProfile(DebugTablesOf(session), block, params, false);
}

void SmoothedPsd(Session& session) {
  std::int32_t count = 0;
  std::vector<PsdPair> pairs;
  PsdSmooth(session, 100, Array1<double>(testing::Road(100)), 0.1, kWindowHanning, true, 3, count, pairs);
}

void OctaveSplit(Session& session) {
  ProfileRecord record = testing::MakeProfile("road", 0.1, testing::Road(300));
  DecomposeProfile(session, record, false, FilterConvergence{});
}

INSTANTIATE_TEST_SUITE_P(
    Computations, DebugTablesTest,
    ::testing::Values(
        // Point fold of (1, 2, 4) by one: 2·1 − 2, then the samples, then 2·4 − 2; the line fold ends in 2.
        DebugCase{"MirrorFold", false, Fold,
                  {{"観音開きデータ.csv", 6,
                    {{0, "No, 観音開個数折り返し個数 = 1"}, {1, "1,0.000000000000000"}, {2, "2,1.000000000000000"},
                     {3, "3,2.000000000000000"}, {4, "4,4.000000000000000"}, {5, "5,6.000000000000000"}}},
                   {"観音開きデータ(移動平均フィルター).csv", 6, {{5, "5,2.000000000000000"}}}}},
        // Long cut 2 m at 0.5 m: window 4, mean of sample 2 is 1.75, so 2 − 1.75 passes.
        DebugCase{"MovingAverage", false,
                  [](Session& session) { MovingAverageFilter(DebugTablesOf(session), 5, Array1<double>({1, 2, 4, 7, 11}), 0.5, FilterKind::HiPass, 2, 1.5); },
                  {{"Filter.csv", 6,
                    {{0, "No, Dist, Profile, Filter[移動平均](HiPass)"}, {2, "2,0.500,2.000000000000000,0.250000000000000"}}},
                   {"観音開きデータ(移動平均フィルター).csv", 0, {}}}},
        DebugCase{"FourierFilter", false, FourierHiPass,
                  {{"001_FFTフィルタ_収束回数=00_Profile.csv", 9, {{0, "No, Profile"}, {8, "8,29.000000"}}},
                   // Element 1 is judged at 16 m, not below 10 m; element 2 by its own harmonic at 8 m.
                   {"002_FFTフィルタ用Filter LongCutFil=10.000  ShrtCutFil=2.000 ( HiPass ).dat", 16,
                    {{0, "***** ******* *******  0"}, {1, "00002 0.06250 16.00000  1"}, {15, "00016 0.06250 16.00000  1"}}},
                   {"003_FFTフィルタ結果 LongCutFil=10.000  ShrtCutFil=2.000 ( HiPass ).csv", 9,
                    {{0, "No, Dist, Profile, Filter[FFT](HiPass), Filter[FFT]_Other, (Prof-FFT1-FFT2)"},
                     {2, "2,1.000,2.000000000000000,…"}}}}},
        // 48 samples, IBASE 1: 47 responses; the 2.5 m windows span 11 of them, 37 windows.
        DebugCase{"IriFilterAndWindow", false, IriOfAWave,
                  {{"IRI_Filter.csv", 48, {{0, "No, IRI Filter(10m)"}, {1, "1,…#.###############"}}},
                   {"IRI_GETPI(2.50m).csv", 48, {{0, "No, IRI_GETPI(*)"}}},
                   {"IRI(2.50m).csv", 38, {{0, "No, Dist, Profile, IRI(10m)"}, {2, "2,0.500,…"}}}}},
        // 100 samples fold out to 128: 128 rows; h = 64 rows of smoothing, the last behind the smoothed ones.
        DebugCase{"Psd", true, SmoothedPsd,
                  {{"PSD.csv", 129, {{0, "No, Profile, 窓関数, Profile*窓関数, ABS(FFT), PSD値, f(Hz)"}, {1, "1,…"}}},
                   {"PSD平滑化.csv", 65,
                    {{0, "No, WN, PSD, WN比, WN比判定, 平滑化WN(X軸), B-Start, 自至内最小行, 平滑化PSD(Y軸)"}, {64, "…,,,"}}}}},
        // 300 samples: FftLength2 1024; the nine bands sum back to the profile in every row.
        DebugCase{"OctaveSplit", false, OctaveSplit,
                  {{"BandFilter.dat", 1 + 1024, {}},
                   {"Profile.csv", 301, {}},
                   {"001_FFT_(0)_収束回数=00_Profile.csv", 0, {}},
                   {"002_FFT_(0)_収束回数=00_[OCT1～OCT9].csv", 301,
                    {{0, "No, Profile, OCT-1, OCT-2, OCT-3, OCT-4, OCT-5, OCT-6, OCT-7, OCT-8, OCT-9, SUM(OCT1:OCT9), "
                         "Abs(Profile-SUM)"},
                     {kEveryRow, "…,0.000000000######"}}}}}),
    [](const auto& info) { return std::string(info.param.name); });
}  // namespace
}  // namespace velmora
