#pragma once
// The menu プロジェクト (mnuFileSub: new, open, save, save as, rename, copy, delete, exit) and the
// menu ファイル出力 of the result files, both over the engine's commands: the window only follows
// with its lists and title.
#include "main_window.h"

namespace velmora::gui {

void AddProjectMenu(MainWindow& window, workbench::Workbench& bench);

}  // namespace velmora::gui
