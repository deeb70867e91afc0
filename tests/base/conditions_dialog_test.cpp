#include "base/conditions_dialog.h"

#include <gtest/gtest.h>

#include "base/ini_file.h"
#include "base/settings_io.h"
#include "frame_sandbox.h"
#include "support/checks.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;

const char* const kInvalid = "指定データにエラーがありました。\r\n修正してください。";

class ConditionsDialogTest : public testing::FrameSandbox {
 protected:
  void SetUp() override {
    FrameSandbox::SetUp();
    ASSERT_TRUE((run_ = Start()).MayGoOn);
    ui_.Log.clear();
  }
  ConditionsDialog Open() {
    return ConditionsDialog(session, [this] { ++dirtyMarks_; });
  }
  std::optional<std::string> DefaultValue(const std::string& section, const std::string& key) const {
    return ReadIniValue(DefaultIniPath(session.Paths), section, key);
  }
  StartUpResult run_;
  int dirtyMarks_ = 0;
};

TEST_F(ConditionsDialogTest, OpensShowingTheCurrentConditions) {
  const ConditionsDialog dialog = Open();
  EXPECT_TRUE(dialog.IsOpen());
  ConditionsBoxes expected;
  expected.txtBandFilter = {"50", "10"};
  expected.txt_IRI = {"80", "63.3", "6", "0.15", "653", "11"};
  expected.txt_バンド別低減ライン = {"12", "8", "5", "3", "2", "1.2", "0.8", "0.5", "0.3"};
  expected.cmd補修予測色 = {0xFF00FF, 0x00FF00};
  EXPECT_EQ(dialog.Boxes, expected);  // ARS, partial sections computed, every box enabled
}

TEST_F(ConditionsDialogTest, CheckRefusesEmptyOrNonNumericEnabledBoxesAndOkStaysOpen) {
  ConditionsDialog dialog = Open();
  const CalcConditions before = session.CurrentConditions;
  dialog.Boxes.txt_IRI[2] = " ";
  dialog.Boxes.txt_IRI[4] = "abc";
  dialog.Boxes.txt_IRIEnabled[4] = false;  // a disabled box is not checked
  dialog.Boxes.txtBandFilter[1] = "1O";
  dialog.Boxes.txt_バンド別低減ライン[0] = "not checked";
  EXPECT_EQ(InvalidBoxes(dialog.Boxes), (std::vector<std::string>{"txtBandFilter(1)", "txt_IRI(2)"}));
  EXPECT_FALSE(dialog.Ok());
  EXPECT_TRUE(dialog.IsOpen());
  testing::ExpectMessages(ui_, {{kInvalid, "エラー"}});
  EXPECT_EQ(session.CurrentConditions, before);
  EXPECT_EQ(dirtyMarks_, 0);
}

TEST_F(ConditionsDialogTest, OkStoresTheBoxesAndMarksTabsOnlyWhenSomethingChanged) {
  {
    ConditionsDialog unchanged = Open();
    unchanged.Boxes.txt_IRI[0] = "80.000";  // the same value typed differently
    EXPECT_TRUE(unchanged.Ok());
    EXPECT_EQ(dirtyMarks_, 0);
  }
  ConditionsDialog dialog = Open();
  dialog.Boxes.txt_IRI[0] = "60";
  dialog.Boxes.optIRI_PW = 1;
  dialog.Boxes.opt_IRI算出区間条件_しない = true;
  dialog.Boxes.txt_バンド別低減ライン[1] = "";
  dialog.Boxes.txt_バンド別低減ライン[2] = "abc";
  dialog.Boxes.txt_バンド別低減ライン[3] = "2.75";
  dialog.Boxes.cmd補修予測色[1] = 0x123456;
  CalcConditions expected = session.CurrentConditions;  // IriBaseLength is not a box: kept
  expected.Iri.Speed = 60;
  expected.Iri.PowerWeighting = 1;
  expected.SkipPartialSections = true;
  expected.RepairBandLines.Value[2] = expected.RepairBandLines.Value[3] = kNoValue;
  expected.RepairBandLines.Value[4] = 2.75;
  expected.RepairAppliedColour = 0x123456;
  EXPECT_TRUE(dialog.Ok());
  EXPECT_FALSE(dialog.IsOpen());
  EXPECT_EQ(dirtyMarks_, 1);
  EXPECT_EQ(session.CurrentConditions, expected);
  EXPECT_EQ(session.DefaultConditions.Iri.Speed, 80.0);  // the defaults are not touched by OK
}

