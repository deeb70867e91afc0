// Time per sample of the whole repair-shape study through the workbench: the Go of the three-wave
// split, the M wave, the S wave and the ideal shape on one road, each run on fresh study values.
#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>

#include "base/settings.h"
#include "workbench/workbench.h"

namespace {

using namespace velmora;

// A road of n samples at 0.25 m: 5 mm of 100 m, 3 mm of 20 m and 1 mm of 2 m wave.
ProfileRecord Road(std::int32_t n) {
  ProfileRecord record;
  record.FileName = "road.ERD";
  record.Erd.StepSize = 0.25;
  record.Erd.NumSamples = n;
  record.SamplesPerMetre = 4;
  record.WorkCount = n;
  record.WorkProfile.assign_zero(n);
  for (std::int32_t i = 1; i <= n; ++i) {
    const double x = (i - 1) * 0.25, tau = 2 * std::numbers::pi;
    record.WorkProfile[i] = 5 * std::sin(tau * x / 100) + 3 * std::sin(tau * x / 20) + std::sin(tau * x / 2);
  }
  record.Erd.Elevation = record.WorkProfile;
  return record;
}

void BM_StudyFourTabs(benchmark::State& state) {
  const auto n = static_cast<std::int32_t>(state.range(0));
  Session session;
  session.CurrentConditions.RepairIri = IriParams{80, 63.3, 6, 0.15, 653, 0, 0, 10};
  workbench::Workbench bench{session};
  bench.FormLoad();
  bench.MnuBunseki();
  bench.DispGrp = true;
  bench.AddProfile(Road(n));
  bench.Repair.Form.LongBoundary = "51.2";
  bench.Repair.Form.IriLength = "10";
  for (int t = workbench::tab::ThreeWave; t <= workbench::tab::IdealShape; ++t) bench.SelectAll(t);
  double shortBoundary = 4.0;
  for (auto _ : state) {
    // A new short boundary each time, so that every tab really computes (the change resets the study).
    shortBoundary = shortBoundary == 4.0 ? 4.5 : 4.0;
    bench.Repair.Form.ShortBoundary = std::to_string(shortBoundary);
    for (int t = workbench::tab::ThreeWave; t <= workbench::tab::IdealShape; ++t)
      benchmark::DoNotOptimize(bench.Go(t));
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_StudyFourTabs)->Arg(4096)->Arg(40000)->Unit(benchmark::kMillisecond);

}  // namespace
