#include "workbench/make_result_files.h"

#include <filesystem>

#include <fmt/format.h>

#include "analysis/real_fft.h"
#include "base/error_log.h"
#include "base/legacy_error.h"
#include "base/settings_io.h"
#include "base/user_interaction.h"
#include "report/result_files.h"

namespace velmora::workbench {
namespace {


bool IsPsd(ExportKind kind) {
  return kind == ExportKind::PsdRaw || kind == ExportKind::PsdSmoothed || kind == ExportKind::PsdRatio;
}
bool IsOneColumn(ExportKind kind) {
  return kind == ExportKind::Profile || kind == ExportKind::OctaveBand || kind == ExportKind::OctaveSum ||
         kind == ExportKind::OctaveLong || kind == ExportKind::OctaveShort || kind == ExportKind::BandOne ||
         kind == ExportKind::BandSum || kind == ExportKind::BandLong || kind == ExportKind::BandShort;
}

// The checks that stop an export before the dialog, with their warnings.
bool Checked(Session& session, const ExportRequest& request) {
  if (request.Kind == ExportKind::OctaveBand && request.Options.Octaves.empty()) {
    session.Ui().Inform("バンド別表示が１個も指定されていません。\r\nファイル出力を中止します。", "警告");
    return false;
  }
  if (request.Kind == ExportKind::BandOne && request.Options.Octaves.empty()) {
    session.Ui().Inform("バンド別低減ライン値が１個も指定されていません。\r\nファイル出力を中止します。", "警告");
    return false;
  }
  const bool smoothing = request.Kind == ExportKind::PsdSmoothed ||
                         (request.Kind == ExportKind::PsdRatio && request.Options.Smoothed);
  if (smoothing && request.Options.BandsPerOctave < 1) {
    session.Ui().Inform("BandsPerOctave値はゼロより大きく指定してください。", "警告");
    return false;
  }
  if (request.Erd && !IsOneColumn(request.Kind))
    throw LegacyError(ErrorNumber::InvalidData, "ERD形式で出力できない種別です: " + ExportKindWord(request.Kind));
  return true;
}

}  // namespace

ExportOutcome MakeResultFiles(Workbench& bench, const ExportRequest& request, const std::tm& now) {
  // The files are made from results: the transforms' tables need not stay beside them, and a long
  // profile's files then have that much more room.
  ReleaseTransformTables();
  ExportOutcome outcome;
  Guarded(bench.Session(), "frmTop", "cmdMakeErd_Click", [&] {
    if (!Checked(bench.Session(), request)) return;
    std::vector<ProfileRecord*> profiles;
    for (int row : bench.Selection(request.Tab))
      if (HasResult(request.Kind, bench.Profile(row))) profiles.push_back(&bench.Profile(row));
    const std::size_t needed = request.Kind == ExportKind::PsdRatio ? 2 : 1;
    if (profiles.size() < needed) {
      bench.Session().Ui().Inform("該当する件数がありません。", "案内", MsgIcon::Information);
      return;
    }
    // CSV出力プロファイル数制限: a CSV export takes at most this many profiles (0: no limit).
    const std::int32_t limit = bench.Session().Settings.CsvProfileLimit;
    if (!request.Erd && limit > 0 && profiles.size() > static_cast<std::size_t>(limit)) {
      bench.Session().Ui().Inform(fmt::format("CSV出力は {} プロファイルまでです。\r\n先頭の {} プロファイルを出力します。", limit, limit),
                  "確認", MsgIcon::Information);
      profiles.resize(static_cast<std::size_t>(limit));
    }
    const std::string folder = AskExportFolder(bench.Session(), request.Erd, IsPsd(request.Kind));
    if (folder.empty()) return;
    outcome.Folder = folder;
    WriteResultFiles(bench.Session(), {request.Kind, request.Erd, request.Options}, bench.Axis, profiles, folder, now,
                     outcome.Files);
    const std::string done = IsPsd(request.Kind) ? "CSVファイルを保存しました。 "
                             : request.Erd       ? "ERD形式で以下のフォルダに保存しました。 "
                                                 : "CSV形式で以下のフォルダに保存しました。 ";
    bench.Session().Ui().Inform(done + "\r\n保存先：" + folder, "データ保存", MsgIcon::Information);
  });
  return outcome;
}

std::string AskExportFolder(Session& session, bool erd, bool psd) {
  FileDialogRequest dialog;
  dialog.Title = erd ? "ERDファイル保存" : "CSVファイル保存";
  dialog.Filter = psd ? "データファイル (*.CSV)|*.CSV|すべてのファイル (*.*)|*.*" : "データファイル (*.Dummy)|*.Dummy|";
  dialog.InitialDirectory = GetPrevValue(session, "CommonDialogPath", dialog.Title);
  dialog.DefaultName = "フォルダ名の取得に使用され、ファイル名は無視されます";
  const std::string answer = session.Ui().SaveFile(dialog);
  if (answer.empty()) return {};
  std::string folder = std::filesystem::path(answer).parent_path().string();
  if (folder.empty()) folder = ".";
  SetPrevValue(session, "CommonDialogPath", dialog.Title, folder);
  return folder;
}

}  // namespace velmora::workbench
