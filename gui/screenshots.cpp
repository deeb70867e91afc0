#include "screenshots.h"

#include <QCoreApplication>
#include <QDir>
#include <QSaveFile>

#include "tab_charts.h"

namespace velmora::gui {
namespace {

bool SavePng(const QPixmap& picture, const QString& path, QString& error) {
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || !picture.save(&file, "PNG") || !file.commit()) {
    error = path + ": " + file.errorString();
    return false;
  }
  return true;
}

}  // namespace

QStringList WriteScreenshots(MainWindow& window, const QString& folder, QString& error) {
  if (!QDir().mkpath(folder)) {
    error = folder + ": the folder cannot be made";
    return {};
  }
  std::vector<TabPage> pages{ProfilePage()};
  pages.insert(pages.end(), AnalysisPages().begin(), AnalysisPages().end());
  QStringList written;
  for (const TabPage& page : pages) {
    window.ShowTab(page.Index);
    if (page.HasGo && window.StartGo(page.Index)) window.WaitForGo();
    window.WaitForGo();  // the PSD tab's list may have started one
    QCoreApplication::processEvents();
    window.ChartOf(page.Index)->Refresh();
    const QString path = QDir(folder).filePath(QString("%1_%2.png").arg(page.Index, 2, 10, QChar('0')).arg(page.Slug));
    if (!SavePng(window.grab(), path, error)) return {};
    written << path;
  }
  return written;
}

}  // namespace velmora::gui
