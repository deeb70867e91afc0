#include "workbench/workbench.h"

#include <algorithm>
#include <new>
#include <stdexcept>

#include <fmt/format.h>

#include "base/error_log.h"
#include "base/path_helpers.h"
#include "base/progress.h"
#include "base/user_interaction.h"

namespace velmora::workbench {
namespace {

constexpr std::string_view kModule = "frmTop";

std::size_t At(int tab) {
  if (tab < 0 || tab >= kTabCount) RaiseSubscriptOutOfRange("SSTab1 " + std::to_string(tab));
  return static_cast<std::size_t>(tab);
}

// The handler name under which a tab's failures are logged.
std::string HandlerName(int tab) {
  const TabInfo& info = TabTable()[At(tab)];
  if (!info.Go.empty()) return std::string(info.Go) + "_Click";
  return std::string(info.Redraw);
}

}  // namespace

Workbench::Workbench(velmora::Session& session) : session_(session) {
  TabDirty.fill(true);
  InstallAnalyses(*this);
}

void Workbench::KeepKeysInStep() { resultKeys_.resize(static_cast<std::size_t>(list_.Count())); }

bool Workbench::RegisterFiles(const std::vector<std::string>& paths, bool ask) {
  // A file of a name already listed replaces that item: its results go with it.
  for (const std::string& path : paths) {
    const std::int32_t hit = list_.Find(flGetFileNameNonExt(path));
    if (hit > 0 && static_cast<std::size_t>(hit) <= resultKeys_.size())
      resultKeys_[static_cast<std::size_t>(hit - 1)].fill(std::string());
  }
  const bool ok = AddProfileList(session_, list_, paths, ask);
  KeepKeysInStep();
  MarkAllDirty();
  return ok;
}

std::vector<std::string> Workbench::ImportText(const std::string& file, const ImportOptions& options) {
  const ImportPreview preview = BuildImportPreview(file, options);
  if (CheckImport(session_, preview, options) >= 0) return {};
  std::vector<std::string> written = WriteImportedProfiles(session_, file, preview, options, list_);
  // Registration reads every file back, so a column that did not make a valid profile fails here.
  if (!RegisterFiles(written, false)) return {};
  return written;
}

bool Workbench::RegisterToolOutputs(const std::vector<ToolOutput>& outputs) {
  return velmora::RegisterToolOutputs(session_, outputs, [this](const std::vector<std::string>& paths) {
    return RegisterFiles(paths, true);
  });
}

void Workbench::AppendListRow(const std::string& name) {
  for (auto& view : list_.Views) {
    view.Rows.push_back(name);
    view.Panels.push_back(RowColour(static_cast<std::int32_t>(view.Rows.size()),
                                    view.Palette == ListPalette::Profile ? session_.Settings.PaletteProfile
                                                                         : session_.Settings.PaletteRepair));
  }
}

void Workbench::AddProfile(ProfileRecord record) {
  AppendListRow(ProfileList::NameOf(record));
  list_.Items.resize(list_.Count() + 1);
  list_.Items[list_.Count()] = std::move(record);
  KeepKeysInStep();
  MarkAllDirty();
}

void Workbench::InstallProject(ProjectRecord project) {
  ProfileListHooks hooks = list_.Hooks;
  project_ = std::move(project);
  list_.Hooks = std::move(hooks);
  list_.Selected = 0;
  list_.SelectedRows.clear();
  for (auto& view : list_.Views) {
    view.Rows.clear();
    view.Panels.clear();
  }
  for (const ProfileRecord& record : list_.Items) AppendListRow(ProfileList::NameOf(record));
  resultKeys_.clear();
  KeepKeysInStep();
  for (auto& rows : selection_) rows.clear();
  MarkAllDirty();
}

void Workbench::Select(int tab, std::vector<int> rows) {
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  for (int row : rows)
    if (row < 1 || row > list_.Count())
      RaiseSubscriptOutOfRange("list row " + std::to_string(row));
  selection_[At(tab)] = std::move(rows);
}

void Workbench::SelectAll(int tab) {
  std::vector<int> rows;
  for (int row = 1; row <= list_.Count(); ++row) rows.push_back(row);
  Select(tab, std::move(rows));
}

void Workbench::FormLoad() {
  TabDirty.fill(true);
  FormReset();
  // At start tabs 5, 7, 8 and 9 stay off, unlike after a mode change: kept as the program has it.
  TabEnabled.fill(false);
  for (int t : {tab::Profile, tab::Filter, tab::Octave, tab::BandReduction, tab::Iri, tab::Verification})
    TabEnabled[At(t)] = true;
  Mode = WorkMode::ProfileAnalysis;
  RepairRangeVisible = false;
  // The empty project of a fresh start is as saved: opening one asks about nothing.
  TakeProjectSnapshot();
}

void Workbench::FormReset() {
  if (Hooks.ClearProfileBoxes) Hooks.ClearProfileBoxes();
  list_.Clear();
  resultKeys_.clear();
  for (auto& rows : selection_) rows.clear();
  InputsFromConditions();
  StatisticsSortProfile = {"プロファイル", "帯域", "統計値"};
  StatisticsSortIri = {"プロファイル", "IRI算出基準長", "帯域", "統計値"};
  PrintForms = {"帳票形式(1)"};
  PsdLegend.clear();
  ReportProfileRows.clear();
  // The study's lists and output buttons empty; no profile holds a split, so the stored values are
  // those of the boxes and the first Go finds nothing to clear.
  Repair.StudyTargets.clear();
  Repair.MWaveChoices.clear();
  Repair.OutputEnabled.fill(false);
  Repair.LastRunReset = false;
  Repair.Stored = ThreeWaveParamsFromConditions(session_.CurrentConditions);
  TabDirty.fill(true);
  PreviousTab = CurrentTab;
  CurrentTab = tab::Profile;
  VisiblePanel = tab::Profile;
  WindowTitle = std::string(kTitleNew);
  ProjectCommandEnabled.fill(true);
  for (int i = 3; i <= 6; ++i) ProjectCommandEnabled[static_cast<std::size_t>(i)] = false;
}

void Workbench::InputsFromConditions() {
  const CalcConditions& conditions = session_.CurrentConditions;
  Filter.LongCut = std::to_string(conditions.FilterLong);
  Filter.ShortCut = std::to_string(conditions.FilterShort);
  Iri.EvalLength = fmt::format("{}", conditions.Iri.IriBaseLength);
  for (int k = 1; k <= 9; ++k) {
    const double line = conditions.BandLines.Value[static_cast<std::size_t>(k)];
    Band.Lines[static_cast<std::size_t>(k)] = IsNoValue(line) ? std::string() : fmt::format("{}", line);
  }
  Repair.Form = ThreeWaveFormFromConditions(conditions);
}

void Workbench::MnuBunseki() {
  const bool toRepair = Mode == WorkMode::ProfileAnalysis;
  for (int t = tab::Filter; t <= tab::Print; ++t) TabEnabled[At(t)] = !toRepair;
  for (int t = tab::ThreeWave; t <= tab::IdealShape; ++t) TabEnabled[At(t)] = toRepair;
  TabEnabled[At(tab::Verification)] = !toRepair;
  RepairRangeVisible = toRepair;
  Mode = toRepair ? WorkMode::RepairStudy : WorkMode::ProfileAnalysis;
}

std::string Workbench::ModeCaption() const {
  return std::string(Mode == WorkMode::ProfileAnalysis ? kCaptionAnalysis : kCaptionRepair);
}

void Workbench::TabClick(int newTab) {
  At(newTab);
  if (newTab == CurrentTab) return;
  PreviousTab = CurrentTab;
  CurrentTab = newTab;
  if (Hooks.CheckTabInputs) {
    if (PreviousTab == tab::Profile) Hooks.CheckTabInputs(1);
    if (PreviousTab == tab::Filter) Hooks.CheckTabInputs(2);
    if (PreviousTab == tab::BandReduction) Hooks.CheckTabInputs(8);
  }
  DispGrpVisible = newTab != tab::Statistics && newTab != tab::Report && newTab != tab::Print &&
                   newTab != tab::Verification;
  const auto& profileRows = selection_[At(tab::Profile)];
  if (PreviousTab == tab::Profile && !profileRows.empty() && Hooks.StoreProfileBoxes)
    Hooks.StoreProfileBoxes(profileRows.front());
  VisiblePanel = newTab;
  const TabInfo& info = TabTable()[At(newTab)];
  if ((info.OnEntry == EntryAction::RedrawWhenDirty || info.OnEntry == EntryAction::RedrawThenLegend) &&
      TabDirty[At(newTab)])
    Redraw(newTab, false);
  if (info.OnEntry == EntryAction::RedrawThenLegend) UpdatePsdLegend();
  if (info.OnEntry == EntryAction::AlwaysRefill) RefillReportRows();
}

bool Workbench::Go(int tab) { return RunGo(tab) == GoOutcome::Completed; }

GoOutcome Workbench::RunGo(int tab) {
  if (LoadingProfile || list_.Count() == 0) return GoOutcome::Failed;
  // A stopped Go leaves the conditions as they were before it stored the tab's inputs.
  CalcConditions conditions = session_.CurrentConditions;
  if (!StoreInputs(tab)) return GoOutcome::Failed;
  const GoOutcome outcome = RedrawOutcome(tab, true);
  if (outcome == GoOutcome::Cancelled) session_.CurrentConditions = std::move(conditions);
  return outcome;
}

bool Workbench::StoreInputs(int tab) {
  const TabComputation& computation = computations_[At(tab)];
  return !computation.StoreInputs || computation.StoreInputs();
}

bool Workbench::ListClick(int tab, std::vector<int> rows) {
  if (LoadingProfile) return false;
  Select(tab, std::move(rows));
  const TabComputation& computation = computations_[At(tab)];
  if (computation.AfterSelect) computation.AfterSelect();
  if (computation.StoreInputs && !computation.StoreInputs()) return false;
  const bool ok = Redraw(tab, false);
  if (tab == tab::Psd) UpdatePsdLegend();
  return ok;
}

bool Workbench::Redraw(int tab, bool alwaysShowProgress) {
  return RedrawOutcome(tab, alwaysShowProgress) == GoOutcome::Completed;
}

Workbench::WorkState Workbench::SaveWorkState() const {
  return {list_, resultKeys_, Evaluation, Repair, session_.CurrentConditions};
}

void Workbench::RestoreWorkState(WorkState&& state) {
  list_ = std::move(state.List);
  resultKeys_ = std::move(state.ResultKeys);
  Evaluation = std::move(state.Evaluation);
  Repair = std::move(state.Repair);
  session_.CurrentConditions = std::move(state.Conditions);
}

// The profiles a computation ran out of memory on, named: the user learns which were too long for
// this machine.
LegacyError Workbench::OutOfMemoryFor(const std::vector<int>& rows) const {
  std::string names;
  for (int row : rows) names += (names.empty() ? "" : ", ") + list_.Items[row].FileName;
  return LegacyError(ErrorNumber::OutOfMemory, fmt::format("{}: {}", names, kOutOfMemoryText));
}

GoOutcome Workbench::RedrawOutcome(int tab, bool alwaysShowProgress) {
  bool progressShown = false;
  // What a computation may change, kept until it ends, so that a stop asked for leaves no trace.
  std::optional<WorkState> before;
  std::vector<int> stale;
  try {
    const TabComputation& computation = computations_[At(tab)];
    if (computation.Compute || computation.ComputeRows) {
      if (!computation.InputKey) throw std::logic_error("no input key for " + HandlerName(tab));
      const std::string key = computation.InputKey();
      std::vector<int> rows = selection_[At(tab)];
      if (computation.AllProfiles) {
        rows.clear();
        for (int row = 1; row <= list_.Count(); ++row) rows.push_back(row);
      }
      for (int row : rows)
        if (resultKeys_[static_cast<std::size_t>(row - 1)][At(tab)] != key) stale.push_back(row);
      if (!stale.empty() && UndoStoppedGo) before = SaveWorkState();
      // A failure leaves no claim of validity behind.
      for (int row : stale) resultKeys_[static_cast<std::size_t>(row - 1)][At(tab)].clear();
      if (computation.ComputeRows) {
        if (!stale.empty()) {
          std::vector<ProfileRecord*> records;
          for (int row : stale) records.push_back(&list_.Items[row]);
          ++computeCount_[At(tab)];
          if (!computation.ComputeRows(records)) return GoOutcome::Failed;
        }
      } else {
        if (alwaysShowProgress || !stale.empty()) {
          session_.Ui().ProgressStart(computation.ProgressTitle, computation.ProgressMessage);
          progressShown = true;
        }
        for (std::size_t s = 0; s < stale.size(); ++s) {
          ReportProgress(session_.Ui(), static_cast<int>(s * 100 / stale.size()));
          ++computeCount_[At(tab)];
          if (!computation.Compute(list_.Items[stale[s]])) {
            session_.Ui().ProgressExit();
            return GoOutcome::Failed;
          }
          resultKeys_[static_cast<std::size_t>(stale[s] - 1)][At(tab)] = key;
        }
        if (progressShown) {
          const bool goOn = session_.Ui().ProgressValue(100);
          session_.Ui().ProgressExit();
          progressShown = false;
          if (!goOn) throw Cancelled();
        }
      }
      for (int row : stale) resultKeys_[static_cast<std::size_t>(row - 1)][At(tab)] = key;
    } else if (alwaysShowProgress && !TabTable()[At(tab)].Go.empty()) {
      throw std::logic_error(HandlerName(tab) + ": this analysis is not available in this build");
    }
    DrawTab(tab);
    TabDirty[At(tab)] = false;
    return GoOutcome::Completed;
  } catch (const Cancelled&) {
    if (progressShown) session_.Ui().ProgressExit();
    if (before) RestoreWorkState(std::move(*before));
    return GoOutcome::Cancelled;
  } catch (const std::exception& error) {
    if (progressShown) session_.Ui().ProgressExit();
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr)
      ErrorLog(session_, kModule, HandlerName(tab), OutOfMemoryFor(stale));
    else
      ErrorLog(session_, kModule, HandlerName(tab), error);
    return GoOutcome::Failed;
  }
}

