#include "report/evaluation_files.h"

#include <ctime>

#include "base/error_log.h"
#include "base/file_export_name.h"
#include "base/legacy_format.h"
#include "base/settings_io.h"
#include "base/text_encoding.h"
#include "evaluation/correlation_tables.h"

namespace velmora {

std::filesystem::path AskCsvFolder(Session& session) {
  FileDialogRequest request;
  request.Title = "CSVファイル保存";
  request.Filter = "データファイル (*.Dummy)|*.Dummy|";
  request.InitialDirectory = GetPrevValue(session, "CSVファイル保存", "CommonDialogPath");
  request.DefaultName = "フォルダ名の取得に使用され、ファイル名は無視されます";
  const std::string chosen = session.Ui().ChooseFolder(request);
  if (chosen.empty()) return {};
  const std::filesystem::path folder =
      std::filesystem::is_directory(chosen) ? std::filesystem::path(chosen) : std::filesystem::path(chosen).parent_path();
  SetPrevValue(session, "CSVファイル保存", "CommonDialogPath", folder.string());
  return folder;
}

void ShowCsvSaved(Session& session, const std::filesystem::path& folder) {
  session.Ui().Message("CSV形式で以下のフォルダに保存しました。\r\n\r\n保存先：" + folder.string(), "データ保存",
               MsgIcon::Information, MsgButtons::Ok, MsgAnswer::Ok);
}

bool SaveStatistics(Session& session, const StatisticsResults& results, const std::string& firstProfileName,
                    const std::string& namePattern) {
  if (!results.Valid) {
    session.Ui().Message("統計値が計算されていません。", "警告", MsgIcon::Exclamation, MsgButtons::Ok, MsgAnswer::Ok);
    return false;
  }
  bool saved = false;
  Guarded(session, "frmTop", "cmdSave統計値", [&] {
    const std::filesystem::path folder = AskCsvFolder(session);
    if (folder.empty()) return;
    const std::tm now = NameTimeOf(session);
    for (const StatisticsPage& page : results.Pages) {
      if (page.Empty()) continue;
      std::vector<std::string> lines;
      lines.reserve(page.RowCount());
      for (std::size_t r = 0; r < page.RowCount(); ++r) {
        std::string line;
        for (std::size_t c = 0; c < page.Width(); ++c) line += (c == 0 ? "" : ",") + page.Cell(r, c);
        lines.push_back(std::move(line));
      }
      const std::string name = FileExportName(namePattern, "統計値_" + page.Caption + "_$(YYYYMMDDHHNNSS)$",
                                              firstProfileName, {{"$(出力種別)$", page.Caption}}, now);
      WriteSystemTextFile(folder / (name + ".CSV"), lines);
    }
    ShowCsvSaved(session, folder);
    saved = true;
  });
  return saved;
}

bool SaveCrossCorrelation(Session& session, const ProfileList& list, std::span<const std::int32_t> selectedRows,
                          const CorrelationResults& results, const IriParams& iri, const std::string& namePattern,
                          const CorrelationPsdOptions& psd) {
  if (!results.Valid) return false;
  bool saved = false;
  Guarded(session, "frmTop", "cmdSave相互相関_Click", [&] {
    CorrelationOptions options = results.Options;
    CorrelationSelection selection;
    if (!CheckCorrelationOptions(session, list, selectedRows, options, selection)) return;
    // The files always hold the figures without the IRI filter; the IRI and PSD columns are taken
    // from the same run, so that the error rates in them agree with the values beside them.
    CorrelationResults unfiltered;
    const CorrelationResults* toWrite = &results;
    if (results.UsedIriFilter) {
      if (!RunCrossCorrelation(session, list, selectedRows, results.Options, iri, unfiltered, true, psd)) return;
      toWrite = &unfiltered;
    }

    const std::filesystem::path folder = AskCsvFolder(session);
    if (folder.empty()) return;
    const std::tm now = NameTimeOf(session);
    const std::string first = toWrite->Selection.Names.empty() ? "" : toWrite->Selection.Names[0];
    for (std::size_t t = 0; t < kMeasureCaptions.size(); ++t) {
      const std::string kind(kMeasureCaptions[t]);
      const std::string name = FileExportName(namePattern, "CC_" + kind + "_$(YYYYMMDDHHNNSS)$", first,
                                              {{"$(出力種別)$", kind}}, now);
      WriteSystemTextFile(folder / (name + ".CSV"), CorrelationCsvLines(*toWrite, static_cast<std::int32_t>(t)));
    }
    ShowCsvSaved(session, folder);
    saved = true;
  });
  return saved;
}

}  // namespace velmora
