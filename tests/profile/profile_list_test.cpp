// The profile list: registration of ERD files with the replace question, the copy into the project
// folder, the parallel views and their colours; and its commands: add through the dialog, the PMS
// refusal, export as ERD or CSV, rename, remove, moves and the buttons they enable, and the limit of
// fifty per action. The profile tab's boxes in and out, its two ERD buttons and the input checks.
#include "profile/profile_edit.h"

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>

#include <fmt/format.h>

#include "base/session.h"
#include "base/settings_io.h"
#include "profile/erd_file.h"
#include "profile/list_fixture.h"
#include "profile/profile_list.h"
#include "profile/profile_reader.h"
#include "profile/profile_tab.h"
#include "support/calendar.h"
#include "support/checks.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::ScriptedUi;
using Names = std::vector<std::string>;


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
  for (const ProfileListView& view : list.Views) EXPECT_EQ(view.Rows, (Names{"alpha", "Beta"}));
  const ProfileRecord& beta = list.Items[2];
  EXPECT_EQ((std::vector{beta.FileName, beta.FilePath, beta.RouteName, beta.Erd.Title, beta.Erd.KpDisplay}),
            (Names{"Beta.ERD", b, "Beta", "国道１２号　上り", "123.45000+-"}));
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
  EXPECT_EQ(list.Views[0].Rows, (Names{"road", "extra"}));
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
  fs::remove(gone);
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
    for (const ProfileListView& view : list.Views) EXPECT_EQ(view.Rows, (Names{"good"}));
    ASSERT_EQ(ui.Messages().size(), 1u) << bad;
    EXPECT_NE(ui.Messages()[0].Title.find(title), std::string::npos) << ui.Messages()[0].Title;
    EXPECT_NE(ui.Messages()[0].Text.find(bad), std::string::npos) << ui.Messages()[0].Text;
    EXPECT_FALSE(fs::exists(ProjectCopy("late.erd")));
    EXPECT_FALSE(fs::exists(ProjectCopy(fs::path(bad).filename().string())));
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

class ProfileTabTest : public ProfileListTest {
 protected:
  ProfileRecord Load(const std::string& fixture) {
    path_ = Source("tab.erd", fixture);
    ProfileRecord profile;
    EXPECT_TRUE(ReadProfile(session, path_, profile));
    profile.FilePath = path_;
    profile.FileName = "tab.erd";
    return profile;
  }
  // The file as read again after a button rewrote it.
  ErdRecord Reread() {
    ErdRecord reread;
    EXPECT_TRUE(ReadERD(session, path_, reread));
    return reread;
  }
  std::string path_;
};

TEST_F(ProfileTabTest, BoxesShowTheRecord) {
  ProfileRecord profile = Load("sjis_title_with_kp.erd");
  profile.RouteName = "  route  ";
  const ProfileTabBoxes boxes = ShowProfileOnTab(profile);
  const std::array<std::string, 11> expected{"route", "Elevation", "Distance", "0.25000", "3",
                                             "国道１２号　上り", "1", "123.45000", "",
                                             "123.45000+-｜123.50000,124.00000", "3"};
  EXPECT_EQ(boxes.txt緒元, expected);
  EXPECT_EQ(boxes.lbl緒元単位1, "⇒ 距離：0.50000(m)");  // (3 - 1) × 0.25 m
  EXPECT_EQ((std::vector{boxes.cbo緒元, boxes.optKP, boxes.opt上下}), (std::vector{0, 0, 1}));  // lane -1
  EXPECT_EQ(boxes.txt補修計画範囲, (std::array<std::string, 2>{"123.50000", "124.00000"}));
  EXPECT_FALSE(boxes.chk補修計画範囲);
}

TEST_F(ProfileTabTest, UnsetKpShowsEmptyAndRElevSelectsTheSecondItem) {
  ProfileRecord profile = Load("line2_free_widths.erd");
  profile.Erd.ShortName[1] = "relev";
  const ProfileTabBoxes boxes = ShowProfileOnTab(profile);
  EXPECT_TRUE(boxes.txt緒元[7].empty() && boxes.txt緒元[9].empty());
  EXPECT_EQ((std::vector{boxes.cbo緒元, boxes.opt上下}), (std::vector{1, 2}));
}

TEST_F(ProfileTabTest, LeavingWritesTheBoxesBack) {
  ProfileRecord profile = Load("sjis_title_with_kp.erd");
  ProfileTabBoxes boxes = ShowProfileOnTab(profile);
  boxes.txt緒元[0] = " new route ";
  boxes.txt緒元[3] = "0.5";
  boxes.txt緒元[7] = " 5.5 ";
  boxes.txt緒元[8] = "  note\r\nline two ";
  boxes.optKP = 1;
  boxes.opt上下 = 0;
  boxes.cbo緒元 = 1;
  boxes.chk補修計画範囲 = true;
  boxes.txt補修計画範囲 = {"6", ""};
  StoreProfileTab(boxes, profile);
  EXPECT_EQ(profile.RouteName, "new route");
  EXPECT_DOUBLE_EQ(profile.Erd.StepSize, 0.5);
  EXPECT_DOUBLE_EQ(profile.SamplesPerMetre, 2.0);
  EXPECT_DOUBLE_EQ(profile.Erd.KpStart, 5.5);
  EXPECT_EQ((std::vector{profile.Erd.KpSign, profile.Erd.Lane, profile.Erd.RepairRangeOn}), (std::vector{1, 1, 1}));
  EXPECT_EQ(profile.Erd.KpText, "5.50000-+");
  EXPECT_EQ(profile.Erd.ShortName[1], "RElev.");
  EXPECT_EQ(profile.Comment, "note\r\nline two");
  EXPECT_DOUBLE_EQ(profile.Erd.RepairRangeStart, 6.0);
  EXPECT_TRUE(IsNoValue(profile.Erd.RepairRangeEnd));
  EXPECT_EQ(ComposeErdTitle(profile.Erd), "国道１２号　上り｜5.50000-+｜6.00000,-99999");

  boxes.txt緒元[7] = "";
  StoreProfileTab(boxes, profile);
  EXPECT_TRUE(IsNoValue(profile.Erd.KpStart));
  EXPECT_EQ(profile.Erd.KpText, "");
}

