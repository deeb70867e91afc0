#include "evaluation/section_statistics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <vector>

#include "base/legacy_error.h"

namespace velmora {
namespace {

std::vector<double> Means(const std::vector<SectionStatistics>& records) {
  std::vector<double> means;
  for (const auto& r : records) means.push_back(r.Mean);
  return means;
}
std::vector<std::int32_t> Counts(const std::vector<SectionStatistics>& records) {
  std::vector<std::int32_t> counts;
  for (const auto& r : records) counts.push_back(r.Count);
  return counts;
}
// Mean, deviation, max, min, spread and count; the deviation within rounding, the rest exact.
void ExpectStatistics(const SectionStatistics& s, const SectionStatistics& expected) {
  EXPECT_EQ(s.Mean, expected.Mean);
  EXPECT_DOUBLE_EQ(s.StdDev, expected.StdDev);
  EXPECT_EQ(s.Max, expected.Max);
  EXPECT_EQ(s.Min, expected.Min);
  EXPECT_EQ(s.Spread, expected.Spread);
  EXPECT_EQ(s.Count, expected.Count);
}

TEST(CalcSectionStatistics, BlocksFollowTheFirstCountAndKeepTheShortTail) {
  const std::vector<double> v = {1, 2, 3, 4, 5, 6, 7};
  // firstCount <= 1: full blocks from the first sample, then a tail of one.
  auto full = CalcSectionStatistics(v, 3, 0);
  EXPECT_EQ(Counts(full), (std::vector<std::int32_t>{3, 3, 1}));
  EXPECT_EQ(Means(full), (std::vector<double>{2, 5, 7}));
  EXPECT_DOUBLE_EQ(full[0].StdDev, std::sqrt(2.0 / 3.0));  // (1 + 0 + 1) / 3, divisor = count
  EXPECT_EQ(full[0].Spread, 2.0);
  EXPECT_EQ(Counts(CalcSectionStatistics(v, 3, 1)), (std::vector<std::int32_t>{3, 3, 1}));
  // firstCount 2: the first block holds the one sample before the border.
  auto two = CalcSectionStatistics(v, 3, 2);
  EXPECT_EQ(Counts(two), (std::vector<std::int32_t>{1, 3, 3}));
  EXPECT_EQ(Means(two), (std::vector<double>{1, 3, 6}));
  EXPECT_EQ(Counts(CalcSectionStatistics(v, 3, 3)), (std::vector<std::int32_t>{2, 3, 2}));
  // A first border beyond the last sample: everything in one short block.
  EXPECT_EQ(Counts(CalcSectionStatistics(v, 3, 10)), (std::vector<std::int32_t>{7}));
}

TEST(CalcSectionStatistics, OneSampleBlocksShortProfilesAndNegativeValues) {
  const std::vector<double> one = {-3.5};
  auto single = CalcSectionStatistics(one, 40, 0);
  ASSERT_EQ(single.size(), 1u);
  ExpectStatistics(single[0], {-3.5, 0, -3.5, -3.5, 0, 1});
  // Shorter than one block: one short record, mean 3, deviation 1 (divisor 2).
  auto shorter = CalcSectionStatistics(std::vector<double>{2, 4}, 40, 0);
  ASSERT_EQ(shorter.size(), 1u);
  ExpectStatistics(shorter[0], {3, 1, 4, 2, 2, 2});
  // All values negative: the seeds give way to the data; squares 1 + 1 + 0 over 3.
  ExpectStatistics(CalcSectionStatistics(std::vector<double>{-5, -7, -6}, 3, 0).at(0), {-6, std::sqrt(2.0 / 3), -5, -7, 2, 3});
  EXPECT_TRUE(CalcSectionStatistics(std::vector<double>{}, 3, 0).empty());
  EXPECT_THROW(CalcSectionStatistics(one, 0, 0), LegacyError);
}

TEST(CalcWholeStatistics, PopulationFormOverTheWholeSeries) {
  // The textbook set: mean 5, squared deviations 9+1+1+1+0+0+4+16 = 32, / 8 = 4.
  ExpectStatistics(CalcWholeStatistics(std::vector<double>{2, 4, 4, 4, 5, 5, 7, 9}), {5, 2, 9, 2, 7, 8});
  EXPECT_THROW(CalcWholeStatistics(std::vector<double>{}), LegacyError);
}

TEST(CalcIriStatistics, WeightedMeanWithUnweightedDeviationByHand) {
  // Mean = (40*2 + 10*4 + 50*1) / 100 = 1.7. Deviations from 1.7: 0.3, 2.3, -0.7, squares
  // 0.09 + 5.29 + 0.49 = 5.87 over 3 sections. (A weighted deviation would be 0.9, a plain mean 2.333.)
  const std::vector<IriSectionValue> sections = {{40, 2.0}, {10, 4.0}, {50, 1.0}};
  const auto s = CalcIriStatistics(sections);
  EXPECT_DOUBLE_EQ(s.Mean, 1.7);
  ExpectStatistics(s, {s.Mean, std::sqrt(5.87 / 3.0), 4, 1, 3, 3});
  EXPECT_EQ(CalcIriStatistics(std::vector<IriSectionValue>{}).Count, 0);
}

TEST(BlockSampleCount, LengthOverPitchRoundedHalfUp) {
  // 40, 33.33, 12.5 (which goes up), 1312.34 and 2624.67 samples.
  const std::tuple<double, double, std::int32_t> cases[] = {
      {10, 0.25, 40}, {10, 0.3, 33}, {10, 0.8, 13}, {100, 0.0762, 1312}, {200, 0.0762, 2625}};
  for (const auto& [length, pitch, count] : cases) EXPECT_EQ(BlockSampleCount(length, pitch), count) << length << " " << pitch;
}

TEST(FindGridEntry, FirstCountsByHandUpAndDown) {
  const SectionGridLine grid{12.3, 0.1, 5};  // borders 12.3, 12.4, ..., 12.8 km
  const auto entry = [](const SectionGridLine& g, double kp, bool down) {
    const GridEntry e = FindGridEntry(g, kp, 0.25, down);
    return std::pair(e.Section, e.FirstCount);
  };
  // Up from 12.3456 km at 0.25 m: 54.4 m to 12.4, so samples 1..218 lie before it and 219 is past it.
  EXPECT_EQ(entry(grid, 12.3456, false), std::pair(1, 219));
  // On a border: the first block is full.
  EXPECT_EQ(entry(grid, 12.4, false), std::pair(2, 1));
  // Down from 12.3456 km: 45.6 m to 12.3, 182.4 pitches, so sample 184 is the first at or below it.
  EXPECT_EQ(entry(grid, 12.3456, true), std::pair(-1, 184));
  EXPECT_EQ(entry(grid, 12.4, true), std::pair(-1, 1));
  // Exactly 400 pitches to the border: sample 401 lies on it.
  EXPECT_EQ(entry(SectionGridLine{12.3, 0.2, 2}, 12.4, false).second, 401);
  EXPECT_THROW(FindGridEntry(grid, 11.0, 0.25, false), LegacyError);
}

}  // namespace
}  // namespace velmora
