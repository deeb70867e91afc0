#include "repair/study_targets.h"

#include <gtest/gtest.h>

#include "support/checks.h"
#include "support/expect_values.h"
#include "support/session_fixture.h"

namespace velmora {
namespace {

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

}  // namespace
}  // namespace velmora
