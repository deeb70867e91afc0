#pragma once
// The tabs that give their results as tables, sheets and files: statistics (7), the report (8) and
// print (9), added to the window in tab order.
#include "main_window.h"

namespace velmora::gui {

void AddOutputTabs(MainWindow& window, workbench::Workbench& bench);

// Fills `page` with its inputs on the left and its results on the right, side by side, the right
// taking what the window gains; `leftWidth` and `rightWidth` are the first split in pixels.
void SplitPage(QWidget* page, QWidget* left, QWidget* right, int leftWidth, int rightWidth);

}  // namespace velmora::gui
