// The profile list's commands: add through the dialog, the PMS refusal, export as ERD or CSV, rename,
// remove, moves and the buttons they enable, and the limit of fifty per action.
#include "profile/profile_edit.h"

#include <gtest/gtest.h>

#include <filesystem>

#include <fmt/format.h>

#include "base/session.h"
#include "base/settings_io.h"
#include "profile/erd_file.h"
#include "profile/list_fixture.h"
#include "support/session_fixture.h"
#include "support/test_support.h"

namespace velmora {
namespace {

using testing::ReadBytes;
using testing::ScriptedUi;

class ProfileEditTest : public ProfileListTest {
 protected:
  // A list of the given names, all from the same fixture, with rows selected.
  void Register(const std::vector<std::string>& names, std::vector<std::int32_t> selected = {}) {
    std::vector<std::string> paths;
    for (const auto& name : names) paths.push_back(Source(name + ".erd"));
    testing::ScriptedUi ui(session);
    ASSERT_TRUE(AddProfileList(session, list_, paths, true));
    SelectProfileRows(list_, std::move(selected));
  }
  ProfileList list_;
};

TEST_F(ProfileEditTest, AddAsksForFilesRemembersTheFolderAndQueuesTextFiles) {
  const std::string a = Source("a.erd"), text = Source("b.csv"), other = Source("c.dat");
  testing::ScriptedUi ui(session);
  ui.Files = {{a, text, other}};
  const ProfileEditResult result = cmdProfileEdit(session, list_, 0);
  EXPECT_EQ(list_.Views[0].Rows, (std::vector<std::string>{"a"}));
  EXPECT_EQ(result.TextImports, (std::vector<std::string>{text}));
  ASSERT_FALSE(ui.Log.empty());
  EXPECT_EQ(ui.Log[0].Kind, "open");
  EXPECT_EQ(ui.Log[0].Text, session.Paths.AppPath);  // nothing remembered yet: start in AppPath
  EXPECT_EQ(GetPrevValue(session, "CommonDialogPath", "ERDファイル追加"), (dir_ / "src").string());

  ScriptedUi cancelled(session);  // no files: the command ends
  EXPECT_TRUE(cmdProfileEdit(session, list_, 0).TextImports.empty());
  EXPECT_EQ(cancelled.Log.at(0).Text, (dir_ / "src").string());
  EXPECT_EQ(list_.Count(), 1);
}

TEST_F(ProfileEditTest, PmsAddIsAStandingRefusal) {
  testing::ScriptedUi ui(session);
  cmdProfileEdit(session, list_, 1);
  EXPECT_EQ(ui.OnlyMessageText(), "この機能は現在対応していません。");
  EXPECT_EQ(list_.Count(), 0);
}

TEST_F(ProfileEditTest, ExportAsErdUsesFreeNamesInTheChosenFolder) {
  Register({"p", "q"}, {1, 2});
  const auto out = dir_ / "out";
  std::filesystem::create_directories(out);
  for (int round = 0; round < 2; ++round) {
    testing::ScriptedUi ui(session);
    ui.Files = {{(out / "ignored.Dummy").string()}};
    cmdProfileEdit(session, list_, 2, ProfileExportFormat::Erd);
    EXPECT_EQ(ui.Log.at(0).Text, "フォルダ名の取得に使用され、ファイル名は無視されます");
    ASSERT_EQ(ui.Messages().size(), 1u);
    EXPECT_EQ(ui.Messages()[0].Text, "ERDファイルを保存しました。 \r\n保存先：" + out.string());
    EXPECT_EQ(ui.Messages()[0].Title, "データ保存");
  }
  for (const char* name : {"p.ERD", "q.ERD", "p(001).ERD", "q(001).ERD"}) EXPECT_TRUE(std::filesystem::exists(out / name)) << name;
  testing::ScriptedUi ui(session);
  ErdRecord back;
  ASSERT_TRUE(ReadERD(session, (out / "q(001).ERD").string(), back));
  EXPECT_EQ(back.Elevation, list_.Items[2].Erd.Elevation);
}

TEST_F(ProfileEditTest, ExportAsCsvPutsProfilesSideBySide) {
  testing::ScriptedUi ui(session);
  ASSERT_TRUE(AddProfileList(session, list_, {Source("long.erd"), Source("short.erd", "feet_units.erd")}, true));
  SelectProfileRows(list_, {1, 2});
  const std::string csv = (dir_ / "both.CSV").string();
  ui.Files = {{csv}};
  cmdProfileEdit(session, list_, 2, ProfileExportFormat::Csv);
  EXPECT_EQ(ReadBytes(csv),
            "\"ERDFILEV2.00\",\"ERDFILEV2.00\"\r\n"
            "\"      1,      3,      3,      1,      5, 0.250000    ,     -1,\","
            "\"      1,      2,      2,      1,      5, 0.152400    ,     -1,\"\r\n"
            "\"TITLE   free widths\",\"TITLE   feet\"\r\n"
            "\"SHORTNAMLElev.\",\"SHORTNAMLElev.\"\r\n"
            "\"LONGNAMELeft Elevation\",\"LONGNAMELeft Elevation\"\r\n"
            "\"UNITSNAMmm\",\"UNITSNAMmm\"\r\n"
            "\"GENNAME Elevation\",\"GENNAME \"\r\n"
            "\"XLABEL  Distance\",\"XLABEL  Distance\"\r\n"
            "\"XUNITS  m\",\"XUNITS  m\"\r\n"
            "\"FORMAT  (G14.6)\",\"FORMAT  (G14.6)\"\r\n"
            "\"END\",\"END\"\r\n"
            "1.00000000,10.00000000\r\n"
            "2.00000000,-2.50000000\r\n"
            "3.00000000,\r\n");
  const auto messages = ui.Messages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].Text, "CSVファイルを保存しました。 \r\n保存先：" + csv);
  const auto save = std::find_if(ui.Log.begin(), ui.Log.end(), [](const auto& m) { return m.Kind == "save"; });
  ASSERT_NE(save, ui.Log.end());
  EXPECT_EQ(save->Text.rfind("Profile_", 0), 0u);
  EXPECT_EQ(save->Text.size(), std::string("Profile_YYYYMMDDHHNNSS.CSV").size());
}

