#include "analysis/fft.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "analysis/fft_kernels.h"
#include "base/legacy_error.h"

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

void ExpectNear(const Complex& actual, const Complex& expected, double tolerance, const char* what, int k) {
  EXPECT_NEAR(actual.Re, expected.Re, tolerance) << what << " bin " << k;
  EXPECT_NEAR(actual.Im, expected.Im, tolerance) << what << " bin " << k;
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
  std::int32_t m = 1;
  while (m < n) {
    const std::int32_t step = 2 * m;
    for (std::int32_t k = 1; k <= m; ++k) {
      const double theta = (k - 1) * sign * 3.14159265358979 / m;
      const Complex w = ComplexExp({0.0, theta});
      for (std::int32_t i = k; i <= n; i += step) {
        const std::int32_t jj = i + m;
        const Complex t = ComplexMul(w, x[jj]);
        x[jj] = ComplexSub(x[i], t);
        x[i] = ComplexAdd(x[i], t);
      }
    }
    m = step;
  }
}

// The largest difference between two spectra, relative to the largest component of the reference.
double RelativeDifference(const Array1<Complex>& actual, const Array1<Complex>& reference) {
  double difference = 0, range = 0;
  for (std::ptrdiff_t k = 1; k <= reference.size(); ++k) {
    difference = std::max({difference, std::abs(actual[k].Re - reference[k].Re), std::abs(actual[k].Im - reference[k].Im)});
    range = std::max({range, std::abs(reference[k].Re), std::abs(reference[k].Im)});
  }
  return range > 0 ? difference / range : difference;
}

// The transform with the portable build of the butterflies, so that it is checked on machines where
// Fft itself picks the AVX2 build.
void PortableFft(std::int32_t n, Array1<Complex>& x, std::int32_t sign) {
  int bits = 0;
  while ((1 << bits) < n) ++bits;
  detail::Transform(x.data(), bits, sign, detail::Vectors::Portable);
}

TEST(ComplexTest, HelpersFollowTheTextbookFormulas) {
  EXPECT_EQ(ComplexAdd({1, 2}, {3, -5}), (Complex{4, -3}));
  EXPECT_EQ(ComplexSub({1, 2}, {3, -5}), (Complex{-2, 7}));
  EXPECT_EQ(ComplexMul({1, 2}, {3, 4}), (Complex{-5, 10}));  // (1+2i)(3+4i) = 3 + 4i + 6i − 8
  EXPECT_EQ(ComplexAbs({3, -4}), 5.0);
  const Complex e = ComplexExp({std::log(2.0), kTwoPi / 4});
  EXPECT_NEAR(e.Re, 0.0, 1e-15);
  EXPECT_NEAR(e.Im, 2.0, 1e-15);
}

TEST(FftTest, SmallTransformsWorkedByHand) {
  Array1<Complex> two{{3, 0}, {5, 0}};
  Fft(2, two, -1);
  EXPECT_EQ(two, (Array1<Complex>{{8, 0}, {-2, 0}}));

  // X(2) = 1 + 2(−i) + 3(−1) + 4(i) = −2 + 2i; X(3) = 1 − 2 + 3 − 4; X(4) the conjugate of X(2).
  Array1<Complex> four{{1, 0}, {2, 0}, {3, 0}, {4, 0}};
  Fft(4, four, -1);
  const Complex forward[] = {{10, 0}, {-2, 2}, {-2, 0}, {-2, -2}};
  for (int k = 1; k <= 4; ++k) ExpectNear(four[k], forward[k - 1], 1e-13, "forward", k);

  Array1<Complex> inverse{{1, 0}, {2, 0}, {3, 0}, {4, 0}};
  Fft(4, inverse, +1);  // the opposite rotation: X(2) = 1 + 2i − 3 − 4i
  ExpectNear(inverse[2], {-2, -2}, 1e-13, "inverse", 2);
  ExpectNear(inverse[4], {-2, 2}, 1e-13, "inverse", 4);

  Array1<Complex> one{{7, -3}};
  Fft(1, one, -1);
  EXPECT_EQ(one[1], (Complex{7, -3}));
}

