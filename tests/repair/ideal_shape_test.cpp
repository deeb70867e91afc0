#include "repair/ideal_shape.h"

#include <gtest/gtest.h>

#include <vector>

#include "analysis/iri.h"
#include "repair/study_targets.h"
#include "study_fixture.h"
#include "support/session_fixture.h"

namespace velmora {
namespace {

using testing::ScriptedUi;
using testing::StudyForm;
using testing::ThreeSineProfile;

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

  std::vector<std::string> captions;
  for (const auto& entry : ui_.Log)
    if (entry.Kind == "progress-start") captions.push_back(entry.Title);
  EXPECT_EQ(captions, (std::vector<std::string>{"３波長分解", "Ｍ波の計算", "Ｍ波の検討処理中"}));
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
