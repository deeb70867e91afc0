// Reading and writing ERD files of 1,000,000 samples (a profile of 100 km at 0.1 m), the size a
// network survey gives. Reports time per sample.
#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>

#include "base/session.h"
#include "base/user_interaction.h"
#include "profile/erd_file.h"
#include "synthetic_erd.h"

namespace {

// The benchmarks ask nothing and log into no folder: one silent session serves them all.
velmora::Session session;

constexpr std::int32_t kSamples = 1'000'000;

velmora::ErdRecord SyntheticRecord() {
  return velmora::bench::SyntheticErd(kSamples, 0.1,
                                      [](std::int32_t i) { return 5.0 * std::sin(0.001 * i) + 0.3 * std::sin(0.37 * i); });
}

const std::string& BenchFile() {
  static const std::string path = [] {
    const auto file = std::filesystem::temp_directory_path() / "velmora_erd_bench_1M.erd";
    velmora::WriteERD(file.string(), SyntheticRecord());
    return file.string();
  }();
  return path;
}

void BM_ReadERD_1M(benchmark::State& state) {
  const std::string& path = BenchFile();
  for (auto _ : state) {
    velmora::ErdRecord rec;
    benchmark::DoNotOptimize(velmora::ReadERD(session, path, rec));
    if (rec.NumSamples != kSamples) state.SkipWithError("wrong sample count");
  }
  state.SetItemsProcessed(state.iterations() * kSamples);
  state.counters["ns/sample"] = benchmark::Counter(static_cast<double>(state.iterations()) * kSamples,
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_ReadERD_1M)->Unit(benchmark::kMillisecond);

void BM_WriteERD_1M(benchmark::State& state) {
  const velmora::ErdRecord rec = SyntheticRecord();
  const auto path = (std::filesystem::temp_directory_path() / "velmora_erd_bench_write.erd").string();
  for (auto _ : state) benchmark::DoNotOptimize(velmora::WriteERD(path, rec));
  std::filesystem::remove(path);
  state.SetItemsProcessed(state.iterations() * kSamples);
}
BENCHMARK(BM_WriteERD_1M)->Unit(benchmark::kMillisecond);

}  // namespace
