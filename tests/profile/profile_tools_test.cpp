#include "profile/profile_tools.h"

#include <gtest/gtest.h>

#include "base/text_encoding.h"
#include "list_fixture.h"
#include "support/test_support.h"

namespace velmora {
namespace {

using testing::ScriptedUi;

// Samples 1, 2, 3, 4 at 0.5 m from KP 10 km, KP growing.
ToolItem Item(const std::string& name = "p.ERD", double kp = 10.0, std::int32_t sign = 0) {
  ToolItem item;
  item.FileName = name;
  item.Erd.NumChannels = 1;
  item.Erd.FormatCode = 5;
  item.Erd.StepSize = 0.5;
  item.Erd.Elevation = Array1<double>{1, 2, 3, 4};
  item.Erd.NumSamples = item.Erd.NumSamplesHeader = 4;
  item.Erd.KpStart = kp;
  item.Erd.KpSign = sign;
  item.Erd.ShortName[1] = "LElev.";
  return item;
}

std::vector<double> Samples(const ErdRecord& erd) { return erd.Elevation.vector(); }

TEST(ProfileTools, ReversalTwiceGivesTheSameSamplesAndKp) {
  const auto once = ReverseProfiles({Item()});
  ASSERT_EQ(once.size(), 1u);
  EXPECT_EQ(once[0].FileName, "p_反転.ERD");
  EXPECT_EQ(Samples(once[0].Erd), (std::vector<double>{4, 3, 2, 1}));
  EXPECT_NEAR(once[0].Erd.KpStart, 10.0015, 1e-12);  // the old end: 10 + 3 × 0.5 m
  EXPECT_EQ(once[0].Erd.KpSign, 1);
  const auto twice = ReverseProfiles({{"q.ERD", once[0].Erd}});
  EXPECT_EQ(Samples(twice[0].Erd), (std::vector<double>{1, 2, 3, 4}));
  EXPECT_NEAR(twice[0].Erd.KpStart, 10.0, 1e-12);
  EXPECT_EQ(twice[0].Erd.KpSign, 0);
}

TEST(ProfileTools, HeightShiftMovesTheReferenceSampleToTheHeight) {
  ScriptedUi ui;
  auto start = HeightShiftProfiles({Item()}, {ShiftReference::Start, "", "100"});
  ASSERT_TRUE(start);
  EXPECT_EQ((*start)[0].FileName, "p_始点H100調整.ERD");
  EXPECT_EQ(Samples((*start)[0].Erd), (std::vector<double>{100, 101, 102, 103}));

  // KP 10.001 km is 1 m, two pitches, from the start: sample 3 (height 3) is the reference.
  auto kp = HeightShiftProfiles({Item()}, {ShiftReference::Kp, "10.001", "0"});
  EXPECT_EQ((*kp)[0].FileName, "p_KP10.001H0調整.ERD");
  EXPECT_EQ(Samples((*kp)[0].Erd), (std::vector<double>{-2, -1, 0, 1}));
  // A KP beyond the end takes the last sample reached.
  auto beyond = HeightShiftProfiles({Item()}, {ShiftReference::Kp, "99", "0"});
  EXPECT_EQ(Samples((*beyond)[0].Erd), (std::vector<double>{-3, -2, -1, 0}));
  // With a falling KP the same KP lies two pitches along too.
  auto falling = HeightShiftProfiles({Item("p.ERD", 10.0, 1)}, {ShiftReference::Kp, "9.999", "0"});
  EXPECT_EQ(Samples((*falling)[0].Erd), (std::vector<double>{-2, -1, 0, 1}));
  EXPECT_TRUE(ui.Messages().empty());
}

TEST(ProfileTools, ChecksStopWithTheirMessages) {
  ScriptedUi ui;
  EXPECT_FALSE(HeightShiftProfiles({Item()}, {ShiftReference::Kp, "", "1"}));
  EXPECT_FALSE(HeightShiftProfiles({Item()}, {ShiftReference::End, "", "abc"}));
  CutOutInput cut;
  cut.KpStart = "1";
  EXPECT_FALSE(CutOutProfiles({Item()}, cut));
  CompositeInput composite;
  composite.BaseIsCsv = true;
  EXPECT_FALSE(CompositeProfiles({Item()}, composite));
  composite.CsvPath = "/nonexistent/base.csv";
  EXPECT_FALSE(CompositeProfiles({Item()}, composite));
  const auto m = ui.Messages();
  ASSERT_EQ(m.size(), 5u);
  EXPECT_EQ(m[0].Text, "KP が指定されていません。");
  EXPECT_EQ(m[0].Title, "Error");
  EXPECT_EQ(m[1].Text, "調整高さ は数値で指定して下さい。");
  EXPECT_EQ(m[2].Text, "KP終点 が指定されていません。");
  EXPECT_EQ(m[3].Text, "CSVデータが指定されていません。");
  EXPECT_EQ(m[4].Text, "指定されたファイルが見つかりません。");
}

TEST(ProfileTools, CutOutByKpAndBySamples) {
  CutOutInput byKp;
  byKp.KpStart = "10.0015";  // swapped with the end
  byKp.KpEnd = "10.0005";
  auto kp = CutOutProfiles({Item()}, byKp);
  ASSERT_EQ(kp->size(), 1u);
  EXPECT_EQ((*kp)[0].FileName, "p_KP始点10.0005_終点10.0015切出し.ERD");
  EXPECT_EQ(Samples((*kp)[0].Erd), (std::vector<double>{2, 3, 4}));
  EXPECT_NEAR((*kp)[0].Erd.KpStart, 10.0005, 1e-12);

  CutOutInput bySamples;
  bySamples.ByKp = false;
  bySamples.Start = "1";
  bySamples.Length = "2";
  auto s = CutOutProfiles({Item()}, bySamples);
  EXPECT_EQ((*s)[0].FileName, "p_1_2個切出し.ERD");
  EXPECT_EQ(Samples((*s)[0].Erd), (std::vector<double>{2, 3}));

  // 0.5 m from the end, covering 1 m: the last three samples but one.
  bySamples.FromEnd = true;
  bySamples.Unit = CutUnit::M;
  bySamples.Start = "0.5";
  bySamples.Length = "1";
  auto m = CutOutProfiles({Item()}, bySamples);
  EXPECT_EQ((*m)[0].FileName, "p_0.5_1m切出し.ERD");
  EXPECT_EQ(Samples((*m)[0].Erd), (std::vector<double>{1, 2, 3}));
}

TEST(ProfileTools, CutOutShortfallModes) {
  CutOutInput input;
  input.ByKp = false;
  input.Start = "-2";  // two samples before the first
  input.Length = "8";  // up to two samples behind the last
  input.Fill = Shortfall::Zero;
  EXPECT_EQ(Samples((*CutOutProfiles({Item()}, input))[0].Erd), (std::vector<double>{0, 0, 1, 2, 3, 4, 0, 0}));
  input.Fill = Shortfall::EdgeValue;
  auto edge = CutOutProfiles({Item()}, input);
  EXPECT_EQ((*edge)[0].FileName, "p_-2_8個切出し(始終値埋め).ERD");
  EXPECT_EQ(Samples((*edge)[0].Erd), (std::vector<double>{1, 1, 1, 2, 3, 4, 4, 4}));
  input.Fill = Shortfall::Mirror;
  EXPECT_EQ(Samples((*CutOutProfiles({Item()}, input))[0].Erd), (std::vector<double>{3, 2, 1, 2, 3, 4, 3, 2}));
  input.Fill = Shortfall::None;
  EXPECT_EQ(Samples((*CutOutProfiles({Item()}, input))[0].Erd), (std::vector<double>{1, 2, 3, 4}));
  // Folding never reaches past the other end.
  input.Fill = Shortfall::Mirror;
  input.Start = "-6";
  input.Length = "1";
  EXPECT_EQ(Samples((*CutOutProfiles({Item()}, input))[0].Erd), (std::vector<double>{4}));
  // Wholly outside with no filling: nothing to register.
  input.Fill = Shortfall::None;
  input.Start = "10";
  EXPECT_TRUE(CutOutProfiles({Item()}, input)->empty());
}

TEST(ProfileTools, CompositeTiesTheTargetToTheBaseAlongTheOverlap) {
  testing::TempDir dir;
  // Target: 0, 1, 0, 1, 0 mm at 1 m from KP 0. Base survey: 10 mm at 0 m, 14 mm at 4 m.
  ToolItem target;
  target.FileName = "t.ERD";
  target.Erd.StepSize = 1.0;
  target.Erd.KpStart = 0.0;
  target.Erd.Elevation = Array1<double>{0, 1, 0, 1, 0};
  target.Erd.NumSamples = 5;
  WriteSystemTextFile(dir / "survey.csv", {"pos,height", "4,14", "0,10"});
  CompositeInput input;
  input.BaseIsCsv = true;
  input.CsvPath = (dir / "survey.csv").string();
  input.CsvHeading = true;
  auto out = CompositeProfiles({target}, input);
  ASSERT_TRUE(out);
  ASSERT_EQ(out->size(), 1u);
  EXPECT_EQ((*out)[0].FileName, "t_survey_合成.ERD");
  // The difference runs from 10 to 14 mm along the 4 m; the target's detail rides on it.
  const auto samples = Samples((*out)[0].Erd);
  const std::vector<double> expected{10, 12, 12, 14, 14};
  ASSERT_EQ(samples.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(samples[i], expected[i], 1e-9) << i;

  // An ERD base that covers only the middle: the result exists only on the overlap.
  ToolItem base = Item("b.ERD", 0.001, 0);  // 1, 2, 3, 4 at 0.5 m from 1 m
  input.BaseIsCsv = false;
  input.BaseProfile = base;
  auto partial = CompositeProfiles({target}, input);
  ASSERT_EQ(partial->size(), 1u);
  EXPECT_EQ((*partial)[0].Erd.NumSamples, 2);  // target samples at 1 m and 2 m
  EXPECT_NEAR((*partial)[0].Erd.KpStart, 0.001, 1e-12);
  EXPECT_NEAR((*partial)[0].Erd.Elevation[1], 1.0, 1e-9);  // base 1 at 1 m
  EXPECT_NEAR((*partial)[0].Erd.Elevation[2], 3.0, 1e-9);  // base 3 at 2 m
}

class ToolRegistrationTest : public ProfileListTest {};

TEST_F(ToolRegistrationTest, RegistersAfterTheQuestionAndNotOnCancel) {
  ScriptedUi ui;
  ProfileList list;
  ui.Answers.push_back(MsgAnswer::Cancel);
  EXPECT_FALSE(RegisterToolOutputs(list, ReverseProfiles({Item()})));
  EXPECT_EQ(list.Count(), 0);
  EXPECT_TRUE(RegisterToolOutputs(list, ReverseProfiles({Item()})));
  ASSERT_EQ(list.Count(), 1);
  EXPECT_EQ(list.Items[1].FileName, "p_反転.ERD");
  EXPECT_EQ(list.Items[1].Erd.Elevation[1], 4.0);
  EXPECT_EQ(ui.Messages()[0].Title, "登録");
  EXPECT_FALSE(RegisterToolOutputs(list, {}));
}

}  // namespace
}  // namespace velmora
