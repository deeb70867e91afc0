// The .prt file: a file typed by hand from the file's description (tests/data/print, CP932 with CR LF)
// is read into the values it states and written back byte for byte; refusals leave the values alone.
#include "graph/print_options.h"

#include <gtest/gtest.h>

#include "base/legacy_error.h"
#include "base/text_encoding.h"
#include "support/checks.h"
#include "support/test_support.h"

namespace velmora::graph {
namespace {

using testing::Shown;

class PrintOptionFile : public testing::SessionTest {
 protected:
  std::filesystem::path Fixture() const { return testing::SourceDir() / "tests/data/print/written_by_hand.prt"; }
  std::filesystem::path Write(const std::vector<std::string>& lines) {
    const auto path = dir_ / "options.prt";
    WriteSystemTextFile(path, lines);
    return path;
  }
};

TEST_F(PrintOptionFile, HandWrittenFileGivesItsValues) {
  PrintOptions options = DefaultPrintOptions();
  ASSERT_TRUE(ReadPrintoption(session, Fixture(), options));
  EXPECT_EQ(options.Version, "1.0.0");
  EXPECT_EQ(options.ProfileMin, -30);
  EXPECT_EQ(options.ProfileMax, 30);
  EXPECT_EQ(options.IriMin, 0);
  EXPECT_EQ(options.IriMax, 12.5);
  const std::array<double, 10> octave{0, 50, 40, 25, 12, 6, 3.5, 2, 1, 0.5};
  EXPECT_EQ(options.OctaveMax, octave);
  EXPECT_EQ(options.HeaderItems, (std::vector<std::string>{"路線名", "測定日"}));
  EXPECT_EQ(options.LimitLineColour, 0xFF00FFu);
  EXPECT_EQ(options.LimitGraphColour, 0x00FF00u);
  EXPECT_EQ(options.OctaveBackground[1], 0xFFFFFFu);
  EXPECT_EQ(options.OctaveBackground[2], 0xF0F0FFu);
  EXPECT_EQ(options.OctaveBackground[3], 0xF0F8FFu);
  EXPECT_FALSE(options.PrintStatistics);
  EXPECT_TRUE(ui_.Messages().empty());
}

TEST_F(PrintOptionFile, WritingWhatWasReadGivesTheSameBytes) {
  PrintOptions options;
  ASSERT_TRUE(ReadPrintoption(session, Fixture(), options));
  const auto copy = dir_ / "copy.prt";
  WritePrintoption(session, copy, options);
  EXPECT_EQ(testing::ReadBytes(copy), testing::ReadBytes(Fixture()));
  testing::ExpectMessages(ui_, {Shown{"プリンター設定ファイルを保存しました。"}});
}

TEST_F(PrintOptionFile, RoundTripKeepsEveryValue) {
  PrintOptions written = DefaultPrintOptions();
  written.ProfileMin = -12.25;
  written.IriMax = 7.75;
  written.OctaveMax[9] = 0.125;
  written.HeaderItems = {"路線名", "上り 第1車線", ""};
  written.LimitLineColour = 0x123456;
  ClearOctaveBackgrounds(written);
  written.PrintStatistics = false;
  const auto path = dir_ / "round.prt";
  WritePrintoption(session, path, written);
  PrintOptions read;
  ASSERT_TRUE(ReadPrintoption(session, path, read));
  // An empty header item has no line of its own to come back from; the rest must.
  written.HeaderItems.pop_back();
  EXPECT_EQ(read, written);
  for (std::size_t band = 1; band <= 9; ++band) EXPECT_EQ(read.OctaveBackground[band], 0xFFFFFFu);
}

TEST_F(PrintOptionFile, FileWithoutTheMarkIsRefusedAndValuesStay) {
  const PrintOptions before = DefaultPrintOptions();
  PrintOptions options = before;
  std::vector<std::string> lines = PrintOptionLines(before);
  lines.front() = "PRINT OPTION";
  EXPECT_FALSE(ReadPrintoption(session, Write(lines), options));
  EXPECT_EQ(options, before);
  testing::ExpectMessages(ui_, {Shown{"指定されたファイルはプリントオプションファイルではありません。"}});
}

TEST_F(PrintOptionFile, CommentLinesAnywhereAreSkipped) {
  PrintOptions expected = DefaultPrintOptions();
  expected.IriMax = 9;
  std::vector<std::string> lines = PrintOptionLines(expected);
  // Before the first scale line, between header items, and at the very end.
  const auto at = [&](const std::string& text) { return std::find(lines.begin(), lines.end(), text); };
  lines.insert(at("*   プロファイル図 (縦軸最小値,　最大値)") + 1, "; a note between comment and data");
  lines.insert(at("測定日"), "* not a header item");
  lines.push_back(";");
  PrintOptions read;
  ASSERT_TRUE(ReadPrintoption(session, Write(lines), read));
  EXPECT_EQ(read, expected);
}

TEST_F(PrintOptionFile, BadDataLinesNameTheFileAndLine) {
  const struct {
    const char* replaced;
    const char* by;
    const char* where;
  } cases[] = {
      {"-20,20", "-20", ":8: item 2 is not a number"},
      {"0,10", "0,ten", ":10: item 2 is not a number"},
      {"1", "2", ":47: the statistics flag is 0 or 1"},  // 3 head, 17 scale, 7 header, 15 colour, 5 layout lines
  };
  for (const auto& c : cases) {
    const PrintOptions before = DefaultPrintOptions();
    std::vector<std::string> lines = PrintOptionLines(before);
    auto it = std::find(lines.begin(), lines.end(), c.replaced);
    if (std::string(c.replaced) == "1") it = lines.end() - 1;
    ASSERT_NE(it, lines.end()) << c.replaced;
    *it = c.by;
    PrintOptions options = before;
    const auto path = Write(lines);
    try {
      ReadPrintoption(session, path, options);
      ADD_FAILURE() << "accepted " << c.by;
    } catch (const LegacyError& error) {
      EXPECT_EQ(std::string(error.what()), path.string() + c.where);
    }
    EXPECT_EQ(options, before);
  }
}

}  // namespace
}  // namespace velmora::graph
