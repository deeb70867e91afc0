// The tools that make new profiles from registered ones (reversal, height shift, cut-out, composite)
// and the import of text files whose columns become profiles.
#include "profile/profile_tools.h"

#include <gtest/gtest.h>

#include "base/text_encoding.h"
#include "list_fixture.h"
#include "profile/text_import.h"
#include "support/checks.h"
#include "support/expect_values.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

// Samples 1, 2, 3, 4 at 0.5 m from KP 10 km, KP growing.
ToolItem Item(const std::string& name = "p.ERD", double kp = 10.0, std::int32_t sign = 0) {
  ProfileRecord profile = testing::MakeProfile("p", 0.5, {1, 2, 3, 4}, kp, sign);
  profile.Erd.ShortName[1] = "LElev.";
  return {name, profile.Erd};
}

std::vector<double> Samples(const ErdRecord& erd) { return erd.Elevation.vector(); }

using ProfileTools = ProfileListTest;

TEST_F(ProfileTools, ReversalTwiceGivesTheSameSamplesAndKp) {
  const auto once = ReverseProfiles({Item()});
  ASSERT_EQ(once.size(), 1u);
  EXPECT_EQ(once[0].FileName, "p_反転.ERD");
  EXPECT_EQ(Samples(once[0].Erd), (std::vector<double>{4, 3, 2, 1}));
  EXPECT_NEAR(once[0].Erd.KpStart, 10.0015, 1e-12);  // the old end: 10 + 3 × 0.5 m
  EXPECT_EQ(once[0].Erd.KpSign, 1);
  const ErdRecord twice = ReverseProfiles({{"q.ERD", once[0].Erd}})[0].Erd;
  EXPECT_EQ(Samples(twice), (std::vector<double>{1, 2, 3, 4}));
  EXPECT_NEAR(twice.KpStart, 10.0, 1e-12);
  EXPECT_EQ(twice.KpSign, 0);
}

TEST_F(ProfileTools, HeightShiftMovesTheReferenceSampleToTheHeight) {
  const struct {
    std::int32_t sign;  // of the KP
    HeightShiftInput input;
    const char* name;
    std::vector<double> samples;
  } cases[] = {
      {0, {ShiftReference::Start, "", "100"}, "p_始点H100調整.ERD", {100, 101, 102, 103}},
      // KP 10.001 km is 1 m, two pitches, from the start: sample 3 (height 3) is the reference.
      {0, {ShiftReference::Kp, "10.001", "0"}, "p_KP10.001H0調整.ERD", {-2, -1, 0, 1}},
      // A KP beyond the end takes the last sample reached.
      {0, {ShiftReference::Kp, "99", "0"}, "p_KP99H0調整.ERD", {-3, -2, -1, 0}},
      // With a falling KP the same KP lies two pitches along too.
      {1, {ShiftReference::Kp, "9.999", "0"}, "p_KP9.999H0調整.ERD", {-2, -1, 0, 1}},
  };
  for (const auto& c : cases) {
    const auto out = HeightShiftProfiles(session, {Item("p.ERD", 10.0, c.sign)}, c.input);
    ASSERT_TRUE(out && out->size() == 1u) << c.name;
    EXPECT_EQ((*out)[0].FileName, c.name);
    EXPECT_EQ(Samples((*out)[0].Erd), c.samples) << c.name;
  }
  EXPECT_TRUE(ui_.Messages().empty());
}

TEST_F(ProfileTools, ChecksStopWithTheirMessages) {
  EXPECT_FALSE(HeightShiftProfiles(session, {Item()}, {ShiftReference::Kp, "", "1"}));
  EXPECT_FALSE(HeightShiftProfiles(session, {Item()}, {ShiftReference::End, "", "abc"}));
  CutOutInput cut;
  cut.KpStart = "1";
  EXPECT_FALSE(CutOutProfiles(session, {Item()}, cut));
  CompositeInput composite;
  composite.BaseIsCsv = true;
  EXPECT_FALSE(CompositeProfiles(session, {Item()}, composite));
  composite.CsvPath = "/nonexistent/base.csv";
  EXPECT_FALSE(CompositeProfiles(session, {Item()}, composite));
  testing::ExpectMessages(ui_, {{"KP が指定されていません。", "Error"}, {"調整高さ は数値で指定して下さい。"},
                                {"KP終点 が指定されていません。"}, {"CSVデータが指定されていません。"},
                                {"指定されたファイルが見つかりません。"}});
}

// A cut-out by position and length (データ指定).
CutOutInput Cut(const std::string& start, const std::string& length, Shortfall fill = Shortfall::None,
                CutUnit unit = CutUnit::Samples, bool fromEnd = false) {
  return CutOutInput{/*ByKp=*/false, "", "", start, length, fromEnd, unit, fill};
}