TEST_F(ProfileEditTest, CsvLimitSpreadsProfilesOverFurtherFiles) {
  Register({"a", "b", "c"}, {1, 2, 3});
  session.Settings.CsvProfileLimit = 2;
  testing::ScriptedUi ui(session);
  const std::string csv = (dir_ / "part.CSV").string();
  ui.Files = {{csv}};
  cmdProfileEdit(session, list_, 2, ProfileExportFormat::Csv);
  const std::string first = ReadBytes(csv), second = ReadBytes(dir_ / "part(001).CSV");
  EXPECT_EQ(first.substr(0, first.find("\r\n")), "\"ERDFILEV2.00\",\"ERDFILEV2.00\"");
  EXPECT_EQ(second.substr(0, second.find("\r\n")), "\"ERDFILEV2.00\"");
}

TEST_F(ProfileEditTest, ExportWithNothingSelectedDoesNothing) {
  Register({"a"});
  testing::ScriptedUi ui(session);
  cmdProfileEdit(session, list_, 2);
  EXPECT_TRUE(ui.Log.empty());
}

TEST_F(ProfileEditTest, RenameAsksAgainForATakenNameThenMovesTheFile) {
  Register({"first", "second"}, {2});
  std::string oldSource, newSource;
  list_.Hooks.RenameStudySources = [&](const std::string& o, const std::string& n) { oldSource = o, newSource = n; };
  testing::ScriptedUi ui(session);
  ui.Inputs = {" FIRST ", "third"};
  cmdProfileEdit(session, list_, 3);
  const auto& log = ui.Log;
  ASSERT_EQ(log.size(), 3u);
  EXPECT_EQ(log[0].Kind, "input");
  EXPECT_EQ(log[0].Text, "変更後のファイル名を指定してください。");
  EXPECT_EQ(log[0].Title, "名前の変更");
  EXPECT_EQ(log[1].Text, "指定されたファイルは既に存在します。\r\n\r\n指定名称：FIRST\r\n\r\n確認してください。");
  EXPECT_EQ(log[1].Title, "警告");
  EXPECT_EQ(list_.Items[2].FileName, "third.ERD");
  for (const ProfileListView& view : list_.Views) EXPECT_EQ(view.Rows, (std::vector<std::string>{"first", "third"}));
  EXPECT_TRUE(std::filesystem::exists(ProjectCopy("third.ERD")));
  EXPECT_FALSE(std::filesystem::exists(ProjectCopy("second.erd")));
  EXPECT_EQ(oldSource, "second");
  EXPECT_EQ(newSource, "third");
}