void Workbench::DrawTab(int tab) {
  if (DispGrp) return;
  if (Hooks.Draw) Hooks.Draw(tab);
}

void Workbench::UpdatePsdLegend() {
  PsdLegend.clear();
  for (int row : selection_[At(tab::Psd)]) PsdLegend.push_back(ProfileList::NameOf(list_.Items[row]));
}

void Workbench::RefillReportRows() {
  ReportProfileRows.clear();
  for (const auto& profile : list_.Items) ReportProfileRows.push_back(ProfileList::NameOf(profile));
}

void Workbench::ProfileEdited(int row) {
  if (LoadingProfile) return;
  resultKeys_.at(static_cast<std::size_t>(row - 1)).fill(std::string());
  list_.Items.at(row).Analysis.Count = 0;  // to be prepared again from the edited profile
  MarkAllDirty();
  Redraw(tab::Profile, false);
}

void Workbench::ClearPositionBoxes(ErdRecord& erd) {
  erd.KpText.clear();
  erd.KpStart = kNoValue;
  erd.RepairRangeText.clear();
  erd.RepairRangeStart = kNoValue;
  erd.RepairRangeEnd = kNoValue;
  erd.Lane = 0;  // "なし"
}

void Workbench::MarkAllDirty() { TabDirty.fill(true); }

