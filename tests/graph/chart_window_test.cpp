// A chart drawn for a zoomed range: the panel's ends, the values read back at the frame, and the
// panels a drawing records in its window.
#include "graph/chart_window.h"

#include <gtest/gtest.h>

#include <cmath>

#include "graph/charts.h"

namespace velmora::graph {
namespace {

TEST(PanelMapping, ReadsTheValuesAtTheFrameBackFromTheAxisEnds) {
  const struct {
    const char* Name;
    AxisSpec X;
    double AtLeft, AtMiddle, AtRight;
  } cases[] = {
      // 0..10 in five steps of 2: the ticks end at the range.
      {"linear", {0, 10, false, "", 5}, 0, 5, 10},
      // 0..9 in four: a step of 2.5, the axis runs on to 10.
      {"linear, outer tick", {0, 9, false, "", 4}, 0, 5, 10},
      // A zoomed range is its own ends, whatever the ticks.
      {"exact", {12.5, 37.3, false, "", 5, "", true}, 12.5, 24.9, 37.3},
      // 1..100: the exact power 1 gets one decade below, 0.1..100; the middle is 10^0.5.
      {"log", {1, 100, true, "", 5}, 0.1, std::sqrt(10.0), 100},
      {"log, exact", {2, 50, true, "", 5, "", true}, 2, 10, 50},
  };
  Picture picture(400, 300);
  DrawDevices devices;
  const Hdc hdc = devices.regHDCPicture(picture);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Name);
    const ChartPanel panel(devices, hdc, picture.Surface, {0, 0, 400, 300}, c.X, {-1, 1, false, "", 4});
    const PanelMapping m = panel.Mapping();
    const Rect& f = m.Frame;
    EXPECT_NEAR(m.XAt(f.Left), c.AtLeft, 1e-12);
    EXPECT_NEAR(m.XAt((f.Left + f.Right) / 2), c.AtMiddle, 1e-9);
    EXPECT_NEAR(m.XAt(f.Right), c.AtRight, 1e-9);
    EXPECT_NEAR(m.SurfaceX(c.AtMiddle), (f.Left + f.Right) / 2, 1e-9);
    // y runs upwards: -1 at the bottom, 1 at the top, a quarter from the top is 0.5.
    EXPECT_NEAR(m.YAt(f.Top + f.Height() / 4), 0.5, 1e-12);
  }
}

// 100 m at 0.1 m of a 10 mm sine of 20 m.
ProfileRecord Road() {
  ProfileRecord p;
  p.FileName = "road.erd";
  p.SamplesPerMetre = 10;
  p.WorkCount = 1001;
  p.WorkProfile = Array1<double>(1001);
  for (std::int32_t i = 1; i <= 1001; ++i) p.WorkProfile[i] = 10 * std::sin(2 * M_PI * (i - 1) * 0.1 / 20);
  return p;
}

struct Drawn {
  std::vector<Colour> Pixels;
  std::vector<PanelMapping> Panels;
};

Drawn DrawRoad(ChartWindow* window) {
  Picture picture(600, 400);
  DrawDevices devices;
  const Hdc hdc = devices.regHDCPicture(picture);
  const ChartCanvas canvas{.Devices = devices, .Target = hdc, .Surface = picture.Surface, .Area = {10, 10, 590, 390},
                           .Window = window};
  const ProfileRecord road = Road();
  const ProfileRecord* profiles[] = {&road};
  DrawProfileChart(canvas, profiles);
  devices.releaseHDC(hdc);
  Drawn drawn;
  for (int y = 0; y < 400; ++y)
    for (int x = 0; x < 600; ++x) drawn.Pixels.push_back(picture.PixelAt(x, y));
  if (window != nullptr) drawn.Panels = window->Panels;
  return drawn;
}

TEST(ChartWindow, AChartDrawnInARangeRecordsItsPanelAndTheRangeOfItsOwnAxesDrawsTheSamePicture) {
  ChartWindow window;
  const Drawn plain = DrawRoad(&window);
  ASSERT_EQ(plain.Panels.size(), 1u);
  // 100 m in eight wants 12.5, a nice step; ±10 mm in four wants 5.
  EXPECT_EQ(plain.Panels[0].X, (AxisRange{0, 100}));
  EXPECT_EQ(plain.Panels[0].Y, (AxisRange{-10, 10}));
  EXPECT_EQ(plain.Pixels, DrawRoad(nullptr).Pixels);

  window.X = AxisRange{0, 100};
  window.Y[0] = AxisRange{-10, 10};
  window.Panels.clear();
  EXPECT_EQ(DrawRoad(&window).Pixels, plain.Pixels);

  window.X = AxisRange{20, 40};
  window.Y[0] = AxisRange{-5, 5};
  window.Panels.clear();
  const Drawn zoomed = DrawRoad(&window);
  EXPECT_EQ(zoomed.Panels[0].X, (AxisRange{20, 40}));
  EXPECT_EQ(zoomed.Panels[0].Y, (AxisRange{-5, 5}));
  EXPECT_NE(zoomed.Pixels, plain.Pixels);
  EXPECT_EQ(window.PanelAt(300, 200), std::optional<std::size_t>(0));
  EXPECT_EQ(window.PanelAt(2, 2), std::nullopt);
}

}  // namespace
}  // namespace velmora::graph
