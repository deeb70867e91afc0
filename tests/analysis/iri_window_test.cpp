// The sliding-window IRI and the profile layer that fills the analysis block: window lengths and
// counts, the band windows one sample longer, the root sum of squares and the filter's calculated flag.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <span>
#include <vector>

#include "analysis/iri.h"
#include "analysis/iri_window.h"
#include "support/analysis_fixture.h"
#include "support/expect_values.h"

namespace velmora {
namespace {

// The window as the program first described it: every window summed from scratch, ascending.
std::vector<double> ReferenceWindow(const std::vector<double>& r, std::int32_t count, std::int32_t firstEnd,
                                    int power) {
  std::vector<double> t;
  std::int32_t s = 1, e = firstEnd;
  for (std::int32_t i = 1;; ++i) {
    double sum = 0;
    for (std::int32_t j = s; j <= e; ++j) sum += std::pow(std::fabs(r[static_cast<std::size_t>(j - 1)]), power);
    t.push_back(std::pow(sum / (e - s + 1), 1.0 / power));
    ++s;
    ++e;
    if (e > count || i >= count) break;
  }
  return t;
}

void ExpectMatchesReference(const std::vector<double>& r, std::int32_t firstEnd, int power) {
  const auto count = static_cast<std::int32_t>(r.size());
  const auto fast = SlidingWindowIri(r, count, firstEnd, power);
  const auto slow = ReferenceWindow(r, count, firstEnd, power);
  ASSERT_EQ(fast.size(), slow.size());
  for (std::size_t i = 0; i < fast.size(); ++i)  // relative, absolute where the window is all zeros
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
  EXPECT_EQ(SlidingWindowIri(r, 4, 5, 1).size(), 1u);
  EXPECT_DOUBLE_EQ(SlidingWindowIri(r, 4, 5, 1)[0], 4.8);
  // A window larger than the series is an error, not a read past its end.
  EXPECT_THROW(SlidingWindowIri(r, 5, 6, 1), LegacyError);
  EXPECT_DOUBLE_EQ(IriPowerMean(r, 5, 1), 24.0 / 5);
  EXPECT_DOUBLE_EQ(IriPowerMean(r, 2, 2), std::sqrt(12.5));
  EXPECT_THROW(IriPowerMean(r, 0, 1), LegacyError);
}

TEST(SlidingWindowTest, RunningSumMatchesTheWindowByWindowSumOnLongSeries) {
  // 100,000 responses of a random rough road, windows of 10 m at 0.01 m.
  const std::vector<double> r = testing::GoldenResponse(testing::RandomWalk(100000, 12345), 0.01);
  ExpectMatchesReference(r, 1001, 1);
  ExpectMatchesReference(r, 1002, 2);
}

TEST(SlidingWindowTest, RunningSumSurvivesLargeValuesFollowedByTinyAndZeroOnes) {
  // A rough stretch, then a flat one (exactly 0), then one a billion times smaller.
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> value(-1.0, 1.0);
  std::vector<double> r(100000);
  for (std::size_t i = 0; i < r.size(); ++i) {
    if (i < 30000) r[i] = 1e3 * value(random);
    else if (i < 60000) r[i] = 0;
    else r[i] = 1e-6 * value(random);
  }
  ExpectMatchesReference(r, 997, 1);
  ExpectMatchesReference(r, 997, 2);
  const auto t = SlidingWindowIri(r, 100000, 997, 1);
  EXPECT_EQ(t[40000], 0.0);  // a window of zeros is exactly zero
}

IriParams GoldenWithWindow(double length, std::int32_t power = 0) {
  IriParams p;
  p.InitFilter = 11;
  p.IriBaseLength = length;
  p.PowerWeighting = power;
  return p;
}

TEST(CalcIriProfileTest, WholeProfileWindowAndBandWindowsOneSampleLonger) {
  // 48 samples at 0.25 m: IBASE 1, N' = 47. L = 2.5 m: M = Int((0.125 + 2.5) / 0.25) = 10, so the
  // profile's windows span 11 responses and the bands' 12. Window count 47 - Int(10.1) = 37: the
  // profile fills all 37, the bands 36 and end in a 0.
  const auto profile = testing::Sine(48, 20, 4.0);
  AnalysisBlock block = testing::BlockWithBands(profile, 0.25, testing::Sine(48, 8, 1.0));
  CalcIriProfile(DebugTables{}, block, GoldenWithWindow(2.5), true);
  const IriResults& r = block.Iri;

  ASSERT_EQ(r.IriResponseCount, 47);
  ASSERT_EQ(r.IriWindowCount, 37);
  const std::vector<double> response(r.IriResponseWave.begin(), r.IriResponseWave.end());
  EXPECT_DOUBLE_EQ(r.IriWholeProfile, IriPowerMean(response, 47, 1));
  EXPECT_EQ(response, testing::GoldenResponse(profile, 0.25));

  ASSERT_EQ(r.IriWindowWave.Values.size(), 37);
  EXPECT_DOUBLE_EQ(r.IriWindowWave.Values[1], IriPowerMean(response, 11, 1));
  EXPECT_DOUBLE_EQ(r.IriWindowWave.Values[37],
                   IriPowerMean(std::span<const double>(response).subspan(36), 11, 1));
  EXPECT_TRUE(r.IriWindowWave.Calculated);
  EXPECT_EQ(r.IriWindowWave.DisplayMax, r.IriWindowWave.Stats.Maximum);

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

TEST(CalcIriProfileTest, ArsAndRmsShareOneResponse) {
  const auto profile = testing::Sine(200, 37, 3.0);
  AnalysisBlock ars = testing::BlockWithBands(profile, 0.25, profile), rms = ars;
  CalcIriProfile(DebugTables{}, ars, GoldenWithWindow(5.0, 0), false);
  CalcIriProfile(DebugTables{}, rms, GoldenWithWindow(5.0, 1), false);
  EXPECT_EQ(ars.Iri.IriResponseWave, rms.Iri.IriResponseWave);
  EXPECT_GT(rms.Iri.IriWholeProfile, ars.Iri.IriWholeProfile);
  const std::vector<double> response(rms.Iri.IriResponseWave.begin(), rms.Iri.IriResponseWave.end());
  EXPECT_DOUBLE_EQ(rms.Iri.IriWindowWave.Values[1], IriPowerMean(response, 21, 2));
  // Without bands nothing of the bands is touched.
  EXPECT_FALSE(ars.Iri.IriWindowBand[1].Calculated);
  EXPECT_TRUE(ars.Iri.IriResponseBand[1].empty());
}

TEST(CalcIriProfileTest, BandsThatWereNotSplitAreAClearError) {
  const auto wave = testing::Sine(100, 10, 1.0);
  AnalysisBlock block = testing::BlockWithBands(wave, 0.25, wave);
  block.Octave = OctaveBandSet{};
  EXPECT_THROW(CalcIriProfile(DebugTables{}, block, GoldenWithWindow(5.0), true), LegacyError);
  // A window longer than the profile's response is refused as well.
  EXPECT_THROW(CalcIriProfile(DebugTables{}, block, GoldenWithWindow(50.0), false), LegacyError);
}

TEST(CalcIriFilterTest, SecondCallOnTheSameBlockDoesNothing) {
  const auto wave = testing::Sine(100, 10, 1.0);
  AnalysisBlock block = testing::BlockWithBands(wave, 0.1, wave);
  CalcIriFilter(DebugTables{}, block, GoldenWithWindow(0));
  EXPECT_EQ(block.Iri.IriFilterCount, 97);  // IBASE 3 at 0.1 m
  ASSERT_EQ(block.Iri.IriFilterWave.Values.size(), 97);
  const auto first = block.Iri.IriFilterWave.Values;
  block.Profile.Values[50] += 100;  // a changed profile is not looked at again
  CalcIriFilter(DebugTables{}, block, GoldenWithWindow(0));
  EXPECT_EQ(block.Iri.IriFilterWave.Values, first);
  block.Iri.IriFilterWave.Calculated = false;
  CalcIriFilter(DebugTables{}, block, GoldenWithWindow(0));
  EXPECT_NE(block.Iri.IriFilterWave.Values, first);
}

}  // namespace
}  // namespace velmora