TEST_F(ProfileTabTest, SampleCountRepairMakesHeaderAndDataAgree) {
  ProfileRecord profile = Load("header_count_differs.erd");
  ProfileTabBoxes boxes = ShowProfileOnTab(profile);
  EXPECT_EQ(boxes.txt緒元[10], "10");
  const std::string before = ReadBytes(path_);
  ui_.Answers = {MsgAnswer::Cancel};
  EXPECT_FALSE(cmdERD修正(session, boxes, profile));
  EXPECT_EQ(ReadBytes(path_), before);
  ASSERT_TRUE(cmdERD修正(session, boxes, profile));
  const testing::Shown question{"下記のERDファイルを実データ件数で書き換えます。\r\n\r\n" + path_ + "\r\n\r\nよろしいですか？", "確認"};
  testing::ExpectMessages(ui_, {question, question});
  const ErdRecord reread = Reread();
  EXPECT_EQ((std::vector{reread.NumSamplesHeader, reread.NumSamples, profile.Erd.NumSamplesHeader, profile.WorkCount}),
            (std::vector{3, 3, 3, 3}));
  EXPECT_EQ(reread.Elevation, (Array1<double>{1, 2, 3}));
  EXPECT_EQ(boxes.txt緒元[4], "3");
  EXPECT_EQ(boxes.txt緒元[10], "3");
  EXPECT_FALSE(boxes.cmdERD修正Enabled);
}

TEST_F(ProfileTabTest, TitleEditRewritesTheTitleLineFromBoxesFiveAndNine) {
  ProfileRecord profile = Load("line2_free_widths.erd");
  ProfileTabBoxes boxes = ShowProfileOnTab(profile);
  boxes.txt緒元[5] = " 新しい題 ";
  boxes.txt緒元[9] = "7.00000+0";
  ASSERT_TRUE(cmdERD上書き(session, boxes, profile));
  EXPECT_EQ(ui_.OnlyMessageText(), "下記のERDファイルのタイトル情報を書き換えます。\r\n\r\n" + path_ + "\r\n\r\nよろしいですか？");
  const ErdRecord reread = Reread();
  EXPECT_EQ(reread.Title, "新しい題");
  EXPECT_DOUBLE_EQ(reread.KpStart, 7.0);
  EXPECT_EQ(reread.Lane, 0);
  EXPECT_FALSE(boxes.Enabled[9]);
  EXPECT_FALSE(boxes.cmdERD上書きEnabled);
}

TEST_F(ProfileTabTest, ChkDatRefusesABarInATitle) {
  ProfileList list;
  ASSERT_TRUE(AddProfileList(session, list, {Source("ok.erd"), Source("bad.erd")}, true));
  list.Items[2].Erd.Title = "a｜b";
  std::int32_t bad = 0;
  EXPECT_TRUE(ChkDat(session, 2, list, &bad));  // lowest bit not set: no check
  EXPECT_FALSE(ChkDat(session, 1, list, &bad));
  EXPECT_EQ(bad, 2);
  testing::ExpectMessages(ui_, {{"プロファイルのタイトル文字列に  \"｜\" (0x8162) は使用できません。\r\n\r\nファイル名：bad.erd\r\n\r\n確認してください。",
                                 "プロファイルデータ不正"}});
}

TEST(ProfileTabColours, NumberBoxesAndTitleAreMarked) {
  ProfileTabBoxes boxes;
  boxes.txt緒元[3] = "-1";     // not above 0
  boxes.txt緒元[4] = "abc";    // not numeric
  boxes.txt緒元[6] = " ";      // empty
  boxes.txt緒元[7] = "12.5";   // fine
  boxes.txt緒元[5] = "x｜y";
  boxes.txt緒元[0] = "";       // a text box: never marked
  boxes.Colours[9] = {1, 2};   // reset to normal first
  ProfileTabBoxes untouched = boxes;
  ChkDatColours(0, untouched);
  EXPECT_EQ(untouched.Colours[9].Back, 1u);

  ChkDatColours(1, boxes);
  const Colour backs[] = {kBoxNormalBack, 32768, 0xFF0000, 32768, 255, kBoxNormalBack};  // boxes 0, 3, 4, 5, 6, 7
  for (int i = 0; const int box : {0, 3, 4, 5, 6, 7}) EXPECT_EQ(boxes.Colours[box].Back, backs[i++]) << box;
  EXPECT_EQ(boxes.Colours[9].Back, kBoxNormalBack);
  EXPECT_EQ(boxes.Colours[3].Fore, 0xFFFFFFu);

  boxes.Enabled[4] = false;  // a disabled box is left in its normal colours
  ChkDatColours(1, boxes);
  EXPECT_EQ(boxes.Colours[4].Back, kBoxNormalBack);
}

}  // namespace
}  // namespace velmora
