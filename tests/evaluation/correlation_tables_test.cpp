#include "evaluation/correlation_tables.h"

#include <gtest/gtest.h>

#include "base/legacy_error.h"

namespace velmora {
namespace {

using Row = std::vector<std::string>;

// Three profiles A, B, C with hand-set peaks; the diagonal stays uncomputed as it is never shown.
CorrelationResults ThreeProfiles(double rho12, double rho13, double rho23) {
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
  r.Valid = true;
  return r;
}

TEST(CrossTable, PairsBelowTheDiagonalWithColumnAndOverallMeans) {
  // Column means, the empty last column divided by 1; then all pairs (0.9 + 0.8 + 0.7) / 3 and the pairs
  // of columns 3 onward, 0.7.
  EXPECT_EQ(BuildCrossTable(ThreeProfiles(0.9, 0.8, 0.7), 0),
            (TextTable{{"", "A", "B", "C"}, {"A", "", "", ""}, {"B", "0.90000", "", ""}, {"C", "0.80000", "0.70000", ""},
                       {"平均(基準)", "0.85000", "0.70000", "0.00000"}, {"平均(全体)", "0.80000", "0.70000", ""}}));
}

TEST(CrossTable, MeansWorkOnTheFiguresAsShown) {
  // 0.000006 is shown "0.00001" and 0 "0.00000": the mean of the shown figures is 0.000005, which
  // shows "0.00001"; the raw mean 0.000003 would show "0.00000".
  const TextTable t = BuildCrossTable(ThreeProfiles(0.000006, 0.0, 0.5), 0);
  EXPECT_EQ(t[4][1], "0.00001");
  // Shifts are whole numbers without format; their mean (3 + -2) / 2 has the format.
  const TextTable shifts = BuildCrossTable(ThreeProfiles(0.9, 0.8, 0.7), 2);
  EXPECT_EQ((Row{shifts[2][1], shifts[3][1], shifts[4][1]}), (Row{"3", "-2", "0.50000"}));
}

TEST(CrossTable, ValueRowsErrorRatesAndASingleProfile) {
  CorrelationResults r = ThreeProfiles(0.9, 0.8, 0.7);
  r.Options.ShowIri = true;
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

TEST(SingleTable, GroupsByFirstProfileWithTheGroupMeanOnItsFirstRow) {
  CorrelationResults r = ThreeProfiles(0.9, 0.8, 0.7);
  r.Options.ShowIri = true;
  const TextTable t{{"", "IRI値", "組み合わせ", "IRI値", "算出値", "平均"},
                    {"A", "1.00000", "B", "2.00000", "0.90000", "0.85000"},
                    {"", "", "C", "3.00000", "0.80000", ""},
                    {"B", "2.00000", "C", "3.00000", "0.70000", "0.70000"}};
  EXPECT_EQ(BuildSingleTable(r, 0), t);
  r.Options.TableLayout = 1;
  r.Options.Measure = 0;
  EXPECT_EQ(BuildCorrelationTable(r), t);
}

TEST(CorrelationCsv, CaptionLineHeadLineThenBothBlocks) {
  CorrelationResults r = ThreeProfiles(0.9, 0.8, 0.7);
  r.Options.ShowIri = true;
  r.Options.ShowPsd = true;
  const std::vector<std::string> lines = CorrelationCsvLines(r, 0);
  ASSERT_GE(lines.size(), 8u);
  EXPECT_EQ((Row{lines[0], lines[1], lines[2]}),
            (Row{",,,,,,,相互相関値", ",IRI値,PSD値,組み合わせ,算出値,平均,,", "A,1.00000,4.00000,B,2.00000,0.00000,0.90000,0.85000"}));
  EXPECT_EQ((Row{lines[5], lines[6], lines[7], lines.back()}),
            (Row{"", ",A,B,C", "IRI値,1.00000,2.00000,3.00000", "平均(全体),0.80000,0.70000,"}));
  r.Options.ShowIri = r.Options.ShowPsd = false;
  const auto plain = CorrelationCsvLines(r, 3);
  EXPECT_EQ((Row{plain.at(0), plain.at(1)}), (Row{",,,,,,,標準偏差比", ",組み合わせ,算出値,平均,,"}));
}

}  // namespace
}  // namespace velmora
