// The window's charts under the mouse: a rubber band, the wheel and a pan redraw the chart for the
// range they give and a double-click brings the first picture back; the readout of a pixel; an
// adjustment point of the M-wave chart dragged into the study; the study's and the band tab's boxes.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QStatusBar>
#include <QWheelEvent>

#include <memory>

#include "analysis/band_reduction.h"
#include "base/startup.h"
#include "gui/qt_app.h"
#include "m_wave_points.h"
#include "repair/study_targets.h"
#include "main_window.h"
#include "support/test_support.h"
#include "window_fixture.h"

namespace velmora::gui {
namespace {

namespace tab = workbench::tab;
using workbench::GoOutcome;

void Mouse(QWidget* widget, QEvent::Type type, QPointF at, Qt::MouseButton button,
           Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button);
  QMouseEvent event(type, at, widget->mapToGlobal(at), button, held, modifiers);
  QCoreApplication::sendEvent(widget, &event);
}

void Drag(QWidget* widget, QPointF from, QPointF to, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  Mouse(widget, QEvent::MouseButtonPress, from, Qt::LeftButton, modifiers);
  Mouse(widget, QEvent::MouseMove, to, Qt::LeftButton, modifiers);
  Mouse(widget, QEvent::MouseButtonRelease, to, Qt::LeftButton, modifiers);
}

// The frame of the panel around `inside`, found in the picture: the first dark grey pixels on the
// way out from it (the grid is light; the charts below zoom to where no curve runs).
struct FoundFrame {
  int Left = -1, Right = -1, Top = -1, Bottom = -1;
};
FoundFrame FrameAround(const QImage& image, QPoint inside) {
  const auto dark = [&](int x, int y) {
    const QRgb p = image.pixel(x, y);
    return qRed(p) == qGreen(p) && qGreen(p) == qBlue(p) && qRed(p) < 0x90;
  };
  FoundFrame f;
  for (int x = inside.x(); x >= 0 && f.Left < 0; --x) if (dark(x, inside.y())) f.Left = x;
  for (int x = inside.x(); x < image.width() && f.Right < 0; ++x) if (dark(x, inside.y())) f.Right = x;
  for (int y = inside.y(); y >= 0 && f.Top < 0; --y) if (dark(inside.x(), y)) f.Top = y;
  for (int y = inside.y(); y < image.height() && f.Bottom < 0; ++y) if (dark(inside.x(), y)) f.Bottom = y;
  return f;
}

class ChartViewTest : public WindowFixture {
 protected:
  void SetUp() override {
    WindowFixture::SetUp();
    if (HasFatalFailure()) return;
    ASSERT_TRUE(AddExamples());
    ui.Log.clear();
  }

  ChartView* Shown(int tab) {
    window->ShowTab(tab);
    QCoreApplication::processEvents();
    ChartView* chart = window->ChartOf(tab);
    chart->Refresh();
    return chart;
  }

  GoOutcome Go(int tab) {
    window->ShowTab(tab);
    if (!window->StartGo(tab)) return GoOutcome::Failed;
    return window->WaitForGo();
  }

