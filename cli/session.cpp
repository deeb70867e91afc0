#include "session.h"

#include <filesystem>

#include "app/legacy_format.h"
#include "app/settings.h"

namespace velmora::cli {

std::unique_ptr<Session> OpenSession(const CommonOptions& common, const std::vector<std::string>& files, int tab) {
  auto session = std::make_unique<Session>();
  StartUpOptions options;
  options.CommandLine = common.Debug ? "SWDEBUG" : "";
  options.AppPathOverride = common.SettingsDir;
  session->Start = StartUp(options);
  if (!session->Start.MayGoOn) return nullptr;
  if (common.Debug) Settings().DebugLevel = 1;

  workbench::Workbench& bench = session->Bench;
  bench.FormLoad();
  bench.Axis.Mode = common.Position == "kp" ? PositionMode::Kp : PositionMode::ZeroBased;
  bench.Axis.Unit = common.Unit == "km" ? KpUnit::Km : KpUnit::M;
  for (const std::string& file : files)
    if (!std::filesystem::is_regular_file(file)) {
      std::fprintf(stderr, "velmora: %s: no such file\n", file.c_str());
      return nullptr;
    }
  if (!bench.RegisterFiles(files, false)) return nullptr;
  bench.SelectAll(tab);
  bench.TabClick(tab);
  return session;
}

bool Export(Session& session, const workbench::ExportRequest& request) {
  return !workbench::MakeResultFiles(session.Bench, request, LocalNow()).Files.empty();
}

void AddFilesArgument(CLI::App& command, std::vector<std::string>& files) {
  command.add_option("FILE", files, "ERD profile files (elevations in mm)")->required();
}

}  // namespace velmora::cli
