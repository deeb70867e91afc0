// The statistics tab: the selection check, the sort keys, the section grid and blocks worked out by
// hand, and the pages of a run.
#include "evaluation/statistics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <utility>
#include <vector>

#include "evaluation/section_statistics.h"
#include "evaluation_fixture.h"
#include "support/checks.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

using testing::ListOf;
using testing::ScriptedUi;
using Row = std::vector<std::string>;

// Rising by 1 mm a sample at 0.25 m; with the ripple for the IRI, without it for block means by hand.
ProfileRecord PlainRamp(const std::string& name, int n, double kp, int kpSign = 0) {
  return testing::MakeProfile(name, 0.25, testing::Ramp(n), kp, kpSign);
}
ProfileRecord Ramp(const std::string& name, int n, double scale = 1.0) {
  std::vector<double> v;
  for (int i = 1; i <= n; ++i) v.push_back(scale * (i + 0.3 * std::sin(1.7 * i)));
  return testing::MakeProfile(name, 0.25, v, 0.0);
}

StatisticsSelection MeanOfFullWave() {
  StatisticsSelection s;
  s.ProfileBands[0] = true;
  s.ProfileMeasures[0] = true;
  return s;
}

// Runs over every profile of the list.
class StatisticsTest : public testing::EvaluationTest {
 protected:
  bool Run(ProfileList& list, const StatisticsSelection& s, StatisticsResults& results) {
    return RunStatistics(session, list, AllRows(list), s, {}, results);
  }
};

TEST_F(StatisticsTest, SelectionCheckGivesItsMessagesInOrderAndSidesTurnedOffQuietly) {
  auto refused = [this](std::int32_t count, StatisticsSelection s) {
    ScriptedUi ui(session);
    EXPECT_FALSE(CheckStatisticsSelection(session, count, s));
    EXPECT_EQ(ui.Messages().at(0).Title, "警告");
    return ui.OnlyMessageText();
  };
  StatisticsSelection s = MeanOfFullWave();
  EXPECT_EQ(refused(0, s), "表示用プロファイルが選択されていません。");
  s.ProfileBands[0] = false;
  s.ProfileBandsHeader = true;
  EXPECT_EQ(refused(1, s), "帯域(プロファイル)は１個以上選択してください。");
  s.ProfileBands[5] = true;
  s.ProfileMeasures[0] = false;
  EXPECT_EQ(refused(1, s), "統計値(プロファイル)は１個以上選択してください。");
  s.ProfileMeasures[4] = true;
  s.IriBandsHeader = true;
  EXPECT_EQ(refused(1, s), "帯域(IRI)は１個以上選択してください。");
  SwitchGroup(s.IriBands, true);
  EXPECT_EQ(refused(1, s), "統計値(IRI)は１個以上選択してください。");
  s.IriMeasures[1] = true;
  EXPECT_EQ(refused(1, s), "IRI算出基準長(IRI)は１個以上選択してください。");
  s.IriLengths[3] = true;
  ScriptedUi quiet(session);
  EXPECT_TRUE(CheckStatisticsSelection(session, 1, s));
  EXPECT_TRUE(s.ProfileSide && s.IriSide);
  // No band and the header off: that side is simply not wanted.
  StatisticsSelection profileOnly = MeanOfFullWave();
  EXPECT_TRUE(CheckStatisticsSelection(session, 2, profileOnly));
  EXPECT_FALSE(profileOnly.IriSide);
  EXPECT_TRUE(quiet.Log.empty());
  EXPECT_EQ(StatisticsSettingLines(profileOnly)[0], "プロファイル(帯域) = 全波長");
}

// The counts and the means of the blocks.
std::pair<std::vector<std::int32_t>, std::vector<double>> Blocks(const std::vector<SectionStatistics>& records) {
  std::pair<std::vector<std::int32_t>, std::vector<double>> blocks;
  for (const auto& r : records) {
    blocks.first.push_back(r.Count);
    blocks.second.push_back(r.Mean);
  }
  return blocks;
}
using Counts = std::vector<std::int32_t>;
using Means = std::vector<double>;
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
  // firstCount <= 1: full blocks from the first sample, then a tail of one. firstCount 2: the first block
  // holds the one sample before the border. A first border beyond the last sample: one short block.
  const struct { std::int32_t firstCount; Counts counts; Means means; } cases[] = {
      {0, {3, 3, 1}, {2, 5, 7}}, {1, {3, 3, 1}, {2, 5, 7}}, {2, {1, 3, 3}, {1, 3, 6}},
      {3, {2, 3, 2}, {1.5, 4, 6.5}}, {10, {7}, {4}}};
  for (const auto& c : cases) EXPECT_EQ(Blocks(CalcSectionStatistics(v, 3, c.firstCount)), std::pair(c.counts, c.means)) << c.firstCount;
  const auto full = CalcSectionStatistics(v, 3, 0);
  EXPECT_DOUBLE_EQ(full[0].StdDev, std::sqrt(2.0 / 3.0));  // (1 + 0 + 1) / 3, divisor = count
  EXPECT_EQ(full[0].Spread, 2.0);
}

