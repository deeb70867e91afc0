#pragma once
// The main window's logic without a screen. Every control is a public field or a setter, every event
// an operation. A front end (the command line today, a desktop GUI later) sets parameters and calls
// operations; the computations are the analyses' own, reached through one TabComputation per tab.
#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/session.h"
#include "base/settings.h"
#include "profile/profile_edit.h"
#include "profile/profile_list.h"
#include "profile/profile_record.h"
#include "profile/profile_tools.h"
#include "profile/text_import.h"
#include "report/position_axis.h"
#include "report/project_record.h"
#include "workbench/evaluation_tabs.h"
#include "workbench/repair_inputs.h"
#include "workbench/tab_inputs.h"
#include "workbench/tab_table.h"

namespace velmora::workbench {

enum class WorkMode { ProfileAnalysis, RepairStudy };
// How a Go ended. Cancelled: the progress display asked to stop, and the profiles, their results and
// the conditions are as they were before the Go.
enum class GoOutcome { Completed, Failed, Cancelled };
inline constexpr std::string_view kCaptionAnalysis = "●プロファイル分析　○補修形状検討";
inline constexpr std::string_view kCaptionRepair = "○プロファイル分析　●補修形状検討";
inline constexpr std::string_view kTitleNew = " velmora : [ 新規作成 ]";
inline constexpr std::string_view kPleaseWait = "しばらくお待ちください。";

// What a tab computes for one profile. The key is a text of everything the result depends on; a
// profile whose stored key equals the current one keeps its results (no recomputation).
struct TabComputation {
  std::string ProgressTitle;
  std::string ProgressMessage{kPleaseWait};
  std::function<bool()> StoreInputs;           // Go step 2: inputs → conditions, validators; false stops
  std::function<std::string()> InputKey;       // the current inputs as a comparable text
  // Computes one profile and stores into its record. False: it failed and has said so (logged);
  // an exception is a failure the workbench logs.
  std::function<bool(ProfileRecord&)> Compute;
  // Instead of Compute: one run over all rows that need it, which shows its own progress and reports
  // its own failures (false).
  std::function<bool(const std::vector<ProfileRecord*>&)> ComputeRows;
  bool AllProfiles = false;                    // every registered profile, not only the selected rows
  std::function<void()> AfterSelect;           // what else follows the rows picked in the tab's list
};

// The project as of the last load or save, to tell whether it has changed since: what the project
// file keeps of the profiles, and the conditions in force.
struct ProjectSnapshot {
  ProfileList Profiles;
  CalcConditions Conditions;
};

// Hooks into other parts of the program; each defaults to doing nothing.
struct WorkbenchHooks {
  std::function<void(int tab)> Draw;                    // the charts of a tab (drawing layer)
  std::function<void(int code)> CheckTabInputs;          // ChkDatColours on leaving tabs 1, 2, 4
  std::function<void(int row)> StoreProfileBoxes;        // profile tab boxes → record
  std::function<void()> ClearProfileBoxes;               // form reset, step 1
  std::function<bool()> EditConditions;                  // frm計算条件; true when conditions changed
  std::function<void(int tool, const Array1<ProfileRecord>& inputs)> OpenTool;  // mnuToolSub(i)
  std::function<void()> ShowAbout;
};

class Workbench {
 public:
  // The session holds the settings, conditions, folders and interaction the workbench works with; it
  // outlives the workbench.
  explicit Workbench(velmora::Session& session);
  // The installed computations refer to this object: it stays where it was made.
  Workbench(const Workbench&) = delete;
  Workbench& operator=(const Workbench&) = delete;

  // ---- state of the form ----
  std::array<bool, kTabCount> TabDirty{};
  bool LoadingProfile = false;
  int CurrentTab = tab::Profile;
  int PreviousTab = tab::Profile;
  std::array<bool, kTabCount> TabEnabled{};
  WorkMode Mode = WorkMode::ProfileAnalysis;
  bool RepairRangeVisible = false;   // frame_補修計画範囲 and chk補修計画範囲
  bool DispGrpVisible = true;        // chkDispGrp shown on the current tab
  bool DispGrp = false;              // chkDispGrp "グラフを描画しない": compute, do not draw
  // A stopped Go puts back everything it changed, from a copy of the profile list taken before it
  // computes. A front end that ends when a Go is stopped (the command line) turns this off and
  // saves the copy: on a long profile with its results it is the size of the whole list.
  bool UndoStoppedGo = true;
  int VisiblePanel = tab::Profile;   // pnlTab(i)
  std::string WindowTitle{kTitleNew};
  std::array<bool, 7> ProjectCommandEnabled{};  // cmdProject(0..6)
  PositionAxis Axis;
  bool KpUnitVisible = false;        // pivMKM and both optKP単位
  std::array<bool, 5> StatisticsMarks{};  // chk統計値: 平均, 分散(σ), 最大, 最小, IRI
  std::vector<std::string> StatisticsSortProfile;  // lst並順 of the profile page
  std::vector<std::string> StatisticsSortIri;      // lst並順 of the IRI page
  std::vector<std::string> PrintForms;             // cboPrintOut
  std::vector<std::string> PsdLegend;              // tab 5's legend: the shown profiles
  std::vector<std::string> ReportProfileRows;      // tab 8's ssProfile情報 rows

  FilterTabInputs Filter;
  OctaveTabInputs Octave;
  BandTabInputs Band;
  PsdTabInputs Psd;
  IriTabInputs Iri;
  RepairTabInputs Repair;  // tabs 10 to 13
  EvaluationTabs Evaluation;         // tabs 7 and 14: controls and last results

  WorkbenchHooks Hooks;

  velmora::Session& Session() const { return session_; }

