#pragma once
// The input boxes of the tabs that have them, bound to the workbench's fields: a change is written
// there at once, and Go checks and stores it as the tab's inputs.
#include <QWidget>

#include "workbench/workbench.h"

namespace velmora::gui {

// The boxes of `tab` filled from the workbench (after FormLoad), or null for a tab without boxes.
QWidget* MakeTabInputs(workbench::Workbench& bench, int tab);
// The boxes under `root` show their fields again, after an operation (the conditions dialog) has set
// the fields from the conditions.
void ShowTabInputs(QWidget* root);

}  // namespace velmora::gui
