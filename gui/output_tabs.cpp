#include "output_tabs.h"

#include "tab_print.h"
#include "tab_report.h"
#include "tab_statistics.h"

namespace velmora::gui {

void AddOutputTabs(MainWindow& window, workbench::Workbench& bench) {
  AddStatisticsTab(window, bench);
  AddReportTab(window, bench);
  AddPrintTab(window, bench);
}

}  // namespace velmora::gui
