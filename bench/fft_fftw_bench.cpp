// Our transform against FFTW's estimate plan on the same complex input, 2^12 to 2^21 points.
// FFTW is a benchmark-only dependency: the program never links it.
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <random>

#include "analysis/fft.h"

namespace velmora {
namespace {

void FillRandom(Array1<Complex>& x) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> value(-1, 1);
  for (auto& c : x) c = {value(random), 0};
}

void BM_VelmoraFft(benchmark::State& state) {
  const auto n = static_cast<std::int32_t>(state.range(0));
  Array1<Complex> x(static_cast<std::size_t>(n));
  FillRandom(x);
  Fft(n, x, -1);  // twiddles built outside the timing, as after the first use in a session
  for (auto _ : state) {
    Fft(n, x, -1);
    benchmark::DoNotOptimize(x.data());
  }
  state.SetItemsProcessed(state.iterations() * n);
}

void BM_FftwEstimate(benchmark::State& state) {
  const auto n = static_cast<int>(state.range(0));
  auto* data = static_cast<fftw_complex*>(fftw_malloc(sizeof(fftw_complex) * static_cast<std::size_t>(n)));
  fftw_plan plan = fftw_plan_dft_1d(n, data, data, FFTW_FORWARD, FFTW_ESTIMATE);
  Array1<Complex> x(static_cast<std::size_t>(n));
  FillRandom(x);
  for (int i = 0; i < n; ++i) {
    data[i][0] = x[i + 1].Re;
    data[i][1] = x[i + 1].Im;
  }
  for (auto _ : state) {
    fftw_execute(plan);
    benchmark::DoNotOptimize(data);
  }
  state.SetItemsProcessed(state.iterations() * n);
  fftw_destroy_plan(plan);
  fftw_free(data);
}

// 2^12 .. 2^21 by factors of 8, and 2^20: the half-length transforms of the octave split.
BENCHMARK(BM_VelmoraFft)->RangeMultiplier(8)->Range(1 << 12, 1 << 21)->Arg(1 << 20)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FftwEstimate)->RangeMultiplier(8)->Range(1 << 12, 1 << 21)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmora
