#pragma once
// The folder question and the closing box that the statistics and the cross-correlation saves share.
#include <filesystem>
#include <string>

#include "base/session.h"

namespace velmora {

// Asks for the folder of the CSV files through the file dialog (only the folder of the answer
// counts), starting from the folder remembered last time, and remembers the new one. Empty when
// cancelled.
std::filesystem::path AskCsvFolder(Session& session);

// "データ保存": the files are in `folder`.
void ShowCsvSaved(Session& session, const std::filesystem::path& folder);

}  // namespace velmora
