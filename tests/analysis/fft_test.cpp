// The radix-2 transform and the half-length transform of real sequences, each held to an independent
// reference: spectra known by hand, the direct DFT, and the plain radix-2 loop bit for bit.
#include "analysis/fft.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "analysis/fft_kernels.h"
#include "analysis/real_fft.h"
#include "support/error_of.h"

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

}  // namespace
}  // namespace velmora
