#include "analysis/debug_table.h"

#include <filesystem>
#include <string>

#include "base/app_paths.h"
#include "base/settings.h"
#include "base/text_encoding.h"

namespace velmora {

bool DebugTablesOn() { return Settings().DebugLevel > 0; }

void WriteDebugTable(std::string_view fileName, const std::vector<std::string>& lines) {
  const std::filesystem::path folder = Paths().DebugPath;
  if (!folder.empty()) std::filesystem::create_directories(folder);
  WriteSystemTextFile(folder / std::string(fileName), lines);
}

}  // namespace velmora
