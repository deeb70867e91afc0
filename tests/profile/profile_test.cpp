// ERD files: what the reader makes of each file it may be handed (the edge-case fixtures in
// tests/data/erd, made by tools/make_erd_fixtures.py, broken bytes written here, the bundled examples
// and the measured profiles beside the repository), the statistics a read fills in, and the writer and
// title updater against hand-written expected bytes.
#include "profile/erd_file.h"

#include <gtest/gtest.h>

#include <fmt/format.h>
#include <map>
#include <signal.h>
#include <sys/resource.h>
#include <variant>

#include "base/settings_io.h"
#include "base/text_encoding.h"
#include "profile/profile_edit.h"
#include "profile/profile_list.h"
#include "profile/profile_reader.h"
#include "profile/profile_statistics.h"
#include "profile/profile_tab.h"
#include "profile/profile_tools.h"
#include "profile/text_import.h"
#include "support/checks.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

using Value = std::variant<std::string, double, std::vector<double>>;
using Expect = std::pair<std::string, Value>;

// The fields a row may name; numbers come as doubles and compare within a few ulps.
std::map<std::string, Value> Fields(const ProfileRecord& p) {
  const ErdRecord& e = p.Erd;
  return {{"Title", e.Title}, {"Samples", e.Elevation.vector()}, {"NumSamples", double(e.NumSamples)},
          {"NumSamplesHeader", double(e.NumSamplesHeader)}, {"NumChannels", double(e.NumChannels)},
          {"FormatCode", double(e.FormatCode)}, {"StepSize", e.StepSize},
          {"First", e.Elevation.empty() ? kNoValue : e.Elevation[1]}, {"DistanceUnit", e.DistanceUnit},
          {"Metric", std::string(e.IsMetric ? "yes" : "no")}, {"SlopeUnitScale", e.SlopeUnitScale},
          {"SlopeUnitName", e.SlopeUnitName}, {"KpText", e.KpText}, {"KpStart", e.KpStart}, {"KpSign", double(e.KpSign)},
          {"Lane", double(e.Lane)}, {"KpDisplay", e.KpDisplay}, {"RepairRangeText", e.RepairRangeText},
          {"RepairRangeStart", e.RepairRangeStart}, {"RepairRangeEnd", e.RepairRangeEnd},
          {"RepairRangeOn", double(e.RepairRangeOn)}, {"ShortName1", e.ShortName[1]}, {"ShortName2", e.ShortName[2]},
          {"UnitsName1", e.UnitsName[1]}, {"UnitsName2", e.UnitsName[2]}, {"YLabel", e.YLabel}, {"XLabel", e.XLabel},
          {"WorkCount", double(p.WorkCount)}, {"Count", double(p.Statistics.Count)}, {"Mean", p.Statistics.Mean},
          {"Spread", p.Statistics.Spread}};
}

enum class Outcome {
  Reads,    // true, no message
  Refused,  // false and one message box: the row's text, then the file's name
  BadData,  // a type mismatch naming the file and the row's text (the line), no message
  Raises,   // an error naming the file, no message
  Warned,   // true, with one warning: the row's text, then the file's name
};

struct ReadCase {
  std::string name;  // what the row proves
  std::string file;  // under tests/data/erd; "examples/", "shared/" or "temp/" (then written from `bytes`)
  Outcome outcome;
  std::string text;
  std::vector<Expect> fields;  // what the record holds afterwards
  std::optional<std::string> bytes = std::nullopt;
};

// The head of a well-formed file of three samples at 0.1 m, seven lines up to END.
const std::string kHead =
    "ERDFILEV2.00\r\n      1,      3,      3,      1,      5, 0.100000    ,     -1,\r\n"
    "TITLE   t\r\nSHORTNAMLElev.\r\nUNITSNAMmm\r\nXUNITS  m\r\nEND\r\n";

std::string WithReplaced(std::string text, const std::string& from, const std::string& to) {
  return text.replace(text.find(from), from.size(), to);
}

// A bundled example: its count (in the header and the data alike), pitch and KP as shown.
ReadCase Example(const std::string& name, const std::string& file, double count, double pitch, const char* kp) {
  return {name, "examples/" + file, Outcome::Reads, "",
          {{"NumSamples", count}, {"NumSamplesHeader", count}, {"WorkCount", count}, {"StepSize", pitch},
           {"KpDisplay", kp}}};
}

// A single-channel copy of a measured profile, in mm and without KP.
ReadCase Measured(const std::string& name, const std::string& file, double count, double pitch, double first,
                  const char* shortName) {
  return {name, "shared/" + file, Outcome::Reads, "",
          {{"NumChannels", 1.}, {"NumSamples", count}, {"NumSamplesHeader", count}, {"StepSize", pitch},
           {"First", first}, {"ShortName1", shortName}, {"Metric", "yes"}, {"KpStart", kNoValue}}};
}

