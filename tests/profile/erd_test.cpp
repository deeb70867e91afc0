// ERD files: what the reader makes of each file it may be handed (the edge-case fixtures in
// tests/data/erd, made by tools/make_erd_fixtures.py, broken bytes written here, the bundled examples
// and the measured profiles beside the repository), the statistics a read fills in, and the writer and
// title updater against hand-written expected bytes.
#include "profile/erd_file.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <variant>

#include "base/legacy_error.h"
#include "profile/profile_reader.h"
#include "profile/profile_statistics.h"
#include "support/checks.h"
#include "support/session_fixture.h"

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
    {"LeadByteWithoutTrailByteInTheTitle", "temp/sjis.erd", Outcome::Raises, "", {},
     WithReplaced(kHead, "TITLE   t", "TITLE   \x81\x20") + "1\r\n"},

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
    EXPECT_EQ(ReadProfile(session, path.string(), profile), c.outcome == Outcome::Reads);
    EXPECT_TRUE(c.outcome == Outcome::Reads || c.outcome == Outcome::Refused) << "no error";
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

}  // namespace
}  // namespace velmora