void Workbench::ConditionsChanged() { MarkAllDirty(); }

void Workbench::SetPositionMode(PositionMode mode) {
  if (LoadingProfile) return;
  Axis.Mode = mode;
  KpUnitVisible = mode == PositionMode::Kp;
  if (mode == PositionMode::Kp) Axis.Reversed = false;
  MarkAllDirty();
  Redraw(tab::Profile, false);
}

void Workbench::SetKpUnit(KpUnit unit) {
  Axis.Unit = unit;
  DrawTab(CurrentTab);
}

void Workbench::SetXReversed(bool reversed) {
  Axis.Reversed = reversed;
  DrawTab(CurrentTab);
}

void Workbench::MnuConditions() {
  if (Hooks.EditConditions && Hooks.EditConditions()) {
    ConditionsChanged();
    InputsFromConditions();
  }
}

void Workbench::MnuTool(int index) {
  if (index < 0 || index > 4) RaiseSubscriptOutOfRange("mnuToolSub " + std::to_string(index));
  if (Hooks.OpenTool) Hooks.OpenTool(index, list_.Items);
}

void Workbench::MnuAbout() {
  if (Hooks.ShowAbout) Hooks.ShowAbout();
}

void Workbench::TakeProjectSnapshot() { snapshot_ = {PersistentCopy(list_), session_.CurrentConditions}; }

bool Workbench::ProjectChanged() const {
  return ProfilesChanged(snapshot_.Profiles, list_) || !(snapshot_.Conditions == session_.CurrentConditions);
}

void Workbench::SetComputation(int tab, TabComputation computation) {
  computations_[At(tab)] = std::move(computation);
  for (auto& keys : resultKeys_) keys[At(tab)].clear();
}

bool Workbench::HasComputation(int tab) const { return computations_[At(tab)].Compute || computations_[At(tab)].ComputeRows;
}

}  // namespace velmora::workbench
