#pragma once
// The text of the values under the mouse on a tab's chart: distance, KP and value on the charts
// along the road (the KP of the profile the chart shows first), the axes' own quantities elsewhere.
#include <QString>

#include "chart_view.h"
#include "workbench/workbench.h"

namespace velmora::gui {

// KP (km) at a distance (m) from the first sample: counted from KpStart (the no value counts as 0),
// falling with KpSign 1.
double KpAtDistance(const ErdRecord& erd, double distance);

QString ReadoutText(const workbench::Workbench& bench, int tab, const ChartPoint& point);

}  // namespace velmora::gui
