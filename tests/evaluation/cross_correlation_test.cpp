#include "evaluation/cross_correlation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <regex>

#include "base/app_paths.h"
#include "base/session.h"
#include "base/text_encoding.h"
#include "evaluation/correlation_tables.h"
#include "evaluation_fixture.h"
#include "support/profile_fixture.h"
#include "support/session_fixture.h"
#include "support/test_support.h"

namespace velmora {
namespace {

using testing::MakeProfile;
using testing::Ramp;
using testing::Road;
using testing::ListOf;
using testing::ScriptedUi;
using testing::TempDir;

class CheckCorrelationOptionsTest : public testing::EvaluationTest {};

TEST_F(CheckCorrelationOptionsTest, MessagesInOrderAndTheShiftBoxSelected) {
  ScriptedUi ui(session);
  CorrelationSelection selection;
  CorrelationOptions options;
  options.MaxShiftText = "abc";  // also wrong, but the pitch is checked first
  const ProfileList mixed = ListOf({MakeProfile("A", 0.25, Ramp(50)), MakeProfile("B", 0.3, Ramp(50))});
  const std::vector<std::int32_t> both = {2, 1};
  EXPECT_FALSE(CheckCorrelationOptions(session, mixed, both, options, selection));
  EXPECT_EQ(ui.OnlyMessageText(),
            "対象プロファイルのサンプルピッチは全て同じにしてください。\r\nA ： 0.2500\r\nB ： 0.3000\r\n確認してください。");
  EXPECT_EQ(ui.Messages()[0].Title, "警告");
  EXPECT_EQ(ui.Messages()[0].Icon, MsgIcon::Exclamation);

  // KP ranges 1.000-1.01225 km and 2.000-2.01225 km share nothing.
  ScriptedUi apart(session);
  options.Alignment = 2;
  const ProfileList far = ListOf({MakeProfile("A", 0.25, Ramp(50), 1.0), MakeProfile("B", 0.25, Ramp(50), 2.0)});
  EXPECT_FALSE(CheckCorrelationOptions(session, far, both, options, selection));
  EXPECT_EQ(apart.OnlyMessageText(), "全プロファイルで共通なプロファイル部がありませんでした。\r\n\r\n確認してください。");

  // Common count 50: the shift must lie in 1..48.
  options.Alignment = 0;
  const ProfileList same = ListOf({MakeProfile("A", 0.25, Ramp(50)), MakeProfile("B", 0.25, Ramp(60))});
  for (const char* text : {"abc", "0", "49", "-1", "2.5"}) {
    ScriptedUi range(session);
    options.MaxShiftText = text;
    EXPECT_FALSE(CheckCorrelationOptions(session, same, both, options, selection)) << text;
    EXPECT_EQ(range.OnlyMessageText(), "０ < [最大ずらし量] <= ４８　の範囲で指定してください") << text;
    EXPECT_TRUE(selection.SelectMaxShiftText);
  }
  ScriptedUi fine(session);
  options.MaxShiftText = "48";
  EXPECT_TRUE(CheckCorrelationOptions(session, same, both, options, selection));
  EXPECT_EQ(options.MaxShiftCount, 48);
  EXPECT_EQ(selection.CommonCount, 50);
  EXPECT_EQ(selection.Names, (std::vector<std::string>{"A", "B"}));
  EXPECT_EQ(selection.ListIndices, (std::vector<std::int32_t>{1, 2}));
  EXPECT_TRUE(fine.Log.empty());
  // "MAX/2" does not read the box at all.
  options.MaxShiftMode = 0;
  options.MaxShiftText = "abc";
  EXPECT_TRUE(CheckCorrelationOptions(session, same, both, options, selection));
}

class AlignedSamplesTest : public testing::EvaluationTest {};

TEST_F(AlignedSamplesTest, HeadCentreAndKpWithADownwardProfileReversed) {
  ScriptedUi ui(session);
  // A: 1.000 to 1.100 km upward; B: KP falls from 1.150 to 1.050 km. At 0.25 m the common part
  // 1.050-1.100 km holds 0.05 / 0.00025 + 1 = 201 samples: A from its sample 201, B from its
  // sample 401 (KP 1.050) backwards.
  const ProfileList list = ListOf({MakeProfile("A", 0.25, Ramp(401), 1.0), MakeProfile("B", 0.25, Ramp(401), 1.15, 1)});
  const std::vector<std::int32_t> rows = {1, 2};
  CorrelationOptions options;
  options.Alignment = 2;
  CorrelationSelection selection;
  ASSERT_TRUE(CheckCorrelationOptions(session, list, rows, options, selection));
  EXPECT_EQ(selection.CommonCount, 201);
  EXPECT_NEAR(selection.CommonKpStart, 1.05, 1e-12);
  EXPECT_NEAR(selection.CommonKpEnd, 1.1, 1e-12);
  const auto a = AlignedSamples(list.Items[1], options, selection);
  const auto b = AlignedSamples(list.Items[2], options, selection);
  ASSERT_EQ(a.size(), 201u);
  EXPECT_EQ(a.front(), 201);
  EXPECT_EQ(a.back(), 401);
  EXPECT_EQ(b.front(), 401);
  EXPECT_EQ(b.back(), 201);

  // Centre: 11 samples against a common 6 leave 5, half of it 2.5, rounded to even 2: from sample 3.
  const ProfileList centre = ListOf({MakeProfile("A", 0.25, Ramp(11)), MakeProfile("B", 0.25, Ramp(6))});
  options.Alignment = 1;
  ASSERT_TRUE(CheckCorrelationOptions(session, centre, rows, options = CorrelationOptions{.MaxShiftText = "4", .Alignment = 1},
                                      selection));
  EXPECT_EQ(AlignedSamples(centre.Items[1], options, selection), (std::vector<double>{3, 4, 5, 6, 7, 8}));
  options.Alignment = 0;
  EXPECT_EQ(AlignedSamples(centre.Items[1], options, selection), (std::vector<double>{1, 2, 3, 4, 5, 6}));
}

class RunCrossCorrelationTest : public testing::EvaluationTest {};

TEST_F(RunCrossCorrelationTest, LagScaleAndDiagonalOverAllPairs) {
  ScriptedUi ui(session);
  const int n = 800;
  // B holds A's road 3 samples later in its own index; C is A doubled (exact in binary).
  std::vector<double> a = Road(n, 3), b = Road(n, 0), c = Road(n, 3);
  for (double& x : c) x *= 2;
  const ProfileList list = ListOf({MakeProfile("A", 0.25, a), MakeProfile("B", 0.25, b), MakeProfile("C", 0.25, c)});
  const std::vector<std::int32_t> rows = {1, 2, 3};
  CorrelationOptions options;
  options.FilterMode = 0;
  options.MaxShiftText = "20";
  CorrelationResults results;
  ASSERT_TRUE(RunCrossCorrelation(session, list, rows, options, session.CurrentConditions.Iri, results));
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
  EXPECT_EQ(ui.ProgressValues.back(), 100);
  EXPECT_EQ(ui.ProgressValues.size(), 6u);  // pairs (1,1) (1,2) (1,3) (2,2) (2,3) (3,3)

  // Through the IRI filter the lag is still found.
  options.FilterMode = 1;
  CorrelationResults filtered;
  ASSERT_TRUE(RunCrossCorrelation(session, list, rows, options, session.CurrentConditions.Iri, filtered));
  EXPECT_TRUE(filtered.UsedIriFilter);
  EXPECT_EQ(filtered.Cell(1, 2).Peak(CorrelationRow::Rho).Shift, 3);
}

TEST_F(RunCrossCorrelationTest, FailuresGoThroughTheErrorPathAndKeepTheResults) {
  ScriptedUi ui(session);
  const ProfileList flat = ListOf({MakeProfile("A", 0.25, std::vector<double>(100, 1.0)), MakeProfile("B", 0.25, Road(100))});
  const std::vector<std::int32_t> rows = {1, 2};
  CorrelationOptions options;
  options.FilterMode = 0;
  CorrelationResults results;
  results.Valid = true;
  results.Selection.ProfileCount = 7;
  EXPECT_FALSE(RunCrossCorrelation(session, flat, rows, options, session.CurrentConditions.Iri, results));
  EXPECT_EQ(results.Selection.ProfileCount, 7);  // left as it was
  ASSERT_EQ(ui.Messages().size(), 1u);
  EXPECT_EQ(ui.Messages()[0].Title, "[ frmTop : cmdGO相互相関 ]");

  // "MAX/2" on 70000 samples: 70001 shifts pass the 16-bit counter.
  ScriptedUi overflow(session);
  const ProfileList longer = ListOf({MakeProfile("A", 0.25, Road(70000)), MakeProfile("B", 0.25, Road(70000, 1))});
  options.MaxShiftMode = 0;
  EXPECT_FALSE(RunCrossCorrelation(session, longer, rows, options, session.CurrentConditions.Iri, results));
  EXPECT_NE(overflow.OnlyMessageText().find("オーバーフロー"), std::string::npos);
}

class SaveCrossCorrelationTest : public testing::EvaluationTest {};

TEST_F(SaveCrossCorrelationTest, SixFilesNamedByMeasureWithTheClosingBox) {
  ScriptedUi ui(session);
  const ProfileList list = ListOf({MakeProfile("A", 0.25, Road(300, 3)), MakeProfile("B", 0.25, Road(300))});
  const std::vector<std::int32_t> rows = {1, 2};
  CorrelationOptions options;
  options.FilterMode = 0;
  CorrelationResults results;
  ASSERT_TRUE(RunCrossCorrelation(session, list, rows, options, session.CurrentConditions.Iri, results));

  TempDir out;
  ui.Files.push_back({out.path().string()});
  ASSERT_TRUE(SaveCrossCorrelation(session, list, rows, results, session.CurrentConditions.Iri, ""));
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(out.path())) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  ASSERT_EQ(names.size(), 6u);
  const std::regex stamp("CC_(相互相関値|一致度|ずらし量|標準偏差比|IRI誤差率|PSD誤差率)_[0-9]{14}\\.CSV");
  for (const auto& name : names) EXPECT_TRUE(std::regex_match(name, stamp)) << name;
  EXPECT_EQ(ui.Messages().back().Text, "CSV形式で以下のフォルダに保存しました。\r\n\r\n保存先：" + out.path().string());
  EXPECT_EQ(ui.Messages().back().Title, "データ保存");

