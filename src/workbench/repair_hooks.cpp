// The repair-shape study's tabs joined to their computations: the Go of each of tabs 10 to 13 runs
// the study's driver over the stale rows, and a change of the study's values that cleared every
// profile's study data is acted on in the tabs and lists; the study's waves registered as profiles.
#include <fmt/format.h>

#include "base/common.h"
#include "base/file_export_name.h"
#include "base/session.h"
#include "repair/ideal_shape.h"
#include "repair/study_targets.h"
#include "report/repair_export.h"
#include "workbench/repair_register.h"

namespace velmora::workbench {
namespace {

constexpr int kFirst = tab::ThreeWave;  // tabs 10..13 are slots 0..3 of the study's arrays

std::size_t Slot(int tab) { return static_cast<std::size_t>(tab - kFirst); }

// Whether a profile holds the result of a study tab.
bool HasData(int tab, const ProfileRecord& record) {
  switch (tab) {
    case tab::ThreeWave: return record.ThreeWave.Valid;
    case tab::MediumWave: return record.RepairStudy.MiddleValid;
    case tab::ShortWave: return record.RepairStudy.ShortReducedValid;
    default: return record.RepairStudy.IdealValid;
  }
}

bool AnyHasData(Workbench& bench, int tab) {
  for (int row = 1; row <= bench.ProfileCount(); ++row)
    if (HasData(tab, bench.Profile(row))) return true;
  return false;
}

// The boxes as typed (trimmed) and the plan range: a change of any of them is a new input. The
// drivers themselves compare the checked values, so "10" against "10.0" only costs a pass that finds
// every split current.
bool Reachable(Workbench& bench, int tab) {
  if (tab == tab::ThreeWave) return true;
  if (tab == tab::IdealShape) return AnyHasData(bench, tab::MediumWave) && AnyHasData(bench, tab::ShortWave);
  return AnyHasData(bench, tab::ThreeWave);
}

std::string FormKey(const RepairTabInputs& in) {
  std::string key = fmt::format("{}|{}|{}|plan {}", Trim(in.Form.LongBoundary), Trim(in.Form.ShortBoundary),
                                Trim(in.Form.IriLength), in.UsePlanRange);
  for (int k = 1; k <= 9; ++k) key += "|" + Trim(in.Form.Lines[static_cast<std::size_t>(k)]);
  return key;
}

// lst_M波選択 and lst検討対象 show the studies of the first selected row of the tab.
void RefillStudyLists(Workbench& bench, int tab) {
  RepairTabInputs& in = bench.Repair;
  const auto& rows = bench.Selection(tab);
  const std::vector<StudyTarget> none;
  const std::vector<StudyTarget>& studies = rows.empty() ? none : bench.Profile(rows.front()).Studies;
  in.MWaveChoices = StudyListItems(studies);
  in.StudyTargets = StudyListItems(studies);
}

// After the study data were cleared: with the change events held off, the study tabs that no longer
// have data are disabled with their output buttons (all but the current tab), and both lists emptied.
void ActOnStudyReset(Workbench& bench) {
  const bool loading = bench.LoadingProfile;
  bench.LoadingProfile = true;
  for (int t = tab::ThreeWave; t <= tab::IdealShape; ++t) {
    bench.TabDirty[static_cast<std::size_t>(t)] = true;
    if (t == bench.CurrentTab || AnyHasData(bench, t)) continue;
    bench.TabEnabled[static_cast<std::size_t>(t)] = false;
    bench.Repair.OutputEnabled[Slot(t)] = false;
  }
  bench.Repair.MWaveChoices.clear();
  bench.Repair.StudyTargets.clear();
  bench.LoadingProfile = loading;
}

using Driver = bool (*)(Session&, StudyRun&);

bool RunDriver(Workbench& bench, int tab, Driver driver, const std::vector<ProfileRecord*>& records) {
  RepairTabInputs& in = bench.Repair;
  const int count = bench.ProfileCount();
  ProfileRecord* first = &bench.Profile(1);
  std::vector<std::int32_t> rows;
  for (ProfileRecord* record : records) rows.push_back(static_cast<std::int32_t>(record - first) + 1);
  StudyRun run{std::span<ProfileRecord>(first, static_cast<std::size_t>(count)), rows, in.Form, &in.Stored,
               in.UsePlanRange};
  const ThreeWaveParams before = in.Stored;
  const bool ok = driver(bench.Session(), run);
  ++in.Revision[Slot(tab)];
  // Every driver splits first; a change of the stored values means the split cleared all study data.
  in.LastRunReset = !(before == in.Stored);
  if (in.LastRunReset) ActOnStudyReset(bench);
  // Left to us: a tab opens again once the steps it starts from have data (the M and S waves need
  // the split, the ideal shape needs both), and a tab's output buttons once it has data itself.
  for (int t = tab::ThreeWave; t <= tab::IdealShape; ++t) {
    if (Reachable(bench, t)) bench.TabEnabled[static_cast<std::size_t>(t)] = true;
    if (AnyHasData(bench, t)) in.OutputEnabled[Slot(t)] = true;
  }
  if (tab == tab::MediumWave || tab == tab::IdealShape) RefillStudyLists(bench, tab);
  return ok;
}

bool ThreeWaveDriver(Session& session, StudyRun& run) { return cmdGo_3波長分解(session, run); }

// The ideal shape takes each profile's chosen study (its M' once rebuilt from the adjusted points):
// another choice or a rebuild is a new input.
std::string ChosenStudiesKey(Workbench& bench) {
  std::string key;
  for (int row = 1; row <= bench.ProfileCount(); ++row) {
    const ProfileRecord& record = bench.Profile(row);
    const std::int32_t chosen = record.RepairStudy.ChosenStudy;
    key += fmt::format("|s{}", chosen);
    if (chosen >= 1 && static_cast<std::size_t>(chosen) <= record.Studies.size()) {
      const StudyTarget& target = record.Studies[static_cast<std::size_t>(chosen - 1)];
      key += fmt::format(":{}:{}", target.Recalculated, target.Revision);
    }
  }
  return key;
}

void InstallStudyTab(Workbench& bench, int tab, Driver driver, std::vector<int> inputsFrom) {
  TabComputation c;
  c.StoreInputs = [&bench] {
    ThreeWaveParams params;
    return getParam_補修形状検討_3波分解(bench.Session(), bench.Repair.Form, params);
  };
  c.InputKey = [&bench, tab, inputsFrom] {
    std::string key = FormKey(bench.Repair);
    for (int t : inputsFrom) key += fmt::format("|r{}", bench.Repair.Revision[Slot(t)]);
    if (tab == tab::IdealShape) key += ChosenStudiesKey(bench);
    return key;
  };
  // Picking a profile in the lists of the M-wave and ideal-shape tabs shows that profile's studies.
  if (tab == tab::MediumWave || tab == tab::IdealShape) c.AfterSelect = [&bench, tab] { RefillStudyLists(bench, tab); };
  // The drivers show their own progress captions and pass over rows whose earlier step has not run.
  c.ComputeRows = [&bench, tab, driver](const std::vector<ProfileRecord*>& records) {
    return RunDriver(bench, tab, driver, records);
  };
  bench.SetComputation(tab, std::move(c));
}

}  // namespace

void InstallRepair(Workbench& bench) {
  // The study's boxes and stored values come from the conditions at the form reset.
  InstallStudyTab(bench, tab::ThreeWave, ThreeWaveDriver, {});
  InstallStudyTab(bench, tab::MediumWave, cmdGo_中波長, {tab::ThreeWave});
  InstallStudyTab(bench, tab::ShortWave, cmdGo_短波長, {tab::ThreeWave});
  InstallStudyTab(bench, tab::IdealShape, cmdGo_理想形状, {tab::ThreeWave, tab::MediumWave, tab::ShortWave});
}

}  // namespace velmora::workbench

