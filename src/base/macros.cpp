#include "base/macros.h"

#include "base/app_paths.h"
#include "base/common.h"
#include "base/legacy_format.h"

namespace velmora {
namespace {

// True when `path` begins with `folder` at a folder boundary, compared as uStrEqual does.
// Sets `restAt` to the byte offset in `path` where the rest begins.
bool BeginsWithFolder(std::string_view path, std::string_view folder, std::size_t& restAt) {
  std::size_t lead = 0;
  while (lead < path.size() && path[lead] == ' ') ++lead;
  const std::string want = UCase(Trim(folder));
  if (want.empty() || path.size() - lead < want.size()) return false;
  if (UCase(path.substr(lead, want.size())) != want) return false;
  restAt = lead + want.size();
  const bool endsInSeparator = want.back() == '/' || want.back() == '\\';
  return restAt == path.size() || endsInSeparator || path[restAt] == '/' || path[restAt] == '\\';
}

}  // namespace

std::string uReplaceMacro(std::string_view text, std::string_view macro, std::string_view value) {
  std::string out(text);
  if (macro.empty()) return out;
  const std::size_t at = UCase(text).find(UCase(macro));
  if (at != std::string::npos) out.replace(at, macro.size(), value);
  return out;
}

std::string uAbbreviatePathMacro(const AppPaths& paths, std::string_view path) {
  std::size_t restAt = 0;
  if (BeginsWithFolder(path, paths.AppPath, restAt)) return "$(AppPath)" + std::string(path.substr(restAt));
  if (BeginsWithFolder(path, paths.UserLocalPath, restAt))
    return "$(UserLocalPath)" + std::string(path.substr(restAt));
  return std::string(path);
}

std::string uExpandPathMacro(const AppPaths& paths, std::string_view text) {
  const std::string upper = UCase(text);
  if (upper.find("$(APPPATH)") != std::string::npos) return uReplaceMacro(text, "$(AppPath)", paths.AppPath);
  return uReplaceMacro(text, "$(UserLocalPath)", paths.UserLocalPath);
}

std::string uExpandDate(std::string_view text, const std::tm& now) {
  static constexpr std::string_view kFormats[] = {"YYYYMMDDHHNNSS", "YYYYMMDDHHNN", "YYYYMMDDHH", "YYYYMMDD",
                                                  "YYYYMM",         "YYYY",         "MM",         "DD",
                                                  "HH",             "NN",           "SS"};
  std::string out(text);
  for (const std::string_view format : kFormats) {
    const std::string macro = "$(" + std::string(format) + ")$";
    out = uReplaceMacro(out, macro, FormatDateTime(now, format));
  }
  return out;
}


}  // namespace velmora
