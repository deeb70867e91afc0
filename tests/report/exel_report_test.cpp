// The spreadsheet report driver on profiles made here: the template's Option rows and data cell, the
// common grid with its placements and section tables, the 30,000-row question, the packed table with
// its gate (forward and reversed), the interface file, and the written workbook.
#include "report/exel_report.h"

#include <gtest/gtest.h>

#include "base/text_encoding.h"
#include "report/exel_fixed_export.h"
#include "support/profile_fixture.h"
#include "support/test_support.h"

namespace velmora {
namespace {

using testing::MakeProfile;
using testing::Ramp;

ExelOptionRow Row(const std::string& code, const std::string& f5, const std::string& f6 = "",
                  const std::string& f7 = "") {
  ExelOptionRow row;
  row.Fields[4] = code;
  row.Fields[5] = f5;
  row.Fields[6] = f6;
  row.Fields[7] = f7;
  return row;
}

// A profile with a 10 m IRI window series of `windows` values first + 1, first + 2, ...
ProfileRecord ProfileWithIri(const std::string& name, int points, int windows, double first, double kp = kNoValue,
                             int kpSign = 0) {
  ProfileRecord p = MakeProfile(name, 1.0, Ramp(points), kp, kpSign);
  for (std::int32_t i = 1; i <= p.WorkCount; ++i) p.WorkProfile[i] = 10.0 * i;
  std::vector<double> iri;
  for (int i = 1; i <= windows; ++i) iri.push_back(first + i);
  p.Analysis.Iri.IriWindowWave.Values = Array1<double>(iri);
  return p;
}

// road_a: 31 points at 1 m (0..30 m), IRI windows 101..121; road_b: 21 points (0..20 m), 201..211.
ProfileList TwoRoads() {
  ProfileList list;
  list.Items = Array1<ProfileRecord>{ProfileWithIri("road_a", 31, 21, 100), ProfileWithIri("road_b", 21, 11, 200)};
  return list;
}

ExelTemplate TwoRoadReport() {
  return MakeExelTemplate("report.xlsm", {Row("A001", "Data"), Row("A002", "C5"),
                                          Row("B001", "From", "from", "入力"), Row("B002", "To", "to", "入力"),
                                          Row("B003", "A", "a", "選択"), Row("B004", "B", "b", "選択"),
                                          Row("C001", "", "#DIST(, from, to)", "\"距離[\" & #UNIT & \"]\""),
                                          Row("C002", "", "#PROF(ALL, a, from, to)", "#GETPROFILENAME(a)"),
                                          Row("C003", "", "#IRI(10A, b, , )", "\"IRI\""),
                                          Row("C004", "", "", "")});
}

std::vector<ExelParamEntry> Filled(const ExelTemplate& report, const ProfileList& list,
                                   const std::vector<std::string>& values) {
  std::vector<std::string> titles;
  for (const ProfileRecord& p : list.Items) titles.push_back(ProfileList::NameOf(p));
  std::vector<ExelParamEntry> params = MakeParamTable(report, titles);
  for (std::size_t i = 0; i < params.size() && i < values.size(); ++i) params[i].Value = values[i];
  return params;
}

const std::filesystem::path kExample = std::filesystem::path(VELMORA_SOURCE_DIR) / "examples/report/iri_report.xlsm";
const PositionAxis kMetres{PositionMode::ZeroBased, KpUnit::M, false};

class ExelDriver : public ::testing::Test {
 protected:
  Session session;
  testing::ScriptedUi ui{session};
  testing::TempDir temp;

