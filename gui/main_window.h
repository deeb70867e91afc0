#pragma once
// frmTop on the desktop: the tab control over the workbench, a profile list in every tab, a Go
// button that computes on a worker thread while the window stays live, and each tab's chart.
#include <QCoreApplication>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "chart_view.h"
#include "profile_edits.h"
#include "profile_table_model.h"
#include "tab_charts.h"
#include "workbench/background_go.h"
#include "workbench/engine_bindings.h"
#include "workbench/workbench.h"

namespace velmora::gui {

class MainWindow final : public QMainWindow {
  Q_DECLARE_TR_FUNCTIONS(MainWindow)

 public:
  // The workbench has been loaded (FormLoad); its session's interaction answers for the window.
  explicit MainWindow(workbench::Workbench& bench, QWidget* parent = nullptr);
  // A Go still running is stopped and its end awaited first.
  ~MainWindow() override;

  // Registers ERD files as "add profiles" does and selects every profile in every tab's list.
  // False when a file could not be registered (the engine has said why).
  bool AddFiles(const std::vector<std::string>& paths);
  // The file dialog of "add profiles"; delimited text files among the chosen go to the import wizard.
  void AddFilesFromDialog();
  // A change of the list's items (registration, import, a tool, an edit) with every tab's list refilled
  // after it: with `selectAll` each list selects every profile, otherwise the rows the workbench keeps
  // selected. The change's result; false without running it while a Go runs.
  bool ChangeProfiles(const std::function<bool()>& change, bool selectAll);
  // The menu's dialogs: 計算条件の設定 and mnuToolSub(tool), both modal.
  void EditConditions();
  void OpenTool(int tool) { bench_.MnuTool(tool); }
  ProfileEdits* Edits() const { return profileEdits_; }
  // Enters a tab of the workbench (its index in the tab table); a tab of the other mode is not entered.
  void ShowTab(int tab);
  // Whether the tab is offered in the mode now (after start the PSD tab waits for two mode changes).
  bool TabShown(int tab) const;
  // mnuBunseki: toggles profile analysis and repair-shape study, and the tabs shown for each.
  void ToggleMode();
  // Starts the Go of a tab on the worker; false while another runs or the tab has no page.
  bool StartGo(int tab);
  // Runs `work`, which drives the workbench as a Go does, on the worker with the window's controls off;
  // `ended` follows on this thread. False while a Go runs.
  bool StartWork(std::function<workbench::GoOutcome()> work, std::function<void(workbench::GoOutcome)> ended);
  bool GoBusy() const { return go_.Busy(); }
  // Runs the event loop until the running Go has ended; its outcome.
  workbench::GoOutcome WaitForGo();
  workbench::GoOutcome LastOutcome() const { return lastOutcome_; }

  QTableView* ListOf(int tab) const;
  ChartView* ChartOf(int tab) const;
  QPushButton* GoButtonOf(int tab) const;  // null for tabs without one
  QLabel* ShownOf(int tab) const;          // null for tabs that draw all selected profiles
  QTabWidget* Tabs() const { return tabs_; }

  // A list of the registered profiles, as every tab shows it, for a page made elsewhere.
  QTableView* NewProfileList();
  // A page made elsewhere (statistics, report, print) placed among the analysis tabs in tab order:
  // `list` (from NewProfileList) gives the tab's selection, `go` (may be null) starts its Go, and
  // `refresh` shows its results after a Go or a change of its selection.
  void AddOwnPage(int tab, const QString& caption, QWidget* page, QTableView* list, QPushButton* go,
                  std::function<void()> refresh);
  // The project was replaced under the lists (new, open): the lists, their selections (every row in
  // every tab), the charts and the title follow the workbench. `change` runs between the list's reset marks.
  void ReplaceProject(const std::function<void()>& change);
  // The mode's tabs shown again (the workbench's TabEnabled may have changed).
  void ShowTabsOfMode();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  struct Page {
    int Tab = 0;
    QTableView* List = nullptr;
    QPushButton* Go = nullptr;
    ChartView* Chart = nullptr;
    QLabel* Shown = nullptr;  // per-profile charts: which profile is drawn
    std::function<void()> Refresh;  // pages without a chart: how they show their results
  };
  void AddPage(const TabPage& info, bool allColumns);
  void SelectionChanged(const Page& page);
  void Redraw(const Page& page);
  void GoEnded(int tab);
  // An adjustment point of the M-wave chart dropped at a new height: the study follows, then the ideal shape.
  void MoveMWavePoint(const ChartHandle& point, double height);
  // The chosen study of the shown profile, or its M', has changed: the chart, then the ideal shape.
  void StudyChanged();
  void BuildMenu();
  const Page* PageOf(int tab) const;
  void TakeFiles(const std::vector<std::string>& paths);
  // A change that adds profiles: every list selects them all afterwards, as added files are.
  ListChange AddingProfiles();
  void WatchSelection(const Page& page);

  workbench::Workbench& bench_;
  workbench::EngineBindings bindings_;
  ProfileTableModel model_;
  ProfileEdits* profileEdits_ = nullptr;
  QTabWidget* tabs_ = nullptr;
  std::vector<Page> pages_;  // in the order of the tab control
  QAction* mode_ = nullptr;  // mnuBunseki, its caption the mode
  workbench::BackgroundGo go_;
  workbench::GoOutcome lastOutcome_ = workbench::GoOutcome::Failed;
  bool filling_ = false;  // the lists are being filled: selection events only record
};

}  // namespace velmora::gui
