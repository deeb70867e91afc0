#pragma once
// Reading and writing the three settings files: "TOLVAVERI.ini" (general switches, never written),
// "Default.ini" (default calculation conditions and colours) and "Resource/前回値.ini" (last used
// folders and choices). All reads tolerate a missing file or key: the built-in values hold.
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

#include "base/session.h"

namespace velmora {

// AppPath/TOLVAVERI.ini, AppPath/Default.ini and UserLocalPath/Resource/前回値.ini.
std::filesystem::path GeneralIniPath(const AppPaths& paths);
std::filesystem::path DefaultIniPath(const AppPaths& paths);
std::filesystem::path PrevValueIniPath(const AppPaths& paths);

// True when the key has a non-empty value, which is then in `value`, cut (as the platform's
// 255-byte buffer did) to at most 254 Shift-JIS bytes without splitting a character. A file that
// cannot be read raises LegacyError naming it.
bool ReadIni(const std::filesystem::path& file, std::string_view section, std::string_view key, std::string& value);

// Fills session.Settings from the General section of TOLVAVERI.ini and the two palettes of Default.ini.
// A file that cannot be read, or a value that is not a number, is reported through ErrorLog and the
// rest keeps its built-in value.
void LoadGeneralSettings(Session& session);

// Group numbers of the default conditions (1..10), each with its section of Default.ini.
inline constexpr int kDefaultGroupCount = 10;
// Reloads one group of session.DefaultConditions from Default.ini, built-in values first; a number outside
// 1..10 does nothing. Errors are reported through ErrorLog ("basInitialize", "LoadDefaults").
void LoadDefaults(Session& session, int group);
// The same for several groups with one reading of the file; each group is copied into
// session.CurrentConditions as soon as it is read when `copyToCurrent`.
void LoadDefaultGroups(Session& session, std::span<const int> groups, bool copyToCurrent);
// Copies the fields of one group from `from` to `to`.
void CopyConditionsGroup(int group, const CalcConditions& from, CalcConditions& to);
// Writes one group of session.DefaultConditions back to Default.ini; only groups 3 to 7, others do nothing.
// Bands without a line are written empty; colours of the band list are not written. A file that
// cannot be written raises LegacyError naming it and stays as it was.
void SaveDefaults(Session& session, int group);

// A value of 前回値.ini: empty when the file or key is missing; trimmed, then "$(AppPath)" or
// "$(UserLocalPath)" expanded. An unreadable file is reported through ErrorLog and reads as empty.
std::string GetPrevValue(Session& session, std::string_view section, std::string_view key);
// Abbreviates the value with the same macros and writes it. A failed write is logged (no message),
// as the program goes on without the remembered value.
void SetPrevValue(Session& session, std::string_view section, std::string_view key, std::string_view value);
// As GetPrevValue for any file (print option files).
std::string GetIniValue(Session& session, const std::filesystem::path& file, std::string_view section, std::string_view key);

}  // namespace velmora
