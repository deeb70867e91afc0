// The statistics tab of the window: its boxes reach the run, Go computes on the worker and the pages
// show the figures, checked against what two small profiles give by hand.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QListWidget>
#include <QPushButton>

#include <cmath>

#include "program_fixture.h"
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

}  // namespace
}  // namespace velmora::gui
