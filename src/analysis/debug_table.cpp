#include "analysis/debug_table.h"

#include <filesystem>
#include <string>

#include "base/session.h"
#include "base/text_encoding.h"

namespace velmora {

void WriteDebugTable(const DebugTables& debug, std::string_view fileName, const std::vector<std::string>& lines) {
  const std::filesystem::path folder = debug.Folder;
  if (!folder.empty()) std::filesystem::create_directories(folder);
  WriteSystemTextFile(folder / std::string(fileName), lines);
}

}  // namespace velmora
