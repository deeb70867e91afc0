// The printed books of the print tab and the print command: the pages each sheet has, the analyses
// they read (the other tabs' selections left as they were), and every page drawn onto a picture.
#include "workbench/print_book.h"

#include <gtest/gtest.h>

#include "base/startup.h"
#include "profile/erd_file.h"
#include "support/checks.h"
#include "support/profile_fixture.h"

namespace velmora::workbench {
namespace {

namespace fs = std::filesystem;

class PrintBookTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    session.Paths.AppPath = VELMORA_BIN_DIR;
    session.Paths.UserLocalPath = (dir_ / "local").string();
    InitCreateFolder(session);
    InitProjectData(session);
    bench.FormLoad();
    std::vector<std::string> files;
    for (const char* name : {"a", "b", "c"}) {
      const fs::path file = dir_ / (std::string(name) + ".erd");
      WriteERD(file.string(), testing::MakeProfile(name, 0.1, testing::Road(2000)).Erd);
      files.push_back(file.string());
    }
    ASSERT_TRUE(bench.RegisterFiles(files, false));
    bench.DispGrp = true;
  }
  Workbench bench{session};
};

TEST_F(PrintBookTest, TheOctaveSheetHasAPagePerProfileAndTheStatisticsPageWhenAskedTheIriSheetOne) {
  graph::PrintOptions withStatistics = graph::DefaultPrintOptions();
  withStatistics.PrintStatistics = true;
  graph::PrintOptions without = withStatistics;
  without.PrintStatistics = false;
  struct Case {
    PrintSheet Sheet;
    const graph::PrintOptions* Options;
    std::vector<int> Rows;
    std::vector<std::string> Progress;  // per page
  };
  const std::string sheet = "印刷イメージの作成";
  const std::string statistics = "プロファイル分割図の印刷イメージの作成";
  const Case cases[] = {{PrintSheet::Octave, &withStatistics, {1, 3}, {sheet, sheet, statistics}},
                        {PrintSheet::Octave, &without, {1, 2, 3}, {sheet, sheet, sheet}},
                        {PrintSheet::Iri, &withStatistics, {2, 3}, {sheet}},
                        {PrintSheet::Iri, &without, {1}, {sheet}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::PrintToString(c.Rows));
    const PrintBook book = MakePrintBook(bench, c.Sheet, c.Rows, *c.Options, false);
    ASSERT_EQ(PageCount(book), static_cast<int>(c.Progress.size()));
    for (int page = 0; page < PageCount(book); ++page) EXPECT_EQ(PageProgress(book, page), c.Progress[page]) << page;
    ASSERT_EQ(book.Profiles.size(), c.Rows.size());
    for (std::size_t i = 0; i < c.Rows.size(); ++i) EXPECT_EQ(book.Profiles[i], &bench.Profile(c.Rows[i]));
  }
}

TEST_F(PrintBookTest, TheAnalysesRunForTheRowsAndLeaveTheTabsSelectionsAsTheyWere) {
  bench.Select(tab::Iri, {2});
  bench.Select(tab::BandReduction, {});
  ASSERT_TRUE(ComputePrintSheet(bench, PrintSheet::Octave, {1, 3}));
  EXPECT_EQ(bench.Selection(tab::Iri), (std::vector<int>{2}));
  EXPECT_TRUE(bench.Selection(tab::BandReduction).empty());
  for (int row : {1, 3}) {
    EXPECT_TRUE(bench.Profile(row).Analysis.Iri.IriWindowWave.Calculated) << row;
    EXPECT_TRUE(bench.Profile(row).Analysis.BandReduction.Calculated) << row;
  }
  EXPECT_FALSE(bench.Profile(2).Analysis.BandReduction.Calculated);
  // The IRI sheet needs no band reduction.
  ASSERT_TRUE(ComputePrintSheet(bench, PrintSheet::Iri, {2}));
  EXPECT_TRUE(bench.Profile(2).Analysis.Iri.IriWindowWave.Calculated);
  EXPECT_FALSE(bench.Profile(2).Analysis.BandReduction.Calculated);
}

TEST_F(PrintBookTest, EveryPageGoesIntoOnePdfOnThePapersSide) {
  ASSERT_TRUE(ComputePrintSheet(bench, PrintSheet::Octave, {1, 2}));
  const PrintBook book = MakePrintBook(bench, PrintSheet::Octave, {1, 2}, graph::DefaultPrintOptions(), false);
  graph::PrinterTarget printer = PrintPaper(PrintSheet::Octave, graph::kPaperA4, dir_ / "book.pdf");
  // The sheet in millimetres: A4 upright for the octave sheet, across for the IRI sheet.
  EXPECT_EQ(std::pair(printer.Surface.ScaleWidth, printer.Surface.ScaleHeight), std::pair(210.0, 297.0));
  const graph::PrinterTarget across = PrintPaper(PrintSheet::Iri, graph::kPaperA4, dir_ / "x.pdf");
  EXPECT_EQ(std::pair(across.Surface.ScaleWidth, across.Surface.ScaleHeight), std::pair(297.0, 210.0));
  std::vector<int> alsoDrawn;
  ComposePrintPdf(session, book, printer, [&](int page, graph::DrawDevices&, const graph::PrinterTarget&) { alsoDrawn.push_back(page); });
  std::vector<int> expected{0, 1};  // a sheet per profile, then the statistics when asked for
  if (book.Options.PrintStatistics) expected.push_back(2);
  EXPECT_EQ(alsoDrawn, expected);
  const std::string pdf = testing::ReadBytes(dir_ / "book.pdf");
  EXPECT_EQ(pdf.substr(0, 5), "%PDF-");
  EXPECT_EQ(ui_.ProgressValues.back(), 100);
}

}  // namespace
}  // namespace velmora::workbench
