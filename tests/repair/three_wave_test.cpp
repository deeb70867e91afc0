#include "repair/three_wave.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "study_fixture.h"
#include "support/checks.h"
#include "support/session_fixture.h"

namespace velmora {
namespace {

using testing::StudyForm;
using testing::ThreeSineProfile;

class ThreeWave : public testing::SessionTest {};

TEST_F(ThreeWave, ChecksInOrderWithTheirMessagesAndFocus) {
  struct Case {
    ThreeWaveForm form;
    const char* message;
    ThreeWaveField focus;
  };
  auto with = [](auto change) {
    ThreeWaveForm f = StudyForm();
    change(f);
    return f;
  };
  // Emptiness of all three boxes comes before any numeric check.
  const Case cases[] = {
      {with([](auto& f) { f.LongBoundary = ""; f.ShortBoundary = ""; }), "長波側境界値が指定されていません。",
       ThreeWaveField::LongBoundary},
      {with([](auto& f) { f.ShortBoundary = " "; f.LongBoundary = "abc"; }), "短波側境界値が指定されていません。",
       ThreeWaveField::ShortBoundary},
      {with([](auto& f) { f.IriLength = ""; f.LongBoundary = "abc"; }), "IRI算出基準長が指定されていません。",
       ThreeWaveField::IriLength},
      {with([](auto& f) { f.LongBoundary = "abc"; f.ShortBoundary = "x"; }), "長波側境界値は数値で指定して下さい。",
       ThreeWaveField::LongBoundary},
      {with([](auto& f) { f.ShortBoundary = "4m"; }), "短波側境界値は数値で指定して下さい。",
       ThreeWaveField::ShortBoundary},
      {with([](auto& f) { f.IriLength = "十"; }), "IRI算出基準長は数値で指定して下さい。", ThreeWaveField::IriLength},
  };
  for (const Case& c : cases) {
    ui_.Log.clear();
    ThreeWaveParams params;
    ThreeWaveField focus = ThreeWaveField::None;
    EXPECT_FALSE(getParam_補修形状検討_3波分解(session, c.form, params, &focus));
    testing::ExpectMessages(ui_, {{c.message, "警告"}});
    EXPECT_EQ(focus, c.focus);
  }

  // Reversed boundaries are not refused; lines are taken trimmed.
  ui_.Log.clear();
  ThreeWaveForm form = StudyForm();
  form.LongBoundary = "2";
  form.ShortBoundary = "30";
  form.Lines[3] = " 1.5 ";
  ThreeWaveParams params;
  ASSERT_TRUE(getParam_補修形状検討_3波分解(session, form, params));
  EXPECT_EQ(std::tuple(params.LongBoundary, params.ShortBoundary, params.IriLength), std::tuple(2.0, 30.0, 10.0));
  EXPECT_EQ(params.Lines[3], "1.5");
  EXPECT_TRUE(ui_.Log.empty());
}

// RMS over the middle half, away from the fold at both ends.
double MiddleRms(const Array1<double>& a) {
  double sum = 0;
  const std::ptrdiff_t from = a.size() / 4, to = 3 * a.size() / 4;
  for (std::ptrdiff_t i = from; i < to; ++i) sum += a[i] * a[i];
  return std::sqrt(sum / static_cast<double>(to - from));
}

TEST_F(ThreeWave, OneSplitsPartsAddUpToTheProfileAndEachSineLandsInItsWave) {
  const ProfileRecord road = ThreeSineProfile();
  WaveSeries L, M, S;
  ASSERT_TRUE(Cal_補修形状3波分解_SUB(session, 51.2, 4.0, road.WorkCount, 0.25, road.WorkProfile, L, M, S));
  ASSERT_EQ(L.Values.size(), road.WorkCount);
  // The three masks split the spectrum without gap or overlap, so the parts rebuild the profile.
  double worst = 0;
  for (std::int32_t i = 1; i <= road.WorkCount; ++i)
    worst = std::max(worst, std::fabs(L.Values[i] + M.Values[i] + S.Values[i] - road.WorkProfile[i]));
  EXPECT_LT(worst, 1e-9);
  // A sine of amplitude a has an RMS of a / sqrt 2: 5, 3 and 1 mm.
  EXPECT_NEAR(MiddleRms(L.Values), 5 / std::sqrt(2.0), 0.25);
  EXPECT_NEAR(MiddleRms(M.Values), 3 / std::sqrt(2.0), 0.15);
  EXPECT_NEAR(MiddleRms(S.Values), 1 / std::sqrt(2.0), 0.05);
  EXPECT_TRUE(M.Calculated);
  EXPECT_NEAR(M.Stats.Mean, 0, 0.2);
  // Reversed boundaries still run.
  EXPECT_TRUE(Cal_補修形状3波分解_SUB(session, 4.0, 51.2, road.WorkCount, 0.25, road.WorkProfile, L, M, S));
  EXPECT_EQ(M.Values.size(), road.WorkCount);
}

TEST_F(ThreeWave, ConvergentSumSettlesOnTheProfile) {
  const ProfileRecord road = ThreeSineProfile();
  WaveSeries L, M, S;
  ASSERT_TRUE(Cal_収束計算による波形分解(session, 51.2, 4.0, road.WorkCount, 0.25, road.WorkProfile, 5, L, M, S));
  for (std::int32_t i = 1; i <= road.WorkCount; ++i)
    ASSERT_NEAR(L.Values[i] + M.Values[i] + S.Values[i], road.WorkProfile[i], 1e-9) << i;
  EXPECT_NEAR(MiddleRms(M.Values), 3 / std::sqrt(2.0), 0.15);
  EXPECT_EQ(ui_.Log.front().Text, "収束計算中  1 / 5 ・・・・");
}

class ThreeWaveRunTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    profiles_ = {ThreeSineProfile("a.ERD"), ThreeSineProfile("b.ERD")};
    getParam_補修形状検討_3波分解(session, StudyForm(), params_);
    stored_ = params_;
  }
  ThreeWaveRun Run(const std::vector<std::int32_t>& rows) {
    return PubCal_補修形状検討_3波分解(session, profiles_, rows, params_, stored_);
  }
  std::vector<ProfileRecord> profiles_;
  ThreeWaveParams params_, stored_;
};

