#pragma once
// The tabs that give their results as tables, sheets and files: statistics (7), the report (8) and
// print (9), added to the window in tab order.
#include "main_window.h"

namespace velmora::gui {

void AddOutputTabs(MainWindow& window, workbench::Workbench& bench);

}  // namespace velmora::gui
