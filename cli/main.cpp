// velmora: the command-line front end of the workbench. Each command registers itself (cmd_*.cpp);
// this file parses the command line, gives the run its private scratch tree and watch for SIGINT and
// SIGTERM, moves the finished files into -o and turns the outcome into the exit status.
#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>

#include "base/folders.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/memory_tunables.h"
#include "base/progress.h"
#include "command_registry.h"
#include "help_files.h"
#include "interrupts.h"
#include "messages.h"
#include "run_context.h"
#include "run_files.h"

using namespace velmora::cli;

namespace {

// --lang must be known before the help texts are made, so it is looked for ahead of the parser.
std::string LangFlag(int argc, char** argv) {
  for (int k = 1; k < argc; ++k) {
    if (std::strcmp(argv[k], "--lang") == 0 && k + 1 < argc) return argv[k + 1];
    if (std::strncmp(argv[k], "--lang=", 7) == 0) return argv[k] + 7;
  }
  return {};
}

// The help texts of a command and its own subcommands in the language in force.
void TranslateHelp(CLI::App& app) {
  app.description(Tr(app.get_description().c_str()));
  for (CLI::Option* option : app.get_options()) option->description(Tr(option->get_description().c_str()));
  for (CLI::App* sub : app.get_subcommands({})) TranslateHelp(*sub);
}

// A refused command line: its one-line message and status 2 (0 for --help and --version).
int ParseFailure(CLI::App& app, const CLI::ParseError& error, RunContext& run) {
  if (error.get_exit_code() == 0) return app.exit(error);
  for (CLI::App* sub : app.get_subcommands()) run.Command = sub->get_name();
  std::string what, why = error.what();
  if (dynamic_cast<const CLI::ExtrasError*>(&error)) {
    const auto colon = why.find(": ");
    what = colon == std::string::npos ? std::string() : why.substr(colon + 2);
    why = Tr("not an option or argument of this command (see --help)");
  } else if (dynamic_cast<const CLI::RequiredError*>(&error)) {
    what = why.substr(0, why.find(' '));
    why = Tr("is required (see --help)");
  } else if (const auto colon = why.find(": "); colon != std::string::npos && why.rfind("-", 0) == 0) {
    what = why.substr(0, colon);
    why = why.substr(colon + 2);
  }
  PrintProblem(run, what, why);
  return kExitUsage;
}

void PrintJson(const RunContext& run, int status) {
  nlohmann::json out;
  out["command"] = run.Command;
  out["inputs"] = run.Inputs;
  out["exit_status"] = status;
  out["results"] = run.Results;
  out["files"] = run.Written;
  std::printf("%s\n", out.dump(2).c_str());
}

// The scratch tree's error log, kept beside the user's data: the details of what went wrong.
std::filesystem::path KeptErrorLog() {
  const std::string home = velmora::ResolveFolderPath(velmora::kFolderLocalAppDataCreate, velmora::ReadFolderEnvironment());
  return std::filesystem::path(home.empty() ? "." : home) / "Velmora" / "Log" / "velmora-cli-error.log";
}

// The FILE of the analysis commands (left optional for the parser) is required unless --project
// (or iri's --pair) stands in its place; FILE and --project together are refused.
template <class Runners>
int CheckFilesOrProject(const Runners& runners, const CommonOptions& common, RunContext& run) {
  for (const auto& [command, runner] : runners) {
    const CLI::Option* files = command->parsed() ? command->get_option_no_throw("FILE") : nullptr;
    if (files == nullptr || files->get_required()) continue;
    // iri --pair names its two files itself.
    const CLI::Option* pair = command->get_option_no_throw("--pair");
    if (files->empty() && common.Project.empty() && (pair == nullptr || pair->empty())) {
      PrintProblem(run, "FILE", Tr("is required (see --help)"));
      return kExitUsage;
    }
    if (!files->empty() && !common.Project.empty()) {
      PrintProblem(run, "--project", Tr("takes the place of FILE: give one or the other"));
      return kExitUsage;
    }
  }
  return kExitOk;
}

}  // namespace

