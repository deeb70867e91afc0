#include "workbench/repair_result_files.h"

#include <filesystem>

#include "base/error_log.h"
#include "base/file_export_name.h"
#include "base/legacy_error.h"
#include "base/path_helpers.h"
#include "base/settings_io.h"
#include "base/text_encoding.h"
#include "base/user_interaction.h"
#include "profile/erd_file.h"
#include "repair/ideal_shape.h"
#include "workbench/make_result_files.h"

namespace velmora::workbench {
namespace {

void WriteOne(Session& session, const RepairExportRequest& request, const ProfileRecord& record, const std::string& path,
              const PositionAxis& axis, const IriParams& iri) {
  if (!request.Erd) {
    WriteSystemTextFile(path, RepairKindLines(session, request.Kind, record, axis, iri));
    return;
  }
  ErdRecord erd = record.Erd;
  erd.Elevation = RepairKindValues(request.Kind, record);
  erd.NumSamples = static_cast<std::int32_t>(erd.Elevation.size());
  erd.NumSamplesHeader = erd.NumSamples;
  if (!WriteERD(path, erd)) RaiseFileError(ErrorNumber::PermissionDenied, path, "ERDファイルを書き込めません");
}

}  // namespace

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
    const std::string pattern = FileExportPattern(bench.Session(), kRepairExportSection);
    const IriParams iri = StudyIriParams(bench.Session(), bench.Repair.Stored.IriLength);
    for (const ProfileRecord* record : profiles) {
      const std::string name = FileExportName(pattern, BuiltInRepairPattern(request.Kind), ProfileList::NameOf(*record),
                                              {{"$(出力種別)$", RepairKindWord(request.Kind)}}, now);
      const std::string path = flAddDirSep(folder) + name + (request.Erd ? ".ERD" : ".CSV");
      WriteOne(bench.Session(), request, *record, path, bench.Axis, iri);
      outcome.Files.push_back(path);
    }
    const std::string done =
        request.Erd ? "ERD形式で以下のフォルダに保存しました。 " : "CSV形式で以下のフォルダに保存しました。 ";
    bench.Session().Ui().Inform(done + "\r\n保存先：" + folder, "データ保存", MsgIcon::Information);
  });
  return outcome;
}

}  // namespace velmora::workbench