TEST_F(ConditionsDialogTest, ClosingWithChangesAsksAndFollowsTheAnswer) {
  ConditionsDialog dialog = Open();
  EXPECT_TRUE(Open().Close());  // nothing changed: no question
  EXPECT_TRUE(ui_.Messages().empty());

  dialog.Boxes.txt_IRI[1] = "70";
  ui_.Answers = {MsgAnswer::Cancel, MsgAnswer::No};
  EXPECT_FALSE(dialog.Close());
  EXPECT_TRUE(dialog.IsOpen());
  EXPECT_TRUE(dialog.Close());
  EXPECT_EQ(session.CurrentConditions.Iri.KsMs, 63.3);
  EXPECT_EQ(dirtyMarks_, 0);

  ConditionsDialog again = Open();
  again.Boxes.txt_IRI[1] = "";
  ui_.Answers = {MsgAnswer::Yes, MsgAnswer::Yes};
  EXPECT_FALSE(again.Close());  // Yes runs the check, which fails: the dialog stays
  again.Boxes.txt_IRI[1] = "70";
  EXPECT_TRUE(again.Close());
  EXPECT_EQ(session.CurrentConditions.Iri.KsMs, 70.0);
  EXPECT_EQ(dirtyMarks_, 1);
  const testing::Shown question{"データが変更されています。保存しますか？", "確認", std::nullopt, MsgButtons::YesNoCancel};
  testing::ExpectMessages(ui_, {question, question, question, {kInvalid, "エラー"}, question});
}

TEST_F(ConditionsDialogTest, ResetShowsTheFileValuesOfThePageOnlyAfterOk) {
  WriteIniValue(DefaultIniPath(session.Paths), "補修形状検討_バンド別低減ラインパラメータ", "1-Oct", "7");
  WriteIniValue(DefaultIniPath(session.Paths), "補修形状検討_バンド別低減ラインパラメータ", "2-Oct", "");
  ConditionsDialog dialog = Open();
  dialog.Boxes.txt_IRI[0] = "55";
  ui_.Answers = {MsgAnswer::Cancel};
  EXPECT_FALSE(dialog.ResetPage(ConditionsPage::RepairLines));
  EXPECT_EQ(dialog.Boxes.txt_バンド別低減ライン[0], "12");
  testing::ExpectMessages(ui_, {{"規定値を読み込み適用します。\r\nよろしいですか？", "確認", std::nullopt, MsgButtons::OkCancel}});

  EXPECT_TRUE(dialog.ResetPage(ConditionsPage::RepairLines));
  EXPECT_EQ(dialog.Boxes.txt_バンド別低減ライン[0], "7");
  EXPECT_EQ(dialog.Boxes.txt_バンド別低減ライン[1], "");
  EXPECT_EQ(dialog.Boxes.txt_IRI[0], "55");  // other pages keep what was typed
  EXPECT_EQ(session.CurrentConditions.RepairBandLines.Value[1], 12.0);
  EXPECT_TRUE(dialog.ResetPage(ConditionsPage::Iri));
  EXPECT_EQ(dialog.Boxes.txt_IRI[0], "80");
}

TEST_F(ConditionsDialogTest, SaveWritesTheStudyPagesAndLeavesTheIriGroupOutOfTheFile) {
  ConditionsDialog dialog = Open();
  dialog.Boxes.cmd補修予測色[0] = MakeColour(1, 2, 3);
  EXPECT_TRUE(dialog.SavePage(ConditionsPage::RepairColours));
  EXPECT_EQ(ui_.Messages().at(0).Text, "規定値として保存します。\r\nよろしいですか？");
  EXPECT_EQ(DefaultValue("補修形状検討_表示オプション", "低減ライン値の表示色"), "1, 2, 3");
  EXPECT_EQ(DefaultValue("プロファイル分解_表示オプション", "低減ライン値の表示色"), "255, 0, 255");

  dialog.Boxes.txt_バンド別低減ライン[8] = "0.25";
  EXPECT_TRUE(dialog.SavePage(ConditionsPage::RepairLines));
  EXPECT_EQ(DefaultValue("補修形状検討_バンド別低減ラインパラメータ", "9-Oct"), "0.25000");

  const std::string before = ReadBytes(DefaultIniPath(session.Paths));
  dialog.Boxes.txt_IRI[0] = "60";
  EXPECT_TRUE(dialog.SavePage(ConditionsPage::Iri));
  ui_.Answers = {MsgAnswer::Cancel};
  dialog.Boxes.txt_バンド別低減ライン[8] = "9";
  EXPECT_FALSE(dialog.SavePage(ConditionsPage::RepairLines));
  EXPECT_EQ(ReadBytes(DefaultIniPath(session.Paths)), before);
}

TEST_F(ConditionsDialogTest, SaveThatCannotWriteIsReportedNamingTheFile) {
  fs::remove(app_ / "Default.ini");
  fs::create_directory(app_ / "Default.ini");
  ConditionsDialog dialog = Open();
  ui_.Log.clear();
  EXPECT_FALSE(dialog.SavePage(ConditionsPage::RepairColours));
  const auto messages = ui_.Messages();
  ASSERT_EQ(messages.size(), 2u);  // the question, then the error
  EXPECT_EQ(messages[1].Title, "[ frm計算条件 : SaveDefaults ]");
  EXPECT_NE(messages[1].Text.find("Default.ini"), std::string::npos);
}

}  // namespace
}  // namespace velmora