int main(int argc, char** argv) {
  velmora::RestartWithMallocTunables(argv);
  velmora::UseLanguage(velmora::ChooseLanguage(LangFlag(argc, argv)));
  CLI::App app{"velmora: road profiles in, IRI, filters, octave bands, PSD, statistics, profiler verification and "
               "repair-shape study out. Elevations in mm, distances in m, KP in km, IRI in mm/m."};
  app.set_version_flag("--version", "velmora 0.1.0");
  app.require_subcommand(0, 1);
  app.fallthrough();
  app.footer(Tr("Exit status: 0 done; 1 the work failed (bad data, a refused analysis, a file that cannot be "
                "written); 2 usage (unknown flag, bad value, missing file argument); 130 interrupted."));

  CommonOptions common;
  RunContext run;
  common.Run = &run;
  app.add_option("-o,--output", common.OutputDir, "folder for result files")->capture_default_str();
  app.add_option("--settings", common.SettingsDir, "folder holding Default.ini and TOLVAVERI.ini");
  app.add_option("--position", common.Position, "position axis: zero (m from the start) or kp")
      ->check(CLI::IsMember({"zero", "kp"}))->capture_default_str();
  app.add_option("--unit", common.Unit, "unit of KP positions: m or km")
      ->check(CLI::IsMember({"m", "km"}))->capture_default_str();
  auto* yes = app.add_flag("--yes", common.Yes, "answer every question with Yes/OK");
  app.add_flag("--no", common.No, "answer every question with No/Cancel")->excludes(yes);
  app.add_flag("--debug", common.Debug, "write debug tables (DebugLevel 1, SWDEBUG); the scratch tree is kept");
  app.add_flag("--quiet", common.Quiet, "no progress bar and no notes; problems are still shown");
  app.add_option("--lang", common.Lang, "language of messages and help: ja or en (default: from LANG)")
      ->check(CLI::IsMember({"ja", "en"}));
  app.add_flag("--no-timestamp", common.NoTimestamp,
               "file names without the run's date and time; an existing file is replaced");
  app.add_flag("--json", common.Json, "print one JSON object: command, inputs, results, files written");
  app.add_option("--project", common.Project,
                 "a project file (.prj): its profiles and conditions in place of FILE (analysis commands)");

  auto& commands = Commands();
  std::sort(commands.begin(), commands.end(), [](const auto& a, const auto& b) { return a.Name < b.Name; });
  std::vector<std::pair<CLI::App*, std::function<int()>>> runners;
  for (const auto& entry : commands) {
    CLI::App* command = app.add_subcommand(entry.Name, entry.Description);
    runners.emplace_back(command, entry.Setup(*command, common));
  }
  std::string generate;
  app.add_option("--generate", generate, "bash-completion or man: print that file (made at build time)")
      ->check(CLI::IsMember({"bash-completion", "man"}))->group("");
  TranslateHelp(app);
  for (const char* label : {"Usage", "Options", "OPTIONS", "Subcommands", "SUBCOMMAND", "SUBCOMMANDS", "Positionals", "REQUIRED"})
    app.get_formatter()->label(label, Tr(label));

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return ParseFailure(app, error, run);
  }

  if (!generate.empty()) {
    std::fputs((generate == "man" ? ManPage(app) : BashCompletion(app)).c_str(), stdout);
    return kExitOk;
  }
  run.OutputDir = common.OutputDir;
  run.NoTimestamp = common.NoTimestamp;
  run.Replace = common.NoTimestamp;
  run.Json = common.Json;
  run.Stamp = velmora::LocalNow();
  for (auto& [command, runner] : runners)
    if (command->parsed()) run.Command = command->get_name();
  if (run.Command.empty()) {
    PrintProblem(run, "COMMAND", Tr("is required (see --help)"));
    return kExitUsage;
  }
  if (const int status = CheckFilesOrProject(runners, common, run); status != kExitOk) return status;
  try {
    run.Scratch = MakeScratchTree();
    std::filesystem::create_directory(run.Staging());
  } catch (const std::exception& error) {
    PrintProblem(run, "", velmora::TrEngine(error.what()));
    return kExitFailed;
  }

  int status = kExitFailed;
  {
    InterruptWatch watch(run.Interrupted, run.Scratch);
    try {
      for (auto& [command, runner] : runners)
        if (command->parsed()) status = runner();
    } catch (const velmora::Cancelled&) {
      // A stop asked for while result files were being made, after the Go: the same end as in the Go.
      status = kExitInterrupted;
    } catch (const std::bad_alloc&) {
      // The inputs named: the user learns which profiles were too long for this machine's memory.
      PrintProblem(run, fmt::format("{}", fmt::join(run.Inputs, ", ")), velmora::TrEngine(velmora::kOutOfMemoryText));
      status = kExitFailed;
    } catch (const std::exception& error) {
      PrintProblem(run, "", velmora::TrEngine(error.what()));
      status = kExitFailed;
    }
    // Only a run that did its work leaves files: all of them, each complete.
    if (status == kExitOk && !run.Interrupted) {
      try {
        for (const std::string& path : PublishStaged(run.Staging(), run.OutputDir, run.Stamp, run.NoTimestamp, run.Replace)) {
          run.Written.push_back(path);
          run.Say(path);
        }
      } catch (const std::exception& error) {
        PrintProblem(run, "", velmora::TrEngine(error.what()));
        status = kExitFailed;
      }
    }
    if (run.Interrupted) status = kExitInterrupted;
    else if (status != kExitOk && run.UsageError) status = kExitUsage;
    AppendFile(run.Scratch / "Temp" / "Sorvik_Err.log", KeptErrorLog());
    if (common.Debug) PrintProblem(run, run.Scratch.string(), Tr("scratch tree kept (debug tables, debug.log)"));
    else RemoveTree(run.Scratch);
  }
  if (run.Json) PrintJson(run, status);
  return status;
}
