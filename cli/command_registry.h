#pragma once
// Each command of the `velmora` program lives in its own cli/cmd_*.cpp and registers itself here with
// VELMORA_COMMAND, so commands are added without touching main.cpp.
#include <CLI/CLI.hpp>

#include <functional>
#include <string>
#include <vector>

namespace velmora::cli {

struct RunContext;

// Flags common to every command.
struct CommonOptions {
  std::string OutputDir = ".";   // -o DIR: where result files go
  std::string SettingsDir;       // --settings DIR: folder of Default.ini and TOLVAVERI.ini
  std::string Position = "zero"; // --position zero|kp
  std::string Unit = "m";        // --unit m|km
  bool Yes = false;              // --yes: answer questions with Yes/OK
  bool No = false;               // --no: answer questions with No/Cancel
  bool Debug = false;            // --debug: DebugLevel 1 and SWDEBUG
  bool Quiet = false;            // --quiet: no progress bar, no notes; problems still to stderr
  std::string Lang;              // --lang ja|en (else from the locale)
  bool NoTimestamp = false;      // --no-timestamp: stable names, replaced in one step
  bool Json = false;             // --json: one JSON object on stdout
  std::string Project;           // --project P.prj: its profiles and conditions in place of FILE
  RunContext* Run = nullptr;     // set by main before the command runs
};

// Sets up the subcommand's own options and returns the function that runs it (exit status).
using CommandSetup = std::function<std::function<int()>(CLI::App& command, const CommonOptions& common)>;

struct CommandEntry {
  std::string Name;
  std::string Description;
  CommandSetup Setup;
};

std::vector<CommandEntry>& Commands();

struct CommandRegistrar {
  CommandRegistrar(std::string name, std::string description, CommandSetup setup) {
    Commands().push_back({std::move(name), std::move(description), std::move(setup)});
  }
};

}  // namespace velmora::cli

#define VELMORA_CLI_CONCAT_(a, b) a##b
#define VELMORA_CLI_CONCAT(a, b) VELMORA_CLI_CONCAT_(a, b)
// VELMORA_COMMAND("iri", "IRI of profiles", [](CLI::App& cmd, const CommonOptions& common) { ... });
// The setup is variadic so that braces with commas inside it need no extra parentheses.
#define VELMORA_COMMAND(name, description, ...)                                                  \
  static const ::velmora::cli::CommandRegistrar VELMORA_CLI_CONCAT(velmora_command_, __LINE__){ \
      name, description, __VA_ARGS__}
