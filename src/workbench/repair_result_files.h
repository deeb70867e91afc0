#pragma once
// cmdMakeErd for the repair-shape study's tabs: the three-wave split (profile and IRI), the S wave
// and the ideal shape of the selected profiles, as CSV files (or ERD for the one-wave kinds), in the
// folder the user chooses.
#include <ctime>

#include "report/repair_export.h"
#include "workbench/make_result_files.h"

namespace velmora::workbench {

struct RepairExportRequest {
  RepairExportKind Kind = RepairExportKind::ThreeWaveProfile;
  bool Erd = false;              // ERD files: S' (ShortWave) or the ideal shape (IdealShape) only
  int Tab = tab::ThreeWave;      // whose list selection names the profiles
};

// The export with the time `now` in names. Profiles without the kind's result are passed over; none
// left gives "該当する件数がありません。". Failures are logged under "cmdMakeErd_Click"; files already
// written stay. Nothing is written for a kind that has no ERD form when ERD is asked for.
ExportOutcome MakeRepairResultFiles(Workbench& bench, const RepairExportRequest& request, const std::tm& now);

}  // namespace velmora::workbench
