// The repair study on a made-up road of three sines, one in each wave of the 4 m / 51.2 m split: the
// tab's checks, the split and its run, then the middle-wave, short-wave and ideal-shape steps.
#include "repair/three_wave.h"

#include <gtest/gtest.h>

#include <tuple>

#include "analysis/band_reduction.h"
#include "analysis/iri.h"
#include "repair/ideal_shape.h"
#include "repair/kp_adjustments.h"
#include "repair/m_wave.h"
#include "repair/study_targets.h"
#include "study_fixture.h"
#include "support/checks.h"
#include "support/profile_fixture.h"

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
    if (converge) {
      EXPECT_EQ(ui_.Log.front().Text, "収束計算中  1 / 5 ・・・・");
    }
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
  EXPECT_TRUE(study.Calculated.CorrectedMiddle.Calculated);
  EXPECT_EQ(study.Calculated.CorrectedMiddle.Values.size(), m.size());
  EXPECT_GT(study.ProfileIri, 0);

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
  EXPECT_TRUE(target.Outcome.CorrectedMiddle.Calculated);

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
  // The IRIs the study keeps are the engine's IRIs of the same arrays over the study's 10 m.
  const auto iri = [this](const Array1<double>& wave) {
    return IriOfArray(static_cast<std::int32_t>(wave.size()), wave.span(), 0.25, StudyIriParams(session, 10));
  };
  EXPECT_NEAR(study.IdealShape.IriWholeProfile, iri(ideal), 1e-12);
  EXPECT_NEAR(study.Calculated.Corrected.IriWholeProfile, iri(study.Calculated.Corrected.Wave.Values), 1e-12);
  EXPECT_NEAR(study.ProfileIri, iri(Road().WorkProfile), 1e-12);
}

TEST_F(StudyDriversTest, LowBandLinesMakeTheIdealShapeSmootherThanTheCorrectedProfile) {
  for (int k = 1; k <= 9; ++k) run_.Form.Lines[k] = "0.1";
  ASSERT_TRUE(cmdGo_中波長(session, run_));
  ASSERT_TRUE(cmdGo_短波長(session, run_));
  ASSERT_TRUE(cmdGo_理想形状(session, run_));
  const RepairStudyData& study = Road().RepairStudy;
  EXPECT_LT(study.ShortReduced.Stats.StdDev, Road().ThreeWave.ShortWave.Stats.StdDev / 2);
  EXPECT_LT(study.IdealShape.IriWholeProfile, study.ProfileIri);
}

