// IRI of a long profile: 1,000,000 samples at 0.01 m (10 km) with a 10 m window. The whole-profile
// pass is response, window and fixed sections; the band pass adds the nine octave bands and the
// long and short sums, whose waves are given.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

#include "analysis/iri.h"
#include "analysis/iri_sections.h"
#include "analysis/iri_window.h"

namespace velmora {
namespace {

constexpr std::int32_t kSamples = 1'000'000;
constexpr double kPitch = 0.01;

AnalysisBlock LongProfile() {
  AnalysisBlock block;
  block.SamplesPerMetre = 1.0 / kPitch;
  block.Count = kSamples;
  std::mt19937_64 random(1);
  std::normal_distribution<double> step(0.0, 0.05);
  Array1<double> profile;
  profile.assign_zero(kSamples);
  double z = 0;
  for (std::int32_t i = 1; i <= kSamples; ++i) profile[i] = z += step(random);
  for (int k = 1; k <= 9; ++k) {
    auto& band = block.Octave.Band[static_cast<std::size_t>(k)].Values;
    band.assign_zero(kSamples);
    const double wavelength = 76.8 / std::pow(2.0, k);  // samples per metre times the band's middle
    for (std::int32_t i = 1; i <= kSamples; ++i) band[i] = std::sin(2 * M_PI * i * kPitch / wavelength);
  }
  block.Octave.LongSum.Values = profile;
  block.Octave.ShortSum.Values = profile;
  block.Profile.Values = std::move(profile);
  return block;
}

IriParams TenMetreWindow() {
  IriParams p;
  p.InitFilter = 11;
  p.IriBaseLength = 10;
  return p;
}

void Sections(AnalysisBlock& block) {
  CalcFixedSections(12.345, kPitch, false, 10, block.Count, block.Profile.Values.span(), block.Iri.IriResponseCount,
                    block.Iri.IriResponseWave.span(), false, block.Sections);
}

void BM_WholeProfileResponseWindowSections(benchmark::State& state) {
  AnalysisBlock block = LongProfile();
  for (auto _ : state) {
    CalcIriProfile(DebugTables{}, block, TenMetreWindow(), false);
    Sections(block);
    benchmark::DoNotOptimize(block.Sections.Sec10[1].Iri);
  }
  state.SetItemsProcessed(state.iterations() * kSamples);
}
BENCHMARK(BM_WholeProfileResponseWindowSections)->Unit(benchmark::kMillisecond);

void BM_WithNineBandsAndBothSums(benchmark::State& state) {
  AnalysisBlock block = LongProfile();
  for (auto _ : state) {
    CalcIriProfile(DebugTables{}, block, TenMetreWindow(), true);
    Sections(block);
    benchmark::DoNotOptimize(block.Iri.IriWindowRss.Stats.Mean);
  }
  state.SetItemsProcessed(state.iterations() * kSamples);
}
BENCHMARK(BM_WithNineBandsAndBothSums)->Unit(benchmark::kMillisecond);

void BM_ResponseOnly(benchmark::State& state) {
  const AnalysisBlock block = LongProfile();
  const IriParams params = TenMetreWindow();
  for (auto _ : state) {
    benchmark::DoNotOptimize(IriOfArray(kSamples, block.Profile.Values.span(), kPitch, params));
  }
  state.SetItemsProcessed(state.iterations() * kSamples);
}
BENCHMARK(BM_ResponseOnly)->Unit(benchmark::kMillisecond);

void BM_SlidingWindowOnly(benchmark::State& state) {
  const AnalysisBlock block = LongProfile();
  const auto& r = block.Profile.Values.vector();
  for (auto _ : state) benchmark::DoNotOptimize(SlidingWindowIri(r, kSamples, 1001, 1).back());
  state.SetItemsProcessed(state.iterations() * kSamples);
}
BENCHMARK(BM_SlidingWindowOnly)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmora
