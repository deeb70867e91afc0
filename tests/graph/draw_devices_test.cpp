// The drawing layer on a 100 x 100 pixel picture whose user scale runs 0..10 in x and 10..0 in y (y
// upwards), so user (x, y) is pixel (10x, 100 - 10y): pixels are read where the drawing must (and
// must not) have put colour. The same routine drawn to SVG and PDF is read back from the files.
#include "graph/draw_devices.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <pugixml.hpp>
#include <regex>
#include <string>

#include "base/text_encoding.h"
#include "graph/font_choice.h"
#include "support/test_support.h"

namespace velmora::graph {
namespace {

constexpr Colour kRed = 0x0000FF;
constexpr Colour kGreen = 0x00FF00;
constexpr Colour kBlue = 0xFF0000;

class DrawOnPicture : public ::testing::Test {
 protected:
  DrawOnPicture() : picture(100, 100) {
    picture.Surface.Scale(0, 10, 10, 0);
    hdc = devices.regHDCPicture(picture);
  }
  Colour At(int x, int y) const { return picture.PixelAt(x, y); }
  // Within a little of the colour: edges of curves are smoothed.
  bool Near(int x, int y, Colour colour) const {
    const ColourParts a = uColourSplit(At(x, y)), b = uColourSplit(colour);
    return std::abs(a.Red - b.Red) < 24 && std::abs(a.Green - b.Green) < 24 && std::abs(a.Blue - b.Blue) < 24;
  }