TEST_F(ProfileEditTest, RenameEndsOnCancelEmptyOrUnchanged) {
  Register({"one"}, {1});
  for (const std::vector<std::string>& inputs : {std::vector<std::string>{}, {""}, {"one"}}) {
    testing::ScriptedUi ui(session);
    ui.Inputs.assign(inputs.begin(), inputs.end());
    session.Project.Dirty = false;
    cmdProfileEdit(session, list_, 3);
    EXPECT_EQ(list_.Items[1].FileName, "one.erd");
    EXPECT_FALSE(session.Project.Dirty);
    EXPECT_EQ(ui.Log.size(), 1u);
  }
}

TEST_F(ProfileEditTest, RemovingAllRowsLeavesAnEmptyListWithEveryButtonDisabled) {
  Register({"a", "b", "c"}, {1, 2, 3});
  testing::ScriptedUi ui(session);
  cmdProfileEdit(session, list_, 4);
  const auto question = ui.Messages().at(0);
  EXPECT_EQ(question.Text, "選択されているプロファイルをプロジェクトリストから解除します。\r\nよろしいですか？");
  EXPECT_EQ(question.Title, "警告");
  EXPECT_EQ(list_.Count(), 0);
  EXPECT_EQ(list_.Selected, 0);
  for (const ProfileListView& view : list_.Views) {
    EXPECT_TRUE(view.Rows.empty());
    EXPECT_TRUE(view.Panels.empty());
  }
  const ProfileListButtons b = ProfileButtonStates(list_);
  EXPECT_FALSE(b.Export || b.Rename || b.Remove || b.MoveUp || b.MoveDown);
  EXPECT_FALSE(std::filesystem::exists(ProjectCopy("b.erd")));
}

TEST_F(ProfileEditTest, RemovingARowRecoloursTheRestByPosition) {
  Register({"a", "b", "c", "d"}, {1});
  ScriptedUi cancel(session);
  cancel.Answers = {MsgAnswer::Cancel};
  cmdProfileEdit(session, list_, 4);
  EXPECT_EQ(list_.Count(), 4);
  testing::ScriptedUi ui(session);
  cmdProfileEdit(session, list_, 4);
  EXPECT_EQ(list_.Views[0].Rows, (std::vector<std::string>{"b", "c", "d"}));
  EXPECT_EQ(list_.Items[1].FileName, "b.erd");
  EXPECT_EQ(list_.Views[0].Panels, (std::vector<Colour>{0x0000FF, 0x00FF00, 0xFF0000}));
  EXPECT_TRUE(std::filesystem::exists(ProjectCopy("b.erd")));
  EXPECT_FALSE(std::filesystem::exists(ProjectCopy("a.erd")));
}

TEST_F(ProfileEditTest, MovesSwapNeighboursAndFollowTheButtons) {
  Register({"a", "b", "c"}, {1});
  ProfileListButtons b = ProfileButtonStates(list_);
  EXPECT_TRUE(b.Export && b.Rename && b.Remove && b.MoveDown);
  EXPECT_FALSE(b.MoveUp);
  EXPECT_FALSE(cmd上下移動(session, list_, 0));
  ASSERT_TRUE(cmd上下移動(session, list_, 1));
  ASSERT_TRUE(cmd上下移動(session, list_, 1));
  for (const ProfileListView& view : list_.Views) EXPECT_EQ(view.Rows, (std::vector<std::string>{"b", "c", "a"}));
  EXPECT_EQ(list_.Items[3].FileName, "a.erd");
  EXPECT_EQ(list_.SelectedRows, (std::vector<std::int32_t>{3}));
  EXPECT_EQ(list_.Views[0].Panels, (std::vector<Colour>{0x0000FF, 0x00FF00, 0xFF0000}));  // panels stay put
  b = ProfileButtonStates(list_);
  EXPECT_TRUE(b.MoveUp);
  EXPECT_FALSE(b.MoveDown);
  SelectProfileRows(list_, {1, 2});
  b = ProfileButtonStates(list_);
  EXPECT_TRUE(b.Export);
  EXPECT_FALSE(b.Rename || b.MoveUp || b.MoveDown);
}