TEST_F(ProfileTools, CutOutByKpBySamplesAndByDistanceWithEachShortfallMode) {
  CutOutInput byKp;
  byKp.KpStart = "10.0015";  // swapped with the end
  byKp.KpEnd = "10.0005";
  const struct {
    CutOutInput input;
    const char* name;
    std::vector<double> samples;
  } cases[] = {
      {byKp, "p_KP始点10.0005_終点10.0015切出し.ERD", {2, 3, 4}},
      {Cut("1", "2"), "p_1_2個切出し.ERD", {2, 3}},
      // 0.5 m from the end, covering 1 m: the last three samples but one.
      {Cut("0.5", "1", Shortfall::None, CutUnit::M, true), "p_0.5_1m切出し.ERD", {1, 2, 3}},
      // From two samples before the first to two behind the last.
      {Cut("-2", "8", Shortfall::Zero), "", {0, 0, 1, 2, 3, 4, 0, 0}},
      {Cut("-2", "8", Shortfall::EdgeValue), "p_-2_8個切出し(始終値埋め).ERD", {1, 1, 1, 2, 3, 4, 4, 4}},
      {Cut("-2", "8", Shortfall::Mirror), "", {3, 2, 1, 2, 3, 4, 3, 2}},
      {Cut("-2", "8"), "", {1, 2, 3, 4}},
      // Folding never reaches past the other end.
      {Cut("-6", "1", Shortfall::Mirror), "", {4}},
  };
  for (const auto& c : cases) {
    const auto out = CutOutProfiles(session, {Item()}, c.input);
    ASSERT_TRUE(out && out->size() == 1u) << c.input.Start;
    EXPECT_TRUE(*c.name == 0 || (*out)[0].FileName == c.name) << (*out)[0].FileName;
    EXPECT_EQ(Samples((*out)[0].Erd), c.samples) << c.input.Start << " " << c.input.Length;
  }
  EXPECT_NEAR((*CutOutProfiles(session, {Item()}, byKp))[0].Erd.KpStart, 10.0005, 1e-12);
  // Wholly outside with no filling: nothing to register.
  EXPECT_TRUE(CutOutProfiles(session, {Item()}, Cut("10", "1"))->empty());
}

TEST_F(ProfileTools, CompositeTiesTheTargetToTheBaseAlongTheOverlap) {
  // Target: 0, 1, 0, 1, 0 mm at 1 m from KP 0. Base survey: 10 mm at 0 m, 14 mm at 4 m.
  const ToolItem target{"t.ERD", testing::MakeProfile("t", 1.0, {0, 1, 0, 1, 0}, 0.0).Erd};
  WriteSystemTextFile(dir_ / "survey.csv", {"pos,height", "4,14", "0,10"});
  CompositeInput input;
  input.BaseIsCsv = true;
  input.CsvPath = (dir_ / "survey.csv").string();
  input.CsvHeading = true;
  auto out = CompositeProfiles(session, {target}, input);
  ASSERT_TRUE(out);
  ASSERT_EQ(out->size(), 1u);
  EXPECT_EQ((*out)[0].FileName, "t_survey_合成.ERD");
  // The difference runs from 10 to 14 mm along the 4 m; the target's detail rides on it.
  testing::ExpectValues((*out)[0].Erd.Elevation, {10, 12, 12, 14, 14}, 1e-9);

  // An ERD base that covers only the middle: the result exists only on the overlap.
  input.BaseIsCsv = false;
  input.BaseProfile = Item("b.ERD", 0.001, 0);  // 1, 2, 3, 4 at 0.5 m from 1 m
  auto partial = CompositeProfiles(session, {target}, input);
  ASSERT_EQ(partial->size(), 1u);
  // Target samples at 1 m and 2 m, on base 1 at 1 m and base 3 at 2 m.
  EXPECT_EQ((*partial)[0].Erd.NumSamples, 2);
  testing::ExpectValues((*partial)[0].Erd.Elevation, {1, 3}, 1e-9);
  EXPECT_NEAR((*partial)[0].Erd.KpStart, 0.001, 1e-12);
}

TEST_F(ProfileTools, RegistersAfterTheQuestionAndNotOnCancel) {
  ProfileList list;
  ui_.Answers.push_back(MsgAnswer::Cancel);
  EXPECT_FALSE(RegisterToolOutputs(session, list, ReverseProfiles({Item()})));
  EXPECT_EQ(list.Count(), 0);
  EXPECT_TRUE(RegisterToolOutputs(session, list, ReverseProfiles({Item()})));
  ASSERT_EQ(list.Count(), 1);
  EXPECT_EQ(list.Items[1].FileName, "p_反転.ERD");
  EXPECT_EQ(list.Items[1].Erd.Elevation[1], 4.0);
  EXPECT_EQ(ui_.Messages()[0].Title, "登録");
  EXPECT_FALSE(RegisterToolOutputs(session, list, {}));
}


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
