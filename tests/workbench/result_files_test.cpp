// The result files through the workbench, on small hand-made records: names by the built-in
// patterns, the folder dialog, heads and rows in Shift-JIS written out by hand, ERD output, and the
// checks that stop before anything is asked.
#include "workbench/make_result_files.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "analysis/band_reduction.h"
#include "base/text_encoding.h"
#include "profile/erd_file.h"
#include "support/checks.h"
#include "support/profile_fixture.h"
#include "workbench/repair_result_files.h"
#include "workbench/tab_table.h"
#include "workbench/workbench.h"

namespace velmora::workbench {
namespace {

using testing::ReadBytes;
using Texts = std::vector<std::string>;

// Two profiles a and b; the folder dialog, when it comes, is answered with a file in "out" unless the
// test cancels it. The time in the names is testing::Noon().
class ResultFilesTest : public testing::SessionTest {
 protected:
  void Load(ProfileRecord a, ProfileRecord b) {
    session.Paths.AppPath = dir_.path().string();  // no TOLVAVERI.ini: the built-in name patterns
    session.Paths.UserLocalPath = dir_.path().string();
    session.Settings.CsvProfileLimit = 0;
    std::filesystem::create_directories(dir_ / "out");
    bench.AddProfile(std::move(a));
    bench.AddProfile(std::move(b));
    for (int t = tab::Filter; t < kTabCount; ++t) bench.SelectAll(t);
  }
  ExportOutcome Export(ExportKind kind, bool erd = false, bool answer = true, ExportOptions options = {}) {
    if (answer) Answer();
    return MakeResultFiles(bench, {kind, erd, tab::Filter, options}, testing::Noon());
  }
  ExportOutcome Export(RepairExportKind kind, bool erd, int tab, bool answer = true) {
    if (answer) Answer();
    return MakeRepairResultFiles(bench, {kind, erd, tab}, testing::Noon());
  }
  void Answer() { ui_.Files.push_back({(dir_ / "out" / "ignored.Dummy").string()}); }
  std::string Folder() const { return (dir_ / "out").string(); }
  // The one message shown and nothing else: its text and title.
  void ExpectOnlyMessage(const std::string& text, const std::string& title) {
    ASSERT_EQ(testing::Kinds(ui_), Texts{"message"});
    EXPECT_EQ(ui_.Log[0].Text, text);
    EXPECT_EQ(ui_.Log[0].Title, title);
  }

