// The workbook package on a small workbook made here with shared strings, as spreadsheet programs
// save them: sheets found through the relationships, cell texts of every kind, and writing that
// keeps rows and cells in order, clears a cell's formula, adds to the shared strings and leaves the
// other parts and any half-written file alone.
#include "report/xlsm_package.h"

#include <gtest/gtest.h>
#include <zip.h>

#include <map>

#include "base/legacy_error.h"
#include "report/exel_report.h"
#include "report/exel_template.h"
#include "support/test_support.h"

namespace velmora {
namespace {

constexpr const char* kMain = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";

std::string Sheet(const std::string& rows, const std::string& dimension = "A1:D3") {
  return std::string("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<worksheet xmlns=\"") + kMain +
         "\"><dimension ref=\"" + dimension + "\"/><sheetData>" + rows + "</sheetData></worksheet>";
}

// Shared strings 0..4: "Title", "A001", "Data", "A002", "C001".
const std::map<std::string, std::string> kParts = {
    {"[Content_Types].xml", "<Types/>"},
    {"xl/workbook.xml",
     std::string("<workbook xmlns=\"") + kMain +
         "\" xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\"><sheets>"
         "<sheet name=\"Data\" sheetId=\"1\" r:id=\"rId1\"/><sheet name=\"Option\" sheetId=\"2\" r:id=\"rId7\"/>"
         "</sheets></workbook>"},
    {"xl/_rels/workbook.xml.rels",
     "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
     "<Relationship Id=\"rId1\" Type=\"ws\" Target=\"worksheets/sheet1.xml\"/>"
     "<Relationship Id=\"rId7\" Type=\"ws\" Target=\"/xl/worksheets/option.xml\"/></Relationships>"},
    {"xl/worksheets/sheet1.xml",
     Sheet("<row r=\"1\"><c r=\"A1\" t=\"s\"><v>0</v></c></row>"
           "<row r=\"3\"><c r=\"B3\" s=\"2\"><f>1+1</f><v>2</v></c><c r=\"D3\"><v>9</v></c></row>")},
    {"xl/worksheets/option.xml",
     Sheet("<row r=\"1\"><c r=\"D1\" t=\"inlineStr\"><is><t>code</t></is></c></row>"
           "<row r=\"2\"><c r=\"A2\"><v>1</v></c><c r=\"B2\" t=\"b\"><v>1</v></c><c r=\"D2\" t=\"s\"><v>1</v></c>"
           "<c r=\"E2\" t=\"s\"><v>2</v></c></row>"
           "<row r=\"3\"><c r=\"D3\" t=\"s\"><v>3</v></c><c r=\"E3\" t=\"str\"><v>C7</v></c></row>"
           "<row r=\"4\"><c r=\"D4\" t=\"s\"><v>4</v></c><c r=\"F4\" t=\"inlineStr\"><is><r><t>#UN</t></r><r><t>IT</t></r></is></c>"
           "<c r=\"I4\"><v>0.1</v></c></row>"
           "<row r=\"5\"><c r=\"E5\" t=\"inlineStr\"><is><t>after the end</t></is></c></row>"
           "<row r=\"6\"><c r=\"D6\" t=\"inlineStr\"><is><t>C002</t></is></c></row>",
           "A1:I6")},
    {"xl/sharedStrings.xml",
     std::string("<sst xmlns=\"") + kMain +
         "\" count=\"6\" uniqueCount=\"5\"><si><t>Title</t></si><si><t>A001</t></si><si><t>Data</t></si>"
         "<si><t>A002</t></si><si><t>C001</t></si></sst>"},
    {"xl/vbaProject.bin", std::string("\x01\x02macro\x00\xff", 9)},
};

void MakeWorkbook(const std::filesystem::path& path, const std::map<std::string, std::string>& parts) {
  int error = 0;
  zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
  ASSERT_NE(archive, nullptr);
  for (const auto& [name, bytes] : parts) {
    zip_source_t* source = zip_source_buffer(archive, bytes.data(), bytes.size(), 0);
    ASSERT_GE(zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8), 0);
  }
  ASSERT_EQ(zip_close(archive), 0);
}

class XlsmPackageTest : public ::testing::Test {
 protected:
  void SetUp() override { MakeWorkbook(source, kParts); }
  testing::TempDir temp;
  std::filesystem::path source = temp / "book.xlsm";
  std::filesystem::path target = temp / "out.xlsm";
};

TEST_F(XlsmPackageTest, SheetsByNameAndCellTextsOfEveryKind) {
  const XlsmPackage package = XlsmPackage::Open(source);
  EXPECT_EQ(package.SheetPart("Data"), "xl/worksheets/sheet1.xml");
  EXPECT_EQ(package.SheetPart("Option"), "xl/worksheets/option.xml");  // an absolute target
  EXPECT_EQ(package.SheetPart("None"), "");
  const SheetCells cells = package.ReadCells("Option", 2, 999, 8);
  EXPECT_EQ(cells.at({2, 1}), "1");
  EXPECT_EQ(cells.at({2, 2}), "True");
  EXPECT_EQ(cells.at({2, 4}), "A001");
  EXPECT_EQ(cells.at({3, 5}), "C7");
  EXPECT_EQ(cells.at({4, 6}), "#UNIT");  // rich text runs joined
  EXPECT_EQ(cells.count({4, 9}), 0u);    // beyond column H
  EXPECT_EQ(cells.count({1, 4}), 0u);    // the heading row is not read

  const std::vector<ExelOptionRow> rows = ReadOptionRows(source);
  ASSERT_EQ(rows.size(), 3u);  // row 5 has no code: the sheet ends there
  const ExelTemplate report = MakeExelTemplate(source, rows);
  EXPECT_EQ(report.DataSheetName, "Data");
  EXPECT_EQ(report.DataColumn, 3);
  EXPECT_EQ(report.DataRow, 7);
}

TEST_F(XlsmPackageTest, AnEmptyD2GivesNoRowsAndNothingToReport) {
  std::map<std::string, std::string> parts = kParts;
  parts["xl/worksheets/option.xml"] =
      Sheet("<row r=\"2\"><c r=\"E2\" t=\"s\"><v>2</v></c></row><row r=\"3\"><c r=\"D3\" t=\"s\"><v>1</v></c></row>");
  MakeWorkbook(source, parts);
  const std::vector<ExelOptionRow> rows = ReadOptionRows(source);
  EXPECT_TRUE(rows.empty());
  Session session;
  testing::ScriptedUi ui(session);
  EXPECT_FALSE(cmxExlsCreate(session, MakeExelTemplate(source, rows), ProfileList(), {}).has_value());
  EXPECT_EQ(ui.OnlyMessageText(), "出力対象のエクセルファイルが指定されていません。");
}

TEST_F(XlsmPackageTest, WritingKeepsOrderClearsFormulasAndAddsSharedStrings) {
  WriteWorkbookCopy(source, target, "Data",
                    {{5, 1, "Tail", false}, {1, 1, "New", false}, {2, 2, "1.5", true}, {3, 2, "", true},
                     {3, 3, "7", true}});
  const XlsmPackage written = XlsmPackage::Open(target);
  const SheetCells cells = written.ReadCells("Data", 1, 10, 10);
  EXPECT_EQ(cells.at({1, 1}), "New");
  EXPECT_EQ(cells.at({2, 2}), "1.5");
  EXPECT_EQ(cells.at({3, 2}), "");  // cleared, formula and value gone
  EXPECT_EQ(cells.at({3, 3}), "7");
  EXPECT_EQ(cells.at({3, 4}), "9");  // untouched
  EXPECT_EQ(cells.at({5, 1}), "Tail");

  const std::string& sheet = written.Part("xl/worksheets/sheet1.xml");
  EXPECT_LT(sheet.find("<row r=\"2\""), sheet.find("<row r=\"3\""));
  EXPECT_LT(sheet.find("r=\"B3\""), sheet.find("r=\"C3\""));
  EXPECT_LT(sheet.find("r=\"C3\""), sheet.find("r=\"D3\""));
  EXPECT_NE(sheet.find("<c r=\"B3\" s=\"2\""), std::string::npos) << sheet;  // the style stays
  EXPECT_EQ(sheet.find("<f>"), std::string::npos);
  EXPECT_NE(sheet.find("<dimension ref=\"A1:D5\""), std::string::npos) << sheet;
  const std::vector<std::string> shared = written.SharedStrings();
  ASSERT_EQ(shared.size(), 7u);
  EXPECT_EQ(shared[5], "New");  // the two texts added, in cell order
  EXPECT_EQ(shared[6], "Tail");
  EXPECT_NE(written.Part("xl/sharedStrings.xml").find("count=\"8\" uniqueCount=\"7\""), std::string::npos);

  const XlsmPackage original = XlsmPackage::Open(source);
  for (const char* part : {"[Content_Types].xml", "xl/workbook.xml", "xl/_rels/workbook.xml.rels",
                           "xl/worksheets/option.xml", "xl/vbaProject.bin"})
    EXPECT_EQ(written.Part(part), original.Part(part)) << part;
}

TEST_F(XlsmPackageTest, FailuresNameTheFileAndLeaveNothingBehind) {
  try {
    WriteWorkbookCopy(source, target, "Missing", {{1, 1, "x", false}});
    FAIL() << "a missing sheet must be refused";
  } catch (const LegacyError& e) {
    EXPECT_NE(std::string(e.what()).find(source.string()), std::string::npos) << e.what();
    EXPECT_NE(std::string(e.what()).find("\"Missing\""), std::string::npos) << e.what();
  }
  EXPECT_THROW(WriteWorkbookCopy(source, temp / "no folder" / "out.xlsm", "Data", {}), LegacyError);
  std::vector<std::string> left;
  for (const auto& entry : std::filesystem::directory_iterator(temp.path())) left.push_back(entry.path().filename());
  EXPECT_EQ(left, std::vector<std::string>{"book.xlsm"});

  const std::filesystem::path text = temp / "text.xlsm";
  MakeWorkbook(text, {{"readme.txt", "not a workbook"}});
  EXPECT_THROW(XlsmPackage::Open(text), LegacyError);
  testing::WriteBytes(temp / "plain.xlsm", "plain text");
  try {
    XlsmPackage::Open(temp / "plain.xlsm");
    FAIL() << "a file that is no zip must be refused";
  } catch (const LegacyError& e) {
    EXPECT_NE(std::string(e.what()).find("plain.xlsm: not a workbook"), std::string::npos) << e.what();
  }
}

}  // namespace
}  // namespace velmora
