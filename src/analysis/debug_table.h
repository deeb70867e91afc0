#pragma once
// The intermediate tables the computations write into the Debug folder when DebugLevel is above 0.
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

// True when DebugLevel (TOLVAVERI.ini, General) is above 0.
bool DebugTablesOn();
// Writes the lines (Shift-JIS, CR LF) to Paths().DebugPath/fileName, creating the folder if needed.
void WriteDebugTable(std::string_view fileName, const std::vector<std::string>& lines);

}  // namespace velmora
