// The profile list's commands: add through the dialog, the PMS refusal, export as ERD or CSV, rename,
// remove, moves and the buttons they enable, and the limit of fifty per action.
#include "profile/profile_edit.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include "base/session.h"
#include "base/settings_io.h"
#include "profile/erd_file.h"
#include "profile/list_fixture.h"
#include "support/calendar.h"
#include "support/checks.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using Names = std::vector<std::string>;

const char* const kExportLimit = "同時に出力できるプロファイル数は５０個までです。\r\n調整してください。";

class ProfileEditTest : public ProfileListTest {
 protected:
  // A list of the given names, all from the same fixture, with rows selected; the log starts empty.
  void Register(const Names& names, std::vector<std::int32_t> selected = {}) {
    std::vector<std::string> paths;
    for (const auto& name : names) paths.push_back(Source(name + ".erd"));
    ASSERT_TRUE(AddProfileList(session, list_, paths, true));
    SelectProfileRows(list_, std::move(selected));
    ui_.Log.clear();
  }
  // Runs an edit command with a fresh log.
  ProfileEditResult Edit(int index, ProfileExportFormat format = ProfileExportFormat::Erd) {
    ui_.Log.clear();
    return cmdProfileEdit(session, list_, index, format);
  }
  ProfileList list_;
};

TEST_F(ProfileEditTest, AddAsksForFilesRemembersTheFolderAndQueuesTextFiles) {
  const std::string a = Source("a.erd"), text = Source("b.csv"), other = Source("c.dat");
  ui_.Files = {{a, text, other}};
  EXPECT_EQ(Edit(0).TextImports, (Names{text}));
  EXPECT_EQ(list_.Views[0].Rows, (Names{"a"}));
  EXPECT_EQ(ui_.Log.at(0).Kind, "open");
  EXPECT_EQ(ui_.Log[0].Text, session.Paths.AppPath);  // nothing remembered yet: start in AppPath
  EXPECT_EQ(GetPrevValue(session, "CommonDialogPath", "ERDファイル追加"), (dir_ / "src").string());

  EXPECT_TRUE(Edit(0).TextImports.empty());  // no files: the command ends
  EXPECT_EQ(ui_.Log.at(0).Text, (dir_ / "src").string());
  EXPECT_EQ(list_.Count(), 1);
}

TEST_F(ProfileEditTest, PmsAddIsAStandingRefusalAndExportWithNothingSelectedDoesNothing) {
  Edit(1);
  EXPECT_EQ(ui_.OnlyMessageText(), "この機能は現在対応していません。");
  EXPECT_EQ(list_.Count(), 0);
  Register({"a"});
  Edit(2);
  EXPECT_TRUE(ui_.Log.empty());
}

TEST_F(ProfileEditTest, ExportAsErdUsesFreeNamesInTheChosenFolder) {
  Register({"p", "q"}, {1, 2});
  const auto out = dir_ / "out";
  fs::create_directories(out);
  for (int round = 0; round < 2; ++round) {
    ui_.Files = {{(out / "ignored.Dummy").string()}};
    Edit(2);
    EXPECT_EQ(ui_.Log.at(0).Text, "フォルダ名の取得に使用され、ファイル名は無視されます");
    testing::ExpectMessages(ui_, {{"ERDファイルを保存しました。 \r\n保存先：" + out.string(), "データ保存"}});
  }
  EXPECT_EQ(testing::EntryNames(out), (Names{"p(001).ERD", "p.ERD", "q(001).ERD", "q.ERD"}));
  ErdRecord back;
  ASSERT_TRUE(ReadERD(session, (out / "q(001).ERD").string(), back));
  EXPECT_EQ(back.Elevation, list_.Items[2].Erd.Elevation);
}

TEST_F(ProfileEditTest, ExportAsCsvPutsProfilesSideBySide) {
  ASSERT_TRUE(AddProfileList(session, list_, {Source("long.erd"), Source("short.erd", "feet_units.erd")}, true));
  SelectProfileRows(list_, {1, 2});
  const std::string csv = (dir_ / "both.CSV").string();
  ui_.Files = {{csv}};
  Edit(2, ProfileExportFormat::Csv);
  // Header lines quoted side by side, the same in both but line 2, the title and GENNAME.
  auto both = [](const std::string& a, const std::string& b) { return "\"" + a + "\",\"" + b + "\"\r\n"; };
  std::string expected = both("ERDFILEV2.00", "ERDFILEV2.00") +
                         both("      1,      3,      3,      1,      5, 0.250000    ,     -1,",
                              "      1,      2,      2,      1,      5, 0.152400    ,     -1,") +
                         both("TITLE   free widths", "TITLE   feet");
  for (const char* line : {"SHORTNAMLElev.", "LONGNAMELeft Elevation", "UNITSNAMmm"}) expected += both(line, line);
  expected += both("GENNAME Elevation", "GENNAME ");
  for (const char* line : {"XLABEL  Distance", "XUNITS  m", "FORMAT  (G14.6)", "END"}) expected += both(line, line);
  EXPECT_EQ(ReadBytes(csv), expected + "1.00000000,10.00000000\r\n2.00000000,-2.50000000\r\n3.00000000,\r\n");
  testing::ExpectMessages(ui_, {{"CSVファイルを保存しました。 \r\n保存先：" + csv}});
  const auto save = std::find_if(ui_.Log.begin(), ui_.Log.end(), [](const auto& m) { return m.Kind == "save"; });
  ASSERT_NE(save, ui_.Log.end());
  EXPECT_EQ(save->Text.rfind("Profile_", 0), 0u);
  EXPECT_EQ(save->Text.size(), std::string("Profile_YYYYMMDDHHNNSS.CSV").size());
}

TEST_F(ProfileEditTest, CsvLimitSpreadsProfilesOverFurtherFiles) {
  Register({"a", "b", "c"}, {1, 2, 3});
  session.Settings.CsvProfileLimit = 2;
  const std::string csv = (dir_ / "part.CSV").string();
  ui_.Files = {{csv}};
  Edit(2, ProfileExportFormat::Csv);
  const std::string first = ReadBytes(csv), second = ReadBytes(dir_ / "part(001).CSV");
  EXPECT_EQ(first.substr(0, first.find("\r\n")), "\"ERDFILEV2.00\",\"ERDFILEV2.00\"");
  EXPECT_EQ(second.substr(0, second.find("\r\n")), "\"ERDFILEV2.00\"");
}

TEST_F(ProfileEditTest, RenameEndsOnCancelEmptyOrUnchangedAsksAgainForATakenNameThenMovesTheFile) {
  Register({"first", "second"}, {2});
  // Cancel, an empty name or the same name end the command.
  for (const Names& inputs : {Names{}, {""}, {"second"}}) {
    ui_.Inputs.assign(inputs.begin(), inputs.end());
    session.Project.Dirty = false;
    Edit(3);
    EXPECT_EQ(list_.Items[2].FileName, "second.erd");
    EXPECT_FALSE(session.Project.Dirty);
    EXPECT_EQ(ui_.Log.size(), 1u);
  }
  std::string oldSource, newSource;
  list_.Hooks.RenameStudySources = [&](const std::string& o, const std::string& n) { oldSource = o, newSource = n; };
  ui_.Inputs = {" FIRST ", "third"};
  Edit(3);
  ASSERT_EQ(ui_.Log.size(), 3u);
  EXPECT_EQ(ui_.Log[0].Kind, "input");
  testing::ExpectShown(ui_.Log[0], {"変更後のファイル名を指定してください。", "名前の変更"});
  testing::ExpectMessages(ui_, {{"指定されたファイルは既に存在します。\r\n\r\n指定名称：FIRST\r\n\r\n確認してください。", "警告"}});
  EXPECT_EQ(list_.Items[2].FileName, "third.ERD");
  for (const ProfileListView& view : list_.Views) EXPECT_EQ(view.Rows, (Names{"first", "third"}));
  EXPECT_TRUE(fs::exists(ProjectCopy("third.ERD")));
  EXPECT_FALSE(fs::exists(ProjectCopy("second.erd")));
  EXPECT_EQ(oldSource + " -> " + newSource, "second -> third");
}

TEST_F(ProfileEditTest, RemovingARowRecoloursTheRestAndRemovingAllLeavesEveryButtonDisabled) {
  Register({"a", "b", "c", "d"}, {1});
  ui_.Answers = {MsgAnswer::Cancel};
  Edit(4);
  EXPECT_EQ(list_.Count(), 4);
  Edit(4);
  testing::ExpectMessages(ui_, {{"選択されているプロファイルをプロジェクトリストから解除します。\r\nよろしいですか？", "警告"}});
  EXPECT_EQ(list_.Views[0].Rows, (Names{"b", "c", "d"}));
  EXPECT_EQ(list_.Items[1].FileName, "b.erd");
  EXPECT_EQ(list_.Views[0].Panels, (std::vector<Colour>{0x0000FF, 0x00FF00, 0xFF0000}));
  EXPECT_TRUE(fs::exists(ProjectCopy("b.erd")));
  EXPECT_FALSE(fs::exists(ProjectCopy("a.erd")));

  SelectProfileRows(list_, {1, 2, 3});
  Edit(4);
  EXPECT_EQ(list_.Count(), 0);
  EXPECT_EQ(list_.Selected, 0);
  for (const ProfileListView& view : list_.Views) EXPECT_TRUE(view.Rows.empty() && view.Panels.empty()) << view.Name;
  const ProfileListButtons b = ProfileButtonStates(list_);
  EXPECT_FALSE(b.Export || b.Rename || b.Remove || b.MoveUp || b.MoveDown);
  EXPECT_FALSE(fs::exists(ProjectCopy("b.erd")));
}

