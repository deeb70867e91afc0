#include "evaluation/csv_folder.h"

#include "base/common.h"
#include "base/legacy_format.h"
#include "base/macros.h"
#include "base/session.h"
#include "base/settings_io.h"
#include "base/user_interaction.h"

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

}  // namespace velmora
