#include "app/workbench/file_export_name.h"

#include <array>

#include "app/common.h"
#include "app/legacy_format.h"

namespace velmora::workbench {
namespace {

char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// Replaces the first occurrence of `macro`, compared without regard to ASCII case.
void ReplaceOnce(std::string& text, std::string_view macro, std::string_view value) {
  if (macro.empty() || macro.size() > text.size()) return;
  for (std::size_t at = 0; at + macro.size() <= text.size(); ++at) {
    bool same = true;
    for (std::size_t k = 0; k < macro.size() && same; ++k) same = Upper(text[at + k]) == Upper(macro[k]);
    if (same) {
      text.replace(at, macro.size(), value);
      return;
    }
  }
}

}  // namespace

std::string FileExportName(std::string_view pattern, std::string_view builtIn, std::string_view profileName,
                           const std::vector<NameMacro>& kindMacros, const std::tm& now) {
  std::string name = Trim(pattern).empty() ? std::string(builtIn) : std::string(pattern);
  // Longest first, so that "$(YYYY)$" never eats the start of a longer date macro.
  static constexpr std::array<std::string_view, 11> kDateFormats{
      "YYYYMMDDHHNNSS", "YYYYMMDDHHNN", "YYYYMMDDHH", "YYYYMMDD", "YYYYMM", "YYYY", "MM", "DD", "HH", "NN", "SS"};
  for (std::string_view format : kDateFormats)
    ReplaceOnce(name, "$(" + std::string(format) + ")$", FormatDateTime(now, format));
  ReplaceOnce(name, "$(PROFILENAME)$", profileName);
  for (const auto& macro : kindMacros) ReplaceOnce(name, macro.Macro, macro.Value);
  return name;
}

std::string FileExportPattern(std::string_view) { return {}; }

}  // namespace velmora::workbench
