#include "evaluation/section_statistics.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "base/legacy_error.h"
#include "base/legacy_math.h"

namespace velmora {
namespace {

// Seeds beyond anything an elevation in mm or m can reach.
constexpr double kMaxSeed = -1e16;
constexpr double kMinSeed = 1e16;
// Tolerance (km) for a KP that lies on a section border.
constexpr double kBorderTolerance = 1e-9;

// Statistics of values[first, first + count): sum, extremes, then a second pass for the deviations.
SectionStatistics BlockOf(std::span<const double> values, std::size_t first, std::size_t count) {
  double sum = 0;
  double max = kMaxSeed;
  double min = kMinSeed;
  for (std::size_t i = first; i < first + count; ++i) {
    sum += values[i];
    if (values[i] > max) max = values[i];
    if (values[i] < min) min = values[i];
  }
  SectionStatistics block;
  block.Count = static_cast<std::int32_t>(count);
  block.Mean = sum / static_cast<double>(count);
  double squares = 0;
  for (std::size_t i = first; i < first + count; ++i) squares += (values[i] - block.Mean) * (values[i] - block.Mean);
  block.StdDev = std::sqrt(squares / static_cast<double>(count));
  block.Max = max;
  block.Min = min;
  block.Spread = std::abs(max - min);
  return block;
}

}  // namespace

std::vector<SectionStatistics> CalcSectionStatistics(std::span<const double> values, std::int32_t blockCount,
                                                     std::int32_t firstCount) {
  if (blockCount < 1) RaiseDivisionByZero(fmt::format("block of {} samples", blockCount));
  const std::size_t n = values.size();
  const auto block = static_cast<std::size_t>(blockCount);
  std::vector<SectionStatistics> records;
  records.reserve(n / block + 2);
  std::size_t next = 0;
  if (firstCount >= 2) {
    // The sample on the first border opens the second block, so the first holds firstCount - 1.
    const std::size_t head = std::min(static_cast<std::size_t>(firstCount - 1), n);
    if (head > 0) records.push_back(BlockOf(values, 0, head));
    next = head;
  }
  for (; next < n; next += block) records.push_back(BlockOf(values, next, std::min(block, n - next)));
  return records;
}

SectionStatistics CalcWholeStatistics(std::span<const double> values) {
  if (values.empty()) RaiseDivisionByZero("statistics of an empty series");
  return BlockOf(values, 0, values.size());
}

SectionStatistics CalcIriStatistics(std::span<const IriSectionValue> sections) {
  SectionStatistics result;
  double weighted = 0;
  double samples = 0;
  for (const IriSectionValue& s : sections) {
    weighted += s.Count * s.Iri;
    samples += s.Count;
  }
  if (sections.empty() || samples == 0) return result;
  // The mean is weighted by the section lengths but the deviation is not: both kept as the
  // evaluation has always reported them.
  result.Mean = weighted / samples;
  double squares = 0;
  result.Max = kMaxSeed;
  result.Min = kMinSeed;
  for (const IriSectionValue& s : sections) {
    squares += (s.Iri - result.Mean) * (s.Iri - result.Mean);
    if (s.Iri > result.Max) result.Max = s.Iri;
    if (s.Iri < result.Min) result.Min = s.Iri;
  }
  result.Count = static_cast<std::int32_t>(sections.size());
  result.StdDev = std::sqrt(squares / static_cast<double>(sections.size()));
  result.Spread = std::abs(result.Max - result.Min);
  return result;
}

std::int32_t BlockSampleCount(double lengthM, double pitchM) { return IntLong(lengthM / pitchM + 0.5); }

GridEntry FindGridEntry(const SectionGridLine& grid, double kpStartKm, double pitchM, bool downward) {
  auto border = [&grid](std::int32_t k) { return grid.FirstKp + (k - 1) * grid.LengthKm; };
  // Samples from the first one to the border `edge` (km) away in the profile's direction: the index of
  // the first sample on or past that border.
  auto samplesTo = [&](double edge) {
    const double metres = std::abs(edge - kpStartKm) * 1000.0;
    return static_cast<std::int32_t>(std::ceil(metres / pitchM - 1e-6)) + 1;
  };
  for (std::int32_t k = 1; k <= grid.SectionCount; ++k) {
    const double low = border(k);
    const double high = border(k + 1);
    if (!downward && kpStartKm + kBorderTolerance >= low && kpStartKm + kBorderTolerance < high) {
      const bool onBorder = std::abs(kpStartKm - low) < kBorderTolerance;
      return {k, onBorder ? 1 : samplesTo(high)};
    }
    // Downward the blocks run towards lower KP, so the section is closed at its upper end.
    if (downward && kpStartKm - kBorderTolerance > low && kpStartKm - kBorderTolerance <= high) {
      const bool onBorder = std::abs(kpStartKm - high) < kBorderTolerance;
      return {-k, onBorder ? 1 : samplesTo(low)};
    }
  }
  RaiseSubscriptOutOfRange(fmt::format("KP {:.5f} km outside the section grid from {:.5f} km", kpStartKm,
                                       grid.FirstKp));
}

}  // namespace velmora