  // ---- profiles: row i (from 1) of every tab's list is item i of the list ----
  const ProfileList& List() const { return list_; }
  // The working project record: its profiles are List().
  const ProjectRecord& Project() const { return project_; }
  int ProfileCount() const { return list_.Count(); }
  ProfileRecord& Profile(int row) { return list_.Items.at(row); }
  // Registers ERD files through the profile list (AddProfileList); every tab becomes dirty and a
  // replaced profile loses its results. False when a file could not be registered.
  bool RegisterFiles(const std::vector<std::string>& paths, bool ask);
  // A tool's "登録": asks, writes the new profiles into TempPath and registers them as RegisterFiles.
  bool RegisterToolOutputs(const std::vector<ToolOutput>& outputs);
  // Delimited text into profiles (text import): the file's columns are checked against `options`
  // (a refusal says why), written as ERD files in TempPath and registered. The written files, or none.
  std::vector<std::string> ImportText(const std::string& file, const ImportOptions& options);
  // The profile tab's list buttons (profile_list_edits.cpp): リネーム of one row, 登録解除 of rows, and
  // ▲ (0) / ▼ (1) of one row. The results' keys and every tab's selection follow the rows, and every
  // tab becomes dirty. False when nothing changed (cancelled, or the button is not enabled).
  bool RenameProfile(int row);
  bool RemoveProfiles(const std::vector<int>& rows);
  bool MoveProfile(int row, int button);
  // ﾌｧｲﾙ出力 of the rows: each as an ERD file in a folder, or all side by side in one CSV, through the
  // list's own dialogs. The list itself does not change.
  void ExportProfiles(const std::vector<int>& rows, ProfileExportFormat format);
  // PMS追加: answered with the program's standing refusal.
  void AddPmsProfiles();
  // Registers a profile already read (tools, the repair study's results); all tabs become dirty.
  void AddProfile(ProfileRecord record);
  // Replaces the working project by one that was read whole (a project file opened): its profiles
  // fill every list in order with their colours, no result is valid, every tab is dirty.
  void InstallProject(ProjectRecord project);
  // The selected rows (from 1) of a tab's list, ascending.
  const std::vector<int>& Selection(int tab) const { return selection_.at(static_cast<std::size_t>(tab)); }
  void Select(int tab, std::vector<int> rows);
  void SelectAll(int tab);

  // ---- operations ----
  void FormLoad();     // frmTop load: flags, reset, tab availability
  void FormReset();    // the reset at start, New and Open
  void MnuBunseki();   // toggles the mode and the tabs of each mode
  std::string ModeCaption() const;
  void TabClick(int newTab);           // SSTab1 click
  bool Go(int tab);                    // the Go button of a tab; true when it ran to the end
  bool StoreInputs(int tab);           // Go's check of the tab's inputs alone (stored when valid)
  GoOutcome RunGo(int tab);            // the same, telling a stop from a failure
  bool ListClick(int tab, std::vector<int> rows);  // a click in a tab's list: redraw from results
  void ProfileEdited(int row);         // an edit of WorkProfile, StepSize or KP data
  void ClearPositionBoxes(ErdRecord& erd);          // cmd位置情報クリア
  void MarkAllDirty();
  void ConditionsChanged();            // frm計算条件 applied: flags only, work happens on entry
  void SetPositionMode(PositionMode mode);
  void SetKpUnit(KpUnit unit);
  void SetXReversed(bool reversed);
  // Menu actions.
  void MnuConditions();
  void MnuTool(int index);
  void MnuAbout();

  // The project snapshot as of the last load or save; ProjectChanged() tells whether the profiles
  // (by the deep compare of the project commands) or the conditions differ from it.
  void TakeProjectSnapshot();
  bool ProjectChanged() const;

  // The computation behind a tab's Go and redraw; installed by the analyses (InstallAnalyses).
  void SetComputation(int tab, TabComputation computation);
  bool HasComputation(int tab) const;
  // Number of Compute calls since construction, per tab (for front ends' summaries and tests).
  int ComputeCount(int tab) const { return computeCount_.at(static_cast<std::size_t>(tab)); }

 private:
  // Everything a computation writes, for putting back after a stop.
  struct WorkState {
    ProfileList List;
    std::vector<std::array<std::string, kTabCount>> ResultKeys;
    EvaluationTabs Evaluation;
    RepairTabInputs Repair;
    CalcConditions Conditions;
  };
  WorkState SaveWorkState() const;
  void RestoreWorkState(WorkState&& state);
  LegacyError OutOfMemoryFor(const std::vector<int>& rows) const;

  bool Redraw(int tab, bool alwaysShowProgress);
  GoOutcome RedrawOutcome(int tab, bool alwaysShowProgress);
  void RunComputation(int tab, bool alwaysShowProgress);
  void DrawTab(int tab);
  void UpdatePsdLegend();
  void RefillReportRows();
  void InputsFromConditions();

  void KeepKeysInStep();
  void AppendListRow(const std::string& name);  // one row with its colour panel in every view

  velmora::Session& session_;
  ProjectRecord project_;
  ProfileList& list_ = project_.Profiles;
  std::vector<std::array<std::string, kTabCount>> resultKeys_;  // per item (from 0): key of its results
  std::array<std::vector<int>, kTabCount> selection_;
  std::array<TabComputation, kTabCount> computations_;
  std::array<int, kTabCount> computeCount_{};
  ProjectSnapshot snapshot_;
};

// Wires the analyses that exist into the workbench's tabs.
void InstallAnalyses(Workbench& workbench);
// The statistics (tab 7) and cross-correlation (tab 14) tabs; evaluation_hooks.cpp.
void InstallEvaluation(Workbench& workbench);
// The repair-shape study's tabs 10 to 13; repair_hooks.cpp.
void InstallRepair(Workbench& workbench);

}  // namespace velmora::workbench
