// The drawing layer on a 100 x 100 pixel picture whose user scale runs 0..10 in x and 10..0 in y (y
// upwards), so user (x, y) is pixel (10x, 100 - 10y): pixels are read where the drawing must (and
// must not) have put colour. The same routine drawn to SVG and PDF is read back from the files.
#include "graph/draw_devices.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
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

// A pixel read after the drawing and the colour it must have.
struct Probe {
  int X, Y;
  Colour Expected;
};

struct PixelCase {
  const char* Name;
  std::function<void(DrawDevices&, Hdc, DrawSurface&)> Draw;
  std::vector<Probe> Probes;
};
void PrintTo(const PixelCase& c, std::ostream* out) { *out << c.Name; }

class DrawnPixels : public DrawOnPicture, public ::testing::WithParamInterface<PixelCase> {};

TEST_P(DrawnPixels, HaveTheColoursWorkedOutForThem) {
  GetParam().Draw(devices, hdc, picture.Surface);
  for (const Probe& p : GetParam().Probes) EXPECT_EQ(At(p.X, p.Y), p.Expected) << "at " << p.X << "," << p.Y;
}

// A box from user (2, 8) to (8, 2), pixels 20..80, hatched in blue without a pen.
PixelCase Hatched(const char* name, int hatch, std::vector<Probe> probes) {
  return {name, [hatch](DrawDevices& d, Hdc h, DrawSurface&) { d.drBoxHatch(h, 2, 8, 8, 2, {.Style = 5, .Color = kBlue, .Hatch = hatch}); },
          std::move(probes)};
}

std::vector<Probe> WhiteAt(std::vector<std::pair<int, int>> pixels) {
  std::vector<Probe> probes;
  for (const auto& [x, y] : pixels) probes.push_back({x, y, kWhite});
  return probes;
}

