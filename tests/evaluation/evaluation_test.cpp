// Cross-correlation: the kernel of one pair by hand and against the plain shift loop bit for bit, the
// options check, the aligned samples, the run over all pairs, the shifted copies and the result tables.
#include "evaluation/cross_correlation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <tuple>

#include "evaluation/correlation_tables.h"
#include "evaluation/cross_correlation_kernel.h"
#include "evaluation/section_statistics.h"
#include "evaluation/statistics.h"
#include "evaluation_fixture.h"
#include "support/checks.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

using testing::ErrorOf;
using testing::ListOf;
using testing::MakeProfile;
using testing::Ramp;
using testing::Road;
using Row = std::vector<std::string>;
using Rows = std::vector<std::int32_t>;

TEST(CrossCorrelatePair, ASeriesWithItselfPeaksAtZeroAndALaggedOneAtItsLag) {
  const int n = 200;
  const CorrelationCell cell = CrossCorrelatePair(n, Road(n), Road(n), 10);
  // sd divides by n - 1 and rho by n: S(0) = (n-1) sd^2, so rho = (n-1)/n, not 1.
  EXPECT_NEAR(cell.Peak(CorrelationRow::Rho).Value, 199.0 / 200.0, 1e-12);
  EXPECT_EQ(cell.Peak(CorrelationRow::Rho).Shift, 0);
  EXPECT_EQ(cell.SdRatio, 1.0);
  EXPECT_NEAR(cell.Peak(CorrelationRow::Agreement).Value, 199.0 / 200.0, 1e-12);
  EXPECT_NEAR(cell.Peak(CorrelationRow::OverDeviations).Value, 199.0, 1e-9);
  EXPECT_TRUE(cell.Computed);

  // Road(n, 3)[k] = Road(n)[k + 3]: a's feature lies 3 samples later in b; the other way round -3.
  const std::vector<double> early = Road(300, 3), late = Road(300);
  const CorrelationCell ab = CrossCorrelatePair(300, early, late, 20);
  EXPECT_EQ(ab.Peak(CorrelationRow::Rho).Shift, 3);
  EXPECT_EQ(ab.Peak(CorrelationRow::Agreement).Shift, 3);
  EXPECT_EQ(CrossCorrelatePair(300, late, early, 20).Peak(CorrelationRow::Rho).Shift, -3);
}

TEST(CrossCorrelatePair, EqualPeaksReportTheMostNegativeShiftWithHandValues) {
  // a holds one (+1, -1) step at samples 4..5; b holds it at 1..2 and at 7..8. Both means are 0.
  // Shift +3 pairs a4,a5 with b7,b8 and shift -3 pairs them with b1,b2: S = 2 at both.
  const std::vector<double> a = {0, 0, 0, 1, -1, 0, 0, 0};
  const std::vector<double> b = {1, -1, 0, 0, 0, 0, 1, -1};
  const CorrelationCell cell = CrossCorrelatePair(8, a, b, 4);
  for (const CorrelationPeak& peak : cell.Peaks) EXPECT_EQ(peak.Shift, -3);
  // sdA = sqrt(2/7), sdB = sqrt(4/7): sdA sdB = sqrt(8)/7, R = 14/sqrt(8), rho = R / 8.
  EXPECT_DOUBLE_EQ(cell.Peak(CorrelationRow::SumOfProducts).Value, 2.0);
  EXPECT_DOUBLE_EQ(cell.Peak(CorrelationRow::OverOverlap).Value, 2.0 / 5.0);
  EXPECT_DOUBLE_EQ(cell.Peak(CorrelationRow::OverCount).Value, 2.0 / 8.0);
  EXPECT_NEAR(cell.Peak(CorrelationRow::OverDeviations).Value, 4.949747468305833, 1e-12);
  EXPECT_NEAR(cell.Peak(CorrelationRow::Rho).Value, 0.6187184335382291, 1e-12);
  EXPECT_NEAR(cell.SdRatio, std::sqrt(0.5), 1e-15);
  EXPECT_NEAR(cell.Peak(CorrelationRow::Agreement).Value, 0.6187184335382291 * std::sqrt(0.5), 1e-12);
  // The ratio of deviations is the smaller over the larger.
  EXPECT_EQ(SdRatio(4, 2), 0.5);
  EXPECT_EQ(SdRatio(0, 3), 0.0);
  EXPECT_THROW(SdRatio(0, 0), LegacyError);
}