  Picture picture;
  DrawDevices devices;
  Hdc hdc;
};

TEST_F(DrawOnPicture, LineRunsBetweenItsEndPixels) {
  devices.drLine(hdc, 0.5, 5, 9.5, 5, {.Color = kRed});  // pixels (5, 50) to (95, 50)
  EXPECT_EQ(At(6, 50), kRed);
  EXPECT_EQ(At(50, 50), kRed);
  EXPECT_EQ(At(94, 50), kRed);
  EXPECT_EQ(At(50, 49), kWhite);
  EXPECT_EQ(At(50, 51), kWhite);
  EXPECT_EQ(At(3, 50), kWhite);
  EXPECT_EQ(At(97, 50), kWhite);
}

TEST_F(DrawOnPicture, ClipBoxStopsLinesAtItsEdgesUntilClipOff) {
  devices.clipBox(hdc, 2, 8, 8, 2);  // pixels 20..80
  devices.drLine(hdc, 0, 5, 10, 5, {.Color = kBlue});
  EXPECT_EQ(At(19, 50), kWhite);
  EXPECT_EQ(At(20, 50), kBlue);
  EXPECT_EQ(At(79, 50), kBlue);
  EXPECT_EQ(At(80, 50), kWhite);
  devices.clipOff(hdc);
  devices.drLine(hdc, 0, 3, 10, 3, {.Color = kBlue});
  EXPECT_EQ(At(5, 70), kBlue);
  EXPECT_EQ(At(90, 70), kBlue);
}

TEST_F(DrawOnPicture, FilledBoxHasItsFillInsideAndThePenOnTheEdge) {
  devices.flBox(hdc, 1, 9, 3, 7, {.Color = kRed, .Fill = kGreen});  // pixels 10..29
  EXPECT_EQ(At(20, 20), kGreen);
  EXPECT_EQ(At(10, 20), kRed);
  EXPECT_EQ(At(29, 20), kRed);
  EXPECT_EQ(At(30, 20), kWhite);
  EXPECT_EQ(At(9, 20), kWhite);
}

TEST_F(DrawOnPicture, OutlineBoxLeavesItsInsideAlone) {
  devices.drBox(hdc, 1, 9, 3, 7, {.Color = kRed, .Fill = kGreen});
  EXPECT_EQ(At(10, 20), kRed);
  EXPECT_EQ(At(20, 20), kWhite);
}

TEST_F(DrawOnPicture, HatchStylesRepeatEveryEightPixels) {
  const struct {
    int hatch;
    int x, y;
    bool inked;
  } cases[] = {
      {0, 50, 52, true},  {0, 50, 53, false},  // horizontal: rows 4, 12, ..., 52
      {1, 44, 50, true},  {1, 45, 50, false},  // vertical: columns 4, ..., 44
      {2, 41, 49, true},  {2, 42, 49, false},  // "\": x = y (mod 8)
      {3, 41, 46, true},  {3, 41, 49, false},  // "/": x + y = 7 (mod 8)
      {4, 44, 53, true},  {4, 50, 52, true},   {4, 45, 53, false},
      {5, 41, 49, true},  {5, 41, 46, true},   {5, 42, 49, false},
  };
  for (const auto& c : cases) {
    Picture fresh(100, 100);
    fresh.Surface.Scale(0, 10, 10, 0);
    DrawDevices own;
    const Hdc target = own.regHDCPicture(fresh);
    own.drBoxHatch(target, 2, 8, 8, 2, {.Style = 5, .Color = kBlue, .Hatch = c.hatch});
    EXPECT_EQ(fresh.PixelAt(c.x, c.y) == kBlue, c.inked) << "hatch " << c.hatch << " at " << c.x << "," << c.y;
  }
}

TEST_F(DrawOnPicture, AHatchOutsideItsRangeIsNotTaken) {
  devices.drBoxHatch(hdc, 2, 8, 8, 2, {.Style = 5, .Color = kBlue, .Hatch = 6});
  for (int y = 30; y < 38; ++y) EXPECT_EQ(At(50, y), kWhite) << y;
}

TEST_F(DrawOnPicture, LineStyleOutOfRangeFallsBackToTheSurfaceStyle) {
  picture.Surface.DrawStyle = 5;  // no pen
  devices.drLine(hdc, 0, 5, 10, 5, {.Style = 7, .Color = kRed});
  EXPECT_EQ(At(50, 50), kWhite);
  devices.drLine(hdc, 0, 5, 10, 5, {.Style = 0, .Color = kRed});
  EXPECT_EQ(At(50, 50), kRed);
}

TEST_F(DrawOnPicture, DashedStyleLeavesGaps) {
  devices.drLine(hdc, 0, 5, 10, 5, {.Style = 1, .Color = kRed});  // 18 on, 6 off from x = 0.5
  EXPECT_EQ(At(10, 50), kRed);
  EXPECT_EQ(At(21, 50), kWhite);
  EXPECT_EQ(At(30, 50), kRed);
}

TEST_F(DrawOnPicture, MissingArgumentsTakeTheSurfaceDefaults) {
  picture.Surface.ForeColor = kGreen;
  picture.Surface.DrawWidth = 3;
  devices.drLine(hdc, 0, 5, 10, 5);
  EXPECT_EQ(At(50, 49), kGreen);
  EXPECT_EQ(At(50, 51), kGreen);
  EXPECT_EQ(At(50, 53), kWhite);
}

TEST_F(DrawOnPicture, PointsCirclesAndPolygons) {
  const double px[] = {2.5};
  const double py[] = {2.5};
  devices.drawAPIcmn(primitive::Points, hdc, px, py, {.Color = kRed});
  EXPECT_EQ(At(25, 75), kRed);
  EXPECT_EQ(At(26, 75), kWhite);

  devices.drCircle(hdc, 5, 5, 2, {.Color = kBlue});  // radius 20 pixels about (50, 50)
  EXPECT_TRUE(Near(70, 50, kBlue));
  EXPECT_TRUE(Near(50, 30, kBlue));
  EXPECT_EQ(At(50, 50), kWhite);

  const double xs[] = {7, 9, 9};
  const double ys[] = {9, 9, 7};
  devices.mFillPolygon(hdc, xs, ys, {.Style = 5, .Fill = kGreen});
  EXPECT_EQ(At(87, 13), kGreen);  // inside the triangle
  EXPECT_EQ(At(73, 27), kWhite);  // beyond its hypotenuse
}

TEST_F(DrawOnPicture, ManyRectanglesInOneCall) {
  const double x1[] = {1, 5}, y1[] = {9, 9}, x2[] = {2, 6}, y2[] = {8, 8};
  devices.flBoxes2(hdc, x1, y1, x2, y2, {.Style = 5, .Fill = kRed});
  EXPECT_EQ(At(15, 15), kRed);
  EXPECT_EQ(At(55, 15), kRed);
  EXPECT_EQ(At(35, 15), kWhite);
}

TEST_F(DrawOnPicture, UnknownCodesHandlesAndEmptyCallsDrawNothing) {
  const double xs[] = {0, 10};
  const double ys[] = {5, 5};
  devices.drawAPIcmn(13, hdc, xs, ys, {.Color = kRed});
  devices.drawAPIcmn(primitive::Line, hdc + 1000, xs, ys, {.Color = kRed});
  devices.drawAPIcmn(primitive::Line, hdc, {}, {}, {.Color = kRed});
  devices.drawAPIcmn(primitive::Rectangle, hdc, std::span(xs, 1), std::span(ys, 1), {.Color = kRed});
  for (int x = 0; x < 100; x += 7) EXPECT_EQ(At(x, 50), kWhite) << x;
}

TEST_F(DrawOnPicture, DrawingLeavesTheScaleAsItWas) {
  const DrawSurface before = picture.Surface;
  devices.drLine(hdc, 0, 0, 10, 10);
  devices.drText(hdc, 1, 9, "KP");
  EXPECT_EQ(picture.Surface.ScaleLeft, before.ScaleLeft);
  EXPECT_EQ(picture.Surface.ScaleTop, before.ScaleTop);
  EXPECT_EQ(picture.Surface.ScaleWidth, before.ScaleWidth);
  EXPECT_EQ(picture.Surface.ScaleHeight, before.ScaleHeight);
  EXPECT_EQ(picture.Surface.Mode, before.Mode);
}

TEST_F(DrawOnPicture, JapaneseTextIsDrawnBelowAndRightOfItsPoint) {
  FontSpec font;
  font.Size = 15;  // 20 pixels
  devices.drText(hdc, 2, 8, "縦断", {.Font = font, .Color = kBlack});
  int inked = 0;
  for (int y = 20; y < 42; ++y)
    for (int x = 20; x < 62; ++x) inked += At(x, y) != kWhite ? 1 : 0;
  EXPECT_GT(inked, 40);  // the glyphs are there, not tofu-less blanks
  for (int x = 0; x < 100; ++x) EXPECT_EQ(At(x, 18), kWhite) << x;  // nothing above the top
  EXPECT_NEAR(devices.TextWidth(hdc, "縦断", font), 4.0, 0.01);  // two em squares of 20 pixels
}

TEST(DrawRegistry, RegistrationAndRelease) {
  Picture a(10, 10), b(10, 10);
  DrawDevices devices;
  EXPECT_EQ(devices.getHDCnumber(a.hdc()), 0);
  devices.regHDCPicture(a);
  devices.regHDCPicture(a);
  EXPECT_EQ(devices.Count(), 1);
  devices.regHDCPicture(b);
  EXPECT_EQ(devices.getHDCnumber(b.hdc()), 2);
  devices.releaseHDC(b.hdc() + 1000);
  EXPECT_EQ(devices.Count(), 2);
  devices.releaseHDC(a.hdc());
  EXPECT_EQ(devices.Count(), 1);
  EXPECT_EQ(devices.getHDCnumber(b.hdc()), 1);
}

TEST(FontChoice, CharsetPitchAndSizeByName) {
  const struct {
    const char* name;
    int charset, pitch;
    double factor;
  } cases[] = {{"Arial", 255, 18, 1.0},          {"Times New Roman", 0, 18, 1.2}, {"ＭＳ ゴシック", 128, 65, 1.0},
               {"ＭＳ 明朝", 128, 65, 1.0},      {"ＭＳ Ｐゴシック", 128, 66, 1.0}, {"ＭＳ Ｐ明朝", 128, 66, 1.0},
               {"Courier New", 0, 0, 1.0},       {"Verdana", 1, 0, 1.0}};
  for (const auto& c : cases) {
    const FontChoice choice = ChooseFont(c.name);
    EXPECT_EQ(choice.Charset, c.charset) << c.name;
    EXPECT_EQ(choice.PitchAndFamily, c.pitch) << c.name;
    EXPECT_EQ(choice.SizeFactor, c.factor) << c.name;
  }
  EXPECT_EQ(ChooseFont("ＭＳ ゴシック").Family, "Noto Sans CJK JP");
  EXPECT_DOUBLE_EQ(FontPixelHeight(9), 12);  // 9 pt = 180 twips = 12 pixels of 15 twips
}

// One drawing routine for every target: a frame, two lines, a hatched box and two texts.
void DrawSample(DrawDevices& devices, Hdc hdc) {
  devices.drBox(hdc, 0.5, 9.5, 9.5, 0.5);
  devices.drLine(hdc, 1, 1, 9, 9, {.Color = kRed});
  devices.drLine(hdc, 1, 9, 9, 1, {.Style = 2, .Color = kBlue});
  devices.drBoxHatch(hdc, 2, 4, 4, 2, {.Hatch = 4});
  devices.drText(hdc, 1, 9, "プロファイル");
  devices.drText(hdc, 1, 2, "KP", {.Angle = 90});
}

class DrawToFiles : public ::testing::Test {
 protected:
  DrawToFiles() : folder(std::filesystem::temp_directory_path() / ("velmora-graph-" + std::to_string(::getpid()))) {
    std::filesystem::create_directories(folder);
  }
  ~DrawToFiles() override { std::filesystem::remove_all(folder); }
  std::filesystem::path folder;
};

TEST_F(DrawToFiles, MetafileIsSvgWithPathsAndTexts) {
  Picture picture(100, 100);
  picture.Surface.Scale(0, 10, 10, 0);
  DrawDevices devices;
  const auto file = folder / "sample.svg";
  const Hdc hdc = devices.regHDCMetaFile(file, picture.Surface);
  DrawSample(devices, hdc);
  EXPECT_FALSE(std::filesystem::exists(file));  // complete only after release
  devices.releaseHDC(hdc);

  pugi::xml_document svg;
  ASSERT_TRUE(svg.load_file(file.c_str()));
  EXPECT_EQ(svg.select_nodes("//path[not(ancestor::defs)]").size(), 4u);
  const auto texts = svg.select_nodes("//text");
  ASSERT_EQ(texts.size(), 2u);
  EXPECT_STREQ(texts[0].node().child_value(), "プロファイル");
  EXPECT_STREQ(texts[0].node().attribute("x").value(), "10");
  EXPECT_STREQ(texts[1].node().attribute("transform").value(), "rotate(-90 10 80)");
  EXPECT_EQ(svg.select_nodes("//pattern").size(), 1u);
  EXPECT_STREQ(svg.child("svg").attribute("width").value(), "100px");
}

TEST_F(DrawToFiles, PrinterWritesOnePdfPagePerPageChange) {
  PrinterTarget printer;
  printer.OutputFile = folder / "sheet.pdf";
  ASSERT_TRUE(PreparePrinter(printer));
  DrawDevices devices;
  const Hdc hdc = devices.regHDCPrinter(printer);
  printer.Surface.Scale(0, 10, 10, 0);
  DrawSample(devices, hdc);
  devices.pageChange(hdc);
  DrawSample(devices, hdc);
  devices.releaseHDC(hdc);
  const std::string pdf = ReadFileBytes(printer.OutputFile);
  ASSERT_EQ(pdf.substr(0, 5), "%PDF-");
  const std::regex page("/Type /Page\\b[^s]");
  EXPECT_EQ(std::distance(std::sregex_iterator(pdf.begin(), pdf.end(), page), std::sregex_iterator()), 2);
}

TEST_F(DrawToFiles, PictureStaysDrawableAfterReleaseAndSavesAsPng) {
  Picture picture(100, 100);
  picture.Surface.Scale(0, 10, 10, 0);
  DrawDevices devices;
  DrawSample(devices, devices.regHDCPicture(picture));
  devices.releaseHDC(picture.hdc());
  const ColourParts onRedDiagonal = uColourSplit(picture.PixelAt(30, 70));
  EXPECT_GT(onRedDiagonal.Red, 200);
  EXPECT_LT(onRedDiagonal.Green, 120);
  const auto file = folder / "sample.png";
  picture.SavePng(file);
  const std::string png = ReadFileBytes(file);
  ASSERT_GT(png.size(), 8u);
  EXPECT_EQ(png.substr(1, 3), "PNG");
}

TEST_F(DrawToFiles, UnreleasedTargetsWriteNoFile) {
  Picture picture(50, 50);
  const auto file = folder / "never.svg";
  {
    DrawDevices devices;
    DrawSample(devices, devices.regHDCMetaFile(file, picture.Surface));
  }
  EXPECT_FALSE(std::filesystem::exists(file));
}

}  // namespace
}  // namespace velmora::graph
