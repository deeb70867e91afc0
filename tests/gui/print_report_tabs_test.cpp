// The print and report tabs of the window: the preview of the first sheet, the PDF of every page
// and its way to the print queue, and a scripted report made from the chosen template.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTableView>

#include <algorithm>
#include <cstdlib>

#include "base/common.h"
#include "base/text_encoding.h"
#include "program_fixture.h"
#include "tab_print.h"
#include "tab_report.h"
#include "workbench/report_analyses.h"

namespace velmora::gui {
namespace {

namespace fs = std::filesystem;
namespace tab = workbench::tab;
using workbench::GoOutcome;

// Share of the picture's pixels that are not white.
double Ink(const QImage& image) {
  long long ink = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) ink += (image.pixel(x, y) & 0xFFFFFF) != 0xFFFFFF;
  return static_cast<double>(ink) / (static_cast<double>(image.width()) * image.height());
}

std::vector<std::string> FilesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder))
    if (entry.is_regular_file()) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

int PdfPages(const std::string& pdf) {
  int pages = 0;
  for (std::size_t at = pdf.find("/Type /Page"); at != std::string::npos; at = pdf.find("/Type /Page", at + 1))
    pages += pdf.compare(at, 12, "/Type /Pages") != 0;
  return pages;
}

const fs::path kReportTemplate = testing::SourceDir() / "examples" / "report" / "iri_report.xlsm";

class OutputTabsTest : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    ASSERT_TRUE(run->window->AddFiles(Examples()));
    run->window->ToggleMode();
    run->window->ToggleMode();  // the print and report tabs come up after two mode changes
  }
  void TearDown() override {
    if (savedPath_) ::setenv("PATH", savedPath_->c_str(), 1);
  }
  PrintTabPage& Print() const { return *dynamic_cast<PrintTabPage*>(run->window->findChild<QWidget*>("printTab")); }
  // The preview and the print run on the window's worker: started, then awaited.
  bool Previewed() const { return Print().Preview() && run->window->WaitForGo() == GoOutcome::Completed; }
  std::string PrintedPdf() const {
    if (!Print().Print()) return {};
    run->window->WaitForGo();
    return Print().Printed();
  }
  // The example template on the report tab, before and after chosen as road_a_kp and road_c_rough.
  void ChooseBeforeAndAfter() const {
    run->window->ShowTab(tab::Report);
    ASSERT_TRUE(Report().UseTemplate(kReportTemplate));
    QTableWidget* params = Report().Parameters();
    ASSERT_EQ(params->rowCount(), 4);
    EXPECT_EQ(params->item(2, 0)->text().toStdString(), "補修前プロファイル");
    qobject_cast<QComboBox*>(params->cellWidget(2, 1))->setCurrentText("road_a_kp");
    qobject_cast<QComboBox*>(params->cellWidget(3, 1))->setCurrentText("road_c_rough");
  }
  ReportTabPage& Report() const { return *dynamic_cast<ReportTabPage*>(run->window->findChild<QWidget*>("reportTab")); }
  // The print queue is a script in a folder of its own that notes what it was given; `present`
  // false leaves no lp on the path at all.
  fs::path PutPrintQueue(bool present) {
    const fs::path bin = scratch / "bin";
    fs::create_directories(bin);
    const fs::path noted = scratch / "queued.txt";
    if (present) {
      std::ofstream(bin / "lp") << "#!/bin/sh\necho \"$@\" > '" << noted.string() << "'\n";
      fs::permissions(bin / "lp", fs::perms::owner_all);
    }
    savedPath_ = std::getenv("PATH");
    ::setenv("PATH", bin.c_str(), 1);
    return noted;
  }

 private:
  std::optional<std::string> savedPath_;
};

