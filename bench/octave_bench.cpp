// Speed of the octave split, band reduction and PSD on long profiles.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "analysis/band_reduction.h"
#include "analysis/octave.h"
#include "analysis/prepare_profile.h"
#include "analysis/psd.h"
#include "base/session.h"
#include "profile/profile_record.h"

namespace velmora {
namespace {

// The benchmarks ask nothing and log into no folder: one silent session serves them all.
velmora::Session session;

ProfileRecord RoadOf(std::int64_t n, double dx) {
  ProfileRecord record;
  record.Erd.StepSize = dx;
  record.WorkCount = static_cast<std::int32_t>(n);
  record.WorkProfile.assign_zero(n);
  for (std::int64_t i = 1; i <= n; ++i) {
    const double x = static_cast<double>(i) * dx;
    record.WorkProfile[i] = 5 * std::sin(x / 9.1) + 2 * std::sin(x / 1.3) + 0.5 * std::sin(x / 0.11) + 0.001 * x;
  }
  return record;
}

void SetPerSample(benchmark::State& state, std::int64_t n) {
  state.SetItemsProcessed(state.iterations() * n);
  state.counters["ns/sample"] = benchmark::Counter(static_cast<double>(n), benchmark::Counter::kIsIterationInvariantRate |
                                                                              benchmark::Counter::kInvert);
}

// Nine bands of one profile: one forward and nine inverse transforms of FftLength2.
void BM_SinglePassSplit(benchmark::State& state) {
  const std::int64_t n = state.range(0);
  ProfileRecord record = RoadOf(n, 0.01);
  PrepareProfile(DebugTables{}, record);
  for (auto _ : state) {
    const bool ok = DecomposeProfile(session, record, false, FilterConvergence{}, true);
    benchmark::DoNotOptimize(ok);
  }
  SetPerSample(state, n);
}
BENCHMARK(BM_SinglePassSplit)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// The peeling of n samples with at most `passes` passes a stage, ending a stage when the deviations
// stop shrinking by ratio / 10: a ratio of 0 never ends early (4 stages × passes, the worst case), 11
// is the default limit, which ends most stages after a few passes on a road like this one.
void BM_PeelingSplit(benchmark::State& state) {
  const std::int64_t n = state.range(0);
  ProfileRecord record = RoadOf(n, 0.01);
  PrepareProfile(DebugTables{}, record);
  const FilterConvergence limits{static_cast<double>(state.range(2)) / 10, static_cast<std::int32_t>(state.range(1))};
  for (auto _ : state) {
    const bool ok = DecomposeProfile(session, record, true, limits, true);
    benchmark::DoNotOptimize(ok);
  }
  SetPerSample(state, n);
}
BENCHMARK(BM_PeelingSplit)
    ->ArgNames({"n", "passes", "ratio10"})
    ->Args({100000, 10, 0})
    ->Args({1000000, 10, 0})
    ->Args({1000000, 10, 11})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

void BM_PrepareProfile(benchmark::State& state) {
  const std::int64_t n = state.range(0);
  ProfileRecord record = RoadOf(n, 0.01);
  for (auto _ : state) PrepareProfile(DebugTables{}, record);
  SetPerSample(state, n);
}
BENCHMARK(BM_PrepareProfile)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_BandReduction(benchmark::State& state) {
  const std::int64_t n = state.range(0);
  ProfileRecord record = RoadOf(n, 0.01);
  DecomposeProfile(session, record, false, FilterConvergence{});
  std::array<double, 10> limits;
  limits.fill(0.5);
  BandReductionResult result;
  for (auto _ : state) {
    const bool ok = Cal_バンド別低減(session, limits, static_cast<std::int32_t>(n), record.Analysis.Octave, result);
    benchmark::DoNotOptimize(ok);
  }
  SetPerSample(state, n);
}
BENCHMARK(BM_BandReduction)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_PsdCalc(benchmark::State& state) {
  const std::int64_t n = state.range(0);
  const ProfileRecord record = RoadOf(n, 0.01);
  Array1<double> out;
  for (auto _ : state) {
    const bool ok = PsdCalc(session, record.WorkCount, record.WorkProfile, 0.01, 1, true, out);
    benchmark::DoNotOptimize(ok);
  }
  SetPerSample(state, n);
}
BENCHMARK(BM_PsdCalc)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_PsdSmooth(benchmark::State& state) {
  const std::int64_t n = state.range(0);
  const ProfileRecord record = RoadOf(n, 0.01);
  Array1<double> psd;
  PsdCalc(session, record.WorkCount, record.WorkProfile, 0.01, 1, true, psd);
  for (auto _ : state) benchmark::DoNotOptimize(SmoothPsdValues(DebugTables{}, psd, record.WorkCount, 0.01, 12));
  SetPerSample(state, n);
}
BENCHMARK(BM_PsdSmooth)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmora
