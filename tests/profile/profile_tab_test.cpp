// The profile tab's boxes in and out, its two ERD buttons and the input checks.
#include "profile/profile_tab.h"

#include <gtest/gtest.h>

#include "profile/erd_file.h"
#include "profile/list_fixture.h"
#include "profile/profile_reader.h"
#include "support/checks.h"

namespace velmora {
namespace {

using testing::ReadBytes;
using testing::ScriptedUi;

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