const PixelCase kPixelCases[] = {
    PixelCase{"LineRunsBetweenItsEndPixels",  // pixels (5, 50) to (95, 50)
              [](DrawDevices& d, Hdc h, DrawSurface&) { d.drLine(h, 0.5, 5, 9.5, 5, {.Color = kRed}); },
              {{6, 50, kRed}, {50, 50, kRed}, {94, 50, kRed}, {50, 49, kWhite}, {50, 51, kWhite}, {3, 50, kWhite},
               {97, 50, kWhite}}},
    PixelCase{"ClipBoxStopsLinesAtItsEdgesUntilClipOff",
              [](DrawDevices& d, Hdc h, DrawSurface&) {
                d.clipBox(h, 2, 8, 8, 2);  // pixels 20..80
                d.drLine(h, 0, 5, 10, 5, {.Color = kBlue});
                d.clipOff(h);
                d.drLine(h, 0, 3, 10, 3, {.Color = kBlue});
              },
              {{19, 50, kWhite}, {20, 50, kBlue}, {79, 50, kBlue}, {80, 50, kWhite}, {5, 70, kBlue}, {90, 70, kBlue}}},
    PixelCase{"FilledBoxHasItsFillInsideAndThePenOnTheEdge",  // pixels 10..29
              [](DrawDevices& d, Hdc h, DrawSurface&) { d.flBox(h, 1, 9, 3, 7, {.Color = kRed, .Fill = kGreen}); },
              {{20, 20, kGreen}, {10, 20, kRed}, {29, 20, kRed}, {30, 20, kWhite}, {9, 20, kWhite}}},
    PixelCase{"OutlineBoxLeavesItsInsideAlone",
              [](DrawDevices& d, Hdc h, DrawSurface&) { d.drBox(h, 1, 9, 3, 7, {.Color = kRed, .Fill = kGreen}); },
              {{10, 20, kRed}, {20, 20, kWhite}}},
    // The hatches repeat every eight pixels.
    Hatched("HorizontalHatchOnRowsFourModEight", 0, {{50, 52, kBlue}, {50, 53, kWhite}}),
    Hatched("VerticalHatchOnColumnsFourModEight", 1, {{44, 50, kBlue}, {45, 50, kWhite}}),
    Hatched("DownwardHatchWhereXIsYModEight", 2, {{41, 49, kBlue}, {42, 49, kWhite}}),
    Hatched("UpwardHatchWhereXPlusYIsSevenModEight", 3, {{41, 46, kBlue}, {41, 49, kWhite}}),
    Hatched("CrossHatchBothStraightOnes", 4, {{44, 53, kBlue}, {50, 52, kBlue}, {45, 53, kWhite}}),
    Hatched("DiagonalCrossHatchBothSlantedOnes", 5, {{41, 49, kBlue}, {41, 46, kBlue}, {42, 49, kWhite}}),
    Hatched("AHatchOutsideItsRangeIsNotTaken", 6,
            WhiteAt({{50, 30}, {50, 31}, {50, 32}, {50, 33}, {50, 34}, {50, 35}, {50, 36}, {50, 37}})),
    PixelCase{"LineStyleOutOfRangeFallsBackToTheSurfacesNoPen",
              [](DrawDevices& d, Hdc h, DrawSurface& s) {
                s.DrawStyle = 5;
                d.drLine(h, 0, 5, 10, 5, {.Style = 7, .Color = kRed});
              },
              {{50, 50, kWhite}}},
    PixelCase{"AStyleInRangeOverridesTheSurfaces",
              [](DrawDevices& d, Hdc h, DrawSurface& s) {
                s.DrawStyle = 5;
                d.drLine(h, 0, 5, 10, 5, {.Style = 0, .Color = kRed});
              },
              {{50, 50, kRed}}},
    PixelCase{"DashedStyleLeavesGaps",  // 18 on, 6 off from x = 0.5
              [](DrawDevices& d, Hdc h, DrawSurface&) { d.drLine(h, 0, 5, 10, 5, {.Style = 1, .Color = kRed}); },
              {{10, 50, kRed}, {21, 50, kWhite}, {30, 50, kRed}}},
    PixelCase{"MissingArgumentsTakeTheSurfaceDefaults",
              [](DrawDevices& d, Hdc h, DrawSurface& s) {
                s.ForeColor = kGreen;
                s.DrawWidth = 3;
                d.drLine(h, 0, 5, 10, 5);
              },
              {{50, 49, kGreen}, {50, 51, kGreen}, {50, 53, kWhite}}},
    PixelCase{"ManyRectanglesInOneCall",
              [](DrawDevices& d, Hdc h, DrawSurface&) {
                const double x1[] = {1, 5}, y1[] = {9, 9}, x2[] = {2, 6}, y2[] = {8, 8};
                d.flBoxes2(h, x1, y1, x2, y2, {.Style = 5, .Fill = kRed});
              },
              {{15, 15, kRed}, {55, 15, kRed}, {35, 15, kWhite}}},
    PixelCase{"UnknownCodesHandlesAndEmptyCallsDrawNothing",
              [](DrawDevices& d, Hdc h, DrawSurface&) {
                const double xs[] = {0, 10};
                const double ys[] = {5, 5};
                d.drawAPIcmn(13, h, xs, ys, {.Color = kRed});
                d.drawAPIcmn(primitive::Line, h + 1000, xs, ys, {.Color = kRed});
                d.drawAPIcmn(primitive::Line, h, {}, {}, {.Color = kRed});
                d.drawAPIcmn(primitive::Rectangle, h, std::span(xs, 1), std::span(ys, 1), {.Color = kRed});
              },
              WhiteAt({{0, 50}, {7, 50}, {14, 50}, {21, 50}, {28, 50}, {35, 50}, {42, 50}, {49, 50}, {56, 50},
                       {63, 50}, {70, 50}, {77, 50}, {84, 50}, {91, 50}, {98, 50}})}};

INSTANTIATE_TEST_SUITE_P(Cases, DrawnPixels, ::testing::ValuesIn(kPixelCases),
                         [](const auto& info) { return std::string(info.param.Name); });

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
  testing::TempDir folder;
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