const std::vector<ReadCase> kCases = {
    {"HeaderWithoutEndStopsAfterHundredLinesTheHundredthStillAKey", "header_without_end.erd", Outcome::Reads, "",
     {{"Title", "hundredth"}, {"Samples", std::vector<double>{7.5, 8.5}}, {"NumSamples", 2.}}},
    {"BlankLinesAmongSamplesAreSkippedAndNotCounted", "blank_line_in_data.erd", Outcome::Reads, "",
     {{"Samples", std::vector<double>{1, 2}}, {"NumSamples", 2.}, {"NumSamplesHeader", 3.}}},
    {"FeetScaleThePitchButNotTheHeights", "feet_units.erd", Outcome::Reads, "",
     {{"StepSize", 0.5 * 0.3048}, {"Samples", std::vector<double>{10, -2.5}}, {"DistanceUnit", "ft"},
      {"Metric", "no"}, {"SlopeUnitScale", 63360.}, {"SlopeUnitName", " in/mi"}}},
    {"CentimetreHeightsBecomeMillimetres", "cm_heights.erd", Outcome::Reads, "",
     {{"Samples", std::vector<double>{15, -2.5, 0}}, {"Metric", "yes"}, {"SlopeUnitScale", 1000.},
      {"SlopeUnitName", " m/km"}}},
    {"MetreHeightsBecomeMillimetres", "m_heights.erd", Outcome::Reads, "",
     {{"Samples", std::vector<double>{1.5, -2, 1000}}, {"NumSamples", 3.}}},
    // Only the check box sets RepairRangeOn; the file's range leaves it 0.
    {"ShiftJisTitleCarriesKpSignLaneAndRepairRange", "sjis_title_with_kp.erd", Outcome::Reads, "",
     {{"Title", "国道１２号　上り"}, {"KpText", "123.45000+-"}, {"KpStart", 123.45}, {"KpSign", 0.}, {"Lane", -1.},
      {"KpDisplay", "123.45000+-"}, {"RepairRangeText", "123.50000,124.00000"}, {"RepairRangeStart", 123.5},
      {"RepairRangeEnd", 124.}, {"RepairRangeOn", 0.}, {"ShortName1", "LElev."}, {"YLabel", "Elevation"},
      {"XLabel", "Distance"}}},
    // The lone "-" is neither the sign nor the lane.
    {"KpFieldShorterThanItsFlagsGivesKpZeroAndNoFlags", "title_short_kp.erd", Outcome::Reads, "",
     {{"Title", "route"}, {"KpText", "-"}, {"KpStart", 0.}, {"KpSign", 0.}, {"Lane", 0.}}},
    {"KpOfExactlyNoValueIsNoKp", "kp_no_value.erd", Outcome::Reads, "",
     {{"Title", "road"}, {"KpStart", kNoValue}, {"KpDisplay", ""}, {"RepairRangeStart", 1.}}},
    {"HeaderCountMayDifferFromTheLinesPresent", "header_count_differs.erd", Outcome::Reads, "",
     {{"NumSamplesHeader", 10.}, {"NumSamples", 3.}, {"WorkCount", 3.}}},
    // Samples 1, 2, 3: mean 2, spread 3 - 1.
    {"LineTwoIsSplitAtCommasWhateverTheWidthsAndStatisticsAreFilled", "line2_free_widths.erd", Outcome::Reads, "",
     {{"NumChannels", 1.}, {"NumSamplesHeader", 3.}, {"FormatCode", 5.}, {"StepSize", 0.25},
      {"Samples", std::vector<double>{1, 2, 3}}, {"Count", 3.}, {"Mean", 2.}, {"Spread", 2.}}},
    {"ShortKeysWithLessPaddingAreRecognised", "short_key_padding.erd", Outcome::Reads, "",
     {{"Title", "Short pad"}, {"YLabel", "Height"}, {"XLabel", "Dist"}, {"DistanceUnit", "m"},
      {"Samples", std::vector<double>{4, 5, 6}}}},
    // The padded "cm      " still counts as centimetres.
    {"TwoChannelHeaderFillsEightColumnSlices", "two_channel_header.erd", Outcome::Reads, "",
     {{"NumChannels", 2.}, {"ShortName1", "LElev.  "}, {"ShortName2", "RElev."}, {"UnitsName1", "cm      "},
      {"UnitsName2", "cm"}, {"Samples", std::vector<double>{10, 20}}}},
    {"HugeDeclaredCountReadsOnlyWhatIsThere", "temp/huge.erd", Outcome::Reads, "",
     {{"NumSamplesHeader", 1e9}, {"NumSamples", 3.}, {"Samples", std::vector<double>{1, 2, 3}}},
     WithReplaced(kHead, "      3,      3,", "1000000000,1000000000,") + "1\r\n2\r\n3\r\n"},

    {"WrongSignatureIsNotAnErdFile", "not_erd.erd", Outcome::Refused, "指定されたファイルは ERD フォマットではありません。", {}},
    {"EmptyFileIsNotAnErdFile", "temp/empty.erd", Outcome::Refused, "指定されたファイルは ERD フォマットではありません。",
     {}, ""},
    {"FormatCodeOtherThanFiveIsRefused", "format_code_4.erd", Outcome::Refused, "Data not stored in correct format.",
     {}},
    {"ThreeChannelsAreRefused", "three_channels.erd", Outcome::Refused, "File must have 1 or 2 channels.", {}},
    {"ZeroStepIsRefused", "zero_step.erd", Outcome::Refused, "Illegal step size.", {}},

    // Eleven lines up to END in the fixtures, seven in kHead.
    {"WordOnADataLine", "data_line_not_number.erd", Outcome::BadData, "14 行目", {}},
    {"TwoNumbersOnADataLine", "two_numbers_on_line.erd", Outcome::BadData, "12 行目", {}},
    {"NanIsNotANumber", "temp/nan.erd", Outcome::BadData, "9 行目", {}, kHead + "1.0\r\nnan\r\n"},
    {"InfIsNotANumber", "temp/inf.erd", Outcome::BadData, "9 行目", {}, kHead + "1.0\r\ninf\r\n"},
    {"MinusInfinityIsNotANumber", "temp/minf.erd", Outcome::BadData, "9 行目", {}, kHead + "1.0\r\n-Infinity\r\n"},
    {"OverflowIsNotANumber", "temp/big.erd", Outcome::BadData, "9 行目", {}, kHead + "1.0\r\n1e999\r\n"},

    {"MissingFile", "/nonexistent/nowhere.erd", Outcome::Raises, "", {}},
    {"FolderInPlaceOfTheFile", "temp/", Outcome::Raises, "", {}},
    // Header bytes that are not Shift-JIS cost only those characters, with one warning for the file.
    {"LeadByteWithoutTrailByteInTheTitle", "temp/sjis.erd", Outcome::Warned,
     "3 行目の Shift-JIS として読めないバイトを \uFFFD に置き換えました。",
     {{"Title", "\uFFFD"}, {"ShortName1", "LElev\uFFFD"}, {"Samples", std::vector<double>{1}}},
     WithReplaced(WithReplaced(kHead, "TITLE   t", "TITLE   \x81\x20"), "LElev.", "LElev\xFF") + "1\r\n"},
    {"ByteOrderMarkIsNotAnErdFile", "temp/bom.erd", Outcome::Refused, "指定されたファイルは ERD フォマットではありません。",
     {}, "\xEF\xBB\xBF" + kHead + "1\r\n"},
    {"BinaryBytesAreNotAnErdFile", "temp/binary.erd", Outcome::Refused,
     "指定されたファイルは ERD フォマットではありません。", {}, std::string("\x00\x01\xFF\xFE\x80\x81", 6)},
    {"NoLineEndInTheFirst64KbIsNotAnErdFile", "temp/wide.erd", Outcome::Refused,
     "指定されたファイルは ERD フォマットではありません。", {}, "ERDFILEV2.00" + std::string(65536, ' ') + "\r\n"},
    {"DeclaredCountBeyond32BitsOverflowsNamingTheFile", "temp/count.erd", Outcome::Raises, "2 行目", {},
     WithReplaced(kHead, "      3,      3,", "99999999999,      3,") + "1\r\n"},
    // 1e307 m is 1e310 mm, beyond the largest double; the largest double itself is beyond what the
    // writer's 15 significant digits can write back.
    {"SampleThatIsNotFiniteInMillimetres", "temp/metres.erd", Outcome::Raises, "9 行目の値 \"1e307\"", {},
     WithReplaced(kHead, "UNITSNAMmm", "UNITSNAMm") + "1.0\r\n1e307\r\n"},
    {"LargestDoubleIsBeyondWhatTheWriterCarries", "temp/max.erd", Outcome::Raises, "9 行目の値", {},
     kHead + "1.0\r\n1.7976931348623157e308\r\n"},
    {"LargestFifteenDigitNumberReads", "temp/max15.erd", Outcome::Reads, "", {{"Samples", std::vector<double>{1.79769313486231e308}}},
     kHead + "1.79769313486231e308\r\n"},
    {"LineOverAMegabyte", "temp/long.erd", Outcome::Raises, "9 行目が長すぎます", {},
     kHead + "1.0\r\n" + std::string(1'100'000, '1') + "\r\n"},
    // The writer's "0.000000" would write such a pitch as 0, which no reader takes.
    {"PitchTheWriterCannotWriteBackIsRefused", "temp/tiny.erd", Outcome::Refused,
     "ピッチ 1e-131 m は使えません (0.000001 m 以上の有限の数が必要です)。", {},
     WithReplaced(kHead, "0.100000", "1e-131") + "1\r\n"},
    {"SmallestWritablePitchReads", "temp/fine.erd", Outcome::Reads, "", {{"StepSize", 0.000001}},
     WithReplaced(kHead, "0.100000", "0.000001") + "1\r\n"},

    Example("ExampleWithKp", "road_a_kp.erd", 3000, 0.1, "12.30000++"),
    Example("ExampleWithoutKp", "road_b.erd", 5000, 0.05, ""),
    Example("RoughExample", "road_c_rough.erd", 3000, 0.1, ""),
    // Counts, pitches and first samples read off the measured files' own heads (see the data
    // folder's README).
    Measured("SharedBasicLeft", "derived/basic_left_mm.erd", 25544, 0.063068210, -0.01127760, "LElev."),
    Measured("SharedBasicRight", "derived/basic_right_mm.erd", 25544, 0.063068210, -0.01524000, "RElev."),
    Measured("SharedTestRunLeft", "derived/Test_Run1_left_mm.erd", 159131, 0.0762, -10.8458, "LElev."),
    Measured("SharedTestRunRight", "derived/Test_Run1_right_mm.erd", 159131, 0.0762, 0.381, "RElev."),
    Measured("SharedProfileOne", "derived/profile_1_derived_mm.erd", 2177, 0.25, 583137.0, "Elev"),
    // Both channels on one line: 17 header lines up to END, and the header was taken in before the
    // data failed (two channels in feet).
    {"SharedTwoChannelsOnOneLine", "shared/freevryheid_iri/basic.erd", Outcome::BadData, "18 行目",
     {{"NumChannels", 2.}, {"Title", "Track Run E1"}, {"StepSize", 0.2069167 * 0.3048}}},
};

void PrintTo(const ReadCase& c, std::ostream* os) { *os << c.file; }

class ErdRead : public ::testing::TestWithParam<ReadCase> {};

