// The radix-2 transform and the half-length transform of real sequences, each held to an independent
// reference: spectra known by hand, the direct DFT, and the plain radix-2 loop bit for bit.
#include "analysis/fft.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <tuple>

#include "analysis/band_reduction.h"
#include "analysis/fft_filter.h"
#include "analysis/fft_kernels.h"
#include "analysis/octave.h"
#include "analysis/octave_bands.h"
#include "analysis/prepare_profile.h"
#include "analysis/psd.h"
#include "analysis/psd_view.h"
#include "analysis/psd_window.h"
#include "analysis/real_fft.h"
#include "base/app_paths.h"
#include "base/text_encoding.h"
#include "support/analysis_fixture.h"
#include "support/checks.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

constexpr double kTwoPi = 6.283185307179586;

Array1<Complex> RandomSignal(std::int32_t n, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> value(-50.0, 50.0);
  Array1<Complex> x(static_cast<std::size_t>(n));
  for (auto& c : x) c = {value(random), value(random)};
  return x;
}

// The transform exactly as the algorithm is written: 1-based bit reversal with swaps, then twiddle by
// twiddle across the array, w recomputed for every k with ComplexExp, no table.
void LiteralFft(std::int32_t n, Array1<Complex>& x, std::int32_t sign) {
  std::int32_t j = 1;
  for (std::int32_t i = 1; i <= n; ++i) {
    if (i < j) std::swap(x[i], x[j]);
    std::int32_t m = static_cast<std::int32_t>(std::nearbyint(n / 2.0));
    while (m >= 2 && j > m) {
      j = j - m;
      m = static_cast<std::int32_t>(std::nearbyint(m / 2.0));
    }
    j = j + m;
  }
  for (std::int32_t m = 1; m < n; m *= 2) {
    for (std::int32_t k = 1; k <= m; ++k) {
      const Complex w = ComplexExp({0.0, (k - 1) * sign * 3.14159265358979 / m});
      for (std::int32_t i = k; i <= n; i += 2 * m) {
        const Complex t = ComplexMul(w, x[i + m]);
        x[i + m] = ComplexSub(x[i], t);
        x[i] = ComplexAdd(x[i], t);
      }
    }
  }
}

void ExpectNear(const Array1<Complex>& actual, const std::vector<Complex>& expected, double tolerance) {
  ASSERT_EQ(actual.size(), static_cast<std::ptrdiff_t>(expected.size()));
  for (std::size_t k = 0; k < expected.size(); ++k) {
    EXPECT_NEAR(actual[static_cast<std::ptrdiff_t>(k + 1)].Re, expected[k].Re, tolerance) << "bin " << k + 1;
    EXPECT_NEAR(actual[static_cast<std::ptrdiff_t>(k + 1)].Im, expected[k].Im, tolerance) << "bin " << k + 1;
  }
}

TEST(FftTest, SmallSpectraByHand) {
  const struct { std::int32_t n, sign; std::vector<Complex> input, expected; } cases[] = {
      {1, -1, {{7, -3}}, {{7, -3}}},
      {2, -1, {{3, 0}, {5, 0}}, {{8, 0}, {-2, 0}}},
      {2, -1, {{1, 0}, {1, 0}, {9, 9}}, {{2, 0}, {0, 0}, {9, 9}}},  // elements beyond n are left alone
      // X(2) = 1 + 2(−i) + 3(−1) + 4(i) = −2 + 2i; X(3) = 1 − 2 + 3 − 4; X(4) the conjugate of X(2).
      {4, -1, {{1, 0}, {2, 0}, {3, 0}, {4, 0}}, {{10, 0}, {-2, 2}, {-2, 0}, {-2, -2}}},
      // The opposite rotation: X(2) = 1 + 2i − 3 − 4i.
      {4, +1, {{1, 0}, {2, 0}, {3, 0}, {4, 0}}, {{10, 0}, {-2, -2}, {-2, 0}, {-2, 2}}}};
  for (const auto& c : cases) {
    Array1<Complex> x(c.input);
    Fft(c.n, x, c.sign);
    ExpectNear(x, c.expected, 1e-13);
  }
}

TEST(FftTest, AgreesWithADirectDftOnSmallSizes) {
  // X(k) = sum over j of x(j) exp(sign i 2 pi (j-1)(k-1) / n), the definition summed term by term.
  for (std::int32_t n : {2, 4, 8, 16, 32, 64}) {
    for (std::int32_t sign : {-1, 1}) {
      const Array1<Complex> x = RandomSignal(n, static_cast<unsigned>(n * 10 + sign + 1));
      Array1<Complex> fast = x;
      Fft(n, fast, sign);
      std::vector<Complex> direct(static_cast<std::size_t>(n));
      for (std::int32_t k = 1; k <= n; ++k)
        for (std::int32_t j = 1; j <= n; ++j) {
          const double angle = sign * kTwoPi * (j - 1) * (k - 1) / n;
          direct[k - 1].Re += x[j].Re * std::cos(angle) - x[j].Im * std::sin(angle);
          direct[k - 1].Im += x[j].Re * std::sin(angle) + x[j].Im * std::cos(angle);
        }
      ExpectNear(fast, direct, 1e-9 * n * 50);
    }
  }
}

