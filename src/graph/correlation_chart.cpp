// The verification chart: correlation against shift for each profile compared with the first.
#include <fmt/format.h>

#include <algorithm>

#include "graph/charts.h"

namespace velmora::graph {

std::vector<CorrelationCurve> CorrelationCurves(Session& session, const ProfileList& list,
                                                const CorrelationResults& results, const IriParams& iri) {
  const auto series = ComparedSeries(session, list, results, iri);
  std::vector<CorrelationCurve> curves;
  for (std::int32_t j = 2; j <= results.Selection.ProfileCount; ++j) {
    const auto& a = series[0];
    const auto& b = series[static_cast<std::size_t>(j - 1)];
    const std::int32_t maxShift = MaxShiftFor(results.Options, a.size());
    const auto n = static_cast<std::int32_t>(std::min(a.size(), b.size()));
    curves.push_back({results.Selection.Names[static_cast<std::size_t>(j - 1)], CorrelationByShift(n, a, b, maxShift),
                      maxShift, results.Cell(1, j).Peak(CorrelationRow::Rho)});
  }
  return curves;
}

void DrawCorrelationChart(const ChartCanvas& canvas, const std::string& baseName,
                          const std::vector<CorrelationCurve>& curves) {
  std::int32_t reach = 1;
  double low = 0, high = 1;
  for (const CorrelationCurve& curve : curves) {
    reach = std::max(reach, curve.MaxShift);
    const auto [curveLow, curveHigh] = ValueRange(curve.Rho);
    low = std::min(low, curveLow);
    high = std::max(high, curveHigh);
  }
  ChartPanel panel = CanvasPanel(canvas, canvas.Area,
                                 {-static_cast<double>(reach), static_cast<double>(reach), false, "ずらし量 (データ数)", 8, "0"},
                                 {low, high, false, "相互相関値", 5});
  panel.DrawAxes(fmt::format("相互相関 (基準: {})", baseName));
  std::vector<LegendEntry> legend;
  for (std::size_t i = 0; i < curves.size(); ++i) {
    const CorrelationCurve& curve = curves[i];
    const Colour colour = PaletteColour(canvas, i + 1);  // the first colour is the base profile's
    std::vector<double> shifts(curve.Rho.size());
    for (std::size_t k = 0; k < shifts.size(); ++k) shifts[k] = static_cast<double>(k) - curve.MaxShift;
    panel.Line(shifts, curve.Rho, {.Width = 2, .Color = colour});
    panel.Marker(curve.Peak.Shift, curve.Peak.Value, colour,
                 fmt::format("{:.4f} ({:+d})", curve.Peak.Value, curve.Peak.Shift));
    legend.push_back({curve.Name, colour, 0, 2});
  }
  panel.Legend(legend);
}

}  // namespace velmora::graph
