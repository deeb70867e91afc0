// The profile's own statistics, as computed when a profile is read.
#include "profile/profile_statistics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "profile/erd_file.h"
#include "profile/profile_reader.h"
#include "support/test_support.h"

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

TEST(CalcProfileStatistics, FilledWhenAProfileIsRead) {
  testing::TempDir dir;
  ErdRecord rec;
  rec.NumChannels = 1;
  rec.FormatCode = 5;
  rec.NumSamples = rec.NumSamplesHeader = 4;
  rec.IsMetric = true;
  rec.StepSize = 0.25;
  rec.Title = "S";
  rec.Elevation = Array1<double>(std::vector<double>{1, 4, 2, 3});
  const std::string path = (dir / "S.erd").string();
  ASSERT_TRUE(WriteERD(path, rec));
  ProfileRecord profile;
  ASSERT_TRUE(ReadProfile(path, profile));
  EXPECT_EQ(profile.Statistics.Count, 4);
  EXPECT_NEAR(profile.Statistics.Mean, 2.5, 1e-9);
  EXPECT_NEAR(profile.Statistics.Spread, 3, 1e-9);
}

}  // namespace
}  // namespace velmora
