// velmora: the command-line front end of the workbench.
#include <CLI/CLI.hpp>

#include <cstdio>

int main(int argc, char** argv) {
  CLI::App app{"velmora: longitudinal road profiles: IRI, filters, octave bands, PSD, statistics, "
               "verification and repair-shape study"};
  app.set_version_flag("--version", "velmora 0.1.0");
  app.require_subcommand(0, 1);
  CLI11_PARSE(app, argc, argv);
  if (app.get_subcommands().empty()) std::fputs(app.help().c_str(), stdout);
  return 0;
}