  Workbench bench{session};
};

// Two samples at 0.5 m high-passed at 50 m, the second one null; a whole IRI of 2 mm/m.
ProfileRecord Filtered(const std::string& name) {
  ProfileRecord r = testing::MakeProfile(name, 0.5, {0, 0});
  auto& filter = r.Analysis.Filter;
  filter.FilterWave.Values = Array1<double>{1.0, kNoValue};
  filter.FilterWave.Calculated = true;
  filter.FilterCount = 2;
  filter.Request.Band = FilterKind::HiPass;
  filter.Request.LongCut = 50;
  r.Analysis.Iri.IriWholeProfile = 2.0;
  return r;
}

class AnalysisFilesTest : public ResultFilesTest {
 protected:
  void SetUp() override { Load(Filtered("a"), Filtered("b")); }
};

TEST_F(AnalysisFilesTest, WritesCsvNamedByThePatternAndReportsTheFolder) {
  const ExportOutcome out = Export(ExportKind::Profile);
  ASSERT_EQ(out.Files.size(), 2u);
  EXPECT_EQ(out.Files[0], Folder() + "/a_MAHP_50m_20240305120000.CSV");  // its lines are the report's
  EXPECT_EQ(testing::Kinds(ui_), (Texts{"save", "message"}));
  EXPECT_EQ(ui_.Log[0].Title, "CSVファイル保存");
  EXPECT_EQ(ui_.Log[0].Text, "フォルダ名の取得に使用され、ファイル名は無視されます");
  EXPECT_EQ(ui_.Log[1].Title, "データ保存");
  EXPECT_EQ(ui_.Log[1].Text, "CSV形式で以下のフォルダに保存しました。 \r\n保存先：" + Folder());
}

TEST_F(AnalysisFilesTest, JapaneseHeadsAreWrittenInShiftJis) {
  const ExportOutcome out = Export(ExportKind::IriWhole);
  ASSERT_EQ(out.Files, Texts{Folder() + "/IRI(全区間)_20240305120000.CSV"});
  // "区間" is 8B E6 8A D4 in Shift-JIS; the whole-section label "全区間IRI(0.50m)".
  const std::string bytes = ReadBytes(out.Files[0]);
  EXPECT_EQ(bytes.rfind("Profile, \x8B\xE6\x8A\xD4, IRI(mm/m)\r\n", 0), 0u);
  EXPECT_NE(bytes.find("a, \x91\x53\x8B\xE6\x8A\xD4IRI(0.50m), 2.00000000\r\n"), std::string::npos);
}

TEST_F(AnalysisFilesTest, ChecksStopBeforeTheDialog) {
  const struct {
    ExportKind kind;
    ExportOptions options;
    const char* text;
    const char* title;
  } cases[] = {
      {ExportKind::OctaveBand, {}, "バンド別表示が１個も指定されていません。\r\nファイル出力を中止します。", "警告"},
      {ExportKind::PsdSmoothed, {.Octaves = {}, .BandsPerOctave = 0}, "BandsPerOctave値はゼロより大きく指定してください。", "警告"},
      {ExportKind::OctaveBand, {.Octaves = {2}}, "該当する件数がありません。", "案内"},  // no octave results here
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    ui_.Log.clear();
    EXPECT_TRUE(Export(c.kind, false, false, c.options).Files.empty());
    ExpectOnlyMessage(c.text, c.title);
  }
}

TEST_F(AnalysisFilesTest, CancelledDialogWritesNothingAndTheLimitCutsTheProfiles) {
  EXPECT_TRUE(Export(ExportKind::Profile, false, false).Files.empty());
  EXPECT_TRUE(ui_.Messages().empty());
  EXPECT_TRUE(std::filesystem::is_empty(dir_ / "out"));
  session.Settings.CsvProfileLimit = 1;
  const ExportOutcome out = Export(ExportKind::Profile);
  ASSERT_EQ(out.Files.size(), 1u);
  EXPECT_NE(out.Files[0].find("/a_MAHP"), std::string::npos);
}

TEST_F(AnalysisFilesTest, ErdOutputOfTheFilteredProfile) {
  const ExportOutcome out = Export(ExportKind::Profile, true);
  ASSERT_EQ(out.Files.size(), 2u);
  EXPECT_EQ(out.Files[1], Folder() + "/b_MAHP_50m_20240305120000.ERD");
  EXPECT_EQ(testing::Titles(ui_, "save"), Texts{"ERDファイル保存"});
  EXPECT_EQ(ui_.Messages().back().Text, "ERD形式で以下のフォルダに保存しました。 \r\n保存先：" + Folder());
  EXPECT_NE(ReadBytes(out.Files[1]).find("1.00000000 \r\n"), std::string::npos);  // the filtered values
}

WaveSeries Wave(std::initializer_list<double> values) {
  WaveSeries wave;
  StoreWave(wave, Array1<double>(values));
  return wave;
}

// Road a: three samples at 0.5 m from KP 1.2 km, split by hand so that L + M + S = profile. The second
// record has no split and is passed over.
class StudyFilesTest : public ResultFilesTest {
 protected:
  void SetUp() override {
    ProfileRecord a = testing::MakeProfile("a", 0.5, {6.0, 3.0, -1.5}, 1.2);
    a.ThreeWave.LongWave = Wave({1.0, 1.0, 1.0});
    a.ThreeWave.MiddleWave = Wave({4.0, 1.5, -2.0});
    a.ThreeWave.ShortWave = Wave({1.0, 0.5, -0.5});
    a.ThreeWave.Valid = true;
    Load(std::move(a), ProfileRecord{});
  }
  RepairStudyData& Study() { return bench.Profile(1).RepairStudy; }
  // The text of the one file an export of road a wrote, which must be `name`.
  std::string Written(RepairExportKind kind, int tab, const std::string& name) {
    EXPECT_EQ(Export(kind, false, tab).Files, Texts{Folder() + "/" + name});
    return FromSystemCodePage(ReadBytes(dir_ / "out" / name));
  }
};

TEST_F(StudyFilesTest, ThreeWaveProfileFileHasTheDistanceAndTheThreeWaves) {
  EXPECT_EQ(Written(RepairExportKind::ThreeWaveProfile, tab::ThreeWave, "a_3波分解(Profile)_20240305120000.CSV"),
            "Distance(m), Profile, L波, M波, S波\r\n"
            "0.00000, 6.00000000, 1.00000000, 4.00000000, 1.00000000\r\n"
            "0.50000, 3.00000000, 1.00000000, 1.50000000, 0.50000000\r\n"
            "1.00000, -1.50000000, 1.00000000, -2.00000000, -0.50000000\r\n");
  EXPECT_EQ(ui_.OnlyMessageText(), "CSV形式で以下のフォルダに保存しました。 \r\n保存先：" + Folder());
  // On the KP axis in km: 1.2 km + 0.5 m = 1.2005 km.
  bench.Axis.Mode = PositionMode::Kp;
  const Texts kp = uToken(Written(RepairExportKind::ThreeWaveProfile, tab::ThreeWave, "a_3波分解(Profile)_20240305120000.CSV"), "\r\n");
  EXPECT_EQ(kp.at(2), "1.20050, 3.00000000, 1.00000000, 1.50000000, 0.50000000");
}

// The reduced bands are not kept with the study: the file makes them again from S. A 1.2 m sine lies
// in octave 7 (0.8 to 1.6 m), so without lines that band carries it and the others next to nothing.
TEST_F(StudyFilesTest, ShortWaveFileHasSAndSPrimeAndTheNineReducedBands) {
  constexpr int kSamples = 480;  // 24 m, twenty whole periods
  constexpr double kPitch = 0.05;
  std::vector<double> sine(kSamples);
  for (int i = 0; i < kSamples; ++i) sine[static_cast<std::size_t>(i)] = std::sin(2 * std::numbers::pi * i * kPitch / 1.2);
  ProfileRecord& road = bench.Profile(1);
  road = testing::MakeProfile("a", kPitch, sine, 1.2);
  StoreWave(road.ThreeWave.ShortWave, Array1<double>(sine));
  road.ThreeWave.Valid = true;
  Study().ShortReducedBy.Limits.fill(NoLimit);
  StoreWave(Study().ShortReduced, Array1<double>(sine));
  Study().ShortReducedValid = true;
  const Texts lines = uToken(Written(RepairExportKind::ShortWave, tab::ShortWave, "a_S波_20240305120000.CSV"), "\r\n");
  ASSERT_EQ(lines.size(), static_cast<std::size_t>(kSamples) + 2);  // the head, the rows, after the last CR LF nothing
  EXPECT_EQ(lines.back(), "");
  EXPECT_EQ(lines[0],
            "Distance(m), Profile, S波Profile, S'波Profile, 1-OCT(S'波), 2-OCT(S'波), 3-OCT(S'波), 4-OCT(S'波), "
            "5-OCT(S'波), 6-OCT(S'波), 7-OCT(S'波), 8-OCT(S'波), 9-OCT(S'波)");
  for (int row = 1; row <= kSamples; ++row) {
    const Texts fields = uToken(lines[static_cast<std::size_t>(row)], ", ");
    ASSERT_EQ(fields.size(), 13u) << row;
    const double s = std::stod(fields[2]);
    EXPECT_NEAR(s, sine[static_cast<std::size_t>(row - 1)], 1e-8) << row;
    EXPECT_EQ(fields[3], fields[2]) << row;  // S' as the study keeps it
    if (row <= kSamples / 4 || row > kSamples * 3 / 4) continue;  // the ends leak into the next octaves
    EXPECT_NEAR(std::stod(fields[10]), s, 0.05) << row;
    for (int band = 1; band <= 9; ++band)
      if (band != 7) EXPECT_NEAR(std::stod(fields[static_cast<std::size_t>(3 + band)]), 0.0, 0.05) << row << " " << band;
  }
}

TEST_F(StudyFilesTest, IdealShapeAsErdHoldsTheIdealShape) {
  Study().IdealShape.Wave = Wave({6.0, 4.5, 0.25});
  Study().MiddleValid = Study().IdealValid = true;
  const ExportOutcome out = Export(RepairExportKind::IdealShape, true, tab::IdealShape);
  ASSERT_EQ(out.Files, Texts{Folder() + "/a_理想形状_20240305120000.ERD"});
  EXPECT_EQ(testing::Titles(ui_, "save"), Texts{"ERDファイル保存"});
  ErdRecord erd;
  ASSERT_TRUE(ReadERD(session, out.Files[0], erd));
  EXPECT_EQ(erd.Elevation, Study().IdealShape.Wave.Values);
}

TEST_F(StudyFilesTest, NothingToWriteIsReportedAndTwoWaveKindsHaveNoErdForm) {
  // No S' yet: said before any dialog.
  EXPECT_TRUE(Export(RepairExportKind::ShortWave, false, tab::ShortWave, false).Files.empty());
  ExpectOnlyMessage("該当する件数がありません。", "案内");
  EXPECT_TRUE(Export(RepairExportKind::ThreeWaveProfile, true, tab::ThreeWave).Files.empty());
  EXPECT_TRUE(std::filesystem::is_empty(dir_ / "out"));
}

}  // namespace
}  // namespace velmora::workbench
