#include "analysis/real_fft.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "analysis/fft.h"
#include "base/legacy_error.h"

namespace velmora {
namespace {

Array1<double> RandomReal(std::int32_t n, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> value(-30.0, 30.0);
  Array1<double> x(static_cast<std::size_t>(n));
  for (double& v : x) v = value(random);
  return x;
}

Array1<Complex> AsComplex(const Array1<double>& x) {
  Array1<Complex> c(static_cast<std::size_t>(x.size()));
  for (std::ptrdiff_t i = 1; i <= x.size(); ++i) c[i] = {x[i], 0.0};
  return c;
}

double Largest(const Array1<Complex>& x) {
  double most = 0;
  for (const Complex& c : x) most = std::max({most, std::abs(c.Re), std::abs(c.Im)});
  return most;
}

TEST(RealFftTest, ForwardGivesTheLowerHalfOfTheFullTransform) {
  for (std::int32_t n = 2; n <= 4096; n *= 2) {
    const Array1<double> x = RandomReal(n, static_cast<unsigned>(n));
    Array1<Complex> full = AsComplex(x);
    Fft(n, full, -1);
    Array1<Complex> half;
    RealForwardFft(n, x, half);
    ASSERT_EQ(half.size(), n / 2 + 1);
    const double tolerance = 1e-13 * Largest(full);
    for (std::int32_t p = 1; p <= n / 2 + 1; ++p) {
      EXPECT_NEAR(half[p].Re, full[p].Re, tolerance) << "n " << n << " bin " << p;
      EXPECT_NEAR(half[p].Im, full[p].Im, tolerance) << "n " << n << " bin " << p;
    }
    // Zero frequency and n/2 of a real sequence have no imaginary part at all.
    EXPECT_EQ(half[1].Im, 0.0);
    EXPECT_EQ(half[n / 2 + 1].Im, 0.0);
  }
}

TEST(RealFftTest, InverseOfASymmetricSpectrumIsTheRealPartOfTheFullInverse) {
  for (std::int32_t n = 2; n <= 4096; n *= 2) {
    // A symmetric spectrum with a cut-out band, like a masked profile spectrum.
    Array1<Complex> full = AsComplex(RandomReal(n, 7u + static_cast<unsigned>(n)));
    Fft(n, full, -1);
    for (std::int32_t p = 2; p <= n / 2 + 1; ++p)
      if (p % 3 == 0) full[p] = full[n + 2 - p] = {0.0, 0.0};
    Array1<Complex> half(static_cast<std::size_t>(n / 2 + 1));
    for (std::int32_t p = 1; p <= n / 2 + 1; ++p) half[p] = full[p];
    Fft(n, full, +1);
    RealInverseFft(n, half);
    Array1<double> samples(static_cast<std::size_t>(n));
    UnpackReal(half, 0, n, samples.data());
    const double tolerance = 1e-13 * Largest(full);
    for (std::int32_t j = 1; j <= n; ++j) {
      EXPECT_NEAR(samples[j], full[j].Re, tolerance) << "n " << n << " sample " << j;
      EXPECT_NEAR(full[j].Im, 0.0, tolerance) << "the full inverse is real too";
    }
  }
}

TEST(RealFftTest, ForwardThenInverseGivesNTimesTheSamples) {
  const std::int32_t n = 1 << 14;
  const Array1<double> x = RandomReal(n, 3);
  Array1<Complex> half;
  RealForwardFft(n, x, half);
  RealInverseFft(n, half);
  Array1<double> back(static_cast<std::size_t>(n));
  UnpackReal(half, 0, n, back.data());
  for (std::int32_t j = 1; j <= n; ++j) EXPECT_NEAR(back[j] / n, x[j], 1e-12) << j;
}

TEST(RealFftTest, UnpackReadsAnyRunOfSamplesInOrder) {
  Array1<Complex> packed{{1, 2}, {3, 4}, {5, 6}};
  double out[3] = {};
  UnpackReal(packed, 1, 3, out);
  EXPECT_EQ(out[0], 2);
  EXPECT_EQ(out[1], 3);
  EXPECT_EQ(out[2], 4);
  EXPECT_THROW(UnpackReal(packed, 4, 3, out), LegacyError);
}

TEST(RealFftTest, RefusesLengthsItCannotSplitAndShortArrays) {
  Array1<double> x(6);
  Array1<Complex> half;
  EXPECT_THROW(RealForwardFft(6, x, half), LegacyError);
  EXPECT_THROW(RealForwardFft(1, x, half), LegacyError);
  EXPECT_THROW(RealForwardFft(8, x, half), LegacyError);
  Array1<Complex> shortHalf(4);
  EXPECT_THROW(RealInverseFft(8, shortHalf), LegacyError);
}

}  // namespace
}  // namespace velmora
