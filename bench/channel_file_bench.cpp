// Reading profilers' files of 1,000,000 samples per wheel path (a two-channel ERD in feet and a .PRO
// in mil, 76 km at 3 in), and MRI with HRI of the two paths. Reports time per sample (per line).
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <string>

#include "analysis/pair_roughness.h"
#include "base/text_encoding.h"
#include "profile/channel_file.h"

namespace {

constexpr std::int32_t kSamples = 1'000'000;

double Height(std::int32_t i, double phase) { return 0.02 * std::sin(0.001 * i + phase) + 0.001 * std::sin(0.37 * i); }

const std::string& BenchFile(const char* name) {
  static std::map<std::string, std::string> paths;
  auto& path = paths[name];
  if (!path.empty()) return path;
  const bool pro = std::string(name).ends_with(".PRO");
  std::string text = pro ? "HEAD3,1\r\nCMET3,1\r\nDynatest,mil,LR,3,i\r\nGPS\r\nComment\r\n"
                         : "ERDFILEV2.00\r\n2, 1000000, -1, 1, 5, 0.25, -1,\r\nTITLE   bench\r\n"
                           "SHORTNAMLElev.  RElev.  \r\nUNITSNAMft      ft      \r\nXUNITS  ft\r\nEND\r\n";
  char line[64];
  for (std::int32_t i = 0; i < kSamples; ++i) {
    if (pro) std::snprintf(line, sizeof line, "%d,%d,0\r\n", int(1e5 * Height(i, 0)), int(1e5 * Height(i, 1)));
    else std::snprintf(line, sizeof line, "%.6f %.6f \r\n", Height(i, 0), Height(i, 1));
    text += line;
  }
  path = (std::filesystem::temp_directory_path() / (std::string("velmora_channel_bench_") + name)).string();
  velmora::WriteFileBytesAtomically(path, text);
  return path;
}

void ReadBench(benchmark::State& state, const char* name) {
  const std::string& path = BenchFile(name);
  for (auto _ : state) {
    const velmora::ChannelFile file = velmora::ReadChannelFile(path);
    if (file.SampleCount() != kSamples) state.SkipWithError("wrong sample count");
    benchmark::DoNotOptimize(file.Heights.data());
  }
  state.SetItemsProcessed(state.iterations() * kSamples);
  state.counters["ns/sample"] = benchmark::Counter(static_cast<double>(state.iterations()) * kSamples,
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_ReadTwoChannelErd_1M(benchmark::State& state) { ReadBench(state, "1M.erd"); }
BENCHMARK(BM_ReadTwoChannelErd_1M)->Unit(benchmark::kMillisecond);

void BM_ReadPro_1M(benchmark::State& state) { ReadBench(state, "1M.PRO"); }
BENCHMARK(BM_ReadPro_1M)->Unit(benchmark::kMillisecond);

void BM_PairRoughness_1M(benchmark::State& state) {
  std::vector<double> left(kSamples), right(kSamples);
  for (std::int32_t i = 0; i < kSamples; ++i) left[i] = 1e3 * Height(i, 0), right[i] = 1e3 * Height(i, 1);
  velmora::PairRequest request;
  request.Params.InitFilter = 11;  // rates 0: the golden car
  for (auto _ : state) benchmark::DoNotOptimize(velmora::CalcPairRoughness(left, right, 0.0762, request).Hri);
  state.SetItemsProcessed(state.iterations() * kSamples);
}
BENCHMARK(BM_PairRoughness_1M)->Unit(benchmark::kMillisecond);

}  // namespace