TEST(FftTest, ImpulseConstantAndCosineHaveTheirKnownSpectra) {
  const std::int32_t n = 64;
  Array1<Complex> impulse(n);
  impulse[1] = {1, 0};
  Fft(n, impulse, -1);
  for (int k = 1; k <= n; ++k) ExpectNear(impulse[k], {1, 0}, 1e-15, "impulse at 1", k);

  // An impulse at sample 2 is a pure rotation: X(k) = exp(−2πi (k−1)/n).
  Array1<Complex> shifted(n);
  shifted[2] = {1, 0};
  Fft(n, shifted, -1);
  for (int k = 1; k <= n; ++k)
    ExpectNear(shifted[k], {std::cos(kTwoPi * (k - 1) / n), -std::sin(kTwoPi * (k - 1) / n)}, 1e-13,
               "impulse at 2", k);

  Array1<Complex> constant(n);
  for (auto& c : constant) c = {2.5, 0};
  Fft(n, constant, -1);
  ExpectNear(constant[1], {2.5 * n, 0}, 1e-12, "constant", 1);
  for (int k = 2; k <= n; ++k) ExpectNear(constant[k], {0, 0}, 1e-12, "constant", k);

  // cos(2π·5(j−1)/n) puts n/2 into bin 6 and its mirror bin n − 4, nothing elsewhere.
  Array1<Complex> cosine(n);
  for (int j = 1; j <= n; ++j) cosine[j] = {std::cos(kTwoPi * 5 * (j - 1) / n), 0};
  Fft(n, cosine, -1);
  for (int k = 1; k <= n; ++k) {
    const double expected = (k == 6 || k == n - 4) ? n / 2.0 : 0.0;
    ExpectNear(cosine[k], {expected, 0}, 1e-12, "cosine", k);
  }
}

TEST(FftTest, AgreesWithADirectDftOnSmallSizes) {
  // X(k) = sum over j of x(j) exp(sign i 2 pi (j-1)(k-1) / n), the definition summed term by term.
  for (std::int32_t n : {2, 4, 8, 16, 32, 64}) {
    for (std::int32_t sign : {-1, 1}) {
      const Array1<Complex> x = RandomSignal(n, static_cast<unsigned>(n * 10 + sign + 1));
      Array1<Complex> fast = x;
      Fft(n, fast, sign);
      for (std::int32_t k = 1; k <= n; ++k) {
        double re = 0, im = 0;
        for (std::int32_t j = 1; j <= n; ++j) {
          const double angle = sign * kTwoPi * (j - 1) * (k - 1) / n;
          re += x[j].Re * std::cos(angle) - x[j].Im * std::sin(angle);
          im += x[j].Re * std::sin(angle) + x[j].Im * std::cos(angle);
        }
        ExpectNear(fast[k], {re, im}, 1e-9 * n * 50, "direct DFT", k);
      }
    }
  }
}

TEST(FftTest, ForwardThenInverseGivesNTimesTheInput) {
  for (std::int32_t n = 1; n <= (1 << 16); n *= 2) {
    const Array1<Complex> input = RandomSignal(n, static_cast<unsigned>(n));
    Array1<Complex> x = input;
    Fft(n, x, -1);
    Fft(n, x, +1);
    const double tolerance = 1e-12 * n * (1 + std::log2(static_cast<double>(n)));
    for (int i = 1; i <= n; ++i) {
      ASSERT_NEAR(x[i].Re, n * input[i].Re, tolerance) << "n " << n << " i " << i;
      ASSERT_NEAR(x[i].Im, n * input[i].Im, tolerance) << "n " << n << " i " << i;
    }
  }
}

