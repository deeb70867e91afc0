#include "evaluation/cross_correlation_kernel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "base/legacy_error.h"
#include "support/error_of.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

using testing::ErrorOf;
using testing::Road;

TEST(CrossCorrelatePair, ASeriesWithItselfPeaksAtZeroAndALaggedOneAtItsLag) {
  const int n = 200;
  const std::vector<double> a = Road(n);
  const CorrelationCell cell = CrossCorrelatePair(n, a, a, 10);
  // sd divides by n - 1 and rho by n: S(0) = (n-1) sd^2, so rho = (n-1)/n, not 1.
  EXPECT_NEAR(cell.Peak(CorrelationRow::Rho).Value, 199.0 / 200.0, 1e-12);
  EXPECT_EQ(cell.Peak(CorrelationRow::Rho).Shift, 0);
  EXPECT_EQ(cell.SdRatio, 1.0);
  EXPECT_NEAR(cell.Peak(CorrelationRow::Agreement).Value, 199.0 / 200.0, 1e-12);
  EXPECT_NEAR(cell.Peak(CorrelationRow::OverDeviations).Value, 199.0, 1e-9);
  EXPECT_TRUE(cell.Computed);

  // Road(n, 3)[k] = Road(n)[k + 3]: a's feature lies 3 samples later in b; the other way round -3.
  const std::vector<double> early = Road(300, 3), late = Road(300);
  const CorrelationCell ab = CrossCorrelatePair(300, early, late, 20);
  EXPECT_EQ(ab.Peak(CorrelationRow::Rho).Shift, 3);
  EXPECT_EQ(ab.Peak(CorrelationRow::Agreement).Shift, 3);
  EXPECT_EQ(CrossCorrelatePair(300, late, early, 20).Peak(CorrelationRow::Rho).Shift, -3);
}

TEST(CrossCorrelatePair, EqualPeaksReportTheMostNegativeShiftWithHandValues) {
  // a holds one (+1, -1) step at samples 4..5; b holds it at 1..2 and at 7..8. Both means are 0.
  // Shift +3 pairs a4,a5 with b7,b8 and shift -3 pairs them with b1,b2: S = 2 at both.
  const std::vector<double> a = {0, 0, 0, 1, -1, 0, 0, 0};
  const std::vector<double> b = {1, -1, 0, 0, 0, 0, 1, -1};
  const CorrelationCell cell = CrossCorrelatePair(8, a, b, 4);
  for (const CorrelationPeak& peak : cell.Peaks) EXPECT_EQ(peak.Shift, -3);
  // sdA = sqrt(2/7), sdB = sqrt(4/7): sdA sdB = sqrt(8)/7, R = 14/sqrt(8), rho = R / 8.
  EXPECT_DOUBLE_EQ(cell.Peak(CorrelationRow::SumOfProducts).Value, 2.0);
  EXPECT_DOUBLE_EQ(cell.Peak(CorrelationRow::OverOverlap).Value, 2.0 / 5.0);
  EXPECT_DOUBLE_EQ(cell.Peak(CorrelationRow::OverCount).Value, 2.0 / 8.0);
  EXPECT_NEAR(cell.Peak(CorrelationRow::OverDeviations).Value, 4.949747468305833, 1e-12);
  EXPECT_NEAR(cell.Peak(CorrelationRow::Rho).Value, 0.6187184335382291, 1e-12);
  EXPECT_NEAR(cell.SdRatio, std::sqrt(0.5), 1e-15);
  EXPECT_NEAR(cell.Peak(CorrelationRow::Agreement).Value, 0.6187184335382291 * std::sqrt(0.5), 1e-12);
}

TEST(CrossCorrelatePair, ConstantSeriesAndLimitsFailThroughTheErrorPath) {
  const std::vector<double> flat(50, 3.0);
  const std::vector<double> wavy = Road(50);
  EXPECT_EQ(ErrorOf([&] { CrossCorrelatePair(50, flat, wavy, 5); }), ErrorNumber::DivisionByZero);
  EXPECT_EQ(ErrorOf([&] { CrossCorrelatePair(50, wavy, wavy, 50); }), ErrorNumber::SubscriptOutOfRange);
  EXPECT_EQ(ErrorOf([&] { CrossCorrelatePair(60, wavy, wavy, 5); }), ErrorNumber::SubscriptOutOfRange);
  // 2 * 16384 + 1 shifts no longer fit the 16-bit counter; n = 46341 makes n * n pass 2^31 - 1.
  const std::vector<double> longer = Road(46341);
  EXPECT_EQ(ErrorOf([&] { CrossCorrelatePair(20000, longer, longer, 16384); }), ErrorNumber::Overflow);
  EXPECT_EQ(ErrorOf([&] { CrossCorrelatePair(46341, longer, longer, 2); }), ErrorNumber::Overflow);
  EXPECT_NO_THROW(CrossCorrelatePair(46340, longer, longer, 2));
}

TEST(SdRatio, SmallerOverLarger) {
  EXPECT_EQ(SdRatio(2, 4), 0.5);
  EXPECT_EQ(SdRatio(4, 2), 0.5);
  EXPECT_EQ(SdRatio(0, 3), 0.0);
  EXPECT_THROW(SdRatio(0, 0), LegacyError);
}

TEST(ShiftSums, BitForBitEqualToThePlainLoopForEveryShiftCountAndThreadCount) {
  std::mt19937_64 random(7);
  std::normal_distribution<double> noise(0.0, 3.0);
  for (const auto& [n, maxShift] : std::vector<std::pair<int, int>>{
           {1, 0}, {5, 4}, {17, 16}, {40, 15}, {40, 16}, {100, 33}, {100, 99}, {1000, 500}, {3000, 1499}}) {
    std::vector<double> a(static_cast<std::size_t>(n)), b(static_cast<std::size_t>(n));
    for (auto& x : a) x = noise(random);
    for (auto& x : b) x = noise(random);
    const std::vector<double> reference = detail::ShiftSumsPlain(a, b, maxShift);
    for (unsigned threads : {1u, 2u, 3u}) {
      const std::vector<double> fast = detail::ShiftSums(a, b, maxShift, threads);
      ASSERT_EQ(fast.size(), reference.size());
      for (std::size_t k = 0; k < fast.size(); ++k)
        ASSERT_EQ(fast[k], reference[k]) << "n " << n << " shift " << static_cast<int>(k) - maxShift;
    }
  }
}

TEST(ShiftSums, PlainLoopPairsPositiveShiftWithLaterSamplesOfB) {
  // dA = (1, 2, 3), dB = (10, 20, 40): shift +1 is 1*20 + 2*40, shift -1 is 2*10 + 3*20,
  // shift +2 is 1*40, shift -2 is 3*10, shift 0 is 10 + 40 + 120.
  const std::vector<double> a = {1, 2, 3}, b = {10, 20, 40};
  EXPECT_EQ(detail::ShiftSumsPlain(a, b, 2), (std::vector<double>{30, 80, 170, 100, 40}));
  EXPECT_EQ(detail::ShiftSums(a, b, 2), (std::vector<double>{30, 80, 170, 100, 40}));
}

}  // namespace
}  // namespace velmora
