#include "command_session.h"

#include <filesystem>

#include "base/legacy_format.h"
#include "base/settings.h"

namespace velmora::cli {

std::unique_ptr<CommandSession> OpenSession(const CommonOptions& common, const std::vector<std::string>& files, int tab) {
  auto session = std::make_unique<CommandSession>(common);
  StartUpOptions options;
  options.CommandLine = common.Debug ? "SWDEBUG" : "";
  options.AppPathOverride = common.SettingsDir;
  // Every run rebuilds the one scratch tree of the user, so two at once must not overlap.
  options.SingleInstance = true;
  session->Start = StartUp(session->Engine, options);
  if (!session->Start.MayGoOn) return nullptr;
  if (common.Debug) session->Engine.Settings.DebugLevel = 1;

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

bool Export(CommandSession& session, const workbench::ExportRequest& request) {
  return !workbench::MakeResultFiles(session.Bench, request, LocalNow()).Files.empty();
}

void AddBandFileFlags(CLI::App& command, BandFileOptions& options) {
  command.add_option("--bands", options.Bands, "also one file per octave, e.g. 1,5,9 (mm)")
      ->delimiter(',')->check(CLI::Range(1, 9));
  command.add_flag("--sum", options.Sum, "also the nine bands summed (mm)");
  command.add_flag("--long", options.Long, "also the long-wave sum of the octaves listed in TOLVAVERI.ini (mm)");
  command.add_flag("--short", options.Short, "also the short-wave sum of the octaves listed in TOLVAVERI.ini (mm)");
}

bool ExportBandFiles(CommandSession& session, int tab, const BandFileOptions& options,
                     const std::array<ExportKind, 5>& kinds) {
  workbench::ExportRequest request{kinds[0], false, tab, {}};
  bool ok = Export(session, request);
  if (!options.Bands.empty()) {
    request.Kind = kinds[1];
    request.Options.Octaves = options.Bands;
    ok = Export(session, request) && ok;
  }
  const std::array<bool, 3> wanted{options.Sum, options.Long, options.Short};
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    if (!wanted[i]) continue;
    request.Kind = kinds[i + 2];
    ok = Export(session, request) && ok;
  }
  return ok;
}

void AddFilesArgument(CLI::App& command, std::vector<std::string>& files) {
  command.add_option("FILE", files, "ERD profile files (elevations in mm)")->required();
}

}  // namespace velmora::cli
