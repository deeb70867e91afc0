// Axis divisions, tick labels and clipping against values worked out by hand.
#include "graph/axis_scale.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <vector>

#include "graph/clip_geometry.h"
#include "graph/draw_surface.h"
#include "graph/paper_size.h"

namespace velmora::graph {
namespace {

void ExpectTicks(const AxisDivision& division, const std::vector<double>& expected) {
  ASSERT_EQ(division.Values.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(division.Values[i], expected[i], 1e-12) << i;
}

TEST(AutoScaleAxis, TicksFromTheSmallestNiceStepAboveTheWantedOne) {
  const struct {
    const char* what;
    double min, max;
    int numDiv;
    double pitch;
    std::vector<double> ticks;
  } cases[] = {
      {"delta 2 is a nice step", 0, 10, 5, 2, {0, 2, 4, 6, 8, 10}},
      {"delta 2.25 takes 2.5: five ticks for a wish of four", 0, 9, 4, 2.5, {0, 2.5, 5, 7.5, 10}},
      {"ends widen to multiples of the step", -3, 7, 5, 2, {-4, -2, 0, 2, 4, 6, 8}},
      {"the arguments may come swapped", 7, -3, 5, 2, {-4, -2, 0, 2, 4, 6, 8}},
      {"decimal range: delta 0.1025 takes 0.2", 0.3, 0.71, 4, 0.2, {0.2, 0.4, 0.6, 0.8}},
      {"an end within 1/10000 step counts as the multiple", 1.99999, 11.99999, 6, 2, {2, 4, 6, 8, 10, 12}},
      {"all negative: the high end stops at zero", -7.5, -1.2, 3, 2.5, {-7.5, -5, -2.5, 0}},
      {"small decades", 0, 0.0003, 3, 1e-4, {0, 1e-4, 2e-4, 3e-4}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const AxisDivision division = autoScaleAxis(c.min, c.max, c.numDiv);
    EXPECT_NEAR(division.Pitch, c.pitch, c.pitch * 1e-12);
    ExpectTicks(division, c.ticks);
  }
}

TEST(AutoScaleAxis, ZeroTickIsExactlyZero) {
  const AxisDivision division = autoScaleAxis(-0.3, 0.7, 5);  // pitch 0.2: -0.4 ... 0.8
  int zeros = 0;
  for (double value : division.Values) zeros += value == 0.0 ? 1 : 0;
  EXPECT_EQ(zeros, 1);
}

TEST(AutoScaleAxis, EmptyRangeGivesTheSmallestStepAndOneTick) {
  const AxisDivision division = autoScaleAxis(5, 5, 4);
  EXPECT_DOUBLE_EQ(division.Pitch, 1e-36);
  ASSERT_EQ(division.count(), 1);
  EXPECT_NEAR(division.Low(), 5, 1e-12);
}

TEST(AutoScaleAxis, RefusesWhatCannotBeDivided) {
  EXPECT_THROW(autoScaleAxis(0, 1, 0), std::invalid_argument);
  EXPECT_THROW(autoScaleAxis(0, std::numeric_limits<double>::infinity(), 5), std::invalid_argument);
  EXPECT_THROW(autoScaleAxis(-1e300, 1e300, 5), std::invalid_argument);  // no step of 5e36 or less reaches
}

TEST(AutoScaleLogAxis, DecadesWithAnExtraOneBelowAnExactPower) {
  const struct {
    double min, max;
    std::vector<double> ticks;
  } cases[] = {
      {1, 100, {0.1, 1, 10, 100}},
      {2, 100, {1, 10, 100}},
      {100, 2, {1, 10, 100}},
      {0.05, 3, {0.01, 0.1, 1, 10}},
  };
  for (const auto& c : cases) {
    const AxisDivision division = autoScaleLogAxis(c.min, c.max);
    ASSERT_EQ(division.Values.size(), c.ticks.size()) << c.min << ".." << c.max;
    for (std::size_t i = 0; i < c.ticks.size(); ++i) EXPECT_NEAR(division.Values[i] / c.ticks[i], 1, 1e-12);
  }
  EXPECT_THROW(autoScaleLogAxis(0, 10), std::invalid_argument);
  EXPECT_THROW(autoScaleLogAxis(-1, 10), std::invalid_argument);
}

TEST(AutoScaleLogAxis, StopsAtTheOuterDecades) {
  const AxisDivision division = autoScaleLogAxis(1e-40, 1e40);
  EXPECT_NEAR(division.Low() / 1e-36, 1, 1e-12);
  EXPECT_NEAR(division.High() / 1e36, 1, 1e-12);
  EXPECT_EQ(division.count(), 73);
}

TEST(AxisLabel, FormatChosenByTheDecimalExponent) {
  const struct {
    double value;
    const char* format;
    const char* text;
  } cases[] = {
      {0.012, "0.0000", "0.0120"},       // exponent -2: one decimal fewer than -1
      {0.5, "0.00000", "0.50000"},       // -1
      {-0.012, "0.0000", "-0.0120"},
      {5, "0.0000", "5.0000"},           // 0
      {25, "0.000", "25.000"},           // 1
      {250, "0.00", "250.00"},           // 2
      {1234.5, "0.0", "1234.5"},         // 3
      {12345, "0", "12345"},             // 4
      {123456, "0.000E+00", "1.235E+05"},
      {0.001, "0.000E+00", "1.000E-03"},
      {0, "0.0", "0.0"},
      {1e-33, "0.0", "0.0"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(GetAxisLabelFormat(c.value), c.format) << c.value;
    EXPECT_EQ(AxisLabel(c.value), c.text) << c.value;
  }
  EXPECT_DOUBLE_EQ(Log10(1000), 3);
}

TEST(ClipGeometry, RegionCodes) {
  const struct {
    double x, y;
    int code;
  } cases[] = {{5, 5, 0}, {0, 10, 0}, {-1, 5, 1}, {11, 5, 2}, {5, -1, 4}, {5, 11, 8}, {-1, -1, 5}, {11, 11, 10}};
  for (const auto& c : cases) EXPECT_EQ(GetClipCode(0, 10, 0, 10, c.x, c.y), c.code) << c.x << "," << c.y;
}

TEST(ClipGeometry, LinesCutToTheBox) {
  const struct {
    const char* what;
    double x1, y1, x2, y2;
    int visible;
    double cx1, cy1, cx2, cy2;
  } cases[] = {
      {"wholly left", -5, 1, -1, 9, 0, 0, 0, 0, 0},
      {"inside stays", 1, 2, 3, 4, 1, 1, 2, 3, 4},
      {"horizontal across", -5, 5, 15, 5, 1, 0, 5, 10, 5},
      {"vertical across", 3, -4, 3, 20, 1, 3, 0, 3, 10},
      {"diagonal from the left", -5, 0, 5, 10, 1, 0, 5, 5, 10},
      {"diagonal through both corners", -10, -10, 20, 20, 1, 0, 0, 10, 10},
      {"passes the corner outside", -5, 4, 4, -5, 0, 0, 0, 0, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    double x1 = c.x1, y1 = c.y1, x2 = c.x2, y2 = c.y2;
    ASSERT_EQ(ClipLineToBox(0, 0, 10, 10, x1, y1, x2, y2), c.visible);
    if (c.visible == 0) continue;
    EXPECT_DOUBLE_EQ(x1, c.cx1);
    EXPECT_DOUBLE_EQ(y1, c.cy1);
    EXPECT_DOUBLE_EQ(x2, c.cx2);
    EXPECT_DOUBLE_EQ(y2, c.cy2);
  }
}

TEST(ClipGeometry, PointsBoxesAndDistance) {
  EXPECT_TRUE(PointInBox(5, 5, 10, 10, 0, 0));
  EXPECT_TRUE(PointInBox(10, 0, 0, 10, 10, 0));
  EXPECT_FALSE(PointInBox(10.1, 5, 0, 0, 10, 10));
  EXPECT_TRUE(BoxesOverlap({0, 0, 10, 10}, {5, 5, 15, 15}));
  EXPECT_TRUE(BoxesOverlap({0, 0, 10, 10}, {2, 2, 3, 3}));
  EXPECT_FALSE(BoxesOverlap({0, 4, 10, 6}, {4, 0, 6, 10}));  // a plus sign
  EXPECT_FALSE(BoxesOverlap({0, 0, 1, 1}, {2, 2, 3, 3}));
  EXPECT_DOUBLE_EQ(mlDistPointToPoint(1, 1, 4, 5), 5);
}

TEST(Canvas, PixelLengthsInTheUserScaleArePositive) {
  DrawSurface surface;
  surface.PixelWidth = 200;
  surface.PixelHeight = 100;
  surface.Scale(0, 50, 1000, -50);  // y runs upwards
  EXPECT_DOUBLE_EQ(ConvertPixel2User_forWidth(surface, 20), 100);
  EXPECT_DOUBLE_EQ(ConvertPixel2User_forHeight(surface, 10), 10);
}

TEST(Paper, SizesByCodeAndOrientation) {
  const struct {
    int code, orientation;
    double width, height;  // mm; none for a code without a size
  } cases[] = {{kPaperA4, kLandscape, 297, 210}, {13, kPortrait, 182, 257}, {*PaperCodeOf("A3"), kPortrait, 297, 420},
               {999, kPortrait, 0, 0}};
  for (const auto& c : cases) {
    PrinterTarget printer;
    printer.PaperSize = c.code;
    printer.Orientation = c.orientation;
    double width = -1, height = -1;
    GetPaperSize(printer, width, height);
    EXPECT_EQ(std::pair(width, height), std::pair(c.width, c.height)) << c.code;
    EXPECT_EQ(PreparePrinter(printer), c.width > 0) << c.code;
  }
  EXPECT_EQ(PaperCodeOf("B4"), 12);
  EXPECT_EQ(PaperCodeOf("A6"), std::nullopt);
  EXPECT_EQ(PaperCodeOf(""), std::nullopt);  // the second A4 code has no name of its own
  PrinterTarget a4;
  ASSERT_TRUE(PreparePrinter(a4));
  EXPECT_EQ(a4.Surface.PixelWidth, 794);  // 210 mm at 96 dpi
  EXPECT_EQ(a4.Surface.ScaleWidth, 210);
}

}  // namespace
}  // namespace velmora::graph
