#include "m_wave_points.h"

#include <optional>

#include "graph/chart_data.h"
#include "repair/ideal_shape.h"
#include "repair/study_targets.h"
#include "tab_charts.h"

namespace velmora::gui {
namespace {

namespace tab = workbench::tab;

// Place of the chosen study in the profile's studies; none while the calculated M' is chosen.
std::optional<std::size_t> ChosenStudyOf(const ProfileRecord& record) {
  const std::int32_t row = record.RepairStudy.ChosenStudy;
  if (row < 1 || static_cast<std::size_t>(row) > record.Studies.size()) return std::nullopt;
  return static_cast<std::size_t>(row - 1);
}

const Array1<double>& CalculatedMPrime(const ProfileRecord& record) {
  return record.RepairStudy.Calculated.MPrime.Wave.Values;
}

}  // namespace

int AdjustedProfile(const workbench::Workbench& bench) {
  return ShownProfile(bench, tab::MediumWave, bench.Selection(tab::MediumWave));
}

std::vector<ChartHandle> AdjustmentHandles(const workbench::Workbench& bench) {
  const int row = AdjustedProfile(bench);
  if (row == 0) return {};
  const ProfileRecord& record = bench.List().Items.at(row);
  const Array1<double>& mPrime = CalculatedMPrime(record);
  const double pitch = graph::PitchOf(record);
  std::vector<ChartHandle> handles;
  const auto add = [&](std::size_t id, std::int32_t index, std::uint8_t flag, double thickness) {
    if ((flag & kPointExcluded) != 0 || index < 1 || index > mPrime.size()) return;
    handles.push_back({id, kMWavePanel, (index - 1) * pitch, mPrime[index] + thickness});
  };
  if (const auto chosen = ChosenStudyOf(record)) {
    const StudyTarget* study = &record.Studies[*chosen];
    for (std::size_t k = 0; k < study->AdjPoints.size(); ++k)
      add(k, static_cast<std::int32_t>(study->AdjPoints[k]), k < study->AdjFlags.size() ? study->AdjFlags[k] : 0,
          k < study->Thickness.size() ? study->Thickness[k] : 0.0);
  } else {
    const std::vector<StudyPoint>& table = record.RepairStudy.PointTable;
    for (std::size_t k = 0; k < table.size(); ++k) add(k, table[k].Index, table[k].Flag, 0.0);
  }
  return handles;
}

bool MoveAdjustmentPoint(workbench::Workbench& bench, std::size_t id, double height) {
  const int row = AdjustedProfile(bench);
  if (row == 0) return false;
  ProfileRecord& record = bench.Profile(row);
  std::optional<std::size_t> chosen = ChosenStudyOf(record);
  if (!chosen) {
    chosen = CreateStudy(bench.Session(), record.Studies, StudyForm::Thickness, record.RepairStudy.PointTable);
    if (!chosen) return false;
    record.RepairStudy.ChosenStudy = static_cast<std::int32_t>(*chosen + 1);
    bench.Repair.MWaveChoices = StudyListItems(record.Studies);
    bench.Repair.StudyTargets = bench.Repair.MWaveChoices;
  }
  StudyTarget* study = &record.Studies[*chosen];
  if (id >= study->AdjPoints.size()) return false;
  const auto index = static_cast<std::int32_t>(study->AdjPoints[id]);
  SetPointThickness(*study, id, height - CalculatedMPrime(record).at(index));
  if (!CalcStudyAdjustment(bench.Session(), record, *study, bench.Repair.Form)) return false;
  // The ideal shape takes the chosen study's M': it is to be made again.
  bench.TabDirty[static_cast<std::size_t>(tab::IdealShape)] = true;
  return true;
}

}  // namespace velmora::gui