TEST_F(OutputTabsTest, ThePreviewDrawsTheFirstSheetUprightOrAcrossAsThePatternSays) {
  run->window->ShowTab(tab::Print);
  struct Case {
    int Pattern;
    double HeightOverWidth;  // A4: 297 mm by 210 mm
  };
  for (const Case c : {Case{0, 297.0 / 210}, Case{1, 210.0 / 297}}) {
    SCOPED_TRACE(c.Pattern);
    Print().Patterns()->setCurrentIndex(c.Pattern);
    ASSERT_TRUE(Previewed());
    const QImage& page = Print().PreviewWidget()->Image();
    ASSERT_FALSE(page.isNull());
    EXPECT_NEAR(static_cast<double>(page.height()) / page.width(), c.HeightOverWidth, 0.01);
    // Frames, panels and curves: far more than a stray line, far less than a filled page.
    EXPECT_GT(Ink(page), 0.02);
    EXPECT_LT(Ink(page), 0.6);
  }
  EXPECT_TRUE(ui.Messages().empty()) << ui.Messages().front().Text;
}

TEST_F(OutputTabsTest, ThePreviewTurnsThroughEveryPageOfTheBook) {
  run->window->ShowTab(tab::Print);
  const auto button = [this](const char* name) { return run->window->findChild<QPushButton*>(name); };
  const auto shownNumber = [this] { return run->window->findChild<QLabel*>("pageNumber")->text().toStdString(); };
  // The octave sheet: a page per profile (three examples), then the statistics page when the options ask for it.
  const int pages = 3 + (graph::DefaultPrintOptions().PrintStatistics ? 1 : 0);
  const std::string ofPages = " / " + std::to_string(pages);
  ASSERT_TRUE(Previewed());
  EXPECT_EQ(shownNumber(), "1" + ofPages);
  EXPECT_FALSE(button("previousPage")->isEnabled());
  EXPECT_FALSE(button("firstPage")->isEnabled());
  const QImage first = Print().PreviewWidget()->Image();

  button("nextPage")->click();
  button("nextPage")->click();
  EXPECT_EQ(shownNumber(), "3" + ofPages);
  const QImage third = Print().PreviewWidget()->Image();
  EXPECT_GT(Ink(third), 0.02);
  EXPECT_LT(Ink(third), 0.6);
  EXPECT_NE(third, first);

  button("lastPage")->click();
  EXPECT_EQ(shownNumber(), std::to_string(pages) + ofPages);
  EXPECT_FALSE(button("nextPage")->isEnabled());
  EXPECT_FALSE(button("lastPage")->isEnabled());
  button("firstPage")->click();
  EXPECT_EQ(Print().PreviewWidget()->Image(), first);

  // The third page is the sheet of the third profile: the preview of that profile alone shows it first.
  run->window->ListOf(tab::Print)->selectRow(2);
  ASSERT_TRUE(Previewed());
  EXPECT_EQ(shownNumber(), "1 / " + std::to_string(1 + (graph::DefaultPrintOptions().PrintStatistics ? 1 : 0)));
  EXPECT_EQ(Print().PreviewWidget()->Image(), third);

  // The IRI sheet is one page of all profiles: nowhere to turn.
  Print().Patterns()->setCurrentIndex(1);
  ASSERT_TRUE(Previewed());
  EXPECT_EQ(shownNumber(), "1 / 1");
  for (const char* name : {"firstPage", "previousPage", "nextPage", "lastPage"}) EXPECT_FALSE(button(name)->isEnabled()) << name;
  EXPECT_TRUE(ui.Messages().empty());
}

TEST_F(OutputTabsTest, AProfileTakenFromTheListTakesThePreviewOfItsBookWithIt) {
  run->window->ShowTab(tab::Print);
  ASSERT_TRUE(Previewed());
  ui.Answers.push_back(MsgAnswer::Ok);  // the list's own question before it lets a profile go
  ASSERT_TRUE(run->window->ChangeProfiles([this] { return run->bench.RemoveProfiles({2}); }, false));
  EXPECT_TRUE(Print().PreviewWidget()->Image().isNull());
  EXPECT_EQ(Print().PageTotal(), 0);
  EXPECT_TRUE(run->window->findChild<QLabel*>("pageNumber")->text().isEmpty());
  EXPECT_FALSE(run->window->findChild<QPushButton*>("cmdPrintOut")->isEnabled());
}

