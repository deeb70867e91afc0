#pragma once
// The intermediate tables the computations write into the Debug folder when DebugLevel is above 0.
#include <string>
#include <string_view>
#include <vector>

#include "base/session.h"

namespace velmora {

// Writes the lines (Shift-JIS, CR LF) to debug.Folder/fileName, creating the folder if needed.
void WriteDebugTable(const DebugTables& debug, std::string_view fileName, const std::vector<std::string>& lines);

}  // namespace velmora