  ExelScriptState Prepared(const ExelTemplate& report, const ProfileList& list, const std::vector<std::string>& values,
                           const PositionAxis& axis = kMetres) {
    ExelScriptState state;
    state.Ui = &ui;
    for (const ProfileRecord& p : list.Items) state.ProfileTitles.push_back(ProfileList::NameOf(p));
    MakeScriptInputs(Filled(report, list, values), state.ProfileTitles, state);
    EXPECT_TRUE(SetupExelData(session, report, list, axis, state));
    return state;
  }
  // The example template over the two roads, before road_a and after road_b, into the test's folder.
  ExelReportRequest TwoRoadRequest(const ExelTemplate& report) const {
    ExelReportRequest request;
    request.Params = Filled(report, TwoRoads(), {"", "", "road_a", "road_b"});
    request.Axis = kMetres;
    request.Folder = temp.path();
    request.Time = testing::Noon();
    return request;
  }
};

TEST(ExelTemplateCells, ColumnLettersAndTheDataCell) {
  EXPECT_EQ(basExcelCol2No(""), 0);
  EXPECT_EQ(basExcelCol2No("a"), 1);
  EXPECT_EQ(basExcelCol2No("AB"), 28);
  EXPECT_EQ(ColumnLetters(28), "AB");
  EXPECT_EQ(ColumnLetters(703), "AAA");  // 26*26 + 26 + 1
  struct Case {
    const char* Reference;
    std::int32_t Column, Row;
  };
  for (const Case& c : {Case{"AB12", 28, 12}, Case{"12", 7, 7}, Case{"A", 1, 7}, Case{"3C0", 3, 1}}) {
    std::int32_t column = 7, row = 7;  // what is left unset stays as it was
    ParseDataCell(c.Reference, column, row);
    EXPECT_EQ(column, c.Column) << c.Reference;
    EXPECT_EQ(row, c.Row) << c.Reference;
  }
}

TEST(ExelTemplateCells, ClassesStandTogetherAndParamsAreTrimmed) {
  const ExelTemplate report = MakeExelTemplate(
      "t.xlsm", {Row("A001", "Sheet1"), Row("B001", " Label ", " name ", " 入力 "), Row("C001", "", "1", "t"),
                 Row("B002", "late", "late", "入力"), Row("C002", "", "2", "u")});
  EXPECT_EQ(report.DataSheetName, "Sheet1");
  EXPECT_EQ(report.DataColumn, 1);
  EXPECT_EQ(report.DataRow, 1);
  ASSERT_EQ(report.Params.size(), 1u);  // the late B row comes after the C rows began
  EXPECT_EQ(report.Params[0].Label, "Label");
  EXPECT_EQ(report.Params[0].Name, "name");
  EXPECT_EQ(report.Params[0].Kind, "入力");
  ASSERT_EQ(report.Columns.size(), 1u);
  EXPECT_EQ(report.OptionRows.size(), 5u);
}

TEST(ExelTemplateCells, TheExampleTemplatesOptionSheet) {
  const ExelTemplate report = MakeExelTemplate(kExample, ReadOptionRows(kExample));
  // As tools/make_report_templates.py lays it out.
  EXPECT_EQ(report.OptionRows.size(), 16u);
  EXPECT_EQ(report.DataSheetName, "データ");
  EXPECT_EQ(report.DataColumn, 2);
  EXPECT_EQ(report.DataRow, 4);
  ASSERT_EQ(report.Params.size(), 4u);
  EXPECT_EQ(report.Params[2].Name, "before");
  EXPECT_EQ(report.Params[2].Kind, "選択");
  ASSERT_EQ(report.Columns.size(), 10u);
  EXPECT_EQ(report.Columns[0].Fields[6], "#DIST(, start, end)");
  EXPECT_EQ(report.Columns[0].Fields[7], "\"距離[\" & #UNIT & \"]\"");
}

TEST_F(ExelDriver, TheTemplateDialogRemembersItsFolderAndMayBeCancelled) {
  session.Paths.UserLocalPath = temp.path().string();
  std::filesystem::create_directories(temp / "Resource");
  ExelTemplate report;
  EXPECT_FALSE(cmxReadExlFile(session, report));  // cancelled: nothing read
  EXPECT_TRUE(report.OptionRows.empty());
  ui.Files = {{kExample.string()}};
  ASSERT_TRUE(cmxReadExlFile(session, report));
  EXPECT_EQ(report.Columns.size(), 10u);
  EXPECT_EQ(report.TemplatePath, kExample);
  cmxReadExlFile(session, report);
  std::vector<std::string> folders;
  for (const testing::RecordedMessage& m : ui.Log)
    if (m.Kind == "open") folders.push_back(m.Text);
  ASSERT_EQ(folders.size(), 3u);
  EXPECT_EQ(folders[2], kExample.parent_path().string());  // the third dialog opens where the second chose
}

TEST_F(ExelDriver, NoTemplateRowsIsWarnedAndAMissingFileNamed) {
  EXPECT_FALSE(cmxExlsCreate(session, ExelTemplate{}, TwoRoads(), {}).has_value());
  EXPECT_EQ(ui.OnlyMessageText(), "出力対象のエクセルファイルが指定されていません。");
  ExelTemplate read;
  EXPECT_FALSE(ReadExelTemplateFile(session, temp / "none.xlsm", read));
  EXPECT_EQ(ui.Messages().back().Text, "指定されたエクセルファイルが見つかりません。\r\n\r\nファイル名：" + (temp / "none.xlsm").string());
}

TEST_F(ExelDriver, OnlyWorkbookFormsAreSaved) {
  ExelTemplate report = TwoRoadReport();
  report.TemplatePath = "report.txt";
  EXPECT_FALSE(cmxExlsCreate(session, report, TwoRoads(), {}).has_value());
  EXPECT_EQ(ui.OnlyMessageText(), "ファイルの保存形式を確認して下さい。");
}

TEST_F(ExelDriver, ChoicesByTitleFirstEntryWinsAndNoChoiceStops) {
  ExelTemplate report = TwoRoadReport();
  report.Params.push_back({"A again", "a", "選択"});
  ExelScriptState state;
  MakeScriptInputs(Filled(report, TwoRoads(), {"1", "", "road_b", "", "road_a"}), {"road_a", "road_b"}, state);
  EXPECT_EQ(state.InputValues.at("fromV"), "1");
  EXPECT_EQ(state.InputValues.at("toV"), "");
  EXPECT_EQ(state.ProfileChoices.at("aP"), 2);
  EXPECT_EQ(state.ProfileChoices.count("bP"), 0u);  // an empty choice adds nothing

  ExelScriptState none;
  EXPECT_FALSE(SetupExelData(session, report, TwoRoads(), kMetres, none));
  EXPECT_EQ(ui.OnlyMessageText(), "出力対象プロファイルが一個も指定されていません。");
}

TEST_F(ExelDriver, GridPlacesSamplesIriAndSections) {
  ExelScriptState state = Prepared(TwoRoadReport(), TwoRoads(), {"", "", "road_a", "road_b"});
  ASSERT_EQ(state.SlotCount, 2);
  EXPECT_EQ(state.UnitText, "m");
  const ExelProfileSlot& a = state.Slots[1];
  const ExelProfileSlot& b = state.Slots[2];
  ASSERT_EQ(a.RowCount, 31);  // 0..30 m at the pitch of 1 m
  EXPECT_DOUBLE_EQ(a.Distance[31], 30.0);
  EXPECT_EQ(a.Rows[4].All, 40.0);
  EXPECT_EQ(b.Rows[21].All, 210.0);
  EXPECT_EQ(b.Rows[22].All, kNoValue);  // road_b ends at 20 m
  // Window i stands 5 m after its first sample: row i + 5.
  EXPECT_EQ(a.Rows[6].Iri10, 101.0);
  EXPECT_EQ(a.Rows[26].Iri10, 121.0);
  EXPECT_EQ(a.Rows[5].Iri10, kNoValue);
  // 10 m sections at 0, 10, 20 m read every 10th row from row 6.
  ASSERT_EQ(a.Count10, 3);
  EXPECT_EQ(a.Table10[2].Distance, 10.0);
  EXPECT_EQ(a.Table10[3].Iri, 121.0);
  EXPECT_EQ(b.Table10[2].Iri, 211.0);
  EXPECT_EQ(b.Table10[3].Iri, kNoValue);
  EXPECT_EQ(b.Count10, 3);  // made equal to the last index any slot has a value at
  // The one 100 m section lacks 7 of its 10 values: null everywhere, so no section is left.
  EXPECT_EQ(a.Count100, 0);
  EXPECT_EQ(a.Count200, 0);
}

TEST_F(ExelDriver, DescendingKilometrePostsRunBackwardsOverTheGrid) {
  ProfileList list;
  list.Items = Array1<ProfileRecord>{ProfileWithIri("down", 21, 11, 300, 1.0, 1)};
  ExelTemplate report = MakeExelTemplate("r.xlsm", {Row("B001", "P", "p", "選択"), Row("C001", "", "1", "")});
  const ExelScriptState state = Prepared(report, list, {"down"}, {PositionMode::Kp, KpUnit::Km, false});
  EXPECT_EQ(state.UnitText, "KP");
  const ExelProfileSlot& slot = state.Slots[1];
  ASSERT_EQ(slot.RowCount, 21);  // KP 0.980 .. 1.000
  EXPECT_NEAR(slot.Distance[1], 0.98, 1e-12);
  EXPECT_EQ(slot.Rows[21].All, 10.0);  // the first sample stands at KP 1.000, the last row
  EXPECT_EQ(slot.Rows[1].All, 210.0);
  EXPECT_EQ(slot.Rows[15].Iri10, 301.0);  // round(1 + 21 - i - 1 - 5) = 16 - i
  EXPECT_EQ(slot.Rows[5].Iri10, 311.0);
  ASSERT_EQ(slot.Count10, 1);  // sections at 0.98 (value at row 6) and 0.99 (row 16: none)
  EXPECT_NEAR(slot.Table10[1].Distance, 0.98, 1e-12);
  EXPECT_EQ(slot.Table10[1].Iri, 310.0);
}

TEST_F(ExelDriver, ThirtyThousandRowsPassQuietlyAndOneMoreAsksTwice) {
  ExelTemplate report = MakeExelTemplate("r.xlsm", {Row("B001", "P", "p", "選択"), Row("C001", "", "1", "")});
  ProfileList list;
  list.Items = Array1<ProfileRecord>{MakeProfile("long", 1.0, std::vector<double>(30000, 0.0))};
  ExelScriptState state;
  MakeScriptInputs(Filled(report, list, {"long"}), {"long"}, state);
  EXPECT_TRUE(SetupExelData(session, report, list, kMetres, state));
  EXPECT_TRUE(ui.Messages().empty());

  list.Items[1] = MakeProfile("long", 1.0, std::vector<double>(30001, 0.0));
  EXPECT_FALSE(SetupExelData(session, report, list, kMetres, state));  // the default is Cancel
  ASSERT_EQ(ui.Messages().size(), 1u);
  EXPECT_EQ(ui.Messages()[0].Text, "データの行数が３万行を超えています。\r\n\r\n出力データ行数：30001\r\n\r\n処理を継続しますか？");
  ui.Answers = {MsgAnswer::Ok, MsgAnswer::Ok};
  EXPECT_TRUE(SetupExelData(session, report, list, kMetres, state));
  ASSERT_EQ(ui.Messages().size(), 3u);
  EXPECT_TRUE(ui.Messages()[2].Text.ends_with("本当に処理を継続しますか？"));
  EXPECT_EQ(state.Slots[1].RowCount, 30001);
}

TEST_F(ExelDriver, TableIsGatedAndPackedUpwardsForwardAndReversedFromTheLastRow) {
  const ExelTemplate report = TwoRoadReport();
  const std::vector<std::string> head{"4,4,5,3,Data", "距離[m],road_a,IRI,"};
  const std::vector<std::string> rows{"3.00000000,40.00000000,201.00000000,", "4.00000000,50.00000000,211.00000000,",
                                      "5.00000000,60.00000000,,"};
  for (const bool reversed : {false, true}) {
    ExelScriptState state = Prepared(report, TwoRoads(), {"3", "5", "road_a", "road_b"});
    state.Reversed = reversed;
    const ExelReportTable table = MakeExelTable(ui, report, state);
    EXPECT_FALSE(table.Failed);
    std::vector<std::string> expected = head;
    if (reversed) expected.insert(expected.end(), rows.rbegin(), rows.rend());
    else expected.insert(expected.end(), rows.begin(), rows.end());
    EXPECT_EQ(InterfaceLines(report, table), expected) << (reversed ? "reversed" : "forward");
  }
}

TEST_F(ExelDriver, StartBeyondTheGridLeavesTheColumnEmptyAndAnErrorStopsAll) {
  ExelTemplate report = TwoRoadReport();
  report.Columns.resize(1);
  ExelScriptState state = Prepared(report, TwoRoads(), {"99", "", "road_a", "road_b"});
  EXPECT_EQ(InterfaceLines(report, MakeExelTable(ui, report, state)),
            (std::vector<std::string>{"1,1,5,3,Data", "距離[m]"}));

  report.Columns.push_back(Row("C009", "", "#NOPE", ""));
  ExelScriptState failing = Prepared(report, TwoRoads(), {"", "", "road_a", "road_b"});
  const ExelReportTable table = MakeExelTable(ui, report, failing);
  EXPECT_TRUE(table.Failed);
  EXPECT_EQ(table.RowsWritten, 32);  // the first column whole, the second none
  EXPECT_EQ(ui.Messages().back().Title, "コンパイルエラー");
}

TEST_F(ExelDriver, InterfaceFileAndWorkbookBesideIt) {
  ExelTemplate report;
  ASSERT_TRUE(ReadExelTemplateFile(session, kExample, report));
  const auto files = cmxExlsCreate(session, report, TwoRoads(), TwoRoadRequest(report));
  ASSERT_TRUE(files.has_value());
  EXPECT_EQ(files->Workbook, temp / "iri_report_20240305120000.xlsm");
  EXPECT_EQ(files->Interface, temp / "iri_report_20240305120000_INTERFACE.dat");
  const std::string bytes = ReadFileBytes(files->Interface);
  EXPECT_TRUE(bytes.starts_with("32,10,4,2,\x83\x66\x81\x5B\x83\x5E\r\n")) << bytes.substr(0, 40);  // データ in CP932
  const std::vector<std::string> lines = ReadSystemTextLines(files->Interface);
  ASSERT_EQ(lines.size(), 33u);
  EXPECT_TRUE(lines[1].starts_with("距離[m],road_a,road_b,差分(後-前),")) << lines[1];
  // Row 0 m: road_a 10, road_b 10, their difference 0.
  EXPECT_TRUE(lines[2].starts_with("0.00000000,10.00000000,10.00000000,0.00000000,")) << lines[2];

  // The same table in the data sheet from B4; the Option sheet untouched.
  const XlsmPackage written = XlsmPackage::Open(files->Workbook);
  const SheetCells cells = written.ReadCells("データ", 4, 40, 12);
  EXPECT_EQ(cells.at({4, 2}), "距離[m]");
  EXPECT_EQ(cells.at({5, 3}), "10");
  EXPECT_EQ(cells.at({35, 2}), "30");
  const XlsmPackage original = XlsmPackage::Open(kExample);
  EXPECT_EQ(written.Part("xl/vbaProject.bin"), original.Part("xl/vbaProject.bin"));
  EXPECT_EQ(written.Part(written.SheetPart("Option")), original.Part(original.SheetPart("Option")));
}

TEST_F(ExelDriver, ARunTimeFailureIsLoggedAndLeavesNoFiles) {
  ExelTemplate report;
  ASSERT_TRUE(ReadExelTemplateFile(session, kExample, report));
  report.Columns[1].Fields[6] = "#PROF(ALL, before, , ) / 0";
  EXPECT_FALSE(cmxExlsCreate(session, report, TwoRoads(), TwoRoadRequest(report)).has_value());
  EXPECT_EQ(ui.Messages().back().Title, "[ frmTop : cmxExlCreate ]");
  EXPECT_TRUE(std::filesystem::is_empty(temp.path()));
}

TEST_F(ExelDriver, FixedExportFillsItsColumns) {
  ProfileRecord profile = ProfileWithIri("road_a", 31, 21, 100);
  profile.Analysis.Octave.Band[4].Values = Array1<double>{0.5, -0.5};
  const std::filesystem::path fixed = std::filesystem::path(VELMORA_SOURCE_DIR) / "resources" / kFixedTemplate;
  const auto written = cmxExlsTest(session, profile, kMetres, fixed, temp.path(), testing::Noon());
  ASSERT_TRUE(written.has_value());
  EXPECT_EQ(written->filename(), "帳表(補修前後)_20240305120000.xlsm");
  const SheetCells cells = XlsmPackage::Open(*written).ReadCells("データ", 2, 40, 20);
  EXPECT_EQ(cells.at({2, 5}), "プロファイル");  // the template's heading stays
  EXPECT_EQ(cells.at({3, 1}), "0");
  EXPECT_EQ(cells.at({33, 1}), "30");
  EXPECT_EQ(cells.at({33, 5}), "310");
  EXPECT_EQ(cells.at({3, kFixedIriColumn}), "101");
  EXPECT_EQ(cells.at({4, kFixedBandColumn + 3}), "-0.5");
  EXPECT_EQ(cells.count({34, 1}), 0u);

  EXPECT_FALSE(cmxExlsTest(session, profile, kMetres, temp / "missing.xlsm", temp.path(), testing::Noon()));
  EXPECT_TRUE(ui.Messages().back().Text.starts_with("指定されたエクセルファイルが見つかりません。"));
}

}  // namespace
}  // namespace velmora
