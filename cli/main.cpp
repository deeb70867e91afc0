// velmora: the command-line front end of the workbench. Each command registers itself (cmd_*.cpp).
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <exception>

#include "command_registry.h"

using velmora::cli::CommonOptions;

int main(int argc, char** argv) {
  CLI::App app{"velmora: road profiles in, IRI, filters, octave bands, PSD, statistics, profiler "
               "verification and repair-shape study out. Elevations in mm, distances in m, KP in km, "
               "IRI in mm/m."};
  app.set_version_flag("--version", "velmora 0.1.0");
  app.require_subcommand(1);
  app.fallthrough();

  CommonOptions common;
  app.add_option("-o,--output", common.OutputDir, "folder for result files")->capture_default_str();
  app.add_option("--settings", common.SettingsDir, "folder holding Default.ini and TOLVAVERI.ini");
  app.add_option("--position", common.Position, "position axis: zero (m from the start) or kp")
      ->check(CLI::IsMember({"zero", "kp"}))->capture_default_str();
  app.add_option("--unit", common.Unit, "unit of KP positions: m or km")
      ->check(CLI::IsMember({"m", "km"}))->capture_default_str();
  auto* yes = app.add_flag("--yes", common.Yes, "answer every question with Yes/OK");
  app.add_flag("--no", common.No, "answer every question with No/Cancel")->excludes(yes);
  app.add_flag("--debug", common.Debug, "write debug tables (DebugLevel 1, SWDEBUG)");
  app.add_flag("--quiet", common.Quiet, "no progress bar and no confirmations of saved files");

  auto& commands = velmora::cli::Commands();
  std::sort(commands.begin(), commands.end(), [](const auto& a, const auto& b) { return a.Name < b.Name; });
  std::vector<std::pair<CLI::App*, std::function<int()>>> runners;
  for (const auto& entry : commands) {
    CLI::App* command = app.add_subcommand(entry.Name, entry.Description);
    runners.emplace_back(command, entry.Setup(*command, common));
  }

  CLI11_PARSE(app, argc, argv);

  try {
    for (auto& [command, run] : runners)
      if (command->parsed()) return run();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "velmora: %s\n", error.what());
    return 1;
  }
  return 0;
}