TEST(CrossCorrelatePair, ConstantSeriesAndLimitsFailThroughTheErrorPath) {
  const std::vector<double> flat(50, 3.0);
  const std::vector<double> wavy = Road(50);
  EXPECT_EQ(ErrorOf([&] { CrossCorrelatePair(50, flat, wavy, 5); }), ErrorNumber::DivisionByZero);
  EXPECT_EQ(ErrorOf([&] { CrossCorrelatePair(50, wavy, wavy, 50); }), ErrorNumber::SubscriptOutOfRange);
  EXPECT_EQ(ErrorOf([&] { CrossCorrelatePair(60, wavy, wavy, 5); }), ErrorNumber::SubscriptOutOfRange);
}

// The pair written out plainly from the method: deviations from the whole series' means, standard
// deviations with divisor n - 1, for each shift the products over the overlap summed in index order,
// the seven rows with the coefficient over sqrt(n * n), and a scan where a later value wins only when
// strictly greater. n * n is formed in 64 bits: below 46,341 samples that is the old 32-bit product.
CorrelationCell CorrelationByDefinition(const std::vector<double>& a, const std::vector<double>& b,
                                        std::int64_t maxShift) {
  const auto n = static_cast<std::int64_t>(a.size());
  auto meanOf = [n](const std::vector<double>& x) {
    double sum = 0;
    for (double v : x) sum += v;
    return sum / static_cast<double>(n);
  };
  auto deviationsOf = [&](const std::vector<double>& x) {
    const double mean = meanOf(x);
    std::vector<double> d;
    for (double v : x) d.push_back(v - mean);
    return d;
  };
  auto sdOf = [&](const std::vector<double>& d) {
    const double mean = meanOf(d);
    double squares = 0;
    for (double v : d) squares += (v - mean) * (v - mean);
    return std::sqrt(squares / static_cast<double>(n - 1));
  };
  const std::vector<double> dA = deviationsOf(a), dB = deviationsOf(b);
  const double sdA = sdOf(dA), sdB = sdOf(dB);
  CorrelationCell cell;
  cell.SdRatio = std::min(sdA, sdB) / std::max(sdA, sdB);
  const double rootNSquared = std::sqrt(static_cast<double>(n * n));
  for (std::int64_t k = 1; k <= 2 * maxShift + 1; ++k) {
    const std::int64_t shift = k - 1 - maxShift, len = n - std::abs(shift);
    const std::int64_t startA = shift < 0 ? -shift + 1 : 1, startB = shift >= 1 ? shift + 1 : 1;
    double sum = 0;
    for (std::int64_t i = 1; i <= len; ++i)
      sum += dA[static_cast<std::size_t>(startA + i - 2)] * dB[static_cast<std::size_t>(startB + i - 2)];
    const double r = sum / (sdA * sdB), rho = r / rootNSquared;
    const double rows[] = {sum, sum / static_cast<double>(len), sum / static_cast<double>(n), r, rho,
                           cell.SdRatio * r, cell.SdRatio * rho};
    for (std::size_t row = 0; row < cell.Peaks.size(); ++row)
      if (k == 1 || rows[row] > cell.Peaks[row].Value) cell.Peaks[row] = {rows[row], static_cast<std::int32_t>(shift)};
  }
  return cell;
}

TEST(CrossCorrelatePair, AtAndBeyondTheOldIntegerLimitsEqualsTheMethodWrittenOut) {
  // b is a seen `lag` samples later, so the coefficient peaks at +lag. A series with itself peaks at 0
  // with (n - 1)/n: S(0) = (n - 1) sd^2 and the coefficient divides by sd^2 and by n.
  struct Case {
    const char* what;
    int n, maxShift, lag;
  };
  for (const Case& c : {Case{"32,767 shifts, the old counter's most", 16400, 16383, 5},
                        Case{"46,340 samples, the largest n * n of 32 bits", 46340, 8, 0},
                        Case{"46,341 samples, n * n beyond 32 bits", 46341, 8, 0},
                        Case{"40,001 shifts over 40,001 samples", 40001, 20000, 7}}) {
    SCOPED_TRACE(c.what);
    const std::vector<double> road = Road(c.n + c.lag);
    const std::vector<double> a(road.begin() + c.lag, road.end()), b(road.begin(), road.begin() + c.n);
    const CorrelationCell cell = CrossCorrelatePair(c.n, a, b, c.maxShift);
    const CorrelationCell plain = CorrelationByDefinition(a, b, c.maxShift);
    for (std::size_t row = 0; row < cell.Peaks.size(); ++row) {
      EXPECT_EQ(cell.Peaks[row].Value, plain.Peaks[row].Value) << "row " << row + 1;
      EXPECT_EQ(cell.Peaks[row].Shift, plain.Peaks[row].Shift) << "row " << row + 1;
    }
    EXPECT_EQ(cell.SdRatio, plain.SdRatio);
    EXPECT_EQ(cell.Peak(CorrelationRow::Rho).Shift, c.lag);
    if (c.lag == 0) {
      EXPECT_NEAR(cell.Peak(CorrelationRow::Rho).Value, (c.n - 1.0) / c.n, 1e-12);
    }
  }
}

