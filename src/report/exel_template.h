#pragma once
// A report template's "Option" sheet: rows of eight text fields whose code (column D) says what they
// are. Class A names the data sheet and the cell where the table begins, class B the report's
// parameters, class C its columns (data-cell script in F, title-cell script in G).
#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/session.h"

namespace velmora {

struct ExelOptionRow {
  std::array<std::string, 9> Fields;  // [1..8]: columns A to H; [0] unused
};

struct ExelParamRow {
  std::string Label;  // field 5
  std::string Name;   // field 6
  std::string Kind;   // field 7: contains "入力" (free text) or "選択" (a profile)
};

struct ExelTemplate {
  std::filesystem::path TemplatePath;
  std::vector<ExelOptionRow> OptionRows;
  std::string DataSheetName;     // A001
  std::int32_t DataColumn = 1;   // A002: where the table begins, at least 1 each
  std::int32_t DataRow = 1;
  std::vector<ExelParamRow> Params;
  std::vector<ExelOptionRow> Columns;
};

// Column letters to number: each letter, upper-cased, adds value*26 + (letter - "A" + 1); "" is 0.
std::int32_t basExcelCol2No(std::string_view letters);

// The cell reference of A002: letters give the column (0 or less becomes 1), the first digit after a
// letter begins the row (0 or less becomes 1); digits before the first letter are skipped. A part
// that is missing leaves its value as it was.
void ParseDataCell(std::string_view reference, std::int32_t& column, std::int32_t& row);

// True when the workbook is there; else "指定されたエクセルファイルが見つかりません。" naming it.
bool ExelWorkbookExists(UserInteraction& ui, const std::filesystem::path& workbook);

// The Option sheet's rows 2..999 up to the first with an empty column D.
std::vector<ExelOptionRow> ReadOptionRows(const std::filesystem::path& workbook);
// The class A, B and C passes over the rows; a class's rows end at the first row of another class.
ExelTemplate MakeExelTemplate(std::filesystem::path path, std::vector<ExelOptionRow> rows);

// Reads a template the user has chosen: the file dialog (folder remembered in "CommonDialogPath"),
// the progress texts, the rows and the passes. False when cancelled or when the workbook could not
// be read; the failure is logged and shown.
bool cmxReadExlFile(Session& session, ExelTemplate& result);
// The same for a template path given directly.
bool ReadExelTemplateFile(Session& session, const std::filesystem::path& path, ExelTemplate& result);

// One line of the parameter table.
struct ExelParamEntry {
  ExelParamRow Param;
  bool Choice = false;              // "選択": a drop-down of the profiles' titles
  std::vector<std::string> Items;   // the drop-down's items
  std::string Value;                // what the user entered or chose
};
std::vector<ExelParamEntry> MakeParamTable(const ExelTemplate& report, const std::vector<std::string>& titles);

}  // namespace velmora
