#pragma once
// Inputs and checks the analysis tests share: a sampled sine, a random road, the golden car's response
// of a profile, a prepared block whose octave split is given, how far a result strays from its
// reference, the title of the only message box a test expects, and one masked pass exactly as the
// steps are written, with complex transforms of the whole length: the reference the filters and the
// octave split, which take half-length real transforms, are held to.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "analysis/fft.h"
#include "analysis/iri.h"
#include "analysis/mirror_extend.h"
#include "results/analysis_block.h"
#include "support/test_support.h"

namespace velmora::testing {

// amplitude · sin(2π i / samplesPerWave + phase) for i = 0..n − 1.
inline std::vector<double> Sine(int n, double samplesPerWave, double amplitude, double phase = 0) {
  std::vector<double> y;
  for (int i = 0; i < n; ++i) y.push_back(amplitude * std::sin(2 * M_PI * i / samplesPerWave + phase));
  return y;
}

// A random walk of n steps of unit deviation: it looks like a rough road profile.
inline std::vector<double> RandomWalk(int n, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<double> step(0.0, 1.0);
  std::vector<double> y(static_cast<std::size_t>(n));
  double level = 0;
  for (double& v : y) v = level += step(random);
  return y;
}

// The signed response of elevations y (mm, pitch dx m) with the golden car, started over `init` m;
// shorter than y by the base samples.
inline std::vector<double> GoldenResponse(std::vector<double> y, double dx, double init = 11) {
  auto n = static_cast<std::int32_t>(y.size());
  double k1 = 0, k2 = 0, c = 0, mu = 0, speed = 0;  // any 0 brings in the golden car
  IriResponse(y, n, dx, kIriSlopeBaseLength, 1.0, init, k1, k2, c, mu, speed);
  y.resize(static_cast<std::size_t>(n));
  return y;
}

// A block prepared from `profile` at pitch dx whose nine bands and both sums are copies of `bands`.
inline AnalysisBlock BlockWithBands(const std::vector<double>& profile, double dx, const std::vector<double>& bands) {
  AnalysisBlock block;
  block.SamplesPerMetre = 1.0 / dx;
  block.Count = static_cast<std::int32_t>(profile.size());
  StoreWave(block.Profile, Array1<double>(profile));
  for (int k = 1; k <= 9; ++k) block.Octave.Band[static_cast<std::size_t>(k)].Values = Array1<double>(bands);
  StoreWave(block.Octave.LongSum, Array1<double>(bands));
  StoreWave(block.Octave.ShortSum, Array1<double>(bands));
  block.Octave.Calculated = true;
  return block;
}

// The largest |actual(i) − expected(i − 1)| over the expected values, relative to the range of
// `profile`, so that one limit serves profiles of any scale.
inline double WorstRelativeToRange(const Array1<double>& actual, const std::vector<double>& expected,
                                   const Array1<double>& profile) {
  const auto [low, high] = std::minmax_element(profile.begin(), profile.end());
  double worst = 0;
  for (std::size_t i = 0; i < expected.size(); ++i)
    worst = std::max(worst, std::abs(actual[static_cast<std::ptrdiff_t>(i + 1)] - expected[i]));
  return worst / (*high - *low);
}

// The title of the only message box shown; fails the test when there is not exactly one.
inline std::string OnlyMessageTitle(const ScriptedUi& ui) {
  const auto messages = ui.Messages();
  EXPECT_EQ(messages.size(), 1u);
  return messages.empty() ? std::string() : messages.front().Title;
}

// Folds source(1..n) out to FftLength2(n), transforms it, divides by the length, keeps the bins of
// mask(1..length), transforms back; the real part where the profile stands, n values.
template <class Mask>  // a filter's byte mask or an octave mask: mask[i] for i = 1..FftLength2(n)
std::vector<double> LiteralMaskedPass(std::int32_t n, const Array1<double>& source, const Mask& mask) {
  const std::int32_t length2 = FftLength2(n);
  Array1<double> extended;
  std::int32_t offset = 0;
  FoldOutForFft(DebugTables{}, n, FftLength1(n), length2, source, offset, extended);
  Array1<Complex> spectrum(static_cast<std::size_t>(length2));
  for (std::int32_t i = 1; i <= length2; ++i) spectrum[i] = Complex{extended[i], 0.0};
  Fft(length2, spectrum, -1);
  for (std::int32_t i = 1; i <= length2; ++i) {
    const double m = mask[i];
    spectrum[i] = Complex{spectrum[i].Re / length2 * m, spectrum[i].Im / length2 * m};
  }
  Fft(length2, spectrum, +1);
  std::vector<double> wave;
  for (std::int32_t i = 1; i <= n; ++i) wave.push_back(spectrum[i + offset].Re);
  return wave;
}

}  // namespace velmora::testing
