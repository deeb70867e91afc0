#pragma once
// What one run of the program shares between main and its command: the command's name, the private
// scratch tree, the stop asked for by SIGINT/SIGTERM, one time stamp for every file name, the lines
// for stdout, the results and written files for --json, and the exit status.
#include <atomic>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace velmora::cli {

// Exit statuses, as documented by `velmora --help` and the README.
enum ExitStatus : int {
  kExitOk = 0,
  kExitFailed = 1,        // the work failed: bad data, a refused analysis, a file that cannot be written
  kExitUsage = 2,         // unknown flag, bad value, missing file argument
  kExitInterrupted = 130  // SIGINT or SIGTERM
};

struct RunContext {
  std::string Command;               // the subcommand, as messages name it
  std::filesystem::path Scratch;     // this run's private user-local tree
  std::filesystem::path OutputDir;   // -o
  std::tm Stamp{};                   // the run's time, in every name that carries one
  bool NoTimestamp = false;
  bool Replace = false;              // existing targets are replaced (stable names); else a free name
  bool Json = false;
  std::atomic<bool> Interrupted{false};
  bool UsageError = false;           // a flag's value was refused (exit 2 rather than 1)
  std::vector<std::string> Inputs;
  nlohmann::json Results = nlohmann::json::array();
  std::vector<std::string> Written;  // final paths, in order

  // Where the engine's save and folder dialogs point (made with the scratch tree): files wait here
  // until the run has succeeded.
  std::filesystem::path Staging() const { return Scratch / "Output"; }
  // A line of the command's text output on stdout (none with --json, which prints one object).
  void Say(const std::string& line) const;
  // Adds one result object for --json.
  void Result(nlohmann::json object) { Results.push_back(std::move(object)); }
};

// "velmora: COMMAND: WHAT: why" on stderr; an empty `what` is left out.
void PrintProblem(const RunContext& run, const std::string& what, const std::string& why);

}  // namespace velmora::cli
