// The verification's curves as the chart draws them: each later profile against the first, built
// from the run's own series.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "evaluation/evaluation_fixture.h"
#include "graph/charts.h"
#include "support/profile_fixture.h"

namespace velmora::graph {
namespace {

class CorrelationCurvesTest : public testing::EvaluationTest {};

TEST_F(CorrelationCurvesTest, ACopyMovedByThreeSamplesCorrelatesFullyAtThatShift) {
  std::mt19937_64 random(11);
  std::normal_distribution<double> noise(0.0, 2.0);
  std::vector<double> base(400);
  for (double& x : base) x = noise(random);
  // The copy's sample i is the base's sample i + 3: the two agree wherever they overlap at a shift of 3.
  std::vector<double> moved(base.begin() + 3, base.end());
  moved.resize(base.size(), 0.0);
  const ProfileList list = testing::ListOf({testing::MakeProfile("A", 0.25, base), testing::MakeProfile("B", 0.25, moved)});
  CorrelationResults results;
  const CorrelationOptions options{.MaxShiftText = "10", .FilterMode = 0};
  ASSERT_TRUE(RunCrossCorrelation(session, list, AllRows(list), options, session.CurrentConditions.Iri, results));

  const std::vector<CorrelationCurve> curves = CorrelationCurves(session, list, results, session.CurrentConditions.Iri);
  ASSERT_EQ(curves.size(), 1u);
  const CorrelationCurve& curve = curves.front();
  EXPECT_EQ(curve.Name, "B");
  EXPECT_EQ(curve.MaxShift, 10);
  ASSERT_EQ(curve.Rho.size(), 21u);  // shifts -10..10
  const auto best = std::max_element(curve.Rho.begin(), curve.Rho.end());
  EXPECT_EQ(std::abs(static_cast<int>(best - curve.Rho.begin()) - curve.MaxShift), 3);
  EXPECT_NEAR(*best, 1.0, 0.02);  // the zeros padded at the copy's end are the only disagreement
  // The peak marked is the one the run reported, at the curve's own highest point.
  EXPECT_EQ(curve.Peak.Shift, static_cast<int>(best - curve.Rho.begin()) - curve.MaxShift);
  EXPECT_NEAR(curve.Peak.Value, *best, 1e-9);
}

}  // namespace
}  // namespace velmora::graph
