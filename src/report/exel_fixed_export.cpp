#include "report/exel_fixed_export.h"

#include <string>
#include <vector>

#include "base/error_log.h"
#include "base/legacy_format.h"
#include "report/exel_report.h"
#include "report/report_script.h"
#include "report/xlsm_package.h"

namespace velmora {
namespace {

constexpr int kSteps = 11;  // profile, IRI and nine bands

void AddSeries(std::vector<CellWrite>& cells, int column, const Array1<double>& values) {
  for (std::int32_t i = 1; i <= values.size(); ++i)
    cells.push_back({kFixedFirstRow + i - 1, column, ScriptValue::FromNumber(values[i]).ToText(), true});
}

// The profile's series into the fixed sheet's columns, with the progress of the eleven steps.
void FillFixedSheet(UserInteraction& ui, const ProfileRecord& profile, const PositionAxis& axis,
                    const std::filesystem::path& templatePath, const std::filesystem::path& target) {
  std::vector<CellWrite> cells;
  ui.ProgressStart("プロファイルの出力", "しばらくお待ちください。");
  Array1<double> positions(static_cast<std::size_t>(profile.WorkCount));
  for (std::int32_t i = 1; i <= profile.WorkCount; ++i)
    positions[i] = SamplePosition(axis, i, profile.Erd.StepSize, profile.Erd.KpStart, profile.Erd.KpSign);
  AddSeries(cells, kFixedPositionColumn, positions);
  AddSeries(cells, kFixedElevationColumn, profile.WorkProfile);
  ReportProgress(ui, 100 / kSteps);
  ui.ProgressStart("IRI(10m連続)の出力", "しばらくお待ちください。");
  AddSeries(cells, kFixedIriColumn, profile.Analysis.Iri.IriWindowWave.Values);
  ReportProgress(ui, 2 * 100 / kSteps);
  for (int band = 1; band <= 9; ++band) {
    ui.ProgressStart("プロファイル分解( " + std::to_string(band) + "-OCT )の出力", "しばらくお待ちください。");
    AddSeries(cells, kFixedBandColumn + band - 1, profile.Analysis.Octave.Band[static_cast<std::size_t>(band)].Values);
    ReportProgress(ui, (band + 2) * 100 / kSteps);
  }
  ui.ProgressStart("エクセルファイルの終了処理中です", "しばらくお待ちください。");
  WriteWorkbookCopy(templatePath, target, "データ", cells);
}

}  // namespace

std::optional<std::filesystem::path> cmxExlsTest(Session& session, const ProfileRecord& profile,
                                                 const PositionAxis& axis, const std::filesystem::path& templatePath,
                                                 const std::filesystem::path& folder, const std::tm& time,
                                                 const std::function<void(const std::filesystem::path&)>& open) {
  UserInteraction& ui = session.Ui();
  if (!ExelWorkbookExists(ui, templatePath)) return std::nullopt;
  const std::filesystem::path target =
      folder / ("帳表(補修前後)_" + FormatDateTime(time, "YYYYMMDDHHNNSS") + ".xlsm");
  bool stopped = false;
  const bool ok = Guarded(session, "frmTop", "cmxExlsTest", [&] {
    ProgressScope scope(ui, "エクセルファイルの接続中です", "しばらくお待ちください。");
    try {
      FillFixedSheet(ui, profile, axis, templatePath, target);
    } catch (const Cancelled&) {
      stopped = true;  // asked to stop before the workbook was written
    }
  });
  if (!ok || stopped) return std::nullopt;
  OfferToOpen(ui, target, open);
  return target;
}

}  // namespace velmora
