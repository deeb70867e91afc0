#pragma once
// Macros in texts: the two folder macros that keep stored paths valid when the program or the
// user-local tree moves, the date macros of output names, and the one replacement they all share.
#include <ctime>
#include <string>
#include <string_view>

#include "base/app_paths.h"

namespace velmora {

// Replaces the first occurrence of `macro`, found regardless of ASCII case, by `value`.
std::string uReplaceMacro(std::string_view text, std::string_view macro, std::string_view value);

// A path that begins with AppPath becomes "$(AppPath)" + the rest; otherwise one that begins with
// UserLocalPath becomes "$(UserLocalPath)" + the rest; any other text is returned as it is. The
// beginning is compared as uStrEqual does (case and surrounding blanks ignored), and only at a whole
// folder: "/opt/velmora2" does not begin with the folder "/opt/velmora".
std::string uAbbreviatePathMacro(const AppPaths& paths, std::string_view path);
// "$(AppPath)" (in any case) is replaced by AppPath; only when it is absent, "$(UserLocalPath)" by
// UserLocalPath. At most one replacement is made.
std::string uExpandPathMacro(const AppPaths& paths, std::string_view text);

// Replaces, in this order and each once, "$(YYYYMMDDHHNNSS)$", "$(YYYYMMDDHHNN)$", "$(YYYYMMDDHH)$",
// "$(YYYYMMDD)$", "$(YYYYMM)$", "$(YYYY)$", "$(MM)$", "$(DD)$", "$(HH)$", "$(NN)$", "$(SS)$" by the
// fields of `now` (NN minutes, MM month).
std::string uExpandDate(std::string_view text, const std::tm& now);

}  // namespace velmora
