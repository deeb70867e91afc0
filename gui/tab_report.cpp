#include "tab_report.h"

#include <QComboBox>
#include <QDesktopServices>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QTableView>
#include <QUrl>
#include <QVBoxLayout>

#include <ctime>
#include <memory>

#include "base/settings_io.h"
#include "output_tabs.h"
#include "workbench/report_analyses.h"

namespace velmora::gui {
namespace {

namespace tab = workbench::tab;

constexpr std::string_view kFolderKey = "エクセル出力フォルダ";

std::vector<std::string> Titles(const workbench::Workbench& bench) {
  std::vector<std::string> titles;
  for (const ProfileRecord& record : bench.List().Items) titles.push_back(ProfileList::NameOf(record));
  return titles;
}

std::tm Now() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return local;
}

}  // namespace

ReportTabPage::ReportTabPage(MainWindow& window, workbench::Workbench& bench) : window_(window), bench_(bench) {
  setObjectName("reportTab");
  QTableView* list = window.NewProfileList();
  auto* choose = new QPushButton(tr("テンプレート読込..."));
  choose->setObjectName("cmxReadExlFile");
  connect(choose, &QPushButton::clicked, this, [this] { ChooseTemplate(); });
  templateName_ = new QLabel;
  params_ = new QTableWidget(0, 2);
  params_->setObjectName("ssExelData");
  params_->setHorizontalHeaderLabels({tr("パラメータ"), tr("値")});
  params_->verticalHeader()->hide();
  params_->horizontalHeader()->setStretchLastSection(true);
  reversed_ = new QCheckBox(tr("位置を反転して出力する"));
  reversed_->setObjectName("reversed");
  create_ = new QPushButton(tr("エクセル出力"));
  create_->setObjectName("cmxExlsCreate");
  create_->setEnabled(false);
  connect(create_, &QPushButton::clicked, this, [this] { MakeReport(); });
  writtenNames_ = new QLabel;
  writtenNames_->setWordWrap(true);
  writtenNames_->setTextInteractionFlags(Qt::TextSelectableByMouse);

  auto* right = new QWidget;
  auto* rightLayout = new QVBoxLayout(right);
  auto* top = new QHBoxLayout;
  top->addWidget(choose);
  top->addWidget(templateName_, 1);
  rightLayout->addLayout(top);
  rightLayout->addWidget(params_, 1);
  rightLayout->addWidget(reversed_);
  auto* bottom = new QHBoxLayout;
  bottom->addWidget(create_);
  bottom->addStretch();
  rightLayout->addLayout(bottom);
  rightLayout->addWidget(writtenNames_);
  SplitPage(this, list, right, 220, 980);
  // On entry the profile choices follow the list, as the tab's list refill does.
  window.AddOwnPage(tab::Report, tr("帳票出力"), this, list, create_, [this] { ShowTemplate(); });
}

bool ReportTabPage::ChooseTemplate() {
  ExelTemplate chosen;
  if (!cmxReadExlFile(bench_.Session(), chosen)) return false;
  template_ = std::move(chosen);
  ShowTemplate();
  return true;
}

bool ReportTabPage::UseTemplate(const std::filesystem::path& path) {
  ExelTemplate chosen;
  if (!ReadExelTemplateFile(bench_.Session(), path, chosen)) return false;
  template_ = std::move(chosen);
  ShowTemplate();
  return true;
}

void ReportTabPage::ShowTemplate() {
  const std::vector<ExelParamEntry> before = EnteredParams();
  table_ = MakeParamTable(template_, Titles(bench_));
  templateName_->setText(QString::fromStdString(template_.TemplatePath.filename().string()));
  params_->setRowCount(static_cast<int>(table_.size()));
  for (std::size_t i = 0; i < table_.size(); ++i) {
    const int row = static_cast<int>(i);
    const ExelParamEntry& entry = table_[i];
    auto* label = new QTableWidgetItem(QString::fromStdString(entry.Param.Label));
    label->setFlags(Qt::ItemIsEnabled);
    params_->setItem(row, 0, label);
    // What was entered stays when the table is made again (another visit of the tab).
    const std::string kept = i < before.size() && before[i].Param.Label == entry.Param.Label ? before[i].Value : std::string();
    if (entry.Choice) {
      auto* choice = new QComboBox;
      choice->addItem(QString());
      for (const std::string& item : entry.Items) choice->addItem(QString::fromStdString(item));
      choice->setCurrentText(QString::fromStdString(kept));
      params_->setCellWidget(row, 1, choice);
    } else {
      params_->removeCellWidget(row, 1);
      params_->setItem(row, 1, new QTableWidgetItem(QString::fromStdString(kept)));
    }
  }
  params_->resizeColumnToContents(0);
  create_->setEnabled(!template_.OptionRows.empty());
}

std::vector<ExelParamEntry> ReportTabPage::EnteredParams() const {
  std::vector<ExelParamEntry> entered = table_;
  for (std::size_t i = 0; i < entered.size() && static_cast<int>(i) < params_->rowCount(); ++i) {
    const int row = static_cast<int>(i);
    if (const auto* choice = qobject_cast<QComboBox*>(params_->cellWidget(row, 1)))
      entered[i].Value = choice->currentText().toStdString();
    else if (const QTableWidgetItem* item = params_->item(row, 1))
      entered[i].Value = item->text().toStdString();
  }
  return entered;
}

bool ReportTabPage::MakeReport() {
  if (window_.GoBusy()) return false;
  Session& session = bench_.Session();
  if (template_.OptionRows.empty()) {
    session.Ui().Inform(tr("出力対象のエクセルファイルが指定されていません。").toStdString(), tr("警告").toStdString());
    return false;
  }
  FileDialogRequest dialog;
  dialog.Title = tr("エクセル出力先フォルダ").toStdString();
  dialog.InitialDirectory = GetPrevValue(session, "CommonDialogPath", kFolderKey);
  const std::string folder = session.Ui().ChooseFolder(dialog);
  if (folder.empty()) return false;
  SetPrevValue(session, "CommonDialogPath", kFolderKey, folder);
  ExelReportRequest request;
  request.Params = EnteredParams();
  request.Axis = bench_.Axis;
  request.Reversed = reversed_->isChecked();
  request.Folder = folder;
  request.Time = Now();
  // Asked from the worker: the desktop opens the workbook on the window's thread.
  request.OpenDocument = [this](const std::filesystem::path& workbook) {
    const QUrl url = QUrl::fromLocalFile(QString::fromStdString(workbook.string()));
    QMetaObject::invokeMethod(this, [url] { QDesktopServices::openUrl(url); }, Qt::QueuedConnection);
  };
  written_.reset();
  writtenNames_->clear();
  auto made = std::make_shared<std::optional<ExelReportFiles>>();
  const auto report = [this, request = std::move(request), made] {
    const workbench::GoOutcome analyses = workbench::RunReportAnalyses(bench_);
    if (analyses != workbench::GoOutcome::Completed) return analyses;
    *made = cmxExlsCreate(bench_.Session(), template_, bench_.List(), request);
    return *made ? workbench::GoOutcome::Completed : workbench::GoOutcome::Failed;
  };
  return window_.StartWork(report, [this, made](workbench::GoOutcome) {
    written_ = std::move(*made);
    if (written_)
      writtenNames_->setText(QString::fromStdString(written_->Workbook.string() + "\n" + written_->Interface.string()));
  });
}

ReportTabPage* AddReportTab(MainWindow& window, workbench::Workbench& bench) { return new ReportTabPage(window, bench); }

}  // namespace velmora::gui
