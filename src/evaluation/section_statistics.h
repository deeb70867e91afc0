#pragma once
// Statistics of a series over consecutive blocks of samples, over the whole series, and over a list
// of IRI sections; block sizes and where a profile enters a KP grid of sections. Plain arrays in,
// records out; nothing here knows a profile record.
#include <cstdint>
#include <span>
#include <vector>

namespace velmora {

// Statistics of one block (or of a whole series): population standard deviation (divisor = Count),
// Spread = |Max - Min|.
struct SectionStatistics {
  double Mean = 0;
  double StdDev = 0;
  double Max = 0;
  double Min = 0;
  double Spread = 0;
  std::int32_t Count = 0;
};

// Statistics of values[0..n) over blocks of `blockCount` samples. With firstCount >= 2 the first
// block holds the firstCount - 1 samples before the first section border and the next block starts
// with the sample on the border; with firstCount <= 1 the first block is full. A last short block
// with at least one sample is kept. blockCount >= 1.
std::vector<SectionStatistics> CalcSectionStatistics(std::span<const double> values, std::int32_t blockCount,
                                                     std::int32_t firstCount);

// The same formulas over the whole series (n >= 1, else division by zero is raised).
SectionStatistics CalcWholeStatistics(std::span<const double> values);

// One IRI section: its sample count and its IRI (mm/m).
struct IriSectionValue {
  std::int32_t Count = 0;
  double Iri = 0;
};

// Over IRI sections: Mean weighted by the sample counts, StdDev unweighted around that weighted mean
// (divisor = number of sections), Max, Min and Spread over the IRI values; Count = number of sections.
// An empty list (or one whose counts add up to 0) gives Count 0 and all zero: nothing to show.
SectionStatistics CalcIriStatistics(std::span<const IriSectionValue> sections);

// Samples in a block of `lengthM` metres at pitch `pitchM` metres: Int(lengthM / pitchM + 0.5).
std::int32_t BlockSampleCount(double lengthM, double pitchM);

// A section grid along the KP: borders first + (k - 1) * length, k = 1..SectionCount (km).
struct SectionGridLine {
  double FirstKp = 0;       // km
  double LengthKm = 0;      // section length, km
  std::int32_t SectionCount = 0;
};

// Where a profile's first sample enters a grid: the section holding it (negative for a profile whose
// KP runs downward) and the samples from it to the next border in its own direction, the sample on
// the border included (1 when the first sample lies on a border).
struct GridEntry {
  std::int32_t Section = 0;
  std::int32_t FirstCount = 0;
};

// kpStartKm: KP of the first sample; pitchM: sample pitch in m; downward: the KP falls along the
// profile. Raises subscript out of range when the first sample lies outside the grid.
GridEntry FindGridEntry(const SectionGridLine& grid, double kpStartKm, double pitchM, bool downward);

}  // namespace velmora
