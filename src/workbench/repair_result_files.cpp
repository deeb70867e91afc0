#include "workbench/repair_result_files.h"

#include <filesystem>

#include "base/error_log.h"
#include "base/legacy_error.h"
#include "base/user_interaction.h"
#include "repair/ideal_shape.h"
#include "report/result_files.h"
#include "workbench/make_result_files.h"

namespace velmora::workbench {
ExportOutcome MakeRepairResultFiles(Workbench& bench, const RepairExportRequest& request, const std::tm& now) {
  ExportOutcome outcome;
  Guarded(bench.Session(), "frmTop", "cmdMakeErd_Click", [&] {
    if (request.Erd && !IsRepairErdKind(request.Kind))
      throw LegacyError(ErrorNumber::InvalidData, "ERD形式で出力できない種別です: " + RepairKindWord(request.Kind));
    std::vector<const ProfileRecord*> profiles;
    for (int row : bench.Selection(request.Tab))
      if (HasRepairResult(request.Kind, bench.Profile(row))) profiles.push_back(&bench.Profile(row));
    if (profiles.empty()) {
      bench.Session().Ui().Inform("該当する件数がありません。", "案内", MsgIcon::Information);
      return;
    }
    const std::string folder = AskExportFolder(bench.Session(), request.Erd, false);
    if (folder.empty()) return;
    outcome.Folder = folder;
    const IriParams iri = StudyIriParams(bench.Session(), bench.Repair.Stored.IriLength);
    WriteRepairResultFiles(bench.Session(), request.Kind, request.Erd, bench.Axis, iri, profiles, folder, now,
                           outcome.Files);
    const std::string done =
        request.Erd ? "ERD形式で以下のフォルダに保存しました。 " : "CSV形式で以下のフォルダに保存しました。 ";
    bench.Session().Ui().Inform(done + "\r\n保存先：" + folder, "データ保存", MsgIcon::Information);
  });
  return outcome;
}

}  // namespace velmora::workbench
