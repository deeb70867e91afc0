// velmora plot and print: the files each kind and sheet gives, in each format, and what bad input says.
#include <pugixml.hpp>

#include "cli_fixture.h"
#include "graph/print_options.h"

namespace velmora::testing {
namespace {

class PlotCommand : public CliTest {};

// Width and height of a PNG from its IHDR chunk, which starts the file after the 8-byte signature.
std::pair<unsigned, unsigned> PngSize(const std::string& png) {
  const auto word = [&](std::size_t at) {
    unsigned value = 0;
    for (std::size_t k = 0; k < 4; ++k) value = value << 8 | static_cast<unsigned char>(png.at(at + k));
    return value;
  };
  return {word(16), word(20)};
}

TEST_F(PlotCommand, EveryKindWritesItsPicture) {
  const struct {
    const char* kind;
    const char* extra;
    std::vector<std::string> names;
  } cases[] = {
      {"profile", "", {"profile.png"}},
      {"iri", "--bands", {"iri.png"}},
      {"filter", "", {"filter.png"}},
      {"psd", "--smooth 12", {"psd.png"}},
      {"octave", "", {"road_a_kp_octave.png", "road_b_octave.png"}},
      {"reduce", "", {"road_a_kp_reduce.png", "road_b_reduce.png"}},
      {"repair", "", {"road_a_kp_repair.png", "road_b_repair.png"}},
      {"stats", "", {"stats.png"}},
  };
  for (const auto& c : cases) {
    const std::string out = std::string("out-") + c.kind;
    ASSERT_EQ(Run(std::string("--no-timestamp plot ") + c.kind + " " + c.extra + " " + Example("road_a_kp.erd") + " " +
                      Example("road_b.erd") + " --size 600x400",
                  out),
              0)
        << c.kind << ": " << Stderr();
    EXPECT_EQ(Written(out), c.names) << c.kind;
    const std::string png = ReadBytes(temp / out / c.names.front());
    EXPECT_EQ(png.substr(1, 3), "PNG") << c.kind;
    EXPECT_EQ(PngSize(png), std::pair(600u, 400u)) << c.kind;  // as asked
  }
}

TEST_F(PlotCommand, CorrelationChartMarksThePeakTheVerificationReports) {
  ASSERT_EQ(Run("--no-timestamp --json plot xcorr --format svg --max-shift 50 " + Example("road_a_kp.erd") + " " +
                Example("road_c_rough.erd")),
            0)
      << Stderr();
  pugi::xml_document svg;
  ASSERT_TRUE(svg.load_file((temp / "out" / "xcorr.svg").c_str()));
  EXPECT_FALSE(svg.select_node("//text[text()='相互相関 (基準: road_a_kp)']").node().empty());
  // ±50 samples in about 8 steps: 12.5 takes the step 20, so ticks -60, -40, ..., 60 in whole samples.
  EXPECT_FALSE(svg.select_node("//text[text()='-40']").node().empty());
  // The peak label: "value (shift)"; the same run's table gives the value as the tab shows it.
  const auto label = svg.select_node("//text[contains(text(), ' (')][contains(text(), ')')][starts-with(text(), '0.')]");
  ASSERT_FALSE(label.node().empty());
  ASSERT_EQ(Run("--no-timestamp xcorr --measure correlation --filter iri --max-shift 50 " + Example("road_a_kp.erd") + " " +
                Example("road_c_rough.erd"), "tables"),
            0)
      << Stderr();
  const std::string value = std::string(label.node().child_value()).substr(0, 6);  // "0.dddd"
  EXPECT_NE(Stdout().find(value.substr(0, 5)), std::string::npos) << value << "\n" << Stdout();

  // "half" as the verification takes it: ±1,500 of the 3,000 samples, ticks every 500.
  EXPECT_TRUE(svg.select_node("//text[text()='-1000']").node().empty());
  ASSERT_EQ(Run("--no-timestamp plot xcorr --format svg --max-shift half " + Example("road_a_kp.erd") + " " +
                Example("road_c_rough.erd"), "half"),
            0)
      << Stderr();
  ASSERT_TRUE(svg.load_file((temp / "half" / "xcorr.svg").c_str()));
  EXPECT_FALSE(svg.select_node("//text[text()='-1000']").node().empty());
}

TEST_F(PlotCommand, SvgAndPdfOfOneProfileAndTheDpiOfAPng) {
  ASSERT_EQ(Run("--no-timestamp plot profile --format svg " + Example("road_b.erd")), 0) << Stderr();
  pugi::xml_document svg;
  ASSERT_TRUE(svg.load_file((temp / "out" / "road_b_profile.svg").c_str()));
  EXPECT_FALSE(svg.select_node("//text[text()='縦断プロファイル']").node().empty());
  ASSERT_EQ(Run("--no-timestamp plot profile --format pdf " + Example("road_b.erd")), 0) << Stderr();
  EXPECT_EQ(ReadBytes(temp / "out" / "road_b_profile.pdf").substr(0, 5), "%PDF-");
  ASSERT_EQ(Run("--no-timestamp plot profile --size 300x200 --dpi 192 " + Example("road_b.erd"), "hi"), 0) << Stderr();
  EXPECT_EQ(PngSize(ReadBytes(temp / "hi" / "road_b_profile.png")), std::pair(600u, 400u));  // twice 300 x 200
}

// The refusals of plot's flags are among the command lines of cli_test.cpp.
TEST_F(PlotCommand, BadInputIsNamedAndWritesNothing) {
  // Elevations no axis can be divided over: the file is named, nothing is written.
  const std::string huge = WriteErd("huge", {1e300, -1e300, 1e300, -1e300}, 0.1);
  EXPECT_EQ(Run("plot profile " + huge, "out", "en"), 1);
  EXPECT_NE(Stderr().find("huge.erd: the axis range is too large to divide"), std::string::npos) << Stderr();
  EXPECT_TRUE(Written().empty());
  EXPECT_EQ(Run("plot profile '" + (temp / "missing.erd").string() + "'", "out", "en"), 1);
  EXPECT_NE(Stderr().find("missing.erd"), std::string::npos) << Stderr();
  EXPECT_TRUE(Written().empty());
}

class PrintCommand : public CliTest {
 protected:
  // Page objects of a PDF ("/Type /Page", not "/Type /Pages").
  static std::size_t Pages(const std::string& pdf) {
    std::size_t pages = 0;
    for (std::size_t at = pdf.find("/Type /Page"); at != std::string::npos; at = pdf.find("/Type /Page", at + 1))
      pages += pdf.compare(at, 12, "/Type /Pages") == 0 ? 0 : 1;
    return pages;
  }
};

TEST_F(PrintCommand, OctaveSheetHasAPagePerProfileAndTheStatisticsPage) {
  ASSERT_EQ(Run("--no-timestamp print --sheet octave " + Example("road_a_kp.erd") + " " + Example("road_b.erd") +
                " --save-options mine"),
            0)
      << Stderr();
  EXPECT_EQ(Written(), (Texts{"mine.prt", "print_octave.pdf"}));
  EXPECT_EQ(Pages(ReadBytes(temp / "out" / "print_octave.pdf")), 3u);
  EXPECT_EQ(ReadSystemTextLines(temp / "out" / "mine.prt").front(), "PRINTOPTION");
}

TEST_F(PrintCommand, PreviewGivesEachPageAlsoAsAMetafile) {
  ASSERT_EQ(Run("--no-timestamp print --sheet octave --preview " + Example("road_a_kp.erd") + " " + Example("road_b.erd")),
            0)
      << Stderr();
  EXPECT_EQ(Written(), (Texts{"Velmora-01.svg", "Velmora-02.svg", "Velmora-03.svg", "print_octave.pdf"}));
  const struct {
    const char* page;
    const char* text;
  } cases[] = {{"Velmora-01.svg", "road_a_kp.erd"}, {"Velmora-02.svg", "road_b.erd"}, {"Velmora-03.svg", "◆プロファイル分割"}};
  for (const auto& c : cases) {
    pugi::xml_document svg;
    ASSERT_TRUE(svg.load_file((temp / "out" / c.page).c_str())) << c.page;
    EXPECT_FALSE(svg.select_node("//text[text()='プロファイル分割図']").node().empty()) << c.page;
    EXPECT_FALSE(svg.select_node((std::string("//text[text()='") + c.text + "']").c_str()).node().empty()) << c.page;
  }
}

TEST_F(PrintCommand, OptionsWithoutStatisticsLeaveOutTheirPage) {
  Session quiet;
  graph::PrintOptions options = graph::DefaultPrintOptions();
  options.PrintStatistics = false;
  WriteSystemTextFile(temp / "no-stats.prt", graph::PrintOptionLines(options));
  ASSERT_EQ(Run("--no-timestamp print --sheet octave --options '" + (temp / "no-stats.prt").string() + "' " +
                Example("road_b.erd")),
            0)
      << Stderr();
  EXPECT_EQ(Pages(ReadBytes(temp / "out" / "road_b_print_octave.pdf")), 1u);
}

TEST_F(PrintCommand, AFileThatIsNoPrintOptionsIsRefused) {
  const struct {
    const char* name;
    Texts lines;
    std::string message;
  } cases[] = {{"other.prt", {"[VER]", "1.0.0"}, "指定されたファイルはプリントオプションファイルではありません。"},
               {"bad.prt", {"PRINTOPTION", "[グラフスケール]", "low,high"}, "bad.prt:3: item 1 is not a number"}};
  for (const auto& c : cases) {
    WriteSystemTextFile(temp / c.name, c.lines);
    EXPECT_EQ(Run("print --sheet iri --options '" + (temp / c.name).string() + "' " + Example("road_b.erd")), 1) << c.name;
    EXPECT_NE(Stderr().find(c.message), std::string::npos) << Stderr();
    EXPECT_TRUE(Written().empty()) << c.name;
  }
}

// The print step hands the run's PDF to lp when there is one (a stand-in here records what it got),
// and otherwise tells where the PDF is.
TEST_F(PrintCommand, TheQueueGetsThePdfOrTheUserIsToldWhereItIs) {
  const std::filesystem::path bin = temp / "bin";
  std::filesystem::create_directories(bin);
  const std::string path = std::getenv("PATH");
  ::setenv("PATH", bin.c_str(), 1);
  EXPECT_EQ(Run("--no-timestamp print --sheet iri --queue " + Example("road_b.erd"), "out", "en"), 0) << Stderr();
  EXPECT_NE(Stderr().find("lp: no print queue (lp not found): the PDF is written to " + (temp / "out").string()),
            std::string::npos)
      << Stderr();

  WriteBytes(bin / "lp", "#!/bin/sh\nPATH=/usr/bin:/bin\nprintf '%s\\n' \"$@\" > '" + (temp / "lp-args").string() +
                             "'\nfor last; do :; done\ncat \"$last\" > '" + (temp / "lp-copy").string() + "'\n");
  std::filesystem::permissions(bin / "lp", std::filesystem::perms::owner_all);
  EXPECT_EQ(Run("--no-timestamp print --sheet iri --printer plotter " + Example("road_b.erd"), "queued", "en"), 0)
      << Stderr();
  ::setenv("PATH", path.c_str(), 1);
  EXPECT_EQ(ReadBytes(temp / "lp-args").substr(0, 12), "-d\nplotter\n/");
  EXPECT_EQ(ReadBytes(temp / "lp-copy"), ReadBytes(temp / "queued" / "road_b_print_iri.pdf"));
}

}  // namespace
}  // namespace velmora::testing
