#include "command_session.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

#include "base/common.h"
#include "base/file_helpers.h"
#include "messages.h"
#include "workbench/project_commands.h"

#include "base/legacy_format.h"
#include "base/settings.h"

namespace velmora::cli {

std::vector<std::string> InputFiles(const RunContext& run, const std::vector<std::string>& arguments) {
  namespace fs = std::filesystem;
  std::vector<std::string> files;
  for (const std::string& argument : arguments) {
    if (argument == "-") {
      for (std::string line; std::getline(std::cin, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!line.empty()) files.push_back(line);
      }
      continue;
    }
    if (!fs::is_directory(argument)) {
      files.push_back(argument);
      continue;
    }
    std::vector<std::string> found;
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator(argument, ec))
      if (entry.is_regular_file() && MatchFilePattern(entry.path().filename().string(), "*.erd"))
        found.push_back(entry.path().string());
    if (found.empty()) {
      PrintProblem(run, argument, Tr("no ERD file in this folder"));
      return {};
    }
    std::sort(found.begin(), found.end());
    files.insert(files.end(), found.begin(), found.end());
  }
  for (const std::string& file : files)
    if (!fs::is_regular_file(file)) {
      PrintProblem(run, file, fs::exists(file) ? Tr("not a file") : Tr("no such file"));
      return {};
    }
  return files;
}

std::unique_ptr<CommandSession> OpenSession(const CommonOptions& common, const std::vector<std::string>& arguments, int tab) {
  RunContext& run = *common.Run;
  const std::vector<std::string> files = InputFiles(run, arguments);
  if (files.empty() && !arguments.empty()) return nullptr;
  run.Inputs = files;
  auto session = std::make_unique<CommandSession>(common);
  session->Bench.UndoStoppedGo = false;  // an interrupt ends the run: nothing to put back
  StartUpOptions options;
  options.CommandLine = common.Debug ? "SWDEBUG" : "";
  options.AppPathOverride = common.SettingsDir;
  options.ScratchRoot = run.Scratch.string();
  session->Engine.NameTime = run.Stamp;
  session->Start = StartUp(session->Engine, options);
  if (!session->Start.MayGoOn) return nullptr;
  if (common.Debug) session->Engine.Settings.DebugLevel = 1;

  workbench::Workbench& bench = session->Bench;
  bench.FormLoad();
  bench.Axis.Mode = common.Position == "kp" ? PositionMode::Kp : PositionMode::ZeroBased;
  bench.Axis.Unit = common.Unit == "km" ? KpUnit::Km : KpUnit::M;
  if (!common.Project.empty()) {
    run.Inputs = {common.Project};
    if (!workbench::ReadProjectData(bench, common.Project)) return nullptr;
  }
  // The tab is entered before it is computed: entering a tab with dirty results computes it with
  // the inputs in force, and the command has yet to set its own; Go computes once with them.
  const bool dirty = bench.TabDirty[static_cast<std::size_t>(tab)];
  bench.TabDirty[static_cast<std::size_t>(tab)] = false;
  bench.TabClick(tab);
  bench.TabDirty[static_cast<std::size_t>(tab)] = dirty;
  if (!bench.RegisterFiles(files, false)) return nullptr;
  bench.SelectAll(tab);
  return session;
}

bool CheckIriLengthFlag(CommandSession& session) {
  CliUi::FlagCheck check(session.Ui, {{"--length", "", "m"}});
  return session.Bench.StoreInputs(workbench::tab::Iri);
}

bool Export(CommandSession& session, const workbench::ExportRequest& request) {
  return !workbench::MakeResultFiles(session.Bench, request, session.Run.Stamp).Files.empty();
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

std::optional<std::array<std::string, 10>> NineLimits(RunContext& run, const std::string& text) {
  // Split by hand: a trailing comma is a blank ninth limit, not a missing one.
  std::vector<std::string> parts{""};
  for (char c : text) {
    if (c == ',') parts.emplace_back();
    else parts.back() += c;
  }
  if (parts.size() != 9) {
    PrintProblem(run, "--lines", Tr("nine limits (mm) are needed, separated by commas; got {}", std::to_string(parts.size())));
    return std::nullopt;
  }
  std::array<std::string, 10> lines{};
  for (std::size_t k = 1; k <= 9; ++k) {
    lines[k] = Trim(parts[k - 1]);
    if (!lines[k].empty() && !ParseNumber(lines[k])) {
      PrintProblem(run, "--lines", Tr("limit {} \"{}\" is not a number (mm)", std::to_string(k), lines[k]));
      return std::nullopt;
    }
  }
  return lines;
}

bool StageProjectProfile(CommandSession& session, const std::string& fileName) {
  namespace fs = std::filesystem;
  const fs::path source = fs::path(ProjectProfileFolder(session.Engine)) / fileName;
  std::error_code ec;
  fs::copy_file(source, session.Run.Staging() / fileName, fs::copy_options::overwrite_existing, ec);
  if (ec) PrintProblem(session.Run, source.string(), ec.message());
  return !ec;
}

CLI::Validator WholeNumberFrom(int least) {
  return CLI::Validator(
      [least](std::string& text) {
        const auto value = ParseNumber(text);
        if (value && *value == static_cast<int>(*value) && *value >= least) return std::string();
        return Tr("\"{}\" is not a whole number of at least {}", text, std::to_string(least));
      },
      "");
}

void AddFilesArgument(CLI::App& command, std::vector<std::string>& files) {
  // Required unless --project is given: main checks the two together.
  command.add_option("FILE", files,
                     "ERD profile files (elevations in mm), folders of them, or - for a list on stdin; or --project");
}

void ApplyMaxShift(CorrelationOptions& options, const std::string& text) {
  options.MaxShiftMode = text == "half" ? 0 : 1;
  if (options.MaxShiftMode == 1) options.MaxShiftText = text;
}

}  // namespace velmora::cli