TEST_F(ThreeWaveRunTest, SplitsOnlyWhatIsNotValidAndShowsNothingWhenUnchanged) {
  EXPECT_FALSE(Run({}).StudyReset);
  EXPECT_TRUE(ui_.Log.empty());  // no selection: a quiet success

  ASSERT_TRUE(Run({2}).Ok);
  EXPECT_FALSE(profiles_[0].ThreeWave.Valid);
  ASSERT_TRUE(profiles_[1].ThreeWave.Valid);
  EXPECT_EQ(ui_.Log[0].Kind, "progress-start");
  testing::ExpectShown(ui_.Log[0], {"しばらくお待ちください。", "３波長分解"});

  // A valid split is not made again.
  profiles_[1].ThreeWave.MiddleWave.Values[1] = 12345;
  profiles_[1].Studies.resize(1);
  const ThreeWaveRun again = Run({1, 2});
  EXPECT_FALSE(again.StudyReset);
  EXPECT_EQ(profiles_[1].ThreeWave.MiddleWave.Values[1], 12345);
  EXPECT_EQ(profiles_[1].Studies.size(), 1u);
  EXPECT_TRUE(profiles_[0].ThreeWave.Valid);
  EXPECT_TRUE(ui_.Messages().empty());
}

TEST_F(ThreeWaveRunTest, AChangedIriLengthOrBandLineAloneResetsEveryProfilesStudy) {
  ASSERT_TRUE(Run({1, 2}).Ok);
  profiles_[0].ThreeWave.MiddleWave.Values[1] = 12345;
  profiles_[0].Studies.resize(2);
  profiles_[1].Studies.resize(1);
  profiles_[1].RepairStudy.MiddleValid = true;

  params_.IriLength = 20;
  const ThreeWaveRun run = Run({1});
  EXPECT_TRUE(run.StudyReset);
  EXPECT_EQ(stored_.IriLength, 20.0);
  EXPECT_EQ(session.CurrentConditions.RepairIri.IriBaseLength, 20.0);
  testing::ExpectMessages(ui_, {{"補修形状算出の境界値が変更されました。\r\nＭ波、Ｓ波、理想形状案のデータが初期化されます。", "確認"}});
  // The selected profile is split anew, the other one waits for its next run.
  EXPECT_TRUE(profiles_[0].ThreeWave.Valid);
  EXPECT_NE(profiles_[0].ThreeWave.MiddleWave.Values[1], 12345);
  EXPECT_FALSE(profiles_[1].ThreeWave.Valid);
  EXPECT_TRUE(profiles_[0].Studies.empty());
  EXPECT_TRUE(profiles_[1].Studies.empty());
  EXPECT_FALSE(profiles_[1].RepairStudy.MiddleValid);

  // A changed band line text alone resets too.
  params_.Lines[9] = "0.5";
  EXPECT_TRUE(Run({1}).StudyReset);
  EXPECT_EQ(session.CurrentConditions.RepairBandLines.Value[9], 0.5);
}

TEST_F(ThreeWave, BoxesFilledFromTheConditionsPassTheirOwnChecks) {
  CalcConditions conditions;
  conditions.RepairIri.IriBaseLength = 10;
  conditions.RepairBandLines.Value.fill(kNoValue);
  conditions.RepairBandLines.Value[2] = 0.25;
  const ThreeWaveForm form = ThreeWaveFormFromConditions(conditions);
  EXPECT_EQ(form.LongBoundary, "51.2");
  EXPECT_EQ(form.ShortBoundary, "6.4");
  EXPECT_EQ(form.Lines[1], "");
  EXPECT_EQ(form.Lines[2], "0.25");
  ThreeWaveParams fromBoxes;
  ASSERT_TRUE(getParam_補修形状検討_3波分解(session, form, fromBoxes));
  // A first run with untouched boxes finds nothing changed.
  EXPECT_EQ(fromBoxes, ThreeWaveParamsFromConditions(conditions));
}

}  // namespace
}  // namespace velmora
