// Cross-correlation of two profiles over many shifts: (2S + 1) * n multiply-adds. Arguments: n, then
// S. The largest pair is a 400 m road at 1 cm checked at half its length (40,000 samples, S = 20,000);
// the sums alone are timed there too, on one thread and on all, and must equal the plain loop's.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "evaluation/cross_correlation_kernel.h"

namespace {

std::vector<double> RoadLike(std::size_t n, unsigned seed) {
  std::mt19937_64 random(seed);
  std::normal_distribution<double> noise(0.0, 1.0);
  std::vector<double> v(n);
  double level = 0;
  for (auto& x : v) x = (level += noise(random));  // random walk: a rough road's long waves
  return v;
}

void BM_CrossCorrelatePair(benchmark::State& state) {
  const auto n = static_cast<std::int32_t>(state.range(0));
  const auto s = static_cast<std::int32_t>(state.range(1));
  const std::vector<double> a = RoadLike(static_cast<std::size_t>(n), 1);
  const std::vector<double> b = RoadLike(static_cast<std::size_t>(n), 2);
  for (auto _ : state) benchmark::DoNotOptimize(velmora::CrossCorrelatePair(n, a, b, s));
  state.counters["MAC/s"] = benchmark::Counter(static_cast<double>(2 * s + 1) * n, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_CrossCorrelatePair)->Args({40000, 20000})->Args({40000, 10})->Args({10000, 5000})->Unit(benchmark::kMillisecond);

// The sums of the plain loop that defines them, worked out once for the comparison.
const std::vector<double>& PlainSums() {
  static const std::vector<double> sums = velmora::detail::ShiftSumsPlain(RoadLike(40000, 1), RoadLike(40000, 2), 20000);
  return sums;
}

// The sums alone: one thread against all cores, and the plain loop that defines them.
void BM_ShiftSums(benchmark::State& state) {
  const std::vector<double> a = RoadLike(40000, 1), b = RoadLike(40000, 2);
  const auto threads = static_cast<unsigned>(state.range(0));
  std::vector<double> sums;
  for (auto _ : state) {
    sums = velmora::detail::ShiftSums(a, b, 20000, threads);
    benchmark::DoNotOptimize(sums.data());
  }
  if (sums != PlainSums()) state.SkipWithError("the sums differ from the plain loop's");
}
BENCHMARK(BM_ShiftSums)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

void BM_ShiftSumsPlain(benchmark::State& state) {
  const std::vector<double> a = RoadLike(40000, 1), b = RoadLike(40000, 2);
  for (auto _ : state) benchmark::DoNotOptimize(velmora::detail::ShiftSumsPlain(a, b, 20000));
}
BENCHMARK(BM_ShiftSumsPlain)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
