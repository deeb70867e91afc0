// The fold that brings a profile out to the transform's length, and the FFT filter: its mask by hand,
// one pass against the literal complex steps, the convergent passes, the error paths and the limits.
#include "analysis/fft_filter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "analysis/fft.h"
#include "analysis/mirror_extend.h"
#include "base/app_paths.h"
#include "base/legacy_error.h"
#include "base/text_encoding.h"
#include "support/analysis_fixture.h"
#include "support/error_of.h"
#include "support/expect_values.h"
#include "support/literal_pass.h"
#include "support/session_fixture.h"
#include "support/test_support.h"

namespace velmora {
namespace {

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
    testing::ExpectValues(result.Values, std::vector<double>(10, c.passed));
    testing::ExpectValues(other.Values, std::vector<double>(10, 2.5 - c.passed));
    EXPECT_TRUE(result.Calculated);
    EXPECT_NEAR(result.Stats.Mean, c.passed, 1e-12);
  }
}

TEST_F(FftFilterTest, APassIsTheLiteralComplexStepsAndTheRemainderRebuildsTheProfile) {
  // Fold, complex transform of the whole length, scale, mask, complex inverse, real part: the pass
  // takes half-length real transforms instead and must agree far inside 1e-9 of the profile's range.
  for (const std::int32_t n : {1000, 1024, 7}) {
    const Array1<double> profile = RandomProfile(n, static_cast<unsigned>(n));
    for (FilterKind kind : {FilterKind::HiPass, FilterKind::LowPass, FilterKind::BandPass, FilterKind::BandCut}) {
      SCOPED_TRACE(::testing::Message() << FilterKindName(kind) << " n " << n);
      WaveSeries result, other;
      ASSERT_TRUE(Single(kind, 20.0, 2.0, profile, 0.25, result, other));
      Array1<std::uint8_t> mask;
      MakeFilterMaskOfKind(FftLength2(n), 0.25, kind, 20.0, 2.0, mask);
      EXPECT_LT(testing::WorstRelativeToRange(result.Values, testing::LiteralMaskedPass(n, profile, mask), profile), 1e-12);
      for (int i = 1; i <= n; ++i) ASSERT_NEAR(result.Values[i] + other.Values[i], profile[i], 1e-9) << i;
      EXPECT_DOUBLE_EQ(result.DisplayMax, result.Stats.Maximum);
    }
  }
}

