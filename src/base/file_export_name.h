#pragma once
// Names of exported and registered results: a template from the settings key "FileExportName" of a
// section per kind, with date macros ("$(YYYYMMDDHHNNSS)$", ...), "$(PROFILENAME)$" and the kind's
// own macros ("$(CUTOFF)$", "$(OctaveNum)$", "$(IRI種別)$", "$(出力種別)$").
#include <ctime>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/session.h"

namespace velmora {

struct NameMacro {
  std::string Macro;  // e.g. "$(CUTOFF)$"
  std::string Value;
};

// The name (without extension). `pattern` is the settings value; when it is empty (after trimming)
// `builtIn` stands in for it, written with the same macros. Order: date macros with `now`, then
// "$(PROFILENAME)$", then `kindMacros` in order. Each macro is found regardless of case and replaced
// once.
std::string FileExportName(std::string_view pattern, std::string_view builtIn, std::string_view profileName,
                           const std::vector<NameMacro>& kindMacros, const std::tm& now);

// The time for the names of the files saved now: the session's fixed time, else the clock.
std::tm NameTimeOf(const Session& session);

// The value of "FileExportName" in `section` of TOLVAVERI.ini (empty when the key or file is absent).
std::string FileExportPattern(Session& session, std::string_view section);

}  // namespace velmora
