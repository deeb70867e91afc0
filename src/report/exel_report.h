#pragma once
// Making a scripted report: the column scripts evaluated for every grid row, the table packed
// upwards under its titles, the template copied with the table written into its data sheet, and the
// table beside it as "<name>_INTERFACE.dat" (system code page, CR LF), the file the template's macro
// reads.
#include <ctime>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "report/exel_grid.h"
#include "report/xlsm_package.h"

namespace velmora {

// The report's table: row 0 the titles, then the packed data rows; every row has one text per column.
struct ExelReportTable {
  std::vector<std::vector<std::string>> Cells;
  std::int32_t RowsWritten = 1;  // the largest table row written, 1-based (1: titles only)
  bool Failed = false;           // a script error stopped the output
};

// The dictionaries of the script from the parameter table: a choice by the position of its title in
// the list (1-based), a free text as it is; the first entry of a name wins, a choice not found adds nothing.
void MakeScriptInputs(const std::vector<ExelParamEntry>& params, const std::vector<std::string>& titles,
                      ExelScriptState& state);

// The title row, then each column walked over the grid (from the last row when Reversed) with the
// row gate deciding what is kept. Data cells hold numbers in "0.00000000", a null as empty. A script
// error ends the whole output with Failed set.
ExelReportTable MakeExelTable(ProgressSink& progress, const ExelTemplate& report, ExelScriptState& state);

// The interface file's lines: "rows,columns,DataRow,DataColumn,DataSheetName", then the table.
std::vector<std::string> InterfaceLines(const ExelTemplate& report, const ExelReportTable& table);

// The table's cells as the data sheet receives them, from DataRow/DataColumn: titles as text, data as numbers.
std::vector<CellWrite> SheetCellsOf(const ExelTemplate& report, const ExelReportTable& table);

struct ExelReportRequest {
  std::vector<ExelParamEntry> Params;  // the parameter table as filled in
  PositionAxis Axis;
  bool Reversed = false;               // "位置を反転して出力する"
  std::filesystem::path Folder;        // where the report goes
  std::tm Time{};                      // in the report's name
  std::function<void(const std::filesystem::path&)> OpenDocument;  // a Yes to "起動しますか？"; none: nothing
};

struct ExelReportFiles {
  std::filesystem::path Workbook;
  std::filesystem::path Interface;
  bool Failed = false;  // written up to a script error, which has been shown
};

// The closing question "作成したエクセルを起動しますか？" and, on Yes, `open`. Without a way to open a
// document (a front end with no desktop) there is nothing to ask.
void OfferToOpen(UserInteraction& ui, const std::filesystem::path& workbook,
                 const std::function<void(const std::filesystem::path&)>& open);

// cmxExlsCreate: the whole report. Nullopt when it was stopped (no template, no profile chosen, a
// declined question) or a run-time failure was logged; nothing is left half-written.
std::optional<ExelReportFiles> cmxExlsCreate(Session& session, const ExelTemplate& report,
                                             const ProfileList& profiles, const ExelReportRequest& request);

}  // namespace velmora
