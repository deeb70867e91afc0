#include "analysis/iri.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "analysis/debug_table.h"
#include "analysis/iri_window.h"
#include "analysis/quarter_car.h"
#include "base/common.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/legacy_math.h"
#include "base/session.h"

namespace velmora {
namespace {

// The value as the settings text box would show it (15 significant digits) and read back: what
// reads as 0 there counts as "not given".
bool ReadsAsZero(double value) {
  const auto parsed = ParseNumber(fmt::format("{:.15G}", value));
  return parsed && *parsed == 0.0;
}

int PowerOf(const IriParams& params) { return params.PowerWeighting != 0 ? 2 : 1; }

double PitchOf(const AnalysisBlock& block) { return 1.0 / block.SamplesPerMetre; }

// The response of elevations `work` (1..n used) with the parameters of `params`; returns N'.
std::int32_t ResponseOf(std::vector<double>& work, std::int32_t n, double dx, const IriParams& params) {
  double init = params.InitFilter, k1 = params.KtMs, k2 = params.KsMs, c = params.CsMs, mu = params.MuMs,
         speed = params.Speed;
  IriResponse(work, n, dx, kIriSlopeBaseLength, 1.0, init, k1, k2, c, mu, speed);
  return n;
}

// The first `count` values, zeros after the end, in the vector's own storage: results are moved into
// place, not copied.
Array1<double> FirstElements(std::vector<double>&& values, std::int32_t count) {
  const auto size = static_cast<std::size_t>(std::max<std::int32_t>(count, 0));
  // Exactly: a band's window is one sample longer than its series, and a growing resize would double
  // the storage of every band.
  values.reserve(size);
  values.resize(size);
  return Array1<double>(std::move(values));
}

void WriteSeriesTable(const DebugTables& debug, const std::string& fileName, const std::string& header, const Array1<double>& values) {
  std::vector<std::string> lines{header};
  lines.reserve(static_cast<std::size_t>(values.size()) + 1);
  for (std::ptrdiff_t i = 1; i <= values.size(); ++i)
    lines.push_back(std::to_string(i) + "," + FormatNumber(values[i], "0.000000000000000"));
  WriteDebugTable(debug, fileName, lines);
}

void WriteWindowTable(const DebugTables& debug, const std::string& lengthText, double dx, const Array1<double>& profile,
                      const WaveSeries& window) {
  std::vector<std::string> lines{"No, Dist, Profile, IRI(10m)"};
  for (std::ptrdiff_t i = 1; i <= window.Values.size(); ++i)
    lines.push_back(std::to_string(i) + "," + FormatNumber(static_cast<double>(i) * dx, "0.000") + "," +
                    FormatNumber(profile.at(i), "0.000000000000000") + "," +
                    FormatNumber(window.Values[i], "0.000000000000000"));
  WriteDebugTable(debug, "IRI(" + lengthText + "m).csv", lines);
}

// The first n values of a series the IRI is taken of: the profile, or a wave of its octave split.
std::vector<double> CheckedWave(const Array1<double>& values, std::int32_t n, std::string_view what) {
  if (values.size() < n)
    throw LegacyError(ErrorNumber::InvalidData,
                      fmt::format("IRI of {}: the octave split of the profile is not calculated", what));
  return std::vector<double>(values.begin(), values.begin() + n);
}

// Samples of the sliding IRI window of the profile's own response.
std::int32_t ProfileWindowEnd(double dx, double length) { return IntLong((dx / 2 + length) / dx) + 1; }

}  // namespace

std::int32_t IriBaseSamples(double baseLength, double dx) {
  return std::max<std::int32_t>(RoundHalfAway(baseLength / dx), 1);
}

bool QuarterCarIsSingular(const IriParams& params) {
  double k1 = params.KtMs, k2 = params.KsMs, c = params.CsMs, mu = params.MuMs;
  if (ReadsAsZero(k1) || ReadsAsZero(k2) || ReadsAsZero(c) || ReadsAsZero(mu) || ReadsAsZero(params.Speed)) {
    k1 = kGoldenKtMs;
    k2 = kGoldenKsMs;
    c = kGoldenCsMs;
    mu = kGoldenMuMs;
  }
  Matrix4 a;
  Vector4 b, cVec;
  BuildQuarterCarMatrices(k1, k2, c, mu, a, b, cVec);
  PivotIndex index{};
  double d = 0;
  return !LuDecompose(a, index, d);
}

void IriResponse(std::span<double> y, std::int32_t& n, double dx, double baseLength, double scale,
                 double& initDistance, double& k1, double& k2, double& c, double& mu, double& speed) {
  if (ReadsAsZero(k1) || ReadsAsZero(k2) || ReadsAsZero(c) || ReadsAsZero(mu) || ReadsAsZero(speed)) {
    k1 = kGoldenKtMs;
    k2 = kGoldenKsMs;
    c = kGoldenCsMs;
    mu = kGoldenMuMs;
    speed = kGoldenSpeed;
  }
  Matrix4 a, st;
  Vector4 b, cVec, pr;
  BuildQuarterCarMatrices(k1, k2, c, mu, a, b, cVec);
  const double dt = dx / (speed / 3.6);
  BuildTransitionMatrix(dt, a, b, st, pr);

  const std::int32_t ibase = IriBaseSamples(baseLength, dx);
  const double sfpi = scale / (ibase * dx);
  const std::int32_t k = std::min(RoundHalfAway(initDistance / dx) + 1, n);
  if (k < 1 || static_cast<std::size_t>(n) > y.size())
    RaiseSubscriptOutOfRange("IRI response of " + std::to_string(n) + " samples");
  auto Y = [&y](std::int32_t i) -> double& { return y[static_cast<std::size_t>(i - 1)]; };

  // The divisor K·dx (not (K-1)·dx) is how the program has always started the model.
  Vector4 x;
  x(1) = (Y(k) - Y(1)) * scale / (k * dx);
  x(3) = x(1);

  n -= ibase;
  // Moving average over the base length and slope in one step: element i spans samples i..i+IBASE.
  for (std::int32_t i = 1; i <= n; ++i) Y(i) = (Y(i + ibase) - Y(i)) * sfpi;
  SimulateQuarterCar(y, n, st, pr, cVec, x);
}

double IriOfArray(std::int32_t n, std::span<const double> y, double dx, const IriParams& params) {
  // A shorter `y` than n is refused by IriResponse, which checks the size.
  std::vector<double> work(y.begin(), y.begin() + std::clamp<std::ptrdiff_t>(n, 0, std::ssize(y)));
  const std::int32_t responseCount = ResponseOf(work, n, dx, params);
  return IriPowerMean(work, responseCount, PowerOf(params));
}

void CalcIriFilter(const DebugTables& debug, AnalysisBlock& block, const IriParams& params) {
  IriResults& r = block.Iri;
  if (r.IriFilterWave.Calculated) return;
  const double dx = PitchOf(block);
  std::vector<double> work = CheckedWave(block.Profile.Values, block.Count, "the profile");
  const std::int32_t count = std::max(ResponseOf(work, block.Count, dx, params), 0);
  StoreWave(r.IriFilterWave, FirstElements(std::move(work), count));
  r.IriFilterCount = count;
  if (debug.On) WriteSeriesTable(debug, "IRI_Filter.csv", "No, IRI Filter(10m)", r.IriFilterWave.Values);
}

void CalcIriProfile(const DebugTables& debug, AnalysisBlock& block, const IriParams& params, bool withBands) {
  IriResults& r = block.Iri;
  const double dx = PitchOf(block);
  const int power = PowerOf(params);
  const double length = params.IriBaseLength;
  const std::int32_t n = block.Count;

  std::vector<double> work = CheckedWave(block.Profile.Values, n, "the profile");
  const std::int32_t responseCount = ResponseOf(work, n, dx, params);
  r.IriResponseCount = responseCount;
  r.IriResponseWave = FirstElements(std::move(work), responseCount);
  r.IriWholeProfile = IriPowerMean(r.IriResponseWave.span(), responseCount, power);

  const std::int32_t windowEnd = ProfileWindowEnd(dx, length);
  r.IriWindowCount = std::max(CLng(responseCount - Int(length / dx + 0.1)), 0);
  StoreWave(r.IriWindowWave, FirstElements(SlidingWindowIri(r.IriResponseWave.span(), responseCount, windowEnd, power),
                                           r.IriWindowCount));

  if (debug.On) {
    const std::string lengthText = FormatNumber(length, "0.00");
    WriteSeriesTable(debug, "IRI_GETPI(" + lengthText + "m).csv", "No, IRI_GETPI(*)", r.IriResponseWave);
    WriteWindowTable(debug, lengthText, dx, block.Profile.Values, r.IriWindowWave);
  }
  if (!withBands) return;

  // Each band's response is dropped once its window is taken: nine of them would double the memory of
  // a long profile, and only the statistics read them, one at a time.
  for (int k = 1; k <= 9; ++k)
    r.IriWindowBand[static_cast<std::size_t>(k)] = std::move(IriOfSplitWave(block, params, k).Window);

  Array1<double> rss;
  rss.assign_zero(r.IriWindowCount);
  for (std::int32_t i = 1; i <= r.IriWindowCount; ++i) {
    double squares = 0;
    for (int k = 1; k <= 9; ++k) {
      const double v = r.IriWindowBand[static_cast<std::size_t>(k)].Values[i];
      squares += v * v;
    }
    rss[i] = std::sqrt(squares);
  }
  StoreWave(r.IriWindowRss, std::move(rss));

  r.IriWindowLong = std::move(IriOfSplitWave(block, params, kLongSumWave).Window);
  r.IriWindowShort = std::move(IriOfSplitWave(block, params, kShortSumWave).Window);
}

SplitWaveIri IriOfSplitWave(const AnalysisBlock& block, const IriParams& params, int wave) {
  const OctaveBandSet& octave = block.Octave;
  if (wave == kLongSumWave) return IriOfDerivedWave(block, octave.LongSum.Values, params, "the long-wave sum");
  if (wave == kShortSumWave) return IriOfDerivedWave(block, octave.ShortSum.Values, params, "the short-wave sum");
  return IriOfDerivedWave(block, octave.Band.at(static_cast<std::size_t>(wave)).Values, params,
                          "octave " + std::to_string(wave));
}

SplitWaveIri IriOfDerivedWave(const AnalysisBlock& block, const Array1<double>& wave, const IriParams& params,
                              std::string_view what) {
  const std::int32_t n = block.Count;
  std::vector<double> work = CheckedWave(wave, n, what);
  const double dx = PitchOf(block);
  SplitWaveIri result;
  const std::int32_t responseCount = ResponseOf(work, n, dx, params);
  result.Response = FirstElements(std::move(work), responseCount);
  // Its window starts one sample longer than the profile's: a property of the program's numbers, kept
  // as it is.
  const std::int32_t windowEnd = ProfileWindowEnd(dx, params.IriBaseLength) + 1;
  StoreWave(result.Window, FirstElements(SlidingWindowIri(result.Response.span(), responseCount, windowEnd,
                                                          PowerOf(params), block.Iri.IriWindowCount),
                                         block.Iri.IriWindowCount));
  return result;
}

}  // namespace velmora
