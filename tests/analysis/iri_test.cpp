// The quarter-car engine (transition matrix, LU inverse, response and IRI of arrays), the sliding-window
// IRI and the profile layer that fills the analysis block. Golden figures come from
// tools/iri_reference.py (mpmath, independent of this code) or are worked out by hand in the comments.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <random>
#include <span>
#include <vector>

#include "analysis/iri.h"
#include "analysis/iri_window.h"
#include "analysis/quarter_car.h"
#include "profile/erd_file.h"
#include "support/analysis_fixture.h"
#include "support/expect_values.h"
#include "support/session_fixture.h"

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

  const std::vector<double> bandResponse(r.IriResponseBand[3].begin(), r.IriResponseBand[3].end());
  ASSERT_EQ(bandResponse.size(), 47u);
  const WaveSeries& bandWindow = r.IriWindowBand[3];
  ASSERT_EQ(bandWindow.Values.size(), 37);
  EXPECT_DOUBLE_EQ(bandWindow.Values[1], IriPowerMean(bandResponse, 12, 1));
  EXPECT_DOUBLE_EQ(bandWindow.Values[36], IriPowerMean(std::span<const double>(bandResponse).subspan(35), 12, 1));
  EXPECT_EQ(bandWindow.Values[37], 0.0);
  // Nine equal band windows: the root sum of squares is three times one of them.
  for (std::int32_t i = 1; i <= 37; ++i) EXPECT_NEAR(r.IriWindowRss.Values[i], 3 * bandWindow.Values[i], 1e-12);
  EXPECT_EQ(r.IriWindowLong.Values, bandWindow.Values);
  EXPECT_EQ(r.IriWindowShort.Values, bandWindow.Values);
  EXPECT_EQ(r.IriResponseLong, r.IriResponseBand[9]);
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
  EXPECT_TRUE(ars.Iri.IriResponseBand[1].empty());
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

}  // namespace
}  // namespace velmora
