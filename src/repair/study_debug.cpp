#include "repair/study_debug.h"

#include <filesystem>

#include "analysis/debug_table.h"
#include "app/app_paths.h"
#include "app/text_encoding.h"

namespace velmora::detail {

void StudyDebugLine(std::string_view line) {
  if (DebugTablesOn()) AppendSystemTextLine(std::filesystem::path(Paths().UserLocalPath) / "debug.log", line);
}

}  // namespace velmora::detail
