#pragma once
// The text import wizard without its screen: a delimited text file (CSV, TXT) is split into a grid,
// the wizard's inputs are checked, and each chosen column becomes one ERD profile that is registered.
#include <cstdint>
#include <string>
#include <vector>

#include "base/session.h"
#include "profile/profile_list.h"

namespace velmora {

// The wizard's inputs, as the boxes hold them (texts stay texts until the check).
struct ImportOptions {
  bool Comma = true;        // カンマ
  bool Tab = false;         // タブ
  bool Semicolon = false;   // セミコロン
  bool Space = false;       // スペース
  bool Other = false;       // その他
  std::string OtherText;    // txtSep
  bool Header = false;      // １行目をヘッダーとして使用する
  bool TitleFromHeader = false;  // １行目のヘッダーをタイトルとして使用する
  std::string Pitch;        // m
  std::string FirstRow, LastRow, FirstColumn, LastColumn;  // 1-based; empty: the grid's first/last
};

// The preview grid: Heading holds row 0 when the first line is a heading; Rows the data lines, each
// a list of cells. Columns is the widest line.
struct ImportPreview {
  std::vector<std::string> Heading;
  std::vector<std::vector<std::string>> Rows;
  std::int32_t Columns = 0;
  std::int32_t RowCount() const { return static_cast<std::int32_t>(Rows.size()); }
  // Cell (row, column), both 1-based; empty when the line is shorter.
  std::string Cell(std::int32_t row, std::int32_t column) const;
};

// A cell of the import range that becomes a sample but is not a number: the import reads it as 0,
// as it always has; a front end may warn or refuse. Line and column of the file, 1-based.
struct ImportCellProblem {
  std::int32_t Line = 0;
  std::int32_t Column = 0;
  std::string Text;
};
// The non-numeric sample cells in line order (a range the checks refuse gives none).
std::vector<ImportCellProblem> NonNumericCells(const ImportPreview& preview, const ImportOptions& options);

inline constexpr const char* kImportInformation =
    "フィールドの区切り文字を指定してください。[データのプレビュー]ボックスには区切り後の内容が表示されます。";

// Splits one line at every delimiter in force; quotes protect delimiters as in uToken.
std::vector<std::string> SplitImportLine(const std::string& line, const ImportOptions& options);
// Reads the file (Shift-JIS) into the grid. Raises LegacyError naming the file when it cannot be read.
ImportPreview BuildImportPreview(const std::string& path, const ImportOptions& options);

// The check of 完了, in order. Shows the first failure under "データ不正" and returns the index of
// the box that gets the focus (0 pitch, 1/2 rows, 3/4 columns); -1 when all is well.
std::int32_t CheckImport(Session& session, const ImportPreview& preview, const ImportOptions& options);

// Builds one ERD file per column into TempPath and returns their paths (in column order). Expects
// options that passed CheckImport. Names avoid those already in `list`.
std::vector<std::string> WriteImportedProfiles(Session& session, const std::string& path, const ImportPreview& preview,
                                               const ImportOptions& options, const ProfileList& list);

// The whole finish: check, write and register (AddProfileList without asking). False when the check
// failed or an error was logged (under "frmTop" / "timImport").
bool ImportTextFile(Session& session, ProfileList& list, const std::string& path, const ImportOptions& options);

// The wizard's settings in 前回値.ini (section "インポートウィザード").
ImportOptions LoadImportSettings(Session& session);
void SaveImportSettings(Session& session, const ImportOptions& options);

}  // namespace velmora
