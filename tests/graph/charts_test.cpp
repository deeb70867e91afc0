// Charts and print sheets on made-up profile records: the envelope of a long wave, the panel's mapping
// and clipping on a picture, and the texts and paths of charts and sheets read back from SVG.
#include "graph/charts.h"

#include <gtest/gtest.h>

#include <cmath>
#include <pugixml.hpp>
#include <set>

#include "graph/chart_data.h"
#include "graph/print_sheets.h"
#include "graph/wave_envelope.h"
#include "support/test_support.h"

namespace velmora::graph {
namespace {

// A 100 m road at 0.1 m: 1001 samples of a 20 m sine of 10 mm, band b a sine of 1/b mm with σ set to
// 0.5 + b/100 mm and range 2/b mm, limits of 1.5 mm, IRI windows of 10 m rising 1..2 mm/m.
ProfileRecord MadeUpProfile(const std::string& name, std::int32_t samples = 1001) {
  ProfileRecord p;
  p.FileName = name + ".erd";
  p.SamplesPerMetre = 10;
  p.WorkCount = samples;
  p.WorkProfile = Array1<double>(static_cast<std::size_t>(samples));
  for (std::int32_t i = 1; i <= samples; ++i) p.WorkProfile[i] = 10 * std::sin(2 * M_PI * (i - 1) * 0.1 / 20);
  AnalysisBlock& a = p.Analysis;
  a.Count = samples;
  for (std::size_t b = 1; b <= 9; ++b) {
    OctaveBand& band = a.Octave.Band[b];
    band.Values = Array1<double>(static_cast<std::size_t>(samples));
    for (std::int32_t i = 1; i <= samples; ++i) band.Values[i] = std::sin(i * 0.3 * static_cast<double>(b)) / static_cast<double>(b);
    band.Stats.StdDev = 0.5 + static_cast<double>(b) / 100;
    band.Stats.Minimum = -1.0 / static_cast<double>(b);
    band.Stats.Maximum = 1.0 / static_cast<double>(b);
    a.BandReduction.Limits[b] = 1.5;
  }
  a.BandReduction.Calculated = true;
  a.Iri.IriResponseCount = samples - 2;
  a.Iri.IriWindowCount = samples - 101;
  a.Iri.IriWindowWave.Values = Array1<double>(static_cast<std::size_t>(a.Iri.IriWindowCount));
  for (std::int32_t k = 1; k <= a.Iri.IriWindowCount; ++k) a.Iri.IriWindowWave.Values[k] = 1 + k / double(a.Iri.IriWindowCount);
  a.Iri.IriWholeProfile = 1.5;
  a.Sections.KpStart = 0;
  a.Sections.KpStep = 0.1;
  return p;
}

TEST(ColumnEnvelope, LowestAndHighestOfEachColumnJoinedFromTheNearerEnd) {
  const double y[] = {0, 5, -1, 2, 3, 3, 8, -4, 1, 1};
  // Columns [0, 4) and [4, 8]; x = 9 lies beyond the range.
  const PolylinePoints points = ColumnEnvelope(0, 1, y, 0, 8, 2);
  EXPECT_EQ(points.X, (std::vector<double>{2, 2, 6, 6}));
  EXPECT_EQ(points.Y, (std::vector<double>{-1, 5, 8, -4}));  // 5 is nearer 8 than -4
}

TEST(ColumnEnvelope, SkipsValuesThatAreNotNumbersAndEmptyColumns) {
  const double y[] = {NAN, 2, 7, 7, 7, 7, 3, INFINITY};
  const PolylinePoints points = ColumnEnvelope(0, 1, y, 0, 8, 4);  // columns of 2
  EXPECT_EQ(points.X, (std::vector<double>{1, 1, 3, 3, 5, 5, 7, 7}));
  EXPECT_EQ(points.Y, (std::vector<double>{2, 2, 7, 7, 7, 7, 3, 3}));
}

TEST(ChartData, WindowsStandAtTheirEnds) {
  const ProfileRecord p = MadeUpProfile("a");
  EXPECT_DOUBLE_EQ(PitchOf(p), 0.1);
  EXPECT_DOUBLE_EQ(ProfileLength(p), 100);
  // 1001 samples, 900 windows: the first ends at sample 102, 10.1 m from the start.
  EXPECT_NEAR(FirstIriWindowAt(p), 10.1, 1e-12);
  EXPECT_EQ(Samples(p.WorkProfile, 5).size(), 5u);
  EXPECT_EQ(Samples(p.WorkProfile, 5000).size(), 1001u);
}

TEST(ChartPanel, MapsTheAxisEndsToTheFrameAndClipsToIt) {
  Picture picture(400, 300);
  DrawDevices devices;
  const Hdc hdc = devices.regHDCPicture(picture);
  ChartPanel panel(devices, hdc, picture.Surface, {0, 0, 400, 300}, {0, 10, false, "", 5}, {-1, 1, false, "", 4});
  const Rect frame = panel.Frame();
  EXPECT_DOUBLE_EQ(panel.X(0), frame.Left);
  EXPECT_DOUBLE_EQ(panel.X(10), frame.Right);
  EXPECT_DOUBLE_EQ(panel.Y(-1), frame.Bottom);
  EXPECT_DOUBLE_EQ(panel.Y(1), frame.Top);
  // A line from far below to far above the frame across its middle: red only inside the frame.
  const double xs[] = {5, 5.0001};
  const double ys[] = {-100, 100};
  panel.Line(xs, ys, {.Width = 3, .Color = 0x0000FF});
  const int column = static_cast<int>(panel.X(5));
  int inside = 0;
  for (int y = 0; y < 300; ++y) {
    const bool red = picture.PixelAt(column, y) == 0x0000FF;
    if (y < frame.Top - 1 || y > frame.Bottom + 1) {
      EXPECT_FALSE(red) << y;
    }
    inside += red ? 1 : 0;
  }
  EXPECT_GT(inside, frame.Height() - 3);
}

class ChartsToSvg : public ::testing::Test {
 protected:
  // Draws onto an SVG metafile of the surface and returns the document.
  pugi::xml_document Svg(const DrawSurface& surface, const std::function<void(DrawDevices&, Hdc)>& draw) {
    DrawDevices devices;
    const auto file = dir.path() / "chart.svg";
    const Hdc hdc = devices.regHDCMetaFile(file, surface);
    draw(devices, hdc);
    devices.releaseHDC(hdc);
    pugi::xml_document doc;
    EXPECT_TRUE(doc.load_file(file.c_str()));
    return doc;
  }
  static std::multiset<std::string> Texts(const pugi::xml_document& doc) {
    std::multiset<std::string> texts;
    for (const auto& node : doc.select_nodes("//text")) texts.insert(node.node().child_value());
    return texts;
  }
  testing::TempDir dir;
};

TEST_F(ChartsToSvg, ProfileChartOfAMillionSamplesIsDrawnFromItsEnvelope) {
  Picture picture(800, 400);
  const ProfileRecord p = MadeUpProfile("long", 1'000'000);
  const ProfileRecord* profiles[] = {&p};
  const auto doc = Svg(picture.Surface, [&](DrawDevices& devices, Hdc hdc) {
    const ChartCanvas canvas{.Devices = devices, .Target = hdc, .Surface = picture.Surface, .Area = {0, 0, 800, 400}, .Font = FontSpec(),
                             .Palette = {0x0000FF}};
    DrawProfileChart(canvas, profiles);
  });
  const auto texts = Texts(doc);
  EXPECT_EQ(texts.count("縦断プロファイル"), 1u);
  EXPECT_EQ(texts.count("long"), 1u);  // the legend
  EXPECT_EQ(texts.count("距離 (m)"), 1u);
  // The wave is one path in the profile's colour with at most two points per pixel column.
  const auto waves = doc.select_nodes("//path[@stroke='#ff0000']");
  ASSERT_GE(waves.size(), 1u);
  std::size_t points = 0;
  for (const auto& wave : waves) {
    const std::string d = wave.node().attribute("d").value();
    points += static_cast<std::size_t>(std::count(d.begin(), d.end(), 'L')) + 1;
  }
  EXPECT_LE(points, 2u * 800u);
  EXPECT_GT(points, 800u);
}

TEST_F(ChartsToSvg, OctaveChartLabelsEveryBandWithItsWavelengths) {
  Picture picture(900, 1400);
  const ProfileRecord p = MadeUpProfile("a");
  std::array<Colour, 10> bands{};
  const auto doc = Svg(picture.Surface, [&](DrawDevices& devices, Hdc hdc) {
    const ChartCanvas canvas{.Devices = devices, .Target = hdc, .Surface = picture.Surface, .Area = {0, 0, 900, 1400}, .Font = FontSpec(),
                             .Bands = bands};
    DrawOctaveChart(canvas, p);
  });
  const auto texts = Texts(doc);
  EXPECT_EQ(texts.count("１ ＯＣＴ (波長51.2～102.4m)"), 1u);
  EXPECT_EQ(texts.count("５ ＯＣＴ (波長3.2～6.4m)"), 1u);
  EXPECT_EQ(texts.count("９ ＯＣＴ (波長0.2～0.4m)"), 1u);
  EXPECT_EQ(texts.count("距離 (m)"), 1u);  // under the last panel only
}

TEST_F(ChartsToSvg, StatisticsChartStepsEachProfilesSectionValues) {
  // Two profiles, two statistics each, three 100 m sections; the blank cell leaves a gap.
  StatisticsPage page;
  page.Caption = "100m(Prof)";
  page.Head = {{"プロファイル", "a", "a", "b", "b"},
               {"帯域", "全波長", "全波長", "全波長", "全波長"},
               {"統計値", "標準偏差 σ", "最大最小差", "標準偏差 σ", "最大最小差"}};
  page.RowLabels = {"0.000", "0.100", "0.200"};
  page.KpColumn = {false, false, false, false};
  page.Body = {1, 4, 2, 8, 1.5, 5, NAN, NAN, 3, 9, 2.5, 7};
  Picture picture(900, 600);
  const auto doc = Svg(picture.Surface, [&](DrawDevices& devices, Hdc hdc) {
    const ChartCanvas canvas{.Devices = devices, .Target = hdc, .Surface = picture.Surface, .Area = {0, 0, 900, 600},
                             .Font = FontSpec(), .Palette = {0x0000FF, 0xFF0000}};
    DrawStatisticsChart(canvas, page);
  });
  const auto texts = Texts(doc);
  EXPECT_EQ(texts.count("100m(Prof)  標準偏差 σ"), 1u);
  EXPECT_EQ(texts.count("100m(Prof)  最大最小差"), 1u);
  EXPECT_EQ(texts.count("a  全波長"), 2u);  // one legend per panel
  EXPECT_EQ(texts.count("KP (km)"), 1u);
  // Profile b (blue, 0xFF0000): in each panel the sections 0.0-0.1 and 0.2-0.3 km are drawn apart around
  // the blank one, plus the legend's swatch: 3 paths per panel.
  EXPECT_EQ(doc.select_nodes("//path[@stroke='#0000ff']").size(), 6u);
  // Profile a (red) has all three sections: each step its own run, 3 + swatch per panel.
  EXPECT_EQ(doc.select_nodes("//path[@stroke='#ff0000']").size(), 8u);
}

TEST_F(ChartsToSvg, OctaveSheetCarriesItsWordsLimitsAndTitle) {
  PrinterTarget printer;
  ASSERT_TRUE(PreparePrinter(printer));
  const ProfileRecord p = MadeUpProfile("a");
  const PrintOptions options = DefaultPrintOptions();
  const auto doc = Svg(printer.Surface, [&](DrawDevices& devices, Hdc hdc) {
    Print_印刷パターン_v01({devices, hdc, printer.Surface}, p, {options, true}, {});
  });
  const auto texts = Texts(doc);
  for (const char* word : {"プロファイル分割図", "現地", "条件", "補修前路面図", "施工関連", "Profile"})
    EXPECT_EQ(texts.count(word), 1u) << word;
  EXPECT_EQ(texts.count("10m IRI   (IRI 1.50 mm/m)"), 1u);
  EXPECT_EQ(texts.count("２ ＯＣＴ (波長25.6～51.2m)   低減ライン ±1.50 mm"), 1u);
  EXPECT_EQ(texts.count("９ ＯＣＴ (波長0.2～0.4m)   低減ライン ±1.50 mm"), 1u);
  for (const auto& node : doc.select_nodes("//text"))
    EXPECT_STREQ(node.node().attribute("font-family").value(), "Noto Sans CJK JP");
}

TEST_F(ChartsToSvg, IriSheetAndDecompositionSheet) {
  PrinterTarget printer;
  printer.Orientation = kLandscape;
  ASSERT_TRUE(PreparePrinter(printer));
  const ProfileRecord a = MadeUpProfile("a");
  const ProfileRecord* profiles[] = {&a};
  const PrintOptions options = DefaultPrintOptions();
  const Colour colours[] = {0x0000FF};
  auto texts = Texts(Svg(printer.Surface, [&](DrawDevices& devices, Hdc hdc) {
    Print_印刷パターン_v02({devices, hdc, printer.Surface}, profiles, {options, false}, colours);
  }));
  for (const char* word : {"IRI図", "IRI", "KP", "測定日：H99.99.99", "a  IRI 1.50"})
    EXPECT_EQ(texts.count(word), 1u) << word;
  EXPECT_EQ(texts.count("0.10"), 1u);  // KP ticks in "0.00"
  EXPECT_EQ(texts.count("1.0"), 1u);   // IRI ticks in "0.0"

  texts = Texts(Svg(printer.Surface, [&](DrawDevices& devices, Hdc hdc) {
    Print_プロファイル分解({devices, hdc, printer.Surface}, profiles, 80);
  }));
  for (const char* word : {"◆プロファイル分割", "OctaveBand 統計値", "Prof", "区間", "σ", "Δ", "(Hz)", "(m)"})
    EXPECT_EQ(texts.count(word), 1u) << word;
  // Band 1: centre sqrt(51.2 * 102.4) = 72.41 m; at 80 km/h = 22.22 m/s that is 0.307 Hz.
  EXPECT_EQ(texts.count("72.4"), 1u);
  EXPECT_EQ(texts.count("0.31"), 1u);
  EXPECT_EQ(texts.count("0.51"), 1u);  // σ of band 1
  EXPECT_EQ(texts.count("0.67"), 1u);  // Δ of band 3: 2/3 mm
  EXPECT_EQ(texts.count("0.000 - 0.100"), 9u);
}

}  // namespace
}  // namespace velmora::graph