TEST(FftTest, KeepsTheBitsOfThePlainLoop) {
  // Every length up to 2^18, so that each way the stages are grouped and the bit reversal is blocked
  // is met, in a mixed order so that the twiddle table is grown and reused in between. Both builds of
  // the butterflies (the portable one is checked even where Fft picks AVX2), both directions. Only the
  // sign of a zero may differ, which == ignores.
  for (int step = 0; step <= 18; ++step) {
    const int bits = (step * 7) % 19;
    const std::int32_t n = 1 << bits;
    for (std::int32_t sign : {-1, +1}) {
      Array1<Complex> literal = RandomSignal(n, static_cast<unsigned>(n + sign));
      Array1<Complex> fast = literal, portable = literal;
      LiteralFft(n, literal, sign);
      Fft(n, fast, sign);
      detail::Transform(portable.data(), bits, sign, detail::Vectors::Portable);
      ASSERT_EQ(fast, literal) << "n " << n << " sign " << sign;
      ASSERT_EQ(portable, literal) << "portable, n " << n << " sign " << sign;
    }
  }
}

TEST(FftTest, TwoThreadsAtOnceGetTheirOwnResults) {
  // The octave split transforms on two threads: each keeps its own twiddles and block buffers.
  const std::int32_t sizes[2] = {1 << 15, 1 << 12};
  Array1<Complex> expected[2], results[2];
  for (int t = 0; t < 2; ++t) {
    expected[t] = results[t] = RandomSignal(sizes[t], static_cast<unsigned>(t + 7));
    LiteralFft(sizes[t], expected[t], t == 0 ? -1 : 1);
  }
  std::vector<std::thread> threads;
  for (int t = 0; t < 2; ++t)
    threads.emplace_back([&, t] {
      const Array1<Complex> input = results[t];
      for (int repeat = 0; repeat < 20; ++repeat) {
        results[t] = input;
        Fft(sizes[t], results[t], t == 0 ? -1 : 1);
      }
    });
  for (auto& thread : threads) thread.join();
  for (int t = 0; t < 2; ++t) EXPECT_EQ(results[t], expected[t]) << "thread " << t;
}

// Rounding allowed against a transform: a little of its largest part.
double Tolerance(const Array1<Complex>& x) {
  double most = 0;
  for (const Complex& c : x) most = std::max({most, std::abs(c.Re), std::abs(c.Im)});
  return 1e-13 * most;
}

TEST(RealFftTest, BothDirectionsGiveTheBinsOfTheFullComplexTransform) {
  // Another algorithm than the full transform, so equal within rounding only.
  for (std::int32_t n = 2; n <= (1 << 14); n *= 2) {
    SCOPED_TRACE(n);
    const Array1<Complex> signal = RandomSignal(n, static_cast<unsigned>(n));
    Array1<double> x(static_cast<std::size_t>(n));
    Array1<Complex> full(static_cast<std::size_t>(n));
    for (std::int32_t j = 1; j <= n; ++j) full[j] = {x[j] = signal[j].Re, 0.0};
    Fft(n, full, -1);
    Array1<Complex> half;
    RealForwardFft(n, x, half);
    ASSERT_NO_FATAL_FAILURE(ExpectNear(half, std::vector<Complex>(full.begin(), full.begin() + n / 2 + 1), Tolerance(full)));
    // Zero frequency and n/2 of a real sequence have no imaginary part at all.
    EXPECT_EQ(half[1].Im, 0.0);
    EXPECT_EQ(half[n / 2 + 1].Im, 0.0);

    // Back from a symmetric spectrum with a cut-out band, like a masked profile spectrum.
    for (std::int32_t p = 2; p <= n / 2 + 1; ++p)
      if (p % 3 == 0) full[p] = full[n + 2 - p] = {0.0, 0.0};
    for (std::int32_t p = 1; p <= n / 2 + 1; ++p) half[p] = full[p];
    Fft(n, full, +1);
    RealInverseFft(n, half);
    Array1<double> samples(static_cast<std::size_t>(n));
    UnpackReal(half, 0, n, samples.data());
    const double tolerance = Tolerance(full);
    for (std::int32_t j = 1; j <= n; ++j) {
      ASSERT_NEAR(samples[j], full[j].Re, tolerance) << "sample " << j;
      ASSERT_NEAR(full[j].Im, 0.0, tolerance) << "the full inverse is real too";
    }
  }
  // Unpacking reads any run of the packed samples in order, and no further than they go.
  Array1<Complex> packed{{1, 2}, {3, 4}, {5, 6}};
  double out[3] = {};
  UnpackReal(packed, 1, 3, out);
  EXPECT_EQ(std::vector<double>(out, out + 3), (std::vector<double>{2, 3, 4}));
  EXPECT_THROW(UnpackReal(packed, 4, 3, out), LegacyError);
}

