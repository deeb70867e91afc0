#include "analysis/fft_filter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <vector>

#include "analysis/fft.h"
#include "base/app_paths.h"
#include "base/settings.h"
#include "base/text_encoding.h"
#include "support/analysis_fixture.h"
#include "support/expect_values.h"
#include "support/literal_pass.h"
#include "support/session_fixture.h"
#include "support/test_support.h"

namespace velmora {
namespace {

using testing::ExpectValues;
using Mask = std::vector<std::uint8_t>;

Mask MaskOf(std::int32_t n, double dx, FilterKind kind, double longCut, double shortCut) {
  Array1<std::uint8_t> mask;
  MakeFilterMaskOfKind(n, dx, kind, longCut, shortCut, mask);
  return mask.vector();
}

Array1<double> RandomProfile(std::int32_t n, unsigned seed) { return Array1<double>(testing::RandomWalk(n, seed)); }

bool SameBits(const Array1<double>& a, const Array1<double>& b) {
  return a.size() == b.size() &&
         std::memcmp(a.data(), b.data(), static_cast<std::size_t>(a.size()) * sizeof(double)) == 0;
}

class FftFilterTest : public testing::SessionTest {
 protected:
  // One pass with the lengths of n samples.
  bool Single(FilterKind kind, double longCut, double shortCut, const Array1<double>& source, double dx,
              WaveSeries& result, WaveSeries& other) {
    const auto n = static_cast<std::int32_t>(source.size());
    std::int32_t seq = 0;
    return Cal_FFTフィルタ_単体処理(session, seq, 0, n, FftLength1(n), FftLength2(n), dx, kind, longCut, shortCut, source,
                              result, other);
  }
  bool Converge(FilterKind kind, double longCut, double shortCut, const Array1<double>& source, double dx,
                WaveSeries& result, FilterConvergence limits) {
    const auto n = static_cast<std::int32_t>(source.size());
    return Cal_FFTフィルタ_収束計算(session, n, FftLength1(n), FftLength2(n), dx, kind, longCut, shortCut, source, result,
                              limits);
  }
};

TEST_F(FftFilterTest, MaskJudgesEachElementOneBinAboveItsHarmonic) {
  // n = 8, dx = 1 m: elements 1..5 are judged by j = 1..5 (wavelengths 8, 4, 2.67, 2, 1.6 m), elements
  // 6..8 by j = 4, 3, 2 (2, 2.67, 4 m). Bounds are [lower, upper).
  EXPECT_EQ(MaskOf(8, 1.0, FilterKind::HiPass, 3, 0), (Mask{0, 0, 1, 1, 1, 1, 1, 0}));
  EXPECT_EQ(MaskOf(8, 1.0, FilterKind::LowPass, 0, 3), (Mask{1, 1, 0, 0, 0, 0, 0, 1}));
  EXPECT_EQ(MaskOf(8, 1.0, FilterKind::BandPass, 4, 2), (Mask{0, 0, 1, 1, 0, 1, 1, 0}));
  EXPECT_EQ(MaskOf(8, 1.0, FilterKind::BandCut, 4, 2), (Mask{1, 1, 0, 0, 1, 0, 0, 1}));
  // The pitch scales every wavelength: at 0.5 m the same mask needs half the cut-off.
  EXPECT_EQ(MaskOf(8, 0.5, FilterKind::HiPass, 1.5, 0), (Mask{0, 0, 1, 1, 1, 1, 1, 0}));

  Array1<std::uint8_t> mask{1, 0, 0, 1, 7};
  InvertFilterMask(4, mask);
  EXPECT_EQ(mask.vector(), (Mask{0, 1, 1, 0, 7}));  // element 5 lies beyond n
}

TEST_F(FftFilterTest, AConstantProfileIsAllLongestWave) {
  // Both folds keep a constant; its only bin is element 1, judged at the whole length 32 m.
  const Array1<double> flat(std::vector<double>(10, 2.5));
  const struct { FilterKind kind; double longCut, shortCut, passed; } cases[] = {
      {FilterKind::HiPass, 10, 0, 0.0}, {FilterKind::LowPass, 0, 10, 2.5}, {FilterKind::BandPass, 40, 10, 2.5},
      {FilterKind::BandPass, 20, 10, 0.0}, {FilterKind::BandCut, 20, 10, 2.5}};
  for (const auto& c : cases) {
    WaveSeries result, other;
    SCOPED_TRACE(FilterKindName(c.kind));
    ASSERT_TRUE(Single(c.kind, c.longCut, c.shortCut, flat, 1.0, result, other));
    ExpectValues(result.Values, std::vector<double>(10, c.passed));
    ExpectValues(other.Values, std::vector<double>(10, 2.5 - c.passed));
    EXPECT_TRUE(result.Calculated);
    EXPECT_NEAR(result.Stats.Mean, c.passed, 1e-12);
  }
}

TEST_F(FftFilterTest, PassAndRemainderRebuildTheProfile) {
  const Array1<double> profile = RandomProfile(1000, 7);
  for (FilterKind kind : {FilterKind::HiPass, FilterKind::LowPass, FilterKind::BandPass, FilterKind::BandCut}) {
    WaveSeries result, other;
    ASSERT_TRUE(Single(kind, 20.0, 2.0, profile, 0.25, result, other));
    for (int i = 1; i <= 1000; ++i)
      ASSERT_NEAR(result.Values[i] + other.Values[i], profile[i], 1e-9) << FilterKindName(kind) << " " << i;
    EXPECT_DOUBLE_EQ(result.DisplayMax, result.Stats.Maximum);
  }
}

TEST_F(FftFilterTest, APassIsTheLiteralComplexStepsWithinRounding) {
  // Fold, complex transform of the whole length, scale, mask, complex inverse, real part: the pass
  // takes half-length real transforms instead and must agree far inside 1e-9 of the profile's range.
  for (const std::int32_t n : {1000, 1024, 7}) {
    const Array1<double> profile = RandomProfile(n, static_cast<unsigned>(n));
    for (FilterKind kind : {FilterKind::HiPass, FilterKind::BandCut}) {
      WaveSeries result, other;
      ASSERT_TRUE(Single(kind, 20.0, 2.0, profile, 0.25, result, other));
      Array1<std::uint8_t> mask;
      MakeFilterMaskOfKind(FftLength2(n), 0.25, kind, 20.0, 2.0, mask);
      const std::vector<double> literal = testing::LiteralMaskedPass(n, profile, mask);
      EXPECT_LT(testing::WorstRelativeToRange(result.Values, literal, profile), 1e-12) << FilterKindName(kind) << " n " << n;
    }
  }
}

TEST_F(FftFilterTest, SeparatesAShortWaveFromALongOne) {
  // 40 m swell of 100 mm plus a 2 m ripple of 5 mm at 0.1 m pitch; cut at 10 m. Away from the ends
  // (where the folds bend the swell) each side keeps only its own wave.
  const std::vector<double> swell = testing::Sine(3000, 400, 100, M_PI / 2), ripple = testing::Sine(3000, 20, 5);
  Array1<double> profile(3000);
  for (int i = 1; i <= 3000; ++i) profile[i] = swell[i - 1] + ripple[i - 1];
  WaveSeries high, low;
  ASSERT_TRUE(Single(FilterKind::HiPass, 10, 0, profile, 0.1, high, low));
  for (int i = 750; i <= 2250; ++i) {
    ASSERT_NEAR(high.Values[i], ripple[i - 1], 0.5) << i;
    ASSERT_NEAR(low.Values[i], swell[i - 1], 0.5) << i;
  }
}

TEST_F(FftFilterTest, OnePassIsExactlyTheSinglePass) {
  const Array1<double> profile = RandomProfile(777, 3);
  WaveSeries single, other, converged;
  ASSERT_TRUE(Single(FilterKind::BandPass, 30, 3, profile, 0.1, single, other));
  ASSERT_TRUE(Converge(FilterKind::BandPass, 30, 3, profile, 0.1, converged, {1.1, 1}));
  EXPECT_TRUE(SameBits(converged.Values, single.Values));
  EXPECT_EQ(converged.Stats.StdDev, single.Stats.StdDev);
  EXPECT_EQ(testing::ProgressTexts(ui_), (std::vector<std::string>{"収束計算中・・・・", "収束計算中  1 / 1 ・・・・"}));
  EXPECT_EQ(ui_.ProgressValues, std::vector<int>{100});
}

TEST_F(FftFilterTest, ARatioOfZeroRunsEveryPassEachOnThePreviousOutput) {
  const Array1<double> profile = RandomProfile(500, 11);
  WaveSeries converged;
  ASSERT_TRUE(Converge(FilterKind::HiPass, 5, 0, profile, 0.25, converged, {0.0, 3}));
  EXPECT_EQ(testing::ProgressTexts(ui_), (std::vector<std::string>{"収束計算中・・・・", "収束計算中  1 / 3 ・・・・",
                                                       "収束計算中  2 / 3 ・・・・", "収束計算中  3 / 3 ・・・・"}));
  EXPECT_EQ(ui_.ProgressValues, (std::vector<int>{33, 67, 100}));

  Array1<double> work = profile;
  WaveSeries pass, other;
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(Single(FilterKind::HiPass, 5, 0, work, 0.25, pass, other));
    work = pass.Values;
  }
  EXPECT_TRUE(SameBits(converged.Values, work));
}

TEST_F(FftFilterTest, TheDefaultLimitNeedsAtLeastTwoPasses) {
  const Array1<double> profile = RandomProfile(400, 5);
  WaveSeries converged;
  ASSERT_TRUE(Converge(FilterKind::LowPass, 0, 2, profile, 0.25, converged, FilterConvergence{}));
  const auto texts = testing::ProgressTexts(ui_);
  ASSERT_GE(texts.size(), 3u);  // the start text and at least two passes
  EXPECT_EQ(texts[2], "収束計算中  2 / 10 ・・・・");
  EXPECT_TRUE(converged.Calculated);
  EXPECT_EQ(converged.Values.size(), 400);
}

TEST_F(FftFilterTest, APassThatRemovesNothingOrBadLengthsEndInTheErrorPath) {
  const Array1<double> zero(64);
  WaveSeries result;
  result.Values = Array1<double>{9.0};
  EXPECT_FALSE(Converge(FilterKind::HiPass, 5, 0, zero, 0.25, result, {1.1, 10}));
  EXPECT_EQ(result.Values, Array1<double>{9.0});  // the last finished pass is not stored
  EXPECT_EQ(testing::OnlyMessageTitle(ui_), "[ basFFTFilter : Cal_FFTフィルタ_収束計算 ]");

  // Lengths that do not hold the profile are logged under the single pass.
  ui_.Log.clear();
  WaveSeries single, other;
  std::int32_t seq = 0;
  EXPECT_FALSE(Cal_FFTフィルタ_単体処理(session, seq, 0, 10, 16, 24, 1.0, FilterKind::HiPass, 5, 0, RandomProfile(10, 1),
                                   single, other));
  EXPECT_EQ(testing::OnlyMessageTitle(ui_), "[ basFFTFilter : Cal_FFTフィルタ_単体処理 ]");
  EXPECT_FALSE(single.Calculated);
}

TEST_F(FftFilterTest, ConvergenceLimitsComeFromTheSettingsFile) {
  session.Paths.AppPath = dir_.path().string();
  const struct { std::vector<std::string> ini; double ratio; std::int32_t passes; } cases[] = {
      {{}, 1.1, 10},  // no file: the defaults
      {{"[General]", "DebugLevel=0", "[収束判定値]", "標準偏差比=1.5", "最大収束回数=4"}, 1.5, 4},
      {{"[収束判定値]", "標準偏差比=", "最大収束回数=many"}, 1.1, 10}};  // blank and text keep the defaults
  for (const auto& c : cases) {
    if (!c.ini.empty()) WriteSystemTextFile(dir_ / "TOLVAVERI.ini", c.ini);
    const FilterConvergence limits = ReadFilterConvergence(session.Paths);
    EXPECT_EQ(limits.StdRatio, c.ratio);
    EXPECT_EQ(limits.MaxPasses, c.passes);
  }
}

}  // namespace
}  // namespace velmora