TEST(ShiftSums, PlainLoopByHandAndEveryShiftCountAndThreadCountBitForBit) {
  // dA = (1, 2, 3), dB = (10, 20, 40): shift +1 is 1*20 + 2*40, shift -1 is 2*10 + 3*20,
  // shift +2 is 1*40, shift -2 is 3*10, shift 0 is 10 + 40 + 120.
  EXPECT_EQ(detail::ShiftSumsPlain(std::vector<double>{1, 2, 3}, std::vector<double>{10, 20, 40}, 2), (std::vector<double>{30, 80, 170, 100, 40}));
  std::mt19937_64 random(7);
  std::normal_distribution<double> noise(0.0, 3.0);
  for (const auto& [n, maxShift] : std::vector<std::pair<int, int>>{
           {1, 0}, {3, 2}, {5, 4}, {17, 16}, {40, 15}, {40, 16}, {100, 33}, {100, 99}, {1000, 500}, {3000, 1499}}) {
    std::vector<double> a(static_cast<std::size_t>(n)), b(static_cast<std::size_t>(n));
    for (auto& x : a) x = noise(random);
    for (auto& x : b) x = noise(random);
    const std::vector<double> reference = detail::ShiftSumsPlain(a, b, maxShift);
    for (unsigned threads : {1u, 2u, 3u}) {
      const std::vector<double> fast = detail::ShiftSums(a, b, maxShift, threads);
      ASSERT_EQ(fast.size(), reference.size());
      for (std::size_t k = 0; k < fast.size(); ++k)
        ASSERT_EQ(fast[k], reference[k]) << "n " << n << " shift " << static_cast<int>(k) - maxShift;
    }
  }
}

// Profiles at 0.25 m; a run of every profile of the list, without the IRI filter unless asked.
class CrossCorrelationTest : public testing::EvaluationTest {
 protected:
  static ProfileRecord P(const std::string& name, std::vector<double> samples, double kp = kNoValue, int kpSign = 0) {
    return MakeProfile(name, 0.25, std::move(samples), kp, kpSign);
  }
  bool Run(const ProfileList& list, CorrelationResults& results, std::int32_t filterMode = 0,
           const std::string& maxShift = "10") {
    const CorrelationOptions options{.MaxShiftText = maxShift, .FilterMode = filterMode};
    return RunCrossCorrelation(session, list, AllRows(list), options, session.CurrentConditions.Iri, results);
  }
};

TEST_F(CrossCorrelationTest, CheckGivesItsMessagesInOrderAndSelectsTheShiftBox) {
  CorrelationSelection selection;
  CorrelationOptions options;
  options.MaxShiftText = "abc";  // also wrong, but the pitch is checked first
  const Rows both = {2, 1};
  const ProfileList mixed = ListOf({P("A", Ramp(50)), MakeProfile("B", 0.3, Ramp(50))});
  EXPECT_FALSE(CheckCorrelationOptions(session, mixed, both, options, selection));
  testing::ExpectMessages(ui_, {{"対象プロファイルのサンプルピッチは全て同じにしてください。\r\nA ： 0.2500\r\nB ： 0.3000\r\n確認してください。",
                                 "警告", MsgIcon::Exclamation}});

  // KP ranges 1.000-1.01225 km and 2.000-2.01225 km share nothing.
  ui_.Log.clear();
  options.Alignment = 2;
  EXPECT_FALSE(CheckCorrelationOptions(session, ListOf({P("A", Ramp(50), 1.0), P("B", Ramp(50), 2.0)}), both, options, selection));
  EXPECT_EQ(ui_.OnlyMessageText(), "全プロファイルで共通なプロファイル部がありませんでした。\r\n\r\n確認してください。");

  // Common count 50: the shift must lie in 1..48.
  options.Alignment = 0;
  const ProfileList same = ListOf({P("A", Ramp(50)), P("B", Ramp(60))});
  for (const char* text : {"abc", "0", "49", "-1", "2.5"}) {
    ui_.Log.clear();
    options.MaxShiftText = text;
    EXPECT_FALSE(CheckCorrelationOptions(session, same, both, options, selection)) << text;
    EXPECT_EQ(ui_.OnlyMessageText(), "０ < [最大ずらし量] <= ４８　の範囲で指定してください") << text;
    EXPECT_TRUE(selection.SelectMaxShiftText);
  }
  ui_.Log.clear();
  options.MaxShiftText = "48";
  EXPECT_TRUE(CheckCorrelationOptions(session, same, both, options, selection));
  EXPECT_EQ(options.MaxShiftCount, 48);
  EXPECT_EQ(selection.CommonCount, 50);
  EXPECT_EQ(selection.Names, (std::vector<std::string>{"A", "B"}));
  EXPECT_EQ(selection.ListIndices, (Rows{1, 2}));
  // "MAX/2" does not read the box at all.
  options.MaxShiftMode = 0;
  options.MaxShiftText = "abc";
  EXPECT_TRUE(CheckCorrelationOptions(session, same, both, options, selection));
  EXPECT_TRUE(ui_.Log.empty());
}

