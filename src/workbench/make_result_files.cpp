#include "workbench/make_result_files.h"

#include <filesystem>

#include <fmt/format.h>

#include "base/error_log.h"
#include "base/file_export_name.h"
#include "base/legacy_error.h"
#include "base/path_helpers.h"
#include "base/settings_io.h"
#include "base/text_encoding.h"
#include "base/user_interaction.h"
#include "profile/erd_file.h"

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

// The folder from the save dialog, remembered under "CommonDialogPath"; empty when cancelled.
class Writer {
 public:
  Writer(Session& session, const ExportRequest& request, const std::tm& now, std::string folder,
         ExportOutcome& outcome)
      : request_(request), now_(now), folder_(std::move(folder)), outcome_(outcome),
        pattern_(FileExportPattern(session, ExportSection(request.Kind))) {}

  std::string Name(const std::string& profileName, std::vector<NameMacro> macros) const {
    macros.push_back({"$(出力種別)$", ExportKindWord(request_.Kind)});
    return FileExportName(pattern_, BuiltInExportPattern(request_.Kind), profileName, macros, now_);
  }

  void Csv(const std::string& name, const std::vector<std::string>& lines) {
    const std::string path = flAddDirSep(folder_) + name + ".CSV";
    WriteSystemTextFile(path, lines);
    outcome_.Files.push_back(path);
  }

  void Erd(const std::string& name, const ProfileRecord& record, Array1<double> values) {
    ErdRecord erd = record.Erd;
    erd.NumSamples = static_cast<std::int32_t>(values.size());
    erd.NumSamplesHeader = erd.NumSamples;
    erd.Elevation = std::move(values);
    const std::string path = flAddDirSep(folder_) + name + ".ERD";
    WriteERD(path, erd);
    outcome_.Files.push_back(path);
  }

 private:
  const ExportRequest& request_;
  const std::tm& now_;
  std::string folder_;
  ExportOutcome& outcome_;
  std::string pattern_;
};

void WriteAll(Workbench& bench, const ExportRequest& request, const std::vector<ProfileRecord*>& profiles,
              Writer& writer) {
  const ExportKind kind = request.Kind;
  const PositionAxis& axis = bench.Axis;
  if (kind == ExportKind::IriWhole) {
    std::vector<const ProfileRecord*> all(profiles.begin(), profiles.end());
    writer.Csv(writer.Name(ProfileList::NameOf(*profiles.front()), {{"$(IRI種別)$", "全区間"}}), IriWholeLines(all));
    return;
  }
  if (kind == ExportKind::PsdRatio) {
    const ProfileRecord& base = *profiles.front();
    for (std::size_t i = 1; i < profiles.size(); ++i) {
      const std::string pair = ProfileList::NameOf(base) + "_vs_" + ProfileList::NameOf(*profiles[i]);
      writer.Csv(writer.Name(pair, {}), PsdRatioLines(bench.Session(), base, *profiles[i], request.Options));
    }
    return;
  }
  const double evalLength = bench.Session().CurrentConditions.Iri.IriBaseLength;
  for (ProfileRecord* record : profiles) {
    const std::string name = ProfileList::NameOf(*record);
    switch (kind) {
      case ExportKind::Profile: {
        const std::vector<NameMacro> macros{{"$(CUTOFF)$", FilterWord(record->Analysis.Filter.Request)}};
        if (request.Erd)
          writer.Erd(writer.Name(name, macros), *record, PointKindValues(kind, *record));
        else
          writer.Csv(writer.Name(name, macros), PointKindLines(kind, *record, axis));
        break;
      }
      case ExportKind::OctaveBand:
      case ExportKind::BandOne:
        for (int octave : request.Options.Octaves) {
          const std::string file = writer.Name(name, {{"$(OctaveNum)$", std::to_string(octave)}});
          if (request.Erd)
            writer.Erd(file, *record, PointKindValues(kind, *record, octave));
          else
            writer.Csv(file, PointKindLines(kind, *record, axis, octave));
        }
        break;
      case ExportKind::OctaveAll:
      case ExportKind::OctaveSum:
      case ExportKind::OctaveLong:
      case ExportKind::OctaveShort:
      case ExportKind::BandAll:
      case ExportKind::BandSum:
      case ExportKind::BandLong:
      case ExportKind::BandShort:
        if (request.Erd)
          writer.Erd(writer.Name(name, {}), *record, PointKindValues(kind, *record));
        else
          writer.Csv(writer.Name(name, {}), PointKindLines(kind, *record, axis));
        break;
      case ExportKind::PsdRaw: writer.Csv(writer.Name(name, {}), PsdRawLines(*record)); break;
      case ExportKind::PsdSmoothed: writer.Csv(writer.Name(name, {}), PsdSmoothedLines(bench.Session(), *record, request.Options)); break;
      case ExportKind::IriContinuous:
        writer.Csv(writer.Name(name, {{"$(IRI種別)$", IriKindWord(kind, evalLength, 0)}}),
                   IriContinuousLines(*record, axis, evalLength, request.Options.WithBands));
        break;
      case ExportKind::IriFixed:
        writer.Csv(writer.Name(name, {{"$(IRI種別)$", IriKindWord(kind, evalLength, request.Options.Interval)}}),
                   IriFixedLines(*record, axis, request.Options.Interval));
        break;
      default: break;
    }
  }
}

}  // namespace

ExportOutcome MakeResultFiles(Workbench& bench, const ExportRequest& request, const std::tm& now) {
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
    Writer writer(bench.Session(), request, now, folder, outcome);
    WriteAll(bench, request, profiles, writer);
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
