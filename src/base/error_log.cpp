#include "base/error_log.h"

#include <filesystem>
#include <optional>
#include <string>

#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/text_encoding.h"

namespace velmora {
namespace {
std::string Stamp() { return FormatDateTime(LocalNow(), "YYYY/MM/DD HH:MM:SS"); }
std::filesystem::path Under(const std::string& folder, const char* name) {
  return std::filesystem::path(folder) / name;
}
}  // namespace

void ErrorLog(Session& session, std::string_view moduleName, std::string_view procName, const std::exception& error,
              bool quiet) {
  const std::string text = error.what();
  std::string line = Stamp();
  line.append("  [ ").append(moduleName).append(" : ").append(procName).append(" ]  ERROR : ").append(text);
  // Without a TempPath the line would land in the working folder, which is nobody's log.
  std::optional<LegacyError> logFailure;
  if (!session.Paths.TempPath.empty()) {
    try {
      AppendSystemTextLine(Under(session.Paths.TempPath, "Sorvik_Err.log"), line);
    } catch (const LegacyError& failure) {
      logFailure = failure;
    }
  }
  if (!quiet) session.Ui().ReportError(text, std::string(moduleName) + " : " + std::string(procName));
  if (logFailure) throw *logFailure;
}

void DebugStart(const Session& session) {
  WriteSystemTextFile(Under(session.Paths.UserLocalPath, "debug.log"), {Stamp() + " : [START]"});
}

}  // namespace velmora
