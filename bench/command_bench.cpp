// Whole commands of the `velmora` program on a profile of 10^6 samples at 0.01 m (10 km), and the
// verification on a pair of 400 m at 0.01 m, as a user runs them: start-up, reading, the computation and every result file. Reports wall time and the
// child's peak memory (resident set, bytes per sample), so figures can be compared run to run.
// Run with the program built beside this benchmark: build/bin/command_bench.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <cmath>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "profile/erd_file.h"
#include "synthetic_erd.h"

extern char** environ;

namespace {

namespace fs = std::filesystem;
constexpr std::int32_t kSamples = 1'000'000;

// A rough road: a random walk of 0.05 mm steps on a 9 km swell, the shape of a measured wheel path.
const fs::path& Folder() {
  static const fs::path folder = [] {
    const fs::path f = fs::temp_directory_path() / "velmora_command_bench";
    fs::create_directories(f / "home");
    std::mt19937_64 random(3);
    std::normal_distribution<double> step(0.0, 0.05);
    double walk = 0;
    const velmora::ErdRecord rec = velmora::bench::SyntheticErd(
        kSamples, 0.01, [&](std::int32_t i) { return (walk += step(random)) + 2 * std::sin(0.0007 * i); });
    velmora::WriteERD((f / "road.erd").string(), rec);
    return f;
  }();
  return folder;
}

// Two runs of a profiler over 400 m at 0.01 m (40,000 samples), the second 7 samples behind the
// first, for the verification checked at half the length.
const std::vector<std::string>& Pair() {
  static const std::vector<std::string> files = [] {
    std::mt19937_64 random(5);
    std::normal_distribution<double> step(0.0, 0.05);
    std::vector<double> walk(40'007);
    double level = 0;
    for (double& v : walk) v = (level += step(random));
    std::vector<std::string> paths;
    for (const int behind : {0, 7}) {
      const fs::path path = Folder() / ("pass" + std::to_string(behind) + ".erd");
      velmora::WriteERD(path.string(), velmora::bench::SyntheticErd(40'000, 0.01, [&](std::int32_t i) {
                          return walk[static_cast<std::size_t>(i - 1 + 7 - behind)];
                        }));
      paths.push_back(path.string());
    }
    return paths;
  }();
  return files;
}

// Runs velmora with `arguments` on `files` once; the child's peak resident set in bytes.
long RunOnce(const std::vector<std::string>& arguments, const std::vector<std::string>& files) {
  const fs::path out = Folder() / "out";
  fs::remove_all(out);
  std::vector<std::string> words = {(fs::path(VELMORA_BIN_DIR) / "velmora").string(), "--quiet", "-o", out.string()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  words.insert(words.end(), files.begin(), files.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  const std::string home = "VELMORA_HOME=" + (Folder() / "home").string();
  std::vector<char*> env = {const_cast<char*>(home.c_str()), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  if (posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), env.data()) != 0) return -1;
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  rusage usage{};
  if (wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0) return -1;
  return usage.ru_maxrss * 1024L;
}

void Timed(benchmark::State& state, const std::vector<std::string>& arguments, const std::vector<std::string>& files,
           std::int32_t samples) {
  long peak = 0;
  for (auto _ : state) {
    peak = RunOnce(arguments, files);
    if (peak < 0) state.SkipWithError("the command failed");
  }
  state.counters["peak_MB"] = static_cast<double>(peak) / 1e6;
  state.counters["bytes_per_sample"] = static_cast<double>(peak) / samples;
}

void Command(benchmark::State& state, std::vector<std::string> arguments) {
  Timed(state, arguments, {(Folder() / "road.erd").string()}, kSamples);
}

void CommandOnPair(benchmark::State& state, std::vector<std::string> arguments) {
  Timed(state, arguments, Pair(), 2 * 40'000);
}

}  // namespace

BENCHMARK_CAPTURE(Command, iri, std::vector<std::string>{"iri", "--length", "10"})->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);
BENCHMARK_CAPTURE(Command, iri_bands, std::vector<std::string>{"iri", "--length", "10", "--bands"})->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);
BENCHMARK_CAPTURE(Command, octave, std::vector<std::string>{"octave"})->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);
BENCHMARK_CAPTURE(Command, reduce, std::vector<std::string>{"reduce"})->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);
BENCHMARK_CAPTURE(Command, summary, std::vector<std::string>{"summary"})->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);
BENCHMARK_CAPTURE(Command, repair, std::vector<std::string>{"repair"})->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);
// The study with the settings' boundaries and no band line: all five files, the ideal shape's the
// largest (33 columns, 27 of them octave bands of M, M' and M'').
BENCHMARK_CAPTURE(Command, repair_no_lines, std::vector<std::string>{"repair", "--long", "51.2", "--short", "4", "--length", "10", "--lines", ",,,,,,,,"})->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);
// The verification as shipped (IRI filter, and the save's second run without it) and on the
// elevations alone.
BENCHMARK_CAPTURE(CommandOnPair, xcorr_half, std::vector<std::string>{"xcorr", "--max-shift", "half"})->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);
BENCHMARK_CAPTURE(CommandOnPair, xcorr_half_unfiltered, std::vector<std::string>{"xcorr", "--max-shift", "half", "--filter", "none"})->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);
