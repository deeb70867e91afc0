#pragma once
// The report tab: the template chosen (cmxReadExlFile), its parameter table filled in, and the report
// made through the engine as the report command makes it: the IRI with 10 m windows and the octave
// split for every profile, then cmxExlsCreate into a folder the user chooses, on the window's worker.
#include <QCheckBox>
#include <QCoreApplication>
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
  Q_DECLARE_TR_FUNCTIONS(ReportTabPage)

 public:
  ReportTabPage(MainWindow& window, workbench::Workbench& bench);
  // The file dialog, then the template read and its parameters listed. False when cancelled or unreadable.
  bool ChooseTemplate();
  // The same for a template already named.
  bool UseTemplate(const std::filesystem::path& path);
  // cmxExlsCreate with the parameters as entered, into the folder the user chooses: the analyses and
  // the report run on the worker under the progress display. False when it did not start.
  bool MakeReport();
  // The files the last report wrote, once it has ended; nullopt when it stopped or failed.
  const std::optional<ExelReportFiles>& Written() const { return written_; }
  QTableWidget* Parameters() const { return params_; }

 private:
  void ShowTemplate();
  std::vector<ExelParamEntry> EnteredParams() const;

  MainWindow& window_;
  workbench::Workbench& bench_;
  ExelTemplate template_;
  std::vector<ExelParamEntry> table_;  // as made from the template, before entry
  QLabel* templateName_ = nullptr;
  QTableWidget* params_ = nullptr;
  QCheckBox* reversed_ = nullptr;
  QPushButton* create_ = nullptr;
  QLabel* writtenNames_ = nullptr;
  std::optional<ExelReportFiles> written_;
};

ReportTabPage* AddReportTab(MainWindow& window, workbench::Workbench& bench);

}  // namespace velmora::gui
