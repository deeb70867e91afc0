#pragma once
// The study's debug line in debug.log (the tables go through analysis/debug_table.h).
#include <string_view>

#include "base/session.h"

namespace velmora::detail {

// Appends one line to debug.log in the user folder while the debug level is above 0.
void StudyDebugLine(Session& session, std::string_view line);

}  // namespace velmora::detail
