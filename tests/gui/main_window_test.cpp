// The desktop window over the workbench, shown on no screen: the bundled examples registered, the
// tabs visited, Go on the worker with its results and charts, a stop that keeps the results before
// it, and the message of a bad file recorded instead of shown.
#include "main_window.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMenuBar>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

#include <algorithm>
#include <memory>

#include "base/startup.h"
#include "profile_table_model.h"
#include "support/test_support.h"
#include "gui/qt_app.h"
#include "window_fixture.h"
#include "tab_charts.h"

namespace velmora::gui {
namespace {

namespace tab = workbench::tab;
using workbench::GoOutcome;

// Share of the pixels in the middle of a chart that are not white: the axes' margins left out. A line
// of text covers a few hundredths of it; curves with their grid many times more.
constexpr double kTextInk = 0.03;
constexpr double kChartInk = 0.05;
QRect PlotArea(const QImage& image) {
  return {image.width() / 5, image.height() / 8, image.width() * 3 / 5, image.height() * 3 / 4};
}

double InkInPlotArea(const QImage& image) {
  const QRect plot = PlotArea(image);
  int ink = 0;
  for (int y = plot.top(); y <= plot.bottom(); ++y)
    for (int x = plot.left(); x <= plot.right(); ++x)
      if (image.pixel(x, y) != qRgb(255, 255, 255)) ++ink;
  return static_cast<double>(ink) / (plot.width() * plot.height());
}

// Share of the pixels there in a colour rather than black, grey or white: the curves, not the grid
// or a line of text.
double ColourInPlotArea(const QImage& image) {
  const QRect plot = PlotArea(image);
  int coloured = 0;
  for (int y = plot.top(); y <= plot.bottom(); ++y)
    for (int x = plot.left(); x <= plot.right(); ++x) {
      const QRgb p = image.pixel(x, y);
      const int spread = std::max({qRed(p), qGreen(p), qBlue(p)}) - std::min({qRed(p), qGreen(p), qBlue(p)});
      if (spread > 64) ++coloured;
    }
  return static_cast<double>(coloured) / (plot.width() * plot.height());
}

class MainWindowTest : public WindowFixture {
 protected:
  GoOutcome Go(int tab) {
    window->ShowTab(tab);
    if (!window->StartGo(tab)) return GoOutcome::Failed;
    return window->WaitForGo();
  }
};

TEST_F(MainWindowTest, TheProfileListShowsTheHeadersOfTheExamples) {
  ASSERT_TRUE(AddExamples());
  const QAbstractItemModel* model = window->ListOf(tab::Profile)->model();
  ASSERT_EQ(model->rowCount(), 3);
  // From the files' second lines: samples and pitch; length = pitch x (samples - 1); KP from the title.
  struct Row {
    const char* Name;
    const char* Pitch;
    int Samples;
    const char* Length;
    const char* Kp;
  };
  const Row expected[] = {{"road_a_kp", "0.100", 3000, "299.90", "12.300"},
                          {"road_b", "0.050", 5000, "249.95", ""},
                          {"road_c_rough", "0.100", 3000, "299.90", ""}};
  for (int r = 0; r < 3; ++r) {
    SCOPED_TRACE(expected[r].Name);
    const auto cell = [&](int column) { return model->index(r, column).data().toString(); };
    EXPECT_EQ(cell(ProfileTableModel::Name), expected[r].Name);
    EXPECT_EQ(cell(ProfileTableModel::Pitch), expected[r].Pitch);
    EXPECT_EQ(model->index(r, ProfileTableModel::Samples).data().toInt(), expected[r].Samples);
    EXPECT_EQ(cell(ProfileTableModel::Length), expected[r].Length);
    EXPECT_EQ(cell(ProfileTableModel::Kp), expected[r].Kp);
  }
  // Every tab's list selects the new profiles, and the workbench knows it.
  for (int t : {tab::Profile, tab::Filter, tab::Octave, tab::BandReduction, tab::Psd, tab::Iri})
    EXPECT_EQ(bench.Selection(t), (std::vector<int>{1, 2, 3})) << "tab " << t;
}

TEST_F(MainWindowTest, GoComputesEveryProfileAndDrawsTheChart) {
  ASSERT_TRUE(AddExamples());
  for (int t : {tab::Filter, tab::Octave, tab::BandReduction, tab::Iri}) {
    SCOPED_TRACE("tab " + std::to_string(t));
    ASSERT_EQ(Go(t), GoOutcome::Completed);
    for (int row = 1; row <= 3; ++row) EXPECT_TRUE(HasTabResults(t, bench.List().Items.at(row))) << "row " << row;
    EXPECT_FALSE(bench.TabDirty[static_cast<std::size_t>(t)]);
    const QImage& chart = window->ChartOf(t)->Image();
    EXPECT_EQ(chart.size(), window->ChartOf(t)->size());
    EXPECT_GT(InkInPlotArea(chart), kChartInk);
  }
  EXPECT_TRUE(ui.Messages().empty()) << ui.Messages().front().Text;
}

TEST_F(MainWindowTest, AOneProfileChartNamesTheFirstSelectedProfileThatHasResults) {
  ASSERT_TRUE(AddExamples());
  QTableView* list = window->ListOf(tab::Octave);
  list->clearSelection();  // entering the tab computes what its list selects
  window->ShowTab(tab::Octave);
  EXPECT_EQ(window->ShownOf(tab::Octave)->text(), "");
  list->selectRow(1);  // road_b, then road_c_rough beside it
  list->selectionModel()->select(list->model()->index(2, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
  ASSERT_EQ(bench.Selection(tab::Octave), (std::vector<int>{2, 3}));
  ASSERT_EQ(Go(tab::Octave), GoOutcome::Completed);
  EXPECT_FALSE(HasTabResults(tab::Octave, bench.List().Items.at(1)));
  EXPECT_EQ(window->ShownOf(tab::Octave)->text(), QString::fromUtf8("表示中のプロファイル：road_b"));
  list->selectRow(2);  // road_c_rough alone
  EXPECT_EQ(window->ShownOf(tab::Octave)->text(), QString::fromUtf8("表示中のプロファイル：road_c_rough"));
  EXPECT_EQ(window->ShownOf(tab::Iri), nullptr);
}

TEST_F(MainWindowTest, ThePsdTabComputesOnEntryAndThePlainTabsCarryNoResultsBeforeGo) {
  ASSERT_TRUE(AddExamples());
  window->ToggleMode();
  window->ToggleMode();  // the PSD tab is offered from the second mode change on
  EXPECT_FALSE(HasTabResults(tab::Iri, bench.List().Items.at(1)));
  const QImage before = window->ChartOf(tab::Iri)->Image();
  EXPECT_LT(InkInPlotArea(before), kTextInk);  // only the line that asks for Go
  window->ShowTab(tab::Psd);
  window->WaitForGo();
  for (int row = 1; row <= 3; ++row) EXPECT_TRUE(HasTabResults(tab::Psd, bench.List().Items.at(row)));
  EXPECT_GT(InkInPlotArea(window->ChartOf(tab::Psd)->Image()), kChartInk);
}

TEST_F(MainWindowTest, TheModeSwitchShowsTheTabsOfEachMode) {
  const auto shown = [this] {
    QStringList captions;
    for (int i = 0; i < window->Tabs()->count(); ++i)
      if (window->Tabs()->isTabVisible(i)) captions << window->Tabs()->tabText(i);
    return captions.join(",");
  };
  const auto caption = [this] { return window->menuBar()->actions().back()->text(); };
  EXPECT_EQ(shown(), QString::fromUtf8("プロファイル,フィルター処理,プロファイル分解,バンド別低減,IRI,精度検証"));
  EXPECT_EQ(caption(), QString::fromUtf8("●プロファイル分析　○補修形状検討"));
  window->ToggleMode();
  EXPECT_EQ(shown(), QString::fromUtf8("プロファイル,3波長分解,中波長,短波長,理想形状"));
  EXPECT_EQ(caption(), QString::fromUtf8("○プロファイル分析　●補修形状検討"));
  window->ToggleMode();
  EXPECT_EQ(shown(), QString::fromUtf8("プロファイル,フィルター処理,プロファイル分解,バンド別低減,PSD,IRI,統計値,帳票出力,印刷,精度検証"));
}

TEST_F(MainWindowTest, TheVerificationComparesProfilesOfOnePitchAndDrawsTheirCorrelation) {
  ASSERT_TRUE(AddExamples());
  // road_b has a pitch of 0.05 m, the others 0.1 m: the three together are refused with the engine's message.
  EXPECT_EQ(Go(tab::Verification), GoOutcome::Failed);
  ASSERT_EQ(ui.Messages().size(), 1u);
  EXPECT_NE(ui.Messages().front().Text.find("サンプルピッチ"), std::string::npos) << ui.Messages().front().Text;
  EXPECT_EQ(ColourInPlotArea(window->ChartOf(tab::Verification)->Image()), 0.0);

  QTableView* list = window->ListOf(tab::Verification);
  list->selectRow(0);
  list->selectionModel()->select(list->model()->index(2, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
  ASSERT_EQ(Go(tab::Verification), GoOutcome::Completed);
  EXPECT_EQ(bench.Evaluation.Verification.Results.Selection.Names,
            (std::vector<std::string>{"road_a_kp", "road_c_rough"}));
  // One thin curve over the grid: its colour, which no notice has, is the mark of a chart.
  EXPECT_GT(ColourInPlotArea(window->ChartOf(tab::Verification)->Image()), 0.002);
}

TEST_F(MainWindowTest, TheStudyRunsStepByStepInItsMode) {
  ASSERT_TRUE(AddExamples());
  window->ToggleMode();
  for (int t : {tab::ThreeWave, tab::MediumWave, tab::ShortWave, tab::IdealShape}) {
    SCOPED_TRACE("tab " + std::to_string(t));
    ASSERT_EQ(Go(t), GoOutcome::Completed);
    for (int row = 1; row <= 3; ++row) EXPECT_TRUE(HasTabResults(t, bench.List().Items.at(row))) << "row " << row;
  }
  EXPECT_GT(InkInPlotArea(window->ChartOf(tab::IdealShape)->Image()), kChartInk);
  EXPECT_TRUE(ui.Messages().empty()) << ui.Messages().front().Text;
}

TEST_F(MainWindowTest, TheChartFollowsTheSizeOfItsWidget) {
  ASSERT_TRUE(AddExamples());
  ChartView* chart = window->ChartOf(tab::Profile);
  for (const QSize size : {QSize(640, 300), QSize(1000, 500)}) {
    chart->resize(size);
    chart->Refresh();
    EXPECT_EQ(chart->Image().size(), size);
    EXPECT_GT(InkInPlotArea(chart->Image()), kChartInk);
  }
}

TEST_F(MainWindowTest, TheWindowIsLockedWhileGoRunsAndAStopKeepsTheResultsBefore) {
  ASSERT_TRUE(AddExamples());
  ASSERT_EQ(Go(tab::Iri), GoOutcome::Completed);
  const WaveSeries kept = bench.List().Items.at(1).Analysis.Iri.IriWindowWave;

  bench.Iri.EvalLength = "20";
  ui.StopAfterValues = 0;
  ChartView* chart = window->ChartOf(tab::Iri);
  const qint64 shown = chart->Image().cacheKey();
  ASSERT_TRUE(window->StartGo(tab::Iri));
  EXPECT_FALSE(window->Tabs()->isEnabled());
  chart->Refresh();  // a resize while the worker writes the records keeps the picture
  EXPECT_EQ(chart->Image().cacheKey(), shown);
  EXPECT_FALSE(window->StartGo(tab::Filter));  // no second Go while one runs
  EXPECT_EQ(window->WaitForGo(), GoOutcome::Cancelled);
  EXPECT_TRUE(window->Tabs()->isEnabled());
  EXPECT_NE(chart->Image().cacheKey(), shown);  // drawn again at the end

  const WaveSeries& now = bench.List().Items.at(1).Analysis.Iri.IriWindowWave;
  ASSERT_EQ(now.Values.size(), kept.Values.size());
  EXPECT_TRUE(std::equal(now.Values.begin(), now.Values.end(), kept.Values.begin()));
}

TEST_F(MainWindowTest, TheTabsBoxesReachTheConditionsAtGoAndABadValueIsRefused) {
  ASSERT_TRUE(AddExamples());
  auto* length = window->findChild<QLineEdit*>("evalLength");
  ASSERT_NE(length, nullptr);
  EXPECT_EQ(length->text(), QString::fromStdString(bench.Iri.EvalLength));  // filled from the conditions
  length->setText("20");
  ASSERT_EQ(Go(tab::Iri), GoOutcome::Completed);
  EXPECT_EQ(session.CurrentConditions.Iri.IriBaseLength, 20.0);

  length->setText("abc");
  EXPECT_EQ(Go(tab::Iri), GoOutcome::Failed);
  EXPECT_EQ(ui.Messages().size(), 1u);
  EXPECT_EQ(session.CurrentConditions.Iri.IriBaseLength, 20.0);

  auto* band = window->findChild<QComboBox*>("band");
  ASSERT_NE(band, nullptr);
  band->setCurrentIndex(1);
  EXPECT_EQ(bench.Filter.Band, 1);  // LowPass
}

TEST_F(MainWindowTest, ABadFileIsNamedInARecordedMessageAndRegistersNothing) {
  const auto bad = scratch / "broken.erd";
  testing::WriteBytes(bad, "not a profile\r\n");
  EXPECT_FALSE(window->AddFiles({bad.string()}));
  ASSERT_EQ(ui.Messages().size(), 1u);
  EXPECT_NE(ui.Messages().front().Text.find("broken"), std::string::npos) << ui.Messages().front().Text;
  EXPECT_EQ(window->ListOf(tab::Profile)->model()->rowCount(), 0);
}

TEST_F(MainWindowTest, DroppedFilesAreRegistered) {
  QMimeData data;
  QList<QUrl> urls;
  for (const std::string& file : Examples()) urls << QUrl::fromLocalFile(QString::fromStdString(file));
  data.setUrls(urls);
  QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(window.get(), &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(window.get(), &drop);
  EXPECT_EQ(bench.ProfileCount(), 3);
  EXPECT_EQ(window->ListOf(tab::Iri)->model()->rowCount(), 3);
}

}  // namespace
}  // namespace velmora::gui
