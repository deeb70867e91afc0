#include "report/exel_template.h"

#include <cctype>
#include <cmath>

#include "base/common.h"
#include "base/error_log.h"
#include "base/settings_io.h"
#include "report/report_script.h"
#include "report/xlsm_package.h"

namespace velmora {
namespace {

constexpr std::int32_t kFirstOptionRow = 2;  // row 1 is the heading
constexpr std::int32_t kLastOptionRow = 999;

// The rows of one code class, which stand together: the first row of another class after them ends it.
std::vector<ExelOptionRow> RowsOfClass(const std::vector<ExelOptionRow>& rows, char codeClass) {
  std::vector<ExelOptionRow> found;
  for (const ExelOptionRow& row : rows) {
    const bool ofClass = !row.Fields[4].empty() && row.Fields[4].front() == codeClass;
    if (ofClass) found.push_back(row);
    else if (!found.empty()) break;
  }
  return found;
}

}  // namespace

std::int32_t basExcelCol2No(std::string_view letters) {
  std::int32_t value = 0;
  for (const char c : letters) value = value * 26 + (std::toupper(static_cast<unsigned char>(c)) - 'A' + 1);
  return value;
}

void ParseDataCell(std::string_view reference, std::int32_t& column, std::int32_t& row) {
  std::string letters;
  for (std::size_t i = 0; i < reference.size(); ++i) {
    const bool digit = std::isdigit(static_cast<unsigned char>(reference[i])) != 0;
    if (digit && letters.empty()) continue;
    if (digit) {
      const double number = ScriptValue::FromText(std::string(reference.substr(i))).LeadingNumber();
      row = number <= 0 ? 1 : static_cast<std::int32_t>(std::lround(std::min(number, 1e9)));
      return;
    }
    letters += reference[i];
    column = std::max(basExcelCol2No(letters), 1);
  }
}

bool ExelWorkbookExists(UserInteraction& ui, const std::filesystem::path& workbook) {
  if (std::filesystem::is_regular_file(workbook)) return true;
  ui.Inform("指定されたエクセルファイルが見つかりません。\r\n\r\nファイル名：" + workbook.string(), "警告");
  return false;
}

std::vector<ExelOptionRow> ReadOptionRows(const std::filesystem::path& workbook) {
  const SheetCells cells = XlsmPackage::Open(workbook).ReadCells("Option", kFirstOptionRow, kLastOptionRow, 8);
  std::vector<ExelOptionRow> rows;
  for (std::int32_t r = kFirstOptionRow; r <= kLastOptionRow; ++r) {
    ExelOptionRow row;
    for (std::int32_t c = 1; c <= 8; ++c)
      if (auto found = cells.find({r, c}); found != cells.end()) row.Fields[static_cast<std::size_t>(c)] = found->second;
    if (row.Fields[4].empty()) break;
    rows.push_back(std::move(row));
  }
  return rows;
}

ExelTemplate MakeExelTemplate(std::filesystem::path path, std::vector<ExelOptionRow> rows) {
  ExelTemplate report;
  report.TemplatePath = std::move(path);
  for (const ExelOptionRow& row : RowsOfClass(rows, 'A')) {
    if (row.Fields[4] == "A001") report.DataSheetName = row.Fields[5];
    if (row.Fields[4] == "A002") ParseDataCell(row.Fields[5], report.DataColumn, report.DataRow);
  }
  for (const ExelOptionRow& row : RowsOfClass(rows, 'B'))
    report.Params.push_back({Trim(row.Fields[5]), Trim(row.Fields[6]), Trim(row.Fields[7])});
  report.Columns = RowsOfClass(rows, 'C');
  report.OptionRows = std::move(rows);
  return report;
}

bool ReadExelTemplateFile(Session& session, const std::filesystem::path& path, ExelTemplate& result) {
  UserInteraction& ui = session.Ui();
  if (!ExelWorkbookExists(ui, path)) return false;
  ui.ProgressStart("エクセルファイルの接続中です", "しばらくお待ちください。");
  // The reader logs under the fixed export's name, as the program always has.
  const bool ok = Guarded(session, "frmTop", "cmxExlsTest", [&] {
    ui.ProgressStart("パラメータを取得中です", "しばらくお待ちください。");
    std::vector<ExelOptionRow> rows = ReadOptionRows(path);
    ui.ProgressStart("エクセルファイルの終了処理中です", "しばらくお待ちください。");
    result = MakeExelTemplate(path, std::move(rows));
  });
  ui.ProgressExit();
  return ok;
}

bool cmxReadExlFile(Session& session, ExelTemplate& result) {
  FileDialogRequest dialog;
  dialog.Title = "印刷用エクセル読込み";
  dialog.Filter = "プロジェクトファイル (*.xlsm)|*.xlsm|すべてのファイル (*.*)|*.*";
  dialog.InitialDirectory = GetPrevValue(session, "CommonDialogPath", "印刷用エクセル読込みフォルダ");
  const std::vector<std::string> chosen = session.Ui().OpenFiles(dialog);
  if (chosen.empty()) return false;
  const std::filesystem::path path(chosen.front());
  SetPrevValue(session, "CommonDialogPath", "印刷用エクセル読込みフォルダ", path.parent_path().string());
  return ReadExelTemplateFile(session, path, result);
}

std::vector<ExelParamEntry> MakeParamTable(const ExelTemplate& report, const std::vector<std::string>& titles) {
  std::vector<ExelParamEntry> table;
  for (const ExelParamRow& param : report.Params) {
    ExelParamEntry entry{param, param.Kind.find("選択") != std::string::npos, {}, {}};
    if (entry.Choice) entry.Items = titles;
    table.push_back(std::move(entry));
  }
  return table;
}

}  // namespace velmora
