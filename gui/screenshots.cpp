#include "screenshots.h"

#include <QCoreApplication>
#include <QDir>
#include <QSaveFile>

#include "tab_charts.h"

namespace velmora::gui {

bool SavePng(const QPixmap& picture, const QString& path, QString& error) {
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || !picture.save(&file, "PNG") || !file.commit()) {
    error = path + ": " + file.errorString();
    return false;
  }
  return true;
}

namespace {

// The tab entered, its Go run (the PSD tab computes on entry) and the window written; the file's
// path, or empty with the reason in `error`.
QString Shoot(MainWindow& window, const TabPage& page, const QString& folder, QString& error) {
  window.ShowTab(page.Index);
  if (page.HasGo && window.StartGo(page.Index)) window.WaitForGo();
  QCoreApplication::processEvents();
  window.ChartOf(page.Index)->Refresh();
  const QString path = QDir(folder).filePath(QString("%1_%2.png").arg(page.Index, 2, 10, QChar('0')).arg(page.Slug));
  return SavePng(window.grab(), path, error) ? path : QString();
}

// The profile chart zoomed to the middle fifth of its distance, as a rubber band over it leaves it.
QString ShootZoomed(MainWindow& window, const QString& folder, QString& error) {
  const TabPage& page = ProfilePage();
  window.ShowTab(page.Index);
  ChartView* chart = window.ChartOf(page.Index);
  chart->Refresh();
  if (chart->Window().Panels.empty()) return {};
  const graph::AxisRange whole = chart->Window().Panels.front().X;
  const double fifth = (whole.High - whole.Low) / 5;
  chart->ZoomTo(0, {whole.Low + 2 * fifth, whole.Low + 3 * fifth});
  const QString path = QDir(folder).filePath(QString("%1_%2_zoom.png").arg(page.Index, 2, 10, QChar('0')).arg(page.Slug));
  const bool saved = SavePng(window.grab(), path, error);
  chart->ResetZoom();
  return saved ? path : QString();
}

}  // namespace

QStringList WriteScreenshots(MainWindow& window, const QString& folder, QString& error) {
  if (!QDir().mkpath(folder)) {
    error = folder + ": the folder cannot be made";
    return {};
  }
  std::vector<TabPage> pages{ProfilePage()};
  pages.insert(pages.end(), AnalysisPages().begin(), AnalysisPages().end());
  pages.insert(pages.end(), RepairPages().begin(), RepairPages().end());
  // The study's tabs need the other mode, and the PSD tab two mode changes after start: each tab
  // is taken in the first of three rounds that shows it.
  std::vector<bool> taken(pages.size(), false);
  QStringList written;
  for (int round = 0; round < 3; ++round, window.ToggleMode()) {
    for (std::size_t i = 0; i < pages.size(); ++i) {
      if (taken[i] || !window.TabShown(pages[i].Index)) continue;
      taken[i] = true;
      const QString path = Shoot(window, pages[i], folder, error);
      if (path.isEmpty()) return {};
      written << path;
    }
  }
  if (const QString zoomed = ShootZoomed(window, folder, error); !zoomed.isEmpty()) written << zoomed;
  else if (!error.isEmpty()) return {};
  return written;
}

}  // namespace velmora::gui
