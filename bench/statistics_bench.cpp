// Statistics of 50 profiles of 100,000 samples (0.25 m, 25 km each) over all twelve bands, all five
// measures, the whole length and the 10, 100 and 200 m sections.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "base/session.h"
#include "base/user_interaction.h"
#include "evaluation/section_statistics.h"
#include "evaluation/statistics.h"

namespace {

// The benchmarks ask nothing and log into no folder: one silent session serves them all.
velmora::Session session;

constexpr int kProfiles = 50;
constexpr int kSamples = 100000;

std::vector<double> RoadLike(unsigned seed) {
  std::mt19937_64 random(seed);
  std::normal_distribution<double> noise(0.0, 0.5);
  std::vector<double> v(kSamples);
  double level = 0;
  for (auto& x : v) x = (level += noise(random));
  return v;
}

// The block statistics alone: 50 profiles x 12 band series x 4 section lengths.
void BM_SectionStatisticsAllBands(benchmark::State& state) {
  std::vector<std::vector<double>> series;
  for (int p = 0; p < kProfiles; ++p) series.push_back(RoadLike(static_cast<unsigned>(p)));
  const std::vector<std::int32_t> blocks = {kSamples, 40, 400, 800};
  for (auto _ : state) {
    for (const auto& s : series)
      for (int band = 0; band < 12; ++band)
        for (std::int32_t block : blocks) benchmark::DoNotOptimize(velmora::CalcSectionStatistics(s, block, 17));
  }
  state.counters["samples/s"] = benchmark::Counter(12.0 * 4 * kProfiles * kSamples, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_SectionStatisticsAllBands)->Unit(benchmark::kMillisecond);

// The whole run of the profile side with its pages; the octave split is done once before timing.
void BM_RunStatisticsProfileSide(benchmark::State& state) {
  velmora::ProfileList list;
  list.Items.resize(kProfiles);
  std::vector<std::int32_t> rows;
  for (int p = 1; p <= kProfiles; ++p) {
    velmora::ProfileRecord& r = list.Items[p];
    r.FileName = "P" + std::to_string(p) + ".erd";
    r.Erd.StepSize = 0.25;
    r.Erd.KpStart = 0.001 * p;
    r.WorkCount = kSamples;
    r.WorkProfile = velmora::Array1<double>(RoadLike(static_cast<unsigned>(p)));
    r.SamplesPerMetre = 4;
    rows.push_back(p);
  }
  velmora::StatisticsSelection selection;
  velmora::SwitchGroup(selection.ProfileBands, true);
  velmora::SwitchGroup(selection.ProfileMeasures, true);
  velmora::StatisticsResults results;
  velmora::RunStatistics(session, list, rows, selection, {}, results);  // splits the bands
  for (auto _ : state) benchmark::DoNotOptimize(velmora::RunStatistics(session, list, rows, selection, {}, results));
}
BENCHMARK(BM_RunStatisticsProfileSide)->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace
