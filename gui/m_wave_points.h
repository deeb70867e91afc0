#pragma once
// The adjustment points of the M-wave tab: the crests and troughs of the shown profile's chosen study
// (before there is one, of the calculated M'), over the chart's M panel. A point dropped at a new
// height gives the study that thickness change there, and the study is calculated again.
#include <cstddef>
#include <vector>

#include "chart_view.h"
#include "workbench/workbench.h"

namespace velmora::gui {

// The panel of the study chart that shows M and M'.
inline constexpr std::size_t kMWavePanel = 2;

// The row (from 1) whose points the tab shows, or 0.
int AdjustedProfile(const workbench::Workbench& bench);
// The points, with Id their place in the study's point list; points the user left out are not shown.
std::vector<ChartHandle> AdjustmentHandles(const workbench::Workbench& bench);
// Sets point `id` of the shown profile's chosen study to `height` (mm): its thickness change becomes
// the height less the calculated M' there. Without a chosen study one is created first (the user
// names it) and chosen. True when the study has been calculated again.
bool MoveAdjustmentPoint(workbench::Workbench& bench, std::size_t id, double height);

}  // namespace velmora::gui
