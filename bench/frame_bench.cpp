// Costs of the frame's helpers on the hot paths of imports and exports: number formatting and
// parsing per value, the CSV tokeniser per line, and reading the default conditions per start.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "base/common.h"
#include "base/folders.h"
#include "base/ini_file.h"
#include "base/legacy_format.h"

namespace velmora {
namespace {

std::vector<double> Elevations(std::size_t n) {
  std::mt19937 random(7);
  std::normal_distribution<double> mm(0.0, 25.0);
  std::vector<double> values(n);
  for (double& v : values) v = mm(random);
  return values;
}

void BM_FormatNumber(benchmark::State& state) {
  const auto values = Elevations(1024);
  for (auto _ : state)
    for (const double v : values) benchmark::DoNotOptimize(FormatNumber(v, "0.00000"));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
}
BENCHMARK(BM_FormatNumber);

void BM_ParseNumber(benchmark::State& state) {
  std::vector<std::string> texts;
  for (const double v : Elevations(1024)) texts.push_back(FormatNumber(v, "0.00000"));
  for (auto _ : state)
    for (const auto& text : texts) benchmark::DoNotOptimize(ParseNumber(text));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(texts.size()));
}
BENCHMARK(BM_ParseNumber);

void BM_TokeniseCsvLine(benchmark::State& state) {
  const std::string line = "1,0.06307,-12.34567,\"路線, 上り\",0.00000,12.50000,3.25000,,-99999,END";
  for (auto _ : state) benchmark::DoNotOptimize(uToken(line, ","));
  state.SetItemsProcessed(state.iterations());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(line.size()));
}
BENCHMARK(BM_TokeniseCsvLine);

// The shipped Default.ini lies beside the benchmark program; one load and the reads of one start.
void BM_LoadDefaultIni(benchmark::State& state) {
  const std::filesystem::path path = std::filesystem::path(ProgramFolder()) / "Default.ini";
  if (!std::filesystem::exists(path)) {
    state.SkipWithError("Default.ini is not beside the program");
    return;
  }
  for (auto _ : state) {
    const IniDocument ini = IniDocument::Load(path);
    for (int band = 1; band <= 9; ++band)
      benchmark::DoNotOptimize(ini.Get("補修形状検討_バンド別低減ラインパラメータ", std::to_string(band) + "-Oct"));
    benchmark::DoNotOptimize(ini.Get("IRI解析パラメータ", "Speed"));
  }
}
BENCHMARK(BM_LoadDefaultIni);

}  // namespace
}  // namespace velmora
