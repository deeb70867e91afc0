#include "profile/text_import.h"

#include <gtest/gtest.h>

#include "base/text_encoding.h"
#include "list_fixture.h"
#include "support/checks.h"

namespace velmora {
namespace {

class TextImportTest : public ProfileListTest {
 protected:
  std::string Text(const std::string& name, const std::vector<std::string>& lines) {
    const auto path = dir_ / name;
    WriteSystemTextFile(path, lines);
    return path.string();
  }
  static ImportOptions Options(const std::string& pitch = "0.1") {
    ImportOptions options;
    options.Pitch = pitch;
    return options;
  }
};

TEST_F(TextImportTest, SplitsAtEveryDelimiterInForceButNotInsideQuotes) {
  ImportOptions options = Options();
  options.Semicolon = true;
  options.Other = true;
  options.OtherText = "|";
  EXPECT_EQ(SplitImportLine("1,2;3|4", options), (std::vector<std::string>{"1", "2", "3", "4"}));
  EXPECT_EQ(SplitImportLine("\"a;b\",c", options), (std::vector<std::string>{"a;b", "c"}));
  options.Comma = false;
  EXPECT_EQ(SplitImportLine("1,2;3", options), (std::vector<std::string>{"1,2", "3"}));
}

TEST_F(TextImportTest, ChecksInOrderWithTheirTexts) {
  const auto preview = BuildImportPreview(Text("a.csv", {"1,2", "3,4", "5,6"}), Options());
  EXPECT_EQ(preview.RowCount(), 3);
  EXPECT_EQ(preview.Columns, 2);
  // Pitch, first row, last row, last column; the box that gets the focus and the message.
  const struct {
    std::string pitch, firstRow, lastRow, lastColumn;
    std::int32_t focus;
    std::string message;
  } cases[] = {
      {"", "", "", "", 0, "ピッチが指定されていません。"},
      {"x", "", "", "", 0, "数値で指定してください。"},
      {"0.1", "0", "", "", 1, "データ開始行（開始位置）は１以上で指定してください"},
      {"0.1", "", "4", "", 2, "データ開始行（終了位置）は 3 以下で指定してください"},
      {"0.1", "", "", "3", 4, "データ開始列（終了位置）は 2 以下で指定してください"},
      {"0.1", "3", "2", "", 2, "データ開始行（終了位置）は 3 以上で指定してください"},
  };
  for (const auto& c : cases) {
    ImportOptions options = Options(c.pitch);
    options.FirstRow = c.firstRow;
    options.LastRow = c.lastRow;
    options.LastColumn = c.lastColumn;
    ui_.Log.clear();
    EXPECT_EQ(CheckImport(session, preview, options), c.focus) << c.message;
    testing::ExpectMessages(ui_, {{c.message, "データ不正"}});
  }
  ui_.Log.clear();
  EXPECT_EQ(CheckImport(session, preview, Options()), -1);
  EXPECT_TRUE(ui_.Messages().empty());
}

TEST_F(TextImportTest, ColumnsBecomeNumberedProfilesWithHeadingTitlesAndHolesEndAColumn) {
  const auto path = Text("road.csv", {"left,right", "1.5,10", ",11", "2.5,12", "3.5,", "4.5,13"});
  ImportOptions options = Options("0.25");
  options.Header = true;
  options.TitleFromHeader = true;
  ProfileList list;
  ASSERT_TRUE(ImportTextFile(session, list, path, options));
  ASSERT_EQ(list.Count(), 2);

  const ProfileRecord &left = list.Items[1], &right = list.Items[2];
  EXPECT_EQ(left.FileName, "road(001).ERD");
  EXPECT_EQ(right.FileName, "road(002).ERD");
  EXPECT_EQ(left.Erd.Title, "left");
  EXPECT_EQ(right.Erd.Title, "right");
  EXPECT_DOUBLE_EQ(left.Erd.StepSize, 0.25);
  // "1.5" is the first sample, so the empty cell of the next row ends the column; the hole in row 4
  // ends the right one before 13.
  EXPECT_EQ(std::pair(left.Erd.NumSamples, right.Erd.NumSamples), std::pair(1, 3));
  EXPECT_EQ(left.Erd.Elevation, (Array1<double>{1.5}));
  EXPECT_EQ(right.Erd.Elevation, (Array1<double>{10, 11, 12}));
  EXPECT_TRUE(std::filesystem::exists(ProjectCopy("road(002).ERD")));
}

TEST_F(TextImportTest, OneColumnKeepsTheFileNameAndLeadingBlanksAreSkipped) {
  const auto path = Text("single.txt", {"", " ", "7", "8"});
  ImportOptions options = Options("0.5");
  options.FirstColumn = "1";
  options.LastColumn = "1";
  ProfileList list;
  ASSERT_TRUE(ImportTextFile(session, list, path, options));
  ASSERT_EQ(list.Count(), 1);
  EXPECT_EQ(list.Items[1].FileName, "single.ERD");
  EXPECT_EQ(list.Items[1].Erd.Title, "single.txt");  // no heading: the file's name
  EXPECT_EQ(list.Items[1].Erd.NumSamples, 2);
}

TEST_F(TextImportTest, NumberedNamesSkipNamesAlreadyListed) {
  const auto path = Text("twin.csv", {"1,2", "3,4"});
  ProfileList list;
  ASSERT_TRUE(ImportTextFile(session, list, path, Options()));
  ASSERT_TRUE(ImportTextFile(session, list, path, Options()));
  ASSERT_EQ(list.Count(), 4);
  // Column 1 finds (001) and (002) listed; column 2 finds (002) listed and (003) taken by column 1.
  EXPECT_EQ(list.Items[3].FileName, "twin(003).ERD");
  EXPECT_EQ(list.Items[4].FileName, "twin(004).ERD");
}

TEST_F(TextImportTest, MissingFileIsLoggedAndRegistersNothing) {
  ProfileList list;
  EXPECT_FALSE(ImportTextFile(session, list, (dir_ / "none.csv").string(), Options()));
  EXPECT_EQ(list.Count(), 0);
  EXPECT_NE(ui_.OnlyMessageText().find("none.csv"), std::string::npos);
}

TEST_F(TextImportTest, SettingsSurviveInPreviousValues) {
  ImportOptions options = Options();
  options.Comma = false;
  options.Tab = true;
  options.Other = true;
  options.OtherText = ",";
  options.Header = true;
  SaveImportSettings(session, options);
  const ImportOptions b = LoadImportSettings(session);
  EXPECT_EQ((std::vector{b.Comma, b.Tab, b.Other, b.Header, b.TitleFromHeader}), (std::vector{false, true, true, true, false}));
  EXPECT_EQ(b.OtherText, ",");
}

}  // namespace
}  // namespace velmora
