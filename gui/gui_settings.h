#pragma once
// What the window keeps across runs in the program's own 前回値.ini: its place and size, and the
// five display marks chk統計値 of the workbench.
#include <QMainWindow>

#include "workbench/workbench.h"

namespace velmora::gui {

// The place and marks of the last run, or the window's default size when none was kept.
void RestoreWindowSettings(workbench::Workbench& bench, QMainWindow& window);
// Called as the window closes.
void SaveWindowSettings(workbench::Workbench& bench, const QMainWindow& window);

}  // namespace velmora::gui
