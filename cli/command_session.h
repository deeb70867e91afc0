#pragma once
// What every analysis command does before and after its own part: the program's start-up, a
// workbench with the command's files registered and selected, and the export into -o.
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "base/session.h"
#include "base/startup.h"
#include "cli_ui.h"
#include "command_registry.h"
#include "workbench/make_result_files.h"
#include "workbench/workbench.h"

namespace velmora::cli {

// One command's engine: its interaction (answers from the flags), the session that holds settings,
// conditions and folders, and the workbench over them.
struct CommandSession {
  explicit CommandSession(const CommonOptions& common) : Ui(common) {}
  CliUi Ui;
  Session Engine{Ui};
  StartUpResult Start;
  workbench::Workbench Bench{Engine};
};

// Start-up (settings from --settings or the program's folder, SWDEBUG and DebugLevel 1 with
// --debug), then the files registered in order and selected on `tab`, and the position axis from
// --position/--unit. Null when start-up or a file failed; the reason has been shown on stderr.
std::unique_ptr<CommandSession> OpenSession(const CommonOptions& common, const std::vector<std::string>& files, int tab);

// Exports one kind for the rows selected on the request's tab into -o; false when nothing was written.
bool Export(CommandSession& session, const workbench::ExportRequest& request);

// The per-band files of the octave and band-reduction commands, beside their all-in-one file.
struct BandFileOptions {
  std::vector<int> Bands;  // --bands 1,2,...: one file per octave
  bool Sum = false;        // --sum: the nine bands summed
  bool Long = false;       // --long: the long-wave sum (octaves of TOLVAVERI.ini)
  bool Short = false;      // --short: the short-wave sum
};
void AddBandFileFlags(CLI::App& command, BandFileOptions& options);
// Exports the all-in-one kind and the requested per-band kinds; kinds are given as all, one band,
// sum, long, short. False when any export wrote nothing.
bool ExportBandFiles(CommandSession& session, int tab, const BandFileOptions& options,
                     const std::array<ExportKind, 5>& kinds);

// Adds the FILE... positional argument (ERD files) to a command.
void AddFilesArgument(CLI::App& command, std::vector<std::string>& files);

}  // namespace velmora::cli
