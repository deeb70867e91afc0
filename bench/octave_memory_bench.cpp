// Peak memory of the octave split of a long profile, counted in bytes of live heap per sample: every
// allocation of this program goes through the counting operators below, so the figure covers the
// profile, its masks, the bands, the sums and all work arrays, and does not depend on what ran before.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <new>

#include "analysis/octave.h"
#include "analysis/prepare_profile.h"
#include "base/session.h"
#include "profile/profile_record.h"

namespace {

// The benchmarks ask nothing and log into no folder: one silent session serves them all.
velmora::Session session;

std::atomic<std::size_t> liveBytes{0};
std::atomic<std::size_t> peakBytes{0};

void* Counted(std::size_t size) {
  void* p = std::malloc(size == 0 ? 1 : size);
  if (p == nullptr) throw std::bad_alloc();
  const std::size_t now = liveBytes += malloc_usable_size(p);
  std::size_t peak = peakBytes.load();
  while (now > peak && !peakBytes.compare_exchange_weak(peak, now)) {
  }
  return p;
}

void Released(void* p) noexcept {
  if (p == nullptr) return;
  liveBytes -= malloc_usable_size(p);
  std::free(p);
}

}  // namespace

void* operator new(std::size_t size) { return Counted(size); }
void* operator new[](std::size_t size) { return Counted(size); }
void operator delete(void* p) noexcept { Released(p); }
void operator delete[](void* p) noexcept { Released(p); }
void operator delete(void* p, std::size_t) noexcept { Released(p); }
void operator delete[](void* p, std::size_t) noexcept { Released(p); }

namespace velmora {
namespace {

// A profile of n samples at 1 cm as a file would bring it, then prepared and split (`splits` times:
// a second split is built while the first one's bands are still held); the counter `peak B/sample` is
// the largest live heap at any moment of these steps, divided by n.
void MeasureSplit(benchmark::State& state, bool converge, int splits = 1) {
  const std::int64_t n = state.range(0);
  std::size_t peak = 0;
  for (auto _ : state) {
    const std::size_t before = liveBytes.load();
    peakBytes = before;
    {
      ProfileRecord record;
      record.Erd.StepSize = 0.01;
      record.WorkCount = static_cast<std::int32_t>(n);
      record.WorkProfile.assign_zero(n);
      for (std::int64_t i = 1; i <= n; ++i) {
        const double x = static_cast<double>(i) * 0.01;
        record.WorkProfile[i] = 5 * std::sin(x / 9.1) + 2 * std::sin(x / 1.3) + 0.5 * std::sin(x / 0.11);
      }
      PrepareProfile(DebugTables{}, record);
      for (int split = 1; split <= splits; ++split) {
        const bool ok = DecomposeProfile(session, record, converge, FilterConvergence{1.1, 3}, true);
        benchmark::DoNotOptimize(ok);
      }
    }
    peak = peakBytes.load() - before;
  }
  state.counters["peak B/sample"] = static_cast<double>(peak) / static_cast<double>(n);
}

void BM_SinglePassPeakMemory(benchmark::State& state) { MeasureSplit(state, false); }
void BM_PeelingPeakMemory(benchmark::State& state) { MeasureSplit(state, true); }
void BM_SinglePassAgainPeakMemory(benchmark::State& state) { MeasureSplit(state, false, 2); }
BENCHMARK(BM_SinglePassPeakMemory)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_PeelingPeakMemory)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_SinglePassAgainPeakMemory)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace velmora
