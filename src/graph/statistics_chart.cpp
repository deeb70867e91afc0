// The statistics chart: per section of the common KP grid, the standard deviation and the spread of
// each profile, as the statistics page lists them.
#include <fmt/format.h>

#include <cmath>
#include <optional>

#include "base/common.h"
#include "graph/charts.h"

namespace velmora::graph {
namespace {

// The head row whose label is `label`, if the page has one.
const std::vector<std::string>* HeadRow(const StatisticsPage& page, std::string_view label) {
  for (const auto& row : page.Head)
    if (!row.empty() && row[0] == label) return &row;
  return nullptr;
}

}  // namespace

void DrawStatisticsChart(const ChartCanvas& canvas, const StatisticsPage& page) {
  const auto* names = HeadRow(page, "プロファイル");
  const auto* bands = HeadRow(page, "帯域");
  const auto* measures = HeadRow(page, "統計値");
  // Section starts (km) from the row labels; each section ends where the next begins.
  std::vector<double> from;
  for (const std::string& label : page.RowLabels) from.push_back(ParseNumber(label).value_or(std::nan("")));
  std::vector<double> to(from.size());
  for (std::size_t r = 0; r < from.size(); ++r)
    to[r] = r + 1 < from.size() ? from[r + 1] : from[r] + (r > 0 ? from[r] - from[r - 1] : 0.1);
  const auto [kpLow, kpHigh] = ValueRange(from);

  const char* const shown[] = {"標準偏差 σ", "最大最小差"};
  const std::vector<Rect> panels = StackedPanels(canvas.Area, 2);
  for (std::size_t p = 0; p < 2; ++p) {
    std::vector<std::size_t> columns;
    for (std::size_t c = 0; measures != nullptr && c + 1 < measures->size(); ++c)
      if ((*measures)[c + 1] == shown[p]) columns.push_back(c);
    double high = 0;
    for (std::size_t c : columns)
      for (std::size_t r = 0; r < from.size(); ++r) {
        const double v = page.Body[r * page.KpColumn.size() + c];
        if (std::isfinite(v)) high = std::fmax(high, v);
      }
    // Through the canvas, so that a window's zoom reaches the panels and its readout finds them.
    ChartPanel panel = CanvasPanel(canvas, panels[p],
                                   {kpLow, std::fmax(kpHigh, to.empty() ? 1.0 : to.back()), false, p == 1 ? "KP (km)" : "", 8},
                                   {0, high, false, "mm", 4});
    panel.DrawAxes(fmt::format("{}  {}", page.Caption, shown[p]));
    std::vector<LegendEntry> legend;
    for (std::size_t k = 0; k < columns.size(); ++k) {
      const std::size_t c = columns[k];
      std::vector<double> values;
      for (std::size_t r = 0; r < from.size(); ++r) values.push_back(page.Body[r * page.KpColumn.size() + c]);
      const Colour colour = PaletteColour(canvas, k);
      panel.Steps(from, to, values, {.Width = 2, .Color = colour});
      const std::string name = names != nullptr ? (*names)[c + 1] : std::string();
      const std::string band = bands != nullptr ? (*bands)[c + 1] : std::string();
      legend.push_back({band.empty() ? name : name + "  " + band, colour, 0, 2});
    }
    if (!legend.empty()) panel.Legend(legend);
  }
}

}  // namespace velmora::graph
