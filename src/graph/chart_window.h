#pragma once
// A chart as a window shows it: the ranges a user zoomed or panned to, and where each panel landed
// in the last drawing, so that a point under the mouse reads back as the values drawn there.
#include <cstddef>
#include <map>
#include <optional>
#include <vector>

#include "graph/chart_panel.h"

namespace velmora::graph {

struct ChartWindow {
  std::optional<AxisRange> X;           // the x axis of every panel (they share the distance)
  std::map<std::size_t, AxisRange> Y;   // the y axis of single panels, counted from the top (0)
  std::vector<PanelMapping> Panels;     // written by each drawing, in the order the panels are drawn

  bool Zoomed() const { return X.has_value() || !Y.empty(); }
  void Reset() {
    X.reset();
    Y.clear();
  }
  // The panel whose frame holds the surface point, if any.
  std::optional<std::size_t> PanelAt(double surfaceX, double surfaceY) const;
};

}  // namespace velmora::graph
