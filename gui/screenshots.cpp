#include "screenshots.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDir>
#include <QSaveFile>

#include <functional>

#include "tab_charts.h"
#include "tab_print.h"
#include "tab_report.h"
#include "tab_statistics.h"

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

namespace tab = workbench::tab;

// One picture: the tab, its plain name, and what is done on it before the picture is taken.
struct Shot {
  int Tab;
  QString Slug;
  std::function<void()> Work;
};

Shot ChartShot(MainWindow& window, const TabPage& page) {
  return {page.Index, page.Slug, [&window, page] {
            if (page.HasGo && window.StartGo(page.Index)) window.WaitForGo();
            QCoreApplication::processEvents();
            window.ChartOf(page.Index)->Refresh();
          }};
}

template <class Page>
Page* OwnPage(MainWindow& window, const char* name) {
  return dynamic_cast<Page*>(window.findChild<QWidget*>(name));
}

// The tabs of tables and sheets: the whole-wavelength statistics with the chart of the 100 m
// sections, then the whole-length page with the profiles and every display mark, the report's
// parameters of the template, the preview of the first sheet.
std::vector<Shot> OutputShots(MainWindow& window, const QString& reportTemplate) {
  return {{tab::Statistics, "statistics",
           [&window] {
             for (const char* box : {"chk帯域_pro0", "chk統計値_proTop"}) window.findChild<QCheckBox*>(box)->setChecked(true);
             if (window.StartGo(tab::Statistics)) window.WaitForGo();
             OwnPage<StatisticsTabPage>(window, "statisticsTab")->Pages()->setCurrentIndex(2);
           }},
          {tab::Statistics, "statistics_marks",
           [&window] {
             for (const char* mark : {"chk統計値0", "chk統計値1", "chk統計値2", "chk統計値3", "chk統計値4"})
               window.findChild<QCheckBox*>(mark)->setChecked(true);
             OwnPage<StatisticsTabPage>(window, "statisticsTab")->Pages()->setCurrentIndex(0);
           }},
          {tab::Report, "report",
           [&window, reportTemplate] {
             if (!reportTemplate.isEmpty())
               OwnPage<ReportTabPage>(window, "reportTab")->UseTemplate(reportTemplate.toStdString());
           }},
          {tab::Print, "print", [&window] {
             if (OwnPage<PrintTabPage>(window, "printTab")->Preview()) window.WaitForGo();
           }}};
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

QStringList WriteScreenshots(MainWindow& window, const QString& folder, const QString& reportTemplate, QString& error) {
  if (!QDir().mkpath(folder)) {
    error = folder + ": the folder cannot be made";
    return {};
  }
  std::vector<Shot> shots{ChartShot(window, ProfilePage())};
  for (const TabPage& page : AnalysisPages()) shots.push_back(ChartShot(window, page));
  for (const TabPage& page : RepairPages()) shots.push_back(ChartShot(window, page));
  for (Shot& shot : OutputShots(window, reportTemplate)) shots.push_back(std::move(shot));
  // The study's tabs need the other mode, and the PSD, statistics, report and print tabs two mode
  // changes after start: each tab is taken in the first of three rounds that shows it.
  std::vector<bool> taken(shots.size(), false);
  QStringList written;
  for (int round = 0; round < 3; ++round, window.ToggleMode()) {
    for (std::size_t i = 0; i < shots.size(); ++i) {
      if (taken[i] || !window.TabShown(shots[i].Tab)) continue;
      taken[i] = true;
      window.ShowTab(shots[i].Tab);
      shots[i].Work();
      QCoreApplication::processEvents();
      const QString path = QDir(folder).filePath(QString("%1_%2.png").arg(shots[i].Tab, 2, 10, QChar('0')).arg(shots[i].Slug));
      if (!SavePng(window.grab(), path, error)) return {};
      written << path;
    }
  }
  if (const QString zoomed = ShootZoomed(window, folder, error); !zoomed.isEmpty()) written << zoomed;
  else if (!error.isEmpty()) return {};
  return written;
}

}  // namespace velmora::gui