TEST(FftTest, StaysWithinRoundingOfTheLiteralLoop) {
  // Every length up to 2^17, so that each way the stages are grouped is met (an odd or even count
  // within a cache run, none to four stages above it), in a mixed order so that the twiddle table is
  // grown and reused in between. Both builds of the butterflies, both directions.
  std::vector<std::int32_t> lengths;
  for (int bits = 0; bits <= 17; ++bits) lengths.push_back(1 << ((bits * 7) % 18));
  double largest = 0;
  for (std::int32_t n : lengths) {
    for (std::int32_t sign : {-1, +1}) {
      Array1<Complex> literal = RandomSignal(n, static_cast<unsigned>(n + sign));
      Array1<Complex> fast = literal;
      Array1<Complex> portable = literal;
      LiteralFft(n, literal, sign);
      Fft(n, fast, sign);
      PortableFft(n, portable, sign);
      const double fastDifference = RelativeDifference(fast, literal);
      const double portableDifference = RelativeDifference(portable, literal);
      EXPECT_LE(fastDifference, 1e-13) << "n " << n << " sign " << sign;
      EXPECT_LE(portableDifference, 1e-13) << "portable, n " << n << " sign " << sign;
      largest = std::max({largest, fastDifference, portableDifference});
    }
  }
  RecordProperty("largest_relative_difference", std::to_string(largest));
  std::printf("largest difference to the literal loop, relative to the spectrum's range: %.3g\n", largest);
}

TEST(FftTest, BitReversalPutsEveryElementAtItsMirroredIndex) {
  // Sizes below, at and above the block the permutation works in, odd and even bit counts.
  for (int bits = 0; bits <= 18; ++bits) {
    const std::size_t n = std::size_t{1} << bits;
    std::vector<Complex> a(n);
    for (std::size_t i = 0; i < n; ++i) a[i] = {static_cast<double>(i), -static_cast<double>(i)};
    detail::BitReverse(a.data(), bits);
    for (std::size_t i = 0; i < n; ++i) {
      std::size_t reversed = 0;
      for (int bit = 0; bit < bits; ++bit) reversed |= ((i >> bit) & 1u) << (bits - 1 - bit);
      ASSERT_EQ(a[i], (Complex{static_cast<double>(reversed), -static_cast<double>(reversed)}))
          << "bits " << bits << " index " << i;
    }
  }
}

TEST(FftTest, TwoThreadsAtOnceGetTheirOwnResults) {
  // The octave split transforms on two threads: each keeps its own twiddles and block buffers.
  const std::int32_t sizes[2] = {1 << 15, 1 << 12};
  Array1<Complex> expected[2], results[2];
  for (int t = 0; t < 2; ++t) {
    expected[t] = RandomSignal(sizes[t], static_cast<unsigned>(t + 7));
    results[t] = expected[t];
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
  for (int t = 0; t < 2; ++t) EXPECT_LE(RelativeDifference(results[t], expected[t]), 1e-13) << "thread " << t;
}

TEST(FftTest, AnArrayLongerThanNKeepsItsTail) {
  Array1<Complex> x{{1, 0}, {1, 0}, {9, 9}};
  Fft(2, x, -1);
  EXPECT_EQ(x, (Array1<Complex>{{2, 0}, {0, 0}, {9, 9}}));
}

TEST(FftTest, RefusesLengthsDirectionsAndArraysItCannotTransform) {
  Array1<Complex> x(8);
  EXPECT_THROW(Fft(6, x, -1), LegacyError);
  EXPECT_THROW(Fft(0, x, -1), LegacyError);
  EXPECT_THROW(Fft(8, x, 0), LegacyError);
  try {
    Fft(16, x, -1);
    FAIL() << "a 16-point transform of 8 elements must be refused";
  } catch (const LegacyError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::SubscriptOutOfRange);
  }
}

TEST(FftLengthTest, SmallestPowerOfTwoFromFour) {
  struct Case {
    std::int32_t n, length1, length2;
  };
  for (const Case& c : {Case{1, 4, 4}, Case{2, 4, 4}, Case{3, 4, 8}, Case{4, 4, 8}, Case{5, 8, 16},
                        Case{8, 8, 16}, Case{9, 16, 32}, Case{1000000, 1048576, 2097152}}) {
    EXPECT_EQ(FftLength1(c.n), c.length1) << "N " << c.n;
    EXPECT_EQ(FftLength2(c.n), c.length2) << "N " << c.n;
  }
  EXPECT_EQ(FftLength1((1 << 30)), 1 << 30);
  EXPECT_THROW(FftLength1((1 << 30) + 1), LegacyError);  // 2^31 does not fit an i32
  EXPECT_THROW(FftLength2((1 << 29) + 1), LegacyError);
}

}  // namespace
}  // namespace velmora
