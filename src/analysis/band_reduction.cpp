#include "analysis/band_reduction.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "base/common.h"
#include "base/error_log.h"
#include "base/legacy_error.h"
#include "base/settings.h"

namespace velmora {
namespace {

int SignOf(double value) { return value < 0 ? -1 : 1; }

void ScaleRun(std::span<double> wave, std::span<const double> t, std::size_t from, std::size_t to,
              double factor) {
  for (std::size_t j = from; j < to; ++j) wave[j] = factor * t[j];
}

}  // namespace

double BandLimitFromText(std::string_view text) {
  const std::string trimmed = Trim(text);
  if (!IsNumeric(trimmed)) return NoLimit;
  return ParseNumber(trimmed).value_or(NoLimit);
}

void ReduceHalfWaves(double limit, std::span<double> wave, double& outMin, double& outMax) {
  outMin = outMax = 0;
  if (wave.empty()) return;
  const std::vector<double> t(wave.begin(), wave.end());
  const std::size_t n = t.size();
  int runSign = SignOf(t[0]);
  double peak = 0;
  std::size_t start = 0;  // 0-based first sample of the current half-wave
  for (std::size_t i = 0; i < n; ++i) {
    const int s = SignOf(t[i]);
    const double a = std::abs(t[i]);
    if (s != runSign) {
      if (peak > 0) ScaleRun(wave, t, start, i, limit / peak);
      start = i;
      peak = 0;
      runSign = s;
    }
    // Only samples above the limit make a peak, so a half-wave within the limit is left exactly.
    if (a > limit) peak = std::max(peak, a);
  }
  if (peak > 0) ScaleRun(wave, t, start, n, limit / peak);
  outMin = outMax = wave[0];
  for (double v : wave) {
    outMin = std::min(outMin, v);
    outMax = std::max(outMax, v);
  }
}

void RestoreOutsideRange(std::span<const double> original, std::span<double> reduced,
                         std::int32_t rangeStart, std::int32_t rangeEnd) {
  const auto n = static_cast<std::int32_t>(reduced.size());
  for (std::int32_t at : {rangeStart, rangeEnd})
    if (at < 1 || at > n)
      RaiseSubscriptOutOfRange("range sample " + std::to_string(at) + " outside 1.." + std::to_string(n));
  auto value = [&](std::int32_t i) { return reduced[static_cast<std::size_t>(i - 1)]; };
  auto restore = [&](std::int32_t from, std::int32_t to) {
    for (std::int32_t j = from; j <= to; ++j)
      reduced[static_cast<std::size_t>(j - 1)] = original[static_cast<std::size_t>(j - 1)];
  };

  int sign = SignOf(value(rangeStart));
  std::int32_t i = rangeStart;
  while (i >= 1 && SignOf(value(i)) == sign) --i;
  restore(1, i);  // nothing when the half-wave reaches sample 1

  sign = SignOf(value(rangeEnd));
  i = rangeEnd;
  while (i <= n && SignOf(value(i)) == sign) ++i;
  restore(i, n);  // nothing when the half-wave reaches sample n
}

bool Cal_バンド別低減(Session& session, const std::array<double, 10>& limits, std::int32_t n, const OctaveBandSet& bands,
                  BandReductionResult& result, bool useRange, std::int32_t rangeStart,
                  std::int32_t rangeEnd) {
  return Guarded(session, "bas計算共通", "Cal_バンド別低減", [&] {
    BandReductionResult out;
    for (std::size_t k = 1; k <= 9; ++k) {
      const Array1<double>& band = bands.Band[k].Values;
      if (band.size() < n)
        RaiseSubscriptOutOfRange("octave " + std::to_string(k) + " holds " + std::to_string(band.size()) +
                                 " samples, " + std::to_string(n) + " asked");
      Array1<double> original = band;
      original.resize(n);
      Array1<double> reduced = original;
      double minimum = 0, maximum = 0;
      ReduceHalfWaves(limits[k], reduced.span(), minimum, maximum);
      if (useRange) RestoreOutsideRange(original.span(), reduced.span(), rangeStart, rangeEnd);
      StoreWave(out.Reduced[k], std::move(reduced));
    }
    Array1<double> total(static_cast<std::size_t>(n));
    for (std::int32_t i = 1; i <= n; ++i)
      for (std::size_t k = 1; k <= 9; ++k) total[i] += out.Reduced[k].Values[i];
    StoreWave(out.Total, std::move(total));
    result = std::move(out);
  });
}

std::array<double, 10> BandLimitsFromTexts(const std::array<std::string, 10>& lines) {
  std::array<double, 10> limits{};
  for (std::size_t k = 1; k <= 9; ++k) limits[k] = BandLimitFromText(lines[k]);
  return limits;
}

std::array<double, 10> BandLimitsFromLines(const BandReductionLines& lines) {
  std::array<double, 10> limits{};
  for (std::size_t k = 1; k <= 9; ++k) limits[k] = IsNoValue(lines.Value[k]) ? NoLimit : lines.Value[k];
  return limits;
}

}  // namespace velmora
