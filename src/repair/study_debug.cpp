#include "repair/study_debug.h"

#include <filesystem>

#include "analysis/debug_table.h"
#include "base/app_paths.h"
#include "base/text_encoding.h"

namespace velmora::detail {

void StudyDebugLine(std::string_view line) {
  if (DebugTablesOn()) AppendSystemTextLine(std::filesystem::path(Paths().UserLocalPath) / "debug.log", line);
}

}  // namespace velmora::detail
