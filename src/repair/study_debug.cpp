#include "repair/study_debug.h"

#include <filesystem>

#include "analysis/debug_table.h"
#include "base/app_paths.h"
#include "base/session.h"
#include "base/text_encoding.h"

namespace velmora::detail {

void StudyDebugLine(Session& session, std::string_view line) {
  if (DebugTablesOf(session).On) AppendSystemTextLine(std::filesystem::path(session.Paths.UserLocalPath) / "debug.log", line);
}

}  // namespace velmora::detail
