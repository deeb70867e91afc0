// Registration of ERD files in the profile list: the replace question, the copy into the project
// folder, the parallel views and their colours.
#include "profile/profile_list.h"

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>

#include "profile/list_fixture.h"
#include "support/checks.h"

namespace velmora {
namespace {

using testing::ReadBytes;
using testing::ScriptedUi;
using testing::WriteBytes;

// Days since 1899-12-30 worked out from the Unix day count: 1970-01-01 is serial 25569.
std::int32_t ExpectedToday() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  std::tm midnight{};
  midnight.tm_year = local.tm_year;
  midnight.tm_mon = local.tm_mon;
  midnight.tm_mday = local.tm_mday;
  return static_cast<std::int32_t>(timegm(&midnight) / 86400 + 25569);
}

TEST_F(ProfileListTest, AddsFilesInOrderIntoEveryViewAndCopiesThem) {
  ProfileList list;
  const std::string a = Source("alpha.erd"), b = Source("Beta.ERD", "sjis_title_with_kp.erd");
  ASSERT_TRUE(AddProfileList(session, list, {a, b}, true));
  EXPECT_TRUE(ui_.Messages().empty());
  ASSERT_EQ(list.Count(), 2);
  for (const ProfileListView& view : list.Views) EXPECT_EQ(view.Rows, (std::vector<std::string>{"alpha", "Beta"}));
  const ProfileRecord& beta = list.Items[2];
  EXPECT_EQ((std::vector{beta.FileName, beta.FilePath, beta.RouteName, beta.Erd.Title, beta.Erd.KpDisplay}),
            (std::vector<std::string>{"Beta.ERD", b, "Beta", "国道１２号　上り", "123.45000+-"}));
  EXPECT_EQ((std::vector{beta.SourceType, beta.MeasureDate, beta.WorkCount}), (std::vector{0, ExpectedToday(), 3}));
  EXPECT_DOUBLE_EQ(beta.SamplesPerMetre, 4.0);
  EXPECT_EQ(ReadBytes(ProjectCopy("Beta.ERD")), ReadBytes(b));
  EXPECT_EQ(ReadBytes(ProjectCopy("alpha.erd")), ReadBytes(a));
  EXPECT_TRUE(session.Project.Dirty);
}

TEST_F(ProfileListTest, AnsweringNoKeepsRecordAndCopyAndTheOtherFilesAreStillAdded) {
  ProfileList list;
  const std::string first = Source("road.erd");
  ASSERT_TRUE(AddProfileList(session, list, {first}, true));
  const std::string copyBefore = ReadBytes(ProjectCopy("road.erd"));

  const std::string again = Source("ROAD.erd", "cm_heights.erd", "other");  // same name: case is ignored
  ui_.Answers = {MsgAnswer::No};
  EXPECT_TRUE(AddProfileList(session, list, {again, Source("extra.erd")}, true));
  testing::ExpectMessages(ui_, {{"指定されたプロファイル名は既に登録されています。\r\n\r\nプロファイル名：ROAD\r\n\r\n置き換えますか？",
                                 "確認", MsgIcon::Question, MsgButtons::YesNo}});
  ASSERT_EQ(list.Count(), 2);
  EXPECT_EQ(list.Items[1].FilePath, first);
  EXPECT_EQ(list.Items[1].Erd.Title, "free widths");
  EXPECT_EQ(ReadBytes(ProjectCopy("road.erd")), copyBefore);
  EXPECT_EQ(list.Views[0].Rows, (std::vector<std::string>{"road", "extra"}));
}

TEST_F(ProfileListTest, RepeatWithoutAskingReplacesInPlace) {
  ProfileList list;
  ASSERT_TRUE(AddProfileList(session, list, {Source("a.erd"), Source("road.erd")}, true));
  list.SelectedRows = {2};
  std::int32_t shown = 0;
  list.Hooks.ShowProfileTab = [&](std::int32_t index) { shown = index; };
  ui_.Log.clear();
  const std::string newer = Source("road.erd", "cm_heights.erd", "other");
  ASSERT_TRUE(AddProfileList(session, list, {newer}, false));
  EXPECT_TRUE(ui_.Messages().empty());
  ASSERT_EQ(list.Count(), 2);
  EXPECT_EQ(list.Items[2].FilePath, newer);
  EXPECT_EQ(list.Items[2].Erd.Title, "cm");
  EXPECT_EQ(list.Items[2].WorkProfile, (Array1<double>{15.0, -2.5, 0.0}));
  EXPECT_EQ(ReadBytes(ProjectCopy("road.erd")), ReadBytes(newer));
  EXPECT_EQ(shown, 2);  // the one selected row was the replaced item
  EXPECT_EQ(list.Views[0].Rows.size(), 2u);
}

// A file the reader refuses, one that raises on reading and one gone before its turn each stop the
// loop with one message naming the file (the reader's own, or the log's under AddProfileList); what
// was registered before stays, the files behind are not added.
TEST_F(ProfileListTest, UnreadableFileStopsTheLoopKeepingWhatWasRegistered) {
  const std::string gone = Source("gone.erd");
  std::filesystem::remove(gone);
  const std::pair<std::string, std::string> cases[] = {
      {Source("bad.erd", "zero_step.erd"), "読み込みエラー"},
      {Source("broken.erd", "data_line_not_number.erd"), "AddProfileList"},
      {gone, "AddProfileList"},
  };
  for (const auto& [bad, title] : cases) {
    ProfileList list;
    ScriptedUi ui(session);
    EXPECT_FALSE(AddProfileList(session, list, {Source("good.erd"), bad, Source("late.erd")}, true));
    EXPECT_EQ(list.Count(), 1);
    for (const ProfileListView& view : list.Views) EXPECT_EQ(view.Rows, (std::vector<std::string>{"good"}));
    ASSERT_EQ(ui.Messages().size(), 1u) << bad;
    EXPECT_NE(ui.Messages()[0].Title.find(title), std::string::npos) << ui.Messages()[0].Title;
    EXPECT_NE(ui.Messages()[0].Text.find(bad), std::string::npos) << ui.Messages()[0].Text;
    EXPECT_FALSE(std::filesystem::exists(ProjectCopy("late.erd")));
    EXPECT_FALSE(std::filesystem::exists(ProjectCopy(std::filesystem::path(bad).filename().string())));
  }
}

TEST_F(ProfileListTest, RowColoursCycleThroughThePalette) {
  ProfileList list;
  ASSERT_TRUE(AddProfileList(session, list, {Source("r1.erd"), Source("r2.erd"), Source("r3.erd"), Source("r4.erd")}, true));
  EXPECT_EQ(list.Views[0].Panels, (std::vector<Colour>{0x0000FF, 0x00FF00, 0xFF0000, 0x0000FF}));
  EXPECT_EQ(list.Views[11].Name, "lst理想形状");
  EXPECT_EQ(list.Views[11].Panels, (std::vector<Colour>{0x111111, 0x222222, 0x111111, 0x222222}));
  EXPECT_EQ(RowColour(4, {7, 8, 9}), RowColour(1, {7, 8, 9}));
  EXPECT_EQ(RowColour(1, {}), 0u);
}

}  // namespace
}  // namespace velmora