TEST_P(ErdRead, GivesTheValuesOrTheErrorNamingTheFile) {
  const ReadCase& c = GetParam();
  testing::TempDir dir;
  std::filesystem::path path = testing::SourceDir() / "tests/data/erd" / c.file;
  if (c.file.starts_with("/")) path = c.file;
  if (c.file.starts_with("examples/")) path = testing::SourceDir() / c.file;
  if (c.file.starts_with("temp/")) path = c.file == "temp/" ? dir.path() : dir / c.file.substr(5);
  if (c.file.starts_with("shared/")) {
    path = testing::SharedDataDir() / c.file.substr(7);
    if (!std::filesystem::exists(path)) GTEST_SKIP() << "shared data not present: " << c.file;
  }
  if (c.bytes) testing::WriteBytes(path, *c.bytes);

  testing::ScriptedUi ui;
  Session session(ui);
  ProfileRecord profile;
  try {
    const bool reads = c.outcome == Outcome::Reads || c.outcome == Outcome::Warned;
    EXPECT_EQ(ReadProfile(session, path.string(), profile), reads);
    EXPECT_TRUE(reads || c.outcome == Outcome::Refused) << "no error";
  } catch (const LegacyError& error) {
    const std::string what = error.what();
    EXPECT_TRUE(c.outcome == Outcome::BadData || c.outcome == Outcome::Raises) << what;
    EXPECT_NE(what.find(path.string()), std::string::npos) << what;
    EXPECT_NE(what.find(c.text), std::string::npos) << what;
    if (c.outcome == Outcome::BadData) {
      EXPECT_EQ(error.Number(), ErrorNumber::TypeMismatch) << what;
    }
  }
  if (c.outcome == Outcome::Refused) {
    testing::ExpectMessages(ui, {{c.text + "\r\n\r\nファイル名：" + path.string(), "読み込みエラー", MsgIcon::Exclamation}});
  } else if (c.outcome == Outcome::Warned) {
    testing::ExpectMessages(ui, {{c.text + "\r\n\r\nファイル名：" + path.string(), "読み込み警告", MsgIcon::Information}});
  } else {
    EXPECT_TRUE(ui.Messages().empty());
  }

  const auto fields = Fields(profile);
  for (const auto& [name, expected] : c.fields) {
    ASSERT_TRUE(fields.contains(name)) << name;
    const Value& actual = fields.at(name);
    ASSERT_EQ(actual.index(), expected.index()) << name;
    if (const auto* number = std::get_if<double>(&expected)) {
      EXPECT_DOUBLE_EQ(std::get<double>(actual), *number) << name;
    } else if (const auto* samples = std::get_if<std::vector<double>>(&expected)) {
      const auto& got = std::get<std::vector<double>>(actual);
      ASSERT_EQ(got.size(), samples->size()) << name;
      for (std::size_t i = 0; i < got.size(); ++i) EXPECT_DOUBLE_EQ(got[i], (*samples)[i]) << name << " " << i;
    } else {
      EXPECT_EQ(std::get<std::string>(actual), std::get<std::string>(expected)) << name;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Files, ErdRead, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<ReadCase>& info) { return info.param.name; });

TEST(CalcProfileStatistics, FiguresByHandNegativeValuesAndNoSample) {
  const ProfileStatistics s = CalcProfileStatistics(std::vector<double>{1, 4, 2, 3});
  EXPECT_EQ(std::tuple(s.Count, s.Sum, s.Mean, s.Max, s.Min, s.Spread), std::tuple(4, 10.0, 2.5, 4.0, 1.0, 3.0));
  // Deviations ±1.5, ±0.5: (2.25 + 2.25 + 0.25 + 0.25) / 4 = 1.25.
  EXPECT_DOUBLE_EQ(s.StdDev, std::sqrt(1.25));
  // All below zero: the seeds give way to the values.
  const ProfileStatistics negative = CalcProfileStatistics(std::vector<double>{-3, -7});
  EXPECT_EQ(std::tuple(negative.Max, negative.Min, negative.StdDev), std::tuple(-3.0, -7.0, 2.0));
  const ProfileStatistics none = CalcProfileStatistics({});
  EXPECT_EQ(std::pair(none.Count, none.Max), std::pair(0, 0.0));
}

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::ScriptedUi;
using testing::TempDir;

fs::path Fixture(const std::string& name) { return testing::SourceDir() / "tests/data/erd" / name; }

ErdRecord ReadOk(const fs::path& path) {
  ScriptedUi ui;
  Session session(ui);
  ErdRecord rec;
  EXPECT_TRUE(ReadERD(session, path.string(), rec)) << path;
  EXPECT_TRUE(ui.Messages().empty()) << path;
  return rec;
}

// The TITLE line of a file's bytes, without its line end.
std::string TitleLine(const std::string& bytes) {
  const std::size_t start = bytes.find("TITLE");
  return bytes.substr(start, bytes.find("\r\n", start) - start);
}

ErdRecord SmallRecord() {
  ErdRecord rec;
  rec.NumChannels = 1;
  rec.NumSamples = 3;
  rec.NumSamplesHeader = 99;  // the writer ignores it
  rec.FormatCode = 5;
  rec.StepSize = 0.01;
  rec.Title = "T";
  rec.ShortName[1] = "RElev";
  rec.YLabel = "Elevation";
  rec.XLabel = "Distance";
  rec.Elevation = Array1<double>{1.5, -0.25, 1234.56789};
  return rec;
}

TEST(WriteErd, LayoutIsByteExactAndMoreSamplesClaimedThanHeldWritesNothing) {
  TempDir dir;
  EXPECT_TRUE(WriteERD((dir / "small.erd").string(), SmallRecord()));
  EXPECT_EQ(ReadBytes(dir / "small.erd"),
            "ERDFILEV2.00\r\n      1,      3,      3,      1,      5, 0.010000    ,     -1,\r\n"
            "TITLE   T\r\nSHORTNAMRElev\r\nLONGNAMERight Elevation\r\nUNITSNAMmm\r\nGENNAME Elevation\r\n"
            "XLABEL  Distance\r\nXUNITS  m\r\nFORMAT  (G14.6)\r\nEND\r\n"
            "1.50000000 \r\n-0.25000000 \r\n1234.56789000 \r\n");
  ErdRecord rec = SmallRecord();
  rec.NumSamples = 4;
  EXPECT_THROW(WriteERD((dir / "x.erd").string(), rec), LegacyError);
  EXPECT_EQ(testing::EntryNames(dir.path()), (std::vector<std::string>{"small.erd"}));  // no temporary left
}

TEST(WriteErd, ShortNameWithFullStopGetsLeftElevation) {
  ErdRecord rec = SmallRecord();
  rec.ShortName[1] = "RElev.";
  EXPECT_EQ(ErdHeaderLines(rec)[4], "LONGNAMELeft Elevation");
  rec.ShortName[1] = " relev ";  // compared trimmed and without case
  EXPECT_EQ(ErdHeaderLines(rec)[4], "LONGNAMERight Elevation");
}

TEST(WriteErd, TitleComposesKpAndRepairRange) {
  ErdRecord rec = SmallRecord();
  rec.RepairRangeStart = 1.5;
  EXPECT_EQ(ComposeErdTitle(rec), "T");  // a range without a KP start is not written
  rec.KpStart = 12.3456789;
  rec.KpSign = 1;
  rec.Lane = 1;
  EXPECT_EQ(ComposeErdTitle(rec), "T｜12.34568-+｜1.50000,-99999");
  rec.RepairRangeStart = kNoValue;
  rec.Lane = 7;
  EXPECT_EQ(ComposeErdTitle(rec), "T｜12.34568-0");
  EXPECT_EQ(ComposeKpText(rec.KpStart, rec.KpSign, rec.Lane, /*displayForm=*/true), "12.34568--");
  EXPECT_EQ(ComposeKpText(rec.KpStart, 0, -1), "12.34568+-");
}

// Read, write, read, write: the same bytes both times and the same record. The examples are in the
// writer's own layout and come back unchanged.
TEST(WriteErd, RewritesAreByteIdentical) {
  TempDir dir;
  std::vector<fs::path> files{Fixture("sjis_title_with_kp.erd"), Fixture("kp_no_value.erd")};
  for (const auto& entry : fs::directory_iterator(testing::SourceDir() / "examples"))
    if (entry.path().extension() == ".erd") files.push_back(entry.path());
  ASSERT_GE(files.size(), 4u);
  for (const auto& source : files) {
    const auto first = dir / ("1_" + source.filename().string()), second = dir / "2.erd";
    const ErdRecord original = ReadOk(source);
    WriteERD(first.string(), original);
    const ErdRecord reread = ReadOk(first);
    WriteERD(second.string(), reread);
    EXPECT_EQ(ReadBytes(first), ReadBytes(second)) << source;
    EXPECT_EQ(reread.Elevation, original.Elevation) << source;
    EXPECT_EQ(ComposeErdTitle(reread), ComposeErdTitle(original)) << source;
    EXPECT_EQ(reread.StepSize, original.StepSize) << source;
    if (source.parent_path().filename() == "examples") {
      EXPECT_EQ(ReadBytes(first), ReadBytes(source)) << source;
    }
  }
  // The Shift-JIS title survives byte for byte.
  EXPECT_EQ(TitleLine(ReadBytes(dir / "1_sjis_title_with_kp.erd")), TitleLine(ReadBytes(files[0])));
  // A KP of exactly the no-value drops the KP and the repair range.
  const ErdRecord noKp = ReadOk(dir / "1_kp_no_value.erd");
  EXPECT_EQ(noKp.Title, "road");
  EXPECT_TRUE(noKp.KpText.empty());
  EXPECT_TRUE(noKp.RepairRangeText.empty());
}

// A copy of the Shift-JIS fixture to update, and the scripted user of the update.
class UpdateErdTest : public testing::SessionTest {
 protected:
  void SetUp() override { testing::WriteBytes(path_, original_); }
  TempDir folder_;
  const std::string path_ = (folder_ / "p.erd").string();
  const std::string original_ = ReadBytes(Fixture("sjis_title_with_kp.erd"));
};

TEST_F(UpdateErdTest, ReplacesOnlyTheTitleLineAndAMissingFileIsReported) {
  EXPECT_TRUE(UpdateERD(session, path_, "新題｜1.00000++"));
  std::string expected = original_;
  // "新題｜1.00000++" in Shift-JIS: 新 0x9056, 題 0x91E8, ｜ 0x8162.
  expected.replace(expected.find("TITLE"), TitleLine(original_).size(), "TITLE   \x90\x56\x91\xE8\x81\x62" "1.00000++");
  EXPECT_EQ(ReadBytes(path_), expected);
  EXPECT_TRUE(UpdateERD(session, path_, "x", /*showMessage=*/false));
  EXPECT_EQ(ReadOk(path_).Title, "x");
  const std::string missing = (folder_ / "none.erd").string();
  EXPECT_FALSE(UpdateERD(session, missing, "x"));
  testing::ExpectMessages(ui_, {{"以下のファイルを書き換えました\r\n\r\n対象ファイル名：" + path_, "ファイル更新", MsgIcon::Information},
                                {"ファイルが見つかりませんでした。\r\n\r\nファイル名：" + missing + "\r\n\r\n確認してください。",
                                 std::nullopt, MsgIcon::Information}});
}

// A file size limit below the file's size makes the write fail even for a privileged user: the update
// fails with one critical message and leaves the file as it was, with no temporary beside it.
TEST_F(UpdateErdTest, FailedWriteLeavesTheOriginalIntact) {
  rlimit saved{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
  auto* previousHandler = signal(SIGXFSZ, SIG_IGN);
  rlimit tight = saved;
  tight.rlim_cur = 64;
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
  const bool updated = UpdateERD(session, path_, "x");
  setrlimit(RLIMIT_FSIZE, &saved);
  signal(SIGXFSZ, previousHandler);
  EXPECT_FALSE(updated);
  EXPECT_EQ(ReadBytes(path_), original_);
  EXPECT_EQ(testing::EntryNames(folder_.path()), (std::vector<std::string>{"p.erd"}));
  ASSERT_EQ(ui_.Messages().size(), 1u);
  EXPECT_EQ(ui_.Messages()[0].Icon, MsgIcon::Critical);
  EXPECT_NE(ui_.Messages()[0].Text.find("\r\nUpdateERD"), std::string::npos) << ui_.Messages()[0].Text;
}

// The profile list: registration of ERD files with the replace question, the copy into the project
// folder, the parallel views and their colours; and its commands: add through the dialog, the PMS
// refusal, export as ERD or CSV, rename, remove, moves and the buttons they enable, and the limit of
// fifty per action. The profile tab's boxes in and out, its two ERD buttons and the input checks.
// A scratch user-local tree and a palette of three colours for each test, and fixture copies.
class ProfileListTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    session.Paths.UserLocalPath = (dir_ / "local").string();
    session.Paths.TempPath = (dir_ / "local" / "Temp").string();
    session.Paths.AppPath = (dir_ / "app").string();
    std::filesystem::create_directories(session.Paths.TempPath);
    std::filesystem::create_directories(dir_ / "local" / "Resource");
    std::filesystem::create_directories(session.Paths.AppPath);
    session.Project.Dirty = false;
    session.Settings.PaletteProfile = {0x0000FF, 0x00FF00, 0xFF0000};
    session.Settings.PaletteRepair = {0x111111, 0x222222};
    session.Settings.CsvProfileLimit = 0;
  }
  // A copy of a fixture under another name, in a source folder of the test.
  std::string Source(const std::string& name, const std::string& fixture = "line2_free_widths.erd",
                     const std::string& folder = "src") {
    std::filesystem::create_directories(dir_ / folder);
    const auto path = dir_ / folder / name;
    testing::WriteBytes(path, testing::ReadBytes(Fixture(fixture)));
    return path.string();
  }
  std::filesystem::path ProjectCopy(const std::string& fileName) const {
    return dir_ / "local" / "Project" / "Profile" / fileName;
  }
};

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::ScriptedUi;
using Names = std::vector<std::string>;