  // A set pattern; the shift file names B against A with shift 3, in Shift-JIS with CR LF.
  TempDir named;
  ui.Files.push_back({named.path().string()});
  ASSERT_TRUE(SaveCrossCorrelation(session, list, rows, results, session.CurrentConditions.Iri, "$(PROFILENAME)$_$(出力種別)$"));
  const auto lines = ReadSystemTextLines(named / "A_ずらし量.CSV");
  EXPECT_EQ(lines[0], ",,,,,,,ずらし量");
  EXPECT_EQ(lines[2], "A,B,3,3.00000");
  EXPECT_NE(testing::ReadBytes(named / "A_ずらし量.CSV").find("\r\n"), std::string::npos);
  // The folder is remembered and offered the next time.
  ui.Files.push_back({});
  EXPECT_FALSE(SaveCrossCorrelation(session, list, rows, results, session.CurrentConditions.Iri, ""));
  EXPECT_EQ(ui.Log.back().Kind, "folder");
  EXPECT_EQ(ui.Log.back().Text, named.path().string());
}

TEST_F(SaveCrossCorrelationTest, FilteredResultsAreWrittenFromARunWithoutTheFilter) {
  ScriptedUi ui(session);
  const ProfileList list = ListOf({MakeProfile("A", 0.25, Road(300, 3)), MakeProfile("B", 0.25, Road(300))});
  const std::vector<std::int32_t> rows = {1, 2};
  CorrelationOptions options;
  options.FilterMode = 0;
  options.MaxShiftText = "30";
  CorrelationResults plain, filtered;
  ASSERT_TRUE(RunCrossCorrelation(session, list, rows, options, session.CurrentConditions.Iri, plain));
  options.FilterMode = 1;
  ASSERT_TRUE(RunCrossCorrelation(session, list, rows, options, session.CurrentConditions.Iri, filtered));
  ASSERT_NE(MeasureText(plain, 0, 1, 2), MeasureText(filtered, 0, 1, 2));
  TempDir out;
  ui.Files.push_back({out.path().string()});
  ASSERT_TRUE(SaveCrossCorrelation(session, list, rows, filtered, session.CurrentConditions.Iri, "$(出力種別)$"));
  EXPECT_EQ(ReadSystemTextLines(out / "相互相関値.CSV")[2], "A,B," + MeasureText(plain, 0, 1, 2) + "," + MeasureText(plain, 0, 1, 2));
  EXPECT_TRUE(filtered.UsedIriFilter);  // the shown results are not touched by the save
}

class RegisterShiftedProfilesTest : public testing::EvaluationTest {};

TEST_F(RegisterShiftedProfilesTest, ALagOfThreeGivesMinusThreePAndMovesTheKp) {
  ScriptedUi ui(session);
  ProfileList list = ListOf({MakeProfile("A", 0.25, Road(400, 3), 1.0), MakeProfile("B", 0.25, Road(400), 1.0),
                             MakeProfile("C", 0.25, Road(400, 3), 1.0)});
  const std::vector<std::int32_t> rows = {1, 2, 3};
  CorrelationOptions options;
  options.FilterMode = 0;
  CorrelationResults results;
  ASSERT_TRUE(RunCrossCorrelation(session, list, rows, options, session.CurrentConditions.Iri, results));
  ASSERT_EQ(results.Cell(1, 2).Peak(CorrelationRow::Rho).Shift, 3);
  ASSERT_EQ(results.Cell(1, 3).Peak(CorrelationRow::Rho).Shift, 0);  // skipped
  EXPECT_EQ(RegisterShiftedProfiles(session, list, results), (std::vector<std::string>{"B-3P"}));
  ASSERT_EQ(list.Count(), 4);
  const ProfileRecord& copy = list.Items[4];
  EXPECT_EQ(ProfileList::NameOf(copy), "B-3P");
  // 1.000 km - 3 x 0.25 m.
  EXPECT_NEAR(copy.Erd.KpStart, 0.99925, 1e-9);
  EXPECT_EQ(copy.Erd.Title, "B(-3P)");
  EXPECT_EQ(copy.WorkCount, 400);
  EXPECT_TRUE(std::filesystem::exists(dir_ / "Project/Profile/B-3P.ERD"));
  EXPECT_EQ(ShiftedProfileName("B", -3), "B+3P");
  EXPECT_EQ(ShiftedTitleSuffix(-3), "(+3P)");
}

}  // namespace
}  // namespace velmora