TEST_F(OutputTabsTest, PrintWritesEveryPageIntoThePdfTheUserNames) {
  run->window->ShowTab(tab::Print);
  ASSERT_TRUE(Previewed());
  const std::string pdf = (scratch / "sheets.pdf").string();
  ui.Files.push_back({pdf});
  EXPECT_EQ(PrintedPdf(), pdf);
  const std::string bytes = testing::ReadBytes(pdf);
  EXPECT_EQ(bytes.substr(0, 5), "%PDF-");
  // A sheet per profile, then the decomposition statistics when the options ask for them.
  EXPECT_EQ(PdfPages(bytes), 3 + (graph::DefaultPrintOptions().PrintStatistics ? 1 : 0));
  testing::ExpectMessages(ui, {{"PDFファイルを保存しました。\r\n\r\n保存先：" + pdf, "印刷", MsgIcon::Information}});
  EXPECT_EQ(FilesIn(scratch.path()), std::vector<std::string>{"sheets.pdf"});  // nothing half-written beside it
}

TEST_F(OutputTabsTest, ThePagesAreComposedOnTheWorkerUnderTheirOwnCaptions) {
  run->window->ShowTab(tab::Print);
  ASSERT_TRUE(Previewed());
  const std::string pdf = (scratch / "sheets.pdf").string();
  ui.Files.push_back({pdf});
  ui.Log.clear();
  ASSERT_TRUE(Print().Print());
  // Started, not done: the window's controls are off until the worker's end comes through its loop.
  EXPECT_TRUE(run->window->GoBusy());
  EXPECT_FALSE(run->window->Tabs()->isEnabled());
  EXPECT_EQ(run->window->WaitForGo(), GoOutcome::Completed);
  EXPECT_TRUE(run->window->Tabs()->isEnabled());
  std::vector<std::string> captions;
  for (const testing::RecordedMessage& entry : ui.Log)
    if (entry.Kind == "progress-start") captions.push_back(entry.Title + " / " + entry.Text);
  std::vector<std::string> expected{"印刷イメージの作成 / しばらくお待ちください。"};
  if (graph::DefaultPrintOptions().PrintStatistics)
    expected.push_back("プロファイル分割図の印刷イメージの作成 / しばらくお待ちください。");
  EXPECT_EQ(captions, expected);
}

TEST_F(OutputTabsTest, ACancelledPrintLeavesNoFileAndAnOldOneAsItWas) {
  run->window->ShowTab(tab::Print);
  ASSERT_TRUE(Previewed());
  struct Case {
    const char* Name;
    bool OldFile;
    int PagesDrawn;  // before Cancel is pressed
  };
  for (const Case c : {Case{"at the first page", false, 0}, Case{"after a page", false, 1}, Case{"over an old file", true, 2}}) {
    SCOPED_TRACE(c.Name);
    const testing::TempDir folder;
    const fs::path pdf = folder / "sheets.pdf";
    if (c.OldFile) testing::WriteBytes(pdf, "the old file");
    ui.Files.push_back({pdf.string()});
    ui.StopAfterValues = static_cast<int>(ui.ProgressValues.size()) + c.PagesDrawn;
    ui.Log.clear();
    ASSERT_TRUE(Print().Print());
    EXPECT_EQ(run->window->WaitForGo(), GoOutcome::Cancelled);
    EXPECT_TRUE(Print().Printed().empty());
    EXPECT_EQ(FilesIn(folder.path()), c.OldFile ? std::vector<std::string>{"sheets.pdf"} : std::vector<std::string>{});
    if (c.OldFile) {
      EXPECT_EQ(testing::ReadBytes(pdf), "the old file");
    }
    EXPECT_TRUE(ui.Messages().empty());  // a stop is no error
  }
}