TEST_F(CrossCorrelationTest, AlignedSamplesFromTheHeadTheCentreAndTheKpWithADownwardProfileReversed) {
  // A: 1.000 to 1.100 km upward; B: KP falls from 1.150 to 1.050 km. At 0.25 m the common part
  // 1.050-1.100 km holds 0.05 / 0.00025 + 1 = 201 samples: A from its sample 201, B from its
  // sample 401 (KP 1.050) backwards.
  const ProfileList list = ListOf({P("A", Ramp(401), 1.0), P("B", Ramp(401), 1.15, 1)});
  CorrelationOptions options{.Alignment = 2};
  CorrelationSelection selection;
  ASSERT_TRUE(CheckCorrelationOptions(session, list, AllRows(list), options, selection));
  EXPECT_EQ(selection.CommonCount, 201);
  EXPECT_NEAR(selection.CommonKpStart, 1.05, 1e-12);
  EXPECT_NEAR(selection.CommonKpEnd, 1.1, 1e-12);
  const auto a = AlignedSamples(list.Items[1], options, selection);
  const auto b = AlignedSamples(list.Items[2], options, selection);
  ASSERT_EQ(a.size(), 201u);
  EXPECT_EQ((std::vector{a.front(), a.back(), b.front(), b.back()}), (std::vector<double>{201, 401, 401, 201}));

  // Centre: 11 samples against a common 6 leave 5, half of it 2.5, rounded to even 2: from sample 3.
  const ProfileList centre = ListOf({P("A", Ramp(11)), P("B", Ramp(6))});
  options = CorrelationOptions{.MaxShiftText = "4", .Alignment = 1};
  ASSERT_TRUE(CheckCorrelationOptions(session, centre, AllRows(centre), options, selection));
  EXPECT_EQ(AlignedSamples(centre.Items[1], options, selection), (std::vector<double>{3, 4, 5, 6, 7, 8}));
  options.Alignment = 0;
  EXPECT_EQ(AlignedSamples(centre.Items[1], options, selection), (std::vector<double>{1, 2, 3, 4, 5, 6}));
}

