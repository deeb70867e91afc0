#pragma once
// A macro-enabled workbook as the report needs it: a zip of XML parts whose sheets are found by name
// (workbook.xml and its relationships), with cell texts read through the shared strings. Writing
// changes only one sheet's part and the shared strings; every other part, the macro project among
// them, is carried over as it is. Failures raise LegacyError naming the workbook and what is wrong.
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora {

// Cell texts by (row, column), both from 1. A number is its text as stored, a boolean "True" or "False".
using SheetCells = std::map<std::pair<std::int32_t, std::int32_t>, std::string>;

class XlsmPackage {
 public:
  // Reads every part of the workbook.
  static XlsmPackage Open(const std::filesystem::path& path);

  const std::filesystem::path& Path() const { return path_; }
  bool HasPart(std::string_view name) const { return parts_.count(std::string(name)) != 0; }
  const std::string& Part(std::string_view name) const;
  // The part name ("xl/worksheets/sheet2.xml") of the sheet shown as `sheetName`; empty when absent.
  std::string SheetPart(std::string_view sheetName) const;
  std::vector<std::string> SharedStrings() const;
  // The cells of a sheet within rows [firstRow, lastRow] and columns [1, lastColumn].
  SheetCells ReadCells(std::string_view sheetName, std::int32_t firstRow, std::int32_t lastRow,
                       std::int32_t lastColumn) const;

 private:
  std::filesystem::path path_;
  std::map<std::string, std::string> parts_;
};

// One cell to write: a number (its text must be a decimal number), a text, or an empty cell.
struct CellWrite {
  std::int32_t Row = 1;
  std::int32_t Column = 1;
  std::string Text;
  bool Number = false;
};

// Copies the workbook `source` to `target` with `cells` written into the sheet `sheetName`: the copy
// is made beside the target and renamed over it, so a failure leaves no half-written workbook.
void WriteWorkbookCopy(const std::filesystem::path& source, const std::filesystem::path& target,
                       std::string_view sheetName, const std::vector<CellWrite>& cells);

// "A" → 1, "Z" → 26, "AB" → 28; and back.
std::string ColumnLetters(std::int32_t column);

}  // namespace velmora