TEST_F(OutputTabsTest, APrintOptionsFileSetsTheSheetsAndAFileOfAnotherKindIsRefused) {
  run->window->ShowTab(tab::Print);
  ASSERT_TRUE(Previewed());
  const QImage byDefault = Print().PreviewWidget()->Image();

  const fs::path other = scratch / "other.prt";
  std::ofstream(other, std::ios::binary) << "NOT AN OPTIONS FILE\r\n";
  EXPECT_FALSE(Print().UseOptions(other));
  testing::ExpectMessages(ui, {{"指定されたファイルはプリントオプションファイルではありません。"}});
  ASSERT_TRUE(Previewed());
  EXPECT_EQ(Print().PreviewWidget()->Image(), byDefault);  // the options in force stay

  // Written by hand: fixed scales (profile -30..30 mm) and no statistics page.
  ui.Log.clear();
  ASSERT_TRUE(Print().UseOptions(testing::SourceDir() / "tests" / "data" / "print" / "written_by_hand.prt"));
  ASSERT_TRUE(Previewed());
  EXPECT_NE(Print().PreviewWidget()->Image(), byDefault);
  const std::string pdf = (scratch / "fixed.pdf").string();
  ui.Files.push_back({pdf});
  ASSERT_EQ(PrintedPdf(), pdf);
  EXPECT_EQ(PdfPages(testing::ReadBytes(pdf)), 3);
}

TEST_F(OutputTabsTest, ThePdfGoesToThePrintQueueOrTheUserIsToldThereIsNone) {
  run->window->ShowTab(tab::Print);
  run->window->findChild<QCheckBox*>("queue")->setChecked(true);
  ASSERT_TRUE(Previewed());
  const std::string pdf = (scratch / "queued.pdf").string();
  const fs::path noted = PutPrintQueue(true);
  ui.Files.push_back({pdf});
  EXPECT_EQ(PrintedPdf(), pdf);
  EXPECT_EQ(testing::ReadBytes(noted), pdf + "\n");
  testing::ExpectMessages(ui, {{"プリンターへ送りました。\r\n\r\nPDFファイル：" + pdf, "印刷"}});

  fs::remove(scratch / "bin" / "lp");
  ui.Log.clear();
  ui.Files.push_back({pdf});
  EXPECT_EQ(PrintedPdf(), pdf);  // the PDF is there all the same
  testing::ExpectMessages(ui, {{"印刷キュー (lp) が見つかりません。\r\n\r\nPDFファイル：" + pdf, "印刷エラー"}});
}

TEST_F(OutputTabsTest, TheReportTakesTheChosenProfilesAndWritesTheWorkbookAndItsTable) {
  ChooseBeforeAndAfter();
  const fs::path folder = scratch / "reports";
  fs::create_directories(folder);
  ui.Files.push_back({folder.string()});
  ui.Answers.push_back(MsgAnswer::No);  // the workbook is not opened
  ASSERT_TRUE(Report().MakeReport());
  EXPECT_EQ(run->window->WaitForGo(), GoOutcome::Completed);
  const std::optional<ExelReportFiles> written = Report().Written();
  ASSERT_TRUE(written.has_value());
  EXPECT_TRUE(fs::exists(written->Workbook));
  testing::ExpectMessages(ui, {{"エクセルのエクスポート処理が終わりました。\r\n\r\n出力先：" + written->Workbook.string() +
                                    "\r\n\r\n作成したエクセルを起動しますか？",
                                "確認", std::nullopt, MsgButtons::YesNo}});

  const std::vector<std::string> lines = ReadSystemTextLines(written->Interface);
  ASSERT_GT(lines.size(), 3u);
  // Ten columns from B4 of the sheet データ; the second and third are titled with the chosen names.
  const std::vector<std::string> first = uToken(lines[0], ",");
  ASSERT_EQ(first.size(), 5u);
  EXPECT_EQ(std::vector<std::string>(first.begin() + 1, first.end()), (std::vector<std::string>{"10", "4", "2", "データ"}));
  EXPECT_EQ(std::stoul(first[0]), lines.size() - 1);
  const std::vector<std::string> titles = uToken(lines[1], ",");
  ASSERT_EQ(titles.size(), 10u);
  EXPECT_EQ(std::tuple(titles[1], titles[2]), std::tuple(std::string("road_a_kp"), std::string("road_c_rough")));
  // The fourth column is the third less the second, row by row.
  int compared = 0;
  for (std::size_t r = 2; r < lines.size(); ++r) {
    const std::vector<std::string> cells = uToken(lines[r], ",");
    if (cells.size() < 4 || cells[1].empty() || cells[2].empty() || cells[3].empty()) continue;
    EXPECT_NEAR(std::stod(cells[3]), std::stod(cells[2]) - std::stod(cells[1]), 2e-8) << lines[r];
    ++compared;
  }
  EXPECT_GT(compared, 1000);
}

