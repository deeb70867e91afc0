// The statistics tab of the window: its boxes reach the run, Go computes on the worker and the pages
// show the figures, checked against what two small profiles give by hand.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QListWidget>
#include <QPushButton>

#include <algorithm>
#include <cmath>

#include "program_fixture.h"
#include "qt_colour.h"
#include "tab_statistics.h"

namespace velmora::gui {
namespace {

namespace tab = workbench::tab;

class StatisticsTabTest : public ProgramTest {
 protected:
  StatisticsTabPage& Page() const {
    return *dynamic_cast<StatisticsTabPage*>(run->window->findChild<QWidget*>("statisticsTab"));
  }
  void Tick(const QString& name) const {
    auto* box = run->window->findChild<QCheckBox*>(name);
    ASSERT_NE(box, nullptr) << name.toStdString();
    box->setChecked(true);
  }
  // The figure of a page in the column of `profile` and `measure`, in the body row labelled `row`.
  static double Figure(const StatisticsPageModel& model, const std::string& profile, const std::string& measure,
                       const std::string& row) {
    const StatisticsPage& page = model.Page();
    const auto text = [&](int r, int c) { return model.index(r, c).data().toString().toStdString(); };
    const auto headRow = [&](const std::string& label) {
      for (int r = 0; r < static_cast<int>(page.Head.size()); ++r)
        if (text(r, 0) == label) return r;
      return -1;
    };
    int column = -1;
    for (int c = 1; c < model.columnCount(); ++c)
      if (text(headRow("プロファイル"), c) == profile && text(headRow("統計値"), c) == measure) column = c;
    for (int r = static_cast<int>(page.Head.size()); column > 0 && r < model.rowCount(); ++r)
      if (text(r, 0) == row) return std::stod(text(r, column));
    ADD_FAILURE() << "no figure for " << profile << " / " << measure << " / " << row;
    return std::nan("");
  }
};

TEST_F(StatisticsTabTest, GoShowsTheWholeAndTenMetreFiguresOfTwoProfilesAsWorkedOutByHand) {
  // 20 m at 0.1 m: a ramp 0, 1, ..., 200 mm, and +3, -3, +3, ... mm (101 times +3, 100 times -3).
  std::vector<double> ramp, zigzag;
  for (int i = 0; i <= 200; ++i) {
    ramp.push_back(i);
    zigzag.push_back(i % 2 == 0 ? 3 : -3);
  }
  ASSERT_TRUE(run->window->AddFiles({WriteErd("ramp", 0.1, ramp), WriteErd("zigzag", 0.1, zigzag)}));
  run->window->ToggleMode();
  run->window->ToggleMode();  // the statistics tab comes up after the mode has been changed twice
  ASSERT_TRUE(run->window->TabShown(tab::Statistics));
  run->window->ShowTab(tab::Statistics);
  Tick("chk帯域_pro0");          // 全波長: the profile itself
  Tick("chk統計値_proTop");      // the header ticks all five statistics
  ASSERT_TRUE(run->window->StartGo(tab::Statistics));
  ASSERT_EQ(run->window->WaitForGo(), workbench::GoOutcome::Completed);
  EXPECT_TRUE(ui.Messages().empty()) << ui.Messages().front().Text;

  // Whole length, population deviation. n consecutive integers: mean in the middle, σ² = (n² - 1)/12.
  // The zigzag: mean 3·(101 - 100)/201, σ² = 9 - mean².
  const StatisticsPageModel& whole = Page().PageModel(0);
  const double zigzagMean = 3.0 / 201;
  struct Expected {
    const char* Profile;
    const char* Measure;
    double Value;
  };
  const Expected wholeFigures[] = {
      {"ramp", "平均 μ", 100},        {"ramp", "標準偏差 σ", std::sqrt((201.0 * 201 - 1) / 12)},
      {"ramp", "最大値", 200},        {"ramp", "最小値", 0},
      {"ramp", "最大最小差", 200},    {"zigzag", "平均 μ", zigzagMean},
      {"zigzag", "標準偏差 σ", std::sqrt(9 - zigzagMean * zigzagMean)},
      {"zigzag", "最大値", 3},        {"zigzag", "最小値", -3},
      {"zigzag", "最大最小差", 6}};
  ASSERT_GE(whole.rowCount(), 4);
  const std::string wholeRow = whole.index(whole.rowCount() - 1, 0).data().toString().toStdString();
  for (const Expected& e : wholeFigures) {
    SCOPED_TRACE(std::string(e.Profile) + " " + e.Measure);
    EXPECT_NEAR(Figure(whole, e.Profile, e.Measure, wholeRow), e.Value, 5e-9);  // shown to 8 decimals
  }

  // 10 m sections of 100 samples each, from the start: 0..99 and 100..199 on the ramp (σ² = (100² - 1)/12),
  // fifty of each sign on the zigzag.
  const StatisticsPageModel& tens = Page().PageModel(1);
  const double tenSigma = std::sqrt((100.0 * 100 - 1) / 12);
  const Expected firstSection[] = {{"ramp", "平均 μ", 49.5},     {"ramp", "標準偏差 σ", tenSigma},
                                   {"ramp", "最大値", 99},       {"ramp", "最小値", 0},
                                   {"zigzag", "平均 μ", 0},      {"zigzag", "標準偏差 σ", 3},
                                   {"zigzag", "最大最小差", 6}};
  for (const Expected& e : firstSection) {
    SCOPED_TRACE(std::string("0.000 ") + e.Profile + " " + e.Measure);
    EXPECT_NEAR(Figure(tens, e.Profile, e.Measure, "0.000"), e.Value, 5e-9);
  }
  const Expected secondSection[] = {{"ramp", "平均 μ", 149.5}, {"ramp", "最小値", 100}, {"ramp", "最大最小差", 99}};
  for (const Expected& e : secondSection) {
    SCOPED_TRACE(std::string("0.010 ") + e.Profile + " " + e.Measure);
    EXPECT_NEAR(Figure(tens, e.Profile, e.Measure, "0.010"), e.Value, 5e-9);
  }
  // A section page has its chart: the step lines leave ink on it.
  Page().Pages()->setCurrentIndex(1);
  Page().Chart()->resize(600, 400);
  Page().Chart()->Refresh();
  const QImage& chart = Page().Chart()->Image();
  int ink = 0;
  for (int y = 0; y < chart.height(); ++y)
    for (int x = 0; x < chart.width(); ++x) ink += chart.pixel(x, y) != qRgb(255, 255, 255);
  EXPECT_GT(ink, chart.width() * chart.height() / 50);
}

TEST_F(StatisticsTabTest, NothingTickedIsRefusedWithTheProgramsWarningAndShowsNoPage) {
  ASSERT_TRUE(run->window->AddFiles(Examples()));
  Tick("chk帯域_pro0");  // a band of the profile, but no statistic
  ASSERT_TRUE(run->window->StartGo(tab::Statistics));
  EXPECT_NE(run->window->WaitForGo(), workbench::GoOutcome::Completed);
  testing::ExpectMessages(ui, {{"統計値(プロファイル)は１個以上選択してください。", "警告"}});
  for (int page = 0; page < 8; ++page) EXPECT_EQ(Page().PageModel(page).rowCount(), 0) << page;
}

TEST_F(StatisticsTabTest, TheOrderingButtonsMoveAWordAndTheDisplayMarksSurviveARestart) {
  auto* list = run->window->findChild<QListWidget*>("lst並順_pro");
  ASSERT_NE(list, nullptr);
  list->setCurrentRow(2);  // 統計値 to the top
  for (const char* button : {"lst並順_proUp", "lst並順_proUp", "lst並順_proUp"})
    run->window->findChild<QPushButton*>(button)->click();  // the third press finds the top and stays
  EXPECT_EQ(run->bench.StatisticsSortProfile, (std::vector<std::string>{"統計値", "プロファイル", "帯域"}));
  // A new project starts from the default order, and the list shows it.
  run->MenuItem("mnuFileSub0")->trigger();  // 新規作成
  ASSERT_EQ(list->count(), 3);
  EXPECT_EQ(list->item(0)->text().toStdString(), "プロファイル");

  Tick("chk統計値1");
  Tick("chk統計値4");
  EXPECT_EQ(run->bench.StatisticsMarks, (std::array<bool, 5>{false, true, false, false, true}));
  Restart();
  EXPECT_EQ(run->bench.StatisticsMarks, (std::array<bool, 5>{false, true, false, false, true}));
  EXPECT_TRUE(run->window->findChild<QCheckBox*>("chk統計値4")->isChecked());
}

// The rows (pixels from the top) in which `colour` crosses more than half of the frame: the rules.
std::vector<int> RuleRows(const QImage& image, const graph::Rect& frame, Colour colour) {
  const QColor wanted = QtColour(colour);
  std::vector<int> rows;
  for (int y = static_cast<int>(frame.Top); y < static_cast<int>(frame.Bottom); ++y) {
    int count = 0;
    for (int x = static_cast<int>(frame.Left); x < static_cast<int>(frame.Right); ++x) {
      const QColor c = image.pixelColor(x, y);
      count += std::abs(c.red() - wanted.red()) + std::abs(c.green() - wanted.green()) + std::abs(c.blue() - wanted.blue()) < 24;
    }
    if (count > (frame.Right - frame.Left) / 2) rows.push_back(y);
  }
  return rows;
}

TEST_F(StatisticsTabTest, TheDisplayMarksRuleTheProfileChartAtItsMeanDeviationHighestAndLowest) {
  // 20 m at 0.1 m: 100 samples of 2 mm, 50 of 8 mm, 50 of -4 mm. Mean (200 + 400 - 200)/200 = 2;
  // deviations 0, +6, -6 give σ² = (50·36 + 50·36)/200 = 18.
  std::vector<double> samples(100, 2.0);
  samples.insert(samples.end(), 50, 8.0);
  samples.insert(samples.end(), 50, -4.0);
  ASSERT_TRUE(run->window->AddFiles({WriteErd("steps", 0.1, samples)}));
  run->window->ToggleMode();
  run->window->ToggleMode();
  run->window->ShowTab(tab::Statistics);
  Page().Pages()->setCurrentIndex(0);  // the whole-length page shows the profiles themselves
  Page().Chart()->resize(800, 500);
  Page().Chart()->Refresh();
  ASSERT_EQ(Page().Chart()->Window().Panels.size(), 1u);
  const graph::PanelMapping& panel = Page().Chart()->Window().Panels[0];
  for (Colour colour : {graph::kMarkMean, graph::kMarkDeviation, graph::kMarkMaximum, graph::kMarkMinimum})
    EXPECT_TRUE(RuleRows(Page().Chart()->Image(), panel.Frame, colour).empty()) << "no mark ticked";

  struct Mark {
    const char* Box;
    Colour Drawn;
    std::vector<double> At;  // mm
  };
  const double sigma = std::sqrt(18.0);
  const Mark marks[] = {{"chk統計値0", graph::kMarkMean, {2}},
                        {"chk統計値1", graph::kMarkDeviation, {2 + sigma, 2 - sigma}},
                        {"chk統計値2", graph::kMarkMaximum, {8}},
                        {"chk統計値3", graph::kMarkMinimum, {-4}}};
  for (const Mark& mark : marks) {
    SCOPED_TRACE(mark.Box);
    Tick(mark.Box);  // the chart follows the tick at once
    const graph::PanelMapping& ticked = Page().Chart()->Window().Panels.at(0);
    const std::vector<int> rows = RuleRows(Page().Chart()->Image(), ticked.Frame, mark.Drawn);
    ASSERT_FALSE(rows.empty());
    for (double value : mark.At) {
      const double y = ticked.SurfaceY(value);
      EXPECT_TRUE(std::any_of(rows.begin(), rows.end(), [y](int row) { return std::abs(row + 0.5 - y) <= 1.5; }))
          << value << " mm, expected near row " << y;
    }
    // Nothing but the rule: each rule is at most a few rows thick.
    EXPECT_LE(rows.size(), mark.At.size() * 3);
  }
  EXPECT_EQ(run->bench.StatisticsMarks, (std::array<bool, 5>{true, true, true, true, false}));
  // The IRI goes into the legend beside the name ("-" before the IRI tab has computed it).
  const QImage withoutIri = Page().Chart()->Image();
  Tick("chk統計値4");
  EXPECT_NE(Page().Chart()->Image(), withoutIri);
}

TEST_F(StatisticsTabTest, TheSectionChartZoomsToTheRangeAskedAndReadsItBack) {
  ASSERT_TRUE(run->window->AddFiles(Examples()));
  run->window->ToggleMode();
  run->window->ToggleMode();
  run->window->ShowTab(tab::Statistics);
  Tick("chk帯域_pro0");
  Tick("chk統計値_proTop");
  ASSERT_TRUE(run->window->StartGo(tab::Statistics));
  ASSERT_EQ(run->window->WaitForGo(), workbench::GoOutcome::Completed);
  Page().Pages()->setCurrentIndex(2);  // 100 m sections
  ChartView& chart = *Page().Chart();
  chart.resize(800, 500);
  chart.Refresh();
  // Two panels, the deviation and the spread, sharing the KP.
  ASSERT_EQ(chart.Window().Panels.size(), 2u);
  const QImage whole = chart.Image();
  const graph::AxisRange all = chart.Window().Panels[0].X;
  const graph::AxisRange middle{all.Low + (all.High - all.Low) / 4, all.Low + (all.High - all.Low) / 2};
  chart.ZoomTo(1, middle, graph::AxisRange{0, 1});
  ASSERT_EQ(chart.Window().Panels.size(), 2u);
  for (std::size_t p = 0; p < 2; ++p) {
    EXPECT_DOUBLE_EQ(chart.Window().Panels[p].X.Low, middle.Low) << p;
    EXPECT_DOUBLE_EQ(chart.Window().Panels[p].X.High, middle.High) << p;
  }
  EXPECT_DOUBLE_EQ(chart.Window().Panels[1].Y.High, 1);
  EXPECT_NE(chart.Image(), whole);
  // The readout finds the panel under the mouse and reads the zoomed range there.
  const graph::Rect frame = chart.Window().Panels[1].Frame;
  const std::optional<ChartPoint> point = chart.PointAt({(frame.Left + frame.Right) / 2, (frame.Top + frame.Bottom) / 2});
  ASSERT_TRUE(point.has_value());
  EXPECT_EQ(point->Panel, 1u);
  EXPECT_NEAR(point->X, (middle.Low + middle.High) / 2, (middle.High - middle.Low) / 50);
  EXPECT_NEAR(point->Y, 0.5, 0.05);
  chart.ResetZoom();
  EXPECT_EQ(chart.Image(), whole);
}

}  // namespace
}  // namespace velmora::gui