TEST_F(ProfileEditTest, SelectionChangeStoresThePreviousProfileFirst) {
  Register({"a", "b"}, {1});
  std::vector<std::string> events;
  list_.Hooks.StoreProfileTab = [&](std::int32_t i) { events.push_back(fmt::format("store {}", i)); };
  list_.Hooks.ShowProfileTab = [&](std::int32_t i) { events.push_back(fmt::format("show {}", i)); };
  SelectProfileRows(list_, {2});
  SelectProfileRows(list_, {2});  // unchanged: nothing happens
  SelectProfileRows(list_, {1, 2});
  EXPECT_EQ(events, (std::vector<std::string>{"store 1", "show 2", "store 2"}));
  EXPECT_EQ(list_.Selected, 0);
}

class ProfileDialog : public testing::SessionTest {};

TEST_F(ProfileDialog, FiftyPassFiftyOneDoNot) {
  ProfileDialogChoice ticked;
  ticked.AppendDateTime = 1;
  for (int i = 1; i <= 50; ++i) ticked.Names.push_back(fmt::format("p{}", i));
  testing::ScriptedUi ui(session);
  const auto fifty = AcceptProfileDialog(session, ProfileDialogKind::Register, ticked);
  ASSERT_TRUE(fifty.has_value());
  EXPECT_EQ(fifty->Names.size(), 50u);
  EXPECT_EQ(fifty->AppendDateTime, 1);
  EXPECT_TRUE(ui.Messages().empty());

  ticked.Names.push_back("p51");
  EXPECT_FALSE(AcceptProfileDialog(session, ProfileDialogKind::Register, ticked).has_value());
  EXPECT_FALSE(AcceptProfileDialog(session, ProfileDialogKind::Export, ticked).has_value());
  const auto messages = ui.Messages();
  ASSERT_EQ(messages.size(), 2u);
  EXPECT_EQ(messages[0].Text, "同時に登録できるプロファイル数は５０個までです。\r\n調整してください。");
  EXPECT_EQ(messages[0].Title, "プロファイル登録");
  EXPECT_EQ(messages[0].Icon, MsgIcon::Exclamation);
  EXPECT_EQ(messages[1].Text, "同時に出力できるプロファイル数は５０個までです。\r\n調整してください。");
  EXPECT_EQ(messages[1].Title, "プロファイル出力");

  ScriptedUi silent(session);
  EXPECT_FALSE(AcceptProfileDialog(session, ProfileDialogKind::Export, {}).has_value());
  EXPECT_TRUE(silent.Messages().empty());
}

TEST_F(ProfileEditTest, ExportOfFiftyOneSelectedStopsAtTheLimit) {
  std::vector<std::string> names;
  std::vector<std::int32_t> rows;
  for (int i = 1; i <= 51; ++i) {
    names.push_back(fmt::format("n{}", i));
    rows.push_back(i);
  }
  Register(names, rows);
  EXPECT_EQ(list_.Count(), 51);  // the list itself has no limit
  testing::ScriptedUi ui(session);
  cmdProfileEdit(session, list_, 2, ProfileExportFormat::Csv);
  EXPECT_EQ(ui.OnlyMessageText(), "同時に出力できるプロファイル数は５０個までです。\r\n調整してください。");
  EXPECT_EQ(ui.Log.size(), 1u);  // no file dialog
}

TEST(RegistrationName, SampleFromPatternOrBuiltIn) {
  std::tm now{};
  now.tm_year = 2024 - 1900;
  now.tm_mon = 0;
  now.tm_mday = 2;
  now.tm_hour = 3;
  now.tm_min = 4;
  now.tm_sec = 5;
  EXPECT_EQ(RegistrationNameSample("", "road", "50", now), "road_MAHP50m_20240102030405");
  EXPECT_EQ(RegistrationNameSample("$(PROFILENAME)$_HP$(CUTOFF)$_$(YYYYMMDD)$", "road", "50", now), "road_HP50_20240102");
}

}  // namespace
}  // namespace velmora