namespace velmora::workbench {

RegisteredWaves RegisterStudyWaves(Workbench& bench, const WaveChoice& waves, bool idealShape) {
  RegisteredWaves result;
  const int count = bench.ProfileCount();
  if (count == 0) return result;
  RepairTabInputs& in = bench.Repair;
  std::span<ProfileRecord> profiles(&bench.Profile(1), static_cast<std::size_t>(count));
  const std::string pattern = FileExportPattern(bench.Session(), kRepairExportSection);
  ProfileList registered;
  if (waves.Long || waves.Middle || waves.Short) {
    const std::vector<std::int32_t> rows(bench.Selection(tab::ThreeWave).begin(), bench.Selection(tab::ThreeWave).end());
    StudyRun run{profiles, rows, in.Form, &in.Stored, in.UsePlanRange};
    result.Ok = cmdProfile登録_3波分解(bench.Session(), run, registered, waves, pattern);
  }
  if (idealShape) {
    const std::vector<std::int32_t> rows(bench.Selection(tab::IdealShape).begin(), bench.Selection(tab::IdealShape).end());
    StudyRun run{profiles, rows, in.Form, &in.Stored, in.UsePlanRange};
    result.Ok = cmdProfile登録_理想形状(bench.Session(), run, registered, pattern) && result.Ok;
  }
  for (ProfileRecord& record : registered.Items) {
    result.FileNames.push_back(record.FileName);
    bench.AddProfile(std::move(record));
  }
  return result;
}

}  // namespace velmora::workbench
