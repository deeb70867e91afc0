// Time per sample of the M-wave straightening (four passes, with the plan range) on a long road.
#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>

#include "base/session.h"
#include "repair/m_wave.h"

namespace {

// The benchmarks ask nothing and log into no folder: one silent session serves them all.
velmora::Session session;

velmora::Array1<double> RoadMiddleWave(std::int32_t n) {
  velmora::Array1<double> m(static_cast<std::size_t>(n));
  for (std::int32_t i = 1; i <= n; ++i) {
    const double x = (i - 1) * 0.25;
    m[i] = 3 * std::sin(2 * std::numbers::pi * x / 20) + 0.7 * std::sin(2 * std::numbers::pi * x / 7.3);
  }
  return m;
}

void BM_Straightening(benchmark::State& state) {
  const auto n = static_cast<std::int32_t>(state.range(0));
  const velmora::Array1<double> m = RoadMiddleWave(n);
  velmora::PlanRange plan;
  plan.Use = true;
  plan.FirstKp = 0;
  plan.PitchM = 0.25;
  plan.StartKp = n * 0.25 / 1000 * 0.1 + 0.00001;
  plan.EndKp = n * 0.25 / 1000 * 0.9 + 0.00001;
  for (auto _ : state) {
    velmora::WaveSeries out;
    benchmark::DoNotOptimize(velmora::Cal_補修形状_M波の直線化(session, n, m, 0, plan, out));
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_Straightening)->Arg(4096)->Arg(400000);

}  // namespace