TEST_F(CrossCorrelationTest, RunFindsLagScaleAndDiagonalOverAllPairs) {
  const int n = 800;
  // B holds A's road 3 samples later in its own index; C is A doubled (exact in binary).
  std::vector<double> c = Road(n, 3);
  for (double& x : c) x *= 2;
  const ProfileList list = ListOf({P("A", Road(n, 3)), P("B", Road(n)), P("C", c)});
  CorrelationResults results;
  ASSERT_TRUE(Run(list, results, 0, "20"));
  ASSERT_TRUE(results.Valid);
  EXPECT_FALSE(results.UsedIriFilter);
  for (std::int32_t i = 1; i <= 3; ++i) {
    EXPECT_TRUE(results.Cell(i, i).Computed);
    EXPECT_NEAR(results.Cell(i, i).Peak(CorrelationRow::Rho).Value, (n - 1.0) / n, 1e-12);
    EXPECT_EQ(results.Cell(i, i).SdRatio, 1.0);
  }
  EXPECT_EQ(results.Cell(1, 2).Peak(CorrelationRow::Rho).Shift, 3);
  EXPECT_FALSE(results.Cell(2, 1).Computed);
  EXPECT_EQ(results.Cell(1, 3).SdRatio, 0.5);
  EXPECT_NEAR(results.Cell(1, 3).Peak(CorrelationRow::Agreement).Value, 0.5 * (n - 1.0) / n, 1e-12);
  // The quarter car is linear and doubling is exact: IRI doubles, PSD is four times.
  EXPECT_NEAR(results.IriValues[2] / results.IriValues[0], 2.0, 1e-12);
  EXPECT_NEAR(results.PsdValues[2] / results.PsdValues[0], 4.0, 1e-12);
  // Pairs (1,1) (1,2) (1,3) (2,2) (2,3) (3,3).
  EXPECT_EQ(ui_.ProgressValues.size(), 6u);
  EXPECT_EQ(ui_.ProgressValues.back(), 100);

  // Through the IRI filter the lag is still found.
  CorrelationResults filtered;
  ASSERT_TRUE(Run(list, filtered, 1, "20"));
  EXPECT_TRUE(filtered.UsedIriFilter);
  EXPECT_EQ(filtered.Cell(1, 2).Peak(CorrelationRow::Rho).Shift, 3);
}

TEST_F(CrossCorrelationTest, RunFailuresGoThroughTheErrorPathAndKeepTheResults) {
  CorrelationResults results;
  results.Valid = true;
  results.Selection.ProfileCount = 7;
  EXPECT_FALSE(Run(ListOf({P("B", Road(100)), P("A", std::vector<double>(100, 1.0))}), results));
  EXPECT_EQ(results.Selection.ProfileCount, 7);  // left as it was
  ASSERT_EQ(ui_.Messages().size(), 1u);
  EXPECT_EQ(ui_.Messages()[0].Title, "[ frmTop : cmdGO相互相関 ]");
  // The flat profile fails first in its pair with B: the message names both files.
  EXPECT_EQ(ui_.Messages()[0].Text.rfind("ERROR : B.erd / A.erd: 0 で除算しました。", 0), 0u) << ui_.Messages()[0].Text;
}

TEST_F(CrossCorrelationTest, ALagOfThreeRegistersBMinusThreePWithItsKpMoved) {
  ProfileList list = ListOf({P("A", Road(400, 3), 1.0), P("B", Road(400), 1.0), P("C", Road(400, 3), 1.0)});
  CorrelationResults results;
  ASSERT_TRUE(Run(list, results));
  ASSERT_EQ(results.Cell(1, 2).Peak(CorrelationRow::Rho).Shift, 3);
  ASSERT_EQ(results.Cell(1, 3).Peak(CorrelationRow::Rho).Shift, 0);  // skipped
  EXPECT_EQ(RegisterShiftedProfiles(session, list, results), (std::vector<std::string>{"B-3P"}));
  ASSERT_EQ(list.Count(), 4);
  const ProfileRecord& copy = list.Items[4];
  EXPECT_EQ(ProfileList::NameOf(copy), "B-3P");
  EXPECT_NEAR(copy.Erd.KpStart, 0.99925, 1e-9);  // 1.000 km - 3 x 0.25 m
  EXPECT_EQ(copy.Erd.Title, "B(-3P)");
  EXPECT_EQ(copy.WorkCount, 400);
  EXPECT_TRUE(std::filesystem::exists(dir_ / "Project/Profile/B-3P.ERD"));
  EXPECT_EQ(ShiftedProfileName("B", -3), "B+3P");
}

// Three profiles A, B, C with hand-set peaks; the diagonal stays uncomputed as it is never shown.
CorrelationResults ThreeProfiles(double rho12, double rho13, double rho23, bool showIri = false) {
  CorrelationResults r;
  r.Selection.ProfileCount = 3;
  r.Selection.Names = {"A", "B", "C"};
  r.Matrix.resize(9);
  r.Cell(1, 2).Peak(CorrelationRow::Rho) = {rho12, 3};
  r.Cell(1, 3).Peak(CorrelationRow::Rho) = {rho13, -2};
  r.Cell(2, 3).Peak(CorrelationRow::Rho) = {rho23, 0};
  r.Cell(1, 2).SdRatio = 0.5;
  r.IriValues = {1.0, 2.0, 3.0};
  r.PsdValues = {4.0, 0.0, 5.0};
  r.Options.ShowIri = showIri;
  r.Valid = true;
  return r;
}

