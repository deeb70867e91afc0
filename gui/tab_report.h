#pragma once
// The report tab: the template chosen (cmxReadExlFile), its parameter table filled in, and the report
// made through the engine as the report command makes it: the IRI with 10 m windows and the octave
// split for every profile, then cmxExlsCreate into a folder the user chooses.
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QWidget>

#include <optional>

#include "main_window.h"
#include "report/exel_report.h"
#include "report/exel_template.h"

namespace velmora::gui {

class ReportTabPage final : public QWidget {
 public:
  ReportTabPage(MainWindow& window, workbench::Workbench& bench);
  // The file dialog, then the template read and its parameters listed. False when cancelled or unreadable.
  bool ChooseTemplate();
  // The same for a template already named.
  bool UseTemplate(const std::filesystem::path& path);
  // cmxExlsCreate with the parameters as entered; the files written, or nullopt when it stopped.
  std::optional<ExelReportFiles> MakeReport();
  QTableWidget* Parameters() const { return params_; }

 private:
  void ShowTemplate();
  std::vector<ExelParamEntry> EnteredParams() const;
  bool RunReportAnalyses();

  MainWindow& window_;
  workbench::Workbench& bench_;
  ExelTemplate template_;
  std::vector<ExelParamEntry> table_;  // as made from the template, before entry
  QLabel* templateName_ = nullptr;
  QTableWidget* params_ = nullptr;
  QCheckBox* reversed_ = nullptr;
  QPushButton* create_ = nullptr;
  QLabel* written_ = nullptr;
};

ReportTabPage* AddReportTab(MainWindow& window, workbench::Workbench& bench);

}  // namespace velmora::gui
