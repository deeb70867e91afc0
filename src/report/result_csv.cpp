#include "report/result_csv.h"

#include <algorithm>

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

std::vector<std::string> PointCsvLines(const PositionAxis& axis, const ProfileGeometry& geometry,
                                         const std::vector<PointColumn>& columns) {
  std::string head;
  WriteDistanceHeader(head, axis, false);
  std::size_t rows = 0;
  std::vector<std::string> heads;
  for (const auto& column : columns) {
    heads.push_back(column.Head);
    rows = std::max(rows, column.Values.size());
  }
  head += JoinFields(heads);
  std::vector<std::string> lines;
  lines.reserve(rows + 1);
  lines.push_back(std::move(head));
  for (std::size_t r = 0; r < rows; ++r) {
    std::string line = FormatDistanceField(SamplePosition(axis, static_cast<std::int64_t>(r) + 1, geometry.StepSize,
                                                          geometry.KpStart, geometry.KpSign));
    for (const PointColumn& column : columns) {
      if (r < column.Values.size()) AppendField(line, column.Values[r], kValueDecimals);
      else line += ", ";
    }
    lines.push_back(std::move(line));
  }
  return lines;
}

std::vector<std::string> SectionCsvLines(const PositionAxis& axis, const ProfileGeometry& geometry,
                                           const std::vector<std::string>& heads,
                                           const std::vector<SectionRow>& rows) {
  std::string head;
  WriteSectionHeader(head, axis);
  head += JoinFields(heads);
  const double originKm = IsNoValue(geometry.KpStart) ? 0.0 : geometry.KpStart;
  const double direction = geometry.KpSign == 1 ? -1.0 : 1.0;
  auto place = [&](double km) {
    if (axis.Mode == PositionMode::ZeroBased) return (km - originKm) * 1000.0 * direction;
    return axis.Unit == KpUnit::Km ? km : km * 1000.0;
  };
  std::vector<std::string> lines;
  lines.reserve(rows.size() + 1);
  lines.push_back(std::move(head));
  for (const auto& row : rows) {
    std::string line = FormatDistanceField(place(row.KpFrom));
    AppendField(line, place(row.KpTo), kDistanceDecimals);
    AppendField(line, place((row.KpFrom + row.KpTo) / 2.0), kDistanceDecimals);
    for (double value : row.Values) AppendField(line, value, kValueDecimals);
    lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace velmora
