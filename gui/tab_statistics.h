#pragma once
// The statistics tab: its list, the check boxes of what to compute, the two ordering lists, the five
// display marks chk統計値, Go and the eight result pages with a chart: the profiles with the marks
// beside the whole-length page, the deviation and spread per section beside a section page.
#include <QAbstractTableModel>
#include <QCoreApplication>
#include <QTabWidget>
#include <QWidget>

#include "chart_view.h"
#include "main_window.h"

namespace velmora::gui {

// One result page as a table: a copy taken after the Go, so that a repaint never reads what a later
// Go is writing.
class StatisticsPageModel final : public QAbstractTableModel {
 public:
  void SetPage(const StatisticsPage& page);
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  const StatisticsPage& Page() const { return page_; }

 private:
  StatisticsPage page_;
};

class StatisticsTabPage final : public QWidget {
  Q_DECLARE_TR_FUNCTIONS(StatisticsTabPage)

 public:
  StatisticsTabPage(MainWindow& window, workbench::Workbench& bench);
  // The pages of the last run shown, the chart of the page on show drawn.
  void ShowResults();
  QTabWidget* Pages() const { return pages_; }
  const StatisticsPageModel& PageModel(int page) const { return *models_.at(static_cast<std::size_t>(page)); }
  ChartView* Chart() const { return chart_; }

 private:
  QWidget* MakeChoices();
  QWidget* MakeResults();
  // The chart of the page on show at `size`, in the window's ranges.
  QImage RenderPageChart(QSize size, graph::ChartWindow& window) const;

  MainWindow& window_;
  workbench::Workbench& bench_;
  QTabWidget* pages_ = nullptr;
  std::vector<StatisticsPageModel*> models_;
  ChartView* chart_ = nullptr;
};

// Makes the page and adds it to the window as tab 7.
StatisticsTabPage* AddStatisticsTab(MainWindow& window, workbench::Workbench& bench);

}  // namespace velmora::gui
