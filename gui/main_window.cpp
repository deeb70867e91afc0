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
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>

#include "base/path_helpers.h"
#include "base/settings_io.h"
#include "base/startup.h"
#include "gui_settings.h"
#include "output_tabs.h"
#include "project_menu.h"
#include "tab_charts.h"
#include "tab_inputs_form.h"

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
    : QMainWindow(parent), bench_(bench), model_(bench), go_(bench) {
  setWindowTitle(QString::fromStdString(bench_.WindowTitle));
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
  AddOutputTabs(*this, bench_);
  AddProjectMenu(*this, bench_);
  BuildMenu();
  ShowTabsOfMode();
}

MainWindow::~MainWindow() {
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
  page.Chart = new ChartView([this, tab](QSize size) {
    return go_.Busy() ? QImage() : RenderTabChart(bench_, tab, bench_.Selection(tab), size);
  });

  auto* buttons = new QHBoxLayout;
  if (tab == tab::Profile) {
    auto* add = new QPushButton("ERD追加");
    connect(add, &QPushButton::clicked, this, &MainWindow::AddFilesFromDialog);
    buttons->addWidget(add);
  }
  if (info.HasGo) {
    page.Go = new QPushButton("Go");
    page.Go->setObjectName(QString::fromStdString(std::string(workbench::TabTable()[static_cast<std::size_t>(tab)].Go)));
    connect(page.Go, &QPushButton::clicked, this, [this, tab] { StartGo(tab); });
    buttons->addWidget(page.Go);
  }
  buttons->addStretch();

  auto* left = new QWidget;
  auto* leftLayout = new QVBoxLayout(left);
  leftLayout->setContentsMargins(0, 0, 0, 0);
  leftLayout->addWidget(page.List);
  if (QWidget* inputs = MakeTabInputs(bench_, tab)) leftLayout->addWidget(inputs);
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
  else splitter->setSizes({220, 560});
  tabs_->addTab(splitter, info.Caption);

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
  QMenu* menu = menuBar()->addMenu("プロファイル");
  QAction* add = menu->addAction("ERD追加...");
  add->setShortcut(QKeySequence::Open);
  connect(add, &QAction::triggered, this, &MainWindow::AddFilesFromDialog);
  mode_ = menuBar()->addAction(QString::fromStdString(bench_.ModeCaption()));
  connect(mode_, &QAction::triggered, this, &MainWindow::ToggleMode);
}

void MainWindow::ToggleMode() {
  if (go_.Busy()) return;
  bench_.MnuBunseki();
  ShowTabsOfMode();
}

void MainWindow::ShowTabsOfMode() {
  mode_->setText(QString::fromStdString(bench_.ModeCaption()));
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
  if (page.Shown == nullptr) return;
  const int row = ShownProfile(bench_, page.Tab, bench_.Selection(page.Tab));
  page.Shown->setText(row == 0 ? QString()
                               : "表示中のプロファイル：" + QString::fromStdString(ProfileList::NameOf(bench_.List().Items.at(row))));
}

bool MainWindow::AddFiles(const std::vector<std::string>& paths) {
  if (paths.empty() || go_.Busy()) return false;
  model_.BeginListChange();
  const bool ok = bench_.RegisterFiles(paths, true);
  model_.EndListChange();
  SelectEveryRow();
  return ok;
}

void MainWindow::SelectEveryRow() {
  filling_ = true;
  for (const Page& page : pages_) {
    page.List->selectAll();
    page.List->resizeColumnsToContents();
  }
  filling_ = false;
  for (const Page& page : pages_) Redraw(page);
}

void MainWindow::ReplaceProject(const std::function<void()>& change) {
  if (go_.Busy()) return;
  model_.BeginListChange();
  change();
  model_.EndListChange();
  SelectEveryRow();
  setWindowTitle(QString::fromStdString(bench_.WindowTitle));
}

void MainWindow::AddFilesFromDialog() {
  FileDialogRequest request;
  request.Title = "ERDファイル追加";
  request.Filter = "ERDファイル (*.ERD)|*.ERD|すべてのファイル (*.*)|*.*";
  request.MultiSelect = true;
  // The folder of the last files added, as the program remembers it.
  constexpr std::string_view kFolderKey = "ERDファイル追加";
  request.InitialDirectory = GetPrevValue(bench_.Session(), "CommonDialogPath", kFolderKey);
  const std::vector<std::string> files = bench_.Session().Ui().OpenFiles(request);
  if (!files.empty()) SetPrevValue(bench_.Session(), "CommonDialogPath", kFolderKey, flGetPathName(files.front()));
  AddFiles(files);
}

bool MainWindow::TabShown(int tab) const { return bench_.TabEnabled.at(static_cast<std::size_t>(tab)); }

void MainWindow::ShowTab(int tab) {
  if (!TabShown(tab)) return;
  for (std::size_t i = 0; i < pages_.size(); ++i)
    if (pages_[i].Tab == tab) tabs_->setCurrentIndex(static_cast<int>(i));
}

bool MainWindow::StartGo(int tab) {
  if (PageOf(tab) == nullptr) return false;
  const auto post = [this](std::function<void()> task) {
    QMetaObject::invokeMethod(this, std::move(task), Qt::QueuedConnection);
  };
  if (!go_.Start(tab, post, [this, tab](GoOutcome outcome) { GoEnded(tab, outcome); })) return false;
  // As the progress display disables the tab control: no second Go, no change under the worker.
  tabs_->setEnabled(false);
  menuBar()->setEnabled(false);
  return true;
}

void MainWindow::GoEnded(int tab, GoOutcome outcome) {
  lastOutcome_ = outcome;
  tabs_->setEnabled(true);
  menuBar()->setEnabled(true);
  if (const Page* page = PageOf(tab)) Redraw(*page);
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
  AddFiles(LocalFiles(event->mimeData()));
  event->acceptProposedAction();
}

}  // namespace velmora::gui
