#include "workbench/make_result_files.h"

#include <gtest/gtest.h>

#include "base/app_paths.h"
#include "base/common.h"
#include "base/session.h"
#include "support/session_fixture.h"
#include "support/test_support.h"

namespace velmora::workbench {
namespace {

using testing::Noon;
using testing::ReadBytes;
using testing::ScriptedUi;
using testing::TempDir;

ProfileRecord Filtered(const std::string& name) {
  ProfileRecord r;
  r.FileName = name + ".erd";
  r.Erd.StepSize = 0.5;
  r.WorkCount = 2;
  r.Analysis.Filter.FilterWave.Values = Array1<double>{1.0, kNoValue};
  r.Analysis.Filter.FilterWave.Calculated = true;
  r.Analysis.Filter.FilterCount = 2;
  r.Analysis.Filter.Request.Band = FilterKind::HiPass;
  r.Analysis.Filter.Request.LongCut = 50;
  r.Analysis.Iri.IriWholeProfile = 2.0;
  return r;
}

class MakeResultFilesTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    session.Paths.AppPath = temp.path().string();  // no TOLVAVERI.ini: the built-in name patterns
    session.Paths.UserLocalPath = temp.path().string();
    session.Paths.TempPath = temp.path().string();
    session.Settings.CsvProfileLimit = 0;
    std::filesystem::create_directories(temp / "out");
    bench.AddProfile(Filtered("a"));
    bench.AddProfile(Filtered("b"));
    bench.SelectAll(tab::Filter);
  }
  std::string Answer() const { return (temp / "out" / "ignored.Dummy").string(); }

  TempDir temp;
  Workbench bench{session};
};

TEST_F(MakeResultFilesTest, WritesShiftJisCsvNamedByThePatternAndReportsTheFolder) {
  ScriptedUi ui(session);
  ui.Files.push_back({Answer()});
  const ExportOutcome out = MakeResultFiles(bench, {ExportKind::Profile, false, tab::Filter, {}}, Noon());
  const std::string folder = (temp / "out").string();
  ASSERT_EQ(out.Files.size(), 2u);
  EXPECT_EQ(out.Files[0], folder + "/a_MAHP_50m_20240305120000.CSV");
  EXPECT_EQ(ReadBytes(out.Files[0]), "Distance(m), Elevetion(mm)\r\n0.00000, 1.00000000\r\n0.50000, \r\n");
  ASSERT_EQ(ui.Log.size(), 2u);
  EXPECT_EQ(ui.Log[0].Kind, "save");
  EXPECT_EQ(ui.Log[0].Title, "CSVファイル保存");
  EXPECT_EQ(ui.Log[0].Text, "フォルダ名の取得に使用され、ファイル名は無視されます");
  EXPECT_EQ(ui.Log[1].Title, "データ保存");
  EXPECT_EQ(ui.Log[1].Text, "CSV形式で以下のフォルダに保存しました。 \r\n保存先：" + folder);
}

TEST_F(MakeResultFilesTest, JapaneseHeadsAreWrittenInShiftJis) {
  ScriptedUi ui(session);
  ui.Files.push_back({Answer()});
  const ExportOutcome out = MakeResultFiles(bench, {ExportKind::IriWhole, false, tab::Filter, {}}, Noon());
  ASSERT_EQ(out.Files.size(), 1u);
  EXPECT_EQ(out.Files[0], (temp / "out").string() + "/IRI(全区間)_20240305120000.CSV");
  // "区間" is 8B E6 8A D4 in Shift-JIS; the whole-section label "全区間IRI(0.50m)".
  const std::string bytes = ReadBytes(out.Files[0]);
  const std::string head("Profile, \x8B\xE6\x8A\xD4, IRI(mm/m)\r\n");
  EXPECT_EQ(bytes.substr(0, head.size()), head);
  EXPECT_NE(bytes.find("a, \x91\x53\x8B\xE6\x8A\xD4IRI(0.50m), 2.00000000\r\n"), std::string::npos);
}

TEST_F(MakeResultFilesTest, ChecksStopBeforeTheDialog) {
  ScriptedUi ui(session);
  ExportRequest bands{ExportKind::OctaveBand, false, tab::Filter, {}};
  EXPECT_TRUE(MakeResultFiles(bench, bands, Noon()).Files.empty());
  EXPECT_EQ(ui.OnlyMessageText(), "バンド別表示が１個も指定されていません。\r\nファイル出力を中止します。");
  EXPECT_EQ(ui.Messages()[0].Title, "警告");

  ScriptedUi ui2(session);
  ExportRequest smooth{ExportKind::PsdSmoothed, false, tab::Filter, {}};
  smooth.Options.BandsPerOctave = 0;
  EXPECT_TRUE(MakeResultFiles(bench, smooth, Noon()).Files.empty());
  EXPECT_EQ(ui2.OnlyMessageText(), "BandsPerOctave値はゼロより大きく指定してください。");

  ScriptedUi ui3(session);
  bands.Options.Octaves = {2};  // no octave results in these profiles
  EXPECT_TRUE(MakeResultFiles(bench, bands, Noon()).Files.empty());
  EXPECT_EQ(ui3.OnlyMessageText(), "該当する件数がありません。");
  EXPECT_EQ(ui3.Messages()[0].Title, "案内");
}

TEST_F(MakeResultFilesTest, CancelledDialogWritesNothingAndTheLimitCutsTheProfiles) {
  ScriptedUi ui(session);
  EXPECT_TRUE(MakeResultFiles(bench, {ExportKind::Profile, false, tab::Filter, {}}, Noon()).Files.empty());
  EXPECT_TRUE(ui.Messages().empty());
  EXPECT_TRUE(std::filesystem::is_empty(temp / "out"));

  session.Settings.CsvProfileLimit = 1;
  ui.Files.push_back({Answer()});
  const ExportOutcome out = MakeResultFiles(bench, {ExportKind::Profile, false, tab::Filter, {}}, Noon());
  session.Settings.CsvProfileLimit = 0;
  ASSERT_EQ(out.Files.size(), 1u);
  EXPECT_NE(out.Files[0].find("/a_MAHP"), std::string::npos);
}

TEST_F(MakeResultFilesTest, ErdOutputOfTheFilteredProfile) {
  ScriptedUi ui(session);
  ui.Files.push_back({Answer()});
  const ExportOutcome out = MakeResultFiles(bench, {ExportKind::Profile, true, tab::Filter, {}}, Noon());
  ASSERT_EQ(out.Files.size(), 2u);
  EXPECT_EQ(out.Files[1], (temp / "out").string() + "/b_MAHP_50m_20240305120000.ERD");
  EXPECT_EQ(ui.Log[0].Title, "ERDファイル保存");
  EXPECT_EQ(ui.Messages().back().Text, "ERD形式で以下のフォルダに保存しました。 \r\n保存先：" + (temp / "out").string());
  const std::string bytes = ReadBytes(out.Files[1]);
  EXPECT_EQ(bytes.rfind("ERDFILEV2.00", 0), 0u);
  EXPECT_NE(bytes.find("1.00000000 \r\n"), std::string::npos);
}

}  // namespace
}  // namespace velmora::workbench
