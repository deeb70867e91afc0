#include "report/evaluation_files.h"

#include <gtest/gtest.h>

#include <regex>

#include "base/text_encoding.h"
#include "evaluation/correlation_tables.h"
#include "evaluation/evaluation_fixture.h"
#include "support/checks.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

using testing::ListOf;
using testing::Road;
using testing::TempDir;
using Row = std::vector<std::string>;

// Profiles at 0.25 m computed over every row of their list, then saved into the folder the
// scripted dialog answers with.
class EvaluationFiles : public testing::EvaluationTest {
 protected:
  static ProfileRecord P(const std::string& name, std::vector<double> samples) {
    return testing::MakeProfile(name, 0.25, std::move(samples));
  }
  static ProfileRecord PlainRamp(const std::string& name, int n, double kp) {
    return testing::MakeProfile(name, 0.25, testing::Ramp(n), kp);
  }
  static StatisticsSelection MeanOfFullWave() {
    StatisticsSelection s;
    s.ProfileBands[0] = true;
    s.ProfileMeasures[0] = true;
    return s;
  }
  bool Run(const ProfileList& list, CorrelationResults& results, std::int32_t filterMode = 0) {
    const CorrelationOptions options{.MaxShiftText = "10", .FilterMode = filterMode};
    return RunCrossCorrelation(session, list, AllRows(list), options, session.CurrentConditions.Iri, results);
  }
  bool Run(ProfileList& list, const StatisticsSelection& s, StatisticsResults& results) {
    return RunStatistics(session, list, AllRows(list), s, {}, results);
  }
  bool Save(const ProfileList& list, const CorrelationResults& results, const std::string& folder,
            const std::string& pattern = "") {
    ui_.Files.push_back({folder});
    return SaveCrossCorrelation(session, list, AllRows(list), results, session.CurrentConditions.Iri, pattern);
  }
};

TEST_F(EvaluationFiles, StatisticsSaveWritesOneFilePerPageWithDataNamedByCaption) {
  StatisticsResults none;
  EXPECT_FALSE(SaveStatistics(session, none, "A", ""));
  EXPECT_EQ(ui_.OnlyMessageText(), "統計値が計算されていません。");

  ProfileList list = ListOf({PlainRamp("A", 400, 1.0)});
  StatisticsResults results;
  ASSERT_TRUE(Run(list, MeanOfFullWave(), results));
  TempDir out;
  ui_.Files.push_back({out.path().string()});
  ASSERT_TRUE(SaveStatistics(session, results, "A", ""));
  const auto names = testing::EntryNames(out.path());
  ASSERT_EQ(names.size(), 4u);  // the four profile pages; the IRI pages hold nothing
  const std::regex pattern("統計値_(全区間|10m|100m|200m)\\(Prof\\)_[0-9]{14}\\.CSV");
  for (const auto& name : names) EXPECT_TRUE(std::regex_match(name, pattern)) << name;
  EXPECT_EQ(ui_.Messages().back().Title, "データ保存");

  TempDir named;
  ui_.Files.push_back({named.path().string()});
  ASSERT_TRUE(SaveStatistics(session, results, "A", "$(PROFILENAME)$-$(出力種別)$"));
  const auto lines = ReadSystemTextLines(named / "A-10m(Prof).CSV");
  ASSERT_GE(lines.size(), 5u);
  EXPECT_EQ((std::vector(lines.begin(), lines.begin() + 5)),
            (Row{"プロファイル,A", "帯域,全波長", "統計値,平均 μ", "KP,", "1.000,20.50000000"}));
}

TEST_F(EvaluationFiles, CorrelationSaveWritesSixFilesNamedByMeasureFromARunWithoutTheFilter) {
  const ProfileList list = ListOf({P("A", Road(300, 3)), P("B", Road(300))});
  CorrelationResults results;
  ASSERT_TRUE(Run(list, results));

  TempDir out;
  ASSERT_TRUE(Save(list, results, out.path().string()));
  const auto names = testing::EntryNames(out.path());
  ASSERT_EQ(names.size(), 6u);
  const std::regex stamp("CC_(相互相関値|一致度|ずらし量|標準偏差比|IRI誤差率|PSD誤差率)_[0-9]{14}\\.CSV");
  for (const auto& name : names) EXPECT_TRUE(std::regex_match(name, stamp)) << name;
  testing::ExpectShown(ui_.Messages().back(), {"CSV形式で以下のフォルダに保存しました。\r\n\r\n保存先：" + out.path().string(), "データ保存"});

  // A set pattern; the shift file names B against A with shift 3, in Shift-JIS with CR LF.
  TempDir named;
  ASSERT_TRUE(Save(list, results, named.path().string(), "$(PROFILENAME)$_$(出力種別)$"));
  const auto lines = ReadSystemTextLines(named / "A_ずらし量.CSV");
  EXPECT_EQ(lines[0], ",,,,,,,ずらし量");
  EXPECT_EQ(lines[2], "A,B,3,3.00000");
  EXPECT_NE(testing::ReadBytes(named / "A_ずらし量.CSV").find("\r\n"), std::string::npos);
  // The folder is remembered and offered the next time.
  EXPECT_FALSE(Save(list, results, ""));
  EXPECT_EQ(ui_.Log.back().Kind, "folder");
  EXPECT_EQ(ui_.Log.back().Text, named.path().string());

  // Filtered results are written from a run without the filter; the shown results stay as they are.
  CorrelationResults filtered;
  ASSERT_TRUE(Run(list, filtered, 1));
  const std::string rho = MeasureText(results, 0, 1, 2);
  ASSERT_NE(rho, MeasureText(filtered, 0, 1, 2));
  TempDir out2;
  ASSERT_TRUE(Save(list, filtered, out2.path().string(), "$(出力種別)$"));
  EXPECT_EQ(ReadSystemTextLines(out2 / "相互相関値.CSV")[2], "A,B," + rho + "," + rho);
  EXPECT_TRUE(filtered.UsedIriFilter);
}

}  // namespace
}  // namespace velmora
