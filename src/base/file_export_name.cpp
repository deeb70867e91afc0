#include "base/file_export_name.h"

#include "base/common.h"
#include "base/legacy_format.h"
#include "base/macros.h"
#include "base/settings_io.h"

namespace velmora {

std::string FileExportName(std::string_view pattern, std::string_view builtIn, std::string_view profileName,
                           const std::vector<NameMacro>& kindMacros, const std::tm& now) {
  std::string name = uExpandDate(Trim(pattern).empty() ? builtIn : pattern, now);
  name = uReplaceMacro(name, "$(PROFILENAME)$", profileName);
  for (const auto& macro : kindMacros) name = uReplaceMacro(name, macro.Macro, macro.Value);
  return name;
}

std::string FileExportPattern(Session& session, std::string_view section) {
  return GetIniValue(session, GeneralIniPath(session.Paths), section, "FileExportName");
}

std::tm NameTimeOf(const Session& session) { return session.NameTime ? *session.NameTime : LocalNow(); }

}  // namespace velmora
