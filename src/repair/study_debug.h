#pragma once
// Debug tables of the study: written into the Debug folder only while the debug level is above 0.
#include <string>
#include <string_view>
#include <vector>

namespace velmora::detail {

bool StudyDebugOn();
// Writes `lines` as the file `name` in the Debug folder (Shift-JIS, CR LF).
void WriteStudyDebugTable(std::string_view name, const std::vector<std::string>& lines);
// Appends one line to debug.log in the user folder.
void StudyDebugLine(std::string_view line);

}  // namespace velmora::detail