TEST_F(FftFilterTest, ConvergenceRunsEachPassOnThePreviousOutputUpToTheLimit) {
  // A ratio of 0 never converges: every pass runs, each exactly the single pass of the one before.
  const Array1<double> profile = RandomProfile(500, 11);
  const struct { std::int32_t passes; std::vector<int> bar; } cases[] = {{1, {100}}, {3, {33, 67, 100}}};
  for (const auto& c : cases) {
    ui_.Log.clear();
    ui_.ProgressValues.clear();
    WaveSeries converged, pass, other;
    ASSERT_TRUE(Converge(FilterKind::BandPass, 30, 3, profile, 0.25, converged, {0.0, c.passes}));
    std::vector<std::string> captions{"収束計算中・・・・"};
    Array1<double> work = profile;
    for (int i = 1; i <= c.passes; ++i) {
      captions.push_back("収束計算中  " + std::to_string(i) + " / " + std::to_string(c.passes) + " ・・・・");
      ASSERT_TRUE(Single(FilterKind::BandPass, 30, 3, work, 0.25, pass, other));
      work = pass.Values;
    }
    EXPECT_TRUE(SameBits(converged.Values, work));
    EXPECT_EQ(converged.Stats.StdDev, pass.Stats.StdDev);
    EXPECT_EQ(testing::ProgressTexts(ui_), captions);
    EXPECT_EQ(ui_.ProgressValues, c.bar);
  }
  // The default ratio needs at least two passes.
  ui_.Log.clear();
  WaveSeries converged;
  ASSERT_TRUE(Converge(FilterKind::LowPass, 0, 2, RandomProfile(400, 5), 0.25, converged, FilterConvergence{}));
  const auto texts = testing::ProgressTexts(ui_);
  ASSERT_GE(texts.size(), 3u);  // the start text and at least two passes
  EXPECT_EQ(texts[2], "収束計算中  2 / 10 ・・・・");
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

Array1<double> A(std::vector<double> values) { return Array1<double>(std::move(values)); }

using MirrorExtendTest = testing::SessionTest;

TEST_F(MirrorExtendTest, FoldsBothWaysWithoutRepeatingTheEndSamplesAndThePointFoldKeepsRamps) {
  const struct { bool pointSymmetric; std::int32_t fold; std::vector<double> extended; } cases[] = {
      // Left: 2·1 − source(3), 2·1 − source(2); right: 2·11 − source(4), 2·11 − source(3).
      {true, 2, {-2, 0, 1, 2, 4, 7, 11, 15, 18}},
      {false, 2, {4, 2, 1, 2, 4, 7, 11, 7, 4}},
      {true, 0, {1, 2, 4, 7, 11}},
      {false, 4, {11, 7, 4, 2, 1, 2, 4, 7, 11, 7, 4, 2, 1}},  // the widest fold n − 1 reaches source(5) and source(1)
  };
  for (const auto& c : cases) {
    Array1<double> dest;
    std::int32_t count = 0;
    MirrorExtend(DebugTables{}, c.pointSymmetric, c.fold, 5, A({1, 2, 4, 7, 11}), count, dest);
    EXPECT_EQ(count, static_cast<std::int32_t>(c.extended.size())) << c.fold;
    EXPECT_EQ(dest.vector(), c.extended) << c.fold;
  }
  // The point fold keeps constants and ramps.
  Array1<double> ramp(50), constant(std::vector<double>(50, -12.5)), dest;
  for (int i = 1; i <= 50; ++i) ramp[i] = 0.25 * i - 3.0;
  std::int32_t count = 0;
  MirrorExtend(DebugTables{}, true, 30, 50, ramp, count, dest);
  ASSERT_EQ(count, 110);
  for (int p = 1; p <= 110; ++p) EXPECT_DOUBLE_EQ(dest[p], 0.25 * (p - 30) - 3.0) << p;
  MirrorExtend(DebugTables{}, true, 49, 50, constant, count, dest);
  for (int p = 1; p <= count; ++p) EXPECT_EQ(dest[p], -12.5) << p;
}

TEST_F(MirrorExtendTest, RefusesFoldsThatReachBeyondTheProfile) {
  const Array1<double> source = A({1, 2, 3});
  Array1<double> dest;
  std::int32_t count = 0;
  for (std::int32_t fold : {3, -1})
    EXPECT_EQ(testing::ErrorOf([&] { MirrorExtend(DebugTables{}, true, fold, 3, source, count, dest); }),
              ErrorNumber::SubscriptOutOfRange) << fold;
  EXPECT_THROW(MirrorExtend(DebugTables{}, true, 1, 4, source, count, dest), LegacyError);  // n past the array
}

// The extensions for a transform: the samples, where they start, and the whole extended array.
struct Extension {
  const char* what;
  bool forPsd;  // only the point fold to length1; else the filter's to length2
  std::vector<double> source;
  std::int32_t length1, length2, offset;
  std::vector<double> extended;
};

TEST_F(MirrorExtendTest, ExtensionsForTheTransformsByHand) {
  const Extension cases[] = {
      {"filter, a power of two: a copy then a half fold", false, {1, 5, 2, 8}, 4, 8, 2, {2, 5, 1, 5, 2, 8, 2, 5}},
      // N = 5: d = 3, a = 2, b = 1. Work (−2, 0, 1, 2, 4, 7, 11, 15) after the cut, then 4 each side.
      {"filter, the larger part of the surplus left", false, {1, 2, 4, 7, 11}, 8, 16, 6,
       {4, 2, 1, 0, -2, 0, 1, 2, 4, 7, 11, 15, 11, 7, 4, 2}},
      // N = 7: d = 1, round(0.5) = 0, exchanged to one sample left and none right.
      {"filter, a surplus of one goes left", false, {0, 1, 3, 6, 10, 15, 21}, 8, 16, 5,
       {6, 3, 1, 0, -1, 0, 1, 3, 6, 10, 15, 21, 15, 10, 6, 3}},
      // N = 11: d = 5, round(2.5) = 2, exchanged to 3 left and 2 right; work is
      // (2 − 16, 2 − 9, 2 − 4, 1, 4, …, 121, 242 − 100, 242 − 81).
      {"filter, round half to even exchanged", false, {1, 4, 9, 16, 25, 36, 49, 64, 81, 100, 121}, 16, 32, 11,
       {36, 25, 16, 9, 4, 1, -2, -7, -14, -7, -2, 1, 4, 9, 16, 25,
        36, 49, 64, 81, 100, 121, 142, 161, 142, 121, 100, 81, 64, 49, 36, 25}},
      {"psd, the point fold only", true, {1, 2, 4, 7, 11}, 8, 0, 2, {-2, 0, 1, 2, 4, 7, 11, 15}},
      {"psd, a power of two as it is", true, {3, 1, 4, 1}, 4, 0, 0, {3, 1, 4, 1}},
  };
  for (const Extension& c : cases) {
    SCOPED_TRACE(c.what);
    const auto n = static_cast<std::int32_t>(c.source.size());
    Array1<double> dest;
    std::int32_t offset = -1;
    ASSERT_TRUE(c.forPsd ? subPSD計算用_観音開き作成(session, n, c.length1, A(c.source), offset, dest)
                         : subFFT計算用_観音開き作成(session, n, c.length1, c.length2, A(c.source), offset, dest));
    EXPECT_EQ(offset, c.offset);
    EXPECT_EQ(dest.vector(), c.extended);
  }
  EXPECT_TRUE(ui_.Messages().empty());
}

TEST_F(MirrorExtendTest, ASingleSampleProfileIsLoggedUnderTheProcedureName) {
  Array1<double> dest;
  std::int32_t offset = 0;
  // N = 1 gives length 4: the fold needs source(3).
  EXPECT_FALSE(subFFT計算用_観音開き作成(session, 1, 4, 4, A({5}), offset, dest));
  EXPECT_EQ(testing::OnlyMessageTitle(ui_), "[ basFFT : subFFT計算用_観音開き作成 ]");
  const auto log = ReadSystemTextLines(dir_ / "Temp" / "Sorvik_Err.log");
  ASSERT_EQ(log.size(), 1u);
  EXPECT_NE(log[0].find("subFFT計算用_観音開き作成"), std::string::npos);

  EXPECT_FALSE(subPSD計算用_観音開き作成(session, 1, 4, A({5}), offset, dest));
  EXPECT_EQ(ui_.Messages().size(), 2u);
}

}  // namespace
}  // namespace velmora
