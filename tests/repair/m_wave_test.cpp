#include "repair/m_wave.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "support/expect_values.h"
#include "support/session_fixture.h"

// Every expected value below is worked out by hand from the small waves in the comments.
namespace velmora {
namespace {

using testing::ExpectValues;

Array1<double> Wave(std::vector<double> v) { return Array1<double>(std::move(v)); }

// M = 0 2 1 0 3 1: crests at 2 (height 2) and 5 (height 3).
TEST(MWaveRows, ForwardAndBackwardPassesOnASmallWave) {
  const auto m = Wave({0, 2, 1, 0, 3, 1});
  Array1<MWaveRow> rows = BuildMWaveRows(m, 0);

  using enum MWaveSign;
  const MWaveSign down[] = {None, Plus, Minus, Minus, Plus, Minus};
  const MWaveSign up[] = {Minus, Plus, Plus, Minus, Plus, None};
  const double crest[] = {MWaveSeed, 2, MWaveSeed, MWaveSeed, 3, MWaveSeed};
  const int countDown[] = {-1, 0, 1, 2, 0, 1};
  const double startHeight[] = {MWaveSeed, 2, 2, 2, 3, 3};
  const int countUp[] = {1, 0, 2, 1, 0, -1};
  const double endHeight[] = {2, 2, 3, 3, 3, MWaveSeed};
  for (int i = 1; i <= 6; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(rows[i].JudgeDown, down[i - 1]);
    EXPECT_EQ(rows[i].JudgeUp, up[i - 1]);
    EXPECT_EQ(rows[i].Crest, crest[i - 1]);
    EXPECT_EQ(rows[i].CountDown, countDown[i - 1]);
    EXPECT_EQ(rows[i].StartHeight, startHeight[i - 1]);
    EXPECT_EQ(rows[i].CountUp, countUp[i - 1]);
    EXPECT_EQ(rows[i].EndHeight, endHeight[i - 1]);
  }

  // Pass 3: the line from (2, 2) to (5, 3) over the trough; M kept outside the crests.
  const Array1<double> joined = JoinCrests(m, rows);
  ExpectValues(joined, {0, 2, 2 + 1.0 / 3, 2 + 2.0 / 3, 3, 1});
  EXPECT_EQ((std::vector{rows[1].Rise, rows[2].Rise, rows[3].Rise, rows[6].Rise}), (std::vector{MWaveSeed, 0.0, 1.0, MWaveSeed}));
}

class MWaveStraightening : public testing::SessionTest {};

TEST_F(MWaveStraightening, CrestShapesThatNeedNoSpecialCase) {
  struct Case {
    const char* what;
    std::vector<double> m;
    std::int32_t withTroughs;
    std::vector<double> expected;
  };
  const Case cases[] = {
      {"no crest keeps M", {0, 1, 2, 3, 2.5}, 0, {0, 1, 2, 3, 2.5}},
      {"a single crest keeps M everywhere", {0, 1, 3, 1, 0}, 0, {0, 1, 3, 1, 0}},
      {"equal crests lie flat between them", {0, 2, 1, 0, 2, 0}, 0, {0, 2, 2, 2, 2, 0}},
      {"a step below 1e-9 is no crest", {0, 1, 1 + 5e-10, 0.5}, 0, {0, 1, 1 + 5e-10, 0.5}},
      // Crests at 2 (3) and 7 (4); the plateau 2 2 at 4..5 has an "=" side and is passed over.
      {"plateau is skipped", {0, 3, 1, 2, 2, 1, 4, 0}, 0, {0, 3, 3.2, 3.4, 3.6, 3.8, 4, 0}},
      // Crests at 2 (4) and 7 (5), trough at 5 (0).
      {"crests only", {0, 4, 3, 1, 0, 2, 5, 1}, 0, {0, 4, 4.2, 4.4, 4.6, 4.8, 5, 1}},
      {"troughs join too", {0, 4, 3, 1, 0, 2, 5, 1}, 1, {0, 4, 4 - 4.0 / 3, 4 - 8.0 / 3, 0, 2.5, 5, 1}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const auto m = Wave(c.m);
    WaveSeries out;
    ASSERT_TRUE(Cal_補修形状_M波の直線化(session, static_cast<std::int32_t>(c.m.size()), m, c.withTroughs, PlanRange{}, out));
    ExpectValues(out.Values, c.expected);
    EXPECT_TRUE(out.Calculated);
  }
  // M' = 0 2 2 2 2 0 of the equal crests: mean 4/3, population deviation sqrt(8/9).
  WaveSeries out;
  ASSERT_TRUE(Cal_補修形状_M波の直線化(session, 6, Wave({0, 2, 1, 0, 2, 0}), 0, PlanRange{}, out));
  EXPECT_NEAR(out.Stats.Mean, 4.0 / 3, 1e-12);
  EXPECT_NEAR(out.Stats.StdDev, std::sqrt(8.0 / 9), 1e-12);
  EXPECT_EQ(out.Stats.Maximum, 2.0);
  EXPECT_EQ(out.Stats.Minimum, 0.0);
}

// M = 5 1 0 2 1 0 3 1 0 4 at 1 m pitch from KP 0: crests at 4 (2) and 7 (3).
PlanRange PlanOnTenSamples(double startKp, double endKp) {
  PlanRange plan;
  plan.Use = true;
  plan.StartKp = startKp;
  plan.EndKp = endKp;
  plan.FirstKp = 0;
  plan.PitchM = 1.0;
  return plan;
}
const std::vector<double> kTen{5, 1, 0, 2, 1, 0, 3, 1, 0, 4};

TEST_F(MWaveStraightening, PlanRangeDrawsRunInAndRunOut) {
  const struct {
    const char* what;
    PlanRange plan;
    std::vector<double> expected;
  } cases[] = {
      // S = 2, E = 9. Run-in from (2, 1) to (4, 2); run-out from (7, 3) to (9, 0); 1 and 10 keep M.
      {"both ends given", PlanOnTenSamples(0.001, 0.008), {5, 1, 1.5, 2, 2 + 1.0 / 3, 2 + 2.0 / 3, 3, 1.5, 0, 4}},
      {"no end: the joined wave after the last crest", PlanOnTenSamples(0.001, MWaveSeed),
       {5, 1, 1.5, 2, 2 + 1.0 / 3, 2 + 2.0 / 3, 3, 1, 0, 4}},
      {"no plan: M before the first and after the last crest", PlanRange{},
       {5, 1, 0, 2, 2 + 1.0 / 3, 2 + 2.0 / 3, 3, 1, 0, 4}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    WaveSeries out;
    ASSERT_TRUE(Cal_補修形状_M波の直線化(session, 10, Wave(kTen), 0, c.plan, out));
    ExpectValues(out.Values, c.expected);
  }
}

TEST_F(MWaveStraightening, RunInOfZeroLengthEndsInTheErrorLogWithAClearMessage) {
  // The plan starts at KP 0.003, sample 4, which is itself a crest.
  WaveSeries out;
  EXPECT_FALSE(Cal_補修形状_M波の直線化(session, 10, Wave(kTen), 0, PlanOnTenSamples(0.003, 0.008), out));
  EXPECT_FALSE(out.Calculated);
  EXPECT_TRUE(out.Values.empty());
  const std::string text = ui_.OnlyMessageText();
  EXPECT_NE(text.find("0 で除算しました。"), std::string::npos) << text;
  EXPECT_NE(text.find("起点 (インデックス 4)"), std::string::npos) << text;
  EXPECT_EQ(ui_.Messages()[0].Title, "[ bas補修形状計算 : Cal_補修形状_M波の直線化 ]");
  EXPECT_NE(testing::ReadBytes(dir_ / "Temp" / "Sorvik_Err.log").find("Cal_"), std::string::npos);

  // The same at the far end: the plan ends on the crest at 7.
  ui_.Log.clear();
  EXPECT_FALSE(Cal_補修形状_M波の直線化(session, 10, Wave(kTen), 0, PlanOnTenSamples(0.001, 0.006), out));
  EXPECT_NE(ui_.OnlyMessageText().find("終点 (インデックス 7)"), std::string::npos);
}

TEST(PlanRangeIndices, RisingFallingCutAndSwapped) {
  // S, E and whether each end was given.
  const auto indices = [](const PlanRange& plan) {
    const PlanIndices got = PlanRangeIndices(41, plan);
    return std::tuple(got.S, got.E, got.StartGiven, got.EndGiven);
  };
  PlanRange plan;
  EXPECT_EQ(indices(plan), std::tuple(1, 41, false, false));

  // 41 samples at 0.25 m from KP 10.000: the last sample is at 10.010. 2.4 m is 9.6 pitches, the
  // nearest sample 11; 5 m is 20 pitches, sample 21.
  plan.Use = true;
  plan.FirstKp = 10.0;
  plan.PitchM = 0.25;
  plan.StartKp = 10.0024;
  plan.EndKp = 10.005;
  EXPECT_EQ(indices(plan), std::tuple(11, 21, true, true));
  std::swap(plan.StartKp, plan.EndKp);  // given the wrong way round
  EXPECT_EQ(indices(plan), std::tuple(11, 21, true, true));

  plan.StartKp = 9.9;  // before the profile: cut to sample 1, no longer given
  plan.EndKp = MWaveSeed;
  EXPECT_EQ(indices(plan), std::tuple(1, 41, false, false));

  // Falling KP from 10.010: KP 10.0075 is 10 pitches in (sample 11), 10.0025 is 30 (sample 31).
  plan.FirstKp = 10.010;
  plan.KpSign = 1;
  plan.StartKp = 10.0025;
  plan.EndKp = 10.0075;
  EXPECT_EQ(indices(plan), std::tuple(11, 31, true, true));
}

TEST_F(MWaveStraightening, CrestsAndTroughsInIndexOrder) {
  std::vector<MWaveExtremum> crests, troughs;
  ASSERT_TRUE(Cal_補修形状_M波の山谷情報(session, 8, Wave({0, 4, 3, 1, 0, 2, 5, 1}), crests, troughs));
  // Index and value of each.
  auto points = [](const std::vector<MWaveExtremum>& v) {
    std::vector<std::pair<std::int32_t, double>> out;
    for (const auto& e : v) out.emplace_back(e.Index, e.Value);
    return out;
  };
  EXPECT_EQ(points(crests), (std::vector<std::pair<std::int32_t, double>>{{2, 4}, {7, 5}}));
  EXPECT_EQ(points(troughs), (std::vector<std::pair<std::int32_t, double>>{{5, 0}}));
}

TEST_F(MWaveStraightening, RecalculationSortsTheKeptPointsJoinsThemAndRefusesTwoOnOneSample) {
  // Heights: (2) 1 + 1 = 2, (5) 4 + 1 = 5, (7) 0 + 1 = 1; the point at 3 is left out.
  const std::vector<StudyPoint> points{{5, 4, 1}, {3, MWaveSeed, 7}, {2, 1, 1}, {7, 0, 1}};
  StudyTarget target;
  ASSERT_TRUE(Cal_補修形状_M波の再計算(session, Wave({10, 10, 10, 10, 10, 10, 10, 10}), points, target));
  ExpectValues(target.Outcome.MPrime.Wave.Values, {10, 2, 3, 4, 5, 3, 1, 10});
  EXPECT_TRUE(target.Recalculated);
  // Two points on one sample go to the error log.
  StudyTarget twice;
  EXPECT_FALSE(Cal_補修形状_M波の再計算(session, Wave({0, 0, 0}), {{2, 1, 0}, {2, 3, 0}}, twice));
  EXPECT_FALSE(twice.Recalculated);
  EXPECT_NE(ui_.OnlyMessageText().find("重複"), std::string::npos);
}

}  // namespace
}  // namespace velmora
