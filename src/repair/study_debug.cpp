#include "repair/study_debug.h"

#include <filesystem>

#include "app/app_paths.h"
#include "app/settings.h"
#include "app/text_encoding.h"

namespace velmora::detail {

bool StudyDebugOn() { return Settings().DebugLevel > 0; }

void WriteStudyDebugTable(std::string_view name, const std::vector<std::string>& lines) {
  const std::filesystem::path folder(Paths().DebugPath);
  std::filesystem::create_directories(folder);
  WriteSystemTextFile(folder / std::string(name), lines);
}

void StudyDebugLine(std::string_view line) {
  AppendSystemTextLine(std::filesystem::path(Paths().UserLocalPath) / "debug.log", line);
}

}  // namespace velmora::detail
