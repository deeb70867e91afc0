#pragma once
// The roughness index of a profile: the quarter-car response of a slope series, one IRI number for a
// whole array, the response used as a filter, and the response of a profile and of its octave bands
// with their sliding-window IRI.
#include <cstdint>
#include <span>
#include <string_view>

#include "base/session.h"
#include "results/analysis_block.h"
#include "results/iri_types.h"

namespace velmora {

// Model values the program falls back on when any one of the five is given as 0 (the "golden car").
inline constexpr double kGoldenKtMs = 653.0;
inline constexpr double kGoldenKsMs = 63.3;
inline constexpr double kGoldenCsMs = 6.0;
inline constexpr double kGoldenMuMs = 0.15;
inline constexpr double kGoldenSpeed = 80.0;  // km/h
// The moving-average base length over which the profile is turned into slopes, m.
inline constexpr double kIriSlopeBaseLength = 0.25;

// Samples the slope base spans at pitch dx (m): Max(RoundHalfAway(baseLength / dx), 1).
std::int32_t IriBaseSamples(double baseLength, double dx);

// Replaces elevations y(1..n) (mm, pitch dx m) by the signed quarter-car response (mm/m) and shrinks
// n by the base samples. When any of k1, k2, c, mu, speed reads as 0 all five are set to the golden
// car. The model starts from the slope over `initDistance` m (divided by K·dx, K the samples up to
// it). y.size() >= n >= 1, dx > 0.
void IriResponse(std::span<double> y, std::int32_t& n, double dx, double baseLength, double scale,
                 double& initDistance, double& k1, double& k2, double& c, double& mu, double& speed);

// True when the model of `params` (after the golden-car fallback) has a row of zeros, so that the
// transition matrix cannot be inverted: the engine then goes on with what stands in the matrices,
// after the caller has shown "Singular matrix".
bool QuarterCarIsSingular(const IriParams& params);

// The IRI (mm/m) of elevations y(1..n) (mm, pitch dx m): power mean of the whole response, p = 2 for
// RMS weighting, else 1. `y` is left untouched; a profile no longer than the base raises
// LegacyError(DivisionByZero).
double IriOfArray(std::int32_t n, std::span<const double> y, double dx, const IriParams& params);

// The response of the block's prepared profile as the filter kind "IRI": fills IriFilterWave and
// IriFilterCount, does nothing when IriFilterWave is already calculated.
void CalcIriFilter(const DebugTables& debug, AnalysisBlock& block, const IriParams& params);

// The response of the prepared profile, its whole-profile IRI and its sliding-window IRI over
// params.IriBaseLength m; with `withBands` also the window series of the nine octave bands and of the
// long and short sums, which must have been calculated. Recomputes unconditionally.
void CalcIriProfile(const DebugTables& debug, AnalysisBlock& block, const IriParams& params, bool withBands);

// A wave of the octave split: band 1..9, or one of the two sums.
inline constexpr int kLongSumWave = 10;
inline constexpr int kShortSumWave = 11;

// The quarter-car response of one wave derived from the block's prepared profile and its sliding-window
// IRI, cut to the profile's window count: CalcIriProfile must have run on the block with the same
// params. Only one such response need be held at a time.
struct SplitWaveIri {
  Array1<double> Response;
  WaveSeries Window;
};
// A wave of the block's own octave split.
SplitWaveIri IriOfSplitWave(const AnalysisBlock& block, const IriParams& params, int wave);
// Any wave of block.Count elevations derived from the profile (an octave band of another wave, say);
// `what` names it in the error when the wave is shorter.
SplitWaveIri IriOfDerivedWave(const AnalysisBlock& block, const Array1<double>& wave, const IriParams& params,
                              std::string_view what = "a derived wave");

}  // namespace velmora
