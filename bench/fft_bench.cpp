// Speed of the transform and of the FFT filters on profiles of road length.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

#include "analysis/fft.h"
#include "analysis/fft_filter.h"
#include "analysis/fft_kernels.h"
#include "analysis/moving_average.h"
#include "base/session.h"

namespace velmora {
namespace {

// The benchmarks ask nothing and log into no folder: one silent session serves them all.
velmora::Session session;

Array1<double> RandomWalk(std::int32_t n) {
  std::mt19937 random(42);
  std::normal_distribution<double> step(0.0, 0.5);
  Array1<double> y(static_cast<std::size_t>(n));
  double level = 0;
  for (auto& v : y) v = level += step(random);
  return y;
}

void BM_Fft(benchmark::State& state) {
  const auto n = static_cast<std::int32_t>(state.range(0));
  Array1<Complex> x(static_cast<std::size_t>(n));
  std::mt19937 random(1);
  std::uniform_real_distribution<double> value(-1, 1);
  for (auto& c : x) c = {value(random), 0};
  Fft(n, x, -1);  // twiddles built outside the timing, as after the first use in a session
  for (auto _ : state) {
    Fft(n, x, -1);
    benchmark::DoNotOptimize(x.data());
  }
  state.SetItemsProcessed(state.iterations() * n);
  state.counters["ns/point"] = benchmark::Counter(static_cast<double>(n), benchmark::Counter::kIsIterationInvariantRate |
                                                                               benchmark::Counter::kInvert);
}
BENCHMARK(BM_Fft)->RangeMultiplier(16)->Range(1 << 12, 1 << 20)->Arg(1 << 21)->Unit(benchmark::kMillisecond);

// The same transform with the butterflies every x86-64 runs, as on a processor without AVX2.
void BM_FftPortable(benchmark::State& state) {
  const auto n = static_cast<std::int32_t>(state.range(0));
  int bits = 0;
  while ((1 << bits) < n) ++bits;
  Array1<Complex> x(static_cast<std::size_t>(n));
  std::mt19937 random(1);
  std::uniform_real_distribution<double> value(-1, 1);
  for (auto& c : x) c = {value(random), 0};
  detail::Transform(x.data(), bits, -1, detail::Vectors::Portable);
  for (auto _ : state) {
    detail::Transform(x.data(), bits, -1, detail::Vectors::Portable);
    benchmark::DoNotOptimize(x.data());
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_FftPortable)->RangeMultiplier(16)->Range(1 << 12, 1 << 20)->Arg(1 << 21)->Unit(benchmark::kMillisecond);

// One single pass on a 1,000,000-sample profile at 0.1 m: fold to 2^21, one forward, two inverse.
void BM_FftFilterSinglePass(benchmark::State& state) {
  const std::int32_t n = 1000000;
  const Array1<double> profile = RandomWalk(n);
  WaveSeries result, other;
  for (auto _ : state) {
    std::int32_t seq = 0;
    Cal_FFTフィルタ_単体処理(session, seq, 0, n, FftLength1(n), FftLength2(n), 0.1, FilterKind::BandPass, 50.0, 3.0, profile,
                        result, other);
    benchmark::DoNotOptimize(result.Values.data());
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_FftFilterSinglePass)->Unit(benchmark::kMillisecond);

// The convergent filter with the default limits on the same profile.
void BM_FftFilterConvergent(benchmark::State& state) {
  const std::int32_t n = 1000000;
  const Array1<double> profile = RandomWalk(n);
  WaveSeries result;
  std::int64_t passes = 0;
  for (auto _ : state) {
    Cal_FFTフィルタ_収束計算(session, n, FftLength1(n), FftLength2(n), 0.1, FilterKind::BandPass, 50.0, 3.0, profile, result,
                        FilterConvergence{});
    benchmark::DoNotOptimize(result.Values.data());
    ++passes;
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_FftFilterConvergent)->Unit(benchmark::kMillisecond)->Iterations(2);

// Ten passes forced (ratio 0), the worst case of the default maximum.
void BM_FftFilterTenPasses(benchmark::State& state) {
  const std::int32_t n = 1000000;
  const Array1<double> profile = RandomWalk(n);
  WaveSeries result;
  for (auto _ : state) {
    Cal_FFTフィルタ_収束計算(session, n, FftLength1(n), FftLength2(n), 0.1, FilterKind::HiPass, 50.0, 0.0, profile, result,
                        FilterConvergence{0.0, 10});
    benchmark::DoNotOptimize(result.Values.data());
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_FftFilterTenPasses)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_MovingAverage(benchmark::State& state) {
  const std::int32_t n = 1000000;
  const Array1<double> profile = RandomWalk(n);
  Array1<double> high, mean;
  for (auto _ : state) {
    MovingAverageSplit(DebugTables{}, 500, n, profile, high, mean);  // 50 m at 0.1 m
    benchmark::DoNotOptimize(mean.data());
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_MovingAverage)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmora
