// The correlation at every shift: worked by hand on a ramp, and its top is the peak the pair reports.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "evaluation/cross_correlation_kernel.h"

namespace velmora {
namespace {

TEST(CorrelationByShift, RampAgainstItself) {
  // Deviations -2 -1 0 1 2, sample sd sqrt(10/4) each, so sd product 2.5 and n = 5:
  // shift 0 sums 10, shifts -1 and +1 sum (-1)(-2) + 0 + 0 + 2*1 = 4; rho = sum / 2.5 / 5.
  const std::vector<double> a{1, 2, 3, 4, 5};
  const std::vector<double> rho = CorrelationByShift(5, a, a, 1);
  ASSERT_EQ(rho.size(), 3u);
  EXPECT_NEAR(rho[0], 0.32, 1e-15);
  EXPECT_NEAR(rho[1], 0.8, 1e-15);
  EXPECT_NEAR(rho[2], 0.32, 1e-15);
}

TEST(CorrelationByShift, ItsTopIsThePairsRhoPeak) {
  std::vector<double> a(400), b(400);
  for (std::size_t i = 0; i < a.size(); ++i) {
    a[i] = std::sin(0.05 * static_cast<double>(i)) + 0.3 * std::sin(0.31 * static_cast<double>(i));
    b[i] = std::sin(0.05 * static_cast<double>(i + 7)) + 0.3 * std::sin(0.31 * static_cast<double>(i + 7));
  }
  const std::vector<double> rho = CorrelationByShift(400, a, b, 20);
  const CorrelationCell cell = CrossCorrelatePair(400, a, b, 20);
  const auto top = std::max_element(rho.begin(), rho.end());
  EXPECT_EQ(*top, cell.Peak(CorrelationRow::Rho).Value);
  EXPECT_EQ(static_cast<int>(top - rho.begin()) - 20, cell.Peak(CorrelationRow::Rho).Shift);
  EXPECT_EQ(cell.Peak(CorrelationRow::Rho).Shift, -7);  // b is a ahead by 7: a[i] meets b[i - 7]
}

TEST(CorrelationByShift, RefusesWhatThePairRefuses) {
  const std::vector<double> flat(10, 3.0), a{1, 2, 3};
  EXPECT_ANY_THROW(CorrelationByShift(10, flat, flat, 2));
  EXPECT_ANY_THROW(CorrelationByShift(3, a, a, 3));
}

}  // namespace
}  // namespace velmora