TEST_F(OutputTabsTest, TheReportOnTheWorkerWritesTheTableTheEngineWritesOnTheCallersThread) {
  ChooseBeforeAndAfter();
  // The IRI tab's own inputs and selection, which the report's 10 m run must leave as they were.
  run->bench.Iri.EvalLength = "100";
  run->window->ListOf(tab::Iri)->selectRow(1);
  const fs::path folder = scratch / "worker";
  fs::create_directories(folder);
  ui.Files.push_back({folder.string()});
  ui.Answers.push_back(MsgAnswer::No);
  ui.Log.clear();
  ASSERT_TRUE(Report().MakeReport());
  EXPECT_TRUE(run->window->GoBusy());
  ASSERT_EQ(run->window->WaitForGo(), GoOutcome::Completed);
  ASSERT_TRUE(Report().Written().has_value());
  std::vector<std::string> captions;
  for (const testing::RecordedMessage& entry : ui.Log)
    if (entry.Kind == "progress-start") captions.push_back(entry.Title);
  for (const char* caption : {"エクセル印刷用ファイルへ出力中です", "エクセルへエクスポート中", "エクセルファイルの終了処理中です"})
    EXPECT_NE(std::find(captions.begin(), captions.end(), caption), captions.end()) << caption;
  EXPECT_EQ(run->bench.Iri.EvalLength, "100");
  EXPECT_EQ(run->bench.Selection(tab::Iri), std::vector<int>{2});

  // The same report made here and now, as the tab made it before it had a worker.
  ExelTemplate report;
  ASSERT_TRUE(ReadExelTemplateFile(run->session, kReportTemplate, report));
  std::vector<std::string> titles;
  for (const ProfileRecord& record : run->bench.List().Items) titles.push_back(ProfileList::NameOf(record));
  ExelReportRequest request;
  request.Params = MakeParamTable(report, titles);
  request.Params.at(2).Value = "road_a_kp";
  request.Params.at(3).Value = "road_c_rough";
  request.Axis = run->bench.Axis;
  request.Folder = scratch / "direct";
  fs::create_directories(request.Folder);
  ASSERT_EQ(workbench::RunReportAnalyses(run->bench), GoOutcome::Completed);
  const std::optional<ExelReportFiles> direct = cmxExlsCreate(run->session, report, run->bench.List(), request);
  ASSERT_TRUE(direct.has_value());
  EXPECT_EQ(testing::ReadBytes(Report().Written()->Interface), testing::ReadBytes(direct->Interface));
}

TEST_F(OutputTabsTest, ACancelledReportWritesNothing) {
  ChooseBeforeAndAfter();
  const fs::path folder = scratch / "reports";
  fs::create_directories(folder);
  ui.Files.push_back({folder.string()});
  ui.StopAfterValues = 0;  // Cancel at the first report of progress
  ASSERT_TRUE(Report().MakeReport());
  EXPECT_EQ(run->window->WaitForGo(), GoOutcome::Cancelled);
  EXPECT_FALSE(Report().Written().has_value());
  EXPECT_EQ(FilesIn(folder), std::vector<std::string>{});
  EXPECT_TRUE(ui.Messages().empty());
}

}  // namespace
}  // namespace velmora::gui
