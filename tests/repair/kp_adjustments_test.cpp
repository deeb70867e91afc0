#include "repair/kp_adjustments.h"

#include <gtest/gtest.h>

#include "support/checks.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

// 101 samples at 0.5 m: 50 m of road from KP 2.000 km. Crests and troughs at samples 11, 41 and 81.
ProfileRecord Road(int kpSign) {
  ProfileRecord record = testing::MakeProfile("R", 0.5, testing::Ramp(101), 2.0, kpSign);
  record.RepairStudy.PointTable = {{11, 1, 0, 0}, {41, 2, 0, kPointTrough}, {81, 3, 0, 0}};
  return record;
}

TEST(KpAdjustments, SampleAtAKpCountsAlongTheKpDirectionAndRefusesKpsBesideTheRoad) {
  const ProfileRecord rising = Road(0), falling = Road(1);
  // (2.0105 − 2.000) km = 10.5 m = 21 steps: sample 22; on a falling KP the road runs the other way.
  EXPECT_EQ(SampleAtKp(rising, 2.0105), 22);
  EXPECT_EQ(SampleAtKp(falling, 1.9895), 22);
  EXPECT_EQ(SampleAtKp(rising, 2.000), 1);
  EXPECT_EQ(SampleAtKp(rising, 2.050), 101);
  EXPECT_FALSE(SampleAtKp(rising, 2.0505).has_value());  // sample 102
  EXPECT_FALSE(SampleAtKp(rising, 1.999).has_value());   // sample −1
  ProfileRecord noKp = Road(0);
  noKp.Erd.KpStart = kNoValue;  // counted from 0
  EXPECT_EQ(SampleAtKp(noKp, 0.003), 7);
}

TEST(KpAdjustments, EachPointMovesTheNearestCrestOrTroughAndAKpBesideTheRoadNamesTheFile) {
  // KP 2.0185 is sample 38, nearest the trough at 41; KP 2.048 is sample 97, nearest the crest at 81.
  const StudyTarget study = ThicknessStudyAtKps(Road(0), "adjust[厚]", {{2.0185, 12.5}, {2.048, -3}}, "adj.csv");
  EXPECT_EQ(study.Name, "adjust[厚]");
  EXPECT_EQ(study.Thickness, (std::vector<double>{0, 12.5, -3}));
  EXPECT_EQ(testing::WhatOf([] { ThicknessStudyAtKps(Road(0), "adjust[厚]", {{2.2, 1}}, "adj.csv"); }),
            "adj.csv: KP 2.200 km lies outside the profile R");
}

}  // namespace
}  // namespace velmora
