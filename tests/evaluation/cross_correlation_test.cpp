#include "evaluation/cross_correlation.h"

#include <gtest/gtest.h>

#include <regex>

#include "base/text_encoding.h"
#include "evaluation/correlation_tables.h"
#include "evaluation_fixture.h"
#include "support/checks.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

using testing::ListOf;
using testing::MakeProfile;
using testing::Ramp;
using testing::Road;
using testing::TempDir;
using Rows = std::vector<std::int32_t>;

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
  const ProfileList far = ListOf({P("A", Ramp(50), 1.0), P("B", Ramp(50), 2.0)});
  EXPECT_FALSE(CheckCorrelationOptions(session, far, both, options, selection));
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
  EXPECT_TRUE(ui_.Log.empty());
  // "MAX/2" does not read the box at all.
  options.MaxShiftMode = 0;
  options.MaxShiftText = "abc";
  EXPECT_TRUE(CheckCorrelationOptions(session, same, both, options, selection));
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
  EXPECT_FALSE(Run(ListOf({P("A", std::vector<double>(100, 1.0)), P("B", Road(100))}), results));
  EXPECT_EQ(results.Selection.ProfileCount, 7);  // left as it was
  ASSERT_EQ(ui_.Messages().size(), 1u);
  EXPECT_EQ(ui_.Messages()[0].Title, "[ frmTop : cmdGO相互相関 ]");

  // "MAX/2" on 70000 samples: 70001 shifts pass the 16-bit counter.
  ui_.Log.clear();
  const ProfileList longer = ListOf({P("A", Road(70000)), P("B", Road(70000, 1))});
  const CorrelationOptions half{.MaxShiftMode = 0, .FilterMode = 0};
  EXPECT_FALSE(RunCrossCorrelation(session, longer, AllRows(longer), half, session.CurrentConditions.Iri, results));
  EXPECT_NE(ui_.OnlyMessageText().find("オーバーフロー"), std::string::npos);
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
  EXPECT_EQ(ShiftedTitleSuffix(-3), "(+3P)");
}

}  // namespace
}  // namespace velmora
