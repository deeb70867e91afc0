#include "report/result_csv.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <thread>

#include "base/common.h"
#include "base/legacy_format.h"

namespace velmora {

std::string FormatDistanceField(double value) {
  return IsNoValue(value) ? std::string() : FormatNumber(value, "0.00000");
}
std::string FormatValueField(double value) {
  return IsNoValue(value) ? std::string() : FormatNumber(value, "0.00000000");
}
std::string FormatPsdField(double value) {
  return IsNoValue(value) ? std::string() : FormatNumber(value, "0.0000000000E+00");
}

namespace {

// ", " and the field, an empty field for the no value; straight into the line.
void AppendField(std::string& line, double value, int decimals) {
  line += ", ";
  if (!IsNoValue(value)) AppendFixedDecimals(line, value, decimals);
}
constexpr int kDistanceDecimals = 5, kValueDecimals = 8;
// The position that opens a row.
void AppendFirstField(std::string& line, double position) {
  if (!IsNoValue(position)) AppendFixedDecimals(line, position, kDistanceDecimals);
}

constexpr std::size_t kBlockRows = 16384;

// Formats rows first..last-1 of a table; made anew for every block, so state it keeps between rows
// (a row buffer) belongs to one thread.
using RowFormatter = std::function<void(std::size_t, std::string&)>;

// A block of formatted lines: their text one after the other, and where each ends.
struct LineBlock {
  std::string Text;
  std::vector<std::size_t> Ends;

  void Format(std::size_t first, std::size_t last, const std::function<RowFormatter()>& makeFormatter) {
    Text.clear();
    Ends.clear();
    const RowFormatter formatRow = makeFormatter();
    for (std::size_t r = first; r < last; ++r) {
      formatRow(r, Text);
      Ends.push_back(Text.size());
    }
  }
  void Emit(const LineOut& out) const {
    std::size_t start = 0;
    for (const std::size_t end : Ends) {
      out(std::string_view(Text).substr(start, end - start));
      start = end;
    }
  }
};

// The rows of a long table formatted in blocks on two threads and handed to `out` in their order:
// formatting the numbers is most of the time a long result file takes, and the lines are the same.
void WriteRows(const LineOut& out, std::size_t count, const std::function<RowFormatter()>& makeFormatter) {
  LineBlock own, other;
  for (std::size_t first = 0; first < count; first += 2 * kBlockRows) {
    const std::size_t middle = std::min(first + kBlockRows, count), last = std::min(middle + kBlockRows, count);
    std::exception_ptr failure;
    std::thread helper;
    if (middle < last)
      helper = std::thread([&] {
        try {
          other.Format(middle, last, makeFormatter);
        } catch (...) {
          failure = std::current_exception();
        }
      });
    try {
      own.Format(first, middle, makeFormatter);
    } catch (...) {
      if (helper.joinable()) helper.join();
      throw;
    }
    if (helper.joinable()) helper.join();
    if (failure) std::rethrow_exception(failure);
    own.Emit(out);
    if (middle < last) other.Emit(out);
  }
}

std::size_t RowsOf(const PointColumn& column) {
  return column.Spill ? column.Spill->Rows(column.SpillColumn) : column.Values.size();
}

// The values of a point table's columns as one block formatter goes down its rows: spilled columns
// are read from their file a block of rows at a time, the others are used as they lie.
class PointRows {
 public:
  explicit PointRows(const std::vector<PointColumn>& columns) : columns_(columns), held_(columns.size()) {}

  // The value of column c at row r (zero-based), r within the column.
  double At(std::size_t c, std::size_t r) {
    const PointColumn& column = columns_[c];
    if (!column.Spill) return column.Values[r];
    if (r < first_ || r - first_ >= kBlockRows) Hold(r);
    return held_[c][r - first_];
  }

 private:
  void Hold(std::size_t first) {
    first_ = first;
    for (std::size_t c = 0; c < columns_.size(); ++c) {
      const PointColumn& column = columns_[c];
      if (!column.Spill) continue;
      const std::size_t rows = RowsOf(column);
      if (first >= rows) continue;  // a shorter column: its rows here are empty fields
      held_[c].resize(std::min(kBlockRows, rows - first));
      column.Spill->Read(column.SpillColumn, first, held_[c]);
    }
  }