// Days since 1899-12-30 worked out from the Unix day count: 1970-01-01 is serial 25569.
std::int32_t ExpectedToday() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  std::tm midnight{};
  midnight.tm_year = local.tm_year;
  midnight.tm_mon = local.tm_mon;
  midnight.tm_mday = local.tm_mday;
  return static_cast<std::int32_t>(timegm(&midnight) / 86400 + 25569);
}

TEST_F(ProfileListTest, AddsFilesInOrderIntoEveryViewAndCopiesThem) {
  ProfileList list;
  const std::string a = Source("alpha.erd"), b = Source("Beta.ERD", "sjis_title_with_kp.erd");
  ASSERT_TRUE(AddProfileList(session, list, {a, b}, true));
  EXPECT_TRUE(ui_.Messages().empty());
  ASSERT_EQ(list.Count(), 2);
  for (const ProfileListView& view : list.Views) EXPECT_EQ(view.Rows, (Names{"alpha", "Beta"}));
  const ProfileRecord& beta = list.Items[2];
  EXPECT_EQ((std::vector{beta.FileName, beta.FilePath, beta.RouteName, beta.Erd.Title, beta.Erd.KpDisplay}),
            (Names{"Beta.ERD", b, "Beta", "国道１２号　上り", "123.45000+-"}));
  EXPECT_EQ((std::vector{beta.SourceType, beta.MeasureDate, beta.WorkCount}), (std::vector{0, ExpectedToday(), 3}));
  EXPECT_DOUBLE_EQ(beta.SamplesPerMetre, 4.0);
  EXPECT_EQ(ReadBytes(ProjectCopy("Beta.ERD")), ReadBytes(b));
  EXPECT_EQ(ReadBytes(ProjectCopy("alpha.erd")), ReadBytes(a));
  EXPECT_TRUE(session.Project.Dirty);
}

TEST_F(ProfileListTest, AnsweringNoKeepsRecordAndCopyAndTheOtherFilesAreStillAdded) {
  ProfileList list;
  const std::string first = Source("road.erd");
  ASSERT_TRUE(AddProfileList(session, list, {first}, true));
  const std::string copyBefore = ReadBytes(ProjectCopy("road.erd"));

  const std::string again = Source("ROAD.erd", "cm_heights.erd", "other");  // same name: case is ignored
  ui_.Answers = {MsgAnswer::No};
  EXPECT_TRUE(AddProfileList(session, list, {again, Source("extra.erd")}, true));
  testing::ExpectMessages(ui_, {{"指定されたプロファイル名は既に登録されています。\r\n\r\nプロファイル名：ROAD\r\n\r\n置き換えますか？",
                                 "確認", MsgIcon::Question, MsgButtons::YesNo}});
  ASSERT_EQ(list.Count(), 2);
  EXPECT_EQ(list.Items[1].FilePath, first);
  EXPECT_EQ(list.Items[1].Erd.Title, "free widths");
  EXPECT_EQ(ReadBytes(ProjectCopy("road.erd")), copyBefore);
  EXPECT_EQ(list.Views[0].Rows, (Names{"road", "extra"}));
}

TEST_F(ProfileListTest, RepeatWithoutAskingReplacesInPlace) {
  ProfileList list;
  ASSERT_TRUE(AddProfileList(session, list, {Source("a.erd"), Source("road.erd")}, true));
  list.SelectedRows = {2};
  std::int32_t shown = 0;
  list.Hooks.ShowProfileTab = [&](std::int32_t index) { shown = index; };
  ui_.Log.clear();
  const std::string newer = Source("road.erd", "cm_heights.erd", "other");
  ASSERT_TRUE(AddProfileList(session, list, {newer}, false));
  EXPECT_TRUE(ui_.Messages().empty());
  ASSERT_EQ(list.Count(), 2);
  EXPECT_EQ(list.Items[2].FilePath, newer);
  EXPECT_EQ(list.Items[2].Erd.Title, "cm");
  EXPECT_EQ(list.Items[2].WorkProfile, (Array1<double>{15.0, -2.5, 0.0}));
  EXPECT_EQ(ReadBytes(ProjectCopy("road.erd")), ReadBytes(newer));
  EXPECT_EQ(shown, 2);  // the one selected row was the replaced item
  EXPECT_EQ(list.Views[0].Rows.size(), 2u);
}

// A file the reader refuses, one that raises on reading and one gone before its turn each stop the
// loop with one message naming the file (the reader's own, or the log's under AddProfileList); what
// was registered before stays, the files behind are not added.
TEST_F(ProfileListTest, UnreadableFileStopsTheLoopKeepingWhatWasRegistered) {
  const std::string gone = Source("gone.erd");
  fs::remove(gone);
  const std::pair<std::string, std::string> cases[] = {
      {Source("bad.erd", "zero_step.erd"), "読み込みエラー"},
      {Source("broken.erd", "data_line_not_number.erd"), "AddProfileList"},
      {gone, "AddProfileList"},
  };
  for (const auto& [bad, title] : cases) {
    ProfileList list;
    ScriptedUi ui(session);
    EXPECT_FALSE(AddProfileList(session, list, {Source("good.erd"), bad, Source("late.erd")}, true));
    EXPECT_EQ(list.Count(), 1);
    for (const ProfileListView& view : list.Views) EXPECT_EQ(view.Rows, (Names{"good"}));
    ASSERT_EQ(ui.Messages().size(), 1u) << bad;
    EXPECT_NE(ui.Messages()[0].Title.find(title), std::string::npos) << ui.Messages()[0].Title;
    EXPECT_NE(ui.Messages()[0].Text.find(bad), std::string::npos) << ui.Messages()[0].Text;
    EXPECT_FALSE(fs::exists(ProjectCopy("late.erd")));
    EXPECT_FALSE(fs::exists(ProjectCopy(fs::path(bad).filename().string())));
  }
}

TEST_F(ProfileListTest, RowColoursCycleThroughThePalette) {
  ProfileList list;
  ASSERT_TRUE(AddProfileList(session, list, {Source("r1.erd"), Source("r2.erd"), Source("r3.erd"), Source("r4.erd")}, true));
  EXPECT_EQ(list.Views[0].Panels, (std::vector<Colour>{0x0000FF, 0x00FF00, 0xFF0000, 0x0000FF}));
  EXPECT_EQ(list.Views[11].Name, "lst理想形状");
  EXPECT_EQ(list.Views[11].Panels, (std::vector<Colour>{0x111111, 0x222222, 0x111111, 0x222222}));
  EXPECT_EQ(RowColour(4, {7, 8, 9}), RowColour(1, {7, 8, 9}));
  EXPECT_EQ(RowColour(1, {}), 0u);
}

const char* const kExportLimit = "同時に出力できるプロファイル数は５０個までです。\r\n調整してください。";

class ProfileEditTest : public ProfileListTest {
 protected:
  // A list of the given names, all from the same fixture, with rows selected; the log starts empty.
  void Register(const Names& names, std::vector<std::int32_t> selected = {}) {
    std::vector<std::string> paths;
    for (const auto& name : names) paths.push_back(Source(name + ".erd"));
    ASSERT_TRUE(AddProfileList(session, list_, paths, true));
    SelectProfileRows(list_, std::move(selected));
    ui_.Log.clear();
  }
  // Runs an edit command with a fresh log.
  ProfileEditResult Edit(int index, ProfileExportFormat format = ProfileExportFormat::Erd) {
    ui_.Log.clear();
    return cmdProfileEdit(session, list_, index, format);
  }
  ProfileList list_;
};