TEST(RealFftTest, TablesLetGoAreBuiltAgainToTheSameBits) {
  constexpr std::int32_t n = 1 << 12;
  const Array1<Complex> signal = RandomSignal(n, 7);
  Array1<double> x(static_cast<std::size_t>(n));
  for (std::int32_t j = 1; j <= n; ++j) x[j] = signal[j].Re;
  const auto both = [&] {  // forward, then back again
    Array1<Complex> half;
    RealForwardFft(n, x, half);
    Array1<Complex> forward = half;
    RealInverseFft(n, half);
    return std::pair{forward, half};
  };
  const auto before = both();
  ReleaseTransformTables();
  const auto after = both();
  for (const auto& [a, b] : {std::pair{&before.first, &after.first}, std::pair{&before.second, &after.second}}) {
    ASSERT_EQ(a->size(), b->size());
    EXPECT_EQ(std::memcmp(a->data(), b->data(), static_cast<std::size_t>(a->size()) * sizeof(Complex)), 0);
  }
}

TEST(FftTest, RefusesLengthsDirectionsAndArraysItCannotTransform) {
  Array1<Complex> x(8);
  EXPECT_THROW(Fft(6, x, -1), LegacyError);
  EXPECT_THROW(Fft(0, x, -1), LegacyError);
  EXPECT_THROW(Fft(8, x, 0), LegacyError);
  EXPECT_EQ(testing::ErrorOf([&] { Fft(16, x, -1); }), ErrorNumber::SubscriptOutOfRange);  // 16 points of 8
  Array1<double> real(6);
  Array1<Complex> half, shortHalf(4);
  for (std::int32_t n : {6, 1, 8}) EXPECT_THROW(RealForwardFft(n, real, half), LegacyError) << n;
  EXPECT_THROW(RealInverseFft(8, shortHalf), LegacyError);
}

TEST(FftLengthTest, SmallestPowerOfTwoFromFour) {
  for (const auto& [n, length1, length2] : {std::tuple{1, 4, 4}, {2, 4, 4}, {3, 4, 8}, {4, 4, 8}, {5, 8, 16}, {8, 8, 16},
                                            {9, 16, 32}, {1000000, 1048576, 2097152}}) {
    EXPECT_EQ(FftLength1(n), length1) << "N " << n;
    EXPECT_EQ(FftLength2(n), length2) << "N " << n;
  }
  EXPECT_EQ(FftLength1((1 << 30)), 1 << 30);
  EXPECT_THROW(FftLength1((1 << 30) + 1), LegacyError);  // 2^31 does not fit an i32
  EXPECT_THROW(FftLength2((1 << 29) + 1), LegacyError);
}

// The fold that brings a profile out to the transform's length, and the FFT filter: its mask by hand,
// one pass against the literal complex steps, the convergent passes, the error paths and the limits.
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

// Octave masks, the preparation of a profile, the single and the repeated split, the sums, and the
// half-wave reduction of the bands against limit lines.
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

TEST_F(OctaveTest, PrepareFillsLengthsAndCopyMasksOnDemandAndRefusesBadPitchAndCount) {
  ProfileRecord record = testing::MakeProfile("test", 0.1, {1, 2, 3, 4, 5});
  PrepareProfile(DebugTables{}, record);
  const AnalysisBlock& block = record.Analysis;
  EXPECT_DOUBLE_EQ(block.SamplesPerMetre, 10.0);
  EXPECT_EQ(std::tuple(block.Count, block.FftLength1, block.FftLength2), std::tuple(5, 8, 16));
  EXPECT_EQ(block.Profile.Values, Array1<double>({1, 2, 3, 4, 5}));
  EXPECT_DOUBLE_EQ(block.Profile.Stats.StdDev, std::sqrt(2.0));
  // The masks wait for the first band split.
  EXPECT_EQ(block.Masks[1].size(), 0);
  EnsureOctaveMasks(record.Analysis);
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

// Windows, the raw PSD, its smoothing, the ratio of two spectra and what the PSD tab computes.
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

TEST_F(PsdTest, WholeCyclesOfASineFallInTheirBinAndItsMirrorOnly) {
  // 11 cycles of 2 mm in 1024 samples at 0.05 m: |c| = 1024 · 2 / 2 in bins 12 (11 / 51.2 cycle/m) and
  // 1014, zero elsewhere; out = 1024² / (20 · 1024) · π = 51.2π.
  const Array1<double> psd = Psd(session, testing::OctaveFiveSine(), 0.05, kWindowNone, true);
  ASSERT_EQ(psd.size(), 1024);
  for (std::int32_t i = 1; i <= 1024; ++i) ASSERT_NEAR(psd[i], i == 12 || i == 1014 ? 51.2 * kPsdPi : 0.0, 1e-9) << i;
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
