#include "main_window.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMenuBar>
#include <QMimeData>
#include <QScrollArea>
#include <QStatusBar>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>

#include "base/common.h"
#include "base/path_helpers.h"
#include "base/settings_io.h"
#include "base/startup.h"
#include "chart_readout.h"
#include "conditions_dialog.h"
#include "gui_settings.h"
#include "import_wizard.h"
#include "m_wave_points.h"
#include "output_tabs.h"
#include "project_menu.h"
#include "qt_interaction.h"
#include "study_choice.h"
#include "tab_charts.h"
#include "tab_inputs_form.h"
#include "tool_dialogs.h"

namespace velmora::gui {
namespace {

using workbench::GoOutcome;
namespace tab = workbench::tab;

std::vector<std::string> LocalFiles(const QMimeData* data) {
  std::vector<std::string> files;
  if (data == nullptr || !data->hasUrls()) return files;
  for (const QUrl& url : data->urls())
    if (url.isLocalFile()) files.push_back(url.toLocalFile().toStdString());
  return files;
}

}  // namespace

MainWindow::MainWindow(workbench::Workbench& bench, QWidget* parent)
    : QMainWindow(parent), bench_(bench), bindings_(bench), model_(bench), go_(bench) {
  setWindowTitle(DialogText(bench_.WindowTitle));
  setAcceptDrops(true);
  RestoreWindowSettings(bench_, *this);
  tabs_ = new QTabWidget(this);
  setCentralWidget(tabs_);
  AddPage(ProfilePage(), true);
  for (const TabPage& page : AnalysisPages()) AddPage(page, false);
  for (const TabPage& page : RepairPages()) AddPage(page, false);
  connect(tabs_, &QTabWidget::currentChanged, this, [this](int index) {
    if (index < 0 || static_cast<std::size_t>(index) >= pages_.size()) return;
    const Page& page = pages_[static_cast<std::size_t>(index)];
    bench_.TabClick(page.Tab);
    Redraw(page);
  });
  bindings_.RunConditionsDialog = [this](ConditionsDialog& engine) { ConditionsForm(engine, this).exec(); };
  bench_.Hooks.OpenTool = [this](int tool, const Array1<ProfileRecord>&) {
    const auto dialog = MakeToolDialog(tool, bench_, AddingProfiles(), this);
    if (dialog) dialog->exec();
  };
  AddOutputTabs(*this, bench_);
  AddProjectMenu(*this, bench_);
  BuildMenu();
  ShowTabsOfMode();
}

MainWindow::~MainWindow() {
  bench_.Hooks.OpenTool = nullptr;
  // The worker waits for its answers on this thread: let it finish before the window goes.
  go_.RequestStop();
  while (go_.Busy()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void MainWindow::AddPage(const TabPage& info, bool allColumns) {
  const int tab = info.Index;
  Page page{tab, NewProfileList(), nullptr, nullptr, nullptr, {}};
  for (int column = ProfileTableModel::Name + 1; allColumns && column < ProfileTableModel::ColumnCount; ++column)
    page.List->showColumn(column);
  // While a Go runs the worker writes into the records: the chart waits for the end of the Go.
  page.Chart = new ChartView([this, tab](QSize size, graph::ChartWindow& window) {
    return go_.Busy() ? QImage() : RenderTabChart(bench_, tab, bench_.Selection(tab), size, &window);
  });
  page.Chart->SetReadout([this, tab](const std::optional<ChartPoint>& point) {
    statusBar()->showMessage(point ? ReadoutText(bench_, tab, *point) : QString());
  });
  if (tab == tab::MediumWave)
    page.Chart->SetHandles([this] { return AdjustmentHandles(bench_); },
                           [this](const ChartHandle& point, double height) { MoveMWavePoint(point, height); });

  auto* buttons = new QHBoxLayout;
  if (tab == tab::Profile) {
    auto* add = new QPushButton(tr("ERD追加"));
    connect(add, &QPushButton::clicked, this, &MainWindow::AddFilesFromDialog);
    buttons->addWidget(add);
  }
  if (info.HasGo) {
    page.Go = new QPushButton(tr("Go"));
    page.Go->setObjectName(QString::fromStdString(std::string(workbench::TabTable()[static_cast<std::size_t>(tab)].Go)));
    connect(page.Go, &QPushButton::clicked, this, [this, tab] { StartGo(tab); });
    buttons->addWidget(page.Go);
  }
  buttons->addStretch();

  auto* left = new QWidget;
  auto* leftLayout = new QVBoxLayout(left);
  leftLayout->setContentsMargins(0, 0, 0, 0);
  if (tab == tab::Profile) {
    auto* listRow = new QHBoxLayout;
    listRow->addWidget(page.List, 2);
    profileEdits_ = new ProfileEdits(bench_, bindings_, page.List,
                                     [this](const auto& change) { return ChangeProfiles(change, false); });
    listRow->addWidget(profileEdits_, 3);
    leftLayout->addLayout(listRow);
  } else {
    leftLayout->addWidget(page.List);
  }
  if (QWidget* inputs = MakeTabInputs(bench_, tab)) leftLayout->addWidget(inputs);
  if (tab == tab::MediumWave) {
    leftLayout->addWidget(new QLabel(tr("M波選択(検討対象)")));
    leftLayout->addWidget(new StudyChoice(bench_, [this] { StudyChanged(); }));
  }
  leftLayout->addLayout(buttons);
  auto* splitter = new QSplitter(tab == tab::Profile ? Qt::Vertical : Qt::Horizontal);
  splitter->addWidget(left);
  if (info.StackHeight > 0) {
    page.Chart->setMinimumHeight(info.StackHeight);
    auto* scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setWidget(page.Chart);
    page.Shown = new QLabel;
    auto* right = new QWidget;
    auto* rightLayout = new QVBoxLayout(right);
    rightLayout->setContentsMargins(0, 0, 0, 0);
    rightLayout->addWidget(page.Shown);
    rightLayout->addWidget(scroll);
    splitter->addWidget(right);
  } else {
    splitter->addWidget(page.Chart);
  }
  splitter->setStretchFactor(1, 1);
  if (tab != tab::Profile) splitter->setSizes({220, 980});
  else splitter->setSizes({300, 480});
  tabs_->addTab(splitter, CaptionOf(info));

  pages_.push_back(page);
  WatchSelection(page);
}

QTableView* MainWindow::NewProfileList() {
  auto* list = new QTableView;
  list->setModel(&model_);
  list->setSelectionBehavior(QAbstractItemView::SelectRows);
  list->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list->verticalHeader()->hide();
  list->horizontalHeader()->setStretchLastSection(true);
  for (int column = ProfileTableModel::Name + 1; column < ProfileTableModel::ColumnCount; ++column) list->hideColumn(column);
  return list;
}

void MainWindow::AddOwnPage(int tab, const QString& caption, QWidget* page, QTableView* list, QPushButton* go,
                            std::function<void()> refresh) {
  // In tab order among the analysis tabs; the study's tabs are never shown beside them.
  const auto later = std::find_if(pages_.begin(), pages_.end(), [tab](const Page& p) {
    return p.Tab > tab && workbench::TabTable()[static_cast<std::size_t>(p.Tab)].Group != workbench::TabGroup::Repair;
  });
  const int position = static_cast<int>(later - pages_.begin());
  if (go != nullptr) {
    go->setObjectName(QString::fromStdString(std::string(workbench::TabTable()[static_cast<std::size_t>(tab)].Go)));
    connect(go, &QPushButton::clicked, this, [this, tab] { StartGo(tab); });
  }
  // The page is known before the tab control reports its new place.
  pages_.insert(later, Page{tab, list, go, nullptr, nullptr, std::move(refresh)});
  tabs_->insertTab(position, page, caption);
  WatchSelection(pages_[static_cast<std::size_t>(position)]);
}

void MainWindow::WatchSelection(const Page& page) {
  connect(page.List->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          [this, tab = page.Tab] { SelectionChanged(*PageOf(tab)); });
}

void MainWindow::BuildMenu() {
  QMenu* menu = menuBar()->addMenu(tr("プロファイル"));
  QAction* add = menu->addAction(tr("ERD追加..."));
  add->setShortcut(QKeySequence::Open);
  connect(add, &QAction::triggered, this, &MainWindow::AddFilesFromDialog);
  QAction* import = menu->addAction(tr("テキストファイル取込..."));
  connect(import, &QAction::triggered, this, [this] {
    FileDialogRequest request;
    request.Title = tr("テキストファイル取込").toStdString();
    request.Filter = tr("テキストファイル (*.txt;*.csv)|*.txt;*.csv|すべてのファイル (*.*)|*.*").toStdString();
    TakeFiles(bench_.Session().Ui().OpenFiles(request));
  });
  connect(menuBar()->addAction(tr("計算条件の設定")), &QAction::triggered, this, &MainWindow::EditConditions);
  QMenu* tools = menuBar()->addMenu(tr("ツール"));
  const char* toolCaptions[] = {QT_TR_NOOP("プロファイル合成"), QT_TR_NOOP("プロファイル高さシフト"), QT_TR_NOOP("プロファイル反転"),
                               QT_TR_NOOP("プロファイル切り出し")};
  for (int tool = 0; tool < 4; ++tool)
    connect(tools->addAction(tr(toolCaptions[tool])), &QAction::triggered, this, [this, tool] { OpenTool(tool); });
  mode_ = menuBar()->addAction(DialogText(bench_.ModeCaption()));
  connect(mode_, &QAction::triggered, this, &MainWindow::ToggleMode);
}

ListChange MainWindow::AddingProfiles() {
  return [this](const std::function<bool()>& change) { return ChangeProfiles(change, true); };
}

void MainWindow::EditConditions() {
  bench_.MnuConditions();
  // A change of the conditions sets the tabs' inputs from them.
  ShowTabInputs(tabs_);
}

void MainWindow::ToggleMode() {
  if (go_.Busy()) return;
  bench_.MnuBunseki();
  ShowTabsOfMode();
}

void MainWindow::ShowTabsOfMode() {
  mode_->setText(DialogText(bench_.ModeCaption()));
  for (std::size_t i = 0; i < pages_.size(); ++i)
    tabs_->setTabVisible(static_cast<int>(i), bench_.TabEnabled[static_cast<std::size_t>(pages_[i].Tab)]);
}

void MainWindow::SelectionChanged(const Page& page) {
  std::vector<int> rows;
  for (const QModelIndex& index : page.List->selectionModel()->selectedRows()) rows.push_back(index.row() + 1);
  std::sort(rows.begin(), rows.end());
  bench_.Select(page.Tab, rows);
  if (filling_) return;
  // The PSD tab has no Go button: a click in its list computes what is missing.
  if (page.Tab == tab::Psd && !rows.empty() && tabs_->currentWidget() == page.Chart->parentWidget()) {
    StartGo(tab::Psd);
    return;
  }
  Redraw(page);
}

void MainWindow::Redraw(const Page& page) {
  if (page.Refresh) {
    page.Refresh();
    return;
  }
  page.Chart->Refresh();
  // The study list follows the profile shown and its studies. (It has no meta-object of its own.)
  if (page.Tab == tab::MediumWave)
    if (auto* choice = dynamic_cast<StudyChoice*>(findChild<QComboBox*>("mWaveChoice"))) choice->Refill();
  if (page.Shown == nullptr) return;
  const int row = ShownProfile(bench_, page.Tab, bench_.Selection(page.Tab));
  page.Shown->setText(row == 0 ? QString()
                               : tr("表示中のプロファイル：") +
                                     QString::fromStdString(ProfileList::NameOf(bench_.List().Items.at(row))));
}

bool MainWindow::AddFiles(const std::vector<std::string>& paths) {
  if (paths.empty()) return false;
  return ChangeProfiles([&] { return bench_.RegisterFiles(paths, true); }, true);
}

bool MainWindow::ChangeProfiles(const std::function<bool()>& change, bool selectAll) {
  if (go_.Busy()) return false;
  model_.BeginListChange();
  const bool changed = change();
  model_.EndListChange();
  filling_ = true;
  for (const Page& page : pages_) {
    if (selectAll) {
      page.List->selectAll();
    } else {
      QItemSelection rows;
      for (int row : bench_.Selection(page.Tab)) rows.select(model_.index(row - 1, 0), model_.index(row - 1, 0));
      page.List->selectionModel()->select(rows, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
    page.List->resizeColumnsToContents();
  }
  filling_ = false;
  for (const Page& page : pages_) Redraw(page);
  return changed;
}

// As "add profiles" takes files: the ERD files are registered together, delimited text files go
// through the import wizard one at a time, and other kinds are left out.
void MainWindow::TakeFiles(const std::vector<std::string>& paths) {
  std::vector<std::string> profiles;
  std::vector<std::string> texts;
  for (const std::string& path : paths) {
    const std::string extension = UCase(flGetExtension(path));
    if (extension == "ERD") profiles.push_back(path);
    else if (extension == "CSV" || extension == "TXT") texts.push_back(path);
  }
  if (!profiles.empty()) AddFiles(profiles);
  for (const std::string& text : texts)
    RunImportWizard(bench_, text, AddingProfiles(), this);
}

void MainWindow::ReplaceProject(const std::function<void()>& change) {
  if (!ChangeProfiles([&] { change(); return true; }, true)) return;
  setWindowTitle(DialogText(bench_.WindowTitle));
  // New and open reset the tabs' inputs from the conditions they bring.
  ShowTabInputs(tabs_);
}

void MainWindow::AddFilesFromDialog() {
  FileDialogRequest request;
  request.Title = tr("ERDファイル追加").toStdString();
  request.Filter =
      tr("ERDファイル (*.ERD)|*.ERD|テキストファイル (*.txt;*.csv)|*.txt;*.csv|すべてのファイル (*.*)|*.*").toStdString();
  request.MultiSelect = true;
  // The folder of the last files added, as the program remembers it.
  constexpr std::string_view kFolderKey = "ERDファイル追加";
  request.InitialDirectory = GetPrevValue(bench_.Session(), "CommonDialogPath", kFolderKey);
  const std::vector<std::string> files = bench_.Session().Ui().OpenFiles(request);
  if (!files.empty()) SetPrevValue(bench_.Session(), "CommonDialogPath", kFolderKey, flGetPathName(files.front()));
  TakeFiles(files);
}

bool MainWindow::TabShown(int tab) const { return bench_.TabEnabled.at(static_cast<std::size_t>(tab)); }

void MainWindow::ShowTab(int tab) {
  if (!TabShown(tab)) return;
  for (std::size_t i = 0; i < pages_.size(); ++i)
    if (pages_[i].Tab == tab) tabs_->setCurrentIndex(static_cast<int>(i));
}

bool MainWindow::StartGo(int tab) {
  if (PageOf(tab) == nullptr) return false;
  return StartWork([this, tab] { return bench_.RunGo(tab); }, [this, tab](GoOutcome) { GoEnded(tab); });
}

bool MainWindow::StartWork(std::function<GoOutcome()> work, std::function<void(GoOutcome)> ended) {
  const auto post = [this](std::function<void()> task) {
    QMetaObject::invokeMethod(this, std::move(task), Qt::QueuedConnection);
  };
  const auto end = [this, ended = std::move(ended)](GoOutcome outcome) {
    lastOutcome_ = outcome;
    tabs_->setEnabled(true);
    menuBar()->setEnabled(true);
    if (ended) ended(outcome);
  };
  if (!go_.StartWork(std::move(work), post, end)) return false;
  // As the progress display disables the tab control: no second Go, no change under the worker.
  tabs_->setEnabled(false);
  menuBar()->setEnabled(false);
  return true;
}

void MainWindow::GoEnded(int tab) {
  // The tab on screen may show what the Go made (the M-wave chart shows the ideal shape).
  for (const Page& page : pages_)
    if (page.Tab == tab || (page.Chart != nullptr && page.Chart->isVisible())) Redraw(page);
}

void MainWindow::MoveMWavePoint(const ChartHandle& point, double height) {
  if (go_.Busy() || !MoveAdjustmentPoint(bench_, point.Id, height)) {
    ChartOf(tab::MediumWave)->update();  // the point goes back where it was
    return;
  }
  StudyChanged();
}

void MainWindow::StudyChanged() {
  Redraw(*PageOf(tab::MediumWave));
  const int row = AdjustedProfile(bench_);
  if (row != 0 && bench_.List().Items.at(row).RepairStudy.IdealValid) StartGo(tab::IdealShape);
}

GoOutcome MainWindow::WaitForGo() {
  while (go_.Busy()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  return lastOutcome_;
}

const MainWindow::Page* MainWindow::PageOf(int tab) const {
  const auto found = std::find_if(pages_.begin(), pages_.end(), [tab](const Page& page) { return page.Tab == tab; });
  return found == pages_.end() ? nullptr : &*found;
}

QTableView* MainWindow::ListOf(int tab) const { return PageOf(tab) ? PageOf(tab)->List : nullptr; }
ChartView* MainWindow::ChartOf(int tab) const { return PageOf(tab) ? PageOf(tab)->Chart : nullptr; }
QPushButton* MainWindow::GoButtonOf(int tab) const { return PageOf(tab) ? PageOf(tab)->Go : nullptr; }
QLabel* MainWindow::ShownOf(int tab) const { return PageOf(tab) ? PageOf(tab)->Shown : nullptr; }

void MainWindow::closeEvent(QCloseEvent* event) {
  if (go_.Busy() || !ConfirmExit(bench_.Session())) {
    event->ignore();
    return;
  }
  SaveWindowSettings(bench_, *this);
  event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (!LocalFiles(event->mimeData()).empty() && !go_.Busy()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  TakeFiles(LocalFiles(event->mimeData()));
  event->acceptProposedAction();
}

}  // namespace velmora::gui