TEST_F(ProfileEditTest, AddAsksForFilesRemembersTheFolderAndQueuesTextFiles) {
  const std::string a = Source("a.erd"), text = Source("b.csv"), other = Source("c.dat");
  ui_.Files = {{a, text, other}};
  EXPECT_EQ(Edit(0).TextImports, (Names{text}));
  EXPECT_EQ(list_.Views[0].Rows, (Names{"a"}));
  EXPECT_EQ(ui_.Log.at(0).Kind, "open");
  EXPECT_EQ(ui_.Log[0].Text, session.Paths.AppPath);  // nothing remembered yet: start in AppPath
  EXPECT_EQ(GetPrevValue(session, "CommonDialogPath", "ERDファイル追加"), (dir_ / "src").string());

  EXPECT_TRUE(Edit(0).TextImports.empty());  // no files: the command ends
  EXPECT_EQ(ui_.Log.at(0).Text, (dir_ / "src").string());
  EXPECT_EQ(list_.Count(), 1);
}

TEST_F(ProfileEditTest, PmsAddIsAStandingRefusalAndExportWithNothingSelectedDoesNothing) {
  Edit(1);
  EXPECT_EQ(ui_.OnlyMessageText(), "この機能は現在対応していません。");
  EXPECT_EQ(list_.Count(), 0);
  Register({"a"});
  Edit(2);
  EXPECT_TRUE(ui_.Log.empty());
}

TEST_F(ProfileEditTest, ExportAsErdUsesFreeNamesInTheChosenFolder) {
  Register({"p", "q"}, {1, 2});
  const auto out = dir_ / "out";
  fs::create_directories(out);
  for (int round = 0; round < 2; ++round) {
    ui_.Files = {{(out / "ignored.Dummy").string()}};
    Edit(2);
    EXPECT_EQ(ui_.Log.at(0).Text, "フォルダ名の取得に使用され、ファイル名は無視されます");
    testing::ExpectMessages(ui_, {{"ERDファイルを保存しました。 \r\n保存先：" + out.string(), "データ保存"}});
  }
  EXPECT_EQ(testing::EntryNames(out), (Names{"p(001).ERD", "p.ERD", "q(001).ERD", "q.ERD"}));
  ErdRecord back;
  ASSERT_TRUE(ReadERD(session, (out / "q(001).ERD").string(), back));
  EXPECT_EQ(back.Elevation, list_.Items[2].Erd.Elevation);
}

TEST_F(ProfileEditTest, ExportAsCsvPutsProfilesSideBySide) {
  ASSERT_TRUE(AddProfileList(session, list_, {Source("long.erd"), Source("short.erd", "feet_units.erd")}, true));
  SelectProfileRows(list_, {1, 2});
  const std::string csv = (dir_ / "both.CSV").string();
  ui_.Files = {{csv}};
  Edit(2, ProfileExportFormat::Csv);
  // Header lines quoted side by side, the same in both but line 2, the title and GENNAME.
  auto both = [](const std::string& a, const std::string& b) { return "\"" + a + "\",\"" + b + "\"\r\n"; };
  std::string expected = both("ERDFILEV2.00", "ERDFILEV2.00") +
                         both("      1,      3,      3,      1,      5, 0.250000    ,     -1,",
                              "      1,      2,      2,      1,      5, 0.152400    ,     -1,") +
                         both("TITLE   free widths", "TITLE   feet");
  for (const char* line : {"SHORTNAMLElev.", "LONGNAMELeft Elevation", "UNITSNAMmm"}) expected += both(line, line);
  expected += both("GENNAME Elevation", "GENNAME ");
  for (const char* line : {"XLABEL  Distance", "XUNITS  m", "FORMAT  (G14.6)", "END"}) expected += both(line, line);
  EXPECT_EQ(ReadBytes(csv), expected + "1.00000000,10.00000000\r\n2.00000000,-2.50000000\r\n3.00000000,\r\n");
  testing::ExpectMessages(ui_, {{"CSVファイルを保存しました。 \r\n保存先：" + csv}});
  const auto save = std::find_if(ui_.Log.begin(), ui_.Log.end(), [](const auto& m) { return m.Kind == "save"; });
  ASSERT_NE(save, ui_.Log.end());
  EXPECT_EQ(save->Text.rfind("Profile_", 0), 0u);
  EXPECT_EQ(save->Text.size(), std::string("Profile_YYYYMMDDHHNNSS.CSV").size());
}

TEST_F(ProfileEditTest, CsvLimitSpreadsProfilesOverFurtherFiles) {
  Register({"a", "b", "c"}, {1, 2, 3});
  session.Settings.CsvProfileLimit = 2;
  const std::string csv = (dir_ / "part.CSV").string();
  ui_.Files = {{csv}};
  Edit(2, ProfileExportFormat::Csv);
  const std::string first = ReadBytes(csv), second = ReadBytes(dir_ / "part(001).CSV");
  EXPECT_EQ(first.substr(0, first.find("\r\n")), "\"ERDFILEV2.00\",\"ERDFILEV2.00\"");
  EXPECT_EQ(second.substr(0, second.find("\r\n")), "\"ERDFILEV2.00\"");
}

TEST_F(ProfileEditTest, RenameEndsOnCancelEmptyOrUnchangedAsksAgainForATakenNameThenMovesTheFile) {
  Register({"first", "second"}, {2});
  // Cancel, an empty name or the same name end the command.
  for (const Names& inputs : {Names{}, {""}, {"second"}}) {
    ui_.Inputs.assign(inputs.begin(), inputs.end());
    session.Project.Dirty = false;
    Edit(3);
    EXPECT_EQ(list_.Items[2].FileName, "second.erd");
    EXPECT_FALSE(session.Project.Dirty);
    EXPECT_EQ(ui_.Log.size(), 1u);
  }
  std::string oldSource, newSource;
  list_.Hooks.RenameStudySources = [&](const std::string& o, const std::string& n) { oldSource = o, newSource = n; };
  ui_.Inputs = {" FIRST ", "third"};
  Edit(3);
  ASSERT_EQ(ui_.Log.size(), 3u);
  EXPECT_EQ(ui_.Log[0].Kind, "input");
  testing::ExpectShown(ui_.Log[0], {"変更後のファイル名を指定してください。", "名前の変更"});
  testing::ExpectMessages(ui_, {{"指定されたファイルは既に存在します。\r\n\r\n指定名称：FIRST\r\n\r\n確認してください。", "警告"}});
  EXPECT_EQ(list_.Items[2].FileName, "third.ERD");
  for (const ProfileListView& view : list_.Views) EXPECT_EQ(view.Rows, (Names{"first", "third"}));
  EXPECT_TRUE(fs::exists(ProjectCopy("third.ERD")));
  EXPECT_FALSE(fs::exists(ProjectCopy("second.erd")));
  EXPECT_EQ(oldSource + " -> " + newSource, "second -> third");
}

TEST_F(ProfileEditTest, RemovingARowRecoloursTheRestAndRemovingAllLeavesEveryButtonDisabled) {
  Register({"a", "b", "c", "d"}, {1});
  ui_.Answers = {MsgAnswer::Cancel};
  Edit(4);
  EXPECT_EQ(list_.Count(), 4);
  Edit(4);
  testing::ExpectMessages(ui_, {{"選択されているプロファイルをプロジェクトリストから解除します。\r\nよろしいですか？", "警告"}});
  EXPECT_EQ(list_.Views[0].Rows, (Names{"b", "c", "d"}));
  EXPECT_EQ(list_.Items[1].FileName, "b.erd");
  EXPECT_EQ(list_.Views[0].Panels, (std::vector<Colour>{0x0000FF, 0x00FF00, 0xFF0000}));
  EXPECT_TRUE(fs::exists(ProjectCopy("b.erd")));
  EXPECT_FALSE(fs::exists(ProjectCopy("a.erd")));

  SelectProfileRows(list_, {1, 2, 3});
  Edit(4);
  EXPECT_EQ(list_.Count(), 0);
  EXPECT_EQ(list_.Selected, 0);
  for (const ProfileListView& view : list_.Views) EXPECT_TRUE(view.Rows.empty() && view.Panels.empty()) << view.Name;
  const ProfileListButtons b = ProfileButtonStates(list_);
  EXPECT_FALSE(b.Export || b.Rename || b.Remove || b.MoveUp || b.MoveDown);
  EXPECT_FALSE(fs::exists(ProjectCopy("b.erd")));
}

TEST_F(ProfileEditTest, MovesSwapNeighboursAndFollowTheButtons) {
  Register({"a", "b", "c"}, {1});
  // Export, rename, remove, up, down.
  auto buttons = [&] {
    const ProfileListButtons b = ProfileButtonStates(list_);
    return std::vector{b.Export, b.Rename, b.Remove, b.MoveUp, b.MoveDown};
  };
  EXPECT_EQ(buttons(), (std::vector{true, true, true, false, true}));
  EXPECT_FALSE(cmd上下移動(session, list_, 0));
  ASSERT_TRUE(cmd上下移動(session, list_, 1));
  ASSERT_TRUE(cmd上下移動(session, list_, 1));
  for (const ProfileListView& view : list_.Views) EXPECT_EQ(view.Rows, (Names{"b", "c", "a"}));
  EXPECT_EQ(list_.Items[3].FileName, "a.erd");
  EXPECT_EQ(list_.SelectedRows, (std::vector<std::int32_t>{3}));
  EXPECT_EQ(list_.Views[0].Panels, (std::vector<Colour>{0x0000FF, 0x00FF00, 0xFF0000}));  // panels stay put
  EXPECT_EQ(buttons(), (std::vector{true, true, true, true, false}));
  SelectProfileRows(list_, {1, 2});
  EXPECT_EQ(buttons(), (std::vector{true, false, true, false, false}));
}

