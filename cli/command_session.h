#pragma once
// What every analysis command does before and after its own part: the program's start-up, a
// workbench with the command's files registered and selected, and the export into -o.
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/session.h"
#include "base/startup.h"
#include "evaluation/cross_correlation.h"
#include "cli_ui.h"
#include "command_registry.h"
#include "workbench/make_result_files.h"
#include "workbench/workbench.h"

namespace velmora::cli {

// One command's engine: its interaction (answers from the flags), the session that holds settings,
// conditions and folders, and the workbench over them.
struct CommandSession {
  explicit CommandSession(const CommonOptions& common) : Run(*common.Run), Ui(common, Run) {}
  RunContext& Run;
  CliUi Ui;
  Session Engine{Ui};
  StartUpResult Start;
  workbench::Workbench Bench{Engine};
};

// Start-up in the run's private scratch tree (settings from --settings or the program's folder,
// SWDEBUG and DebugLevel 1 with --debug), the project of --project opened (its profiles and
// conditions), then the files registered in order and all profiles selected on `tab`,
// and the position axis from --position/--unit. Null when start-up or a file failed; the reason has
// been shown on stderr.
std::unique_ptr<CommandSession> OpenSession(const CommonOptions& common, const std::vector<std::string>& files, int tab);

// The FILE arguments as files: a folder stands for its ERD files in name order, "-" for the list of
// files on stdin (one per line). Empty when one is missing or a folder holds none; said on stderr.
std::vector<std::string> InputFiles(const RunContext& run, const std::vector<std::string>& arguments);

// The IRI tab's evaluation length (from --length) checked as Go checks it, the message naming the flag.
bool CheckIriLengthFlag(CommandSession& session);

// Exports one kind for the rows selected on the request's tab (into the run's staging folder, with
// the run's time in names); false when nothing was written.
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

// Copies a file of the session's project profile folder (a registered wave or copy) into the run's
// staging folder, so that it lands in -o with the result files; false, said on stderr, on failure.
bool StageProjectProfile(CommandSession& session, const std::string& fileName);

// A flag's value that must be a whole number of at least `least`; the message says so.
CLI::Validator WholeNumberFrom(int least);

// The nine band limits of --lines (mm, blank: no limit) as the band tab's boxes 1..9; nullopt, with
// the problem said as a usage error, when there are not nine or one is not a number.
std::optional<std::array<std::string, 10>> NineLimits(RunContext& run, const std::string& text);

// Adds the FILE... positional argument (ERD files, folders of them, or - for a list on stdin), which
// --project may stand in for.
void AddFilesArgument(CLI::App& command, std::vector<std::string>& files);

// --max-shift of the verification: "half" (half the length), else a whole number of samples, the
// tab's two choices.
void ApplyMaxShift(CorrelationOptions& options, const std::string& text);

}  // namespace velmora::cli