TEST(CalcSectionStatistics, OneSampleShortAndNegativeBlocksTheWholeSeriesAndIriSectionsByHand) {
  // One sample; shorter than one block (mean 3, deviation 1, divisor 2); all values negative, where the
  // seeds give way to the data (squares 1 + 1 + 0 over 3).
  ExpectStatistics(CalcSectionStatistics(std::vector<double>{-3.5}, 40, 0).at(0), {-3.5, 0, -3.5, -3.5, 0, 1});
  ExpectStatistics(CalcSectionStatistics(std::vector<double>{2, 4}, 40, 0).at(0), {3, 1, 4, 2, 2, 2});
  ExpectStatistics(CalcSectionStatistics(std::vector<double>{-5, -7, -6}, 3, 0).at(0), {-6, std::sqrt(2.0 / 3), -5, -7, 2, 3});
  EXPECT_EQ(CalcSectionStatistics(std::vector<double>{2, 4}, 40, 0).size(), 1u);
  EXPECT_TRUE(CalcSectionStatistics(std::vector<double>{}, 3, 0).empty());
  EXPECT_THROW(CalcSectionStatistics(std::vector<double>{1}, 0, 0), LegacyError);
  // The textbook set: mean 5, squared deviations 9+1+1+1+0+0+4+16 = 32, / 8 = 4.
  ExpectStatistics(CalcWholeStatistics(std::vector<double>{2, 4, 4, 4, 5, 5, 7, 9}), {5, 2, 9, 2, 7, 8});
  EXPECT_THROW(CalcWholeStatistics(std::vector<double>{}), LegacyError);
  // Mean = (40*2 + 10*4 + 50*1) / 100 = 1.7. Deviations from 1.7: 0.3, 2.3, -0.7, squares
  // 0.09 + 5.29 + 0.49 = 5.87 over 3 sections. (A weighted deviation would be 0.9, a plain mean 2.333.)
  const auto iri = CalcIriStatistics(std::vector<IriSectionValue>{{40, 2.0}, {10, 4.0}, {50, 1.0}});
  EXPECT_DOUBLE_EQ(iri.Mean, 1.7);
  ExpectStatistics(iri, {iri.Mean, std::sqrt(5.87 / 3.0), 4, 1, 3, 3});
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

TEST(StatisticsSortKey, LevelsFollowTheOrderingList) {
  EXPECT_EQ(StatisticsSortKey({"IRI算出基準長", "プロファイル", "帯域", "統計値"}, 1, 0, 4, 2),
            "d03_100m固定/001/a01_全波長/b05_最大小差/");
  // The profile first: all of profile 1 before profile 2; the band first: 全波長 of both before 長波長.
  EXPECT_LT(StatisticsSortKey({"プロファイル", "帯域"}, 1, 2, 0), StatisticsSortKey({"プロファイル", "帯域"}, 2, 0, 0));
  EXPECT_LT(StatisticsSortKey({"帯域", "プロファイル"}, 2, 0, 0), StatisticsSortKey({"帯域", "プロファイル"}, 1, 1, 0));
}

TEST(BuildSectionGrid, FirstBordersAndCountsByHand) {
  // From 12.3456 km: the next 10 m line is 12.350, so the grid starts one section earlier at 12.340;
  // borders up to 12.580, the first at or past the end 12.5789: 24 sections. 200 m lines lie on even
  // hundreds: 12.400 is next, so that grid starts at 12.200. A start on a 100 m line is itself the
  // first border; on an odd hundred the 200 m grid starts 100 m before it. An end on a border opens
  // one more section for its last sample.
  const struct {
    double start, end, length, firstKp;
    std::int32_t count;
  } cases[] = {{12.3456, 12.5789, 10, 12.34, 24}, {12.3456, 12.5789, 100, 12.3, 3}, {12.3456, 12.5789, 200, 12.2, 2},
               {12.3, 12.4, 100, 12.3, 2},        {12.3, 12.4, 200, 12.2, 2}};
  for (const auto& c : cases) {
    const SectionGridLine grid = BuildSectionGrid(c.start, c.end, c.length, 0.25);
    EXPECT_NEAR(grid.FirstKp, c.firstKp, 1e-12) << c.start << " " << c.length;
    EXPECT_EQ(grid.SectionCount, c.count) << c.start << " " << c.length;
  }
}

TEST_F(StatisticsTest, TenMetreBlocksOnTheCommonGridUpAndDown) {
  // B from 1.000 km and A from 1.005 km, both up; C falls from 1.09975 to 1.000 km. 400 samples of
  // 0.25 m each; the common 10 m grid runs from 1.000 with 11 sections (the last border 1.110).
  ProfileList list = ListOf({PlainRamp("A", 400, 1.005), PlainRamp("B", 400, 1.0), PlainRamp("C", 400, 1.09975, 1)});
  StatisticsResults results;
  ASSERT_TRUE(Run(list, MeanOfFullWave(), results));
  EXPECT_EQ(results.Grid[0].SectionCount, 11);
  const StatisticsPage& whole = results.Pages[0];
  EXPECT_EQ(results.Pages[0].Caption, "全区間(Prof)");
  EXPECT_EQ(whole.RowText(0), (Row{"プロファイル", "A", "B", "C"}));
  EXPECT_EQ(whole.RowText(1), (Row{"帯域", "全波長", "全波長", "全波長"}));
  EXPECT_EQ(whole.RowText(2), (Row{"統計値", "平均 μ", "平均 μ", "平均 μ"}));
  EXPECT_EQ(whole.RowText(3), (Row{"全区間", "200.50000000", "200.50000000", "200.50000000"}));

  const StatisticsPage& tens = results.Pages[1];
  ASSERT_EQ(tens.RowCount(), 4u + 11u);
  EXPECT_EQ(tens.RowText(3), (Row{"KP", "", "", ""}));
  // A: samples 1..20 lie before 1.010 (mean 10.5), then blocks of 40 (21..60: 40.5), the tail
  // 381..400 (390.5) in the last section. B starts on a border: 1..40 (20.5) ... 361..400 (380.5).
  // C runs down from 1.09975: 39 samples down to 1.090 (mean 20) in section 10, then 40..79 (59.5)
  // in section 9, ..., 360..399 (379.5) in section 1; sample 400 lies on 1.000 and opens a block
  // below the grid.
  EXPECT_EQ(tens.RowText(4), (Row{"1.000", "10.50000000", "20.50000000", "379.50000000"}));
  EXPECT_EQ(tens.RowText(5), (Row{"1.010", "40.50000000", "60.50000000", "339.50000000"}));
  EXPECT_EQ(tens.RowText(13), (Row{"1.090", "360.50000000", "380.50000000", "20.00000000"}));
  EXPECT_EQ(tens.RowText(14), (Row{"1.100", "390.50000000", "", ""}));
}

TEST_F(StatisticsTest, IriPagesScaleWithTheProfileAndListTheFixedSections) {
  ProfileList list = ListOf({Ramp("A", 2000), Ramp("B", 2000, 2.0)});
  StatisticsSelection s;
  s.IriBands[0] = true;
  s.IriMeasures = {true, false, true, true, false};
  s.IriLengths = {true, true, false, false};
  StatisticsResults results;
  ASSERT_TRUE(Run(list, s, results));
  EXPECT_TRUE(results.Pages[0].Empty());
  const StatisticsPage& whole = results.Pages[4];
  ASSERT_EQ(whole.RowCount(), 5u);
  EXPECT_EQ(whole.Cell(1, 1), "10m連続");
  EXPECT_EQ(whole.Cell(1, 4), "10m固定");
  // Columns: A 10m連続 (mean, max, min), A 10m固定 (...), then B likewise. The quarter car is
  // linear, so B's figures are twice A's; each mean lies between its min and max.
  for (int c = 1; c <= 6; ++c) {
    const double a = std::stod(whole.Cell(4, static_cast<std::size_t>(c)));
    const double b = std::stod(whole.Cell(4, static_cast<std::size_t>(c + 6)));
    EXPECT_NEAR(b, 2 * a, 1e-6) << c;
  }
  EXPECT_LE(std::stod(whole.Cell(4, 3)), std::stod(whole.Cell(4, 1)));
  EXPECT_LE(std::stod(whole.Cell(4, 1)), std::stod(whole.Cell(4, 2)));
  // The 10 m page lists the fixed sections of both from KP 0, B's IRI twice A's.
  const StatisticsPage& tens = results.Pages[5];
  EXPECT_EQ(tens.RowText(4), (Row{"", "KP(自)", "KP(至)", "IRI", "KP(自)", "KP(至)", "IRI"}));
  EXPECT_EQ(tens.Cell(5, 1), "0.000");
  EXPECT_GE(tens.RowCount(), 5u + 49u);
  for (std::size_t r = 5; r < tens.RowCount(); ++r) {
    EXPECT_EQ(tens.Cell(r, 1), tens.Cell(r, 4));
    EXPECT_NEAR(std::stod(tens.Cell(r, 6)), 2 * std::stod(tens.Cell(r, 3)), 2e-8) << r;
  }
  EXPECT_TRUE(results.Pages[6].Empty());
}

}  // namespace
}  // namespace velmora