TEST_F(ProfileEditTest, MovesSwapNeighboursAndFollowTheButtons) {
  Register({"a", "b", "c"}, {1});
  // Export, rename, remove, up, down.
  auto buttons = [&] {
    const ProfileListButtons b = ProfileButtonStates(list_);
    return std::vector{b.Export, b.Rename, b.Remove, b.MoveUp, b.MoveDown};
  };
  EXPECT_EQ(buttons(), (std::vector{true, true, true, false, true}));
  EXPECT_FALSE(cmd上下移動(session, list_, 0));
  ASSERT_TRUE(cmd上下移動(session, list_, 1));
  ASSERT_TRUE(cmd上下移動(session, list_, 1));
  for (const ProfileListView& view : list_.Views) EXPECT_EQ(view.Rows, (Names{"b", "c", "a"}));
  EXPECT_EQ(list_.Items[3].FileName, "a.erd");
  EXPECT_EQ(list_.SelectedRows, (std::vector<std::int32_t>{3}));
  EXPECT_EQ(list_.Views[0].Panels, (std::vector<Colour>{0x0000FF, 0x00FF00, 0xFF0000}));  // panels stay put
  EXPECT_EQ(buttons(), (std::vector{true, true, true, true, false}));
  SelectProfileRows(list_, {1, 2});
  EXPECT_EQ(buttons(), (std::vector{true, false, true, false, false}));
}

TEST_F(ProfileEditTest, SelectionChangeStoresThePreviousProfileFirst) {
  Register({"a", "b"}, {1});
  Names events;
  list_.Hooks.StoreProfileTab = [&](std::int32_t i) { events.push_back(fmt::format("store {}", i)); };
  list_.Hooks.ShowProfileTab = [&](std::int32_t i) { events.push_back(fmt::format("show {}", i)); };
  SelectProfileRows(list_, {2});
  SelectProfileRows(list_, {2});  // unchanged: nothing happens
  SelectProfileRows(list_, {1, 2});
  EXPECT_EQ(events, (Names{"store 1", "show 2", "store 2"}));
  EXPECT_EQ(list_.Selected, 0);
}

TEST_F(ProfileEditTest, FiftyPassFiftyOneDoNot) {
  ProfileDialogChoice ticked;
  ticked.AppendDateTime = 1;
  for (int i = 1; i <= 50; ++i) ticked.Names.push_back(fmt::format("p{}", i));
  const auto fifty = AcceptProfileDialog(session, ProfileDialogKind::Register, ticked);
  ASSERT_TRUE(fifty.has_value());
  EXPECT_EQ(fifty->Names, ticked.Names);
  EXPECT_EQ(fifty->AppendDateTime, 1);
  EXPECT_FALSE(AcceptProfileDialog(session, ProfileDialogKind::Export, {}).has_value());  // silently

  ticked.Names.push_back("p51");
  EXPECT_FALSE(AcceptProfileDialog(session, ProfileDialogKind::Register, ticked).has_value());
  EXPECT_FALSE(AcceptProfileDialog(session, ProfileDialogKind::Export, ticked).has_value());
  testing::ExpectMessages(ui_, {{"同時に登録できるプロファイル数は５０個までです。\r\n調整してください。", "プロファイル登録",
                                 MsgIcon::Exclamation},
                                {kExportLimit, "プロファイル出力"}});

  // The list itself has no limit, an export of fifty-one stops before the file dialog.
  Names names;
  std::vector<std::int32_t> rows;
  for (int i = 1; i <= 51; ++i) {
    names.push_back(fmt::format("n{}", i));
    rows.push_back(i);
  }
  Register(names, rows);
  EXPECT_EQ(list_.Count(), 51);
  Edit(2, ProfileExportFormat::Csv);
  EXPECT_EQ(ui_.Log.size(), 1u);
  EXPECT_EQ(ui_.OnlyMessageText(), kExportLimit);
}

TEST(RegistrationName, SampleFromPatternOrBuiltIn) {
  const std::tm now = testing::At(2024, 1, 2, 3, 4, 5);
  EXPECT_EQ(RegistrationNameSample("", "road", "50", now), "road_MAHP50m_20240102030405");
  EXPECT_EQ(RegistrationNameSample("$(PROFILENAME)$_HP$(CUTOFF)$_$(YYYYMMDD)$", "road", "50", now), "road_HP50_20240102");
}

}  // namespace
}  // namespace velmora