TEST_F(ProfileEditTest, SelectionChangeStoresThePreviousProfileFirst) {
  Register({"a", "b"}, {1});
  Names events;
  list_.Hooks.StoreProfileTab = [&](std::int32_t i) { events.push_back(fmt::format("store {}", i)); };
  list_.Hooks.ShowProfileTab = [&](std::int32_t i) { events.push_back(fmt::format("show {}", i)); };
  SelectProfileRows(list_, {2});
  SelectProfileRows(list_, {2});  // unchanged: nothing happens
  SelectProfileRows(list_, {1, 2});
  EXPECT_EQ(events, (Names{"store 1", "show 2", "store 2"}));
  EXPECT_EQ(list_.Selected, 0);
}

TEST_F(ProfileEditTest, FiftyPassFiftyOneDoNot) {
  ProfileDialogChoice ticked;
  ticked.AppendDateTime = 1;
  for (int i = 1; i <= 50; ++i) ticked.Names.push_back(fmt::format("p{}", i));
  const auto fifty = AcceptProfileDialog(session, ProfileDialogKind::Register, ticked);
  ASSERT_TRUE(fifty.has_value());
  EXPECT_EQ(fifty->Names, ticked.Names);
  EXPECT_EQ(fifty->AppendDateTime, 1);
  EXPECT_FALSE(AcceptProfileDialog(session, ProfileDialogKind::Export, {}).has_value());  // silently

  ticked.Names.push_back("p51");
  EXPECT_FALSE(AcceptProfileDialog(session, ProfileDialogKind::Register, ticked).has_value());
  EXPECT_FALSE(AcceptProfileDialog(session, ProfileDialogKind::Export, ticked).has_value());
  testing::ExpectMessages(ui_, {{"同時に登録できるプロファイル数は５０個までです。\r\n調整してください。", "プロファイル登録",
                                 MsgIcon::Exclamation},
                                {kExportLimit, "プロファイル出力"}});

  // The list itself has no limit, an export of fifty-one stops before the file dialog.
  Names names;
  std::vector<std::int32_t> rows;
  for (int i = 1; i <= 51; ++i) {
    names.push_back(fmt::format("n{}", i));
    rows.push_back(i);
  }
  Register(names, rows);
  EXPECT_EQ(list_.Count(), 51);
  Edit(2, ProfileExportFormat::Csv);
  EXPECT_EQ(ui_.Log.size(), 1u);
  EXPECT_EQ(ui_.OnlyMessageText(), kExportLimit);
}

TEST(RegistrationName, SampleFromPatternOrBuiltIn) {
  const std::tm now = testing::At(2024, 1, 2, 3, 4, 5);
  EXPECT_EQ(RegistrationNameSample("", "road", "50", now), "road_MAHP50m_20240102030405");
  EXPECT_EQ(RegistrationNameSample("$(PROFILENAME)$_HP$(CUTOFF)$_$(YYYYMMDD)$", "road", "50", now), "road_HP50_20240102");
}

class ProfileTabTest : public ProfileListTest {
 protected:
  ProfileRecord Load(const std::string& fixture) {
    path_ = Source("tab.erd", fixture);
    ProfileRecord profile;
    EXPECT_TRUE(ReadProfile(session, path_, profile));
    profile.FilePath = path_;
    profile.FileName = "tab.erd";
    return profile;
  }
  // The file as read again after a button rewrote it.
  ErdRecord Reread() {
    ErdRecord reread;
    EXPECT_TRUE(ReadERD(session, path_, reread));
    return reread;
  }
  std::string path_;
};

TEST_F(ProfileTabTest, BoxesShowTheRecord) {
  ProfileRecord profile = Load("sjis_title_with_kp.erd");
  profile.RouteName = "  route  ";
  const ProfileTabBoxes boxes = ShowProfileOnTab(profile);
  const std::array<std::string, 11> expected{"route", "Elevation", "Distance", "0.25000", "3",
                                             "国道１２号　上り", "1", "123.45000", "",
                                             "123.45000+-｜123.50000,124.00000", "3"};
  EXPECT_EQ(boxes.txt緒元, expected);
  EXPECT_EQ(boxes.lbl緒元単位1, "⇒ 距離：0.50000(m)");  // (3 - 1) × 0.25 m
  EXPECT_EQ((std::vector{boxes.cbo緒元, boxes.optKP, boxes.opt上下}), (std::vector{0, 0, 1}));  // lane -1
  EXPECT_EQ(boxes.txt補修計画範囲, (std::array<std::string, 2>{"123.50000", "124.00000"}));
  EXPECT_FALSE(boxes.chk補修計画範囲);
}

TEST_F(ProfileTabTest, UnsetKpShowsEmptyAndRElevSelectsTheSecondItem) {
  ProfileRecord profile = Load("line2_free_widths.erd");
  profile.Erd.ShortName[1] = "relev";
  const ProfileTabBoxes boxes = ShowProfileOnTab(profile);
  EXPECT_TRUE(boxes.txt緒元[7].empty() && boxes.txt緒元[9].empty());
  EXPECT_EQ((std::vector{boxes.cbo緒元, boxes.opt上下}), (std::vector{1, 2}));
}

TEST_F(ProfileTabTest, LeavingWritesTheBoxesBack) {
  ProfileRecord profile = Load("sjis_title_with_kp.erd");
  ProfileTabBoxes boxes = ShowProfileOnTab(profile);
  boxes.txt緒元[0] = " new route ";
  boxes.txt緒元[3] = "0.5";
  boxes.txt緒元[7] = " 5.5 ";
  boxes.txt緒元[8] = "  note\r\nline two ";
  boxes.optKP = 1;
  boxes.opt上下 = 0;
  boxes.cbo緒元 = 1;
  boxes.chk補修計画範囲 = true;
  boxes.txt補修計画範囲 = {"6", ""};
  StoreProfileTab(boxes, profile);
  EXPECT_EQ(profile.RouteName, "new route");
  EXPECT_DOUBLE_EQ(profile.Erd.StepSize, 0.5);
  EXPECT_DOUBLE_EQ(profile.SamplesPerMetre, 2.0);
  EXPECT_DOUBLE_EQ(profile.Erd.KpStart, 5.5);
  EXPECT_EQ((std::vector{profile.Erd.KpSign, profile.Erd.Lane, profile.Erd.RepairRangeOn}), (std::vector{1, 1, 1}));
  EXPECT_EQ(profile.Erd.KpText, "5.50000-+");
  EXPECT_EQ(profile.Erd.ShortName[1], "RElev.");
  EXPECT_EQ(profile.Comment, "note\r\nline two");
  EXPECT_DOUBLE_EQ(profile.Erd.RepairRangeStart, 6.0);
  EXPECT_TRUE(IsNoValue(profile.Erd.RepairRangeEnd));
  EXPECT_EQ(ComposeErdTitle(profile.Erd), "国道１２号　上り｜5.50000-+｜6.00000,-99999");

  boxes.txt緒元[7] = "";
  StoreProfileTab(boxes, profile);
  EXPECT_TRUE(IsNoValue(profile.Erd.KpStart));
  EXPECT_EQ(profile.Erd.KpText, "");
}

TEST_F(ProfileTabTest, SampleCountRepairMakesHeaderAndDataAgree) {
  ProfileRecord profile = Load("header_count_differs.erd");
  ProfileTabBoxes boxes = ShowProfileOnTab(profile);
  EXPECT_EQ(boxes.txt緒元[10], "10");
  const std::string before = ReadBytes(path_);
  ui_.Answers = {MsgAnswer::Cancel};
  EXPECT_FALSE(cmdERD修正(session, boxes, profile));
  EXPECT_EQ(ReadBytes(path_), before);
  ASSERT_TRUE(cmdERD修正(session, boxes, profile));
  const testing::Shown question{"下記のERDファイルを実データ件数で書き換えます。\r\n\r\n" + path_ + "\r\n\r\nよろしいですか？", "確認"};
  testing::ExpectMessages(ui_, {question, question});
  const ErdRecord reread = Reread();
  EXPECT_EQ((std::vector{reread.NumSamplesHeader, reread.NumSamples, profile.Erd.NumSamplesHeader, profile.WorkCount}),
            (std::vector{3, 3, 3, 3}));
  EXPECT_EQ(reread.Elevation, (Array1<double>{1, 2, 3}));
  EXPECT_EQ(boxes.txt緒元[4], "3");
  EXPECT_EQ(boxes.txt緒元[10], "3");
  EXPECT_FALSE(boxes.cmdERD修正Enabled);
}

