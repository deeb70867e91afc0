#include "evaluation/correlation_tables.h"

#include <fmt/format.h>

#include "base/common.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"

namespace velmora {
namespace {

constexpr std::string_view kValueFormat = "0.00000";

std::string Shown(double value) { return FormatNumber(value, kValueFormat); }

// Mean of the non-blank cells as shown; no cell divides by 1.
std::string MeanOfCells(const std::vector<std::string>& cells) {
  double sum = 0;
  int count = 0;
  for (const std::string& cell : cells) {
    if (Trim(cell).empty()) continue;
    sum += uDblVal(cell);
    ++count;
  }
  return Shown(sum / (count == 0 ? 1 : count));
}

double ErrorRate(const std::vector<double>& values, std::int32_t i, std::int32_t j, const char* what) {
  const double base = values[static_cast<std::size_t>(i - 1)];
  if (base == 0) RaiseDivisionByZero(fmt::format("{} of profile {} is 0", what, i));
  return (values[static_cast<std::size_t>(j - 1)] - base) / base;
}

std::string ValueOf(const std::vector<double>& values, std::int32_t i) {
  return Shown(values[static_cast<std::size_t>(i - 1)]);
}

std::string Joined(const std::vector<std::string>& cells) {
  std::string line;
  for (std::size_t c = 0; c < cells.size(); ++c) line += (c == 0 ? "" : ",") + cells[c];
  return line;
}

}  // namespace

std::string MeasureText(const CorrelationResults& results, std::int32_t measure, std::int32_t i, std::int32_t j) {
  const CorrelationCell& cell = results.Cell(i, j);
  switch (measure) {
    case 0: return Shown(cell.Peak(CorrelationRow::Rho).Value);
    case 1: return Shown(cell.Peak(CorrelationRow::Agreement).Value);
    case 2: return std::to_string(cell.Peak(CorrelationRow::Rho).Shift);
    case 3: return Shown(cell.SdRatio);
    case 4: return Shown(ErrorRate(results.IriValues, i, j, "IRI"));
    case 5: return Shown(ErrorRate(results.PsdValues, i, j, "PSD"));
    default: RaiseSubscriptOutOfRange(fmt::format("measure {}", measure));
  }
}

TextTable BuildCrossTable(const CorrelationResults& results, std::int32_t measure) {
  const std::int32_t count = results.Selection.ProfileCount;
  const auto width = static_cast<std::size_t>(count + 1);
  const auto& names = results.Selection.Names;
  TextTable table;
  std::vector<std::string> head(width);
  for (std::int32_t i = 1; i <= count; ++i) head[static_cast<std::size_t>(i)] = names[static_cast<std::size_t>(i - 1)];
  table.push_back(head);
  auto valueRow = [&](const char* label, const std::vector<double>& values) {
    std::vector<std::string> row(width);
    row[0] = label;
    for (std::int32_t i = 1; i <= count; ++i) row[static_cast<std::size_t>(i)] = ValueOf(values, i);
    table.push_back(row);
  };
  if (results.Options.ShowIri) valueRow("IRI値", results.IriValues);
  if (results.Options.ShowPsd) valueRow("PSD値", results.PsdValues);
  if (count < 2) return table;  // no pair: the head alone

  std::vector<std::vector<std::string>> columns(width);  // the pair cells of each column, for the means
  std::vector<std::string> all, behindFirst;
  for (std::int32_t j = 1; j <= count; ++j) {
    std::vector<std::string> row(width);
    row[0] = names[static_cast<std::size_t>(j - 1)];
    for (std::int32_t i = 1; i < j; ++i) {
      const std::string text = MeasureText(results, measure, i, j);
      row[static_cast<std::size_t>(i)] = text;
      columns[static_cast<std::size_t>(i)].push_back(text);
      all.push_back(text);
      if (i >= 2) behindFirst.push_back(text);
    }
    table.push_back(row);
  }
  std::vector<std::string> reference(width);
  reference[0] = "平均(基準)";
  for (std::size_t c = 1; c < width; ++c) reference[c] = MeanOfCells(columns[c]);
  table.push_back(reference);
  std::vector<std::string> overall(width);
  overall[0] = "平均(全体)";
  if (width > 1) overall[1] = MeanOfCells(all);
  if (count > 2) overall[2] = MeanOfCells(behindFirst);
  table.push_back(overall);
  return table;
}

TextTable BuildSingleTable(const CorrelationResults& results, std::int32_t measure) {
  const bool iri = results.Options.ShowIri;
  const bool psd = results.Options.ShowPsd;
  const auto& names = results.Selection.Names;
  auto row = [&](const std::string& name, std::int32_t first, std::int32_t second, const std::string& value,
                 const std::string& mean) {
    std::vector<std::string> cells{name};
    if (iri) cells.push_back(first > 0 ? ValueOf(results.IriValues, first) : "");
    if (psd) cells.push_back(first > 0 ? ValueOf(results.PsdValues, first) : "");
    cells.push_back(second > 0 ? names[static_cast<std::size_t>(second - 1)] : "組み合わせ");
    if (iri) cells.push_back(second > 0 ? ValueOf(results.IriValues, second) : "IRI値");
    if (psd) cells.push_back(second > 0 ? ValueOf(results.PsdValues, second) : "PSD値");
    cells.push_back(value);
    cells.push_back(mean);
    return cells;
  };
  TextTable table;
  std::vector<std::string> head = row("", 0, 0, "算出値", "平均");
  if (iri) head[1] = "IRI値";
  if (psd) head[iri ? 2 : 1] = "PSD値";
  table.push_back(head);
  const std::int32_t count = results.Selection.ProfileCount;
  for (std::int32_t i = 1; i < count; ++i) {
    std::vector<std::string> values;
    for (std::int32_t j = i + 1; j <= count; ++j) values.push_back(MeasureText(results, measure, i, j));
    for (std::int32_t j = i + 1; j <= count; ++j) {
      const bool first = j == i + 1;
      table.push_back(row(first ? names[static_cast<std::size_t>(i - 1)] : "", first ? i : 0, j,
                          values[static_cast<std::size_t>(j - i - 1)], first ? MeanOfCells(values) : ""));
    }
  }
  return table;
}

TextTable BuildCorrelationTable(const CorrelationResults& results) {
  return results.Options.TableLayout == 1 ? BuildSingleTable(results, results.Options.Measure)
                                          : BuildCrossTable(results, results.Options.Measure);
}

std::vector<std::string> CorrelationCsvLines(const CorrelationResults& results, std::int32_t measure) {
  std::vector<std::string> lines;
  lines.push_back(std::string(",,,,,,,") + kMeasureCaptions[static_cast<std::size_t>(measure)]);
  lines.push_back(std::string(",") + (results.Options.ShowIri ? "IRI値," : "") +
                  (results.Options.ShowPsd ? "PSD値," : "") + "組み合わせ,算出値,平均,,");
  const TextTable single = BuildSingleTable(results, measure);
  for (std::size_t r = 1; r < single.size(); ++r) lines.push_back(Joined(single[r]));
  lines.push_back("");
  for (const auto& cells : BuildCrossTable(results, measure)) lines.push_back(Joined(cells));
  return lines;
}

}  // namespace velmora
