#include "profile/text_import.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <unordered_set>

#include <fmt/format.h>

#include "base/app_paths.h"
#include "base/common.h"
#include "base/error_log.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/path_helpers.h"
#include "base/settings_io.h"
#include "base/text_encoding.h"
#include "base/user_interaction.h"
#include "profile/erd_file.h"

namespace velmora {
namespace {

constexpr char kUnitSeparator = '\x1f';  // stands for "any delimiter in force" while splitting
constexpr const char* kSection = "インポートウィザード";

std::vector<std::string> ActiveDelimiters(const ImportOptions& options) {
  std::vector<std::string> delimiters;
  if (options.Comma) delimiters.emplace_back(",");
  if (options.Tab) delimiters.emplace_back("\t");
  if (options.Semicolon) delimiters.emplace_back(";");
  if (options.Space) delimiters.emplace_back(" ");
  if (options.Other && !options.OtherText.empty()) delimiters.push_back(options.OtherText);
  return delimiters;
}

// A box's number, or `fallback` when the box is empty.
std::int32_t BoxOr(const std::string& text, std::int32_t fallback) {
  return Trim(text).empty() ? fallback : uLongVal(text);
}

struct ImportRange {
  std::int32_t FirstRow, LastRow, FirstColumn, LastColumn;
};

ImportRange RangeOf(const ImportPreview& preview, const ImportOptions& options) {
  return {BoxOr(options.FirstRow, 1), BoxOr(options.LastRow, preview.RowCount()), BoxOr(options.FirstColumn, 1),
          BoxOr(options.LastColumn, preview.Columns)};
}

bool Fail(Session& session, const std::string& text) {
  session.Ui().Inform(text, "データ不正", MsgIcon::Exclamation);
  return false;
}

}  // namespace

std::string ImportPreview::Cell(std::int32_t row, std::int32_t column) const {
  if (row < 1 || row > RowCount() || column < 1) return {};
  const auto& cells = Rows[static_cast<std::size_t>(row - 1)];
  return static_cast<std::size_t>(column) <= cells.size() ? cells[static_cast<std::size_t>(column - 1)] : std::string();
}

std::vector<std::string> SplitImportLine(const std::string& line, const ImportOptions& options) {
  const auto delimiters = ActiveDelimiters(options);
  std::string marked;
  bool quoted = false;
  for (std::size_t i = 0; i < line.size();) {
    if (line[i] == '"') quoted = !quoted;
    if (!quoted) {
      const auto hit = std::find_if(delimiters.begin(), delimiters.end(),
                                    [&](const std::string& d) { return line.compare(i, d.size(), d) == 0; });
      if (hit != delimiters.end()) {
        marked += kUnitSeparator;
        i += hit->size();
        continue;
      }
    }
    marked += line[i++];
  }
  return uToken(marked, std::string(1, kUnitSeparator));
}

ImportPreview BuildImportPreview(const std::string& path, const ImportOptions& options) {
  ImportPreview preview;
  const auto lines = ReadSystemTextLines(path);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    auto cells = SplitImportLine(lines[i], options);
    preview.Columns = std::max(preview.Columns, static_cast<std::int32_t>(cells.size()));
    if (i == 0 && options.Header) preview.Heading = std::move(cells);
    else preview.Rows.push_back(std::move(cells));
  }
  return preview;
}

std::int32_t CheckImport(Session& session, const ImportPreview& preview, const ImportOptions& options) {
  if (Trim(options.Pitch).empty()) return Fail(session, "ピッチが指定されていません。"), 0;
  if (!IsNumeric(options.Pitch)) return Fail(session, "数値で指定してください。"), 0;
  // A pitch the ERD file could not hold would only fail later, on a scratch file.
  if (!IsWritablePitch(uDblVal(options.Pitch))) return Fail(session, "ピッチは 0.000001 m 以上の数で指定してください。"), 0;
  const ImportRange r = RangeOf(preview, options);
  if (r.FirstRow < 1) return Fail(session, "データ開始行（開始位置）は１以上で指定してください"), 1;
  if (r.FirstColumn < 1) return Fail(session, "データ開始列（開始位置）は１以上で指定してください"), 3;
  if (r.LastRow > preview.RowCount())
    return Fail(session, "データ開始行（終了位置）は " + std::to_string(preview.RowCount()) + " 以下で指定してください"), 2;
  if (r.LastColumn > preview.Columns)
    return Fail(session, "データ開始列（終了位置）は " + std::to_string(preview.Columns) + " 以下で指定してください"), 4;
  if (r.LastRow < r.FirstRow)
    return Fail(session, "データ開始行（終了位置）は " + std::to_string(r.FirstRow) + " 以上で指定してください"), 2;
  if (r.LastColumn < r.FirstColumn)
    return Fail(session, "データ開始列（終了位置）は " + std::to_string(r.FirstColumn) + " 以上で指定してください"), 4;
  return -1;
}

namespace {

// Calls `take(row, cell)` for the cells of column `c` that become samples: blanks before the first
// sample are skipped, and a hole after it ends the column.
template <class Take>
void ForEachSampleCell(const ImportPreview& preview, const ImportRange& r, std::int32_t c, const Take& take) {
  bool started = false;
  for (std::int32_t row = r.FirstRow; row <= r.LastRow; ++row) {
    const std::string cell = Trim(preview.Cell(row, c));
    if (cell.empty()) {
      if (started) break;
      continue;
    }
    started = true;
    take(row, cell);
  }
}

}  // namespace