TEST_F(ProfileTabTest, TitleEditRewritesTheTitleLineFromBoxesFiveAndNine) {
  ProfileRecord profile = Load("line2_free_widths.erd");
  ProfileTabBoxes boxes = ShowProfileOnTab(profile);
  boxes.txt緒元[5] = " 新しい題 ";
  boxes.txt緒元[9] = "7.00000+0";
  ASSERT_TRUE(cmdERD上書き(session, boxes, profile));
  EXPECT_EQ(ui_.OnlyMessageText(), "下記のERDファイルのタイトル情報を書き換えます。\r\n\r\n" + path_ + "\r\n\r\nよろしいですか？");
  const ErdRecord reread = Reread();
  EXPECT_EQ(reread.Title, "新しい題");
  EXPECT_DOUBLE_EQ(reread.KpStart, 7.0);
  EXPECT_EQ(reread.Lane, 0);
  EXPECT_FALSE(boxes.Enabled[9]);
  EXPECT_FALSE(boxes.cmdERD上書きEnabled);
}

TEST_F(ProfileTabTest, ChkDatRefusesABarInATitle) {
  ProfileList list;
  ASSERT_TRUE(AddProfileList(session, list, {Source("ok.erd"), Source("bad.erd")}, true));
  list.Items[2].Erd.Title = "a｜b";
  std::int32_t bad = 0;
  EXPECT_TRUE(ChkDat(session, 2, list, &bad));  // lowest bit not set: no check
  EXPECT_FALSE(ChkDat(session, 1, list, &bad));
  EXPECT_EQ(bad, 2);
  testing::ExpectMessages(ui_, {{"プロファイルのタイトル文字列に  \"｜\" (0x8162) は使用できません。\r\n\r\nファイル名：bad.erd\r\n\r\n確認してください。",
                                 "プロファイルデータ不正"}});
}

TEST(ProfileTabColours, NumberBoxesAndTitleAreMarked) {
  ProfileTabBoxes boxes;
  boxes.txt緒元[3] = "-1";     // not above 0
  boxes.txt緒元[4] = "abc";    // not numeric
  boxes.txt緒元[6] = " ";      // empty
  boxes.txt緒元[7] = "12.5";   // fine
  boxes.txt緒元[5] = "x｜y";
  boxes.txt緒元[0] = "";       // a text box: never marked
  boxes.Colours[9] = {1, 2};   // reset to normal first
  ProfileTabBoxes untouched = boxes;
  ChkDatColours(0, untouched);
  EXPECT_EQ(untouched.Colours[9].Back, 1u);

  ChkDatColours(1, boxes);
  const Colour backs[] = {kBoxNormalBack, 32768, 0xFF0000, 32768, 255, kBoxNormalBack};  // boxes 0, 3, 4, 5, 6, 7
  for (int i = 0; const int box : {0, 3, 4, 5, 6, 7}) EXPECT_EQ(boxes.Colours[box].Back, backs[i++]) << box;
  EXPECT_EQ(boxes.Colours[9].Back, kBoxNormalBack);
  EXPECT_EQ(boxes.Colours[3].Fore, 0xFFFFFFu);

  boxes.Enabled[4] = false;  // a disabled box is left in its normal colours
  ChkDatColours(1, boxes);
  EXPECT_EQ(boxes.Colours[4].Back, kBoxNormalBack);
}

// The tools that make new profiles from registered ones (reversal, height shift, cut-out, composite)
// and the import of text files whose columns become profiles.
// Samples 1, 2, 3, 4 at 0.5 m from KP 10 km, KP growing.
ToolItem Item(const std::string& name = "p.ERD", double kp = 10.0, std::int32_t sign = 0) {
  ProfileRecord profile = testing::MakeProfile("p", 0.5, {1, 2, 3, 4}, kp, sign);
  profile.Erd.ShortName[1] = "LElev.";
  return {name, profile.Erd};
}

std::vector<double> Samples(const ErdRecord& erd) { return erd.Elevation.vector(); }

using ProfileTools = ProfileListTest;

TEST_F(ProfileTools, ReversalTwiceGivesTheSameSamplesAndKp) {
  const auto once = ReverseProfiles({Item()});
  ASSERT_EQ(once.size(), 1u);
  EXPECT_EQ(once[0].FileName, "p_反転.ERD");
  EXPECT_EQ(Samples(once[0].Erd), (std::vector<double>{4, 3, 2, 1}));
  EXPECT_NEAR(once[0].Erd.KpStart, 10.0015, 1e-12);  // the old end: 10 + 3 × 0.5 m
  EXPECT_EQ(once[0].Erd.KpSign, 1);
  const ErdRecord twice = ReverseProfiles({{"q.ERD", once[0].Erd}})[0].Erd;
  EXPECT_EQ(Samples(twice), (std::vector<double>{1, 2, 3, 4}));
  EXPECT_NEAR(twice.KpStart, 10.0, 1e-12);
  EXPECT_EQ(twice.KpSign, 0);
}

TEST_F(ProfileTools, HeightShiftMovesTheReferenceSampleToTheHeight) {
  const struct {
    std::int32_t sign;  // of the KP
    HeightShiftInput input;
    const char* name;
    std::vector<double> samples;
  } cases[] = {
      {0, {ShiftReference::Start, "", "100"}, "p_始点H100調整.ERD", {100, 101, 102, 103}},
      // KP 10.001 km is 1 m, two pitches, from the start: sample 3 (height 3) is the reference.
      {0, {ShiftReference::Kp, "10.001", "0"}, "p_KP10.001H0調整.ERD", {-2, -1, 0, 1}},
      // A KP beyond the end takes the last sample reached.
      {0, {ShiftReference::Kp, "99", "0"}, "p_KP99H0調整.ERD", {-3, -2, -1, 0}},
      // With a falling KP the same KP lies two pitches along too.
      {1, {ShiftReference::Kp, "9.999", "0"}, "p_KP9.999H0調整.ERD", {-2, -1, 0, 1}},
  };
  for (const auto& c : cases) {
    const auto out = HeightShiftProfiles(session, {Item("p.ERD", 10.0, c.sign)}, c.input);
    ASSERT_TRUE(out && out->size() == 1u) << c.name;
    EXPECT_EQ((*out)[0].FileName, c.name);
    EXPECT_EQ(Samples((*out)[0].Erd), c.samples) << c.name;
  }
  EXPECT_TRUE(ui_.Messages().empty());
}

TEST_F(ProfileTools, ChecksStopWithTheirMessages) {
  EXPECT_FALSE(HeightShiftProfiles(session, {Item()}, {ShiftReference::Kp, "", "1"}));
  EXPECT_FALSE(HeightShiftProfiles(session, {Item()}, {ShiftReference::End, "", "abc"}));
  CutOutInput cut;
  cut.KpStart = "1";
  EXPECT_FALSE(CutOutProfiles(session, {Item()}, cut));
  CompositeInput composite;
  composite.BaseIsCsv = true;
  EXPECT_FALSE(CompositeProfiles(session, {Item()}, composite));
  composite.CsvPath = "/nonexistent/base.csv";
  EXPECT_FALSE(CompositeProfiles(session, {Item()}, composite));
  testing::ExpectMessages(ui_, {{"KP が指定されていません。", "Error"}, {"調整高さ は数値で指定して下さい。"},
                                {"KP終点 が指定されていません。"}, {"CSVデータが指定されていません。"},
                                {"指定されたファイルが見つかりません。"}});
}

// A cut-out by position and length (データ指定).
CutOutInput Cut(const std::string& start, const std::string& length, Shortfall fill = Shortfall::None,
                CutUnit unit = CutUnit::Samples, bool fromEnd = false) {
  return CutOutInput{/*ByKp=*/false, "", "", start, length, fromEnd, unit, fill};
}

TEST_F(ProfileTools, CutOutByKpBySamplesAndByDistanceWithEachShortfallMode) {
  CutOutInput byKp;
  byKp.KpStart = "10.0015";  // swapped with the end
  byKp.KpEnd = "10.0005";
  const struct {
    CutOutInput input;
    const char* name;
    std::vector<double> samples;
  } cases[] = {
      {byKp, "p_KP始点10.0005_終点10.0015切出し.ERD", {2, 3, 4}},
      {Cut("1", "2"), "p_1_2個切出し.ERD", {2, 3}},
      // 0.5 m from the end, covering 1 m: the last three samples but one.
      {Cut("0.5", "1", Shortfall::None, CutUnit::M, true), "p_0.5_1m切出し.ERD", {1, 2, 3}},
      // From two samples before the first to two behind the last.
      {Cut("-2", "8", Shortfall::Zero), "", {0, 0, 1, 2, 3, 4, 0, 0}},
      {Cut("-2", "8", Shortfall::EdgeValue), "p_-2_8個切出し(始終値埋め).ERD", {1, 1, 1, 2, 3, 4, 4, 4}},
      {Cut("-2", "8", Shortfall::Mirror), "", {3, 2, 1, 2, 3, 4, 3, 2}},
      {Cut("-2", "8"), "", {1, 2, 3, 4}},
      // Folding never reaches past the other end.
      {Cut("-6", "1", Shortfall::Mirror), "", {4}},
  };
  for (const auto& c : cases) {
    const auto out = CutOutProfiles(session, {Item()}, c.input);
    ASSERT_TRUE(out && out->size() == 1u) << c.input.Start;
    EXPECT_TRUE(*c.name == 0 || (*out)[0].FileName == c.name) << (*out)[0].FileName;
    EXPECT_EQ(Samples((*out)[0].Erd), c.samples) << c.input.Start << " " << c.input.Length;
  }
  EXPECT_NEAR((*CutOutProfiles(session, {Item()}, byKp))[0].Erd.KpStart, 10.0005, 1e-12);
  // Wholly outside with no filling: nothing to register.
  EXPECT_TRUE(CutOutProfiles(session, {Item()}, Cut("10", "1"))->empty());
}

