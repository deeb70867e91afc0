#pragma once
// The CSV layout of result files: a head line, then one line per point or section, fields joined by
// ", ". Distances in "0.00000", values in "0.00000000", PSD numbers in "0.0000000000E+00"; the no
// value (-99999) is an empty field. Lines are UTF-8 here; the file is written in the system code page.
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "report/column_spill.h"
#include "report/position_axis.h"

namespace velmora {

// A profile's placement along the road: pitch in m, KP of the first sample in km (no value: 0),
// KpSign 1 when the KP falls along the profile.
struct ProfileGeometry {
  double StepSize = 0;
  double KpStart = 0;
  std::int32_t KpSign = 0;
};

std::string FormatDistanceField(double value);  // "0.00000", empty for the no value
std::string FormatValueField(double value);     // "0.00000000", empty for the no value
std::string FormatPsdField(double value);       // "0.0000000000E+00", empty for the no value

// Appends "Distance(KP), ", "Distance(m), " or "Distance(km), " by the axis setting (see
// PositionUnitWord for `withSuffix`).
void WriteDistanceHeader(std::string& line, const PositionAxis& axis, bool withSuffix);
// Appends "Start(KP), End(KP), Mid(KP), " or its m and km forms.
void WriteSectionHeader(std::string& line, const PositionAxis& axis);

// One column of a point table: its head and its values 1..n (a column may be shorter than others,
// e.g. an IRI filter wave: its missing rows are empty fields).
struct PointColumn {
  std::string Head;
  std::span<const double> Values;  // element 0 is sample 1
  // Set instead of Values for a column parked in a scratch file: its column `SpillColumn` there,
  // read a block of rows at a time.
  const ColumnSpill* Spill = nullptr;
  std::size_t SpillColumn = 0;
};

// Where the lines of a table go, one at a time: a file being written, or a list.
using LineOut = std::function<void(std::string_view)>;
// The lines `write` gives, as a list.
std::vector<std::string> CollectLines(const std::function<void(const LineOut&)>& write);

// Head line: distance head + the column heads joined by ", ". Then one line per sample up to the
// longest column: position of the sample by the axis, then the values.
void WritePointCsv(const LineOut& out, const PositionAxis& axis, const ProfileGeometry& geometry,
                   const std::vector<PointColumn>& columns);

// One section of a section table: its ends in km (KP) and its values.
struct SectionRow {
  double KpFrom = 0;
  double KpTo = 0;
  std::vector<double> Values;
};

// Head line: section head + `heads` joined by ", ". Rows: start, end and middle by the axis (KP in km
// or m; zero-based: metres from the profile's first sample along its direction), then the values.
void WriteSectionCsv(const LineOut& out, const PositionAxis& axis, const ProfileGeometry& geometry,
                     const std::vector<std::string>& heads, const std::vector<SectionRow>& rows);
// The same with the rows made one at a time by `rowAt(r, row)`, r = 0 .. count-1, for tables of a
// row per sample that are too long to hold as rows. `rowAt` is called from two threads at once
// (each with its own row), so it must only read what it shares.
using SectionRowAt = std::function<void(std::size_t, SectionRow&)>;
void WriteSectionCsv(const LineOut& out, const PositionAxis& axis, const ProfileGeometry& geometry,
                     const std::vector<std::string>& heads, std::size_t count, const SectionRowAt& rowAt);
std::vector<std::string> SectionCsvLines(const PositionAxis& axis, const ProfileGeometry& geometry,
                                           const std::vector<std::string>& heads,
                                           const std::vector<SectionRow>& rows);

// The fields joined by ", ".
std::string JoinFields(const std::vector<std::string>& fields);

}  // namespace velmora