  QLineEdit* Box(const char* name) { return window->findChild<QLineEdit*>(name); }

};

// The profile chart: road_a_kp and road_c_rough are the longest, 299.9 m; eight divisions of it want
// 37.49 m, so the step is 50 and the axis runs 0..300 m.
constexpr double kWholeLow = 0, kWholeHigh = 300;

TEST_F(ChartViewTest, ABandWheelAndPanRedrawTheirRangeAndADoubleClickBringsTheFirstPictureBack) {
  ChartView* chart = Shown(tab::Profile);
  const QImage whole = chart->Image();
  ASSERT_EQ(chart->Window().Panels.size(), 1u);
  const graph::Rect f = chart->Window().Panels[0].Frame;
  const double width = f.Right - f.Left, metresPerPixel = (kWholeHigh - kWholeLow) / width;
  EXPECT_FALSE(chart->findChild<QWidget*>("resetZoom")->isVisible());

  // A band over the second and third quarter of the frame (whole pixels: within one of them).
  const QPointF from(f.Left + width / 4, f.Top + 10), to(f.Left + width * 3 / 4, f.Bottom - 10);
  Drag(chart, from, to);
  ASSERT_TRUE(chart->Window().X.has_value());
  EXPECT_NEAR(chart->Window().X->Low, 75, metresPerPixel);
  EXPECT_NEAR(chart->Window().X->High, 225, metresPerPixel);
  EXPECT_TRUE(chart->Window().Y.contains(0));
  EXPECT_NE(chart->Image(), whole);
  EXPECT_TRUE(chart->findChild<QWidget*>("resetZoom")->isVisible());

  // The wheel, one notch towards the user at the middle: 0.8 of the range, the middle where it was.
  chart->ResetZoom();
  const QPointF middle((f.Left + f.Right) / 2, (f.Top + f.Bottom) / 2);
  QWheelEvent wheel(middle, chart->mapToGlobal(middle), {}, {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                    false);
  QCoreApplication::sendEvent(chart, &wheel);
  ASSERT_TRUE(chart->Window().X.has_value());
  EXPECT_NEAR(chart->Window().X->Low, 150 - 0.8 * 150, 1e-6);
  EXPECT_NEAR(chart->Window().X->High, 150 + 0.8 * 150, 1e-6);

  // Shift with the left button pans: 40 pixels to the right shows what lay 40 pixels to the left
  // (the frame as the new tick labels left it).
  const graph::Rect g = chart->Window().Panels[0].Frame;
  const double shownPerPixel = 0.8 * 300 / (g.Right - g.Left);
  Drag(chart, middle, middle + QPointF(40, 0), Qt::ShiftModifier);
  EXPECT_NEAR(chart->Window().X->Low, 30 - 40 * shownPerPixel, 1e-6);
  EXPECT_NEAR(chart->Window().X->High, 270 - 40 * shownPerPixel, 1e-6);

  Mouse(chart, QEvent::MouseButtonDblClick, middle, Qt::LeftButton);
  EXPECT_FALSE(chart->Window().Zoomed());
  EXPECT_EQ(chart->Image(), whole);
}

TEST_F(ChartViewTest, AClickOrAnEscapedBandLeavesTheRangeAlone) {
  ChartView* chart = Shown(tab::Profile);
  const graph::Rect f = chart->Window().Panels[0].Frame;
  const QPointF at(f.Left + 50, f.Top + 50);
  Drag(chart, at, at + QPointF(2, 30));  // narrower than a band
  EXPECT_FALSE(chart->Window().Zoomed());
  Mouse(chart, QEvent::MouseButtonPress, at, Qt::LeftButton);
  Mouse(chart, QEvent::MouseMove, at + QPointF(100, 100), Qt::LeftButton);
  QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
  QCoreApplication::sendEvent(chart, &escape);
  Mouse(chart, QEvent::MouseButtonRelease, at + QPointF(100, 100), Qt::LeftButton);
  EXPECT_FALSE(chart->Window().Zoomed());
}

TEST_F(ChartViewTest, TheReadoutOfAPixelIsTheAxisRangeSharedOverTheFrame) {
  ChartView* chart = Shown(tab::Profile);
  // Far above every profile, so that only the grid is inside the frame.
  chart->ZoomTo(0, {100, 200}, graph::AxisRange{1000, 1010});
  const QImage& image = chart->Image();
  const FoundFrame f = FrameAround(image, {image.width() / 3, image.height() / 2});
  ASSERT_GT(f.Right - f.Left, 100);
  ASSERT_GT(f.Bottom - f.Top, 100);
  const double metresPerPixel = 100.0 / (f.Right - f.Left), mmPerPixel = 10.0 / (f.Bottom - f.Top);

  const struct {
    double AcrossShare, DownShare;
  } points[] = {{0.25, 0.5}, {0.5, 0.1}, {0.9, 0.75}};
  const QRegularExpression pattern("距離 ([0-9.]+) m   KP ([0-9.]+) km   値 ([-0-9.]+) mm");
  for (const auto& p : points) {
    const int x = f.Left + static_cast<int>((f.Right - f.Left) * p.AcrossShare);
    const int y = f.Top + static_cast<int>((f.Bottom - f.Top) * p.DownShare);
    SCOPED_TRACE(::testing::Message() << "pixel " << x << "," << y);
    Mouse(chart, QEvent::MouseMove, QPointF(x, y), Qt::NoButton);
    const QRegularExpressionMatch m = pattern.match(window->statusBar()->currentMessage());
    ASSERT_TRUE(m.hasMatch()) << window->statusBar()->currentMessage().toStdString();
    const double distance = 100 + 100.0 * (x - f.Left) / (f.Right - f.Left);
    const double value = 1010 - 10.0 * (y - f.Top) / (f.Bottom - f.Top);
    EXPECT_NEAR(m.captured(1).toDouble(), distance, 1.5 * metresPerPixel);
    // road_a_kp, the first profile, starts at KP 12.300 and counts upwards.
    EXPECT_NEAR(m.captured(2).toDouble(), 12.3 + distance / 1000, 1.5 * metresPerPixel / 1000);
    EXPECT_NEAR(m.captured(3).toDouble(), value, 1.5 * mmPerPixel);
  }
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(chart, &leave);
  EXPECT_TRUE(window->statusBar()->currentMessage().isEmpty());
}

TEST_F(ChartViewTest, ADraggedAdjustmentPointBecomesTheStudysThicknessAndMPrimeFollows) {
  window->ToggleMode();
  ASSERT_EQ(Go(tab::ThreeWave), GoOutcome::Completed);
  ASSERT_EQ(Go(tab::MediumWave), GoOutcome::Completed);
  ChartView* chart = Shown(tab::MediumWave);
  const std::vector<ChartHandle> before = chart->Handles();
  ASSERT_FALSE(before.empty());
  // A known height scale on the M panel: 40 mm over its frame.
  const graph::PanelMapping m = chart->Window().Panels.at(kMWavePanel);
  chart->ZoomTo(kMWavePanel, m.X, graph::AxisRange{-20, 20});
  const graph::Rect f = chart->Window().Panels.at(kMWavePanel).Frame;
  const ChartHandle point = before[before.size() / 2];
  const double height = f.Bottom - f.Top;
  const double pressY = f.Bottom - (point.Y + 20) / 40 * height;  // where the point stands
  const double pressX = f.Left + (point.X - m.X.Low) / (m.X.High - m.X.Low) * (f.Right - f.Left);
  const double dropY = pressY - 25;
  const QImage chartBefore = chart->Image();

  ui.Inputs.push_back("drag");  // the name the new study is given
  Drag(chart, {pressX, pressY}, {pressX, dropY});

  const ProfileRecord& record = bench.List().Items.at(AdjustedProfile(bench));
  ASSERT_EQ(record.Studies.size(), 1u);
  EXPECT_EQ(record.Studies[0].Name, "drag[厚]");
  EXPECT_EQ(record.RepairStudy.ChosenStudy, 1);
  const double dropped = -20 + (f.Bottom - dropY) / height * 40;  // the height under the drop
  const double thickness = dropped - point.Y;                     // the point had no change before
  EXPECT_NEAR(thickness, 25 * 40 / height, 1e-9);
  EXPECT_NEAR(record.Studies[0].Thickness.at(point.Id), thickness, 1e-9);
  // The study's M' passes through the moved point, and the chart shows it.
  const auto index = static_cast<std::int32_t>(record.Studies[0].AdjPoints.at(point.Id));
  EXPECT_NEAR(record.Studies[0].Outcome.MPrime.Wave.Values.at(index),
              record.RepairStudy.Calculated.MPrime.Wave.Values.at(index) + thickness, 1e-9);
  EXPECT_NE(chart->Image(), chartBefore);
  EXPECT_TRUE(bench.TabDirty[tab::IdealShape]);

  // A second drag of the same point adds to the same study; no name is asked.
  Drag(chart, {pressX, dropY}, {pressX, dropY + 10});
  EXPECT_EQ(record.Studies.size(), 1u);
  EXPECT_NEAR(record.Studies[0].Thickness.at(point.Id), thickness - 10 * 40 / height, 1e-9);

  // The study list names it after the calculated M', chosen; picking the first row goes back to that.
  auto* choice = window->findChild<QComboBox*>("mWaveChoice");
  ASSERT_NE(choice, nullptr);
  ASSERT_EQ(choice->count(), 2);
  EXPECT_EQ(choice->itemText(0).toStdString(), kStudyNoAdjustment);
  EXPECT_EQ(choice->itemText(1), QString::fromUtf8("drag[厚]"));
  EXPECT_EQ(choice->currentIndex(), 1);
  const QImage withStudy = chart->Image();
  emit choice->activated(0);
  EXPECT_EQ(record.RepairStudy.ChosenStudy, 0);
  EXPECT_NE(chart->Image(), withStudy);
  ASSERT_FALSE(chart->Handles().empty());
  EXPECT_EQ(chart->Handles()[before.size() / 2].Y, point.Y);  // the calculated point again
}

TEST_F(ChartViewTest, OnceTheIdealShapeIsMadeAMovedPointMakesItAgainFromTheNewMPrime) {
  window->ToggleMode();
  for (int t : {tab::ThreeWave, tab::MediumWave, tab::ShortWave, tab::IdealShape}) ASSERT_EQ(Go(t), GoOutcome::Completed);
  ChartView* chart = Shown(tab::MediumWave);
  const int row = AdjustedProfile(bench);
  const ProfileRecord& record = bench.List().Items.at(row);
  const Array1<double> idealBefore = record.RepairStudy.IdealShape.Wave.Values;
  const ChartHandle point = chart->Handles().at(chart->Handles().size() / 2);
  const QPointF at = chart->HandlePosition(point);
  ui.Inputs.push_back("ideal");
  Drag(chart, at, at - QPointF(0, 30));
  window->WaitForGo();
  ASSERT_EQ(record.Studies.size(), 1u);
  const double thickness = record.Studies[0].Thickness.at(point.Id);
  ASSERT_GT(thickness, 0);  // upwards
  // L + M' + S': at the point only M' has changed, by the thickness.
  const auto index = static_cast<std::int32_t>(record.Studies[0].AdjPoints.at(point.Id));
  EXPECT_TRUE(record.RepairStudy.IdealValid);
  EXPECT_NEAR(record.RepairStudy.IdealShape.Wave.Values.at(index), idealBefore.at(index) + thickness, 1e-9);
  EXPECT_FALSE(bench.TabDirty[tab::IdealShape]);
}

TEST_F(ChartViewTest, AStudyPointDragCancelledAtTheNameLeavesTheStudiesAlone) {
  window->ToggleMode();
  ASSERT_EQ(Go(tab::ThreeWave), GoOutcome::Completed);
  ASSERT_EQ(Go(tab::MediumWave), GoOutcome::Completed);
  ChartView* chart = Shown(tab::MediumWave);
  const ChartHandle point = chart->Handles().at(0);
  const QPointF at = chart->HandlePosition(point);
  Drag(chart, at, at - QPointF(0, 20));  // the name box is cancelled: the scripted queue is empty
  const ProfileRecord& record = bench.List().Items.at(AdjustedProfile(bench));
  EXPECT_TRUE(record.Studies.empty());
  EXPECT_EQ(record.RepairStudy.ChosenStudy, 0);
}

TEST_F(ChartViewTest, TheStudyBoxesStoreIntoTheWorkbenchAndGoNamesABadValue) {
  window->ToggleMode();
  Box("longBoundary")->setText("20");
  Box("shortBoundary")->setText("3");
  Box("iriLength")->setText("50");
  EXPECT_EQ(bench.Repair.Form.LongBoundary, "20");
  EXPECT_EQ(bench.Repair.Form.ShortBoundary, "3");
  EXPECT_EQ(bench.Repair.Form.IriLength, "50");
  // The short-wave tab's lines are the study's own, not the band tab's.
  QLineEdit* shortLine = Box("shortLine4");
  ASSERT_NE(shortLine, nullptr);
  const std::string bandLine = bench.Band.Lines[4];
  shortLine->setText("0.8");
  EXPECT_EQ(bench.Repair.Form.Lines[4], "0.8");
  EXPECT_EQ(bench.Band.Lines[4], bandLine);

  // Entering the tab splits with the boxes as they are; a bad value then stops the Go with its
  // message and leaves the split made before.
  window->ShowTab(tab::ThreeWave);
  window->WaitForGo();
  ASSERT_TRUE(bench.List().Items.at(1).ThreeWave.Valid);
  EXPECT_EQ(bench.List().Items.at(1).ThreeWave.ShortBoundary, 3);
  EXPECT_EQ(bench.List().Items.at(1).ThreeWave.LongBoundary, 20);
  // New boundaries: the engine says that the study's data start again.
  ASSERT_EQ(ui.Messages().size(), 1u);
  EXPECT_EQ(ui.Messages().front().Title, "確認");
  ui.Log.clear();
  Box("shortBoundary")->setText("abc");
  ASSERT_TRUE(window->StartGo(tab::ThreeWave));
  EXPECT_EQ(window->WaitForGo(), GoOutcome::Failed);
  ASSERT_EQ(ui.Messages().size(), 1u);
  EXPECT_EQ(ui.Messages().front().Title, "警告");
  EXPECT_NE(ui.Messages().front().Text.find("短波側境界値"), std::string::npos) << ui.Messages().front().Text;
  EXPECT_EQ(bench.List().Items.at(1).ThreeWave.ShortBoundary, 3);
}

TEST_F(ChartViewTest, TheBandLimitBoxesStoreTheirLinesAndSayWhichAreNoNumber) {
  QLineEdit* third = Box("bandLine3");
  QLineEdit* fifth = Box("bandLine5");
  QLabel* notice = window->findChild<QLabel*>("bandLinesNotice");
  ASSERT_TRUE(third && fifth && notice);
  third->setText("1.5");
  fifth->setText("1.5mm");
  EXPECT_EQ(bench.Band.Lines[3], "1.5");
  EXPECT_EQ(bench.Band.Lines[5], "1.5mm");
  EXPECT_TRUE(notice->text().contains(QString::fromUtf8("５ ＯＣＴ"))) << notice->text().toStdString();
  EXPECT_FALSE(notice->text().contains(QString::fromUtf8("３ ＯＣＴ")));
  ASSERT_EQ(Go(tab::BandReduction), GoOutcome::Completed);
  const auto& limits = bench.List().Items.at(1).Analysis.BandReduction.Limits;
  EXPECT_EQ(limits[3], 1.5);
  EXPECT_EQ(limits[5], NoLimit);  // what the notice said
  fifth->setText("2");
  EXPECT_TRUE(notice->text().isEmpty());
}

}  // namespace
}  // namespace velmora::gui
