#include "gui_settings.h"

#include "base/startup.h"
#include "base/window_placement.h"

namespace velmora::gui {

void RestoreWindowSettings(workbench::Workbench& bench, QMainWindow& window) {
  const std::vector<bool> marks = LoadStatisticsFlags(bench.Session());
  for (std::size_t i = 0; i < marks.size() && i < bench.StatisticsMarks.size(); ++i) bench.StatisticsMarks[i] = marks[i];
  const std::optional<WindowPlacement> placement = LoadWindowPlacement(bench.Session());
  if (!placement) {
    window.resize(1200, 800);
    return;
  }
  window.setGeometry(placement->Left, placement->Top, placement->Width, placement->Height);
  if (placement->Maximized) window.setWindowState(window.windowState() | Qt::WindowMaximized);
}

void SaveWindowSettings(workbench::Workbench& bench, const QMainWindow& window) {
  SaveStatisticsFlags(bench.Session(), bench.StatisticsMarks);
  // A maximised window keeps the place it goes back to.
  const QRect normal = window.isMaximized() ? window.normalGeometry() : window.geometry();
  SaveWindowPlacement(bench.Session(), {normal.x(), normal.y(), normal.width(), normal.height(), window.isMaximized()});
}

}  // namespace velmora::gui
