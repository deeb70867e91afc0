#pragma once
// cmdMakeErd: writes the results of one kind for the selected profiles of a tab, as ERD or CSV files,
// into a folder the user chooses (only the folder of the save dialog's answer is used).
#include <ctime>
#include <string>
#include <vector>

#include "base/session.h"
#include "report/result_export.h"
#include "workbench/workbench.h"

namespace velmora::workbench {

struct ExportRequest {
  ExportKind Kind = ExportKind::Profile;
  bool Erd = false;          // ERD files (one-column kinds only), else CSV
  int Tab = tab::Filter;     // whose list selection names the profiles
  ExportOptions Options;
};

// What was written: the folder and the files in order. Empty when nothing was written (a check
// stopped, the dialog was cancelled, no profile had results, or a failure went to the error log).
struct ExportOutcome {
  std::string Folder;
  std::vector<std::string> Files;
};

// The export with the time `now` in names. Messages and the dialog go through session.Ui(); failures are
// logged under "cmdMakeErd_Click" and files already written stay.
ExportOutcome MakeResultFiles(Workbench& bench, const ExportRequest& request, const std::tm& now);

// The save dialog of the exports, which only asks for a folder: its answer's folder, remembered under
// "CommonDialogPath" by the dialog's title; empty when cancelled. PSD files offer "*.CSV".
std::string AskExportFolder(Session& session, bool erd, bool psd);

}  // namespace velmora::workbench