// The S-wave step keeps S' and what it was reduced with, not the reduced bands: a file that shows the
// bands makes them again, and they must add up to the S' the step kept.
TEST_F(StudyDriversTest, ReducedBandsMadeAgainAddUpToTheKeptShortWave) {
  for (int k = 1; k <= 9; ++k) run_.Form.Lines[k] = "0.1";
  run_.Form.Lines[4] = "";  // one band without a line stays as it is
  ASSERT_TRUE(cmdGo_短波長(session, run_));
  const RepairStudyData& study = Road().RepairStudy;
  ASSERT_TRUE(study.ShortReducedValid);
  EXPECT_EQ(study.ShortReducedBy.Limits[1], 0.1);
  EXPECT_EQ(study.ShortReducedBy.Limits[4], NoLimit);
  EXPECT_FALSE(study.ShortReducedBy.UseRange);

  BandReductionResult again;
  ASSERT_TRUE(ReduceShortWave(session, Road(), study.ShortReducedBy, again));
  EXPECT_EQ(again.Total.Values, study.ShortReduced.Values);
  for (std::ptrdiff_t i = 1; i <= study.ShortReduced.Values.size(); ++i) {
    double sum = 0;
    for (std::size_t k = 1; k <= 9; ++k) sum += again.Reduced[k].Values[i];
    ASSERT_EQ(sum, study.ShortReduced.Values[i]) << i;  // added in the same order
  }
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

// The middle wave's crests joined by hand-worked lines, the plan range, and the studies made on the
// joined wave: their names and lists, the thickness at a point, and points given by KP.
using testing::ExpectValues;

const std::vector<StudyPoint> kTable{{2, 4, 0, 0}, {5, 4.6, 0, kPointTrough}, {7, 5, 0, 0}};
const char* const kTaken = "指定された検討対象名は既に登録されています。\r\n指定検討対象名：";

class StudyNames : public testing::SessionTest {};

TEST_F(StudyNames, SuffixesAndTheUniqueNameLoop) {
  std::vector<StudyTarget> studies;
  ui_.Inputs = {"案A"};
  ASSERT_EQ(CreateStudy(session, studies, StudyForm::Thickness, kTable), 0u);
  EXPECT_EQ(studies[0].Name, "案A[厚]");
  testing::ExpectShown(ui_.Log.at(0), {"検討対象名を指定してください。", "新規作成"});
  // The new study copies the points of the calculated table.
  EXPECT_EQ(studies[0].Points, (std::vector<double>{2, 5, 7}));
  EXPECT_EQ(studies[0].Flags, (std::vector<std::uint8_t>{0, kPointTrough, 0}));
  EXPECT_FALSE(studies[0].Adjusted);

  // The same typed name on the plan form differs by its suffix.
  ui_.Inputs = {"案A"};
  ASSERT_EQ(CreateStudy(session, studies, StudyForm::Spacing, kTable), 1u);
  EXPECT_EQ(studies[1].Name, "案A[間]");

  // A taken name is refused with the warning, and asked again until a new one comes.
  ui_.Inputs = {"案A", " 案a ", "案B"};
  ASSERT_EQ(CreateStudy(session, studies, StudyForm::Thickness, kTable), 2u);
  EXPECT_EQ(studies[2].Name, "案B[厚]");
  testing::ExpectMessages(ui_, {{std::string(kTaken) + "案A[厚]", "警告"}, {std::string(kTaken) + "案a[厚]"}});

  // Cancel, or an empty answer, ends the step with nothing added.
  ui_.Inputs = {"案A"};  // taken, then the queue is empty: cancelled
  EXPECT_FALSE(CreateStudy(session, studies, StudyForm::Thickness, kTable));
  ui_.Inputs = {"  "};
  EXPECT_FALSE(CreateStudy(session, studies, StudyForm::Thickness, kTable));
  EXPECT_EQ(studies.size(), 3u);
}

TEST_F(StudyNames, ListsHaveAFixedFirstItemDeleteAndRename) {
  std::vector<StudyTarget> studies(2);
  studies[0].Name = "a[厚]";
  studies[1].Name = "b[間]";
  EXPECT_EQ(StudyListItems(studies),
            (std::vector<std::string>{"----------【 調整なし 】----------", "a[厚]", "b[間]"}));

  // Row 0 is the fixed item: nothing is asked and nothing goes.
  EXPECT_FALSE(StudyListKeyDown(session, studies, StudyList::Targets, 0, kKeyDelete));
  EXPECT_TRUE(ui_.Log.empty());

  ui_.Answers = {MsgAnswer::No, MsgAnswer::Yes};
  EXPECT_FALSE(StudyListKeyDown(session, studies, StudyList::Targets, 1, kKeyDelete));
  EXPECT_EQ(studies.size(), 2u);
  EXPECT_TRUE(StudyListKeyDown(session, studies, StudyList::MWaveChoice, 2, kKeyDelete));
  testing::ExpectMessages(ui_, {{"a[厚] を検討対象から削除します。\r\nよろしいですか？", "確認"},
                                {"b[間] をM波選択から削除します。\r\nよろしいですか？", "確認"}});
  ASSERT_EQ(studies.size(), 1u);
  EXPECT_EQ(StudyListItems(studies)[0], "----------【 調整なし 】----------");

  // F2 renames through the creation dialog; the study keeps its kind.
  ui_.Inputs = {"c"};
  EXPECT_TRUE(StudyListKeyDown(session, studies, StudyList::Targets, 1, kKeyF2));
  EXPECT_EQ(studies[0].Name, "c[厚]");
}

// M = 0 4 3 1 0 2 5 1, M' calculated = 0 4 4.2 4.4 4.6 4.8 5 1 (crests 2 and 7, trough 5).
TEST(StudyAdjustment, ThicknessAtAPointBendsTheLineThroughIt) {
  const Array1<double> m{0, 4, 3, 1, 0, 2, 5, 1};
  const Array1<double> calculated{0, 4, 4.2, 4.4, 4.6, 4.8, 5, 1};
  StudyTarget target;
  target.AdjPoints = {2, 5, 7};
  target.AdjFlags = {0, kPointTrough, 0};
  target.Thickness = {0, 0, 0};

  // Unadjusted, the thickness is M' - M between the outer points and 0 outside them.
  const std::vector<double> plain = {0, 0, 1.2, 3.4, 4.6, 2.8, 0, 0};
  ExpectValues(UserAdjustOf(m, calculated, target), plain);

  // 0.5 mm more at the trough: the line runs (2, 4) - (5, 5.1) - (7, 5).
  SetPointThickness(target, 1, 0.5);
  EXPECT_TRUE(target.Adjusted);
  ExpectValues(UserAdjustOf(m, calculated, target), {0, 0, 4 + 1.1 / 3 - 3, 4 + 2.2 / 3 - 1, 5.1, 5.05 - 2, 0, 0});

  // Taking the trough out joins the crests straight again.
  SetPointExcluded(target, 1, true);
  ExpectValues(UserAdjustOf(m, calculated, target), plain);
}

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
      // The bump of 5e-10 between the crests is level ground, so the crests join straight over it.
      {"a step below 1e-9 is no crest", {0, 2, 1, 1 + 5e-10, 1, 2, 0}, 0, {0, 2, 2, 2, 2, 2, 0}},
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
}

// M = 5 1 0 2 1 0 3 1 0 4 at 1 m pitch from KP 0: crests at 4 (2) and 7 (3).
PlanRange PlanOnTenSamples(double startKp, double endKp) {
  return PlanRange{.Use = true, .StartKp = startKp, .EndKp = endKp, .FirstKp = 0, .PitchM = 1.0};
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
  EXPECT_TRUE(out.Values.empty());
  const std::string text = ui_.OnlyMessageText();
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
  ASSERT_EQ(crests.size(), 2u);
  ASSERT_EQ(troughs.size(), 1u);
  EXPECT_EQ(std::tuple(crests[0].Index, crests[0].Value, crests[1].Index, crests[1].Value), std::tuple(2, 4.0, 7, 5.0));
  EXPECT_EQ(std::tuple(troughs[0].Index, troughs[0].Value), std::tuple(5, 0.0));
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
