#include "report/exel_report.h"

#include <algorithm>
#include <cctype>

#include "base/error_log.h"
#include "base/file_helpers.h"
#include "base/legacy_format.h"
#include "base/text_encoding.h"

namespace velmora {
namespace {

bool Contains(const std::string& text, const char* word) { return text.find(word) != std::string::npos; }

// A data cell holds a number whatever the script gave: a text reads as 0, a null as the empty cell.
std::string DataCellText(const ScriptValue& value) {
  const double number = uDblVal(value.ToText());
  return IsNoValue(number) ? std::string() : FormatNumber(number, "0.00000000");
}

// One column over the grid; false when a script error ends the output.
bool FillColumn(const std::string& script, std::size_t column, ExelScriptState& state, ExelReportTable& table) {
  state.Index10 = state.Index100 = state.Index200 = 1;
  state.Started = state.Finished = false;
  std::size_t outputRow = 1;
  const std::int32_t rows = state.Slots[1].RowCount;
  const bool blank = Trim(script).empty();
  for (std::int32_t step = 1; step <= rows; ++step) {
    state.RowCursor = state.Reversed ? rows - step + 1 : step;
    const std::string cell = blank ? DataCellText(ScriptValue()) : DataCellText(EvaluateScript(state, script, 1));
    if (!state.ErrorCode.empty()) return false;
    if (state.Finished) break;
    if (state.Started) {
      table.Cells[outputRow][column] = cell;
      table.RowsWritten = std::max(table.RowsWritten, static_cast<std::int32_t>(outputRow + 1));
      ++outputRow;
    }
    ++state.Index10;
    ++state.Index100;
    ++state.Index200;
  }
  return true;
}

// The forms a report can be saved in, by the template's extension.
bool SavableWorkbook(const std::filesystem::path& path) {
  std::string extension = path.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension == ".csv" || extension == ".xls" || extension == ".xlsx" || extension == ".xlsm";
}

std::filesystem::path ReportPath(const ExelTemplate& report, const ExelReportRequest& request) {
  const std::filesystem::path& source = report.TemplatePath;
  return request.Folder / (source.stem().string() + "_" + FormatDateTime(request.Time, "YYYYMMDDHHNNSS") +
                           source.extension().string());
}

}  // namespace

void MakeScriptInputs(const std::vector<ExelParamEntry>& params, const std::vector<std::string>& titles,
                      ExelScriptState& state) {
  state.InputValues.clear();
  state.ProfileChoices.clear();
  for (const ExelParamEntry& entry : params) {
    const ExelParamRow& param = entry.Param;
    if (Contains(param.Kind, "選択")) {
      const auto found = std::find(titles.begin(), titles.end(), entry.Value);
      if (found != titles.end())
        state.ProfileChoices.try_emplace(param.Name + "P", static_cast<std::int32_t>(found - titles.begin()) + 1);
    } else if (Contains(param.Kind, "入力")) {
      state.InputValues.try_emplace(param.Name + "V", entry.Value);
    }
  }
}

ExelReportTable MakeExelTable(ProgressSink& progress, const ExelTemplate& report, ExelScriptState& state) {
  const std::size_t columns = report.Columns.size();
  ExelReportTable table;
  table.Cells.assign(static_cast<std::size_t>(state.Slots[1].RowCount) + 1, std::vector<std::string>(columns));
  state.GridFirst = state.Slots[1].Distance[1];
  state.GridLast = state.Slots[1].Distance[state.Slots[1].RowCount];
  // RowCursor is not set up for titles: a title script uses literals, #UNIT and #GETPROFILENAME.
  for (std::size_t c = 0; c < columns; ++c) {
    const std::string& script = report.Columns[c].Fields[7];
    if (!Trim(script).empty()) table.Cells[0][c] = EvaluateScript(state, script, 1).ToText();
  }
  ProgressScope scope(progress, "エクセルへエクスポート中", "しばらくお待ちください。");
  for (std::size_t c = 0; c < columns; ++c) {
    ReportProgress(progress, static_cast<int>((c + 1) * 100 / columns));
    if (!FillColumn(report.Columns[c].Fields[6], c, state, table)) {
      table.Failed = true;
      break;
    }
  }
  table.Cells.resize(static_cast<std::size_t>(table.RowsWritten));
  return table;
}

std::vector<std::string> InterfaceLines(const ExelTemplate& report, const ExelReportTable& table) {
  std::vector<std::string> lines;
  lines.reserve(table.Cells.size() + 1);
  lines.push_back(std::to_string(table.RowsWritten) + "," + std::to_string(report.Columns.size()) + "," +
                  std::to_string(report.DataRow) + "," + std::to_string(report.DataColumn) + "," +
                  report.DataSheetName);
  for (const std::vector<std::string>& row : table.Cells) {
    std::string line;
    for (std::size_t c = 0; c < row.size(); ++c) {
      if (c > 0) line += ',';
      line += Trim(row[c]);
    }
    lines.push_back(std::move(line));
  }
  return lines;
}

std::vector<CellWrite> SheetCellsOf(const ExelTemplate& report, const ExelReportTable& table) {
  std::vector<CellWrite> cells;
  for (std::size_t r = 0; r < table.Cells.size(); ++r)
    for (std::size_t c = 0; c < table.Cells[r].size(); ++c)
      cells.push_back({report.DataRow + static_cast<std::int32_t>(r), report.DataColumn + static_cast<std::int32_t>(c),
                       Trim(table.Cells[r][c]), r > 0});
  return cells;
}

void OfferToOpen(UserInteraction& ui, const std::filesystem::path& workbook,
                 const std::function<void(const std::filesystem::path&)>& open) {
  if (open && ui.AskYesNo("エクセルのエクスポート処理が終わりました。\r\n\r\n出力先：" + workbook.string() +
                              "\r\n\r\n作成したエクセルを起動しますか？",
                          "確認"))
    open(workbook);
}

std::optional<ExelReportFiles> cmxExlsCreate(Session& session, const ExelTemplate& report,
                                             const ProfileList& profiles, const ExelReportRequest& request) {
  UserInteraction& ui = session.Ui();
  if (report.OptionRows.empty()) {
    ui.Inform("出力対象のエクセルファイルが指定されていません。", "警告");
    return std::nullopt;
  }
  if (!SavableWorkbook(report.TemplatePath)) {
    ui.Inform("ファイルの保存形式を確認して下さい。", "警告");
    return std::nullopt;
  }
  ExelScriptState state;
  state.Ui = &ui;
  state.Reversed = request.Reversed;
  for (const ProfileRecord& record : profiles.Items) state.ProfileTitles.push_back(ProfileList::NameOf(record));
  MakeScriptInputs(request.Params, state.ProfileTitles, state);
  if (!SetupExelData(session, report, profiles, request.Axis, state)) return std::nullopt;

  ExelReportFiles files;
  files.Workbook = ReportPath(report, request);
  files.Interface = files.Workbook.parent_path() / (files.Workbook.stem().string() + "_INTERFACE.dat");
  bool stopped = false, workbookWritten = false;
  const bool ok = Guarded(session, "frmTop", "cmxExlCreate", [&] {
    ProgressScope scope(ui, "エクセル印刷用ファイルへ出力中です", "しばらくお待ちください。");
    ExelReportTable table;
    try {
      table = MakeExelTable(ui, report, state);
    } catch (const Cancelled&) {
      stopped = true;  // asked to stop while evaluating: nothing has been written
      return;
    }
    ui.ProgressStart("エクセルファイルの終了処理中です", "しばらくお待ちください。");
    files.Failed = table.Failed;
    // Without a data sheet the workbook is the template as it is, for its macro to fill.
    if (report.DataSheetName.empty()) uFileCopy_A(report.TemplatePath.string(), files.Workbook.string());
    else WriteWorkbookCopy(report.TemplatePath, files.Workbook, report.DataSheetName, SheetCellsOf(report, table));
    workbookWritten = true;
    WriteSystemTextFile(files.Interface, InterfaceLines(report, table));
  });
  if (stopped) return std::nullopt;
  if (!ok) {
    // The two files go together: a workbook whose interface file failed is taken away again.
    std::error_code ignored;
    if (workbookWritten) std::filesystem::remove(files.Workbook, ignored);
    return std::nullopt;
  }
  if (files.Failed) {
    ui.Inform("エクセルで指定された文法にエラーが見つかりました。", "警告");
  } else {
    OfferToOpen(ui, files.Workbook, request.OpenDocument);
  }
  return files;
}

}  // namespace velmora