  const std::vector<PointColumn>& columns_;
  std::vector<std::vector<double>> held_;
  std::size_t first_ = std::numeric_limits<std::size_t>::max();  // of the rows held_ keeps; none yet
};

}  // namespace

void WriteDistanceHeader(std::string& line, const PositionAxis& axis, bool withSuffix) {
  line += "Distance(" + PositionUnitWord(axis, withSuffix) + "), ";
}

void WriteSectionHeader(std::string& line, const PositionAxis& axis) {
  const std::string word = PositionUnitWord(axis, false);
  line += "Start(" + word + "), End(" + word + "), Mid(" + word + "), ";
}

std::string JoinFields(const std::vector<std::string>& fields) {
  std::string line;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) line += ", ";
    line += fields[i];
  }
  return line;
}

std::vector<std::string> CollectLines(const std::function<void(const LineOut&)>& write) {
  std::vector<std::string> lines;
  write([&lines](std::string_view line) { lines.emplace_back(line); });
  return lines;
}

std::vector<std::string> SectionCsvLines(const PositionAxis& axis, const ProfileGeometry& geometry,
                                           const std::vector<std::string>& heads,
                                           const std::vector<SectionRow>& rows) {
  return CollectLines([&](const LineOut& out) { WriteSectionCsv(out, axis, geometry, heads, rows); });
}

void WritePointCsv(const LineOut& out, const PositionAxis& axis, const ProfileGeometry& geometry,
                   const std::vector<PointColumn>& columns) {
  std::string head;
  WriteDistanceHeader(head, axis, false);
  std::size_t rows = 0;
  std::vector<std::string> heads;
  for (const auto& column : columns) {
    heads.push_back(column.Head);
    rows = std::max(rows, RowsOf(column));
  }
  head += JoinFields(heads);
  out(head);
  WriteRows(out, rows, [&]() -> RowFormatter {
    return [&, values = PointRows(columns)](std::size_t r, std::string& line) mutable {
      AppendFirstField(line, SamplePosition(axis, static_cast<std::int64_t>(r) + 1, geometry.StepSize,
                                            geometry.KpStart, geometry.KpSign));
      for (std::size_t c = 0; c < columns.size(); ++c) {
        if (r < RowsOf(columns[c])) AppendField(line, values.At(c, r), kValueDecimals);
        else line += ", ";
      }
    };
  });
}

void WriteSectionCsv(const LineOut& out, const PositionAxis& axis, const ProfileGeometry& geometry,
                     const std::vector<std::string>& heads, const std::vector<SectionRow>& rows) {
  WriteSectionCsv(out, axis, geometry, heads, rows.size(), [&rows](std::size_t r, SectionRow& row) { row = rows[r]; });
}

void WriteSectionCsv(const LineOut& out, const PositionAxis& axis, const ProfileGeometry& geometry,
                     const std::vector<std::string>& heads, std::size_t count, const SectionRowAt& rowAt) {
  std::string head;
  WriteSectionHeader(head, axis);
  head += JoinFields(heads);
  const double originKm = IsNoValue(geometry.KpStart) ? 0.0 : geometry.KpStart;
  const double direction = geometry.KpSign == 1 ? -1.0 : 1.0;
  auto place = [&](double km) {
    if (axis.Mode == PositionMode::ZeroBased) return (km - originKm) * 1000.0 * direction;
    return axis.Unit == KpUnit::Km ? km : km * 1000.0;
  };
  out(head);
  WriteRows(out, count, [&]() -> RowFormatter {
    return [&, row = SectionRow{}](std::size_t r, std::string& line) mutable {
      rowAt(r, row);  // filled anew for every row, its storage kept
      AppendFirstField(line, place(row.KpFrom));
      AppendField(line, place(row.KpTo), kDistanceDecimals);
      AppendField(line, place((row.KpFrom + row.KpTo) / 2.0), kDistanceDecimals);
      for (double value : row.Values) AppendField(line, value, kValueDecimals);
    };
  });
}

}  // namespace velmora
