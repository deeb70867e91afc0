// The repair study on a made-up road of three sines, one in each wave of the 4 m / 51.2 m split: the
// tab's checks, the split and its run, then the middle-wave, short-wave and ideal-shape steps.
#include "repair/three_wave.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <vector>

#include "analysis/iri.h"
#include "repair/ideal_shape.h"
#include "repair/study_targets.h"
#include "study_fixture.h"
#include "support/checks.h"
#include "support/profile_fixture.h"
#include "support/readback.h"
#include "support/session_fixture.h"

namespace velmora {
namespace {

using testing::StudyForm;
using testing::ThreeSineProfile;

class ThreeWave : public testing::SessionTest {};

TEST_F(ThreeWave, ChecksInOrderWithTheirMessagesAndFocus) {
  // The long, short and IRI boxes: emptiness of all three comes before any numeric check.
  const struct { const char *longBox, *shortBox, *iriBox, *message; ThreeWaveField focus; } cases[] = {
      {"", "", "10", "長波側境界値が指定されていません。", ThreeWaveField::LongBoundary},
      {"abc", " ", "10", "短波側境界値が指定されていません。", ThreeWaveField::ShortBoundary},
      {"abc", "4", "", "IRI算出基準長が指定されていません。", ThreeWaveField::IriLength},
      {"abc", "x", "10", "長波側境界値は数値で指定して下さい。", ThreeWaveField::LongBoundary},
      {"51.2", "4m", "10", "短波側境界値は数値で指定して下さい。", ThreeWaveField::ShortBoundary},
      {"51.2", "4", "十", "IRI算出基準長は数値で指定して下さい。", ThreeWaveField::IriLength}};
  for (const auto& c : cases) {
    ui_.Log.clear();
    ThreeWaveForm form = StudyForm();
    form.LongBoundary = c.longBox;
    form.ShortBoundary = c.shortBox;
    form.IriLength = c.iriBox;
    ThreeWaveParams params;
    ThreeWaveField focus = ThreeWaveField::None;
    EXPECT_FALSE(getParam_補修形状検討_3波分解(session, form, params, &focus));
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

TEST_F(ThreeWave, OneSplitAndTheConvergentSumAddUpToTheProfileAndEachSineLandsInItsWave) {
  // RMS over the middle half, away from the fold at both ends.
  const auto middleRms = [](const WaveSeries& wave) {
    double sum = 0;
    const std::ptrdiff_t from = wave.Values.size() / 4, to = 3 * wave.Values.size() / 4;
    for (std::ptrdiff_t i = from; i < to; ++i) sum += wave.Values[i] * wave.Values[i];
    return std::sqrt(sum / static_cast<double>(to - from));
  };
  const ProfileRecord road = ThreeSineProfile();
  for (const bool converge : {true, false}) {
    SCOPED_TRACE(converge);
    WaveSeries L, M, S;
    ASSERT_TRUE(converge ? Cal_収束計算による波形分解(session, 51.2, 4.0, road.WorkCount, 0.25, road.WorkProfile, 5, L, M, S)
                         : Cal_補修形状3波分解_SUB(session, 51.2, 4.0, road.WorkCount, 0.25, road.WorkProfile, L, M, S));
    ASSERT_EQ(L.Values.size(), road.WorkCount);
    if (converge) EXPECT_EQ(ui_.Log.front().Text, "収束計算中  1 / 5 ・・・・");
    // The three masks split the spectrum without gap or overlap, so the parts rebuild the profile.
    for (std::int32_t i = 1; i <= road.WorkCount; ++i)
      ASSERT_NEAR(L.Values[i] + M.Values[i] + S.Values[i], road.WorkProfile[i], 1e-9) << i;
    // A sine of amplitude a has an RMS of a / sqrt 2: 5, 3 and 1 mm.
    EXPECT_NEAR(middleRms(L), 5 / std::sqrt(2.0), 0.25);
    EXPECT_NEAR(middleRms(M), 3 / std::sqrt(2.0), 0.15);
    EXPECT_NEAR(middleRms(S), 1 / std::sqrt(2.0), 0.05);
    EXPECT_NEAR(M.Stats.Mean, 0, 0.2);
  }
  // Reversed boundaries still run.
  WaveSeries L, M, S;
  EXPECT_TRUE(Cal_補修形状3波分解_SUB(session, 4.0, 51.2, road.WorkCount, 0.25, road.WorkProfile, L, M, S));
  EXPECT_EQ(M.Values.size(), road.WorkCount);
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

class StudyDriversTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    session.Paths.UserLocalPath = dir_.path().string();
    testing::UseGoldenCarForStudy(session);
    profiles_ = {ThreeSineProfile("a.ERD")};
    getParam_補修形状検討_3波分解(session, StudyForm(), stored_);
    run_.Profiles = profiles_;
    run_.Selected = rows_;
    run_.Form = StudyForm();
    run_.Stored = &stored_;
  }
  ProfileRecord& Road() { return profiles_[0]; }

  std::vector<ProfileRecord> profiles_;
  std::vector<std::int32_t> rows_{1};
  ThreeWaveParams stored_;
  StudyRun run_;
};

TEST_F(StudyDriversTest, MiddleWaveStepStraightensAndBuildsThePointTable) {
  ASSERT_TRUE(cmdGo_中波長(session, run_));
  const RepairStudyData& study = Road().RepairStudy;
  ASSERT_TRUE(study.MiddleValid);
  const Array1<double>& m = Road().ThreeWave.MiddleWave.Values;
  const Array1<double>& mPrime = study.Calculated.MPrime.Wave.Values;
  ASSERT_EQ(mPrime.size(), m.size());
  // The 20 m wave has a crest and a trough every 80 samples in the middle of the road.
  ASSERT_GE(study.PointTable.size(), 20u);
  for (const StudyPoint& p : study.PointTable) {
    EXPECT_EQ(p.Value, mPrime[p.Index]);
    // M' passes through every crest; a trough lies below both crests beside it, so it is filled.
    if (p.Flag & kPointTrough)
      EXPECT_GT(mPrime[p.Index], m[p.Index]) << p.Index;
    else
      EXPECT_EQ(mPrime[p.Index], m[p.Index]) << p.Index;
  }
  // S + M' + L, added as written.
  const ThreeWaveSplit& split = Road().ThreeWave;
  for (std::ptrdiff_t i = 1; i <= m.size(); ++i)
    ASSERT_EQ(study.Calculated.Corrected.Wave.Values[i],
              split.ShortWave.Values[i] + mPrime[i] + split.LongWave.Values[i]);
  EXPECT_TRUE(study.Calculated.CorrectedSplit.Valid);
  EXPECT_TRUE(study.Calculated.MPrime.Octave.Calculated);
  EXPECT_GT(study.ProfileIri.IriWholeProfile, 0);

  EXPECT_EQ(testing::Titles(ui_, "progress-start"), (std::vector<std::string>{"３波長分解", "Ｍ波の計算", "Ｍ波の検討処理中"}));
}

TEST_F(StudyDriversTest, StudyWaveIsTheMiddleWavePlusTheUsersThickness) {
  ASSERT_TRUE(cmdGo_中波長(session, run_));
  ui_.Inputs = {"案"};
  const auto made = CreateStudy(session, Road().Studies, StudyForm::Thickness, Road().RepairStudy.PointTable);
  ASSERT_TRUE(made);
  StudyTarget& target = Road().Studies[*made];
  const std::size_t middlePoint = target.AdjPoints.size() / 2;
  SetPointThickness(target, middlePoint, 2.5);
  ASSERT_TRUE(CalcStudyAdjustment(session, Road(), target, StudyForm()));

  const Array1<double>& m = Road().ThreeWave.MiddleWave.Values;
  const Array1<double>& calculated = Road().RepairStudy.Calculated.MPrime.Wave.Values;
  const Array1<double>& adjusted = target.Outcome.MPrime.Wave.Values;
  const auto first = static_cast<std::ptrdiff_t>(target.AdjPoints.front());
  const auto last = static_cast<std::ptrdiff_t>(target.AdjPoints.back());
  const auto at = static_cast<std::ptrdiff_t>(target.AdjPoints[middlePoint]);
  // 2.5 mm more at the point itself, M outside the outer points, the calculated M' at the others.
  EXPECT_NEAR(adjusted[at], calculated[at] + 2.5, 1e-9);
  EXPECT_EQ(adjusted[first - 1], m[first - 1]);
  EXPECT_EQ(adjusted[last + 1], m[last + 1]);
  const auto other = static_cast<std::ptrdiff_t>(target.AdjPoints[middlePoint + 2]);
  EXPECT_NEAR(adjusted[other], calculated[other], 1e-9);
  EXPECT_TRUE(target.Recalculated);
  EXPECT_TRUE(target.Outcome.CorrectedSplit.Valid);

  // Chosen in lst_M波選択, the study's M' is the one the ideal shape takes.
  EXPECT_EQ(&ChosenMPrime(Road()), &calculated);
  Road().RepairStudy.ChosenStudy = static_cast<std::int32_t>(*made) + 1;
  EXPECT_EQ(&ChosenMPrime(Road()), &adjusted);
}

TEST_F(StudyDriversTest, IdealShapeWithoutLinesIsTheCorrectedProfileAndItsIriIsTheEngines) {
  ASSERT_TRUE(cmdGo_中波長(session, run_));
  ASSERT_TRUE(cmdGo_短波長(session, run_));
  ASSERT_TRUE(Road().RepairStudy.ShortReducedValid);
  ASSERT_TRUE(cmdGo_理想形状(session, run_));
  const RepairStudyData& study = Road().RepairStudy;
  ASSERT_TRUE(study.IdealValid);

  const ThreeWaveSplit& split = Road().ThreeWave;
  const Array1<double>& ideal = study.IdealShape.Wave.Values;
  const Array1<double>& mPrime = study.Calculated.MPrime.Wave.Values;
  for (std::ptrdiff_t i = 1; i <= ideal.size(); ++i) {
    ASSERT_EQ(ideal[i], split.LongWave.Values[i] + mPrime[i] + study.ShortReduced.Values[i]) << i;
    // No line: S' is S rebuilt from its nine octaves, so the ideal shape is S + M' + L.
    ASSERT_NEAR(ideal[i], study.Calculated.Corrected.Wave.Values[i], 1e-9) << i;
  }
  // The IRI stored with the ideal shape is the engine's IRI of the same array.
  const double engine = IriOfArray(static_cast<std::int32_t>(ideal.size()), ideal.span(), 0.25, StudyIriParams(session, 10));
  EXPECT_NEAR(study.IdealShape.Iri.IriWholeProfile, engine, 1e-12);
  EXPECT_GT(study.IdealShape.Iri.IriWindowCount, 0);
}

TEST_F(StudyDriversTest, LowBandLinesMakeTheIdealShapeSmootherThanTheCorrectedProfile) {
  for (int k = 1; k <= 9; ++k) run_.Form.Lines[k] = "0.1";
  ASSERT_TRUE(cmdGo_中波長(session, run_));
  ASSERT_TRUE(cmdGo_短波長(session, run_));
  ASSERT_TRUE(cmdGo_理想形状(session, run_));
  const RepairStudyData& study = Road().RepairStudy;
  EXPECT_LT(study.ShortReduced.Stats.StdDev, Road().ThreeWave.ShortWave.Stats.StdDev / 2);
  EXPECT_LT(study.IdealShape.Iri.IriWholeProfile, study.ProfileIri.IriWholeProfile);
}

TEST_F(StudyDriversTest, StepsWhoseInputIsMissingArePassedOver) {
  EXPECT_TRUE(cmdGo_理想形状(session, run_));
  EXPECT_FALSE(Road().RepairStudy.IdealValid);
  run_.Form.LongBoundary = "";
  EXPECT_FALSE(cmdGo_中波長(session, run_));
  EXPECT_EQ(ui_.Messages().back().Text, "長波側境界値が指定されていません。");
  EXPECT_FALSE(Road().ThreeWave.Valid);
}

TEST_F(StudyDriversTest, RegisteredWavesBecomeProfilesWithTheirMarks) {
  ProfileList list;
  list.Items = Array1<ProfileRecord>(std::vector<ProfileRecord>{ThreeSineProfile("a.ERD")});
  run_.Profiles = list.Items.span();
  ASSERT_TRUE(cmdProfile登録_3波分解(session, run_, list, WaveChoice{true, false, true}, "$(PROFILENAME)$-$(波形種別)$"));
  ASSERT_EQ(list.Count(), 3);
  EXPECT_EQ(list.Items[2].FileName, "a-L.ERD");
  EXPECT_EQ(list.Items[2].Erd.Title.substr(0, std::string("試験路(L)").size()), "試験路(L)");
  EXPECT_EQ(list.Items[3].FileName, "a-S.ERD");
  EXPECT_EQ(list.Items[3].WorkCount, 1024);
  EXPECT_NEAR(list.Items[3].WorkProfile[100], list.Items[1].ThreeWave.ShortWave.Values[100], 1e-6);
  EXPECT_TRUE(std::filesystem::exists(dir_ / "Project" / "Profile" / "a-L.ERD"));
}

}  // namespace
}  // namespace velmora