std::vector<ImportCellProblem> NonNumericCells(const ImportPreview& preview, const ImportOptions& options) {
  const ImportRange r = RangeOf(preview, options);
  std::vector<ImportCellProblem> problems;
  for (std::int32_t c = r.FirstColumn; c <= r.LastColumn; ++c)
    ForEachSampleCell(preview, r, c, [&](std::int32_t row, const std::string& cell) {
      if (!IsNumeric(cell)) problems.push_back({row + (options.Header ? 1 : 0), c, cell});
    });
  std::sort(problems.begin(), problems.end(),
            [](const auto& a, const auto& b) { return std::tie(a.Line, a.Column) < std::tie(b.Line, b.Column); });
  return problems;
}

std::vector<std::string> WriteImportedProfiles(Session& session, const std::string& path, const ImportPreview& preview,
                                               const ImportOptions& options, const ProfileList& list) {
  const ImportRange r = RangeOf(preview, options);
  const std::string base = flGetFileNameNonExt(path);
  const bool several = r.LastColumn > r.FirstColumn;
  std::vector<std::string> written;
  std::unordered_set<std::string> names;  // made by this run, upper case
  for (std::int32_t c = r.FirstColumn; c <= r.LastColumn; ++c) {
    ErdRecord rec;
    rec.NumChannels = 1;
    rec.FormatCode = 5;
    rec.StepSize = uDblVal(options.Pitch);
    rec.UnitsName[1] = "mm";
    rec.ShortName[1] = "LElev.";
    rec.DistanceUnit = "m";
    rec.YLabel = "Elevation";
    rec.XLabel = "Distance";
    rec.KpStart = kNoValue;
    const bool fromHeading = options.Header && options.TitleFromHeader;
    rec.Title = fromHeading && static_cast<std::size_t>(c) <= preview.Heading.size()
                    ? Trim(preview.Heading[static_cast<std::size_t>(c - 1)])
                    : flGetFileName(path);

    std::vector<double> samples;
    ForEachSampleCell(preview, r, c, [&](std::int32_t row, const std::string& cell) {
      const double value = uDblVal(cell);
      if (!IsWritableElevation(value)) {
        RaiseFileError(ErrorNumber::InvalidData, path,
                       fmt::format("{} 行目 {} 列の値 \"{}\" は有限の数ではありません。", row + (options.Header ? 1 : 0), c,
                                   cell.substr(0, 60)));
      }
      samples.push_back(value);
    });
    rec.Elevation = Array1<double>(std::move(samples));
    rec.NumSamples = static_cast<std::int32_t>(rec.Elevation.size());
    rec.NumSamplesHeader = rec.NumSamples;

    std::string name = base;
    if (several) {
      // The column number makes the name; when that is listed (or made by this run), the next free
      // number is used.
      for (std::int32_t n = c, tries = 0; tries < 999; ++n, ++tries) {
        name = base + "(" + FormatNumber(n, "000") + ")";
        if (list.Find(name) == 0 && !names.contains(UCase(name))) break;
      }
    }
    names.insert(UCase(name));
    const std::string file = flAddDirSep(session.Paths.TempPath) + name + ".ERD";
    WriteERD(file, rec);
    written.push_back(file);
  }
  return written;
}

bool ImportTextFile(Session& session, ProfileList& list, const std::string& path, const ImportOptions& options) {
  bool registered = false;
  const bool ok = Guarded(session, "frmTop", "timImport", [&] {
    const ImportPreview preview = BuildImportPreview(path, options);
    if (CheckImport(session, preview, options) >= 0) return;
    registered = AddProfileList(session, list, WriteImportedProfiles(session, path, preview, options, list), false);
  });
  return ok && registered;
}

ImportOptions LoadImportSettings(Session& session) {
  ImportOptions options;
  const auto flags = uToken(GetPrevValue(session, kSection, "区切り文字"), ",", 6);
  if (!Trim(flags[0]).empty()) {
    options.Comma = flags[0] == "1";
    options.Tab = flags[1] == "1";
    options.Semicolon = flags[2] == "1";
    options.Space = flags[3] == "1";
    options.Other = flags[4] == "1";
    options.OtherText = flags[5];
  }
  options.TitleFromHeader = GetPrevValue(session, kSection, "ERDファイルのヘッダー情報") == "1";
  options.Header = GetPrevValue(session, kSection, "データのプレビュー") == "1";
  return options;
}

void SaveImportSettings(Session& session, const ImportOptions& options) {
  auto flag = [](bool on) { return on ? std::string("1") : std::string("0"); };
  SetPrevValue(session, kSection, "区切り文字",
               flag(options.Comma) + "," + flag(options.Tab) + "," + flag(options.Semicolon) + "," +
                   flag(options.Space) + "," + flag(options.Other) + "," + uQuote(options.OtherText));
  SetPrevValue(session, kSection, "ERDファイルのヘッダー情報", flag(options.TitleFromHeader));
  SetPrevValue(session, kSection, "データのプレビュー", flag(options.Header));
}

}  // namespace velmora
