#include "output_tabs.h"

#include <QSplitter>
#include <QVBoxLayout>

#include "tab_print.h"
#include "tab_report.h"
#include "tab_statistics.h"

namespace velmora::gui {

void AddOutputTabs(MainWindow& window, workbench::Workbench& bench) {
  AddStatisticsTab(window, bench);
  AddReportTab(window, bench);
  AddPrintTab(window, bench);
}

void SplitPage(QWidget* page, QWidget* left, QWidget* right, int leftWidth, int rightWidth) {
  auto* splitter = new QSplitter(Qt::Horizontal);
  splitter->addWidget(left);
  splitter->addWidget(right);
  splitter->setStretchFactor(1, 1);
  splitter->setSizes({leftWidth, rightWidth});
  auto* layout = new QVBoxLayout(page);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(splitter);
}

}  // namespace velmora::gui