TEST(CorrelationTables, CrossTablePairsBelowTheDiagonalWithMeansOfTheFiguresAsShown) {
  // Column means, the empty last column divided by 1; then all pairs (0.9 + 0.8 + 0.7) / 3 and the pairs
  // of columns 3 onward, 0.7.
  EXPECT_EQ(BuildCrossTable(ThreeProfiles(0.9, 0.8, 0.7), 0),
            (TextTable{{"", "A", "B", "C"}, {"A", "", "", ""}, {"B", "0.90000", "", ""}, {"C", "0.80000", "0.70000", ""},
                       {"平均(基準)", "0.85000", "0.70000", "0.00000"}, {"平均(全体)", "0.80000", "0.70000", ""}}));
  // 0.000006 is shown "0.00001" and 0 "0.00000": the mean of the shown figures is 0.000005, which
  // shows "0.00001"; the raw mean 0.000003 would show "0.00000".
  EXPECT_EQ(BuildCrossTable(ThreeProfiles(0.000006, 0.0, 0.5), 0)[4][1], "0.00001");
  // Shifts are whole numbers without format; their mean (3 + -2) / 2 has the format.
  const TextTable shifts = BuildCrossTable(ThreeProfiles(0.9, 0.8, 0.7), 2);
  EXPECT_EQ((Row{shifts[2][1], shifts[3][1], shifts[4][1]}), (Row{"3", "-2", "0.50000"}));
}

TEST(CorrelationTables, ValueRowsErrorRatesAndASingleProfile) {
  const CorrelationResults r = ThreeProfiles(0.9, 0.8, 0.7, true);
  // IRI error rates (value j - value i) / value i: (2-1)/1, (3-1)/1, (3-2)/2, sign kept, no percent.
  const TextTable t = BuildCrossTable(r, 4);
  EXPECT_EQ(t[1], (Row{"IRI値", "1.00000", "2.00000", "3.00000"}));
  EXPECT_EQ(t[3], (Row{"B", "1.00000", "", ""}));
  EXPECT_EQ(t[4], (Row{"C", "2.00000", "0.50000", ""}));
  EXPECT_EQ(MeasureText(r, 3, 1, 2), "0.50000");
  // PSD of B is 0: the rate (C - B) / B is a division by zero.
  EXPECT_EQ(MeasureText(r, 5, 1, 2), "-1.00000");
  EXPECT_THROW(MeasureText(r, 5, 2, 3), LegacyError);

  CorrelationResults one;
  one.Selection.ProfileCount = 1;
  one.Selection.Names = {"A"};
  one.Matrix.resize(1);
  EXPECT_EQ(BuildCrossTable(one, 1), (TextTable{Row{"", "A"}}));
  EXPECT_EQ(BuildSingleTable(one, 1).size(), 1u);
}

TEST(CorrelationTables, SingleTableGroupsByFirstProfileAndTheCsvHoldsBothBlocks) {
  CorrelationResults r = ThreeProfiles(0.9, 0.8, 0.7, true);
  const TextTable t{{"", "IRI値", "組み合わせ", "IRI値", "算出値", "平均"},
                    {"A", "1.00000", "B", "2.00000", "0.90000", "0.85000"},
                    {"", "", "C", "3.00000", "0.80000", ""},
                    {"B", "2.00000", "C", "3.00000", "0.70000", "0.70000"}};
  EXPECT_EQ(BuildSingleTable(r, 0), t);
  r.Options.TableLayout = 1;
  r.Options.Measure = 0;
  EXPECT_EQ(BuildCorrelationTable(r), t);

  // A caption line and a head line, the single table, a blank line, then the cross table.
  r.Options.ShowPsd = true;
  const std::vector<std::string> lines = CorrelationCsvLines(r, 0);
  ASSERT_GE(lines.size(), 8u);
  EXPECT_EQ((Row{lines[0], lines[1], lines[2]}),
            (Row{",,,,,,,相互相関値", ",IRI値,PSD値,組み合わせ,算出値,平均,,", "A,1.00000,4.00000,B,2.00000,0.00000,0.90000,0.85000"}));
  EXPECT_EQ((Row{lines[5], lines[6], lines[7], lines.back()}),
            (Row{"", ",A,B,C", "IRI値,1.00000,2.00000,3.00000", "平均(全体),0.80000,0.70000,"}));
}

// The statistics tab: the selection check, the sort keys, the section grid and blocks worked out by
// hand, and the pages of a run.
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
