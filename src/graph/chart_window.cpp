#include "graph/chart_window.h"

#include "graph/charts.h"

namespace velmora::graph {

std::optional<std::size_t> ChartWindow::PanelAt(double surfaceX, double surfaceY) const {
  for (std::size_t i = 0; i < Panels.size(); ++i)
    if (Panels[i].Contains(surfaceX, surfaceY)) return i;
  return std::nullopt;
}

ChartPanel CanvasPanel(const ChartCanvas& canvas, const Rect& outer, AxisSpec x, AxisSpec y) {
  ChartWindow* window = canvas.Window;
  if (window != nullptr) {
    const auto zoomTo = [](AxisSpec& axis, const AxisRange& range) {
      axis.Min = range.Low;
      axis.Max = range.High;
      axis.Exact = true;
    };
    if (window->X) zoomTo(x, *window->X);
    if (const auto found = window->Y.find(window->Panels.size()); found != window->Y.end()) zoomTo(y, found->second);
  }
  ChartPanel panel(canvas.Devices, canvas.Target, canvas.Surface, outer, std::move(x), std::move(y), canvas.Font);
  if (window != nullptr) window->Panels.push_back(panel.Mapping());
  return panel;
}

}  // namespace velmora::graph
