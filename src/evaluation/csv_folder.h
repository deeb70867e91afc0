#pragma once
// The folder question and the closing box that the statistics and the cross-correlation saves share.
#include <ctime>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/session.h"

namespace velmora {

// Asks for the folder of the CSV files through the file dialog (only the folder of the answer
// counts), starting from the folder remembered last time, and remembers the new one. Empty when
// cancelled.
std::filesystem::path AskCsvFolder(Session& session);

// The file name (without folder) of one CSV file: with an empty `pattern`,
// `prefix` + "_" + `kind` + "_" + the date "YYYYMMDDHHNNSS"; otherwise the pattern with its date
// macros, "$(PROFILENAME)$" and "$(出力種別)$" replaced. ".CSV" is added.
std::string CsvFileName(std::string_view pattern, std::string_view prefix, std::string_view kind,
                        std::string_view profileName, const std::tm& now);

// "データ保存": the files are in `folder`.
void ShowCsvSaved(Session& session, const std::filesystem::path& folder);

}  // namespace velmora