TEST_F(ProfileTools, CompositeTiesTheTargetToTheBaseAlongTheOverlap) {
  // Target: 0, 1, 0, 1, 0 mm at 1 m from KP 0. Base survey: 10 mm at 0 m, 14 mm at 4 m.
  const ToolItem target{"t.ERD", testing::MakeProfile("t", 1.0, {0, 1, 0, 1, 0}, 0.0).Erd};
  WriteSystemTextFile(dir_ / "survey.csv", {"pos,height", "4,14", "0,10"});
  CompositeInput input;
  input.BaseIsCsv = true;
  input.CsvPath = (dir_ / "survey.csv").string();
  input.CsvHeading = true;
  auto out = CompositeProfiles(session, {target}, input);
  ASSERT_TRUE(out);
  ASSERT_EQ(out->size(), 1u);
  EXPECT_EQ((*out)[0].FileName, "t_survey_合成.ERD");
  // The difference runs from 10 to 14 mm along the 4 m; the target's detail rides on it.
  testing::ExpectValues((*out)[0].Erd.Elevation, {10, 12, 12, 14, 14}, 1e-9);

  // An ERD base that covers only the middle: the result exists only on the overlap.
  input.BaseIsCsv = false;
  input.BaseProfile = Item("b.ERD", 0.001, 0);  // 1, 2, 3, 4 at 0.5 m from 1 m
  auto partial = CompositeProfiles(session, {target}, input);
  ASSERT_EQ(partial->size(), 1u);
  // Target samples at 1 m and 2 m, on base 1 at 1 m and base 3 at 2 m.
  EXPECT_EQ((*partial)[0].Erd.NumSamples, 2);
  testing::ExpectValues((*partial)[0].Erd.Elevation, {1, 3}, 1e-9);
  EXPECT_NEAR((*partial)[0].Erd.KpStart, 0.001, 1e-12);
}

TEST_F(ProfileTools, RegistersAfterTheQuestionAndNotOnCancel) {
  ProfileList list;
  ui_.Answers.push_back(MsgAnswer::Cancel);
  EXPECT_FALSE(RegisterToolOutputs(session, list, ReverseProfiles({Item()})));
  EXPECT_EQ(list.Count(), 0);
  EXPECT_TRUE(RegisterToolOutputs(session, list, ReverseProfiles({Item()})));
  ASSERT_EQ(list.Count(), 1);
  EXPECT_EQ(list.Items[1].FileName, "p_反転.ERD");
  EXPECT_EQ(list.Items[1].Erd.Elevation[1], 4.0);
  EXPECT_EQ(ui_.Messages()[0].Title, "登録");
  EXPECT_FALSE(RegisterToolOutputs(session, list, {}));
}

class TextImportTest : public ProfileListTest {
 protected:
  std::string Text(const std::string& name, const std::vector<std::string>& lines) {
    const auto path = dir_ / name;
    WriteSystemTextFile(path, lines);
    return path.string();
  }
  static ImportOptions Options(const std::string& pitch = "0.1") {
    ImportOptions options;
    options.Pitch = pitch;
    return options;
  }
};

TEST_F(TextImportTest, SplitsAtEveryDelimiterInForceButNotInsideQuotes) {
  ImportOptions options = Options();
  options.Semicolon = true;
  options.Other = true;
  options.OtherText = "|";
  EXPECT_EQ(SplitImportLine("1,2;3|4", options), (std::vector<std::string>{"1", "2", "3", "4"}));
  EXPECT_EQ(SplitImportLine("\"a;b\",c", options), (std::vector<std::string>{"a;b", "c"}));
  options.Comma = false;
  EXPECT_EQ(SplitImportLine("1,2;3", options), (std::vector<std::string>{"1,2", "3"}));
}

TEST_F(TextImportTest, ChecksInOrderWithTheirTexts) {
  const auto preview = BuildImportPreview(Text("a.csv", {"1,2", "3,4", "5,6"}), Options());
  EXPECT_EQ(preview.RowCount(), 3);
  EXPECT_EQ(preview.Columns, 2);
  // Pitch, first row, last row, last column; the box that gets the focus and the message.
  const struct {
    std::string pitch, firstRow, lastRow, lastColumn;
    std::int32_t focus;
    std::string message;
  } cases[] = {
      {"", "", "", "", 0, "ピッチが指定されていません。"},
      {"x", "", "", "", 0, "数値で指定してください。"},
      {"0.1", "0", "", "", 1, "データ開始行（開始位置）は１以上で指定してください"},
      {"0.1", "", "4", "", 2, "データ開始行（終了位置）は 3 以下で指定してください"},
      {"0.1", "", "", "3", 4, "データ開始列（終了位置）は 2 以下で指定してください"},
      {"0.1", "3", "2", "", 2, "データ開始行（終了位置）は 3 以上で指定してください"},
  };
  for (const auto& c : cases) {
    ImportOptions options = Options(c.pitch);
    options.FirstRow = c.firstRow;
    options.LastRow = c.lastRow;
    options.LastColumn = c.lastColumn;
    ui_.Log.clear();
    EXPECT_EQ(CheckImport(session, preview, options), c.focus) << c.message;
    testing::ExpectMessages(ui_, {{c.message, "データ不正"}});
  }
  ui_.Log.clear();
  EXPECT_EQ(CheckImport(session, preview, Options()), -1);
  EXPECT_TRUE(ui_.Messages().empty());
}

TEST_F(TextImportTest, ColumnsBecomeNumberedProfilesWithHeadingTitlesAndHolesEndAColumn) {
  const auto path = Text("road.csv", {"left,right", "1.5,10", ",11", "2.5,12", "3.5,", "4.5,13"});
  ImportOptions options = Options("0.25");
  options.Header = true;
  options.TitleFromHeader = true;
  ProfileList list;
  ASSERT_TRUE(ImportTextFile(session, list, path, options));
  ASSERT_EQ(list.Count(), 2);

  const ProfileRecord &left = list.Items[1], &right = list.Items[2];
  EXPECT_EQ(left.FileName, "road(001).ERD");
  EXPECT_EQ(right.FileName, "road(002).ERD");
  EXPECT_EQ(left.Erd.Title, "left");
  EXPECT_EQ(right.Erd.Title, "right");
  EXPECT_DOUBLE_EQ(left.Erd.StepSize, 0.25);
  // "1.5" is the first sample, so the empty cell of the next row ends the column; the hole in row 4
  // ends the right one before 13.
  EXPECT_EQ(std::pair(left.Erd.NumSamples, right.Erd.NumSamples), std::pair(1, 3));
  EXPECT_EQ(left.Erd.Elevation, (Array1<double>{1.5}));
  EXPECT_EQ(right.Erd.Elevation, (Array1<double>{10, 11, 12}));
  EXPECT_TRUE(std::filesystem::exists(ProjectCopy("road(002).ERD")));
}

TEST_F(TextImportTest, OneColumnKeepsTheFileNameAndLeadingBlanksAreSkipped) {
  const auto path = Text("single.txt", {"", " ", "7", "8"});
  ImportOptions options = Options("0.5");
  options.FirstColumn = "1";
  options.LastColumn = "1";
  ProfileList list;
  ASSERT_TRUE(ImportTextFile(session, list, path, options));
  ASSERT_EQ(list.Count(), 1);
  EXPECT_EQ(list.Items[1].FileName, "single.ERD");
  EXPECT_EQ(list.Items[1].Erd.Title, "single.txt");  // no heading: the file's name
  EXPECT_EQ(list.Items[1].Erd.NumSamples, 2);
}

TEST_F(TextImportTest, NumberedNamesSkipNamesAlreadyListed) {
  const auto path = Text("twin.csv", {"1,2", "3,4"});
  ProfileList list;
  ASSERT_TRUE(ImportTextFile(session, list, path, Options()));
  ASSERT_TRUE(ImportTextFile(session, list, path, Options()));
  ASSERT_EQ(list.Count(), 4);
  // Column 1 finds (001) and (002) listed; column 2 finds (002) listed and (003) taken by column 1.
  EXPECT_EQ(list.Items[3].FileName, "twin(003).ERD");
  EXPECT_EQ(list.Items[4].FileName, "twin(004).ERD");
}

TEST_F(TextImportTest, MissingFileIsLoggedAndRegistersNothing) {
  ProfileList list;
  EXPECT_FALSE(ImportTextFile(session, list, (dir_ / "none.csv").string(), Options()));
  EXPECT_EQ(list.Count(), 0);
  EXPECT_NE(ui_.OnlyMessageText().find("none.csv"), std::string::npos);
}

TEST_F(TextImportTest, SettingsSurviveInPreviousValues) {
  ImportOptions options = Options();
  options.Comma = false;
  options.Tab = true;
  options.Other = true;
  options.OtherText = ",";
  options.Header = true;
  SaveImportSettings(session, options);
  const ImportOptions b = LoadImportSettings(session);
  EXPECT_EQ((std::vector{b.Comma, b.Tab, b.Other, b.Header, b.TitleFromHeader}), (std::vector{false, true, true, true, false}));
  EXPECT_EQ(b.OtherText, ",");
}
}  // namespace
}  // namespace velmora
