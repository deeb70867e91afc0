// The profile's own statistics (that a read fills them is in erd_read_test.cpp).
#include "profile/profile_statistics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace velmora {
namespace {

TEST(CalcProfileStatistics, FiguresByHandNegativeValuesAndNoSample) {
  const std::vector<double> v = {1, 4, 2, 3};
  const ProfileStatistics s = CalcProfileStatistics(v);
  EXPECT_EQ(s.Count, 4);
  EXPECT_DOUBLE_EQ(s.Sum, 10);
  EXPECT_DOUBLE_EQ(s.Mean, 2.5);
  // Deviations ±1.5, ±0.5: (2.25 + 2.25 + 0.25 + 0.25) / 4 = 1.25.
  EXPECT_DOUBLE_EQ(s.StdDev, std::sqrt(1.25));
  EXPECT_DOUBLE_EQ(s.Max, 4);
  EXPECT_DOUBLE_EQ(s.Min, 1);
  EXPECT_DOUBLE_EQ(s.Spread, 3);
  // All below zero: the seeds give way to the values.
  const std::vector<double> negative = {-3, -7};
  EXPECT_DOUBLE_EQ(CalcProfileStatistics(negative).Max, -3);
  EXPECT_DOUBLE_EQ(CalcProfileStatistics(negative).Min, -7);
  EXPECT_DOUBLE_EQ(CalcProfileStatistics(negative).StdDev, 2);
  const ProfileStatistics none = CalcProfileStatistics({});
  EXPECT_EQ(none.Count, 0);
  EXPECT_EQ(none.Max, 0);
}

}  // namespace
}  // namespace velmora
