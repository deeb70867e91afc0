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
  return written;
}

}  // namespace velmora::gui
